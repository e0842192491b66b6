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
