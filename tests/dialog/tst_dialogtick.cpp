// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/dialogfixture.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QStyleFactory>

#include <cmath>

namespace {

/// The relative luminance by which contrasts are defined: 0 for black, 1 for white.
double Luminance(QColor color)
{
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double Contrast(double one, double other)
{
    return (std::max(one, other) + 0.05) / (std::min(one, other) + 0.05);
}

QPalette DarkPalette()
{
    QPalette palette(QColor(45, 45, 45));
    palette.setColor(QPalette::Base, QColor(30, 30, 30));
    palette.setColor(QPalette::Text, QColor(230, 230, 230));
    palette.setColor(QPalette::Highlight, QColor(42, 130, 218));
    return palette;
}

} // namespace

/// The tick of an entry can be seen on a selected row.
class TestDialogTick : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_palette = QApplication::palette();
        m_fixture = std::make_unique<DialogFixture>();
    }
    void cleanup()
    {
        m_fixture.reset();
        QApplication::setPalette(m_palette);
    }

    void tickIsSeenOnSelectedRow_data();
    void tickIsSeenOnSelectedRow();
    void unselectedRowShowsTheModelsIcon();

private:
    /// Paints the first row's tick cell as at a scale factor.
    QImage Painted(double scale) const;

    QPalette m_palette;
    std::unique_ptr<DialogFixture> m_fixture;
};

QImage TestDialogTick::Painted(double scale) const
{
    QTreeView* const view = m_fixture->BasicView();
    const QRect cell = view->visualRect(m_fixture->Proxy()->index(0, ConnectionsModel::ColumnSelected));
    QImage image((QSizeF(cell.size()) * scale).toSize(), QImage::Format_RGB32);
    image.setDevicePixelRatio(scale);
    view->viewport()->render(&image, QPoint(), cell);
    return image;
}

void TestDialogTick::tickIsSeenOnSelectedRow_data()
{
    QTest::addColumn<QPalette>("palette");
    QTest::addColumn<double>("scale");
    const std::unique_ptr<QStyle> style(QStyleFactory::create(QStringLiteral("fusion")));
    QPalette light = style->standardPalette();
    QPalette pale = light;
    pale.setColor(QPalette::Highlight, QColor(200, 225, 255));
    QPalette green = light;
    green.setColor(QPalette::Highlight, QColor(40, 160, 80));
    const std::pair<const char*, QPalette> palettes[] = {
        {"light", light}, {"dark", DarkPalette()}, {"pale highlight", pale}, {"green highlight", green}};
    for (const auto& [name, palette] : palettes)
        for (const double scale : {1.0, 1.5, 2.0})
            QTest::addRow("%s, %.1fx", name, scale) << palette << scale;
}

void TestDialogTick::tickIsSeenOnSelectedRow()
{
    QFETCH(QPalette, palette);
    QFETCH(double, scale);
    QApplication::setPalette(palette);
    m_fixture->Build();
    m_fixture->Add({Entry("a", Connection::KiteEcho, true), Entry("b")});
    m_fixture->Show();
    m_fixture->BasicView()->selectionModel()->select(m_fixture->Proxy()->index(0, 0),
                                                     QItemSelectionModel::Select | QItemSelectionModel::Rows);
    const QImage image = Painted(scale);
    // Where the icon has its tick, and where the icon is transparent.
    QTreeView* const view = m_fixture->BasicView();
    const QRect cell(QPoint(), view->visualRect(m_fixture->Proxy()->index(0, 0)).size());
    QRect place(QPoint(view->style()->pixelMetric(QStyle::PM_FocusFrameHMargin) + 1, 0), view->iconSize());
    place.moveTop((cell.height() - place.height()) / 2);
    QImage icon(image.size(), QImage::Format_ARGB32);
    icon.setDevicePixelRatio(scale);
    icon.fill(Qt::transparent);
    QPainter painter(&icon);
    QIcon(QStringLiteral(":/ok.png")).paint(&painter, place);
    painter.end();
    const QRect pixels(QRectF(QPointF(place.topLeft()) * scale, QSizeF(place.size()) * scale).toAlignedRect());
    double tick = 0;
    double ground = 0;
    int tickPixels = 0;
    int groundPixels = 0;
    for (int y = pixels.top() + 1; y < pixels.bottom(); ++y) {
        for (int x = pixels.left() + 1; x < pixels.right(); ++x) {
            const int alpha = qAlpha(icon.pixel(x, y));
            const double luminance = Luminance(image.pixelColor(x, y));
            if (alpha > 240) {
                tick += luminance;
                ++tickPixels;
            } else if (alpha < 10) {
                ground += luminance;
                ++groundPixels;
            }
        }
    }
    QVERIFY(tickPixels > 0);
    QVERIFY(groundPixels > 0);
    // On white it is 2.7; on a highlight without a plate about 1.2.
    const double contrast = Contrast(tick / tickPixels, ground / groundPixels);
    QVERIFY2(contrast >= 2.2, qPrintable(QString::number(contrast)));
}

void TestDialogTick::unselectedRowShowsTheModelsIcon()
{
    m_fixture->Build();
    m_fixture->Add({Entry("a", Connection::KiteEcho, true)});
    m_fixture->Show();
    const auto image = [this](const QVariant& decoration) {
        return decoration.value<QIcon>().pixmap(m_fixture->BasicView()->iconSize()).toImage();
    };
    const QVariant shown = m_fixture->Proxy()->index(0, 0).data(Qt::DecorationRole);
    const QVariant models = m_fixture->model->index(0, 0).data(Qt::DecorationRole);
    QCOMPARE(image(shown), image(models));
    QCOMPARE(shown.value<QIcon>().actualSize(QSize(12, 12)), models.value<QIcon>().actualSize(QSize(12, 12)));
    QCOMPARE(shown.value<QIcon>().actualSize(QSize(64, 64)), models.value<QIcon>().actualSize(QSize(64, 64)));
}

VEXEL_TEST(QTEST_MAIN, TestDialogTick)
#include "tst_dialogtick.moc"
