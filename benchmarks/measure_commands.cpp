// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

// Commands of vexelctl, from the start of the process to its end: with a host that shows the list, and without one.
// Compared with a program that only creates its QCoreApplication.

#include "benchmarks/lists.h"
#include "benchmarks/runner.h"
#include "platform/instancelock.h"

#include <QApplication>
#include <QProcess>
#include <QTemporaryDir>

#include <array>
#include <memory>
#include <string>

namespace {

constexpr std::array kLengths{100, 1'000, 10'000};

QString Program(const char* name)
{
    return QCoreApplication::applicationDirPath() + QLatin1String(name);
}

/// The host on a configuration, until the end of this object.
class Host
{
public:
    explicit Host(const QString& store)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("QT_LOGGING_RULES"), QStringLiteral("*.warning=false"));
        m_process.setProcessEnvironment(environment);
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(Program("/../bin/vexelhost"), {QStringLiteral("--config"), store});
        m_process.waitForStarted();
        while (InstanceLock::Query(store).address.isEmpty() && !m_process.waitForFinished(10))
            ;
    }
    ~Host()
    {
        m_process.terminate();
        m_process.waitForFinished();
    }

private:
    QProcess m_process;
};

void Time(benchmark::State& state, const QString& program, const QStringList& arguments)
{
    for (auto iteration : state) {
        QProcess process;
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.setStandardOutputFile(QProcess::nullDevice());
        state.SetIterationTime(Runner::Seconds([&] {
            process.start(program, arguments);
            process.waitForFinished(60'000);
        }));
        if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
            return state.SkipWithError("the command failed");
    }
}

void TimeCommand(benchmark::State& state, int entries, const QString& command, bool hasHost)
{
    const QTemporaryDir directory;
    const QString store = directory.filePath(QStringLiteral("store"));
    // For the socket.
    qputenv("XDG_RUNTIME_DIR", directory.path().toUtf8());
    Lists::Store(Lists::Entries(entries), store);
    std::unique_ptr<Host> host;
    if (hasHost)
        host = std::make_unique<Host>(store);
    Time(state, Program("/../bin/vexelctl"), {command, QStringLiteral("--config"), store});
}

void Enter(const std::string& what, const char* command, bool hasHost)
{
    Runner::Enter(
        what, "product",
        [command, hasHost](benchmark::State& state, int entries) {
            TimeCommand(state, entries, QLatin1String(command), hasHost);
        },
        kLengths);
    Runner::Enter(
        what, "a program that does nothing",
        [](benchmark::State& state, int /*entries*/) { Time(state, Program("/vexel_barecommand"), {}); }, kLengths);
}

} // namespace

int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    Enter("list with a host", "list", true);
    Enter("list without a host", "list", false);
    Enter("status with a host", "status", true);
    return Runner::Run(argc, argv);
}
