// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/system/autostart.h"

#include "process/windowscommandline.h"

#include <QCoreApplication>
#include <QDir>
#include <QSettings>

namespace {

const QString kKey = QStringLiteral(R"(HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Run)");
const QString kValue = QStringLiteral("vexelhost");

} // namespace

namespace Autostart {

QString Place()
{
    return kKey + QLatin1Char('\\') + kValue;
}

bool IsOn()
{
    return QSettings(kKey, QSettings::NativeFormat).contains(kValue);
}

QString Set(bool isOn, const QStringList& options)
{
    QSettings run(kKey, QSettings::NativeFormat);
    if (isOn) {
        const QString program = QDir::toNativeSeparators(QCoreApplication::applicationFilePath());
        run.setValue(kValue, WindowsCommandLine(QStringList{program, QStringLiteral("--hidden")} + options));
    } else {
        run.remove(kValue);
    }
    run.sync();
    return run.status() == QSettings::NoError ? QString() : QStringLiteral("%1 cannot be changed").arg(Place());
}

} // namespace Autostart
