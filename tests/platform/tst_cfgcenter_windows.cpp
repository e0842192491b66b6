// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/platform/storefixture.h"
#include "tests/support/files.h"
#include "tests/support/testmain.h"

#include <QTest>

#include <string>
#include <thread>

#include <windows.h>

namespace {

/// Keeps a file open so that it cannot be replaced, like a virus scanner or an editor.
class Holder
{
public:
    explicit Holder(const QString& file, DWORD sharing = FILE_SHARE_READ)
        : m_handle(CreateFileW(file.toStdWString().c_str(), GENERIC_READ, sharing, nullptr, OPEN_EXISTING, 0, nullptr))
    {
    }
    ~Holder() { LetGo(); }

    Holder(const Holder&) = delete;
    Holder& operator=(const Holder&) = delete;

    bool Holds() const { return m_handle != INVALID_HANDLE_VALUE; }
    void LetGo()
    {
        if (Holds())
            CloseHandle(m_handle);
        m_handle = INVALID_HANDLE_VALUE;
    }

private:
    HANDLE m_handle;
};

} // namespace

/// Documents that other programs keep open, which prevents replacing or reading them.
class TestCfgCenterWindows : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_store.emplace();
        QVERIFY(m_store->Save(1));
    }
    void cleanup() { m_store.reset(); }

    void saveWaitsForAnotherProgramToCloseTheFile()
    {
        Holder holder(m_store->Document());
        QVERIFY(holder.Holds());
        // Open when saving starts, but closed before the last attempt.
        std::thread other([&] {
            Sleep(100);
            holder.LetGo();
        });
        const bool isSaved = m_store->Save(2);
        other.join();
        QVERIFY(isSaved);
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 2);
    }

    void saveFailsWhileAnotherProgramKeepsTheFileOpen()
    {
        const QByteArray content = Files::Read(m_store->Document());
        {
            const Holder holder(m_store->Document());
            QVERIFY(holder.Holds());
            QVERIFY(!m_store->Save(2));
            QCOMPARE(Files::Read(m_store->Document()), content);
        }
        // No change is lost, and no temporary file remains.
        QVERIFY(CfgCenter::SaveDocument());
        const QStringList files = QDir(m_store->Path(QStringLiteral("shared"))).entryList(QDir::Files | QDir::Hidden);
        QCOMPARE(files, QStringList(QStringLiteral("Document.json")));
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 2);
    }

    void readWaitsForAnotherProgramToCloseTheFile()
    {
        Holder holder(m_store->Document(), 0);
        QVERIFY(holder.Holds());
        std::thread other([&] {
            Sleep(100);
            holder.LetGo();
        });
        m_store->Reopen();
        const int number = m_store->Number();
        other.join();
        QCOMPARE(number, 1);
        QVERIFY(m_store->Quarantined().isEmpty());
    }

    void unreachableDirectoriesAreRefused_data()
    {
        QTest::addColumn<QString>("directory");
        QTest::newRow("drive") << QStringLiteral("Q:/nowhere/store");
        QTest::newRow("share") << QStringLiteral("//no-such-host/share/store");
        QTest::newRow("device") << QStringLiteral("NUL");
        QTest::newRow("below a device") << QStringLiteral("NUL/store");
    }
    void unreachableDirectoriesAreRefused()
    {
        QFETCH(QString, directory);
        QVERIFY(!CfgCenter::Open(directory));
    }

private:
    std::optional<StoreFixture> m_store;
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestCfgCenterWindows)
#include "tst_cfgcenter_windows.moc"
