// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/markingtranslator.h"
#include "tests/support/metaobject.h"
#include "tests/support/testmain.h"
#include "userinterface/vexelconnectdlg/connection.h"
#include "userinterface/vexelconnectdlg/connectionsdelegate.h"
#include "userinterface/vexelconnectdlg/connectionsmodel.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QListView>
#include <QScrollBar>
#include <QSignalSpy>
#include <QSpinBox>
#include <QStandardItemModel>
#include <QStyle>
#include <QStyleFactory>
#include <QTest>
#include <QTreeView>
#include <QWheelEvent>

#include <algorithm>
#include <memory>

namespace {

using Model = ConnectionsModel;

constexpr int kColumnAboveAll = 10;
const QList<int> kWithdrawn{9, 10, 11};

// Records the calls of `setData`.
class RecordingModel : public QStandardItemModel
{
public:
    struct Call
    {
        QModelIndex index;
        QVariant value;
        int role;
    };

    RecordingModel()
        : QStandardItemModel(1, kColumnAboveAll + 2)
    {
    }

    bool setData(const QModelIndex& index, const QVariant& value, int role) override
    {
        calls.append({index, value, role});
        return QStandardItemModel::setData(index, value, role);
    }

    QList<Call> calls;
};

// Records the calls of `setEditorData`.
class RecordingDelegate : public ConnectionsDelegate
{
public:
    using ConnectionsDelegate::ConnectionsDelegate;

    void setEditorData(QWidget* editor, const QModelIndex& index) const override
    {
        filled.append(editor);
        ConnectionsDelegate::setEditorData(editor, index);
    }

    mutable QList<QWidget*> filled;
};

// An editor with a given size hint.
class SizedEditor : public QWidget
{
public:
    explicit SizedEditor(QSize hint)
        : m_hint(hint)
    {
    }
    QSize sizeHint() const override { return m_hint; }

private:
    QSize m_hint;
};

Connection Entry()
{
    Connection entry;
    entry.ConnectionName = QStringLiteral("Roof antenna");
    entry.DeviceType = Connection::KiteFjord;
    entry.ConnectionType = Connection::RemoteConnection;
    entry.DeviceAddress = QStringLiteral("192.0.2.7");
    entry.DriverAddress = QStringLiteral("driver.example");
    entry.LinkSpeed = Connection::Umts;
    entry.TimeoutSeconds = 120;
    entry.Selected = true;
    entry.Subsystem = QStringLiteral("North");
    return entry;
}

void Turn(QWidget* widget, int steps)
{
    const QPointF at = widget->rect().center();
    QWheelEvent event(at, widget->mapToGlobal(at), QPoint(), QPoint(0, -120 * steps), Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(widget, &event);
}

} // namespace

class TestConnectionsDelegate : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_style = QApplication::style()->name(); }
    void init();
    void cleanup();

    void declaresNoSignalsSlotsOrProperties();
    void paintsLikeItemDelegate();

    void createEditorMakesPlainWidgets();
    void createEditorFillsEditor();
    void invalidIndexHasNoEditor();
    void columnsAboveNineHaveNoEditor();

    void comboBoxHasOneItemPerValue_data();
    void comboBoxHasOneItemPerValue();
    void comboBoxFitsTranslatedItems();
    void popupNeedsNoScrolling_data();
    void popupNeedsNoScrolling();

    void withdrawnTypesAreHidden();
    void keysAndWheelSkipWithdrawnTypes();
    void keysInPopupSkipWithdrawnTypes();
    void mousePicksFromPopup();
    void typedLettersSkipWithdrawnTypes_data();
    void typedLettersSkipWithdrawnTypes();
    void withdrawnTypeIsKept();
    void withdrawnTypeCanBeLeft();

    void timeoutLimits();
    void timeoutAboveLimitIsRefused();
    void specialValueTextIsTranslated();
    void typedTimeoutCountsWithoutEnter();

    void lineEditsAcceptAnyText();

    void setModelDataWritesValue_data();
    void setModelDataWritesValue();
    void setEditorDataRefillsEditor();
    void invalidIndexIsIgnored();
    void setEditorDataIgnoresColumnsAboveNine();
    void setModelDataWritesInvalidValueAboveColumnNine();
    void setModelDataNeedsEditorAndModel();
    void unknownValueShowsNoItem();

    void editorIsCenteredOnCell_data();
    void editorIsCenteredOnCell();

    void tickAndStatusAreNotEditable();
    void keyboardEditing();
    void escapeCancels();

