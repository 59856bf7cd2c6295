#include "app/ChartWiring.h"

#include "charts/ChartCalls.h"
#include "charts/Planetarium.h"
#include "charts/ui/ChartWindow.h"
#include "charts/ui/frmChartType.h"
#include "charts/ui/frmGotoCon.h"
#include "charts/ui/frmStPlot.h"
#include "charts/ui/frmStarChart.h"
#include "services/Fault.h"
#include "spread/AppState.h"
#include "spread/Grid.h"
#include "spread/StarCharts.h"
#include "spread/ui/frmMainScreen.h"

#include <QObject>
#include <QPointer>
#include <QProcess>
#include <QStandardPaths>

#include <chrono>
#include <cstdlib>
#include <optional>
#include <system_error>

namespace app {

namespace {

// The list file the planetarium reads the plotted objects from, in the program folder.
constexpr const char* kPlanetariumListFile = "SelvaneObs.txt";
constexpr std::chrono::seconds kPlanetariumTimeout{5};
// The grid column whose click toggles a row's plan mark, and the ObjectID column.
constexpr int kPlanCol = 1;
constexpr int kObjectIdCol = 4;

// The engines, the link and the chart windows, a child of the main window so that it goes
// with it.
class ChartCommands : public QObject
{
public:
    ChartCommands(spread::frmMainScreen& window, spread::AppState& state, services::UiPort& ui,
                  const astro::Clock& clock, const ScopeWiring& scope,
                  std::filesystem::path resources)
        : QObject(&window), window_(window), state_(state), ui_(ui), clock_(clock), scope_(scope),
          resources_(std::move(resources)),
          own_(state.dir.path, [this]() -> const charts::ChartSky& { return Sky(); }),
          cdc_([this] { return MakePlanetarium(); },
               [this]() -> const charts::ChartSky& { return Sky(); }),
          link_(own_, cdc_)
    {
        own_.Opened = [this](std::shared_ptr<charts::ChartDocument> document) {
            OpenWindow(std::move(document));
        };
    }

    // The chart data, read once, on first use. Throws services::Fault when it is missing.
    const charts::ChartSky& Sky()
    {
        if (!sky_)
            sky_ = charts::LoadChartSky(resources_.string());
        return *sky_;
    }

    spread::ChartContext Context()
    {
        const int tab = window_.CurrTab();
        if (tab >= 0 && tab < spread::kSpreadTabs)
            state_.CurrTab = tab;
        const int row = window_.SelectedRow();
        return spread::ChartContext{state_,
                                    link_,
                                    row >= 1 ? row : 1,
                                    scope_.TelescopeEnabled,
                                    scope_.ConnectTelescope,
                                    scope_.SpeechRegistered,
                                    clock_};
    }

    charts::ChartLink& Link() { return link_; }

    void ChartSob(const std::string& target)
    {
        spread::ChartContext c = Context();
        spread::ChartSOB(c, target);
    }

    // charts, cdc_charts and chartstoolbar: the choice of engine, then the whole tab.
    void PlotAll()
    {
        std::string target = "D";
        if (PlanetariumFound()) {
            charts::ui::frmChartType choice(&window_);
            target = choice.Ask();
            if (target.empty())
                return;
        }
        link_.ChartTarget = target;
        spread::ChartContext c = Context();
        spread::PlotAllObjects_Click(c);
    }

    void PlotAllCentred(const std::string& target)
    {
        link_.ChartTarget = target;
        spread::ChartContext c = Context();
        spread::PlotAllObjects_Click(c, true);
    }

    void StarsOnly()
    {
        link_.ChartTarget = "D";
        spread::ChartContext c = Context();
        spread::mnuSC_Click(c);
    }

    void GotoCon(const std::string& target)
    {
        gotoConTarget_ = target;
        if (!gotoCon_)
            gotoCon_ = new charts::ui::frmGotoCon(
                [this](const std::string& entry) {
                    link_.ChartTarget = gotoConTarget_;
                    spread::ChartContext c = Context();
                    spread::CenterOnConst(c, entry);
                },
                &window_);
        gotoCon_->show();
        gotoCon_->raise();
    }

