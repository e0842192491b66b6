// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

// Starts and ends hundreds of applications while simulated user input operates the dialog:
//
//     vexel_soak_applications SECONDS [RANDOM-START]
//
// Works in rounds. Each round sends random input without a pause while applications start, end, crash and are killed.
// Then it ends all applications and checks for leaked processes, handles and memory.

#include "platform/cfgcenter.h"
#include "platform/icfg.h"
#include "userinterface/vexelconnectdlg/appcounter.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"
#include "userinterface/vexelconnectdlg/vexelconnectdlggui.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QItemSelectionModel>
#include <QLineEdit>
#include <QLoggingCategory>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTimer>
#include <QTreeView>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <functional>
#include <vector>

#include <malloc.h>

namespace {

constexpr int kApplications = 500;
constexpr int kRoundSeconds = 20;

QString ReadProcessFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromLatin1(file.readAll()) : QString();
}

/// The child processes, including dead ones that were not waited for.
QList<pid_t> Children()
{
    QList<pid_t> children;
    const QStringList threads = QDir(QStringLiteral("/proc/self/task")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& thread : threads) {
        const QString text = ReadProcessFile(QStringLiteral("/proc/self/task/%1/children").arg(thread));
        for (const QString& number : text.split(QLatin1Char(' '), Qt::SkipEmptyParts))
            children.append(number.toInt());
    }
    return children;
}

/// Amounts that must not grow, measured while no application runs.
struct Remains
{
    int inUse = 0;
    qsizetype instances = 0;
    qsizetype children = 0;
    qsizetype handles = 0;
    double heapMiB = 0;
    double residentMiB = 0;
};

class Soak
{
public:
    explicit Soak(quint32 randomStart)
        : m_random(randomStart)
    {
        CfgCenter::Open(Path(QStringLiteral("store")));
        CfgCenter::CreateCfg(QStringLiteral("Administration"), View::Application, QString())
            ->SetString(QStringLiteral("VexelDataDir"), m_directory.path(), 0);
        WriteDataDirectory();
        m_model = std::make_unique<ConnectionsModel>(nullptr, QStringLiteral("ConnectionsModel"));
        Fill();
        m_appCounter = std::make_unique<AppCounter>(m_model.get(), QStringLiteral("VexelConnectDlg"));
        m_dialog = std::make_unique<VexelConnectDlgGUI>(nullptr, m_model.get(), m_appCounter.get());
        m_dialog->show();
        m_dialog->m_pDetailsAction->trigger();
        m_dialog->m_pFilterAction->trigger();
        m_dialog->Export(Path(QStringLiteral("list.xml")));
        // A message box reports that no application is free, or that nothing is selected.
        QObject::connect(&m_boxCloser, &QTimer::timeout, [] {
            if (auto* const box = qobject_cast<QDialog*>(QApplication::activeModalWidget()))
                box->accept();
        });
        m_boxCloser.start(20);
    }

    ~Soak()
    {
        m_dialog.reset();
        m_model.reset();
        m_appCounter.reset();
        CfgCenter::Close();
    }
    Q_DISABLE_COPY_MOVE(Soak)

    void Work(int seconds)
    {
        QElapsedTimer timer;
        timer.start();
        while (timer.elapsed() < seconds * 1000LL) {
            Act();
            m_mostInUse = std::max(m_mostInUse, m_model->CountInUse());
            QCoreApplication::processEvents();
        }
    }

