// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "process/background.h"
#include "tests/support/dialogfixture.h"
#include "tests/support/testmain.h"
#include "userinterface/vexelconnectdlg/filter/connectionfilter.h"
#include "userinterface/vexelconnectdlg/import/importprogress.h"

#include <QProgressBar>
#include <QProgressDialog>
#include <QSemaphore>
#include <QSignalSpy>
#include <QThread>
#include <QUrl>

#include <memory>

namespace {

/// Lets nothing begin in the background during its lifetime, so that a long import does not get beyond reading.
class HeldBackground
{
public:
    HeldBackground()
    {
        for (int i = 0; i < m_threads; ++i)
            StartInBackground([released = m_released] { released->acquire(); });
    }
    ~HeldBackground() { m_released->release(m_threads); }
    Q_DISABLE_COPY_MOVE(HeldBackground)

private:
    const int m_threads = QThread::idealThreadCount();
    const std::shared_ptr<QSemaphore> m_released = std::make_shared<QSemaphore>();
};

/// The box of an import that is running, shown or not yet.
QProgressDialog* Box()
{
    return qobject_cast<QProgressDialog*>(QApplication::activeModalWidget());
}

bool IsShown(const QProgressDialog* box)
{
    return box && box->isVisible() && !box->testAttribute(Qt::WA_DontShowOnScreen);
}

/// Counts the events of one type that it filters.
class EventCounter : public QObject
{
public:
    explicit EventCounter(QEvent::Type type)
        : m_type(type)
    {
    }
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        m_count += event->type() == m_type ? 1 : 0;
        return QObject::eventFilter(watched, event);
    }
    int Count() const { return m_count; }

private:
    const QEvent::Type m_type;
    int m_count = 0;
};

/// Calls `action` once, as soon as `isTime`.
void When(QObject* context, const std::function<bool()>& isTime, const std::function<void()>& action)
{
    auto* const timer = new QTimer(context);
    QObject::connect(timer, &QTimer::timeout, timer, [=] {
        if (!isTime())
            return;
        timer->stop();
        timer->deleteLater();
        action();
    });
    timer->start(1);
}

std::vector<Connection> ManyEntries(int count)
{
    std::vector<Connection> entries(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        Connection& entry = entries[static_cast<std::size_t>(i)];
        entry.ConnectionName = QStringLiteral("Station %1").arg(i * 7919 % 3001);
        entry.DeviceType = i % Connection::kDeviceTypeCount;
        entry.ConnectionType = i % Connection::kConnectionTypeCount;
        entry.DeviceAddress = QStringLiteral("192.0.2.%1").arg(i % 256);
        entry.LinkSpeed = i % Connection::kLinkSpeedCount;
        entry.TimeoutSeconds = i % 3 * 30;
        entry.ConnectionStatus = i % 2;
        entry.Selected = i % 10 == 0;
    }
    return entries;
}

QByteArray Document(const std::vector<Connection>& entries)
{
    std::vector<const Connection*> pointers;
    for (const Connection& entry : entries)
        pointers.push_back(&entry);
    return ConnectionList::Write(pointers);
}

/// A document of these three entries that is so long that it is read in the background.
QByteArray LongDocument()
{
    return Document({Entry("one"), Entry("three"), Entry("two")}) + "<!--" + QByteArray(2 * 1024 * 1024, 'x') + "-->";
}

} // namespace

/// An import that takes long: the box, and what may happen meanwhile.
class TestDialogImport : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void boxAppearsLater();
    void boxAppearsWhileEntriesAreReplaced();
    void boxShowsHowFarItIs();
    void shortImportHandlesNoEvents();
    void cancelKeepsOldList_data();
    void cancelKeepsOldList();
    void destroyedWhileReading();
    void savedWhileReading();
    void importedWhileReading();
    void quitWhileReading_data();
    void quitWhileReading();
    void sortedByAnotherColumnWhileReading();
    void dropWhileReading();
    void interruptedWhileReplacing_data();
    void interruptedWhileReplacing();
    void cancelUpdatesTheConnectButton();
    void errorInLongListKeepsOldList();
    void announcesWhatTheModelWould();
    void entriesAreSortedAsUsual_data();
    void entriesAreSortedAsUsual();

private:
    QString Write(const QByteArray& content)
    {
        const QString path = m_directory.filePath(QStringLiteral("list.xml"));
        if (!Files::Write(path, content))
            qFatal("cannot write %s", qPrintable(path));
        return path;
    }

    // Without the fixture, whose model testers take long for so many rows.
    QTemporaryDir m_directory;
    std::unique_ptr<ConnectionsModel> m_model;
    std::unique_ptr<AppCounter> m_counter;
    std::unique_ptr<VexelConnectDlgGUI> m_dialog;
    QByteArray m_before;
};

