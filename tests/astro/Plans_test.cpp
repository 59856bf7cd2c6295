// The plans of Position.h must give, bit for bit and fault for fault, what the plain routines
// give for the same clock: they replace them in every row of a grid load.

#include "astro/Position.h"

#include "tests/astro/RecordingFaults.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <string>
#include <tuple>
#include <vector>

namespace {

using astro::Dms;
using astro::Hms;
using astro_test::ProcessEnded;
using astro_test::RecordingFaults;

struct Object
{
    Hms ra;
    Dms dec;
};

struct Site
{
    double lat, lon, tz;
    const char* PStd;
    const char* date;
    bool timesAMPM;
};

// Mid-latitudes both sides, the equator, the date line, a fractional zone with daylight time,
// and a site within half a degree of the pole (where the best-time search takes no shortcut).
const Site kSites[] = {
    {40, 90, 6, "S", "03/15/2024", false},        {-33.9, -151.2, -10, "D", "12/21/2023", true},
    {0, 0, 0, "S", "06/21/2024", true},           {64.1, 179.9, 12, "S", "01/01/2000", false},
    {28.5, -77.5, -5.5, "D", "09/22/2024", true}, {89.6, 45, 3, "S", "02/29/2024", false},
    {-70, 10, -1, "S", "07/04/1990", true},
};

astro::ObservingClock ClockOf(const Site& site)
{
    astro::ObservingClock clock;
    clock.Plat = site.lat;
    clock.Plon = site.lon;
    clock.PTz = site.tz;
    clock.PStd = site.PStd;
    clock.PDate = site.date;
    clock.Ptime = "21:37";
    clock.timesAMPM = site.timesAMPM;
    return clock;
}

Object ObjectAt(double raHours, double decDeg)
{
    const astro::Sexagesimal r = astro::ConvertFromDecimal(raHours);
    return {{r.degrees, r.minutes, r.seconds}, astro::SignPush(astro::ConvertFromDecimal(decDeg))};
}

// Objects spread evenly over the sphere at random, then objects at 23.9999h on the given
// declinations.
std::vector<Object> RandomObjects(unsigned seed, int count, std::initializer_list<double> decs)
{
    std::mt19937_64 random(seed);
    std::uniform_real_distribution<double> unit(0, 1);
    std::vector<Object> objects;
    for (int i = 0; i < count; ++i)
        objects.push_back(
            ObjectAt(unit(random) * 24, std::asin(2 * unit(random) - 1) * 57.29577951308232));
    for (double dec : decs)
        objects.push_back(ObjectAt(23.9999, dec));
    return objects;
}

// Random objects, and objects that sit exactly on the meridian at a sample (hour angle 0 after
// rounding), some of them through the zenith or the nadir, where the arcsines are closest to
// faulting.
std::vector<Object> Objects(const astro::BestTimePlan& plan, double lat, int count)
{
    std::vector<Object> objects = RandomObjects(1987, count, {90.0, -90.0, 0.0, 89.99, -89.99});
    for (std::size_t i = 0; i < plan.samples.size(); i += 7) {
        const double lst = plan.samples[i].lst;
        for (double dec : {lat, -lat, lat + 0.001, lat - 30, 0.0})
            objects.push_back(ObjectAt(lst, dec));
    }
    return objects;
}

struct Outcome
{
    astro::BestTime best;
    std::vector<RecordingFaults::Report> reports;
    bool ended = false;
};

template <typename Call> Outcome Search(Call call)
{
    Outcome o;
    RecordingFaults faults;
    try {
        o.best = call(faults);
    } catch (const ProcessEnded&) {
        o.ended = true;
    }
    o.reports = faults.reports;
    return o;
}

// The faults of two runs, as "message@location" each.
std::vector<std::string> Faults(const std::vector<RecordingFaults::Report>& reports)
{
    std::vector<std::string> out;
    for (const auto& r : reports)
        out.push_back(r.message + "@" + r.location);
    return out;
}

void ExpectSame(const Outcome& plain, const Outcome& planned)
{
    EXPECT_EQ(planned.ended, plain.ended);
    EXPECT_EQ(Faults(planned.reports), Faults(plain.reports));
    if (plain.ended)
        return;
    // Bit for bit: the texts of the grid are made from these.
    EXPECT_EQ(std::tie(planned.best.bestTime, planned.best.bestAltitude, planned.best.bestAzimuth),
              std::tie(plain.best.bestTime, plain.best.bestAltitude, plain.best.bestAzimuth));
}

const astro::FixedClock kComputer({2024, 3, 15, 3, 30, 0});

TEST(BestTimePlan, SameAsThePlainSearchEverywhere)
{
    struct Step
    {
        std::int16_t step;
        int objects;
    };
    // 1 minute samples 24 x 59 times, so fewer objects; 60 samples only minute 1; 0 nothing.
    const Step steps[] = {{10, 700}, {1, 40}, {7, 150}, {60, 150}, {0, 20}};
    int ended = 0;
    for (const Site& site : kSites) {
        for (const Step& s : steps) {
            SCOPED_TRACE("lat " + std::to_string(site.lat) + " step " + std::to_string(s.step));
            const astro::ObservingClock clock = ClockOf(site);
            const astro::BestTimePlan plan = astro::MakeBestTimePlan(clock, kComputer, s.step);
            int shown = 0;
            for (const Object& object : Objects(plan, site.lat, s.objects)) {
                const Outcome plain = Search([&](RecordingFaults& f) {
                    return astro::FindBestTimeToObserve(clock, kComputer, object.ra, object.dec,
                                                        s.step, f);
                });
                const Outcome planned = Search([&](RecordingFaults& f) {
                    return astro::FindBestTimeToObserve(plan, object.ra, object.dec, f);
                });
                ExpectSame(plain, planned);
                shown += plain.best.bestTime != "n/a" ? 1 : 0;
                ended += plain.ended ? 1 : 0;
                if (::testing::Test::HasFailure())
                    return;
            }
            if (s.step >= 1) {
                EXPECT_GT(shown, 0) << "the objects should not all stay below the horizon";
            }
        }
    }
    // Regression: objects through the zenith or nadir on the meridian used to end the program.
    EXPECT_EQ(ended, 0) << "no object of a valid list ends the program";
}

TEST(BestTimePlan, RealTimeAndBadDates)
{
    astro::ObservingClock realTime = ClockOf(kSites[0]);
    realTime.UseRealTime = "Y";
    realTime.PDate = "not a date"; // not read under real time
    astro::ObservingClock badDate = ClockOf(kSites[0]);
    badDate.PDate = "13/45/2024";
    astro::ObservingClock blankDate = ClockOf(kSites[1]);
    blankDate.PDate = "  ";
    for (const astro::ObservingClock& clock : {realTime, badDate, blankDate}) {
        SCOPED_TRACE(clock.PDate);
        const astro::BestTimePlan plan = astro::MakeBestTimePlan(clock, kComputer, 10);
        for (const Object& object : Objects(plan, clock.Plat, 50)) {
            ExpectSame(Search([&](RecordingFaults& f) {
                           return astro::FindBestTimeToObserve(clock, kComputer, object.ra,
                                                               object.dec, 10, f);
                       }),
                       Search([&](RecordingFaults& f) {
                           return astro::FindBestTimeToObserve(plan, object.ra, object.dec, f);
                       }));
        }
    }
}

struct SkyOutcome
{
    Hms ha;
    astro::RiseSetTimes times;
    std::vector<RecordingFaults::Report> reports;
    bool ended = false;
};

TEST(SkyPlan, HourAngleAndRiseSetAsThePlainRoutines)
{
    std::vector<astro::ObservingClock> clocks;
    for (const Site& site : kSites)
        clocks.push_back(ClockOf(site));
    astro::ObservingClock realTime = ClockOf(kSites[0]);
    realTime.UseRealTime = "Y";
    clocks.push_back(realTime);
    astro::ObservingClock badDate = ClockOf(kSites[2]);
    badDate.PDate = "31/31/31";
    clocks.push_back(badDate);
    astro::ObservingClock pole = ClockOf(kSites[0]);
    pole.Plat = 90;
    clocks.push_back(pole);

    for (const astro::ObservingClock& clock : clocks) {
        SCOPED_TRACE("lat " + std::to_string(clock.Plat) + " " + clock.PDate);
        const astro::SkyPlan plan = astro::MakeSkyPlan(clock, kComputer);
        const astro::BestTimePlan samples = astro::MakeBestTimePlan(clock, kComputer, 10);
        for (const Object& object : Objects(samples, clock.Plat, 3000)) {
            const auto run = [&](bool planned) {
                SkyOutcome o;
                RecordingFaults faults;
                try {
                    o.ha = planned
                               ? astro::CalcHourAngle(plan, object.ra, faults)
                               : astro::CalcHourAngle(clock, kComputer, object.ra, false, faults);
                    o.times = planned
                                  ? astro::RiseSet(plan, object.ra, object.dec, faults)
                                  : astro::RiseSet(clock, kComputer, object.ra, object.dec, faults);
                } catch (const ProcessEnded&) {
                    o.ended = true;
                }
                o.reports = faults.reports;
                return o;
            };
            const SkyOutcome plain = run(false);
            const SkyOutcome planned = run(true);
            EXPECT_EQ(planned.ended, plain.ended);
            EXPECT_EQ(Faults(planned.reports), Faults(plain.reports));
            const auto fields = [](const SkyOutcome& o) {
                return std::tie(o.ha.hours, o.ha.minutes, o.ha.seconds, o.times.status,
                                o.times.riseTime, o.times.setTime);
            };
            EXPECT_EQ(fields(planned), fields(plain));
            if (::testing::Test::HasFailure())
                return;
        }
    }
}

} // namespace

