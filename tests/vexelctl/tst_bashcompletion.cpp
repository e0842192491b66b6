// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/testmain.h"
#include "vexelctl/commands.h"
#include "vexelctl/completion.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

// The script, run by bash.
class TestBashCompletion : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void firstWordIsACommand();
    void optionsAreThoseOfTheCommand();
    void filesAndFoldersAreCompleted_data();
    void filesAndFoldersAreCompleted();

private:
    /// What bash offers for the last of `words`.
    QStringList Complete(const QStringList& words);

    QTemporaryDir m_folder;
};

void TestBashCompletion::initTestCase()
{
    if (QStandardPaths::findExecutable(QStringLiteral("bash")).isEmpty())
        QSKIP("There is no bash.");
    QFile script(m_folder.filePath(QStringLiteral("script")));
    QVERIFY(script.open(QIODevice::WriteOnly));
    script.write(BashCompletion().toUtf8());
    QVERIFY(QDir(m_folder.path()).mkpath(QStringLiteral("files/a folder")));
    QFile file(m_folder.filePath(QStringLiteral("files/a list.xml")));
    QVERIFY(file.open(QIODevice::WriteOnly));
}

QStringList TestBashCompletion::Complete(const QStringList& words)
{
    QProcess bash;
    bash.setWorkingDirectory(m_folder.filePath(QStringLiteral("files")));
    // As bash calls it, with the function that the script registers.
    const QString code = QStringLiteral(R"(
        set -u
        . ../script
        complete -p vexelctl | grep -q -- '-F _vexelctl ' || exit 1
        COMP_WORDS=(vexelctl "$@") COMP_CWORD=$#
        _vexelctl
        ((${#COMPREPLY[@]} == 0)) || printf '%s\n' "${COMPREPLY[@]}"
    )");
    bash.start(QStringLiteral("bash"),
               QStringList{QStringLiteral("--norc"), QStringLiteral("-c"), code, QStringLiteral("bash")} + words);
    bash.waitForFinished();
    QStringList offered = QString::fromUtf8(bash.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts);
    if (const QByteArray errors = bash.readAllStandardError(); !errors.isEmpty())
        offered.prepend(QString::fromUtf8(errors));
    offered.sort();
    return offered;
}

void TestBashCompletion::firstWordIsACommand()
{
    QStringList all{QStringLiteral("--help"), QStringLiteral("--version")};
    for (const CommandInfo& info : AllCommands())
        all.append(QLatin1String(info.name));
    all.sort();
    QCOMPARE(Complete({QString()}), all);
    QCOMPARE(Complete({QStringLiteral("s")}), QStringList({QStringLiteral("save"), QStringLiteral("screenshot"),
                                                           QStringLiteral("show"), QStringLiteral("status")}));
    QCOMPARE(Complete({QStringLiteral("--v")}), QStringList(QStringLiteral("--version")));
}

void TestBashCompletion::optionsAreThoseOfTheCommand()
{
    for (const CommandInfo& info : AllCommands()) {
        QStringList options;
        for (const OptionInfo& option : info.options)
            options.append(QStringLiteral("--") + QLatin1String(option.name));
        options.sort();
        QCOMPARE(Complete({QLatin1String(info.name), QStringLiteral("-")}), options);
    }
    QCOMPARE(Complete({QStringLiteral("frob"), QStringLiteral("-")}), QStringList());
}

void TestBashCompletion::filesAndFoldersAreCompleted_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QStringList>("offered");
    const QString file = QStringLiteral("a list.xml");
    const QString folder = QStringLiteral("a folder");
    const auto add = [](const char* words, const QStringList& offered) {
        // The last word is empty.
        QTest::newRow(words) << QString::fromLatin1(words).split(u' ') << offered;
    };
    add("export ", {folder, file});
    add("add x.xml a", {folder, file});
    add("list --config ", {folder});
    add("list --config = a", {folder});
    add("list --config =", {folder});
    add("list --trace-file ", {folder, file});
    add("connect ", {});
    add("connect --name ", {});
    add("list ", {});
}

void TestBashCompletion::filesAndFoldersAreCompleted()
{
    QFETCH(const QStringList, words);
    QFETCH(const QStringList, offered);
    QCOMPARE(Complete(words), offered);
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestBashCompletion)
#include "tst_bashcompletion.moc"
