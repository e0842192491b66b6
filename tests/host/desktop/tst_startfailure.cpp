// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/desktop/startfailure.h"
#include "host/output/starterrorfile.h"
#include "tests/support/files.h"
#include "tests/support/messageboxes.h"
#include "tests/support/system/errorsto.h"
#include "tests/support/testmain.h"
#include "tests/support/waitforend.h"

#include <QProcess>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>

using Kind = StartFailure::Kind;

Q_DECLARE_METATYPE(StartFailure::Kind)

namespace {

const QLocale kEnglish(QStringLiteral("en_GB"));
const QLocale kGerman(QStringLiteral("de_DE"));
const QString kLine = QStringLiteral("the configuration directory /<b>a</b>/\u5317 cannot be used: it is full");

/// Shows a box and returns what it contained.
MessageBoxes::Box Shown(Kind kind, const QLocale& language)
{
    const MessageBoxes boxes;
    StartFailure::ShowBox(kind, kLine, language);
    return boxes.Boxes().value(0);
}

/// Reports a failure and returns how many boxes appeared.
qsizetype BoxesOfReport()
{
    const MessageBoxes boxes;
    StartFailure::Report(Kind::ConfigurationUnusable, kLine, kEnglish);
    return boxes.Count();
}

/// Shows a box before there is an application object, and prints its text.
int ShowWithoutApplication(int /*argc*/, char** /*argv*/)
{
    static MessageBoxes* boxes = nullptr;
    qAddPreRoutine([] { boxes = new MessageBoxes; });
    StartFailure::ShowBox(Kind::TraceFile, kLine, kGerman);
    (void)std::fputs(boxes->Boxes().value(0).text.toUtf8().constData(), stdout);
    return QCoreApplication::instance() ? 1 : 0;
}
const TestMain::Program kShow("show-start-failure", ShowWithoutApplication);

} // namespace

class TestStartFailure : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void variableIsTakenOutOfTheEnvironment();
    void lineGoesToTheStarter();
    void boxAppearsWithoutTheStarter();
    void noBoxWhereErrorsAreRead();
    void noBoxWithoutVisibleWindows_data();
    void noBoxWithoutVisibleWindows();
    void boxSaysWhatFailed_data();
    void boxSaysWhatFailed();
    void everyKindHasItsOwnText();
    void boxNeedsNoApplication();

private:
    QByteArray m_platform;
    QByteArray m_display;
};

void TestStartFailure::init()
{
    // A display as the host sees it. The boxes of this test appear on its own platform.
    m_platform = qgetenv("QT_QPA_PLATFORM");
    m_display = qgetenv("DISPLAY");
    qunsetenv("QT_QPA_PLATFORM");
    qputenv("DISPLAY", ":0");
}

void TestStartFailure::cleanup()
{
    qputenv("QT_QPA_PLATFORM", m_platform);
    qputenv("DISPLAY", m_display);
    qunsetenv(kStartErrorFileVariable);
    StartFailure::TakeErrorFile();
}

void TestStartFailure::variableIsTakenOutOfTheEnvironment()
{
    qputenv(kStartErrorFileVariable, "file");
    StartFailure::TakeErrorFile();
    QVERIFY(!qEnvironmentVariableIsSet(kStartErrorFileVariable));
}

void TestStartFailure::lineGoesToTheStarter()
{
    const QTemporaryDir directory;
    const QString file = directory.filePath(QStringLiteral("error"));
    QVERIFY(Files::Write(file, QByteArray(1000, 'x')));
    qputenv(kStartErrorFileVariable, QFile::encodeName(file));
    StartFailure::TakeErrorFile();
    const ErrorsTo errors(QProcess::nullDevice());
    QCOMPARE(BoxesOfReport(), 0);
    QCOMPARE(QString::fromUtf8(Files::Read(file)), kLine);

    const MessageBoxes boxes;
    StartFailure::Report(Kind::TraceFile, QStringLiteral("one\ntwo"), kEnglish);
    QCOMPARE(Files::Read(file), QByteArray("one\\ntwo"));
    QCOMPARE(boxes.Count(), 0);
}

void TestStartFailure::boxAppearsWithoutTheStarter()
{
    const ErrorsTo errors(QProcess::nullDevice());
    QCOMPARE(BoxesOfReport(), 1);

    // It has stopped waiting, and its file is gone.
    const QTemporaryDir directory;
    const QString file = directory.filePath(QStringLiteral("error"));
    qputenv(kStartErrorFileVariable, QFile::encodeName(file));
    StartFailure::TakeErrorFile();
    QCOMPARE(BoxesOfReport(), 1);
    QVERIFY(!QFile::exists(file));
}