void TestDialogImport::init()
{
    m_model = std::make_unique<ConnectionsModel>(nullptr, QString());
    m_counter = std::make_unique<AppCounter>(m_model.get(), QString());
    m_dialog = std::make_unique<VexelConnectDlgGUI>(nullptr, m_model.get(), m_counter.get());
    m_dialog->show();
    Connection used = Entry("used", Connection::Heron, true);
    used.ConnectionStatus = Connection::InUse;
    m_model->AddConnection(Entry("b"));
    m_model->AddConnection(used);
    m_model->AddConnection(Entry(QStringLiteral("a\u0001")));
    m_before = m_model->ToByteArray();
}

void TestDialogImport::cleanup()
{
    m_dialog.reset();
    m_model.reset();
    m_counter.reset();
}

void TestDialogImport::boxAppearsLater()
{
    const QString path = Write(LongDocument());
    auto held = std::make_unique<HeldBackground>();
    bool wasHidden = false;
    EventCounter shown(QEvent::Show);
    When(
        m_dialog.get(), [] { return Box() != nullptr; },
        [&] {
            wasHidden = !IsShown(Box());
            Box()->installEventFilter(&shown);
        });
    QElapsedTimer time;
    time.start();
    When(
        m_dialog.get(), [] { return IsShown(Box()); },
        [&] {
            QVERIFY(time.hasExpired(1000));
            QCOMPARE(Box()->windowTitle(), QStringLiteral("Import Connection Settings"));
            QCOMPARE(Box()->labelText(), QStringLiteral("Importing connection entries..."));
            QCOMPARE(Box()->windowModality(), Qt::WindowModal);
            QCOMPARE(Box()->parentWidget(), m_dialog.get());
            QCOMPARE(Box()->findChild<QProgressBar*>()->maximum(), 0); // not known yet
            // Some turns of the event loop later.
            QTimer::singleShot(50, m_dialog.get(), [&held] { held.reset(); });
        });
    QVERIFY(m_dialog->Import(path));
    QVERIFY(wasHidden);
    QCOMPARE(shown.Count(), 1);
    QVERIFY(!held);
    QVERIFY(!Box());
    QVERIFY(!m_dialog->findChild<QProgressDialog*>());
    QCOMPARE(m_model->rowCount(), 3);
}

void TestDialogImport::boxAppearsWhileEntriesAreReplaced()
{
    ImportProgress progress(m_dialog.get(), QString(), QString());
    QVERIFY(Box() && !IsShown(Box()));
    QTRY_VERIFY(progress.HandleEvents() && IsShown(Box()));
    QCOMPARE(Box()->findChild<QProgressBar*>()->maximum(), 0); // not known yet
}

void TestDialogImport::boxShowsHowFarItIs()
{
    ImportProgress progress(m_dialog.get(), QString(), QString());
    int done = 0;
    QVERIFY(progress.WaitFor([&done] { return done == 3; }, [&] { progress.Show(++done, 10); }));
    const auto* const bar = Box()->findChild<QProgressBar*>();
    QCOMPARE(bar->value(), 3);
    QCOMPARE(bar->maximum(), 10);
    progress.Show(11, 10);
    QCOMPARE(bar->value(), 10);
    progress.Show(0, 0);
    QCOMPARE(bar->maximum(), 0);
}

void TestDialogImport::shortImportHandlesNoEvents()
{
    const QString path = Write(Document({Entry("one")}));
    bool isHandled = false;
    QTimer::singleShot(0, m_dialog.get(), [&] { isHandled = true; });
    QVERIFY(m_dialog->Import(path));
    QVERIFY(!isHandled);
    QVERIFY(!m_dialog->findChild<QProgressDialog*>());
}

void TestDialogImport::cancelKeepsOldList_data()
{
    QTest::addColumn<std::function<void()>>("cancel");
    QTest::newRow("Escape") << std::function<void()>([] { QTest::keyClick(Box(), Qt::Key_Escape); });
    QTest::newRow("button") << std::function<void()>([] { Box()->findChild<QPushButton*>()->click(); });
    QTest::newRow("close") << std::function<void()>([] { Box()->close(); });
}

