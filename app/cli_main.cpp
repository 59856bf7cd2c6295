// selvane-cli: the program's routines without windows, for scripts and timing.
//
//   selvane-cli [--home DIR] [--settings FILE] [--set KEY=VALUE]... COMMAND [ARGS]
//
// Commands: grid (tab 0's list), plan FILE (a plan file opened into tab 0), sql (the filter's
// SQL and ORDER BY texts), log (the logbook's entry routines), equipment (the equipment lists),
// whatsup (the What's Up wizard), constellation (the constellation of a position), import-jet
// (an earlier logbook imported), outside (the outside window from a script), backup, restore
// and compact (the logbook's copies, the compaction of the databases), oal (the logbook in an
// Open Astronomy Log file), logspread (the log view), logsearch (the logbook search), export
// (the export keys on tab 0), planets (the planets for the observing clock), earth (the
// Earth of the high-precision series), sun, moon and moonphases YEAR (the Sun and the Moon for
// the observing clock, the year's phases), ephem (a comet's or asteroid's places at even steps
// of time), elements (comet and asteroid elements imported into AstComet.mdb), scope (the
// telescope routines on the mount of telescopetype), plotfile (the plot window: a plot file
// opened, entries added, the file saved), chart (the chart commands: own charts drawn to
// pictures, or sent to the planetarium), report (the report window's reports written to PDF),
// rsu (the report settings windows and their files).
// tour and acpscript (tab 0's list as a hand controller's tour, and as ACP's slide show).
//
// Exit status: 0 when the command ran, 1 on an error, 2 on a usage error.

#include "app/BackupCommand.h"
#include "app/ChartCommand.h"
#include "app/CliOptions.h"
#include "app/ConstellationCommand.h"
#include "app/ElementsCommand.h"
#include "app/EquipmentCommand.h"
#include "app/EphemCommand.h"
#include "app/ExportCommand.h"
#include "app/GridCommand.h"
#include "app/ImportJetCommand.h"
#include "app/LogCommand.h"
#include "app/OutsideCommand.h"
#include "app/PlanetsCommand.h"
#include "app/PlotFileCommand.h"
#include "app/ReportCommand.h"
#include "app/RsuCommand.h"
#include "app/OalCommand.h"
#include "app/LogSpreadCommand.h"
#include "app/WhatsUpCommand.h"
#include "app/SunMoonCommand.h"
#include "app/ScopeCommand.h"
#include "app/TourCommand.h"
#include "app/TargetCommand.h"
#include "app/SlideCommand.h"
#include "data/Preferences.h"
#include "data/ProgramDir.h"
#include "data/SettingsStore.h"
#include "services/ErrorLog.h"
#include "services/ScriptedUiPort.h"
#include "spread/LoadForm.h"
#include "spread/LoadTheGrid.h"

#include <QDir>
#include <QFile>
#include <QGuiApplication>

#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <memory>
#include <string_view>
#include <map>

