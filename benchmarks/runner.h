// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <benchmark/benchmark.h>

#include <array>
#include <functional>
#include <span>
#include <string>

/// Shared by all benchmarks: list lengths, registration and timing.
namespace Runner {

/// The default list lengths, in entries.
inline constexpr std::array Lengths{100, 1'000, 10'000, 100'000};

/// A benchmark with `entries` entries. It reports its times with `SetIterationTime`.
using Measurement = std::function<void(benchmark::State& state, int entries)>;

/// Registers `measurement` as "subject/what/entries" for each of `lengths`. The subject is "product" or the name of the
/// floor that the product is compared with; both have the same `what`. It runs as often as it takes for a good figure,
/// or `iterations` times.
void Enter(const std::string& what, const std::string& subject, const Measurement& measurement,
           std::span<const int> lengths = Lengths, benchmark::IterationCount iterations = 0);

/// Runs `operation` and returns the seconds it takes, without any work that it defers.
double Seconds(const std::function<void()>& operation);

/// Runs the registered benchmarks with the benchmark library's command line. Needs a QApplication. Returns the exit
/// code.
int Run(int argc, char* argv[]);

} // namespace Runner