    void PlotWindow(const std::string& target)
    {
        auto* plot = new charts::ui::frmStPlot(
            ui_,
            [this](charts::frmStPlot& model) {
                spread::ChartContext c = Context();
                spread::ChartPlotFile(c, model);
            },
            &window_);
        plot->setAttribute(Qt::WA_DeleteOnClose);
        plot->model.ChartTarget = target;
        plot->setWindowTitle(target == "C" ? QObject::tr("Plot Entered Coordinates (planetarium)")
                                           : QObject::tr("Plot Entered Coordinates"));
        plot->show();
    }

    // plotscope and sslococ: the mount's position on a chart.
    void PlotScope()
    {
        if (!scope_.ReadScopeLocation)
            return;
        const std::optional<std::pair<double, double>> at = scope_.ReadScopeLocation();
        if (!at)
            return;
        link_.ChartTarget = "D";
        spread::ChartContext c = Context();
        spread::PlotRaanddec(c, at->first, at->second);
    }

    // The planetarium program itself, started in a normal window, errors ignored.
    void StartPlanetarium()
    {
        const std::filesystem::path program = spread::PlanetariumProgram(state_.prefs);
        if (!program.empty())
            QProcess::startDetached(QString::fromStdString(program.string()), {});
    }

    // tolvmoon: the Virtual Moon Atlas on the site and the observing moment.
    void VirtualMoon()
    {
        spread::ChartContext c = Context();
        const QString program = QStandardPaths::findExecutable(spread::kVirtualMoonProgram);
        spread::tolvmoon(c, program.toStdString(),
                         [](const std::string& file, const std::vector<std::string>& arguments) {
                             QStringList list;
                             for (const std::string& argument : arguments)
                                 list << QString::fromStdString(argument);
                             QProcess::startDetached(QString::fromStdString(file), list);
                         });
    }

    void VariableStars(bool all)
    {
        spread::ChartContext c = Context();
        if (all)
            spread::VSOAll(c);
        else
            spread::VSO2(c);
    }

    void Finder()
    {
        const spread::Grid* grid =
            window_.GetGrid(window_.CurrTab() < spread::kSpreadTabs ? window_.CurrTab() : 0);
        const int row = window_.SelectedRow();
        if (!grid || row < 1 || row > grid->MaxRows())
            return;
        const spread::ChartRow cells = spread::ChartRowOf(*grid, row);
        spread::ChartContext c = Context();
        std::optional<spread::frmStarChart> finder =
            spread::CreateStarChartFromDatabase(c, cells.ObjectID, cells.Catalog);
        if (!finder)
            return;
        auto* window = new charts::ui::frmStarChart(
            ui_, [this]() -> const charts::ChartSky& { return Sky(); }, std::move(*finder),
            &window_);
        window->show();
    }

private:
    std::unique_ptr<charts::Planetarium> MakePlanetarium()
    {
        const std::string& setting = state_.prefs.planetarium;
        const std::optional<charts::PlanetariumAddress> address = charts::ParsePlanetarium(setting);
        if (!address)
            throw services::Fault("Unknown planetarium: " + setting, "");
        return charts::MakePlanetarium(*address, state_.dir.path / kPlanetariumListFile,
                                       kPlanetariumTimeout);
    }

    bool PlanetariumFound() const { return !spread::PlanetariumProgram(state_.prefs).empty(); }

