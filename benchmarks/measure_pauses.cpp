// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

// The longest time for which the host does not handle events, while it saves and connects. With the real plug-in.

#include "benchmarks/lists.h"
#include "benchmarks/runner.h"
#include "host/desktop/dialogsession.h"
#include "host/plugin/connectdialog.h"
#include "host/plugin/pluginsession.h"
#include "platform/cfgcenter.h"

#include <QAbstractButton>
#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <array>
#include <chrono>
#include <ctime>

using namespace std::chrono_literals;

namespace {

constexpr std::array kLengths{1'000, 10'000, 100'000};
constexpr int kApplications = 100;

void WriteFile(const QString& path, const QString& content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content.toUtf8()) < 0)
        qFatal("a file of the data directory cannot be written");
}

/// Installs applications for one device type.
void Install(const QString& dataDirectory)
{
    QString applications;
    for (int i = 1; i <= kApplications; ++i)
        applications += QStringLiteral("<App%1><Startup><exe>%2</exe></Startup></App%1>")
                            .arg(QString::number(i),
                                 QCoreApplication::applicationDirPath() + QStringLiteral("/vexel_waitingchild"));
    WriteFile(dataDirectory + QStringLiteral("/CfgVEXEL.xml"),
              QStringLiteral("<CfgVEXEL><Machine>%1</Machine></CfgVEXEL>").arg(applications));
    WriteFile(dataDirectory + QStringLiteral("/TypeApplicationMappings.xml"),
              QStringLiteral("<TypeApplicationMappings><Mapping><DeviceType>%1</DeviceType>"
                             "<Application>App1</Application></Mapping></TypeApplicationMappings>")
                  .arg(Connection::KiteEcho));
}

/// Handles events until nothing has been going on for some time.
void Settle(std::chrono::milliseconds time)
{
    QEventLoop loop;
    QTimer::singleShot(time, &loop, &QEventLoop::quit);
    loop.exec();
}

/// A running host whose list has `ticked` ticked entries, which can be connected.
struct Desktop
{
    const ConnectDialog& dialog;
    DialogSession& session;
    int& saves; // in another thread, that have ended

    QTimer* AutoSaveTimer() const { return session.findChild<QTimer*>(QStringLiteral("m_autoSaveTimer")); }
    void Edit() const
    {
        dialog.Entries()->setData(dialog.Entries()->index(dialog.Count() - 1, static_cast<int>(EntryColumn::Name)),
                                  QStringLiteral("edited"), Qt::EditRole);
    }
    void SetTicked(int row, bool ticked) const
    {
        dialog.Entries()->setData(dialog.Entries()->index(row, static_cast<int>(EntryColumn::Tick)), ticked,
                                  Qt::EditRole);
    }
};

using Step = std::function<void(const Desktop&)>;

struct Pause
{
    double seconds = 0;
    double work =
        0; ///< processor time of the GUI thread, in seconds: what is left on a machine with nothing else to do
};

double ThreadTime()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

/// Returns the longest times between two events while `operation` and what follows from it are done.
Pause LongestPause(const Desktop& desktop, std::chrono::milliseconds time, const Step& operation)
{
    QElapsedTimer clock;
    double work = ThreadTime();
    Pause longest;
    const auto note = [&] {
        longest.seconds = std::max(longest.seconds, static_cast<double>(clock.nsecsElapsed()) / 1e9);
        longest.work = std::max(longest.work, ThreadTime() - work);
        clock.start();
        work = ThreadTime();
    };
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer, &QTimer::timeout, note);
    clock.start();
    timer.start(1);
    Settle(50ms);
    longest = {};
    QTimer::singleShot(0, qApp, [&] { operation(desktop); });
    Settle(time);
    return longest;
}

