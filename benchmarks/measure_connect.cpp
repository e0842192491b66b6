// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

// Benchmark of "Connect": starts the applications of entries, compared with QProcess starting the same program.

#include "benchmarks/runner.h"
#include "platform/cfgcenter.h"
#include "platform/icfg.h"
#include "userinterface/vexelconnectdlg/appcounter.h"
#include "userinterface/vexelconnectdlg/commandline.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"
#include "userinterface/vexelconnectdlg/vexelconnectdlggui.h"

#include <QApplication>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <array>
#include <memory>
#include <vector>

namespace {

constexpr std::array kCounts{1, 10, 100};

QString ChildProgram()
{
    return QCoreApplication::applicationDirPath() + QStringLiteral("/vexel_waitingchild");
}

void WriteFile(const QString& path, const QString& content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content.toUtf8()) < 0)
        qFatal("a file of the data directory cannot be written");
}

/// A store and a data directory with `count` applications for one device type.
class Machine
{
public:
    explicit Machine(int count)
    {
        CfgCenter::Open(m_directory.filePath(QStringLiteral("store")));
        CfgCenter::CreateCfg(QStringLiteral("Administration"), View::Application, QString())
            ->SetString(QStringLiteral("VexelDataDir"), m_directory.path(), 0);
        QString applications;
        for (int i = 1; i <= count; ++i)
            applications +=
                QStringLiteral("<App%1><Startup><exe>%2</exe></Startup></App%1>").arg(i).arg(ChildProgram());
        WriteFile(m_directory.filePath(QStringLiteral("CfgVEXEL.xml")),
                  QStringLiteral("<CfgVEXEL><Machine>%1</Machine></CfgVEXEL>").arg(applications));
        WriteFile(m_directory.filePath(QStringLiteral("TypeApplicationMappings.xml")),
                  QStringLiteral("<TypeApplicationMappings><Mapping><DeviceType>%1</DeviceType>"
                                 "<Application>App1</Application></Mapping></TypeApplicationMappings>")
                      .arg(Connection::KiteEcho));
    }
    ~Machine() { CfgCenter::Close(); }
    Q_DISABLE_COPY_MOVE(Machine)

private:
    QTemporaryDir m_directory;
};

Connection TickedEntry(int number)
{
    Connection entry;
    entry.ConnectionName = QStringLiteral("Station %1").arg(number);
    entry.DriverAddress = QStringLiteral("198.51.100.%1:27061").arg(number % 256);
    entry.Selected = true;
    return entry;
}

/// Times `connect` with `count` ticked entries and as many free applications.
template <typename Connect>
void Measure(benchmark::State& state, int count, const Connect& connect)
{
    const Machine machine(count);
    for (auto iteration : state) {
        ConnectionsModel model(nullptr, QStringLiteral("ConnectionsModel"));
        model.removeRows(0, model.rowCount());
        for (int i = 0; i < count; ++i)
            model.AddConnection(TickedEntry(i));
        auto appCounter = std::make_unique<AppCounter>(&model, QStringLiteral("VexelConnectDlg"));
        VexelConnectDlgGUI dialog(nullptr, &model, appCounter.get());
        dialog.show();
        QCoreApplication::processEvents();
        state.SetIterationTime(Runner::Seconds([&] { connect(model, *appCounter, dialog); }));
        if (model.CountInUse() != count)
            state.SkipWithError("not every entry is in use");
        appCounter.reset();
    }
}

void ConnectButton(benchmark::State& state, int count)
{
    Measure(
        state, count, [](ConnectionsModel&, AppCounter&, VexelConnectDlgGUI& dialog) { dialog.SlotConnect(); });
}

void ConnectEach(benchmark::State& state, int count)
{
    Measure(
        state, count,
        [](ConnectionsModel& model, AppCounter& appCounter, VexelConnectDlgGUI&) {
            for (int row = 0; row < model.rowCount(); ++row)
                appCounter.ConnectTo(model.GetConnection(row));
        });
}

void StartBare(benchmark::State& state, int count)
{
    // With the arguments that the product gives.
    const Connection entry = TickedEntry(0);
    const QStringList arguments =
        ApplicationCommandLine(QStringLiteral("App1"), entry, Connection::ApplicationDeviceType(entry.DeviceType))
            .arguments;
    for (auto iteration : state) {
        std::vector<std::unique_ptr<QProcess>> processes;
        state.SetIterationTime(Runner::Seconds([&] {
            for (int i = 0; i < count; ++i) {
                auto process = std::make_unique<QProcess>();
                process->start(ChildProgram(), arguments);
                if (!process->waitForStarted())
                    state.SkipWithError("the program cannot be started");
                processes.push_back(std::move(process));
            }
        }));
        for (const auto& process : processes) {
            process->kill();
            process->waitForFinished();
        }
    }
}

} // namespace

int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    Runner::Enter("connect, including records", "product", ConnectButton, kCounts);
    Runner::Enter("connect, including records", "QProcess, the same program", StartBare, kCounts);
    Runner::Enter("start the applications", "product", ConnectEach, kCounts);
    Runner::Enter("start the applications", "QProcess, the same program", StartBare, kCounts);
    return Runner::Run(argc, argv);
}
