#include "app/SunMoonCommand.h"

#include "astro/Moon.h"
#include "astro/Sun.h"
#include "astro/Text.h"
#include "astro/Time.h"
#include "services/Vb.h"
#include "spread/PortFaults.h"

#include <cmath>

namespace app {

namespace {

using services::vb::Format;

std::string NoArguments(const std::vector<std::string>& args, const char* command)
{
    return args.empty() ? std::string() : "unknown argument \"" + args[0] + "\" of " + command;
}

void WriteLine(std::ostream& out, const std::vector<std::string>& fields)
{
    std::string line;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (i > 0)
            line += '\t';
        line += fields[i];
    }
    out << line << '\n';
}

} // namespace

std::string CheckSunArgs(const std::vector<std::string>& args)
{
    return NoArguments(args, "sun");
}

std::string CheckMoonArgs(const std::vector<std::string>& args)
{
    return NoArguments(args, "moon");
}

std::string CheckMoonPhasesArgs(const std::vector<std::string>& args)
{
    if (args.empty())
        return "moonphases needs a YEAR";
    if (args.size() > 1)
        return "unknown argument \"" + args[1] + "\" of moonphases";
    if (!astro::ParseNumber(args[0]))
        return "moonphases: YEAR \"" + args[0] + "\" is not a number";
    return {};
}

int RunSunCommand(const astro::ObservingClock& clock, const astro::Clock& computerClock,
                  services::UiPort& ui, std::ostream& out)
{
    spread::PortFaults faults(ui);
    const astro::SunOutputs sun = astro::CalcSun(clock, computerClock, faults);
    WriteLine(out, {"TrueLon", "Dist", "RA", "Dec", "AppLon", "RA2", "Dec2", "Diam", "Rise", "Set",
                    "Alt", "SemiDiam", "TwiBegin", "TwiEnd"});
    if (faults.count == 0) {
        WriteLine(out,
                  {sun.trueLongitude, Format(sun.distance, "0.00000"), sun.ra, sun.dec,
                   sun.apparentLongitude, sun.ra2, sun.dec2, sun.diameter, sun.sunrise, sun.sunset,
                   sun.altitude, sun.semiDiameter, sun.twilightBegins, sun.twilightEnds});
    }
    out.flush();
    return faults.count > 0 || !out ? 1 : 0;
}

int RunMoonCommand(const astro::ObservingClock& clock, const astro::Clock& computerClock,
                   services::UiPort& ui, std::ostream& out)
{
    spread::PortFaults faults(ui);
    const astro::MoonOutputs moon = astro::CalcMoon(clock, computerClock, faults);
    astro::MoonPhaseIcon phase;
    if (faults.count == 0)
        phase = astro::CalcMoonPhase(clock, computerClock, faults);

    astro::NextLunarPhases next;
    if (faults.count == 0)
        next = astro::NextMoonPhases(clock, computerClock, faults);

    WriteLine(out, {"Lon", "Dist", "RA", "Dec", "Lat", "RA2", "Dec2", "Diam", "Rise", "Set", "Alt",
                    "SemiDiam", "Illum", "Elong", "Age", "Icon", "NextNew", "NextFull"});
    if (faults.count == 0) {
        WriteLine(out,
                  {moon.longitude, moon.distance, moon.ra, moon.dec, moon.latitude, moon.ra2,
                   moon.dec2, moon.diameter, moon.moonrise, moon.moonset, moon.altitude,
                   moon.semiDiameter, moon.illuminated, moon.elongation, Format(phase.age, "0.00"),
                   phase.icon, astro::PhaseTimeText(next.newMoon, 0, true, faults),
                   astro::PhaseTimeText(next.fullMoon, 0, true, faults)});
    }
    out.flush();
    return faults.count > 0 || !out ? 1 : 0;
}

int RunMoonPhasesCommand(const std::vector<std::string>& args, services::UiPort& ui,
                         std::ostream& out)
{
    spread::PortFaults faults(ui);
    const std::vector<astro::LunarPhase> phases =
        astro::GetMoonPhase(*astro::ParseNumber(args.at(0)), faults);
    WriteLine(out, {"Phase", "JD", "Date"});
    for (const astro::LunarPhase& p : phases) {
        const std::string date = astro::PhaseTimeText(p.jd, 0, false, faults);
        if (faults.count > 0)
            break;
        WriteLine(out, {p.full ? "Full" : "New", Format(p.jd, "0.00000"), date});
    }
    out.flush();
    return faults.count > 0 || !out ? 1 : 0;
}

} // namespace app
