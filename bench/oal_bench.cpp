// A timed Open Astronomy Log export of a 20,000-entry logbook (2,000 objects, rich notes, a CCD
// row on every tenth entry, an image on every fifth, four a night), then its import into an
// empty logbook.
// Prints wall and CPU seconds of each. Budget on a 2-core machine: the export under 3 s.
//
// oal_bench [ENTRIES]

#include "data/Schema.h"
#include "logbook/OalExchange.h"
#include "services/ScriptedUiPort.h"

#include <QCoreApplication>
#include <QDate>
#include <QTemporaryDir>

#include <chrono>
#include <cstdio>
#include <ctime>
#include <string>

namespace {

double CpuSeconds()
{
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9;
}

std::unique_ptr<data::Database> Create(const std::filesystem::path& path, data::SchemaKind kind)
{
    data::OpenOptions options;
    options.create = true;
    options.wal = kind == data::SchemaKind::Logbook;
    auto db = data::Database::Open(path, options);
    data::CreateSchema(db->Handle(), kind);
    return db;
}

void Fill(data::Database& objects, data::Database& logbook, int entries)
{
    objects.Execute("Insert Into CatalogLookup (CatalogName, CatalogDescription, ImpCount) Values "
                    "('2000', 'NGC 2000', 2000)");
    sqlite3_exec(objects.Handle(), "BEGIN", nullptr, nullptr, nullptr);
    for (int i = 1; i <= 2000; ++i)
        objects.Execute("Insert Into SelvaneTable (ID, ObjectID, OtherID, ObjectType, RAhours, "
                        "RAminutes, DeclinationDegrees, DeclinationMinutes, constellation, "
                        "Catalog) Values (" +
                        std::to_string(i) + ", 'NGC " + std::to_string(i) + "', 'UGC " +
                        std::to_string(i) + "', '" + (i % 3 ? "GALXY" : "OPNCL") + "', " +
                        std::to_string(i % 24) + ", 12.5, " + std::to_string(i % 90 - 45) +
                        ", 30, 'And', '2000')");
    sqlite3_exec(objects.Handle(), "COMMIT", nullptr, nullptr, nullptr);

    sqlite3_exec(logbook.Handle(), "BEGIN", nullptr, nullptr, nullptr);
    for (int i = 1; i <= entries; ++i) {
        const std::string n = std::to_string(i);
        logbook.Execute(
            "Insert Into Logbook (ObjectID, Catalog, DateObserved, TimeObserved, "
            "LocationObserved, EquipmentUsed, OtherEquipment, Seeing, Transparency, Rating, "
            "ShortDescription, ObservationText, SeenFlag, DataRec, LogType) Values ('NGC " +
            std::to_string(i % 2000 + 1) + "', '2000', '" +
            QDate(2010, 1, 1).addDays(i / 4).toString("yyyy-MM-dd").toStdString() + "', '2" +
            std::to_string(i % 4) + ":15:00', '" + (i % 2 ? "Home" : "Dark Site") +
            "', '8 inch f/10 Schmidt-Cassegrain', 'Telrad' || char(13, 10) || 'UHC', "
            "'Mostly Stable', 'Clear', 'A', 'Bright core', '<p>Bright core, <b>dust lane</b> "
            "seen with averted vision; two field stars east. Entry " +
            n + ".</p>', " + (i % 7 ? "-1" : "0") + ", " + std::to_string(i % 2000 + 1) +
            ", 'Default')");
        if (i % 10 == 0)
            logbook.Execute("Insert Into CCDLog (ObservationNumber, ImageName, ExposureTime, "
                            "Notes) Values (" +
                            n + ", 'img" + n + ".fit', '300', '<i>guided</i>')");
        if (i % 5 == 0)
            logbook.Execute("Insert Into ImageLog (ObservationNumber, ImageDescription, "
                            "ImagePath) Values (" +
                            n + ", 'sketch', '/home/me/sketches/" + n + ".png')");
    }
    sqlite3_exec(logbook.Handle(), "COMMIT", nullptr, nullptr, nullptr);
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    const int entries = argc > 1 ? std::atoi(argv[1]) : 20000;
    QTemporaryDir temp;
    const data::ProgramDir dir{temp.path().toStdString()};
    auto objects = Create(dir.File("objects.mdb"), data::SchemaKind::ObjectDatabase);
    auto logbook = Create(dir.File("logbook.mdb"), data::SchemaKind::Logbook);
    auto target = Create(dir.File("target.mdb"), data::SchemaKind::Logbook);
    Fill(*objects, *logbook, entries);

    services::ScriptedUiPort ui;
    ui.echo = false;
    data::Preferences prefs;
    data::CurrentObject current;
    const astro::SystemClock clock;
    logbook::LogContext from{ui, logbook.get(), objects.get(), prefs, dir, current, clock};
    logbook::LogContext to{ui, target.get(), objects.get(), prefs, dir, current, clock};

    const auto time = [](const char* what, const auto& body) {
        const auto start = std::chrono::steady_clock::now();
        const double cpu = CpuSeconds();
        const long long count = body();
        const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;
        std::printf("%-8s %6lld observations  %.3f s wall  %.3f s CPU\n", what, count, wall.count(),
                    CpuSeconds() - cpu);
    };
    const auto file = dir.File("log.oal");
    time("export", [&] { return static_cast<long long>(logbook::ExportOal(from, file)); });
    time("import", [&] {
        const auto result = logbook::ImportOal(to, file, "Default");
        return result ? static_cast<long long>(result->numbers.size()) : -1LL;
    });
    std::printf("file     %.1f MB, %zu messages\n",
                static_cast<double>(std::filesystem::file_size(file)) / 1e6, ui.shown.size());
    return 0;
}