private:
    QModelIndex At(int column) const { return m_pModel->index(0, column); }
    QVariant Stored(int column) const { return At(column).data(Qt::EditRole); }
    void SetStored(int column, const QVariant& value) { QVERIFY(m_pModel->setData(At(column), value)); }

    template <typename Editor>
    Editor* NewEditor(int column)
    {
        return qobject_cast<Editor*>(m_pDelegate->createEditor(m_pView->viewport(), {}, At(column)));
    }

    // An editor that belongs to the view.
    template <typename Editor>
    Editor* Open(int column)
    {
        m_pView->edit(At(column));
        return qobject_cast<Editor*>(m_pView->indexWidget(At(column)));
    }

    QString m_style;
    std::unique_ptr<ConnectionsModel> m_pModel;
    std::unique_ptr<ConnectionsDelegate> m_pDelegate;
    std::unique_ptr<QTreeView> m_pView;
};

void TestConnectionsDelegate::init()
{
    m_pModel = std::make_unique<ConnectionsModel>(nullptr, QStringLiteral("DelegateTestModel"));
    m_pModel->removeRows(0, m_pModel->rowCount());
    m_pModel->AddConnection(Entry());
    m_pDelegate = std::make_unique<ConnectionsDelegate>(nullptr);
    m_pView = std::make_unique<QTreeView>();
    m_pView->setRootIsDecorated(false);
    m_pView->setModel(m_pModel.get());
    m_pView->setItemDelegate(m_pDelegate.get());
    m_pView->resize(780, 500);
    m_pView->show();
    m_pView->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_pView.get()));
}

void TestConnectionsDelegate::cleanup()
{
    m_pView.reset();
    m_pDelegate.reset();
    m_pModel.reset();
    QApplication::setStyle(m_style);
}

void TestConnectionsDelegate::declaresNoSignalsSlotsOrProperties()
{
    QCOMPARE(Declaration(ConnectionsDelegate::staticMetaObject),
             QStringList{QStringLiteral("ConnectionsDelegate : QItemDelegate")});
}

void TestConnectionsDelegate::paintsLikeItemDelegate()
{
    m_pView->clearSelection();
    const QImage ours = m_pView->viewport()->grab().toImage();
    QItemDelegate plain;
    for (int column = 0; column < Model::kColumnCount; ++column) {
        QStyleOptionViewItem option;
        option.initFrom(m_pView.get());
        QCOMPARE(m_pDelegate->sizeHint(option, At(column)), plain.sizeHint(option, At(column)));
    }
    m_pView->setItemDelegate(&plain);
    QCOMPARE(ours, m_pView->viewport()->grab().toImage());
    m_pView->setItemDelegate(m_pDelegate.get());
}

void TestConnectionsDelegate::createEditorMakesPlainWidgets()
{
    const QList<const QMetaObject*> kinds{
        &QCheckBox::staticMetaObject, &QLineEdit::staticMetaObject, &QComboBox::staticMetaObject,
        &QComboBox::staticMetaObject, &QComboBox::staticMetaObject, &QLineEdit::staticMetaObject,
        &QLineEdit::staticMetaObject, &QComboBox::staticMetaObject, &QSpinBox::staticMetaObject,
        &QLineEdit::staticMetaObject,
    };
    QWidget parent;
    for (int column = 0; column < Model::kColumnCount; ++column) {
        const QWidget* const editor = m_pDelegate->createEditor(&parent, {}, At(column));
        QVERIFY(editor);
        QCOMPARE(editor->metaObject(), kinds.at(column));
        QCOMPARE(editor->parentWidget(), &parent);
    }
}

void TestConnectionsDelegate::createEditorFillsEditor()
{
    m_pModel->setData(At(Model::ColumnStatus), 1);

    QVERIFY(NewEditor<QCheckBox>(Model::ColumnSelected)->isChecked());
    QCOMPARE(NewEditor<QLineEdit>(Model::ColumnName)->text(), QStringLiteral("Roof antenna"));
    QCOMPARE(NewEditor<QComboBox>(Model::ColumnStatus)->currentText(), QStringLiteral("In Use"));
    QCOMPARE(NewEditor<QComboBox>(Model::ColumnDeviceType)->currentText(), QStringLiteral("Kite Fjord"));
    QCOMPARE(NewEditor<QComboBox>(Model::ColumnConnectionType)->currentText(), QStringLiteral("Remote Connection"));
    QCOMPARE(NewEditor<QLineEdit>(Model::ColumnDeviceAddress)->text(), QStringLiteral("192.0.2.7"));
    QCOMPARE(NewEditor<QLineEdit>(Model::ColumnDriverAddress)->text(), QStringLiteral("driver.example"));
    QCOMPARE(NewEditor<QComboBox>(Model::ColumnLinkSpeed)->currentText(), QStringLiteral("UMTS"));
    QCOMPARE(NewEditor<QSpinBox>(Model::ColumnTimeout)->value(), 120);
    QCOMPARE(NewEditor<QLineEdit>(Model::ColumnSubsystem)->text(), QStringLiteral("North"));

    RecordingDelegate delegate(nullptr);
    QWidget parent;
    QWidget* const editor = delegate.createEditor(&parent, {}, At(Model::ColumnName));
    QCOMPARE(delegate.filled, QList<QWidget*>{editor});
}

