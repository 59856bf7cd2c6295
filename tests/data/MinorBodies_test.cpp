#include "data/MinorBodies.h"

#include "TestDatabases.h"
#include "tests/TestFiles.h"
#include "services/Fault.h"
#include "services/Vb.h"

#include <gtest/gtest.h>

#include <random>
#include <tuple>

namespace {

using testing_data::TestFolder;

// AstComet.mdb with 1P/Halley, a comet whose name holds quotes, Halley's name again in other
// case, and two asteroids.
std::filesystem::path MakeBodies(TestFolder& folder)
{
    const auto path = folder.dir.File(data::AstCometFileName);
    testing_data::MakeAstComet(path); // 1P/Halley
    auto db = data::Database::Open(path);
    db->Execute("Insert Into Comet (Name, q, e) Values ('O''Brien''s comet', 1.5, 0.5)");
    db->Execute("Insert Into Comet (Name, q, e, Mag) Values ('1p/HALLEY', 9, 0.1, 1)");
    db->Execute("Insert Into Asteroids (Anumb, Name, a, e) Values (4, 'Vesta', 2.36, 0.09)");
    db->Execute("Insert Into Asteroids (Anumb, Name, a, e) Values (0, '2024 AB1', 2.5, 0.2)");
    return path;
}

TEST(MinorBodyNames, TableOrderOfEachKind)
{
    TestFolder folder;
    const auto path = MakeBodies(folder);
    EXPECT_EQ(data::MinorBodyNames(path, data::MinorBodyKind::Comet),
              (std::vector<std::string>{"1P/Halley", "O'Brien's comet", "1p/HALLEY"}));
    EXPECT_EQ(data::MinorBodyNames(path, data::MinorBodyKind::Asteroid),
              (std::vector<std::string>{"Vesta", "2024 AB1"}));
    EXPECT_THROW(data::MinorBodyNames(folder.dir.File("missing.mdb"), data::MinorBodyKind::Comet),
                 services::Fault);
}

// The first row of the name in any case; nothing for another name or kind. Every field's way
// back from the table is checked with the imported rows below.
TEST(FindComet, FirstRowOfTheNameInAnyCase)
{
    TestFolder folder;
    const auto path = MakeBodies(folder);
    const auto halley = data::FindComet(path, "1p/halley");
    ASSERT_TRUE(halley);
    EXPECT_EQ(std::tuple(halley->Name, halley->q, halley->Mag.has_value(), halley->EPOCH),
              std::tuple(std::string("1P/Halley"), 0.587104, false, 2000.0));
    EXPECT_TRUE(data::FindComet(path, "o'brien's COMET"));
    EXPECT_FALSE(data::FindComet(path, "Halley"));
    EXPECT_FALSE(data::FindComet(path, "Vesta"));
    EXPECT_EQ(data::FindAsteroid(path, "VESTA")->Anumb, 4);
    EXPECT_FALSE(data::FindAsteroid(path, "1P/Halley"));
    EXPECT_THROW(data::FindComet(folder.dir.File("missing.mdb"), "1P/Halley"), services::Fault);
}

// Lines as the Minor Planet Center writes them (values of late 2024; 12P without magnitudes,
// the last comet and asteroid lines trimmed after the name).
const std::string kHalley =
    "0001P         1986 02  9.4589  0.574938  0.967923  111.8648   59.1006  "
    "162.1906  19860205   4.0  6.0  1P/Halley                             "
    "                   MPC 63620";
const std::string kAtlas = "    CK23A030  2024 09 27.7405  0.391423  1.000093  308.4925   21.5596  "
                           "139.1109  20240924   8.0  3.2  C/2023 A3 (Tsuchinshan-ATLAS)         "
                           "                   MPEC 2024-S192";
const std::string kPons = "0012P         2024 04 21.1381  0.780825  0.954622  198.9918  255.8555   "
                          "74.1929  20240416             12P/Pons-Brooks                         "
                          "                 MPEC 2024-H22";
const std::string kG3 = "    CK24G030  2025 01 13.4127  0.093600  0.999700   94.5000  220.2000  "
                        "164.3000  20250101  11.5  4.0  C/2024 G3 (ATLAS)";
// Line 4 is 12P; lines 3 and 5 are blank, line 2 ends in CR LF.
const std::string kComets = kHalley + "\n" + kAtlas + "\r\n\n" + kPons + "\n   \n" + kG3 + "\n";

const std::string kCeres = "00001    3.33  0.15 K2555 188.70269   73.27343   80.25221   10.58780  "
                           "0.0794013  0.21424651   2.7660512  0 E2024-V47  7330 125 1801-2024 "
                           "0.80 M-v 30k MPCLINUX   4000 (1) Ceres                   20241101";
const std::string kVesta = "00004    3.25  0.32 K2555  26.80342  151.53721  103.70234    7.14379  "
                           "0.0902210  0.27172012   2.3615385  0 E2024-V47  7589 112 1821-2024 "
                           "0.57 M-p 18k MPCLINUX   0000 (4) Vesta                   20241028";
const std::string k3708 = "03708               K2555  12.34567   10.00000   20.00000    5.00000  "
                          "0.1500000  0.25000000   2.5000000  0 MPO123456    50  10 1974-2023 "
                          "0.55 M-v 3Ek MPCLINUX   0000 (3708) 1974 FV1             20230101";
const std::string kAb1 = "K24A01B  18.5  0.15 K24AH   5.00000   30.00000   40.00000    3.50000  "
                         "0.2000000  0.23000000   2.6000000  1 MPEC 2024-A99  20   1   2 days "
                         "0.30 M-v 3Ek MPCLINUX  0000 2024 AB1";
// The header's lines would not read as elements; line 10 is (3708), line 11 blank.
const std::string kMpcorb = "MINOR PLANET CENTER ORBIT DATABASE (MPCORB)\n"
                            "\n"
                            "This file contains published orbital elements for all numbered\n"
                            "\n"
                            "Des'n     H     G   Epoch     M        Peri.      Node       Incl.\n"
                            "\n" +
                            std::string(160, '-') + "\n" + kCeres + "\n" + kVesta + "\r\n" + k3708 +
                            "\n\n" + kAb1 + "\n";

// The line with text written over its columns from column (0-based), blanks added as needed.
std::string Put(std::string line, std::size_t column, const std::string& text)
{
    if (line.size() < column + text.size())
        line.resize(column + text.size(), ' ');
    line.replace(column, text.size(), text);
    return line;
}

TEST(ReadCometEls, EveryFieldInItsColumn)
{
    const data::CometFile file = data::ReadCometEls(kComets, "CometEls.txt");
    ASSERT_EQ(file.refusal, "");
    ASSERT_EQ(file.rows.size(), 4u);
    const data::CometRow& halley = file.rows[0];
    EXPECT_EQ(std::tuple(halley.Name, halley.tyear, halley.tmonth, halley.tday, halley.q, halley.e,
                         halley.ArgPeri, halley.ascnode, halley.i, *halley.Mag, *halley.K,
                         halley.EPOCH),
              std::tuple(std::string("1P/Halley"), 1986.0, 2.0, 9.4589, 0.574938, 0.967923,
                         111.8648, 59.1006, 162.1906, 4.0, 6.0, 2000.0));
    EXPECT_EQ(file.rows[1].Name, "C/2023 A3 (Tsuchinshan-ATLAS)");
    EXPECT_EQ(file.rows[1].e, 1.000093);
    EXPECT_EQ(file.rows[2].Name, "12P/Pons-Brooks");
    EXPECT_FALSE(file.rows[2].Mag);
    EXPECT_FALSE(file.rows[2].K);
    EXPECT_EQ(std::tuple(file.rows[3].Name, file.rows[3].q, *file.rows[3].Mag),
              std::tuple(std::string("C/2024 G3 (ATLAS)"), 0.0936, 11.5));

    const data::CometFile empty = data::ReadCometEls("\n  \r\n", "CometEls.txt");
    EXPECT_EQ(std::tuple(empty.refusal, empty.rows.size()), std::tuple(std::string(), 0u));
}

TEST(ReadMpcorb, EveryFieldInItsColumn)
{
    const data::AsteroidFile file = data::ReadMpcorb(kMpcorb, "MPCORB.DAT");
    ASSERT_EQ(file.refusal, "");
    ASSERT_EQ(file.rows.size(), 4u);
    const data::AsteroidRow& ceres = file.rows[0];
    EXPECT_EQ(std::tuple(ceres.Anumb, ceres.Name, ceres.eyear, ceres.emonth, ceres.eday, ceres.M,
                         ceres.omega, ceres.Node, ceres.i, ceres.e, ceres.a, *ceres.g, *ceres.h),
              std::tuple(1.0, std::string("Ceres"), 2025.0, 5.0, 5.0, 188.70269, 73.27343, 80.25221,
                         10.5878, 0.0794013, 2.7660512, 3.33, 0.15));
    EXPECT_EQ(std::tuple(file.rows[2].Anumb, file.rows[2].Name, file.rows[2].g.has_value(),
                         file.rows[2].h.has_value()),
              std::tuple(3708.0, std::string("1974 FV1"), false, false));
    const data::AsteroidRow& ab1 = file.rows[3];
    EXPECT_EQ(std::tuple(ab1.Anumb, ab1.Name, ab1.eyear, ab1.emonth, ab1.eday, *ab1.g),
              std::tuple(0.0, std::string("2024 AB1"), 2024.0, 10.0, 17.0, 18.5));

    // Without a header every line holds elements; without element lines nothing is read.
    EXPECT_EQ(data::ReadMpcorb(kVesta + "\n" + kAb1, "MPCORB.DAT").rows.size(), 2u);
    const data::AsteroidFile headerOnly =
        data::ReadMpcorb(kMpcorb.substr(0, kMpcorb.find(kCeres)), "MPCORB.DAT");
    EXPECT_EQ(std::tuple(headerOnly.refusal, headerOnly.rows.size()),
              std::tuple(std::string(), 0u));
}

// One line of a good file changed at a column: the whole file is refused at that line, or
// (reason empty) still read.
TEST(ReadMinorBodies, BadLinesRefuseTheFile)
{
    const struct
    {
        bool comet;
        std::size_t column;
        std::string text;
        std::string reason;
    } cases[] = {
        {true, 30, "    0.8x7", "the perihelion distance \"0.8x7\" is not a number"},
        {true, 102, std::string(56, ' '), "no name"},
        {true, 14, "2024 02 30.5   ", "the perihelion date \"2024 02 30.5\" is not a date"},
        {true, 14, "2023 02 29.5   ", "the perihelion date \"2023 02 29.5\" is not a date"},
        {true, 14, "2024 02 29.5   ", ""},
        {true, 19, "13", "the perihelion date \"2024 13 21.1381\" is not a date"},
        {true, 19, "04 31.0000", "the perihelion date \"2024 04 31.0000\" is not a date"},
        {true, 19, "04 30.9999", ""},
        {true, 19, "04  0.5000", "the perihelion date \"2024 04 0.5000\" is not a date"},
        {true, 19, " 0", "the perihelion date \"2024 0 21.1381\" is not a date"},
        {true, 14, "20x4", "the perihelion year \"20x4\" is not a number"},
        {true, 30, "    0.000", "the perihelion distance \"0.000\" is not above 0"},
        {true, 41, "-0.10000", "the eccentricity \"-0.10000\" is below 0"},
        {true, 41, "        ", "the eccentricity \"\" is not a number"},
        {true, 51, "   1e5x ", "the argument of perihelion \"1e5x\" is not a number"},
        {true, 61, "     nan", "the longitude of the ascending node \"nan\" is not a number"},
        {true, 71, "  1,5000", "the inclination \"1,5000\" is not a number"},
        {true, 91, " 4.x", "the absolute magnitude \"4.x\" is not a number"},
        {true, 96, "  +-", "the magnitude slope \"+-\" is not a number"},
        {false, 70, "1.0200000", "the orbit is not an ellipse (e \"1.0200000\")"},
        {false, 92, " -2.5000000", "the orbit is not an ellipse (a \"-2.5000000\")"},
        {false, 70, "-0.100000", "the eccentricity \"-0.100000\" is below 0"},
        {false, 92, "           ", "the semimajor axis \"\" is not a number"},
        {false, 20, "K24D1", "the packed epoch \"K24D1\" is not a date"},
        {false, 20, "K244V", "the packed epoch \"K244V\" is not a date"},
        {false, 20, "K2a55", "the packed epoch \"K2a55\" is not a date"},
        {false, 20, "K232T", "the packed epoch \"K232T\" is not a date"},
        {false, 20, "J962T", ""},
        {false, 20, "K24 5", "the packed epoch \"K24 5\" is not a date"},
        {false, 26, " 12.3x567", "the mean anomaly \"12.3x567\" is not a number"},
        {false, 37, "      inf", "the argument of perihelion \"inf\" is not a number"},
        {false, 8, "  a.b", "the absolute magnitude \"a.b\" is not a number"},
        {false, 14, "  0,1", "the slope parameter \"0,1\" is not a number"},
        {false, 166, "(37x8) 1974 FV1", "the asteroid number \"37x8\" is not a number"},
        {false, 166, "(0) 1974 FV1   ", "the asteroid number \"0\" is not a number"},
        {false, 166, std::string(28, ' '), "no name"},
        {false, 166, "(3708)         ", "no name"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        std::string refusal;
        std::size_t rows = 0;
        if (c.comet) {
            const std::string text =
                kHalley + "\n" + kAtlas + "\r\n\n" + Put(kPons, c.column, c.text) + "\n";
            const data::CometFile file = data::ReadCometEls(text, "CometEls.txt");
            std::tie(refusal, rows) = std::tuple(file.refusal, file.rows.size());
        } else {
            std::string text = kMpcorb;
            text.replace(text.find(k3708), k3708.size(), Put(k3708, c.column, c.text));
            const data::AsteroidFile file = data::ReadMpcorb(text, "MPCORB.DAT");
            std::tie(refusal, rows) = std::tuple(file.refusal, file.rows.size());
        }
        if (c.reason.empty()) {
            EXPECT_EQ(std::tuple(refusal, rows), std::tuple(std::string(), c.comet ? 3u : 4u));
        } else {
            const std::string where = c.comet ? "CometEls.txt line 4: " : "MPCORB.DAT line 10: ";
            EXPECT_EQ(std::tuple(refusal, rows), std::tuple(where + c.reason, 0u));
        }
    }
}

class ImportElementsTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        testing_data::MakeAstComet(astComet); // 1P/Halley
        auto db = data::Database::Open(astComet);
        db->Execute("Insert Into Comet (Name, q, e) Values ('c/2023 a3 (TSUCHINSHAN-atlas)', 1, "
                    "0.5)");
        db->Execute("Insert Into Comet (Name, q, e) Values ('2P/Encke', 0.34, 0.85)");
        db->Execute("Insert Into Asteroids (Anumb, Name, a, e) Values (4, 'VESTA', 2.36, 0.09)");
    }

