#include "astro/Sun.h"

#include "RecordingFaults.h"
#include "astro/SolarCommon.h"

#include <gtest/gtest.h>

#include <cmath>
#include <regex>

namespace {

using astro_test::RecordingFaults;

astro::ObservingClock Clock(const std::string& date, const std::string& time, double lat,
                            double lonWest, double tz, bool ampm = false)
{
    astro::ObservingClock c;
    c.PDate = date;
    c.Ptime = time;
    c.Plat = lat;
    c.Plon = lonWest;
    c.PTz = tz;
    c.timesAMPM = ampm;
    return c;
}

// Minutes of a "hh:mm" text.
int Minutes(const std::string& text)
{
    return std::stoi(text.substr(0, 2)) * 60 + std::stoi(text.substr(3, 2));
}

TEST(SolarTexts, FormsOfTheOutputs)
{
    const struct
    {
        std::string got, expected;
    } rows[] = {
        {astro::LongitudeText(280.4537222), "280\u00b027'13.4\""},
        {astro::LongitudeText(5.0519444), "5\u00b003'07.0\""},
        // Wrapped into 0 to 360.
        {astro::LongitudeText(-0.5), "359\u00b030'00.0\""},
        {astro::LongitudeText(360.25), "0\u00b015'00.0\""},
        {astro::SignedAngleText(23.4366667), "+23\u00b026'12.0\""},
        {astro::SignedAngleText(-0.5), "-0\u00b030'00.0\""},
        {astro::RaText(6.0898889), "6h 5m 23.6s "},
        {astro::RaText(12), "12h 0m 0s "},
        {astro::Ra00Text(6.0898889), "06h 05m 24s"},
        // 59.6 seconds show 60: the two-digit form rounds the seconds, it does not carry.
        {astro::Ra00Text(1 + 2 / 60.0 + 59.6 / 3600), "01h 02m 60s"},
        {astro::Dec00Text(23.4366667), "+23\u00b026' 12\""},
        {astro::Dec00Text(-5.5), "-05\u00b030' 00\""},
        {astro::DiameterText(32.5833), "32' 35\""},
        {astro::DiameterText(31.9999), "31' 60\""},
        {astro::SemiDiameterText(32.5833), "16.29'"},
        {astro::SemiDiameterText(9.5), "04.75'"},
        {astro::AltitudeText(5.3), "+05.30"},
        {astro::AltitudeText(-12.345), "-12.35"},
        {astro::AltitudeText(0.001), "00.00"},
        {astro::AltitudeText(-0.001), "00.00"},
        {astro::SunTimeText(6.0999, false), "06:05"},
        {astro::SunTimeText(0.5, true), "12:30 AM"},
        {astro::SunTimeText(12.25, true), "12:15 PM"},
        {astro::SunTimeText(18.9999, true), "06:59 PM"},
    };
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(rows[i].got, rows[i].expected);
    }
}

TEST(CalcSun, RiseSetAndTwilightAcrossLatitudesAndSeasons)
{
    // Reference times (local, cut to the minute): astropy 5.2, the Sun's apparent centre at -0.8361
    // degrees (0.014593 radians), true sidereal time, TT = UT; this theory and its two passes come
    // within a minute or two. Twilight is checked for its form and order only.
    struct
    {
        const char* name;
        astro::ObservingClock clock;
        const char *rise, *set; // "hh:mm" or "ERROR"
        bool twilightError;     // "* ERROR *" in both
    } rows[] = {
        {"Greenwich, equinox", Clock("2024-03-20", "12:00", 51.4769, 0, 0), "06:01", "18:13",
         false},
        {"Sydney, June (south, east of Greenwich)",
         Clock("2024-06-21", "12:00", -33.8688, -151.2093, -10), "07:00", "16:53", false},
        {"Denver, daylight time", Clock("2024-07-04", "12:00", 39.7392, 104.9903, 7), "05:37",
         "20:31", false},
        // 60 N in June: the Sun never gets 18 degrees down, yet rises and sets.
        {"60 N in June", Clock("2024-06-21", "12:00", 60, -10.75, -1), "02:52", "21:44", true},
        // Inside the polar circle: polar day in June, polar night in December.
        {"Tromso, June", Clock("2024-06-21", "12:00", 69.65, -18.96, -1), "ERROR", "ERROR", false},
        {"Tromso, December", Clock("2024-12-21", "12:00", 69.65, -18.96, -1), "ERROR", "ERROR",
         false},
        {"South pole", Clock("2024-03-01", "12:00", -90, 0, 0), "ERROR", "ERROR", false},
    };
    rows[2].clock.PStd = "D";
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        RecordingFaults faults;
        const astro::SunOutputs sun = astro::CalcSun(row.clock, astro::FixedClock(), faults);
        EXPECT_TRUE(faults.reports.empty());
        // The place is filled whatever happens to rise and set.
        EXPECT_FALSE(sun.trueLongitude.empty());
        EXPECT_FALSE(sun.dec2.empty());
        EXPECT_FALSE(sun.altitude.empty());
        if (std::string(row.rise) == "ERROR") {
            EXPECT_EQ(sun.sunrise, "ERROR");
            EXPECT_EQ(sun.sunset, "ERROR");
            EXPECT_EQ(sun.twilightBegins, "");
            EXPECT_EQ(sun.twilightEnds, "");
            continue;
        }
        EXPECT_NEAR(Minutes(sun.sunrise), Minutes(row.rise), 2) << sun.sunrise;
        EXPECT_NEAR(Minutes(sun.sunset), Minutes(row.set), 2) << sun.sunset;
        if (row.twilightError) {
            EXPECT_EQ(sun.twilightBegins, "* ERROR *");
            EXPECT_EQ(sun.twilightEnds, "* ERROR *");
            EXPECT_EQ(astro::DarknessText(sun, false), "No astronomical darkness");
            continue;
        }
        EXPECT_TRUE(std::regex_match(sun.twilightBegins, std::regex(R"(\d{1,2}\.\d{4})")))
            << sun.twilightBegins;
        // Morning twilight begins 1 to 3 hours before sunrise, evening twilight ends as long
        // after sunset, counted from the whole minutes shown.
        const double before = Minutes(sun.sunrise) / 60.0 - std::stod(sun.twilightBegins);
        const double after = std::stod(sun.twilightEnds) - Minutes(sun.sunset) / 60.0;
        EXPECT_GT(before, 1);
        EXPECT_LT(before, 3);
        EXPECT_GT(after, 1);
        EXPECT_LT(after, 3);
    }
}