void TestConnectionsDelegate::invalidIndexHasNoEditor()
{
    QWidget parent;
    QCOMPARE(m_pDelegate->createEditor(&parent, {}, QModelIndex()), nullptr);
    QCOMPARE(m_pDelegate->createEditor(&parent, {}, m_pModel->index(-1, 0)), nullptr);
    QCOMPARE(m_pDelegate->createEditor(&parent, {}, m_pModel->index(0, -1)), nullptr);
    QVERIFY(parent.children().isEmpty());
}

void TestConnectionsDelegate::columnsAboveNineHaveNoEditor()
{
    const RecordingModel model;
    RecordingDelegate delegate(nullptr);
    QWidget parent;
    for (const int column : {kColumnAboveAll, kColumnAboveAll + 1}) {
        delegate.filled = {&parent};
        QCOMPARE(delegate.createEditor(&parent, {}, model.index(0, column)), nullptr);
        QCOMPARE(delegate.filled, (QList<QWidget*>{&parent, nullptr}));
    }
    QVERIFY(parent.children().isEmpty());
}

void TestConnectionsDelegate::comboBoxHasOneItemPerValue_data()
{
    using TextOf = QString (*)(int);
    QTest::addColumn<int>("column");
    QTest::addColumn<QStringList>("texts");
    const auto add = [](int column, const char* tag, int count, TextOf textOf) {
        QStringList texts;
        for (int value = 0; value < count; ++value)
            texts.append(textOf(value));
        QTest::newRow(tag) << column << texts;
    };
    add(Model::ColumnStatus, "status", 2, &Connection::StatusName);
    add(Model::ColumnDeviceType, "device type", 15, &Connection::DeviceTypeName);
    add(Model::ColumnConnectionType, "connection type", 3, &Connection::ConnectionTypeName);
    add(Model::ColumnLinkSpeed, "link speed", 7, &Connection::LinkSpeedName);
}

void TestConnectionsDelegate::comboBoxHasOneItemPerValue()
{
    QFETCH(int, column);
    QFETCH(QStringList, texts);

    const auto* const comboBox = NewEditor<QComboBox>(column);
    QVERIFY(comboBox);
    QCOMPARE(comboBox->count(), texts.size());
    qsizetype longest = 0;
    for (int item = 0; item < comboBox->count(); ++item) {
        QCOMPARE(comboBox->itemText(item), texts.at(item));
        QVERIFY(comboBox->itemIcon(item).isNull());
        QVERIFY(!comboBox->itemData(item).isValid());
        longest = std::max(longest, texts.at(item).size());
    }
    QCOMPARE(comboBox->minimumContentsLength(), longest);
    QCOMPARE(comboBox->maxVisibleItems(), texts.size());
    QVERIFY(!comboBox->isEditable());
}

void TestConnectionsDelegate::comboBoxFitsTranslatedItems()
{
    const MarkingTranslator translator(QStringLiteral("Connection"));

    const auto* const speeds = NewEditor<QComboBox>(Model::ColumnLinkSpeed);
    QCOMPARE(speeds->itemText(0), QStringLiteral("[LAN]"));
    QCOMPARE(speeds->minimumContentsLength(), 12); // "[Fast Modem]"

    const auto* const types = NewEditor<QComboBox>(Model::ColumnDeviceType);
    QCOMPARE(types->itemText(12), QStringLiteral("Kite Alpha + Finch"));
    QCOMPARE(types->minimumContentsLength(), 19); // "Kite Alpha + Wren C"
}

void TestConnectionsDelegate::popupNeedsNoScrolling_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<QString>("style");
    for (const QString& style : QStyleFactory::keys())
        for (const int column :
             {Model::ColumnStatus, Model::ColumnDeviceType, Model::ColumnConnectionType, Model::ColumnLinkSpeed})
            QTest::addRow("%s, column %d", qPrintable(style), column) << column << style;
}

