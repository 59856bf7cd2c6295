#pragma once
// The What's Up wizard without its window: six pages that set the same process-wide filter
// values the filter panel and the preference windows use (TMM.prefs), one query on the current
// tab, and, unless the observer keeps the wizard's values, every value put back afterwards.
// The What's Up lists of the Messier and Herschel objects (Wiz2, Wiz3) run without pages.
//
// Texts are kept as typed, as the filter panel keeps its boxes. The date is a text in the
// regional short form (blank: today), the time "hh:mm". Angles in degrees, latitude positive
// north, longitude positive west; time zone in hours behind Greenwich.

#include "astro/ObservingClock.h"
#include "data/Places.h"
#include "spread/AppState.h"
#include "spread/LoadTheGrid.h"

#include <array>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace data {
class Database;
}

namespace spread {

inline constexpr int kWizardPages = 6;

struct WizardPageText
{
    std::string_view heading;
    std::string_view hint;
};

// The heading and hint of each page, pages 1 to 6 at indices 0 to 5.
inline constexpr std::array<WizardPageText, kWizardPages> WizardPageTexts{{
    {"1. Select the constellations to include",
     "By selecting specific constellations, you will focus your search in one area of the sky. "},
    {"2. Select the object types to include",
     "By selecting what object types to include, you can focus on the type of objects you are "
     "interested in."},
    {"3. Select the Sort Order",
     "You may select up to 3 levels of sorting and select whether you want the sort in ASC or "
     "DESC sequence."},
    {"4. Select Catalogs To Load Objects From",
     "Select just the catalogs you are interested in.  May I suggest either NGC 2000 or SAC71?"},
    {"5. Select Date, Time, and Location",
     "Specify this information to have calculations of altitude, azimuth, rise, and set made "
     "for your location."},
    {"6. Select your Filters", "Filters will help limit the # of objects returned."},
}};

inline constexpr const char* WizardTitle = "What's Up Wizard";
inline constexpr const char* WizardNextCaption = "Next >>";
inline constexpr const char* WizardFinishCaption = "Finish";
inline constexpr const char* WizardBackCaption = "<< Back";
inline constexpr const char* WizardCancelCaption = "Cancel";
inline constexpr const char* WizardNowCaption = "Now";
inline constexpr const char* WizardApplyCaption = "Apply wizard preferences to rest of Selvane";
// The tip's spelling is the window's own.
inline constexpr const char* WizardApplyTip =
    "When checked, any changes made on the wizard screen will be propogated in Selvane";
inline constexpr const char* WizardAllConstellations = "All Constellations";
inline constexpr const char* WizardAllTypes = "All Types";
inline constexpr const char* WizardAllCatalogs = "All Catalogs";
inline constexpr const char* WizardNoSort = "<none>";
// The locations under which the window's failures are reported.
inline constexpr const char* WizardLoadLocation = "frmWhatsUpWizard.Form_Load";
inline constexpr const char* WizardNextLocation = "frmWhatsUpWizard.cmdNext_Click";
inline constexpr const char* WizardSiteLocation = "frmWhatsUpWizard.cboSite_Click";

// The constellation list of page 1: "All Constellations", then the 88 constellations as
// "Key-Name" ("Cvn-Canes Venatici") in the order of their keys, each key one capital and two
// small letters. The filter matches on the key, the first three characters.
const std::vector<std::string>& WizardConstellationList();
// The list of the three sort levels of page 3: "<none>", then the names a level may sort by,
// computed columns included.
const std::vector<std::string>& WizardSortList();
// The type list of page 2: "All Types", then ObjectTypeDesc of "Select ID, ObjectType,
// ObjectTypeDesc From ValidObjectTypes Order By ObjectTypeDesc".
// Status: throws services::Fault with the engine's message when the table cannot be read.
std::vector<std::string> LoadWizardTypes(data::Database& objectDb);
// The catalogue list of page 4: "All Catalogs", then CatalogDescription of "Select ID,
// CatalogName, CatalogDescription From CatalogLookup Order By CatalogDescription", without the
// solar-system catalogues PLANETS, COMET and ASTEROID (by name or description, any case).
std::vector<std::string> LoadWizardCatalogs(data::Database& objectDb);

// One list of a page: its entries and which of them are selected. Several may be selected.
struct WizardList
{
    std::vector<std::string> items;
    std::vector<bool> selected; // as long as items

    void SetItems(std::vector<std::string> entries);
    // Selects or deselects the entry with exactly this text; false when the list has none.
    bool Select(std::string_view item, bool on = true);
    // The selected entries in list order.
    std::vector<std::string> Selected() const;
};

// SavePrefs: the values the wizard may change, as they stood when it opened, in the order
// UndoPrefs puts them back.
struct WizardSnapshot
{
    std::string gMagL, gMagL2, gMagU, gMagU2;
    std::string Obcon, Obtod, ObCat;
    std::string sort1, sort2, sort3;
    std::string Des1, Des2, Des3;
    std::string PDate;
    double Plat = 0;
    double PTz = 0;
    std::string Ptime;
    std::string PIB, PIB2;
    std::string Pminalt;
    // Deliberate: the longitude is kept with the latitude and zone, so that putting the site
    // back never leaves a site chosen here half in force.
    double PLon = 0;
};

// What the wizard asks of the spreadsheet. Each is optional.
struct WizardHooks
{
    // LoadTheGrid of the current tab with "NO BUILD"; missing: LoadTheGrid on
    // TMM.grids[TMM.CurrTab] with the wizard's clock.
    std::function<void()> LoadTheGrid;
    // The spreadsheet's RefreshPref; missing: spread::RefreshPref(TMM).
    std::function<void()> RefreshPref;
};

// frmWhatsUpWizard's state and steps. The members named after the window's controls hold what
// the controls show; the window writes them on each edit and calls the steps on each click.
class WhatsUpWizard
{
public:
    // Given: TMM, whose prefs the wizard changes and whose databases give the lists; clock,
    //   the computer clock for today's date and the "Now" button.
    WhatsUpWizard(AppState& TMM, const astro::Clock& clock, WizardHooks hooks = {});

