// selvane: the program with its windows.

#include "data/Preferences.h"
#include "data/ProgramDir.h"
#include "data/SettingsStore.h"
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

// The window's side of the start: tools, the short-cut band, the wizard, the grids.
spread::LoadFormHooks WindowHooks(spread::frmMainScreen& window)
{
    spread::LoadFormHooks hooks;
    hooks.SetToolVisible = [&window](std::string_view key, bool visible) {
        if (QAction* tool = window.Tool(std::string(key)))
            tool->setVisible(visible);
    };
    hooks.SetToolEnabled = [&window](std::string_view key, bool enabled) {
        if (QAction* tool = window.Tool(std::string(key)))
            tool->setEnabled(enabled);
    };
    hooks.SetToolCaption = [&window](std::string_view key, std::string_view caption) {
        if (QAction* tool = window.Tool(std::string(key)))
            tool->setText(Q(std::string(caption)));
    };
    hooks.ShowShortCuts = [&window](const spread::ShortCutTools& tools) {
        std::vector<std::string> plans;
        std::vector<std::string> queries;
        for (const auto& tool : tools.plans)
            plans.push_back(tool.key);
        for (const auto& tool : tools.queries)
            queries.push_back(tool.key);
        window.SetShortCuts(plans, queries);
    };
    hooks.ShowSetupWizard = [&window] { return window.ShowSetupWizard(); };
    hooks.UnloadStartupImage = [&window] { window.UnloadStartupImage(); };
    hooks.GetTabCaptions = [&window] { window.GetTabCaptions(); };
    return hooks;
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
    spread::AppState state(
        ui, data::ResolveProgramDir(parser.value(home).toStdString()),
        data::SettingsStore(data::SettingsStore::DefaultPath(parser.value(settings).toStdString())));
    ui.SetErrorLog(state.dir.File(services::ErrorLogFileName));
    const astro::SystemClock clock;

    spread::MainScreenHooks windowHooks;
    spread::frmMainScreen* windowPointer = nullptr;
    windowHooks.LoadForm = [&] {
        spread::frmMainScreen& window = *windowPointer;
        spread::LoadForm(state, data::ResourcesBesideExecutable(), WindowHooks(window), clock);
        for (int tab = 0; tab < spread::kSpreadTabs; ++tab)
            window.SetGrid(tab, &state.grids[static_cast<std::size_t>(tab)]);
        ShowStatusBand(window, state.status);
    };
    spread::frmMainScreen window(state, ui, windowHooks);
    windowPointer = &window;
    ui.SetParent(&window);

    // Refresh and Apply Filter reload the tab shown.
    auto reload = [&](void (*routine)(spread::AppState&, spread::GridLoad&,
                                      const astro::Clock&)) {
        state.CurrTab = window.CurrTab();
        spread::GridLoad load;
        routine(state, load, clock);
        if (state.CurrTab < spread::kSpreadTabs)
            window.RefreshGrid(state.CurrTab);
        ShowStatusBand(window, state.status);
    };
    window.Dispatcher().SetAction("refresh", [=] { reload(spread::RefreshIt); });
    window.Dispatcher().SetAction("apply", [=] { reload(spread::ApplyIt); });

    // The real-time mode: Timer2 arms Timer1, Timer1 reloads the tab, Timer3 keeps the clock.
    QTimer timer1;
    QTimer timer2;
    QTimer timer3;
    QObject::connect(&timer2, &QTimer::timeout, [&] {
        if (const int interval = spread::Timer2_Timer(state); interval >= 0)
            timer1.start(interval);
    });
    QObject::connect(&timer1, &QTimer::timeout, [&] {
        timer1.stop();
        state.CurrTab = window.CurrTab();
        spread::GridLoad load;
        if (spread::Timer1_Timer(state, load, clock) && state.CurrTab < spread::kSpreadTabs) {
            window.RefreshGrid(state.CurrTab);
            ShowStatusBand(window, state.status);
        }
    });
    QObject::connect(&timer3, &QTimer::timeout, [&] {
        spread::Timer3_Timer(state, clock);
        ShowStatusBand(window, state.status);
    });

    window.Form_Load(QString("%1.%2.%3")
                         .arg(data::VersionMajor)
                         .arg(data::VersionMinor)
                         .arg(data::VersionRevision)
                         .toStdString());
    timer2.start(spread::Timer2IntervalMs);
    timer3.start(spread::Timer3IntervalMs);

    // SELVANE_SCREENSHOT=FILE: the window is saved to FILE once it is up, and the program ends.
    const QString screenshot = qEnvironmentVariable("SELVANE_SCREENSHOT");
    if (!screenshot.isEmpty())
        QTimer::singleShot(1500, &window, [&] {
            window.grab().save(screenshot);
            QCoreApplication::quit();
        });
    return application.exec();
}
