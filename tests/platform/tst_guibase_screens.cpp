// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/cfgcenter.h"
#include "platform/guibase.h"
#include "tests/support/files.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QScreen>
#include <QTemporaryDir>
#include <QTest>
#include <QWidget>

namespace {

// The second screen stands to the left of the first one, a little lower.
const QRect kFirst(0, 0, 800, 600);
const QRect kSecond(-1000, 100, 1000, 900);

} // namespace

/// Two screens, which the platform plug-in "offscreen" simulates.
class TestGuiBaseScreens : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QCOMPARE(QGuiApplication::screens().size(), 2);
        QCOMPARE(QGuiApplication::screens().at(0)->availableGeometry(), kFirst);
        QCOMPARE(QGuiApplication::screens().at(1)->availableGeometry(), kSecond);
    }
    void cleanup() { CfgCenter::Close(); }

    void windowIsFittedToTheScreenThatHasMostOfIt_data()
    {
        QTest::addColumn<QRect>("stored");
        QTest::addColumn<QRect>("restored");
        QTest::newRow("on the first") << QRect(10, 20, 300, 200) << QRect(10, 20, 300, 200);
        QTest::newRow("on the second") << QRect(-900, 300, 300, 200) << QRect(-900, 300, 300, 200);
        QTest::newRow("mostly on the second") << QRect(-200, 300, 300, 200) << QRect(-300, 300, 300, 200);
        QTest::newRow("mostly on the first") << QRect(-100, 300, 300, 200) << QRect(0, 300, 300, 200);
        QTest::newRow("on neither") << QRect(-900, -700, 300, 200) << QRect(0, 0, 300, 200);
        QTest::newRow("too large for the first") << QRect(0, 0, 900, 800) << QRect(0, 0, 800, 600);
        QTest::newRow("not too large for the second") << QRect(-1000, 150, 900, 800) << QRect(-1000, 150, 900, 800);
    }
    void windowIsFittedToTheScreenThatHasMostOfIt()
    {
        QFETCH(const QRect, stored);
        QFETCH(const QRect, restored);
        QWidget widget;
        widget.setObjectName(QStringLiteral("Dialog"));
        widget.setGeometry(stored);
        GuiBase::Instance().StoreWidgetSize(&widget);
        widget.setGeometry(50, 50, 100, 100);
        GuiBase::Instance().RestoreWidgetSize(&widget);
        QCOMPARE(widget.geometry(), restored);
    }
};

namespace {

QByteArray Screen(const char* name, const QRect& place)
{
    const QJsonObject screen{{QStringLiteral("name"), QLatin1String(name)},
                             {QStringLiteral("x"), place.x()},
                             {QStringLiteral("y"), place.y()},
                             {QStringLiteral("width"), place.width()},
                             {QStringLiteral("height"), place.height()},
                             {QStringLiteral("logicalDpi"), 96},
                             {QStringLiteral("logicalBaseDpi"), 96},
                             {QStringLiteral("dpr"), 1}};
    return QJsonDocument(screen).toJson();
}

int Main(int argc, char** argv)
{
    // The name of the file must not contain a colon, as it would with a drive.
    const QTemporaryDir directory;
    const QString former = QDir::currentPath();
    if (!QDir::setCurrent(directory.path()) ||
        !Files::Write(QStringLiteral("screens.json"),
                      "{\"screens\": [" + Screen("1", kFirst) + ", " + Screen("2", kSecond) + "]}"))
        return 1;
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=screens.json");
    const QApplication application(argc, argv);
    QDir::setCurrent(former);
    TestGuiBaseScreens test;
    return QTest::qExec(&test, argc, argv);
}

const TestMain::Test kTest(__FILE__, Main);

} // namespace
#include "tst_guibase_screens.moc"
