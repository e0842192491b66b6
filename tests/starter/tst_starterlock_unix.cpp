// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "files/filelock.h"
#include "starter/privatefolder.h"
#include "starter/starter.h"
#include "tests/starter/fakehostrun.h"
#include "tests/starter/peers.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QFileInfo>
#include <QScopeGuard>

#include <sys/stat.h>

using namespace std::chrono_literals;

namespace {

constexpr mode_t kEverybody = S_IRWXU | S_IRWXG | S_IRWXO;

mode_t ModeOf(const QString& path)
{
    struct stat status = {};
    return ::lstat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_mode : 0;
}

bool MakeFolder(const QString& path, mode_t mode)
{
    return QDir().mkpath(path) && ::chmod(QFile::encodeName(path).constData(), mode) == 0;
}

/// Changes an environment variable of this process for as long as it exists.
auto WithVariable(const char* name, const QString& value)
{
    const QByteArray before = qgetenv(name);
    const bool wasSet = qEnvironmentVariableIsSet(name);
    qputenv(name, QFile::encodeName(value));
    return qScopeGuard([=] {
        if (wasSet)
            qputenv(name, before);
        else
            qunsetenv(name);
    });
}

Starter::Settings SettingsFor(const FakeHostRun& run, const QString& lockFile)
{
    Starter::Settings settings;
    settings.port = FreePort();
    settings.lockFile = lockFile;
    settings.host = FakeHostRun::Program();
    settings.hostArguments = run.Arguments(QStringLiteral("answer"), settings.port);
    settings.timeOut = 10s;
    return settings;
}

} // namespace

/// Where the starter's lock is, and what other users of the machine can do about it.
class TestStarterLock : public QObject
{
    Q_OBJECT

private slots:
    void folderBelongsToTheUserAlone();
    void foldersOfOthersAreNotUsed_data();
    void foldersOfOthersAreNotUsed();
    void lockThatSomebodyElseHoldsHasNoEffect_data();
    void lockThatSomebodyElseHoldsHasNoEffect();
    void sharedTemporaryFolderHasNoEffect();
};

void TestStarterLock::folderBelongsToTheUserAlone()
{
    const FakeHostRun run;
    const auto cache = WithVariable("XDG_CACHE_HOME", run.Path("cache/of the user"));
    const QString lockFile = Starter::DefaultLockFile(1);
    QCOMPARE(lockFile, run.Path("cache/of the user/kitestarter/1.lock"));
    // A call alone needs no lock.
    Starter::Settings settings = SettingsFor(run, lockFile);
    settings.callOnly = true;
    QCOMPARE(Starter(settings).Run().code, StarterExit::NotRunning);
    QVERIFY(!QFileInfo::exists(run.Path("cache")));

    settings.callOnly = false;
    QCOMPARE(Starter(settings).Run().code, StarterExit::Called);
    QCOMPARE(ModeOf(QFileInfo(lockFile).path()), S_IFDIR | S_IRWXU);
    QVERIFY(!QFileInfo::exists(lockFile));
}

void TestStarterLock::foldersOfOthersAreNotUsed_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<bool>("expected");
    QTest::newRow("private") << int{S_IRWXU} << true;
    QTest::newRow("open to its group") << int{S_IRWXU | S_IRWXG} << false;
    QTest::newRow("open to everybody") << int{kEverybody} << false;
    QTest::newRow("temporary folder") << int{kEverybody | S_ISVTX} << false;
    QTest::newRow("readable by everybody") << int{S_IRWXU | S_IRGRP | S_IXGRP | S_IROTH | S_IXOTH} << false;
}

void TestStarterLock::foldersOfOthersAreNotUsed()
{
    QFETCH(const int, mode);
    QFETCH(const bool, expected);
    const QTemporaryDir directory;
    const QString folder = directory.filePath(QStringLiteral("folder"));
    QVERIFY(MakeFolder(folder, static_cast<mode_t>(mode)));
    QCOMPARE(EnsurePrivateFolder(folder), expected);
    QCOMPARE(ModeOf(folder), S_IFDIR | static_cast<mode_t>(mode));

    // Nor is a link, wherever it leads, or a file.
    const QString link = directory.filePath(QStringLiteral("link"));
    QVERIFY(QFile::link(folder, link));
    QVERIFY(!EnsurePrivateFolder(link));
    QVERIFY(!EnsurePrivateFolder(FakeHostRun::Program()));
    QVERIFY(!EnsurePrivateFolder(QStringLiteral("/dev/null/folder")));
}

void TestStarterLock::lockThatSomebodyElseHoldsHasNoEffect_data()
{
    QTest::addColumn<bool>("isLink");
    QTest::newRow("in a folder open to everybody") << false;
    QTest::newRow("behind a link") << true;
}

void TestStarterLock::lockThatSomebodyElseHoldsHasNoEffect()
{
    QFETCH(const bool, isLink);
    const FakeHostRun run;
    QVERIFY(MakeFolder(run.Path("open"), kEverybody));
    QVERIFY(QFile::link(run.Path("open"), run.Path("link")));
    FileLock other;
    QString error;
    QCOMPARE(other.TryLock(run.Path("open/lock"), &error), FileLock::Result::Locked);
    const Starter::Outcome outcome = Starter(SettingsFor(run, run.Path(isLink ? "link/lock" : "open/lock"))).Run();
    QVERIFY2(outcome.code == StarterExit::Called, qPrintable(outcome.message));
    QCOMPARE(run.Starts().size(), 1);
}

void TestStarterLock::sharedTemporaryFolderHasNoEffect()
{
    const FakeHostRun run;
    const QString shared = run.Path("shared");
    QVERIFY(MakeFolder(shared, kEverybody | S_ISVTX));
    const auto temporary = WithVariable("TMPDIR", shared);
    const auto runtime = WithVariable("XDG_RUNTIME_DIR", shared);
    const auto cache = WithVariable("XDG_CACHE_HOME", run.Path("cache"));

    const quint16 port = FreePort();
    const QString lockFile = Starter::DefaultLockFile(port);
    QVERIFY2(!lockFile.startsWith(shared), qPrintable(lockFile));
    // Somebody has put a lock and a link at every name that could be a lock's there.
    const QString name = QStringLiteral("kitestarter-%1.lock").arg(port);
    const QString target = run.Path("target");
    QVERIFY(QFile::link(target, shared + u'/' + name));
    FileLock other;
    QString error;
    QCOMPARE(other.TryLock(QStringLiteral("%1/%2-%3").arg(shared, QDir::home().dirName(), name), &error),
             FileLock::Result::Locked);
    const QStringList before = QDir(shared).entryList(QDir::AllEntries | QDir::System | QDir::Hidden);

    Starter::Settings settings = SettingsFor(run, lockFile);
    settings.port = port;
    settings.hostArguments = run.Arguments(QStringLiteral("answer"), port);
    const Starter::Outcome outcome = Starter(settings).Run();
    QVERIFY2(outcome.code == StarterExit::Called, qPrintable(outcome.message));
    QCOMPARE(QDir(shared).entryList(QDir::AllEntries | QDir::System | QDir::Hidden), before);
    QVERIFY(!QFile::exists(target));
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestStarterLock)
#include "tst_starterlock_unix.moc"
