#pragma once

#include "process/parsedoptions.h"

#include <QLocale>
#include <QString>
#include <QStringList>

#include <optional>

/// The parsed command line. Paths are absolute.
struct HostOptions
{
    QString plugin;                  ///< the plug-in's library; empty: the one installed with the host
    QString configDirectory;         ///< the configuration store; empty: the user's default location
    QString dataDirectory;           ///< directory of the machine's XML files; empty: as stored, or the samples
    QString name;                    ///< the plug-in instance's name, never empty
    bool trace = false;              ///< write traces to standard error
    QString traceFile;               ///< append traces to this file; empty: none
    std::optional<QLocale> language; ///< none: the system's
    QString fileToImport;            ///< connection list that replaces all entries; empty: none
    QStringList filesToAdd;          ///< connection lists whose entries are appended
    QString fileToExport;            ///< where the whole list is written; `kStandardOutput` or a path; empty: none
    bool list = false;               ///< print the entries
    bool json = false;               ///< print JSON
    QStringList namesToConnect;      ///< names of the entries to connect, without duplicates
    bool connectSelected = false;    ///< connect the ticked entries
    bool wait = false;               ///< wait until every connected entry is "Free" again
    QString screenshotBefore;        ///< screenshot file, taken before connecting; empty: none
    QString screenshotDuring;        ///< screenshot file, taken after connecting; empty: none
    QString screenshot;              ///< screenshot file, taken at the end; empty: none
    bool backups = false;            ///< print the versions of the stored list
    int versionToRestore = 0;        ///< version to restore, 1 is the newest; 0: none
    bool diagnose = false;           ///< print a report for a support desk

    /// As `fileToExport`: write to standard output.
    static inline const QString kStandardOutput = QStringLiteral("-");

    /// Returns whether entries are to be connected.
    bool Connects() const;
    /// Returns whether the work is done without a user at the dialog; the host then ends by itself.
    bool IsHeadless() const;
    /// Returns whether the work is headless and neither changes nor starts anything.
    bool IsReadOnly() const;
    /// Returns whether only the configuration is needed, without a plug-in instance or window.
    bool IsSupportCommand() const;
};

using ParsedCommandLine = ParsedOptions<HostOptions>;

/// Parses a command line; `arguments` begins with the program. Relative paths are relative to the current directory.
ParsedCommandLine ParseCommandLine(const QStringList& arguments);
