#pragma once
// Numeric constants of the astronomy core. The day-number family works with short constants
// and the Julian-Day family with full ones; each routine uses the one its results depend on,
// so the two sets must not be merged.

namespace astro {

// Day-number family (day numbers from 1900 January 0.5).
inline constexpr double kRadiansPerDegreeShort = 0.01745329252;
inline constexpr double kDegreesPerRadianShort = 57.29577951;
inline constexpr double kPiShort = 3.14159265;
inline constexpr double kTwoPiShort = 6.283185308;
inline constexpr double kHalfPiShort = 1.570796327;
// Keeps the arcsine's quotient finite at W = 1 and W = -1.
inline constexpr double kAsnGuard = 1e-20;
// How far past 1 an arcsine argument may lie and still count as floating-point rounding.
inline constexpr double kAsnRoundingMargin = 1e-12;
// Radians to hours of the rise and set hour angle.
inline constexpr double kHoursPerRadianShort = 3.819718634;
// Julian Day of day number 0 (1900 January 0.5).
inline constexpr double kJulianDayOfDayZero = 2415020.0;

// Sidereal time (day number family).
inline constexpr double kSiderealPerSolar = 1.002737908;
inline constexpr double kSolarPerSidereal = 0.9972695677;
inline constexpr double kSiderealGainPerDay = 0.0657098;

// Julian-Day family.
inline constexpr double kPi = 3.14159265358979;
inline constexpr double kTwoPi = 6.28318530717958;
inline constexpr double kLog10OfE = 0.434294481903252;
inline constexpr double kJ2000 = 2451545.0;
inline constexpr double kDaysPerCentury = 36525.0;
inline constexpr double kArcSecond = 4.848136811095355e-06;
inline constexpr double kDegreesPerRadian = 57.29577951308238;
inline constexpr double kHoursPerRadian = 3.819718634205492;

// The fixed rise and set horizon: 34 arc minutes below the geometric one.
inline constexpr double kHorizonArcMinutes = 34.0;

// Delta T table: tenths of a second for 1620, 1622, ... 1992.
inline constexpr int kDeltaTCount = 187;
inline constexpr int kDeltaTFirstYear = 1620;
// Rounding offsets of WriteDMS and WriteHMS, one per number of shown decimal places.
inline constexpr int kRoundingOffsetCount = 8;

// Exit code of the process after the fatal arcsine fault.
inline constexpr int kFatalExitCode = 1;

} // namespace astro
