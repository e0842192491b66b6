// Prints what operations on the whole list cost, in milliseconds, with the dialog shown and both views visible.

#include "platform/cfgcenter.h"
#include "userinterface/vexelconnectdlg/appcounter.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"
#include "userinterface/vexelconnectdlg/vexelconnectdlggui.h"

#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QItemSelectionModel>
#include <QLineEdit>
#include <QLoggingCategory>
#include <QTemporaryDir>
#include <QTreeView>

#include <cmath>
#include <cstdio>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace {

/// A list as it grows in years of use: names in no order, all types, some ticks.
void Fill(ConnectionsModel& model, int rows)
{
    for (int i = 0; i < rows; ++i) {
        Connection entry;
        entry.ConnectionName = QStringLiteral("Station %1 %2").arg((i * 7919) % 100003).arg(i);
        entry.DeviceType = i % Connection::DeviceTypeCount;
        entry.ConnectionType = i % Connection::ConnectionTypeCount;
        entry.DeviceAddress = QStringLiteral("192.0.2.%1").arg(i % 256);
        entry.DriverAddress = QStringLiteral("198.51.100.%1:27061").arg(i % 256);
        entry.LinkSpeed = i % Connection::LinkSpeedCount;
        entry.TimeoutSeconds = i % 3 * 30;
        entry.Selected = i % 10 == 0;
        model.AddConnection(entry);
    }
}

double Measure(const std::function<void()>& operation)
{
    QElapsedTimer timer;
    timer.start();
    operation();
    // What the operator waits for includes the layout and the painting that it brings.
    QCoreApplication::processEvents();
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

/// Model, launcher and dialog on a configuration in memory, with both views on the screen.
class Session
{
public:
    Session()
        : model(nullptr, QStringLiteral("ConnectionsModel"))
        , appCounter(&model, QStringLiteral("VexelConnectDlg"))
        , dialog(nullptr, &model, &appCounter)
    {
        dialog.resize(1200, 800);
        dialog.show();
        dialog.m_pDetailsAction->trigger();
        QCoreApplication::processEvents();
    }

    ConnectionsModel model;
    AppCounter appCounter;
    VexelConnectDlgGUI dialog;
};

void Select(Session& session, int every)
{
    QItemSelectionModel* const selection = session.dialog.m_pBasicView->selectionModel();
    QItemSelection rows;
    const QAbstractItemModel* const shown = session.dialog.m_pBasicView->model();
    for (int row = 0; row < shown->rowCount(); row += every) {
        rows.select(shown->index(row, 0), shown->index(row, ConnectionsModel::ColumnCount - 1));
    }
    selection->select(rows, QItemSelectionModel::ClearAndSelect);
    QCoreApplication::processEvents();
}

using Figures = std::map<std::string, double>;

Figures MeasureAll(int rows, const QString& directory)
{
    Figures figures;
    CfgCenter::Open(directory + QStringLiteral("/store"));
    const QString file = directory + QStringLiteral("/list.xml");
    {
        Session session;
        session.model.removeRows(0, session.model.rowCount());
        Fill(session.model, rows);
        QCoreApplication::processEvents();
        figures["export to a file"] = Measure([&] { session.dialog.Export(file); });
        figures["store the set and save"] = Measure([&] {
            session.model.SetConfiguration();
            CfgCenter::SaveDocument();
        });
        figures["write and save the legacy records"] = Measure([&] { session.dialog.WriteLegacyConnectData(); });
        figures["reset every status"] = Measure([&] { session.model.ResetConnectionStatus(); });
        session.dialog.m_pBasicView->sortByColumn(ConnectionsModel::ColumnStatus, Qt::AscendingOrder);
        figures["reset every status, sorted by status"] = Measure([&] { session.model.ResetConnectionStatus(); });
        session.dialog.m_pBasicView->sortByColumn(ConnectionsModel::ColumnName, Qt::AscendingOrder);
        figures["tick one entry"] = Measure([&] { session.model.setData(session.model.index(rows / 2, 0), true); });
        figures["filter, one key"] =
            Measure([&] { session.dialog.m_pFilterPatternLineEdit->setText(QStringLiteral("7")); });
        session.dialog.m_pFilterPatternLineEdit->clear();
        figures["import in place of all"] = Measure([&] { session.dialog.Import(file); });
        Select(session, 10);
        figures["delete a tenth, scattered"] = Measure([&] { session.dialog.SlotDelete(); });
        session.dialog.Import(file);
        Select(session, 2);
        figures["delete half, scattered"] = Measure([&] { session.dialog.SlotDelete(); });
        session.dialog.Import(file);
        session.dialog.m_pBasicView->selectAll();
        figures["delete all"] = Measure([&] { session.dialog.SlotDelete(); });
        session.dialog.Import(file);
    }
    CfgCenter::SaveDocument();
    CfgCenter::Close();
    CfgCenter::Open(directory + QStringLiteral("/store"));
    figures["load the stored set"] =
        Measure([] { const ConnectionsModel model(nullptr, QStringLiteral("ConnectionsModel")); });
    CfgCenter::Close();
    return figures;
}

} // namespace

int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("*.warning=false"));
    std::vector<int> sizes;
    for (int i = 1; i < argc; ++i) {
        sizes.push_back(std::max(1, std::atoi(argv[i])));
    }
    if (sizes.empty()) {
        sizes = {1000, 5000, 10000, 30000};
    }

    std::vector<Figures> columns;
    for (const int rows : sizes) {
        const QTemporaryDir directory;
        columns.push_back(MeasureAll(rows, directory.path()));
    }

    std::printf("%-38s", "milliseconds, with this many entries");
    for (const int rows : sizes) {
        std::printf("%10d", rows);
    }
    std::printf("%10s\n", "exponent");
    for (const auto& [name, first] : columns.front()) {
        std::printf("%-38s", name.c_str());
        for (const Figures& figures : columns) {
            std::printf("%10.2f", figures.at(name));
        }
        if (columns.size() > 1) {
            const double growth = std::log(columns.back().at(name) / first);
            std::printf("%10.2f", growth / std::log(static_cast<double>(sizes.back()) / sizes.front()));
        }
        std::printf("\n");
    }
    return 0;
}
