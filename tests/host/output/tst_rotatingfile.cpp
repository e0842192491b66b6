// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "files/filelock.h"
#include "host/output/rotatingfile.h"
#include "tests/support/files.h"
#include "tests/support/system/system.h"
#include "tests/support/testmain.h"
#include "tests/support/waitforend.h"

#include <QDir>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <set>

namespace {

const QString kWrite = QStringLiteral("--write");
constexpr qint64 kLargest = 1000;
constexpr int kLinesPerWriter = 2000;

QByteArray Line(int number)
{
    // Nine bytes, and a tenth for the break.
    return QByteArray::number(number).rightJustified(9, '0') + '\n';
}

/// A file in a temporary folder.
struct Fixture
{
    QTemporaryDir directory;
    QString name = directory.filePath(QStringLiteral("trace.log"));

    QString Earlier(int number) const { return name + QLatin1Char('.') + QString::number(number); }
    QStringList Names() const { return QDir(directory.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot); }
};

} // namespace

class TestRotatingFile : public QObject
{
    Q_OBJECT

private slots:
    void linesAreAppendedToTheExistingFile();
    void fullFileIsRenamed();
    void fiveEarlierFilesAreKept();
    void oversizedFileIsRenamedAtOnce();
    void lineIsNeverSplit_data();
    void lineIsNeverSplit();
    void gapInTheNumbersIsFilledFirst();
    void failedRenameIsReportedOnceAndLosesNothing_data();
    void failedRenameIsReportedOnceAndLosesNothing();
    void renamingWorksAgainLater();
    void lockOfAnotherProcessIsNoFailure();
    void fileRenamedByAnotherProcessIsReopened();
    void devicesAreNotRenamed();
    void severalProcessesLoseNoLine();
    void unusableFileIsRefused();
};

void TestRotatingFile::linesAreAppendedToTheExistingFile()
{
    const Fixture fixture;
    QVERIFY(Files::Write(fixture.name, "before\n"));
    RotatingFile file;
    QVERIFY(!file.IsOpen());
    QCOMPARE(file.Open(fixture.name, kLargest), QString());
    QVERIFY(file.IsOpen());
    QCOMPARE(file.Append("after\n"), QString());
    // At once, without closing.
    QCOMPARE(Files::Read(fixture.name), QByteArray("before\nafter\n"));
}

void TestRotatingFile::fullFileIsRenamed()
{
    const Fixture fixture;
    RotatingFile file;
    QCOMPARE(file.Open(fixture.name, kLargest), QString());
    QByteArray first;
    for (int i = 0; i < 100; ++i) {
        first += Line(i);
        QCOMPARE(file.Append(Line(i)), QString());
    }
    // Full to the last byte is not too much.
    QCOMPARE(fixture.Names(), QStringList{QStringLiteral("trace.log")});
    QCOMPARE(Files::Read(fixture.name), first);
    QCOMPARE(file.Append(Line(100)), QString());
    QCOMPARE(fixture.Names(), QStringList({QStringLiteral("trace.log"), QStringLiteral("trace.log.1")}));
    QCOMPARE(Files::Read(fixture.Earlier(1)), first);
    QCOMPARE(Files::Read(fixture.name), Line(100));
}

void TestRotatingFile::fiveEarlierFilesAreKept()
{
    const Fixture fixture;
    RotatingFile file;
    QCOMPARE(file.Open(fixture.name, kLargest), QString());
    constexpr int lines = 850;
    for (int i = 0; i < lines; ++i)
        QCOMPARE(file.Append(Line(i)), QString());
    QCOMPARE(fixture.Names().size(), 6);
    // The last 550 of them, in their order.
    QByteArray kept;
    for (int number = 5; number >= 1; --number)
        kept += Files::Read(fixture.Earlier(number));
    kept += Files::Read(fixture.name);
    QByteArray expected;
    for (int i = lines - 550; i < lines; ++i)
        expected += Line(i);
    QCOMPARE(kept, expected);
}

void TestRotatingFile::oversizedFileIsRenamedAtOnce()
{
    const Fixture fixture;
    const QByteArray before(5 * kLargest, 'x');
    QVERIFY(Files::Write(fixture.name, before));
    RotatingFile file;
    QCOMPARE(file.Open(fixture.name, kLargest), QString());
    QCOMPARE(file.Append(Line(1)), QString());
    QCOMPARE(Files::Read(fixture.Earlier(1)), before);
    QCOMPARE(Files::Read(fixture.name), Line(1));
}

void TestRotatingFile::lineIsNeverSplit_data()
{
    QTest::addColumn<int>("length");
    QTest::newRow("does not fit any more") << 700;
    QTest::newRow("larger than a file shall be") << 5000;
    QTest::newRow("larger than any buffer") << 3'000'000;
}

