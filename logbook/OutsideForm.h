#pragma once
// Outside mode without its widgets: the entry window for the telescope, used from the keyboard
// alone. Its fields are those of the log entry form under the outside window's control names,
// and it stores them through the same routines (logbook/LogEntryForm.h), so an entry made
// here is the same rows as one made in the entry window. What differs: no required-field
// checks, every entry is seen, the grid holds only the entries around today, the keys of
// Ctrl+1 ... Ctrl+U, and each list is picked from a popup (OutsidePopupList).
//
// Database errors are reported under "frmOutsideMain.<routine>" and end that routine; what was
// written before stands.

#include "data/SettingsStore.h"
#include "logbook/LogEntryForm.h"

#include <array>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace logbook {

inline constexpr const char* OutsideLocation = "frmOutsideMain";
inline constexpr const char* OutsidePopupLocation = "frmOutsidePopup";
inline constexpr std::array<const char*, 3> OutsideTabCaptions{"Log Entry", "CCD Log",
                                                               "Session Notes"};
inline constexpr const char* OutsideKeysLabel = "A=ADD  U=UPDATE   D=DELETE   C=CLEAR ";
inline constexpr const char* FirstOutsideSetting = "firstoutside";
inline constexpr const char* FirstOutsideTitle = "First Time Users";
inline constexpr const char* FirstOutsideText =
    "Outside logbook entry has been designed as a convenient mouse-free data entry form while "
    "you are observing outside.  As a result, the following screens can be used totally with "
    "the keyboard.  Use the TAB key to move from field to field.  When you are on a command "
    "button, press ENTER to display the options for that field.";
inline constexpr int kOutsideCols = 5;
inline constexpr std::array<const char*, kOutsideCols> OutsideGridCaptions{
    "OBJECT ID", "OBS #", "CATALOG", "DATE", "TIME"};

// A control of the outside window, in the order the focus visits them, and the entry field it
// stands for. txtCatalog holds a CatalogName.
struct OutsideControl
{
    const char* name;
    LogField field;
    int tab; // 0 Log Entry, 1 CCD Log, 2 Session Notes
};
const std::vector<OutsideControl>& OutsideControls();
// A control by its name, without regard to case; nullptr for none.
const OutsideControl* FindOutsideControl(std::string_view name);

// The list buttons: caption, the popup's key and the control the choice goes to.
struct OutsideButton
{
    const char* caption;
    const char* key;
    const char* control;
};
const std::vector<OutsideButton>& OutsideButtons();
// A button by its caption or its popup key, without regard to case; nullptr for none.
const OutsideButton* FindOutsideButton(std::string_view name);

// What a Ctrl key did.
enum class OutsideKey {
    None, // not one of the window's keys, or not on this tab
    Tab,
    Add,
    Update,
    Clear,
    Delete,
    Grid, // the window puts the focus on the grid's first cell
};

class OutsideForm
{
public:
    OutsideForm(LogContext& context, data::SettingsStore& settings);

    // The observation to show on opening; -1 for none.
    long long OBSN = -1;
    int tab = 0;
    // The fields, and txtObs as the entry's number (entry.lblObNo, empty while new).
    LogEntryForm entry;
    // vaSpread1: the entries of yesterday, today and tomorrow, latest first.
    std::vector<std::array<std::string, kOutsideCols>> vaSpread1;
    // Told of each entry stored: "added", "updated" or "deleted" and its number.
    std::function<void(const char* what, long long number)> stored;

    // Opening: the first-time note, the first tab, today's date, the current object, the grid,
    // and the entry OBSN names.
    void Form_Load();
    void LoadGrid();

    // A key pressed with Ctrl held (keyCode as Qt and the old runtime number them: '1', 'A').
    OutsideKey KeyDown(int keyCode);
    // Every field emptied: today's date, the log type kept, the night's session notes shown.
    void Clear();
    // Enter on grid row `row` (from 1): the fields emptied, then that entry shown. False when
    // there is no such row.
    bool GridEnter(int row);

    bool AddEntry();
    bool UpdateEntryToLogbook();
    // Without a number nothing happens; no question is asked.
    bool DeleteEntry();
    void UpdateSelvaneTable();
    void UpdateSessionLog();
    void UpdateCCDLog();

    // A control's text; check boxes read "True" or "False".
    std::string Text(const OutsideControl& control) const;
    void SetText(const OutsideControl& control, const std::string& value);
    // The rules of a control the focus leaves. False when it refused its value (the focus
    // then stays).
    bool LostFocus(const OutsideControl& control);

private:
    LogContext& ctx_;
    data::SettingsStore& settings_;

    bool Trap(const char* routine, const std::function<void()>& body);
    bool DateIsValid(const char* routine);
    bool WriteEntry(bool isNew, const char* routine);
    void FinishWrite(const char* verb, const char* message);
};

// frmOutsidePopup's list for a key ("CATALOG" ... "CAMERA").
struct OutsidePopupList
{
    std::vector<std::string> rows;
    int selected = -1; // the row equal to the field's text, trimmed; -1 for none
};
OutsidePopupList LoadOutsidePopup(LogContext& context, std::string_view key,
                                  std::string_view present);

// The form as selvane-cli prints it: "Field\tValue", a line per control, then txtObs. Dates
// are written YYYY-MM-DD and times HH:MM:SS, notes as their plain text.
std::string OutsideFormText(const OutsideForm& form);
// The grid: its captions, then a line per row.
std::string OutsideGridText(const OutsideForm& form);

} // namespace logbook
