// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "host/output/rotatingfile.h"
#include "platform/errorhandler.h"

#include <QMutex>
#include <QString>

/// Writes the product's traces and assertions as lines to standard error, a file, or both, during its lifetime:
///
///     2024-05-17T09:30:12.345 trace userinterface/vexelconnectdlg/appcounter:120 AppCounter::...
///
/// The file is rotated (see `RotatingFile`). If it cannot be rotated or written, an error is printed once.
///
/// While active, traces are enabled in addition to the kinds that already were.
class TraceLog
{
public:
    /// In bytes.
    static constexpr qint64 kMaxFileSize = qint64{10} * 1024 * 1024;

    TraceLog() = default;
    /// Restores the sink and the enabled kinds.
    ~TraceLog();

    TraceLog(const TraceLog&) = delete;
    TraceLog& operator=(const TraceLog&) = delete;

    /// Starts logging; call until it succeeds. Lines are appended to `fileName` (empty: no file), which is rotated at
    /// `maxFileSize` bytes. Returns the error, in which case nothing has changed; empty on success.
    QString Start(bool toStandardError, const QString& fileName, qint64 maxFileSize = kMaxFileSize);

    /// Formats one report as a line without a line break.
    static QString Line(const QDateTime& time, ErrorHandler::Kind kind, const QString& message,
                        const QString& sourceFile, quint16 line);

private:
    void Write(const QString& line);

    QMutex m_mutex; // reports may come from any thread
    RotatingFile m_file;
    QString m_fileName;
    bool m_toStandardError = false;
    bool m_started = false;
    unsigned m_previousKinds = 0;
};
