// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/store/versionfilter.h"
#include "platform/configversions.h"
#include "platform/icfg.h"
#include "tests/host/storeddocument.h"
#include "tests/support/testmain.h"
#include "userinterface/vexelconnectdlg/formats/connectionlist.h"

#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>

#include <vector>

namespace {

/// The list as the plug-in writes it; an entry of each status, with a name that looks like a status.
QByteArray Written(const QList<int>& statuses, const QString& name = QString())
{
    std::vector<Connection> entries(static_cast<std::size_t>(statuses.size()));
    std::vector<const Connection*> pointers;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        entries[i].ConnectionName = name.isNull() ? QStringLiteral("Entry %1").arg(i) : name;
        entries[i].ConnectionStatus = statuses.at(static_cast<qsizetype>(i));
        pointers.push_back(&entries[i]);
    }
    return ConnectionList::Write(pointers);
}

ConfigValues Values(const QByteArray& list)
{
    return {{QStringLiteral("Administration/VexelDataDir"), QStringLiteral("/srv")},
            {QStringLiteral("ConnectionsModel/ModelMimeData"), QString::fromLatin1(list.toHex())},
            {QStringLiteral("Host/EntryCount"), QStringLiteral("2")}};
}

QByteArray Element(const char* status)
{
    return QByteArray("<ConnectionStatus>") + status + "</ConnectionStatus>";
}

} // namespace

class TestVersionFilter : public QObject
{
    Q_OBJECT

private slots:
    void statusesDoNotCount_data();
    void statusesDoNotCount();
    void otherValuesCount();
    void onlyTheListIsCompared();
    void longListOfStatuses();
    void connectKeepsTheVersionBeforeAnImport();
};

void TestVersionFilter::statusesDoNotCount_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<bool>("differs");
    const auto row = [](const char* name, const QByteArray& before, const QByteArray& after, bool differs) {
        QTest::newRow(name) << before << after << differs;
    };
    row("equal", Written({0, 1}), Written({0, 1}), false);
    row("one in use", Written({0, 0}), Written({0, 1}), false);
    row("all statuses", Written({0, 1, 0}), Written({1, 0, 1}), false);
    row("more digits", Written({1, 12, 3}), Written({10, 2, 123456789}), false);
    row("common digits", Written({110}), Written({120}), false);
    row("one more entry", Written({0, 0}), Written({0, 0, 0}), true);
    row("one entry less", Written({0, 1}), Written({0}), true);
    row("a name", Written({0}, QStringLiteral("a")), Written({0}, QStringLiteral("b")), true);
    row("a name and a status", Written({0}, QStringLiteral("a")), Written({1}, QStringLiteral("b")), true);
    row("digits of a name", Written({0}, QStringLiteral("1")), Written({0}, QStringLiteral("2")), true);
    const auto named = [](int status, const char* text) {
        return Written({status}, QString::fromLatin1(text));
    };
    row("a name like a status", named(0, "<ConnectionStatus>0</ConnectionStatus>"),
        named(0, "<ConnectionStatus>1</ConnectionStatus>"), true);
    row("a name like the end of a section", named(0, "]]><ConnectionStatus>0</ConnectionStatus>"),
        named(0, "]]><ConnectionStatus>1</ConnectionStatus>"), true);
    row("the status after such a name", named(0, "<![CDATA[<ConnectionStatus>0</ConnectionStatus>]]><![CDATA["),
        named(1, "<![CDATA[<ConnectionStatus>0</ConnectionStatus>]]><![CDATA["), false);
    row("no digit", Element("0"), Element("x"), true);
    row("a sign", Element("1"), Element("-1"), true);
    row("no status", Element(""), Element("1"), false);
    row("another element", "<LinkSpeed>0</LinkSpeed>", "<LinkSpeed>1</LinkSpeed>", true);
    row("another end tag", "<ConnectionStatus>0</LinkSpeed>", "<ConnectionStatus>1</LinkSpeed>", true);
    row("cut off", Element("1").chopped(1), Element("2").chopped(1), true);
    row("cut off in one", Element("1"), Element("1").chopped(1), true);
    row("nothing", QByteArray(), Element("1"), true);
    row("in a section", "<![CDATA[" + Element("1") + "]]>", "<![CDATA[" + Element("2") + "]]>", true);
    row("after sections", "<![CDATA[a]]><![CDATA[b]]>" + Element("1"), "<![CDATA[a]]><![CDATA[b]]>" + Element("2"),
        false);
    row("in a section after a status", Element("1") + "<![CDATA[" + Element("1") + "]]>",
        Element("2") + "<![CDATA[" + Element("2") + "]]>", true);
}

