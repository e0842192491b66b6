// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/host/hostsetup.h"
#include "tests/support/files.h"
#include "tests/support/testmain.h"
#include "tests/support/waitforend.h"

#include <QRegularExpression>

// vexelctl: versions of the stored list, and truncated lists.
class TestCtlBackups : public QObject
{
    Q_OBJECT

private slots:
    void missingConfigurationIsReported();
    void missingListIsShown();
    void versionsAreListedNewestFirst();
    void versionsAsJson();
    void listingBackupsWritesNothing();
    void jsonTellsWhatVersionsDifferIn();
    void dryRunPrintsTheDifference();
    void restoreBringsAVersionBack();
    void restoreOfAnEqualVersionChangesNothing();
    void unknownVersionIsRefused();
    void damagedVersionIsNotRestored();
    void damagedDocumentIsReplaced();
    void runningHostRestores();
    void copyOfATruncatedListIsKept();

private:
    /// Number and entries of every line of `backups`.
    static QStringList Lines(HostSetUp& setUp);
    /// The files of the versions, newest first.
    static QStringList Files(HostSetUp& setUp);
    /// Stores `count` lists, one after the other, of 1, 2, 3 ... entries.
    static void StoreLists(HostSetUp& setUp, int count);
    /// Cuts the last `length` characters off the stored list, inside a document that stays readable.
    static void BreakOff(const HostSetUp& setUp, int length);
};

QStringList TestCtlBackups::Lines(HostSetUp& setUp)
{
    const auto result = setUp.Run("backups");
    if (result.exitCode != 0 || !result.error.isEmpty())
        return {result.error};
    QStringList lines;
    static const QRegularExpression kLine(
        QStringLiteral("^(now|\\d+) +(-|\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d)  +(\\S.*?)  +(/.*|[A-Z]:.*)$"));
    const QStringList output = result.OutputLines();
    for (const QString& line : output.mid(1)) {
        const QRegularExpressionMatch match = kLine.match(line);
        lines.append(match.hasMatch() ? match.captured(1) + QLatin1Char('|') + match.captured(3) : line);
    }
    return lines;
}

QStringList TestCtlBackups::Files(HostSetUp& setUp)
{
    const auto result = setUp.Run("backups --json");
    const QJsonArray versions =
        QJsonDocument::fromJson(result.output.toUtf8()).object().value(QLatin1String("versions")).toArray();
    QStringList files;
    for (const QJsonValue& version : versions)
        if (version[QLatin1String("number")].toInt() > 0)
            files.append(version[QLatin1String("file")].toString());
    return files;
}

void TestCtlBackups::StoreLists(HostSetUp& setUp, int count)
{
    QStringList names;
    for (int i = 1; i <= count; ++i) {
        names.append(QStringLiteral("entry %1").arg(i));
        setUp.Write(setUp.Path("list.xml"), HostSetUp::ListDocument(names));
        QCOMPARE(setUp.Run("import list.xml").exitCode, 0);
    }
}

void TestCtlBackups::BreakOff(const HostSetUp& setUp, int length)
{
    QByteArray text = Files::Read(setUp.Document());
    const QByteArray key("ModelMimeData\": \"");
    const qsizetype begin = text.indexOf(key);
    QVERIFY(begin > 0);
    const qsizetype end = text.indexOf('"', begin + key.size());
    text.remove(end - length, length);
    setUp.Write(setUp.Document(), text);
}

void TestCtlBackups::missingConfigurationIsReported()
{
    HostSetUp setUp;
    for (const char* arguments : {"backups", "restore 1", "restore 1 --dry-run"}) {
        COMPARE_FAILURE(setUp.Run(arguments), 2, setUp.Config());
        // Looking for a configuration must not make one.
        QVERIFY(!QFileInfo::exists(setUp.Config()));
    }
}

void TestCtlBackups::missingListIsShown()
{
    HostSetUp setUp;
    QVERIFY(QDir().mkpath(setUp.Config()));
    QCOMPARE(Lines(setUp), QStringList(QStringLiteral("now|none stored")));
}

