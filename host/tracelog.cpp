#include "host/tracelog.h"

#include "host/console.h"
#include "host/textline.h"
#include "platform/standardstreams.h"

#include <QDateTime>
#include <QMutexLocker>

TraceLog::~TraceLog()
{
    if (!m_Started)
        return;
    ErrorHandler::Instance().SetEnabledKinds(m_EarlierKinds);
    ErrorHandler::Instance().SetSink({});
}

QString TraceLog::Start(bool toStandardError, const QString& fileName, qint64 largestFile)
{
    if (!toStandardError && fileName.isEmpty())
        return {};

    if (!fileName.isEmpty()) {
        if (const QString error = m_File.Open(fileName, largestFile); !error.isEmpty())
            return error;
        m_FileName = fileName;
    }
    m_ToStandardError = toStandardError;
    m_Started = true;

    ErrorHandler& handler = ErrorHandler::Instance();
    m_EarlierKinds = handler.EnabledKinds();
    handler.SetSink([this](ErrorHandler::Kind kind, const QString& message, const QString& sourceFile, quint16 line) {
        Write(Line(QDateTime::currentDateTime(), kind, message, sourceFile, line));
    });
    handler.SetEnabledKinds(m_EarlierKinds | ErrorHandler::Trace);
    return {};
}

QString TraceLog::Line(const QDateTime& time, ErrorHandler::Kind kind, const QString& message,
                       const QString& sourceFile, quint16 line)
{
    const QString kindName = kind == ErrorHandler::Assertion ? QStringLiteral("assertion") : QStringLiteral("trace");
    // Not through a chain of arg(): a message may hold "%1" itself.
    return time.toString(Qt::ISODateWithMs) + QLatin1Char(' ') + kindName + QLatin1Char(' ') + OneLine(sourceFile) +
           QLatin1Char(':') + QString::number(line) + QLatin1Char(' ') + OneLine(message);
}

void TraceLog::Write(const QString& line)
{
    const QByteArray bytes = line.toUtf8() + '\n';
    const QMutexLocker locker(&m_Mutex);
    if (m_ToStandardError) {
        StandardStreams::Write(StandardStreams::Stream::Error, bytes);
    }
    if (!m_File.IsOpen())
        return;
    if (const QString trouble = m_File.Append(bytes); !trouble.isEmpty())
        Console::Complain(QStringLiteral("the trace file %1 %2").arg(m_FileName, trouble));
}
