// Per-object cost of the sky-position routines that every row of an object list runs, and the
// heap allocations they make (counted by this binary's global operator new). Budget: hour
// angle + altitude/azimuth, rise/set and precession together under 1 microsecond per object,
// no allocation in any of them.

#include "astro/Position.h"

#include "bench/BenchFaults.h"

#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <random>
#include <vector>

namespace {

std::atomic<long long> gAllocations{0};

} // namespace

void* operator new(std::size_t size)
{
    gAllocations.fetch_add(1, std::memory_order_relaxed);
    if (void* p = std::malloc(size == 0 ? 1 : size))
        return p;
    throw std::bad_alloc();
}

void operator delete(void* p) noexcept
{
    std::free(p);
}

void operator delete(void* p, std::size_t) noexcept
{
    std::free(p);
}

namespace {

using bench::CountingFaults;

struct Object
{
    astro::Hms ra;
    astro::Dms dec;
};

// A catalogue-like spread of objects over the whole sky.
const std::vector<Object>& Objects()
{
    static const std::vector<Object> objects = [] {
        std::mt19937 rng(7);
        std::uniform_real_distribution<double> ras(0, 24);
        std::uniform_real_distribution<double> sinDecs(-0.99, 0.99);
        std::vector<Object> list;
        for (int i = 0; i < 4096; ++i) {
            const astro::Sexagesimal r = astro::ConvertFromDecimal(ras(rng));
            const astro::Dms d =
                astro::SignPush(astro::ConvertFromDecimal(std::asin(sinDecs(rng)) * 57.2958));
            list.push_back({{r.degrees, r.minutes, r.seconds}, d});
        }
        return list;
    }();
    return objects;
}

astro::ObservingClock Clock()
{
    astro::ObservingClock clock;
    clock.PDate = "03/15/2024";
    clock.Ptime = "22:00";
    return clock;
}

// Runs body once per object and reports time and allocations per object.
template <typename Body> void PerObject(benchmark::State& state, Body body)
{
    const std::vector<Object>& objects = Objects();
    const astro::ObservingClock clock = Clock();
    const astro::FixedClock computer({2024, 3, 15, 22, 0, 0});
    CountingFaults faults;
    std::size_t i = 0;
    const long long before = gAllocations.load();
    for (auto _ : state) {
        body(clock, computer, objects[i], faults);
        i = (i + 1) % objects.size();
    }
    const long long allocations = gAllocations.load() - before;
    state.counters["allocs_per_object"] =
        benchmark::Counter(static_cast<double>(allocations), benchmark::Counter::kAvgIterations);
    state.counters["faults"] = static_cast<double>(faults.reports);
}

void BM_CalcHourAngle_CalcAltAzm(benchmark::State& state)
{
    PerObject(state, [](const auto& clock, const auto& computer, const Object& o, auto& faults) {
        const astro::Hms ha = astro::CalcHourAngle(clock, computer, o.ra, false, faults);
        benchmark::DoNotOptimize(astro::CalcAltAzm(clock, ha, o.dec, faults));
    });
}

void BM_RiseSet(benchmark::State& state)
{
    PerObject(state, [](const auto& clock, const auto& computer, const Object& o, auto& faults) {
        benchmark::DoNotOptimize(astro::RiseSet(clock, computer, o.ra, o.dec, faults));
    });
}

void BM_Precession(benchmark::State& state)
{
    PerObject(state, [](const auto&, const auto&, const Object& o, auto& faults) {
        benchmark::DoNotOptimize(astro::Precession("2024", "3", "15", o.ra, o.dec, 2000, faults));
    });
}

// The three of one row of the list, as the grid loader calls them.
void BM_RowOfTheList(benchmark::State& state)
{
    PerObject(state, [](const auto& clock, const auto& computer, const Object& o, auto& faults) {
        const astro::PrecessedPosition p =
            astro::Precession("2024", "3", "15", o.ra, o.dec, 2000, faults);
        const astro::Hms ha = astro::CalcHourAngle(clock, computer, p.ra, false, faults);
        benchmark::DoNotOptimize(astro::CalcAltAzm(clock, ha, p.dec, faults));
        benchmark::DoNotOptimize(astro::RiseSet(clock, computer, p.ra, p.dec, faults));
    });
}

void BM_FindBestTimeToObserve(benchmark::State& state)
{
    PerObject(state, [](const auto& clock, const auto& computer, const Object& o, auto& faults) {
        benchmark::DoNotOptimize(
            astro::FindBestTimeToObserve(clock, computer, o.ra, o.dec, 10, faults));
    });
}

BENCHMARK(BM_CalcHourAngle_CalcAltAzm);
BENCHMARK(BM_RiseSet);
BENCHMARK(BM_Precession);
BENCHMARK(BM_RowOfTheList);
BENCHMARK(BM_RowOfTheList)->Threads(2);
BENCHMARK(BM_FindBestTimeToObserve);

} // namespace

BENCHMARK_MAIN();
