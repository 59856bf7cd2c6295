#include "app/SolarSystemWiring.h"

#include "app/PlanetsCommand.h"
#include "astro/Moon.h"
#include "astro/Text.h"
#include "astro/ui/frmMoon.h"
#include "astro/ui/frmPlanets1.h"
#include "astro/ui/frmSolarSummary.h"
#include "astro/ui/frmSun.h"
#include "spread/AppState.h"
#include "spread/LoadTheGrid.h"
#include "spread/PortFaults.h"
#include "spread/ui/frmMainScreen.h"

#include <QIcon>
#include <QLabel>
#include <QPointer>
#include <QStatusBar>
#include <QTimer>

namespace app {

namespace {

// The windows and the fault sink they report through, made on first use. A child of the main
// window, so that all go with it.
class SolarSystemLink : public QObject
{
public:
    SolarSystemLink(spread::frmMainScreen& window, spread::AppState& state, services::UiPort& ui,
                    const astro::Clock& clock, astro::ui::TelescopeGoto telescopeGoto)
        : QObject(&window), window_(window), state_(state), clock_(clock), faults_(ui), ui_(ui),
          goto_(std::move(telescopeGoto))
    {
    }
    ~SolarSystemLink() override
    {
        delete sun_;
        delete moon_;
    }

    void OpenSun()
    {
        if (!sun_) {
            sun_ = new astro::ui::frmSun(ui_, faults_, clock_, &window_);
            sun_->SetGoto(goto_);
        }
        sun_->Open(spread::ClockFrom(state_.prefs));
    }

    void OpenMoon()
    {
        if (!moon_) {
            moon_ = new astro::ui::frmMoon(ui_, faults_, clock_, state_.dir.path, &window_);
            moon_->SetGoto(goto_);
        }
        moon_->Open(spread::ClockFrom(state_.prefs));
    }

private:
    spread::frmMainScreen& window_;
    spread::AppState& state_;
    const astro::Clock& clock_;
    spread::PortFaults faults_;
    services::UiPort& ui_;
    astro::ui::TelescopeGoto goto_;
    astro::ui::frmSun* sun_ = nullptr;
    astro::ui::frmMoon* moon_ = nullptr;
};

} // namespace

void UpdateMoonPhaseIcon(spread::frmMainScreen& window, spread::AppState& state,
                         services::UiPort& ui, const astro::Clock& clock)
{
    auto* label = window.statusBar()->findChild<QLabel*>("imgMoonPhase");
    if (!label)
        return;
    spread::PortFaults faults(ui);
    const astro::MoonPhaseIcon phase =
        astro::CalcMoonPhase(spread::ClockFrom(state.prefs), clock, faults);
    if (phase.icon.empty())
        return;
    label->setPixmap(QIcon(QString::fromStdString(state.dir.Text(phase.icon))).pixmap(24, 24));
    label->setToolTip(
        QString::fromStdString("Moon's age " + astro::FixedText(phase.age, 1, 1) + " days"));
}

void WireSolarSystem(spread::frmMainScreen& window, spread::AppState& state, services::UiPort& ui,
                     const astro::Clock& clock, astro::ui::TelescopeGoto telescopeGoto)
{
    auto* link = new SolarSystemLink(window, state, ui, clock, telescopeGoto);
    spread::CommandDispatcher& dispatcher = window.Dispatcher();
    dispatcher.SetAction("athesun", [link] { link->OpenSun(); });
    dispatcher.SetAction("athemoon", [link] { link->OpenMoon(); });

    // The summary and the planets read the settings and folder at each click.
    auto context = [&state, &ui, &clock] {
        return astro::ui::SolarContext{ui, state.dir.path,
                                       [&state] { return spread::ClockFrom(state.prefs); }, clock};
    };
    auto* summary = new QPointer<astro::ui::frmSolarSummary>;
    auto* planets = new QPointer<astro::ui::frmPlanets1>;
    QObject::connect(link, &QObject::destroyed, [summary, planets] {
        delete summary;
        delete planets;
    });
    dispatcher.SetAction("athesummary", [summary, context, &window] {
        if (!*summary)
            *summary = new astro::ui::frmSolarSummary(context(), &window);
        (*summary)->Refresh();
    });
    constexpr const char* planetKeys[] = {"athemercury", "athevenus",  "athemars",    "athejupiter",
                                          "athesaturn",  "atheuranus", "atheneptune", "athepluto"};
    for (int planet = 1; planet <= 8; ++planet)
        dispatcher.SetAction(planetKeys[planet - 1], [planets, context, &window, planet,
                                                      telescopeGoto] {
            if (!*planets) {
                *planets = new astro::ui::frmPlanets1(context(), &window);
                (*planets)->SetGoto(telescopeGoto);
            }
            (*planets)->ShowPlanet(planet, PlanetNames[planet - 1]);
        });

    auto* icon = new QLabel(&window);
    icon->setObjectName("imgMoonPhase");
    window.statusBar()->addPermanentWidget(icon);
    const auto update = [&window, &state, &ui, &clock] {
        UpdateMoonPhaseIcon(window, state, ui, clock);
    };
    dispatcher.SetAction("date", [&window, update] {
        window.ShowPreferenceWindow("date");
        update();
    });
    auto* timer = new QTimer(link);
    timer->setInterval(60 * 1000);
    QObject::connect(timer, &QTimer::timeout, link, update);
    timer->start();
    QTimer::singleShot(0, link, update);
}

} // namespace app
