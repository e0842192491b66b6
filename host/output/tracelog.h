#pragma once

#include "host/output/rotatingfile.h"
#include "platform/errorhandler.h"

#include <QMutex>
#include <QString>

/// Writes the product's reports as lines to standard error, to a file, or to both, for as long as it lives:
///
///     2024-05-17T09:30:12.345 trace userinterface/vexelconnectdlg/appcounter:120 AppCounter::...
///
/// A file that has grown to its largest size is put aside (see `RotatingFile`); where that fails, or the file cannot be
/// written any more, standard error says so once.
///
/// While it writes anywhere, traces are enabled beside the kinds that already were.
class TraceLog
{
public:
    /// In bytes.
    static constexpr qint64 kLargestFile = qint64{10} * 1024 * 1024;

    TraceLog() = default;
    /// Gives reports and enabled kinds back as they were.
    ~TraceLog();

    TraceLog(const TraceLog&) = delete;
    TraceLog& operator=(const TraceLog&) = delete;

    /// Where lines shall go; call once. Lines are appended to `fileName` (empty: no file), which
    /// grows to `largestFile` bytes. Returns an empty text, or why the file cannot be written; nothing is changed then.
    QString Start(bool toStandardError, const QString& fileName, qint64 largestFile = kLargestFile);

    /// One report as a line, without a line break at its end.
    static QString Line(const QDateTime& time, ErrorHandler::Kind kind, const QString& message,
                        const QString& sourceFile, quint16 line);

private:
    void Write(const QString& line);

    QMutex m_mutex; // reports come from any thread
    RotatingFile m_file;
    QString m_fileName;
    bool m_toStandardError = false;
    bool m_started = false;
    unsigned m_earlierKinds = 0;
};
