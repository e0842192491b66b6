// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/markingtranslator.h"
#include "tests/support/testmain.h"

#include "ui_vexelconnectdlg.h"

#include <QDialog>
#include <QImageReader>
#include <QRegularExpression>
#include <QStandardItemModel>
#include <QTest>
#include <QTextBlock>
#include <QTextDocument>

#include <algorithm>
#include <array>
#include <functional>
#include <initializer_list>
#include <memory>
#include <utility>

namespace {

QString Translated(const QString& text)
{
    return text.isEmpty() ? text : MarkingTranslator::Marked(text);
}

QImage Pixels(const QString& file)
{
    return QPixmap(file).toImage();
}

} // namespace

// A dialog with the slots that the form connects to. Each slot records its name and argument.
class FormDialog : public QDialog, public Ui::VexelConnectDlg
{
    Q_OBJECT

public:
    FormDialog()
    {
        setupUi(this);
        auto* const table = new QStandardItemModel(3, 2, this);
        m_pBasicView->setModel(table);
        m_pDetailsView->setModel(table);
    }

    QStringList TakeCalls() { return std::exchange(m_calls, {}); }

public slots:
    void SlotNew() { m_calls += QStringLiteral("New"); }
    void SlotEdit() { m_calls += QStringLiteral("Edit"); }
    void SlotDelete() { m_calls += QStringLiteral("Delete"); }
    void SlotImport() { m_calls += QStringLiteral("Import"); }
    void SlotExport() { m_calls += QStringLiteral("Export"); }
    void SlotShowDetails(bool bShow) { m_calls += QStringLiteral("ShowDetails %1").arg(int(bShow)); }
    void SlotShowFilter(bool bShow) { m_calls += QStringLiteral("ShowFilter %1").arg(int(bShow)); }
    void SlotClicked(QModelIndex index) { m_calls += QStringLiteral("Clicked %1").arg(index.row()); }
    void SlotDoubleClicked(QModelIndex index) { m_calls += QStringLiteral("DoubleClicked %1").arg(index.row()); }
    void SlotClose() { m_calls += QStringLiteral("Close"); }
    void SlotConnect() { m_calls += QStringLiteral("Connect"); }
    void SlotUpdateFilter() { m_calls += QStringLiteral("UpdateFilter"); }

private:
    QStringList m_calls;
};

class TestForm : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void membersAreInOrder();
    void actionsBelongToTheDialog();
    void dialogHasNameSizeAndSizeGrip();
    void dialogLayout();
    void lowerLayout();
    void filterFrameLayout();
    void viewsCannotBeCollapsed();
    void viewProperties();
    void detailsViewKeepsDefaults();
    void everythingIsVisibleInitially();

    void buttonsAndActionsCallSlots();
    void filterWidgetsCallSlot();
    void viewsCallSlots();

    void mnemonicsFocusFilterWidgets_data();
    void mnemonicsFocusFilterWidgets();
    void mnemonicsIgnoreHiddenWidgets();
    void mnemonicAndEnterPressConnect();
    void noOtherShortcuts();
    void tabOrderIsTopToBottom();

    void widgetTexts_data();
    void widgetTexts();
    void dialogTexts();
    void actionTexts_data();
    void actionTexts();
    void activeFilterHelp();
    void searchModes();
    void retranslationKeepsState();

    void icons_data();
    void icons();
    void filterPixmaps();
    void iconsHaveThreeSizes_data();
    void iconsHaveThreeSizes();
    void checkIconIsGreenAndGreyWhenDisabled();

private:
    void ShowActive();

    std::unique_ptr<FormDialog> m_pForm;
};

void TestForm::initTestCase()
{
    Q_INIT_RESOURCE(vexelconnectdlg); // resources of a static library are not registered automatically
}

void TestForm::init()
{
    m_pForm = std::make_unique<FormDialog>();
    m_pForm->TakeCalls();
}

void TestForm::cleanup()
{
    m_pForm.reset();
}

void TestForm::ShowActive()
{
    m_pForm->show();
    m_pForm->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_pForm.get()));
}