    void OpenWindow(std::shared_ptr<charts::ChartDocument> document)
    {
        charts::ui::ChartWindowHooks hooks;
        hooks.Closed = [this](const charts::ChartDocument* closed) { own_.Closed(closed); };
        if (scope_.SlewJ2000)
            hooks.Slew = [this](double raHours, double decDeg, const std::string&) {
                scope_.SlewJ2000(raHours, decDeg);
            };
        hooks.AddToPlan = [this](std::size_t, const std::string& objectId) { AddToPlan(objectId); };
        if (!document->driver.empty())
            hooks.ReadTelescope = scope_.ReadCrosshair;
        QPointer<spread::frmMainScreen> window(&window_);
        hooks.NightVision = [window] { return window && window->Night().NightMode(); };
        auto* chart = new charts::ui::ChartWindow(
            ui_, [this]() -> const charts::ChartSky& { return Sky(); }, std::move(document),
            std::move(hooks), &window_);
        chart->show();
    }

    // "Add to plan" of a chart: the row of the current tab with that ObjectID gets its plan
    // mark, as a click in its plan column gives it.
    void AddToPlan(const std::string& objectId)
    {
        const int tab = window_.CurrTab();
        const spread::Grid* grid = tab < spread::kSpreadTabs ? window_.GetGrid(tab) : nullptr;
        for (int row = 1; grid && row <= grid->MaxRows(); ++row)
            if (grid->Text(row, kObjectIdCol) == objectId) {
                window_.GridCellClicked(tab, row, kPlanCol);
                return;
            }
        ui_.ShowMessage(objectId + " is not on the current tab", "Add to plan", "I");
    }

    spread::frmMainScreen& window_;
    spread::AppState& state_;
    services::UiPort& ui_;
    const astro::Clock& clock_;
    ScopeWiring scope_;
    std::filesystem::path resources_;
    std::optional<charts::ChartSky> sky_;
    charts::OwnChart own_;
    charts::CdcBridge cdc_;
    charts::ChartLink link_;
    QPointer<charts::ui::frmGotoCon> gotoCon_;
    std::string gotoConTarget_ = "D";
};

} // namespace

ChartContextSource WireCharts(spread::frmMainScreen& window, spread::AppState& state,
                              services::UiPort& ui, const astro::Clock& clock,
                              const ScopeWiring& scope, const std::filesystem::path& resources)
{
    std::error_code ignored;
    std::filesystem::remove(state.dir.File(charts::kChartWorkFile), ignored);

    auto* link = new ChartCommands(window, state, ui, clock, scope, resources);
    spread::CommandDispatcher& dispatcher = window.Dispatcher();
    dispatcher.SetAction("chartsob", [link] { link->ChartSob("D"); });
    dispatcher.SetAction("cdc_chartsob", [link] { link->ChartSob("C"); });
    for (const char* key : {"charts", "cdc_charts", "chartstoolbar"})
        dispatcher.SetAction(key, [link] { link->PlotAll(); });
    dispatcher.SetAction("mnuppppdef", [link] { link->PlotAllCentred("D"); });
    dispatcher.SetAction("cdc_mnuppppdef", [link] { link->PlotAllCentred("C"); });
    dispatcher.SetAction("mnusc", [link] { link->StarsOnly(); });
    dispatcher.SetAction("mnugotocon", [link] { link->GotoCon("D"); });
    dispatcher.SetAction("cdc_mnugotocon", [link] { link->GotoCon("C"); });
    dispatcher.SetAction("mnuplote", [link] { link->PlotWindow("D"); });
    dispatcher.SetAction("cdc_mnuplote", [link] { link->PlotWindow("C"); });
    dispatcher.SetAction("mnufinder", [link] { link->Finder(); });
    for (const char* key : {"plotscope", "sslococ"})
        dispatcher.SetAction(key, [link] { link->PlotScope(); });
    for (const char* key : {"plotos", "cscb"})
        dispatcher.SetAction(key, [link] { link->ChartSob("D"); });
    dispatcher.SetAction("Cartes du Ciel", [link] { link->StartPlanetarium(); });
    dispatcher.SetAction("tolvmoon", [link] { link->VirtualMoon(); });
    dispatcher.SetAction("vso", [link] { link->VariableStars(false); });
    dispatcher.SetAction("vsoall", [link] { link->VariableStars(true); });
    return [link] { return link->Context(); };
}

} // namespace app