    data::ImportResult Import(data::MinorBodyKind kind, const std::string& name,
                              const std::string& text)
    {
        const auto file = folder.dir.File(name);
        test_files::WriteText(file, text);
        return data::ImportElements(astComet, kind, file);
    }

    std::multiset<std::string> Dump()
    {
        auto db = data::Database::Open(astComet);
        return testing_data::Dump(*db);
    }

    TestFolder folder;
    std::filesystem::path astComet = folder.dir.File(data::AstCometFileName);
};

TEST_F(ImportElementsTest, AddsNewNamesAndReplacesKnownOnesInAnyCase)
{
    const data::ImportResult comets = Import(data::MinorBodyKind::Comet, "CometEls.txt", kComets);
    EXPECT_EQ(std::tuple(comets.refusal, comets.lines, comets.added, comets.replaced),
              std::tuple(std::string(), 4L, 2L, 2L));
    const data::ImportResult asteroids =
        Import(data::MinorBodyKind::Asteroid, "MPCORB.DAT", kMpcorb);
    EXPECT_EQ(std::tuple(asteroids.refusal, asteroids.lines, asteroids.added, asteroids.replaced),
              std::tuple(std::string(), 4L, 3L, 1L));

    auto db = data::Database::Open(astComet);
    // Replaced rows keep their place and take the file's spelling; empty magnitudes are NULL.
    EXPECT_EQ(testing_data::Rows(*db, "Select Name, tyear, tmonth, tday, q, e, i, ArgPeri, "
                                      "ascnode, Mag, K, EPOCH From Comet Order By rowid"),
              (std::vector<std::string>{
                  "1P/Halley|1986|2|9.4589|0.574938|0.967923|162.1906|111.8648|59.1006|4|6|2000",
                  "C/2023 A3 (Tsuchinshan-ATLAS)|2024|9|27.7405|0.391423|1.000093|139.1109|"
                  "308.4925|21.5596|8|3.2|2000",
                  "2P/Encke|<null>|<null>|<null>|0.34|0.85|<null>|<null>|<null>|<null>|<null>|"
                  "<null>",
                  "12P/Pons-Brooks|2024|4|21.1381|0.780825|0.954622|74.1929|198.9918|255.8555|"
                  "<null>|<null>|2000",
                  "C/2024 G3 (ATLAS)|2025|1|13.4127|0.0936|0.9997|164.3|94.5|220.2|11.5|4|2000"}));
    EXPECT_EQ(testing_data::Rows(*db, "Select ANumber, Anumb, Name, eyear, emonth, eday, a, e, i, "
                                      "M, Node, omega, g, h From Asteroids Order By rowid"),
              (std::vector<std::string>{
                  "1|4|Vesta|2025|5|5|2.3615385|0.090221|7.14379|26.80342|103.70234|151.53721|"
                  "3.25|0.32",
                  "2|1|Ceres|2025|5|5|2.7660512|0.0794013|10.5878|188.70269|80.25221|73.27343|"
                  "3.33|0.15",
                  "3|3708|1974 FV1|2025|5|5|2.5|0.15|5|12.34567|20|10|<null>|<null>",
                  "4|0|2024 AB1|2024|10|17|2.6|0.2|3.5|5|40|30|18.5|0.15"}));
    db.reset();

    // The same file again replaces every row and adds none.
    const data::ImportResult again = Import(data::MinorBodyKind::Comet, "CometEls.txt", kComets);
    EXPECT_EQ(std::tuple(again.lines, again.added, again.replaced), std::tuple(4L, 0L, 4L));
}