void TestForm::membersAreInOrder()
{
    const FormDialog& f = *m_pForm;
    const std::array<const void*, 27> members{
        &f.m_pImportAction,
        &f.m_pExportAction,
        &f.m_pNewAction,
        &f.m_pDeleteAction,
        &f.m_pDetailsAction,
        &f.m_pEditAction,
        &f.m_pFilterAction,
        &f.verticalLayout,
        &f.m_pSplitter,
        &f.m_pBasicView,
        &f.m_pDetailsView,
        &f.gridLayout_2,
        &f.m_pFilterFrame,
        &f.gridLayout,
        &f.m_pColumnLabel,
        &f.m_pFilterColumnComboBox,
        &f.m_pFilterPatternLabel,
        &f.horizontalLayout,
        &f.m_pFilterPatternLineEdit,
        &f.m_pFilterLabel,
        &f.m_pRegExpLabel,
        &f.m_pRegExpComboBox,
        &f.verticalSpacer,
        &f.horizontalSpacer,
        &f.m_pConnectButton,
        &f.m_pCloseButton,
        &f.m_pFilterActiveLabel,
    };
    QVERIFY(std::is_sorted(members.begin(), members.end(), std::less<>()));
    QCOMPARE(sizeof(Ui::VexelConnectDlg), members.size() * sizeof(void*)); // and nothing else
}

void TestForm::actionsBelongToTheDialog()
{
    const FormDialog& f = *m_pForm;
    for (const QAction* const action : {f.m_pImportAction, f.m_pExportAction, f.m_pNewAction, f.m_pDeleteAction,
                                        f.m_pDetailsAction, f.m_pEditAction, f.m_pFilterAction}) {
        QCOMPARE(action->parent(), m_pForm.get());
        QCOMPARE(action->isCheckable(), action == f.m_pDetailsAction || action == f.m_pFilterAction);
        QVERIFY(!action->isChecked());
    }
}

void TestForm::dialogHasNameSizeAndSizeGrip()
{
    QCOMPARE(m_pForm->objectName(), QStringLiteral("VexelConnectDlg"));
    QCOMPARE(m_pForm->size(), QSize(418, 166));
    QVERIFY(m_pForm->isSizeGripEnabled());
}

