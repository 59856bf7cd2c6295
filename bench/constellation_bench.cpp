// Cost of one constellation lookup, both data files read as every call reads them, and of the
// row search alone. Budget: 10,000 lookups of selvane-cli's "constellation -" under 2 s, so a
// lookup well under 200 microseconds. Run from the build tree (bin/resources holds the files).

#include "astro/Constellation.h"

#include "bench/BenchFaults.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

namespace {

using bench::CountingFaults;

struct Position
{
    std::string ra;
    std::string dec;
};

// Random positions, uniform on the sphere, written as "h m s" and "d m s" texts.
const std::vector<Position>& Positions()
{
    static const std::vector<Position> positions = [] {
        std::mt19937 rng(3);
        std::uniform_real_distribution<double> ras(0, 24);
        std::uniform_real_distribution<double> sinDecs(-1, 1);
        std::vector<Position> list;
        char ra[64];
        char dec[64];
        for (int i = 0; i < 1024; ++i) {
            const double r = ras(rng);
            const double d = std::asin(sinDecs(rng)) * 57.29577951308232;
            const double a = std::fabs(d);
            std::snprintf(ra, sizeof ra, "%dh%02dm%05.2fs", static_cast<int>(r),
                          static_cast<int>(r * 60) % 60, std::fmod(r * 3600, 60));
            std::snprintf(dec, sizeof dec, "%s%d %02d %04.1f", d < 0 ? "-" : "+",
                          static_cast<int>(a), static_cast<int>(a * 60) % 60,
                          std::fmod(a * 3600, 60));
            list.push_back({ra, dec});
        }
        return list;
    }();
    return positions;
}

std::filesystem::path ResourceFolder()
{
    return std::filesystem::canonical("/proc/self/exe").parent_path() / "resources";
}

void BM_GetCon(benchmark::State& state)
{
    const std::filesystem::path folder = ResourceFolder();
    CountingFaults faults;
    std::size_t i = 0;
    for (auto _ : state) {
        const Position& p = Positions()[i++ % Positions().size()];
        benchmark::DoNotOptimize(astro::GetCon(p.ra, p.dec, "2000", folder, faults));
    }
    if (faults.reports != 0)
        state.SkipWithError("the lookup faulted: are con9.txt and conbound.txt in bin/resources?");
}

void BM_FindBoundaryRow(benchmark::State& state)
{
    astro::ConstellationTable table;
    CountingFaults faults;
    if (!astro::ReadConstellationTable(ResourceFolder(), table, faults)) {
        state.SkipWithError("con9.txt or conbound.txt missing from bin/resources");
        return;
    }
    std::mt19937 rng(4);
    std::uniform_real_distribution<double> ras(0, 24);
    std::uniform_real_distribution<double> sinDecs(-1, 1);
    std::vector<std::pair<double, double>> points;
    for (int i = 0; i < 1024; ++i)
        points.emplace_back(ras(rng), std::asin(sinDecs(rng)) * 57.29577951308232);
    std::size_t i = 0;
    for (auto _ : state) {
        const auto& [ra, dec] = points[i++ % points.size()];
        benchmark::DoNotOptimize(astro::FindBoundaryRow(table, ra, dec));
    }
}

BENCHMARK(BM_GetCon);
BENCHMARK(BM_FindBoundaryRow);

} // namespace

BENCHMARK_MAIN();
