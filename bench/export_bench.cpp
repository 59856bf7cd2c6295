// Timed exports of the shipped object database (154,595 objects): the XML and the text of every
// object, and a workbook and a page of a 25,000-row grid. Prints wall seconds, the file's size
// and the peak resident memory before and after each export: a streamed export leaves the peak
// where it was.
// Budgets on a 2-core machine: the XML under 10 s, the workbook under 5 s.
//
// export_bench [DATABASE]   (default: resources/SelvPro708000.mdb beside this program)

#include "data/Database.h"
#include "services/ScriptedUiPort.h"
#include "spread/GridExport.h"
#include "spread/LoadTheGrid.h"
#include "spread/RecordExport.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <sys/resource.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <string>

namespace {

double PeakMb()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

void Timed(const char* name, const std::filesystem::path& file, const std::function<bool()>& run)
{
    const double before = PeakMb();
    const auto start = std::chrono::steady_clock::now();
    const bool ok = run();
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::error_code error;
    const auto bytes = std::filesystem::file_size(file, error);
    std::printf("%-22s %8.2f s %9.1f MB file  peak RSS %7.1f -> %7.1f MB%s\n", name, seconds,
                error ? 0.0 : static_cast<double>(bytes) / 1e6, before, PeakMb(),
                ok ? "" : "  FAILED");
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    const std::string database =
        argc > 1 ? argv[1]
                 : (QCoreApplication::applicationDirPath() + "/resources/SelvPro708000.mdb")
                       .toStdString();
    QTemporaryDir dir;
    services::ScriptedUiPort ui;
    ui.echo = false;
    spread::AppState TMM(ui, data::ProgramDir{dir.path().toStdString()},
                         data::SettingsStore(dir.filePath("bench.ini").toStdString()));
    data::OpenOptions readOnly;
    readOnly.readOnly = true;
    TMM.objectDb = data::Database::Open(database, readOnly);
    const std::string all = "Select * From SelvaneTable";
    const data::ProgramDir out{dir.path().toStdString()};

    Timed("XML, every object", out.File("all.xml"), [&] {
        return spread::XMLExportObjects(ui, all, out.File("all.xml"), *TMM.objectDb) == 0;
    });
    Timed("text, every object", out.File("all.txt"),
          [&] { return spread::CSVExport(ui, all, out.File("all.txt"), *TMM.objectDb) == 0; });

    // The grid as the spreadsheet holds it after a load with its computed columns.
    TMM.prefs.PDate = "03/15/2024";
    TMM.SQL = "Select * From SelvaneTable Where ID <= 25000";
    spread::GridLoad load;
    spread::LoadTheGrid(TMM, TMM.grids[0], spread::LoadMode::NoBuild, load, astro::SystemClock());
    std::printf("grid: %d rows\n", TMM.grids[0].MaxRows());
    Timed("workbook, 25,000 rows", out.File("grid.xlsx"), [&] {
        spread::WriteGridExcel(TMM.grids[0], out.File("grid.xlsx"), out.File("SVexcel.log"));
        return true;
    });
    Timed("page, 25,000 rows", out.File("grid.htm"), [&] {
        spread::WriteGridHtml(TMM.grids[0], out.File("grid.htm"), out.File("HTMLLog.txt"));
        return true;
    });
    return 0;
}
