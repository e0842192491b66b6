#pragma once

#include "process/parsedoptions.h"

#include <QLocale>
#include <QString>
#include <QStringList>

#include <optional>

/// What the host was asked to do: its command line as a value. Paths are absolute.
struct HostOptions
{
    QString plugin;                  ///< the plug-in's library; empty: the one installed with the host
    QString configDirectory;         ///< the configuration store; empty: the platform's usual place
    QString dataDirectory;           ///< with the machine's XML files; empty: as stored, or the samples
    QString name;                    ///< the plug-in instance's name, never empty
    bool trace = false;              ///< traces to standard error
    QString traceFile;               ///< traces appended to this file; empty: none
    std::optional<QLocale> language; ///< none: the system's
    QString fileToImport;            ///< connection list that takes the place of all entries; empty: none
    QStringList filesToAdd;          ///< connection lists whose entries are appended
    QString fileToExport;            ///< where the whole list is written as a document; `kStandardOutput` or a path
    bool list = false;               ///< print the entries
    bool json = false;               ///< ... as JSON
    QStringList namesToConnect;      ///< entries to connect, each name once
    bool connectSelected = false;    ///< connect the entries that are ticked
    bool wait = false;               ///< until every started entry is "Free" again
    QString screenshotBefore;        ///< picture of the dialog before anything is connected; empty: none
    QString screenshotDuring;        ///< ... once everything is connected
    QString screenshot;              ///< ... at the end
    bool backups = false;            ///< print the versions of the stored list
    int versionToRestore = 0;        ///< bring this version of it back, 1 being the newest; 0: none
    bool diagnose = false;           ///< print what a support desk asks for

    /// As the file to export to: the document is printed.
    static inline const QString kStandardOutput = QStringLiteral("-");

    /// Whether entries are to be connected.
    bool Connects() const;
    /// Whether the work is done without a person at the dialog; the host then ends by itself.
    bool IsHeadless() const;
    /// Whether it is without a person and shows what is stored, and nothing more: it neither changes nor starts
    /// anything.
    bool ShowsOnly() const;
    /// Whether it is about the configuration alone, without the plug-in's instance and without any window.
    bool IsForSupport() const;
};

using ParsedCommandLine = ParsedOptions<HostOptions>;

/// Reads a command line; `arguments` begins with the program. Relative paths are taken from the current directory.
ParsedCommandLine ParseCommandLine(const QStringList& arguments);