void TestForm::dialogLayout()
{
    QVBoxLayout* const layout = m_pForm->verticalLayout;
    QCOMPARE(m_pForm->layout(), layout);
    QCOMPARE(layout->spacing(), 3);
    const int right = m_pForm->style()->pixelMetric(QStyle::PM_LayoutRightMargin, nullptr, m_pForm.get());
    QVERIFY(right != 3);
    QCOMPARE(layout->contentsMargins(), QMargins(3, 3, right, 3));
    QCOMPARE(layout->count(), 2);
    QCOMPARE(layout->itemAt(0)->widget(), m_pForm->m_pSplitter);
    QCOMPARE(layout->itemAt(1)->layout(), m_pForm->gridLayout_2);

    const QSplitter* const splitter = m_pForm->m_pSplitter;
    QCOMPARE(splitter->orientation(), Qt::Horizontal);
    QVERIFY(!splitter->childrenCollapsible());
    QCOMPARE(splitter->sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
    QCOMPARE(splitter->sizePolicy().verticalPolicy(), QSizePolicy::Expanding);
    QCOMPARE(splitter->count(), 2);
    QCOMPARE(splitter->widget(0), m_pForm->m_pBasicView);
    QCOMPARE(splitter->widget(1), m_pForm->m_pDetailsView);
}

void TestForm::lowerLayout()
{
    const QGridLayout* const layout = m_pForm->gridLayout_2;
    QCOMPARE(layout->verticalSpacing(), 1);
    QCOMPARE(layout->count(), 6);

    const auto cellOf = [layout](int item) {
        int row = 0;
        int column = 0;
        int rows = 0;
        int columns = 0;
        layout->getItemPosition(item, &row, &column, &rows, &columns);
        return QRect(column, row, columns, rows);
    };
    QCOMPARE(cellOf(layout->indexOf(m_pForm->m_pFilterFrame)), QRect(0, 0, 1, 2));
    QCOMPARE(cellOf(layout->indexOf(m_pForm->m_pFilterActiveLabel)), QRect(1, 1, 1, 1));
    QCOMPARE(cellOf(layout->indexOf(m_pForm->m_pConnectButton)), QRect(3, 1, 1, 1));
    QCOMPARE(cellOf(layout->indexOf(m_pForm->m_pCloseButton)), QRect(4, 1, 1, 1));

    const QSpacerItem* const upper = layout->itemAtPosition(0, 4)->spacerItem();
    QVERIFY(upper);
    QCOMPARE(upper, m_pForm->verticalSpacer);
    QCOMPARE(upper->sizeHint(), QSize(20, 1));
    QCOMPARE(upper->sizePolicy().horizontalPolicy(), QSizePolicy::Minimum);
    QCOMPARE(upper->sizePolicy().verticalPolicy(), QSizePolicy::Preferred);

    const QSpacerItem* const middle = layout->itemAtPosition(1, 2)->spacerItem();
    QVERIFY(middle);
    QCOMPARE(middle, m_pForm->horizontalSpacer);
    QCOMPARE(middle->sizeHint(), QSize(20, 20));
    QCOMPARE(middle->sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
    QCOMPARE(middle->sizePolicy().verticalPolicy(), QSizePolicy::Minimum);
}

void TestForm::filterFrameLayout()
{
    QCOMPARE(m_pForm->m_pFilterFrame->frameShape(), QFrame::Panel);
    QCOMPARE(m_pForm->m_pFilterFrame->frameShadow(), QFrame::Sunken);

    const QGridLayout* const layout = m_pForm->gridLayout;
    QCOMPARE(m_pForm->m_pFilterFrame->layout(), layout);
    QCOMPARE(layout->count(), 6);
    QCOMPARE(layout->itemAtPosition(0, 0)->widget(), m_pForm->m_pColumnLabel);
    QCOMPARE(layout->itemAtPosition(0, 1)->widget(), m_pForm->m_pFilterColumnComboBox);
    QCOMPARE(layout->itemAtPosition(1, 0)->widget(), m_pForm->m_pFilterPatternLabel);
    QCOMPARE(layout->itemAtPosition(1, 1)->layout(), m_pForm->horizontalLayout);
    QCOMPARE(layout->itemAtPosition(2, 0)->widget(), m_pForm->m_pRegExpLabel);
    QCOMPARE(layout->itemAtPosition(2, 1)->widget(), m_pForm->m_pRegExpComboBox);

    QCOMPARE(m_pForm->horizontalLayout->count(), 2);
    QCOMPARE(m_pForm->horizontalLayout->itemAt(0)->widget(), m_pForm->m_pFilterPatternLineEdit);
    QCOMPARE(m_pForm->horizontalLayout->itemAt(1)->widget(), m_pForm->m_pFilterLabel);
    const QSizePolicy pattern = m_pForm->m_pFilterPatternLineEdit->sizePolicy();
    QCOMPARE(pattern.horizontalPolicy(), QSizePolicy::Preferred);
    QCOMPARE(pattern.verticalPolicy(), QSizePolicy::Fixed);
    const QSizePolicy sign = m_pForm->m_pFilterLabel->sizePolicy();
    QCOMPARE(sign.horizontalPolicy(), QSizePolicy::Fixed);
    QCOMPARE(sign.verticalPolicy(), QSizePolicy::Fixed);
    QCOMPARE(m_pForm->m_pRegExpComboBox->minimumSize(), QSize(121, 0));
    QCOMPARE(m_pForm->m_pFilterColumnComboBox->count(), 0);

    QCOMPARE(m_pForm->m_pColumnLabel->buddy(), m_pForm->m_pFilterColumnComboBox);
    QCOMPARE(m_pForm->m_pFilterPatternLabel->buddy(), m_pForm->m_pFilterPatternLineEdit);
    QCOMPARE(m_pForm->m_pRegExpLabel->buddy(), m_pForm->m_pRegExpComboBox);
}

void TestForm::viewsCannotBeCollapsed()
{
    ShowActive();
    m_pForm->m_pSplitter->setSizes({0, 1000});
    QVERIFY(m_pForm->m_pSplitter->sizes().at(0) > 0);
    m_pForm->m_pSplitter->setSizes({1000, 0});
    QVERIFY(m_pForm->m_pSplitter->sizes().at(1) > 0);
}

void TestForm::viewProperties()
{
    for (const QTreeView* const view : {m_pForm->m_pBasicView, m_pForm->m_pDetailsView}) {
        QCOMPARE(view->editTriggers(), QAbstractItemView::NoEditTriggers);
        QVERIFY(view->tabKeyNavigation());
        QCOMPARE(view->selectionMode(), QAbstractItemView::ExtendedSelection);
        QCOMPARE(view->iconSize(), QSize(12, 12));
        QCOMPARE(view->verticalScrollMode(), QAbstractItemView::ScrollPerPixel);
        QVERIFY(!view->rootIsDecorated());
        QVERIFY(!view->itemsExpandable());
        QVERIFY(view->isSortingEnabled());
        QVERIFY(view->allColumnsShowFocus());
        QCOMPARE(view->header()->defaultSectionSize(), 50);
    }
    QVERIFY(m_pForm->m_pBasicView->dragEnabled());
    QCOMPARE(m_pForm->m_pBasicView->dragDropMode(), QAbstractItemView::DragDrop);
    QCOMPARE(m_pForm->m_pBasicView->selectionBehavior(), QAbstractItemView::SelectRows);
}

void TestForm::detailsViewKeepsDefaults()
{
    const QTreeView untouched;
    const QTreeView* const view = m_pForm->m_pDetailsView;
    QVERIFY(!view->dragEnabled());
    QCOMPARE(view->dragDropMode(), untouched.dragDropMode());
    QCOMPARE(view->selectionBehavior(), untouched.selectionBehavior());
    QCOMPARE(view->horizontalScrollMode(), untouched.horizontalScrollMode());
    QCOMPARE(view->alternatingRowColors(), untouched.alternatingRowColors());
}

void TestForm::everythingIsVisibleInitially()
{
    ShowActive();
    QVERIFY(m_pForm->m_pFilterFrame->isVisible());
    QVERIFY(m_pForm->m_pDetailsView->isVisible());
    QVERIFY(m_pForm->m_pFilterActiveLabel->isVisible());
    QVERIFY(m_pForm->m_pConnectButton->isEnabled());
}

void TestForm::buttonsAndActionsCallSlots()
{
    FormDialog& f = *m_pForm;
    const auto callsOf = [&f](auto&& action) {
        action();
        return f.TakeCalls().join(u'|');
    };
    QCOMPARE(callsOf([&] { f.m_pConnectButton->click(); }), QStringLiteral("Connect"));
    QCOMPARE(callsOf([&] { f.m_pCloseButton->click(); }), QStringLiteral("Close"));
    QCOMPARE(callsOf([&] { f.m_pImportAction->trigger(); }), QStringLiteral("Import"));
    QCOMPARE(callsOf([&] { f.m_pExportAction->trigger(); }), QStringLiteral("Export"));
    QCOMPARE(callsOf([&] { f.m_pNewAction->trigger(); }), QStringLiteral("New"));
    QCOMPARE(callsOf([&] { f.m_pDeleteAction->trigger(); }), QStringLiteral("Delete"));
    QCOMPARE(callsOf([&] { f.m_pEditAction->trigger(); }), QStringLiteral("Edit"));
    QCOMPARE(callsOf([&] { f.m_pDetailsAction->trigger(); }), QStringLiteral("ShowDetails 1"));
    QCOMPARE(callsOf([&] { f.m_pDetailsAction->setChecked(false); }), QStringLiteral("ShowDetails 0"));
    QCOMPARE(callsOf([&] { f.m_pFilterAction->setChecked(true); }), QStringLiteral("ShowFilter 1"));
    QCOMPARE(callsOf([&] { f.m_pFilterAction->trigger(); }), QStringLiteral("ShowFilter 0"));
}

void TestForm::filterWidgetsCallSlot()
{
    FormDialog& f = *m_pForm;
    const QStringList once{QStringLiteral("UpdateFilter")};

    f.m_pFilterColumnComboBox->addItems({QStringLiteral("a"), QStringLiteral("b")}); // the first becomes current
    QCOMPARE(f.TakeCalls(), once);
    f.m_pFilterColumnComboBox->setCurrentIndex(1);
    QCOMPARE(f.TakeCalls(), once);
    f.m_pRegExpComboBox->setCurrentIndex(2);
    QCOMPARE(f.TakeCalls(), once);
    f.m_pRegExpComboBox->setCurrentIndex(2);
    QCOMPARE(f.TakeCalls(), QStringList());
    QTest::keyClicks(f.m_pFilterPatternLineEdit, QStringLiteral("ab"));
    QCOMPARE(f.TakeCalls(), once + once);
    f.m_pFilterPatternLineEdit->setText(QStringLiteral("set by the program"));
    QCOMPARE(f.TakeCalls(), once);
}

void TestForm::viewsCallSlots()
{
    ShowActive();
    m_pForm->resize(600, 400);
    for (const QTreeView* const view : {m_pForm->m_pBasicView, m_pForm->m_pDetailsView}) {
        const QPoint second = view->visualRect(view->model()->index(1, 0)).center();
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, second);
        QCOMPARE(m_pForm->TakeCalls(), QStringList{QStringLiteral("Clicked 1")});
        QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, second);
        QCOMPARE(m_pForm->TakeCalls(), QStringList{QStringLiteral("DoubleClicked 1")});
    }
}

