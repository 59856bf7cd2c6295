#include "charts/AtlasPages.h"

#include <gtest/gtest.h>

#include <string>

namespace {

struct PageCase
{
    const char* name;
    double raH, raM, raS, decD, decM, decS;
    int sky;
    int ura;
    std::string millennium;
};

// Expected pages worked out by hand from the band tables of the three atlases.
TEST(Chart, PagesAtBandEdgesWrapsAndVolumes)
{
    const PageCase cases[] = {
        {"origin", 0, 0, 0, 0, 0, 0, 17, 215, "270 Vol I"},
        // The equator row of the Millennium atlas is one row of pages for both signs.
        {"just south of the equator", 0, 0, 0, 0, -6, 0, 17, 215, "270 Vol I"},
        // Both ring atlases close back to their band's base page at 24 h.
        {"23h59m on the equator", 23, 59, 0, 0, 0, 0, 17, 215, "1279 Vol III"},
        {"sky atlas 21h29m is still 16", 21, 29, 0, 0, 0, 0, 16, 255, "1286 Vol III"},
        {"sky atlas 21h30m turns 17", 21, 30, 0, 0, 0, 0, 17, 255, "1286 Vol III"},
        // The Uranometria wraps before the south addition: 215 -> 170, then + 90.
        {"wrap then south addition", 23, 59, 0, -10, 0, 0, 17, 260, "1327 Vol III"},
        {"RA exactly 8 h stays in volume I", 8, 0, 0, 0, 0, 0, 12, 230, "247 Vol I"},
        {"8 h and one second opens volume II", 8, 0, 1, 0, 0, 0, 12, 230, "786 Vol II"},
        {"RA exactly 16 h stays in volume II", 16, 0, 0, 0, 0, 0, 15, 245, "763 Vol II"},
        {"polar cap north, 10 h", 10, 0, 0, 88, 0, 0, 2, 1, "1 Vol I"},
        {"near the pole north, 2 h", 2, 0, 0, 88, 0, 0, 1, 1, "2 Vol I"},
        {"near the pole south, 2 h", 2, 0, 0, -88, 0, 0, 24, 473, "516 Vol I"},
        {"87 exactly is not polar", 10, 0, 0, 87, 0, 0, 2, 1, "518 Vol II"},
        {"+85 polar band of the Uranometria", 13, 0, 0, 85, 0, 0, 2, 2, "520 Vol II"},
        {"-85 mirrors it", 13, 0, 0, -85, 0, 0, 25, 472, "1028 Vol II"},
        {"+45 Millennium row", 0, 0, 0, 45, 0, 0, 4, 59, "86 Vol I"},
        {"-45 Millennium row", 0, 0, 0, -45, 0, 0, 18, 386, "450 Vol I"},
    };
    for (const PageCase& c : cases) {
        SCOPED_TRACE(c.name);
        const charts::AtlasPages pages = charts::Chart(c.raH, c.raM, c.raS, c.decD, c.decM, c.decS);
        EXPECT_EQ(pages.skyAtlas, c.sky);
        EXPECT_EQ(pages.uranometria, c.ura);
        EXPECT_EQ(pages.millennium, c.millennium);
    }
}

struct BandCase
{
    double decDeg;
    int sky;
    int ura;
};

// RA 0 h at each lower band edge and just inside the band above; the southern mirror adds the
// band's offset.
TEST(Chart, DeclinationBandEdgesAtZeroHours)
{
    const BandCase cases[] = {
        {5.4, 17, 215},   {5.5, 17, 170},    {-5.5, 17, 260},   {16.9, 17, 170},
        {17, 17, 125},    {-17, 17, 305},    {18.4, 17, 125},   {18.5, 4, 125},
        {-18.5, 18, 305}, {28, 4, 89},       {-28, 18, 350},    {39, 4, 59},
        {-39, 18, 386},   {50, 4, 35},       {-50, 18, 416},    {51.9, 4, 35},
        {52, 1, 35},      {-52, 24, 416},    {61, 1, 15},       {-61, 24, 440},
        {72.5, 1, 3},     {-72.5, 24, 460},  {84.5, 1, 1},      {-84.5, 24, 473},
    };
    for (const BandCase& c : cases) {
        SCOPED_TRACE(c.decDeg);
        const charts::AtlasPages pages = charts::Chart(0, 0, 0, c.decDeg, 0, 0);
        EXPECT_EQ(pages.skyAtlas, c.sky);
        EXPECT_EQ(pages.uranometria, c.ura);
    }
}

// Each Uranometria band closes its ring: at 23h59m the formula reaches the next band's base
// and becomes this band's base.
TEST(Chart, UranometriaRingsCloseAt24Hours)
{
    const BandCase cases[] = {
        {0, 17, 215}, {10, 17, 170}, {20, 9, 125}, {30, 9, 89},
        {45, 9, 59},  {55, 3, 35},   {65, 3, 15},  {80, 3, 3},
    };
    for (const BandCase& c : cases) {
        SCOPED_TRACE(c.decDeg);
        const charts::AtlasPages pages = charts::Chart(23, 59, 0, c.decDeg, 0, 0);
        EXPECT_EQ(pages.skyAtlas, c.sky);
        EXPECT_EQ(pages.uranometria, c.ura);
    }
}

// The minutes count with their own sign: a triple with its sign on the degrees alone lies
// nearer the equator than one with both fields negative.
TEST(Chart, MinutesKeepTheirOwnSign)
{
    EXPECT_EQ(charts::Chart(0, 0, 0, -5, 30, 0).uranometria, 215); // -4.5 degrees
    EXPECT_EQ(charts::Chart(0, 0, 0, -5, -30, 0).uranometria, 260); // -5.5 degrees
}

} // namespace
