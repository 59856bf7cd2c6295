#pragma once
// selvane-cli sun, moon and moonphases: the Sun and the Moon for the observing clock and site
// of the settings, and the new and full moons of a year.
//
//   sun               the Sun's 14 outputs
//   moon              the Moon's 14 outputs, its age and icon, the next new and full moon
//   moonphases YEAR   the 29 new and full moons counted from the first lunation of YEAR
//
// Output: a header line, then tab-separated lines:
//   sun:  TrueLon Dist RA Dec AppLon RA2 Dec2 Diam Rise Set Alt SemiDiam TwiBegin TwiEnd
//         (Dist in astronomical units with 5 decimals)
//   moon: Lon Dist RA Dec Lat RA2 Dec2 Diam Rise Set Alt SemiDiam Illum Elong Age Icon NextNew
//         NextFull (Age in days "0.00"; NextNew and NextFull the UT dates YYYY-MM-DD of the
//         first new and full moon of the phase list on or after the observing date's UT date)
//   moonphases: Phase JD Date, "New" or "Full", the Julian Day with 5 decimals, the UT date
//         and time to the nearest minute, YYYY-MM-DD HH:MM
// Faults go through the port's fault report at their locations.
//
// Exit status: 0 when the routines ran; 1 on a fault (then only the header is written); 2 on
// a usage error (an argument too many, a YEAR that is not a number).

#include "astro/ObservingClock.h"

#include <ostream>
#include <string>
#include <vector>

namespace services {
class UiPort;
}

namespace app {

inline constexpr const char* SunUsage = "usage: selvane-cli ... sun";
inline constexpr const char* MoonUsage = "usage: selvane-cli ... moon";
inline constexpr const char* MoonPhasesUsage = "usage: selvane-cli ... moonphases YEAR";

// The usage errors of the three commands' arguments, or empty.
std::string CheckSunArgs(const std::vector<std::string>& args);
std::string CheckMoonArgs(const std::vector<std::string>& args);
std::string CheckMoonPhasesArgs(const std::vector<std::string>& args);

int RunSunCommand(const astro::ObservingClock& clock, const astro::Clock& computerClock,
                  services::UiPort& ui, std::ostream& out);
int RunMoonCommand(const astro::ObservingClock& clock, const astro::Clock& computerClock,
                   services::UiPort& ui, std::ostream& out);
int RunMoonPhasesCommand(const std::vector<std::string>& args, services::UiPort& ui,
                         std::ostream& out);

} // namespace app