// Each row read comes back whole from the table by its name in other case.
TEST_F(ImportElementsTest, ImportedRowsAreFoundWhole)
{
    ASSERT_EQ(Import(data::MinorBodyKind::Comet, "CometEls.txt", kComets).refusal, "");
    ASSERT_EQ(Import(data::MinorBodyKind::Asteroid, "MPCORB.DAT", kMpcorb).refusal, "");
    for (const data::CometRow& row : data::ReadCometEls(kComets, "CometEls.txt").rows)
        EXPECT_EQ(data::FindComet(astComet, services::vb::LCase(row.Name)), row) << row.Name;
    for (const data::AsteroidRow& row : data::ReadMpcorb(kMpcorb, "MPCORB.DAT").rows)
        EXPECT_EQ(data::FindAsteroid(astComet, services::vb::UCase(row.Name)), row) << row.Name;
}

TEST_F(ImportElementsTest, RefusalsLeaveTheTablesAsTheyWere)
{
    const auto before = Dump();
    const std::string badLine = Put(kG3, 30, "    0.8x7");
    const struct
    {
        data::MinorBodyKind kind;
        std::filesystem::path file; // written with text unless text is empty
        std::string text;
        std::string refusal;
    } cases[] = {
        {data::MinorBodyKind::Comet, "CometEls.txt", kComets + badLine + "\n",
         "CometEls.txt line 7: the perihelion distance \"0.8x7\" is not a number"},
        {data::MinorBodyKind::Asteroid, "mpcorb-2024.dat",
         kMpcorb + Put(kCeres, 70, "1.0200000") + "\n",
         "mpcorb-2024.dat line 13: the orbit is not an ellipse (e \"1.0200000\")"},
        {data::MinorBodyKind::Comet, folder.dir.File("missing.txt"), "",
         "Cannot read " + folder.dir.File("missing.txt").string()},
        {data::MinorBodyKind::Asteroid, folder.dir.path, "",
         "Cannot read " + folder.dir.path.string()},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.refusal);
        const data::ImportResult result = c.text.empty()
                                              ? data::ImportElements(astComet, c.kind, c.file)
                                              : Import(c.kind, c.file.string(), c.text);
        EXPECT_EQ(std::tuple(result.refusal, result.added, result.replaced),
                  std::tuple(c.refusal, 0L, 0L));
        EXPECT_EQ(Dump(), before);
    }

    // A database that cannot be written: the file is named, nothing is half-written.
    auto reader = data::Database::Open(astComet);
    reader->Execute("Begin Exclusive");
    const data::ImportResult locked = Import(data::MinorBodyKind::Comet, "CometEls.txt", kComets);
    reader->Execute("Rollback");
    EXPECT_NE(locked.refusal.find(astComet.string()), std::string::npos) << locked.refusal;
    EXPECT_EQ(Dump(), before);
}