void TestCtlBackups::versionsAreListedNewestFirst()
{
    HostSetUp setUp;
    StoreLists(setUp, 3);
    QCOMPARE(Lines(setUp), Words("now|3 1|2 2|1"));
    const QStringList heading =
        setUp.Run("backups").OutputLines().constFirst().split(QLatin1Char(' '), Qt::SkipEmptyParts);
    QCOMPARE(heading, Words("Number Saved Entries File"));
}

void TestCtlBackups::versionsAsJson()
{
    HostSetUp setUp;
    StoreLists(setUp, 2);
    BreakOff(setUp, 20);
    const auto result = setUp.Run("backups --json");
    QCOMPARE(result.exitCode, 0);
    const QJsonArray versions =
        QJsonDocument::fromJson(result.output.toUtf8()).object().value(QLatin1String("versions")).toArray();
    QCOMPARE(versions.size(), 2);
    const QJsonObject now = versions.at(0).toObject();
    QCOMPARE(now.value(QLatin1String("number")), QJsonValue(0));
    QCOMPARE(now.value(QLatin1String("entries")), QJsonValue(2));
    QCOMPARE(now.value(QLatin1String("malformed")), QJsonValue(true));
    QCOMPARE(now.value(QLatin1String("readable")), QJsonValue(true));
    QCOMPARE(now.value(QLatin1String("file")), QJsonValue(setUp.Document()));
    const QJsonObject former = versions.at(1).toObject();
    QCOMPARE(former.value(QLatin1String("number")), QJsonValue(1));
    QCOMPARE(former.value(QLatin1String("entries")), QJsonValue(1));
    QCOMPARE(former.value(QLatin1String("malformed")), QJsonValue(false));
    QVERIFY(Files::Read(former.value(QLatin1String("file")).toString()).contains("ModelMimeData\": "));
    for (const QJsonObject& version : {now, former}) {
        const QString text = version.value(QLatin1String("saved")).toString();
        QCOMPARE(text.size(), 29); // with milliseconds and the offset from UTC
        const QDateTime saved = QDateTime::fromString(text, Qt::ISODateWithMs);
        QVERIFY(saved.isValid());
        QCOMPARE(saved.date().year(), QFileInfo(setUp.Document()).lastModified().date().year());
    }
}

void TestCtlBackups::listingBackupsWritesNothing()
{
    HostSetUp setUp;
    StoreLists(setUp, 2);
    setUp.Write(setUp.Document(), QByteArray("\0 no document", 14));
    const QByteArray before = setUp.StoredText();
    const QDateTime changed = QFileInfo(setUp.Document()).lastModified();
    QCOMPARE(Lines(setUp).size(), 2);
    QCOMPARE(setUp.StoredText(), before);
    QCOMPARE(QFileInfo(setUp.Document()).lastModified(), changed);
}

void TestCtlBackups::jsonTellsWhatVersionsDifferIn()
{
    HostSetUp setUp;
    setUp.Fill("gone kept");
    setUp.WriteList("list.xml", "kept new", "kept");
    QCOMPARE(setUp.Run("import list.xml").exitCode, 0);
    const auto result = setUp.Run("backups --json");
    const QJsonArray versions =
        QJsonDocument::fromJson(result.output.toUtf8()).object().value(QLatin1String("versions")).toArray();
    QVERIFY(!versions.at(0).toObject().contains(QLatin1String("added")));
    const QJsonObject former = versions.at(1).toObject();
    // What a restore would do.
    QCOMPARE(former.value(QLatin1String("added")), QJsonValue(QJsonArray{QStringLiteral("gone")}));
    QCOMPARE(former.value(QLatin1String("removed")), QJsonValue(QJsonArray{QStringLiteral("new")}));
    QCOMPARE(former.value(QLatin1String("changed")), QJsonValue(QJsonArray{QStringLiteral("kept")}));
}