void TestStartFailure::noBoxWhereErrorsAreRead()
{
    const QTemporaryDir directory;
    const ErrorsTo errors(directory.filePath(QStringLiteral("errors")));
    QCOMPARE(BoxesOfReport(), 0);
}

void TestStartFailure::noBoxWithoutVisibleWindows_data()
{
    QTest::addColumn<QByteArray>("platform");
    QTest::addColumn<QByteArray>("display");
    QTest::newRow("offscreen") << QByteArray("offscreen:configfile=x") << QByteArray(":0");
    QTest::newRow("minimal") << QByteArray("minimal") << QByteArray(":0");
#ifdef Q_OS_UNIX
    QTest::newRow("no display") << QByteArray("xcb") << QByteArray();
#endif
}

void TestStartFailure::noBoxWithoutVisibleWindows()
{
    QFETCH(const QByteArray, platform);
    QFETCH(const QByteArray, display);
    const QByteArray wayland = qgetenv("WAYLAND_DISPLAY");
    qputenv("QT_QPA_PLATFORM", platform);
    qputenv("DISPLAY", display);
    qunsetenv("WAYLAND_DISPLAY");
    qsizetype shown = 0;
    {
        const ErrorsTo errors(QProcess::nullDevice());
        shown = BoxesOfReport();
    }
    qputenv("WAYLAND_DISPLAY", wayland);
    QCOMPARE(shown, 0);
}

void TestStartFailure::boxSaysWhatFailed_data()
{
    QTest::addColumn<Kind>("kind");
    QTest::addColumn<QLocale>("language");
    QTest::addColumn<QString>("text");
    QTest::newRow("English") << Kind::ConfigurationBusy << kEnglish
                             << QStringLiteral(
                                    "The connect dialog cannot be started. Another program is using the "
                                    "configuration.\n\n%1\n\nWait until that program has finished, and try again.");
    QTest::newRow("German") << Kind::ConfigurationBusy << kGerman
                            << QStringLiteral(
                                   "Der Verbindungsdialog kann nicht gestartet werden. Ein anderes Programm benutzt "
                                   "die Konfiguration.\n\n%1\n\nWarten Sie, bis dieses Programm fertig ist, und "
                                   "versuchen Sie es erneut.");
}

void TestStartFailure::boxSaysWhatFailed()
{
    QFETCH(const Kind, kind);
    QFETCH(const QLocale, language);
    QFETCH(const QString, text);
    const MessageBoxes::Box box = Shown(kind, language);
    QCOMPARE(box.text, text.arg(kLine));
    QCOMPARE(box.textFormat, Qt::PlainText);
    QCOMPARE(box.icon, QMessageBox::Critical);
    QCOMPARE(box.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    // The texts of the host are loaded for the box alone.
    QCOMPARE(QCoreApplication::translate("StartFailure", "The trace file cannot be written."),
             QStringLiteral("The trace file cannot be written."));
}

void TestStartFailure::everyKindHasItsOwnText()
{
    QSet<QString> texts;
    for (int kind = 0; kind <= static_cast<int>(Kind::PluginUnusable); ++kind) {
        for (const QLocale& language : {kEnglish, kGerman}) {
            const QStringList parts = Shown(static_cast<Kind>(kind), language).text.split(QStringLiteral("\n\n"));
            QCOMPARE(parts.size(), 3);
            QCOMPARE(parts.at(1), kLine);
            texts += {parts.at(0), parts.at(2)};
        }
    }
    QCOMPARE(texts.size(), 4 * (static_cast<int>(Kind::PluginUnusable) + 1));
}

void TestStartFailure::boxNeedsNoApplication()
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    process.setProcessEnvironment(environment);
    process.start(QCoreApplication::applicationFilePath(), {QStringLiteral("show-start-failure")});
    QVERIFY(WaitForEnd(process));
    const QString text = QString::fromUtf8(process.readAllStandardOutput());
    QVERIFY2(text.contains(QLatin1String("Die Trace-Datei kann nicht geschrieben werden.")), qPrintable(text));
    QVERIFY2(text.contains(kLine), qPrintable(text));
    QCOMPARE(process.exitCode(), 0);
}

VEXEL_TEST(QTEST_MAIN, TestStartFailure)
#include "tst_startfailure.moc"
