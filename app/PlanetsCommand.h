#pragma once
// selvane-cli planets and earth: the planets for the observing clock and site of the settings,
// and the Earth of the high-precision series.
//
//   planets [N]   a line per planet (N: only planet N, 1 Mercury to 8 Pluto)
//   earth T...    the Earth's heliocentric place at each T, Julian centuries from J2000.0
//
// Output, tab-separated after a header line:
//   planets: Planet HelioLon HelioLat Lon Lat RA Dec Dist Elong Size Phase Illum Mag Rise Set,
//     CalcPlanets' twelve outputs after the planet's name in capitals, then rise and set as
//     the object list shows them ("CPolar", "*Never" "Rises*", "*Can't" "Calc*").
//   earth: T L B R, T as typed, then PlPosHi's longitude and latitude (radians) and radius
//     (AU) through "%.10f", from planets.ndx and planets.dat of the program folder.
//
// Exit status: 0; 1 when a routine reported a fault (the port has shown it); 2 on a usage
// error (a planet outside 1 to 8, a T that is not a number).

#include "astro/ObservingClock.h"
#include "spread/AppState.h"

#include <ostream>
#include <string>
#include <vector>

namespace app {

inline constexpr const char* PlanetsUsage = "usage: selvane-cli ... planets [N]";
inline constexpr const char* EarthUsage = "usage: selvane-cli ... earth T...";

// The planets' names as the commands and windows show them, 1 Mercury to 8 Pluto.
inline constexpr const char* PlanetNames[] = {"MERCURY", "VENUS",  "MARS",    "JUPITER",
                                              "SATURN",  "URANUS", "NEPTUNE", "PLUTO"};

std::string CheckPlanetsArgs(const std::vector<std::string>& args);
std::string CheckEarthArgs(const std::vector<std::string>& args);

int RunPlanetsCommand(spread::AppState& TMM, const std::vector<std::string>& args,
                      std::ostream& out, const astro::Clock& computerClock);
int RunEarthCommand(spread::AppState& TMM, const std::vector<std::string>& args, std::ostream& out);

} // namespace app
