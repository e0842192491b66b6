// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/cfgcenter.h"
#include "tests/support/dialogfixture.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QHeaderView>
#include <QItemDelegate>
#include <QProxyStyle>
#include <QScrollBar>

#include <algorithm>

namespace {

using Model = ConnectionsModel;

/// A proxy model's source that counts how many texts are requested, and gives one entry a large font. The font has the
/// effect of a name in a script whose fallback font is higher than the dialog's font.
class ObservedModel : public ConnectionsModel
{
public:
    ObservedModel()
        : ConnectionsModel(nullptr, QStringLiteral("ConnectionsModel"))
    {
    }

    QVariant data(const QModelIndex& index, int role) const override
    {
        if (role == Qt::DisplayRole)
            ++texts;
        if (role == Qt::FontRole && index.column() == tallColumn && index.isValid() &&
            GetConnection(index.row()).Subsystem == QLatin1String("tall")) {
            QFont font = QApplication::font();
            font.setPointSizeF(2 * font.pointSizeF());
            return font;
        }
        return ConnectionsModel::data(index, role);
    }

    int tallColumn = ColumnName;
    mutable int texts = 0;
};

class WideTextStyle : public QProxyStyle
{
public:
    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override
    {
        const int margin = metric == PM_FocusFrameHMargin ? 20 : 0;
        return margin + QProxyStyle::pixelMetric(metric, option, widget);
    }
};

QString Name(int number)
{
    return QStringLiteral("s%1").arg(number, 5, 10, QLatin1Char('0'));
}

} // namespace

/// Column widths and row heights in the two views.
class TestViewSizing : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void columnsFitTextsFarBelow();
    void columnsFitOnTallScreen();
    void lastColumnFitsInNarrowWindow();
    void columnsFitLastRow();
    void columnsNarrowAfterChange();
    void columnsNarrowAfterFontChange();
    void columnsNarrowAfterStyleChange();
    void widthsDoNotOscillateAtScrollBar();
    void costDoesNotDependOnListLength();

    void rowsAreAligned_data();
    void rowsAreAligned();
    void rowsAreAlignedBelow_data();
    void rowsAreAlignedBelow();
    void rowsAreAlignedAfterFontChange();
    void firstVisibleRowStays();
    void firstVisibleRowStaysAboveACurrentRowBelow();
    void currentRowStaysVisible();
    void currentFirstRowStaysWhole();
    void currentRowIsScrolledNoFurtherThanNeeded();
    void lastRowStaysVisible();
    void heightIsForgottenWithTheList();
    void heightIsKeptWhileTheListGrows();

private:
    void Show(int entries, QSize size);
    void Add(const QString& name, bool tall = false);
    QTreeView* Basic() const { return m_dialog->m_pBasicView; }
    QTreeView* Details() const { return m_dialog->m_pDetailsView; }
    QModelIndex Cell(int row, int column) const { return Basic()->model()->index(row, column); }
    QRect Rect(int row, int column) const
    {
        return (column <= Model::ColumnDeviceType ? Basic() : Details())->visualRect(Cell(row, column));
    }
    /// Whether the cell is as large as its contents need.
    bool Fits(int row, int column) const;
    /// Whether each visible row is at the same place in both views, and as high as its cells need.
    bool RowsAligned() const;

    std::unique_ptr<ObservedModel> m_model;
    std::unique_ptr<AppCounter> m_appCounter;
    std::unique_ptr<VexelConnectDlgGUI> m_dialog;
    QFont m_font;
};

void TestViewSizing::init()
{
    m_font = QApplication::font();
    CfgCenter::Close(); // the entries of the test before
    m_model = std::make_unique<ObservedModel>();
    m_appCounter = std::make_unique<AppCounter>(m_model.get(), QStringLiteral("VexelConnectDlg"));
    m_dialog = std::make_unique<VexelConnectDlgGUI>(nullptr, m_model.get(), m_appCounter.get());
}

void TestViewSizing::cleanup()
{
    m_dialog.reset();
    m_model.reset();
    m_appCounter.reset();
    QApplication::setFont(m_font);
}

void TestViewSizing::Add(const QString& name, bool tall)
{
    Connection entry = Entry(name);
    if (tall)
        entry.Subsystem = QStringLiteral("tall");
    m_model->AddConnection(entry);
}

