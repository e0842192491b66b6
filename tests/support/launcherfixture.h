// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "platform/cfgcenter.h"
#include "platform/icfg.h"
#include "tests/support/files.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <utility>

/// The program that the tests start, and the reports of the started processes; see testchild.cpp. One object at a time,
/// because the children read their behaviour from the environment.
class TestChild
{
public:
    struct Report
    {
        qint64 pid = 0;
        QString program;
        QStringList arguments;
        QString directory;
        QStringList inherited; // besides the standard streams
        QString stdinTarget;
        QString stdoutTarget;
        QString stderrTarget;
    };

    TestChild()
    {
        qputenv("VEXEL_TESTCHILD_REPORTS", QFile::encodeName(m_reports.path()));
        Behave("exit");
    }
    ~TestChild()
    {
        qunsetenv("VEXEL_TESTCHILD_REPORTS");
        qunsetenv("VEXEL_TESTCHILD_MODE");
        qunsetenv("VEXEL_TESTCHILD_NUMBER");
    }
    TestChild(const TestChild&) = delete;
    TestChild& operator=(const TestChild&) = delete;

    static QString Program() { return kProgram; }

    /// Behaviour of children that are started from now on: "exit" with the code `number`, "crash", "stay" until they
    /// are killed, "polite": exit on request, "stubborn": ignore the request, "print" `number` bytes before they
    /// report, or "print-forever".
    void Behave(const char* mode, int number = 0)
    {
        qputenv("VEXEL_TESTCHILD_MODE", mode);
        qputenv("VEXEL_TESTCHILD_NUMBER", QByteArray::number(number));
    }

    /// The reports of the children started so far, in no particular order.
    QList<Report> Reports() const
    {
        QList<Report> reports;
        const QFileInfoList files = QDir(m_reports.path()).entryInfoList({QStringLiteral("*.json")}, QDir::Files);
        for (const QFileInfo& info : files) {
            QFile file(info.filePath());
            if (!file.open(QIODevice::ReadOnly))
                continue;
            const QJsonObject object = QJsonDocument::fromJson(file.readAll()).object();
            Report report;
            report.pid = object.value(QStringLiteral("pid")).toInteger();
            report.program = object.value(QStringLiteral("program")).toString();
            report.arguments = Texts(object.value(QStringLiteral("arguments")));
            report.inherited = Texts(object.value(QStringLiteral("inherited")));
            report.directory = object.value(QStringLiteral("directory")).toString();
            report.stdinTarget = object.value(QStringLiteral("stdin")).toString();
            report.stdoutTarget = object.value(QStringLiteral("stdout")).toString();
            report.stderrTarget = object.value(QStringLiteral("stderr")).toString();
            reports.append(report);
        }
        return reports;
    }
    qsizetype Count() const { return Reports().size(); }
    /// Forgets the reports so far.
    void Clear()
    {
        QDir reports(m_reports.path());
        const QStringList files = reports.entryList(QDir::Files);
        for (const QString& file : files)
            reports.remove(file);
    }

private:
    static QStringList Texts(const QJsonValue& array) { return array.toVariant().toStringList(); }

    // With its drive, so that it is found from any directory.
    inline static const QString kProgram = QDir().absoluteFilePath(QStringLiteral(VEXEL_TESTCHILD));
    QTemporaryDir m_reports;
};

/// An empty data directory, and a configuration in memory that contains its path only.
class DataDirectory
{
public:
    DataDirectory()
    {
        CfgCenter::Close();
        Configure("Administration", "VexelDataDir", m_directory.path());
    }
    ~DataDirectory() { CfgCenter::Close(); }
    DataDirectory(const DataDirectory&) = delete;
    DataDirectory& operator=(const DataDirectory&) = delete;

    static void Configure(const char* document, const char* key, const QString& value)
    {
        CfgCenter::CreateCfg(QLatin1String(document), View::Application, QString())
            ->SetString(QLatin1String(key), value, 0);
    }

    QString Path() const { return m_directory.path(); }
    QString MachineFile() const { return Path(QStringLiteral("CfgVEXEL.xml")); }
    QString MappingFile() const { return Path(QStringLiteral("TypeApplicationMappings.xml")); }
    QString Path(const QString& name) const { return m_directory.path() + QLatin1Char('/') + name; }

    /// Writes both files: `applications`, all started by `program`, each with the device types that it serves.
    bool Install(const QList<std::pair<QString, QList<int>>>& applications, const QString& program) const
    {
        QString machine;
        QString mappings;
        for (const auto& [name, deviceTypes] : applications) {
            machine += Application(name, program);
            for (const int deviceType : deviceTypes)
                mappings += Mapping(deviceType, name);
        }
        return WriteMachine(Machine(machine)) && WriteMappings(Mappings(mappings));
    }
    bool WriteMachine(const QString& document) const { return Write(MachineFile(), document); }
    bool WriteMappings(const QString& document) const { return Write(MappingFile(), document); }

    static bool Write(const QString& path, const QString& content) { return Files::Write(path, content.toUtf8()); }

    /// The machine configuration element of an application that is started by `executable`.
    static QString Application(const QString& name, const QString& executable)
    {
        return QStringLiteral("<%1><Startup><exe>%2</exe></Startup></%1>").arg(name, executable.toHtmlEscaped());
    }
    static QString Machine(const QString& applications)
    {
        return QStringLiteral("<Configuration><Machine>%1</Machine></Configuration>").arg(applications);
    }
    static QString Mapping(const QString& deviceType, const QString& application)
    {
        return QStringLiteral("<Mapping><DeviceType>%1</DeviceType><Application>%2</Application></Mapping>")
            .arg(deviceType, application.toHtmlEscaped());
    }
    static QString Mapping(int deviceType, const QString& application)
    {
        return Mapping(QString::number(deviceType), application);
    }
    static QString Mappings(const QString& mappings)
    {
        return QStringLiteral("<TypeApplicationMappings>%1</TypeApplicationMappings>").arg(mappings);
    }

private:
    QTemporaryDir m_directory;
};
