// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "platform/platformexport.h"

#include <QString>

#include <functional>

/// The product's trace and assertion reports: which kinds are enabled, and where they go.
///
/// Callers check `EnabledKinds` first and build a message only if the bit of its kind is set. Thread-safe.
class VEXELPLATFORM_EXPORT ErrorHandler
{
public:
    /// Kinds of report. The values are bits of the mask.
    enum Kind : unsigned { Assertion = 0x02, Trace = 0x20 };

    /// Receives each report with the source file and line that the reporting code names, on the reporting thread. May
    /// itself report or set another sink.
    using Sink = std::function<void(Kind kind, const QString& message, const QString& sourceFile, quint16 line)>;

    ErrorHandler(const ErrorHandler&) = delete;
    ErrorHandler& operator=(const ErrorHandler&) = delete;

    /// Returns the one instance of the process.
    static ErrorHandler& Instance();

    /// Returns the enabled kinds as a bit mask. Default: assertions only.
    unsigned EnabledKinds() const;

    /// Host side: sets the enabled kinds.
    void SetEnabledKinds(unsigned mask);

    /// Host side: sends all further reports to `sink`. An empty sink restores the default: Qt's logging, category
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

/// Reports a trace line. `message` begins with the reporting class and function; `sourceFile` and `line` are their
/// source location. Call only while `ErrorHandler::Trace` is enabled.
VEXELPLATFORM_EXPORT void _Q_Trace(const QString& message, const char* sourceFile, quint16 line);

/// Reports that the condition `expression` is false; execution continues. Call only while `ErrorHandler::Assertion` is
/// enabled.
VEXELPLATFORM_EXPORT void _Q_assert(const char* expression, const char* sourceFile, quint16 line);
