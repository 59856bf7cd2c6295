#pragma once
// The fault sink of the benchmarks: faults are counted, a fatal one aborts the run.

#include "astro/FaultSink.h"

#include <cstdio>
#include <cstdlib>

namespace bench {

class CountingFaults : public astro::FaultSink
{
public:
    void ReportFault(std::string_view, std::string_view) override { ++reports; }
    void EndProcess(int) override
    {
        std::fputs("fatal fault in a benchmark\n", stderr);
        std::abort();
    }
    long long reports = 0;
};

} // namespace bench
