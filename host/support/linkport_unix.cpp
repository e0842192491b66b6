#include "host/support/linkport.h"

#include <QDir>
#include <QFile>
#include <QStringList>

#include <filesystem>
#include <string>
#include <system_error>

namespace {

QByteArray ReadWhole(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Returns the link targets ("socket:[12345]") of the sockets listening on `port`, from Linux' /proc; empty elsewhere.
QStringList SocketsOn(quint16 port)
{
    constexpr qsizetype kAddressField = 1;
    constexpr qsizetype kStateField = 3;
    constexpr qsizetype kInodeField = 9;
    QStringList sockets;
    for (const QString& list : {QStringLiteral("/proc/net/tcp"), QStringLiteral("/proc/net/tcp6")}) {
        const QList<QByteArray> lines = ReadWhole(list).split('\n');
        for (const QByteArray& line : lines) {
            const QList<QByteArray> fields = line.simplified().split(' ');
            if (fields.size() <= kInodeField || fields.at(kStateField) != "0A")
                continue;
            const QByteArray& address = fields.at(kAddressField);
            if (address.mid(address.lastIndexOf(':') + 1).toUShort(nullptr, 16) == port)
                sockets.append(QStringLiteral("socket:[%1]").arg(QString::fromLatin1(fields.at(kInodeField))));
        }
    }
    return sockets;
}

bool HasOpen(const QString& process, const QStringList& sockets)
{
    std::error_code error;
    const std::filesystem::path folder("/proc/" + process.toStdString() + "/fd");
    for (auto link = std::filesystem::directory_iterator(folder, error);
         !error && link != std::filesystem::directory_iterator(); link.increment(error)) {
        std::error_code gone;
        if (sockets.contains(QString::fromStdString(std::filesystem::read_symlink(link->path(), gone).string())))
            return true;
    }
    return false;
}

} // namespace

QAbstractSocket::BindMode ProbeMode()
{
    // Two sockets bound like this can share the port as long as they do not listen.
    return QAbstractSocket::DontShareAddress | QAbstractSocket::ReuseAddressHint;
}

std::optional<LinkPort::Process> ListenerOn(quint16 port)
{
    const QStringList sockets = SocketsOn(port);
    if (sockets.isEmpty())
        return std::nullopt;
    const QStringList processes = QDir(QStringLiteral("/proc")).entryList({QStringLiteral("[0-9]*")}, QDir::Dirs);
    for (const QString& process : processes) {
        if (HasOpen(process, sockets)) {
            const QByteArray name = ReadWhole(QStringLiteral("/proc/%1/comm").arg(process)).trimmed();
            return LinkPort::Process{process.toLongLong(), QString::fromLocal8Bit(name)};
        }
    }
    return std::nullopt;
}
