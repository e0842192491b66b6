#include "platform/instancelock.h"
#include "tests/support/testmain.h"

#include <QCoreApplication>
#include <QFile>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>
#include <cstdarg>
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

bool g_hasLocks = true;

} // namespace

/// The system's own, in front of which this stands: a file system without locks is nothing that a test can mount.
extern "C" [[gnu::visibility("default")]] int fcntl(int descriptor, int command, ...)
{
    va_list arguments;
    va_start(arguments, command);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    if (!g_hasLocks && (command == F_OFD_SETLK || command == F_OFD_GETLK)) {
        errno = ENOLCK;
        return -1;
    }
    return static_cast<int>(::syscall(SYS_fcntl, descriptor, command, argument));
}

/// The lock of a configuration directory: file systems and users as Unix has them.
class TestInstanceLockUnix : public QObject
{
    Q_OBJECT

private slots:
    void fileSystemWithoutLocks()
    {
        const auto again = qScopeGuard([] { g_hasLocks = true; });
        const QTemporaryDir directory;
        {
            InstanceLock lock;
            QCOMPARE(lock.TryLock(directory.path()), InstanceLock::Result::Locked);
            QCOMPARE(lock.Warning(), QString());
        }
        // The host works there, but says that it is not alone for certain.
        g_hasLocks = false;
        InstanceLock lock;
        QCOMPARE(lock.TryLock(directory.path()), InstanceLock::Result::Locked);
        QCOMPARE(lock.ErrorText(), QString());
        QVERIFY2(lock.Warning().contains(directory.path()), qPrintable(lock.Warning()));
        QCOMPARE(InstanceLock::Query(directory.path()).state, InstanceLock::State::Unknown);
        InstanceLock second;
        QCOMPARE(second.TryLock(directory.path()), InstanceLock::Result::Locked);
        QVERIFY(!second.Warning().isEmpty());
    }

    void anotherUserCanQuery()
    {
        if (::geteuid() != 0)
            QSKIP("Only an administrator can be somebody else");
        const QTemporaryDir directory;
        QVERIFY(QFile::setPermissions(directory.path(), QFile::Permissions(0x7755)));
        const QString fileName = directory.filePath(QStringLiteral("vexelhost.lock"));
        constexpr uid_t nobody = 65534;
        const auto look = [&] {
            const auto back = qScopeGuard([] { [[maybe_unused]] const int result = ::seteuid(0); });
            return ::seteuid(nobody) == 0 ? InstanceLock::Query(directory.path()) : InstanceLock::Owner{};
        };
        {
            InstanceLock lock;
            QCOMPARE(lock.TryLock(directory.path()), InstanceLock::Result::Locked);
            QCOMPARE(look().state, InstanceLock::State::Somebody);
            QCOMPARE(look().process, QCoreApplication::applicationPid());
        }
        // Who may not write there is not told of a host that is dead.
        QFile file(fileName);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY(file.write("999999\nvexelhost\nhere\n") > 0);
        file.close();
        QCOMPARE(look().state, InstanceLock::State::Nobody);
        QVERIFY(file.exists());
        // Nor told anything where the lock cannot even be read.
        QVERIFY(QFile::setPermissions(fileName, QFile::ReadOwner | QFile::WriteOwner));
        QCOMPARE(look().state, InstanceLock::State::Unknown);
    }
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestInstanceLockUnix)
#include "tst_instancelock_unix.moc"
