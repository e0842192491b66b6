#include "platform/configversions.h"
#include "tests/platform/storefixture.h"
#include "tests/platform/tracerecorder.h"

#include <QFileInfo>
#include <QStorageInfo>
#include <QTest>

/// Documents among what only the file systems of Unix have for everybody: symbolic links, and rights that hold for the
/// owner as well.
class tst_CfgCenterUnix : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_store.emplace(); }
    void cleanup() { m_store.reset(); }

    void aFileThatMayNotBeReadIsKeptAside()
    {
        QVERIFY(m_store->Save(1));
        QVERIFY(m_store->Save(2));
        const QByteArray content = m_store->Read(m_store->Document());
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
        QVERIFY(QFile::setPermissions(AsideFile(), permissions));
        QCOMPARE(m_store->Read(AsideFile()), content);
        QVERIFY(m_store->Save(3));
    }

    void whatALinkLeadsToIsLeftAlone()
    {
        QVERIFY(m_store->Save(1));
        QVERIFY(m_store->Save(2));
        const QString target = m_store->Path(QStringLiteral("target"));
        QVERIFY(m_store->Write(target, "damage"));
        QVERIFY(QFile::remove(m_store->Document()));
        QVERIFY(QFile::link(target, m_store->Document()));
        m_store->Reopen();
        QCOMPARE(m_store->Number(), 1);
        QCOMPARE(m_store->Read(target), QByteArray("damage"));
        QCOMPARE(m_store->Read(AsideFile()), QByteArray("damage"));
        QVERIFY(m_store->Save(3));
        QCOMPARE(m_store->Read(target), QByteArray("damage"));
    }

    void documentOnAnotherDiskIsCopied()
    {
        QTemporaryDir other(QStringLiteral("/dev/shm/store-XXXXXX"));
        if (!other.isValid() || QStorageInfo(other.path()).device() == QStorageInfo(m_store->Path({})).device())
            QSKIP("There is one disk only.");
        const QString target = other.filePath(QStringLiteral("elsewhere.ini"));
        QVERIFY(m_store->Save(1));
        QVERIFY(QFile::copy(m_store->Document(), target));
        QVERIFY(QFile::remove(m_store->Document()));
        QVERIFY(QFile::link(target, m_store->Document()));

        const TraceRecorder traces;
        QVERIFY(m_store->Save(2));
        QVERIFY(m_store->Save(3));
        QVERIFY(traces.Messages().isEmpty());
        QCOMPARE(VersionNumbers(), QList<int>({2, 1}));
        QVERIFY(m_store->Write(target, "[General]\nNumber=9\n"));
        QCOMPARE(VersionNumbers(), QList<int>({2, 1}));
        QVERIFY(QFileInfo(m_store->Document()).isSymLink());
    }

    void openRefusesADirectoryWithoutWriting()
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

private:
    QString AsideFile() const { return m_store->Path(QStringLiteral("shared/")) + m_store->Aside().value(0); }

    /// What the document's versions hold, newest first.
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

QTEST_GUILESS_MAIN(tst_CfgCenterUnix)
#include "tst_cfgcenter_unix.moc"
