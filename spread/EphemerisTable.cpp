#include "spread/EphemerisTable.h"

#include "astro/SolarCommon.h"
#include "astro/Text.h"
#include "astro/Time.h"
#include "spread/MinorBodyEphemeris.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace spread {

const std::array<const char*, kEphemerisColumns>& EphemerisHeader()
{
    static const std::array<const char*, kEphemerisColumns> header = {
        "Date (UT)", "RA (h)",         "RA",  "Dec (\u00b0)", "Dec", "Delta (AU)",
        "r (AU)",    "Elong (\u00b0)", "Mag", "Alt (\u00b0)"};
    return header;
}

std::string CutText(double x, int decimals, bool plusSign)
{
    if (!std::isfinite(x))
        return {};
    // Fixed notation with 15 significant digits: the digits the value reads as.
    const double magnitude = std::fabs(x);
    const int leading = magnitude >= 1 ? static_cast<int>(std::floor(std::log10(magnitude))) : 0;
    const int places = std::clamp(14 - leading, decimals, 20);
    char buffer[400];
    std::snprintf(buffer, sizeof buffer, "%.*f", places, magnitude);
    std::string text(buffer);
    const std::size_t point = text.find('.');
    if (point != std::string::npos)
        text.resize(std::min(text.size(), point + 1 + static_cast<std::size_t>(decimals)));
    if (decimals == 0 && !text.empty() && text.back() == '.')
        text.pop_back();
    if (x < 0)
        return "-" + text;
    return plusSign ? "+" + text : text;
}

EphemerisRow EphemerisRowOf(const astro::EphemStep& step, double PlatDeg, double PlonDeg,
                            astro::FaultSink& faults)
{
    // Seconds rounded to a tenth may carry into 24h, which is 0h.
    const astro::Sexagesimal ra = astro::ConvertFromDecimal(step.ra);
    const double altitude =
        astro::SiteAltitude(step.jd, step.ra, step.dec, PlatDeg, PlonDeg, faults);
    return {StepTimeText(step.jd),
            CutText(step.ra, 3),
            astro::FixedText(std::fmod(ra.degrees, 24), 2, 0) + "h " +
                astro::FixedText(ra.minutes, 2, 0) + "m " + astro::FixedText(ra.seconds, 2, 1) +
                "s",
            CutText(step.dec, 2, true),
            astro::SignedAngleText(step.dec),
            astro::FixedText(step.delta, 1, 6),
            astro::FixedText(step.r, 1, 6),
            astro::FixedText(step.elongation, 1, 0),
            step.mag ? astro::FixedText(*step.mag, 1, 2) : std::string(),
            astro::FixedText(altitude, 1, 1)};
}

void OnceEachFault::ReportFault(std::string_view message, std::string_view location)
{
    if (passed_.emplace(std::string(message), std::string(location)).second)
        inner_.ReportFault(message, location);
}

std::vector<EphemerisRow> ComputeEphemeris(const astro::EphemInput& in,
                                           const std::filesystem::path& programDir, double PlatDeg,
                                           double PlonDeg, astro::FaultSink& faults,
                                           astro::MessageBoxSink& messages)
{
    OnceEachFault once(faults);
    std::vector<EphemerisRow> rows;
    rows.reserve(static_cast<std::size_t>(std::max(0L, in.steps)));
    astro::EPHEM(in, programDir, once, messages, [&](const astro::EphemStep& step) {
        rows.push_back(EphemerisRowOf(step, PlatDeg, PlonDeg, once));
    });
    return rows;
}

std::string EphemerisText(const std::vector<EphemerisRow>& rows)
{
    std::string text;
    const auto append = [&text](const auto& cells) {
        for (std::size_t c = 0; c < cells.size(); ++c) {
            if (c)
                text += '\t';
            text += cells[c];
        }
        text += '\n';
    };
    append(EphemerisHeader());
    for (const EphemerisRow& row : rows)
        append(row);
    return text;
}

} // namespace spread