// Good files with random damage (bytes changed, lines cut, bytes put in): a reader either
// refuses the whole file at a line or reads rows that hold an orbit; an import either changes
// nothing or adds and replaces exactly what it says.
TEST_F(ImportElementsTest, DamagedFilesAreRefusedWholeOrReadCleanly)
{
    std::mt19937 random(20241124);
    const auto below = [&](std::size_t n) {
        return static_cast<std::size_t>(random() % static_cast<unsigned>(n));
    };
    const std::string interesting = " 0123456789.-+eE\n\r\t()AKVZ/x\xff";
    long refused = 0;
    for (int round = 0; round < 4000; ++round) {
        const bool comets = round % 2 == 0;
        std::string text = comets ? kComets : kMpcorb;
        for (std::size_t m = 1 + below(3); m > 0 && !text.empty(); --m) {
            const std::size_t at = below(text.size());
            const char c = below(4) == 0 ? static_cast<char>(below(256))
                                         : interesting[below(interesting.size())];
            switch (below(4)) {
            case 0:
                text[at] = c;
                break;
            case 1:
                text.resize(at);
                break;
            case 2:
                text.insert(at, below(3) + 1, c);
                break;
            default:
                text.erase(at, below(40) + 1);
                break;
            }
        }
        SCOPED_TRACE(text);
        const std::string name = comets ? "CometEls.txt" : "MPCORB.DAT";
        std::string refusal;
        if (comets) {
            const data::CometFile file = data::ReadCometEls(text, name);
            refusal = file.refusal;
            EXPECT_TRUE(refusal.empty() || file.rows.empty());
            for (const data::CometRow& row : file.rows)
                ASSERT_TRUE(!row.Name.empty() && row.q > 0 && row.e >= 0 && row.tmonth >= 1 &&
                            row.tmonth <= 12 && row.tday >= 1 && row.tday < 32);
        } else {
            const data::AsteroidFile file = data::ReadMpcorb(text, name);
            refusal = file.refusal;
            EXPECT_TRUE(refusal.empty() || file.rows.empty());
            for (const data::AsteroidRow& row : file.rows)
                ASSERT_TRUE(!row.Name.empty() && row.e >= 0 && row.e < 1 && row.a > 0 &&
                            row.Anumb >= 0 && row.emonth >= 1 && row.eday >= 1);
        }
        if (!refusal.empty()) {
            ++refused;
            EXPECT_EQ(refusal.rfind(name + " line ", 0), 0u) << refusal;
        }
        if (round % 80 > 1)
            continue;
        const auto before = Dump();
        const data::ImportResult result =
            Import(comets ? data::MinorBodyKind::Comet : data::MinorBodyKind::Asteroid, name, text);
        EXPECT_EQ(result.refusal, refusal);
        const auto after = Dump();
        if (!refusal.empty())
            EXPECT_EQ(after, before);
        else
            EXPECT_EQ(
                std::tuple(after.size(), result.added + result.replaced),
                std::tuple(before.size() + static_cast<std::size_t>(result.added), result.lines));
    }
    // The damage must both break and spare files, or the test proves little.
    EXPECT_GT(refused, 1000);
    EXPECT_LT(refused, 3800);
}

} // namespace