void TestConnectionsDelegate::popupNeedsNoScrolling()
{
    QFETCH(int, column);
    QFETCH(QString, style);
    QVERIFY(QApplication::setStyle(style));
    auto* const comboBox = NewEditor<QComboBox>(column);
    comboBox->show();

    comboBox->showPopup();
    QTRY_VERIFY(comboBox->view()->isVisible());
    const auto* const list = qobject_cast<QListView*>(comboBox->view());
    QCOMPARE(list->verticalScrollBar()->maximum(), list->verticalScrollBar()->minimum());
    int shown = 0;
    for (int row = 0; row < comboBox->count(); ++row) {
        if (!list->isRowHidden(row)) {
            const QRect item = list->visualRect(list->model()->index(row, 0));
            QVERIFY(item.top() >= 0 && item.bottom() < list->viewport()->height());
            ++shown;
        }
    }
    QCOMPARE(shown, column == Model::ColumnDeviceType ? 12 : comboBox->count());
}

void TestConnectionsDelegate::withdrawnTypesAreHidden()
{
    const auto* const comboBox = NewEditor<QComboBox>(Model::ColumnDeviceType);
    const auto* const list = qobject_cast<QListView*>(comboBox->view());
    QVERIFY(list);
    int pickable = 0;
    for (int row = 0; row < comboBox->count(); ++row) {
        QCOMPARE(list->isRowHidden(row), kWithdrawn.contains(row));
        const bool enabled = comboBox->model()->index(row, 0).flags().testFlag(Qt::ItemIsEnabled);
        QCOMPARE(enabled, !kWithdrawn.contains(row));
        pickable += enabled ? 1 : 0;
    }
    QCOMPARE(pickable, 12);

    // The other lists offer all items.
    for (const int column : {Model::ColumnStatus, Model::ColumnConnectionType, Model::ColumnLinkSpeed}) {
        const auto* const other = NewEditor<QComboBox>(column);
        for (int row = 0; row < other->count(); ++row) {
            QVERIFY(!qobject_cast<QListView*>(other->view())->isRowHidden(row));
            QVERIFY(other->model()->index(row, 0).flags().testFlag(Qt::ItemIsEnabled));
        }
    }
}

void TestConnectionsDelegate::keysAndWheelSkipWithdrawnTypes()
{
    auto* const comboBox = NewEditor<QComboBox>(Model::ColumnDeviceType);
    comboBox->show();
    comboBox->setFocus();

    comboBox->setCurrentIndex(8);
    QTest::keyClick(comboBox, Qt::Key_Down);
    QCOMPARE(comboBox->currentIndex(), 12);
    QTest::keyClick(comboBox, Qt::Key_Up);
    QCOMPARE(comboBox->currentIndex(), 8);
    Turn(comboBox, 1);
    QCOMPARE(comboBox->currentIndex(), 12);
    Turn(comboBox, -1);
    QCOMPARE(comboBox->currentIndex(), 8);
    QTest::keyClick(comboBox, Qt::Key_End);
    QCOMPARE(comboBox->currentIndex(), 14);
    QTest::keyClick(comboBox, Qt::Key_Home);
    QCOMPARE(comboBox->currentIndex(), 0);
    for (int step = 0; step < comboBox->count(); ++step) {
        QTest::keyClick(comboBox, Qt::Key_Down);
        QVERIFY(!kWithdrawn.contains(comboBox->currentIndex()));
    }
    QCOMPARE(comboBox->currentIndex(), 14);
}

void TestConnectionsDelegate::keysInPopupSkipWithdrawnTypes()
{
    auto* const comboBox = NewEditor<QComboBox>(Model::ColumnDeviceType);
    comboBox->show();
    comboBox->setCurrentIndex(8);

    comboBox->showPopup();
    QTRY_VERIFY(comboBox->view()->isVisible());
    QTest::keyClick(comboBox->view(), Qt::Key_Down);
    QTest::keyClick(comboBox->view(), Qt::Key_Return);
    QCOMPARE(comboBox->currentIndex(), 12);

    comboBox->showPopup();
    QTRY_VERIFY(comboBox->view()->isVisible());
    QTest::keyClick(comboBox->view(), Qt::Key_Up);
    QTest::keyClick(comboBox->view(), Qt::Key_Return);
    QCOMPARE(comboBox->currentIndex(), 8);

    comboBox->showPopup();
    QTRY_VERIFY(comboBox->view()->isVisible());
    for (const char letter : {'h', 'w'}) {
        comboBox->view()->keyboardSearch(QString(QLatin1Char(letter)));
        QCOMPARE(comboBox->view()->currentIndex().row(), 8);
    }
    QTest::keyClick(comboBox->view(), Qt::Key_Escape);
    QCOMPARE(comboBox->currentIndex(), 8);
}

