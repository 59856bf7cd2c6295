// selvane: the program with its windows.

#include "app/BackupWiring.h"
#include "app/ChartWiring.h"
#include "app/ReportWiring.h"
#include "app/CometWiring.h"
#include "app/LogbookWiring.h"
#include "app/ScopeWiring.h"
#include "app/TargetWiring.h"
#include "app/SlideWiring.h"
#include "app/SolarSystemWiring.h"
#include "app/TourWiring.h"
#include "data/Preferences.h"
#include "data/ProgramDir.h"
#include "data/SettingsStore.h"
#include "scope/Speech.h"
#include "services/ErrorLog.h"
#include "services/Fault.h"
#include "services/Vb.h"
#include "spread/LoadForm.h"
#include "spread/Spreadsheet.h"
#include "spread/ui/BusyUiPort.h"
#include "spread/ui/frmMainScreen.h"

#include <QAction>
#include <QApplication>
#include <QCommandLineParser>
#include <QLabel>
#include <QProgressBar>
#include <QTimer>

namespace {

QString Q(const std::string& text)
{
    return QString::fromStdString(text);
}

void ShowStatusBand(spread::frmMainScreen& window, const spread::StatusBand& status)
{
    window.lblDate->setText(Q(status.lblDate));
    window.lblTime->setText(Q(status.lblTime));
    window.lblLat->setText(Q(status.lblLat));
    window.lblLong->setText(Q(status.lblLong));
    window.lblMisc->setText(Q(status.lblMisc));
}

} // namespace

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    QCoreApplication::setApplicationName("Selvane");

    QCommandLineParser parser;
    QCommandLineOption home("home", "Program folder.", "DIR");
    QCommandLineOption settings("settings", "Settings file.", "FILE");
    parser.addOption(home);
    parser.addOption(settings);
    parser.addHelpOption();
    parser.process(application);

    spread::BusyUiPort ui;
    spread::AppState state(ui, data::ResolveProgramDir(parser.value(home).toStdString()),
                           data::SettingsStore(data::SettingsStore::DefaultPath(
                               parser.value(settings).toStdString())));
    ui.SetErrorLog(state.dir.File(services::ErrorLogFileName));
    const astro::SystemClock clock;
    scope::EspeakSpeech speech;
    app::ScopeWiring scopeWiring;

    spread::MainScreenHooks windowHooks;
    spread::frmMainScreen* windowPointer = nullptr;
    windowHooks.LoadForm = [&] {
        spread::frmMainScreen& window = *windowPointer;
        spread::LoadFormHooks loadHooks = window.MakeLoadFormHooks();
        loadHooks.CreateScopeVoice = scopeWiring.CreateScopeVoice;
        spread::LoadForm(state, data::ResourcesBesideExecutable(), loadHooks, clock);
        scopeWiring.ResetMenu();
        for (int tab = 0; tab < spread::kSpreadTabs; ++tab)
            window.SetGrid(tab, &state.grids[static_cast<std::size_t>(tab)]);
        ShowStatusBand(window, state.status);
    };
    spread::frmMainScreen window(state, ui, windowHooks);
    windowPointer = &window;
    ui.SetParent(&window);
    app::WireLogbook(window, state, ui, clock, state.current,
                     app::ReportsOfTheLogbook(window, state, clock));
    app::WireBackup(window, state, clock);
    scopeWiring = app::WireScope(window, state, ui, clock, speech);
    ui.SetSpeaker(scopeWiring.Speak);
    app::WireTarget(window, state, ui, scopeWiring);
    app::WireSolarSystem(window, state, ui, clock, scopeWiring.Goto);
    app::WireComets(window, state, ui, clock);
    app::WireTours(window, state, ui);
    app::WireSlideShow(window, state, scopeWiring.Context);
    app::WireReports(window, state, clock,
                     app::WireCharts(window, state, ui, clock, scopeWiring,
                                     data::ResourcesBesideExecutable()));

    window.Form_Load(QString("%1.%2.%3")
                         .arg(data::VersionMajor)
                         .arg(data::VersionMinor)
                         .arg(data::VersionRevision)
                         .toStdString());

    // SELVANE_SCREENSHOT=FILE: the window is saved to FILE once it is up, and the program ends;
    // SELVANE_SCREENSHOT_KEYS names tools (separated by commas) clicked before, in order.
    const QString screenshot = qEnvironmentVariable("SELVANE_SCREENSHOT");
    if (!screenshot.isEmpty())
        QTimer::singleShot(1500, &window, [&] {
            const QStringList keys =
                qEnvironmentVariable("SELVANE_SCREENSHOT_KEYS").split(',', Qt::SkipEmptyParts);
            for (const QString& key : keys)
                window.ab_ToolClick(key.trimmed().toStdString());
            QApplication::processEvents();
            window.grab().save(screenshot);
            QCoreApplication::quit();
        });
    return application.exec();
}
