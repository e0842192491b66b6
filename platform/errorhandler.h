#pragma once

#include "platform/platformexport.h"

#include <QString>

#include <functional>

/// The product's reports: which kinds are wanted, and where they go.
///
/// Every place that reports asks `EnabledKinds` first and builds its text only when its kind's bit is set. Any thread.
class VEXELPLATFORM_EXPORT ErrorHandler
{
public:
    /// Kinds of report; the values are bits of the mask.
    enum Kind : unsigned { Assertion = 0x02, Trace = 0x20 };

    /// Receives each report with the place it speaks of.
    using Sink = std::function<void(Kind kind, const QString& message, const QString& sourceFile, quint16 line)>;

    ErrorHandler(const ErrorHandler&) = delete;
    ErrorHandler& operator=(const ErrorHandler&) = delete;

    static ErrorHandler& Instance();

    /// The wanted kinds as a bit mask. At start: assertions.
    unsigned EnabledKinds() const;

    /// Host side: sets the wanted kinds.
    void SetEnabledKinds(unsigned mask);

    /// Host side: where reports go from now on. An empty sink brings back the default: Qt's logging, category
    /// "vexel.trace" or "vexel.assertion", with message, source file and line as reported.
    void SetSink(Sink sink);

private:
    friend VEXELPLATFORM_EXPORT void _Q_Trace(const QString&, const char*, quint16);
    friend VEXELPLATFORM_EXPORT void _Q_assert(const char*, const char*, quint16);

    ErrorHandler();
    ~ErrorHandler();
    void Report(Kind kind, const QString& message, const QString& sourceFile, quint16 line);

    struct Private;
    Private* const d;
};

/// Reports a trace line. `message` begins with the class and function that speak; `sourceFile` and `line` name the
/// place. Call only while `ErrorHandler::Trace` is enabled.
VEXELPLATFORM_EXPORT void _Q_Trace(const QString& message, const char* sourceFile, quint16 line);

/// Reports that the condition `expression` does not hold; execution goes on. Call only while
/// `ErrorHandler::Assertion` is enabled.
VEXELPLATFORM_EXPORT void _Q_assert(const char* expression, const char* sourceFile, quint16 line);