/// Measures `operation` with a list of `entries` entries of which `ticked` are ticked.
void Measure(benchmark::State& state, int entries, int ticked, const Step& prepare, const Step& operation, int inUse,
             int saves)
{
    const QTemporaryDir directory;
    SessionOptions options;
    options.plugin = QStringLiteral(PLUGIN);
    options.configDirectory = directory.filePath(QStringLiteral("store"));
    options.dataDirectory = directory.path();
    Install(directory.path());
    std::vector<Connection> list = Lists::Entries(entries);
    for (int i = 0; i < entries; ++i) {
        list[static_cast<std::size_t>(i)].Selected = i < ticked;
        if (i < ticked)
            list[static_cast<std::size_t>(i)].DeviceType = Connection::KiteEcho;
    }
    Lists::Store(list, options.configDirectory);

    Notices notices;
    PluginSession session(options, PluginSession::Mode::Desktop, notices,
                          [&](FailureKind, const QString& error) { state.SkipWithError(qPrintable(error)); });
    if (!session.LoadPlugin())
        return;
    // What is saved and given back takes as long again for a longer list.
    const auto time = 2s + entries * 50us;
    session.Run([&](const ConnectDialog& dialog) {
        int ended = 0;
        DialogSession desktop(
            dialog, notices, [&session] { return session.Save(); },
            [&](auto done) {
                session.SaveAsync([&ended, done = std::move(done)](const QString& error) {
                    ++ended;
                    done(error);
                });
            });
        desktop.Start();
        const Desktop all{dialog, desktop, ended};
        all.AutoSaveTimer()->setInterval(0);
        Settle(300ms);
        prepare(all);
        Settle(std::chrono::duration_cast<std::chrono::milliseconds>(time));
        for (auto iteration : state) {
            ended = 0;
            const Pause pause =
                LongestPause(all, std::chrono::duration_cast<std::chrono::milliseconds>(time), operation);
            state.SetIterationTime(pause.seconds);
            state.counters["of which work, ms"] = pause.work * 1e3;
        }
        int used = 0;
        for (int row = 0; row < dialog.Count(); ++row)
            used += dialog.Status(row) != ConnectDialog::kFree ? 1 : 0;
        if (used != inUse)
            state.SkipWithError("not every entry is in use");
        if (ended < saves)
            state.SkipWithError("nothing has been saved");
        return ExitCode::Done;
    });
}

const Step kNothing = [](const Desktop&) {
};
const Step kConnect = [](const Desktop& desktop) {
    desktop.dialog.Window()->findChild<QAbstractButton*>(QStringLiteral("m_pConnectButton"))->click();
};

} // namespace

int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    // Once each: it takes seconds until all is done.
    const auto enter = [](const std::string& what, int ticked, const Step& prepare, const Step& operation, int inUse,
                          int saves) {
        Runner::Enter(
            "longest pause: " + what, "product",
            [=](benchmark::State& state, int entries) {
                Measure(state, entries, ticked, prepare, operation, inUse, saves);
            },
            kLengths, 1);
    };
    enter(
        "save after an edit", 0, kNothing, [](const Desktop& desktop) { desktop.Edit(); }, 0, 1);
    enter(
        "save of an unchanged list", 0, [](const Desktop& desktop) { desktop.session.Save(); },
        [](const Desktop& desktop) { desktop.session.Save(); }, 0, 0);
    enter(
        "hide after an edit", 1, kConnect,
        [](const Desktop& desktop) {
            desktop.AutoSaveTimer()->setInterval(1h);
            desktop.session.ShowDialog();
            desktop.Edit();
            desktop.dialog.Window()->hide();
        },
        1, 0);
    enter("connect 1 entry", 1, kNothing, kConnect, 1, 0);
    enter(
        "connect 1 entry by command", 0, kNothing, [](const Desktop& desktop) { desktop.dialog.ConnectEntries({0}); },
        1, 0);
    enter(
        "connect 1 entry again, same records", 2,
        [](const Desktop& desktop) {
            desktop.SetTicked(1, false);
            kConnect(desktop);
            desktop.SetTicked(1, true);
        },
        kConnect, 2, 0);
    enter("connect 100 entries", kApplications, kNothing, kConnect, kApplications, 0);
    return Runner::Run(argc, argv);
}
