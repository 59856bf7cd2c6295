#include "spread/ComputedColumns.h"

#include <charconv>
#include <optional>

#include "astro/Position.h"
#include "charts/AtlasPages.h"
#include "services/VbFixed.h"
#include "spread/Grid.h"

namespace spread {
namespace {

using services::vb::FixedFormat;

// A value rounded through a display pattern and kept as a number, as the filters see it.
double Rounded(const FixedFormat& format, double value)
{
    if (const std::optional<double> rounded = format.RoundedValue(value))
        return *rounded;
    char buffer[FixedFormat::kMaxText];
    return CellValue(std::string_view(buffer, format.Write(value, buffer)));
}

template <std::size_t N> void AssignInteger(FixedText<N>& text, int value)
{
    char buffer[16];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    text.Assign(std::string_view(buffer, static_cast<std::size_t>(result.ptr - buffer)));
}

// Passes a row's faults on and remembers that one came, so that no value a trapped fault left
// behind reaches a later routine of the row (the arcsine above all, whose fault is fatal).
class RowFaults : public astro::FaultSink
{
public:
    explicit RowFaults(astro::FaultSink& faults) : faults_(faults) {}
    void ReportFault(std::string_view message, std::string_view location) override
    {
        faulted = true;
        faults_.ReportFault(message, location);
    }
    void EndProcess(int exitCode) override { faults_.EndProcess(exitCode); }

    bool faulted = false;

private:
    astro::FaultSink& faults_;
};

bool SameClock(const astro::ObservingClock& a, const astro::ObservingClock& b)
{
    return a.Plat == b.Plat && a.Plon == b.Plon && a.PTz == b.PTz && a.timesAMPM == b.timesAMPM &&
           a.PStd == b.PStd && a.PDate == b.PDate && a.Ptime == b.Ptime &&
           a.UseRealTime == b.UseRealTime;
}

} // namespace

RowPlans MakeRowPlans(const astro::ObservingClock& clock, const astro::Clock& computerClock,
                      int PInterval, bool optimum)
{
    RowPlans plans;
    plans.sky = astro::MakeSkyPlan(clock, computerClock);
    if (optimum)
        plans.best =
            astro::MakeBestTimePlan(clock, computerClock, static_cast<std::int16_t>(PInterval));
    plans.computerClock = &computerClock;
    plans.PInterval = PInterval;
    plans.optimum = optimum;
    return plans;
}

RowPlanCache::RowPlanCache() = default;
RowPlanCache::~RowPlanCache() = default;

const RowPlans* RowPlanCache::Find(const astro::ObservingClock& clock,
                                   const astro::Clock& computerClock, int PInterval, bool optimum)
{
    const RowPlans* plans = ready_.load(std::memory_order_acquire);
    if (plans == nullptr) {
        std::lock_guard lock(mutex_);
        plans = ready_.load(std::memory_order_relaxed);
        if (plans == nullptr) {
            plans_ =
                std::make_unique<RowPlans>(MakeRowPlans(clock, computerClock, PInterval, optimum));
            plans = plans_.get();
            ready_.store(plans, std::memory_order_release);
        }
    }
    if (plans->computerClock != &computerClock || plans->PInterval != PInterval ||
        plans->optimum != optimum || !SameClock(plans->sky.clock, clock))
        return nullptr;
    return plans;
}

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

    const RowPlans* plans = options.plans ? options.plans->Find(clock, computerClock,
                                                                options.PInterval, options.optimum)
                                          : nullptr;
    std::optional<RowPlans> own;
    if (plans == nullptr && (options.optimum || options.Palt || options.Prise)) {
        own.emplace(MakeRowPlans(clock, computerClock, options.PInterval, options.optimum));
        plans = &*own;
    }

    RowFaults rowFaults(faults);
    auto cutShort = [&] {
        computed.cutShort = rowFaults.faulted;
        return computed.cutShort;
    };
    astro::Hms ra{position.raHours, position.raMinutes, position.raSeconds};
    astro::Dms dec{position.decDegrees, position.decMinutes, position.decSeconds};
    if (options.precess) {
        const astro::PrecessedPosition precessed =
            astro::Precession(options.precession, ra, dec, epochYear, rowFaults);
        if (cutShort())
            return;
        ra = precessed.ra;
        dec = precessed.dec;
        position = {ra.hours, ra.minutes, ra.seconds, dec.degrees, dec.minutes, dec.seconds};
        computed.precessed = true;
    }

    if (options.optimum) {
        const astro::BestTime best =
            astro::FindBestTimeToObserve(plans->best, ra, dec, rowFaults);
        if (cutShort())
            return;
        computed.transit.Assign(best.bestTime);
    }

    astro::SkyObject object;
    if (options.Palt || options.Prise)
        object = astro::MakeSkyObject(ra, dec);

    if (options.Palt) {
        const astro::Hms hourAngle = astro::CalcHourAngle(plans->sky, ra, rowFaults);
        if (cutShort())
            return;
        const astro::AltAzm altAzm = astro::CalcAltAzm(plans->sky, hourAngle, object, rowFaults);
        if (cutShort())
            return;
        computed.alt = Rounded(kAltitude, Rounded(kAzimuth, altAzm.altitude));
        computed.azm = Rounded(kAzimuth, altAzm.azimuth);
    }

    if (options.Prise) {
        const astro::RiseSetTimes times = astro::RiseSet(plans->sky, object, rowFaults);
        if (rowFaults.faulted)
            return;
        const astro::RiseSetShown shown = astro::ShownRiseSet(times);
        computed.rise.Assign(shown.rise);
        computed.set.Assign(shown.set);
    }
}

} // namespace spread
