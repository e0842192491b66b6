// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "control/controladdress.h"

#include <QCryptographicHash>
#include <QFileInfo>
#include <QStandardPaths>

QString NewControlAddress(const QString& configDirectory)
{
    // Without a folder of the session Qt makes one, and warns.
    const QtMessageHandler handler =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    qInstallMessageHandler(handler);
    if (folder.isEmpty())
        return {};
    // The same for each start on the directory, so that the socket of a killed host is replaced. Short, because the
    // path of a socket has room for 107 bytes.
    const QByteArray hash = QCryptographicHash::hash(QFileInfo(configDirectory).canonicalFilePath().toUtf8(),
                                                     QCryptographicHash::Blake2b_160);
    return QStringLiteral("%1/vexelhost-%2").arg(folder, QString::fromLatin1(hash.toHex()));
}
