// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "files/filelock.h"
#include "platform/configversions.h"
#include "tests/platform/storefixture.h"
#include "tests/support/files.h"
#include "tests/support/testmain.h"
#include "tests/support/tracerecorder.h"

#include <QDateTime>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QTest>

namespace {

const QString kText = QStringLiteral("Text");

/// Records the notices for the user during its lifetime.
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

/// Documents that cannot be read at their first use.
class TestCfgCenterDamage : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_store.emplace(); }
    void cleanup() { m_store.reset(); }

    void newestVersionReplacesADamagedDocument()
    {
        for (int i = 1; i <= 3; ++i)
            QVERIFY(m_store->Save(i));
        const QDateTime saved = ConfigVersions(View::Shared, QStringLiteral("Document")).List().front().saved;
        const QByteArray version = Files::Read(Version(0));
        QVERIFY(Files::Write(m_store->Document(), "damage"));

        Notices notices;
        const TraceRecorder traces;
        m_store->Reopen();
        QVERIFY(notices.lines.isEmpty()); // the document has not been used yet
        QCOMPARE(m_store->Number(), 2);
        QCOMPARE(Files::Read(m_store->Document()), version);
        QCOMPARE(m_store->Quarantined().size(), 1);
        QCOMPARE(Files::Read(QuarantinedFile()), QByteArray("damage"));

        QCOMPARE(notices.lines.size(), 1);
        const QString line = notices.lines.front();
        QVERIFY(!line.contains(u'\n'));
        QVERIFY(line.startsWith(m_store->Document() + QStringLiteral(" is damaged (line 1: ")));
        QVERIFY(line.contains(QStringLiteral("), quarantined as ") + QuarantinedFile()));
        QVERIFY(line.endsWith(QStringLiteral("using the version of %1 instead")
                                  .arg(saved.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")))));
        QCOMPARE(traces.Messages().size(), 1);
        QVERIFY(traces.Messages().front().contains(line));

        // From now on it is a normal document, and the version it was recovered from is not listed twice.
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 2);
        QCOMPARE(notices.lines.size(), 1);
        QVERIFY(m_store->Save(4));
        QCOMPARE(VersionCount(), 2);
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 4);
    }

    void damagedVersionsAreSkipped()
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

    void documentIsEmptyWithoutAReadableVersion()
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
        QCOMPARE(Files::Read(QuarantinedFile()), QByteArray("damage, too"));
        m_store->Reopen();
        QCOMPARE(m_store->Number(), -1);
        QCOMPARE(notices.lines.size(), 2); // until something is saved in its place
        QVERIFY(m_store->Save(3));
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 3);
    }

    void eachDocumentIsReportedOnce()
    {
        for (int i = 1; i <= 2; ++i) {
            CfgCenter::GetAppCfg(View::User)->SetInt(QStringLiteral("Number"), i, 0);
            QVERIFY(m_store->Save(i));
        }
        QVERIFY(Files::Write(m_store->Document(), "damage"));
        QVERIFY(Files::Write(m_store->Path(QStringLiteral("user/@application.json")), "damage"));
        QStringList lines;
        int numberThen = 0;
        CfgCenter::SetNoticeSink([&](const QString& line) {
            lines += line;
            numberThen = m_store->Number(); // the sink may read the document
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
        QCOMPARE(m_store->Number(), 1); // without a sink
        QCOMPARE(lines.size(), 2);
    }

    void truncatedTextIsDamaged_data()
    {
        QTest::addColumn<bool>("hasVersion");
        QTest::newRow("with a version") << true;
        QTest::newRow("without") << false;
    }
    void truncatedTextIsDamaged()
    {
        QFETCH(bool, hasVersion);
        if (hasVersion)
            QVERIFY(m_store->Save(1));
        for (const auto* name : {"First", "Second", "Third"})
            CfgCenter::CreateCfg(QStringLiteral("Document"), View::Shared, QString::fromLatin1(name))
                ->SetString(kText, QStringLiteral("Stra\u00dfe"), 0);
        QVERIFY(m_store->Save(2));
        const QByteArray whole = Files::Read(m_store->Document());
        for (qsizetype length = 0; length < whole.size(); ++length) {
            const Notices notices;
            QVERIFY(Files::Write(m_store->Document(), whole.first(length)));
            m_store->Reopen();
            QVERIFY2(m_store->Number() == (hasVersion ? 1 : -1), qPrintable(QString::number(length)));
            QCOMPARE(notices.lines.size(), 1);
            QCOMPARE(m_store->Quarantined().size(), 1);
            QCOMPARE(Files::Read(QuarantinedFile()), whole.first(length));
            QVERIFY(QFile::remove(QuarantinedFile()));
        }
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

    void folderInPlaceOfTheDocumentIsQuarantined()
    {
        QVERIFY(m_store->Save(1));
        QVERIFY(m_store->Save(2));
        QVERIFY(QFile::remove(m_store->Document()));
        QVERIFY(QDir().mkpath(m_store->Document() + QStringLiteral("/inside")));
        const Notices notices;
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 1);
        QCOMPARE(notices.lines.size(), 1);
        QVERIFY(notices.lines.front().contains(QLatin1String(" cannot be read, quarantined as ")));
        QVERIFY(QDir(QuarantinedFile() + QStringLiteral("/inside")).exists());
        QVERIFY(QFileInfo(m_store->Document()).isFile());
    }

    // A version is used, and the damaged file stays until it can be quarantined.
    void damagedDocumentIsNotReplacedUnlessQuarantined()
    {
        QVERIFY(m_store->Save(1));
        QVERIFY(m_store->Save(2));
        QVERIFY(Files::Write(m_store->Document(), "damage"));
        Notices notices;
        {
            FileLock lock;
            QString error;
            QCOMPARE(lock.TryLock(m_store->Document() + QStringLiteral(".lock"), &error), FileLock::Result::Locked);
            m_store->Reopen();
            QCOMPARE(m_store->Number(), 1);
            QCOMPARE(notices.lines.size(), 1);
            QVERIFY(notices.lines.front().contains(QLatin1String("is left as it is")));
            QVERIFY(!m_store->Save(3));
            QCOMPARE(CfgCenter::SaveError(),
                     QStringLiteral("%1: %2 holds its lock %1.lock; end it, or try again later")
                         .arg(m_store->Document(),
                              FileLock::ReadHolder(m_store->Document() + QStringLiteral(".lock")).Text()));
        }
        QCOMPARE(Files::Read(m_store->Document()), QByteArray("damage"));
        QVERIFY(m_store->Quarantined().isEmpty());

        m_store->Root()->SetString(kText, kText, 0);
        QVERIFY(CfgCenter::SaveDocument());
        QCOMPARE(notices.lines.size(), 2);
        QCOMPARE(Files::Read(QuarantinedFile()), QByteArray("damage"));
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 3);
        QCOMPARE(m_store->Root()->GetString(kText, {}, 0), kText);
        QCOMPARE(notices.lines.size(), 2);
    }

    void newestVersionReplacesARemovedDocument()
    {
        QVERIFY(m_store->Save(1));
        QVERIFY(m_store->Save(2));
        QVERIFY(QFile::remove(m_store->Document()));
        const Notices notices;
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 1);
        QCOMPARE(notices.lines.size(), 1);
        QVERIFY2(notices.lines.front().startsWith(m_store->Document() +
                                                  QStringLiteral(" is missing; using the version of ")),
                 qPrintable(notices.lines.front()));
        QVERIFY(QFile::exists(m_store->Document()));
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 1);
        QCOMPARE(notices.lines.size(), 1);
    }

    void removedDocumentBesideAQuarantinedOneIsTold()
    {
        QVERIFY(m_store->Save(1));
        QVERIFY(
            QFile::rename(m_store->Document(), m_store->Document() + QStringLiteral(".damaged-20260101T101112345")));
        const Notices notices;
        m_store->Reopen();
        QCOMPARE(m_store->Number(), -1);
        QCOMPARE(notices.lines.size(), 1);
        QVERIFY2(notices.lines.front().contains(QLatin1String(" is missing; it has no version ")),
                 qPrintable(notices.lines.front()));
        QVERIFY(m_store->Save(2));
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 2);
        QCOMPARE(notices.lines.size(), 1);
    }

    void lossOfTheApplicationsDocumentIsKnownUntilItIsSaved()
    {
        const QString file = m_store->Path(QStringLiteral("application/@application.json"));
        const auto save = [](int number) {
            CfgCenter::GetAppCfg(View::Application)->SetInt(QStringLiteral("Number"), number, 0);
            return CfgCenter::SaveDocument();
        };
        QVERIFY(!CfgCenter::IsAppCfgLost(View::Application));
        QVERIFY(save(1));
        QVERIFY(Files::Write(file, "damage"));
        for (int start = 1; start <= 2; ++start) {
            m_store->Reopen();
            QVERIFY(CfgCenter::IsAppCfgLost(View::Application));
            QVERIFY(CfgCenter::IsAppCfgKnown(View::Application));
        }
        QVERIFY(save(2));
        QVERIFY(!CfgCenter::IsAppCfgLost(View::Application));
        m_store->Reopen();
        QVERIFY(!CfgCenter::IsAppCfgLost(View::Application));
        QVERIFY(CfgCenter::WasAppCfgIntact(View::Application));
    }

    // Somebody else repairs the document and saves it before this process does.
    void valuesOfAVersionInUseDoNotReplaceNewerOnes()
    {
        m_store->Root()->SetString(kText, QStringLiteral("old"), 0);
        QVERIFY(m_store->Save(1));
        m_store->Root()->SetString(kText, QStringLiteral("new"), 0);
        QVERIFY(m_store->Save(2));
        const QByteArray newer = Files::Read(m_store->Document());
        QVERIFY(Files::Write(m_store->Document(), "damage"));
        {
            FileLock lock;
            QString error;
            QCOMPARE(lock.TryLock(m_store->Document() + QStringLiteral(".lock"), &error), FileLock::Result::Locked);
            m_store->Reopen();
            QCOMPARE(m_store->Number(), 1);
            QVERIFY(Files::Write(m_store->Document(), newer));
        }
        QVERIFY(m_store->Save(3));
        QCOMPARE(m_store->Root()->GetString(kText, {}, 0), QStringLiteral("new"));
    }

    // A text as it was found, which is among the versions, has no digest that matches.
    void recoveryFromATypedVersionIsToldOnce()
    {
        QVERIFY(m_store->Save(1));
        QVERIFY(Files::Write(m_store->Document(), R"({"values": {"Number": 9}})"));
        const Notices notices;
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 9);
        QCOMPARE(notices.lines.size(), 1);
        QVERIFY(Files::Write(m_store->Document(), "damage"));
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 9);
        QCOMPARE(notices.lines.size(), 2);
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 9);
        QCOMPARE(notices.lines.size(), 2);
    }

    // A piece cut out of a value leaves a valid text.
    void changedTextIsUsedToldOfAndKept_data()
    {
        QTest::addColumn<bool>("hasDigest");
        QTest::newRow("another digest") << true;
        QTest::newRow("no digest") << false;
    }
    void changedTextIsUsedToldOfAndKept()
    {
        QFETCH(bool, hasDigest);
        QVERIFY(m_store->Save(1));
        m_store->Root()->SetString(kText, QStringLiteral("0123456789"), 0);
        QVERIFY(m_store->Save(2));
        QByteArray changed = Files::Read(m_store->Document()).replace("345", "");
        if (!hasDigest)
            changed.remove(0, changed.indexOf("\"values\"")).prepend('{');
        QVERIFY(Files::Write(m_store->Document(), changed));

        const Notices notices;
        m_store->Reopen();
        QCOMPARE(m_store->Root()->GetString(kText, {}, 0), QStringLiteral("0126789"));
        QCOMPARE(m_store->Number(), 2);
        QCOMPARE(notices.lines.size(), 1);
        QVERIFY2(
            notices.lines.front().startsWith(m_store->Document() + QStringLiteral(" was changed by something else")),
            qPrintable(notices.lines.front()));
        QCOMPARE(VersionCount(), 2);
        QCOMPARE(Files::Read(Version(0)), changed);

        m_store->Reopen();
        QCOMPARE(m_store->Number(), 2);
        QCOMPARE(notices.lines.size(), 1);
    }

    void changedTextIsNotOverwrittenUnlessKept()
    {
        QVERIFY(m_store->Save(1));
        const QByteArray changed = Files::Read(m_store->Document()).replace("\"1\"", "\"7\"");
        QVERIFY(Files::Write(m_store->Document(), changed));
        QVERIFY(Files::Write(m_store->Versions(), "in the way"));
        const Notices notices;
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 7);
        QCOMPARE(notices.lines.size(), 1);
        QVERIFY(notices.lines.front().contains(
            QLatin1String("the file is left as it is: its earlier content cannot be kept ")));
        QVERIFY(!m_store->Save(8));
        QCOMPARE(Files::Read(m_store->Document()), changed);
        QVERIFY(QFile::remove(m_store->Versions()));
        QVERIFY(CfgCenter::SaveDocument());
        QCOMPARE(Files::Read(Version(0)), changed);
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 8);
    }

    void textChangedWhileOpenIsMergedToldOfAndKept()
    {
        m_store->Root()->SetString(kText, kText, 0);
        QVERIFY(m_store->Save(1));
        const QByteArray changed =
            Files::Read(m_store->Document()).replace("\"Text\": \"Text\"", "\"Text\": \"Typed\"");
        QVERIFY(Files::Write(m_store->Document(), changed));
        const Notices notices;
        QVERIFY(m_store->Save(2));
        QCOMPARE(notices.lines.size(), 1);
        QCOMPARE(Files::Read(Version(0)), changed);
        QCOMPARE(m_store->Root()->GetString(kText, {}, 0), QStringLiteral("Typed"));
    }

    void missingVersionIsToldOnce()
    {
        QVERIFY(m_store->Save(1));
        QVERIFY(Files::Write(m_store->Versions(), "in the way"));
        const Notices notices;
        QVERIFY(m_store->Save(2));
        QVERIFY(m_store->Save(3));
        QCOMPARE(notices.lines.size(), 1);
        QVERIFY2(notices.lines.front().contains(QLatin1String("cannot be kept as a version: the folder ")),
                 qPrintable(notices.lines.front()));
        QVERIFY(QFile::remove(m_store->Versions()));
        QVERIFY(m_store->Save(4));
        QCOMPARE(notices.lines.size(), 1);
    }

    void fileRemovedWhileOpenIsWrittenCompletely()
    {
        m_store->Root()->SetString(kText, kText, 0);
        QVERIFY(m_store->Save(1));
        QVERIFY(QFile::remove(m_store->Document()));
        QVERIFY(m_store->Save(2));
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 2);
        QCOMPARE(m_store->Root()->GetString(kText, {}, 0), kText);
    }

    // The working copy still has the complete content.
    void fileEmptiedWhileOpenIsWrittenCompletely()
    {
        m_store->Root()->SetString(kText, kText, 0);
        QVERIFY(m_store->Save(1));
        QVERIFY(m_store->Save(2));
        QVERIFY(Files::Write(m_store->Document(), QByteArray()));
        QVERIFY(m_store->Save(3));
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 3);
        QCOMPARE(m_store->Root()->GetString(kText, {}, 0), kText);
        QCOMPARE(m_store->Quarantined().size(), 1);
        QCOMPARE(VersionCount(), 1);
    }

private:
    QString Version(int number) const
    {
        return ConfigVersions(View::Shared, QStringLiteral("Document")).List().value(number).file;
    }
    qsizetype VersionCount() const { return ConfigVersions(View::Shared, QStringLiteral("Document")).List().size(); }
    QString QuarantinedFile() const
    {
        return m_store->Path(QStringLiteral("shared/")) + m_store->Quarantined().value(0);
    }

    std::optional<StoreFixture> m_store;
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestCfgCenterDamage)
#include "tst_cfgcenter_damage.moc"
