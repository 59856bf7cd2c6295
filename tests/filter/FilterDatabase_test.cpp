// The filter's SQL run on real SQLite files: a small object database made here, whose rows are
// chosen so that every clause keeps or drops a known object, and the shipped small edition.

#include "data/Database.h"
#include "data/ObjectFilter.h"
#include "data/Preferences.h"
#include "data/Schema.h"
#include "services/Fault.h"
#include "tests/filter/FilterTestSupport.h"

#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

using data::ObjectFilter;
using namespace filter_test;

const std::filesystem::path SmallEdition =
    std::filesystem::path(SELVANE_RESOURCE_DIR) / "SelvPro13000.mdb";

std::unique_ptr<data::Database> MakeObjectDatabase(const std::filesystem::path& path)
{
    data::OpenOptions create;
    create.create = true;
    auto db = data::Database::Open(path, create);
    data::CreateSchema(db->Handle(), data::SchemaKind::ObjectDatabase);
    const char* rows[] = {
        "(1,'NGC 1976','M 42','Nb',5,35.3,-5,27,'Ori',85,4.0,NULL,'2000',NULL,NULL,42,'H I-1',-1)",
        "(2,'NGC 2024','Flame','Nb',5,41.9,-1,51,'Ori',30,NULL,NULL,'2000',NULL,NULL,0,'',0)",
        "(3,'NGC 224','M 31','Gx',0,42.7,41,16,'And',190,3.4,NULL,'2000',NULL,NULL,31,'',-1)",
        "(4,'IC 434','Horsehead','Nb',5,41,-2,24,'Ori',60,NULL,NULL,'IC',NULL,NULL,0,'',0)",
        "(5,'O''Brien 1','','Gx',12,0,10,0,'Vir',NULL,12.5,13,'2000',NULL,NULL,0,'',0)",
        "(6,'STF 747','','Dblst',5,35,-6,0,'Ori',NULL,4.8,5.7,'WDS',36,223,0,'',0)",
        "(7,'NGC 7000','','Nb',20,59,44,20,'Cyg',120,4,NULL,'2000',NULL,NULL,0,'',0)",
    };
    for (const char* row : rows)
        db->Execute(std::string("Insert Into SelvaneTable (ID, ObjectID, OtherID, ObjectType, "
                                "RAhours, RAminutes, DeclinationDegrees, DeclinationMinutes, "
                                "constellation, ObjectSize, Magnitude, Magnitude2, Catalog, "
                                "Separation, PositionAngle, MessierNumber, HObject, Observed) "
                                "Values ") +
                    row);
    db->Execute("Update SelvaneTable Set ImageFile = ' '");
    db->Execute("Insert Into CatalogLookup (ID, CatalogName, CatalogDescription) Values "
                "(1, '2000', 'NGC 2000'), (2, 'IC', 'Index Catalogue'), "
                "(3, 'WDS', 'Washington Double Stars')");
    db->Execute("Insert Into ValidObjectTypes (ID, ObjectType, ObjectTypeDesc) Values "
                "(1, 'Nb', 'Bright nebula'), (2, 'Gx', 'Galaxy'), (3, 'Dblst', 'Double star')");
    return db;
}

std::vector<long long> Ids(data::Database& db, const std::string& sql)
{
    std::vector<long long> ids;
    data::Recordset rs = db.OpenRecordset(sql, data::Snapshot);
    data::Field id = rs.Fields("ID");
    for (; !rs.Eof(); rs.MoveNext())
        ids.push_back(id.Long());
    return ids;
}

class FilterOnDatabase : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        path = std::filesystem::path(dir.path().toStdString()) / "SelvPro13000.mdb";
        db = MakeObjectDatabase(path);
        lookups = data::LoadFilterLookups(*db);
    }

    QTemporaryDir dir;
    std::filesystem::path path;
    std::unique_ptr<data::Database> db;
    data::FilterLookups lookups;
};

TEST_F(FilterOnDatabase, LoadsTheLookupsInTableOrder)
{
    ASSERT_EQ(lookups.catalogs.size(), 3u);
    EXPECT_EQ(lookups.catalogs[2].CatalogName, "WDS");
    EXPECT_EQ(data::GetCatalogID(lookups, "Index Catalogue"), "IC");
    EXPECT_EQ(data::GetTypeID(lookups, "Double star"), "Dblst");
}