void TestViewSizing::Show(int entries, QSize size)
{
    for (int i = 0; i < entries; ++i)
        Add(Name(i));
    m_dialog->m_pDetailsAction->trigger();
    m_dialog->resize(size);
    m_dialog->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_dialog.get()));
    QTRY_VERIFY(RowsAligned());
}

bool TestViewSizing::Fits(int row, int column) const
{
    QStyleOptionViewItem option;
    option.initFrom(Basic());
    option.decorationSize = Basic()->iconSize();
    const QSize needed = QItemDelegate().sizeHint(option, Cell(row, column));
    const QRect rect = Rect(row, column);
    return rect.width() >= needed.width() && rect.height() >= needed.height();
}

bool TestViewSizing::RowsAligned() const
{
    const int rows = Basic()->model()->rowCount();
    const int first = Basic()->indexAt(QPoint(1, 0)).row();
    const QModelIndex below = Basic()->indexAt(QPoint(1, Basic()->viewport()->height() - 1));
    for (int row = first; row >= 0 && row <= (below.isValid() ? below.row() : rows - 1); ++row) {
        const QRect left = Rect(row, Model::ColumnName);
        const QRect right = Rect(row, Model::ColumnLinkSpeed);
        if (left.top() != right.top() || left.height() != right.height())
            return false;
        for (int column = 0; column < Model::kColumnCount; ++column)
            if (!Fits(row, column))
                return false;
    }
    return first >= 0;
}

void TestViewSizing::columnsFitTextsFarBelow()
{
    Connection entry = Entry(Name(300) + QString(60, QLatin1Char('n')));
    entry.DeviceAddress = QString(60, QLatin1Char('a'));
    m_model->AddConnection(entry);
    Show(400, QSize(1200, 300));
    const int row = 301;
    QVERIFY(!Fits(row, Model::ColumnName));
    Details()->scrollTo(Cell(row, Model::ColumnLinkSpeed));
    QTRY_VERIFY(Fits(row, Model::ColumnName));
    QTRY_VERIFY(Fits(row, Model::ColumnDeviceAddress));
    // The next page does not make them narrower.
    const int width = Basic()->columnWidth(Model::ColumnName);
    Basic()->verticalScrollBar()->triggerAction(QAbstractSlider::SliderToMaximum);
    QTRY_VERIFY(RowsAligned());
    QCOMPARE(Basic()->columnWidth(Model::ColumnName), width);
}

void TestViewSizing::columnsFitOnTallScreen()
{
    Add(Name(70) + QString(60, QLatin1Char('n')));
    Show(400, QSize(1200, 300));
    QCoreApplication::processEvents(); // a window that has just been shown is fitted to the small screen
    m_dialog->resize(1200, 100 * Rect(0, Model::ColumnName).height());
    QTRY_VERIFY(Basic()->viewport()->rect().contains(Rect(75, Model::ColumnSelected).center()));
    QTRY_VERIFY(Fits(71, Model::ColumnName));
}

void TestViewSizing::lastColumnFitsInNarrowWindow()
{
    Show(20, QSize(300, 300));
    QVERIFY(Fits(0, Model::ColumnDeviceType));
    QVERIFY(Fits(0, Model::ColumnSubsystem));
    const int width = Basic()->columnWidth(Model::ColumnDeviceType);
    // In a wide window it takes the rest of the width.
    m_dialog->resize(3000, 300);
    QTRY_VERIFY(Basic()->columnWidth(Model::ColumnDeviceType) > width);
    QTRY_COMPARE(Rect(0, Model::ColumnDeviceType).right(), Basic()->viewport()->width() - 1);
    m_dialog->resize(300, 300);
    QTRY_COMPARE(Basic()->columnWidth(Model::ColumnDeviceType), width);
}

void TestViewSizing::columnsFitLastRow()
{
    Show(3, QSize(1200, 300));
    m_model->setData(m_model->index(2, Model::ColumnName), QString(60, QLatin1Char('z')));
    QTRY_VERIFY(Fits(2, Model::ColumnName));
}

