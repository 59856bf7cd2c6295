#include "app/PlanetsCommand.h"

#include "app/CliOptions.h"

#include "astro/PlanetaryTerms.h"
#include "astro/Planets.h"
#include "astro/Position.h"
#include "astro/Text.h"
#include "spread/LoadTheGrid.h"
#include "spread/PortFaults.h"

namespace app {

namespace {

// The planet number of planets' argument, 0 when it is not one of 1 to 8.
int PlanetNumber(const std::string& text)
{
    return text.size() == 1 && text[0] >= '1' && text[0] <= '8' ? text[0] - '0' : 0;
}

} // namespace

std::string CheckPlanetsArgs(const std::vector<std::string>& args)
{
    if (args.size() > 1)
        return "planets takes at most one planet number";
    if (args.size() == 1 && PlanetNumber(args[0]) == 0)
        return "planet \"" + args[0] + "\" is not a number from 1 to 8";
    return {};
}

std::string CheckEarthArgs(const std::vector<std::string>& args)
{
    if (args.empty())
        return "earth needs at least one T";
    for (const std::string& T : args)
        if (!astro::ParseNumber(T))
            return "T \"" + T + "\" is not a number";
    return {};
}

int RunPlanetsCommand(spread::AppState& TMM, const std::vector<std::string>& args,
                      std::ostream& out, const astro::Clock& computerClock)
{
    if (!CheckPlanetsArgs(args).empty())
        return 2;
    spread::PortFaults faults(TMM.ui);
    const astro::ObservingClock clock = spread::ClockFrom(TMM.prefs);
    const int first = args.empty() ? 1 : PlanetNumber(args[0]);
    const int last = args.empty() ? astro::kPlanetCount : first;
    out << "Planet\tHelioLon\tHelioLat\tLon\tLat\tRA\tDec\tDist\tElong\tSize\tPhase\tIllum\tMag"
           "\tRise\tSet\n";
    for (int planet = first; planet <= last; ++planet) {
        const char* name = PlanetNames[planet - 1];
        const astro::PlanetOutputs p = astro::CalcPlanets(
            name, static_cast<std::int16_t>(planet), clock, computerClock, TMM.dir.path, faults);
        if (!p.valid)
            return 1;
        const astro::Sexagesimal ra = astro::ConvertFromDecimal(p.place.raHours);
        const astro::RiseSetTimes times =
            astro::RiseSet(clock, computerClock, {ra.degrees, ra.minutes, ra.seconds},
                           astro::SignPush(astro::ConvertFromDecimal(p.place.decDegrees)), faults);
        const astro::RiseSetShown shown = astro::ShownRiseSet(times);
        out << name << '\t' << p.helioLongitude << '\t' << p.helioLatitude << '\t' << p.longitude
            << '\t' << p.latitude << '\t' << p.ra << '\t' << p.dec << '\t' << p.distance << '\t'
            << p.elongation << '\t' << p.size << '\t' << p.phase << '\t' << p.illumination << '\t'
            << p.magnitude << '\t' << shown.rise << '\t' << shown.set << '\n';
    }
    out.flush();
    return faults.count > 0 ? 1 : 0;
}

int RunEarthCommand(spread::AppState& TMM, const std::vector<std::string>& args, std::ostream& out)
{
    if (!CheckEarthArgs(args).empty())
        return 2;
    spread::PortFaults faults(TMM.ui);
    astro::ReadPlanetaryTerms(0, TMM.dir.path, faults, faults);
    out << "T\tL\tB\tR\n";
    for (const std::string& T : args) {
        const astro::HelioPlace earth = astro::PlPosHi(0, *astro::ParseNumber(T), faults);
        out << T << '\t' << FixedDecimals(earth.L, 10) << '\t' << FixedDecimals(earth.B, 10) << '\t'
            << FixedDecimals(earth.R, 10) << '\n';
    }
    out.flush();
    return faults.count > 0 ? 1 : 0;
}

} // namespace app
