#include "tests/entries/entrysamples.h"
#include "tests/support/markingtranslator.h"
#include "tests/support/testmain.h"
#include "userinterface/vexelconnectdlg/connection.h"

#include <QMetaObject>
#include <QTest>

#include <limits>
#include <type_traits>

namespace {

constexpr int kLowest = std::numeric_limits<int>::min();
constexpr int kHighest = std::numeric_limits<int>::max();

using NameOf = QString (*)(int);

QString Fallback(const QString& number)
{
    return QStringLiteral("No string representation for ID ") + number;
}

} // namespace

Q_DECLARE_METATYPE(NameOf)

class TestConnection : public QObject
{
    Q_OBJECT

private slots:
    void metaObjectDeclaresNothingOfItsOwn();
    void fieldTypes();
    void defaults();
    void emptyDefaultsAreNotNull();
    void defaultNameIsTranslatedForEachEntry();
    void anyValueIsKept();

    void copyTakesTheFieldsButNotTheObject();
    void assignmentTakesTheFieldsButNotTheObject();
    void assigningAnEntryInUseCopiesTheStatus();
    void selfAssignmentChangesNothing();

    void equality_data();
    void equality();
    void defaultEntriesStayEqualWhenSelectedOrInUse();

    void displayTexts_data();
    void displayTexts();
    void valuesOutsideShowTheFallbackText_data();
    void valuesOutsideShowTheFallbackText();
    void deviceTypeTextsAreNotTranslated();
    void otherTextsAreTranslatedInTheContextOfTheClass();
    void fallbackTextIsThatOfTheLoading();

    void applicationDeviceType_data();
    void applicationDeviceType();
};

void TestConnection::metaObjectDeclaresNothingOfItsOwn()
{
    const QMetaObject& meta = Connection::staticMetaObject;
    QCOMPARE(meta.className(), "Connection");
    QCOMPARE(meta.superClass(), &QObject::staticMetaObject);
    QCOMPARE(meta.methodCount(), meta.methodOffset());
    QCOMPARE(meta.propertyCount(), meta.propertyOffset());
}

void TestConnection::fieldTypes()
{
    static_assert(std::is_same_v<decltype(Connection::ConnectionName), QString>);
    static_assert(std::is_same_v<decltype(Connection::DeviceType), qint32>);
    static_assert(std::is_same_v<decltype(Connection::ConnectionType), qint32>);
    static_assert(std::is_same_v<decltype(Connection::DeviceAddress), QString>);
    static_assert(std::is_same_v<decltype(Connection::DriverAddress), QString>);
    static_assert(std::is_same_v<decltype(Connection::LinkSpeed), qint32>);
    static_assert(std::is_same_v<decltype(Connection::TimeoutSeconds), qint32>);
    static_assert(std::is_same_v<decltype(Connection::ConnectionStatus), qint32>);
    static_assert(std::is_same_v<decltype(Connection::Selected), bool>);
    static_assert(std::is_same_v<decltype(Connection::Subsystem), QString>);
    static_assert(std::is_same_v<decltype(std::declval<Connection&>() = std::declval<Connection&>()), Connection&>);
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
}

void TestConnection::emptyDefaultsAreNotNull()
{
    const Connection entry;
    QVERIFY(!entry.DeviceAddress.isNull());
    QVERIFY(!entry.DriverAddress.isNull());
    QVERIFY(!entry.Subsystem.isNull());
}

void TestConnection::defaultNameIsTranslatedForEachEntry()
{
    QCOMPARE(Connection().ConnectionName, QStringLiteral("enter connection name here"));
    {
        const MarkingTranslator translator(QStringLiteral("Connection"));
        QCOMPARE(Connection().ConnectionName, QStringLiteral("[enter connection name here]"));
    }
    QCOMPARE(Connection().ConnectionName, QStringLiteral("enter connection name here"));
}

void TestConnection::anyValueIsKept()
{
    Connection entry;
    entry.DeviceType = kLowest;
    entry.ConnectionType = kHighest;
    entry.LinkSpeed = -1;
    entry.ConnectionStatus = 77;
    const Connection copy(entry);
    QCOMPARE(copy.DeviceType, kLowest);
    QCOMPARE(copy.ConnectionType, kHighest);
    QCOMPARE(copy.LinkSpeed, -1);
    QCOMPARE(copy.ConnectionStatus, 77);
}

void TestConnection::copyTakesTheFieldsButNotTheObject()
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

void TestConnection::assignmentTakesTheFieldsButNotTheObject()
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
}

void TestConnection::assigningAnEntryInUseCopiesTheStatus()
{
    Connection inUse;
    inUse.ConnectionStatus = 1;
    Connection entry;
    entry = inUse;
    QCOMPARE(entry.ConnectionStatus, 1);
}

void TestConnection::selfAssignmentChangesNothing()
{
    Connection entry(SampleEntry(3));
    const Connection& same = entry;
    QCOMPARE(&(entry = same), &entry);
    QCOMPARE(Fields(entry), Fields(SampleEntry(3)));
}

void TestConnection::equality_data()
{
    QTest::addColumn<int>("field");
    QTest::addColumn<bool>("equal");
    QTest::newRow("ConnectionName") << 1 << false;
    QTest::newRow("DeviceType") << 2 << false;
    QTest::newRow("ConnectionType") << 3 << false;
    QTest::newRow("DeviceAddress") << 4 << false;
    QTest::newRow("DriverAddress") << 5 << false;
    QTest::newRow("LinkSpeed") << 6 << false;
    QTest::newRow("TimeoutSeconds") << 7 << false;
    QTest::newRow("ConnectionStatus") << 8 << true;
    QTest::newRow("Selected") << 9 << true;
    QTest::newRow("Subsystem") << 10 << false;
    QTest::newRow("ConnectionName, letter case") << 11 << false;
    QTest::newRow("DeviceAddress, letter case") << 12 << false;
    QTest::newRow("DriverAddress, letter case") << 13 << false;
    QTest::newRow("Subsystem, letter case") << 14 << false;
    QTest::newRow("ConnectionName, trailing blank") << 15 << false;
}