TEST(CalcSun, PlaceAndTextsOfOneMoment)
{
    // 2024 June 21, 0h UT: RA 6h 0m 32.6s, Dec +23 26' 17.4" (astropy 5.2, true equator and
    // equinox of date, TT = UT), distance 1.01620 AU; true longitude 90.13 degrees.
    RecordingFaults faults;
    const astro::SunOutputs sun =
        astro::CalcSun(Clock("2024-06-21", "00:00", 51.4769, 0, 0), astro::FixedClock(), faults);
    EXPECT_TRUE(faults.reports.empty());
    EXPECT_NEAR(sun.distance, 1.01621, 2e-5);
    EXPECT_NEAR(sun.raHours, 6 + 32.6 / 3600.0, 1 / 3600.0);
    EXPECT_NEAR(sun.decDeg, 23 + 26 / 60.0 + 17.4 / 3600.0, 10 / 3600.0);
    EXPECT_TRUE(std::regex_match(sun.trueLongitude, std::regex("90\u00b007'\\d\\d\\.\\d\"")))
        << sun.trueLongitude;
    EXPECT_EQ(sun.ra, "6h 0m 32.5s ");
    EXPECT_EQ(sun.ra2, "06h 00m 33s");
    EXPECT_EQ(sun.dec.substr(0, 9), "+23\u00b026'1");
    EXPECT_EQ(sun.dec2.substr(0, 9), "+23\u00b026' ");
    EXPECT_EQ(sun.diameter, "31' 32\"");
    EXPECT_EQ(sun.semiDiameter, "15.76'");
    // The Sun below the horizon at London's midnight in June, about 15 degrees down.
    EXPECT_LT(sun.altitudeDeg, -14);
    EXPECT_EQ(sun.altitude.front(), '-');
}

TEST(CalcSun, AmbiguousRisingNearZeroUniversalTime)
{
    // 91 E at the equinox: the Sun rises a few minutes after 0h UT, where sidereal time
    // cannot tell the day's two candidates apart; the flag is set, the text stays a time.
    RecordingFaults faults;
    astro::SunOutputs sun =
        astro::CalcSun(Clock("2024-03-20", "12:00", 0, -91.5, 0), astro::FixedClock(), faults);
    EXPECT_TRUE(sun.riseAmbiguous);
    EXPECT_FALSE(sun.setAmbiguous);
    EXPECT_EQ(sun.sunrise.size(), 5u);
    sun = astro::CalcSun(Clock("2024-03-20", "12:00", 0, 0, 0), astro::FixedClock(), faults);
    EXPECT_FALSE(sun.riseAmbiguous);
    EXPECT_TRUE(faults.reports.empty());
}

TEST(CalcSun, FaultsAreTheRoutines)
{
    RecordingFaults faults;
    const astro::SunOutputs sun =
        astro::CalcSun(Clock("not a date", "22:00", 40, 90, 6), astro::FixedClock(), faults);
    ASSERT_EQ(faults.reports.size(), 1u);
    EXPECT_EQ(faults.reports[0].location, "Module1.CalcSun");
    EXPECT_EQ(faults.reports[0].message, astro::kTypeMismatch);
    EXPECT_TRUE(sun.trueLongitude.empty());
    EXPECT_TRUE(sun.sunrise.empty());
    EXPECT_TRUE(std::isnan(
        astro::SunTransit(Clock("31/31/2024", "22:00", 40, 90, 6), astro::FixedClock(), faults)));
}

TEST(SunTransit, NoonCorrectedForLongitudeAndTheEquationOfTime)
{
    // Greenwich, 2024 November 3: the equation of time is +16.4 minutes, transit 11:43:36 UT.
    RecordingFaults faults;
    const double t =
        astro::SunTransit(Clock("2024-11-03", "12:00", 51.4769, 0, 0), astro::FixedClock(), faults);
    EXPECT_NEAR(t, 11 + 43.6 / 60, 0.5 / 60);
}

} // namespace
