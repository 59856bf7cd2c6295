// Checks of the databases and plans the build wrote into the resources folder.

#include "services/Vb.h"
#include "tools/SkyMath.h"
#include "tools/Sources.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <cmath>
#include <map>
#include <numbers>
#include <set>
#include <string>
#include <vector>

namespace {

const std::string Resources = SELVANE_BUILT_RESOURCES;
using Table = std::vector<std::vector<std::string>>;

class Db
{
public:
    explicit Db(const std::string& file)
    {
        const std::string path = Resources + "/" + file;
        if (sqlite3_open_v2(path.c_str(), &db_, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK)
            ADD_FAILURE() << "cannot open " << path;
    }
    ~Db() { sqlite3_close(db_); }
    // Rows of a query, each column as text ("" for null).
    std::vector<std::vector<std::string>> Rows(const std::string& sql) const
    {
        std::vector<std::vector<std::string>> out;
        sqlite3_stmt* st = nullptr;
        if (sqlite3_prepare_v2(db_, sql.c_str(), -1, &st, nullptr) != SQLITE_OK) {
            ADD_FAILURE() << sqlite3_errmsg(db_) << " in " << sql;
            return out;
        }
        while (sqlite3_step(st) == SQLITE_ROW) {
            std::vector<std::string> row;
            for (int k = 0; k < sqlite3_column_count(st); ++k) {
                const unsigned char* t = sqlite3_column_text(st, k);
                row.emplace_back(t ? reinterpret_cast<const char*>(t) : "");
            }
            out.push_back(std::move(row));
        }
        sqlite3_finalize(st);
        return out;
    }
    double Number(const std::string& sql) const
    {
        const auto rows = Rows(sql);
        return rows.empty() || rows[0].empty() ? NAN : std::stod(rows[0][0]);
    }

private:
    sqlite3* db_ = nullptr;
};

const char* const Editions[] = {"SelvPro13000.mdb", "SelvPro708000.mdb"};

TEST(BuiltObjectDatabase, StartQueryListsTheMessierObjectsInOrder)
{
    for (const char* edition : Editions) {
        SCOPED_TRACE(edition);
        const Db db(edition);
        const auto rows = db.Rows("Select MessierNumber, ObjectID, OtherID From SelvaneTable "
                                  "Where MessierNumber > 0 and catalog = '2000' order by "
                                  "MessierNumber");
        ASSERT_EQ(rows.size(), 110u);
        for (std::size_t k = 0; k < rows.size(); ++k)
            ASSERT_EQ(rows[k][0], std::to_string(k + 1));
        const std::map<int, std::string> expected = {
            {1, "NGC 1952"}, {24, "IC 4715"},  {31, "NGC 224"}, {40, "M 40"},      {42, "NGC 1976"},
            {45, "M 45"},    {51, "NGC 5194"}, {76, "NGC 650"}, {102, "NGC 5866"}, {110, "NGC 205"},
        };
        for (const auto& [m, id] : expected) {
            SCOPED_TRACE(m);
            EXPECT_EQ(rows[static_cast<std::size_t>(m - 1)][1], id);
        }
        EXPECT_EQ(rows[30][2], "M 31");
        // No other catalogue carries Messier numbers.
        EXPECT_EQ(db.Number("Select count(*) From SelvaneTable Where MessierNumber > 0 and "
                            "Catalog <> '2000'"),
                  0);
    }
}

TEST(BuiltObjectDatabase, HerschelObjects)
{
    for (const char* edition : Editions) {
        SCOPED_TRACE(edition);
        const Db db(edition);
        EXPECT_EQ(db.Number("Select count(*) From SelvaneTable Where Catalog = '2000' and "
                            "HOBJECT <> ''"),
                  400);
        EXPECT_EQ(db.Number("Select count(*) From SelvaneTable Where HOBJECT <> ''"), 400);
        EXPECT_EQ(db.Rows("Select HObject From SelvaneTable Where ObjectID = 'NGC 40' and "
                          "Catalog = '2000'"),
                  (Table{{"H IV-58"}}));
    }
}

double SeparationArcmin(double ra1, double dec1, double ra2, double dec2)
{
    const double r = std::numbers::pi / 180;
    const double h =
        std::pow(std::sin((dec2 - dec1) * r / 2), 2) +
        std::cos(dec1 * r) * std::cos(dec2 * r) * std::pow(std::sin((ra2 - ra1) * r / 2), 2);
    return 2 * std::asin(std::sqrt(h)) / r * 60;
}

TEST(BuiltObjectDatabase, WellKnownObjectsAtTheirPublishedPositions)
{
    struct Row
    {
        const char* id;
        int h, m;
        double s;
        int sign, d, dm;
        double ds;
        const char* constellation;
    };
    const Row rows[] = {
        {"NGC 224", 0, 42, 44.3, +1, 41, 16, 9, "And"},       // M31, NED
        {"NGC 1976", 5, 35, 17.3, -1, 5, 23, 28, "Ori"},      // M42, SIMBAD
        {"NGC 1952", 5, 34, 31.94, +1, 22, 0, 52.2, "Tau"},   // M1, SIMBAD
        {"NGC 6205", 16, 41, 41.24, +1, 36, 27, 35.5, "Her"}, // M13, Harris (2010 ed.)
        {"NGC 6720", 18, 53, 35.08, +1, 33, 1, 45.0, "Lyr"},  // M57, SIMBAD
        {"NGC 7089", 21, 33, 27.02, -1, 0, 49, 23.7, "Aqr"},  // M2, Harris (2010 ed.)
        {"NGC 1068", 2, 42, 40.71, -1, 0, 0, 47.8, "Cet"},    // M77, NED
        {"NGC 4594", 12, 39, 59.43, -1, 11, 37, 23.0, "Vir"}, // M104, NED
        {"NGC 104", 0, 24, 5.67, -1, 72, 4, 52.6, "Tuc"},     // 47 Tuc, Harris (2010 ed.)
        {"NGC 5139", 13, 26, 47.28, -1, 47, 28, 46.1, "Cen"}, // Omega Cen, Harris (2010 ed.)
        {"NGC 3031", 9, 55, 33.17, +1, 69, 3, 55.1, "UMa"},   // M81, NED
        {"NGC 7814", 0, 3, 14.89, +1, 16, 8, 43.5, "Peg"},    // NED
    };
    const Db db("SelvPro13000.mdb");
    for (const Row& r : rows) {
        SCOPED_TRACE(r.id);
        const auto found = db.Rows(std::string("Select RAhours, RAminutes, DeclinationDegrees, "
                                               "DeclinationMinutes, constellation, EPOCH From "
                                               "SelvaneTable Where Catalog = '2000' and "
                                               "ObjectID = '") +
                                   r.id + "'");
        ASSERT_EQ(found.size(), 1u);
        tools::SplitPosition p;
        p.RAhours = std::stod(found[0][0]);
        p.RAminutes = std::stod(found[0][1]);
        p.DeclinationDegrees = std::stod(found[0][2]);
        p.DeclinationMinutes = std::stod(found[0][3]);
        const double ra = (r.h + r.m / 60.0 + r.s / 3600.0) * 15;
        const double dec = r.sign * (r.d + r.dm / 60.0 + r.ds / 3600.0);
        EXPECT_LT(SeparationArcmin(tools::JoinRaDeg(p), tools::JoinDecDeg(p), ra, dec), 1.0);
        EXPECT_EQ(found[0][4], r.constellation);
        EXPECT_EQ(found[0][5], "2000.0");
        if (r.sign < 0 && r.d == 0) {
            // South of the equator by less than a degree: the sign lives on the minutes.
            EXPECT_EQ(p.DeclinationDegrees, 0);
            EXPECT_LT(p.DeclinationMinutes, 0);
        }
    }
}

TEST(BuiltObjectDatabase, FieldsKeepTheirRangesInEveryRow)
{
    struct Check
    {
        const char* what;
        const char* where;
    };
    const Check checks[] = {
        {"RA hours whole and 0..23", "RAhours < 0 or RAhours > 23 or RAhours <> round(RAhours)"},
        {"RA minutes 0..60", "RAminutes < 0 or RAminutes >= 60"},
        {"Dec degrees whole and within the poles",
         "abs(DeclinationDegrees) > 90 or DeclinationDegrees <> round(DeclinationDegrees)"},
        {"Dec minutes below 60", "abs(DeclinationMinutes) >= 60"},
        {"a signed minutes field only with zero degrees",
         "DeclinationMinutes < 0 and DeclinationDegrees <> 0"},
        {"constellation of three letters", "length(constellation) <> 3"},
        {"equinox 2000, not observed", "EPOCH <> 2000 or Observed <> 0"},
        {"an object type of the type list",
         "ObjectType not in (Select ObjectType From ValidObjectTypes)"},
        {"an object id", "ObjectID is null or ObjectID = ''"},
        {"a catalogue of the lookup table",
         "Catalog not in (Select CatalogName From CatalogLookup)"},
    };
    for (const char* edition : Editions) {
        const Db db(edition);
        for (const Check& c : checks) {
            SCOPED_TRACE(std::string(edition) + ": " + c.what);
            EXPECT_EQ(db.Number(std::string("Select count(*) From SelvaneTable Where ") + c.where),
                      0);
        }
        // Every catalogue's count is the number of its rows.
        EXPECT_EQ(db.Number("Select count(*) From CatalogLookup Where ImpCount <> (Select "
                            "count(*) From SelvaneTable Where Catalog = CatalogName)"),
                  0);
    }
}

TEST(BuiltObjectDatabase, FullEditionHoldsTheFurtherCatalogues)
{
    const Db db("SelvPro708000.mdb");
    const std::map<std::string, int> atLeast = {
        {"2000", 13000}, {"CALDWELL", 110}, {"PGC", 70000},  {"UGC", 13000}, {"BARNARD", 300},
        {"SH2", 300},    {"LDN", 1700},     {"ABELL", 5000}, {"GCVS", 2500}, {"WDS", 8000},
    };
    for (const auto& [catalog, count] : atLeast) {
        SCOPED_TRACE(catalog);
        EXPECT_GE(
            db.Number("Select ImpCount From CatalogLookup Where CatalogName = '" + catalog + "'"),
            count);
    }
    // The first rows are the small edition's, record number for record number.
    const Db small("SelvPro13000.mdb");
    EXPECT_EQ(db.Rows("Select ID, ObjectID From SelvaneTable Where ID in (1, 5000, 13960)"),
              small.Rows("Select ID, ObjectID From SelvaneTable Where ID in (1, 5000, 13960)"));
    EXPECT_EQ(db.Rows("Select OtherID, constellation From SelvaneTable Where Catalog = "
                      "'CALDWELL' and ObjectID = 'C 65'"),
              (Table{{"NGC 253", "Scl"}}));
    const auto mira = db.Rows("Select OtherID, Magnitude, Magnitude2, GalacticLatitude From "
                              "SelvaneTable Where Catalog = 'GCVS' and ObjectID = 'ο Cet'");
    ASSERT_EQ(mira.size(), 1u);
    EXPECT_EQ(mira[0][0], "M");
    EXPECT_NEAR(std::stod(mira[0][3]), 331.96, 1e-9); // period in days, as the GCVS list gives it
}

TEST(BuiltLogbookTemplate, ShippedTables)
{
    const Db db("Logbook2003-1.mdb");
    EXPECT_EQ(db.Number("Select count(*) From xref"), 400);
    EXPECT_EQ(db.Rows("Select Her From xref Where NGC = 'NGC 7662'"), (Table{{"H IV-18"}}));
    EXPECT_EQ(db.Rows("Select BConst From BConst Where Const = 'Ori' Order By BConst"),
              (Table{{"Eri"}, {"Gem"}, {"Lep"}, {"Mon"}, {"Tau"}}));
    EXPECT_EQ(db.Rows("Select LogType From PerLogType"), (Table{{"Default"}}));
    EXPECT_EQ(db.Number("Select count(*) From Logbook"), 0);
    EXPECT_EQ(db.Number("Select count(*) From ValidObjectTypes"), 25);
    // citydb: Phoenix, Arizona at 33° 27' 11" N, 112° 04' 26" W, 7 h west of Greenwich.
    const auto phoenix = db.Rows("Select Latitude, Longitude, TimeZone From Location Where "
                                 "Place = 'Phoenix, Arizona, USA'");
    ASSERT_EQ(phoenix.size(), 1u);
    EXPECT_NEAR(std::stod(phoenix[0][0]), 33 + 27 / 60.0 + 11 / 3600.0, 1e-6);
    EXPECT_NEAR(std::stod(phoenix[0][1]), 112 + 4 / 60.0 + 26 / 3600.0, 1e-6);
    EXPECT_EQ(std::stod(phoenix[0][2]), 7);
}

TEST(BuiltAstComet, ElementsOfKnownBodies)
{
    const Db db("AstComet.mdb");
    // The minor-planet centre's list in the data package: C/1995 O1 (Hale-Bopp), perihelion
    // 1997 Mar 29.6466, q 0.890662 AU, e 0.994972, H -2.0, slope 4.0.
    const auto haleBopp = db.Rows("Select tyear, tmonth, tday, q, e, Mag, K, EPOCH From Comet "
                                  "Where Name = 'C/1995 O1 (Hale-Bopp)'");
    ASSERT_EQ(haleBopp.size(), 1u);
    EXPECT_EQ(haleBopp[0], (std::vector<std::string>{"1997.0", "3.0", "29.6466", "0.890662",
                                                     "0.994972", "-2.0", "4.0", "2000.0"}));
    // The small-body database's list adds comets the first list lacks, with the perihelion
    // turned from a Julian Day: 3D/Biela, tp JD 2390514.1152, the perihelion of 1832 Nov 26.6.
    const auto biela = db.Rows("Select tyear, tmonth, tday, q, K From Comet Where Name = "
                               "'3D/Biela'");
    ASSERT_EQ(biela.size(), 1u);
    EXPECT_EQ(biela[0][0] + "/" + biela[0][1], "1832.0/11.0");
    EXPECT_NEAR(std::stod(biela[0][2]), 26.6, 0.05);
    EXPECT_EQ(biela[0][4], "4.0");
    const auto ceres = db.Rows("Select Anumb, a, eyear From Asteroids Where Name = 'Ceres'");
    ASSERT_EQ(ceres.size(), 1u);
    EXPECT_EQ(ceres[0][0] + "|" + ceres[0][2], "1.0|2022.0");
    EXPECT_NEAR(std::stod(ceres[0][1]), 2.767, 1e-3);
}

TEST(ShippedPlans, OldFormatEntriesThatTheIdRepairFinds)
{
    const Db small("SelvPro13000.mdb");
    const Db full("SelvPro708000.mdb");
    const std::pair<const char*, std::size_t> plans[] = {
        {"HCLUB1.PLN", 200}, {"HCLUB2.PLN", 200}, {"CALDWELL.PLN", 110}, {"123096.PLN", 30}};
    std::set<std::string> herschel;
    for (const auto& [file, entries] : plans) {
        SCOPED_TRACE(file);
        const auto lines = services::vb::SplitLines(tools::ReadTextFile(Resources + "/" + file));
        std::size_t records = 0;
        for (const std::string& line : lines) {
            if (line.empty())
                continue;
            ++records;
            const auto f = services::vb::ReadRecord(line);
            ASSERT_EQ(f.size(), 3u) << line;
            if (std::string(file).rfind("HCLUB", 0) == 0)
                herschel.insert(f[0]);
            const std::string repair = "Select ID From SelvaneTable Where ObjectID = 'NGC " +
                                       services::vb::QuoteForSql(f[0]) + "' and Catalog = '" +
                                       f[1] + "'";
            const auto found = full.Rows(repair);
            if (!found.empty()) {
                // The stored id is an old table's: the repair on opening has work to do.
                EXPECT_NE(found[0][0], f[2]) << line;
                EXPECT_EQ(small.Rows(repair), found) << line;
            } else {
                // Not found again: the stored id must be today's row of that object.
                EXPECT_EQ(
                    full.Rows("Select ObjectID, Catalog From SelvaneTable Where ID = " + f[2]),
                    (Table{{f[0], f[1]}}))
                    << line;
            }
        }
        EXPECT_EQ(records, entries);
    }
    EXPECT_EQ(herschel.size(), 400u);
}

TEST(ShippedHref, NgcNumberThenDesignationByColumn)
{
    const auto lines = services::vb::SplitLines(tools::ReadTextFile(Resources + "/Href.txt"));
    std::vector<std::string> records;
    for (const auto& l : lines)
        if (!l.empty())
            records.push_back(l);
    ASSERT_EQ(records.size(), 400u);
    EXPECT_EQ(records.front().substr(0, 4) + "|" + records.front().substr(7) + "|" +
                  records.back().substr(0, 4),
              "  40|H IV-58|7814");
}

} // namespace
