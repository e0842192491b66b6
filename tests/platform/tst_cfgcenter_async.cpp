// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "files/filelock.h"
#include "platform/configversions.h"
#include "tests/platform/storefixture.h"
#include "tests/support/files.h"
#include "tests/support/testmain.h"

#include <QDateTime>
#include <QFileInfo>
#include <QScopeGuard>
#include <QTest>
#include <QThread>

#include <memory>
#include <utility>

namespace {

const QString kText = QStringLiteral("Text");
const QString kOther = QStringLiteral("Other");

} // namespace

/// Saving in another thread. A test that needs a save to last holds the document's lock.
class TestCfgCenterAsync : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_store.emplace();
        m_results.clear();
    }
    void cleanup()
    {
        m_lock.reset();
        m_store.reset();
    }

    void savedWhenTheEventLoopSaysSo()
    {
        m_store->Root()->SetInt(QStringLiteral("Number"), 1, 0);
        Start();
        QVERIFY(m_results.isEmpty());
        QTRY_COMPARE(m_results, QList<bool>{true});
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 1);
    }

    void nothingToSaveIsSuccess()
    {
        Start();
        QTRY_COMPARE(m_results, QList<bool>{true});
        QVERIFY(!QFile::exists(m_store->Document()));
    }

    void changesMeanwhileAreSavedNext()
    {
        m_store->Root()->SetString(kText, QStringLiteral("first"), 0);
        m_store->Root()->SetString(kOther, QStringLiteral("first"), 0);
        m_store->Root()->SetInt(QStringLiteral("Number"), 1, 0);
        Lock();
        Start();
        m_store->Root()->SetString(kText, QStringLiteral("second"), 0);
        m_store->Root()->Remove(kOther, 0);
        Unlock();
        QTRY_COMPARE(m_results, QList<bool>{true});
        QVERIFY(Files::Read(m_store->Document()).contains("\"Text\": \"first\""));
        QCOMPARE(Text(kText), QStringLiteral("second"));
        QCOMPARE(Text(kOther), QString());

        QVERIFY(CfgCenter::SaveDocument());
        m_store->Reopen();
        QCOMPARE(Text(kText), QStringLiteral("second"));
        QCOMPARE(Text(kOther), QString());
        QCOMPARE(m_store->Number(), 1);
    }

    void versionFilterIsThatOfTheStart()
    {
        QVERIFY(m_store->Save(1));
        QThread* thread = nullptr;
        CfgCenter::SetVersionFilter([&thread](const ConfigValues&, const ConfigValues&) {
            thread = QThread::currentThread();
            return false;
        });
        const auto reset = qScopeGuard([] { CfgCenter::SetVersionFilter({}); });
        m_store->Root()->SetInt(QStringLiteral("Number"), 2, 0);
        Lock();
        Start();
        CfgCenter::SetVersionFilter({});
        Unlock();
        QTRY_COMPARE(m_results, QList<bool>{true});
        QVERIFY(thread && thread != QThread::currentThread());
        QVERIFY(ConfigVersions(View::Shared, QStringLiteral("Document")).List().isEmpty());
    }

    void changesOfOthersAreTakenOver()
    {
        QVERIFY(m_store->Save(1));
        const QByteArray first = Files::Read(m_store->Document());
        m_store->Root()->SetString(kOther, QStringLiteral("theirs"), 0);
        QVERIFY(CfgCenter::SaveDocument());
        const QByteArray theirs = Files::Read(m_store->Document());
        QVERIFY(Files::Write(m_store->Document(), first));
        m_store->Reopen();
        QCOMPARE(Text(kOther), QString());
        QVERIFY(Files::Write(m_store->Document(), theirs));

        m_store->Root()->SetString(kText, QStringLiteral("mine"), 0);
        Start();
        QTRY_COMPARE(m_results, QList<bool>{true});
        QCOMPARE(Text(kOther), QStringLiteral("theirs"));
        QCOMPARE(Text(kText), QStringLiteral("mine"));
    }

    void nextSaveWaits()
    {
        m_store->Root()->SetInt(QStringLiteral("Number"), 1, 0);
        Start();
        m_store->Root()->SetInt(QStringLiteral("Number"), 2, 0);
        QVERIFY(CfgCenter::SaveDocument());
        QCOMPARE(m_results, QList<bool>{true});
        QCOMPARE(ConfigVersions(View::Shared, QStringLiteral("Document")).List().size(), 1);
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 2);
    }

    // Another process may hold the lock for seconds.
    void nextAsyncSaveDoesNotBlock()
    {
        m_store->Root()->SetInt(QStringLiteral("Number"), 1, 0);
        Lock();
        Start();
        m_store->Root()->SetInt(QStringLiteral("Number"), 2, 0);
        Start();
        Start();
        QVERIFY(m_results.isEmpty());
        Unlock();
        QTRY_COMPARE(m_results, (QList<bool>{true, true, true}));
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 2);
    }

    void closingSavesWhatIsWaiting()
    {
        m_store->Root()->SetInt(QStringLiteral("Number"), 1, 0);
        Start();
        m_store->Root()->SetInt(QStringLiteral("Number"), 2, 0);
        Start();
        m_store->Reopen();
        QCOMPARE(m_results, (QList<bool>{true, true}));
        QCOMPARE(m_store->Number(), 2);
    }

    void closingWaits()
    {
        m_store->Root()->SetInt(QStringLiteral("Number"), 1, 0);
        Start();
        m_store->Reopen();
        QCOMPARE(m_results, QList<bool>{true});
        QCOMPARE(m_store->Number(), 1);
    }

    void documentIsWrittenInAnotherThread()
    {
        CfgCenter::CreateCfg(kOther, View::Shared, {})->SetInt(QStringLiteral("Number"), 7, 0);
        const QThread* thread = nullptr;
        CfgCenter::WriteDocument(
            QStringLiteral("Document"), View::Shared,
            [&thread](ICfg& root) {
                thread = QThread::currentThread();
                root.SetInt(QStringLiteral("Number"), 1, 0);
            },
            [] { return true; });
        QVERIFY(thread && thread != QThread::currentThread());
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 1);
        // Every changed document is saved.
        QCOMPARE(m_store->Number(CfgCenter::CreateCfg(kOther, View::Shared, {})), 7);
    }

    void eventsCanBeHandledWhileADocumentIsWritten()
    {
        Lock();
        bool hasWaited = false;
        bool wasWritten = false;
        Write(QStringLiteral("new"), [&] {
            if (!std::exchange(hasWaited, true)) {
                wasWritten = QFile::exists(m_store->Document());
                Unlock();
            }
            return true;
        });
        QVERIFY(hasWaited);
        QVERIFY(!wasWritten);
        QVERIFY(Files::Read(m_store->Document()).contains("\"Text\": \"new\""));
    }

    void writingGoesOnWithoutItsCaller()
    {
        Lock();
        int waits = 0;
        Write(QStringLiteral("new"), [&waits] {
            ++waits;
            return false;
        });
        QCOMPARE(waits, 1);
        QVERIFY(!QFile::exists(m_store->Document()));
        Unlock();
        QTRY_VERIFY(Files::Read(m_store->Document()).contains("\"Text\": \"new\""));
    }

    void openDocumentShowsWhatWasWritten()
    {
        ICfg* const root = m_store->Root();
        root->SetString(kText, QStringLiteral("old"), 0);
        QVERIFY(CfgCenter::SaveDocument());
        root->SetString(kOther, QStringLiteral("mine"), 0);
        Write(QStringLiteral("new"));
        QCOMPARE(root->GetString(kText, {}, 0), QStringLiteral("new"));
        // Also where the value that is set then is the one from before.
        root->SetString(kText, QStringLiteral("old"), 0);
        QVERIFY(CfgCenter::SaveDocument());
        m_store->Reopen();
        QCOMPARE(Text(kText), QStringLiteral("old"));
        QCOMPARE(Text(kOther), QStringLiteral("mine"));
    }

    void openingADocumentWaitsUntilItIsWritten()
    {
        QVERIFY(m_store->Save(1));
        m_store->Reopen();
        Lock();
        Write(
            QStringLiteral("first"), [] { return false; });
        Write(QStringLiteral("second"), [] { return false; });
        Unlock();
        QCOMPARE(Text(kText), QStringLiteral("second"));
        QVERIFY(Files::Read(m_store->Document()).contains("\"Text\": \"second\""));
    }

    void writtenWhileAnotherSaveRuns()
    {
        m_store->Root()->SetInt(QStringLiteral("Number"), 1, 0);
        Lock();
        Start();
        Write(QStringLiteral("new"), [this] {
            Unlock();
            return true;
        });
        QCOMPARE(m_results, QList<bool>{true});
        m_store->Reopen();
        QCOMPARE(Text(kText), QStringLiteral("new"));
        QCOMPARE(m_store->Number(), 1);
    }

    void unchangedDocumentIsNotWritten()
    {
        Write(QStringLiteral("same"));
        const QDateTime before = QFileInfo(m_store->Document()).lastModified();
        QVERIFY(QFile::setPermissions(m_store->Document(), QFile::ReadOwner));
        Write(QStringLiteral("same"));
        QCOMPARE(QFileInfo(m_store->Document()).lastModified(), before);
        QVERIFY(ConfigVersions(View::Shared, QStringLiteral("Document")).List().isEmpty());
    }

    void failedWriteIsSavedNext()
    {
        Write(QStringLiteral("old"));
        const QString inTheWay = m_store->Document() + QStringLiteral(".lock");
        QVERIFY(QDir().mkpath(inTheWay));
        Write(QStringLiteral("new"));
        QVERIFY2(CfgCenter::SaveError().contains(inTheWay), qPrintable(CfgCenter::SaveError()));
        QCOMPARE(Text(kText), QStringLiteral("new"));
        QVERIFY(QDir().rmdir(inTheWay));
        QVERIFY(CfgCenter::SaveDocument());
        m_store->Reopen();
        QCOMPARE(Text(kText), QStringLiteral("new"));
    }

    void writeThatFailedIsNotSavedOverANewerOne()
    {
        Write(QStringLiteral("first"));
        const QString inTheWay = m_store->Document() + QStringLiteral(".lock");
        QVERIFY(QDir().mkpath(inTheWay));
        Write(QStringLiteral("failed"));
        QVERIFY(!CfgCenter::SaveError().isEmpty());
        // Saving the first one fails again, directly before this succeeds.
        CfgCenter::WriteDocument(
            QStringLiteral("Document"), View::Shared,
            [&inTheWay](ICfg& root) {
                QDir().rmdir(inTheWay);
                root.SetString(kText, QStringLiteral("newest"), 0);
            },
            [] { return true; });
        QCOMPARE(Text(kText), QStringLiteral("newest"));
        QVERIFY(CfgCenter::SaveDocument());
        m_store->Reopen();
        QCOMPARE(Text(kText), QStringLiteral("newest"));
    }

    void damagedDocumentIsRecoveredBeforeItIsWritten()
    {
        QVERIFY(m_store->Save(1));
        QVERIFY(m_store->Save(2)); // keeps a version
        m_store->Reopen();
        QVERIFY(Files::Write(m_store->Document(), "{"));
        QStringList notices;
        CfgCenter::SetNoticeSink([&notices](const QString& notice) { notices += notice; });
        const auto reset = qScopeGuard([] { CfgCenter::SetNoticeSink({}); });
        Write(QStringLiteral("new"));
        QCOMPARE(notices.size(), 1);
        QVERIFY2(notices.front().contains(QLatin1String("is damaged")), qPrintable(notices.front()));
        QCOMPARE(m_store->Quarantined().size(), 1);
        QCOMPARE(m_store->Number(), 1);
        QCOMPARE(Text(kText), QStringLiteral("new"));
    }

    void documentInMemoryIsWritten()
    {
        CfgCenter::Close();
        Write(QStringLiteral("new"));
        QCOMPARE(Text(kText), QStringLiteral("new"));
    }

    void failedSaveKeepsTheChanges()
    {
        m_store->Root()->SetString(kText, QStringLiteral("old"), 0);
        m_store->Root()->SetString(kOther, QStringLiteral("old"), 0);
        QVERIFY(CfgCenter::SaveDocument());
        const QString inTheWay = m_store->Document() + QStringLiteral(".lock");
        QVERIFY(QDir().mkpath(inTheWay));
        m_store->Root()->SetString(kText, QStringLiteral("new"), 0);
        m_store->Root()->Remove(kOther, 0);
        Start();
        QTRY_COMPARE(m_results, QList<bool>{false});
        QVERIFY2(CfgCenter::SaveError().contains(inTheWay), qPrintable(CfgCenter::SaveError()));
        QCOMPARE(Text(kText), QStringLiteral("new"));

        QVERIFY(QDir().rmdir(inTheWay));
        QVERIFY(CfgCenter::SaveDocument());
        m_store->Reopen();
        QCOMPARE(Text(kText), QStringLiteral("new"));
        QCOMPARE(Text(kOther), QString());
    }

private:
    void Start()
    {
        CfgCenter::SaveDocumentAsync([this](bool isSaved) { m_results += isSaved; });
    }
    static void Write(
        const QString& text, const std::function<bool()>& whileWaiting = [] { return true; })
    {
        CfgCenter::WriteDocument(
            QStringLiteral("Document"), View::Shared, [text](ICfg& root) { root.SetString(kText, text, 0); },
            whileWaiting);
    }
    void Lock()
    {
        QString error;
        QVERIFY(QDir().mkpath(m_store->Path(QStringLiteral("shared"))));
        m_lock = std::make_unique<FileLock>();
        QCOMPARE(m_lock->TryLock(m_store->Document() + QStringLiteral(".lock"), &error), FileLock::Result::Locked);
    }
    void Unlock() { m_lock.reset(); }
    QString Text(const QString& key) const { return m_store->Root()->GetString(key, {}, 0); }

    std::optional<StoreFixture> m_store;
    std::unique_ptr<FileLock> m_lock;
    QList<bool> m_results;
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestCfgCenterAsync)
#include "tst_cfgcenter_async.moc"