void TestViewSizing::columnsNarrowAfterChange()
{
    Show(3, QSize(1200, 300));
    const int width = Basic()->columnWidth(Model::ColumnName);
    m_model->setData(m_model->index(1, Model::ColumnName), QString(60, QLatin1Char('n')));
    QTRY_VERIFY(Basic()->columnWidth(Model::ColumnName) > width);
    m_model->setData(m_model->index(1, Model::ColumnName), Name(1));
    QTRY_COMPARE(Basic()->columnWidth(Model::ColumnName), width);
}

void TestViewSizing::columnsNarrowAfterFontChange()
{
    Show(3, QSize(1200, 300));
    const int width = Basic()->columnWidth(Model::ColumnName);
    QFont font = m_font;
    font.setPointSizeF(3 * m_font.pointSizeF());
    QApplication::setFont(font);
    QTRY_VERIFY(Basic()->columnWidth(Model::ColumnName) > width);
    QApplication::setFont(m_font);
    QTRY_COMPARE(Basic()->columnWidth(Model::ColumnName), width);
}

void TestViewSizing::columnsNarrowAfterStyleChange()
{
    Show(3, QSize(1200, 300));
    const int width = Basic()->columnWidth(Model::ColumnName);
    const QString style = QApplication::style()->name();
    QApplication::setStyle(new WideTextStyle);
    QTRY_VERIFY(Basic()->columnWidth(Model::ColumnName) > width);
    QApplication::setStyle(style);
    QTRY_COMPARE(Basic()->columnWidth(Model::ColumnName), width);
}

void TestViewSizing::widthsDoNotOscillateAtScrollBar()
{
    Add(Name(300) + QString(200, QLatin1Char('n')));
    Show(400, QSize(1600, 300));
    QCOMPARE(Details()->horizontalScrollBarPolicy(), Qt::ScrollBarAsNeeded);
    // The long name is the last visible row. The scroll bar that it needs covers that row.
    const int height = Rect(0, Model::ColumnName).height();
    Basic()->verticalScrollBar()->setValue(302 * height - Basic()->viewport()->height());
    QTRY_COMPARE(Details()->horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOn);
    QTRY_VERIFY(Basic()->viewport()->height() <= Rect(301, Model::ColumnSelected).bottom());
    QTRY_VERIFY(RowsAligned());
    // After that nothing is measured or painted any more.
    for (int round = 0; round < 100; ++round)
        QCoreApplication::processEvents();
    m_model->texts = 0;
    for (int round = 0; round < 100; ++round)
        QCoreApplication::processEvents();
    QCOMPARE(m_model->texts, 0);
    QVERIFY(Fits(301, Model::ColumnName));
}

void TestViewSizing::costDoesNotDependOnListLength()
{
    const auto textsOfPageDown = [this] {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_PageDown, Qt::NoModifier);
        QCoreApplication::sendEvent(Basic(), &press);
        QCoreApplication::processEvents();
        m_model->texts = 0;
        QCoreApplication::sendEvent(Basic(), &press);
        QTRY_VERIFY_WITH_TIMEOUT((QCoreApplication::processEvents(), m_model->texts > 0), 5000);
        for (int i = 0; i < 10; ++i)
            QCoreApplication::processEvents();
    };
    Show(200, QSize(1200, 300));
    Basic()->setCurrentIndex(Cell(0, Model::ColumnName));
    textsOfPageDown();
    const int texts = m_model->texts;
    QVERIFY(texts > 0);
    for (int i = 200; i < 5000; ++i)
        Add(Name(i));
    QTRY_VERIFY(RowsAligned());
    Basic()->setCurrentIndex(Cell(0, Model::ColumnName));
    QTRY_VERIFY(RowsAligned());
    textsOfPageDown();
    QVERIFY2(m_model->texts <= 2 * texts, qPrintable(QStringLiteral("%1, %2").arg(m_model->texts).arg(texts)));
}

void TestViewSizing::rowsAreAligned_data()
{
    QTest::addColumn<double>("pointSize");
    for (const int size : {5, 6, 7, 9, 14, 24})
        QTest::addRow("%d pt", size) << double(size);
}