void TestCtlBackups::dryRunPrintsTheDifference()
{
    HostSetUp setUp;
    setUp.Fill("gone kept");
    setUp.WriteList("list.xml", "kept new", "kept");
    QCOMPARE(setUp.Run("import list.xml").exitCode, 0);
    const QByteArray before = setUp.StoredText();
    const auto text = setUp.Run("restore 1 --dry-run");
    QCOMPARE(text.error, QString());
    QCOMPARE(text.exitCode, 0);
    QVERIFY2(text.output.startsWith(QLatin1String("version 1 of ")), qPrintable(text.output));
    QVERIFY2(text.output.endsWith(QLatin1String(" would be restored: 2 entries -> 2 entries\n  added: gone\n"
                                                "  removed: new\n  changed: kept\n")),
             qPrintable(text.output));
    const auto json = setUp.Run("restore 1 --dry-run --json");
    const QJsonObject object = QJsonDocument::fromJson(json.output.toUtf8()).object();
    QCOMPARE(object.value(QLatin1String("restored")), QJsonValue(false));
    QCOMPARE(object.value(QLatin1String("added")), QJsonValue(QJsonArray{QStringLiteral("gone")}));
    QCOMPARE(setUp.StoredText(), before);

    const auto restored = setUp.Run("restore 1 --json");
    QCOMPARE(restored.exitCode, 0);
    QCOMPARE(QJsonDocument::fromJson(restored.output.toUtf8()).object().value(QLatin1String("restored")),
             QJsonValue(true));
    QCOMPARE(setUp.Names(), Words("gone kept"));
}

void TestCtlBackups::restoreBringsAVersionBack()
{
    HostSetUp setUp;
    StoreLists(setUp, 3);
    const auto restored = setUp.Run("restore 2");
    QCOMPARE(restored.error, QString());
    QCOMPARE(restored.exitCode, 0);
    QCOMPARE(restored.OutputLines().size(), 1);
    QVERIFY2(restored.output.startsWith(QLatin1String("version 2 of ")) &&
                 restored.output.contains(QLatin1String("restored: 3 entries -> 1 entry\n")),
             qPrintable(restored.output));
    QCOMPARE(Lines(setUp), Words("now|1 1|3 2|2 3|1"));
    QCOMPARE(setUp.Names(), QStringList(QStringLiteral("entry 1")));

    // And back again.
    QCOMPARE(setUp.Run("restore 1").exitCode, 0);
    QCOMPARE(setUp.Names().size(), 3);
}

void TestCtlBackups::restoreOfAnEqualVersionChangesNothing()
{
    HostSetUp setUp;
    StoreLists(setUp, 2);
    QCOMPARE(setUp.Run("restore 1").exitCode, 0);
    // Version 2 equals the present list.
    const QByteArray before = setUp.StoredText();
    const auto result = setUp.Run("restore 2");
    QCOMPARE(result.exitCode, 0);
    QVERIFY2(result.output.contains(QLatin1String("1 entry -> 1 entry\n")), qPrintable(result.output));
    QCOMPARE(setUp.StoredText(), before);
}

void TestCtlBackups::unknownVersionIsRefused()
{
    HostSetUp setUp;
    QVERIFY(QDir().mkpath(setUp.Config()));
    const char* const hints[] = {"there are none", "there are none", "only version 1", "versions 1 to 2"};
    for (int lists = 0; lists <= 3; ++lists) {
        StoreLists(setUp, lists);
        if (lists > 0) {
            // One version less than lists; versions of earlier rounds are removed.
            const QStringList files = Files(setUp);
            for (qsizetype i = lists - 1; i < files.size(); ++i)
                QVERIFY(QFile::remove(files.at(i)));
        }
        const QByteArray before = setUp.StoredText();
        const auto result = setUp.Run("restore 7");
        QCOMPARE(result.exitCode, 1);
        QCOMPARE(result.output, QString());
        QCOMPARE(result.ErrorLines().size(), 1);
        QVERIFY2(result.error.contains(QLatin1String("no version 7")) &&
                     result.error.contains(QLatin1String(hints[lists])),
                 qPrintable(result.error));
        QCOMPARE(setUp.StoredText(), before);
    }
}

void TestCtlBackups::damagedVersionIsNotRestored()
{
    HostSetUp setUp;
    StoreLists(setUp, 3);
    setUp.Write(Files(setUp).constFirst(), QByteArray("\0\0\0\0", 4));
    QCOMPARE(Lines(setUp), Words("now|3 1|damaged 2|1"));
    COMPARE_FAILURE(setUp.Run("restore 1"), 2, QLatin1String("damaged"));
    QCOMPARE(setUp.Names().size(), 3);
}

