// A timed log view and logbook search over a logbook of 20,000 entries. Prints wall seconds:
// the log view's load (LoadTheGrid with its per-entry image look-up) in the process and as a
// whole `selvane-cli logspread` run, and a search (both statements built, the entry window's
// grid loaded with the first) in the process and as a whole `selvane-cli logsearch` run.
// Budgets on a 2-core machine: the log view under 1 s, a search under 0.3 s.
//
// logspread_bench [ENTRIES]
// The program folder is made by selvane-cli (beside this program) in a temporary folder, from
// the built databases; the entries name random objects of the object database, a third of
// them with a CCD row, a tenth with an image, half with notes.

#include "data/Database.h"
#include "data/DatabaseFiles.h"
#include "logbook/LogSearch.h"
#include "logbook/LogSpread.h"
#include "services/ScriptedUiPort.h"
#include "services/Vb.h"

#include <QCoreApplication>
#include <QDate>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>

#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

namespace {

QString Cli()
{
    return QCoreApplication::applicationDirPath() + "/selvane-cli";
}

// Runs selvane-cli in the folder; the wall seconds, or -1 when it failed.
double TimedCli(const QString& home, const QStringList& args)
{
    QProcess process;
    process.setStandardOutputFile(QProcess::nullDevice());
    QElapsedTimer timer;
    timer.start();
    process.start(Cli(), QStringList{"--home", home, "--settings", home + "/s.ini"} + args);
    if (!process.waitForFinished(120000) || process.exitCode() != 0) {
        std::cerr << process.readAllStandardError().toStdString();
        return -1;
    }
    return static_cast<double>(timer.nsecsElapsed()) * 1e-9;
}

template <typename F> double Timed(F&& body)
{
    QElapsedTimer timer;
    timer.start();
    body();
    return static_cast<double>(timer.nsecsElapsed()) * 1e-9;
}

void Seed(const QString& home, int entries)
{
    auto objects = data::Database::Open((home + "/SelvPro708000.mdb").toStdString());
    std::vector<std::pair<std::string, std::string>> ids;
    auto rs = objects->OpenRecordset(
        "Select ObjectID, Catalog From SelvaneTable Order By random() Limit " +
            std::to_string(entries),
        data::Snapshot);
    for (; !rs.Eof(); rs.MoveNext())
        ids.emplace_back(rs.Fields(0).Value(), rs.Fields(1).Value());
    auto log = data::Database::Open((home + "/Logbook2003-1.mdb").toStdString());
    log->Execute("Begin");
    for (int n = 1; n <= entries; ++n) {
        const auto& [id, catalog] = ids[static_cast<std::size_t>(n - 1) % ids.size()];
        const std::string number = std::to_string(n);
        const std::string date = std::to_string(2000 + n % 26) + "-" + std::to_string(10 + n % 3) +
                                 "-" + std::to_string(10 + n % 19);
        log->Execute("Insert Into Logbook (ObservationNumber, ObjectID, Catalog, DateObserved, "
                     "TimeObserved, LocationObserved, EquipmentUsed, SeenFlag, ObservationText, "
                     "ShortDescription, LogType) Values (" +
                     number + ", '" + services::vb::QuoteForSql(id) + "', '" + catalog + "', '" +
                     date + "', '21:30:00', 'Home', '8\" SCT', " + (n % 4 ? "-1" : "0") + ", " +
                     (n % 2 ? "'<p>Seen with <b>averted</b> vision</p>'" : "Null") +
                     ", 'Faint', 'Default')");
        if (n % 3 == 0)
            log->Execute("Insert Into CCDLog (ObservationNumber, ImageName, darkframe) Values (" +
                         number + ", 'img" + number + ".fit', -1)");
        if (n % 10 == 0)
            log->Execute("Insert Into ImageLog (ObservationNumber, ImageDescription, ImagePath) "
                         "Values (" +
                         number + ", 'Image', '/img/" + number + ".png')");
    }
    log->Execute("Commit");
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    const int entries = argc > 1 ? std::atoi(argv[1]) : 20000;
    QTemporaryDir folder;
    const QString home = folder.path();
    if (TimedCli(home, {"logspread"}) < 0)
        return 1;
    Seed(home, entries);

    services::ScriptedUiPort ui;
    ui.echo = false;
    data::Preferences prefs;
    data::CurrentObject current;
    const astro::SystemClock clock;
    std::unique_ptr<data::Database> logbook;
    std::string logbookPath;
    const data::ProgramDir dir(home.toStdString());
    data::OpenTheDatabase(dir, logbook, logbookPath);
    data::RebuildLink(*logbook, (home + "/SelvPro708000.mdb").toStdString(), false);
    logbook::LogContext context{ui, logbook.get(), nullptr, prefs, dir, current, clock};

    logbook::LogSpread view(context);
    view.Init();
    const double load = Timed([&] { view.LoadTheGrid(); });
    const double sort = Timed([&] {
        view.AdvancedSort({logbook::LogSortBox{logbook::SortKeyFor("8"), true},
                           logbook::LogSortBox{logbook::SortKeyFor("1"), false},
                           {}});
    });

    // A search of the logbook alone (site, dates, notes, seen), and one that joins the objects
    // (constellation).
    logbook::LogSearchCriteria plain;
    plain.optSite = true;
    plain.cboSite = "Home";
    plain.optDate = true;
    plain.DTPicker1 = QDate(2010, 1, 1);
    plain.DTPicker2 = QDate(2012, 12, 31);
    plain.txtNotes = "averted";
    plain.optSeen = logbook::SeenChoice::Seen;
    logbook::LogSearchCriteria joined;
    joined.optConst = true;
    joined.cboCon = "Ori-Orion";
    joined.optSeen = logbook::SeenChoice::Seen;
    logbook::LogEntryForm form(context);
    auto search = [&](const logbook::LogSearchCriteria& criteria, std::size_t& found) {
        return Timed([&] {
            const auto sql = logbook::BuildLogSearchSql(criteria, prefs.Ltype);
            form.currentQuery = sql.first;
            form.LoadObservations();
            found = form.grdLog.size();
        });
    };
    std::size_t plainFound = 0, joinedFound = 0;
    const double plainSearch = search(plain, plainFound);
    const double joinedSearch = search(joined, joinedFound);

    const double cliSpread = TimedCli(home, {"logspread"});
    const double cliSearch = TimedCli(home, {"logsearch", "--site", "Home", "--date", "2010-01-01",
                                             "2012-12-31", "--notes", "averted", "--seen"});

    std::printf("entries                       %d\n", entries);
    std::printf("log view rows                 %zu\n", view.grdObjectLog.size());
    std::printf("LoadTheGrid                   %.3f s   (budget 1 s)\n", load);
    std::printf("AdvancedSort, two keys        %.3f s\n", sort);
    std::printf("search, logbook (%zu rows)    %.3f s   (budget 0.3 s)\n", plainFound, plainSearch);
    std::printf("search, joined (%zu rows)     %.3f s\n", joinedFound, joinedSearch);
    std::printf("selvane-cli logspread         %.3f s   (start-up included)\n", cliSpread);
    std::printf("selvane-cli logsearch         %.3f s   (start-up included)\n", cliSearch);
    return load < 1 && plainSearch < 0.3 ? 0 : 1;
}
