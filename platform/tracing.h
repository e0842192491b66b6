#pragma once

#include "platform/errorhandler.h"

/// Traces what `buildText` returns, from `line` of `sourceFile`. The text is built only when traces are wanted.
template <typename BuildText>
void TraceWhenWanted(const char* sourceFile, int line, BuildText buildText)
{
    if (ErrorHandler::Instance().EnabledKinds() & ErrorHandler::Trace)
        _Q_Trace(buildText(), sourceFile, static_cast<quint16>(line));
}
