#pragma once
// The object filter of the spreadsheet: the user's selections and ranges turned into one SQL
// text on SelvaneTable, and the fixed lists of the menus.
//
// Every routine here returns text and runs nothing. Texts are in Jet's dialect (isnull, Like
// with "*"), as the grid loading passes them to data::Database, which translates them.
// Numbers from the range boxes pass through services::vb::Val and are written in the program's
// own number form ("." as decimal sign, 15 significant digits), so a box holding text reads 0.
// Right ascension limits are in whole hours, declination limits in whole degrees.

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace data {

class Database;
struct Preferences;

// The location under which a failure of the build is reported.
inline constexpr const char* BuildSQLSelectStringLocation = "ctlSpread.BuildSQLSelectString";

// The filter panel's values, each member named by the settings key that keeps it. The three
// selection texts are those of the labels lblCatDes, lblConst and lblType: entries ended by
// ";" ("NGC 2000;", "Ori-Orion;"), or a text beginning "All" for no restriction. Ranges are kept
// as typed. sort1..sort3 are the texts of the three sort combos; Des1..Des3 are "D" when the
// level sorts descending.
struct ObjectFilter
{
    std::string ObCat, Obcon, Obtod;
    std::string gMagL, gMagU, gMagL2, gMagU2;
    std::string gSizeL, gSizeU;
    std::string gSepL, gSepH;
    std::string gPAL, gPAH;
    std::string gFRAH, gTRAH, gFDECD, gTDECD;
    // Minutes of the RA and declination limits: kept with the filter, never part of the SQL.
    std::string gFRAM, gTRAM, gFDECM, gTDECM;
    std::string gmagdif, gmagdif2;
    std::string gObjID, gOther;
    std::string PIB, PIB2, PIB3; // include blanks of magnitude 1, magnitude 2 and size: "Y"
    std::string sort1, sort2, sort3;
    std::string Des1, Des2, Des3;
};

// The rows of CatalogLookup and ValidObjectTypes that the filter reads, in table order.
struct CatalogRow
{
    std::string CatalogName;        // the code stored in SelvaneTable.Catalog
    std::string CatalogDescription; // the text shown to the user
};
struct ObjectTypeRow
{
    std::string ObjectType;     // the code stored in SelvaneTable.ObjectType
    std::string ObjectTypeDesc; // the text shown to the user
};
struct FilterLookups
{
    std::vector<CatalogRow> catalogs;
    std::vector<ObjectTypeRow> types;
};

// The 88 constellations as the constellation pickers offer them: abbreviation, "-", name
// ("Ori-Orion"), in the order of their names. Filters match on the first three characters.
const std::vector<std::string>& ConstellationList();

// Reads CatalogLookup and ValidObjectTypes of the object database, in the order of their ID.
// Status: throws services::Fault with the engine's message when a table cannot be read.
FilterLookups LoadFilterLookups(Database& db);

// GetCatalogID: the CatalogName of a catalogue description; GetCatalogName: the description of
// a CatalogName; GetTypeID: the ObjectType code of a type description.
// Returned: the first matching row's value, compared without regard to case as the database
// compares text; the empty text when no row matches (an empty id then matches nothing).
std::string GetCatalogID(const FilterLookups& lookups, std::string_view description);
std::string GetCatalogName(const FilterLookups& lookups, std::string_view catalogName);
std::string GetTypeID(const FilterLookups& lookups, std::string_view description);

// The three kinds of selection text, by DecodeDesc's tags "CAT", "CON" and "TYP".
enum class DescTag {
    Catalogs,
    Constellations,
    Types,
};
// The tag for a text "CAT", "CON" or "TYP" (any case); nothing for another text.
std::optional<DescTag> ParseDescTag(std::string_view tag);

// DecodeDesc: the entries of a selection text.
// Given: label, a selection text; tag, which selection it is.
// Returned: the pieces ended by ";" in order (a last piece without ";" counts as ended); empty
// for an empty label and for the tag's own "all" text: "All Catalogs", "All Constellations",
// "All Object Types".
// Notes: "All Types", the label the type picker writes, is not the type tag's "all" text and
// decodes to one entry; BuildSQLSelectString ignores it anyway, since it begins "All".
std::vector<std::string> DecodeDesc(std::string_view label, DescTag tag);

// The SQL of a filter and its ORDER BY part.
struct SqlSelect
{
    std::string SQL;     // "Select * From SelvaneTable  WHERE ...", ORDER BY included
    std::string OrderBy; // "ORDER BY Magnitude Asc", or empty when no level sorts in SQL
};

// Limits that differ between the filter panel and the What's Up wizard.
struct BuildLimits
{
    std::string emptyMagnitudeUpper = "999"; // the wizard uses "99"
    bool withRanges = true; // false: no double-star, size, separation, PA, RA, Dec or id clauses
};

// BuildSQLSelectString: the SQL of the filter.
// Given: filter, the panel's values; lookups, for the catalogue ids and type codes.
// Returned: the SQL, its clauses appended in a fixed order (catalogues, constellations, types,
// magnitude 1, magnitude 2, double-star difference, size, separation, position angle, right
// ascension, declination, ids, ORDER BY); magnitude, RA and declination are always restricted,
// so a WHERE always exists.
// Notes: empty range boxes read as their defaults (magnitude -1 to 999, size 0 to 9999,
// separation 0 to 9999, position angle 0 to 360, RA 0 to 24 hours, declination -90 to 90
// degrees); separation and position angle are left out while they hold those defaults. Sort
// levels naming a computed column (IsComputedSort) are left to the grid.
SqlSelect BuildSQLSelectString(const ObjectFilter& filter, const FilterLookups& lookups,
                               const BuildLimits& limits = {});

// WizardComplete's SQL: the What's Up wizard's selections, magnitudes and sort levels.
// Given: filter, the wizard's values (ObCat, Obcon, Obtod, gMagL, gMagU, gMagL2, gMagU2, PIB,
//   PIB2, sort1..sort3, Des1..Des3; every other member is ignored); lookups, as for
//   BuildSQLSelectString.
// Returned: the text BuildSQLSelectString makes, up to magnitude 2 and then the ORDER BY: an
//   empty upper magnitude box reads 99, and no double-star, size, separation, position angle,
//   right ascension, declination or id clause is written.
SqlSelect WizardSQLSelectString(const ObjectFilter& filter, const FilterLookups& lookups);

// The three sort levels' ORDER BY text, as BuildSQLSelectString appends it: "ORDER BY
// Magnitude Asc,  ObjectID Desc", or empty.
std::string BuildOrderBy(const ObjectFilter& filter);

// IsComputedSort: whether a sort name is one of the computed columns, which SQL cannot order.
// Returned: the grid column to sort by on the client (Altitude 10, Azimuth 11, Rise 12,
// Optimum 13, Set 14, Sky# 27, Ura# 28, Mill# 29), or nothing; names compare without regard
// to case.
// Notes: Sky#, Ura# and Mill# stand in columns 28 to 30 of the grid; their numbers are one
// below, and a sort by them orders by the column to their left.
std::optional<int> IsComputedSort(std::string_view name);

// The names the three sort combos offer: index 0 and 1 the table's fields, index 2 also the
// computed names. The first entry is the empty choice "<none>".
std::vector<std::string> SortComboList(int index);

// SetSortOptions: the three combos' texts and check boxes from the settings sort1..sort3 and
// Des1..Des3. A saved text that the combo does not offer (compared exactly) selects its first
// entry; "D" checks the box.
struct SortOptions
{
    std::array<std::string, 3> cbosort;
    std::array<bool, 3> chkD{};
};
SortOptions SetSortOptions(const std::array<std::string, 3>& sort,
                           const std::array<std::string, 3>& des);

// RefreshPref's part for the filter: the panel's values from the settings. An empty selection
// shows as "All Catalogs", "All Constellations" or "All Types"; the sorts pass SetSortOptions.
ObjectFilter FilterFromPreferences(const Preferences& prefs);
// The panel's values back into the settings, for SavePreferences to keep.
void FilterToPreferences(const ObjectFilter& filter, Preferences& prefs);

// The Reset command: every range box back to its default; selections, include-blank choices
// and sorts stay.
void ResetRanges(ObjectFilter& filter);

// The two lines of `selvane-cli sql`: the SQL that BuildSQLSelectString makes from the
// settings, then its ORDER BY text, each ended by "\n".
std::string SqlCommandLines(const Preferences& prefs, const FilterLookups& lookups);

// ---------------------------------------------------------------------------------------------
// The fixed lists of the menus. Each gives the grid's tag and the SQL that LoadTheGrid runs
// with "NOBUILD"; their ordering stands inside the SQL, and the ORDER BY text of the filter is
// left as it stood.

struct FixedList
{
    std::string Tag;
    std::string SQL;
    // Run the SQL on the logbook database (the observed list on read-only media).
    bool UseLogDatabase = false;
};

FixedList ShowMessierList();
// useCd: the object database lies on read-only media; the observed objects then come from the
// logbook joined with the object table, since the media's Observed flags are never updated.
FixedList ShowObservedList(bool useCd);
FixedList ShowImageList();
// catalogLabel: the catalogue selection (lblCatDes). With no selected catalogue ("All
// Catalogs") the list is ordered by magnitude; otherwise it keeps to the chosen catalogues.
FixedList mnuEight(const std::string& catalogLabel, const FilterLookups& lookups);
FixedList Messier2();
FixedList Messier3();
FixedList Herschel1();
FixedList Herschel2();
FixedList Herschel3();

// The What's Up lists without the wizard's pages (Wiz2, Wiz3): the Messier list's or the
// Herschel list's SQL without its ORDER BY, with " and Magnitude <= " maxMag when maxMag is not
// blank, " and ObjectSize <= " maxSize when maxSize is not blank (both written as numbers, so a
// text reads 0), then orderBy (BuildOrderBy's text) after a blank when it is not empty.
FixedList WhatsUpMessierList(std::string_view maxMag, std::string_view maxSize,
                             std::string_view orderBy);
FixedList WhatsUpHerschelList(std::string_view maxMag, std::string_view maxSize,
                              std::string_view orderBy);

enum class FixedListKind {
    ShowMessierList,
    ShowObservedList,
    ShowImageList,
    mnuEight,
    Messier2,
    Messier3,
    Herschel1,
    Herschel2,
    Herschel3,
};

// A message that refuses a command, for ShowMessage(Text, Title, Kind).
struct Refusal
{
    std::string Text;
    std::string Title;
    std::string Kind;
};

inline constexpr const char* NotSpreadsheetTabText = "Please select a spreadsheet tab first";
inline constexpr const char* NotSpreadsheetTabTitle = "Invalid Usage!";
inline constexpr const char* ReadOnlyMediaText =
    "This query is not available since the database resides on a CD-ROM drive.";
inline constexpr const char* ReadOnlyMediaTitle = "INVALID OPERATION";

// Whether a fixed list may run now.
// Given: currTab, the current tab (0 to 4 spreadsheets, 5 and 6 image tabs); databaseOnCd, the
// object database lies on read-only media.
// Returned: nothing when it may run; else the message to show. Every list needs a spreadsheet
// tab; Messier2, Messier3, Herschel1 and Herschel2, which read the Observed flags that such
// media never update, also refuse on read-only media.
std::optional<Refusal> CheckFixedList(FixedListKind kind, int currTab, bool databaseOnCd);

} // namespace data
