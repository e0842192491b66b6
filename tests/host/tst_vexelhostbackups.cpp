#include "tests/host/hostsetup.h"
#include "tests/support/files.h"
#include "tests/support/testmain.h"

#include <QRegularExpression>

// The executable of the host: versions of the stored list, and truncated lists.
class TestVexelHostBackups : public QObject
{
    Q_OBJECT

private slots:
    void missingConfigurationIsReported();
    void missingListIsShown();
    void versionsAreListedNewestFirst();
    void versionsAsJson();
    void listingBackupsWritesNothing();
    void needsNeitherDisplayNorPlugin();
    void restoreBringsAVersionBack();
    void restoreOfAnEqualVersionChangesNothing();
    void unknownVersionIsRefused();
    void damagedVersionIsNotRestored();
    void damagedDocumentIsReplaced();
    void restoreIsRefusedWhileAHostRuns();
    void copyOfATruncatedListIsKept();

private:
    /// Number, entries and file of every line of `--backups`.
    static QStringList Lines(HostSetUp& setUp);
    /// The files of the versions, newest first.
    static QStringList Files(HostSetUp& setUp);
    /// Stores `count` lists, one after the other, of 1, 2, 3 ... entries.
    static void StoreLists(HostSetUp& setUp, int count);
    /// Cuts the last `length` characters off the stored list, inside a document that stays readable.
    static void BreakOff(const HostSetUp& setUp, int length);
};

QStringList TestVexelHostBackups::Lines(HostSetUp& setUp)
{
    const auto result = setUp.Run("--backups");
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

QStringList TestVexelHostBackups::Files(HostSetUp& setUp)
{
    const auto result = setUp.Run("--backups --json");
    const QJsonArray versions =
        QJsonDocument::fromJson(result.output.toUtf8()).object().value(QLatin1String("versions")).toArray();
    QStringList files;
    for (const QJsonValue& version : versions)
        if (version[QLatin1String("number")].toInt() > 0)
            files.append(version[QLatin1String("file")].toString());
    return files;
}

void TestVexelHostBackups::StoreLists(HostSetUp& setUp, int count)
{
    QStringList names;
    for (int i = 1; i <= count; ++i) {
        names.append(QStringLiteral("entry %1").arg(i));
        setUp.Write(setUp.Path("list.xml"), HostSetUp::ListDocument(names));
        QCOMPARE(setUp.Run("--import list.xml").exitCode, 0);
    }
}

void TestVexelHostBackups::BreakOff(const HostSetUp& setUp, int length)
{
    QByteArray text = Files::Read(setUp.Document());
    const QByteArray key("ModelMimeData\": \"");
    const qsizetype begin = text.indexOf(key);
    QVERIFY(begin > 0);
    const qsizetype end = text.indexOf('"', begin + key.size());
    text.remove(end - length, length);
    setUp.Write(setUp.Document(), text);
}

void TestVexelHostBackups::missingConfigurationIsReported()
{
    HostSetUp setUp;
    for (const char* option : {"--backups", "--restore=1"}) {
        COMPARE_FAILURE(setUp.Run({QString::fromLatin1(option)}), 2, setUp.Config());
        // Looking for a configuration must not make one.
        QVERIFY(!QFileInfo::exists(setUp.Config()));
    }
}

void TestVexelHostBackups::missingListIsShown()
{
    HostSetUp setUp;
    QVERIFY(QDir().mkpath(setUp.Config()));
    QCOMPARE(Lines(setUp), QStringList(QStringLiteral("now|none stored")));
}

void TestVexelHostBackups::versionsAreListedNewestFirst()
{
    HostSetUp setUp;
    StoreLists(setUp, 3);
    QCOMPARE(Lines(setUp), Words("now|3 1|2 2|1"));
    const QStringList heading =
        setUp.Run("--backups").OutputLines().constFirst().split(QLatin1Char(' '), Qt::SkipEmptyParts);
    QCOMPARE(heading, Words("Number Saved Entries File"));
}

void TestVexelHostBackups::versionsAsJson()
{
    HostSetUp setUp;
    StoreLists(setUp, 2);
    BreakOff(setUp, 20);
    const auto result = setUp.Run("--backups --json");
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
        const QDateTime saved =
            QDateTime::fromString(version.value(QLatin1String("saved")).toString(), Qt::ISODateWithMs);
        QVERIFY(saved.isValid());
        QCOMPARE(saved.date().year(), QFileInfo(setUp.Document()).lastModified().date().year());
    }
}

void TestVexelHostBackups::listingBackupsWritesNothing()
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

void TestVexelHostBackups::needsNeitherDisplayNorPlugin()
{
    HostSetUp setUp;
    StoreLists(setUp, 2);
    setUp.Environment().insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("no-such-platform"));
    const QStringList withoutPlugin{QStringLiteral("--plugin"), QStringLiteral("/no/such/plugin.so")};
    QCOMPARE(setUp.Run(Words("--backups") + withoutPlugin).exitCode, 0);
    QCOMPARE(setUp.Run(Words("--restore=1") + withoutPlugin).exitCode, 0);
}