void TestDialogImport::cancelKeepsOldList()
{
    QFETCH(std::function<void()>, cancel);
    const QString path = Write(LongDocument());
    MessageBoxes boxes;
    const QSignalSpy removed(m_model.get(), &QAbstractItemModel::rowsRemoved);
    const QSignalSpy changed(m_model.get(), &QAbstractItemModel::dataChanged);
    {
        const HeldBackground held;
        When(
            m_dialog.get(), [] { return IsShown(Box()); }, cancel);
        QVERIFY(!m_dialog->Import(path));
    }
    QVERIFY(!Box());
    QCOMPARE(boxes.Count(), 0);
    // Nor is it touched by what is still read.
    m_dialog.reset();
    QCOMPARE(m_model->ToByteArray(), m_before);
    QCOMPARE(m_model->GetConnection(2).ConnectionName, QStringLiteral("a\u0001"));
    QCOMPARE(removed.size(), 0);
    QCOMPARE(changed.size(), 0);
}

void TestDialogImport::destroyedWhileReading()
{
    const QString path = Write(LongDocument());
    auto held = std::make_unique<HeldBackground>();
    When(
        m_dialog.get(), [] { return Box() != nullptr; },
        [&] {
            m_dialog.reset();
            held.reset();
        });
    QVERIFY(!m_dialog->Import(path));
    QVERIFY(!m_dialog);
    QCOMPARE(m_model->ToByteArray(), m_before);
}

void TestDialogImport::savedWhileReading()
{
    const QString path = Write(LongDocument());
    auto held = std::make_unique<HeldBackground>();
    QByteArray saved;
    When(
        m_dialog.get(), [] { return Box() != nullptr; },
        [&] {
            QCOMPARE(m_dialog->property("entriesBeforeImport").toByteArray(), QByteArray());
            m_dialog->RollBackImport();
            saved = m_model->ToByteArray();
            held.reset();
        });
    QVERIFY(m_dialog->Import(path));
    QCOMPARE(saved, m_before);
    QCOMPARE(m_model->rowCount(), 3);
    QCOMPARE(m_model->GetConnection(0).ConnectionName, QStringLiteral("one"));
}

void TestDialogImport::importedWhileReading()
{
    const QString path = Write(LongDocument());
    const QString other = m_directory.filePath(QStringLiteral("other.xml"));
    QVERIFY(Files::Write(other, Document({Entry("other")})));
    bool isImported = false;
    {
        const HeldBackground held;
        When(
            m_dialog.get(), [] { return Box() != nullptr; }, [&] { isImported = m_dialog->Import(other); });
        QVERIFY(!m_dialog->Import(path));
    }
    QVERIFY(isImported);
    QCOMPARE(m_model->rowCount(), 1);
    QCOMPARE(m_model->GetConnection(0).ConnectionName, QStringLiteral("other"));
}

void TestDialogImport::quitWhileReading_data()
{
    QTest::addColumn<std::function<void()>>("end");
    QTest::newRow("quit, which closes windows") << std::function<void()>([] { QCoreApplication::quit(); });
    QTest::newRow("exit") << std::function<void()>([] { QCoreApplication::exit(); });
}

void TestDialogImport::quitWhileReading()
{
    QFETCH(const std::function<void()>, end);
    const QString path = Write(LongDocument());
    std::optional<bool> isImported;
    const TraceRecorder traces;
    {
        const HeldBackground held;
        QTimer::singleShot(
            0, m_dialog.get(), [&] { isImported = m_dialog->Import(path); });
        When(
            m_dialog.get(), [] { return Box() != nullptr; }, end);
        QCoreApplication::exec();
    }
    QCOMPARE(isImported, std::optional(false));
    QCOMPARE(traces.Messages(), QStringList()); // cancelled, not failed
    QCOMPARE(m_model->ToByteArray(), m_before);
}

void TestDialogImport::sortedByAnotherColumnWhileReading()
{
    std::vector<Connection> entries{Entry("a"), Entry("b"), Entry("c")};
    for (std::size_t i = 0; i < entries.size(); ++i)
        entries[i].DeviceAddress = QString::number(3 - i);
    const QString path = Write(Document(entries) + "<!--" + QByteArray(2 * 1024 * 1024, 'x') + "-->");
    auto held = std::make_unique<HeldBackground>();
    When(
        m_dialog.get(), [] { return Box() != nullptr; },
        [&] {
            m_dialog->m_pBasicView->sortByColumn(ConnectionsModel::ColumnDeviceAddress, Qt::AscendingOrder);
            held.reset();
        });
    QVERIFY(m_dialog->Import(path));
    QStringList shown;
    for (int row = 0; row < 3; ++row)
        shown += m_dialog->m_pBasicView->model()->index(row, ConnectionsModel::ColumnName).data().toString();
    QCOMPARE(shown, (QStringList{QStringLiteral("c"), QStringLiteral("b"), QStringLiteral("a")}));
}

