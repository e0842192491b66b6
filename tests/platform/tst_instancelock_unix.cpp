// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/instancelock.h"
#include "tests/support/files.h"
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

/// Replaces the system call to simulate a file system without locks, which a test cannot mount.
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

/// The lock of a configuration directory: file systems without locks, and other users.
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
        // The directory is usable, with a warning that another host may be using it.
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

    // The lock file is its owner's alone.
    void anotherUserLearnsNothing()
    {
        if (::geteuid() != 0)
            QSKIP("Only root can switch to another user");
        const QTemporaryDir directory;
        QVERIFY(QFile::setPermissions(directory.path(), QFile::Permissions(0x7755)));
        constexpr uid_t nobody = 65534;
        const auto queryAsNobody = [&] {
            const auto back = qScopeGuard([] { [[maybe_unused]] const int result = ::seteuid(0); });
            return ::seteuid(nobody) == 0 ? InstanceLock::Query(directory.path()) : InstanceLock::Owner{};
        };
        {
            InstanceLock lock;
            QCOMPARE(lock.TryLock(directory.path()), InstanceLock::Result::Locked);
            QCOMPARE(queryAsNobody().state, InstanceLock::State::Unknown);
        }
        QCOMPARE(queryAsNobody().state, InstanceLock::State::Nobody);
    }

    // It cannot be opened, so nobody knows whether that host still works.
    void leftoverOfAnotherUserIsNamed()
    {
        if (::geteuid() != 0)
            QSKIP("Only root can switch to another user");
        const QTemporaryDir directory;
        constexpr uid_t nobody = 65534;
        const QString fileName = directory.filePath(QStringLiteral("vexelhost.lock"));
        QVERIFY(Files::Write(fileName, "1\nvexelhost\nhere\n"));
        QVERIFY(QFile::setPermissions(fileName, QFile::ReadOwner | QFile::WriteOwner));
        QCOMPARE(::chown(QFile::encodeName(directory.path()).constData(), nobody, nobody), 0);
        InstanceLock lock;
        InstanceLock::Result result = InstanceLock::Result::Locked;
        {
            const auto back = qScopeGuard([] { [[maybe_unused]] const int done = ::seteuid(0); });
            QCOMPARE(::seteuid(nobody), 0);
            result = lock.TryLock(directory.path());
        }
        QCOMPARE(result, InstanceLock::Result::Unusable);
        QVERIFY2(lock.ErrorText().contains(fileName), qPrintable(lock.ErrorText()));
    }
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestInstanceLockUnix)
#include "tst_instancelock_unix.moc"
