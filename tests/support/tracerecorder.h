// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "platform/errorhandler.h"

#include <QList>
#include <QMutex>
#include <QMutexLocker>
#include <QString>
#include <QStringList>

/// Records all reports during its lifetime: enables the kinds and replaces the sink. The destructor restores the former
/// mask and the default sink.
///
/// One object at a time. To explain a failing check by the reports, use `QVERIFY2` with
/// `Text().constData()`.
class TraceRecorder
{
public:
    struct Report
    {
        ErrorHandler::Kind kind;
        QString message;
        QString sourceFile;
        quint16 line;
    };

    explicit TraceRecorder(unsigned kinds = ErrorHandler::Trace | ErrorHandler::Assertion)
        : m_uFormerKinds(ErrorHandler::Instance().EnabledKinds())
    {
        ErrorHandler::Instance().SetSink(
            [this](ErrorHandler::Kind kind, const QString& message, const QString& sourceFile, quint16 line) {
                const QMutexLocker locker(&m_mutex);
                m_reports.append({kind, message, sourceFile, line});
            });
        ErrorHandler::Instance().SetEnabledKinds(kinds);
    }

    ~TraceRecorder()
    {
        ErrorHandler::Instance().SetEnabledKinds(m_uFormerKinds);
        ErrorHandler::Instance().SetSink({});
    }

    TraceRecorder(const TraceRecorder&) = delete;
    TraceRecorder& operator=(const TraceRecorder&) = delete;

    /// Every report since construction or `Clear`, oldest first.
    QList<Report> Reports() const
    {
        const QMutexLocker locker(&m_mutex);
        return m_reports;
    }

    /// The messages of `Reports`; with `sourceFile`, only of those that name it as their source.
    QStringList Messages(const QString& sourceFile = QString()) const
    {
        QStringList messages;
        for (const Report& report : Reports())
            if (sourceFile.isNull() || report.sourceFile == sourceFile)
                messages.append(report.message);
        return messages;
    }

    /// How many reports carry exactly this message.
    qsizetype Count(const QString& message) const { return Messages().count(message); }

    void Clear()
    {
        const QMutexLocker locker(&m_mutex);
        m_reports.clear();
    }

    /// All messages, one a line, for a failing check.
    QByteArray Text() const { return Messages().join(QLatin1Char('\n')).toUtf8(); }

private:
    const unsigned m_uFormerKinds;
    mutable QMutex m_mutex;
    QList<Report> m_reports;
};
