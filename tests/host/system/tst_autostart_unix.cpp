// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/system/autostart.h"
#include "tests/support/files.h"
#include "tests/support/testmain.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

class TestAutostart : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void entryIsWrittenAndRemoved();
    void entryIsTheMenuEntryWithOptions();
    void argumentsArriveAsTheyAre_data();
    void argumentsArriveAsTheyAre();
    void entrySwitchedOffByADesktopIsOff();
    void unusableFolderIsReported();

private:
    static QString Value(const QString& key);

    std::unique_ptr<QTemporaryDir> m_folder;
};

void TestAutostart::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_folder->path()));
}

/// The value of `key` in the entry, with its escapes.
QString TestAutostart::Value(const QString& key)
{
    const QStringList lines = QString::fromUtf8(Files::Read(Autostart::Place())).split(u'\n');
    for (const QString& line : lines)
        if (line.startsWith(key + u'='))
            return line.mid(key.size() + 1);
    return {};
}

void TestAutostart::entryIsWrittenAndRemoved()
{
    QCOMPARE(Autostart::Place(), m_folder->filePath(QStringLiteral("autostart/vexelhost.desktop")));
    QVERIFY(!Autostart::IsOn());
    QCOMPARE(Autostart::Set(true, {}), QString());
    QVERIFY(Autostart::IsOn());
    QCOMPARE(Autostart::Set(true, {}), QString());
    QVERIFY(Autostart::IsOn());
    QCOMPARE(Autostart::Set(false, {}), QString());
    QVERIFY(!Autostart::IsOn());
    QVERIFY(!QFileInfo::exists(Autostart::Place()));
    QCOMPARE(Autostart::Set(false, {}), QString());
}

void TestAutostart::entryIsTheMenuEntryWithOptions()
{
    const QString directory = QStringLiteral("/srv/50% \"north\" $HOME");
    QCOMPARE(Autostart::Set(true, {QStringLiteral("--data"), directory}), QString());
    const QString program = QCoreApplication::applicationFilePath();
    QCOMPARE(Value(QStringLiteral("Exec")),
             program + QStringLiteral(R"( --hidden --data "/srv/50%% \\"north\\" \\$HOME")"));
    QCOMPARE(Value(QStringLiteral("TryExec")), program);
    QCOMPARE(Value(QStringLiteral("Name[de]")), QStringLiteral("Vexel-Verbindungsdialog"));
    if (QStandardPaths::findExecutable(QStringLiteral("desktop-file-validate")).isEmpty())
        QSKIP("desktop-file-validate is not installed.");
    QProcess validate;
    validate.setProcessChannelMode(QProcess::MergedChannels);
    validate.start(QStringLiteral("desktop-file-validate"), {Autostart::Place()});
    QVERIFY(validate.waitForFinished());
    QCOMPARE(QString::fromUtf8(validate.readAll()), QString());
    QCOMPARE(validate.exitCode(), 0);
}

void TestAutostart::argumentsArriveAsTheyAre_data()
{
    QTest::addColumn<QString>("argument");
    for (const char* argument : {"/plain", "", "a b", "\"", "\\", "\\\\ \\\"", "$HOME `id`", "%f 100%", "it's", "a\tb",
                                 "two\nlines", "\303\244;&|<>()*?#~"})
        QTest::addRow("%s", argument) << QString::fromUtf8(argument);
}

void TestAutostart::argumentsArriveAsTheyAre()
{
    QFETCH(const QString, argument);
    QCOMPARE(Autostart::Set(true, {QStringLiteral("--name"), argument}), QString());
    // Undo the escapes of values, then those of field codes. Within double quotes the shell undoes the others.
    QString command;
    const QString value = Value(QStringLiteral("Exec"));
    for (qsizetype i = 0; i < value.size(); ++i) {
        if (value.at(i) != u'\\') {
            command += value.at(i);
            continue;
        }
        const QChar escaped = value.at(++i);
        command += escaped == u'n' ? u'\n' : escaped == u't' ? u'\t' : escaped;
    }
    command.replace(QLatin1String("%%"), QLatin1String("%"));
    const qsizetype options = command.indexOf(QLatin1String(" --hidden"));
    QVERIFY(options > 0);
    QProcess shell;
    shell.start(QStringLiteral("sh"), {QStringLiteral("-c"), QStringLiteral("printf '%s|'") + command.mid(options)});
    QVERIFY(shell.waitForFinished());
    QCOMPARE(QString::fromUtf8(shell.readAllStandardOutput()), QStringLiteral("--hidden|--name|") + argument + u'|');
}

void TestAutostart::entrySwitchedOffByADesktopIsOff()
{
    for (const QByteArray line : {"Hidden=true", "X-GNOME-Autostart-enabled=false"}) {
        QCOMPARE(Autostart::Set(true, {}), QString());
        QVERIFY(Files::Write(Autostart::Place(), Files::Read(Autostart::Place()) + line + '\n'));
        QVERIFY(!Autostart::IsOn());
        QCOMPARE(Autostart::Set(true, {}), QString());
        QVERIFY(Autostart::IsOn());
    }
}

void TestAutostart::unusableFolderIsReported()
{
    const QString folder = m_folder->filePath(QStringLiteral("autostart"));
    QVERIFY(Files::Write(folder, "a file"));
    const QString error = Autostart::Set(true, {});
    QVERIFY2(error.contains(folder), qPrintable(error));
    QVERIFY(!Autostart::IsOn());
    qputenv("XDG_CONFIG_HOME", "relative");
    QVERIFY(Autostart::Set(true, {}).contains(QLatin1String("XDG_CONFIG_HOME")));
    QVERIFY(!QFileInfo::exists(QStringLiteral("relative")));
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestAutostart)
#include "tst_autostart_unix.moc"
