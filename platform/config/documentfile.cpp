#include "platform/config/documentfile.h"

#include "files/atomicfile.h"
#include "files/retry.h"
#include "files/siblingname.h"
#include "platform/tracing.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include <filesystem>
#include <system_error>

namespace {

using State = DocumentReading::State;

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
    return {state, {}, std::nullopt, error};
}

} // namespace

DocumentReading ReadDocument(const QString& file)
{
    const QFileInfo info(file);
    if (!info.exists())
        return {State::Missing, {}, DocumentText::Values(), {}};
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
    if (!isRead)
        return Failed(device.error() == QFileDevice::ResourceError ? State::Unavailable : State::Unreadable);

    DocumentText::Parsed parsed = DocumentText::Parse(content);
    if (!parsed.values)
        return {State::Damaged, content, std::nullopt, parsed.error};
    return {State::Valid, content, std::move(parsed.values), {}};
}

bool ReplaceDocument(const QString& file, const QByteArray& content)
{
    bool isDurable = true;
    if (!Retry([&] { return WriteAtomically(file, content, &isDurable); }))
        return false;
    if (!isDurable) {
        Trace(
            "platform/config/documentfile", __LINE__,
            [&] {
                return QStringLiteral("ReplaceDocument(): %1 is written, but a loss of power may undo that").arg(file);
            });
    }
    return true;
}

std::optional<QString> QuarantineDocument(const QString& file)
{
    const QString quarantined = UniqueSiblingName(file, QStringLiteral(".damaged-"), QDateTime::currentDateTime());
    const QFileInfo info(file);
    if (info.isFile() && !info.isSymLink()) { // of a link, the link itself is moved
        std::error_code error;
        std::filesystem::create_hard_link(NativePath(file), NativePath(quarantined), error);
        if (!error)
            return quarantined;
    }
    if (Retry([&] { return Rename(file, quarantined) ? Attempt::Done : Attempt::Busy; }))
        return quarantined;
    return std::nullopt;
}

void UndoQuarantine(const QString& file, const QString& quarantined)
{
    if (!QFileInfo::exists(file))
        Rename(quarantined, file);
    else if (IsSameFile(quarantined, file))
        QFile::remove(quarantined);
}

bool IsSameFile(const QString& one, const QString& other)
{
    std::error_code error;
    return std::filesystem::equivalent(NativePath(one), NativePath(other), error) && !error;
}
