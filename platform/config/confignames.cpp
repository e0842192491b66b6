// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/config/confignames.h"

#include <QRegularExpression>
#include <QStringList>

namespace {

// The sign of an escape, which is otherwise followed by two digits.
const QString kEmptyName = QStringLiteral("%");

QString ViewFolder(View view)
{
    switch (view) {
    case View::User:
        return QStringLiteral("user");
    case View::Application:
        return QStringLiteral("application");
    case View::Shared:
        return QStringLiteral("shared");
    }
    return QStringLiteral("view%1").arg(static_cast<int>(view));
}

// Dots are escaped as well. That rules out "..", hidden files, the trailing dot that Windows drops, and a folder with
// the name of another document's file, lock or quarantined copy: all of those have a dot.
QString FileStep(const QString& name)
{
    if (name.isEmpty())
        return kEmptyName;

    // Device names of Windows, with any extension.
    static const QRegularExpression device(QStringLiteral("^(CON|PRN|AUX|NUL|COM[0-9]|LPT[0-9])$"),
                                           QRegularExpression::CaseInsensitiveOption);
    const QByteArray encoded = name.toUtf8().toPercentEncoding({}, ".~");
    if (device.match(name).hasMatch())
        return QStringLiteral("%") + QString::number(name.front().unicode(), 16).toUpper() +
               QString::fromLatin1(encoded.mid(1));
    return QString::fromLatin1(encoded);
}

} // namespace

QString ConfigNames::ToStep(const QString& name)
{
    if (name.isEmpty())
        return kEmptyName;
    return QString(name).replace(u'%', QStringLiteral("%25")).replace(u'/', QStringLiteral("%2F"));
}

QString ConfigNames::ApplicationFile(View view)
{
    // No document name leads to this file: FileStep escapes the sign.
    return ViewFolder(view) + QStringLiteral("/@application.json");
}

QString ConfigNames::DocumentFile(View view, const QString& name)
{
    QString file = ViewFolder(view);
    const QStringList steps = name.split(u'/');
    for (const QString& step : steps)
        file += u'/' + FileStep(step);
    return file + QStringLiteral(".json");
}