namespace {

// The precession plan is made once for a load's target date and serves every record, whatever
// its epoch: the epoch most records share takes the rates worked out in the plan, the others
// their own, and each gives the plain routine's position and faults.
TEST(PrecessionPlan, SameAsThePlainRoutineForEveryEpochAndTarget)
{
    struct Target
    {
        const char* year;
        const char* month;
        const char* day;
    };
    const Target targets[] = {
        {"2024", "6", "15"}, {"1900", "1", "1"},   {"2000", "1", "1"},  {"1582", "10", "20"},
        {"abc", "1", "1"},   {"2024", "", "1"},    {"40000", "1", "1"}, {"2024", "99999", "1"},
        {"-500", "3", "1"},  {"2024.6", "2", "29.5"},
    };
    const double epochs[] = {2000, 1950, 1950.5, 2000.4, 1875, -100, 1e6, -40000, std::nan("")};
    const std::vector<Object> objects = RandomObjects(4, 200, {90.0, -90.0, 0.0, 89.99});

    for (const Target& t : targets) {
        const astro::PrecessionPlan plan = astro::MakePrecessionPlan(t.year, t.month, t.day);
        for (double epoch : epochs) {
            SCOPED_TRACE(std::string(t.year) + "-" + t.month + "-" + t.day + " from " +
                         std::to_string(epoch));
            for (const Object& object : objects) {
                RecordingFaults plainFaults;
                RecordingFaults planFaults;
                const astro::PrecessedPosition plain = astro::Precession(
                    t.year, t.month, t.day, object.ra, object.dec, epoch, plainFaults);
                const astro::PrecessedPosition planned =
                    astro::Precession(plan, object.ra, object.dec, epoch, planFaults);
                EXPECT_EQ(Faults(planFaults.reports), Faults(plainFaults.reports));
                // Bit for bit (NaN-safe): the grid shows these fields.
                const double got[] = {planned.ra.hours,    planned.ra.minutes,
                                      planned.ra.seconds,  planned.dec.degrees,
                                      planned.dec.minutes, planned.dec.seconds};
                const double want[] = {plain.ra.hours,    plain.ra.minutes,
                                       plain.ra.seconds,  plain.dec.degrees,
                                       plain.dec.minutes, plain.dec.seconds};
                for (std::size_t i = 0; i < std::size(got); ++i)
                    EXPECT_EQ(std::memcmp(&got[i], &want[i], sizeof(double)), 0) << i;
                if (::testing::Test::HasFailure())
                    return;
            }
        }
    }
}

// One object's trigonometry, worked out once, serves altitude and azimuth and rise and set as
// the plain routines would.
TEST(SkyObject, AltitudeAndRiseSetAsThePlainRoutines)
{
    for (const Site& site : kSites) {
        const astro::ObservingClock clock = ClockOf(site);
        SCOPED_TRACE("lat " + std::to_string(clock.Plat));
        const astro::SkyPlan plan = astro::MakeSkyPlan(clock, kComputer);
        const astro::BestTimePlan samples = astro::MakeBestTimePlan(clock, kComputer, 10);
        for (const Object& object : Objects(samples, clock.Plat, 500)) {
            RecordingFaults faults;
            try {
                const astro::SkyObject sky = astro::MakeSkyObject(object.ra, object.dec);
                const Hms ha = astro::CalcHourAngle(plan, object.ra, faults);
                const astro::AltAzm plain = astro::CalcAltAzm(clock, ha, object.dec, faults);
                const astro::AltAzm shared = astro::CalcAltAzm(plan, ha, sky, faults);
                EXPECT_EQ(std::pair(shared.altitude, shared.azimuth),
                          std::pair(plain.altitude, plain.azimuth));
                const astro::RiseSetTimes times = astro::RiseSet(plan, sky, faults);
                const astro::RiseSetTimes plainTimes =
                    astro::RiseSet(clock, kComputer, object.ra, object.dec, faults);
                EXPECT_EQ(std::tie(times.status, times.riseTime, times.setTime),
                          std::tie(plainTimes.status, plainTimes.riseTime, plainTimes.setTime));
            } catch (const ProcessEnded&) {
                // The fatal arcsine faults are compared by the plan tests above.
            }
            if (::testing::Test::HasFailure())
                return;
        }
    }
}

} // namespace