void TestDialogImport::dropWhileReading()
{
    const QString path = Write(LongDocument());
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(path)});
    auto held = std::make_unique<HeldBackground>();
    bool isRefused = false;
    When(
        m_dialog.get(), [] { return Box() != nullptr; },
        [&] {
            isRefused = !IsShown(Box()) && !DialogFixture::Drop(m_dialog.get(), data);
            held.reset();
        });
    QVERIFY(m_dialog->Import(path));
    QVERIFY(isRefused);
    QCOMPARE(m_model->rowCount(), 3);
}

void TestDialogImport::interruptedWhileReplacing_data()
{
    using Action = std::function<void(TestDialogImport*)>;
    QTest::addColumn<Action>("action");
    QTest::addColumn<bool>("isReplaced");
    QTest::newRow("cancelled") << Action([](TestDialogImport*) { Box()->close(); }) << false;
    QTest::newRow("saved") << Action([](TestDialogImport* test) {
        test->m_dialog->RollBackImport();
        QCOMPARE(test->m_model->ToByteArray(), test->m_before);
        QCOMPARE(test->m_dialog->property("entriesBeforeImport").toByteArray(), QByteArray());
    }) << false;
    QTest::newRow("destroyed") << Action([](TestDialogImport* test) {
        test->m_dialog.reset();
        QCOMPARE(test->m_model->ToByteArray(), test->m_before);
    }) << false;
    QTest::newRow("imported") << Action([](TestDialogImport* test) {
        const QString other = test->m_directory.filePath(QStringLiteral("other.xml"));
        QVERIFY(Files::Write(other, Document({Entry("other")})));
        QVERIFY(test->m_dialog->Import(other));
    }) << true;
}

