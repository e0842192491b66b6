// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "host/application.h"
#include "host/plugin/connectdialog.h"
#include "platform/guibase.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDirIterator>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <functional>

/// The host with the real plug-in, in this process and with a temporary configuration. Can run several times.
class Host
{
public:
    Host()
    {
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(runtime.path()));
        options.plugin = QStringLiteral(REAL_PLUGIN);
        options.configDirectory = directory.filePath(QStringLiteral("config"));
        // Without any application: nothing can be connected.
        options.dataDirectory = directory.path();
        options.name = QStringLiteral("VexelConnectDlg");
        options.language = QLocale(QStringLiteral("en_GB"));
    }

    /// Runs the host and calls `work` when the dialog is shown. Ends the host then, unless `endsByItself`.
    ExitCode Run(const std::function<void(const ConnectDialog&)>& work, bool endsByItself = false)
    {
        // The size is restored when the first window of a process is shown.
        GuiBase::Instance().SetMainWidget(nullptr);
        bool hasWorked = false;
        QTimer::singleShot(0, qApp, [&] {
            QString error;
            if (const auto dialog = ConnectDialog::Find(error)) {
                hasWorked = true;
                work(*dialog);
            }
            if (!endsByItself)
                QCoreApplication::exit();
        });
        const ExitCode code = Application(options).Run();
        [&] {
            QVERIFY(hasWorked);
        }();
        return code;
    }

    /// All stored documents in one text, without their earlier versions.
    QByteArray Stored() const
    {
        QByteArray text;
        QDirIterator files(options.configDirectory, {QStringLiteral("*.json")}, QDir::Files,
                           QDirIterator::Subdirectories);
        while (files.hasNext()) {
            QFile file(files.next());
            if (!file.fileName().contains(QLatin1String("versions")) && file.open(QIODevice::ReadOnly))
                text += file.readAll();
        }
        return text;
    }
    bool HasStored(const char* name) const { return Stored().contains(QByteArray(name).toHex()); }

    QTemporaryDir directory;
    QTemporaryDir runtime;
    HostOptions options;
};

inline QAbstractButton* ConnectButton(const ConnectDialog& dialog)
{
    return dialog.Window()->findChild<QAbstractButton*>(QStringLiteral("m_pConnectButton"));
}

/// Adds an entry of device type 4.
inline void AddEntry(const ConnectDialog& dialog, const QString& name, bool ticked = false)
{
    const QString document = QStringLiteral("<ConnectionEntries><Connection><ConnectionName>%1</ConnectionName>"
                                            "<DeviceType>4</DeviceType><Selected>%2</Selected></Connection>"
                                            "</ConnectionEntries>")
                                 .arg(name, ticked ? QStringLiteral("true") : QStringLiteral("false"));
    QVERIFY(dialog.Append(document.toUtf8()));
}