void TestForm::mnemonicsFocusFilterWidgets_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<QString>("focused");
    QTest::newRow("Alt+O") << Qt::Key_O << QStringLiteral("m_pFilterColumnComboBox");
    QTest::newRow("Alt+P") << Qt::Key_P << QStringLiteral("m_pFilterPatternLineEdit");
    QTest::newRow("Alt+M") << Qt::Key_M << QStringLiteral("m_pRegExpComboBox");
}

void TestForm::mnemonicsFocusFilterWidgets()
{
    QFETCH(Qt::Key, key);
    QFETCH(QString, focused);
    ShowActive();
    m_pForm->m_pCloseButton->setFocus();
    QTest::keyClick(m_pForm.get(), key, Qt::AltModifier);
    QVERIFY(m_pForm->focusWidget());
    QCOMPARE(m_pForm->focusWidget()->objectName(), focused);
    QCOMPARE(m_pForm->TakeCalls(), QStringList());
}

void TestForm::mnemonicsIgnoreHiddenWidgets()
{
    m_pForm->m_pFilterFrame->hide();
    ShowActive();
    m_pForm->m_pCloseButton->setFocus();
    for (const Qt::Key key : {Qt::Key_O, Qt::Key_P, Qt::Key_M}) {
        QTest::keyClick(m_pForm.get(), key, Qt::AltModifier);
        QCOMPARE(m_pForm->focusWidget(), m_pForm->m_pCloseButton);
    }
}

