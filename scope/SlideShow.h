#pragma once
// The telescope slide show (frmslideinp without its widgets): the mount walks through the rows
// of the current spreadsheet tab, one object after another, speaks about each one, shows its
// image and logs it on the spot, from the window or from the keypad of the mount.
//
// The keypad: a mount on the driver LXP.Telescope, or any indi:// driver when the setting keypad
// is "True", carries key presses in its UTC offset. The observer types a small number as the
// mount's offset at the keypad; the show polls it once a second (Timer1) and puts the saved
// offset back. The keypad reads the offset as the device's OFFSET with its sign flipped, written
// "+01#" (an OFFSET of "-1" is the code "+01#"). Each keypad use drops the link of Scope, uses
// the mount under the connect-per-operation rule of TelescopeStuff, and leaves Scope empty.
//
// Rows count from 1; CurrentRow is 0 before the first. The show does not wrap around. Grid
// columns read: 4 ObjectID, 5 OtherID, 7 R.A., 8 Dec., 9 Epoch, 24 Catalog, 27 RecordID.

#include "logbook/LogEntryForm.h"
#include "scope/TelescopeStuff.h"
#include "spread/AppState.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace scope {

inline constexpr const char* kSlideLoadLocation = "frmSlideinp.Form_Load";
inline constexpr const char* kSlideOnLocation = "frmSlideinp.cmdOn_Click";
inline constexpr const char* kSlideSetBackLocation = "frmSlideinp.SetBack";
inline constexpr const char* kSlideTimerLocation = "frmSlideinp.Timer1_Timer";

inline constexpr const char* kKeypadDriver = "LXP.Telescope";
inline constexpr int kSlideTimerMs = 1000;

// The lists of the quick log.
const std::vector<std::string>& SlideSeeingList();
const std::vector<std::string>& SlideTransparencyList();

// Whether telescopetype counts as the keypad mount: LXP.Telescope, or an indi:// driver with
// keypad on.
bool IsKeypadDriver(const data::Preferences& prefs);

// The keypad's code of a device OFFSET: the hours with the sign flipped, "+HH#". "-1" and
// "-1.00" give "+01#", "0.00" gives "+00#", "5" gives "-05#".
std::string KeypadCodeOfOffset(const std::string& offsetHours);
// The OFFSET that writes a code back: "+01#" gives "-1", "+00#" gives "0", "-05#" gives "5".
std::string OffsetOfKeypadCode(const std::string& code);

// The keypad's two operations, each under the port wrap (the port is GetComPort()). ReadSite
// gives its third string, the code of the mount's offset. Both throw TelescopeError; the
// caller traps it at its location.
std::string ReadSite(ScopeContext& s);
void WriteOffset(ScopeContext& s, const std::string& code);

// frmSlide's Start The Slide Show: true when the show may open; otherwise the message of a tab
// that is not a spreadsheet ("No Spreadsheet Selected") or holds no rows ("No Objects
// Selected") was shown.
bool StartSlideShow(spread::AppState& TMM);

// What a keypad tick did.
enum class KeypadKey {
    None,
    Next,
    Previous,
    Log,
};
// The key of a code: "+01#", "+02#", "+03#", or with chkaltmap "+04#", "+05#", "+06#".
KeypadKey KeyOfCode(const std::string& code, bool chkaltmap);

// The object shown.
struct SlideObject
{
    std::string txtObjectID; // identifier, and " (" + other + ")" when there is one
    std::string txtCatalog;
    std::string txtra; // the grid's "HH MM SS.S"
    std::string txtdec;
    std::string txtdatarec; // the record's ID
    std::string imagePath;  // the picture found, or ""
    double imageFov = 0;    // its ImageFOV, arc minutes
};

class SlideShow
{
public:
    SlideShow(spread::AppState& TMM, ScopeContext& s) : TMM_(TMM), s_(s) {}

    // Form_Load: the lists, cbogoto, the keypad check (a mount showing "+01#" to "+03#" turns
    // chkaltmap on), then the first row.
    // Location: frmSlideinp.Form_Load
    void Load();

    void cmdNext();
    void cmdPrevious();
    // A choice of cbogoto, entry from 1; 0 (empty text) does nothing.
    void cbogoto(int entry);
    // The quick log of the object shown, with the log fields as they stand.
    void cmdAddLog();
    // Location: frmSlideinp.cmdOn_Click
    void cmdOn();
    void cmdOff();
    // One tick of Timer1: stops the timer, reads the keypad and acts on a key after SetBack,
    // starts the timer again.
    // Returned: the key acted on.
    // Location: frmSlideinp.Timer1_Timer
    KeypadKey Timer1();
    // Puts the saved offset back.
    // Location: frmSlideinp.SetBack
    void SetBack();
    // The identifier cmdMoreInfo shows: txtObjectID up to the first " (".
    std::string MoreInfoId() const;

    // frmslideinp's state.
    int CurrentRow = 0;
    int CurrTab = 0;
    bool ControllerOn = false;
    std::string SavedOffset;
    bool chkaltmap = false;
    bool cmdOnEnabled = true;
    bool cmdOffEnabled = true;
    bool Timer1Enabled = false;

    SlideObject shown;
    std::string statusBar;
    // The quick log's fields: cboSee, cboTransparency, cboRating, cbologtype, txtLocation,
    // txtEquipment, txtShort (txtDescription), and the notes (rchNotes).
    logbook::LogFields log;

    // The lists.
    std::vector<std::string> locations; // ObservingSites.ProfileName
    std::vector<std::string> equipment; // Equipment.EQUIPMENT
    std::vector<std::string> gotoList;  // cbogoto: column 4 of each row

    int MaxRows() const;

private:
    void ShowRow(); // steps 2 to 9 of Next for CurrentRow
    const spread::Grid& Grid() const;

    spread::AppState& TMM_;
    ScopeContext& s_;
};

} // namespace scope