void TestCtlBackups::damagedDocumentIsReplaced()
{
    HostSetUp setUp;
    StoreLists(setUp, 2);
    const QByteArray garbage("\0\0 garbage", 10);
    setUp.Write(setUp.Document(), garbage);
    QCOMPARE(Lines(setUp), Words("now|damaged 1|1"));
    const auto result = setUp.Run("restore 1");
    QCOMPARE(result.exitCode, 0);
    const QFileInfo document(setUp.Document());
    const QStringList aside = document.dir().entryList({document.fileName() + QStringLiteral(".damaged-*")});
    QCOMPARE(aside.size(), 1);
    QVERIFY2(result.error.contains(aside.constFirst()), qPrintable(result.error));
    QVERIFY2(result.output.contains(QLatin1String("restored: damaged -> 1 entry\n")), qPrintable(result.output));
    QCOMPARE(setUp.Names(), QStringList(QStringLiteral("entry 1")));
    QVERIFY(setUp.StoredText().contains(garbage));
}

void TestCtlBackups::runningHostRestores()
{
    HostSetUp setUp;
    StoreLists(setUp, 3);
    QProcess host;
    setUp.StartDialog(host);
    QCOMPARE(Lines(setUp).constFirst(), QStringLiteral("now|3"));
    const auto result = setUp.Run("restore 2");
    QCOMPARE(result.error, QString());
    QCOMPARE(result.exitCode, 0);
    QVERIFY2(result.output.contains(QLatin1String("restored: 3 entries -> 1 entry\n")), qPrintable(result.output));
    QCOMPARE(setUp.Names().size(), 1);
    host.kill();
    QVERIFY(WaitForEnd(host));
    // Stored, too.
    QCOMPARE(setUp.Names().size(), 1);
}

void TestCtlBackups::copyOfATruncatedListIsKept()
{
    HostSetUp setUp;
    StoreLists(setUp, 3);
    BreakOff(setUp, 1000);
    const auto valuesIn = [](const QString& file) {
        const QByteArray text = Files::Read(file);
        return text.mid(text.indexOf("\"values\""));
    };
    const QByteArray values = valuesIn(setUp.Document());
    QCOMPARE(Lines(setUp).constFirst(), QStringLiteral("now|2, then malformed"));

    // "list" reports it and changes nothing.
    const QByteArray stored = setUp.StoredText();
    const auto listed = setUp.Run("list");
    QCOMPARE(listed.exitCode, 0);
    QCOMPARE(listed.OutputLines().size(), 3);
    QCOMPARE(listed.ErrorLines().filter(QStringLiteral("malformed after 2 entries")).size(), 1);
    QCOMPARE(listed.ErrorLines().filter(QStringLiteral("entries in the list when it was saved: 3, now: 2")).size(), 1);
    QCOMPARE(setUp.StoredText(), stored);

    setUp.WriteList("more.xml", "more");
    const auto first = setUp.Run("add more.xml");
    QCOMPARE(first.exitCode, 0);
    QCOMPARE(first.ErrorLines().filter(QStringLiteral("malformed after 2 entries")).size(), 1);
    QCOMPARE(first.ErrorLines().filter(QStringLiteral("entries in the list when it was saved: 3, now: 2")).size(), 1);
    const QFileInfo info(setUp.Document());
    const auto copies = [&info] {
        return info.dir().entryInfoList({info.fileName() + QStringLiteral(".malformed-*")}, QDir::Files);
    };
    QCOMPARE(copies().size(), 1);
    QCOMPARE(valuesIn(copies().constFirst().filePath()), values);
    QVERIFY2(first.error.contains(copies().constFirst().fileName()), qPrintable(first.error));

    // Stored as far as it went, the list is in order, and the versions come and go.
    QCOMPARE(setUp.Run("list").error, QString());
    QCOMPARE(setUp.Names().size(), 3);
    StoreLists(setUp, 12);
    QCOMPARE(copies().size(), 1);
    QCOMPARE(valuesIn(copies().constFirst().filePath()), values);
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestCtlBackups)
#include "tst_ctlbackups.moc"
