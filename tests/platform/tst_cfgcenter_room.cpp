// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/configversions.h"
#include "tests/platform/storefixture.h"
#include "tests/support/files.h"
#include "tests/support/system/filesizelimit.h"
#include "tests/support/testmain.h"
#include "tests/support/tracerecorder.h"

#include <QFileInfo>
#include <QProcess>
#include <QScopeGuard>
#include <QTest>

#include <cerrno>

#include <csignal>
#include <sys/resource.h>

namespace {

const QString kText = QStringLiteral("Text");

QList<ConfigVersion> Versions()
{
    return ConfigVersions(View::Shared, QStringLiteral("Document")).List();
}

} // namespace

/// Saving on a full disk.
class TestCfgCenterRoom : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_store.emplace();
        QVERIFY(m_store->Save(1));
        m_store->Root()->SetString(kText, QString(5000, u'a'), 0);
        QVERIFY(m_store->Save(2));
        m_names = Names();
    }
    void cleanup() { m_store.reset(); }

    void fullDiskKeepsTheOldState_data()
    {
        QTest::addColumn<int>("missing"); // bytes
        QTest::newRow("no space") << 100000;
        QTest::newRow("space for a part") << 2000;
        QTest::newRow("some bytes short") << 20;
        QTest::newRow("one byte short") << 1;
    }
    void fullDiskKeepsTheOldState()
    {
        QFETCH(int, missing);
        const QByteArray before = Files::Read(m_store->Document());
        m_store->Root()->SetString(kText, QString(9000, u'b'), 0);
        const qint64 needed = before.size() + 4000;
        {
            const TraceRecorder traces;
            const FileSizeLimit limit(qMax(qint64(0), needed - missing));
            QVERIFY(!m_store->Save(3));
            QVERIFY(!traces.Messages().isEmpty());
            QVERIFY(traces.Messages().constLast().contains(m_store->Document()));
            QVERIFY(!m_store->Save(3));
        }
        QCOMPARE(Files::Read(m_store->Document()), before);
        QCOMPARE(Names(), m_names);
        QCOMPARE(Versions().size(), 1);

        // With enough space, saving works again.
        const FileSizeLimit limit(needed);
        QVERIFY(CfgCenter::SaveDocument());
        QCOMPARE(QFileInfo(m_store->Document()).size(), needed);
        QCOMPARE(Versions().size(), 2);
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 3);
        QCOMPARE(m_store->Root()->GetString(kText, {}, 0), QString(9000, u'b'));
    }

    void damagedDocumentStaysInPlaceOnAFullDisk()
    {
        QVERIFY(Files::Write(m_store->Document(), "damage"));
        {
            const FileSizeLimit limit(5050);
            QVERIFY(!m_store->Save(3));
        }
        QCOMPARE(Files::Read(m_store->Document()), QByteArray("damage"));
        QCOMPARE(Names(), m_names);
        QVERIFY(m_store->Save(3));
        QCOMPARE(m_store->Quarantined().size(), 1);
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 3);
        QCOMPARE(m_store->Root()->GetString(kText, {}, 0), QString(5000, u'a'));
    }

    void folderThatIsMovedAsideComesBackOnAFullDisk()
    {
        QVERIFY(QFile::remove(m_store->Document()));
        QVERIFY(QDir().mkpath(m_store->Document() + QStringLiteral("/inside")));
        {
            const FileSizeLimit limit(5050);
            QVERIFY(!m_store->Save(3));
        }
        QVERIFY(QFileInfo(m_store->Document() + QStringLiteral("/inside")).isDir());
        QVERIFY(m_store->Quarantined().isEmpty());
    }

    // The version is used anyway, and the next successful save writes it.
    void versionIsUsedWhereItCannotBeWritten()
    {
        QVERIFY(m_store->Save(3));
        QVERIFY(Files::Write(m_store->Document(), "damage"));
        {
            const FileSizeLimit limit(5000);
            m_store->Reopen();
            QCOMPARE(m_store->Number(), 2);
            QVERIFY(!CfgCenter::SaveDocument());
            QVERIFY2(CfgCenter::SaveError().contains(qt_error_string(EFBIG)), qPrintable(CfgCenter::SaveError()));
            QCOMPARE(Files::Read(m_store->Document()), QByteArray("damage"));
            QVERIFY(m_store->Quarantined().isEmpty());
        }
        QVERIFY(CfgCenter::SaveDocument());
        QVERIFY(CfgCenter::SaveError().isEmpty());
        QCOMPARE(m_store->Quarantined().size(), 1);
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 2);
        QCOMPARE(m_store->Root()->GetString(kText, {}, 0), QString(5000, u'a'));
    }

    // Neither in the store nor in the folder for temporary files.
    void readingNeedsNoDiskSpace()
    {
        const QByteArray formerPlace = qgetenv("TMPDIR");
        qputenv("TMPDIR", m_store->Path(QStringLiteral("no such folder")).toLocal8Bit());
        const auto back = qScopeGuard([&] { qputenv("TMPDIR", formerPlace); });
        {
            const FileSizeLimit limit(0);
            const TraceRecorder traces;
            m_store->Reopen();
            QCOMPARE(CfgCenter::Directory(), m_store->Path({}));
            QCOMPARE(m_store->Number(), 2);
            QCOMPARE(Versions().size(), 1);
            const ConfigVersions versions(View::Shared, QStringLiteral("Document"));
            QCOMPARE(m_store->Number(versions.Open(Versions().front()).get()), 1);
            QCOMPARE(m_store->Number(versions.OpenCurrent().get()), 2);
            QVERIFY2(traces.Messages().isEmpty(), qPrintable(traces.Messages().join(u'\n')));
        }
        // Writing needs space only in the store.
        QVERIFY(m_store->Save(3));
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 3);
    }

    // The process does not ignore SIGXFSZ, so exceeding the file size limit kills it in the middle of writing.
    void nextSaveRemovesLeftoversOfAKilledProcess()
    {
        {
            const FileSizeLimit limit(4000);
            QProcess process;
            process.setChildProcessModifier([] { std::signal(SIGXFSZ, SIG_DFL); });
            process.start(QStringLiteral(PLATFORMPROCESS),
                          {QStringLiteral("write"), m_store->Path({}), QStringLiteral("Document"),
                           QStringLiteral("Key"), QStringLiteral("1")});
            QVERIFY(process.waitForFinished());
            QCOMPARE(process.exitStatus(), QProcess::CrashExit);
        }
        const QDir folder(m_store->Path(QStringLiteral("shared")));
        const QStringList unfinished{QStringLiteral(".unfinished-*")};
        // The system may support unnamed temporary files.
        QVERIFY(folder.entryList(unfinished, QDir::Files | QDir::Hidden).size() <= 1);
        QCOMPARE(Names().filter(QStringLiteral(".lock")).size(), 1);
        QVERIFY(m_store->Save(3));
        QVERIFY(folder.entryList(unfinished, QDir::Files | QDir::Hidden).isEmpty());
        QVERIFY(Names().filter(QStringLiteral(".lock")).isEmpty());
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 3);
    }

    void failedRestoreChangesNothing()
    {
        const QByteArray before = Files::Read(m_store->Document());
        const ConfigVersions versions(View::Shared, QStringLiteral("Document"));
        m_store->Root()->Remove(kText, 0);
        QVERIFY(m_store->Save(3));
        const QByteArray small = Files::Read(m_store->Document());
        const QStringList names = Names();
        {
            const FileSizeLimit limit(before.size() - 1);
            QVERIFY(!versions.Restore(versions.List().front()));
        }
        QCOMPARE(Files::Read(m_store->Document()), small);
        QCOMPARE(Names(), names);
        QCOMPARE(versions.List().size(), 2);
        QVERIFY(versions.Restore(versions.List().front()));
        QCOMPARE(Files::Read(m_store->Document()), before);
    }

private:
    /// All names in the store, including lock files left behind.
    QStringList Names() const
    {
        QStringList names = QDir(m_store->Path(QStringLiteral("shared"))).entryList(QDir::AllEntries | QDir::Hidden);
        names += QDir(m_store->Versions()).entryList(QDir::AllEntries | QDir::Hidden);
        return names;
    }

    std::optional<StoreFixture> m_store;
    QStringList m_names;
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestCfgCenterRoom)
#include "tst_cfgcenter_room.moc"
