#include "userinterface/kitecontrol/kitecontrolwindow.h"
#include "userinterface/kitecontrol/launchenvironment.h"
#include "userinterface/kitecontrol/launchreport.h"
#include "userinterface/kitecontrol/legacyrecords.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <QTextStream>
#include <QTimer>

#include <array>
#include <cstdio>

namespace {

void Print(std::FILE* file, const QStringList& lines)
{
    QTextStream stream(file);
    for (const QString& line : lines) {
        stream << line << '\n';
    }
    stream.flush();
}

/// The host shows nothing of what its applications print, so whoever wants to see the report names a folder. Whole or
/// not at all: someone may be waiting for the file to appear.
bool SaveReport(const QString& directory, const QString& program, const QStringList& lines)
{
    const QString name = QStringLiteral("%1-%2.txt").arg(program).arg(QCoreApplication::applicationPid());
    QSaveFile file(QDir(directory).filePath(name));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Text)) {
        return false;
    }
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
    QStringList arguments = CommandLine(argc, argv);
    const QString program = QFileInfo(arguments.takeFirst()).baseName();

    int guiArgc = 1;
    std::array<char*, 2> guiArgv{argv[0], nullptr};
    const QApplication application(guiArgc, guiArgv.data());

    const LaunchEnvironment environment = LaunchEnvironment::From(QProcessEnvironment::systemEnvironment());
    const LaunchReport report =
        LaunchReport::Make(program, arguments, LegacyRecords::FromDirectory(environment.configuration));

    Print(stderr, environment.complaints);
    Print(stdout, report.Lines());
    if (!environment.reportDirectory.isEmpty() && !SaveReport(environment.reportDirectory, program, report.Lines())) {
        Print(stderr, {QStringLiteral("no report could be written to ") + environment.reportDirectory});
    }

    KiteControlWindow window(report);
    window.show();
    if (environment.lifetime) {
        QTimer::singleShot(*environment.lifetime, &application, &QCoreApplication::quit);
    }
    return QApplication::exec();
}