// Which objects each clause keeps, through the engine's dialect translation (isnull, Like).
TEST_F(FilterOnDatabase, EachClauseKeepsTheRightObjects)
{
    struct Row
    {
        const char* name;
        Fields set;
        std::vector<long long> ids; // in order when ordered
        bool ordered = false;
        bool fromDefaults = false; // the default selection instead of none
    };
    const Row rows[] = {
        {"no selection drops null magnitudes", {}, {1, 3, 5, 6, 7}},
        {"the default selection", {}, {1}, false, true},
        {"include blank magnitudes", {{&F::PIB, "Y"}}, {1, 2}, false, true},
        {"one constellation", {{&F::Obcon, "Ori-Orion;"}, {&F::PIB, "Y"}}, {1, 2, 4, 6}},
        {"one type", {{&F::Obtod, "Galaxy;"}}, {3, 5}},
        {"two catalogues",
         {{&F::ObCat, "Index Catalogue;Washington Double Stars;"}, {&F::PIB, "Y"}},
         {4, 6}},
        {"all three selections",
         {{&F::ObCat, "NGC 2000;Index Catalogue;"},
          {&F::Obcon, "Ori-Orion;Cyg-Cygnus;"},
          {&F::Obtod, "Bright nebula;"},
          {&F::PIB, "Y"}},
         {1, 2, 4, 7}},
        {"magnitude range", {{&F::gMagL, "4"}, {&F::gMagU, "5"}}, {1, 6, 7}},
        {"magnitude difference at most", {{&F::gmagdif, "1"}}, {5, 6}},
        {"magnitude difference at least", {{&F::gmagdif2, "0.7"}}, {6}},
        {"size without blanks", {{&F::PIB3, "N"}, {&F::gSizeL, "50"}}, {1, 3, 7}},
        {"separation", {{&F::gSepL, "30"}, {&F::gSepH, "40"}}, {6}},
        {"position angle", {{&F::gPAL, "200"}}, {6}},
        {"RA in whole hours",
         {{&F::PIB, "Y"}, {&F::gFRAH, "5"}, {&F::gTRAH, "5"}, {&F::gTRAM, "59"}},
         {1, 2, 4, 6}},
        {"declination in whole degrees",
         {{&F::PIB, "Y"}, {&F::gFDECD, "-5"}, {&F::gTDECD, "0"}},
         {1, 2, 4}},
        {"object id with a quote", {{&F::gObjID, "O'Brien*"}}, {5}},
        {"object id with a one-letter wildcard", {{&F::gObjID, "NGC 1?76"}}, {1}},
        {"other id", {{&F::PIB, "Y"}, {&F::gOther, "M *"}}, {1, 3}},
        {"two sort levels",
         {{&F::sort1, "Magnitude"}, {&F::Des1, "D"}, {&F::sort2, "ObjectID"}},
         {5, 6, 1, 7, 3},
         true},
        {"computed first level leaves the others",
         {{&F::sort1, "Altitude"}, {&F::sort2, "Magnitude"}, {&F::sort3, "ObjectID"}},
         {3, 1, 7, 6, 5},
         true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const ObjectFilter f = With(row.fromDefaults ? Defaults() : Unselected(), row.set);
        const std::string sql = data::BuildSQLSelectString(f, lookups).SQL;
        SCOPED_TRACE(sql);
        std::vector<long long> ids = Ids(*db, sql);
        std::vector<long long> expected = row.ids;
        if (!row.ordered) {
            std::sort(ids.begin(), ids.end());
            std::sort(expected.begin(), expected.end());
        }
        EXPECT_EQ(ids, expected);
    }
}

TEST_F(FilterOnDatabase, FixedListsKeepTheRightObjects)
{
    struct Row
    {
        const char* name;
        data::FixedList list;
        std::vector<long long> ids; // in the order of the list
    };
    const Row rows[] = {
        {"Messier", data::ShowMessierList(), {3, 1}},
        {"observed", data::ShowObservedList(false), {1, 3}},
        {"images (none)", data::ShowImageList(), {}},
        {"Messier observed", data::Messier2(), {1, 3}},
        {"Messier not observed", data::Messier3(), {}},
        {"Herschel observed", data::Herschel1(), {1}},
        {"Herschel not observed", data::Herschel2(), {}},
        {"Herschel", data::Herschel3(), {1}},
        {"brighter than 8th, one catalogue",
         data::mnuEight("Washington Double Stars;", lookups),
         {6}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        std::vector<long long> ids = Ids(*db, row.list.SQL);
        if (row.list.SQL.find("order by") == std::string::npos &&
            row.list.SQL.find("Order By") == std::string::npos)
            std::sort(ids.begin(), ids.end());
        EXPECT_EQ(ids, row.ids);
    }
    std::vector<long long> bright = Ids(*db, data::mnuEight("All Catalogs", lookups).SQL);
    EXPECT_EQ(bright.front(), 3);
    EXPECT_EQ(bright.back(), 6);
}

// On read-only media the observed list joins the logbook with the object table, which the
// logbook reaches through the attached object database.
TEST_F(FilterOnDatabase, ObservedListFromTheLogbookJoin)
{
    data::OpenOptions create;
    create.create = true;
    auto logbook = data::Database::Open(path.parent_path() / "Logbook2003-1.mdb", create);
    data::CreateSchema(logbook->Handle(), data::SchemaKind::Logbook);
    logbook->Execute("Insert Into Logbook (ObservationNumber, ObjectID, Catalog) Values "
                     "(1, 'NGC 224', '2000'), (2, 'NGC 224', 'IC'), (3, 'ngc 7000', '2000')");
    logbook->Attach(path, data::LinkSchema, false);
    const data::FixedList list = data::ShowObservedList(true);
    ASSERT_TRUE(list.UseLogDatabase);
    data::Recordset rs = logbook->OpenRecordset(list.SQL, data::Snapshot);
    data::Field id = rs.Fields("SelvaneTable.ID");
    data::Field objectId = rs.Fields("SelvaneTable.ObjectID");
    std::vector<std::string> seen;
    for (; !rs.Eof(); rs.MoveNext())
        seen.push_back(std::to_string(id.Long()) + " " + objectId.Value());
    std::sort(seen.begin(), seen.end());
    EXPECT_THAT(seen, ::testing::ElementsAre("3 NGC 224", "7 NGC 7000"));
}

// Random filter settings, drawn with a fixed seed from texts that users type, labels the
// pickers write and the sort names the combos offer.
class RandomFilters
{
public:
    explicit RandomFilters(const data::FilterLookups& lookups) : lookups_(lookups) {}

    ObjectFilter Next()
    {
        ObjectFilter f;
        f.ObCat = Selection({"All Catalogs", "", " ", "Lost List;"}, CatalogNames());
        f.Obcon =
            Selection({"All Constellations", ""}, {"Ori-Orion", "And-Andromeda", "UMa-Ursa Major",
                                                   "Sgr-Sagittarius", "O'x-Quoted", "Cyg-Cygnus"});
        f.Obtod = Selection({"All Types", "All Object Types", ""}, TypeNames());
        for (std::string* box :
             {&f.gMagL, &f.gMagU, &f.gMagL2, &f.gMagU2, &f.gSizeL, &f.gSizeU, &f.gSepL, &f.gSepH,
              &f.gPAL, &f.gPAH, &f.gFRAH, &f.gTRAH, &f.gFDECD, &f.gTDECD, &f.gFRAM, &f.gTDECM})
            *box = Pick(Numbers);
        for (std::string* box : {&f.gmagdif, &f.gmagdif2})
            *box = Pick(Numbers);
        for (std::string* box : {&f.gObjID, &f.gOther})
            *box = Pick(IdTexts);
        for (std::string* flag : {&f.PIB, &f.PIB2, &f.PIB3})
            *flag = Pick(Flags);
        std::vector<std::string> sorts = data::SortComboList(2);
        sorts.push_back("");
        sorts.push_back("* none *");
        for (std::string* sort : {&f.sort1, &f.sort2, &f.sort3})
            *sort = Pick(sorts);
        for (std::string* des : {&f.Des1, &f.Des2, &f.Des3})
            *des = Pick(std::vector<std::string>{"D", ""});
        return f;
    }

    bool Coin() { return rng_() % 2 == 0; }

private:
    inline static const std::vector<std::string> Numbers{
        "",     "-1",  "0",  "5",   "8.5", "abc", " 12", "1e3", "-90", "24",  "999",
        "9999", "360", ".5", "7,5", "-0",  "+3",  "1d2", "  ",  "4",   "-20", "2.25"};
    inline static const std::vector<std::string> IdTexts{
        "", " ", "NGC*", "NGC 1?", "O'Brien*", "*'*", "M 31", "IC*", "*", "''", "[a]*"};
    inline static const std::vector<std::string> Flags{"Y", "N", "", "y"};

    std::vector<std::string> CatalogNames() const
    {
        std::vector<std::string> names;
        for (const data::CatalogRow& row : lookups_.catalogs)
            names.push_back(row.CatalogDescription);
        return names;
    }
    std::vector<std::string> TypeNames() const
    {
        std::vector<std::string> names;
        for (const data::ObjectTypeRow& row : lookups_.types)
            names.push_back(row.ObjectTypeDesc);
        return names;
    }

    const std::string& Pick(const std::vector<std::string>& from)
    {
        return from[rng_() % from.size()];
    }

    // A label: one of the fixed texts, or one to three picked entries joined by ";".
    std::string Selection(const std::vector<std::string>& fixed,
                          const std::vector<std::string>& entries)
    {
        if (entries.empty() || rng_() % 3 == 0)
            return Pick(fixed);
        std::string label;
        const unsigned count = 1 + rng_() % 3;
        for (unsigned i = 0; i < count; ++i)
            label += Pick(entries) + ";";
        if (Coin())
            label.pop_back(); // the pickers' last ";" may be missing
        return label;
    }

    const data::FilterLookups& lookups_;
    std::mt19937 rng_{20031};
};

// Runs every text on db; returns how many ran.
int RunRandomFilters(data::Database& db, const data::FilterLookups& lookups, int count)
{
    RandomFilters random(lookups);
    int ran = 0;
    for (int i = 0; i < count; ++i) {
        const ObjectFilter f = random.Next();
        data::BuildLimits limits;
        if (random.Coin()) {
            limits.emptyMagnitudeUpper = "99";
            limits.withRanges = false;
        }
        const std::string sql = data::BuildSQLSelectString(f, lookups, limits).SQL;
        try {
            data::Recordset rs = db.OpenRecordset(sql, data::Snapshot);
            if (!rs.Eof()) // an empty set has no last record
                rs.MoveLast();
            (void)rs.RecordCount();
            ++ran;
        } catch (const services::Fault& fault) {
            ADD_FAILURE() << "filter " << i << ": " << fault.what() << "\n" << sql;
        }
    }
    return ran;
}

TEST_F(FilterOnDatabase, EveryRandomFilterRuns)
{
    EXPECT_EQ(RunRandomFilters(*db, lookups, 400), 400);
}

TEST(FilterOnSmallEdition, EveryRandomFilterAndFixedListRuns)
{
    if (!std::filesystem::exists(SmallEdition))
        GTEST_SKIP() << "the small edition " << SmallEdition
                     << " is not built; build the selvane_databases target first";
    data::OpenOptions readOnly;
    readOnly.readOnly = true;
    auto db = data::Database::Open(SmallEdition, readOnly);
    const data::FilterLookups lookups = data::LoadFilterLookups(*db);
    ASSERT_FALSE(lookups.catalogs.empty());
    ASSERT_FALSE(lookups.types.empty());
    EXPECT_EQ(RunRandomFilters(*db, lookups, 300), 300);

    std::string allCatalogs;
    for (const data::CatalogRow& row : lookups.catalogs)
        allCatalogs += row.CatalogDescription + ";";
    const data::FixedList lists[] = {data::ShowMessierList(),
                                     data::ShowObservedList(false),
                                     data::ShowImageList(),
                                     data::mnuEight("All Catalogs", lookups),
                                     data::mnuEight(allCatalogs, lookups),
                                     data::Messier2(),
                                     data::Messier3(),
                                     data::Herschel1(),
                                     data::Herschel2(),
                                     data::Herschel3()};
    for (const data::FixedList& list : lists) {
        SCOPED_TRACE(list.Tag);
        EXPECT_NO_THROW(Ids(*db, list.SQL)) << list.SQL;
    }
    // The default selection, the NGC 2000 list in Orion, finds objects: the constellation
    // codes and the catalogue id of the shipped file are those the filter writes.
    EXPECT_FALSE(Ids(*db, data::BuildSQLSelectString(Defaults(), lookups).SQL).empty());
    // The start query lists the Messier objects of the NGC 2000 list.
    EXPECT_EQ(Ids(*db, data::ShowMessierList().SQL).size(), 110u);
}

} // namespace
