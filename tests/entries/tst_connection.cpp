// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/entries/entrysamples.h"
#include "tests/support/markingtranslator.h"
#include "tests/support/metaobject.h"
#include "tests/support/testmain.h"
#include "userinterface/vexelconnectdlg/connection.h"

#include <QTest>

#include <limits>

namespace {

constexpr int kLowest = std::numeric_limits<int>::min();
constexpr int kHighest = std::numeric_limits<int>::max();

using NameOf = QString (*)(int);
using Change = void (*)(Connection&);

QString Fallback(int value)
{
    return QStringLiteral("No string representation for ID %1").arg(value);
}

} // namespace

Q_DECLARE_METATYPE(NameOf)
Q_DECLARE_METATYPE(Change)

class TestConnection : public QObject
{
    Q_OBJECT

private slots:
    void declaresNoSignalsSlotsOrProperties();
    void defaults();
    void defaultNameIsTranslated();

    void copyTakesFieldsOnly();
    void assignmentTakesFieldsOnly();

    void equalityIgnoresStatusAndSelection_data();
    void equalityIgnoresStatusAndSelection();

    void textsAndFallback_data();
    void textsAndFallback();
    void deviceTypeTextsAreNotTranslated();
    void otherTextsAreTranslated();
    void fallbackTextIsTranslatedAtLoadTime();

    void applicationDeviceType_data();
    void applicationDeviceType();
};

void TestConnection::declaresNoSignalsSlotsOrProperties()
{
    QCOMPARE(Declaration(Connection::staticMetaObject), QStringList{QStringLiteral("Connection : QObject")});
}

void TestConnection::defaults()
{
    const Connection entry;
    QCOMPARE(entry.parent(), nullptr);
    QCOMPARE(entry.ConnectionName, QStringLiteral("enter connection name here"));
    QCOMPARE(entry.DeviceType, 4);
    QCOMPARE(entry.ConnectionType, 0);
    QCOMPARE(entry.DeviceAddress, QStringLiteral(""));
    QCOMPARE(entry.DriverAddress, QStringLiteral(""));
    QCOMPARE(entry.LinkSpeed, 0);
    QCOMPARE(entry.TimeoutSeconds, 0);
    QCOMPARE(entry.ConnectionStatus, 0);
    QCOMPARE(entry.Selected, false);
    QCOMPARE(entry.Subsystem, QStringLiteral(""));
    // Empty, but not null.
    QVERIFY(!entry.DeviceAddress.isNull());
    QVERIFY(!entry.DriverAddress.isNull());
    QVERIFY(!entry.Subsystem.isNull());
}

void TestConnection::defaultNameIsTranslated()
{
    QCOMPARE(Connection().ConnectionName, QStringLiteral("enter connection name here"));
    {
        const MarkingTranslator translator(QStringLiteral("Connection"));
        QCOMPARE(Connection().ConnectionName, QStringLiteral("[enter connection name here]"));
    }
    QCOMPARE(Connection().ConnectionName, QStringLiteral("enter connection name here"));
}

void TestConnection::copyTakesFieldsOnly()
{
    QObject parent;
    auto* const original = new Connection(SampleEntry(1));
    original->setParent(&parent);
    original->setObjectName(QStringLiteral("original"));
    const Connection copy(*original);
    QCOMPARE(copy.parent(), nullptr);
    QCOMPARE(copy.objectName(), QString());
    QCOMPARE(Fields(copy), Fields(SampleEntry(1)));
}

void TestConnection::assignmentTakesFieldsOnly()
{
    QObject parent;
    auto* const target = new Connection;
    target->setParent(&parent);
    target->setObjectName(QStringLiteral("target"));
    Connection source(SampleEntry(2));
    source.setObjectName(QStringLiteral("source"));

    QCOMPARE(&(*target = source), target);

    QCOMPARE(Fields(*target), Fields(SampleEntry(2)));
    QCOMPARE(target->parent(), &parent);
    QCOMPARE(target->objectName(), QStringLiteral("target"));
    QCOMPARE(source.objectName(), QStringLiteral("source"));

    const Connection& same = *target;
    *target = same;
    QCOMPARE(Fields(*target), Fields(SampleEntry(2)));
}

void TestConnection::equalityIgnoresStatusAndSelection_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<bool>("equal");
    const auto row = [](const char* name, Change change, bool equal = false) {
        QTest::newRow(name) << change << equal;
    };
    row(
        "ConnectionName", [](Connection& entry) { entry.ConnectionName += u'x'; });
    row(
        "DeviceType", [](Connection& entry) { ++entry.DeviceType; });
    row(
        "ConnectionType", [](Connection& entry) { ++entry.ConnectionType; });
    row(
        "DeviceAddress", [](Connection& entry) { entry.DeviceAddress += u'x'; });
    row(
        "DriverAddress", [](Connection& entry) { entry.DriverAddress += u'x'; });
    row(
        "LinkSpeed", [](Connection& entry) { ++entry.LinkSpeed; });
    row(
        "TimeoutSeconds", [](Connection& entry) { ++entry.TimeoutSeconds; });
    row(
        "ConnectionStatus", [](Connection& entry) { ++entry.ConnectionStatus; }, true);
    row(
        "Selected", [](Connection& entry) { entry.Selected = !entry.Selected; }, true);
    row(
        "Subsystem", [](Connection& entry) { entry.Subsystem += u'x'; });
    row(
        "case of ConnectionName", [](Connection& entry) { entry.ConnectionName = entry.ConnectionName.toUpper(); });
    row(
        "case of DeviceAddress", [](Connection& entry) { entry.DeviceAddress = entry.DeviceAddress.toUpper(); });
    row(
        "case of DriverAddress", [](Connection& entry) { entry.DriverAddress = entry.DriverAddress.toUpper(); });
    row("case of Subsystem", [](Connection& entry) { entry.Subsystem = entry.Subsystem.toUpper(); });
}

