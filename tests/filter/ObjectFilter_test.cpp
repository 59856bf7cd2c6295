#include "data/ObjectFilter.h"

#include "data/Preferences.h"
#include "tests/filter/FilterTestSupport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace {

using data::BuildSQLSelectString;
using data::DescTag;
using data::ObjectFilter;
using namespace filter_test;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::Not;

data::FilterLookups Lookups()
{
    data::FilterLookups l;
    l.catalogs = {{"2000", "NGC 2000"},
                  {"IC", "Index Catalogue"},
                  {"O'N", "O'Neil's List"},
                  {"IC2", "Index Catalogue"}};
    l.types = {{"Gx", "Galaxy"},
               {"OC", "Open star cluster"},
               {"Pl", "Planetary nebula"},
               {"D*", "Double star"},
               {"**", "Double star"}};
    return l;
}

// What the default ranges write after the magnitude 1 clause.
const std::string DefaultRest =
    " and ((Magnitude2 >= -1 and Magnitude2 <= 999) or isnull(Magnitude2)) "
    " and ((ObjectSize >= 0 and ObjectSize <= 9999 ) or isnull(ObjectSize)) "
    " and RAHours >= 0 and RAHours <= 24 "
    " and DeclinationDegrees >= -90 and DeclinationDegrees <= 90 ";

