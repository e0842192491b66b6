// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "tests/support/system/system.h"
#include "tests/support/waitforend.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

/// The words of `text`, which blanks separate.
inline QStringList Words(const char* text)
{
    return QString::fromUtf8(text).split(u' ', Qt::SkipEmptyParts);
}

/// The run has this exit code, nothing on standard output, and one line on standard error, which contains `hint`.
#define COMPARE_FAILURE(result, code, hint)                                                                            \
    do {                                                                                                               \
        const HostSetUp::Result failed = (result);                                                                     \
        QCOMPARE(failed.exitCode, code);                                                                               \
        QCOMPARE(failed.output, QString());                                                                            \
        QCOMPARE(failed.ErrorLines().size(), 1);                                                                       \
        QVERIFY2(failed.error.startsWith(failed.program + QLatin1String(": ")) && failed.error.contains(hint),         \
                 qPrintable(failed.error));                                                                            \
    } while (false)

/// The run succeeds, and says one line on standard error, which contains `hint`.
#define COMPARE_NOTICE(result, hint)                                                                                   \
    do {                                                                                                               \
        QCOMPARE((result).exitCode, 0);                                                                                \
        QCOMPARE((result).ErrorLines().size(), 1);                                                                     \
        QVERIFY2((result).error.startsWith((result).program + QLatin1String(": ")) && (result).error.contains(hint),   \
                 qPrintable((result).error));                                                                          \
    } while (false)

