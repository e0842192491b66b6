// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "files/atomicfile.h"
#include "host/store/brokenlistbackup.h"
#include "host/store/storedset.h"
#include "platform/configversions.h"
#include "platform/instancelock.h"
#include "tests/host/storeddocument.h"
#include "tests/support/system/diskrequests_unix.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <optional>

/// Whether the host syncs what it writes, in the right order, so that it survives a power failure.
class TestHostDurabilityUnix : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_root.emplace();
        DiskRequests::Forget();
    }
    void cleanup()
    {
        CfgCenter::Close();
        m_root.reset();
    }

    void newConfigurationDirectoryIsSynced()
    {
        const QString directory = m_root->filePath(QStringLiteral("new/folder/config"));
        InstanceLock lock;
        QCOMPARE(lock.TryLock(directory), InstanceLock::Result::Locked);
        QVERIFY(QFileInfo(directory).isDir());
        QVERIFY(DiskRequests::FirstSyncOf(m_root->path()) >= 0);
        QVERIFY(DiskRequests::FirstSyncOf(m_root->filePath(QStringLiteral("new"))) >= 0);
        QVERIFY(DiskRequests::FirstSyncOf(m_root->filePath(QStringLiteral("new/folder"))) >= 0);
    }

    void exportedListIsSynced()
    {
        const QString file = m_root->filePath(QStringLiteral("list.xml"));
        for (const char* content : {"<ConnectionEntries/>", "<ConnectionEntries></ConnectionEntries>"}) {
            DiskRequests::Forget();
            QCOMPARE(ReplaceRegularFile(file, content), QString());
            VerifyWritten(file);
        }
    }

    void copyOfATruncatedListIsSynced()
    {
        QVERIFY(CfgCenter::Open(m_root->path()));
        StoreList(ListOf(5).chopped(30));
        QVERIFY(CfgCenter::SaveDocument());
        DiskRequests::Forget();
        QVERIFY(!BackUpBrokenList(ReadStoredSet(*CfgCenter::GetAppCfg(View::Application))).isEmpty());
        const QFileInfo document(ConfigVersions(View::Application, QString()).DocumentFile());
        const QFileInfoList copies =
            document.dir().entryInfoList({document.fileName() + QStringLiteral(".malformed-*")}, QDir::Files);
        QCOMPARE(copies.size(), 1);
        VerifyWritten(copies.constFirst().filePath());
    }

private:
    static void VerifyWritten(const QString& file)
    {
        const qsizetype named = DiskRequests::LastRenameTo(file);
        QVERIFY(named >= 0);
        QVERIFY(DiskRequests::IsSyncedBefore(named));
        QVERIFY(DiskRequests::FirstSyncOf(QFileInfo(file).path(), named) > named);
        // Until then under a name that nobody has: the file's own with letters added may be somebody's copy of it.
        const QString former = QFileInfo(DiskRequests::All().at(named).former).fileName();
        QVERIFY2(former.startsWith(QLatin1String(".unfinished-")), qPrintable(former));
    }

    std::optional<QTemporaryDir> m_root;
};

VEXEL_TEST(QTEST_MAIN, TestHostDurabilityUnix)
#include "tst_hostdurability_unix.moc"