void TestViewSizing::rowsAreAligned()
{
    QFETCH(double, pointSize);
    QFont font = m_font;
    font.setPointSizeF(pointSize);
    QApplication::setFont(font);
    // Names in several scripts. Their fallback fonts can be higher than the dialog's font.
    for (const char16_t* name : {u"\u0e2a\u0e16\u0e32\u0e19\u0e35\u0e1b\u0e49\u0e2d\u0e21", u"\u6771\u4eac\u53d7\u4fe1",
                                 u"\uc11c\uc6b8", u"\u05d0\u05d1", u"\u0627\u0644", u"plain"})
        Add(QString::fromUtf16(name));
    Show(3, QSize(1200, 500));
    QVERIFY(RowsAligned());
    for (const char16_t* name : {u"1 \u0e2a\u0e16\u0e32\u0e19\u0e35", u"1 \u6771\u4eac", u"1 plain"}) {
        m_model->setData(m_model->index(0, Model::ColumnName), QString::fromUtf16(name));
        QTRY_VERIFY(RowsAligned());
    }
}

void TestViewSizing::rowsAreAlignedBelow_data()
{
    QTest::addColumn<int>("tallColumn");
    QTest::addColumn<int>("row");
    for (const int column : {Model::ColumnName, Model::ColumnDeviceAddress})
        for (const int row : {0, 3, 390})
            QTest::addRow("column %d, row %d", column, row) << column << row;
}

void TestViewSizing::rowsAreAlignedBelow()
{
    QFETCH(int, tallColumn);
    QFETCH(int, row);
    m_model->tallColumn = tallColumn;
    m_model->AddConnection(Entry(Name(row) + QLatin1Char(' ')));
    m_model->setData(m_model->index(0, Model::ColumnSubsystem), QStringLiteral("tall"));
    Show(400, QSize(1200, 300));
    const int tall = row + 1;
    QCOMPARE(Cell(tall, Model::ColumnSubsystem).data().toString(), QStringLiteral("tall"));
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    for (const int target : {0, tall, 0, 399, tall}) {
        Details()->scrollTo(Cell(target, Model::ColumnLinkSpeed));
        QTRY_VERIFY(RowsAligned());
        QTRY_VERIFY(Details()->verticalScrollBar()->maximum() == Basic()->verticalScrollBar()->maximum());
    }
    QVERIFY(Fits(tall, tallColumn));
}

void TestViewSizing::rowsAreAlignedAfterFontChange()
{
    Show(50, QSize(1200, 300));
    const int before = Rect(0, Model::ColumnName).height();
    for (const double factor : {3.0, 0.5, 1.0}) {
        QFont font = m_font;
        font.setPointSizeF(factor * m_font.pointSizeF());
        QApplication::setFont(font);
        QTRY_VERIFY((Rect(0, Model::ColumnName).height() > before) == (factor > 1));
        QTRY_VERIFY(RowsAligned());
    }
    QTRY_COMPARE(Rect(0, Model::ColumnName).height(), before);
}

void TestViewSizing::firstVisibleRowStays()
{
    Show(400, QSize(1200, 300));
    QScrollBar* const bar = Basic()->verticalScrollBar();
    bar->setValue(200 * Rect(0, Model::ColumnName).height());
    QTRY_VERIFY(RowsAligned());
    QCOMPARE(Basic()->indexAt(QPoint(1, 1)).row(), 200);
    const int height = Rect(0, Model::ColumnName).height();
    m_model->setData(m_model->index(203, Model::ColumnSubsystem), QStringLiteral("tall"));
    QTRY_VERIFY(Rect(200, Model::ColumnName).height() > height);
    QTRY_VERIFY(RowsAligned());
    QCOMPARE(Basic()->indexAt(QPoint(1, 1)).row(), 200);
    QCOMPARE(Rect(200, Model::ColumnName).top(), 0);
}

void TestViewSizing::firstVisibleRowStaysAboveACurrentRowBelow()
{
    Show(400, QSize(1200, 300));
    const int height = Rect(0, Model::ColumnName).height();
    // Less than half of the current row is visible.
    const int current = 200 + (Basic()->viewport()->height() + height / 2) / height;
    Basic()->setCurrentIndex(Cell(current, Model::ColumnName));
    Basic()->verticalScrollBar()->setValue(200 * height);
    QTRY_VERIFY(RowsAligned());
    m_model->setData(m_model->index(203, Model::ColumnSubsystem), QStringLiteral("tall"));
    QTRY_VERIFY(Rect(200, Model::ColumnName).height() > height);
    QTRY_VERIFY(RowsAligned());
    QCOMPARE(Rect(200, Model::ColumnName).top(), 0);
}