/// `vexelctl` and `vexelhost` as child processes, with temporary configuration, data and runtime directories.
///
/// The data directory lists the applications that a test installs.
class HostSetUp
{
public:
    HostSetUp()
    {
        m_environment = QProcessEnvironment::systemEnvironment();
        // The host must find out by itself that there is no display.
        m_hasDisplay = !System::TakeDisplay(m_environment);
        QDir(m_directory.path()).mkdir(QStringLiteral("data"));
        Write(Data() + QStringLiteral("/CfgVEXEL.xml"), "<CfgVEXEL/>");
        m_environment.insert(QStringLiteral("XDG_CONFIG_DIRS"), MachineFolder());
        // For sockets. Its path has to be short.
        m_environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_runtime.path());
    }

    QString Path(const char* name) const { return m_directory.filePath(QString::fromLatin1(name)); }
    QString Config() const { return Path("config"); }
    QString Data() const { return Path("data"); }
    /// Where the system's settings files are looked for, on Unix.
    QString MachineFolder() const { return Path("machine"); }
    /// The document with the stored list.
    QString Document() const { return Path("config/application/@application.json"); }
    QProcessEnvironment& Environment() { return m_environment; }
    /// Whether the host finds a display.
    bool HasDisplay() const { return m_hasDisplay; }

    void Write(const QString& fileName, const QByteArray& content) const
    {
        QFile file(fileName);
        QVERIFY2(file.open(QIODevice::WriteOnly), qPrintable(file.errorString()));
        file.write(content);
    }

    /// Installs `program` as the only application for device type 4, `count` times.
    void Install(const QString& program, int count) const
    {
        QByteArray machine = "<CfgVEXEL><Machine>";
        for (int i = 1; i <= count; ++i) {
            machine += "<App" + QByteArray::number(i) + "><Startup><exe>" + program.toUtf8() + "</exe></Startup></App" +
                       QByteArray::number(i) + ">";
        }
        Write(Data() + QStringLiteral("/CfgVEXEL.xml"), machine + "</Machine></CfgVEXEL>");
        Write(Data() + QStringLiteral("/TypeApplicationMappings.xml"),
              "<TypeApplicationMappings><Mapping><DeviceType>4</DeviceType><Application>App1</Application></Mapping>"
              "</TypeApplicationMappings>");
    }

    /// A connection list document with an entry of device type 4 for each name; `ticked` ones are selected.
    static QByteArray ListDocument(const QStringList& names, const QStringList& ticked = {}, int status = 0)
    {
        QString document = QStringLiteral("<ConnectionEntries>");
        for (const QString& name : names) {
            document += QStringLiteral("<Connection><ConnectionName><![CDATA[") + name +
                        QStringLiteral("]]></ConnectionName><DeviceType>4</DeviceType><ConnectionStatus>%1"
                                       "</ConnectionStatus><Selected>%2</Selected></Connection>")
                            .arg(status)
                            .arg(ticked.contains(name) ? QStringLiteral("true") : QStringLiteral("false"));
        }
        return document.toUtf8() + "</ConnectionEntries>";
    }

    void WriteList(const char* fileName, const char* names, const char* ticked = "") const
    {
        Write(Path(fileName), ListDocument(Words(names), Words(ticked)));
    }

    /// Puts `names` into the stored list.
    void Fill(const char* names, const char* ticked = "") { Fill(Words(names), Words(ticked)); }
    void Fill(const QStringList& names, const QStringList& ticked = {})
    {
        const QString fileName = Path("fill.xml");
        Write(fileName, ListDocument(names, ticked));
        const auto added = Run({QStringLiteral("add"), QStringLiteral("--data"), Data(), fileName});
        QCOMPARE(added.error, QString());
        QCOMPARE(added.exitCode, 0);
    }

    struct Result
    {
        QString program;
        int exitCode = -1;
        QString output;
        QString error;

        QStringList OutputLines() const { return output.split(QLatin1Char('\n'), Qt::SkipEmptyParts); }
        QStringList ErrorLines() const { return error.split(QLatin1Char('\n'), Qt::SkipEmptyParts); }
    };

    /// Runs a command of vexelctl with this configuration until it ends by itself.
    Result Run(const char* arguments) { return Run(Words(arguments)); }
    Result Run(const QStringList& arguments)
    {
        QProcess process;
        Start(process, arguments);
        return End(process);
    }
    void Start(QProcess& process, const char* arguments) { Start(process, Words(arguments)); }
    void Start(QProcess& process, QStringList arguments)
    {
        // Options come after the command.
        arguments.insert(arguments.isEmpty() ? 0 : 1, QStringLiteral("--config"));
        arguments.insert(arguments.size() == 1 ? 1 : 2, Config());
        StartProgram(process, QStringLiteral(VEXELCTL), arguments);
    }

    /// Runs the host likewise, and starts it.
    Result RunHost(const char* arguments) { return RunHost(Words(arguments)); }
    Result RunHost(const QStringList& arguments)
    {
        QProcess process;
        StartHost(process, arguments);
        return End(process);
    }
    void StartHost(QProcess& process, const char* arguments) { StartHost(process, Words(arguments)); }
    void StartHost(QProcess& process, const QStringList& arguments)
    {
        StartProgram(process, QStringLiteral(VEXELHOST), QStringList{QStringLiteral("--config"), Config()} + arguments);
    }

    /// Starts a host that shows its dialog off screen, and waits until the plug-in is complete. Returns its traces.
    QByteArray StartDialog(QProcess& process)
    {
        m_environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        StartHost(process, "--data data --trace");
        QByteArray said;
        [&] {
            QTRY_VERIFY((said += process.readAllStandardError()).contains("TCPServer()"));
        }();
        return said;
    }

    /// Waits for the end of `process`, which was started here.
    static Result End(QProcess& process)
    {
        Result result;
        result.program = QFileInfo(process.program()).completeBaseName();
        // A crash, a failed start, and a process that runs on have no exit code.
        const bool hasEnded = WaitForEnd(process);
        if (hasEnded && process.exitStatus() == QProcess::NormalExit)
            result.exitCode = process.exitCode();
        if (!hasEnded)
            qWarning("%s: %s", qPrintable(result.program), qPrintable(process.errorString()));
        result.output = QString::fromUtf8(process.readAllStandardOutput());
        result.error = QString::fromUtf8(process.readAllStandardError());
        return result;
    }

    /// The entries, of a running host or stored.
    QJsonArray Entries()
    {
        const Result result = Run("list --json");
        // Without this a list that cannot be read looks empty.
        [&] {
            QVERIFY2(result.exitCode == 0,
                     qPrintable(QStringLiteral("exit code %1: %2").arg(result.exitCode).arg(result.error)));
        }();
        return QJsonDocument::fromJson(result.output.toUtf8()).object().value(QLatin1String("connections")).toArray();
    }

    QStringList Names()
    {
        QStringList names;
        for (const QJsonValue& entry : Entries())
            names.append(entry.toObject().value(QLatin1String("name")).toString());
        return names;
    }

    QStringList TickedNames()
    {
        QStringList names;
        for (const QJsonValue& entry : Entries())
            if (entry.toObject().value(QLatin1String("selected")).toBool())
                names.append(entry.toObject().value(QLatin1String("name")).toString());
        return names;
    }

    /// Every file of the configuration in one text.
    QByteArray StoredText() const
    {
        QByteArray text;
        QDirIterator files(Config(), QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            QFile file(files.next());
            if (file.open(QIODevice::ReadOnly))
                text += file.readAll();
        }
        return text;
    }

private:
    /// The current directory is the one that `Path` names files in.
    void StartProgram(QProcess& process, const QString& program, const QStringList& arguments)
    {
        process.setProcessEnvironment(m_environment);
        process.setWorkingDirectory(m_directory.path());
        process.start(program, arguments);
    }

    QTemporaryDir m_directory;
    QTemporaryDir m_runtime;
    QProcessEnvironment m_environment;
    bool m_hasDisplay = false;
};