void TestForm::mnemonicAndEnterPressConnect()
{
    ShowActive();
    const QStringList once{QStringLiteral("Connect")};
    QVERIFY(m_pForm->m_pConnectButton->isDefault());
    QVERIFY(!m_pForm->m_pCloseButton->isDefault());

    QTest::keyClick(m_pForm.get(), Qt::Key_C, Qt::AltModifier);
    QVERIFY(m_pForm->m_pConnectButton->isDown()); // the animated click follows later
    QStringList calls;
    QTRY_COMPARE(calls += m_pForm->TakeCalls(), once);
    for (QWidget* const widget : std::initializer_list<QWidget*>{
             m_pForm->m_pBasicView, m_pForm->m_pDetailsView, m_pForm->m_pFilterColumnComboBox,
             m_pForm->m_pFilterPatternLineEdit, m_pForm->m_pRegExpComboBox, m_pForm->m_pConnectButton}) {
        widget->setFocus();
        QTest::keyClick(widget, Qt::Key_Return);
        QCOMPARE(m_pForm->TakeCalls(), once);
    }
    m_pForm->m_pBasicView->setFocus();
    QTest::keyClick(m_pForm->m_pBasicView, Qt::Key_Enter, Qt::KeypadModifier);
    QCOMPARE(m_pForm->TakeCalls(), once);
}

void TestForm::noOtherShortcuts()
{
    for (const QAction* const action : m_pForm->findChildren<QAction*>(QRegularExpression(QStringLiteral("^m_p"))))
        QVERIFY(action->shortcuts().isEmpty());
    QVERIFY(m_pForm->m_pCloseButton->shortcut().isEmpty());
    QCOMPARE(m_pForm->m_pConnectButton->shortcut(), QKeySequence(Qt::ALT | Qt::Key_C));
}

void TestForm::tabOrderIsTopToBottom()
{
    const QList<QWidget*> expected{m_pForm->m_pBasicView,
                                   m_pForm->m_pDetailsView,
                                   m_pForm->m_pFilterColumnComboBox,
                                   m_pForm->m_pFilterPatternLineEdit,
                                   m_pForm->m_pRegExpComboBox,
                                   m_pForm->m_pConnectButton,
                                   m_pForm->m_pCloseButton};
    QList<QWidget*> stops;
    QWidget* widget = m_pForm->m_pBasicView;
    do {
        if (expected.contains(widget))
            stops.append(widget);
        widget = widget->nextInFocusChain();
    } while (widget != m_pForm->m_pBasicView);
    QCOMPARE(stops, expected);
}

