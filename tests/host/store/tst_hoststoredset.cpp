// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/store/storedset.h"
#include "tests/host/storeddocument.h"
#include "tests/support/testmain.h"

#include <QTest>

using State = StoredSet::State;
Q_DECLARE_METATYPE(State)

class TestHostStoredSet : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void nothingStored();
    void entriesAreCounted_data();
    void entriesAreCounted();
    void everyTruncationIsMalformed();
    void entitiesAreNotExpanded();
    void reportOfTheListIsUsed();
    void editedHexIsReadLikeThePlugin_data();
    void editedHexIsReadLikeThePlugin();
};

namespace {

StoredSet Look()
{
    return ReadStoredSet(*CfgCenter::GetAppCfg(View::Application));
}

} // namespace

void TestHostStoredSet::init()
{
    // Documents in memory, a new one for each test.
    CfgCenter::Close();
}

void TestHostStoredSet::nothingStored()
{
    QCOMPARE(Look().state, State::None);
    StoreHex(QString());
    QCOMPARE(Look().state, State::None);
    QCOMPARE(Look().entries, 0);
}

void TestHostStoredSet::entriesAreCounted_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<State>("state");
    QTest::addColumn<int>("entries");

    QTest::newRow("no entry") << ListOf(0) << State::Whole << 0;
    QTest::newRow("one") << ListOf(1) << State::Whole << 1;
    QTest::newRow("many") << ListOf(1000) << State::Whole << 1000;
    QTest::newRow("more than can be imported")
        << "<r>" + QByteArray("<Connection/>").repeated(200'001) + "</r>" << State::Whole << 200'001;
    QTest::newRow("more than can be stored")
        << "<r>" + QByteArray("<Connection/>").repeated(320'001) + "</r>" << State::Malformed << 320'000;
    QTest::newRow("another root, deeper")
        << QByteArray("<r><s><Connection/></s><Connection/></r>") << State::Whole << 2;
    QTest::newRow("one within another") << QByteArray("<r><Connection><Connection></Connection></Connection></r>")
                                        << State::Whole << 1;
    QTest::newRow("other case") << QByteArray("<r><connection/></r>") << State::Whole << 0;
    QTest::newRow("not XML") << QByteArray("hello") << State::Malformed << 0;
    QTest::newRow("breaks off within the third") << ListOf(3).chopped(40) << State::Malformed << 3;
    QTest::newRow("garbage behind the end") << ListOf(2) + "<x/>" << State::Malformed << 2;
    QTest::newRow("wrong end tag") << QByteArray("<r><Connection></r><Connection/></r>") << State::Malformed << 1;
    QTest::newRow("control character") << ListOf(2).replace("Entry 2", "Entry \x01") << State::Malformed << 2;
}

void TestHostStoredSet::entriesAreCounted()
{
    QFETCH(const QByteArray, document);
    StoreList(document);
    QTEST(Look().state, "state");
    QTEST(Look().entries, "entries");
}

void TestHostStoredSet::everyTruncationIsMalformed()
{
    const QByteArray document = ListOf(2).trimmed();
    for (qsizetype length = 1; length < document.size(); ++length) {
        StoreList(document.first(length));
        QVERIFY2(Look().state == State::Malformed, document.first(length).constData());
    }
    StoreList(document);
    QCOMPARE(Look().state, State::Whole);
}

void TestHostStoredSet::entitiesAreNotExpanded()
{
    QByteArray document = "<!DOCTYPE r [<!ENTITY a0 \"x\">";
    for (int i = 1; i < 40; ++i) {
        const QByteArray former = "&a" + QByteArray::number(i - 1) + ";";
        document += "<!ENTITY a" + QByteArray::number(i) + " \"" + former + former + "\">";
    }
    StoreList(document + "]><r><Connection>&a39;</Connection></r>");
    QCOMPARE(Look().state, State::Malformed);
    QCOMPARE(Look().entries, 0);
}

void TestHostStoredSet::reportOfTheListIsUsed()
{
    QObject list;
    QVERIFY(!ReportedStoredSet(list));
    list.setProperty("entriesLoaded", 7);
    QVERIFY(!ReportedStoredSet(list));
    for (const bool isMalformed : {false, true}) {
        list.setProperty("isStoredListMalformed", isMalformed);
        const std::optional<StoredSet> set = ReportedStoredSet(list);
        QVERIFY(set);
        QCOMPARE(set->state, isMalformed ? State::Malformed : State::Whole);
        QCOMPARE(set->entries, 7);
    }
}

void TestHostStoredSet::editedHexIsReadLikeThePlugin_data()
{
    QTest::addColumn<QString>("hex");
    QTest::addColumn<State>("state");

    const QString hex = QString::fromLatin1(ListOf(2).toHex());
    QTest::newRow("as written") << hex << State::Whole;
    QTest::newRow("capitals") << hex.toUpper() << State::Whole;
    // The plug-in skips other characters, too.
    QTest::newRow("broken over lines") << QString(hex).insert(10, QStringLiteral("\n  ")) << State::Whole;
    QTest::newRow("no digit at all") << QStringLiteral("zzzz") << State::Malformed;
    QTest::newRow("a digit missing") << QString(hex).remove(100, 1) << State::Malformed;
}

void TestHostStoredSet::editedHexIsReadLikeThePlugin()
{
    QFETCH(const QString, hex);
    StoreHex(hex);
    QTEST(Look().state, "state");
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestHostStoredSet)
#include "tst_hoststoredset.moc"