void TestViewSizing::currentRowStaysVisible()
{
    Show(400, QSize(1200, 300));
    const int height = Rect(0, Model::ColumnName).height();
    Basic()->setCurrentIndex(Cell(0, Model::ColumnName));
    m_model->setData(m_model->index(50, Model::ColumnSubsystem), QStringLiteral("tall"));
    for (int row = 0; row < 50; ++row)
        QTest::keyClick(Basic(), Qt::Key_Down);
    QCOMPARE(Basic()->currentIndex().row(), 50);
    QTRY_VERIFY(Rect(0, Model::ColumnName).height() > height);
    QTRY_VERIFY(RowsAligned());
    QVERIFY(Basic()->viewport()->rect().contains(Rect(50, Model::ColumnStatus)));
}

void TestViewSizing::currentFirstRowStaysWhole()
{
    Show(400, QSize(1200, 300));
    const int height = Rect(0, Model::ColumnName).height();
    Basic()->setCurrentIndex(Cell(0, Model::ColumnName));
    Basic()->verticalScrollBar()->setValue(height / 2); // half of it is out of sight
    m_model->setData(m_model->index(3, Model::ColumnSubsystem), QStringLiteral("tall"));
    QTRY_VERIFY(Rect(0, Model::ColumnName).height() > height);
    QTRY_VERIFY(RowsAligned());
    QCOMPARE(Rect(0, Model::ColumnName).top(), 0);
}

void TestViewSizing::currentRowIsScrolledNoFurtherThanNeeded()
{
    Show(400, QSize(1200, 300));
    const int height = Rect(0, Model::ColumnName).height();
    Basic()->setCurrentIndex(Cell(50, Model::ColumnName)); // the last one in sight
    m_model->setData(m_model->index(50, Model::ColumnSubsystem), QStringLiteral("tall"));
    QTRY_VERIFY(Rect(50, Model::ColumnName).height() > height);
    QTRY_VERIFY(RowsAligned());
    QCOMPARE(Rect(50, Model::ColumnName).bottom(), Basic()->viewport()->height() - 1);
}

void TestViewSizing::lastRowStaysVisible()
{
    Show(400, QSize(1200, 300));
    const int height = Rect(0, Model::ColumnName).height();
    m_model->setData(m_model->index(395, Model::ColumnSubsystem), QStringLiteral("tall"));
    Basic()->verticalScrollBar()->setValue(Basic()->verticalScrollBar()->maximum());
    QTRY_VERIFY(Rect(0, Model::ColumnName).height() > height);
    QTRY_VERIFY(RowsAligned());
    QVERIFY(Basic()->viewport()->rect().contains(Rect(399, Model::ColumnStatus)));
}

void TestViewSizing::heightIsForgottenWithTheList()
{
    Show(10, QSize(1200, 500));
    const int height = Rect(0, Model::ColumnName).height();
    m_model->setData(m_model->index(5, Model::ColumnSubsystem), QStringLiteral("tall"));
    QTRY_VERIFY(Rect(0, Model::ColumnName).height() > height);
    m_model->removeRows(0, m_model->rowCount());
    for (int i = 0; i < 10; ++i)
        Add(Name(i));
    QTRY_VERIFY(Basic()->model()->rowCount() == 10 && Rect(0, Model::ColumnName).height() == height);
    QTRY_VERIFY(RowsAligned());
}

void TestViewSizing::heightIsKeptWhileTheListGrows()
{
    Show(100, QSize(1200, 300));
    const int before = Rect(0, Model::ColumnName).height();
    m_model->setData(m_model->index(5, Model::ColumnSubsystem), QStringLiteral("tall"));
    QTRY_VERIFY(Rect(0, Model::ColumnName).height() > before);
    const int height = Rect(0, Model::ColumnName).height();
    Basic()->verticalScrollBar()->triggerAction(QAbstractSlider::SliderToMaximum);
    QTRY_VERIFY(RowsAligned());
    Add(Name(50) + QString(60, QLatin1Char('n')));
    QTRY_VERIFY(Basic()->model()->rowCount() == 101);
    for (int round = 0; round < 100; ++round)
        QCoreApplication::processEvents();
    QCOMPARE(Rect(99, Model::ColumnName).height(), height);
}

VEXEL_TEST(QTEST_MAIN, TestViewSizing)
#include "tst_viewsizing.moc"
