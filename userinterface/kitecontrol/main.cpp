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

} // namespace

int main(int argc, char* argv[])
{
    RestrictLibrarySearch();
    StandardStreams::Prepare();
    QStringList arguments = CommandLine(argc, argv);
    const QString program = QFileInfo(arguments.takeFirst()).baseName();

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
