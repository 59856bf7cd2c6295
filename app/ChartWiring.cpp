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
#include <QTimer>

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
        charts::PlotChartCalls calls;
        calls.DrawChart = [this](const charts::PlotDrawChart& call) { PlotDrawChart(call); };
        calls.PlotDSO = [this](const charts::PlotDso& dso) { PlotDso(dso); };
        auto* plot = new charts::ui::frmStPlot(ui_, std::move(calls), &window_);
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
        const std::string setting = state_.settings.Get("planetarium", "");
        const std::optional<charts::PlanetariumAddress> address = charts::ParsePlanetarium(setting);
        if (!address)
            throw services::Fault("Unknown planetarium: " + setting, "");
        return charts::MakePlanetarium(*address, state_.dir.path / kPlanetariumListFile,
                                       kPlanetariumTimeout);
    }

    bool PlanetariumFound() const
    {
        const std::optional<charts::PlanetariumAddress> address =
            charts::ParsePlanetarium(state_.settings.Get("planetarium", ""));
        if (!address)
            return false;
        const char* path = std::getenv("PATH");
        return !charts::FindPlanetariumProgram(address->kind, state_.prefs.CartesPath,
                                               path ? path : "")
                    .empty();
    }

    void PlotDrawChart(const charts::PlotDrawChart& call)
    {
        link_.ChartTarget = call.ChartTarget;
        if (call.ChartTarget == "C") {
            charts::CdcDrawChartCall cdc;
            cdc.raHours = call.raHours;
            cdc.raMinutes = call.raMinutes;
            cdc.decDegrees = call.decDegrees;
            cdc.decMinutes = call.decMinutes;
            cdc.field = static_cast<std::int16_t>(call.fieldDeg);
            cdc.heading = call.heading;
            link_.CDC_DrawChart(cdc);
            // The plot window sends its objects right after; the chart goes out once they are
            // all gathered, when the event loop next turns.
            QTimer::singleShot(0, this, [this] {
                services::Trap(ui_, "frmStPlot.SSCommand4_Click", [this] { link_.CDC_EndChart(); });
            });
            return;
        }
        charts::DrawChartCall draw;
        draw.raHours = call.raHours;
        draw.raMinutes = call.raMinutes;
        draw.decDegrees = call.decDegrees;
        draw.decMinutes = call.decMinutes;
        draw.field = static_cast<std::int16_t>(call.fieldDeg);
        draw.heading = call.heading;
        link_.DrawChart(draw);
    }

    void PlotDso(const charts::PlotDso& dso)
    {
        charts::PlotDsoCall call;
        call.raHours = dso.position.raHours;
        call.raMinutes = dso.position.raMinutes;
        call.decDegrees = dso.position.decDegrees;
        call.decMinutes = dso.position.decMinutes;
        call.north = dso.position.north ? 1 : 0;
        call.type = static_cast<std::uint8_t>(dso.typeCode);
        const bool named = !dso.position.name.empty() && dso.position.name != "n/a";
        call.objectId = named ? dso.position.name : dso.label;
        call.info = call.objectId;
        if (link_.ChartTarget == "C")
            link_.CDC_PlotDSO(call);
        else
            link_.PlotDSO(call);
    }

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

void WireCharts(spread::frmMainScreen& window, spread::AppState& state, services::UiPort& ui,
                const astro::Clock& clock, const ScopeWiring& scope,
                const std::filesystem::path& resources)
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
}

} // namespace app
