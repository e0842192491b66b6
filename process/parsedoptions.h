// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QString>

/// The outcome of reading a command line into `Options`.
template <typename Options>
struct ParsedOptions
{
    enum class Outcome {
        Run,     ///< do what `options` says
        Print,   ///< print `text` (help or version); nothing else
        Invalid, ///< the command line is invalid; `text` says why, in one line
    };

    Outcome outcome = Outcome::Invalid;
    QString text;
    Options options;
};
