// A timed grid load of the 708,000-object database in three modes: turbo (speed1, the database
// speed), every computed column but the best time, and every computed column with it. Prints
// rows per second, wall seconds and the resident memory the loaded grid holds.
// Budgets on a 2-core machine: the second mode in at most 2 times the first and under 2 s; the
// third under 8 s; the loaded grid under 300 MB resident.
//
// grid_bench [--dump PREFIX] [--only MODE] [DATABASE]
// Without DATABASE the scale database is made once by make-scale-db (beside this program) in
// the temporary folder. --dump writes each mode's grid, header and rows, to PREFIX.<mode>.txt,
// so that two builds can be compared byte for byte.

#include "data/Database.h"
#include "services/Fault.h"
#include "services/ScriptedUiPort.h"
#include "spread/ComputedColumns.h"
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
#include <sstream>
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

astro::ObservingClock ClockOf(const data::Preferences& p)
{
    astro::ObservingClock c;
    c.UseRealTime = p.UseRealTime;
    c.PDate = p.PDate;
    c.Ptime = p.Ptime;
    c.Plat = p.Plat;
    c.Plon = p.PLon;
    c.PTz = p.PTz;
    c.PStd = p.PStd;
    c.timesAMPM = p.timesAMPM;
    return c;
}

struct Fatal
{
};

class ThrowingFaults : public astro::FaultSink
{
public:
    void ReportFault(std::string_view, std::string_view) override {}
    void EndProcess(int) override { throw Fatal{}; }
};

// The records whose computed columns end the process: with every column on, an object on the
// meridian at one of the best-time samples can take the arcsine's argument past 1 by rounding,
// which ends the program as it always has. The load in that mode leaves them out, so that it
// can be timed; the list is kept beside the database.
std::vector<long long> FaultingRecords(data::Database& db, const std::string& database,
                                       const data::Preferences& prefs)
{
    std::vector<long long> ids;
    const std::string cache = database + ".faulting";
    if (std::ifstream in(cache); in) {
        for (long long id = 0; in >> id;)
            ids.push_back(id);
        return ids;
    }
    std::cout << "Looking for the records whose computed columns end the process ..." << std::endl;
    spread::RowOptions options;
    options.Palt = prefs.Palt == "Y";
    options.Prise = prefs.Prise == "Y";
    options.optimum = prefs.optimum;
    options.ShowCharts = prefs.ShowCharts;
    options.PInterval = prefs.PInterval;
    spread::SetPrecessionDate(options, prefs.PPre, services::vb::Regional{});
    const astro::ObservingClock clock = ClockOf(prefs);
    const astro::SystemClock computer;
    data::Recordset rs = db.OpenRecordset("Select ID, RAhours, RAminutes, DeclinationDegrees, "
                                          "DeclinationMinutes, EPOCH From SelvaneTable",
                                          data::Snapshot);
    auto number = [](data::Field f) {
        return f.IsNull() ? spread::NumberField{} : spread::NumberField::Of(f.Double());
    };
    ThrowingFaults faults;
    for (; !rs.Eof(); rs.MoveNext()) {
        spread::ObjectRecord record;
        record.RAhours = number(rs.Fields("RAhours"));
        record.RAminutes = number(rs.Fields("RAminutes"));
        record.DeclinationDegrees = number(rs.Fields("DeclinationDegrees"));
        record.DeclinationMinutes = number(rs.Fields("DeclinationMinutes"));
        const spread::NumberField epoch = number(rs.Fields("EPOCH"));
        spread::Position position;
        if (!spread::StoredPosition(record, position))
            continue;
        spread::ComputedColumns computed;
        try {
            spread::ComputeColumns(options, clock, computer, epoch.null ? 2000.0 : epoch.value,
                                   position, computed, faults);
        } catch (const Fatal&) {
            ids.push_back(rs.Fields("ID").Long());
        }
    }
    std::ofstream out(cache);
    for (long long id : ids)
        out << id << "\n";
    return ids;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    std::string dumpPrefix;
    std::string only;
    std::string database;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--dump" && i + 1 < argc)
            dumpPrefix = argv[++i];
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

    auto base = [](data::Preferences& p) {
        p = data::Preferences{};
        p.PDate = "03/15/2024";
        p.Ptime = "22:00";
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
        if (TMM.prefs.optimum) {
            const std::vector<long long> ids = FaultingRecords(*TMM.objectDb, database, TMM.prefs);
            if (!ids.empty()) {
                std::ostringstream sql;
                sql << TMM.SQL << " Where ID Not In (";
                for (std::size_t i = 0; i < ids.size(); ++i)
                    sql << (i ? "," : "") << ids[i];
                sql << ")";
                TMM.SQL = sql.str();
                std::printf("(%zu records left out: the arcsine fault of the best-time search)\n",
                            ids.size());
            }
        }
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
