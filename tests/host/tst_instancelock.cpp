#include "host/instancelock.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSysInfo>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>
#include <optional>

namespace {

const QString s_hold = QStringLiteral("--hold");

/// This program again, in a process of its own that holds the lock of a directory until it is killed.
class Owner
{
public:
    explicit Owner(const QString& directory)
    {
        process.start(QCoreApplication::applicationFilePath(), {s_hold, directory});
    }
    ~Owner() { Kill(); }

    bool Holds()
    {
        QByteArray said;
        while (!said.contains('\n') && process.waitForReadyRead())
            said += process.readAllStandardOutput();
        return said == "taken\n";
    }
    void Kill()
    {
        process.kill();
        process.waitForFinished();
    }
    QProcess process;
};

QString LockFile(const QTemporaryDir& directory)
{
    return directory.filePath(QStringLiteral("vexelhost.lock"));
}

QByteArray Read(const QString& fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void Write(const QString& fileName, const QByteArray& content)
{
    QFile file(fileName);
    QVERIFY2(file.open(QIODevice::WriteOnly), qPrintable(file.errorString()));
    QCOMPARE(file.write(content), content.size());
}

} // namespace

class TestInstanceLock : public QObject
{
    Q_OBJECT

private slots:
    void OneTakesAndGivesBack();
    void MakesTheDirectory();
    void AnotherProcessIsRefused();
    void ADeadOwnerIsSucceeded();
    void ANumberThatBelongsToAnotherProgramByNow();
    void AFileThatSaysNothing_data();
    void AFileThatSaysNothing();
    void AnOwnerOnAnotherMachine();
    void UnusableDirectories_data();
    void UnusableDirectories();
    void LookingDoesNotDisturb();
    void OtherDirectoriesAreFree();
};

void TestInstanceLock::OneTakesAndGivesBack()
{
    const QTemporaryDir directory;
    {
        InstanceLock lock;
        QCOMPARE(lock.Take(directory.path()), InstanceLock::Result::Taken);
        QCOMPARE(lock.ErrorText(), QString());
        QCOMPARE(InstanceLock::Holder(directory.path()), std::optional(QCoreApplication::applicationPid()));
        InstanceLock second;
        QCOMPARE(second.Take(directory.path()), InstanceLock::Result::Held);
    }
    QCOMPARE(InstanceLock::Holder(directory.path()), std::nullopt);
    // Nothing stays behind.
    QVERIFY(QDir(directory.path()).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
    InstanceLock again;
    QCOMPARE(again.Take(directory.path()), InstanceLock::Result::Taken);
}

void TestInstanceLock::MakesTheDirectory()
{
    const QTemporaryDir directory;
    InstanceLock lock;
    QCOMPARE(lock.Take(directory.filePath(QStringLiteral("not/yet/there"))), InstanceLock::Result::Taken);
}

void TestInstanceLock::AnotherProcessIsRefused()
{
    const QTemporaryDir directory;
    Owner owner(directory.path());
    QVERIFY(owner.Holds());
    const QByteArray before = Read(LockFile(directory));

    InstanceLock lock;
    QCOMPARE(lock.Take(directory.path()), InstanceLock::Result::Held);
    // Which process, where, and what to do about it, in one line.
    QVERIFY2(lock.ErrorText().contains(QString::number(owner.process.processId())), qPrintable(lock.ErrorText()));
    QVERIFY2(lock.ErrorText().contains(QDir::toNativeSeparators(directory.path())), qPrintable(lock.ErrorText()));
    QVERIFY2(lock.ErrorText().contains(QLatin1String("kitestarter")), qPrintable(lock.ErrorText()));
    QVERIFY(!lock.ErrorText().contains(QLatin1Char('\n')));
    QCOMPARE(InstanceLock::Holder(directory.path()), std::optional(owner.process.processId()));
    // The owner's lock is as it was.
    QCOMPARE(Read(LockFile(directory)), before);
}

void TestInstanceLock::ADeadOwnerIsSucceeded()
{
    const QTemporaryDir directory;
    Owner owner(directory.path());
    QVERIFY(owner.Holds());
    owner.Kill();
    QVERIFY(QFile::exists(LockFile(directory)));

    InstanceLock lock;
    QCOMPARE(lock.Take(directory.path()), InstanceLock::Result::Taken);
    QCOMPARE(InstanceLock::Holder(directory.path()), std::optional(QCoreApplication::applicationPid()));
}

void TestInstanceLock::ANumberThatBelongsToAnotherProgramByNow()
{
    const QTemporaryDir directory;
    Owner owner(directory.path());
    QVERIFY(owner.Holds());
    QByteArray content = Read(LockFile(directory));
    QVERIFY(content.startsWith(QByteArray::number(owner.process.processId()) + '\n'));
    owner.Kill();

    QProcess other;
    QTemporaryDir reports;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("VEXEL_TESTCHILD_MODE"), QStringLiteral("stay"));
    environment.insert(QStringLiteral("VEXEL_TESTCHILD_REPORTS"), reports.path());
    other.setProcessEnvironment(environment);
    other.start(QStringLiteral(VEXEL_TESTCHILD), QStringList());
    // Once it has reported it runs under its own name.
    QTRY_VERIFY(QFile::exists(reports.filePath(QStringLiteral("%1.json").arg(other.processId()))));
    content.replace(0, content.indexOf('\n'), QByteArray::number(other.processId()));
    Write(LockFile(directory), content);

    QCOMPARE(InstanceLock::Holder(directory.path()), std::nullopt);
    Write(LockFile(directory), content);
    InstanceLock lock;
    QCOMPARE(lock.Take(directory.path()), InstanceLock::Result::Taken);
    QCOMPARE(other.state(), QProcess::Running);
    other.kill();
    other.waitForFinished();
}

void TestInstanceLock::AFileThatSaysNothing_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no number") << QByteArray("hello\nworld\n");
    QTest::newRow("zeroes") << QByteArray(4096, '\0');
}

