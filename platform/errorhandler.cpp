// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/errorhandler.h"

#include <QDebug>
#include <QLoggingCategory>
#include <QMessageLogger>
#include <QMutex>
#include <QMutexLocker>

#include <atomic>
#include <utility>

namespace {

Q_LOGGING_CATEGORY(lcTrace, "vexel.trace")
Q_LOGGING_CATEGORY(lcAssertion, "vexel.assertion")

void LogReport(ErrorHandler::Kind kind, const QString& message, const QString& sourceFile, quint16 line)
{
    const QByteArray file = sourceFile.toUtf8();
    const QMessageLogger logger(file.constData(), line, nullptr);

    // Streamed, because a message is not a format string; nospace(), to keep a trailing space of the message.
    if (kind == ErrorHandler::Assertion)
        logger.warning(lcAssertion()).noquote().nospace() << message;
    else
        logger.info(lcTrace()).noquote().nospace() << message;
}

} // namespace

struct ErrorHandler::Private
{
    std::atomic<unsigned> enabledKinds{Assertion};
    QMutex mutex; // guards the sink
    Sink sink;
};

ErrorHandler::ErrorHandler()
    : d(new Private)
{
}

ErrorHandler::~ErrorHandler()
{
    delete d;
}

ErrorHandler& ErrorHandler::Instance()
{
    // Never destroyed, because other static objects may still report from their destructors.
    static auto* const handler = new ErrorHandler;
    return *handler;
}

unsigned ErrorHandler::EnabledKinds() const
{
    return d->enabledKinds.load(std::memory_order_relaxed);
}

void ErrorHandler::SetEnabledKinds(unsigned mask)
{
    d->enabledKinds.store(mask, std::memory_order_relaxed);
}

void ErrorHandler::SetSink(Sink sink)
{
    // Swapped, so that the old sink is destroyed after the mutex is unlocked: its destructor may report as well.
    const QMutexLocker locker(&d->mutex);
    d->sink.swap(sink);
}

void ErrorHandler::Report(Kind kind, const QString& message, const QString& sourceFile, quint16 line)
{
    Sink sink;
    {
        const QMutexLocker locker(&d->mutex);
        sink = d->sink;
    }
    // Not under the mutex: a sink may itself report or set another sink.
    if (sink)
        sink(kind, message, sourceFile, line);
    else
        LogReport(kind, message, sourceFile, line);
}

void _Q_Trace(const QString& message, const char* sourceFile, quint16 line)
{
    ErrorHandler::Instance().Report(ErrorHandler::Trace, message, QString::fromUtf8(sourceFile), line);
}

void _Q_assert(const char* expression, const char* sourceFile, quint16 line)
{
    ErrorHandler::Instance().Report(ErrorHandler::Assertion, QString::fromUtf8(expression),
                                    QString::fromUtf8(sourceFile), line);
}