namespace {

// A command checks its arguments before the start runs, then runs on the started state.
struct Command
{
    std::string (*check)(const std::vector<std::string>& args); // the usage error, or empty
    int (*run)(spread::AppState& TMM, const spread::LoadFormResult& start,
               const std::vector<std::string>& args);
    const char* usage;
};

const std::map<std::string, Command>& Commands()
{
    static const std::map<std::string, Command> commands{
        {"grid",
         {[](const std::vector<std::string>& args) { return app::ParseGridArgs(args).error; },
          [](spread::AppState& TMM, const spread::LoadFormResult& start,
             const std::vector<std::string>& args) {
              const astro::SystemClock clock;
              return app::RunGridCommand(TMM, start, app::ParseGridArgs(args), std::cout, clock);
          },
          app::GridUsage}},
        {"plan",
         {app::CheckPlanArgs,
          [](spread::AppState& TMM, const spread::LoadFormResult& start,
             const std::vector<std::string>& args) {
              const astro::SystemClock clock;
              return app::RunPlanCommand(TMM, start, args[0], std::cout, clock);
          },
          app::PlanUsage}},
        {"sql",
         {app::CheckSqlArgs,
          [](spread::AppState& TMM, const spread::LoadFormResult& start,
             const std::vector<std::string>&) { return app::RunSqlCommand(TMM, start, std::cout); },
          app::SqlUsage}},
        {"log",
         {app::CheckLogArgs,
          [](spread::AppState& TMM, const spread::LoadFormResult& start,
             const std::vector<std::string>& args) {
              const astro::SystemClock clock;
              return app::RunLogCommand(TMM, start, args, std::cout, clock);
          },
          app::LogUsage}},
        {"equipment",
         {app::CheckEquipmentArgs,
          [](spread::AppState& TMM, const spread::LoadFormResult&,
             const std::vector<std::string>& args) {
              return app::RunEquipmentCommand(TMM.ui, TMM.dir, TMM.logbookDb.get(),
                                              data::RegionalOf(TMM.prefs), args, std::cout);
          },
          app::EquipmentUsage}},
        {"whatsup",
         {app::CheckWhatsUpArgs,
          [](spread::AppState& TMM, const spread::LoadFormResult& start,
             const std::vector<std::string>& args) {
              const astro::SystemClock clock;
              return app::RunWhatsUpCommand(TMM, start, args, std::cout, clock);
          },
          app::WhatsUpUsage}},
        {"constellation",
         {app::CheckConstellationArgs,
          [](spread::AppState& TMM, const spread::LoadFormResult&,
             const std::vector<std::string>& args) {
              return app::RunConstellationCommand(TMM.dir, TMM.ui, args, std::cin, std::cout);
          },
          app::ConstellationUsage}},
        {"import-jet",
         {app::CheckImportJetArgs,
          [](spread::AppState& TMM, const spread::LoadFormResult&,
             const std::vector<std::string>& args) {
              return app::RunImportJetCommand(TMM, args, std::cout);
          },
          app::ImportJetUsage}},
        {"outside",
         {app::CheckOutsideArgs,
          [](spread::AppState& TMM, const spread::LoadFormResult&,
             const std::vector<std::string>& args) {
              const astro::SystemClock clock;
              return app::RunOutsideCommand(TMM, args, std::cin, std::cout, clock);
          },
          app::OutsideUsage}},
        {"backup",
         {app::CheckBackupArgs,
          [](spread::AppState& TMM, const spread::LoadFormResult&,
             const std::vector<std::string>& args) {
              const astro::SystemClock clock;
              return app::RunBackupCommand(TMM, args, std::cout, clock);
          },
          app::BackupUsage}},
        {"restore",
         {app::CheckRestoreArgs,
          [](spread::AppState& TMM, const spread::LoadFormResult&,
             const std::vector<std::string>& args) { return app::RunRestoreCommand(TMM, args); },
          app::RestoreUsage}},
        {"compact",
         {app::CheckCompactArgs,
          [](spread::AppState& TMM, const spread::LoadFormResult&,
             const std::vector<std::string>& args) { return app::RunCompactCommand(TMM, args); },
          app::CompactUsage}},
        {"oal",
         {app::CheckOalArgs,
          [](spread::AppState& TMM, const spread::LoadFormResult&,
             const std::vector<std::string>& args) {
              return app::RunOalCommand(TMM, args, std::cout);
          },
          app::OalUsage}},
        {"logspread",
         {app::CheckLogSpreadArgs,
          [](spread::AppState& TMM, const spread::LoadFormResult&,
             const std::vector<std::string>& args) {
              const astro::SystemClock clock;
              return app::RunLogSpreadCommand(TMM, args, std::cout, clock);
          },
          app::LogSpreadUsage}},
        {"logsearch",
         {app::CheckLogSearchArgs,
          [](spread::AppState& TMM, const spread::LoadFormResult&,
             const std::vector<std::string>& args) {
              const astro::SystemClock clock;
              return app::RunLogSearchCommand(TMM, args, std::cout, clock);
          },
          app::LogSearchUsage}},
        {"export",
         {app::CheckExportArgs,
          [](spread::AppState& TMM, const spread::LoadFormResult& start,
             const std::vector<std::string>& args) {
              const astro::SystemClock clock;
              return app::RunExportCommand(TMM, start, args, clock);
          },
          app::ExportUsage}},
        {"planets",
         {app::CheckPlanetsArgs,
          [](spread::AppState& TMM, const spread::LoadFormResult&,
             const std::vector<std::string>& args) {
              const astro::SystemClock clock;
              return app::RunPlanetsCommand(TMM, args, std::cout, clock);
          },
          app::PlanetsUsage}},
        {"earth",
         {app::CheckEarthArgs,
          [](spread::AppState& TMM, const spread::LoadFormResult&,
             const std::vector<std::string>& args) {
              return app::RunEarthCommand(TMM, args, std::cout);
          },
          app::EarthUsage}},
        {"sun",
         {app::CheckSunArgs,
          [](spread::AppState& TMM, const spread::LoadFormResult&,
             const std::vector<std::string>&) {
              const astro::SystemClock clock;
              return app::RunSunCommand(spread::ClockFrom(TMM.prefs), clock, TMM.ui, std::cout);
          },
          app::SunUsage}},
        {"moon",
         {app::CheckMoonArgs,
          [](spread::AppState& TMM, const spread::LoadFormResult&,
             const std::vector<std::string>&) {
              const astro::SystemClock clock;
              return app::RunMoonCommand(spread::ClockFrom(TMM.prefs), clock, TMM.ui, std::cout);
          },
          app::MoonUsage}},
        {"moonphases",
         {app::CheckMoonPhasesArgs,
          [](spread::AppState& TMM, const spread::LoadFormResult&,
             const std::vector<std::string>& args) {
              return app::RunMoonPhasesCommand(args, TMM.ui, std::cout);
          },
          app::MoonPhasesUsage}},
        {"ephem",
         {app::CheckEphemArgs,
          [](spread::AppState& TMM, const spread::LoadFormResult&,
             const std::vector<std::string>& args) {
              return app::RunEphemCommand(TMM, args, std::cout);
          },
          app::EphemUsage}},
        {"elements",
         {app::CheckElementsArgs,
          [](spread::AppState& TMM, const spread::LoadFormResult&,
             const std::vector<std::string>& args) {
              return app::RunElementsCommand(TMM.dir, TMM.ui, args, std::cout);
          },
          app::ElementsUsage}},
        {"scope",
         {app::CheckScopeArgs,
          [](spread::AppState& TMM, const spread::LoadFormResult& start,
             const std::vector<std::string>& args) {
              const astro::SystemClock clock;
              return app::RunScopeCommand(TMM, start, args, std::cin, std::cout, clock);
          },
          app::ScopeUsage}},
        {"ntos",
         {app::CheckNtosArgs,
          [](spread::AppState& TMM, const spread::LoadFormResult& start,
             const std::vector<std::string>& args) {
              const astro::SystemClock clock;
              return app::RunNtosCommand(TMM, start, args, std::cout, clock);
          },
          app::NtosUsage}},
        {"identify",
         {app::CheckIdentifyArgs,
          [](spread::AppState& TMM, const spread::LoadFormResult& start,
             const std::vector<std::string>& args) {
              const astro::SystemClock clock;
              return app::RunIdentifyCommand(TMM, start, args, std::cout, clock);
          },
          app::IdentifyUsage}},
        {"target",
         {app::CheckTargetArgs,
          [](spread::AppState& TMM, const spread::LoadFormResult& start,
             const std::vector<std::string>& args) {
              const astro::SystemClock clock;
              return app::RunTargetCommand(TMM, start, args, std::cout, clock);
          },
          app::TargetUsage}},
        {"slideshow",
         {app::CheckSlideArgs,
          [](spread::AppState& TMM, const spread::LoadFormResult& start,
             const std::vector<std::string>& args) {
              const astro::SystemClock clock;
              return app::RunSlideCommand(TMM, start, args, std::cout, clock);
          },
          app::SlideUsage}},
        {"plotfile",
         {app::CheckPlotFileArgs,
          [](spread::AppState& TMM, const spread::LoadFormResult&,
             const std::vector<std::string>& args) {
              return app::RunPlotFileCommand(TMM.ui, args, std::cout);
          },
          app::PlotFileUsage}},
        {"chart",
         {app::CheckChartArgs,
          [](spread::AppState& TMM, const spread::LoadFormResult& start,
             const std::vector<std::string>& args) {
              const astro::SystemClock clock;
              return app::RunChartCommand(TMM, start, args, std::cout, clock);
          },
          app::ChartUsage}},
        {"report",
         {app::CheckReportArgs,
          [](spread::AppState& TMM, const spread::LoadFormResult& start,
             const std::vector<std::string>& args) {
              const astro::SystemClock clock;
              return app::RunReportCommand(TMM, start, args, std::cout, clock);
          },
          app::ReportUsage}},
        {"rsu",
         {app::CheckRsuArgs,
          [](spread::AppState& TMM, const spread::LoadFormResult&,
             const std::vector<std::string>& args) {
              return app::RunRsuCommand(TMM, args, std::cout);
          },
          app::RsuUsage}},
        {"tour",
         {app::CheckTourArgs,
          [](spread::AppState& TMM, const spread::LoadFormResult& start,
             const std::vector<std::string>& args) {
              const astro::SystemClock clock;
              return app::RunTourCommand(TMM, start, args, std::cout, clock);
          },
          app::TourUsage}},
        {"acpscript",
         {app::CheckAcpScriptArgs,
          [](spread::AppState& TMM, const spread::LoadFormResult& start,
             const std::vector<std::string>& args) {
              const astro::SystemClock clock;
              return app::RunAcpScriptCommand(TMM, start, args, std::cout, clock);
          },
          app::AcpScriptUsage}},
    };
    return commands;
}

} // namespace

