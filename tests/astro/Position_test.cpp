#include "astro/Position.h"

#include "tests/astro/RecordingFaults.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <tuple>
#include <vector>

namespace {

using astro::Dms;
using astro::Hms;
using astro_test::ProcessEnded;
using astro_test::RecordingFaults;

constexpr double kArcSecondDeg = 1.0 / 3600.0;

astro::ObservingClock Site(double lat, double lon, double tz, const char* date = "03/15/2024",
                           const char* time = "22:00")
{
    astro::ObservingClock clock;
    clock.Plat = lat;
    clock.Plon = lon;
    clock.PTz = tz;
    clock.PDate = date;
    clock.Ptime = time;
    clock.timesAMPM = false;
    return clock;
}

double Hours(const Hms& t)
{
    return astro::ConvertToDecimal(t.seconds, t.minutes, t.hours);
}

// Difference a - b of two hour angles, brought into -12 to +12 hours.
double HourDifference(double a, double b)
{
    double d = std::fmod(a - b, 24.0);
    if (d > 12)
        d -= 24;
    if (d < -12)
        d += 24;
    return d;
}

const astro::FixedClock kComputer({2024, 3, 15, 3, 30, 0});

TEST(CalcHourAngle, ZoneLongitudeAndLocalDate)
{
    const Hms ra{5, 30, 0};
    RecordingFaults faults;
    const auto ha = [&](const astro::ObservingClock& clock) {
        return Hours(astro::CalcHourAngle(clock, kComputer, ra, false, faults));
    };
    const double greenwich = ha(Site(40, 0, 6));
    struct Row
    {
        const char* what;
        astro::ObservingClock clock;
        double hoursFromGreenwich; // sidereal hours added to the Greenwich case
    };
    const double sidereal = 1.002737908;
    astro::ObservingClock daylight = Site(40, 0, 6);
    daylight.PStd = "D";
    astro::ObservingClock daylightOther = Site(40, 0, 6);
    daylightOther.PStd = "x"; // anything but "S" counts as daylight
    const Row rows[] = {
        {"Plon 90 (west) puts local sidereal time 6 hours behind", Site(40, 90, 6), -6},
        {"Plon -90 (east) puts it 6 hours ahead", Site(40, -90, 6), 6},
        {"Plon 150 (west) puts it 10 hours behind", Site(40, 150, 6), -10},
        {"a zone of 5.5 counts its half hour here", Site(40, 0, 5.5), -0.5 * sidereal},
        {"daylight time takes an hour off Universal Time", daylight, -1 * sidereal},
        {"any PStd but S is daylight", daylightOther, -1 * sidereal},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        EXPECT_NEAR(HourDifference(ha(row.clock), greenwich), row.hoursFromGreenwich, 0.2 / 3600);
    }
    EXPECT_TRUE(faults.reports.empty());
}

TEST(CalcHourAngle, UniversalTimePastMidnightKeepsTheLocalDate)
{
    // 22:00 at zone 6 is 04:00 UT of the next day, but the local date is used: the result
    // equals 04:00 at zone 0 on the same date, one sidereal day-step (3m56s) out.
    RecordingFaults faults;
    const Hms ra{12, 0, 0};
    const double late = Hours(
        astro::CalcHourAngle(Site(40, 0, 6, "03/15/2024", "22:00"), kComputer, ra, false, faults));
    const double sameDate = Hours(
        astro::CalcHourAngle(Site(40, 0, 0, "03/15/2024", "04:00"), kComputer, ra, false, faults));
    const double nextDate = Hours(
        astro::CalcHourAngle(Site(40, 0, 0, "03/16/2024", "04:00"), kComputer, ra, false, faults));
    EXPECT_NEAR(late, sameDate, 1e-9);
    EXPECT_NEAR(HourDifference(nextDate, late), 0.0657098, 0.1 / 3600);
}

TEST(CalcHourAngle, RealTimeFlagAndBadDate)
{
    RecordingFaults faults;
    const Hms ra{2, 0, 0};
    astro::ObservingClock clock = Site(40, 0, 0, "01/01/2000", "22:00");
    clock.UseRealTime = "Y";
    // The computer clock reads 2024-03-15 03:30.
    const double fromClock = Hours(astro::CalcHourAngle(clock, kComputer, ra, false, faults));
    const double fromPtime = Hours(astro::CalcHourAngle(clock, kComputer, ra, true, faults));
    const double expectedClock = Hours(
        astro::CalcHourAngle(Site(40, 0, 0, "03/15/2024", "03:30"), kComputer, ra, false, faults));
    const double expectedPtime = Hours(
        astro::CalcHourAngle(Site(40, 0, 0, "2024-03-15", "22:00"), kComputer, ra, false, faults));
    EXPECT_EQ(fromClock, expectedClock);
    EXPECT_EQ(fromPtime, expectedPtime);
    EXPECT_TRUE(faults.reports.empty());

    const Hms bad =
        astro::CalcHourAngle(Site(40, 0, 0, "15.03.2024"), kComputer, ra, false, faults);
    EXPECT_EQ(Hours(bad), 0.0);
    EXPECT_EQ(faults.Texts(), std::vector<std::string>{"Type mismatch @ Module1.CalcHourAngle"});
}

TEST(CalcAltAzm, PositionsAroundTheSky)
{
    struct Row
    {
        const char* what;
        double lat;
        Hms ha;
        Dms dec;
        double altitude, azimuth, tolerance; // degrees
    };
    const Row rows[] = {
        // Textbook worked example, printed to 0.01": alt 19d20m03.64s, az 283d16m15.70s.
        {"textbook example",
         52,
         {5, 51, 44},
         {23, 13, 10},
         19 + 20 / 60.0 + 3.64 / 3600,
         283 + 16 / 60.0 + 15.70 / 3600,
         0.05 * kArcSecondDeg},
        {"rising in the east", 0, {18, 0, 0}, {0, 0, 0}, 0, 90, 1e-6},
        {"setting in the west", 0, {6, 0, 0}, {0, 0, 0}, 0, 270, 1e-6},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        RecordingFaults faults;
        const astro::AltAzm aa = astro::CalcAltAzm(Site(row.lat, 0, 0), row.ha, row.dec, faults);
        EXPECT_NEAR(aa.altitude, row.altitude, row.tolerance);
        EXPECT_NEAR(aa.azimuth, row.azimuth, row.tolerance);
        EXPECT_TRUE(faults.reports.empty());
    }
    // A site and object mirrored through the equator keep their altitude: a southern site,
    // and a minus sign carried by the minutes, agree with their northern mirrors.
    RecordingFaults faults;
    const auto south = astro::CalcAltAzm(Site(-30, 0, 0), {21, 0, 0}, {10, 0, 0}, faults);
    const auto north = astro::CalcAltAzm(Site(30, 0, 0), {21, 0, 0}, {-10, 0, 0}, faults);
    EXPECT_NEAR(south.altitude, north.altitude, 1e-9);
    EXPECT_NEAR(south.azimuth, 180 - north.azimuth, 1e-6); // the short pi again
    const auto minutes = astro::CalcAltAzm(Site(45, 0, 0), {3, 0, 0}, {0, -30, 0}, faults);
    const auto mirror = astro::CalcAltAzm(Site(-45, 0, 0), {3, 0, 0}, {0, 30, 0}, faults);
    EXPECT_NEAR(minutes.altitude, mirror.altitude, 1e-9);
    // East and west of the meridian mirror each other.
    const auto east = astro::CalcAltAzm(Site(35, 0, 0), {21, 0, 0}, {20, 0, 0}, faults);
    const auto west = astro::CalcAltAzm(Site(35, 0, 0), {3, 0, 0}, {20, 0, 0}, faults);
    EXPECT_LT(east.azimuth, 180);
    EXPECT_NEAR(east.azimuth + west.azimuth, 360, 1e-6);
    EXPECT_NEAR(east.altitude, west.altitude, 1e-9);
    EXPECT_TRUE(faults.reports.empty());
}

TEST(CalcAltAzm, SiteOnAPoleIsTheFatalFault)
{
    for (double lat : {90.0, -90.0}) {
        SCOPED_TRACE(lat);
        RecordingFaults faults;
        EXPECT_THROW(astro::CalcAltAzm(Site(lat, 0, 0), {3, 0, 0}, {20, 0, 0}, faults),
                     ProcessEnded);
        ASSERT_EQ(faults.reports.size(), 1u);
        EXPECT_EQ(faults.reports[0].location, "Module1.CalcASN");
        EXPECT_NE(faults.reports[0].message.find("Variable W = "), std::string::npos);
    }
}

// Regression: an object close to the zenith or the nadir on the meridian took the azimuth's
// cosine up to 5e-12 past 1 by rounding (the division by cos(phi) cos(a)), and the arcsine
// fault ended the program on a valid list.
TEST(CalcAltAzm, NearTheZenithAndNadirOnTheMeridianNeverEnds)
{
    RecordingFaults faults;
    int cases = 0;
    for (double lat : {-60.0, -46.5, -12.3, 0.0, 20.0, 46.5, 70.0}) {
        for (double hours : {0.0, 12.0}) {
            // Upper culmination passes the zenith at dec = lat, lower the nadir at dec = -lat.
            const double nearest = hours == 0 ? lat : -lat;
            for (int step = -400; step <= 400; ++step) {
                const double dec = nearest + step * 0.0025;
                if (std::fabs(dec) >= 90)
                    continue;
                const astro::Dms triple = astro::SignPush(astro::ConvertFromDecimal(dec));
                const auto place =
                    astro::CalcAltAzm(Site(lat, 0, 0), {hours, 0, 0}, triple, faults);
                ++cases;
                // On the meridian the azimuth is due north or due south, to the grid's 0.01
                // (at the zenith or nadir itself it has no meaning).
                const double fromNorth = std::min(place.azimuth, 360 - place.azimuth);
                if (std::abs(step) > 40) {
                    EXPECT_TRUE(fromNorth < 0.01 || std::fabs(place.azimuth - 180) < 0.01)
                        << lat << " " << hours << " " << dec << " gave " << place.azimuth;
                }
            }
        }
    }
    EXPECT_GT(cases, 10000);
    EXPECT_TRUE(faults.reports.empty());
}

TEST(RiseSet, StatusForPolesAndCircumpolarObjects)
{
    struct Row
    {
        const char* what;
        double lat;
        Dms dec;
        float status;
    };
    const Row rows[] = {
        {"declination +89 at 40 north never sets", 40, {89, 0, 0}, -1},
        {"declination -80 at 40 north never rises", 40, {-80, 0, 0}, 1},
        {"declination -89 at 40 south never sets", -40, {-89, 0, 0}, -1},
        {"site on the north pole", 90, {10, 0, 0}, 2},
        {"site on the south pole", -90, {10, 0, 0}, 2},
        {"object on the celestial pole", 40, {90, 0, 0}, 2},
        {"object on the south celestial pole", 40, {-90, 0, 0}, 2},
        {"equator object rises and sets", 40, {0, 0, 0}, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        RecordingFaults faults;
        const astro::RiseSetTimes times =
            astro::RiseSet(Site(row.lat, 90, 6), kComputer, {6, 0, 0}, row.dec, faults);
        EXPECT_EQ(times.status, row.status);
        EXPECT_EQ(times.riseTime.empty(), row.status != 0);
        EXPECT_EQ(times.setTime.empty(), row.status != 0);
        EXPECT_TRUE(faults.reports.empty());
    }
}

TEST(RiseSet, TimesAgreeWithTheAltitudeAtThatTime)
{
    // The rise and set times come from inverting sidereal time; the altitude at those clock
    // times comes the forward way. Minutes are cut (up to 1 minute, 0.25 degrees), and the
    // inversion wraps sidereal, not solar, days (up to 3m56s, another 1 degree), so the
    // altitude must lie within 1.3 degrees of the 34' horizon, rising before and setting after.
    struct Row
    {
        const char* what;
        double lat, lon, tz;
        const char* pstd;
        Hms ra;
        Dms dec;
    };
    const Row rows[] = {
        {"mid-northern site, west longitude", 46.5, 90.2, 6, "S", {5, 35, 17}, {-5, 23, 0}},
        {"daylight time", 46.5, 90.2, 6, "D", {18, 36, 56}, {38, 47, 0}},
        {"east longitude, zone -10", -33.9, -151.2, -10, "S", {13, 25, 12}, {-11, 9, 41}},
        {"near the date line", 64, 179.9, 12, "S", {0, 42, 44}, {21, 16, 9}},
        {"equator site", 0, -30, -2, "S", {22, 0, 0}, {-60, 0, 0}},
        {"half-hour zone", 19, -72.8, -5.5, "S", {10, 8, 22}, {11, 58, 2}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        astro::ObservingClock clock = Site(row.lat, row.lon, row.tz, "10/20/2024");
        clock.PStd = row.pstd;
        RecordingFaults faults;
        const astro::RiseSetTimes times = astro::RiseSet(clock, kComputer, row.ra, row.dec, faults);
        ASSERT_EQ(times.status, 0);
        for (const auto& [text, rising] :
             {std::pair{times.riseTime, true}, std::pair{times.setTime, false}}) {
            SCOPED_TRACE(text);
            ASSERT_EQ(text.size(), 5u);
            astro::ObservingClock at = clock;
            at.Ptime = text;
            const astro::AltAzm now = astro::CalcAltAzm(
                at, astro::CalcHourAngle(at, kComputer, row.ra, false, faults), row.dec, faults);
            EXPECT_NEAR(now.altitude, -34.0 / 60, 1.3);
            // Ten minutes later (same clock hour or the next) the object is higher when rising.
            const int minutes =
                std::stoi(text.substr(0, 2)) * 60 + std::stoi(text.substr(3, 2)) + 10;
            char later[16];
            std::snprintf(later, sizeof later, "%02d:%02d", (minutes / 60) % 24, minutes % 60);
            at.Ptime = later;
            const astro::AltAzm after = astro::CalcAltAzm(
                at, astro::CalcHourAngle(at, kComputer, row.ra, false, faults), row.dec, faults);
            EXPECT_EQ(after.altitude > now.altitude, rising);
        }
        EXPECT_TRUE(faults.reports.empty());
    }
}

TEST(RiseSetTimeText, ClockForms)
{
    struct Row
    {
        double t;
        const char* h24;
        const char* h12;
    };
    const Row rows[] = {
        {0.0, "00:00", "12:00 AM"},           {6 + 5 / 60.0, "06:05", "06:05 AM"},
        {6 + 59.9 / 60, "06:59", "06:59 AM"}, // minutes are cut, not rounded
        {11.999999, "12:00", "12:00 AM"},     // the seconds round up into the next hour
        {12.0, "12:00", "12:00 PM"},          {12.5, "12:30", "12:30 PM"},
        {13.25, "13:15", "01:15 PM"},         {23.999999, "24:00", "12:00 PM"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.t);
        EXPECT_EQ(astro::RiseSetTimeText(row.t, false), row.h24);
        EXPECT_EQ(astro::RiseSetTimeText(row.t, true), row.h12);
    }
}

class CountingProgress : public astro::SampleProgress
{
public:
    void Open(int first, int last) override { opened.push_back({first, last}); }
    void Sample(int position, double) override { positions.push_back(position); }
    void Close() override { ++closed; }
    std::vector<std::pair<int, int>> opened;
    std::vector<int> positions;
    int closed = 0;
};

TEST(FindBestTimeToObserve, SamplingGrid)
{
    struct Row
    {
        int step;
        std::size_t samplesPerHour;
    };
    // Minutes 1, 1 + step, ... up to 59.
    const Row rows[] = {{10, 6}, {1, 59}, {29, 3}, {58, 2}, {59, 1}, {60, 1}, {0, 0}, {-5, 0}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.step);
        RecordingFaults faults;
        CountingProgress progress;
        astro::FindBestTimeToObserve(Site(40, 90, 6), kComputer, {6, 0, 0}, {20, 0, 0},
                                     static_cast<std::int16_t>(row.step), faults, &progress);
        ASSERT_EQ(progress.opened.size(), 1u);
        EXPECT_EQ(progress.opened[0], (std::pair{1, 24}));
        EXPECT_EQ(progress.closed, 1);
        ASSERT_EQ(progress.positions.size(), 24 * row.samplesPerHour);
        if (!progress.positions.empty()) {
            EXPECT_EQ(progress.positions.front(), 1);
            EXPECT_EQ(progress.positions.back(), 24);
        }
    }
}

TEST(FindBestTimeToObserve, EdgesOfTheNight)
{
    RecordingFaults faults;
    // An object that never clears the horizon.
    astro::BestTime best = astro::FindBestTimeToObserve(Site(40, 90, 6), kComputer, {6, 0, 0},
                                                        {-80, 0, 0}, 10, faults);
    EXPECT_EQ(best.bestTime, "n/a");
    EXPECT_EQ(best.bestAltitude, 0);
    EXPECT_EQ(best.bestAzimuth, 0);

    // An object that transits exactly at 00:01 local of the date: sampled last, under hour 00.
    astro::ObservingClock clock = Site(40, 90, 6, "03/15/2024", "00:01");
    const Hms lstAtMidnight = astro::CalcHourAngle(clock, kComputer, {0, 0, 0}, false, faults);
    for (bool ampm : {false, true}) {
        SCOPED_TRACE(ampm);
        clock.timesAMPM = ampm;
        clock.Ptime = "13:45"; // not read: the samples stand for it
        best =
            astro::FindBestTimeToObserve(clock, kComputer, lstAtMidnight, {30, 0, 0}, 10, faults);
        EXPECT_EQ(best.bestTime, ampm ? "12:01 AM" : "00:01");
        EXPECT_NEAR(best.bestAltitude, 80, 0.01);
        EXPECT_EQ(best.bestAltitude, std::round(best.bestAltitude * 100) / 100);
    }
    EXPECT_TRUE(faults.reports.empty());

    best = astro::FindBestTimeToObserve(Site(40, 90, 6, "2024.03.15"), kComputer, {6, 0, 0},
                                        {20, 0, 0}, 10, faults);
    EXPECT_EQ(best.bestTime, "n/a");
    ASSERT_EQ(faults.reports.size(), 1u);
    EXPECT_EQ(faults.reports[0].message, "Type mismatch");
}

TEST(FindBestTimeToObserve, RealTimeTakesOnlyTheDateFromTheComputer)
{
    // Under real time the samples still set the time; only the date is the computer's. The
    // object culminates near 21h, far from the computer's 03:30.
    const Hms ra{8, 15, 40};
    const Dms dec{19, 10, 57};
    for (bool ampm : {false, true}) {
        SCOPED_TRACE(ampm);
        astro::ObservingClock real = Site(-12.5, -130.8, -9.5, "01/01/1990");
        real.UseRealTime = "Y";
        real.timesAMPM = ampm;
        astro::ObservingClock planned = Site(-12.5, -130.8, -9.5, "03/15/2024", "05:00");
        planned.timesAMPM = ampm;
        RecordingFaults faults;
        const astro::BestTime got =
            astro::FindBestTimeToObserve(real, kComputer, ra, dec, 15, faults);
        const astro::BestTime expected =
            astro::FindBestTimeToObserve(planned, kComputer, ra, dec, 15, faults);
        EXPECT_NE(got.bestTime, "n/a");
        EXPECT_EQ(std::tie(got.bestTime, got.bestAltitude, got.bestAzimuth),
                  std::tie(expected.bestTime, expected.bestAltitude, expected.bestAzimuth));
        EXPECT_TRUE(faults.reports.empty());
    }
}

TEST(Precession, DatesEpochsAndFaults)
{
    RecordingFaults faults;
    const Hms ra{9, 10, 43};
    const Dms dec{14, 23, 25};
    // To January 1 of the epoch year nothing moves.
    astro::PrecessedPosition same = astro::Precession("1950", "1", "1", ra, dec, 1950.0, faults);
    EXPECT_EQ(same.ra.hours, 9);
    EXPECT_EQ(same.ra.minutes, 10);
    EXPECT_NEAR(same.ra.seconds, 43, 1e-9);
    EXPECT_NEAR(same.dec.seconds, 25, 1e-9);

    // Fifty years of general precession: about 3.07 + 1.34 sin(a) tan(d) seconds of time and
    // 20.04 cos(a) arc seconds a year.
    const astro::PrecessedPosition moved =
        astro::Precession("2000", "1", "1", ra, dec, 1950.0, faults);
    const double a = (9 + 10 / 60.0 + 43 / 3600.0) * 15 * M_PI / 180;
    const double d = (14 + 23 / 60.0 + 25 / 3600.0) * M_PI / 180;
    EXPECT_NEAR((Hours(moved.ra) - Hours(ra)) * 3600,
                50 * (3.075 + 1.336 * std::sin(a) * std::tan(d)), 0.3);
    EXPECT_NEAR((astro::ConvertToDecimal(moved.dec.seconds, moved.dec.minutes, moved.dec.degrees) -
                 astro::ConvertToDecimal(dec.seconds, dec.minutes, dec.degrees)) *
                    3600,
                50 * 20.04 * std::cos(a), 3);

    // The epoch year is stored in 16 bits, rounding halves to even.
    const auto ra2000 = [&](double epoch) {
        return Hours(astro::Precession("2000", "1", "1", ra, dec, epoch, faults).ra);
    };
    EXPECT_EQ(ra2000(1950.5), ra2000(1950.0));
    EXPECT_EQ(ra2000(1951.5), ra2000(1952.0));
    EXPECT_TRUE(faults.reports.empty());

    // Right ascension wraps at 24 hours; a small southern declination (moved 16' north by
    // fifty years at 0h) keeps its sign in the minutes.
    const astro::PrecessedPosition wrapped =
        astro::Precession("2050", "1", "1", {23, 59, 59.9}, {0, -30, 0}, 2000, faults);
    EXPECT_EQ(wrapped.ra.hours, 0);
    EXPECT_EQ(wrapped.dec.degrees, 0);
    EXPECT_LT(wrapped.dec.minutes, 0);

    struct Row
    {
        const char* year;
        double epoch;
        const char* message;
    };
    const Row rows[] = {
        {"abc", 2000, "Type mismatch"},
        {"", 2000, "Type mismatch"},
        {"40000", 2000, "Overflow"},
        {"2000", 1e6, "Overflow"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.year);
        RecordingFaults bad;
        const astro::PrecessedPosition kept =
            astro::Precession(row.year, "1", "1", ra, dec, row.epoch, bad);
        EXPECT_EQ(kept.ra.seconds, ra.seconds);
        EXPECT_EQ(kept.dec.minutes, dec.minutes);
        EXPECT_EQ(bad.Texts(),
                  std::vector<std::string>{std::string(row.message) + " @ Module1.Precession"});
    }
}

TEST(CalcAngSep, SignsAndSpecialSeparations)
{
    struct Row
    {
        const char* what;
        Hms ra1;
        Dms dec1;
        Hms ra2;
        Dms dec2;
        double expected; // degrees
        double tolerance = 1e-9;
    };
    const Row rows[] = {
        {"along a meridian", {0, 0, 0}, {0, 0, 0}, {0, 0, 0}, {10, 0, 0}, 10},
        {"along the equator", {0, 0, 0}, {0, 0, 0}, {1, 0, 0}, {0, 0, 0}, 15},
        // The short pi makes 24 hours fall 4e-7 degrees short of a full turn.
        {"across 0h", {23, 30, 0}, {0, 0, 0}, {0, 30, 0}, {0, 0, 0}, 15, 1e-6},
        {"minus sign carried by minutes", {0, 0, 0}, {0, -30, 0}, {0, 0, 0}, {0, 0, 0}, 0.5},
        {"negative degrees, minutes added as given",
         {0, 0, 0},
         {-10, 30, 0},
         {0, 0, 0},
         {0, 0, 0},
         10.5},
        {"positive degrees, negative minutes subtract",
         {0, 0, 0},
         {10, -30, 0},
         {0, 0, 0},
         {0, 0, 0},
         9.5},
        {"0.1 s of right ascension on the equator",
         {0, 0, 0},
         {0, 0, 0},
         {0, 0, 0.1},
         {0, 0, 0},
         1.5 / 3600},
        {"pole to pole", {0, 0, 0}, {90, 0, 0}, {0, 0, 0}, {-89, 0, 0}, 179},
        {"same position", {5, 5, 5}, {-5, 5, 5}, {5, 5, 5}, {-5, 5, 5}, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        RecordingFaults faults;
        EXPECT_NEAR(astro::CalcAngSep(row.ra1, row.dec1, row.ra2, row.dec2, faults), row.expected,
                    row.tolerance);
        EXPECT_TRUE(faults.reports.empty());
    }
    RecordingFaults faults;
    EXPECT_EQ(astro::CalcAngSep({0, 0, 0}, {0, 0, 0}, {12, 0, 0}, {0, 0, 0}, faults), 0.0);
    EXPECT_EQ(faults.Texts(), std::vector<std::string>{"Division by zero @ Module1.CalcAngSep"});
}

TEST(PrecessFK5, IdentityRoundTripAndPole)
{
    RecordingFaults faults;
    const double alpha = 1.2345;
    const double delta = -0.4321;
    const astro::RaDecRadians same = astro::PrecessFK5(0.3, 0.3, alpha, delta, faults);
    EXPECT_NEAR(same.alpha, alpha, 1e-14);
    EXPECT_NEAR(same.delta, delta, 1e-14);
    // Forward and back over two centuries: Lieske's series is not exactly invertible, but
    // the residue stays far below a milliarcsecond.
    const astro::RaDecRadians there = astro::PrecessFK5(-1.0, 1.0, alpha, delta, faults);
    const astro::RaDecRadians back = astro::PrecessFK5(1.0, -1.0, there.alpha, there.delta, faults);
    EXPECT_NEAR(back.alpha, alpha, 1e-9);
    EXPECT_NEAR(back.delta, delta, 1e-9);
    EXPECT_TRUE(faults.reports.empty());
    // A declination exactly on the pole divides by zero in asin and comes back 0.
    const astro::RaDecRadians pole = astro::PrecessFK5(0.0, 0.0, 0.0, 3.14159265358979 / 2, faults);
    EXPECT_EQ(pole.delta, 0.0);
    ASSERT_EQ(faults.reports.size(), 1u);
    EXPECT_EQ(faults.reports[0].location, "Module2.asin");
}

} // namespace