void TestConnectionsDelegate::mousePicksFromPopup()
{
    auto* const comboBox = Open<QComboBox>(Model::ColumnDeviceType);
    QVERIFY(comboBox);
    comboBox->showPopup();
    QTRY_VERIFY(comboBox->view()->isVisible());
    QAbstractItemView* const list = comboBox->view();
    QWidget* const surface = list->viewport();
    const auto centre = [list](int row) {
        return list->visualRect(list->model()->index(row, 0)).center();
    };

    // Right below "Plover Five" comes "Kite Alpha + Finch".
    const QPoint below = centre(8) + QPoint(0, list->visualRect(list->model()->index(8, 0)).height());
    QCOMPARE(list->indexAt(below).row(), 12);
    QTest::mouseMove(surface, below);
    // The popup ignores a release within the double-click interval after it opened.
    QTRY_VERIFY((QTest::mouseClick(surface, Qt::LeftButton, {}, below), !list->isVisible()));
    QCOMPARE(comboBox->currentIndex(), 12);
}

void TestConnectionsDelegate::typedLettersSkipWithdrawnTypes_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<int>("to");
    QTest::newRow("Heron") << 0 << QStringLiteral("h") << 0;
    QTest::newRow("Pipit, by its first two letters") << 0 << QStringLiteral("pi") << 7;
    QTest::newRow("next type with the letter") << 7 << QStringLiteral("p") << 8;
    QTest::newRow("next type with the letter, after Pipit") << 8 << QStringLiteral("p") << 7;
}

void TestConnectionsDelegate::typedLettersSkipWithdrawnTypes()
{
    QFETCH(int, from);
    QFETCH(QString, typed);
    QFETCH(int, to);
    auto* const comboBox = NewEditor<QComboBox>(Model::ColumnDeviceType);
    comboBox->show();
    comboBox->setFocus();
    comboBox->setCurrentIndex(from);
    QTest::keyClicks(comboBox, typed);
    QCOMPARE(comboBox->currentIndex(), to);
}

void TestConnectionsDelegate::withdrawnTypeIsKept()
{
    for (const int value : kWithdrawn) {
        SetStored(Model::ColumnDeviceType, value);
        auto* const comboBox = Open<QComboBox>(Model::ColumnDeviceType);
        QVERIFY(comboBox);
        QCOMPARE(comboBox->currentIndex(), value);
        QCOMPARE(comboBox->currentText(), Connection::DeviceTypeName(value));
        QSignalSpy changes(m_pModel.get(), &QAbstractItemModel::dataChanged);
        QTest::keyClick(comboBox, Qt::Key_Return);
        QTRY_COMPARE(changes.count(), 1); // committed unchanged
        QCOMPARE(Stored(Model::ColumnDeviceType).toInt(), value);
        QTRY_VERIFY(!m_pView->indexWidget(At(Model::ColumnDeviceType)));
    }
}

void TestConnectionsDelegate::withdrawnTypeCanBeLeft()
{
    SetStored(Model::ColumnDeviceType, 10);
    auto* const comboBox = NewEditor<QComboBox>(Model::ColumnDeviceType);
    comboBox->show();
    QTest::keyClick(comboBox, Qt::Key_Down);
    QCOMPARE(comboBox->currentIndex(), 12);
    QTest::keyClick(comboBox, Qt::Key_Up);
    QCOMPARE(comboBox->currentIndex(), 8); // not 10 again

    m_pDelegate->setEditorData(comboBox, At(Model::ColumnDeviceType));
    QCOMPARE(comboBox->currentIndex(), 10);
    comboBox->showPopup();
    QTRY_VERIFY(comboBox->view()->isVisible());
    QTest::keyClick(comboBox->view(), Qt::Key_Down);
    QTest::keyClick(comboBox->view(), Qt::Key_Return);
    QVERIFY(!kWithdrawn.contains(comboBox->currentIndex()));
    QTRY_VERIFY(!comboBox->view()->isVisible());
}

void TestConnectionsDelegate::timeoutLimits()
{
    const auto* const spinBox = NewEditor<QSpinBox>(Model::ColumnTimeout);
    QCOMPARE(spinBox->minimum(), 0);
    QCOMPARE(spinBox->maximum(), 90000);
    QCOMPARE(spinBox->singleStep(), 30);
    QCOMPARE(spinBox->suffix(), QStringLiteral(" s"));
    QCOMPARE(spinBox->specialValueText(), QStringLiteral("No Timeout"));
    QCOMPARE(spinBox->text(), QStringLiteral("120 s"));
}