    // Form_Load: SavePrefs; the four lists, the sort levels from sort1..sort3 and Des1..Des3;
    // the date today, the time Ptime, the site whose place is the current one, the magnitudes,
    // chkIB and chkIB2 from PIB and PIB2, the minimum altitude; the setting wuw written True;
    // chkwizapply from wizapppref; the selection sets CON, TYP and CAT empty; page 1.
    // Status: throws services::Fault when a list cannot be read (reported by the window under
    //   WizardLoadLocation).
    void Load();

    int Page() const { return page_; }
    const WizardPageText& PageText() const { return WizardPageTexts[page_ - 1]; }
    // "Next >>" on pages 1 to 5, "Finish" on page 6.
    const char* NextCaption() const;
    bool BackEnabled() const { return page_ > 1; }
    // True once Finish or Cancel has closed the wizard.
    bool Closed() const { return closed_; }

    // cmdNext_Click. Pages 1 to 5: the page's values are taken (page 1 NextPage1, page 2
    // NextPage2, page 4 NextPage3, page 5 the time when not blank and the date), then the next
    // page. Page 6, Finish: SetGlobals, WizardComplete, UndoPrefs unless chkwizapply is on,
    // the spreadsheet's RefreshPref, and the wizard closes.
    // Status: a failure of the load is the load's own (reported by it); a fault reading the
    //   lookups throws services::Fault, and the wizard stays open with the values set so far.
    void Next();
    // cmdBack_Click: the page before, nothing taken.
    void Back();
    // cmdCancel_Click: the wizard closes; values already taken by the pages stay in force.
    void Cancel();
    // cmdNow_Click: date and time from the computer clock.
    void Now();
    // cboSite_Click: the site of that ProfileName (without regard to case) becomes the site; a
    // blank name chooses none, so the place in force stays. False when no site has that name.
    bool SelectSite(const std::string& name);
    // chkwizapply_Click: the box and the setting wizapppref, written at once.
    void chkwizapply_Click(bool checked);

    // The steps, under the routines' names.
    void SavePrefs();
    void NextPage1();
    void NextPage2();
    void NextPage3();
    void SetGlobals();
    void UndoPrefs();
    // TMM.WizardComplete: WizardSQLSelectString of the wizard's values into TMM.SQL and
    // TMM.OrderBy, the tab's tag cleared, then LoadTheGrid with "NO BUILD".
    void WizardComplete();
    // The spreadsheet's three sort levels and direction boxes from sort1..sort3, Des1..Des3.
    void UpdateSpreadsheetSort();

    const WizardSnapshot& Snapshot() const { return snapshot_; }
    // The results of the last load WizardComplete ran without a LoadTheGrid hook.
    const GridLoad& LastLoad() const { return load_; }
    // The site taken by SetGlobals: the one chosen, else the current one found by Load.
    const std::optional<data::Place>& Site() const { return site_; }

    // The controls.
    WizardList lstCon, lstType, lstCat;
    std::array<std::string, 3> cbosort;
    std::array<bool, 3> chkD{};
    std::vector<data::Place> sites; // ObservingSites, "Select * from ObservingSites"
    std::string cboSite;            // the ProfileName shown, empty for none
    std::string txtDate, txtTime;
    std::array<std::string, 2> txtMagL, txtMagU; // magnitude 1 and magnitude 2
    bool chkIB = false, chkIB2 = false;
    std::string txtMinAlt;
    bool chkwizapply = false;
    // The selection sets under the keys "CON", "TYP" and "CAT": the entries NextPage1 to
    // NextPage3 took, in list order.
    std::map<std::string, std::vector<std::string>> selections;

private:
    void NextPage(const WizardList& list, std::string& value, const char* key);

    AppState& TMM;
    const astro::Clock& clock_;
    WizardHooks hooks_;
    int page_ = 1;
    bool closed_ = false;
    WizardSnapshot snapshot_;
    std::optional<data::Place> site_;
    GridLoad load_;
};

// Wiz2 and Wiz3: the Messier and the Herschel objects up now, without the wizard's pages, on
// the current tab: WhatsUpMessierList / WhatsUpHerschelList (data/ObjectFilter.h) of PMaxMag and
// PMaxSize, ordered by one level, entry PmSort / PsSort of WizardSortList (0 "<none>", 1
// "Altitude", 4 "Constellation"), descending when Pmsorto / Pssorto is "D"; rows below Pminalt
// (0 when blank) dropped.
// Given: TMM; loadTheGrid, LoadTheGrid of the current tab with "NOBUILD".
// Returned: false, after "Please select a spreadsheet tab first", on an image tab.
// Notes: the sort levels and Pminalt are changed only for the load and put back after it, even
//   when it throws; the current SQL stays the list's.
bool Wiz2(AppState& TMM, const std::function<void()>& loadTheGrid);
bool Wiz3(AppState& TMM, const std::function<void()>& loadTheGrid);

} // namespace spread