void TestForm::widgetTexts_data()
{
    const QString column = QStringLiteral(
        "The column selection defines in which column the filter searches for the given filter pattern.");
    const QString pattern = QStringLiteral(
        "Connection entries that do not match to the filter pattern (case-insensitive) are filtered out.");
    const QString mode = QStringLiteral(
        "The search mode defines in which way the filter searches for the filter pattern.\n\n\"plain text\" - only "
        "those entries are shown that include the text of the filter pattern\n\n\"wildcard\" - \"*\" is interpreted as "
        "one or zero of any character and \"?\" as one of any single character. \"[\" and \"]\" are used similar to "
        "\"regular expression\" mode (see below)\n\n\"regular expression\" - only for those users that are familiar "
        "with regular expressions (Perl-like syntax)");
    const QString connect = QStringLiteral("Click here to connect to the selected device(s).");
    const QString close = QStringLiteral("Click here to close the dialog without establishing any connection.");

    QTest::addColumn<QString>("help"); // tool tip and what's-this
    QTest::addColumn<QString>("text");
    QTest::newRow("m_pColumnLabel") << column << QStringLiteral("C&olumn");
    QTest::newRow("m_pFilterColumnComboBox") << column << QString();
    QTest::newRow("m_pFilterPatternLabel") << pattern << QStringLiteral("Filter &Pattern");
    QTest::newRow("m_pFilterPatternLineEdit") << pattern << QString();
    QTest::newRow("m_pFilterLabel") << pattern << QString();
    QTest::newRow("m_pRegExpLabel") << mode << QStringLiteral("Search &Mode");
    QTest::newRow("m_pRegExpComboBox") << mode << QString();
    QTest::newRow("m_pConnectButton") << connect << QStringLiteral("&Connect");
    QTest::newRow("m_pCloseButton") << close << QStringLiteral("Close");
}

void TestForm::widgetTexts()
{
    QFETCH(QString, help);
    QFETCH(QString, text);
    const auto* const widget = m_pForm->findChild<QWidget*>(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(widget);
    QCOMPARE(widget->toolTip(), help);
    QCOMPARE(widget->whatsThis(), help);
    QCOMPARE(widget->property("text").toString(), text);

    const MarkingTranslator translator(QStringLiteral("VexelConnectDlg"));
    m_pForm->retranslateUi(m_pForm.get());
    QCOMPARE(widget->toolTip(), Translated(help));
    QCOMPARE(widget->whatsThis(), Translated(help));
    QCOMPARE(widget->property("text").toString(), Translated(text));
}

void TestForm::dialogTexts()
{
    const QString title = QStringLiteral("Vexel - Connect Dialog");
    const QString help = QStringLiteral("Use the \"?\" button at the upper right corner to get more information.\n\n"
                                        "Right-click to get a menu with additional actions.");
    QCOMPARE(m_pForm->windowTitle(), title);
    QCOMPARE(m_pForm->toolTip(), help);
    QCOMPARE(m_pForm->whatsThis(), QString());

    const MarkingTranslator translator(QStringLiteral("VexelConnectDlg"));
    m_pForm->retranslateUi(m_pForm.get());
    QCOMPARE(m_pForm->windowTitle(), Translated(title));
    QCOMPARE(m_pForm->toolTip(), Translated(help));
}

void TestForm::actionTexts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("toolTip");
    QTest::newRow("m_pImportAction") << QStringLiteral("Import...")
                                     << QStringLiteral("Import set of connections from a file.");
    QTest::newRow("m_pExportAction") << QStringLiteral("Export...")
                                     << QStringLiteral("Export current set of connections to a file.");
    QTest::newRow("m_pNewAction") << QStringLiteral("New") << QStringLiteral("Add a new connection entry.");
    QTest::newRow("m_pDeleteAction") << QStringLiteral("Delete")
                                     << QStringLiteral("Delete currently selected entries. ");
    QTest::newRow("m_pDetailsAction") << QStringLiteral("Details")
                                      << QStringLiteral("Switch display of connection details on/off.");
    QTest::newRow("m_pEditAction") << QStringLiteral("Edit") << QStringLiteral("Edit currently selected entry.");
    QTest::newRow("m_pFilterAction") << QStringLiteral("Filter") << QStringLiteral("Switch display of filter on/off.");
}

