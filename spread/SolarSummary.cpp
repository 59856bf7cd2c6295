#include "spread/SolarSummary.h"

#include "astro/Moon.h"
#include "astro/Planets.h"
#include "astro/Position.h"
#include "astro/SolarCommon.h"
#include "astro/Sun.h"
#include "astro/Text.h"
#include "astro/Time.h"
#include "services/Vb.h"

#include <cmath>

namespace spread {

namespace {

constexpr const char* kPlanetCaptions[] = {"Mercury", "Venus",  "Mars",    "Jupiter",
                                           "Saturn",  "Uranus", "Neptune", "Pluto"};

// The clock's local time in hours.
double LocalHours(const astro::ObservingClock& clock, const astro::Clock& computerClock)
{
    if (clock.UseRealTime == "Y") {
        const astro::LocalDateTime now = computerClock.Now();
        return now.hour + now.minute / 60.0 + now.second / 3600.0;
    }
    return astro::LeadingNumber(std::string_view(clock.Ptime).substr(0, 2)) +
           astro::LeadingNumber(clock.Ptime.size() > 3 ? std::string_view(clock.Ptime).substr(3, 2)
                                                       : std::string_view()) /
               60.0;
}

} // namespace

BodyTimes TimesOf(const astro::ObservingClock& clock, const astro::Clock& computerClock,
                  double raHours, double decDegrees, astro::FaultSink& faults)
{
    const astro::Sexagesimal r = astro::ConvertFromDecimal(raHours);
    const astro::Hms ra{r.degrees, r.minutes, r.seconds};
    const astro::Dms dec = astro::SignPush(astro::ConvertFromDecimal(decDegrees));
    BodyTimes t;

    const astro::Hms ha = astro::CalcHourAngle(clock, computerClock, ra, false, faults);
    t.altitude = astro::AltitudeText(astro::AltitudeOf(clock.Plat, ha, decDegrees, faults));

    const astro::RiseSetTimes times = astro::RiseSet(clock, computerClock, ra, dec, faults);
    const astro::RiseSetShown shown = astro::ShownRiseSet(times);
    t.rise = shown.rise;
    t.set = shown.set;

    const double hourAngle = astro::ConvertToDecimal(ha.seconds, ha.minutes, ha.hours);
    double transit = LocalHours(clock, computerClock) - hourAngle * astro::kSolarPerSidereal;
    transit -= 24 * std::floor(transit / 24);
    t.transit = astro::RiseSetTimeText(transit, clock.timesAMPM);
    return t;
}

std::vector<SummaryRow> PlanetSummary(const astro::ObservingClock& clock,
                                      const astro::Clock& computerClock,
                                      const std::filesystem::path& programDir,
                                      astro::FaultSink& faults)
{
    std::vector<SummaryRow> rows;
    for (int planet = 1; planet <= astro::kPlanetCount; ++planet) {
        const char* caption = kPlanetCaptions[planet - 1];
        const astro::PlanetOutputs p = astro::CalcPlanets(
            caption, static_cast<std::int16_t>(planet), clock, computerClock, programDir, faults);
        if (!p.valid)
            continue;
        SummaryRow row;
        row.body = caption;
        row.ra = p.ra;
        row.dec = p.dec;
        row.times = TimesOf(clock, computerClock, p.place.raHours, p.place.decDegrees, faults);
        row.magnitude = services::vb::Format(p.place.magnitude, "0.00");
        row.size = services::vb::Format(p.place.size, "0.0") + "\"";
        row.illumination = services::vb::Format(p.place.illuminated, "0.0");
        rows.push_back(std::move(row));
    }
    return rows;
}

SolarSummaryResult SolarSummary(const astro::ObservingClock& clock,
                                const astro::Clock& computerClock,
                                const std::filesystem::path& programDir, astro::FaultSink& faults)
{
    SolarSummaryResult result;
    astro::RoutineFaults sunFaults(faults, "Module1.CalcSun");
    const astro::SunOutputs sun = astro::CalcSun(clock, computerClock, sunFaults);
    if (sunFaults.count == 0) {
        SummaryRow row;
        row.body = "Sun";
        row.ra = sun.ra2;
        row.dec = sun.dec2;
        row.times.altitude = sun.altitude;
        row.times.rise = sun.sunrise;
        row.times.set = sun.sunset;
        const double transit = astro::SunTransit(clock, computerClock, faults);
        if (!std::isnan(transit))
            row.times.transit = astro::SunTimeText(transit, clock.timesAMPM);
        row.magnitude = "-26.74";
        row.size = sun.diameter;
        row.illumination = "100.0";
        result.rows.push_back(std::move(row));
        result.darkness = astro::DarknessText(sun, clock.timesAMPM);
        if (!std::isnan(sun.twilightEndsHours) && !std::isnan(sun.twilightBeginsHours) &&
            !sun.twilightEnds.empty())
            result.twilight = "Astronomical twilight ends " +
                              astro::SunTimeText(sun.twilightEndsHours, clock.timesAMPM) +
                              ", begins " +
                              astro::SunTimeText(sun.twilightBeginsHours, clock.timesAMPM);
    }

    astro::RoutineFaults moonFaults(faults, "Module1.CalcMoon");
    const astro::MoonOutputs moon = astro::CalcMoon(clock, computerClock, moonFaults);
    if (moonFaults.count == 0) {
        SummaryRow row;
        row.body = "Moon";
        row.ra = moon.ra2;
        row.dec = moon.dec2;
        row.times = TimesOf(clock, computerClock, moon.raHours, moon.decDeg, faults);
        row.times.altitude = moon.altitude;
        row.times.rise = moon.moonrise;
        row.times.set = moon.moonset;
        row.size = moon.diameter;
        row.illumination = moon.illuminated;
        result.rows.push_back(std::move(row));
    }
    const astro::MoonPhaseIcon phase = astro::CalcMoonPhase(clock, computerClock, faults);
    if (!phase.icon.empty()) {
        result.moonAge = astro::FixedText(phase.age, 1, 1);
        result.moonIcon = phase.icon;
    }
    const astro::NextLunarPhases next = astro::NextMoonPhases(clock, computerClock, faults);
    if (!std::isnan(next.newMoon)) {
        result.nextNew = astro::PhaseTimeText(next.newMoon, clock.PTz, false, faults);
        result.nextFull = astro::PhaseTimeText(next.fullMoon, clock.PTz, false, faults);
    }

    std::vector<SummaryRow> planets = PlanetSummary(clock, computerClock, programDir, faults);
    for (SummaryRow& row : planets)
        result.rows.push_back(std::move(row));
    return result;
}

} // namespace spread
