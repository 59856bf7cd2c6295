#include "app/CometWiring.h"

#include "astro/ui/frmComet.h"
#include "data/MinorBodies.h"
#include "spread/AppState.h"
#include "spread/ElementUpdate.h"
#include "spread/LoadTheGrid.h"
#include "spread/ui/frmMainScreen.h"

#include <QPointer>

#include <memory>

namespace app {

void WireComets(spread::frmMainScreen& window, spread::AppState& state, services::UiPort& ui,
                const astro::Clock& clock)
{
    // The two windows, comets first; the pointers go with the main window's dispatcher.
    auto windows = std::make_shared<std::array<QPointer<astro::ui::frmComet>, 2>>();
    const auto open = [windows, &window, &state, &ui, &clock](int which) {
        QPointer<astro::ui::frmComet>& form = (*windows)[static_cast<std::size_t>(which)];
        if (!form)
            form = new astro::ui::frmComet(
                astro::ui::SolarContext{ui, state.dir.path,
                                        [&state] { return spread::ClockFrom(state.prefs); }, clock},
                which == 0 ? "C" : "A", &window);
        form->show();
        form->raise();
        form->activateWindow();
    };
    spread::CommandDispatcher& dispatcher = window.Dispatcher();
    dispatcher.SetAction("mnuComet", [open] { open(0); });
    dispatcher.SetAction("mnuAsteroid", [open] { open(1); });
    dispatcher.SetAction("upastcom", [windows, &state, &ui] {
        if (!spread::UpdateElements(ui, state.dir.File(data::AstCometFileName)))
            return;
        for (const QPointer<astro::ui::frmComet>& form : *windows)
            if (form)
                form->RefreshList();
    });
}

} // namespace app
