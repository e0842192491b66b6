#pragma once

#include "platform/errorhandler.h"

#include <QStringList>

/// Enables traces and records them during its lifetime.
class TraceRecorder
{
public:
    TraceRecorder()
    {
        ErrorHandler::Instance().SetSink(
            [this](ErrorHandler::Kind kind, const QString& message, const QString& sourceFile, quint16 line) {
                if (kind == ErrorHandler::Trace && !sourceFile.isEmpty() && line > 0)
                    m_messages += message;
            });
        ErrorHandler::Instance().SetEnabledKinds(m_mask | ErrorHandler::Trace);
    }
    ~TraceRecorder()
    {
        ErrorHandler::Instance().SetEnabledKinds(m_mask);
        ErrorHandler::Instance().SetSink({});
    }

    TraceRecorder(const TraceRecorder&) = delete;
    TraceRecorder& operator=(const TraceRecorder&) = delete;

    const QStringList& Messages() const { return m_messages; }

private:
    const unsigned m_mask = ErrorHandler::Instance().EnabledKinds();
    QStringList m_messages;
};
