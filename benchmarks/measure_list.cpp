// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

// Operations on whole lists, in the dialog with both views visible, compared with a window that has the same views but
// only Qt's own parts. All times include the layout and painting that follow.

#include "benchmarks/bareparts.h"
#include "benchmarks/lists.h"
#include "benchmarks/runner.h"
#include "platform/cfgcenter.h"
#include "userinterface/vexelconnectdlg/appcounter.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"
#include "userinterface/vexelconnectdlg/filter/connectionfilter.h"
#include "userinterface/vexelconnectdlg/formats/connectionlist.h"
#include "userinterface/vexelconnectdlg/vexelconnectdlggui.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QFile>
#include <QItemSelectionModel>
#include <QLineEdit>
#include <QSortFilterProxyModel>
#include <QTemporaryDir>
#include <QTimer>
#include <QTreeView>
#include <QXmlStreamReader>

#include <algorithm>
#include <array>
#include <memory>

namespace {

constexpr int kTicks = 100; // no list is shorter
constexpr std::array kLongest{ConnectionList::kMaximumEntries};

using Step = std::function<void()>;

/// Model, launcher and dialog with a configuration in memory and both views visible.
class Session
{
public:
    explicit Session(int entries)
        : model((CfgCenter::Close(), nullptr), QStringLiteral("ConnectionsModel"))
        , appCounter(&model, QStringLiteral("VexelConnectDlg"))
        , dialog(nullptr, &model, &appCounter)
    {
        dialog.resize(1200, 800);
        dialog.show();
        dialog.m_pDetailsAction->trigger();
        Lists::Fill(model, Lists::Entries(entries));
        Show();
    }

    void Show() const { Settle(dialog.m_pBasicView, dialog.m_pDetailsView); }

    ConnectionsModel model;
    AppCounter appCounter;
    VexelConnectDlgGUI dialog;
};

/// The minimal window with the same number of rows.
class BareSession
{
public:
    explicit BareSession(int entries)
        : rows(BareTable::Rows(Lists::Entries(entries)))
        , window(&table)
    {
        Restore();
    }

    void Restore()
    {
        table.Clear();
        table.Append(rows);
        Show();
    }

    void Show() const { Settle(window.BasicView(), window.DetailsView()); }

    const std::vector<BareTable::Row> rows;
    BareTable table;
    BareWindow window;
};

/// The minimal window on the product's model. Sorting and filtering are compared with this, because both query the
/// model.
class BareView
{
public:
    explicit BareView(int entries)
        : model((CfgCenter::Close(), nullptr), QStringLiteral("ConnectionsModel"))
        , window((Lists::Fill(model, Lists::Entries(entries)), &model))
    {
        Show();
    }

    void Show() const { Settle(window.BasicView(), window.DetailsView()); }

    ConnectionsModel model;
    BareWindow window;
};

/// Times `step` repeatedly. `before` runs before each repetition and is not timed.
template <typename AnySession>
void Repeat(benchmark::State& state, const AnySession& session, const Step& before, const Step& step)
{
    for (auto iteration : state) {
        before();
        session.Show();
        state.SetIterationTime(Runner::Seconds([&] {
            step();
            session.Show();
        }));
    }
}

void Import(benchmark::State& state, int entries)
{
    const QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("list.xml"));
    Session session(entries);
    session.dialog.Export(path);
    Repeat(
        state, session, [&] { session.model.removeRows(0, session.model.rowCount()); },
        [&] { session.dialog.Import(path); });
    if (session.model.rowCount() != entries)
        state.SkipWithError("not all entries were imported");
}

