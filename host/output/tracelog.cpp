// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/output/tracelog.h"

#include "host/output/console.h"
#include "process/standardstreams.h"
#include "process/textline.h"

#include <QDateTime>
#include <QMutexLocker>

TraceLog::~TraceLog()
{
    if (!m_started)
        return;
    ErrorHandler::Instance().SetEnabledKinds(m_previousKinds);
    ErrorHandler::Instance().SetSink({});
}

QString TraceLog::Start(bool toStandardError, const QString& fileName, qint64 maxFileSize)
{
    if (!toStandardError && fileName.isEmpty())
        return {};

    if (!fileName.isEmpty()) {
        if (const QString error = m_file.Open(fileName, maxFileSize); !error.isEmpty())
            return error;
        m_fileName = fileName;
    }
    m_toStandardError = toStandardError;
    m_started = true;

    ErrorHandler& handler = ErrorHandler::Instance();
    m_previousKinds = handler.EnabledKinds();
    handler.SetSink([this](ErrorHandler::Kind kind, const QString& message, const QString& sourceFile, quint16 line) {
        Write(Line(QDateTime::currentDateTime(), kind, message, sourceFile, line));
    });
    handler.SetEnabledKinds(m_previousKinds | ErrorHandler::Trace);
    return {};
}

QString TraceLog::Line(const QDateTime& time, ErrorHandler::Kind kind, const QString& message,
                       const QString& sourceFile, quint16 line)
{
    const QString kindName = kind == ErrorHandler::Assertion ? QStringLiteral("assertion") : QStringLiteral("trace");
    // Not with chained arg(): a message may contain "%1".
    return time.toString(Qt::ISODateWithMs) + QLatin1Char(' ') + kindName + QLatin1Char(' ') + OneLine(sourceFile) +
           QLatin1Char(':') + QString::number(line) + QLatin1Char(' ') + OneLine(message);
}

void TraceLog::Write(const QString& line)
{
    const QByteArray bytes = line.toUtf8() + '\n';
    const QMutexLocker locker(&m_mutex);
    if (m_toStandardError)
        StandardStreams::Write(StandardStreams::Stream::Error, bytes);
    if (!m_file.IsOpen())
        return;
    if (const QString problem = m_file.Append(bytes); !problem.isEmpty())
        Console::PrintError(QStringLiteral("the trace file %1 %2").arg(m_fileName, problem));
}