void TestRotatingFile::lineIsNeverSplit()
{
    QFETCH(const int, length);
    const Fixture fixture;
    RotatingFile file;
    QCOMPARE(file.Open(fixture.name, kLargest), QString());
    const QByteArray line = QByteArray(length, 'l') + '\n';
    for (int i = 0; i < 3; ++i)
        QCOMPARE(file.Append(line), QString());
    QCOMPARE(Files::Read(fixture.Earlier(2)), line);
    QCOMPARE(Files::Read(fixture.Earlier(1)), line);
    QCOMPARE(Files::Read(fixture.name), line);
    QCOMPARE(fixture.Names().size(), 3);
}

void TestRotatingFile::gapInTheNumbersIsFilledFirst()
{
    const Fixture fixture;
    QVERIFY(Files::Write(fixture.Earlier(1), "one\n"));
    QVERIFY(Files::Write(fixture.Earlier(3), "three\n"));
    QVERIFY(Files::Write(fixture.name, QByteArray(kLargest, 'x')));
    RotatingFile file;
    QCOMPARE(file.Open(fixture.name, kLargest), QString());
    QCOMPARE(file.Append(Line(1)), QString());
    QCOMPARE(Files::Read(fixture.Earlier(2)), QByteArray("one\n"));
    QCOMPARE(Files::Read(fixture.Earlier(3)), QByteArray("three\n"));
    QCOMPARE(Files::Read(fixture.Earlier(1)).size(), kLargest);
}

void TestRotatingFile::failedRenameIsReportedOnceAndLosesNothing_data()
{
    QTest::addColumn<int>("blocked");
    QTest::newRow("the first") << 1;
    QTest::newRow("one between") << 3;
    QTest::newRow("the last") << 5;
    QTest::newRow("the lock's place") << 0;
}

void TestRotatingFile::failedRenameIsReportedOnceAndLosesNothing()
{
    QFETCH(const int, blocked);
    const Fixture fixture;
    for (int number = 1; number <= RotatingFile::kBackupCount; ++number)
        if (number != blocked)
            QVERIFY(Files::Write(fixture.Earlier(number), QByteArray::number(number)));
    if (blocked > 0)
        QVERIFY(QDir().mkdir(fixture.Earlier(blocked)));
    // A name that is too long for one more suffix, as in a folder that cannot be written.
    const QString name = blocked > 0 ? fixture.name : fixture.directory.filePath(QString(253, u'n'));

    RotatingFile file;
    QCOMPARE(file.Open(name, kLargest), QString());
    QStringList errors;
    QByteArray expected;
    for (int i = 0; i < 1000; ++i) {
        expected += Line(i);
        if (const QString error = file.Append(Line(i)); !error.isEmpty())
            errors.append(error);
    }
    QCOMPARE(Files::Read(name), expected);
    QCOMPARE(errors.size(), 1);
    if (blocked > 0)
        QVERIFY2(errors.first().contains(QDir::toNativeSeparators(fixture.Earlier(blocked))),
                 qPrintable(errors.first()));
    for (int number = 1; number <= RotatingFile::kBackupCount; ++number)
        if (number != blocked)
            QCOMPARE(Files::Read(fixture.Earlier(number)), QByteArray::number(number));
}

void TestRotatingFile::renamingWorksAgainLater()
{
    const Fixture fixture;
    QVERIFY(QDir().mkdir(fixture.Earlier(1)));
    RotatingFile file;
    QCOMPARE(file.Open(fixture.name, kLargest), QString());
    int i = 0;
    for (; i < 150; ++i)
        (void)file.Append(Line(i));
    QVERIFY(QDir().rmdir(fixture.Earlier(1)));
    // Not with the next line: a way that is blocked is not tried with every line.
    QCOMPARE(file.Append(Line(i++)), QString());
    QVERIFY(!QFileInfo::exists(fixture.Earlier(1)));
    // But before it has doubled.
    for (; i < 350; ++i)
        QCOMPARE(file.Append(Line(i)), QString());
    // From then on files are as large as they shall be.
    QCOMPARE(Files::Read(fixture.Earlier(2)).count('\n'), 200);
    QCOMPARE(Files::Read(fixture.Earlier(1)).count('\n'), 100);
    QCOMPARE(Files::Read(fixture.name).count('\n'), 50);
}

void TestRotatingFile::lockOfAnotherProcessIsNoFailure()
{
    const Fixture fixture;
    RotatingFile file;
    QCOMPARE(file.Open(fixture.name, kLargest), QString());
    {
        FileLock lock;
        QString error;
        QCOMPARE(lock.TryLock(fixture.name + QStringLiteral(".lock"), &error), FileLock::Result::Locked);
        for (int i = 0; i < 150; ++i)
            QCOMPARE(file.Append(Line(i)), QString());
        QCOMPARE(Files::Read(fixture.name).count('\n'), 150);
    }
    QCOMPARE(file.Append(Line(150)), QString());
    QCOMPARE(Files::Read(fixture.Earlier(1)).count('\n'), 150);
    QCOMPARE(Files::Read(fixture.name), Line(150));
}