/// The longest time for which the window does not answer while it imports the longest list, in place of such a list,
/// and how long the import takes.
void ImportLongest(benchmark::State& state, int entries)
{
    const QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("list.xml"));
    Session session(entries);
    session.dialog.Export(path);
    QElapsedTimer sinceEvent;
    qint64 longest = 0;
    QTimer events;
    QObject::connect(&events, &QTimer::timeout, &events, [&] { longest = std::max(longest, sinceEvent.restart()); });
    double seconds = 0;
    for (auto iteration : state) {
        longest = 0;
        sinceEvent.start();
        events.start(1);
        seconds = Runner::Seconds([&] {
            session.dialog.Import(path);
            session.Show();
            QCoreApplication::processEvents();
        });
        events.stop();
        state.SetIterationTime(static_cast<double>(longest) / 1e3);
    }
    state.counters["whole import, ms"] = seconds * 1e3;
    if (session.model.rowCount() != entries)
        state.SkipWithError("not all entries were imported");
}

void ImportTokens(benchmark::State& state, int entries)
{
    const QByteArray document = Lists::Document(Lists::Entries(entries));
    BareSession session(entries);
    Repeat(
        state, session, [&] { session.table.Clear(); },
        [&] {
            QXmlStreamReader reader(document);
            while (!reader.atEnd())
                benchmark::DoNotOptimize(reader.readNext());
            session.table.Append(session.rows);
        });
}

void ImportBare(benchmark::State& state, int entries)
{
    BareSession session(entries);
    Repeat(
        state, session, [&] { session.table.Clear(); }, [&] { session.table.Append(session.rows); });
}

/// One key stroke in the filter: the pattern before and after it.
struct Pattern
{
    const char* name;
    SearchMode mode;
    QString before;
    QString after;
};

const std::array kPatterns{
    Pattern{"filter, plain text", SearchMode::PlainText, QString(), QStringLiteral("7")},
    Pattern{"filter, plain text narrowed", SearchMode::PlainText, QStringLiteral("7"), QStringLiteral("70")},
    Pattern{"filter, plain text cleared", SearchMode::PlainText, QStringLiteral("7"), QString()},
    Pattern{"filter, plain text without a match", SearchMode::PlainText, QString(), QStringLiteral("zz")},
    Pattern{"filter, wildcard", SearchMode::Wildcard, QString(), QStringLiteral("s*7")},
    Pattern{"filter, regular expression", SearchMode::RegularExpression, QString(), QStringLiteral("7[0-4]")}};

void Filter(benchmark::State& state, int entries, const Pattern& pattern)
{
    Session session(entries);
    session.dialog.m_pFilterAction->trigger();
    session.dialog.m_pRegExpComboBox->setCurrentIndex(static_cast<int>(pattern.mode));
    Repeat(
        state, session, [&] { session.dialog.m_pFilterPatternLineEdit->setText(pattern.before); },
        [&] { session.dialog.m_pFilterPatternLineEdit->setText(pattern.after); });
}

void FilterBare(benchmark::State& state, int entries, const Pattern& pattern)
{
    BareView session(entries);
    session.window.ShowFilter();
    QSortFilterProxyModel* const proxy = session.window.Proxy();
    const auto show = [&](const QString& text) {
        switch (pattern.mode) {
        case SearchMode::Wildcard:
            return proxy->setFilterWildcard(text);
        case SearchMode::RegularExpression:
            return proxy->setFilterRegularExpression(text);
        default:
            return proxy->setFilterFixedString(text);
        }
    };
    Repeat(
        state, session, [&] { show(pattern.before); }, [&] { show(pattern.after); });
}

/// Sorts by `column`, starting from a list sorted by the next column.
void Sort(benchmark::State& state, int entries, int column)
{
    const Session session(entries);
    QTreeView* const view = session.dialog.m_pBasicView;
    Repeat(
        state, session, [&] { view->sortByColumn((column + 1) % ConnectionsModel::kColumnCount, Qt::AscendingOrder); },
        [&] { view->sortByColumn(column, Qt::AscendingOrder); });
}

