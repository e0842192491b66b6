// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "process/standardstreams.h"
#include "tests/support/files.h"
#include "tests/support/system/system.h"
#include "tests/support/testmain.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <array>
#include <fcntl.h>
#include <unistd.h>

using StandardStreams::Stream;

namespace {

const QString kReport = QStringLiteral("--report-streams");

} // namespace

/// Programs that are started with standard streams that are closed.
class TestStandardStreamsUnix : public QObject
{
    Q_OBJECT

private slots:
    void closedStreamsAreOccupied_data()
    {
        QTest::addColumn<QList<int>>("closed");
        QTest::newRow("none") << QList<int>();
        QTest::newRow("input") << QList<int>{STDIN_FILENO};
        QTest::newRow("output") << QList<int>{STDOUT_FILENO};
        QTest::newRow("errors") << QList<int>{STDERR_FILENO};
        QTest::newRow("input and errors") << QList<int>{STDIN_FILENO, STDERR_FILENO};
        QTest::newRow("all") << QList<int>{STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO};
    }
    void closedStreamsAreOccupied()
    {
        QFETCH(const QList<int>, closed);
        const QTemporaryDir directory;
        const QString report = directory.filePath(QStringLiteral("report"));
        QProcess program;
        program.setChildProcessModifier([&closed] {
            for (const int stream : closed)
                ::close(stream);
        });
        program.start(QCoreApplication::applicationFilePath(), {kReport, report});
        QVERIFY(program.waitForFinished());
        QCOMPARE(program.exitStatus(), QProcess::NormalExit);
        QCOMPARE(program.exitCode(), 0);

        // What is written gets nowhere, and the program knows.
        QByteArray expected;
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            expected += closed.contains(stream) ? "nothing, fails\n" : "pipe, works\n";
        QCOMPARE(Files::Read(report), expected);
        QCOMPARE(program.readAllStandardOutput(), QByteArray(closed.contains(STDOUT_FILENO) ? "" : "output"));
        QCOMPARE(program.readAllStandardError(), QByteArray(closed.contains(STDERR_FILENO) ? "" : "errors"));
    }

    void readerOfAStreamIsKnown()
    {
        const QTemporaryDir directory;
        const auto hasReader = [](int descriptor) {
            const int kept = ::dup(STDERR_FILENO);
            ::dup2(descriptor, STDERR_FILENO);
            const bool result = StandardStreams::HasReader(Stream::Error);
            ::dup2(kept, STDERR_FILENO);
            ::close(kept);
            return result;
        };
        const auto openFile = [&directory](const char* name) {
            return ::open(QFile::encodeName(directory.filePath(QLatin1String(name))).constData(), O_CREAT | O_WRONLY,
                          0600);
        };
        std::array<int, 2> pipe = {};
        QCOMPARE(::pipe(pipe.data()), 0);
        QVERIFY(hasReader(pipe[1]));
        ::close(pipe[0]);
        QVERIFY(!hasReader(pipe[1]));
        ::close(pipe[1]);

        const int file = openFile("errors.txt");
        QVERIFY(hasReader(file));
        ::close(file);
        // The log of a desktop's session.
        const int log = openFile(".xsession-errors");
        QVERIFY(!hasReader(log));
        ::close(log);
    }
};

namespace {

int ReportStreams(int /*argc*/, char** argv)
{
    StandardStreams::Prepare();
    QFile report(QString::fromLocal8Bit(argv[2]));
    if (!report.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return 1;
    const auto add = [&report](int stream, bool works) {
        const QString target = System::StreamTarget(stream);
        report.write(target.toUtf8() + (works ? ", works\n" : ", fails\n"));
    };
    char byte = 0;
    ::fcntl(STDIN_FILENO, F_SETFL, O_NONBLOCK);
    add(STDIN_FILENO, ::read(STDIN_FILENO, &byte, 1) != -1 || errno == EAGAIN);
    add(STDOUT_FILENO, StandardStreams::Write(Stream::Output, QByteArray("output")));
    add(STDERR_FILENO, StandardStreams::Write(Stream::Error, QByteArray("errors")));
    return 0;
}

const TestMain::Program kReportProgram(qPrintable(kReport), ReportStreams);

} // namespace

VEXEL_TEST(QTEST_GUILESS_MAIN, TestStandardStreamsUnix)
#include "tst_standardstreams_unix.moc"
