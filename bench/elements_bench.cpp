// A timed import of a full-size MPCORB.DAT (1,450,000 minor planets by default, a header and
// its dashed line, numbered bodies then unnumbered ones) into an empty AstComet.mdb, then the
// same file again (every row replaced), and the reader alone.
// Prints wall and CPU seconds of each and the peak memory. Budget on a 2-core machine: a fresh
// import under 30 s.
//
// elements_bench [LINES]

#include "data/MinorBodies.h"

#include "data/Database.h"
#include "data/Schema.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <sys/resource.h>

#include <chrono>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <string>

namespace {

double CpuSeconds()
{
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9;
}

double PeakMegabytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

// A line of MPCORB.DAT for body n: numbered up to numbered, then provisional designations.
std::string Line(long n, long numbered)
{
    const std::string readable = n <= numbered
                                     ? "(" + std::to_string(n) + ") Body " + std::to_string(n)
                                     : "20" + std::to_string(10 + n % 15) + " A" +
                                           static_cast<char>('A' + n % 25) + std::to_string(n);
    char line[400];
    std::snprintf(line, sizeof line,
                  "%07ld %5.2f  0.15 K2555 %9.5f  %9.5f  %9.5f  %9.5f  %9.7f  %10.8f   %9.7f  0 "
                  "E2024-V47  7330 125 1801-2024 0.80 M-v 30k MPCLINUX   4000 %-28s20241101",
                  n % 10000000, 10 + static_cast<double>(n % 900) / 100,
                  static_cast<double>(n % 360), static_cast<double>(n * 7 % 360),
                  static_cast<double>(n * 13 % 360), static_cast<double>(n % 30),
                  static_cast<double>(n % 50) / 100, 0.2, 2 + static_cast<double>(n % 100) / 100,
                  readable.substr(0, 28).c_str());
    return line;
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    const long lines = argc > 1 ? std::atol(argv[1]) : 1450000;
    QTemporaryDir temp;
    const std::filesystem::path dir = temp.path().toStdString();
    const auto file = dir / "MPCORB.DAT";
    {
        std::ofstream out(file, std::ios::binary);
        out << "MINOR PLANET CENTER ORBIT DATABASE (MPCORB)\n\n" << std::string(202, '-') << "\n";
        for (long n = 1; n <= lines; ++n)
            out << Line(n, lines * 6 / 10) << (n == lines * 6 / 10 ? "\n\n" : "\n");
    }
    const auto astComet = dir / data::AstCometFileName;
    {
        data::OpenOptions options;
        options.create = true;
        auto db = data::Database::Open(astComet, options);
        data::CreateSchema(db->Handle(), data::SchemaKind::AstComet);
    }

    const auto time = [](const char* what, const auto& body) {
        const auto start = std::chrono::steady_clock::now();
        const double cpu = CpuSeconds();
        const std::string counts = body();
        const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;
        std::printf("%-8s %s  %.3f s wall  %.3f s CPU\n", what, counts.c_str(), wall.count(),
                    CpuSeconds() - cpu);
    };
    const auto import = [&] {
        const data::ImportResult r =
            data::ImportElements(astComet, data::MinorBodyKind::Asteroid, file);
        if (!r.refusal.empty())
            return r.refusal;
        return std::to_string(r.lines) + " lines, " + std::to_string(r.added) + " added, " +
               std::to_string(r.replaced) + " replaced";
    };
    time("read", [&] {
        std::ifstream in(file, std::ios::binary);
        std::string text(std::filesystem::file_size(file), '\0');
        in.read(text.data(), static_cast<std::streamsize>(text.size()));
        const data::AsteroidFile f = data::ReadMpcorb(text, "MPCORB.DAT");
        return f.refusal.empty() ? std::to_string(f.rows.size()) + " rows" : f.refusal;
    });
    time("import", import);
    time("again", import);
    std::printf("file     %.1f MB, database %.1f MB, peak memory %.0f MB\n",
                static_cast<double>(std::filesystem::file_size(file)) / 1e6,
                static_cast<double>(std::filesystem::file_size(astComet)) / 1e6, PeakMegabytes());
    return 0;
}