void SortBare(benchmark::State& state, int entries, int column)
{
    const BareView session(entries);
    QTreeView* const view = session.window.BasicView();
    Repeat(
        state, session, [&] { view->sortByColumn((column + 1) % ConnectionsModel::kColumnCount, Qt::AscendingOrder); },
        [&] { view->sortByColumn(column, Qt::AscendingOrder); });
}

void Select(const Session& session, int every)
{
    QItemSelectionModel* const selection = session.dialog.m_pBasicView->selectionModel();
    const QAbstractItemModel* const shown = session.dialog.m_pBasicView->model();
    QItemSelection rows;
    for (int row = 0; row < shown->rowCount(); row += every)
        rows.select(shown->index(row, 0), shown->index(row, ConnectionsModel::kColumnCount - 1));
    selection->select(rows, QItemSelectionModel::ClearAndSelect);
}

void Delete(benchmark::State& state, int entries, int every)
{
    const std::vector<Connection> list = Lists::Entries(entries);
    Session session(0);
    Repeat(
        state, session,
        [&] {
            session.model.removeRows(0, session.model.rowCount());
            Lists::Fill(session.model, list);
            session.Show();
            if (every == 1)
                session.dialog.m_pBasicView->selectAll();
            else
                Select(session, every);
        },
        [&] { session.dialog.SlotDelete(); });
}

void DeleteAllBare(benchmark::State& state, int entries)
{
    BareSession session(entries);
    Repeat(
        state, session, [&] { session.Restore(); }, [&] { session.table.Clear(); });
}

void RemoveAllBare(benchmark::State& state, int entries)
{
    BareSession session(entries);
    Repeat(
        state, session, [&] { session.Restore(); }, [&] { session.table.RemoveAll(); });
}

void DeleteTenthBare(benchmark::State& state, int entries)
{
    BareSession session(entries);
    Repeat(
        state, session, [&] { session.Restore(); }, [&] { session.table.ClearTenth(); });
}

void Tick(benchmark::State& state, int entries)
{
    Session session(entries);
    const QModelIndex cell = session.model.index(entries / 2, ConnectionsModel::ColumnSelected);
    bool ticked = false;
    Repeat(
        state, session, [&] { ticked = !ticked; }, [&] { session.model.setData(cell, ticked); });
}

void TickBare(benchmark::State& state, int entries)
{
    BareSession session(entries);
    Repeat(
        state, session, [] {}, [&] { session.table.Touch(entries / 2, ConnectionsModel::ColumnSelected); });
}

/// Without layout and painting, which take most of the time and do not depend on the list's length.
void TickAlone(benchmark::State& state, int entries)
{
    Session session(entries);
    bool ticked = false;
    for (auto iteration : state) {
        ticked = !ticked;
        session.Show();
        state.SetIterationTime(Runner::Seconds([&] {
            for (int row = 0; row < kTicks; ++row)
                session.model.setData(session.model.index(row, ConnectionsModel::ColumnSelected), ticked);
        }));
    }
}

/// The model alone, with no views connected.
void TickUnseen(benchmark::State& state, int entries)
{
    CfgCenter::Close();
    ConnectionsModel model(nullptr, QStringLiteral("ConnectionsModel"));
    Lists::Fill(model, Lists::Entries(entries));
    bool ticked = false;
    for (auto iteration : state) {
        ticked = !ticked;
        state.SetIterationTime(Runner::Seconds([&] {
            for (int row = 0; row < kTicks; ++row)
                model.setData(model.index(row, ConnectionsModel::ColumnSelected), ticked);
        }));
    }
}

void TickAloneBare(benchmark::State& state, int entries)
{
    BareSession session(entries);
    for (auto iteration : state) {
        session.Show();
        state.SetIterationTime(Runner::Seconds([&] {
            for (int row = 0; row < kTicks; ++row)
                session.table.Touch(row, ConnectionsModel::ColumnSelected);
        }));
    }
}

void Reset(benchmark::State& state, int entries)
{
    Session session(entries);
    Repeat(
        state, session, [] {}, [&] { session.model.ResetConnectionStatus(); });
}

