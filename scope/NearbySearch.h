#pragma once
// Identify and the Nearby Target Object Search (NTOS): the objects of the object database within
// a number of degrees of a centre, searched constellation first and distance second. Identify's
// centre is where the mount points; NTOS's is the home target. The two windows share every
// routine and differ only in their centre, their status texts and their location texts.
//
// Units: right ascension in hours, declination and separations in degrees. Positions are of the
// equinox 2000, the database's. Texts are VB's Format patterns ("###.0" writes 0.25 as ".3").

#include "astro/FaultSink.h"
#include "astro/Time.h"
#include "data/ObjectFilter.h"
#include "scope/TelescopeStuff.h"
#include "spread/AppState.h"

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace data {
class Database;
}

namespace scope {

enum class SearchWindow {
    Identify, // frmIdentify: around the mount
    NTOS,     // frmNTOS: around the home target
};

// "frmIdentify.IdentifyObjects", "frmNTOS.UpdatePlan", ...
std::string SearchLocation(SearchWindow window, const char* routine);

inline constexpr const char* kPleaseWait = "Please Wait ...";
inline constexpr const char* kNoTargetText =
    "Please right click on an object in the spreadsheet and select the SET AS HOME TARGET option "
    "before NTOS will function.";
inline constexpr const char* kNoTargetTitle = "Target Object Not Specified";
inline constexpr const char* kIdentifyMenuText = "Identify Objects at Current Position";

// The radii cboDegrees offers; any typed number is taken as well.
inline constexpr std::array<double, 8> kDegreesItems{0.5, 1, 2, 3, 5, 10, 15, 20};

// The query of the bordering constellations in the logbook's table BConst.
std::string BorderingSql(const std::string& constellation);
// The BConst of each row of BorderingSql, in table order.
// Status: throws services::Fault when the table cannot be read.
std::vector<std::string> ReadBorderingConstellations(data::Database& logbook,
                                                     const std::string& constellation);

// BuildSQLSelectString2: the query of the search.
// Given: filter, the current tab's filter settings (ObCat catalogues, Obtod types, the g...
//   ranges; Obcon is not read); lookups, for catalogue ids and type codes; constellation, the
//   centre's abbreviation; bordering, the constellations next to it (empty without chkNear).
// Returned: "Select * From SelvaneTable " and the clauses catalogue, constellation (with the
//   bordering ones), types, then the ranges of the filter, each range left out while its boxes
//   hold the full range (magnitude -1 to 999, size 0 to 9999, separation 0 to 9999, position
//   angle 0 to 360, RA 0 to 24, declination -90 to 90; empty boxes read as those). The first
//   clause opens with " WHERE ", the others with " and ".
std::string BuildSQLSelectString2(const data::ObjectFilter& filter,
                                  const data::FilterLookups& lookups,
                                  const std::string& constellation,
                                  const std::vector<std::string>& bordering);

// The centre of a search, and the texts that show it.
struct SearchCentre
{
    astro::Hms ra;
    astro::Dms dec; // the sign in the first non-zero field
};
// The centre of a decimal position (the mount): ConvertFromDecimal of each.
SearchCentre CentreOfScope(double raHours, double decDeg);
// The centre of the home target's grid texts.
SearchCentre CentreOfTarget(const spread::Targeting& target);
// The centre in decimal hours and degrees.
double CentreRaHours(const SearchCentre& centre);
double CentreDecDeg(const SearchCentre& centre);

struct SearchStatus
{
    std::string RAtext;    // "Scope RA: 05h 35m 17s" / "Target RA: ..."
    std::string DECtext;   // "Scope DEC: -05d 23m 28s" / "Target DEC: ..."
    std::string Consttext; // "Const: Ori"
};
SearchStatus StatusTexts(SearchWindow window, const SearchCentre& centre,
                         const std::string& constellation);

// One row of the result grid vaSpread1.
struct NearbyRow
{
    std::string pln; // "X", "X*" or ""
    std::string ObjectID, OtherID;
    std::string AngSep; // "###.0"
    std::string Catalog;
    std::string Mag; // "##.0", empty without a magnitude
    std::string Const, Type;
    long long ID = 0;      // hidden
    double separation = 0; // degrees, what the rows are sorted by
    double raHours = 0;    // the stored position (epoch 2000), for the list's Goto
    double decDeg = 0;
};

struct NearbySearch
{
    bool ran = false; // false: refused (the message was shown) or a fault
    SearchCentre centre;
    std::string constellation; // the centre's abbreviation
    SearchStatus status;
    std::vector<NearbyRow> rows; // nearest first
};

// What the search reads besides the state.
struct SearchRequest
{
    SearchWindow window = SearchWindow::NTOS;
    double degrees = 1;         // cboDegrees: a separation above it skips the record
    bool checkAdjacent = false; // chkNear
    // Identify: where the mount points (hours, degrees); nothing when it could not be read,
    // which ends the search. Not read by NTOS.
    std::function<std::optional<std::pair<double, double>>()> ReadScope;
};

// IdentifyObjects: the centre (Identify: the mount; NTOS: the home target, refused with
// kNoTargetText under kNoTargetTitle, kind I, while TargetRA is empty), its constellation by
// GetCon (epoch "2000"), BuildSQLSelectString2 on the current tab's filter settings, and each
// record within the radius (a separation equal to it is kept), its "pln" mark from the current
// tab's plan; sorted by separation, ascending.
// Status: a fault is reported under "<window>.IdentifyObjects" (a failure of the query under
//   "<window>.BuildSQLSelectString2") and ends the search with ran false.
NearbySearch IdentifyObjects(spread::AppState& TMM, const SearchRequest& request);

// UpdatePlan: toggles a row's object in the current tab's plan (a tab out of plan mode enters
// it); a 501st object is refused with MaxObjectsText under MaxObjectsTitle, kind I. The row's
// pln mark follows.
// Returned: true when the plan changed.
// Location: <window>.UpdatePlan
bool UpdatePlan(spread::AppState& TMM, SearchWindow window, NearbyRow& row);

// The sort of the grid menu's sortcolumn and scds by one of the eight shown columns (0 pln to
// 7 Type); Ang Sep and Mag sort by value, blanks first, the others by text.
void SortRows(std::vector<NearbyRow>& rows, int column, bool ascending);

} // namespace scope
