#include "charts/AtlasPages.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace charts {
namespace {

// VB's Int: the whole part, rounded down.
double Int(double x)
{
    return std::floor(x);
}

// A page number as the 16-bit integer the atlases use; out-of-domain inputs saturate rather
// than overflow.
std::int16_t ToPage(double page)
{
    constexpr double lo = std::numeric_limits<std::int16_t>::min();
    constexpr double hi = std::numeric_limits<std::int16_t>::max();
    if (!(page >= lo))
        return std::numeric_limits<std::int16_t>::min();
    if (page > hi)
        return std::numeric_limits<std::int16_t>::max();
    return static_cast<std::int16_t>(page);
}

std::int16_t SkyAtlasPage(double ra, double absDec, bool south)
{
    if (absDec < 18.5) {
        double page = Int(ra / 3 + 1 / 1.2) + 9;
        return ToPage(page == 9 ? 17 : page);
    }
    if (absDec < 52)
        return ToPage(Int(ra / 4) + 4 + (south ? 14 : 0));
    return ToPage(Int(ra / 8) + 1 + (south ? 23 : 0));
}

// One declination band of the Uranometria: the page formula's result, the value that closes the
// ring back to the band's base, and what a southern position adds after the wrap.
std::int16_t BandPage(double page, double wrapValue, double base, double southAdd, bool south)
{
    if (page == wrapValue)
        page = base;
    return ToPage(page + (south ? southAdd : 0));
}

std::int16_t UranometriaPage(double ra, double absDec, bool south)
{
    if (absDec < 5.5)
        return BandPage(Int(ra * 1.875 + 0.5) + 215, 260, 215, 0, south);
    if (absDec < 17)
        return BandPage(Int(ra * 1.875 + 0.5) + 170, 215, 170, 90, south);
    if (absDec < 28)
        return BandPage(Int(ra * 1.875 + 0.5) + 125, 170, 125, 180, south);
    if (absDec < 39)
        return BandPage(Int(ra * 1.5 + 0.5) + 89, 125, 89, 261, south);
    if (absDec < 50)
        return BandPage(Int(ra / 0.8 + 0.5) + 59, 89, 59, 327, south);
    if (absDec < 61)
        return BandPage(Int(ra + 0.5) + 35, 59, 35, 381, south);
    if (absDec < 72.5)
        return BandPage(Int(ra / 1.2 + 0.5) + 15, 35, 15, 425, south);
    if (absDec < 84.5)
        return BandPage(Int(ra / 2 + 1 / 2.4) + 3, 15, 3, 457, south);
    double page = Int(ra / 12) + 1;
    return ToPage(south ? 474 - page : page);
}

// The Millennium atlas's rows of pages, from the pole to the equator: a row counts when the
// size of the declination is below its limit (the first row always counts).
struct MillenniumRow
{
    double belowDeg;
    double pages;
    double minutesPerPage;
};
constexpr MillenniumRow kMillenniumRows[] = {
    {87, 4, 120},      {81, 8, 60},       {75, 10, 48}, {69, 12, 40}, {63, 14, 480.0 / 14},
    {57, 16, 30},      {51, 20, 24},      {45, 20, 24}, {39, 22, 480.0 / 22},
    {33, 22, 480.0 / 22}, {27, 24, 20},   {21, 24, 20}, {15, 24, 20}, {9, 24, 20},
    {3, 24, 20},
};

std::string MillenniumPage(double raHours, double raMinutes, double raSeconds,
                           double decDegrees, double decMinutes, double decSeconds)
{
    double ra = raHours + raMinutes / 60 + raSeconds / 3600;
    double dec = decDegrees + decMinutes / 60 + decSeconds / 3600;
    const bool south = dec < 0;
    if (std::fabs(dec) > 87)
        ra = 0;

    int index = 0;
    const char* volume = "";
    if (ra >= 0 && ra <= 8) {
        index = 0;
        volume = "Vol I";
    } else if (ra > 8 && ra <= 16) {
        index = 1;
        volume = "Vol II";
    } else if (ra > 16 && ra < 24) {
        index = 2;
        volume = "Vol III";
    }

    double absDec = std::fabs(dec);
    if (absDec > 90)
        absDec = 90;

    // The polar row (up to 90 degrees) always counts.
    double pagesSoFar = 2;
    double pagesInBand = 2;
    double minutesPerPage = 240;
    for (const MillenniumRow& row : kMillenniumRows) {
        if (absDec < row.belowDeg) {
            pagesSoFar += row.pages;
            pagesInBand = row.pages;
            minutesPerPage = row.minutesPerPage;
        }
    }

    // A volume's last hour stays on its last page.
    if (ra == 8)
        ra = 7.99;
    else if (ra == 16)
        ra = 15.99;
    else if (ra == 24)
        ra = 23.99;
    if (index * 8 < ra)
        ra -= index * 8;
    const double n = Int(ra * 60 / minutesPerPage);

    // Deliberate: the polar cap tests the given hours, not the RA cleared above 87 degrees.
    if (raHours > 4 && raHours < 16 && absDec > 87) {
        pagesSoFar = 1;
        pagesInBand = 0;
    }

    const double page = south ? index * 516 + 516 - pagesSoFar + pagesInBand - n
                              : pagesSoFar - n + index * 516;

    char buffer[16];
    auto [end, ec] = std::to_chars(buffer, buffer + 7, static_cast<long>(ToPage(page)));
    std::string text(buffer, ec == std::errc{} ? end : buffer);
    text += ' ';
    text += volume;
    return text;
}

} // namespace

AtlasPages Chart(double raHours, double raMinutes, double raSeconds, double decDegrees,
                 double decMinutes, double decSeconds)
{
    AtlasPages pages;
    // Deliberate: seconds do not count for these two atlases.
    const double ra = raHours + raMinutes / 60;
    const double dec = decDegrees + decMinutes / 60;
    const double absDec = std::fabs(dec);
    const bool south = dec < 0;
    pages.skyAtlas = SkyAtlasPage(ra, absDec, south);
    pages.uranometria = UranometriaPage(ra, absDec, south);
    pages.millennium =
        MillenniumPage(raHours, raMinutes, raSeconds, decDegrees, decMinutes, decSeconds);
    return pages;
}

} // namespace charts
