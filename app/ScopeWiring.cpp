#include "app/ScopeWiring.h"

#include "data/Preferences.h"
#include "app/ScopeCommand.h"
#include "scope/Discovery.h"
#include "astro/Time.h"
#include "scope/TelescopeStuff.h"
#include "scope/ui/frmChooser.h"
#include "scope/ui/frmScopePanel.h"
#include "scope/ui/frmScopePos.h"
#include "services/Fault.h"
#include "services/Vb.h"
#include "spread/AppState.h"
#include "spread/Grid.h"
#include "spread/ui/frmMainScreen.h"

#include <QAction>
#include <QDir>
#include <QPointer>
#include <QProcess>

#include <exception>
#include <optional>
#include <utility>

namespace app {

namespace {

namespace vb = services::vb;

// The Telescope menu over the main window's tools: one tool a key, whatever band shows it.
class MainWindowMenu : public scope::TelescopeMenu
{
public:
    explicit MainWindowMenu(spread::frmMainScreen& window) : window_(window) {}

    std::string Caption() const override
    {
        const QAction* tool = window_.Tool("lx200enable");
        return tool ? tool->text().toStdString() : std::string();
    }
    void SetCaption(const std::string& caption) override
    {
        if (QAction* tool = window_.Tool("lx200enable"))
            tool->setText(QString::fromStdString(caption));
    }
    void SetToolEnabled(std::string_view, std::string_view key, bool enabled) override
    {
        if (QAction* tool = window_.Tool(std::string(key)))
            tool->setEnabled(enabled);
    }
    void Redraw() override { window_.update(); }

private:
    spread::frmMainScreen& window_;
};

// Everything the commands share, a child of the main window so that it goes with it.
class ScopeLink : public QObject
{
public:
    ScopeLink(spread::frmMainScreen& window, spread::AppState& state, services::UiPort& ui,
              const astro::Clock& clock, scope::SpeechPlatform& platform)
        : QObject(&window), window_(window), state_(state), ui_(ui), speech_(platform),
          menu_(window), context_{ui, state.prefs, scopeState_, layer_, speech_, clock}
    {
        layer_.MakeDriver = scope::MakeTelescope;
        layer_.profileFile = state.settings.File();
        layer_.Choose = [this](const std::string& current) {
            if (!chooser_)
                chooser_ = new scope::ui::frmChooser(
                    [this] {
                        return scope::DiscoverTelescopes({state_.prefs.indiserver},
                                                         {state_.prefs.alpacadiscovery});
                    },
                    &window_);
            return chooser_->Choose(current);
        };
    }
    ~ScopeLink() override { scope::ReleaseScope(scopeState_); }

    scope::ScopeContext& Context() { return context_; }
    scope::TelescopeMenu& Menu() { return menu_; }
    scope::Speech& Speech() { return speech_; }

    void ResetMenu() { scope::ResetTelescopeMenu(menu_, state_.dir.path); }

    void Setup()
    {
        scope::scopesetup(context_);
        services::Trap(ui_, "TMM.SavePreferences", [&] {
            data::SavePreferences(state_.prefs, state_.settings);
            state_.settings.Sync();
        });
    }

    void ControlPanelProgram()
    {
        if (!scope::lx200cp(context_))
            return;
        const QString program =
            QString::fromStdString((state_.dir.path / scope::kLx200ControlPanel).string());
        if (!QProcess::startDetached(program, {}))
            ui_.ShowMessage("The program " + program.toStdString() + " could not be started",
                            "Attention!", "E");
    }

    // The current tab's selected row, from 1, on its grid; 0 when none.
    int SelectedRow(const spread::Grid*& grid) const
    {
        const int tab = window_.CurrTab();
        grid = tab >= 0 && tab < spread::kSpreadTabs ? window_.GetGrid(tab) : nullptr;
        const int row = window_.SelectedRow();
        return grid && row >= 1 && row <= grid->MaxRows() ? row : 0;
    }

    void GotoObject()
    {
        const spread::Grid* grid = nullptr;
        const int row = SelectedRow(grid);
        if (!row)
            return;
        scope::gotoobject(context_, RowSelection(*grid, row));
    }

    void Sync()
    {
        const spread::Grid* grid = nullptr;
        const int row = SelectedRow(grid);
        if (!row)
            return;
        const scope::Selection cells = RowSelection(*grid, row);
        scope::SyncScope(context_, cells.SelectedRA, cells.SelectedDec);
    }

    // Where the mount points, for plotscope and sslococ: without a telescope, the message
    // that none is attached and nothing.
    std::optional<std::pair<double, double>> ReadScopeLocation()
    {
        const scope::ScopePosition p = scope::GetScopePosition(context_);
        if (!p.result) {
            ui_.ShowMessage(scope::kNoTelescopeMessage, "Attention!", "I");
            return std::nullopt;
        }
        return std::pair{p.ra, p.dec};
    }

