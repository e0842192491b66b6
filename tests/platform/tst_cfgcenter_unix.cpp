// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/configversions.h"
#include "tests/platform/storefixture.h"
#include "tests/support/files.h"
#include "tests/support/testmain.h"
#include "tests/support/tracerecorder.h"

#include <QDirIterator>
#include <QFileInfo>
#include <QScopeGuard>
#include <QStorageInfo>
#include <QTest>

#include <cerrno>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// Prevents this process from opening files during its lifetime.
class NoMoreFiles
{
public:
    NoMoreFiles()
    {
        getrlimit(RLIMIT_NOFILE, &m_former);
        const int next = open("/dev/null", O_RDONLY | O_CLOEXEC);
        close(next);
        rlimit limit = m_former;
        limit.rlim_cur = static_cast<rlim_t>(next);
        setrlimit(RLIMIT_NOFILE, &limit);
    }
    ~NoMoreFiles() { setrlimit(RLIMIT_NOFILE, &m_former); }

    NoMoreFiles(const NoMoreFiles&) = delete;
    NoMoreFiles& operator=(const NoMoreFiles&) = delete;

private:
    rlimit m_former{};
};

} // namespace

/// Documents and features of Unix file systems: symbolic links, pipes, sparse files, and permissions that restrict the
/// owner.
class TestCfgCenterUnix : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_store.emplace(); }
    void cleanup() { m_store.reset(); }

    void fileWithoutReadPermissionIsQuarantined()
    {
        QVERIFY(m_store->Save(1));
        QVERIFY(m_store->Save(2));
        const QByteArray content = Files::Read(m_store->Document());
        const auto permissions = QFile::permissions(m_store->Document());
        QFile::setPermissions(m_store->Document(), {});
        if (QFile(m_store->Document()).open(QIODevice::ReadOnly))
            QSKIP("An administrator reads everything.");
        QStringList notices;
        CfgCenter::SetNoticeSink([&](const QString& line) { notices += line; });
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 1);
        CfgCenter::SetNoticeSink({});
        QCOMPARE(notices.size(), 1);
        QVERIFY(QFile::setPermissions(QuarantinedFile(), permissions));
        QCOMPARE(Files::Read(QuarantinedFile()), content);
        QVERIFY(m_store->Save(3));
    }

    void targetOfADamagedLinkIsCopiedAndReplaced()
    {
        QVERIFY(m_store->Save(1));
        QVERIFY(m_store->Save(2));
        const QString target = m_store->Path(QStringLiteral("target"));
        QVERIFY(Files::Write(target, "damage"));
        QVERIFY(QFile::remove(m_store->Document()));
        QVERIFY(QFile::link(target, m_store->Document()));
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 1);
        QVERIFY(QFileInfo(m_store->Document()).isSymLink());
        QVERIFY(Files::Read(target) != "damage");
        QCOMPARE(Files::Read(QuarantinedFile()), QByteArray("damage"));
        QVERIFY(!QFileInfo(QuarantinedFile()).isSymLink());
    }

    void directoryThatIsALinkToNowhereIsNamed()
    {
        const QString link = m_store->Path(QStringLiteral("link"));
        QVERIFY(QFile::link(m_store->Path(QStringLiteral("nowhere")), link));
        QVERIFY(!CfgCenter::Open(link));
        QVERIFY2(CfgCenter::OpenError().endsWith(QStringLiteral("it is a link that leads nowhere")),
                 qPrintable(CfgCenter::OpenError()));
    }

    void linkThatLeadsNowhereIsNotFollowed_data()
    {
        QTest::addColumn<QString>("link"); // what is replaced by one
        QTest::newRow("document") << QStringLiteral("shared/Document.json");
        QTest::newRow("folder") << QStringLiteral("shared");
    }
    void linkThatLeadsNowhereIsNotFollowed()
    {
        QFETCH(QString, link);
        QVERIFY(m_store->Save(1));
        QVERIFY(m_store->Save(2));
        const QString away = m_store->Path(QStringLiteral("away"));
        const QString nowhere = m_store->Path(QStringLiteral("nowhere"));
        QVERIFY(QFile::rename(m_store->Path(link), away));
        QVERIFY(QFile::link(nowhere, m_store->Path(link)));
        QStringList notices;
        CfgCenter::SetNoticeSink([&](const QString& line) { notices += line; });
        m_store->Reopen();
        QCOMPARE(m_store->Number(), -1);
        CfgCenter::SetNoticeSink({});
        QCOMPARE(notices.size(), 1);
        QVERIFY2(notices.front().endsWith(m_store->Path(link) + QStringLiteral(" is a link that leads nowhere")),
                 qPrintable(notices.front()));

        QVERIFY(!m_store->Save(3));
        QVERIFY(!QFileInfo::exists(nowhere));
        QVERIFY(QFile::rename(away, nowhere)); // the disk is there again
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 2);
    }

    void folderThatCannotBeEnteredHidesTheDocument()
    {
        QVERIFY(m_store->Save(1));
        const QString folder = m_store->Path(QStringLiteral("shared"));
        const auto permissions = QFile::permissions(folder);
        QVERIFY(QFile::setPermissions(folder, {}));
        auto back = qScopeGuard([&] { QFile::setPermissions(folder, permissions); });
        if (QFileInfo::exists(m_store->Document()))
            QSKIP("An administrator enters every folder.");
        m_store->Reopen();
        QCOMPARE(m_store->Number(), -1);
        QVERIFY(!m_store->Save(2));
        back.dismiss();
        QVERIFY(QFile::setPermissions(folder, permissions));
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 1);
    }

    // The umask that lets everybody in.
    void whatIsWrittenIsTheOwnersAlone()
    {
        const mode_t before = umask(0);
        const auto back = qScopeGuard([before] { umask(before); });
        const QTemporaryDir parent;
        QVERIFY(CfgCenter::Open(parent.filePath(QStringLiteral("new/store"))));
        for (int i = 1; i <= 3; ++i)
            QVERIFY(m_store->Save(i));
        QVERIFY(Files::Write(parent.filePath(QStringLiteral("new/store/shared/Document.json")), "damage"));
        QVERIFY(CfgCenter::Open(parent.filePath(QStringLiteral("new/store"))));
        QCOMPARE(m_store->Number(), 2);
        int files = 0;
        QDirIterator it(parent.path(), QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                        QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QFileInfo info(it.next());
            files += info.isFile() ? 1 : 0;
            constexpr auto kOthers = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup | QFile::ReadOther |
                                     QFile::WriteOther | QFile::ExeOther;
            QVERIFY2((info.permissions() & kOthers) == 0, qPrintable(info.filePath()));
        }
        QCOMPARE(files, 4); // document, quarantined document, two versions
    }

    void documentOnAnotherFileSystemIsCopied()
    {
        QTemporaryDir other(QStringLiteral("/dev/shm/store-XXXXXX"));
        if (!other.isValid() || QStorageInfo(other.path()).device() == QStorageInfo(m_store->Path({})).device())
            QSKIP("There is one disk only.");
        const QString target = other.filePath(QStringLiteral("elsewhere.json"));
        QVERIFY(m_store->Save(1));
        QVERIFY(QFile::copy(m_store->Document(), target));
        QVERIFY(QFile::remove(m_store->Document()));
        QVERIFY(QFile::link(target, m_store->Document()));

        const TraceRecorder traces;
        QVERIFY(m_store->Save(2));
        QVERIFY(m_store->Save(3));
        QVERIFY(traces.Messages().isEmpty());
        QCOMPARE(VersionNumbers(), QList<int>({2, 1}));
        QVERIFY(Files::Write(target, R"({"values": {"Number": 9}})"));
        QCOMPARE(VersionNumbers(), QList<int>({2, 1}));
        QVERIFY(QFileInfo(m_store->Document()).isSymLink());

        // There are no hard links between file systems.
        QVERIFY(Files::Write(target, "damage"));
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 2);
        QCOMPARE(Files::Read(QuarantinedFile()), QByteArray("damage"));
        QVERIFY(Files::Read(target) != "damage");
    }

    void openRefusesAReadOnlyDirectory()
    {
        const QString locked = m_store->Path(QStringLiteral("locked"));
        QVERIFY(QDir().mkpath(locked));
        QVERIFY(QFile::setPermissions(locked, QFile::ReadOwner | QFile::ExeOwner));
        const bool isObeyed = !QFile(locked + QStringLiteral("/probe")).open(QIODevice::WriteOnly);
        const bool isOpen = CfgCenter::Open(locked);
        QVERIFY(QFile::setPermissions(locked, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        if (!isObeyed)
            QSKIP("An administrator writes everywhere.");
        QVERIFY(!isOpen);
    }

    void failedSaveSaysWhatToDo()
    {
        QVERIFY(m_store->Save(1));
        const QString folder = m_store->Path(QStringLiteral("shared"));
        QVERIFY(QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner));
        const bool isObeyed = !QFile(folder + QStringLiteral("/probe")).open(QIODevice::WriteOnly);
        const bool isSaved = m_store->Save(2);
        QVERIFY(QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        if (!isObeyed)
            QSKIP("An administrator writes everywhere.");
        QVERIFY(!isSaved);
        QVERIFY2(
            CfgCenter::SaveError().endsWith(
                folder + QStringLiteral(": %1; make room, or let this user write there").arg(qt_error_string(EACCES))),
            qPrintable(CfgCenter::SaveError()));

        QVERIFY(QFile::setPermissions(m_store->Document(), QFile::ReadOwner));
        QVERIFY(!CfgCenter::SaveDocument());
        QVERIFY2(CfgCenter::SaveError().endsWith(QLatin1String("it is write-protected; let this user write it")),
                 qPrintable(CfgCenter::SaveError()));
        QVERIFY(QFile::setPermissions(m_store->Document(), QFile::ReadOwner | QFile::WriteOwner));
        QVERIFY(CfgCenter::SaveDocument());
    }

    // Opening a pipe blocks until the other end is opened.
    void pipeInPlaceOfTheLockDoesNotBlock()
    {
        QVERIFY(m_store->Save(1));
        QVERIFY(m_store->Save(2));
        const QString lock = m_store->Document() + QStringLiteral(".lock");
        QCOMPARE(mkfifo(QFile::encodeName(lock).constData(), 0600), 0);
        {
            const TraceRecorder traces;
            QVERIFY(!m_store->Save(3));
            QCOMPARE(traces.Messages().size(), 1);
        }
        QVERIFY(!Versions().Restore(Versions().List().front()));
        QVERIFY(Files::Write(m_store->Document(), "damage"));
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 1);
        QVERIFY(!m_store->Save(4));
        QCOMPARE(Files::Read(m_store->Document()), QByteArray("damage"));
        QVERIFY(QFile::remove(lock));
        m_store->Reopen();
        QVERIFY(m_store->Save(4));
    }

    void oversizedFilesAreDamaged()
    {
        constexpr qint64 kHuge = qint64(60) << 30;
        for (int i = 1; i <= 3; ++i)
            QVERIFY(m_store->Save(i));
        const ConfigVersion newest = Versions().List().front();
        QFile document(m_store->Document());
        if (!document.resize(kHuge))
            QSKIP("This file system has no sparse files.");
        QVERIFY(QFile::resize(newest.file, kHuge));

        QStringList notices;
        CfgCenter::SetNoticeSink([&](const QString& line) { notices += line; });
        auto obstacle = ConfigVersions::Obstacle::None;
        QVERIFY(!Versions().OpenCurrent(&obstacle));
        QCOMPARE(obstacle, ConfigVersions::Obstacle::Damaged);
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 1);
        CfgCenter::SetNoticeSink({});
        QCOMPARE(notices.size(), 1);
        QVERIFY(
            notices.front().contains(QLatin1String(" is damaged (it is larger than any document), quarantined as ")));
        QCOMPARE(QFileInfo(QuarantinedFile()).size(), kHuge);
        QVERIFY(!Versions().Restore(newest));
        QVERIFY(m_store->Save(4));
        // The same while the document is open.
        QVERIFY(document.resize(kHuge));
        QVERIFY(m_store->Save(5));
        QCOMPARE(m_store->Quarantined().size(), 2);
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 5);
    }

    // The document is neither treated as empty nor overwritten.
    void temporarilyUnreadableDocumentIsReportedAndKept()
    {
        ICfg* const own = CfgCenter::GetAppCfg(View::Application);
        for (int i = 1; i <= 2; ++i) {
            own->SetInt(QStringLiteral("Number"), i, 0);
            QVERIFY(CfgCenter::SaveDocument());
        }
        const ConfigVersions versions(View::Application, {});
        const ConfigVersion version = versions.List().front();
        const QByteArray before = Files::Read(versions.DocumentFile());
        QStringList notices;
        CfgCenter::SetNoticeSink([&](const QString& line) { notices += line; });
        QVERIFY(CfgCenter::IsAppCfgKnown(View::Application));
        m_store->Reopen();
        auto current = ConfigVersions::Obstacle::None;
        auto former = ConfigVersions::Obstacle::None;
        bool isKnown = true;
        {
            const NoMoreFiles limit;
            isKnown = CfgCenter::IsAppCfgKnown(View::Application);
            versions.OpenCurrent(&current);
            versions.Open(version, &former);
        }
        CfgCenter::SetNoticeSink({});
        QVERIFY(!isKnown);
        QCOMPARE(current, ConfigVersions::Obstacle::Unavailable);
        QCOMPARE(former, ConfigVersions::Obstacle::Unavailable);
        QCOMPARE(notices.size(), 1);
        QVERIFY2(notices.front().startsWith(versions.DocumentFile() + QStringLiteral(" cannot be read at the moment")),
                 qPrintable(notices.front()));

        CfgCenter::GetAppCfg(View::Application)->SetInt(QStringLiteral("Number"), 9, 0);
        QVERIFY(!CfgCenter::SaveDocument());
        QCOMPARE(Files::Read(versions.DocumentFile()), before);
        m_store->Reopen();
        QVERIFY(CfgCenter::IsAppCfgKnown(View::Application));
        QCOMPARE(m_store->Number(CfgCenter::GetAppCfg(View::Application)), 2);
    }

    // Files that exist but cannot be read.
    void readErrorsAreNotDamage()
    {
        QVERIFY(m_store->Save(1));
        QVERIFY(m_store->Save(2));
        QVERIFY(QFile::remove(m_store->Document()));
        QVERIFY(QFile::link(QStringLiteral("/proc/self/mem"), m_store->Document()));
        auto obstacle = ConfigVersions::Obstacle::None;
        QVERIFY(!Versions().OpenCurrent(&obstacle));
        QCOMPARE(obstacle, ConfigVersions::Obstacle::Unread);
        QVERIFY(QFile::remove(m_store->Document()));
        QVERIFY(QDir().mkdir(m_store->Document()));
        QVERIFY(!Versions().OpenCurrent(&obstacle));
        QCOMPARE(obstacle, ConfigVersions::Obstacle::Damaged);
    }

private:
    static ConfigVersions Versions() { return {View::Shared, QStringLiteral("Document")}; }
    QString QuarantinedFile() const
    {
        return m_store->Path(QStringLiteral("shared/")) + m_store->Quarantined().value(0);
    }

    /// The numbers in the document's versions, newest first; -2 for a version that cannot be read.
    static QList<int> VersionNumbers()
    {
        QList<int> numbers;
        const ConfigVersions versions(View::Shared, QStringLiteral("Document"));
        const QList<ConfigVersion> list = versions.List();
        for (const ConfigVersion& version : list) {
            const auto root = versions.Open(version);
            numbers += root ? StoreFixture::Number(root.get()) : -2;
        }
        return numbers;
    }

    std::optional<StoreFixture> m_store;
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestCfgCenterUnix)
#include "tst_cfgcenter_unix.moc"
