#include "data/ObjectFilter.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using data::FixedList;
using data::FixedListKind;

TEST(mnuEight, KeepsToTheChosenCatalogues)
{
    data::FilterLookups lookups;
    lookups.catalogs = {{"2000", "NGC 2000"}, {"IC", "Index Catalogue"}, {"O'N", "O'Neil"}};
    struct Row
    {
        const char* label;
        const char* sql;
    };
    const Row rows[] = {
        {"All Catalogs", "Select * From SelvaneTable Where Magnitude <= 8 order by Magnitude"},
        {"", "Select * From SelvaneTable Where Magnitude <= 8 order by Magnitude"},
        {"NGC 2000;", "Select * From SelvaneTable Where Magnitude <= 8 And (Catalog = '2000' )"},
        {"NGC 2000;Index Catalogue;",
         "Select * From SelvaneTable Where Magnitude <= 8 And (Catalog = '2000' or Catalog = "
         "'IC' )"},
        {"O'Neil", "Select * From SelvaneTable Where Magnitude <= 8 And (Catalog = 'O''N' )"},
        {"Unknown;", "Select * From SelvaneTable Where Magnitude <= 8 And (Catalog = '' )"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        const FixedList list = data::mnuEight(row.label, lookups);
        EXPECT_EQ(list.Tag, "Objects brighter than 8th Magnitude");
        EXPECT_EQ(list.SQL, row.sql);
        EXPECT_FALSE(list.UseLogDatabase);
    }
}

TEST(CheckFixedList, TabGuardFirstThenReadOnlyMedia)
{
    struct Row
    {
        FixedListKind kind;
        int tab;
        bool onCd;
        const char* text; // nullptr: may run
    };
    const char* tab = data::NotSpreadsheetTabText;
    const char* cd = data::ReadOnlyMediaText;
    const Row rows[] = {
        {FixedListKind::ShowMessierList, 0, false, nullptr},
        {FixedListKind::ShowMessierList, 4, true, nullptr},
        {FixedListKind::ShowMessierList, 5, false, tab},
        {FixedListKind::Herschel3, 6, false, tab},
        {FixedListKind::mnuEight, 5, true, tab},
        {FixedListKind::Messier2, 6, true, tab},
        {FixedListKind::Messier2, 0, true, cd},
        {FixedListKind::Messier3, 1, true, cd},
        {FixedListKind::Herschel1, 2, true, cd},
        {FixedListKind::Herschel2, 3, true, cd},
        {FixedListKind::Herschel2, 3, false, nullptr},
        // These do not read the Observed flags.
        {FixedListKind::Herschel3, 0, true, nullptr},
        {FixedListKind::ShowImageList, 0, true, nullptr},
        {FixedListKind::mnuEight, 0, true, nullptr},
        // On such media the observed list reads the logbook instead.
        {FixedListKind::ShowObservedList, 0, true, nullptr},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::to_string(static_cast<int>(row.kind)) + " tab " +
                     std::to_string(row.tab) + (row.onCd ? " cd" : ""));
        const std::optional<data::Refusal> r = data::CheckFixedList(row.kind, row.tab, row.onCd);
        if (!row.text) {
            EXPECT_FALSE(r);
            continue;
        }
        ASSERT_TRUE(r);
        EXPECT_EQ(r->Text, row.text);
        EXPECT_EQ(r->Title, row.text == tab ? "Invalid Usage!" : "INVALID OPERATION");
        EXPECT_EQ(r->Kind, "I");
    }
}

} // namespace
