// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "control/entryjson.h"
#include "tests/support/markingtranslator.h"
#include "tests/support/testmain.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QTest>
#include <QTimeZone>

class TestEntryJson : public QObject
{
    Q_OBJECT

private slots:
    void everyFieldIsWritten();
    void textsAreEnglishInEveryLanguage();
    void unknownValuesHaveAText();
    void applicationIsWrittenIfGiven();
    void endOfAnApplicationIsWritten();
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

EntryApplication Application()
{
    return {QStringLiteral("/opt/bin/kitecontrol"),
            4712,
            QDateTime(QDate(2026, 3, 4), QTime(10, 11, 12, 13), Qt::OffsetFromUTC, 3600),
            {},
            {},
            false};
}

} // namespace

void TestEntryJson::everyFieldIsWritten()
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
    QCOMPARE(EntryToJson(Sample()), expected);
    QCOMPARE(EntryToJson(Connection()).value(QLatin1String("timeoutText")), QJsonValue(QStringLiteral("No Timeout")));
}

void TestEntryJson::textsAreEnglishInEveryLanguage()
{
    const QJsonObject before = EntryToJson(Sample());
    const MarkingTranslator translator(QStringLiteral("Connection"));
    QVERIFY(Connection::StatusName(1) != QStringLiteral("In Use"));
    QCOMPARE(EntryToJson(Sample()), before);
}

void TestEntryJson::unknownValuesHaveAText()
{
    Connection entry = Sample();
    entry.DeviceType = -3;
    entry.ConnectionStatus = 7;
    const QJsonObject object = EntryToJson(entry);
    QCOMPARE(object.value(QLatin1String("deviceTypeText")),
             QJsonValue(QStringLiteral("No string representation for ID -3")));
    QCOMPARE(object.value(QLatin1String("statusText")),
             QJsonValue(QStringLiteral("No string representation for ID 7")));
}

void TestEntryJson::applicationIsWrittenIfGiven()
{
    const QJsonObject object = EntryToJson(Sample(), Application());
    QCOMPARE(object.size(), 18);
    QCOMPARE(object.value(QLatin1String("since")), QJsonValue(QStringLiteral("2026-03-04T10:11:12.013+01:00")));
    QCOMPARE(object.value(QLatin1String("program")), QJsonValue(QStringLiteral("/opt/bin/kitecontrol")));
    QCOMPARE(object.value(QLatin1String("process")), QJsonValue(4712));
}

void TestEntryJson::endOfAnApplicationIsWritten()
{
    QJsonObject object;
    EntryApplication ended = Application();
    ended.exitCode = 0;
    InsertApplication(object, ended);
    QCOMPARE(object.size(), 4);
    QCOMPARE(object.value(QLatin1String("exitCode")), QJsonValue(0));

    object = {};
    EntryApplication crashed = Application();
    crashed.isCrash = true;
    crashed.signal = 11;
    InsertApplication(object, crashed);
    QCOMPARE(object.size(), 5);
    QCOMPARE(object.value(QLatin1String("crashed")), QJsonValue(true));
    QCOMPARE(object.value(QLatin1String("signal")), QJsonValue(11));
}

void TestEntryJson::writtenEntriesAreReadBack()
{
    EntryApplication crashed = Application();
    crashed.isCrash = true;
    crashed.signal = 11;
    EntryApplication ended = Application();
    ended.exitCode = 3;
    for (const std::optional<EntryApplication>& application :
         {std::optional<EntryApplication>(), std::optional(Application()), std::optional(crashed),
          std::optional(ended)}) {
        // Through a text, as a program gets it.
        const QByteArray text = QJsonDocument(EntryToJson(Sample(), application)).toJson(QJsonDocument::Compact);
        const QJsonObject object = QJsonDocument::fromJson(text).object();
        const Connection entry = EntryFromJson(object);
        QVERIFY(entry == Sample());
        QCOMPARE(entry.ConnectionStatus, Sample().ConnectionStatus);
        QCOMPARE(entry.Selected, Sample().Selected);
        const std::optional<EntryApplication> read = ApplicationFromJson(object);
        QCOMPARE(read.has_value(), application.has_value());
        if (!application)
            continue;
        QCOMPARE(read->program, application->program);
        QCOMPARE(read->process, application->process);
        QCOMPARE(read->since, application->since);
        QVERIFY(read->exitCode == application->exitCode);
        QVERIFY(read->signal == application->signal);
        QCOMPARE(read->isCrash, application->isCrash);
    }
}

void TestEntryJson::missingFieldsAreEmpty()
{
    QCOMPARE(EntryFromJson({}).ConnectionName, QString());
    QCOMPARE(EntryFromJson({}).DeviceType, 0);
    QVERIFY(!ApplicationFromJson({}));
}

void TestEntryJson::timesHaveMillisecondsAndAnOffset()
{
    const QDate date(2026, 3, 4);
    const QTime time(10, 11, 12, 13);
    QCOMPARE(TimeToJson(QDateTime(date, time, Qt::UTC)), QStringLiteral("2026-03-04T10:11:12.013+00:00"));
    QCOMPARE(TimeToJson(QDateTime(date, time, Qt::OffsetFromUTC, -12600)),
             QStringLiteral("2026-03-04T10:11:12.013-03:30"));
    const QDateTime local(date, time);
    QCOMPARE(QDateTime::fromString(TimeToJson(local), Qt::ISODateWithMs), local);
    QCOMPARE(TimeToJson(local).size(), 29);
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestEntryJson)
#include "tst_entryjson.moc"
