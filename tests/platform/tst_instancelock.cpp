// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/instancelock.h"
#include "tests/support/testmain.h"

#include "files/filelock.h"
#include "tests/support/files.h"
#include "tests/support/system/system.h"
#include "tests/support/waitforend.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

namespace {

const QString kHold = QStringLiteral("--hold");
const QString kHoldWithChild = QStringLiteral("--hold-with-child");

/// A second process of this program, which locks a directory until it is killed.
class Owner
{
public:
    explicit Owner(const QString& directory, const QString& how = kHold)
    {
        process.start(QCoreApplication::applicationFilePath(), {how, directory});
    }
    ~Owner() { Kill(); }

    bool Holds()
    {
        QByteArray said;
        while (!said.contains('\n') && process.waitForReadyRead())
            said += process.readAllStandardOutput();
        // Windows ends the line with CR LF.
        return said.trimmed() == "taken";
    }
    /// Ends the process without any cleanup.
    void Kill()
    {
        process.kill();
        WaitForEnd(process);
    }
    QProcess process;
};

QString LockFile(const QTemporaryDir& directory)
{
    return directory.filePath(QStringLiteral("vexelhost.lock"));
}

/// The id of the process that has locked `directory`; 0 if the lock file does not contain it, -1 if none has.
qint64 OwnerOf(const QString& directory)
{
    const InstanceLock::Owner owner = InstanceLock::Query(directory);
    return owner.state == InstanceLock::State::Nobody ? -1 : owner.process;
}

} // namespace

class TestInstanceLock : public QObject
{
    Q_OBJECT

private slots:
    void lockIsTakenAndReleased();
    void directoryIsCreated();
    void anotherProcessIsRefused();
    void lockOfADeadProcessIsTakenOver();
    void processNumberReusedByAnotherHost();
    void deadOwnerWithOurProcessNumber();
    void childProcessDoesNotInheritTheLock();
    void emptyLockFile_data();
    void emptyLockFile();
    void ownerOnAnotherMachine_data();
    void ownerOnAnotherMachine();
    void machineWasRenamed();
    void ownerWithoutAName();
    void onlyOneOfManyGetsTheLock();
    void unusableDirectories_data();
    void unusableDirectories();
    void queryDoesNotDisturbTheOwner();
    void queryRemovesNothing();
    void directoriesAreLockedSeparately();
};

