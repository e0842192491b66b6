// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/cfgcenter.h"
#include "platform/guibase.h"
#include "platform/icfg.h"
#include "tests/support/testmain.h"

#include <QGuiApplication>
#include <QScreen>
#include <QTemporaryDir>
#include <QTest>
#include <QWidget>

#include <memory>
#include <optional>

class TestGuiBase : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_store.emplace();
        QVERIFY(m_store->isValid());
        QVERIFY(CfgCenter::Open(m_store->path()));
    }
    void cleanup()
    {
        GuiBase::Instance().SetMainWidget(nullptr);
        CfgCenter::Close();
        m_store.reset();
    }

    void instanceIsASingleton() { QCOMPARE(&GuiBase::Instance(), &GuiBase::Instance()); }

    void hasNoMainWidgetUntilOneIsSet()
    {
        QVERIFY(!GuiBase::Instance().GetMainWidget());
        QWidget widget;
        GuiBase::Instance().SetMainWidget(&widget);
        QCOMPARE(GuiBase::Instance().GetMainWidget(), &widget);
        QWidget other;
        GuiBase::Instance().SetMainWidget(&other);
        QCOMPARE(GuiBase::Instance().GetMainWidget(), &other);
        GuiBase::Instance().SetMainWidget(nullptr);
        QVERIFY(!GuiBase::Instance().GetMainWidget());
    }

    void forgetsADestroyedMainWidget()
    {
        auto widget = std::make_unique<QWidget>();
        GuiBase::Instance().SetMainWidget(widget.get());
        widget.reset();
        QVERIFY(!GuiBase::Instance().GetMainWidget());
    }

    void sizeIsUnchangedWithoutAStoredOne()
    {
        QWidget widget;
        widget.setObjectName(QStringLiteral("Dialog"));
        widget.resize(321, 123);
        GuiBase::Instance().RestoreWidgetSize(&widget);
        QCOMPARE(widget.size(), QSize(321, 123));
    }

    void sizeIsRestoredInTheNextRun()
    {
        Store(QStringLiteral("Dialog"), {700, 400});
        Store(QStringLiteral("Other/../Dialog"), {200, 100});
        QVERIFY(CfgCenter::SaveDocument());
        QVERIFY(CfgCenter::Open(m_store->path()));
        QCOMPARE(Restored(QStringLiteral("Dialog")), QSize(700, 400));
        QCOMPARE(Restored(QStringLiteral("Other/../Dialog")), QSize(200, 100));
    }

    void sizeIsStoredInTheUserConfiguration()
    {
        Store(QStringLiteral("Dialog"), {700, 400});
        const std::unique_ptr<ICfg> sizes(
            CfgCenter::GetAppCfg(View::User)->OpenChild(QStringLiteral("WidgetSizes"), 0));
        const std::unique_ptr<ICfg> dialog(sizes->OpenChild(QStringLiteral("Dialog"), 0));
        QCOMPARE(dialog->GetInt(QStringLiteral("Width"), 0, 0), 700);
        QCOMPARE(dialog->GetInt(QStringLiteral("Height"), 0, 0), 400);
    }

    void sizesLargerThanTheScreenAreCutToIt()
    {
        const QSize screen = QGuiApplication::primaryScreen()->availableSize();
        Store(QStringLiteral("Dialog"), screen + QSize(1, 1));
        QCOMPARE(Restored(QStringLiteral("Dialog")), screen);
        Store(QStringLiteral("Dialog"), QSize(200, 16384));
        QCOMPARE(Restored(QStringLiteral("Dialog")), QSize(200, screen.height()));
        Store(QStringLiteral("Dialog"), screen);
        QCOMPARE(Restored(QStringLiteral("Dialog")), screen);
    }

    void positionIsRestoredInTheNextRun()
    {
        Store(QStringLiteral("Dialog"), QRect(170, 90, 300, 200));
        QVERIFY(CfgCenter::SaveDocument());
        QVERIFY(CfgCenter::Open(m_store->path()));
        QCOMPARE(RestoredPlace(QStringLiteral("Dialog")), QRect(170, 90, 300, 200));
    }

    void windowThatWasNeverShownHasNoPosition()
    {
        Store(QStringLiteral("Dialog"), {300, 200});
        const std::unique_ptr<ICfg> node = Node(QStringLiteral("Dialog"));
        QCOMPARE(node->GetString(QStringLiteral("Left"), QStringLiteral("none"), 0), QStringLiteral("none"));
        QWidget widget;
        widget.setObjectName(QStringLiteral("Dialog"));
        GuiBase::Instance().RestoreWidgetSize(&widget);
        QVERIFY(!widget.testAttribute(Qt::WA_Moved)); // Qt still chooses one
    }

    void placeOutsideTheScreenIsMovedInside_data()
    {
        QTest::addColumn<QRect>("stored");
        QTest::addColumn<QRect>("restored");
        const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
        const QSize size(300, 200);
        const int left = screen.right() + 1 - size.width();
        const int top = screen.bottom() + 1 - size.height();
        const auto row = [&size](const char* name, const QPoint& stored, const QPoint& restored) {
            QTest::newRow(name) << QRect(stored, size) << QRect(restored, size);
        };
        row("beyond the right edge", screen.topRight(), {left, screen.top()});
        row("beyond the lower edge", screen.bottomLeft(), {screen.left(), top});
        row("over the corner", screen.topLeft() - QPoint(100, 50), screen.topLeft());
        row("on a screen that is gone", {-2500, 9000}, {screen.left(), top});
        row("far away", {65536, 65536}, {left, top});
        QTest::newRow("larger than the screen") << QRect(QPoint(50, 50), screen.size() + QSize(9, 9)) << screen;
    }
    void placeOutsideTheScreenIsMovedInside()
    {
        QFETCH(const QRect, stored);
        QFETCH(const QRect, restored);
        Store(QStringLiteral("Dialog"), stored);
        QCOMPARE(RestoredPlace(QStringLiteral("Dialog")), restored);
    }

    void invalidPositionIsIgnored_data()
    {
        QTest::addColumn<QString>("left");
        QTest::addColumn<QString>("top");
        QTest::newRow("none") << QString() << QString();
        QTest::newRow("no number") << QStringLiteral("left") << QStringLiteral("10");
        QTest::newRow("only one") << QStringLiteral("10") << QString();
        QTest::newRow("too far") << QStringLiteral("10") << QStringLiteral("65537");
        QTest::newRow("largest number") << QStringLiteral("2147483647") << QStringLiteral("2147483647");
        QTest::newRow("smallest number") << QStringLiteral("-2147483648") << QStringLiteral("-2147483648");
    }
    void invalidPositionIsIgnored()
    {
        QFETCH(const QString, left);
        QFETCH(const QString, top);
        Store(QStringLiteral("Dialog"), QRect(170, 90, 300, 200));
        const std::unique_ptr<ICfg> node = Node(QStringLiteral("Dialog"));
        node->SetString(QStringLiteral("Left"), left, 0);
        node->SetString(QStringLiteral("Top"), top, 0);
        QCOMPARE(RestoredPlace(QStringLiteral("Dialog")), QRect(QPoint(40, 30), QSize(300, 200)));
    }

    void windowIsWholeOnTheScreenWheneverItIsShown()
    {
        Store(QStringLiteral("Dialog"), QRect(170, 90, 300, 200));
        QWidget widget;
        widget.setObjectName(QStringLiteral("Dialog"));
        GuiBase::Instance().RestoreWidgetSize(&widget);
        widget.show();
        QVERIFY(QTest::qWaitForWindowExposed(&widget));
        const QRect screen = widget.screen()->availableGeometry();
        // As if the screen had become smaller meanwhile.
        widget.hide();
        widget.setGeometry(QRect(screen.center(), screen.size()));
        widget.show();
        QTRY_VERIFY(screen.contains(widget.frameGeometry()));

        // Elsewhere it stays where it is.
        widget.hide();
        widget.setGeometry(160, 80, 300, 200);
        widget.show();
        QVERIFY(QTest::qWaitForWindowExposed(&widget));
        QTRY_COMPARE(widget.geometry(), QRect(160, 80, 300, 200));
    }

    void maximisedWindowStoresItsNormalPlace()
    {
        QWidget widget;
        widget.setObjectName(QStringLiteral("Dialog"));
        widget.setGeometry(170, 90, 300, 200);
        widget.show();
        QVERIFY(QTest::qWaitForWindowExposed(&widget));
        widget.showMaximized();
        QTRY_VERIFY(widget.size() != QSize(300, 200));
        GuiBase::Instance().StoreWidgetSize(&widget);
        QCOMPARE(RestoredPlace(QStringLiteral("Dialog")), QRect(170, 90, 300, 200));
    }

    void storeWidgetSizeDoesNotSave()
    {
        Store(QStringLiteral("Dialog"), {700, 400});
        QVERIFY(CfgCenter::Open(m_store->path()));
        QCOMPARE(Restored(QStringLiteral("Dialog")), kUntouched);
    }

    void maximisedWindowStoresItsNormalSize()
    {
        QWidget widget;
        widget.setObjectName(QStringLiteral("Dialog"));
        widget.resize(300, 200);
        widget.show();
        QVERIFY(QTest::qWaitForWindowExposed(&widget));
        widget.showMaximized();
        QTRY_VERIFY(widget.size() != QSize(300, 200));
        GuiBase::Instance().StoreWidgetSize(&widget);
        QCOMPARE(Restored(QStringLiteral("Dialog")), QSize(300, 200));
    }

    void invalidSizeIsIgnored_data()
    {
        QTest::addColumn<QString>("width");
        QTest::addColumn<QString>("height");
        QTest::newRow("zero width") << QStringLiteral("0") << QStringLiteral("400");
        QTest::newRow("zero height") << QStringLiteral("700") << QStringLiteral("0");
        QTest::newRow("negative") << QStringLiteral("-700") << QStringLiteral("400");
        QTest::newRow("both negative") << QStringLiteral("-700") << QStringLiteral("-400");
        QTest::newRow("too wide") << QStringLiteral("16385") << QStringLiteral("400");
        QTest::newRow("too high") << QStringLiteral("700") << QStringLiteral("16777215");
        QTest::newRow("largest number") << QStringLiteral("2147483647") << QStringLiteral("2147483647");
        QTest::newRow("does not fit into an int") << QStringLiteral("4294967996") << QStringLiteral("400");
        QTest::newRow("no number") << QStringLiteral("wide") << QStringLiteral("400");
        QTest::newRow("empty") << QString() << QString();
    }
    void invalidSizeIsIgnored()
    {
        QFETCH(QString, width);
        QFETCH(QString, height);
        const std::unique_ptr<ICfg> sizes(
            CfgCenter::GetAppCfg(View::User)->OpenChild(QStringLiteral("WidgetSizes"), 0));
        const std::unique_ptr<ICfg> dialog(sizes->OpenChild(QStringLiteral("Dialog"), 0));
        dialog->SetString(QStringLiteral("Width"), width, 0);
        dialog->SetString(QStringLiteral("Height"), height, 0);
        QCOMPARE(Restored(QStringLiteral("Dialog")), kUntouched);
    }

    void incompleteSizeIsIgnored()
    {
        Store(QStringLiteral("Dialog"), {700, 400});
        const std::unique_ptr<ICfg> sizes(
            CfgCenter::GetAppCfg(View::User)->OpenChild(QStringLiteral("WidgetSizes"), 0));
        const std::unique_ptr<ICfg> dialog(sizes->OpenChild(QStringLiteral("Dialog"), 0));
        dialog->Remove(QStringLiteral("Height"), 0);
        QCOMPARE(Restored(QStringLiteral("Dialog")), kUntouched);
    }

    void unnamedWidgetStoresNothing()
    {
        Store(QString(), {700, 400});
        QCOMPARE(Restored(QString()), kUntouched);
        QVERIFY(CfgCenter::SaveDocument());
        QVERIFY(QDir(m_store->path()).isEmpty());
    }

    void nullWidgetIsIgnored()
    {
        GuiBase::Instance().RestoreWidgetSize(nullptr);
        GuiBase::Instance().StoreWidgetSize(nullptr);
        QVERIFY(CfgCenter::SaveDocument());
        QVERIFY(QDir(m_store->path()).isEmpty());
    }