int main(int argc, char* argv[])
{
    std::ios::sync_with_stdio(false);
    std::vector<std::string> args(argv + 1, argv + argc);
    const app::CliOptions options = app::ParseCliOptions(args);

    // Charts and reports draw with fonts, which need the GUI application; no window is ever
    // shown.
    std::unique_ptr<QCoreApplication> application;
    if (options.command == "chart" || options.command == "report") {
        if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        if (!qEnvironmentVariableIsSet("XDG_RUNTIME_DIR")) {
            const QString runtime =
                QDir::tempPath() + "/selvane-runtime-" + QString::number(getuid());
            QDir().mkpath(runtime);
            QFile::setPermissions(runtime, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
            qputenv("XDG_RUNTIME_DIR", runtime.toUtf8());
        }
        application = std::make_unique<QGuiApplication>(argc, argv);
    } else {
        application = std::make_unique<QCoreApplication>(argc, argv);
    }
    if (!options.error.empty()) {
        std::cerr << "selvane-cli: " << options.error << "\n" << app::CliUsage << "\n";
        return 2;
    }

    const auto command = Commands().find(options.command);
    if (command == Commands().end()) {
        std::cerr << "selvane-cli: unknown command \"" << options.command << "\"\n"
                  << app::CliUsage << "\n";
        return 2;
    }
    if (const std::string error = command->second.check(options.commandArgs); !error.empty()) {
        std::cerr << "selvane-cli: " << error << "\n" << command->second.usage << "\n";
        return 2;
    }

    services::ScriptedUiPort ui;
    spread::AppState state(ui, data::ResolveProgramDir(options.home),
                           data::SettingsStore(data::SettingsStore::DefaultPath(options.settings)));
    for (const auto& [key, value] : options.sets)
        state.settings.Override(key, value);
    // As the main window's Load does: the session's error log starts empty.
    services::DeleteErrorLog(state.dir.File(services::ErrorLogFileName));
    const astro::SystemClock clock;
    const spread::LoadFormResult start =
        spread::LoadForm(state, data::ResourcesBesideExecutable(), {}, clock);
    return command->second.run(state, start, options.commandArgs);
}