void TestVexelHostBackups::restoreBringsAVersionBack()
{
    HostSetUp setUp;
    StoreLists(setUp, 3);
    const QByteArray oldest = Files::Read(Files(setUp).constLast());
    const auto restored = setUp.Run("--restore 2");
    QCOMPARE(restored.error, QString());
    QCOMPARE(restored.exitCode, 0);
    QCOMPARE(restored.OutputLines().size(), 1);
    QVERIFY2(restored.output.startsWith(QLatin1String("version 2 of ")) &&
                 restored.output.contains(QLatin1String("3 entries -> 1 entry; the replaced state is now version 1")),
             qPrintable(restored.output));
    QCOMPARE(Files::Read(setUp.Document()), oldest);
    QCOMPARE(Lines(setUp), Words("now|1 1|3 2|2 3|1"));
    QCOMPARE(setUp.Names(), QStringList(QStringLiteral("entry 1")));

    // And back again.
    QCOMPARE(setUp.Run("--restore 1").exitCode, 0);
    QCOMPARE(setUp.Names().size(), 3);
}

void TestVexelHostBackups::restoreOfAnEqualVersionChangesNothing()
{
    HostSetUp setUp;
    StoreLists(setUp, 2);
    QCOMPARE(setUp.Run("--restore=1").exitCode, 0);
    // Version 2 equals the present list.
    const QByteArray before = setUp.StoredText();
    const auto result = setUp.Run("--restore=2");
    QCOMPARE(result.exitCode, 0);
    QVERIFY2(result.output.contains(QLatin1String("1 entry -> 1 entry\n")), qPrintable(result.output));
    QCOMPARE(setUp.StoredText(), before);
}

void TestVexelHostBackups::unknownVersionIsRefused()
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
        const auto result = setUp.Run("--restore 7");
        QCOMPARE(result.exitCode, 1);
        QCOMPARE(result.output, QString());
        QCOMPARE(result.ErrorLines().size(), 1);
        QVERIFY2(result.error.contains(QLatin1String("no version 7")) &&
                     result.error.contains(QLatin1String(hints[lists])),
                 qPrintable(result.error));
        QCOMPARE(setUp.StoredText(), before);
    }
}

void TestVexelHostBackups::damagedVersionIsNotRestored()
{
    HostSetUp setUp;
    StoreLists(setUp, 3);
    setUp.Write(Files(setUp).constFirst(), QByteArray("\0\0\0\0", 4));
    QCOMPARE(Lines(setUp), Words("now|3 1|damaged 2|1"));
    COMPARE_FAILURE(setUp.Run("--restore=1"), 2, QLatin1String("damaged"));
    QCOMPARE(setUp.Names().size(), 3);
}

void TestVexelHostBackups::damagedDocumentIsReplaced()
{
    HostSetUp setUp;
    StoreLists(setUp, 2);
    const QByteArray garbage("\0\0 garbage", 10);
    setUp.Write(setUp.Document(), garbage);
    QCOMPARE(Lines(setUp), Words("now|damaged 1|1"));
    const auto result = setUp.Run("--restore=1");
    QCOMPARE(result.exitCode, 0);
    const QFileInfo document(setUp.Document());
    const QStringList aside = document.dir().entryList({document.fileName() + QStringLiteral(".damaged-*")});
    QCOMPARE(aside.size(), 1);
    QVERIFY2(result.output.contains(QLatin1String("damaged -> 1 entry; the replaced file is kept as ")) &&
                 result.output.contains(aside.constFirst()),
             qPrintable(result.output));
    QCOMPARE(setUp.Names(), QStringList(QStringLiteral("entry 1")));
    QVERIFY(setUp.StoredText().contains(garbage));
}

void TestVexelHostBackups::restoreIsRefusedWhileAHostRuns()
{
    HostSetUp setUp;
    StoreLists(setUp, 2);
    QProcess host;
    setUp.StartDialog(host);

    const QByteArray before = setUp.StoredText();
    QCOMPARE(Lines(setUp), Words("now|2 1|1"));
    COMPARE_FAILURE(setUp.Run("--restore=1"), 4, QString::number(host.processId()));
    QCOMPARE(setUp.StoredText(), before);

    host.kill();
    QVERIFY(host.waitForFinished());
    QCOMPARE(setUp.Run("--restore=1").exitCode, 0);
    QCOMPARE(setUp.Names().size(), 1);
}

void TestVexelHostBackups::copyOfATruncatedListIsKept()
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

    const auto first = setUp.Run("--list");
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

    // Stored by the plug-in as far as it went, the list is in order, and the versions come and go.
    QCOMPARE(setUp.Run("--list").error, QString());
    StoreLists(setUp, 12);
    QCOMPARE(copies().size(), 1);
    QCOMPARE(valuesIn(copies().constFirst().filePath()), values);
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestVexelHostBackups)
#include "tst_vexelhostbackups.moc"
