// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "tests/support/system/system.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QList>
#include <QStringList>
#include <QTemporaryDir>
#include <QTest>

/// A folder with the reports of started fake hosts. The destructor ends the hosts that still run.
class FakeHostRun
{
public:
    ~FakeHostRun() { End(); }

    static QString Program() { return kProgram; }
    QStringList Arguments(const QString& mode, quint16 port, const QStringList& more = {}) const
    {
        return QStringList{mode, QString::number(port), File()} + more;
    }
    QString Path(const char* name) const { return m_directory.filePath(QString::fromLatin1(name)); }
    QString File() const { return Path("starts"); }

    /// One for each host that was started.
    QList<QJsonObject> Starts() const
    {
        QFile file(File());
        QList<QJsonObject> starts;
        if (file.open(QIODevice::ReadOnly)) {
            for (const QByteArray& line : file.readAll().split('\n'))
                if (!line.isEmpty())
                    starts.append(QJsonDocument::fromJson(line).object());
        }
        return starts;
    }

    /// Asks all of them to end.
    void End() const
    {
        QFile end(File() + QStringLiteral(".end"));
        if (!end.open(QIODevice::WriteOnly))
            qFatal("Hosts cannot be asked to end");
        // They look for the file, which goes with the folder.
        for (const QJsonObject& start : Starts()) {
            const int process = start.value(QLatin1String("process")).toInt();
            (void)QTest::qWaitFor([&] { return System::ProgramOf(process) != Program(); }, 10'000);
        }
    }

private:
    // With its drive, so that it is found from everywhere.
    inline static const QString kProgram = QDir().absoluteFilePath(QStringLiteral(VEXEL_FAKEHOST));
    QTemporaryDir m_directory;
};