TEST(DecodeDesc, SplitsAtSemicolonsAndKnowsEachAllText)
{
    struct Row
    {
        const char* label;
        DescTag tag;
        std::vector<std::string> entries;
    };
    const Row rows[] = {
        {"NGC 2000;", DescTag::Catalogs, {"NGC 2000"}},
        {"NGC 2000", DescTag::Catalogs, {"NGC 2000"}},
        {"NGC 2000;Index Catalogue;", DescTag::Catalogs, {"NGC 2000", "Index Catalogue"}},
        {"A;;B", DescTag::Types, {"A", "", "B"}},
        {";", DescTag::Catalogs, {""}},
        {" ", DescTag::Constellations, {" "}},
        {"", DescTag::Catalogs, {}},
        {"All Catalogs", DescTag::Catalogs, {}},
        {"All Catalogs;", DescTag::Catalogs, {}},
        {"All Constellations", DescTag::Constellations, {}},
        {"All Object Types", DescTag::Types, {}},
        // Each tag knows only its own "all" text.
        {"All Catalogs", DescTag::Constellations, {"All Catalogs"}},
        {"All Types", DescTag::Types, {"All Types"}},
        {"all catalogs", DescTag::Catalogs, {"all catalogs"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        EXPECT_THAT(data::DecodeDesc(row.label, row.tag), ElementsAreArray(row.entries));
    }
}

TEST(DecodeDesc, ParsesEachTagSpelling)
{
    EXPECT_EQ(data::ParseDescTag("CAT"), DescTag::Catalogs);
    EXPECT_EQ(data::ParseDescTag("con"), DescTag::Constellations);
    EXPECT_EQ(data::ParseDescTag("Typ"), DescTag::Types);
    EXPECT_FALSE(data::ParseDescTag("TYPE"));
    EXPECT_FALSE(data::ParseDescTag(""));
}

TEST(GetCatalogID, LooksUpWithoutCaseAndFirstRowWins)
{
    const data::FilterLookups l = Lookups();
    EXPECT_EQ(data::GetCatalogID(l, "NGC 2000"), "2000");
    EXPECT_EQ(data::GetCatalogID(l, "ngc 2000"), "2000");
    EXPECT_EQ(data::GetCatalogID(l, "Index Catalogue"), "IC");
    EXPECT_EQ(data::GetCatalogID(l, "O'Neil's List"), "O'N");
    EXPECT_EQ(data::GetCatalogID(l, "No Such List"), "");
    EXPECT_EQ(data::GetCatalogID(l, ""), "");
    EXPECT_EQ(data::GetCatalogName(l, "ic"), "Index Catalogue");
    EXPECT_EQ(data::GetCatalogName(l, "XX"), "");
    EXPECT_EQ(data::GetTypeID(l, "planetary NEBULA"), "Pl");
    EXPECT_EQ(data::GetTypeID(l, "Double star"), "D*");
    EXPECT_EQ(data::GetTypeID(l, "Nebula"), "");
}

TEST(BuildSQLSelectString, DefaultSettingsGiveTheWholeText)
{
    const data::SqlSelect s = BuildSQLSelectString(Defaults(), Lookups());
    EXPECT_EQ(s.SQL, "Select * From SelvaneTable  WHERE (Catalog = '2000' ) and ( Constellation "
                     "= 'Ori' )  and Magnitude >= -1 and Magnitude <= 999 " +
                         DefaultRest);
    EXPECT_EQ(s.OrderBy, "");
}

// Catalogue, constellation and type clauses, alone and together, and the texts that mean "all".
TEST(BuildSQLSelectString, SelectionClauses)
{
    struct Row
    {
        const char* name;
        const char* cat;
        const char* con;
        const char* typ;
        std::string head; // the SQL up to the magnitude 1 clause
    };
    const std::string base = "Select * From SelvaneTable ";
    const std::string magAnd = " and Magnitude >= -1 and Magnitude <= 999 ";
    const std::string magWhere = " WHERE Magnitude >= -1 and Magnitude <= 999 ";
    const Row rows[] = {
        {"nothing selected", "All Catalogs", "All Constellations", "All Types", base + magWhere},
        {"empty and blank labels", "", " ", "", base + magWhere},
        {"catalogue only", "NGC 2000;", "All Constellations", "All Types",
         base + " WHERE (Catalog = '2000' ) " + magAnd},
        {"two catalogues", "NGC 2000;Index Catalogue;", "All Constellations", "All Types",
         base + " WHERE (Catalog = '2000'  or Catalog = 'IC' ) " + magAnd},
        {"constellation only", "All Catalogs", "Ori-Orion;", "All Types",
         base + " WHERE (Constellation = 'Ori' ) " + magAnd},
        {"constellation and type", "All Catalogs", "Ori-Orion;", "Galaxy;",
         base + " WHERE (Constellation = 'Ori' ) and ( ObjectType = 'Gx' ) " + magAnd},
        {"types only", "All Catalogs", "All Constellations", "Galaxy;Planetary nebula;",
         base + " WHERE (ObjectType = 'Gx'  or ObjectType = 'Pl' ) " + magAnd},
        {"all three", "NGC 2000;", "Ori-Orion;And-Andromeda;", "Galaxy;",
         base +
             " WHERE (Catalog = '2000' ) and ( Constellation = 'Ori'  or Constellation = "
             "'And' ) and ( ObjectType = 'Gx' ) " +
             magAnd},
        {"unknown catalogue matches nothing", "Lost List;", "All Constellations", "All Types",
         base + " WHERE (Catalog = '' ) " + magAnd},
        {"quote in a catalogue id is doubled", "O'Neil's List;", "All Constellations", "All Types",
         base + " WHERE (Catalog = 'O''N' ) " + magAnd},
        // A label is "all" by its first three letters, whatever follows.
        {"label beginning All", "Allen Catalogue;", "All Constellations", "All Object Types",
         base + magWhere},
        {"lower-case all is a selection", "all catalogs;", "All Constellations", "All Types",
         base + " WHERE (Catalog = '' ) " + magAnd},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        ObjectFilter f = Defaults();
        f.ObCat = row.cat;
        f.Obcon = row.con;
        f.Obtod = row.typ;
        EXPECT_EQ(BuildSQLSelectString(f, Lookups()).SQL, row.head + DefaultRest);
    }
}

// Each range box, its defaults, its include-blank choice and the Val rule for its text.
TEST(BuildSQLSelectString, RangeClauses)
{
    struct Row
    {
        const char* name;
        Fields set;
        std::vector<std::string> present;
        std::vector<std::string> absent;
    };
    const Row rows[] = {
        {"magnitude 1 with blanks, no selection",
         {{&F::PIB, "Y"}},
         {"SelvaneTable  WHERE ((Magnitude >= -1 and Magnitude <= 999) or isnull(Magnitude)) "},
         {}},
        {"magnitude 1 with blanks after a selection",
         {{&F::PIB, "Y"}, {&F::Obcon, "Ori-Orion;"}},
         {"'Ori' )  and ((Magnitude >= -1 and Magnitude <= 999) or isnull(Magnitude)) "},
         {}},
        {"empty magnitude boxes take -1 and 999",
         {{&F::gMagL, ""}, {&F::gMagU, ""}, {&F::gMagL2, ""}, {&F::gMagU2, ""}},
         {" WHERE Magnitude >= -1 and Magnitude <= 999 ",
          "(Magnitude2 >= -1 and Magnitude2 <= 999)"},
         {}},
        {"text in a box reads 0",
         {{&F::gMagL, "abc"}, {&F::gMagU, "7,5"}},
         {" WHERE Magnitude >= 0 and Magnitude <= 7 "},
         {}},
        {"magnitude 2 without blanks",
         {{&F::PIB2, "N"}},
         {" and Magnitude2 >= -1 and Magnitude2 <= 999 "},
         {"isnull(Magnitude2)"}},
        {"include-blank wants exactly Y",
         {{&F::PIB, "y"}, {&F::PIB3, "Yes"}},
         {" and ObjectSize >= 0 and ObjectSize <= 9999 "},
         {"isnull(Magnitude)", "isnull(ObjectSize)"}},
        {"double-star differences",
         {{&F::gmagdif, "0.5"}, {&F::gmagdif2, " 2 "}},
         {"or isnull(Magnitude2))  and (abs(Magnitude-Magnitude2) <= 0.5)  and "
          "(abs(Magnitude-Magnitude2) >= 2)  and ((ObjectSize"},
         {}},
        {"blank differences write nothing",
         {{&F::gmagdif, "  "}, {&F::gmagdif2, ""}},
         {},
         {"abs("}},
        {"size without blanks, empty boxes",
         {{&F::PIB3, "N"}, {&F::gSizeL, ""}, {&F::gSizeU, ""}},
         {" and ObjectSize >= 0 and ObjectSize <= 9999  and RAHours"},
         {"isnull(ObjectSize)"}},
        {"empty separation and position angle boxes are the defaults",
         {{&F::gSepL, ""}, {&F::gSepH, ""}, {&F::gPAL, ""}, {&F::gPAH, ""}},
         {},
         {"Separation", "PositionAngle"}},
        {"separation upper limit",
         {{&F::gSepH, "10"}},
         {" and Separation >= 0 and Separation <= 10 "},
         {"PositionAngle"}},
        {"separation lower limit",
         {{&F::gSepL, "2"}},
         {" and Separation >= 2 and Separation <= 9999 "},
         {}},
        {"a default typed differently is a limit",
         {{&F::gSepH, "9999.0"}},
         {" and Separation >= 0 and Separation <= 9999 "},
         {}},
        {"position angle",
         {{&F::gPAL, "45"}, {&F::gPAH, ""}},
         {" and PositionAngle >= 45 and PositionAngle <= 360  and RAHours"},
         {"Separation"}},
        {"RA in whole hours, minutes ignored",
         {{&F::gFRAH, "5"}, {&F::gFRAM, "30"}, {&F::gTRAH, "6"}, {&F::gTRAM, "15"}},
         {" and RAHours >= 5 and RAHours <= 6 "},
         {"30", "15"}},
        {"RA across 0h is kept as typed",
         {{&F::gFRAH, "22"}, {&F::gTRAH, "2"}},
         {" and RAHours >= 22 and RAHours <= 2 "},
         {}},
        {"declination in degrees, empty boxes",
         {{&F::gFDECD, ""}, {&F::gTDECD, ""}, {&F::gFDECM, "40"}},
         {" and DeclinationDegrees >= -90 and DeclinationDegrees <= 90 "},
         {"40"}},
        {"object id trimmed, wildcard kept",
         {{&F::gObjID, "  NGC 1*  "}},
         {" and ObjectID Like 'NGC 1*' "},
         {"OtherID"}},
        {"quotes in ids are doubled",
         {{&F::gObjID, "O'Brien*"}, {&F::gOther, "'"}},
         {" and ObjectID Like 'O''Brien*'  and OtherID Like '''' "},
         {}},
        {"blank ids write nothing", {{&F::gObjID, " "}, {&F::gOther, ""}}, {}, {"Like"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const std::string sql = BuildSQLSelectString(With(Unselected(), row.set), Lookups()).SQL;
        for (const std::string& text : row.present)
            EXPECT_THAT(sql, HasSubstr(text));
        for (const std::string& text : row.absent)
            EXPECT_THAT(sql, Not(HasSubstr(text)));
    }
}

TEST(BuildSQLSelectString, EveryClauseAtOnceInItsOrder)
{
    ObjectFilter f = Defaults();
    f.ObCat = "NGC 2000;Index Catalogue";
    f.Obcon = "Ori-Orion;";
    f.Obtod = "Galaxy;";
    f.PIB = "Y";
    f.PIB2 = "N";
    f.PIB3 = "N";
    f.gMagL = "1";
    f.gMagU = "9";
    f.gMagL2 = "2";
    f.gMagU2 = "10";
    f.gmagdif = "1";
    f.gmagdif2 = "0.1";
    f.gSizeL = "0.5";
    f.gSizeU = "60";
    f.gSepL = "1";
    f.gSepH = "20";
    f.gPAL = "10";
    f.gPAH = "350";
    f.gFRAH = "4";
    f.gTRAH = "7";
    f.gFDECD = "-20";
    f.gTDECD = "20";
    f.gObjID = "NGC*";
    f.gOther = "M*";
    f.sort1 = "Magnitude";
    f.sort2 = "Altitude";
    f.sort3 = "ObjectID";
    f.Des3 = "D";
    const data::SqlSelect s = BuildSQLSelectString(f, Lookups());
    EXPECT_EQ(s.SQL,
              "Select * From SelvaneTable  WHERE (Catalog = '2000'  or Catalog = 'IC' ) and ( "
              "Constellation = 'Ori' ) and ( ObjectType = 'Gx' )  and ((Magnitude >= 1 and "
              "Magnitude <= 9) or isnull(Magnitude))  and Magnitude2 >= 2 and Magnitude2 <= 10 "
              " and (abs(Magnitude-Magnitude2) <= 1)  and (abs(Magnitude-Magnitude2) >= 0.1)  "
              "and ObjectSize >= 0.5 and ObjectSize <= 60  and Separation >= 1 and Separation "
              "<= 20  and PositionAngle >= 10 and PositionAngle <= 350  and RAHours >= 4 and "
              "RAHours <= 7  and DeclinationDegrees >= -20 and DeclinationDegrees <= 20  and "
              "ObjectID Like 'NGC*'  and OtherID Like 'M*' ORDER BY Magnitude Asc,  ObjectID "
              "Desc");
    EXPECT_EQ(s.OrderBy, "ORDER BY Magnitude Asc,  ObjectID Desc");
}

TEST(BuildSQLSelectString, WizardLimitsStopAfterMagnitude2)
{
    ObjectFilter f = Unselected();
    f.gMagU = "";
    f.gMagU2 = "";
    f.gObjID = "NGC*";
    f.sort1 = "Magnitude";
    data::BuildLimits wizard;
    wizard.emptyMagnitudeUpper = "99";
    wizard.withRanges = false;
    EXPECT_EQ(BuildSQLSelectString(f, Lookups(), wizard).SQL,
              "Select * From SelvaneTable  WHERE Magnitude >= -1 and Magnitude <= 99  and "
              "((Magnitude2 >= -1 and Magnitude2 <= 99) or isnull(Magnitude2)) ORDER BY "
              "Magnitude Asc");
}

// The three sort levels: which are written, with which separators, and what is left to the grid.
TEST(BuildSQLSelectString, SortLevels)
{
    struct Row
    {
        const char* s1;
        const char* d1;
        const char* s2;
        const char* d2;
        const char* s3;
        const char* d3;
        const char* orderBy;
    };
    const Row rows[] = {
        {"<none>", "", "<none>", "", "<none>", "", ""},
        {"", "D", "", "D", "", "D", ""},
        {"* none *", "", "* none *", "", "* none *", "", ""},
        {"Magnitude", "", "<none>", "", "<none>", "", "ORDER BY Magnitude Asc"},
        {"Magnitude", "D", "", "", "", "", "ORDER BY Magnitude Desc"},
        {"Magnitude", "d", "", "", "", "", "ORDER BY Magnitude Asc"},
        {"Catalog", "", "Constellation", "", "Magnitude", "D",
         "ORDER BY Catalog Asc,  Constellation Asc,  Magnitude Desc"},
        {"<none>", "", "ObjectID", "", "<none>", "", "ORDER BY  ObjectID Asc"},
        {"<none>", "", "<none>", "", "ObjectSize", "D", "ORDER BY  ObjectSize Desc"},
        {"Altitude", "", "Magnitude", "", "<none>", "", "ORDER BY  Magnitude Asc"},
        {"Catalog", "", "Rise", "D", "Mill#", "", "ORDER BY Catalog Asc"},
        {"Catalog", "", "Sky#", "", "Hobject", "D", "ORDER BY Catalog Asc,  Hobject Desc"},
        {"altitude", "", "AZIMUTH", "", "Ura#", "", ""},
        {"Altitude", "D", "Optimum", "", "Set", "D", ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.s1) + "/" + row.s2 + "/" + row.s3);
        ObjectFilter f = Unselected();
        f.sort1 = row.s1;
        f.Des1 = row.d1;
        f.sort2 = row.s2;
        f.Des2 = row.d2;
        f.sort3 = row.s3;
        f.Des3 = row.d3;
        const data::SqlSelect s = BuildSQLSelectString(f, Lookups());
        EXPECT_EQ(s.OrderBy, row.orderBy);
        const std::string unsorted = BuildSQLSelectString(Unselected(), Lookups()).SQL;
        EXPECT_EQ(s.SQL, unsorted + row.orderBy);
    }
}

TEST(IsComputedSort, GivesTheGridColumnToSortBy)
{
    struct Row
    {
        const char* name;
        std::optional<int> column;
    };
    const Row rows[] = {
        {"Altitude", 10},  {"azimuth", 11}, {"RISE", 12},  {"Optimum", 13},   {"Set", 14},
        {"Sky#", 27},      {"ura#", 28},    {"Mill#", 29}, {"Transit", {}},   {"Millennium#", {}},
        {"Magnitude", {}}, {"<none>", {}},  {"", {}},      {"Altitude ", {}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(data::IsComputedSort(row.name), row.column);
    }
}

TEST(SetSortOptions, FindsTheSavedTextInEachComboOrTakesTheFirst)
{
    struct Row
    {
        std::array<std::string, 3> sort;
        std::array<std::string, 3> des;
        std::array<std::string, 3> combos;
        std::array<bool, 3> checks;
    };
    const Row rows[] = {
        {{"", "", ""}, {"", "", ""}, {"<none>", "<none>", "<none>"}, {false, false, false}},
        {{"Magnitude", "ObjectID", "Catalog"},
         {"D", "", "D"},
         {"Magnitude", "ObjectID", "Catalog"},
         {true, false, true}},
        // Only the third combo offers the computed names.
        {{"Altitude", "Rise", "Altitude"},
         {"", "", ""},
         {"<none>", "<none>", "Altitude"},
         {false, false, false}},
        // The search is exact.
        {{"magnitude", "Foo", "Sky#"},
         {"d", "Desc", "D"},
         {"<none>", "<none>", "Sky#"},
         {false, false, true}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.sort[0] + "/" + row.sort[1] + "/" + row.sort[2]);
        const data::SortOptions o = data::SetSortOptions(row.sort, row.des);
        EXPECT_EQ(o.cbosort, row.combos);
        EXPECT_EQ(o.chkD, row.checks);
    }
}

TEST(FilterFromPreferences, ShowsAllForEmptySelectionsAndRoundTrips)
{
    data::Preferences p;
    p.ObCat = "";
    p.Obcon = "";
    p.Obtod = "";
    p.sort1 = "Altitude"; // not offered by the first combo
    p.sort3 = "Rise";
    p.Des3 = "D";
    p.gObjID = "M*";
    ObjectFilter f = data::FilterFromPreferences(p);
    EXPECT_EQ(f.ObCat, "All Catalogs");
    EXPECT_EQ(f.Obcon, "All Constellations");
    EXPECT_EQ(f.Obtod, "All Types");
    EXPECT_EQ(f.sort1, "<none>");
    EXPECT_EQ(f.sort3, "Rise");
    EXPECT_EQ(f.Des3, "D");
    EXPECT_EQ(f.gObjID, "M*");

    f.ObCat = "Index Catalogue;";
    f.gTDECD = "45";
    f.PIB2 = "N";
    f.sort2 = "Magnitude";
    data::Preferences back;
    data::FilterToPreferences(f, back);
    const ObjectFilter again = data::FilterFromPreferences(back);
    EXPECT_EQ(BuildSQLSelectString(again, Lookups()).SQL, BuildSQLSelectString(f, Lookups()).SQL);
    EXPECT_EQ(back.ObCat, "Index Catalogue;");
    EXPECT_EQ(back.sort2, "Magnitude");
}

TEST(ResetRanges, RestoresEveryRangeAndKeepsTheRest)
{
    ObjectFilter f = Defaults();
    const std::string defaultSql = BuildSQLSelectString(f, Lookups()).SQL;
    f.gMagL = "3";
    f.gMagU2 = "";
    f.gSizeU = "5";
    f.gSepH = "1";
    f.gPAL = "9";
    f.gFRAH = "1";
    f.gTDECD = "0";
    f.gFRAM = "12";
    f.gmagdif = "1";
    f.gObjID = "X";
    f.gOther = "Y";
    f.Obtod = "Galaxy;";
    f.sort1 = "Magnitude";
    data::ResetRanges(f);
    EXPECT_EQ(f.gFRAM, "");
    EXPECT_EQ(f.Obtod, "Galaxy;");
    EXPECT_EQ(f.sort1, "Magnitude");
    f.Obtod = "All Types";
    f.sort1 = "<none>";
    EXPECT_EQ(BuildSQLSelectString(f, Lookups()).SQL, defaultSql);
}

TEST(SqlCommandLines, PrintsTheSqlThenTheOrderBy)
{
    data::Preferences p;
    EXPECT_EQ(data::SqlCommandLines(p, Lookups()),
              BuildSQLSelectString(Defaults(), Lookups()).SQL + "\n\n");
    p.sort1 = "ObjectID";
    p.Des1 = "D";
    const std::string lines = data::SqlCommandLines(p, Lookups());
    EXPECT_TRUE(lines.ends_with(" ORDER BY ObjectID Desc\nORDER BY ObjectID Desc\n")) << lines;
}

} // namespace