private:
    static constexpr QSize kUntouched{321, 123};

    static void Store(const QString& name, const QSize& size)
    {
        QWidget widget;
        widget.setObjectName(name);
        widget.resize(size);
        GuiBase::Instance().StoreWidgetSize(&widget);
    }

    static void Store(const QString& name, const QRect& place)
    {
        QWidget widget;
        widget.setObjectName(name);
        widget.setGeometry(place);
        GuiBase::Instance().StoreWidgetSize(&widget);
    }

    static std::unique_ptr<ICfg> Node(const QString& name)
    {
        const std::unique_ptr<ICfg> sizes(
            CfgCenter::GetAppCfg(View::User)->OpenChild(QStringLiteral("WidgetSizes"), 0));
        return std::unique_ptr<ICfg>(sizes->OpenChild(name, 0));
    }

    static QRect RestoredPlace(const QString& name)
    {
        QWidget widget;
        widget.setObjectName(name);
        widget.setGeometry(QRect(QPoint(40, 30), kUntouched));
        GuiBase::Instance().RestoreWidgetSize(&widget);
        return widget.geometry();
    }

    static QSize Restored(const QString& name)
    {
        QWidget widget;
        widget.setObjectName(name);
        widget.resize(kUntouched);
        GuiBase::Instance().RestoreWidgetSize(&widget);
        return widget.size();
    }

    std::optional<QTemporaryDir> m_store;
};

VEXEL_TEST(QTEST_MAIN, TestGuiBase)
#include "tst_guibase.moc"
