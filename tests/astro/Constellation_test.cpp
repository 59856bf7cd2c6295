// The constellation lookup: the shipped names, the limits of the rows, the position texts, the
// precession against ERFA and damaged files.

#include "astro/Constellation.h"

#include "tests/astro/RecordingFaults.h"
#include "tests/TestFiles.h"

#ifdef SELVANE_HAVE_ERFA
#include <erfa.h>
#include <erfam.h>
#endif
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>

namespace {

using astro::ConstellationTable;
using astro_test::RecordingFaults;

const std::filesystem::path kShipped = SELVANE_SHIPPED_RESOURCES;

using test_files::ReadText;

ConstellationTable ShippedTable()
{
    ConstellationTable table;
    RecordingFaults faults;
    EXPECT_TRUE(astro::ReadConstellationTable(kShipped, table, faults));
    EXPECT_TRUE(faults.reports.empty());
    return table;
}

// The capitals of a name give its abbreviation. Those of the 88 shipped names differ, and all
// are the IAU's three letters except Hydrus and Sagitta, which lack their last (Hyi, Sge).
TEST(ConstellationAbbreviation, CapitalsOfTheShippedNames)
{
    EXPECT_EQ(astro::ConstellationAbbreviation("ANDromeda"), "And");
    EXPECT_EQ(astro::ConstellationAbbreviation("Canes VeNatici"), "Cvn");
    EXPECT_EQ(astro::ConstellationAbbreviation("PiScis Austrinus"), "Psa");
    EXPECT_EQ(astro::ConstellationAbbreviation("HYdrus"), "Hy");
    EXPECT_EQ(astro::ConstellationAbbreviation("Bo-otes 2"), "B-2"); // no lower case form: taken

    const ConstellationTable table = ShippedTable();
    std::set<std::string> abbreviations;
    for (std::size_t n = 1; n <= 88; ++n) {
        const std::string a = astro::ConstellationAbbreviation(table.names[n]);
        EXPECT_EQ(a.size(), a == "Hy" || a == "Sg" ? 2u : 3u) << table.names[n];
        abbreviations.insert(a);
    }
    EXPECT_EQ(abbreviations.size(), 88u);
}

TEST(FindBoundaryRow, LimitsOfTheRows)
{
    const ConstellationTable table = ShippedTable();
    constexpr double kJustBelow = 1e-9;
    const struct
    {
        const char* what;
        double raHours, decDeg;
        int row;
    } cases[] = {
        // Row 5 is Cep from 0h to 8h above +85; Cam's row 15 starts at 7.9667h.
        {"RA just below an upper limit", 8.0 - kJustBelow, 85.5, 5},
        {"RA exactly at an upper limit goes to a later row", 8.0, 85.5, 15},
        // Row 6 is Cam above +82 from 9.1667h to 10.6667h, with Dra's row 16 below it.
        {"declination exactly on a lower limit", 10.0, 82.0, 6},
        {"declination just below it", 10.0, 82.0 - kJustBelow, 16},
        {"RA exactly at a lower limit", 9.1667, 82.0, 6},
        {"north pole", 12.0, 90.0, 1},
        {"south pole: the last row (Oct) closes the sphere", 12.0, -90.0, 357},
        // The rows end strictly below 24h, so 24h itself is held by none: callers wrap it.
        {"24h exactly", 24.0, 0.0, 0},
    };
    for (const auto& c : cases)
        EXPECT_EQ(astro::FindBoundaryRow(table, c.raHours, c.decDeg), c.row) << c.what;
}

TEST(Parse, TextFormsAndTheirValues)
{
    const struct
    {
        const char* text;
        const char* normal;
        double value; // Whole of the normal form
    } cases[] = {
        {"5h35m17s", "5 35 17", 5 + 35 / 60.0 + 17 / 3600.0},
        {"-05°23'28\"", " 05 23 28-", -(5 + 23 / 60.0 + 28 / 3600.0)},
        {"- 5 23 28", " 5 23 28-", -(5 + 23 / 60.0 + 28 / 3600.0)},
        {"-0 30 0", " 0 30 0-", -0.5},
        {"1.5.30", "1.5 30", 1.5 + 30 / 60.0}, // the second point separates
        {".5", ".5", 0.5},
        {"1 2 3 4", "1 2 3", 1 + 2 / 60.0 + 3 / 3600.0},
        {"J2000", "2000", 2000},
        // Texts without digits.
        {"", "", 0},
        {"north", "", 0},
        {"-", " -", 0},
        {".", ".", 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        const std::string normal = astro::Parse(c.text);
        EXPECT_EQ(normal, c.normal);
        RecordingFaults faults;
        const std::optional<double> value = astro::Whole(normal, faults);
        ASSERT_TRUE(value.has_value());
        EXPECT_DOUBLE_EQ(*value, c.value);
        EXPECT_TRUE(faults.reports.empty());
    }

    // A group past the range of a double overflows; a fraction below it reads 0.
    RecordingFaults faults;
    EXPECT_FALSE(astro::Whole(std::string(400, '9'), faults).has_value());
    EXPECT_EQ(faults.Texts(), std::vector<std::string>{"Overflow @ GETCONST.Whole"});
    EXPECT_EQ(astro::Whole("0." + std::string(400, '0') + "1", faults), 0.0);
    EXPECT_EQ(faults.reports.size(), 1u);
}

TEST(Precess, RangeAndFaults)
{
    RecordingFaults faults;
    const auto same = astro::Precess(5.5, -5.25, 1875, 1875, faults);
    ASSERT_TRUE(same.has_value());
    EXPECT_NEAR(same->alpha, 5.5, 1e-12);
    EXPECT_NEAR(same->delta, -5.25, 1e-12);

    // Right ascension comes back in [0, 24) whichever quadrant, from inputs outside it too.
    for (double alpha : {0.0, 5.9, 6.1, 11.99, 12.01, 17.9, 18.1, 23.999999, 24.0, -3.0, 30.0}) {
        for (double delta : {-89.9, 0.0, 89.9}) {
            const auto p = astro::Precess(alpha, delta, 2000, 1875, faults);
            ASSERT_TRUE(p.has_value()) << alpha << " " << delta;
            EXPECT_GE(p->alpha, 0.0) << alpha << " " << delta;
            EXPECT_LT(p->alpha, 24.0) << alpha << " " << delta;
        }
    }
    // At the pole the sine of the result may round past 1; that is still the pole.
    const auto pole = astro::Precess(0, 90, 1875, 1875, faults);
    ASSERT_TRUE(pole.has_value());
    EXPECT_NEAR(pole->delta, 90.0, 1e-6);
    EXPECT_TRUE(faults.reports.empty());

    EXPECT_FALSE(astro::Precess(1, 1, 1e300, 1875, faults).has_value());
    EXPECT_FALSE(astro::Precess(1e308, 1, 2000, 1875, faults).has_value());
    ASSERT_EQ(faults.reports.size(), 2u);
    for (const auto& report : faults.reports) {
        EXPECT_EQ(report.message, "Overflow");
        EXPECT_EQ(report.location, "GETCONST.Precess");
    }
}

#ifdef SELVANE_HAVE_ERFA
// ERFA: the IAU 2006 precession (with frame bias) from J2000.0 to the mean equator and equinox
// of B1875.0. The routine's rates are older and of low order; over 125 years they stay within
// 2" (about 1.1" at worst), up to the poles.
TEST(Precess, WithinTwoArcSecondsOfIau2006From2000To1875)
{
    double jd1875a = 0;
    double jd1875b = 0;
    eraEpb2jd(1875.0, &jd1875a, &jd1875b);
    double at2000[3][3];
    double at1875[3][3];
    eraPmat06(ERFA_DJ00, 0, at2000);
    eraPmat06(jd1875a, jd1875b, at1875);

    constexpr double kHoursToRad = ERFA_DPI / 12;
    RecordingFaults faults;
    for (double ra = 0; ra < 24; ra += 0.75) {
        for (double dec :
             {-89.99, -89.9, -85.0, -60.0, -30.0, -5.0, 0.0, 5.0, 30.0, 60.0, 85.0, 89.9, 89.99}) {
            double v[3], gcrs[3], w[3];
            eraS2c(ra * kHoursToRad, dec * ERFA_DD2R, v);
            eraTrxp(at2000, v, gcrs);
            eraRxp(at1875, gcrs, w);
            double a = 0;
            double d = 0;
            eraC2s(w, &a, &d);
            const auto p = astro::Precess(ra, dec, 2000, 1875, faults);
            ASSERT_TRUE(p.has_value());
            EXPECT_LT(eraSeps(a, d, p->alpha * kHoursToRad, p->delta * ERFA_DD2R) * ERFA_DR2AS, 2.0)
                << ra << " " << dec;
        }
    }
    EXPECT_TRUE(faults.reports.empty());
}
#endif

TEST(GetCon, KnownObjects)
{
    const struct
    {
        const char *ra, *dec, *epoch, *name, *abbreviation;
    } cases[] = {
        {"5h35m17s", "-05°23'28\"", "J2000", "ORIon", "Ori"},      // M 42
        {"5 32 49", "-5 25 00", "B1950", "ORIon", "Ori"},          // M 42, 1950 position
        {"13 29 53", "47 11 43", "2000", "Canes VeNatici", "Cvn"}, // M 51
        {"2 31 49", "89 15 51", "2000", "Ursa MInor", "Umi"},      // Polaris
        {"6 0 0", "-89 59 59", "2000", "OCTans", "Oct"},           // near the south pole
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        RecordingFaults faults;
        const astro::ConstellationName got = astro::GetCon(c.ra, c.dec, c.epoch, kShipped, faults);
        EXPECT_EQ(got.name, c.name);
        EXPECT_EQ(got.abbreviation, c.abbreviation);
        EXPECT_TRUE(faults.reports.empty());
    }
}

// Damaged files report at GETCONST.GetCon and answer empty. The lookup used is 12h +89 of 1875,
// which the first record (Umi) holds, so that record is the one rewritten.
TEST(GetCon, DamagedFiles)
{
    const std::string names = ReadText(kShipped / astro::kConstellationNamesFileName);
    const std::string bounds = ReadText(kShipped / astro::kConstellationBoundsFileName);
    const std::string afterFirst = bounds.substr(bounds.find('\n') + 1);
    const auto firstNumbered = [&](const char* n) {
        return std::string("0.0000 24.0000 88.0000 ") + n + "\n" + afterFirst;
    };
    std::string crlf;
    for (char c : names)
        crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
    std::string commas = bounds;
    for (char& c : commas)
        c = c == ' ' ? ',' : c;
    commas.pop_back();

    const std::string_view N = astro::kConstellationNamesFileName;
    const std::string_view B = astro::kConstellationBoundsFileName;
    const struct
    {
        const char* what;
        std::string_view file;
        std::optional<std::string> text; // nothing: the file is missing
        const char* fault;               // empty: read whole, and the lookup names name
        const char* name;
    } cases[] = {
        {"names missing", N, std::nullopt, "File not found"},
        {"87 names", N, names.substr(0, names.rfind('\n', names.size() - 2) + 1),
         "Input past end of file"},
        {"bounds missing", B, std::nullopt, "File not found"},
        {"356 records", B, bounds.substr(0, bounds.rfind('\n', bounds.size() - 2) + 1),
         "Input past end of file"},
        {"a field not a number", B, firstNumbered("x"), "Type mismatch"},
        {"constellation 89", B, firstNumbered("89"), "Subscript out of range"},
        {"constellation 0", B, firstNumbered("0"), "Subscript out of range"},
        {"constellation 59.5 rounds to the even 60", B, firstNumbered("59.5"), "", "ORIon"},
        {"CR LF and an 89th line", N, crlf + "extra\r\n", "", "Ursa MInor"},
        {"commas, no final line end", B, commas, "", "Ursa MInor"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        char pattern[] = "/tmp/constellation_test_XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        const std::filesystem::path folder = pattern;
        for (std::string_view file : {N, B})
            std::filesystem::copy_file(kShipped / file, folder / file);
        if (c.text)
            std::ofstream(folder / c.file, std::ios::binary | std::ios::trunc) << *c.text;
        else
            std::filesystem::remove(folder / c.file);

        RecordingFaults faults;
        const astro::ConstellationName got = astro::GetCon("12", "89", "1875", folder, faults);
        std::filesystem::remove_all(folder);
        if (*c.fault == '\0') {
            EXPECT_TRUE(faults.reports.empty());
            EXPECT_EQ(got.name, c.name);
            continue;
        }
        EXPECT_EQ(faults.Texts(),
                  std::vector<std::string>{std::string(c.fault) + " @ GETCONST.GetCon"});
        EXPECT_EQ(got.name + got.abbreviation, "");
    }
}

} // namespace