void TestRotatingFile::fileRenamedByAnotherProcessIsReopened()
{
#ifndef Q_OS_UNIX
    QSKIP("A file that is open is not renamed on this system.");
#endif
    const Fixture fixture;
    RotatingFile one;
    RotatingFile other;
    QCOMPARE(one.Open(fixture.name, kLargest), QString());
    QCOMPARE(other.Open(fixture.name, kLargest), QString());
    for (int i = 0; i < 100; ++i)
        QCOMPARE(one.Append(Line(i)), QString());
    QCOMPARE(one.Append(Line(100)), QString());
    // The file that the other has open was renamed: it opens the new one, and renames nothing.
    QCOMPARE(other.Append(Line(101)), QString());
    QCOMPARE(Files::Read(fixture.name), Line(100) + Line(101));
    QCOMPARE(Files::Read(fixture.Earlier(1)).count('\n'), 100);
    QVERIFY(!QFileInfo::exists(fixture.Earlier(2)));
}

void TestRotatingFile::devicesAreNotRenamed()
{
    const QString device = QProcess::nullDevice();
    RotatingFile file;
    QCOMPARE(file.Open(device, 1), QString());
    for (int i = 0; i < 10; ++i)
        QCOMPARE(file.Append(Line(i)), QString());
    QVERIFY(!QFileInfo(device).isFile());
    QVERIFY(!QFileInfo::exists(device + QStringLiteral(".1")));
}

void TestRotatingFile::severalProcessesLoseNoLine()
{
    if (System::IsWine())
        QSKIP("Wine looks for the end of a file and then writes there, so that lines of others can be overwritten");
    const Fixture fixture;
    constexpr int writers = 3;
    // Room for all lines in the six files, so that none is dropped for its age.
    const qint64 largest = writers * kLinesPerWriter * 10 / 4;
    std::vector<std::unique_ptr<QProcess>> processes;
    for (int i = 0; i < writers; ++i) {
        processes.push_back(std::make_unique<QProcess>());
        processes.back()->setProcessChannelMode(QProcess::ForwardedChannels);
        processes.back()->start(QCoreApplication::applicationFilePath(),
                                {kWrite, fixture.name, QString::number(largest), QString::number(i)});
    }
    for (const auto& process : processes) {
        QVERIFY(WaitForEnd(*process));
        QCOMPARE(process->exitCode(), 0);
    }
    // Every line is in one of the files, complete and once.
    std::set<QByteArray> lines;
    int count = 0;
    for (int number = 0; number <= RotatingFile::kBackupCount; ++number) {
        const QByteArray content = Files::Read(number == 0 ? fixture.name : fixture.Earlier(number));
        QVERIFY(content.isEmpty() || content.endsWith('\n'));
        for (const QByteArray& line : content.chopped(content.isEmpty() ? 0 : 1).split('\n')) {
            if (line.isEmpty())
                continue;
            QCOMPARE(line.size(), 9);
            lines.insert(line);
            ++count;
        }
    }
    QCOMPARE(count, writers * kLinesPerWriter);
    QCOMPARE(lines.size(), static_cast<std::size_t>(writers * kLinesPerWriter));
#ifdef Q_OS_UNIX
    QVERIFY(QFileInfo::exists(fixture.Earlier(1)));
#endif
}

void TestRotatingFile::unusableFileIsRefused()
{
    const QTemporaryDir directory;
    RotatingFile file;
    QVERIFY(!file.Open(directory.path(), kLargest).isEmpty());
    QVERIFY(!file.IsOpen());
    QCOMPARE(file.Append("nowhere\n"), QString());
}

namespace {

int WriteLines(const QStringList& arguments)
{
    RotatingFile file;
    if (!file.Open(arguments.at(2), arguments.at(3).toLongLong()).isEmpty())
        return 1;
    const int first = arguments.at(4).toInt() * kLinesPerWriter;
    for (int i = first; i < first + kLinesPerWriter; ++i) {
        const QString error = file.Append(Line(i));
#ifdef Q_OS_UNIX
        if (!error.isEmpty()) {
            qWarning("%s", qPrintable(error));
            return 2;
        }
#endif
    }
    return 0;
}

int WriteMain(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    return WriteLines(QCoreApplication::arguments());
}

const TestMain::Program kWriteProgram(qPrintable(kWrite), WriteMain);

} // namespace

VEXEL_TEST(QTEST_GUILESS_MAIN, TestRotatingFile)
#include "tst_rotatingfile.moc"