    // The chart window's crosshair: a fault is shown and logged, and gives nothing.
    // Deliberate: the mount's position goes on the J2000 chart unprecessed, as plotscope and
    // PlotRaanddec chart it, so that the crosshair and the plotted position agree.
    std::optional<std::pair<double, double>> ReadCrosshair()
    {
        const std::optional<scope::ScopePosition> p =
            scope::ReadScopePositionAt(context_, scope::kPositionLocation);
        if (!p || !p->result)
            return std::nullopt;
        return std::pair{p->ra, p->dec};
    }

    bool TelescopeEnabled() const { return scope::IsTelescopeEnabled(menu_); }

    bool ConnectTelescope()
    {
        scope::ConnectTelescope(context_);
        return scopeState_.Scope != nullptr;
    }

    void SlewJ2000(double raHours, double decDeg)
    {
        if (!scope::IsTelescopeEnabled(menu_)) {
            astro::ui::TelescopeNotConnected(ui_);
            return;
        }
        const astro::Sexagesimal ra = astro::ConvertFromDecimal(raHours);
        const astro::Dms dec = astro::SignPush(astro::ConvertFromDecimal(decDeg));
        scope::GotoSelectedObject(context_, {ra.degrees, ra.minutes, ra.seconds}, dec, 2000);
    }

    void OpenPosition()
    {
        if (!position_)
            position_ = new scope::ui::frmScopePos(context_, &window_);
        position_->Open();
    }

    void OpenPanel()
    {
        if (!panel_)
            panel_ = new scope::ui::frmScopePanel(context_, &window_);
        panel_->Open();
    }

    void SolarSystemGoto(const astro::Hms& ra, const astro::Dms& dec)
    {
        if (scope::IsTelescopeEnabled(menu_))
            scope::SolarSystemGoto(context_, ra, dec);
        else
            astro::ui::TelescopeNotConnected(ui_);
    }

private:
    spread::frmMainScreen& window_;
    spread::AppState& state_;
    services::UiPort& ui_;
    scope::TelescopeState scopeState_;
    scope::DriverLayer layer_;
    scope::Speech speech_;
    MainWindowMenu menu_;
    scope::ScopeContext context_;
    QPointer<scope::ui::frmChooser> chooser_;
    QPointer<scope::ui::frmScopePos> position_;
    QPointer<scope::ui::frmScopePanel> panel_;
};

} // namespace

ScopeWiring WireScope(spread::frmMainScreen& window, spread::AppState& state, services::UiPort& ui,
                      const astro::Clock& clock, scope::SpeechPlatform& speech)
{
    auto* link = new ScopeLink(window, state, ui, clock, speech);
    spread::CommandDispatcher& dispatcher = window.Dispatcher();
    dispatcher.SetAction("lx200enable",
                         [link] { scope::lx200enable(link->Context(), link->Menu()); });
    dispatcher.SetAction("scopesetup", [link] { link->Setup(); });
    dispatcher.SetAction("lx200cp", [link] { link->ControlPanelProgram(); });
    dispatcher.SetAction("gotoobject", [link] { link->GotoObject(); });
    dispatcher.SetAction("sync", [link] { link->Sync(); });
    dispatcher.SetAction("cspos", [link] { link->OpenPosition(); });
    dispatcher.SetAction("scopepanel", [link] { link->OpenPanel(); });

    // The functions hold the link by a guarded pointer: the port may outlive the window.
    const QPointer<ScopeLink> guarded(link);
    ScopeWiring wiring;
    wiring.Speak = [guarded, &state](const std::string& text) {
        if (guarded)
            guarded->Speech().Speak(text, state.prefs.Dsound);
    };
    wiring.CreateScopeVoice = [guarded, &state] {
        if (guarded)
            guarded->Speech().CreateScopeVoice(state.prefs.Dsound);
    };
    wiring.ResetMenu = [guarded] {
        if (guarded)
            guarded->ResetMenu();
    };
    wiring.Goto = [guarded](const astro::Hms& ra, const astro::Dms& dec) {
        if (guarded)
            guarded->SolarSystemGoto(ra, dec);
    };
    wiring.ReadScopeLocation = [guarded]() -> std::optional<std::pair<double, double>> {
        return guarded ? guarded->ReadScopeLocation() : std::nullopt;
    };
    wiring.ReadCrosshair = [guarded]() -> std::optional<std::pair<double, double>> {
        return guarded ? guarded->ReadCrosshair() : std::nullopt;
    };
    wiring.TelescopeEnabled = [guarded] { return guarded && guarded->TelescopeEnabled(); };
    wiring.ConnectTelescope = [guarded] { return guarded && guarded->ConnectTelescope(); };
    wiring.SpeechRegistered = [guarded] {
        return guarded && (guarded->Speech().IsACPScope() || guarded->Speech().IsACPTelescope());
    };
    wiring.SlewJ2000 = [guarded](double raHours, double decDeg) {
        if (guarded)
            guarded->SlewJ2000(raHours, decDeg);
    };
    wiring.Context = [guarded]() -> scope::ScopeContext* {
        return guarded ? &guarded->Context() : nullptr;
    };
    return wiring;
}

} // namespace app
