// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "process/librarysearch.h"
#include "process/standardstreams.h"
#include "userinterface/kitecontrol/kitecontrolwindow.h"
#include "userinterface/kitecontrol/launchenvironment.h"
#include "userinterface/kitecontrol/launchreport.h"
#include "userinterface/kitecontrol/legacyrecords.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <QTimer>

#include <array>

namespace {

using StandardStreams::Stream;

void Print(Stream stream, const QStringList& lines)
{
    for (const QString& line : lines)
        StandardStreams::Write(stream, line + QLatin1Char('\n'));
}

/// Writes the report to a file, because the host discards the output of its applications. Uses QSaveFile, so that a
/// program waiting for the file never sees a part of it.
bool SaveReport(const QString& directory, const QString& program, const QStringList& lines)
{
    const QString name = QStringLiteral("%1-%2.txt").arg(program).arg(QCoreApplication::applicationPid());
    QSaveFile file(QDir(directory).filePath(name));
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write(lines.join(QLatin1Char('\n')).toUtf8() + '\n');
    return file.commit();
}

QStringList CommandLine(int argc, char** argv)
{
    // QApplication removes Qt's options from the command line, but an entry may be called "-style". QCoreApplication
    // keeps them; on Windows it also has the characters that `argv` cannot represent.
    const QCoreApplication application(argc, argv);
    return QCoreApplication::arguments();
}

QString HelpText(const QString& program)
{
    return QStringLiteral(R"(Usage: %1 [ARGUMENT...]
       %1 --help | --version

Sample application of the connect dialog, which starts it. Prints its command
line and the record of the configuration that matches it, shows both in a
window, and ends when the window is closed.

Environment variables:
  VEXEL_CONFIG_DIR        directory of the configuration; set by vexelhost
  KITECONTROL_SECONDS     end after this time instead, for example 0.5
  KITECONTROL_REPORT_DIR  write what is printed to a file in this directory, too
)")
        .arg(program);
}

/// Returns what the command line asks to print instead of starting; empty for nothing. An entry may be called
/// "--help", but its name is never the only argument.
QString RequestedText(const QString& program, const QStringList& arguments)
{
    if (arguments == QStringList(QStringLiteral("--help")))
        return HelpText(program);
    if (arguments == QStringList(QStringLiteral("--version")))
        return program + QStringLiteral(" " VEXEL_VERSION "\n");
    return {};
}

} // namespace

int main(int argc, char* argv[])
{
    RestrictLibrarySearch();
    StandardStreams::Prepare();
    QStringList arguments = CommandLine(argc, argv);
    const QString program = QFileInfo(arguments.takeFirst()).baseName();
    if (const QString text = RequestedText(program, arguments); !text.isEmpty())
        return StandardStreams::Write(Stream::Output, text) ? 0 : 1;

    int guiArgc = 1;
    std::array<char*, 2> guiArgv{argv[0], nullptr};
    const QApplication application(guiArgc, guiArgv.data());

    const LaunchEnvironment environment = LaunchEnvironment::From(QProcessEnvironment::systemEnvironment());
    const LaunchReport report =
        LaunchReport::Make(program, arguments, LegacyRecords::FromDirectory(environment.configuration));

    Print(Stream::Error, environment.warnings);
    Print(Stream::Output, report.Lines());
    if (!environment.reportDirectory.isEmpty() && !SaveReport(environment.reportDirectory, program, report.Lines()))
        Print(Stream::Error, {QStringLiteral("could not write a report to ") + environment.reportDirectory});

    KiteControlWindow window(report);
    window.show();
    if (environment.lifetime)
        QTimer::singleShot(*environment.lifetime, &application, &QCoreApplication::quit);
    return QApplication::exec();
}