    /// Ends all applications with SIGTERM or SIGKILL and waits until none is in use. Returns false on a time-out.
    bool Rest()
    {
        QElapsedTimer timer;
        timer.start();
        while (m_model->CountInUse() != 0 || !m_appCounter->Instances().isEmpty() || !Children().isEmpty()) {
            if (timer.elapsed() > 60'000)
                return false;
            for (const pid_t child : Children())
                kill(child, Below(2) == 0 ? SIGKILL : SIGTERM);
            QCoreApplication::processEvents(QEventLoop::AllEvents, 100);
        }
        return true;
    }

    Remains Look() const
    {
        const struct mallinfo2 heap = mallinfo2();
        const QString pages = ReadProcessFile(QStringLiteral("/proc/self/statm")).section(QLatin1Char(' '), 1, 1);
        return {m_model->CountInUse(),
                m_appCounter->Instances().size(),
                Children().size(),
                static_cast<qsizetype>(QDir(QStringLiteral("/proc/self/fd")).count()),
                static_cast<double>(heap.uordblks + heap.hblkhd) / 1024 / 1024,
                pages.toDouble() * 4096 / 1024 / 1024};
    }

    qint64 Started() const { return m_started; }
    qint64 Actions() const { return m_actions; }
    /// The largest number of entries in use at the same time.
    int MostInUse() const { return m_mostInUse; }
    qint64 Killed() const { return m_killed; }

private:
    QString Path(const QString& name) const { return m_directory.filePath(name); }
    int Below(int limit) { return static_cast<int>(m_random.bounded(limit)); }
    int AnyRow() { return Below(m_model->rowCount()); }
    QModelIndex Cell(int row, int column) const { return m_model->index(row, column); }

    void WriteDataDirectory() const
    {
        const QString program = QCoreApplication::applicationDirPath() + QStringLiteral("/vexel_soakchild");
        QString applications;
        for (int i = 1; i <= kApplications; ++i)
            applications += QStringLiteral("<App%1><Startup><exe>%2</exe></Startup></App%1>").arg(i).arg(program);
        Write(QStringLiteral("CfgVEXEL.xml"),
              QStringLiteral("<CfgVEXEL><Machine>%1</Machine></CfgVEXEL>").arg(applications));
        Write(QStringLiteral("TypeApplicationMappings.xml"),
              QStringLiteral("<TypeApplicationMappings><Mapping><DeviceType>%1</DeviceType>"
                             "<Application>App1</Application></Mapping></TypeApplicationMappings>")
                  .arg(Connection::KiteEcho));
    }

    void Write(const QString& name, const QString& content) const
    {
        QFile file(Path(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(content.toUtf8()) < 0)
            qFatal("a file of the data directory cannot be written");
    }

    void Fill()
    {
        while (m_model->rowCount() < kApplications) {
            Connection entry;
            entry.ConnectionName = QStringLiteral("Station %1").arg(m_model->rowCount());
            entry.DriverAddress = QStringLiteral("198.51.100.%1:27061").arg(Below(256));
            m_model->AddConnection(entry);
        }
    }

    void Connect(int count)
    {
        for (int i = 0; i < count; ++i) {
            const Connection entry = m_model->GetConnection(AnyRow());
            if (entry.ConnectionStatus == Connection::Free && m_appCounter->ConnectTo(entry))
                ++m_started;
        }
    }

    void ConnectTicked()
    {
        for (int i = 0; i < 10; ++i)
            m_model->setData(Cell(AnyRow(), ConnectionsModel::ColumnSelected), true);
        const int before = m_model->CountInUse();
        m_dialog->SlotConnect();
        m_started += std::max(0, m_model->CountInUse() - before);
        m_dialog->show();
    }

    void KillOne()
    {
        const QList<pid_t> children = Children();
        if (children.isEmpty())
            return;
        kill(children.at(Below(static_cast<int>(children.size()))), Below(2) == 0 ? SIGKILL : SIGTERM);
        ++m_killed;
    }

    void Edit()
    {
        const std::array columns{ConnectionsModel::ColumnName, ConnectionsModel::ColumnDeviceAddress,
                                 ConnectionsModel::ColumnDriverAddress, ConnectionsModel::ColumnSubsystem};
        const int row = AnyRow();
        // Changing an entry in use detaches it from its application, which frees only an unchanged entry.
        if (m_model->GetConnection(row).ConnectionStatus == Connection::Free) {
            m_model->setData(Cell(row, columns[static_cast<std::size_t>(Below(4))]),
                             QStringLiteral("Text %1").arg(Below(100'000)));
        }
    }

    void Filter()
    {
        static const QStringList patterns{QString(), QStringLiteral("7"), QStringLiteral("*1?"),
                                          QStringLiteral("(a+)+b"), QStringLiteral("[")};
        m_dialog->m_pRegExpComboBox->setCurrentIndex(Below(3));
        m_dialog->m_pFilterPatternLineEdit->setText(patterns.at(Below(static_cast<int>(patterns.size()))));
    }

    void Delete()
    {
        QTreeView* const view = m_dialog->m_pBasicView;
        if (view->model()->rowCount() == 0)
            return;
        view->selectionModel()->select(view->model()->index(Below(view->model()->rowCount()), 0),
                                       QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
        m_dialog->SlotDelete();
        Fill();
    }

    void Act()
    {
        const std::vector<std::pair<int, std::function<void()>>> actions{
            {300,
             [this] {
                 Connect(10);
             }},
            {20,
             [this] {
                 ConnectTicked();
             }},
            {300,
             [this] {
                 KillOne();
             }},
            {100,
             [this] {
                 Edit();
             }},
            {100,
             [this] {
                 m_model->setData(Cell(AnyRow(), ConnectionsModel::ColumnSelected), Below(2) == 0);
             }},
            {50,
             [this] {
                 Filter();
             }},
            {20,
             [this] {
                 m_dialog->m_pBasicView->sortByColumn(Below(10), static_cast<Qt::SortOrder>(Below(2)));
             }},
            {20,
             [this] {
                 Delete();
             }},
            {5,
             [this] {
                 m_dialog->Export(Path(QStringLiteral("list.xml")));
             }},
            {5,
             [this] {
                 m_dialog->Import(Path(QStringLiteral("list.xml")));
             }},
            {5,
             [this] {
                 m_model->SetConfiguration();
                 CfgCenter::SaveDocument();
             }},
        };
        int ticket = Below(925);
        for (const auto& [share, action] : actions) {
            if ((ticket -= share) < 0) {
                ++m_actions;
                return action();
            }
        }
    }

    QTemporaryDir m_directory;
    QRandomGenerator m_random;
    QTimer m_boxCloser;
    std::unique_ptr<ConnectionsModel> m_model;
    std::unique_ptr<AppCounter> m_appCounter;
    std::unique_ptr<VexelConnectDlgGUI> m_dialog;
    qint64 m_started = 0;
    qint64 m_actions = 0;
    qint64 m_killed = 0;
    int m_mostInUse = 0;
};

} // namespace

int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("*.warning=false"));
    const int seconds = argc > 1 ? std::atoi(argv[1]) : 0;
    if (seconds < 1) {
        std::fputs("usage: vexel_soak_applications SECONDS [RANDOM-START]\n", stderr);
        return 2;
    }
    const auto randomStart =
        argc > 2 ? static_cast<quint32>(std::strtoul(argv[2], nullptr, 10)) : QRandomGenerator::global()->generate();
    std::printf("random start %u\n%8s%10s%10s%8s%11s%10s%9s%10s%14s\n", randomStart, "seconds", "actions", "started",
                "in use", "instances", "children", "handles", "heap MiB", "resident MiB");

    Soak soak(randomStart);
    std::vector<Remains> rounds;
    bool rested = true;
    QElapsedTimer timer;
    timer.start();
    // At least two rounds: the first one allocates everything that is allocated once.
    while (rested && (rounds.size() < 2 || timer.elapsed() < seconds * 1000LL)) {
        soak.Work(kRoundSeconds);
        rested = soak.Rest();
        rounds.push_back(soak.Look());
        const Remains& now = rounds.back();
        std::printf("%8lld%10lld%10lld%8d%11lld%10lld%9lld%10.1f%14.1f\n",
                    static_cast<long long>(timer.elapsed() / 1000), static_cast<long long>(soak.Actions()),
                    static_cast<long long>(soak.Started()), now.inUse, static_cast<long long>(now.instances),
                    static_cast<long long>(now.children), static_cast<long long>(now.handles), now.heapMiB,
                    now.residentMiB);
        std::fflush(stdout);
    }

    std::printf("at most %d in use at once; %lld signals to applications\n", soak.MostInUse(),
                static_cast<long long>(soak.Killed()));

    const Remains& first = rounds.front();
    const Remains& last = rounds.back();
    bool good = true;
    const auto demand = [&good](bool condition, const char* fault) {
        if (!condition)
            std::printf("FAULT: %s\n", fault);
        good = good && condition;
    };
    demand(rested,
           "not every entry is \"Free\" a minute after the last application was killed, or one was not waited for");
    // Without a list of child processes from the system, the check for remaining ones would always pass.
    demand(soak.Killed() > 0, "no application was there to be killed");
    demand(last.handles <= first.handles, "more files are open than after the first round");
    demand(last.heapMiB <= first.heapMiB * 1.05 + 1, "the heap has grown since the first round");
    return good ? 0 : 1;
}
