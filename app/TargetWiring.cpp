#include "app/TargetWiring.h"

#include "scope/ui/frmNearby.h"
#include "scope/ui/frmTarget.h"
#include "spread/AppState.h"
#include "spread/Grid.h"
#include "spread/Targeting.h"
#include "spread/ui/ctlSpreadFilter.h"
#include "spread/ui/frmMainScreen.h"

#include <QPointer>

namespace app {

namespace {

// The windows of the target, children of the main window so that they go with it.
class TargetLink : public QObject
{
public:
    TargetLink(spread::frmMainScreen& window, spread::AppState& state, services::UiPort& ui,
               const ScopeWiring& scope)
        : QObject(&window), window_(window), state_(state), ui_(ui), scope_(scope)
    {
    }

    void SetHome()
    {
        const int tab = window_.CurrTab();
        const spread::Grid* grid =
            tab >= 0 && tab < spread::kSpreadTabs ? window_.GetGrid(tab) : nullptr;
        if (grid)
            spread::SetHome(state_.target, *grid, window_.SelectedRow(), ui_);
    }

    void OpenSearch(scope::SearchWindow which)
    {
        QPointer<scope::ui::frmNearby>& form =
            which == scope::SearchWindow::Identify ? identify_ : ntos_;
        if (!form) {
            scope::ui::NearbyHooks hooks;
            hooks.ReadScope = scope_.ReadScopeLocation;
            hooks.Goto = scope_.SlewJ2000;
            hooks.PlanChanged = [this] { window_.RefreshGrid(window_.CurrTab()); };
            form = new scope::ui::frmNearby(state_, which, std::move(hooks), &window_);
        }
        form->Open();
    }

    void OpenTarget()
    {
        if (!target_)
            target_ = new scope::ui::frmTarget(
                state_.target, ui_,
                [this] {
                    window_.FilterPanel().ShowTargeting(state_.target.TargetingOn);
                    if (!state_.NoLoadYet)
                        window_.LoadCurrentTab("BUILD");
                },
                &window_);
        target_->Open();
    }

private:
    spread::frmMainScreen& window_;
    spread::AppState& state_;
    services::UiPort& ui_;
    ScopeWiring scope_;
    QPointer<scope::ui::frmNearby> identify_;
    QPointer<scope::ui::frmNearby> ntos_;
    QPointer<scope::ui::frmTarget> target_;
};

} // namespace

void WireTarget(spread::frmMainScreen& window, spread::AppState& state, services::UiPort& ui,
                const ScopeWiring& scope)
{
    state.target.ScopeEnabled = scope.TelescopeEnabled;
    state.target.ReadScope = scope.ReadScopeLocation;
    auto* link = new TargetLink(window, state, ui, scope);
    spread::CommandDispatcher& dispatcher = window.Dispatcher();
    dispatcher.SetAction("sethome", [link] { link->SetHome(); });
    dispatcher.SetAction("identifyobject",
                         [link] { link->OpenSearch(scope::SearchWindow::Identify); });
    dispatcher.SetAction("tolNTOS", [link] { link->OpenSearch(scope::SearchWindow::NTOS); });
    QObject::connect(&window.FilterPanel(), &spread::ctlSpreadFilter::TargetRequested, link,
                     [link] { link->OpenTarget(); });
}

} // namespace app
