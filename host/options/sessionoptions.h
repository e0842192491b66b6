// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QLocale>
#include <QString>

#include <optional>

/// What a session of the plug-in is given on the command line and by settings files. Paths are absolute.
struct SessionOptions
{
    static inline const QString kDefaultName = QStringLiteral("VexelConnectDlg");

    QString plugin;                  ///< the plug-in's library; empty: the one installed with the host
    QString configDirectory;         ///< the configuration store; empty: the user's default location
    QString dataDirectory;           ///< directory of the machine's XML files, to be stored; empty: as stored
    QString defaultDataDirectory;    ///< the one used, not stored, where none is stored; empty: the samples
    QString name = kDefaultName;     ///< the plug-in instance's name, never empty
    bool trace = false;              ///< write traces to standard error
    QString traceFile;               ///< append traces to this file; empty: none
    std::optional<QLocale> language; ///< none: the system's
};

/// Returns why there is no default for the configuration directory; empty if there is one or `options` name another.
QString ConfigDirectoryError(const SessionOptions& options);

/// The user's default configuration directory, which is the same for every program; empty if there is none.
QString DefaultConfigDirectory();

/// Sets the plug-in and the configuration directory where `options` name none; the latter stays empty if there is no
/// default. Needs the application object.
void SetDefaults(SessionOptions& options);

/// Returns whether `name` is a locale or "C".
bool IsLanguage(const QString& name);

/// Return why a value on the command line is invalid; empty if it is valid. No data directory is valid, and if
/// `isForced` one without the machine file.
QString LanguageError(const QString& language);
QString DataDirectoryError(const QString& directory, bool isForced);