void ResetBare(benchmark::State& state, int entries)
{
    BareSession session(entries);
    Repeat(
        state, session, [] {},
        [&] {
            for (int row = 0; row < entries; ++row)
                session.table.Touch(row, ConnectionsModel::ColumnStatus);
        });
}

/// Queries the data that a view needs to paint 1,000 cells, spread over the list.
void Ask(const QAbstractItemModel* model, int entries)
{
    constexpr int cells = 1'000;
    for (int i = 0; i < cells; ++i) {
        const QModelIndex cell =
            model->index(static_cast<int>(i * 7919LL % entries), i % ConnectionsModel::kColumnCount);
        for (const Qt::ItemDataRole role : {Qt::DisplayRole, Qt::DecorationRole, Qt::FontRole, Qt::TextAlignmentRole,
                                            Qt::ForegroundRole, Qt::BackgroundRole, Qt::CheckStateRole})
            benchmark::DoNotOptimize(model->data(cell, role));
    }
}

void Data(benchmark::State& state, int entries)
{
    const Session session(entries);
    for (auto iteration : state)
        state.SetIterationTime(Runner::Seconds([&] { Ask(session.dialog.m_pBasicView->model(), entries); }));
}

void DataBare(benchmark::State& state, int entries)
{
    const BareSession session(entries);
    for (auto iteration : state)
        state.SetIterationTime(Runner::Seconds([&] { Ask(session.window.Proxy(), entries); }));
}

void EnterAll()
{
    Runner::Enter("import", "product", Import);
    Runner::Enter("import of the longest list: longest pause", "product", ImportLongest, kLongest);
    Runner::Enter("import", "minimal table, one insertion", ImportBare);
    Runner::Enter("import", "tokens, then minimal table, one insertion", ImportTokens);
    for (const Pattern& pattern : kPatterns) {
        Runner::Enter(
            pattern.name, "product",
            [&pattern](benchmark::State& state, int entries) { Filter(state, entries, pattern); });
        Runner::Enter(pattern.name, "plain proxy, same model",
                      [&pattern](benchmark::State& state, int entries) { FilterBare(state, entries, pattern); });
    }
    for (int column = 0; column < ConnectionsModel::kColumnCount; ++column) {
        const std::string what = "sort by column " + std::to_string(column);
        Runner::Enter(
            what, "product", [column](benchmark::State& state, int entries) { Sort(state, entries, column); });
        Runner::Enter(what, "plain proxy, same model",
                      [column](benchmark::State& state, int entries) { SortBare(state, entries, column); });
    }
    Runner::Enter("delete a tenth, scattered", "product",
                  [](benchmark::State& state, int entries) { Delete(state, entries, 10); });
    Runner::Enter("delete a tenth, scattered", "minimal table, reset", DeleteTenthBare);
    Runner::Enter("delete all", "product", [](benchmark::State& state, int entries) { Delete(state, entries, 1); });
    Runner::Enter("delete all", "minimal table, reset", DeleteAllBare);
    Runner::Enter("delete all", "minimal table, one removal", RemoveAllBare);
    Runner::Enter("tick one entry", "product", Tick);
    Runner::Enter("tick one entry", "minimal table, one change", TickBare);
    Runner::Enter("tick 100 entries, without painting", "product", TickAlone);
    Runner::Enter("tick 100 entries, without painting", "minimal table, same number of changes", TickAloneBare);
    Runner::Enter("tick 100 entries, no view", "product", TickUnseen);
    Runner::Enter("reset every status", "product", Reset);
    Runner::Enter("reset every status", "minimal table, same number of changes", ResetBare);
    Runner::Enter("data of 1,000 cells", "product", Data);
    Runner::Enter("data of 1,000 cells", "minimal table, plain proxy", DataBare);
}

} // namespace

int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    EnterAll();
    return Runner::Run(argc, argv);
}
