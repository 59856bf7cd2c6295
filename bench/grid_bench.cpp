// A timed grid load of the 708,000-object database in three modes: turbo (speed1, the database
// speed), every computed column but the best time, and every computed column with it. Prints
// rows per second, wall seconds and the resident memory the loaded grid holds.
// Budgets on a 2-core machine: the second mode in at most 2 times the first and under 2 s; the
// third under 8 s; the loaded grid under 300 MB resident.
//
// grid_bench [--dump PREFIX] [--only MODE] [--date MM/DD/YYYY] [--time HH:MM] [DATABASE]
// Without DATABASE the scale database is made once by make-scale-db (beside this program) in
// the temporary folder. --dump writes each mode's grid, header and rows, to PREFIX.<mode>.txt,
// so that two builds can be compared byte for byte. --date and --time move the observing
// moment from 03/15/2024 22:00.

#include "data/Database.h"
#include "services/Fault.h"
#include "services/ScriptedUiPort.h"
#include "spread/LoadTheGrid.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QProcess>

#include <malloc.h>

#include <chrono>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <functional>
#include <iostream>
#include <string>
#include <vector>

namespace {

// Resident set size of this process in bytes.
long long ResidentBytes()
{
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.rfind("VmRSS:", 0) == 0)
            return std::stoll(line.substr(6)) * 1024;
    }
    return 0;
}

// CPU seconds of this process, all threads: on a busy machine a steadier figure than the wall.
double CpuSeconds()
{
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9;
}

std::string ScaleDatabase()
{
    const QString path = QDir::temp().filePath("selvane-scale-708000.mdb");
    if (QFileInfo::exists(path))
        return path.toStdString();
    const QString maker = QCoreApplication::applicationDirPath() + "/make-scale-db";
    std::cout << "Making " << path.toStdString() << " ..." << std::endl;
    if (QProcess::execute(maker, {path}) != 0) {
        std::cerr << "grid_bench: make-scale-db failed\n";
        std::exit(1);
    }
    return path.toStdString();
}

struct Mode
{
    const char* name;
    std::function<void(data::Preferences&)> set;
};

void Dump(const spread::Grid& grid, const std::string& file)
{
    std::ofstream out(file, std::ios::binary);
    for (int col = 0; col <= spread::kGridCols; ++col)
        out << grid.Header(col) << (col < spread::kGridCols ? '\t' : '\n');
    for (int row = 1; row <= grid.MaxRows(); ++row)
        out << grid.RowText(row) << '\n';
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    std::string dumpPrefix;
    std::string only;
    std::string database;
    std::string date = "03/15/2024";
    std::string time = "22:00";
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--dump" && i + 1 < argc)
            dumpPrefix = argv[++i];
        else if (arg == "--date" && i + 1 < argc)
            date = argv[++i];
        else if (arg == "--time" && i + 1 < argc)
            time = argv[++i];
        else if (arg == "--only" && i + 1 < argc)
            only = argv[++i];
        else
            database = arg;
    }
    if (database.empty())
        database = ScaleDatabase();

    // Faults and messages of the loads go to stderr.
    services::ScriptedUiPort ui;
    services::SetEndProcessHandler([](int exitCode) {
        std::cerr << "grid_bench: the load ended the process (exit code " << exitCode << ")\n";
        std::exit(exitCode);
    });
    const QString dir = QDir::temp().filePath("selvane-grid-bench");
    QDir().mkpath(dir);
    spread::AppState TMM(ui, data::ProgramDir{dir.toStdString()},
                         data::SettingsStore((dir + "/bench.ini").toStdString()));
    data::OpenOptions readOnly;
    readOnly.readOnly = true;
    TMM.objectDb = data::Database::Open(database, readOnly);

    auto base = [&](data::Preferences& p) {
        p = data::Preferences{};
        p.PDate = date;
        p.Ptime = time;
        p.Plat = 40;
        p.PLon = 90;
        p.PTz = 6;
    };
    const Mode modes[] = {
        {"speed1",
         [&](data::Preferences& p) {
             base(p);
             p.speed1 = true;
         }},
        {"computed",
         [&](data::Preferences& p) {
             base(p);
             p.Palt = "Y";
             p.Prise = "Y";
             p.ShowCharts = true;
             p.PPre = "06/15/2024";
         }},
        {"optimum",
         [&](data::Preferences& p) {
             base(p);
             p.Palt = "Y";
             p.Prise = "Y";
             p.ShowCharts = true;
             p.PPre = "06/15/2024";
             p.optimum = true;
         }},
    };

    std::printf("%-10s %8s %9s %9s %10s %9s %9s\n", "mode", "rows", "seconds", "cpu s", "rows/s",
                "grid MB", "RSS+ MB");
    double speed1Seconds = 0;
    for (const Mode& mode : modes) {
        if (!only.empty() && only != mode.name)
            continue;
        mode.set(TMM.prefs);
        TMM.SQL = "Select * From SelvaneTable";
        spread::Grid grid;
        spread::GridLoad load;
        malloc_trim(0);
        const long long before = ResidentBytes();
        const double cpuStart = CpuSeconds();
        const auto start = std::chrono::steady_clock::now();
        spread::LoadTheGrid(TMM, grid, spread::LoadMode::NoBuild, load, astro::SystemClock());
        const double seconds =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        const double cpu = CpuSeconds() - cpuStart;
        malloc_trim(0);
        const long long grown = ResidentBytes() - before;
        if (speed1Seconds == 0)
            speed1Seconds = seconds;
        std::printf("%-10s %8d %9.3f %9.3f %10.0f %9.1f %9.1f   (%.2fx speed1)\n", mode.name,
                    grid.MaxRows(), seconds, cpu, grid.MaxRows() / seconds,
                    static_cast<double>(grid.MemoryBytes()) / 1e6, static_cast<double>(grown) / 1e6,
                    seconds / speed1Seconds);
        std::fflush(stdout);
        if (!dumpPrefix.empty())
            Dump(grid, dumpPrefix + "." + mode.name + ".txt");
    }
    return 0;
}