void TestDialogImport::interruptedWhileReplacing()
{
    QFETCH(std::function<void(TestDialogImport*)>, action);
    QFETCH(bool, isReplaced);
    const QString path = Write(Document(ManyEntries(12'000)));
    const QAbstractItemModel* const shown = m_dialog->m_pBasicView->model();
    MessageBoxes boxes;
    bool isInterrupted = false;
    const auto connection =
        connect(m_model.get(), &QAbstractItemModel::rowsInserted, this, [&](const QModelIndex&, int first) {
            if (first != 6'000)
                return;
            QTimer::singleShot(0, this, [&] {
                isInterrupted = true;
                QCOMPARE(m_dialog->property("entriesBeforeImport").toByteArray(), m_before);
                QCOMPARE(shown->rowCount(), 0); // no half list
                action(this);
            });
        });
    QVERIFY(!m_dialog->Import(path));
    disconnect(connection);
    QVERIFY(isInterrupted);
    QCOMPARE(boxes.Count(), 0);
    if (isReplaced) {
        QCOMPARE(m_model->rowCount(), 1);
        QCOMPARE(m_model->GetConnection(0).ConnectionName, QStringLiteral("other"));
    } else {
        QCOMPARE(m_model->ToByteArray(), m_before);
        QCOMPARE(m_model->GetConnection(2).ConnectionName, QStringLiteral("a\u0001"));
        QCOMPARE(m_model->CountInUse(), 1);
    }
    if (m_dialog) {
        QCOMPARE(shown->rowCount(), m_model->rowCount());
        QVERIFY(!m_dialog->findChild<QProgressDialog*>());
    }
}

void TestDialogImport::cancelUpdatesTheConnectButton()
{
    m_model->AddConnection(Entry("free", Connection::Heron, true));
    std::vector<Connection> entries = ManyEntries(12'000);
    for (Connection& entry : entries)
        entry.Selected = false;
    const QString path = Write(Document(entries));
    bool wasEnabled = true;
    const auto connection =
        connect(m_model.get(), &QAbstractItemModel::dataChanged, this, [&](const QModelIndex& changed) {
            if (changed.row() == 100 && changed.column() == ConnectionsModel::ColumnStatus)
                QTimer::singleShot(0, this, [&] {
                    wasEnabled = m_dialog->m_pConnectButton->isEnabled();
                    Box()->close();
                });
        });
    QVERIFY(!m_dialog->Import(path));
    disconnect(connection);
    QVERIFY(!wasEnabled);
    QCOMPARE(m_model->rowCount(), 4);
    QVERIFY(m_dialog->m_pConnectButton->isEnabled());
}

void TestDialogImport::errorInLongListKeepsOldList()
{
    m_model->ResetConnectionStatus();
    m_before = m_model->ToByteArray();
    const QByteArray document = Document(ManyEntries(12'000));
    const QString path = Write(document.left(document.size() - 30));
    TraceRecorder traces;
    bool hasEntries = false;
    When(
        m_dialog.get(), [] { return qobject_cast<QMessageBox*>(QApplication::activeModalWidget()) != nullptr; },
        [&] {
            hasEntries = m_model->rowCount() == 12'000;
            QCOMPARE(m_dialog->m_pBasicView->model()->rowCount(), 12'000);
            QCOMPARE(m_dialog->property("entriesBeforeImport").toByteArray(), m_before);
            const auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            QVERIFY(box->text().startsWith(
                QStringLiteral("Could not import connection entries from file\n\"%1\"").arg(path)));
            box->button(QMessageBox::Ok)->click();
        });
    QVERIFY(!m_dialog->Import(path));
    QVERIFY(hasEntries);
    QCOMPARE(m_model->ToByteArray(), m_before);
    QCOMPARE(m_dialog->m_pBasicView->model()->rowCount(), 3);
    QCOMPARE(traces.Reports().size(), 1);
    QCOMPARE(traces.Reports().first().line, quint16{612});
}

void TestDialogImport::announcesWhatTheModelWould()
{
    const QByteArray document = Document(ManyEntries(6'000));
    const auto record = [this](QStringList& signalsOfModel) {
        const auto add = [&signalsOfModel](const char* name, int first, int last) {
            signalsOfModel += QStringLiteral("%1 %2 %3").arg(QLatin1String(name)).arg(first).arg(last);
        };
        auto* const context = new QObject(m_model.get());
        connect(m_model.get(), &QAbstractItemModel::rowsRemoved, context,
                [add](const QModelIndex&, int first, int last) { add("removed", first, last); });
        connect(m_model.get(), &QAbstractItemModel::rowsInserted, context,
                [add](const QModelIndex&, int first, int last) { add("inserted", first, last); });
        connect(m_model.get(), &QAbstractItemModel::dataChanged, context,
                [add](const QModelIndex& first, const QModelIndex& last) {
                    add("changed", first.row() * 10 + first.column(), last.row() * 10 + last.column());
                });
        return std::unique_ptr<QObject>(context);
    };
    QStringList expected;
    {
        const auto recording = record(expected);
        QVERIFY(m_model->FromByteArray(document));
    }
    const QByteArray after = m_model->ToByteArray();
    m_model->removeRows(3, m_model->rowCount() - 3);
    QStringList announced;
    {
        const auto recording = record(announced);
        QVERIFY(m_dialog->Import(Write(document)));
    }
    QCOMPARE(expected.size(), 1 + 2 * 6'000);
    QCOMPARE(announced, expected);
    QCOMPARE(m_model->ToByteArray(), after);
}

void TestDialogImport::entriesAreSortedAsUsual_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<Qt::SortOrder>("order");
    for (int column = 0; column < ConnectionsModel::kColumnCount; ++column) {
        QTest::addRow("column %d", column) << column << Qt::AscendingOrder;
        QTest::addRow("column %d, descending", column) << column << Qt::DescendingOrder;
    }
    QTest::newRow("not sorted") << -1 << Qt::AscendingOrder;
}

void TestDialogImport::entriesAreSortedAsUsual()
{
    QFETCH(int, column);
    QFETCH(Qt::SortOrder, order);
    m_dialog->m_pBasicView->sortByColumn(column, order);
    m_dialog->m_pFilterPatternLineEdit->setText(QStringLiteral("1"));
    QVERIFY(m_dialog->Import(Write(Document(ManyEntries(6'000)))));

    ConnectionFilterModel usual;
    usual.setFilterKeyColumn(ConnectionsModel::ColumnName);
    usual.setFilterRegularExpression(QStringLiteral("1"));
    usual.setSourceModel(m_model.get());
    usual.sort(column, order);
    const auto rows = [](const QAbstractItemModel* model) {
        const auto* const proxy = qobject_cast<const QSortFilterProxyModel*>(model);
        QList<int> sourceRows;
        for (int row = 0; row < proxy->rowCount(); ++row)
            sourceRows += proxy->mapToSource(proxy->index(row, 0)).row();
        return sourceRows;
    };
    QCOMPARE(rows(m_dialog->m_pBasicView->model()), rows(&usual));
    QVERIFY(usual.rowCount() > 1'000);

    // Later changes are sorted by their texts.
    m_model->AddConnection(Entry("1"));
    QCOMPARE(rows(m_dialog->m_pBasicView->model()), rows(&usual));
}

VEXEL_TEST(QTEST_MAIN, TestDialogImport)
#include "tst_dialogimport.moc"
