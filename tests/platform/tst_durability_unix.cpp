#include "host/listfile.h"
#include "platform/cfgcenter.h"
#include "platform/icfg.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <optional>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

/// What this process asks the system for that makes files and names last, in its order.
struct Request
{
    enum Kind { Sync, Rename } kind;
    ino_t file;
    QString path; // a file that is written may have none yet; of a renaming the new one
};

QList<Request> g_requests;

int Record(int descriptor)
{
    const QString link = QStringLiteral("/proc/self/fd/%1").arg(descriptor);
    struct stat status = {};
    fstat(descriptor, &status);
    g_requests.append({Request::Sync, status.st_ino, QFileInfo(link).symLinkTarget()});
    return static_cast<int>(::syscall(SYS_fsync, descriptor));
}

} // namespace

// The libraries find these before the system's own.
extern "C" {
[[gnu::visibility("default")]] int fsync(int descriptor)
{
    return Record(descriptor);
}
[[gnu::visibility("default")]] int fdatasync(int descriptor)
{
    return Record(descriptor);
}
[[gnu::visibility("default")]] int rename(const char* from, const char* to)
{
    const int result = static_cast<int>(::syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0));
    struct stat status = {};
    if (result == 0 && stat(to, &status) == 0)
        g_requests.append({Request::Rename, status.st_ino, QFile::decodeName(to)});
    return result;
}
}

/// Whether what is saved outlasts a loss of power: as far as the system is asked for that, in the right order.
class tst_Durability : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        g_requests.clear();
        m_root.emplace();
    }
    void cleanup()
    {
        CfgCenter::Close();
        m_root.reset();
    }

    void contentIsOnTheDiskBeforeItsNameAndThatBeforeTheEnd()
    {
        QVERIFY(CfgCenter::Open(m_root->path()));
        for (int i = 1; i <= 2; ++i) {
            g_requests.clear();
            Save(i);
            const qsizetype named = LastRenameTo(Document());
            QVERIFY(named >= 0);
            const auto isWriting = [&](const Request& request) {
                return request.kind == Request::Sync && request.file == g_requests.at(named).file;
            };
            const auto end = g_requests.cbegin() + named;
            QVERIFY(std::find_if(g_requests.cbegin(), end, isWriting) != end);
            QVERIFY(FirstSyncOf(QFileInfo(Document()).path(), named) > named);
        }
    }

    void soIsAnExportedList()
    {
        const QString file = m_root->filePath(QStringLiteral("list.xml"));
        QCOMPARE(WriteListFile(file, "<ConnectionEntries/>"), QString());
        QVERIFY(QFile::exists(file));
        QVERIFY(!g_requests.isEmpty());
        QCOMPARE(g_requests.constLast().path, m_root->path());
        QVERIFY(std::any_of(g_requests.cbegin(), g_requests.cend(), [&](const Request& request) {
            struct stat status = {};
            return request.kind == Request::Sync && ::stat(QFile::encodeName(file).constData(), &status) == 0 &&
                   request.file == status.st_ino;
        }));
    }

    void newFoldersAreOnTheDiskAsWell()
    {
        const QString store = m_root->filePath(QStringLiteral("a/store"));
        QVERIFY(CfgCenter::Open(store));
        QVERIFY(FirstSyncOf(m_root->path()) >= 0);
        QVERIFY(FirstSyncOf(m_root->filePath(QStringLiteral("a"))) >= 0);
        QVERIFY(FirstSyncOf(store) < 0);
        Save(1);
        QVERIFY(FirstSyncOf(store) >= 0); // holds "shared"
        g_requests.clear();
        Save(2);
        QVERIFY(FirstSyncOf(store) < 0);
    }

private:
    static void Save(int number)
    {
        CfgCenter::CreateCfg(QStringLiteral("Document"), View::Shared, {})->SetInt(QStringLiteral("Number"), number, 0);
        QVERIFY(CfgCenter::SaveDocument());
    }

    QString Document() const { return m_root->filePath(QStringLiteral("shared/Document.ini")); }

    static qsizetype LastRenameTo(const QString& path)
    {
        for (qsizetype at = g_requests.size() - 1; at >= 0; --at) {
            if (g_requests.at(at).kind == Request::Rename && g_requests.at(at).path == path)
                return at;
        }
        return -1;
    }

    static qsizetype FirstSyncOf(const QString& path, qsizetype from = 0)
    {
        for (qsizetype at = from; at < g_requests.size(); ++at) {
            if (g_requests.at(at).kind == Request::Sync && g_requests.at(at).path == path)
                return at;
        }
        return -1;
    }

    std::optional<QTemporaryDir> m_root;
};

QTEST_GUILESS_MAIN(tst_Durability)
#include "tst_durability_unix.moc"
