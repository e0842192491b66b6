// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "benchmarks/runner.h"

#include <QElapsedTimer>
#include <QLoggingCategory>

namespace Runner {

void Enter(const std::string& what, const std::string& subject, const Measurement& measurement,
           std::span<const int> lengths, benchmark::IterationCount iterations)
{
    for (const int entries : lengths) {
        const std::string name = subject + '/' + what + '/' + std::to_string(entries);
        auto* const entered = benchmark::RegisterBenchmark(name.c_str(), measurement, entries)
                                  ->UseManualTime()
                                  ->Unit(benchmark::kMillisecond);
        if (iterations > 0)
            entered->Iterations(iterations);
    }
}

double Seconds(const std::function<void()>& operation)
{
    QElapsedTimer timer;
    timer.start();
    operation();
    return static_cast<double>(timer.nsecsElapsed()) / 1e9;
}

int Run(int argc, char* argv[])
{
    QLoggingCategory::setFilterRules(QStringLiteral("*.warning=false"));
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    benchmark::AddCustomContext("Qt", qVersion());
    benchmark::AddCustomContext("compiler", __VERSION__);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

} // namespace Runner
