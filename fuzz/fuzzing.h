// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "platform/cfgcenter.h"
#include <QByteArray>
#include <QString>
#include <QStringList>

#include <fuzzer/FuzzedDataProvider.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

/// Shared by the fuzzers: reporting findings, and converting input bytes.
namespace Fuzzing {

/// Aborts with a finding; libFuzzer prints the stack and saves the input.
[[noreturn]] inline void Fail(const char* what)
{
    std::fprintf(stderr, "\nfuzz: check failed: %s\n", what);
    std::abort();
}

inline void Require(bool holds, const char* what)
{
    if (!holds)
        Fail(what);
}

/// The trace lines of one input. Traces are enabled, so that their texts are built as well.
inline QStringList& Traces()
{
    static QStringList traces;
    return traces;
}

/// Frees everything that an input has allocated. libFuzzer takes remaining memory for a possible leak, and its leak
/// check takes a hundred times as long as most inputs.
struct Tidy
{
    Tidy() = default;
    Tidy(const Tidy&) = delete;
    Tidy& operator=(const Tidy&) = delete;
    ~Tidy()
    {
        Traces().clear();
        CfgCenter::Close();
    }
};

inline QByteArray ToBytes(const std::uint8_t* data, std::size_t size)
{
    return {reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)};
}

/// The rest of `input`.
inline QByteArray TakeRest(FuzzedDataProvider& input)
{
    const std::string rest = input.ConsumeRemainingBytesAsString();
    return {rest.data(), static_cast<qsizetype>(rest.size())};
}

/// A text from at most `maximum` bytes of input, as UTF-8 or as UTF-16 code units with possibly unpaired surrogates.
inline QString TakeText(FuzzedDataProvider& input, std::size_t maximum)
{
    const bool isUtf8 = input.ConsumeIntegral<std::uint8_t>() % 4 != 0;
    const std::string bytes = input.ConsumeRandomLengthString(maximum);
    if (isUtf8)
        return QString::fromStdString(bytes);
    QString text(static_cast<qsizetype>(bytes.size() / sizeof(QChar)), Qt::Uninitialized);
    if (!text.isEmpty())
        std::memcpy(text.data(), bytes.data(), static_cast<std::size_t>(text.size()) * sizeof(QChar));
    return text;
}

} // namespace Fuzzing