void TestConnectionsDelegate::timeoutAboveLimitIsRefused()
{
    auto* const spinBox = Open<QSpinBox>(Model::ColumnTimeout);
    QVERIFY(spinBox);
    spinBox->selectAll();
    QTest::keyClicks(spinBox, QStringLiteral("90001"));
    QCOMPARE(spinBox->cleanText(), QStringLiteral("9000")); // the last digit is not taken
    spinBox->selectAll();
    QTest::keyClicks(spinBox, QStringLiteral("90000"));
    QTest::keyClick(spinBox, Qt::Key_Up);
    QCOMPARE(spinBox->value(), 90000);
    m_pDelegate->setModelData(spinBox, m_pModel.get(), At(Model::ColumnTimeout));
    QCOMPARE(Stored(Model::ColumnTimeout).toInt(), 90000);
}

void TestConnectionsDelegate::specialValueTextIsTranslated()
{
    const MarkingTranslator translator(QStringLiteral("ConnectionsDelegate"));
    const auto* const spinBox = NewEditor<QSpinBox>(Model::ColumnTimeout);
    QCOMPARE(spinBox->specialValueText(), QStringLiteral("[No Timeout]"));
    QCOMPARE(spinBox->suffix(), QStringLiteral(" s"));
}

void TestConnectionsDelegate::typedTimeoutCountsWithoutEnter()
{
    auto* const spinBox = NewEditor<QSpinBox>(Model::ColumnTimeout);
    spinBox->setKeyboardTracking(false); // so that only the delegate interprets the typed text
    spinBox->show();
    spinBox->setFocus();
    spinBox->selectAll();
    QTest::keyClicks(spinBox, QStringLiteral("45"));
    QCOMPARE(spinBox->value(), 120);
    m_pDelegate->setModelData(spinBox, m_pModel.get(), At(Model::ColumnTimeout));
    QCOMPARE(Stored(Model::ColumnTimeout).toInt(), 45);
}

void TestConnectionsDelegate::lineEditsAcceptAnyText()
{
    const QString text =
        QStringLiteral(" not an <address> & 300.1.1.1 \u00e4\U0001F4E1 ") + QString(100000, QLatin1Char('x'));
    for (const int column :
         {Model::ColumnName, Model::ColumnDeviceAddress, Model::ColumnDriverAddress, Model::ColumnSubsystem}) {
        auto* const lineEdit = NewEditor<QLineEdit>(column);
        QCOMPARE(lineEdit->inputMask(), QString());
        QCOMPARE(lineEdit->validator(), nullptr);
        lineEdit->setText(text);
        m_pDelegate->setModelData(lineEdit, m_pModel.get(), At(column));
        QCOMPARE(Stored(column).toString(), text);
    }
}

void TestConnectionsDelegate::setModelDataWritesValue_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<QVariant>("before");
    QTest::addColumn<QVariant>("after");
    QTest::newRow("selected") << int(Model::ColumnSelected) << QVariant(false) << QVariant(true);
    QTest::newRow("name") << int(Model::ColumnName) << QVariant(QStringLiteral("a")) << QVariant(QStringLiteral("b"));
    QTest::newRow("empty name") << int(Model::ColumnName) << QVariant(QStringLiteral("a"))
                                << QVariant(QStringLiteral(""));
    QTest::newRow("status") << int(Model::ColumnStatus) << QVariant(0) << QVariant(1);
    QTest::newRow("device type") << int(Model::ColumnDeviceType) << QVariant(0) << QVariant(14);
    QTest::newRow("connection type") << int(Model::ColumnConnectionType) << QVariant(0) << QVariant(2);
    QTest::newRow("device address") << int(Model::ColumnDeviceAddress) << QVariant(QStringLiteral("a"))
                                    << QVariant(QStringLiteral("b"));
    QTest::newRow("driver address") << int(Model::ColumnDriverAddress) << QVariant(QStringLiteral("a"))
                                    << QVariant(QStringLiteral("b"));
    QTest::newRow("link speed") << int(Model::ColumnLinkSpeed) << QVariant(0) << QVariant(6);
    QTest::newRow("timeout") << int(Model::ColumnTimeout) << QVariant(0) << QVariant(90000);
    QTest::newRow("no timeout") << int(Model::ColumnTimeout) << QVariant(30) << QVariant(0);
    QTest::newRow("subsystem") << int(Model::ColumnSubsystem) << QVariant(QStringLiteral("a"))
                               << QVariant(QStringLiteral("b"));
}