void TestForm::actionTexts()
{
    QFETCH(QString, text);
    QFETCH(QString, toolTip);
    const auto* const action = m_pForm->findChild<QAction*>(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(action);
    QCOMPARE(action->text(), text);
    QCOMPARE(action->toolTip(), toolTip);

    const MarkingTranslator translator(QStringLiteral("VexelConnectDlg"));
    m_pForm->retranslateUi(m_pForm.get());
    QCOMPARE(action->text(), Translated(text));
    QCOMPARE(action->toolTip(), Translated(toolTip));
}

void TestForm::activeFilterHelp()
{
    const QLabel* const label = m_pForm->m_pFilterActiveLabel;
    QCOMPARE(label->toolTip(), QStringLiteral("filter is active"));
    QCOMPARE(label->text(), QString());

    const QString help = label->whatsThis();
    QVERIFY(help.startsWith(QStringLiteral("<!DOCTYPE HTML PUBLIC \"-//W3C//DTD HTML 4.0//EN\" "
                                           "\"http://www.w3.org/TR/REC-html40/strict.dtd\">")));
    QVERIFY(help.contains(QStringLiteral("<meta name=\"qrichtext\" content=\"1\" />")));
    QVERIFY(help.contains(QStringLiteral("<body style=\" font-family:'MS Shell Dlg 2'; font-size:8.25pt;")));

    QTextDocument document;
    document.setHtml(help);
    QCOMPARE(document.blockCount(), 3);
    const QStringList paragraphs{
        QStringLiteral("If this icon is shown it means that a filter is active and you can not see all connection "
                       "entries that exist. "),
        QString(),
        QStringLiteral("Open the context menu (via right-click) and select \"%1 Filter\" to edit the filter settings.")
            .arg(QChar(QChar::ObjectReplacementCharacter)),
    };
    int images = 0;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        QCOMPARE(block.text(), paragraphs.at(block.blockNumber()));
        const QTextBlockFormat format = block.blockFormat();
        QCOMPARE(format.topMargin(), 0.0);
        QCOMPARE(format.bottomMargin(), 0.0);
        QCOMPARE(format.leftMargin(), 0.0);
        QCOMPARE(format.rightMargin(), 0.0);
        QCOMPARE(format.textIndent(), 0.0);
        if (block.text().isEmpty())
            QCOMPARE(block.charFormat().fontPointSize(), 8.0);
        for (auto fragment = block.begin(); !fragment.atEnd(); ++fragment) {
            const QTextCharFormat text = fragment.fragment().charFormat();
            if (text.isImageFormat()) {
                QCOMPARE(text.toImageFormat().name(), QStringLiteral(":/filter.png"));
                ++images;
            } else {
                QCOMPARE(text.fontPointSize(), 8.0);
            }
        }
    }
    QCOMPARE(images, 1);

    const MarkingTranslator translator(QStringLiteral("VexelConnectDlg"));
    m_pForm->retranslateUi(m_pForm.get());
    QCOMPARE(label->toolTip(), QStringLiteral("[filter is active]"));
    QCOMPARE(label->whatsThis(), Translated(help));
    QCOMPARE(label->text(), QString());
}

void TestForm::searchModes()
{
    const QComboBox* const modes = m_pForm->m_pRegExpComboBox;
    QCOMPARE(modes->count(), 3);
    QCOMPARE(modes->itemText(0), QStringLiteral("plain text"));
    QCOMPARE(modes->itemText(1), QStringLiteral("wildcard"));
    QCOMPARE(modes->itemText(2), QStringLiteral("regular expression"));
    QCOMPARE(modes->currentIndex(), 0);
    QVERIFY(!modes->isEditable());
}

void TestForm::retranslationKeepsState()
{
    FormDialog& f = *m_pForm;
    f.m_pFilterColumnComboBox->addItems({QStringLiteral("a"), QStringLiteral("b")});
    f.m_pFilterColumnComboBox->setCurrentIndex(1);
    f.m_pFilterPatternLineEdit->setText(QStringLiteral("pattern"));
    f.m_pRegExpComboBox->setCurrentIndex(1);
    f.TakeCalls();

    const MarkingTranslator translator(QStringLiteral("VexelConnectDlg"));
    f.retranslateUi(&f);
    f.retranslateUi(&f);
    QCOMPARE(f.m_pRegExpComboBox->count(), 3);
    QCOMPARE(f.m_pRegExpComboBox->itemText(0), QStringLiteral("[plain text]"));
    QCOMPARE(f.m_pRegExpComboBox->itemText(1), QStringLiteral("[wildcard]"));
    QCOMPARE(f.m_pRegExpComboBox->itemText(2), QStringLiteral("[regular expression]"));
    QCOMPARE(f.m_pRegExpComboBox->currentIndex(), 1);
    QCOMPARE(f.m_pFilterColumnComboBox->currentIndex(), 1);
    QCOMPARE(f.m_pFilterPatternLineEdit->text(), QStringLiteral("pattern"));
    QVERIFY(!f.m_pFilterLabel->pixmap().isNull());
    QVERIFY(!f.m_pFilterActiveLabel->pixmap().isNull());
    QCOMPARE(f.m_pColumnLabel->buddy(), f.m_pFilterColumnComboBox);
    QCOMPARE(f.TakeCalls(), QStringList()); // the filter is unchanged
}

