// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/config/documentfile.h"

#include "files/atomicfile.h"
#include "files/retry.h"
#include "files/siblingname.h"
#include "platform/tracing.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <filesystem>
#include <system_error>

namespace {

using State = DocumentReading::State;

const QString kMark = QStringLiteral(".damaged-");

std::filesystem::path NativePath(const QString& path)
{
    return QFileInfo(path).filesystemFilePath();
}

/// Unlike QFile::rename this never falls back to copying, which would block on a pipe.
bool Rename(const QString& from, const QString& to)
{
    std::error_code error;
    std::filesystem::rename(NativePath(from), NativePath(to), error);
    return !error;
}

DocumentReading Failed(State state, const QString& error = {})
{
    return {state, {}, std::nullopt, true, error};
}

/// Why nothing is known about a document that does not seem to exist; empty: it does not exist.
QString HidingObstacle(const QString& file)
{
    const std::filesystem::path document = NativePath(QFileInfo(file).absoluteFilePath());
    std::filesystem::path path = document;
    std::error_code error;
    auto type = std::filesystem::symlink_status(path, error).type();
    while (type == std::filesystem::file_type::not_found && path.has_relative_path()) {
        path = path.parent_path();
        type = std::filesystem::symlink_status(path, error).type();
    }
    const QString name = QString::fromStdU16String(path.u16string());
    if (type == std::filesystem::file_type::none) // no permission, for example
        return QStringLiteral("%1: %2").arg(name, QString::fromLocal8Bit(error.message().c_str()));
    if (type == std::filesystem::file_type::symlink && !std::filesystem::exists(path, error))
        return QStringLiteral("%1 is a link that leads nowhere").arg(name);
    if (path != document && !std::filesystem::is_directory(path, error))
        return QStringLiteral("%1 is not a folder").arg(name);
    return {};
}

} // namespace

DocumentReading ReadDocument(const QString& file)
{
    QString digest;
    DocumentReading reading = ReadDocumentUnchecked(file, digest);
    if (reading.state == State::Valid)
        reading.isIntact = DocumentText::IsIntact(*reading.values, digest);
    return reading;
}

DocumentReading ReadDocumentUnchecked(const QString& file, QString& digest)
{
    const QFileInfo info(file);
    if (!info.exists()) {
        if (const QString obstacle = HidingObstacle(file); !obstacle.isEmpty())
            return Failed(State::Unavailable, obstacle);
        return {State::Missing, {}, DocumentText::Values(), true, {}};
    }
    if (!info.isFile()) // opening a pipe could block
        return Failed(State::Unreadable);
    if (info.size() > kLargestDocument)
        return Failed(State::Damaged, QStringLiteral("it is larger than any document"));

    QFile device(file);
    QByteArray content;
    const bool isRead = Retry([&] {
        if (!device.open(QIODevice::ReadOnly))
            return device.error() == QFileDevice::ResourceError ? Attempt::Failed : Attempt::Busy;
        content = device.readAll();
        return device.error() == QFileDevice::NoError ? Attempt::Done : Attempt::Failed;
    });
    if (!isRead) {
        return Failed(device.error() == QFileDevice::ResourceError ? State::Unavailable : State::Unreadable,
                      device.errorString());
    }

    DocumentText::Parsed parsed = DocumentText::Parse(content);
    if (!parsed.values)
        return {State::Damaged, content, std::nullopt, true, parsed.error};
    digest = parsed.digest;
    return {State::Valid, content, std::move(parsed.values), true, {}};
}

QString ReplaceDocument(const QString& file, const QByteArray& content)
{
    bool isDurable = true;
    if (const QString error = WriteWithRetries(file, content, FileAccess::Private, &isDurable); !error.isEmpty())
        return error;
    if (!isDurable) {
        Trace(
            "platform/config/documentfile", __LINE__,
            [&] {
                return QStringLiteral("ReplaceDocument(): %1 is written, but a loss of power may undo that").arg(file);
            });
    }
    return {};
}

std::optional<Quarantined> QuarantineDocument(const QString& file, const DocumentReading& reading)
{
    const QString name = UniqueSiblingName(file, kMark, QDateTime::currentDateTime());
    if (reading.state == State::Damaged) {
        const QFileInfo info(file);
        std::error_code error;
        std::filesystem::create_hard_link(NativePath(info.canonicalFilePath()), NativePath(name), error);
        const bool isRead = info.size() == reading.content.size(); // not one that is larger than any document
        if (!error || (isRead && WriteWithRetries(name, reading.content, FileAccess::Private).isEmpty()))
            return Quarantined{name, false};
    }
    if (Retry([&] { return Rename(file, name) ? Attempt::Done : Attempt::Busy; }))
        return Quarantined{name, true};
    return std::nullopt;
}

QStringList QuarantinedNames(const QString& file)
{
    const QFileInfo document(file);
    return document.dir().entryList({document.fileName() + kMark + QLatin1Char('*')});
}

void UndoQuarantine(const QString& file, const Quarantined& quarantined)
{
    if (!quarantined.isMoved)
        QFile::remove(quarantined.file);
    else if (!QFileInfo::exists(file))
        Rename(quarantined.file, file);
}

bool IsSameFile(const QString& one, const QString& other)
{
    std::error_code error;
    return std::filesystem::equivalent(NativePath(one), NativePath(other), error) && !error;
}
