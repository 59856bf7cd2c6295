#pragma once
// A comet's or asteroid's ephemeris as the comet window shows, copies and saves it: one row of
// texts a step (UT date, right ascension and declination decimal and sexagesimal, distances,
// elongation, magnitude, altitude at the observing site), and the tab-separated text of a table.
//
// Conventions: right ascension and declination are EPHEM's J2000.0 outputs; the site's
// longitude is degrees WEST positive. Texts are UTF-8 (the degree sign is U+00B0).

#include "astro/FaultSink.h"
#include "astro/Orbits.h"

#include <array>
#include <filesystem>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace spread {

inline constexpr int kEphemerisColumns = 10;
using EphemerisRow = std::array<std::string, kEphemerisColumns>;

// The column captions, in row order.
const std::array<const char*, kEphemerisColumns>& EphemerisHeader();

// x cut (not rounded) to decimals places, as read from its 15-significant-digit decimal form
// (so 12.3459999999999996 cuts to "12.346" and 12.34599 to "12.345"); zeros are padded, "-" is
// kept on a negative value that cuts to 0, "+" leads a value that is not negative when
// plusSign. Empty for a value that is not finite.
std::string CutText(double x, int decimals, bool plusSign = false);

// One step's row: date "YYYY-MM-DD HH:MM" (UT), RA "12.345", RA as h m s, Dec "+23.45", Dec as
// degrees, minutes and seconds, Delta and r "0.000000", elongation whole degrees, magnitude
// "0.00" (empty when the step has none), altitude at the site "0.0".
// Given: PlatDeg, PlonDeg: the observing site, degrees, longitude west positive.
EphemerisRow EphemerisRowOf(const astro::EphemStep& step, double PlatDeg, double PlonDeg,
                            astro::FaultSink& faults);

// Passes each fault on once: a fault with the message and location of one already passed is
// dropped, so that an element set that fails at every step is reported once, not once a step.
class OnceEachFault : public astro::FaultSink
{
public:
    explicit OnceEachFault(astro::FaultSink& inner) : inner_(inner) {}
    void ReportFault(std::string_view message, std::string_view location) override;
    void EndProcess(int exitCode) override { inner_.EndProcess(exitCode); }

private:
    astro::FaultSink& inner_;
    std::set<std::pair<std::string, std::string>> passed_;
};

// Runs EPHEM for in and returns a row a step, with the altitudes for the site.
// Status: each distinct fault is passed to faults once; a fault of the set-up gives no rows,
//   one within a step leaves that step's outputs as they stood and the run goes on.
// Given: programDir holds the planetary series and the delta T table EPHEM reads.
std::vector<EphemerisRow> ComputeEphemeris(const astro::EphemInput& in,
                                           const std::filesystem::path& programDir, double PlatDeg,
                                           double PlonDeg, astro::FaultSink& faults,
                                           astro::MessageBoxSink& messages);

// The header line and the rows, cells separated by tabs, each line ending in "\n".
std::string EphemerisText(const std::vector<EphemerisRow>& rows);

} // namespace spread
