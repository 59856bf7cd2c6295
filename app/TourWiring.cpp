#include "app/TourWiring.h"

#include "scope/AcpScript.h"
#include "scope/Tour.h"
#include "scope/ui/frmBuildTour.h"
#include "spread/AppState.h"
#include "spread/ui/frmMainScreen.h"

#include <QPointer>

#include <memory>

namespace app {

namespace {

// The grid of the current tab; none for an image tab.
const spread::Grid* CurrentGrid(spread::frmMainScreen& window)
{
    const int tab = window.CurrTab();
    return tab >= 0 && tab < spread::kSpreadTabs ? window.GetGrid(tab) : nullptr;
}

} // namespace

void WireTours(spread::frmMainScreen& window, spread::AppState& state, services::UiPort& ui)
{
    auto tourWindow = std::make_shared<QPointer<scope::ui::frmBuildTour>>();
    spread::CommandDispatcher& dispatcher = window.Dispatcher();
    dispatcher.SetAction("createtour", [&window, &state, &ui, tourWindow] {
        const spread::Grid* grid = CurrentGrid(window);
        // The list is checked before the window opens.
        if (!grid || grid->MaxRows() <= 0) {
            ui.ShowMessage(scope::kTourEmptyText, scope::kTourEmptyTitle, "I");
            return;
        }
        if (!*tourWindow)
            *tourWindow =
                new scope::ui::frmBuildTour(ui, state.dir.File(scope::kTourFileName), &window);
        (*tourWindow)->Open(*grid);
    });
    dispatcher.SetAction("csc", [&window, &state, &ui] {
        scope::CreateAcpScript(ui, state.prefs.ACPPath, state.dir, CurrentGrid(window),
                               state.objectDb.get());
    });
}

} // namespace app
