// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/errorhandler.h"
#include "tests/support/testmain.h"

#include <QTest>
#include <QThread>

#include <atomic>
#include <memory>
#include <vector>

namespace {

struct Logged
{
    QtMsgType type;
    QString category;
    QString message;
    QString file;
    int line;
};

std::vector<Logged> g_logged;

void Keep(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    g_logged.push_back(
        {type, QString::fromUtf8(context.category), message, QString::fromUtf8(context.file), context.line});
}

/// Records everything that Qt logs during its lifetime.
class LogRecorder
{
public:
    LogRecorder()
    {
        g_logged.clear();
        m_previous = qInstallMessageHandler(Keep);
    }
    ~LogRecorder() { qInstallMessageHandler(m_previous); }

    LogRecorder(const LogRecorder&) = delete;
    LogRecorder& operator=(const LogRecorder&) = delete;

private:
    QtMessageHandler m_previous = nullptr;
};

struct Report
{
    ErrorHandler::Kind kind;
    QString message;
    QString sourceFile;
    quint16 line;
};

} // namespace

class TestErrorHandler : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_mask = ErrorHandler::Instance().EnabledKinds(); }
    void cleanup() const
    {
        ErrorHandler::Instance().SetEnabledKinds(m_mask);
        ErrorHandler::Instance().SetSink({});
    }

    void instanceIsASingleton() { QCOMPARE(&ErrorHandler::Instance(), &ErrorHandler::Instance()); }

    void kindValuesAreFixed()
    {
        QCOMPARE(unsigned(ErrorHandler::Assertion), 0x02u);
        QCOMPARE(unsigned(ErrorHandler::Trace), 0x20u);
    }

    void assertionsAreOnAtStart() const { QCOMPARE(m_mask, unsigned(ErrorHandler::Assertion)); }

    void keepsTheWholeMask()
    {
        ErrorHandler::Instance().SetEnabledKinds(0xFFFFFFFFu);
        QCOMPARE(ErrorHandler::Instance().EnabledKinds(), 0xFFFFFFFFu);
        ErrorHandler::Instance().SetEnabledKinds(0);
        QCOMPARE(ErrorHandler::Instance().EnabledKinds(), 0u);
    }

    void reportsGoToTheSink()
    {
        const std::vector<Report> reports = Record([] {
            _Q_Trace(QStringLiteral("A::B(): text"), "platform/a", 65535);
            _Q_assert("row < count", "platform/b", 0);
        });
        QCOMPARE(reports.size(), std::size_t(2));
        QCOMPARE(reports[0].kind, ErrorHandler::Trace);
        QCOMPARE(reports[0].message, QStringLiteral("A::B(): text"));
        QCOMPARE(reports[0].sourceFile, QStringLiteral("platform/a"));
        QCOMPARE(reports[0].line, quint16(65535));
        QCOMPARE(reports[1].kind, ErrorHandler::Assertion);
        QCOMPARE(reports[1].message, QStringLiteral("row < count"));
        QCOMPARE(reports[1].sourceFile, QStringLiteral("platform/b"));
        QCOMPARE(reports[1].line, quint16(0));
    }

    // Callers check the mask before reporting. The handler forwards every report.
    void reportsAreForwardedWhateverTheMask()
    {
        ErrorHandler::Instance().SetEnabledKinds(0);
        const std::vector<Report> reports = Record([] {
            _Q_Trace(QStringLiteral("trace"), "a", 1);
            _Q_assert("assertion", "a", 2);
        });
        QCOMPARE(reports.size(), std::size_t(2));
    }

    void nullTextsAreEmpty()
    {
        const std::vector<Report> reports = Record([] {
            _Q_Trace(QString(), nullptr, 1);
            _Q_assert(nullptr, nullptr, 2);
        });
        QCOMPARE(reports.size(), std::size_t(2));
        QVERIFY(reports[0].sourceFile.isEmpty());
        QVERIFY(reports[1].message.isEmpty());
    }

    void messagesReachQtsLogUnchanged_data()
    {
        QTest::addColumn<QString>("message");
        QTest::newRow("plain") << QStringLiteral("A::B(): Could not open /x for reading");
        QTest::newRow("empty") << QString();
        QTest::newRow("percent signs") << QStringLiteral("100% %s %n %1 %{type} %%");
        QTest::newRow("quotes, tabs, line breaks") << QStringLiteral("\"a\"\t\\b\n<c>\r\n");
        QTest::newRow("spaces around") << QStringLiteral("  a  ");
        QTest::newRow("characters beyond the BMP") << QStringLiteral("Stra\u00dfe \u0416 \u6f22 \U0001F4E1");
        QTest::newRow("null character") << QStringLiteral("a") + QChar(0) + QStringLiteral("b");
        QTest::newRow("unpaired surrogate") << QStringLiteral("a") + QChar(0xD83D) + QStringLiteral("b");
        QTest::newRow("long") << QString(1 << 20, u'\u00e4');
    }
    void messagesReachQtsLogUnchanged()
    {
        QFETCH(QString, message);
        const LogRecorder recorder;
        _Q_Trace(message, "userinterface/vexelconnectdlg/appcounter", 65535);
        QCOMPARE(g_logged.size(), std::size_t(1));
        QCOMPARE(g_logged[0].type, QtInfoMsg);
        QCOMPARE(g_logged[0].category, QStringLiteral("vexel.trace"));
        QVERIFY(g_logged[0].message == message); // not QCOMPARE: the text may be long
        QCOMPARE(g_logged[0].file, QStringLiteral("userinterface/vexelconnectdlg/appcounter"));
        QCOMPARE(g_logged[0].line, 65535);
    }

    void assertionsReachQtsLogAsWarnings()
    {
        const LogRecorder recorder;
        _Q_assert("n % 2 == 0", "platform/b", 7);
        QCOMPARE(g_logged.size(), std::size_t(1));
        QCOMPARE(g_logged[0].type, QtWarningMsg);
        QCOMPARE(g_logged[0].category, QStringLiteral("vexel.assertion"));
        QCOMPARE(g_logged[0].message, QStringLiteral("n % 2 == 0"));
        QCOMPARE(g_logged[0].file, QStringLiteral("platform/b"));
        QCOMPARE(g_logged[0].line, 7);
    }

    void sinkReplacesTheLogUntilItIsRemoved()
    {
        const LogRecorder recorder;
        const std::vector<Report> reports = Record([] { _Q_Trace(QStringLiteral("first"), "a", 1); });
        QCOMPARE(reports.size(), std::size_t(1));
        QVERIFY(g_logged.empty());

        ErrorHandler::Instance().SetSink({});
        _Q_Trace(QStringLiteral("second"), "a", 1);
        QCOMPARE(g_logged.size(), std::size_t(1));
        QCOMPARE(g_logged[0].message, QStringLiteral("second"));
        QCOMPARE(reports.size(), std::size_t(1));
    }

    void sinkMayReportAndReplaceItself()
    {
        QStringList messages;
        ErrorHandler::Instance().SetSink(
            [&messages](ErrorHandler::Kind, const QString& message, const QString&, quint16) {
                messages += message;
                ErrorHandler::Instance().SetSink([&messages](ErrorHandler::Kind, const QString& inner, const QString&,
                                                             quint16) { messages += inner; });
                _Q_Trace(QStringLiteral("inner"), "a", 1);
            });
        _Q_Trace(QStringLiteral("outer"), "a", 1);
        QCOMPARE(messages, QStringList({QStringLiteral("outer"), QStringLiteral("inner")}));
    }

    void replacedSinkIsDestroyed()
    {
        const auto captured = std::make_shared<int>(0);
        ErrorHandler::Instance().SetSink([captured](ErrorHandler::Kind, const QString&, const QString&, quint16) {});
        QVERIFY(captured.use_count() > 1);
        ErrorHandler::Instance().SetSink({});
        QCOMPARE(captured.use_count(), 1L);
    }

    void threadsReportWhileTheSinkChanges()
    {
        constexpr int kThreads = 4;
        constexpr int kReports = 2000;
        std::atomic<int> received = 0;
        const auto count = [&received](ErrorHandler::Kind, const QString& message, const QString&, quint16) {
            if (message == QLatin1String("from a thread"))
                ++received;
        };
        ErrorHandler::Instance().SetSink(count);

        std::vector<std::unique_ptr<QThread>> threads;
        threads.reserve(kThreads);
        for (int i = 0; i < kThreads; ++i) {
            threads.emplace_back(QThread::create([] {
                for (int n = 0; n < kReports; ++n)
                    if (ErrorHandler::Instance().EnabledKinds() & ErrorHandler::Trace)
                        _Q_Trace(QStringLiteral("from a thread"), "a", 1);
            }));
        }
        ErrorHandler::Instance().SetEnabledKinds(ErrorHandler::Trace);
        for (const auto& thread : threads)
            thread->start();
        for (int n = 0; n < kReports; ++n)
            ErrorHandler::Instance().SetSink(count);
        for (const auto& thread : threads)
            QVERIFY(thread->wait());
        QCOMPARE(received.load(), kThreads * kReports);
    }

private:
    template <typename Act>
    std::vector<Report> Record(Act act)
    {
        std::vector<Report> reports;
        ErrorHandler::Instance().SetSink(
            [&reports](ErrorHandler::Kind kind, const QString& message, const QString& sourceFile, quint16 line) {
                reports.push_back({kind, message, sourceFile, line});
            });
        act();
        ErrorHandler::Instance().SetSink({});
        return reports;
    }

    unsigned m_mask = 0;
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestErrorHandler)
#include "tst_errorhandler.moc"
