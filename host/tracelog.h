#pragma once

#include "platform/errorhandler.h"

#include <QFile>
#include <QMutex>
#include <QString>

/// Writes the product's reports as lines to standard error, to a file, or to both, for as long as it lives:
///
///     2024-05-17T09:30:12.345 trace userinterface/vexelconnectdlg/appcounter:120 AppCounter::...
///
/// While it writes anywhere, traces are enabled beside the kinds that already were.
class TraceLog
{
public:
    TraceLog() = default;
    /// Gives reports and enabled kinds back as they were.
    ~TraceLog();

    TraceLog(const TraceLog&) = delete;
    TraceLog& operator=(const TraceLog&) = delete;

    /// Where lines shall go; call once. Lines are appended to `fileName` (empty: no file). Returns an empty text, or
    /// why the file cannot be written; nothing is changed then.
    QString Start(bool toStandardError, const QString& fileName);

    /// One report as a line, without a line break at its end.
    static QString Line(const QDateTime& time, ErrorHandler::Kind kind, const QString& message,
                        const QString& sourceFile, quint16 line);

private:
    void Write(const QString& line);

    QMutex m_Mutex; // reports come from any thread
    QFile m_File;
    bool m_ToStandardError = false;
    bool m_Started = false;
    unsigned m_EarlierKinds = 0;
};
