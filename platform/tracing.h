// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "platform/errorhandler.h"

/// Traces the text that `buildText` returns, with `sourceFile` and `line`. Builds it only if traces are enabled.
template <typename BuildText>
void Trace(const char* sourceFile, int line, BuildText&& buildText)
{
    if (ErrorHandler::Instance().EnabledKinds() & ErrorHandler::Trace)
        _Q_Trace(buildText(), sourceFile, static_cast<quint16>(line));
}
