// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

// From process start to the first painted dialog: the host with its plug-in, compared with a program that shows an
// empty dialog and one that shows the same form with as many rows. The Qt plug-in firstpaint.cpp ends each program
// after the first paint. The counters are the resident memory at that time and its peak.

#include "benchmarks/lists.h"
#include "benchmarks/runner.h"

#include <QApplication>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <array>

namespace {

constexpr std::array kLengths{0, 1'000, 10'000, 100'000};

/// The value of `key` in KiB from the status file at `path`; 0 if it cannot be read.
double StatusKiB(const QString& path, const QByteArray& key)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : file.readAll().split('\n'))
        if (line.startsWith(key))
            return line.mid(key.size()).replace("kB", "").trimmed().toDouble();
    return 0;
}

void Time(benchmark::State& state, const QString& program, const QStringList& arguments, const QString& lockFile)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_GENERIC_PLUGINS"), QStringLiteral("firstpaint"));
    environment.insert(QStringLiteral("QT_PLUGIN_PATH"), QCoreApplication::applicationDirPath());
    const QTemporaryDir directory;
    const QString memory = directory.filePath(QStringLiteral("memory"));
    environment.insert(QStringLiteral("VEXEL_FIRSTPAINT_MEMORY"), memory);
    for (auto iteration : state) {
        QProcess process;
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        // The program exits without cleaning up, so its lock file remains.
        QFile::remove(lockFile);
        QFile::remove(memory);
        state.SetIterationTime(Runner::Seconds([&] {
            process.start(program, arguments);
            process.waitForFinished(60'000);
        }));
        if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
            return state.SkipWithError("the program did not come to its first painted dialog");
    }
    state.counters["resident, KiB"] = StatusKiB(memory, "VmRSS:");
    state.counters["peak, KiB"] = StatusKiB(memory, "VmHWM:");
}

void StartHost(benchmark::State& state, int entries)
{
    const QTemporaryDir directory;
    const QString store = directory.filePath(QStringLiteral("store"));
    Lists::Store(Lists::Entries(entries), store);
    const QString bin = QCoreApplication::applicationDirPath() + QStringLiteral("/../bin");
    Time(state, bin + QStringLiteral("/vexelhost"), {QStringLiteral("--config"), store},
         store + QStringLiteral("/vexelhost.lock"));
}

void StartForm(benchmark::State& state, int entries)
{
    Time(state, QCoreApplication::applicationDirPath() + QStringLiteral("/vexel_bareform"), {QString::number(entries)},
         QString());
}

void StartBare(benchmark::State& state, int /*entries*/)
{
    Time(state, QCoreApplication::applicationDirPath() + QStringLiteral("/vexel_baredialog"), {}, QString());
}

} // namespace

int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    Runner::Enter("start to the first painted dialog", "product", StartHost, kLengths);
    Runner::Enter("start to the first painted dialog", "a program with the same form and rows", StartForm, kLengths);
    Runner::Enter("start to the first painted dialog", "a program with an empty dialog", StartBare, kLengths);
    return Runner::Run(argc, argv);
}
