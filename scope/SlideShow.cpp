#include "scope/SlideShow.h"

#include "data/ObjectFilter.h"
#include "logbook/ObservedFlag.h"
#include "services/Fault.h"
#include "services/Vb.h"
#include "spread/Plans.h"
#include "spread/StarCharts.h"

#include <cmath>
#include <cstdlib>

namespace scope {

namespace vb = services::vb;

namespace {

constexpr const char* kInfo = "I";

std::string Trimmed(std::string_view text)
{
    return vb::Trim(text);
}

// The IAU name of a constellation's abbreviation, from the filter's list ("CVn-Canes Venatici").
std::string LongConstellationName(const std::string& abbreviation)
{
    const std::string key = Trimmed(abbreviation);
    for (const std::string& entry : data::ConstellationList()) {
        const auto dash = entry.find('-');
        if (dash != std::string::npos && vb::SameText(entry.substr(0, dash), key))
            return entry.substr(dash + 1);
    }
    return key;
}

// A blank text as the logbook stores it.
std::string Stored(const std::string& text)
{
    return Trimmed(text).empty() ? std::string(" ") : text;
}

// Whether an identifier names a Messier object ("M 31", "M31"); its number in messier.
bool MessierNumber(const std::string& id, std::string& messier)
{
    const std::string upper = vb::UCase(Trimmed(id));
    if (upper.size() < 2 || upper[0] != 'M')
        return false;
    const std::string digits = Trimmed(upper.substr(1));
    if (digits.empty() || digits.find_first_not_of("0123456789") != std::string::npos)
        return false;
    messier = digits;
    return true;
}

// The keypad's port wrap: the link of Scope is dropped (errors ignored), the keypad uses the
// mount for one operation, and Scope is left empty.
template <typename Body> auto UnderPortWrap(ScopeContext& s, Body body)
{
    ReleaseScope(s.state);
    GetComPort(s);
    struct Release
    {
        TelescopeState& state;
        ~Release() { ReleaseScope(state); }
    } release{s.state};
    return body(ConnectScope(s));
}

} // namespace

const std::vector<std::string>& SlideSeeingList()
{
    static const std::vector<std::string> list{"Pefectly Stable", "Mostly Stable",
                                               "Somewhat Stable", "Unstable", "Very Unstable"};
    return list;
}

const std::vector<std::string>& SlideTransparencyList()
{
    static const std::vector<std::string> list{"Extremely Clear", "Very Clear",     "Clear",
                                               "Partly Clear",    "Somewhat Clear", "Poor",
                                               "Very Poor"};
    return list;
}

bool IsKeypadDriver(const data::Preferences& prefs)
{
    return prefs.telescopetype == kKeypadDriver ||
           (prefs.keypad && prefs.telescopetype.starts_with("indi://"));
}

std::string KeypadCodeOfOffset(const std::string& offsetHours)
{
    const double code = -vb::Val(offsetHours);
    const long hours = std::lround(std::fabs(code));
    return std::string(code < 0 && hours != 0 ? "-" : "+") + vb::Format(hours, "00") + "#";
}

std::string OffsetOfKeypadCode(const std::string& code)
{
    const long hours = std::lround(vb::Val(Trimmed(code).substr(code.starts_with('+') ? 1 : 0)));
    return std::to_string(-hours);
}

std::string ReadSite(ScopeContext& s)
{
    return UnderPortWrap(s, [](Telescope& mount) { return KeypadCodeOfOffset(mount.UtcOffset()); });
}

void WriteOffset(ScopeContext& s, const std::string& code)
{
    UnderPortWrap(s, [&](Telescope& mount) { mount.SetUtcOffset(OffsetOfKeypadCode(code)); });
}

bool StartSlideShow(spread::AppState& TMM)
{
    if (TMM.CurrTab < 0 || TMM.CurrTab >= spread::kSpreadTabs) {
        TMM.ui.ShowMessage("In order for the slide show to function, a list of objects must be "
                           "shown on the main spreadsheet tab you have selected.",
                           "No Spreadsheet Selected", kInfo);
        return false;
    }
    if (TMM.grids[static_cast<std::size_t>(TMM.CurrTab)].MaxRows() == 0) {
        TMM.ui.ShowMessage("In order for the slide show to function, a list of objects must be "
                           "shown on the main spreadsheet tab you have selected.  If none are "
                           "shown, you need to press the REFRESH button on the main spreadsheet "
                           "screen.",
                           "No Objects Selected", kInfo);
        return false;
    }
    return true;
}

KeypadKey KeyOfCode(const std::string& code, bool chkaltmap)
{
    const char* next = chkaltmap ? "+04#" : "+01#";
    const char* previous = chkaltmap ? "+05#" : "+02#";
    const char* log = chkaltmap ? "+06#" : "+03#";
    if (code == next)
        return KeypadKey::Next;
    if (code == previous)
        return KeypadKey::Previous;
    if (code == log)
        return KeypadKey::Log;
    return KeypadKey::None;
}

const spread::Grid& SlideShow::Grid() const
{
    return TMM_.grids[static_cast<std::size_t>(CurrTab)];
}

int SlideShow::MaxRows() const
{
    return CurrTab >= 0 && CurrTab < spread::kSpreadTabs ? Grid().MaxRows() : 0;
}

void SlideShow::Load()
{
    CurrTab = TMM_.CurrTab;
    const bool keypad = IsKeypadDriver(TMM_.prefs);
    cmdOnEnabled = cmdOffEnabled = keypad;
    services::Trap(TMM_.ui, kSlideLoadLocation, [&] {
        locations.clear();
        equipment.clear();
        gotoList.clear();
        if (TMM_.logbookDb) {
            auto sites =
                TMM_.logbookDb->OpenRecordset("Select * from ObservingSites", data::Snapshot);
            for (auto name = sites.Fields("ProfileName"); !sites.Eof(); sites.MoveNext())
                locations.push_back(name.Value());
            auto kit = TMM_.logbookDb->OpenRecordset("Select * From Equipment", data::Snapshot);
            for (auto name = kit.Fields("EQUIPMENT"); !kit.Eof(); kit.MoveNext())
                equipment.push_back(name.Value());
        }
        for (int row = 1; row <= MaxRows(); ++row)
            gotoList.emplace_back(Grid().Text(row, spread::kObjectIdCol));
        if (keypad) {
            const std::string code = ReadSite(s_);
            // The mount already holds a keypad code: the keys move to 4, 5 and 6.
            if (code == "+01#" || code == "+02#" || code == "+03#")
                chkaltmap = true;
        }
    });
    CurrentRow = 0;
    cmdNext();
}

void SlideShow::cmdNext()
{
    if (CurrentRow + 1 > MaxRows()) {
        TMM_.ui.ShowMessage("The Slide Show is complete.", "Completed!", kInfo);
        return;
    }
    ++CurrentRow;
    ShowRow();
}

void SlideShow::cmdPrevious()
{
    if (CurrentRow <= 1) {
        TMM_.ui.ShowMessage("The Slide Show is on the first object.", "Slide Show", kInfo);
        return;
    }
    --CurrentRow;
    ShowRow();
}

void SlideShow::cbogoto(int entry)
{
    if (entry < 1)
        return;
    CurrentRow = entry - 1;
    cmdNext();
}

void SlideShow::ShowRow()
{
    const spread::Grid& grid = Grid();
    const int row = CurrentRow;
    statusBar = "Shown " + std::to_string(row) + " out of " + std::to_string(grid.MaxRows()) +
                "    Please Wait until scope stops until you go to another object";
    const auto cell = [&](int col) { return std::string(grid.Text(row, col)); };
    const std::string id = Trimmed(cell(spread::kObjectIdCol));
    const std::string other = Trimmed(cell(5));
    const std::string name = other.empty() ? id : id + " (" + other + ")";
    shown = {};
    shown.txtObjectID = name;
    shown.txtCatalog = Trimmed(cell(spread::kCatalogCol));
    shown.txtra = cell(7);
    shown.txtdec = cell(8);
    shown.txtdatarec = Trimmed(cell(spread::kRecordIdCol));

    Speak(s_, "Slewing scope to the next object, " + name + ".");
    const SelectedPosition position = ReadSelection({cell(7), cell(8), cell(9), id});
    // A goto traps its own faults: a failing one does not stop the show.
    GotoSelectedObject(s_, position.ra, position.dec, position.epoch);
    Speak(s_, "Target is Locked.");

    if (!TMM_.objectDb)
        return;
    std::vector<std::string> spoken;
    services::Trap(TMM_.ui, kSlideLoadLocation, [&] {
        auto rs =
            TMM_.objectDb->OpenRecordset("Select * From SelvaneTable Where ID = " +
                                             std::to_string(std::atoll(shown.txtdatarec.c_str())),
                                         data::Snapshot);
        if (rs.Eof())
            return;
        if (!Trimmed(rs.Fields("ImageFile").Text()).empty()) {
            shown.imagePath = spread::FindObjectImage(TMM_, rs.Fields("ImageFile").Value());
            shown.imageFov = rs.Fields("ImageFOV").Double();
            spoken.push_back("An image for this object has been found in the database.  It is "
                             "now shown on the screen.");
        }
        if (!rs.Fields("Magnitude").IsNull())
            spoken.push_back("This object has a magnitude of " +
                             vb::CStr(rs.Fields("Magnitude").Double()) + ".");
        spoken.push_back("The object is in the constellation of " +
                         LongConstellationName(rs.Fields("constellation").Value()) + ".");
        if (rs.Fields("Observed").Bool())
            spoken.push_back("This object exists in your personal logbook.");
    });
    for (const std::string& text : spoken)
        Speak(s_, text);
}

void SlideShow::cmdAddLog()
{
    if (!TMM_.logbookDb || CurrentRow < 1)
        return;
    const std::string id = MoreInfoId();
    const std::string catalog = shown.txtCatalog;
    long long key = 0;
    const bool added = services::Trap(TMM_.ui, "frmSlideinp.cmdAddLog_Click", [&] {
        if (TMM_.objectDb) {
            auto rs = TMM_.objectDb->OpenRecordset("Select * From SelvaneTable Where ObjectID ='" +
                                                       vb::QuoteForSql(id) + "' and Catalog = '" +
                                                       vb::QuoteForSql(catalog) + "'",
                                                   data::Snapshot);
            if (!rs.Eof())
                key = rs.Fields("ID").Long();
        }
        logbook::InsertQuickEntry(*TMM_.logbookDb, s_.computerClock,
                                  {.ObjectID = id,
                                   .Catalog = catalog,
                                   .LogType = Stored(log.cboLogtype),
                                   .DataRec = key,
                                   .seen = true,
                                   .LocationObserved = Stored(log.txtLocation),
                                   .EquipmentUsed = Stored(log.txtEquipment),
                                   .OtherEquipment = "Default",
                                   .Transparency = Stored(log.cboTransparency),
                                   .Seeing = Stored(log.cboSee),
                                   .ShortDescription = Stored(log.txtDescription),
                                   .ObservationText = Stored(log.rchNotes),
                                   .Rating = Stored(log.cboRating)});
    });
    if (!added)
        return;
    Speak(s_, "A Logbook entry has been made in your personal logbook.");
    if (TMM_.objectDb) {
        try {
            TMM_.objectDb->Execute("Update SelvaneTable Set Observed = True Where ObjectID = '" +
                                   vb::QuoteForSql(id) + "' and Catalog = '" +
                                   vb::QuoteForSql(catalog) + "'");
            std::string messier;
            if (MessierNumber(id, messier))
                TMM_.objectDb->Execute(
                    "Update SelvaneTable Set Observed = True  Where MessierNumber = " + messier);
            TMM_.objectDb->Execute("Update SelvaneTable Set Observed = True Where ID = " +
                                   std::to_string(key));
        } catch (const std::exception& error) {
            TMM_.ui.ShowMessage(
                std::string("Unable to update the Observed Flag in the database ---> ") +
                    error.what(),
                "System Error", "E");
        }
    }
    TMM_.ui.ShowMessage("A logbook record has been recorded for the object you have selected.",
                        "Added", kInfo);
}

void SlideShow::cmdOn()
{
    ControllerOn = true;
    ReleaseScope(s_.state);
    if (!IsKeypadDriver(TMM_.prefs)) {
        TMM_.ui.ShowMessage("This feature is not supported with the scope you have selected.",
                            "Not Supported", kInfo);
        return;
    }
    cmdOnEnabled = false;
    cmdOffEnabled = true;
    services::Trap(TMM_.ui, kSlideOnLocation, [&] {
        SavedOffset = ReadSite(s_);
        Timer1Enabled = true;
    });
}

KeypadKey SlideShow::Timer1()
{
    Timer1Enabled = false;
    KeypadKey key = KeypadKey::None;
    services::Trap(TMM_.ui, kSlideTimerLocation, [&] { key = KeyOfCode(ReadSite(s_), chkaltmap); });
    if (key != KeypadKey::None) {
        SetBack();
        if (key == KeypadKey::Next)
            cmdNext();
        else if (key == KeypadKey::Previous)
            cmdPrevious();
        else
            cmdAddLog();
    }
    Timer1Enabled = ControllerOn;
    return key;
}

void SlideShow::SetBack()
{
    ReleaseScope(s_.state);
    if (!IsKeypadDriver(TMM_.prefs)) {
        TMM_.ui.ShowMessage("This feature is not supported with the scope you have selected.",
                            "Not Supported", kInfo);
        return;
    }
    services::Trap(TMM_.ui, kSlideSetBackLocation, [&] { WriteOffset(s_, SavedOffset); });
}

void SlideShow::cmdOff()
{
    Timer1Enabled = false;
    ControllerOn = false;
    cmdOnEnabled = true;
    cmdOffEnabled = false;
}

std::string SlideShow::MoreInfoId() const
{
    const auto open = shown.txtObjectID.find(" (");
    return shown.txtObjectID.substr(0, open);
}

} // namespace scope
