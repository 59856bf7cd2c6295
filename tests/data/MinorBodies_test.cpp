#include "data/MinorBodies.h"

#include "TestDatabases.h"
#include "services/Fault.h"

#include <gtest/gtest.h>

namespace {

using testing_data::TestFolder;

// AstComet.mdb with comets and asteroids in a known table order, one of each with empty
// magnitude fields and a comet name that holds a quote.
std::filesystem::path MakeBodies(TestFolder& folder)
{
    const auto path = folder.dir.File(data::AstCometFileName);
    testing_data::MakeAstComet(path); // 1P/Halley
    auto db = data::Database::Open(path);
    db->Execute("Insert Into Comet (Name, tyear, tmonth, tday, q, e, i, ArgPeri, ascnode, Mag, K, "
                "EPOCH) Values ('C/2023 A3 (Tsuchinshan-ATLAS)', 2024, 9, 27.7416, 0.391, "
                "1.0001, 139.11, 308.49, 21.56, 5.5, 3.2, 2000)");
    db->Execute("Insert Into Comet (Name, q, e) Values ('O''Brien''s comet', 1.5, 0.5)");
    db->Execute("Insert Into Comet (Name, q, e, Mag) Values ('1p/HALLEY', 9, 0.1, 1)");
    db->Execute("Insert Into Asteroids (Anumb, Name, eyear, emonth, eday, a, e, i, M, Node, "
                "omega, g, h) Values (4, 'Vesta', 2024, 10, 17, 2.3615, 0.0902, 7.1437, "
                "26.8, 103.7, 151.5, 3.25, 0.32)");
    db->Execute("Insert Into Asteroids (Anumb, Name, eyear, emonth, eday, a, e) Values (0, "
                "'2024 AB1', 2024, 10, 17, 2.5, 0.2)");
    return path;
}

TEST(MinorBodyNames, TableOrderOfEachKind)
{
    TestFolder folder;
    const auto path = MakeBodies(folder);
    EXPECT_EQ(data::MinorBodyNames(path, data::MinorBodyKind::Comet),
              (std::vector<std::string>{"1P/Halley", "C/2023 A3 (Tsuchinshan-ATLAS)",
                                        "O'Brien's comet", "1p/HALLEY"}));
    EXPECT_EQ(data::MinorBodyNames(path, data::MinorBodyKind::Asteroid),
              (std::vector<std::string>{"Vesta", "2024 AB1"}));
    EXPECT_THROW(data::MinorBodyNames(folder.dir.File("missing.mdb"), data::MinorBodyKind::Comet),
                 services::Fault);
}

TEST(FindComet, FirstRowOfTheNameInAnyCase)
{
    TestFolder folder;
    const auto path = MakeBodies(folder);

    const auto halley = data::FindComet(path, "1p/halley");
    ASSERT_TRUE(halley);
    EXPECT_EQ(halley->Name, "1P/Halley");
    EXPECT_DOUBLE_EQ(halley->q, 0.587104);
    EXPECT_FALSE(halley->Mag);
    EXPECT_EQ(halley->EPOCH, 2000); // a missing equinox is J2000.0

    const auto atlas = data::FindComet(path, "C/2023 A3 (TSUCHINSHAN-ATLAS)");
    ASSERT_TRUE(atlas);
    EXPECT_EQ(
        std::tuple(atlas->tyear, atlas->tmonth, atlas->tday, atlas->q, atlas->e, atlas->i,
                   atlas->ArgPeri, atlas->ascnode, *atlas->Mag, *atlas->K, atlas->EPOCH),
        std::tuple(2024.0, 9.0, 27.7416, 0.391, 1.0001, 139.11, 308.49, 21.56, 5.5, 3.2, 2000.0));

    ASSERT_TRUE(data::FindComet(path, "o'brien's COMET"));
    EXPECT_FALSE(data::FindComet(path, "Halley"));
    EXPECT_FALSE(data::FindComet(path, "Vesta")); // an asteroid, not a comet
    EXPECT_THROW(data::FindComet(folder.dir.File("missing.mdb"), "1P/Halley"), services::Fault);
}

TEST(FindAsteroid, EveryFieldAndEmptyMagnitudes)
{
    TestFolder folder;
    const auto path = MakeBodies(folder);

    const auto vesta = data::FindAsteroid(path, "VESTA");
    ASSERT_TRUE(vesta);
    EXPECT_EQ(std::tuple(vesta->Anumb, vesta->Name, vesta->eyear, vesta->emonth, vesta->eday,
                         vesta->a, vesta->e, vesta->i, vesta->M, vesta->Node, vesta->omega,
                         *vesta->g, *vesta->h),
              std::tuple(4.0, std::string("Vesta"), 2024.0, 10.0, 17.0, 2.3615, 0.0902, 7.1437,
                         26.8, 103.7, 151.5, 3.25, 0.32));

    const auto unnumbered = data::FindAsteroid(path, "2024 ab1");
    ASSERT_TRUE(unnumbered);
    EXPECT_EQ(unnumbered->Anumb, 0);
    EXPECT_FALSE(unnumbered->g);
    EXPECT_FALSE(unnumbered->h);
    EXPECT_FALSE(data::FindAsteroid(path, "1P/Halley"));
}

} // namespace
