#include "tests/entries/entrysamples.h"
#include "tests/support/markingtranslator.h"
#include "tests/support/testmain.h"
#include "userinterface/vexelconnectdlg/connectionjson.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QTest>
#include <QTimeZone>

class TestConnectionJson : public QObject
{
    Q_OBJECT

private slots:
    void everyFieldIsWritten();
    void textsAreEnglishInEveryLanguage();
    void unknownValuesHaveAText();
    void useIsWrittenIfGiven();
    void writtenEntriesAreReadBack();
    void missingFieldsAreEmpty();
    void timesHaveMillisecondsAndAnOffset();
};

namespace {

Connection Sample()
{
    Connection entry;
    entry.ConnectionName = QStringLiteral("a\nb \"c\" \U0001F4E1");
    entry.DeviceType = Connection::KiteMoss;
    entry.ConnectionType = Connection::RemoteConnection;
    entry.DeviceAddress = QStringLiteral("10.0.0.1");
    entry.DriverAddress = QStringLiteral("10.0.0.2");
    entry.LinkSpeed = Connection::RadioLink;
    entry.TimeoutSeconds = 30;
    entry.ConnectionStatus = Connection::InUse;
    entry.Selected = true;
    entry.Subsystem = QStringLiteral("north");
    return entry;
}

EntryUse SampleUse()
{
    return {QStringLiteral("/opt/bin/kitecontrol"), 4712,
            QDateTime(QDate(2026, 3, 4), QTime(10, 11, 12, 13), Qt::OffsetFromUTC, 3600)};
}

} // namespace

void TestConnectionJson::everyFieldIsWritten()
{
    const QJsonObject expected{{QStringLiteral("name"), QStringLiteral("a\nb \"c\" \U0001F4E1")},
                               {QStringLiteral("selected"), true},
                               {QStringLiteral("status"), 1},
                               {QStringLiteral("statusText"), QStringLiteral("In Use")},
                               {QStringLiteral("deviceType"), 6},
                               {QStringLiteral("deviceTypeText"), QStringLiteral("Kite Moss")},
                               {QStringLiteral("connectionType"), 1},
                               {QStringLiteral("connectionTypeText"), QStringLiteral("Remote Connection")},
                               {QStringLiteral("deviceAddress"), QStringLiteral("10.0.0.1")},
                               {QStringLiteral("driverAddress"), QStringLiteral("10.0.0.2")},
                               {QStringLiteral("linkSpeed"), 6},
                               {QStringLiteral("linkSpeedText"), QStringLiteral("Radio Link")},
                               {QStringLiteral("timeoutSeconds"), 30},
                               {QStringLiteral("timeoutText"), QStringLiteral("30")},
                               {QStringLiteral("subsystem"), QStringLiteral("north")}};
    QCOMPARE(ConnectionJson::Write(Sample()), expected);
    QCOMPARE(ConnectionJson::Write(Connection()).value(QLatin1String("timeoutText")),
             QJsonValue(QStringLiteral("No Timeout")));
}

void TestConnectionJson::textsAreEnglishInEveryLanguage()
{
    const QJsonObject before = ConnectionJson::Write(Sample());
    const MarkingTranslator translator(QStringLiteral("Connection"));
    QVERIFY(Connection::StatusName(1) != QStringLiteral("In Use"));
    QCOMPARE(ConnectionJson::Write(Sample()), before);
}

void TestConnectionJson::unknownValuesHaveAText()
{
    Connection entry = Sample();
    entry.DeviceType = -3;
    entry.ConnectionStatus = 7;
    const QJsonObject object = ConnectionJson::Write(entry);
    QCOMPARE(object.value(QLatin1String("deviceTypeText")),
             QJsonValue(QStringLiteral("No string representation for ID -3")));
    QCOMPARE(object.value(QLatin1String("statusText")),
             QJsonValue(QStringLiteral("No string representation for ID 7")));
}

void TestConnectionJson::useIsWrittenIfGiven()
{
    const QJsonObject object = ConnectionJson::Write(Sample(), SampleUse());
    QCOMPARE(object.size(), 18);
    QCOMPARE(object.value(QLatin1String("since")), QJsonValue(QStringLiteral("2026-03-04T10:11:12.013+01:00")));
    QCOMPARE(object.value(QLatin1String("program")), QJsonValue(QStringLiteral("/opt/bin/kitecontrol")));
    QCOMPARE(object.value(QLatin1String("process")), QJsonValue(4712));
}

void TestConnectionJson::writtenEntriesAreReadBack()
{
    for (const std::optional<EntryUse>& use : {std::optional<EntryUse>(), std::optional(SampleUse())}) {
        // Through a text, as a program gets it.
        const QByteArray text = QJsonDocument(ConnectionJson::Write(Sample(), use)).toJson(QJsonDocument::Compact);
        const ListedEntry listed = ConnectionJson::Read(QJsonDocument::fromJson(text).object());
        QCOMPARE(listed.entry, Sample());
        QCOMPARE(listed.entry.ConnectionStatus, Sample().ConnectionStatus);
        QCOMPARE(listed.entry.Selected, Sample().Selected);
        QCOMPARE(listed.use.has_value(), use.has_value());
        if (!use)
            continue;
        QCOMPARE(listed.use->program, use->program);
        QCOMPARE(listed.use->process, use->process);
        QCOMPARE(listed.use->since, use->since);
    }
}

void TestConnectionJson::missingFieldsAreEmpty()
{
    const ListedEntry listed = ConnectionJson::Read({});
    QCOMPARE(listed.entry.ConnectionName, QString());
    QCOMPARE(listed.entry.DeviceType, 0);
    QVERIFY(!listed.use);
}

void TestConnectionJson::timesHaveMillisecondsAndAnOffset()
{
    const QDate date(2026, 3, 4);
    const QTime time(10, 11, 12, 13);
    QCOMPARE(ConnectionJson::Time(QDateTime(date, time, Qt::UTC)), QStringLiteral("2026-03-04T10:11:12.013+00:00"));
    QCOMPARE(ConnectionJson::Time(QDateTime(date, time, Qt::OffsetFromUTC, -12600)),
             QStringLiteral("2026-03-04T10:11:12.013-03:30"));
    const QDateTime local(date, time);
    QCOMPARE(QDateTime::fromString(ConnectionJson::Time(local), Qt::ISODateWithMs), local);
    QCOMPARE(ConnectionJson::Time(local).size(), 29);
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestConnectionJson)
#include "tst_connectionjson.moc"