void TestInstanceLock::lockIsTakenAndReleased()
{
    const QTemporaryDir directory;
    {
        InstanceLock lock;
        QCOMPARE(lock.TryLock(directory.path()), InstanceLock::Result::Locked);
        QCOMPARE(lock.ErrorText(), QString());
        QCOMPARE(OwnerOf(directory.path()), QCoreApplication::applicationPid());
        InstanceLock second;
        QCOMPARE(second.TryLock(directory.path()), InstanceLock::Result::Busy);
    }
    QCOMPARE(OwnerOf(directory.path()), -1);
    // The lock file is removed.
    QVERIFY(QDir(directory.path()).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
    InstanceLock again;
    QCOMPARE(again.TryLock(directory.path()), InstanceLock::Result::Locked);
}

void TestInstanceLock::directoryIsCreated()
{
    const QTemporaryDir directory;
    InstanceLock lock;
    QCOMPARE(lock.TryLock(directory.filePath(QStringLiteral("not/yet/there"))), InstanceLock::Result::Locked);
}

void TestInstanceLock::anotherProcessIsRefused()
{
    const QTemporaryDir directory;
    Owner owner(directory.path());
    QVERIFY(owner.Holds());
    const QByteArray before = Files::Read(LockFile(directory));

    InstanceLock lock;
    QCOMPARE(lock.TryLock(directory.path()), InstanceLock::Result::Busy);
    // One line with the process, the directory, and what to do.
    QVERIFY2(lock.ErrorText().contains(QString::number(owner.process.processId())), qPrintable(lock.ErrorText()));
    QVERIFY2(lock.ErrorText().contains(QDir::toNativeSeparators(directory.path())), qPrintable(lock.ErrorText()));
    QVERIFY2(lock.ErrorText().contains(QLatin1String("kitestarter")), qPrintable(lock.ErrorText()));
    QVERIFY(!lock.ErrorText().contains(QLatin1Char('\n')));
    QCOMPARE(OwnerOf(directory.path()), owner.process.processId());
    // The owner's lock file is unchanged.
    QCOMPARE(Files::Read(LockFile(directory)), before);
}

void TestInstanceLock::lockOfADeadProcessIsTakenOver()
{
    const QTemporaryDir directory;
    Owner owner(directory.path());
    QVERIFY(owner.Holds());
    owner.Kill();
    QVERIFY(QFile::exists(LockFile(directory)));

    InstanceLock lock;
    QCOMPARE(lock.TryLock(directory.path()), InstanceLock::Result::Locked);
    QCOMPARE(OwnerOf(directory.path()), QCoreApplication::applicationPid());
}

void TestInstanceLock::processNumberReusedByAnotherHost()
{
    const QTemporaryDir directory;
    Owner owner(directory.path());
    QVERIFY(owner.Holds());
    QByteArray content = Files::Read(LockFile(directory));
    QVERIFY(content.startsWith(QByteArray::number(owner.process.processId()) + '\n'));
    owner.Kill();

    // The same program, using another directory.
    const QTemporaryDir elsewhere;
    Owner other(elsewhere.path());
    QVERIFY(other.Holds());
    content.replace(0, content.indexOf('\n'), QByteArray::number(other.process.processId()));
    QVERIFY(Files::Write(LockFile(directory), content));

    QCOMPARE(OwnerOf(directory.path()), -1);
    InstanceLock lock;
    QCOMPARE(lock.TryLock(directory.path()), InstanceLock::Result::Locked);
    QCOMPARE(OwnerOf(elsewhere.path()), other.process.processId());
}

void TestInstanceLock::deadOwnerWithOurProcessNumber()
{
    // As in a container, where every host has process id 1.
    const QTemporaryDir directory;
    Owner owner(directory.path());
    QVERIFY(owner.Holds());
    QByteArray content = Files::Read(LockFile(directory));
    owner.Kill();
    content.replace(0, content.indexOf('\n'), QByteArray::number(QCoreApplication::applicationPid()));
    QVERIFY(Files::Write(LockFile(directory), content));

    QCOMPARE(OwnerOf(directory.path()), -1);
    InstanceLock lock;
    QCOMPARE(lock.TryLock(directory.path()), InstanceLock::Result::Locked);
}

void TestInstanceLock::childProcessDoesNotInheritTheLock()
{
    const QTemporaryDir directory;
    const QTemporaryDir reports;
    qputenv("VEXEL_TESTCHILD_MODE", "stay");
    qputenv("VEXEL_TESTCHILD_REPORTS", reports.path().toLocal8Bit());
    Owner owner(directory.path(), kHoldWithChild);
    QVERIFY(owner.Holds());
    QStringList names;
    QTRY_VERIFY(!(names = QDir(reports.path()).entryList({QStringLiteral("*.json")})).isEmpty());
    const qint64 child = QFileInfo(names.constFirst()).baseName().toLongLong();
    owner.Kill();

    QVERIFY(System::IsProcess(child));
    InstanceLock lock;
    QCOMPARE(lock.TryLock(directory.path()), InstanceLock::Result::Locked);
    QVERIFY(System::IsProcess(child));
    QVERIFY(System::AskToEnd(child));
}

void TestInstanceLock::emptyLockFile_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no number") << QByteArray("hello\nworld\n");
    QTest::newRow("zeroes") << QByteArray(4096, '\0');
}

void TestInstanceLock::emptyLockFile()
{
    QFETCH(const QByteArray, content);
    const QTemporaryDir directory;
    QVERIFY(Files::Write(LockFile(directory), content));
    QCOMPARE(OwnerOf(directory.path()), -1);
    InstanceLock lock;
    QCOMPARE(lock.TryLock(directory.path()), InstanceLock::Result::Locked);
    QCOMPARE(OwnerOf(directory.path()), QCoreApplication::applicationPid());
}

