// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/output/tracelog.h"
#include "tests/support/testmain.h"

#include <QDateTime>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

class TestTraceLog : public QObject
{
    Q_OBJECT

private slots:
    void lineHoldsEverything();
    void lineBreaksAreEscaped();
    void percentSignsAreKept();
    void linesAreAppended();
    void kindsAndSinkAreRestored();
    void withoutOptionsNothingChanges();
    void unusableFileIsReported();
    void fullFileIsRenamed();
    void sizeIsBoundedByDefault();

private:
    static QStringList FileLines(const QString& fileName);
};

QStringList TestTraceLog::FileLines(const QString& fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return {};
    return QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

void TestTraceLog::lineHoldsEverything()
{
    const QDateTime time(QDate(2024, 5, 17), QTime(9, 30, 12, 345));
    QCOMPARE(TraceLog::Line(time, ErrorHandler::Trace, QStringLiteral("Class::Function(): text"),
                            QStringLiteral("folder/file"), 65535),
             QStringLiteral("2024-05-17T09:30:12.345 trace folder/file:65535 Class::Function(): text"));
    QCOMPARE(TraceLog::Line(time, ErrorHandler::Assertion, QStringLiteral("a == b"), QStringLiteral("file"), 1),
             QStringLiteral("2024-05-17T09:30:12.345 assertion file:1 a == b"));
}

void TestTraceLog::lineBreaksAreEscaped()
{
    const QString line = TraceLog::Line(QDateTime::currentDateTime(), ErrorHandler::Trace,
                                        QStringLiteral("one\ntwo\r\nthree"), QStringLiteral("file"), 1);
    QVERIFY(line.endsWith(QLatin1String("one\\ntwo\\r\\nthree")));
    QVERIFY(!line.contains(QLatin1Char('\n')));
}

void TestTraceLog::percentSignsAreKept()
{
    const QString line = TraceLog::Line(QDateTime::currentDateTime(), ErrorHandler::Trace,
                                        QStringLiteral("opened %1 and %3"), QStringLiteral("%2"), 1);
    QVERIFY(line.endsWith(QLatin1String("trace %2:1 opened %1 and %3")));
}

void TestTraceLog::linesAreAppended()
{
    const QTemporaryDir directory;
    const QString fileName = directory.filePath(QStringLiteral("trace.log"));
    for (const QString& message : {QStringLiteral("first"), QStringLiteral("zweite Zeile \u00e4")}) {
        TraceLog log;
        QCOMPARE(log.Start(false, fileName), QString());
        QVERIFY(ErrorHandler::Instance().EnabledKinds() & ErrorHandler::Trace);
        _Q_Trace(message, "folder/file", 42);
        // At once, not only at the end: a trace is wanted most when the end is not reached.
        QVERIFY(FileLines(fileName).last().endsWith(message));
    }
    const QStringList lines = FileLines(fileName);
    QCOMPARE(lines.size(), 2);
    const QRegularExpression form(
        QStringLiteral(R"(^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3} trace folder/file:42 (first|zweite Zeile ä)$)"));
    for (const QString& line : lines)
        QVERIFY2(form.match(line).hasMatch(), qPrintable(line));
}

void TestTraceLog::kindsAndSinkAreRestored()
{
    const QTemporaryDir directory;
    const QString fileName = directory.filePath(QStringLiteral("trace.log"));
    const unsigned before = ErrorHandler::Instance().EnabledKinds();
    {
        TraceLog log;
        QCOMPARE(log.Start(false, fileName), QString());
        QCOMPARE(ErrorHandler::Instance().EnabledKinds(), before | ErrorHandler::Trace);
    }
    QCOMPARE(ErrorHandler::Instance().EnabledKinds(), before);
    QTest::ignoreMessage(QtInfoMsg, QRegularExpression(QStringLiteral("not into the file")));
    _Q_Trace(QStringLiteral("not into the file"), "file", 1);
    QVERIFY(FileLines(fileName).isEmpty());
}

void TestTraceLog::withoutOptionsNothingChanges()
{
    const unsigned before = ErrorHandler::Instance().EnabledKinds();
    TraceLog log;
    QCOMPARE(log.Start(false, QString()), QString());
    QCOMPARE(ErrorHandler::Instance().EnabledKinds(), before);
}

void TestTraceLog::unusableFileIsReported()
{
    const unsigned before = ErrorHandler::Instance().EnabledKinds();
    const QTemporaryDir directory;
    TraceLog log;
    QVERIFY(!log.Start(true, directory.path()).isEmpty());
    QCOMPARE(ErrorHandler::Instance().EnabledKinds(), before);
}

void TestTraceLog::fullFileIsRenamed()
{
    const QTemporaryDir directory;
    const QString fileName = directory.filePath(QStringLiteral("trace.log"));
    {
        TraceLog log;
        QCOMPARE(log.Start(false, fileName, 500), QString());
        for (int i = 0; i < 20; ++i)
            _Q_Trace(QStringLiteral("line %1").arg(i), "folder/file", 42);
    }
    QVERIFY(QFile(fileName).size() <= 500);
    QStringList lines;
    for (int number = 5; number >= 1; --number)
        lines += FileLines(fileName + QStringLiteral(".%1").arg(number));
    lines += FileLines(fileName);
    QCOMPARE(lines.size(), 20);
    for (int i = 0; i < 20; ++i)
        QVERIFY2(lines.at(i).endsWith(QStringLiteral(" line %1").arg(i)), qPrintable(lines.at(i)));
}

void TestTraceLog::sizeIsBoundedByDefault()
{
    const QTemporaryDir directory;
    const QString fileName = directory.filePath(QStringLiteral("trace.log"));
    {
        QFile full(fileName);
        QVERIFY(full.open(QIODevice::WriteOnly) && full.resize(TraceLog::kMaxFileSize));
    }
    TraceLog log;
    QCOMPARE(log.Start(false, fileName), QString());
    _Q_Trace(QStringLiteral("one more"), "folder/file", 42);
    QCOMPARE(QFile(fileName + QStringLiteral(".1")).size(), TraceLog::kMaxFileSize);
    QCOMPARE(FileLines(fileName).size(), 1);
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestTraceLog)
#include "tst_tracelog.moc"