void TestVersionFilter::statusesDoNotCount()
{
    QFETCH(const QByteArray, before);
    QFETCH(const QByteArray, after);
    QFETCH(const bool, differs);
    QCOMPARE(DiffersInMoreThanStatuses(Values(before), Values(after)), differs);
    QCOMPARE(DiffersInMoreThanStatuses(Values(after), Values(before)), differs);
}

void TestVersionFilter::otherValuesCount()
{
    const ConfigValues before = Values(Written({0}));
    ConfigValues after = Values(Written({1}));
    QVERIFY(!DiffersInMoreThanStatuses(before, after));
    after.insert(QStringLiteral("Host/EntryCount"), QStringLiteral("3"));
    QVERIFY(DiffersInMoreThanStatuses(before, after));

    after = Values(Written({1}));
    after.insert(QStringLiteral("New"), QString());
    QVERIFY(DiffersInMoreThanStatuses(before, after));
    QVERIFY(DiffersInMoreThanStatuses(after, before));
    after.remove(QStringLiteral("Administration/VexelDataDir")); // as many as before
    QVERIFY(DiffersInMoreThanStatuses(before, after));
}

void TestVersionFilter::onlyTheListIsCompared()
{
    const auto other = [](const char* status) {
        return ConfigValues{{QStringLiteral("Other/ModelMimeData"), QString::fromLatin1(Element(status).toHex())}};
    };
    QVERIFY(DiffersInMoreThanStatuses(other("0"), other("1")));
    // Not what the plug-in writes.
    const auto text = [](const QString& hex) {
        return ConfigValues{{QStringLiteral("ConnectionsModel/ModelMimeData"), hex}};
    };
    QVERIFY(DiffersInMoreThanStatuses(text(QStringLiteral("3")), text(QStringLiteral("4"))));
    QVERIFY(DiffersInMoreThanStatuses(text(QStringLiteral("3")), text(QString())));
    QVERIFY(DiffersInMoreThanStatuses(text(QStringLiteral("no hexadecimal text")), text(QStringLiteral("no"))));
}

// Ends at once, where quadratic time would take minutes.
void TestVersionFilter::longListOfStatuses()
{
    constexpr int kEntries = 200'000;
    const auto list = [](const char* status) {
        return Values("<r>" + Element(status).repeated(kEntries) + "</r>");
    };
    const ConfigValues before = list("0");
    ConfigValues after = list("11");
    QVERIFY(!DiffersInMoreThanStatuses(before, after));
    after[QStringLiteral("ConnectionsModel/ModelMimeData")].chop(2);
    QVERIFY(DiffersInMoreThanStatuses(before, after));
}

void TestVersionFilter::connectKeepsTheVersionBeforeAnImport()
{
    const QTemporaryDir directory;
    CfgCenter::SetVersionFilter(DiffersInMoreThanStatuses);
    const auto reset = qScopeGuard([] {
        CfgCenter::Close();
        CfgCenter::SetVersionFilter({});
    });
    QVERIFY(CfgCenter::Open(directory.path()));
    const auto save = [](const QByteArray& list) {
        StoreList(list);
        return CfgCenter::SaveDocument();
    };
    const QByteArray imported = Written({0, 0}, QStringLiteral("imported"));
    QVERIFY(save(Written({0, 0}, QStringLiteral("before"))));
    QVERIFY(save(imported));
    const ConfigVersions versions(View::Application, QString());
    QCOMPARE(versions.List().size(), 1);
    const QString file = versions.List().constFirst().file;
    for (int click = 0; click < 5; ++click) {
        QVERIFY(save(Written({1, 0}, QStringLiteral("imported"))));
        QVERIFY(save(Written({0, 1}, QStringLiteral("imported"))));
        QVERIFY(save(imported));
    }
    QCOMPARE(versions.List().size(), 1);
    QCOMPARE(versions.List().constFirst().file, file);
    QVERIFY(save(Written({0, 1}, QStringLiteral("edited"))));
    QCOMPARE(versions.List().size(), 2);
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestVersionFilter)
#include "tst_versionfilter.moc"
