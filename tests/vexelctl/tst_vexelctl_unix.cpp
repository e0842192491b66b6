// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/host/hostsetup.h"
#include "tests/support/system/filesizelimit.h"
#include "tests/support/testmain.h"

#include <algorithm>
#include <fcntl.h>
#include <pwd.h>
#include <sched.h>
#include <sys/syscall.h>
#include <unistd.h>

/// vexelctl with and without a display and a home directory, and with names that are not text.
class TestVexelCtlUnix : public QObject
{
    Q_OBJECT

private slots:
    void applicationsUseTheDisplay()
    {
        // vexelctl shows nothing, but the user at the display works with the applications.
        HostSetUp setUp;
        const QString program = setUp.Path("application");
        setUp.Write(program, "#!/bin/sh\nenv >environment.part && mv environment.part environment\n");
        QVERIFY(QFile::setPermissions(program, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        setUp.Install(program, 1);
        setUp.Fill("mast");
        for (const bool hasDesktop : {true, false}) {
            if (hasDesktop)
                setUp.Environment().insert(QStringLiteral("DISPLAY"), QStringLiteral(":4711"));
            else
                setUp.Environment().remove(QStringLiteral("DISPLAY"));
            QFile::remove(setUp.Path("environment"));
            const auto result = setUp.Run("connect mast");
            QCOMPARE(result.exitCode, 0);
            QFile environment(setUp.Path("environment"));
            QVERIFY(environment.open(QIODevice::ReadOnly));
            QCOMPARE(environment.readAll().contains("QT_QPA_PLATFORM=offscreen"), !hasDesktop);
        }
    }

    void pathThatIsNotTextIsRefused()
    {
        HostSetUp setUp;
        for (const char* option : {"--config", "--trace-file", "--language"}) {
            // QProcess passes valid text only.
            QProcess host;
            host.setProcessEnvironment(setUp.Environment());
            host.setWorkingDirectory(setUp.Path("."));
            host.start(QStringLiteral("/bin/sh"),
                       {QStringLiteral("-c"), QStringLiteral("exec \"$0\" list \"$1\" \"$(printf 'caf\\351')\""),
                        QStringLiteral(VEXELCTL), QString::fromLatin1(option)});
            auto result = HostSetUp::End(host);
            result.program = QStringLiteral("vexelctl"); // in place of the shell
            COMPARE_FAILURE(result, 1, QLatin1String("argument 3 is not valid UTF-8: \"caf"));
            QCOMPARE(QDir(setUp.Path(".")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), Words("data"));
        }
    }

    void unusableHomeIsReported_data()
    {
        QTest::addColumn<QByteArray>("home");
        QTest::addColumn<QByteArray>("configHome");
        QTest::addColumn<QString>("error");
        QTest::newRow("relative home") << QByteArray("home") << QByteArray()
                                       << QStringLiteral("HOME is not an absolute path in UTF-8: \"home\"");
        QTest::newRow("relative folder") << QByteArray("/") << QByteArray("folder")
                                         << QStringLiteral(
                                                "XDG_CONFIG_HOME is not an absolute path in UTF-8: \"folder\"");
        QTest::newRow("home that is not text") << QByteArray("/caf\xe9") << QByteArray()
                                               << QStringLiteral("HOME is not an absolute path in UTF-8: \"/caf");
    }
    void unusableHomeIsReported()
    {
        QFETCH(const QByteArray, home);
        QFETCH(const QByteArray, configHome);
        QFETCH(const QString, error);
        HostSetUp setUp;
        const auto run = [&](const char* arguments) {
            return RunWithHome(setUp, home, configHome, arguments);
        };
        for (const char* arguments : {"list", "backups", "restore 1", "add a.xml"})
            COMPARE_FAILURE(run(arguments), 2, error);
        // A report tells it.
        const auto diagnosis = run("diagnose");
        QCOMPARE(diagnosis.exitCode, 0);
        QVERIFY2(diagnosis.output.contains(QLatin1String("NOT FOUND: ") + error), qPrintable(diagnosis.output));
        // Nothing is written, and a named directory needs neither.
        QCOMPARE(QDir(setUp.Path(".")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), Words("data"));
        QCOMPARE(run("backups --config config").exitCode, 2);
    }

    void missingHomeIsTakenFromTheUserDatabase()
    {
        const passwd* const user = ::getpwuid(::geteuid());
        if (!user)
            QSKIP("the user database has no entry for this user");
        HostSetUp setUp;
        const auto diagnosis = RunWithHome(setUp, QByteArray(), QByteArray(), "diagnose --json");
        QCOMPARE(diagnosis.exitCode, 0);
        QCOMPARE(QJsonDocument::fromJson(diagnosis.output.toUtf8())[QLatin1String("paths")]
                     .toObject()
                     .value(QLatin1String("configuration"))
                     .toString(),
                 QDir::cleanPath(QFile::decodeName(user->pw_dir) + QStringLiteral("/.config/Vexel/vexelhost")));
    }

    void userWithoutAHomeIsReported()
    {
        HostSetUp setUp;
        constexpr uid_t kUnknownUser = 54321;
        if (::getpwuid(kUnknownUser))
            QSKIP("the user database has an entry for the number");
        // In a user namespace, the files of this user belong to the unknown one.
        const QByteArray map = QByteArray::number(kUnknownUser) + ' ' + QByteArray::number(::geteuid()) + " 1\n";
        QProcess host;
        host.setChildProcessModifier([&map] {
            // Plain system calls: sanitizers replace the functions, which fails between fork and exec.
            const long file = ::syscall(SYS_unshare, CLONE_NEWUSER) == 0
                                  ? ::syscall(SYS_openat, AT_FDCWD, "/proc/self/uid_map", O_WRONLY)
                                  : -1;
            if (file == -1 || ::syscall(SYS_write, file, map.constData(), map.size()) != map.size())
                ::_exit(99);
            ::syscall(SYS_close, file);
        });
        const auto result = RunWithHome(setUp, QByteArray(), QByteArray(), "backups", &host);
        if (result.exitCode == 99)
            QSKIP("this user cannot create user namespaces");
        COMPARE_FAILURE(result, 2, QLatin1String("HOME is not set, and the user database has no home directory"));
    }

    void accessByOthersIsReported()
    {
        HostSetUp setUp;
        setUp.Fill("one");
        QVERIFY(QFile::setPermissions(setUp.Config(), QFile::Permissions(0x7777)));
        const auto report = setUp.Run("diagnose --json");
        const QJsonArray rows = QJsonDocument::fromJson(report.output.toUtf8())[QLatin1String("paths")]
                                    .toObject()
                                    .value(QLatin1String("accessByOthers"))
                                    .toArray();
        const auto isConfig = [&setUp](const QJsonValue& row) {
            return row[QLatin1String("file")].toString() == setUp.Config() &&
                   row[QLatin1String("mode")].toString() == QLatin1String("0777") &&
                   row[QLatin1String("access")].toString().contains(QLatin1String("write"), Qt::CaseInsensitive);
        };
        QVERIFY2(std::any_of(rows.begin(), rows.end(), isConfig), qPrintable(report.output));
        QVERIFY(setUp.Run("diagnose").output.contains(QLatin1String("\n  access by others\n")));
    }

private:
    /// Runs vexelctl without --config.
    static HostSetUp::Result RunWithHome(HostSetUp& setUp, const QByteArray& home, const QByteArray& configHome,
                                         const char* arguments, QProcess* process = nullptr)
    {
        QProcess own;
        QProcess& host = process ? *process : own;
        // Set by env, because QProcess passes valid text only.
        host.setProcessEnvironment(setUp.Environment());
        host.setWorkingDirectory(setUp.Path("."));
        const auto quoted = [](const QByteArray& value) {
            QString octal;
            for (const char byte : value)
                octal += QStringLiteral("\\%1").arg(static_cast<unsigned char>(byte), 3, 8, QLatin1Char('0'));
            return QStringLiteral("\"$(printf '%1')\"").arg(octal);
        };
        host.start(QStringLiteral("/bin/sh"),
                   QStringList{QStringLiteral("-c"),
                               QStringLiteral("export HOME=%1 XDG_CONFIG_HOME=%2; exec \"$0\" \"$@\"")
                                   .arg(quoted(home), quoted(configHome)),
                               QStringLiteral(VEXELCTL)} +
                       Words(arguments));
        HostSetUp::Result result = HostSetUp::End(host);
        result.program = QStringLiteral("vexelctl"); // in place of the shell
        return result;
    }
};

VEXEL_TEST(QTEST_GUILESS_MAIN, TestVexelCtlUnix)
#include "tst_vexelctl_unix.moc"
