// Timed certificates and statistics sheet over a logbook of 10,000 entries, each laid out into
// pages on a PainterSurface. Prints wall seconds for report 8 (Printstat), 7 and 77 (Herschel)
// and 133 and 4 (Messier), the certificates once more with "Still to observe". Budget on a
// 2-core machine: each under 2 s.
//
// certificates_bench [ENTRIES]
// The program folder is made by selvane-cli (beside this program) in a temporary folder, from
// the built databases. The entries name, over and over, the Messier objects, the Herschel 400,
// other objects of the object database, comets, asteroids and the planets; the observed flags
// are then set as the fix command sets them.

#include "astro/ObservingClock.h"
#include "data/Database.h"
#include "data/DatabaseFiles.h"
#include "reports/Certificates.h"
#include "reports/PainterSurface.h"
#include "reports/ReportWindow.h"
#include "services/ScriptedUiPort.h"
#include "services/Vb.h"
#include "spread/AppState.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QProcess>
#include <QTemporaryDir>

#include <cstdio>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

namespace {

using Ids = std::vector<std::pair<std::string, std::string>>; // id, catalogue

bool MakeFolder(const QString& home)
{
    QProcess process;
    process.setStandardOutputFile(QProcess::nullDevice());
    process.start(QCoreApplication::applicationDirPath() + "/selvane-cli",
                  {"--home", home, "--settings", home + "/s.ini", "logspread"});
    if (!process.waitForFinished(120000) || process.exitCode() != 0) {
        std::cerr << process.readAllStandardError().toStdString();
        return false;
    }
    return true;
}

Ids Read(data::Database& db, const std::string& sql)
{
    Ids ids;
    for (auto rs = db.OpenRecordset(sql, data::Snapshot); !rs.Eof(); rs.MoveNext())
        ids.emplace_back(rs.Fields(0).Value(), rs.Fields(1).Value());
    return ids;
}

void Seed(const QString& home, int entries)
{
    const std::string objectPath = (home + "/SelvPro708000.mdb").toStdString();
    auto objects = data::Database::Open(objectPath);
    auto log = data::Database::Open((home + "/Logbook2003-1.mdb").toStdString());
    const Ids messier = Read(*objects, "Select ObjectID, Catalog From SelvaneTable Where "
                                       "MessierNumber > 0 and Catalog = '2000'");
    const Ids herschel = Read(*log, "Select NGC, '2000' From xref");
    const Ids others = Read(*objects, "Select ObjectID, Catalog From SelvaneTable Order By "
                                      "random() Limit 3000");
    const Ids solar{{"C/1995 O1", "COMET"},  {"1P/Halley", "COMET"},  {"2P/Encke", "COMET"},
                    {"1 Ceres", "ASTEROID"}, {"4 Vesta", "ASTEROID"}, {"MARS", "PLANETS"},
                    {"JUPITER", "PLANETS"},  {"SATURN", "PLANETS"},   {"MOON", "PLANETS"},
                    {"SUN", "PLANETS"},      {"VENUS", "PLANETS"},    {"URANUS", "PLANETS"}};
    const std::vector<const Ids*> kinds{&messier, &herschel, &herschel, &others, &solar};
    log->Execute("Begin");
    for (int n = 1; n <= entries; ++n) {
        const Ids& ids = *kinds[static_cast<std::size_t>(n) % kinds.size()];
        const auto& [id, catalog] = ids[static_cast<std::size_t>(n) / kinds.size() % ids.size()];
        const std::string date = std::to_string(1995 + n % 30) + "-" + std::to_string(10 + n % 3) +
                                 "-" + std::to_string(10 + n % 19);
        log->Execute("Insert Into Logbook (ObservationNumber, ObjectID, Catalog, DateObserved, "
                     "TimeObserved, LocationObserved, EquipmentUsed, Seeing, Transparency, "
                     "SeenFlag, ShortDescription, LogType) Values (" +
                     std::to_string(n) + ", '" + services::vb::QuoteForSql(id) + "', '" + catalog +
                     "', '" + date + "', '21:30:00', " + (n % 9 ? "'Home'" : "' '") +
                     ", '8\" SCT', '4', '6', -1, 'Faint', 'Default')");
    }
    log->Execute("Commit");
    // The observed flags, as the fix command leaves them.
    objects->Execute("Begin");
    for (const auto& [id, catalog] : Read(*log, "Select Distinct ObjectID, Catalog From Logbook"))
        objects->Execute("Update SelvaneTable Set Observed = -1 Where ObjectId = '" +
                         services::vb::QuoteForSql(id) + "' and Catalog = '" + catalog + "'");
    objects->Execute("Commit");
}

} // namespace

int main(int argc, char* argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    const int entries = argc > 1 ? std::atoi(argv[1]) : 10000;
    QTemporaryDir folder;
    const QString home = folder.path();
    if (!MakeFolder(home))
        return 1;
    Seed(home, entries);

    services::ScriptedUiPort ui;
    ui.echo = false;
    const data::ProgramDir dir(home.toStdString());
    spread::AppState TMM(ui, dir, data::SettingsStore(dir.File("s.ini")));
    TMM.objectDb = data::Database::Open((home + "/SelvPro708000.mdb").toStdString());
    data::OpenTheDatabase(dir, TMM.logbookDb, TMM.logbookPath);
    data::RebuildLink(*TMM.logbookDb, (home + "/SelvPro708000.mdb").toStdString(), false);
    const astro::SystemClock clock;
    reports::ReportContext context{TMM, clock};
    reports::PainterSurface surface;
    reports::ReportWindow window(context, surface);

    std::printf("entries                          %d\n", entries);
    bool within = true;
    for (const bool missing : {false, true}) {
        window.chkMissing = missing;
        for (const int number : {8, 7, 77, 133, 4}) {
            if (missing && number == 8)
                continue;
            window.ReportNumber = number;
            QElapsedTimer timer;
            timer.start();
            window.Command9_Click();
            const double seconds = static_cast<double>(timer.nsecsElapsed()) * 1e-9;
            within = within && seconds < 2 && ui.shown.empty();
            std::printf("report %3d%s  %3d pages   %.3f s   (budget 2 s)\n", number,
                        missing ? ", still to observe" : "                  ", surface.PageCount(),
                        seconds);
        }
    }
    for (const auto& shown : ui.shown)
        std::cerr << shown.message.ShortMessage << ": " << shown.message.LongMessage << "\n";
    return within ? 0 : 1;
}
