// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

// Sends any bytes to the host's end of the control channel, in any parts, and compares what comes of them with a simple
// reader of the lines.

#include "control/controlline.h"
#include "control/controlpeer.h"
#include "fuzz/fuzzing.h"

#include <QCoreApplication>
#include <QEvent>
#include <QEventLoop>
#include <QJsonObject>
#include <QLocalSocket>
#include <QPointer>

#include <algorithm>
#include <array>
#include <optional>

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace Fuzzing;

namespace {

constexpr qint64 kMaximumDocument = 64;

struct Outcome
{
    std::optional<ControlRequest> request;
    bool isOfOtherVersion = false;
    bool isDropped = false;
};

Outcome OutcomeOf(const QByteArray& bytes)
{
    Outcome outcome;
    bool isComplete = false;
    ControlRequest request;
    for (qsizetype begin = 0; begin < bytes.size();) {
        const qsizetype end = bytes.indexOf('\n', begin);
        outcome.isDropped = isComplete || (end < 0 ? bytes.size() : end) - begin >= ControlLine::kMaximumSize;
        if (outcome.isDropped || end < 0)
            return outcome;
        const std::optional<QJsonObject> line = ControlLine::Read(bytes.mid(begin, end + 1 - begin));
        begin = end + 1;
        outcome.isDropped = !line;
        if (outcome.isDropped)
            return outcome;
        bool isLast = false;
        if (request.content.isEmpty()) {
            request.content = *line;
            outcome.isOfOtherVersion = line->value(QLatin1String("protocol")).toInt() != ControlLine::kProtocol;
            isLast = !line->value(QLatin1String("hasDocument")).toBool();
        } else {
            request.document += line->value(QLatin1String("text")).toString().toUtf8();
            outcome.isDropped = request.document.size() > kMaximumDocument;
            if (outcome.isDropped)
                return outcome;
            isLast = line->value(QLatin1String("end")).toBool();
        }
        isComplete = isLast || outcome.isOfOtherVersion;
        if (isComplete && !outcome.isOfOtherVersion)
            outcome.request = request;
    }
    return outcome;
}

void Work()
{
    QEventLoop loop;
    while (loop.processEvents()) {
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

/// The answer so far.
void Receive(int socket, QByteArray& answer)
{
    std::array<char, 4096> part{};
    for (ssize_t size = 0; (size = recv(socket, part.data(), part.size(), 0)) > 0;)
        answer.append(part.data(), static_cast<qsizetype>(size));
}

void RequireAnswer(const QByteArray& answer, const Outcome& outcome)
{
    QList<QByteArray> lines = answer.split('\n');
    if (!outcome.isDropped)
        Require(lines.last().isEmpty(), "the answer consists of lines");
    lines.removeLast();
    QStringList types;
    for (const QByteArray& line : std::as_const(lines)) {
        const std::optional<QJsonObject> object = ControlLine::Read(line + '\n');
        Require(object.has_value(), "each line of the answer is an object");
        types.append(object->value(QLatin1String("type")).toString());
    }
    QStringList expected{QString()};
    if (outcome.request)
        expected << QStringLiteral("accepted");
    if (outcome.request || outcome.isOfOtherVersion)
        expected << QStringLiteral("end");
    if (outcome.isDropped)
        Require(types == expected.mid(0, types.size()), "the answer to a peer that is closed is a part of the answer");
    else
        Require(types == expected, "the answer is complete");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const Tidy tidy;
    FuzzedDataProvider input(data, size);
    const qsizetype part = input.ConsumeIntegralInRange(1, 64);
    // A long line is slow, so only few inputs have one. Blanks are part of a JSON text.
    const bool isLong = input.ConsumeIntegralInRange(0, 255) == 1;
    const QByteArray blanks(isLong ? ControlLine::kMaximumSize - input.ConsumeIntegralInRange(0, 64) : 0, ' ');
    const QByteArray bytes = blanks + TakeRest(input);
    const Outcome outcome = OutcomeOf(bytes);

    std::array<int, 2> sockets{};
    Require(socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, sockets.data()) == 0, "there are sockets");
    const int stranger = sockets[1];
    auto* const socket = new QLocalSocket;
    Require(socket->setSocketDescriptor(sockets[0]), "Qt takes the socket");
    const QPointer peer(
        new ControlPeer(socket, {{QStringLiteral("protocol"), ControlLine::kProtocol}}, kMaximumDocument, nullptr));
    int requests = 0;
    QObject::connect(peer, &ControlPeer::Requested, peer, [&](const ControlRequest& request) {
        ++requests;
        Require(outcome.request.has_value(), "only a request is taken for one");
        Require(request.content == outcome.request->content, "the request is what was sent");
        Require(request.document == outcome.request->document, "the document is what was sent");
        peer->End(0);
    });

    QByteArray answer;
    for (qsizetype sent = 0; sent < bytes.size() && peer;) {
        const qsizetype length = std::min(bytes.size() - sent, sent < blanks.size() ? blanks.size() : part);
        const ssize_t now = send(stranger, bytes.constData() + sent, static_cast<std::size_t>(length), MSG_NOSIGNAL);
        sent += std::max<ssize_t>(now, 0);
        Work();
        Receive(stranger, answer);
    }
    Work();
    Receive(stranger, answer);
    // What follows a request and arrives with it closes the peer before the request is carried out.
    Require(requests == (outcome.request ? 1 : 0) || (requests == 0 && outcome.isDropped), "a request is taken once");
    Require(peer.isNull() == outcome.isDropped, "a peer is closed if and only if it sends something else");
    RequireAnswer(answer, outcome);

    ::close(stranger);
    Work();
    Require(peer.isNull(), "nothing remains of a peer that has gone");
    return 0;
}
