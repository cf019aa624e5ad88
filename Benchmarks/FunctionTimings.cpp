// What single functions cost in time, with Google Benchmark: the rows of FunctionRows.cpp. Its options are those of
// Google Benchmark, such as --benchmark_filter=REGEX.
#include "Benchmarks/FunctionRows.h"

#include <benchmark/benchmark.h>

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    for (const Orvik::Benchmarks::FunctionRow& row : Orvik::Benchmarks::MakeFunctionRows())
    {
        benchmark::RegisterBenchmark(row.name.c_str(),
                                     [prepare = row.prepare](benchmark::State& state)
                                     {
                                         const auto work = prepare();
                                         for ([[maybe_unused]] const auto step : state)
                                             work();
                                     })
            ->Unit(benchmark::kMicrosecond);
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