void TestInstanceLock::ownerOnAnotherMachine_data()
{
    QTest::addColumn<QString>("machine");
    QTest::newRow("plain") << QStringLiteral("elsewhere");
    QTest::newRow("non-ASCII letters") << QStringLiteral("\u5317\u6597-\u00fc");
}

void TestInstanceLock::ownerOnAnotherMachine()
{
    QFETCH(const QString, machine);
    const QTemporaryDir directory;
    FileLock file;
    QString error;
    QCOMPARE(file.TryLock(LockFile(directory), &error), FileLock::Result::Locked);
    const QByteArray content = "4711\nvexelhost\n" + machine.toUtf8() + '\n';
    file.Write(content);

    InstanceLock lock;
    QCOMPARE(lock.TryLock(directory.path()), InstanceLock::Result::Busy);
    QVERIFY2(lock.ErrorText().contains(QStringLiteral("4711 on ") + machine), qPrintable(lock.ErrorText()));
    // Whether that process still runs is unknown here, so the message names the lock file for the user to decide.
    QVERIFY2(lock.ErrorText().contains(QDir::toNativeSeparators(LockFile(directory))), qPrintable(lock.ErrorText()));
    QCOMPARE(Files::Read(LockFile(directory)), content);
}

void TestInstanceLock::machineWasRenamed()
{
    const QTemporaryDir directory;
    QVERIFY(Files::Write(LockFile(directory), "1\nvexelhost\nits-earlier-name\n"));
    QCOMPARE(OwnerOf(directory.path()), -1);
    InstanceLock lock;
    QCOMPARE(lock.TryLock(directory.path()), InstanceLock::Result::Locked);
}

void TestInstanceLock::ownerWithoutAName()
{
    // As on a full disk, where the lock file is empty.
    const QTemporaryDir directory;
    FileLock file;
    QString error;
    QCOMPARE(file.TryLock(LockFile(directory), &error), FileLock::Result::Locked);
    file.Write({});
    QCOMPARE(OwnerOf(directory.path()), 0);
    InstanceLock lock;
    QCOMPARE(lock.TryLock(directory.path()), InstanceLock::Result::Busy);
    QVERIFY2(lock.ErrorText().contains(QDir::toNativeSeparators(directory.path())), qPrintable(lock.ErrorText()));
    QVERIFY2(!lock.ErrorText().contains(QLatin1String("process")), qPrintable(lock.ErrorText()));
}

void TestInstanceLock::onlyOneOfManyGetsTheLock()
{
    const QTemporaryDir directory;
    // The lock file of a killed process, which all of them find.
    QVERIFY(Files::Write(LockFile(directory), "1\nvexelhost\nhere\n"));
    std::vector<std::unique_ptr<Owner>> owners;
    for (int i = 0; i < 8; ++i)
        owners.push_back(std::make_unique<Owner>(directory.path()));
    const auto holders = std::count_if(owners.begin(), owners.end(), [](const auto& owner) { return owner->Holds(); });
    QCOMPARE(holders, 1);
}

void TestInstanceLock::unusableDirectories_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("blocker");
    QTest::newRow("no name") << QString() << QString();
    QTest::newRow("below a file") << QStringLiteral("file/config") << QString();
    QTest::newRow("a file") << QStringLiteral("file") << QString();
    QTest::newRow("lock file is a folder") << QStringLiteral("config") << QStringLiteral("config/vexelhost.lock");
    QTest::newRow("lock file is a pipe") << QStringLiteral("pipe") << QString();
    QTest::newRow("lock file is a link") << QStringLiteral("link") << QString();
}