void TestForm::icons_data()
{
    QTest::addColumn<QString>("file");
    QTest::newRow("m_pImportAction") << QStringLiteral(":/import.png");
    QTest::newRow("m_pExportAction") << QStringLiteral(":/export.png");
    QTest::newRow("m_pNewAction") << QStringLiteral(":/plus.png");
    QTest::newRow("m_pDeleteAction") << QStringLiteral(":/minus.png");
    QTest::newRow("m_pDetailsAction") << QStringLiteral(":/details.png");
    QTest::newRow("m_pEditAction") << QStringLiteral(":/edit.png");
    QTest::newRow("m_pFilterAction") << QStringLiteral(":/filter.png");
    QTest::newRow("m_pConnectButton") << QStringLiteral(":/connect_to.xpm");
    QTest::newRow("m_pCloseButton") << QStringLiteral(":/exit.png");
}

void TestForm::icons()
{
    QFETCH(QString, file);
    const auto* const object = m_pForm->findChild<QObject*>(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(object);
    const auto icon = object->property("icon").value<QIcon>();
    QVERIFY(!icon.isNull());
    QVERIFY(!Pixels(file).isNull());
    QCOMPARE(icon.pixmap(QSize(16, 16), 1.0).toImage(), Pixels(file));
}

void TestForm::filterPixmaps()
{
    QCOMPARE(m_pForm->m_pFilterLabel->pixmap().toImage(), Pixels(QStringLiteral(":/filter.png")));
    QCOMPARE(m_pForm->m_pFilterActiveLabel->pixmap().toImage(), Pixels(QStringLiteral(":/filter.png")));
}

void TestForm::iconsHaveThreeSizes_data()
{
    QTest::addColumn<QString>("pattern");
    for (const char* const name :
         {"ok", "time", "import", "export", "plus", "minus", "details", "edit", "filter", "exit"})
        QTest::newRow(name) << QStringLiteral(":/%1%2.png").arg(QString::fromLatin1(name));
    QTest::newRow("connect_to") << QStringLiteral(":/connect_to%1.xpm");
}

void TestForm::iconsHaveThreeSizes()
{
    QFETCH(QString, pattern);
    const std::array suffixes{QString(), QStringLiteral("@2x"), QStringLiteral("@3x")};
    for (int scale = 1; scale <= 3; ++scale) {
        QImageReader reader(pattern.arg(suffixes.at(static_cast<std::size_t>(scale - 1))));
        const QByteArray format = pattern.endsWith(QStringLiteral(".xpm")) ? "xpm" : "png";
        QCOMPARE(reader.format(), format);
        const QImage image = reader.read();
        QCOMPARE(image.size(), QSize(16, 16) * scale);
        QVERIFY(image.hasAlphaChannel());
        if (scale < 3)
            QCOMPARE(image.devicePixelRatio(), scale); // Qt reads it from the file name
    }
}

void TestForm::checkIconIsGreenAndGreyWhenDisabled()
{
    const QIcon icon(QStringLiteral(":/ok.png"));
    const auto strongestColour = [&icon](QIcon::Mode mode, auto&& strengthOf) {
        const QImage image = icon.pixmap(QSize(12, 12), 1.0, mode).toImage().convertToFormat(QImage::Format_ARGB32);
        int strongest = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                if (qAlpha(image.pixel(x, y)) > 127)
                    strongest = std::max(strongest, strengthOf(image.pixelColor(x, y)));
        }
        return strongest;
    };
    const auto greenness = [](const QColor& c) {
        return c.green() - std::max(c.red(), c.blue());
    };
    const auto colourfulness = [](const QColor& c) {
        return std::max({c.red(), c.green(), c.blue()}) - std::min({c.red(), c.green(), c.blue()});
    };
    QVERIFY(strongestColour(QIcon::Normal, greenness) > 80);
    QVERIFY(strongestColour(QIcon::Disabled, colourfulness) < 16);
}

VEXEL_TEST(QTEST_MAIN, TestForm)
#include "tst_form.moc"
