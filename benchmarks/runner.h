#pragma once

#include <benchmark/benchmark.h>

#include <array>
#include <functional>
#include <span>
#include <string>

/// What every measurement shares: the lengths of lists, and how one is entered beside its floor.
namespace Runner {

/// Entries of the lists that everything is measured with.
inline constexpr std::array Lengths{100, 1'000, 10'000, 100'000};

/// A measurement with `entries` entries: times its own operations by `SetIterationTime`.
using Measurement = std::function<void(benchmark::State& state, int entries)>;

/// Enters `measurement` under "subject/what/entries" for each of `lengths`. Subject is "product", or names the floor
/// that the product is compared with; both then have the same `what`.
void Enter(const std::string& what, const std::string& subject, const Measurement& measurement,
           std::span<const int> lengths = Lengths);

/// Seconds that `operation` takes, without anything that it leaves for later.
double Seconds(const std::function<void()>& operation);

/// Runs what was entered, on the command line of the benchmark library. Needs a QApplication. Returns the exit code.
int Run(int argc, char* argv[]);

} // namespace Runner
