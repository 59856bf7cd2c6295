#include "data/Places.h"

#include "data/Database.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <tuple>

namespace {

TEST(LoadObservingSites, LongitudeFollowsEastWest)
{
    QTemporaryDir dir;
    data::OpenOptions options;
    options.create = true;
    auto db = data::Database::Open(dir.filePath("Logbook2003-1.mdb").toStdString(), options);
    db->Execute("Create Table ObservingSites (ProfileName TEXT, Location TEXT, Latitude REAL, "
                "Longitude REAL, EastWest TEXT, TimeZone REAL)");
    db->Execute("Insert Into ObservingSites Values ('Home', 'Back yard', 46.5, 90.2, 'W', 6)");
    db->Execute("Insert Into ObservingSites Values ('Alps', 'Hut', 46.0, 7.5, 'E', -1)");
    db->Execute("Insert Into ObservingSites Values ('Club''s field', '', 40, -3.5, 'E', -1)");
    db->Execute("Insert Into ObservingSites Values ('Old', '', 40, 75, Null, 5)");
    const auto sites = data::LoadObservingSites(*db);
    ASSERT_EQ(sites.size(), 4u);
    EXPECT_EQ(
        std::tuple(sites[0].Longitude, sites[1].Longitude, sites[2].Longitude, sites[3].Longitude),
        std::tuple(90.2, -7.5, -3.5, 75.0));
    EXPECT_EQ(sites[2].name, "Club's field");
}

} // namespace