void TestInstanceLock::AFileThatSaysNothing()
{
    QFETCH(const QByteArray, content);
    const QTemporaryDir directory;
    Write(LockFile(directory), content);
    QCOMPARE(InstanceLock::Holder(directory.path()), std::nullopt);
    InstanceLock lock;
    QCOMPARE(lock.Take(directory.path()), InstanceLock::Result::Taken);
    QCOMPARE(InstanceLock::Holder(directory.path()), std::optional(QCoreApplication::applicationPid()));
}

void TestInstanceLock::AnOwnerOnAnotherMachine()
{
    const QTemporaryDir directory;
    QByteArray content;
    {
        InstanceLock lock;
        QCOMPARE(lock.Take(directory.path()), InstanceLock::Result::Taken);
        content = Read(LockFile(directory));
    }
    const QByteArray name = QSysInfo::machineHostName().toLocal8Bit();
    QVERIFY(content.contains('\n' + name + '\n'));
    content.replace('\n' + name + '\n', "\nelsewhere\n");
    Write(LockFile(directory), content);

    InstanceLock lock;
    QCOMPARE(lock.Take(directory.path()), InstanceLock::Result::Held);
    QVERIFY2(lock.ErrorText().contains(QLatin1String("elsewhere")), qPrintable(lock.ErrorText()));
    // It cannot be found out from here whether that process lives, so a person must be able to decide.
    QVERIFY2(lock.ErrorText().contains(QDir::toNativeSeparators(LockFile(directory))), qPrintable(lock.ErrorText()));
    QCOMPARE(Read(LockFile(directory)), content);
}

void TestInstanceLock::UnusableDirectories_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("blocker");
    QTest::newRow("no name") << QString() << QString();
    QTest::newRow("below a file") << QStringLiteral("file/config") << QString();
    QTest::newRow("a file") << QStringLiteral("file") << QString();
    QTest::newRow("a folder in the lock's place")
        << QStringLiteral("config") << QStringLiteral("config/vexelhost.lock");
}

void TestInstanceLock::UnusableDirectories()
{
    QFETCH(const QString, path);
    QFETCH(const QString, blocker);
    const QTemporaryDir directory;
    Write(directory.filePath(QStringLiteral("file")), "content");
    if (!blocker.isEmpty())
        QVERIFY(QDir(directory.path()).mkpath(blocker));

    InstanceLock lock;
    const QString full = path.isEmpty() ? QString() : directory.filePath(path);
    QCOMPARE(lock.Take(full), InstanceLock::Result::Unusable);
    QVERIFY2(lock.ErrorText().contains(QLatin1String("cannot be used")), qPrintable(lock.ErrorText()));
    QVERIFY2(lock.ErrorText().contains(full), qPrintable(lock.ErrorText()));
    QCOMPARE(InstanceLock::Holder(full), std::nullopt);
    QCOMPARE(Read(directory.filePath(QStringLiteral("file"))), QByteArray("content"));
}

void TestInstanceLock::LookingDoesNotDisturb()
{
    const QTemporaryDir directory;
    const QString missing = directory.filePath(QStringLiteral("missing"));
    QCOMPARE(InstanceLock::Holder(missing), std::nullopt);
    QVERIFY(!QFile::exists(missing));

    InstanceLock lock;
    QCOMPARE(lock.Take(directory.path()), InstanceLock::Result::Taken);
    for (int i = 0; i < 3; ++i)
        QCOMPARE(InstanceLock::Holder(directory.path()), std::optional(QCoreApplication::applicationPid()));
    InstanceLock second;
    QCOMPARE(second.Take(directory.path()), InstanceLock::Result::Held);
}

void TestInstanceLock::OtherDirectoriesAreFree()
{
    const QTemporaryDir one;
    const QTemporaryDir other;
    InstanceLock first;
    InstanceLock second;
    QCOMPARE(first.Take(one.path()), InstanceLock::Result::Taken);
    QCOMPARE(second.Take(other.path()), InstanceLock::Result::Taken);
}

namespace {

int Hold(const QString& directory)
{
    InstanceLock lock;
    std::puts(lock.Take(directory) == InstanceLock::Result::Taken ? "taken" : "not taken");
    std::fflush(stdout);
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() == 3 && arguments.at(1) == s_hold)
        return Hold(arguments.at(2));
    TestInstanceLock test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_instancelock.moc"