void TestInstanceLock::unusableDirectories()
{
    QFETCH(const QString, path);
    QFETCH(const QString, blocker);
    const QTemporaryDir directory;
    QVERIFY(Files::Write(directory.filePath(QStringLiteral("file")), "content"));
    if (!blocker.isEmpty())
        QVERIFY(QDir(directory.path()).mkpath(blocker));
    const QString lockFile = directory.path() + QLatin1Char('/') + path + QStringLiteral("/vexelhost.lock");
    if (path == QLatin1String("pipe") || path == QLatin1String("link"))
        QVERIFY(QDir(directory.path()).mkpath(path));
    if (path == QLatin1String("pipe") && System::MakePipe(lockFile) != lockFile)
        QSKIP("Pipes are not files here");
    // The link's target must not be used as the lock file, nor written.
    if (path == QLatin1String("link") &&
        (!QFile::link(directory.filePath(QStringLiteral("file")), lockFile) || !QFileInfo(lockFile).isSymbolicLink()))
        QSKIP("No symbolic links here");

    InstanceLock lock;
    const QString full = path.isEmpty() ? QString() : directory.filePath(path);
    QCOMPARE(lock.TryLock(full), InstanceLock::Result::Unusable);
    QVERIFY2(lock.ErrorText().contains(QLatin1String("cannot be used")), qPrintable(lock.ErrorText()));
    QVERIFY2(lock.ErrorText().contains(full), qPrintable(lock.ErrorText()));
    QVERIFY(!lock.ErrorText().contains(QLatin1String("leads nowhere")));
    QCOMPARE(OwnerOf(full), -1);
    QCOMPARE(Files::Read(directory.filePath(QStringLiteral("file"))), QByteArray("content"));
}

void TestInstanceLock::queryDoesNotDisturbTheOwner()
{
    const QTemporaryDir directory;
    const QString missing = directory.filePath(QStringLiteral("missing"));
    QCOMPARE(OwnerOf(missing), -1);
    QVERIFY(!QFile::exists(missing));

    InstanceLock lock;
    QCOMPARE(lock.TryLock(directory.path()), InstanceLock::Result::Locked);
    for (int i = 0; i < 3; ++i)
        QCOMPARE(OwnerOf(directory.path()), QCoreApplication::applicationPid());
    InstanceLock second;
    QCOMPARE(second.TryLock(directory.path()), InstanceLock::Result::Busy);
}

void TestInstanceLock::queryRemovesNothing()
{
    const QTemporaryDir directory;
    const QByteArray content = "999999\nvexelhost\n" + QSysInfo::machineHostName().toUtf8() + '\n';
    QVERIFY(Files::Write(LockFile(directory), content));
    const QDateTime changed = QFileInfo(LockFile(directory)).lastModified();
    QCOMPARE(OwnerOf(directory.path()), -1);
    QCOMPARE(Files::Read(LockFile(directory)), content);
    QCOMPARE(QFileInfo(LockFile(directory)).lastModified(), changed);

    // Also with read permission only.
    QVERIFY(QFile::setPermissions(LockFile(directory), QFile::ReadOwner));
    QCOMPARE(OwnerOf(directory.path()), -1);
    QVERIFY(QFile::setPermissions(LockFile(directory), QFile::ReadOwner | QFile::WriteOwner));
    QCOMPARE(QDir(directory.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).size(), 1);
}

void TestInstanceLock::directoriesAreLockedSeparately()
{
    const QTemporaryDir one;
    const QTemporaryDir other;
    InstanceLock first;
    InstanceLock second;
    QCOMPARE(first.TryLock(one.path()), InstanceLock::Result::Locked);
    QCOMPARE(second.TryLock(other.path()), InstanceLock::Result::Locked);
}

namespace {

int Hold(const QString& directory, bool withChild)
{
    InstanceLock lock;
    const bool isTaken = lock.TryLock(directory) == InstanceLock::Result::Locked;
    if (withChild)
        QProcess::startDetached(QStringLiteral(VEXEL_TESTCHILD), {});
    std::puts(isTaken ? "taken" : "not taken");
    std::fflush(stdout);
    return QCoreApplication::exec();
}

int HoldMain(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    return Hold(arguments.at(2), arguments.at(1) == kHoldWithChild);
}

const TestMain::Program kHoldProgram(qPrintable(kHold), HoldMain);
const TestMain::Program kHoldWithChildProgram(qPrintable(kHoldWithChild), HoldMain);

} // namespace

VEXEL_TEST(QTEST_GUILESS_MAIN, TestInstanceLock)
#include "tst_instancelock.moc"
