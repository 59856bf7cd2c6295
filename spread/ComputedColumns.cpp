#include "spread/ComputedColumns.h"

#include <charconv>

#include "astro/Position.h"
#include "charts/AtlasPages.h"
#include "spread/FixedFormat.h"
#include "spread/Grid.h"

namespace spread {
namespace {

// A value rounded through a display pattern and kept as a number, as the filters see it.
double Rounded(const FixedFormat& format, double value)
{
    char buffer[FixedFormat::kMaxText];
    return CellValue(std::string_view(buffer, format.Write(value, buffer)));
}

template <std::size_t N>
void AssignInteger(FixedText<N>& text, int value)
{
    char buffer[16];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    text.Assign(std::string_view(buffer, static_cast<std::size_t>(result.ptr - buffer)));
}

} // namespace

void ComputeColumns(const RowOptions& options, const astro::ObservingClock& clock,
                    const astro::Clock& computerClock, double epochYear, Position& position,
                    ComputedColumns& computed, astro::FaultSink& faults)
{
    static const FixedFormat kAltitude("#00.00");
    static const FixedFormat kAzimuth("##0.00");
    computed = {};
    if (options.speed1)
        return;

    if (options.ShowCharts) {
        const charts::AtlasPages pages =
            charts::Chart(position.raHours, position.raMinutes, position.raSeconds,
                          position.decDegrees, position.decMinutes, position.decSeconds);
        AssignInteger(computed.skyAtlas, pages.skyAtlas);
        AssignInteger(computed.uranometria, pages.uranometria);
        computed.millennium.Assign(pages.millennium);
    }

    astro::Hms ra{position.raHours, position.raMinutes, position.raSeconds};
    astro::Dms dec{position.decDegrees, position.decMinutes, position.decSeconds};
    if (options.precess) {
        const astro::Equatorial precessed = astro::Precession(
            options.ppreYear, options.ppreMonth, options.ppreDay, ra, dec, epochYear, faults);
        ra = precessed.ra;
        dec = precessed.dec;
        position = {ra.hours, ra.minutes, ra.seconds, dec.degrees, dec.minutes, dec.seconds};
        computed.precessed = true;
    }

    if (options.optimum) {
        const astro::BestTime best = astro::FindBestTimeToObserve(
            clock, computerClock, ra, dec, static_cast<std::int16_t>(options.PInterval), faults);
        computed.transit.Assign(best.bestTime);
    }

    if (options.Palt) {
        const astro::Hms hourAngle = astro::CalcHourAngle(clock, computerClock, ra, false, faults);
        const astro::AltAzm altAzm = astro::CalcAltAzm(clock, hourAngle, dec, faults);
        computed.alt = Rounded(kAltitude, Rounded(kAzimuth, altAzm.altitude));
        computed.azm = Rounded(kAzimuth, altAzm.azimuth);
    }

    if (options.Prise) {
        const astro::RiseSetTimes times = astro::RiseSet(clock, computerClock, ra, dec, faults);
        if (times.status == -1) {
            computed.rise.Assign("CPolar");
        } else if (times.status == 1) {
            computed.rise.Assign("*Never");
            computed.set.Assign("Rises*");
        } else if (times.status == 2) {
            computed.rise.Assign("*Can't");
            computed.set.Assign("Calc*");
        } else {
            computed.rise.Assign(times.riseTime);
            computed.set.Assign(times.setTime);
        }
    }
}

} // namespace spread
