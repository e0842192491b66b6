#pragma once

#include "platform/errorhandler.h"

/// Reports a trace line if traces are wanted.
///
/// `message` is called for the text only then, so a place that reports costs one comparison while traces are off.
/// `sourceFile` is the path that the product gives the reporting place, `line` its line: the number that is fixed for
/// it where there is one, else `__LINE__`.
template <typename Message>
void Trace(const char* sourceFile, int line, Message&& message)
{
    if (ErrorHandler::Instance().EnabledKinds() & ErrorHandler::Trace)
        _Q_Trace(message(), sourceFile, static_cast<quint16>(line));
}

/// The former name of `Trace`.
template <typename Message>
void TraceWhenWanted(const char* sourceFile, int line, Message&& message)
{
    Trace(sourceFile, line, message);
}
