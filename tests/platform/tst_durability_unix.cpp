// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/cfgcenter.h"
#include "platform/icfg.h"
#include "tests/support/system/diskrequests_unix.h"
#include "tests/support/testmain.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <optional>

/// Checks the order of sync and rename calls, so that saved documents survive a power failure.
class TestDurability : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        DiskRequests::Forget();
        m_root.emplace();
    }
    void cleanup()
    {
        CfgCenter::Close();
        m_root.reset();
    }

    void contentIsSyncedBeforeTheRenameAndTheFolderAfterIt()
    {
        QVERIFY(CfgCenter::Open(m_root->path()));
        for (int i = 1; i <= 2; ++i) {
            DiskRequests::Forget();
            Save(i);
            const qsizetype named = DiskRequests::LastRenameTo(Document());
            QVERIFY(named >= 0);
            QVERIFY(DiskRequests::IsSyncedBefore(named));
            QVERIFY(DiskRequests::FirstSyncOf(QFileInfo(Document()).path(), named) > named);
        }
    }

    void newFoldersAreSynced()
    {
        const QString store = m_root->filePath(QStringLiteral("a/store"));
        QVERIFY(CfgCenter::Open(store));
        QVERIFY(DiskRequests::FirstSyncOf(m_root->path()) >= 0);
        QVERIFY(DiskRequests::FirstSyncOf(m_root->filePath(QStringLiteral("a"))) >= 0);
        QVERIFY(DiskRequests::FirstSyncOf(store) < 0);
        Save(1);
        QVERIFY(DiskRequests::FirstSyncOf(store) >= 0); // contains "shared"
        DiskRequests::Forget();
        Save(2);
        QVERIFY(DiskRequests::FirstSyncOf(store) < 0);
    }

private:
    static void Save(int number)
    {
        CfgCenter::CreateCfg(QStringLiteral("Document"), View::Shared, {})->SetInt(QStringLiteral("Number"), number, 0);
        QVERIFY(CfgCenter::SaveDocument());
    }

    QString Document() const { return m_root->filePath(QStringLiteral("shared/Document.json")); }

    std::optional<QTemporaryDir> m_root;
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestDurability)
#include "tst_durability_unix.moc"
