#include "app/SolarWiring.h"

#include "app/PlanetsCommand.h"
#include "astro/ui/frmPlanets1.h"
#include "astro/ui/frmSolarSummary.h"
#include "spread/AppState.h"
#include "spread/LoadTheGrid.h"
#include "spread/ui/frmMainScreen.h"

#include <QPointer>

namespace app {

void WireSolarSystem(spread::frmMainScreen& window, spread::AppState& state, services::UiPort& ui,
                     const astro::Clock& clock)
{
    // The windows read the settings and folder at each click.
    auto context = [&state, &ui, &clock] {
        return astro::ui::SolarContext{ui, state.dir.path,
                                       [&state] { return spread::ClockFrom(state.prefs); }, clock};
    };
    auto* mainWindow = &window;
    spread::CommandDispatcher& dispatcher = window.Dispatcher();
    auto summary = std::make_shared<QPointer<astro::ui::frmSolarSummary>>();
    dispatcher.SetAction("athesummary", [summary, context, mainWindow] {
        if (!*summary)
            *summary = new astro::ui::frmSolarSummary(context(), mainWindow);
        (*summary)->Refresh();
    });
    auto planets = std::make_shared<QPointer<astro::ui::frmPlanets1>>();
    constexpr const char* keys[] = {"athemercury", "athevenus",  "athemars",    "athejupiter",
                                    "athesaturn",  "atheuranus", "atheneptune", "athepluto"};
    for (int planet = 1; planet <= 8; ++planet)
        dispatcher.SetAction(keys[planet - 1], [planets, context, mainWindow, planet] {
            if (!*planets)
                *planets = new astro::ui::frmPlanets1(context(), mainWindow);
            (*planets)->ShowPlanet(planet, PlanetNames[planet - 1]);
        });
}

} // namespace app