void TestConnectionsDelegate::setModelDataWritesValue()
{
    QFETCH(int, column);
    QFETCH(QVariant, before);
    QFETCH(QVariant, after);
    RecordingModel model;
    const QModelIndex index = model.index(0, column);
    model.setData(index, before, Qt::EditRole);
    QWidget parent;
    QWidget* const editor = m_pDelegate->createEditor(&parent, {}, index);
    QVERIFY(editor);
    model.calls.clear();

    // First the value that the editor was filled with, then another one.
    m_pDelegate->setModelData(editor, &model, index);
    QCOMPARE(model.calls.size(), 1);
    QCOMPARE(model.calls.last().value, before);

    if (auto* const checkBox = qobject_cast<QCheckBox*>(editor))
        checkBox->click();
    else if (auto* const comboBox = qobject_cast<QComboBox*>(editor))
        comboBox->setCurrentIndex(after.toInt());
    else if (auto* const spinBox = qobject_cast<QSpinBox*>(editor))
        spinBox->setValue(after.toInt());
    else
        qobject_cast<QLineEdit*>(editor)->setText(after.toString());
    m_pDelegate->setModelData(editor, &model, index);
    QCOMPARE(model.calls.size(), 2);
    QCOMPARE(model.calls.last().index, index);
    QCOMPARE(model.calls.last().value.metaType(), after.metaType());
    QCOMPARE(model.calls.last().value, after);
    QCOMPARE(model.calls.last().role, int(Qt::EditRole));
}

void TestConnectionsDelegate::setEditorDataRefillsEditor()
{
    auto* const lineEdit = NewEditor<QLineEdit>(Model::ColumnName);
    lineEdit->setText(QStringLiteral("something else"));
    m_pDelegate->setEditorData(lineEdit, At(Model::ColumnName));
    QCOMPARE(lineEdit->text(), QStringLiteral("Roof antenna"));

    // The edit role is used: the display role of 0 is "No Timeout".
    SetStored(Model::ColumnTimeout, 0);
    auto* const spinBox = NewEditor<QSpinBox>(Model::ColumnTimeout);
    spinBox->setValue(60);
    m_pDelegate->setEditorData(spinBox, At(Model::ColumnTimeout));
    QCOMPARE(spinBox->value(), 0);
}

void TestConnectionsDelegate::invalidIndexIsIgnored()
{
    RecordingModel model;
    QLineEdit lineEdit(QStringLiteral("kept"));
    m_pDelegate->setEditorData(&lineEdit, QModelIndex());
    QCOMPARE(lineEdit.text(), QStringLiteral("kept"));
    m_pDelegate->setModelData(&lineEdit, &model, QModelIndex());
    QVERIFY(model.calls.isEmpty());

    m_pDelegate->setEditorData(nullptr, QModelIndex()); // does not crash
}

void TestConnectionsDelegate::setEditorDataIgnoresColumnsAboveNine()
{
    RecordingModel model;
    const QModelIndex index = model.index(0, kColumnAboveAll);
    model.setData(index, QStringLiteral("text"), Qt::EditRole);
    QLineEdit lineEdit(QStringLiteral("kept"));
    m_pDelegate->setEditorData(&lineEdit, index);
    QCOMPARE(lineEdit.text(), QStringLiteral("kept"));
    m_pDelegate->setEditorData(nullptr, index);
}

void TestConnectionsDelegate::setModelDataWritesInvalidValueAboveColumnNine()
{
    RecordingModel model;
    QLineEdit lineEdit(QStringLiteral("text"));
    for (QWidget* const editor : {static_cast<QWidget*>(&lineEdit), static_cast<QWidget*>(nullptr)}) {
        model.calls.clear();
        m_pDelegate->setModelData(editor, &model, model.index(0, kColumnAboveAll));
        QCOMPARE(model.calls.size(), 1);
        QCOMPARE(model.calls.first().index, model.index(0, kColumnAboveAll));
        QVERIFY(!model.calls.first().value.isValid());
        QCOMPARE(model.calls.first().role, int(Qt::EditRole));
    }
}

void TestConnectionsDelegate::setModelDataNeedsEditorAndModel()
{
    RecordingModel model;
    m_pDelegate->setModelData(nullptr, &model, model.index(0, Model::ColumnTimeout));
    QVERIFY(model.calls.isEmpty());

    QSpinBox spinBox;
    m_pDelegate->setModelData(&spinBox, nullptr, At(Model::ColumnTimeout));
    QCOMPARE(Stored(Model::ColumnTimeout).toInt(), 120);
}

void TestConnectionsDelegate::unknownValueShowsNoItem()
{
    for (const int value : {15, -1}) {
        SetStored(Model::ColumnDeviceType, value);
        auto* const comboBox = NewEditor<QComboBox>(Model::ColumnDeviceType);
        QCOMPARE(comboBox->currentIndex(), -1);
        QCOMPARE(comboBox->currentText(), QString());
        m_pDelegate->setModelData(comboBox, m_pModel.get(), At(Model::ColumnDeviceType));
        QCOMPARE(Stored(Model::ColumnDeviceType).toInt(), -1);
    }
}