void TestConnection::equality()
{
    QFETCH(int, field);
    QFETCH(bool, equal);
    Connection one(SampleEntry(4));
    one.DeviceAddress = QStringLiteral("host");
    one.DriverAddress = QStringLiteral("driver");
    Connection other(one);
    QVERIFY(one == other);
    QVERIFY(!(one != other));
    switch (field) {
    case 1:
        other.ConnectionName += u'x';
        break;
    case 2:
        ++other.DeviceType;
        break;
    case 3:
        ++other.ConnectionType;
        break;
    case 4:
        other.DeviceAddress += u'x';
        break;
    case 5:
        other.DriverAddress += u'x';
        break;
    case 6:
        ++other.LinkSpeed;
        break;
    case 7:
        ++other.TimeoutSeconds;
        break;
    case 8:
        ++other.ConnectionStatus;
        break;
    case 9:
        other.Selected = !other.Selected;
        break;
    case 10:
        other.Subsystem += u'x';
        break;
    case 11:
        other.ConnectionName = other.ConnectionName.toUpper();
        break;
    case 12:
        other.DeviceAddress = other.DeviceAddress.toUpper();
        break;
    case 13:
        other.DriverAddress = other.DriverAddress.toUpper();
        break;
    case 14:
        other.Subsystem = other.Subsystem.toUpper();
        break;
    case 15:
        other.ConnectionName += u' ';
        break;
    default:
        QFAIL("no such field");
    }
    QCOMPARE(one == other, equal);
    QCOMPARE(other == one, equal);
    QCOMPARE(one != other, !equal);
}

void TestConnection::defaultEntriesStayEqualWhenSelectedOrInUse()
{
    Connection one;
    const Connection other;
    QVERIFY(one == other);
    one.Selected = true;
    QVERIFY(one == other);
    one.ConnectionStatus = 1;
    QVERIFY(one == other);
}

void TestConnection::displayTexts_data()
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

void TestConnection::displayTexts()
{
    QFETCH(NameOf, nameOf);
    QFETCH(QStringList, texts);
    for (int value = 0; value < texts.size(); ++value)
        QCOMPARE(nameOf(value), texts.at(value));
    QCOMPARE(nameOf(int(texts.size())), Fallback(QString::number(texts.size())));
}

void TestConnection::valuesOutsideShowTheFallbackText_data()
{
    QTest::addColumn<NameOf>("nameOf");
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("number");
    QTest::newRow("DeviceTypeName(15)") << &Connection::DeviceTypeName << 15 << QStringLiteral("15");
    QTest::newRow("LinkSpeedName(7)") << &Connection::LinkSpeedName << 7 << QStringLiteral("7");
    QTest::newRow("StatusName(2)") << &Connection::StatusName << 2 << QStringLiteral("2");
    QTest::newRow("ConnectionTypeName(3)") << &Connection::ConnectionTypeName << 3 << QStringLiteral("3");
    const std::pair<const char*, NameOf> operations[]{
        {"device type", &Connection::DeviceTypeName},
        {"connection type", &Connection::ConnectionTypeName},
        {"link speed", &Connection::LinkSpeedName},
        {"status", &Connection::StatusName},
    };
    for (const auto& [what, nameOf] : operations) {
        QTest::addRow("%s -1", what) << nameOf << -1 << QStringLiteral("-1");
        QTest::addRow("%s 1234567", what) << nameOf << 1234567 << QStringLiteral("1234567");
        QTest::addRow("%s lowest", what) << nameOf << kLowest << QStringLiteral("-2147483648");
        QTest::addRow("%s highest", what) << nameOf << kHighest << QStringLiteral("2147483647");
    }
}

void TestConnection::valuesOutsideShowTheFallbackText()
{
    QFETCH(NameOf, nameOf);
    QFETCH(int, value);
    QFETCH(QString, number);
    QCOMPARE(nameOf(value), Fallback(number));
}

void TestConnection::deviceTypeTextsAreNotTranslated()
{
    const MarkingTranslator translator(QStringLiteral("Connection"));
    QCOMPARE(Connection::DeviceTypeName(0), QStringLiteral("Kite Alpha + Wren C"));
    QCOMPARE(Connection::DeviceTypeName(9), QStringLiteral("Heron"));
    QCOMPARE(Connection::DeviceTypeName(14), QStringLiteral("Linnet + DF"));
}

void TestConnection::otherTextsAreTranslatedInTheContextOfTheClass()
{
    const MarkingTranslator translator(QStringLiteral("Connection"));
    for (int value = 0; value < 3; ++value)
        QVERIFY(Connection::ConnectionTypeName(value).startsWith(u'['));
    for (int value = 0; value < 7; ++value)
        QVERIFY(Connection::LinkSpeedName(value).startsWith(u'['));
    QCOMPARE(Connection::StatusName(0), QStringLiteral("[Free]"));
    QCOMPARE(Connection::StatusName(1), QStringLiteral("[In Use]"));
}

// It is made once, when the library is loaded; a language that comes later does not reach it.
void TestConnection::fallbackTextIsThatOfTheLoading()
{
    const MarkingTranslator translator(QStringLiteral("Connection"));
    QCOMPARE(Connection::StatusName(2), Fallback(QStringLiteral("2")));
    QCOMPARE(Connection::DeviceTypeName(15), Fallback(QStringLiteral("15")));
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
