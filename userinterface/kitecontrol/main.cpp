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

/// The host shows nothing of what its applications print, so whoever wants to see the report names a folder. Whole or
/// not at all: someone may be waiting for the file to appear.
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
    // A QApplication takes Qt's own options out of the command line, and an entry may well be called "-style". This
    // plain one leaves them, and on Windows knows the characters that `argv` cannot hold.
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

    Print(Stream::Error, environment.complaints);
    Print(Stream::Output, report.Lines());
    if (!environment.reportDirectory.isEmpty() && !SaveReport(environment.reportDirectory, program, report.Lines()))
        Print(Stream::Error, {QStringLiteral("no report could be written to ") + environment.reportDirectory});

    KiteControlWindow window(report);
    window.show();
    if (environment.lifetime)
        QTimer::singleShot(*environment.lifetime, &application, &QCoreApplication::quit);
    return QApplication::exec();
}