void TestConnection::equalityIgnoresStatusAndSelection()
{
    QFETCH(Change, change);
    QFETCH(bool, equal);
    Connection one(SampleEntry(4));
    one.DeviceAddress = QStringLiteral("host");
    one.DriverAddress = QStringLiteral("driver");
    Connection other(one);
    QVERIFY(one == other);
    QVERIFY(!(one != other));
    change(other);
    QCOMPARE(one == other, equal);
    QCOMPARE(other == one, equal);
    QCOMPARE(one != other, !equal);
}

void TestConnection::textsAndFallback_data()
{
    QTest::addColumn<NameOf>("nameOf");
    QTest::addColumn<QStringList>("texts");
    QTest::newRow("device type") << &Connection::DeviceTypeName
                                 << QStringList{QStringLiteral("Kite Alpha + Wren C"),
                                                QStringLiteral("Kite Bravo"),
                                                QStringLiteral("Kite Cobra"),
                                                QStringLiteral("Kite Delta"),
                                                QStringLiteral("Kite Echo"),
                                                QStringLiteral("Kite Ember"),
                                                QStringLiteral("Kite Moss"),
                                                QStringLiteral("Plover One"),
                                                QStringLiteral("Plover Five"),
                                                QStringLiteral("Heron"),
                                                QStringLiteral("Wren D"),
                                                QStringLiteral("Pipit"),
                                                QStringLiteral("Kite Alpha + Finch"),
                                                QStringLiteral("Kite Fjord"),
                                                QStringLiteral("Linnet + DF")};
    QTest::newRow("connection type") << &Connection::ConnectionTypeName
                                     << QStringList{QStringLiteral("Direct Connection"),
                                                    QStringLiteral("Remote Connection"),
                                                    QStringLiteral("MultiChannel Server")};
    QTest::newRow("link speed") << &Connection::LinkSpeedName
                                << QStringList{QStringLiteral("LAN"),        QStringLiteral("ISDN"),
                                               QStringLiteral("Fast Modem"), QStringLiteral("Slow Modem"),
                                               QStringLiteral("GSM"),        QStringLiteral("UMTS"),
                                               QStringLiteral("Radio Link")};
    QTest::newRow("status") << &Connection::StatusName << QStringList{QStringLiteral("Free"), QStringLiteral("In Use")};
}

void TestConnection::textsAndFallback()
{
    QFETCH(NameOf, nameOf);
    QFETCH(QStringList, texts);
    for (int value = 0; value < texts.size(); ++value)
        QCOMPARE(nameOf(value), texts.at(value));
    for (const int outside : {int(texts.size()), -1, kLowest, kHighest})
        QCOMPARE(nameOf(outside), Fallback(outside));
}

void TestConnection::deviceTypeTextsAreNotTranslated()
{
    const MarkingTranslator translator(QStringLiteral("Connection"));
    QCOMPARE(Connection::DeviceTypeName(0), QStringLiteral("Kite Alpha + Wren C"));
    QCOMPARE(Connection::DeviceTypeName(9), QStringLiteral("Heron"));
    QCOMPARE(Connection::DeviceTypeName(14), QStringLiteral("Linnet + DF"));
}

void TestConnection::otherTextsAreTranslated()
{
    const MarkingTranslator translator(QStringLiteral("Connection"));
    for (int value = 0; value < 3; ++value)
        QVERIFY(Connection::ConnectionTypeName(value).startsWith(u'['));
    for (int value = 0; value < 7; ++value)
        QVERIFY(Connection::LinkSpeedName(value).startsWith(u'['));
    QCOMPARE(Connection::StatusName(0), QStringLiteral("[Free]"));
    QCOMPARE(Connection::StatusName(1), QStringLiteral("[In Use]"));
}

// A language that is set after the library was loaded does not change it.
void TestConnection::fallbackTextIsTranslatedAtLoadTime()
{
    const MarkingTranslator translator(QStringLiteral("Connection"));
    QCOMPARE(Connection::StatusName(2), Fallback(2));
    QCOMPARE(Connection::DeviceTypeName(15), Fallback(15));
}

void TestConnection::applicationDeviceType_data()
{
    QTest::addColumn<int>("deviceType");
    QTest::addColumn<int>("servedBy");
    for (const int type : {0, 3, 4, 5, 6, 7, 8})
        QTest::addRow("%d", type) << type << 4;
    for (const int type : {1, 2, 9, 10, 11, 12, 13, 14, 15, 16, 400, -1, -3, kLowest, kHighest})
        QTest::addRow("%d", type) << type << type;
}

void TestConnection::applicationDeviceType()
{
    QFETCH(int, deviceType);
    QFETCH(int, servedBy);
    QCOMPARE(Connection::ApplicationDeviceType(deviceType), servedBy);
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestConnection)

#include "tst_connection.moc"
