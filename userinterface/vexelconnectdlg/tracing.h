#pragma once

#include "platform/errorhandler.h"

/// Reports a trace line if traces are enabled.
///
/// Calls `message` for the text only then, so a trace costs one comparison while traces are off. `sourceFile` is the
/// product's path of the reporting file; `line` is the trace's fixed line number, or else `__LINE__`.
template <typename Message>
void Trace(const char* sourceFile, quint16 line, Message&& message)
{
    if (ErrorHandler::Instance().EnabledKinds() & ErrorHandler::Trace)
        _Q_Trace(message(), sourceFile, line);
}
