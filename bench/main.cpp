#include "api/library.h"
#include "figures.h"

#include <benchmark/benchmark.h>

int main(int count, char** arguments)
{
    tesmor::setUpLibrary(nullptr);
    benchmark::Initialize(&count, arguments);
    if (benchmark::ReportUnrecognizedArguments(count, arguments))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    tesmor::bench::printFigures();
    return 0;
}
