// SPDX-License-Identifier: GPL-2.0-or-later
#include "figures.h"
#include "loaded_library.h"

#include <benchmark/benchmark.h>
#include <iostream>

// What Google Benchmark tells goes to the standard error stream, the table to the standard output.
int main(int count, char** arguments)
{
    tesmor::bench::loadedSession();
    benchmark::Initialize(&count, arguments);
    if (benchmark::ReportUnrecognizedArguments(count, arguments))
        return 1;
    benchmark::ConsoleReporter reporter;
    reporter.SetOutputStream(&std::cerr);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    tesmor::bench::printFigures();
    return 0;
}
