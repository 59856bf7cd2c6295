// One comet's ephemeris of 10,000 steps, as the comet window and selvane-cli ephem run it: the
// Earth's series summed once a step (the Sun is not recomputed for the light time) and the
// orbit solved twice. Budget: 10,000 steps under 0.5 s.

#include "astro/Orbits.h"

#include "bench/BenchFaults.h"

#include <benchmark/benchmark.h>

namespace {

struct NoBoxes : astro::MessageBoxSink
{
    void ShowMessageBox(std::string_view) override {}
};

void BM_Ephemeris10000Steps(benchmark::State& state, double e)
{
    astro::EphemInput in;
    in.kind = "C";
    in.elementDate = "20240421022400.00";
    in.q = 0.78;
    in.e = e;
    in.i = 74.19;
    in.Node = 255.86;
    in.peri = 198.99;
    in.cometH = 5;
    in.cometK = 8;
    in.start = "20230101";
    in.steps = 10000;
    in.step = 0.1;
    bench::CountingFaults faults;
    NoBoxes boxes;
    for (auto _ : state) {
        double sum = 0;
        astro::EPHEM(in, SELVANE_SHIPPED_RESOURCES, faults, boxes,
                     [&](const astro::EphemStep& s) { sum += s.ra; });
        benchmark::DoNotOptimize(sum);
    }
    if (faults.reports)
        state.SkipWithError("a routine reported a fault");
}

BENCHMARK_CAPTURE(BM_Ephemeris10000Steps, ellipse, 0.9955)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Ephemeris10000Steps, parabola, 1.0)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Ephemeris10000Steps, hyperbola, 1.002)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