void TestConnectionsDelegate::editorIsCenteredOnCell_data()
{
    QTest::addColumn<QRect>("cell");
    QTest::addColumn<QSize>("hint");
    QTest::addColumn<QRect>("geometry");
    // The cell's centre is at half the sum of its edges: (10 + 59) / 2 = 34, (20 + 39) / 2 = 29.
    const QRect cell(10, 20, 50, 20);
    QTest::newRow("smaller size hint") << cell << QSize(30, 10) << cell;
    QTest::newRow("no size hint") << cell << QSize() << cell;
    QTest::newRow("wider") << cell << QSize(100, 10) << QRect(-15, 20, 100, 20);
    QTest::newRow("higher") << cell << QSize(30, 31) << QRect(10, 14, 50, 31);
    QTest::newRow("odd cell") << QRect(10, 20, 51, 21) << QSize(100, 30) << QRect(-14, 16, 100, 30);
    // Halves of negative sums go towards zero: (-30 - 10) / 2 = -20, (-7 + 2) / 2 = -2.
    QTest::newRow("scrolled out") << QRect(-30, -7, 21, 10) << QSize(31, 20) << QRect(-35, -11, 31, 20);
}

void TestConnectionsDelegate::editorIsCenteredOnCell()
{
    QFETCH(QRect, cell);
    QFETCH(QSize, hint);
    QFETCH(QRect, geometry);
    SizedEditor editor(hint);
    QStyleOptionViewItem option;
    option.rect = cell;
    m_pDelegate->updateEditorGeometry(&editor, option, At(Model::ColumnName));
    QCOMPARE(editor.geometry(), geometry);
}

void TestConnectionsDelegate::tickAndStatusAreNotEditable()
{
    for (const int column : {Model::ColumnSelected, Model::ColumnStatus}) {
        QTest::ignoreMessage(QtWarningMsg, "edit: editing failed");
        m_pView->edit(At(column));
        QVERIFY(!m_pView->indexWidget(At(column)));

        m_pView->openPersistentEditor(At(column)); // ignores the flags
        QVERIFY(m_pView->indexWidget(At(column)));
        m_pView->closePersistentEditor(At(column));
    }
}

void TestConnectionsDelegate::keyboardEditing()
{
    m_pView->setCurrentIndex(At(Model::ColumnName));
    QTest::keyClick(m_pView.get(), Qt::Key_F2);
    QWidget* editor = m_pView->indexWidget(At(Model::ColumnName));
    QVERIFY(qobject_cast<QLineEdit*>(editor));
    QTest::keyClicks(editor, QStringLiteral("Cellar"));
    QTest::keyClick(editor, Qt::Key_Return);
    QTRY_COMPARE(Stored(Model::ColumnName).toString(), QStringLiteral("Cellar"));

    m_pView->setCurrentIndex(At(Model::ColumnLinkSpeed));
    QTest::keyClick(m_pView.get(), Qt::Key_F2);
    editor = m_pView->indexWidget(At(Model::ColumnLinkSpeed));
    QVERIFY(qobject_cast<QComboBox*>(editor));
    QTest::keyClick(editor, Qt::Key_Down);
    // Leaving the editor commits like Enter.
    QTest::mouseClick(m_pView->viewport(), Qt::LeftButton, {}, m_pView->visualRect(At(Model::ColumnName)).center());
    QTRY_COMPARE(Stored(Model::ColumnLinkSpeed).toInt(), 6);

    m_pView->setCurrentIndex(At(Model::ColumnTimeout));
    QTest::keyClick(m_pView.get(), Qt::Key_F2);
    editor = m_pView->indexWidget(At(Model::ColumnTimeout));
    QVERIFY(qobject_cast<QSpinBox*>(editor));
    QTest::keyClicks(editor, QStringLiteral("75"));
    QTest::keyClick(editor, Qt::Key_Tab);
    QTRY_COMPARE(Stored(Model::ColumnTimeout).toInt(), 75);
}

void TestConnectionsDelegate::escapeCancels()
{
    auto* const lineEdit = Open<QLineEdit>(Model::ColumnName);
    QVERIFY(lineEdit);
    QTest::keyClicks(lineEdit, QStringLiteral("Cellar"));
    QTest::keyClick(lineEdit, Qt::Key_Escape);
    QTRY_VERIFY(!m_pView->indexWidget(At(Model::ColumnName)));
    QCOMPARE(Stored(Model::ColumnName).toString(), QStringLiteral("Roof antenna"));
}

VEXEL_TEST(QTEST_MAIN, TestConnectionsDelegate)
#include "tst_connectionsdelegate.moc"
