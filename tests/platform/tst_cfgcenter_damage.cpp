#include "platform/configversions.h"
#include "tests/platform/storefixture.h"
#include "tests/platform/tracerecorder.h"
#include "tests/support/files.h"
#include "tests/support/testmain.h"

#include <QDateTime>
#include <QFileInfo>
#include <QLockFile>
#include <QRandomGenerator>
#include <QSettings>
#include <QTest>

namespace {

const QString kText = QStringLiteral("Text");

/// Keeps what people are told, for as long as it lives.
class Notices
{
public:
    Notices()
    {
        CfgCenter::SetNoticeSink([this](const QString& line) { lines += line; });
    }
    ~Notices() { CfgCenter::SetNoticeSink({}); }

    Notices(const Notices&) = delete;
    Notices& operator=(const Notices&) = delete;

    QStringList lines;
};

} // namespace

/// A document that cannot be read when it is first asked for.
class TestCfgCenterDamage : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_store.emplace(); }
    void cleanup() { m_store.reset(); }

    void newestVersionTakesThePlace()
    {
        for (int i = 1; i <= 3; ++i)
            QVERIFY(m_store->Save(i));
        const QDateTime saved = ConfigVersions(View::Shared, QStringLiteral("Document")).List().front().saved;
        const QByteArray version = Files::Read(Version(0));
        QVERIFY(Files::Write(m_store->Document(), "damage"));

        Notices notices;
        const TraceRecorder traces;
        m_store->Reopen();
        QVERIFY(notices.lines.isEmpty()); // nobody has asked for it
        QCOMPARE(m_store->Number(), 2);
        QCOMPARE(Files::Read(m_store->Document()), version);
        QCOMPARE(m_store->Aside().size(), 1);
        QCOMPARE(Files::Read(AsideFile()), QByteArray("damage"));

        QCOMPARE(notices.lines.size(), 1);
        const QString line = notices.lines.front();
        QVERIFY(!line.contains(u'\n'));
        QVERIFY(line.contains(m_store->Document() + QStringLiteral(" is damaged, kept as ") + AsideFile()));
        QVERIFY(line.endsWith(QStringLiteral("using the version of %1 instead")
                                  .arg(saved.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")))));
        QCOMPARE(traces.Messages().size(), 1);
        QVERIFY(traces.Messages().front().contains(line));

        // It is a document like any other from then on, and what it came from is no second version.
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 2);
        QCOMPARE(notices.lines.size(), 1);
        QVERIFY(m_store->Save(4));
        QCOMPARE(VersionCount(), 2);
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 4);
    }

    void damagedVersionsArePassedOver()
    {
        for (int i = 1; i <= 5; ++i)
            QVERIFY(m_store->Save(i));
        QVERIFY(Files::Write(Version(0), "damage"));
        QVERIFY(Files::Write(Version(1), QByteArray()));
        QVERIFY(Files::Write(m_store->Document(), "damage"));
        const Notices notices;
        const TraceRecorder traces;
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 2);
        QCOMPARE(notices.lines.size(), 1);
        QCOMPARE(traces.Messages().size(), 3);
        QVERIFY(traces.Messages().at(0).contains(Version(0)));
        QVERIFY(traces.Messages().at(1).contains(Version(1)));
    }

    void withoutAReadableVersionItBeginsEmpty()
    {
        QVERIFY(m_store->Save(1));
        QVERIFY(m_store->Save(2));
        QVERIFY(Files::Write(Version(0), "damage"));
        QVERIFY(Files::Write(m_store->Document(), "damage, too"));
        const Notices notices;
        m_store->Reopen();
        QCOMPARE(m_store->Number(), -1);
        QCOMPARE(notices.lines.size(), 1);
        QVERIFY(notices.lines.front().contains(QLatin1String("empty")));
        QVERIFY(!QFile::exists(m_store->Document()));
        QCOMPARE(Files::Read(AsideFile()), QByteArray("damage, too"));
        QVERIFY(m_store->Save(3));
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 3);
    }

    void eachDocumentIsToldOfOnce()
    {
        for (int i = 1; i <= 2; ++i) {
            CfgCenter::GetAppCfg(View::User)->SetInt(QStringLiteral("Number"), i, 0);
            QVERIFY(m_store->Save(i));
        }
        QVERIFY(Files::Write(m_store->Document(), "damage"));
        QVERIFY(Files::Write(m_store->Path(QStringLiteral("user/@application.ini")), "damage"));
        QStringList lines;
        int numberThen = 0;
        CfgCenter::SetNoticeSink([&](const QString& line) {
            lines += line;
            numberThen = m_store->Number(); // may ask for what it is told of
        });
        m_store->Reopen();
        m_store->Root();
        CfgCenter::GetAppCfg(View::User);
        m_store->Root();
        CfgCenter::SetNoticeSink({});
        QCOMPARE(lines.size(), 2);
        QCOMPARE(numberThen, 1);

        QVERIFY(Files::Write(m_store->Document(), "damage"));
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 1); // with nobody to tell
        QCOMPARE(lines.size(), 2);
    }

    // Wherever the text ends too early, also between two lines, which leaves what would else be a document.
    void textCutOffAnywhereIsDamaged_data()
    {
        QTest::addColumn<bool>("hasVersion");
        QTest::newRow("with a version") << true;
        QTest::newRow("without") << false;
    }
    void textCutOffAnywhereIsDamaged()
    {
        QFETCH(bool, hasVersion);
        if (hasVersion)
            QVERIFY(m_store->Save(1));
        for (const auto* name : {"First", "Second", "Third"})
            CfgCenter::CreateCfg(QStringLiteral("Document"), View::Shared, QString::fromLatin1(name))
                ->SetString(kText, QStringLiteral("Stra\u00dfe"), 0);
        QVERIFY(m_store->Save(2));
        const QByteArray whole = Files::Read(m_store->Document());
        QVERIFY(whole.size() > 150);
        QVERIFY(whole.endsWith('\n'));

        qsizetype lineEnd = whole.size() - 1;
        if (whole.at(lineEnd - 1) == '\r')
            --lineEnd;
        for (qsizetype length = hasVersion ? 0 : 1; length < lineEnd; ++length) {
            const Notices notices;
            QVERIFY(Files::Write(m_store->Document(), whole.first(length)));
            m_store->Reopen();
            QVERIFY2(m_store->Number() == (hasVersion ? 1 : -1), qPrintable(QString::number(length)));
            QCOMPARE(notices.lines.size(), 1);
            QCOMPARE(m_store->Aside().size(), 1);
            QCOMPARE(Files::Read(AsideFile()), whole.first(length));
            QVERIFY(QFile::remove(AsideFile()));
        }

        // Nothing that is said is missing.
        const Notices notices;
        QVERIFY(Files::Write(m_store->Document(), whole.first(lineEnd)));
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 2);
        QVERIFY(notices.lines.isEmpty());
    }

    void overwrittenTextIsDamaged_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QRandomGenerator random(4711);
        for (const int size : {64, 512, 4096}) {
            QByteArray noise(size, 0);
            for (char& byte : noise)
                byte = static_cast<char>(random.bounded(256));
            QTest::addRow("%d random bytes", size) << noise;
            QTest::addRow("%d zeros", size) << QByteArray(size, '\0');
        }
    }
    void overwrittenTextIsDamaged()
    {
        QFETCH(QByteArray, bytes);
        QVERIFY(m_store->Save(1));
        m_store->Root()->SetString(kText, QString(9000, u'x'), 0);
        QVERIFY(m_store->Save(2));
        const QByteArray whole = Files::Read(m_store->Document());
        for (qsizetype at = 0; at < whole.size(); at += whole.size() / 12) {
            QByteArray broken = whole;
            broken.replace(at, bytes.size(), bytes);
            broken.truncate(whole.size());
            const Notices notices;
            QVERIFY(Files::Write(m_store->Document(), broken));
            m_store->Reopen();
            QVERIFY2(m_store->Number() == 1, qPrintable(QString::number(at)));
            QCOMPARE(notices.lines.size(), 1);
        }
    }

    void whatOthersMakeOfTheTextIsRead_data()
    {
        QTest::addColumn<QByteArray>("before"); // as a regular text with one place to be replaced
        QTest::addColumn<QByteArray>("after");
        QTest::addColumn<bool>("isCommented");
        QTest::newRow("a value typed over") << QByteArray("Number=2") << QByteArray("Number=3") << true;
        QTest::newRow("a key typed in") << QByteArray("[General]") << QByteArray("[General]\nOther=1") << true;
        QTest::newRow("a key typed behind the end") << QByteArray() << QByteArray("\n[A]\nb=1\n") << true;
        QTest::newRow("the last line's name inside")
            << QByteArray("[General]") << QByteArray("; end of file\n[General]\nOther=1") << true;
        QTest::newRow("no comments") << QByteArray() << QByteArray() << false;
    }
    void whatOthersMakeOfTheTextIsRead()
    {
        QFETCH(QByteArray, before);
        QFETCH(QByteArray, after);
        QFETCH(bool, isCommented);
        QVERIFY(m_store->Save(1));
        QVERIFY(m_store->Save(2));
        QByteArray text = Files::Read(m_store->Document());
        text.replace("\r\n", "\n");
        if (before.isEmpty())
            text += after;
        else
            text.replace(before, after);
        if (!isCommented) {
            QByteArrayList lines = text.split('\n');
            lines.removeIf([](const QByteArray& line) { return line.startsWith(';'); });
            text = lines.join('\n');
        }
        QByteArray crlf = text;
        crlf.replace("\n", "\r\n");
        const int number = text.contains("Number=3") ? 3 : 2;
        const Notices notices;
        for (const QByteArray& content : {text, crlf, QByteArray("\xef\xbb\xbf") + text}) {
            QVERIFY(Files::Write(m_store->Document(), content));
            m_store->Reopen();
            QCOMPARE(m_store->Number(), number);
            QVERIFY(m_store->Save(20));
            m_store->Reopen();
            QCOMPARE(m_store->Number(), 20);
            QCOMPARE(Files::Read(m_store->Document()).count("; end of file"), 1);
        }
        QVERIFY2(notices.lines.isEmpty(), qPrintable(notices.lines.join(u'\n')));
    }

    void programsThatUseTheFormatDirectlyAreRead()
    {
        QVERIFY(m_store->Save(1));
        QVERIFY(m_store->Save(2));
        {
            QSettings settings(m_store->Document(), QSettings::IniFormat);
            QCOMPARE(settings.allKeys(), QStringList({QStringLiteral("Number")}));
            settings.setValue(QStringLiteral("Theirs"), 5);
        }
        const Notices notices;
        m_store->Root()->SetInt(QStringLiteral("Ours"), 6, 0);
        QVERIFY(CfgCenter::SaveDocument());
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 2);
        QCOMPARE(m_store->Root()->GetInt(QStringLiteral("Theirs"), 0, 0), 5);
        QCOMPARE(m_store->Root()->GetInt(QStringLiteral("Ours"), 0, 0), 6);
        QVERIFY(notices.lines.isEmpty());
    }

    void aFolderInThePlaceIsQuarantined()
    {
        QVERIFY(m_store->Save(1));
        QVERIFY(m_store->Save(2));
        QVERIFY(QFile::remove(m_store->Document()));
        QVERIFY(QDir().mkpath(m_store->Document() + QStringLiteral("/inside")));
        const Notices notices;
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 1);
        QCOMPARE(notices.lines.size(), 1);
        QVERIFY(notices.lines.front().contains(QLatin1String(" cannot be read, kept as ")));
        QVERIFY(QDir(AsideFile() + QStringLiteral("/inside")).exists());
        QVERIFY(QFileInfo(m_store->Document()).isFile());
    }

    // A version is shown, and what is in the file cannot be lost.
    void whatCannotBeQuarantinedIsNeverReplaced()
    {
        QVERIFY(m_store->Save(1));
        QVERIFY(m_store->Save(2));
        QVERIFY(Files::Write(m_store->Document(), "damage"));
        Notices notices;
        {
            QLockFile lock(m_store->Document() + QStringLiteral(".lock"));
            QVERIFY(lock.lock());
            m_store->Reopen();
            QCOMPARE(m_store->Number(), 1);
        }
        QCOMPARE(notices.lines.size(), 1);
        QVERIFY(notices.lines.front().contains(QLatin1String("could not be moved aside")));
        {
            const TraceRecorder traces;
            QVERIFY(!m_store->Save(3));
            QCOMPARE(traces.Messages().size(), 1);
        }
        QCOMPARE(Files::Read(m_store->Document()), QByteArray("damage"));
        QVERIFY(m_store->Aside().isEmpty());

        // Once it is gone there is nothing to lose, and all that is shown is saved.
        m_store->Root()->SetString(kText, kText, 0);
        QVERIFY(QFile::remove(m_store->Document()));
        QVERIFY(CfgCenter::SaveDocument());
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 3);
        QCOMPARE(m_store->Root()->GetString(kText, {}, 0), kText);
        QCOMPARE(notices.lines.size(), 1);
    }

    void documentThatWasTakenAwayIsEmpty()
    {
        QVERIFY(m_store->Save(1));
        QVERIFY(m_store->Save(2));
        QVERIFY(QFile::remove(m_store->Document()));
        const Notices notices;
        m_store->Reopen();
        QCOMPARE(m_store->Number(), -1);
        QVERIFY(!QFile::exists(m_store->Document()));
        QVERIFY(notices.lines.isEmpty());
    }

    void emptyFileIsDamageOnlyWithAHistory()
    {
        QVERIFY(m_store->Save(1));
        QVERIFY(Files::Write(m_store->Document(), QByteArray()));
        const Notices notices;
        m_store->Reopen();
        QCOMPARE(m_store->Number(), -1);
        QVERIFY(notices.lines.isEmpty());
        QVERIFY(m_store->Save(1));
        QVERIFY(m_store->Save(2));
        QVERIFY(Files::Write(m_store->Document(), QByteArray()));
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 1);
        QCOMPARE(notices.lines.size(), 1);
    }

    void fileTakenAwayMeanwhileComesBackWhole()
    {
        m_store->Root()->SetString(kText, kText, 0);
        QVERIFY(m_store->Save(1));
        QVERIFY(QFile::remove(m_store->Document()));
        QVERIFY(m_store->Save(2));
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 2);
        QCOMPARE(m_store->Root()->GetString(kText, {}, 0), kText);
    }

    // Emptied while it is open: the working copy knows all.
    void fileEmptiedMeanwhileComesBackWhole()
    {
        m_store->Root()->SetString(kText, kText, 0);
        QVERIFY(m_store->Save(1));
        QVERIFY(m_store->Save(2));
        QVERIFY(Files::Write(m_store->Document(), QByteArray()));
        QVERIFY(m_store->Save(3));
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 3);
        QCOMPARE(m_store->Root()->GetString(kText, {}, 0), kText);
        QCOMPARE(m_store->Aside().size(), 1);
        QCOMPARE(VersionCount(), 1);
    }

private:
    QString Version(int number) const
    {
        return ConfigVersions(View::Shared, QStringLiteral("Document")).List().value(number).file;
    }
    qsizetype VersionCount() const { return ConfigVersions(View::Shared, QStringLiteral("Document")).List().size(); }
    QString AsideFile() const { return m_store->Path(QStringLiteral("shared/")) + m_store->Aside().value(0); }

    std::optional<StoreFixture> m_store;
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestCfgCenterDamage)
#include "tst_cfgcenter_damage.moc"
