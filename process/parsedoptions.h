#pragma once

#include <QString>

/// The outcome of reading a command line into `Options`.
template <typename Options>
struct ParsedOptions
{
    enum class Outcome {
        Run,   ///< do what `options` says
        Print, ///< print `text` (help or version); nothing else
        Wrong, ///< the command line is wrong; `text` says in one line how
    };

    Outcome outcome = Outcome::Wrong;
    QString text;
    Options options;
};
