// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/system/autostart.h"

#include "files/atomicfile.h"
#include "files/boundedfile.h"
#include "host/system/homefolder.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>

#include <algorithm>
#include <optional>
#include <utility>

namespace {

/// `text` as the value of a key.
QString Escaped(QString text)
{
    for (const auto& [plain, escaped] :
         {std::pair{"\\", "\\\\"}, std::pair{"\n", "\\n"}, std::pair{"\t", "\\t"}, std::pair{"\r", "\\r"}})
        text.replace(QLatin1String(plain), QLatin1String(escaped));
    return text;
}

/// `argument` as a part of the command in the key Exec.
QString Quoted(QString argument)
{
    static const QRegularExpression reserved(QStringLiteral(R"([^-\w./:=@+,%])"));
    static const QRegularExpression special(QStringLiteral(R"((["`$\\]))"));
    argument.replace(QLatin1Char('%'), QLatin1String("%%"));
    if (!argument.isEmpty() && !argument.contains(reserved))
        return argument;
    argument.replace(special, QStringLiteral(R"(\\1)"));
    return QLatin1Char('"') + argument + QLatin1Char('"');
}

QString Command(const QStringList& arguments)
{
    QStringList parts;
    for (const QString& argument : arguments)
        parts.append(Quoted(argument));
    return Escaped(parts.join(QLatin1Char(' ')));
}

/// The menu entry, starting this program with `options`.
QByteArray Entry(const QStringList& options)
{
    QFile menuEntry(QStringLiteral(":/vexelhost/vexelhost.desktop"));
    if (!menuEntry.open(QIODevice::ReadOnly))
        return {};
    const QString program = QCoreApplication::applicationFilePath();
    QStringList lines = QString::fromUtf8(menuEntry.readAll()).split(QLatin1Char('\n'));
    for (QString& line : lines)
        if (line.startsWith(QLatin1String("Exec=")))
            line = QStringLiteral("Exec=") + Command(QStringList{program, QStringLiteral("--hidden")} + options);
        // The desktop ignores the entry when the program has been removed.
        else if (line.startsWith(QLatin1String("TryExec=")))
            line = QStringLiteral("TryExec=") + Escaped(program);
    return lines.join(QLatin1Char('\n')).toUtf8();
}

} // namespace

namespace Autostart {

QString Place()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/autostart/vexelhost.desktop");
}

bool IsOn()
{
    const std::optional<QByteArray> entry = ReadRegularFile(Place());
    if (!entry)
        return false;
    const QList<QByteArray> lines = entry->split('\n');
    return std::none_of(lines.cbegin(), lines.cend(), [](const QByteArray& line) {
        return line.trimmed() == "Hidden=true" || line.trimmed() == "X-GNOME-Autostart-enabled=false";
    });
}

QString Set(bool isOn, const QStringList& options)
{
    if (const QString error = PrepareHomeFolder(); !error.isEmpty())
        return error;
    const QString place = Place();
    QString error;
    if (isOn) {
        const QString folder = QFileInfo(place).path();
        if (!QFileInfo(folder).isDir() && !CreateFolder(folder))
            return QStringLiteral("the folder %1 cannot be created").arg(folder);
        error = WriteWithRetries(place, Entry(options), FileAccess::Shared);
    } else if (QFile file(place); file.exists() && !file.remove()) {
        error = file.errorString();
    }
    return error.isEmpty() ? QString() : QStringLiteral("%1 cannot be changed: %2").arg(place, error);
}

} // namespace Autostart
