// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

// A host for the starter to start: fakehost MODE PORT FILE [more arguments]
//
// Appends a line of JSON to FILE that says how it was started, and then does as MODE says:
//
//   answer      has a link at PORT; ends with exit code 4 where that is taken
//   late        the same after a while
//   secondtry   the first one ends with exit code 4, the next ones answer
//   deaf        has the port, and never takes a call
//   hang        never listens
//   crash       ends as a broken program does
//   explain     further arguments CODE TEXT [COUNT]: writes TEXT, COUNT times, as its error, and ends with exit code
//   CODE NUMBER      ends with that exit code
//
// It lives until the file FILE.end is there, and no longer than a minute.

#include "host/output/starterrorfile.h"
#include "platform/interfaces.h"
#include "process/standardstreams.h"
#include "tests/support/system/inheritedhandles.h"
#include "tests/support/system/system.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QThread>
#include <QTimer>

#include <cstdlib>
#include <memory>

namespace {

using namespace std::chrono_literals;

constexpr int kOtherHost = 4;

class Link : public IInterfaceCallback
{
public:
    void OnOpen(IInterface*) override {}
    void OnClose(IInterface*) override {}
    void OnRead(IInterface*, quint64) override {}
    void OnError(IInterface*) override {}
    void OnWritten(IInterface*, quint64) override {}
};

/// Returns how many were started before with the same file.
qsizetype Report(const QString& fileName, const QStringList& arguments, const QStringList& inherited)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadWrite | QIODevice::Append))
        std::exit(99);
    file.seek(0);
    const auto before = file.readAll().count('\n');
    QJsonObject start;
    start.insert(QStringLiteral("process"), QCoreApplication::applicationPid());
    start.insert(QStringLiteral("directory"), QDir::currentPath());
    start.insert(QStringLiteral("variable"), qEnvironmentVariable("FAKEHOST_VARIABLE"));
    start.insert(QStringLiteral("errorFile"), qEnvironmentVariable(kStartErrorFileVariable));
    start.insert(QStringLiteral("arguments"), QJsonArray::fromStringList(arguments));
    start.insert(QStringLiteral("inherited"), QJsonArray::fromStringList(inherited));
    QStringList streams;
    for (int handle = 0; handle < 3; ++handle)
        streams.append(System::StreamTarget(handle));
    start.insert(QStringLiteral("streams"), QJsonArray::fromStringList(streams));
    start.insert(QStringLiteral("console"), System::HasConsole());
    file.write(QJsonDocument(start).toJson(QJsonDocument::Compact) + '\n');
    return before;
}

int Live(const QString& fileName, const QString& address, bool takesCalls)
{
    Link link;
    std::unique_ptr<IInterface> server;
    if (!address.isEmpty()) {
        server.reset(CInterfaceCreator().CreateInterface(address, &link, 10'000, false));
        if (!server)
            return kOtherHost;
    }
    const auto isEnd = [end = fileName + QStringLiteral(".end")] {
        return QFile::exists(end);
    };
    QTimer::singleShot(60s, qApp, [] { QCoreApplication::exit(98); });
    if (!takesCalls) {
        for (int i = 0; i < 1200 && !isEnd(); ++i)
            QThread::msleep(50);
        return 0;
    }
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, qApp, [&] {
        if (isEnd())
            QCoreApplication::exit(0);
    });
    timer.start(20ms);
    return QCoreApplication::exec();
}

int Explain(const QStringList& arguments)
{
    QFile file(qEnvironmentVariable(kStartErrorFileVariable));
    if (arguments.size() < 2 || !file.open(QIODevice::WriteOnly | QIODevice::ExistingOnly))
        return 96;
    file.write(arguments.at(1).repeated(arguments.value(2, QStringLiteral("1")).toInt()).toUtf8());
    return arguments.at(0).toInt();
}

} // namespace

int main(int argc, char** argv)
{
    const QStringList inherited = InheritedHandles();
    // Like the real host, which may attach to the console of its parent.
    StandardStreams::Prepare();
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 4)
        return 97;
    const QString& mode = arguments.at(1);
    const QString address = QStringLiteral("TCP::") + arguments.at(2);
    const QString& fileName = arguments.at(3);
    const auto before = Report(fileName, arguments.mid(4), inherited);

    if (mode == QLatin1String("crash"))
        std::abort();
    if (mode == QLatin1String("explain"))
        return Explain(arguments.mid(4));
    if (mode == QLatin1String("hang"))
        return Live(fileName, {}, false);
    if (mode == QLatin1String("deaf"))
        return Live(fileName, address, false);
    if (mode == QLatin1String("secondtry") && before == 0)
        return kOtherHost;
    if (mode == QLatin1String("late"))
        QThread::msleep(300);
    if (mode == QLatin1String("answer") || mode == QLatin1String("late") || mode == QLatin1String("secondtry"))
        return Live(fileName, address, true);
    return mode.toInt();
}
