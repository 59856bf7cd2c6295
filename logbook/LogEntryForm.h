#pragma once
// The log entry window without its widgets: the entry fields, the number in lblObNo, the dirty
// flag, the mode and the grid query, and every routine of frmLogEntryNew under its own name.
// The window (logbook/ui/frmLogEntryNew) shows these values and calls the routines; selvane-cli
// and the tests drive the same routines headless.
//
// Writes go to the logbook in a fixed order, the Logbook row first; the Observed flag of the
// object database follows and may lag behind, never run ahead (logbook/ObservedFlag.h).
// Database errors are reported under "frmLogEntryNew.<routine>" and end that routine; what was
// written before stands.

#include "astro/ObservingClock.h"
#include "data/CurrentObject.h"
#include "data/Database.h"
#include "data/ObjectFilter.h"
#include "data/Preferences.h"
#include "data/ProgramDir.h"
#include "services/LineText.h"
#include "services/UiPort.h"
#include "services/Vb.h"

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace logbook {

inline constexpr const char* FormLocation = "frmLogEntryNew";
inline constexpr const char* ShowAllLogTypes = "Show ALL";
inline constexpr const char* DefaultLogType = "Default";
inline constexpr const char* NoImagesAttached = "No Images Attached To Observation";
inline constexpr const char* RichTextHelp =
    "  ctrl-B=BOLD | ctrl-U=UNDERLINE | ctrl-L=Left Justify | ctrl-N=Center Text | "
    "ctrl-R=Right Justify | alt C=Font Color";
inline constexpr std::array<const char*, 7> TabCaptions{
    "Object List", "Session Notes", "Observing Notes",    "CCD Log",
    "Images",      "Chart",         "Other Amateur Notes"};
inline constexpr int kLogCols = 12;
inline constexpr std::array<const char*, kLogCols> LogGridCaptions{
    "Object ID", "Obs #",    "Catalog",           "Date",
    "Time",      "Location", "Transparency",      "Seeing",
    "Equipment", "Rating",   "Short Description", "Log Type"};
// The row highlight of the grid click, as red, green, blue.
inline constexpr std::array<int, 3> HighlightRgb{0xc0, 0xff, 0xff};
// The colour of the "comment" tool, as red, green, blue.
inline constexpr std::array<int, 3> CommentRgb{0x00, 0x80, 0x40};

// The three fixed lists, in their order, stored as shown.
const std::vector<std::string>& TransparencyList();
const std::vector<std::string>& SeeingList();
const std::vector<std::string>& RatingList();
// The Antoniadi numeral ("I" to "V") of a text of the seeing list; empty for any other text.
std::string AntoniadiNumeral(std::string_view seeing);

// The entry fields by control. SeenFlag stands for the pair Option1 (seen) and Option2.
enum class LogField {
    txtObjectID,
    cboCatalog,
    SeenFlag,
    mskDate,
    mskTime,
    txtLocation,
    cboTransparency,
    cboSee,
    txtEquipment,
    List1,
    cboRating,
    txtDescription,
    rchNotes,
    cboLogtype,
    txtimgname,
    txtExpTime,
    txtmode,
    txtscope,
    txtCCD,
    txtFocDis,
    txtFov,
    txtCrate,
    chkdframe,
    chkFfield,
    txtRating,
    rchNotesccd,
    RichTextBox1,
    txtFaintestStar,
    txtSkyQuality,
};

enum class FieldKind {
    Text,
    Rich,  // HTML, or plain text
    Check, // True or False
    Lines, // the other-equipment list
};

struct LogFieldName
{
    LogField field;
    const char* control;
    const char* column; // the table column it is stored in
    FieldKind kind;
};
// Every entry field, in the order of the Logbook table, then CCDLog, then the session.
const std::vector<LogFieldName>& LogFieldNames();
// A field by its control or its column, without regard to case.
std::optional<LogField> FindLogField(std::string_view name);
const LogFieldName& NameOf(LogField field);

struct LogFields
{
    std::string txtObjectID, txtOtherID, cboCatalog;
    bool Option1 = true; // seen; Option2 (attempted, not seen) is its opposite
    std::string mskDate, mskTime, txtLocation, cboTransparency, cboSee, txtEquipment;
    std::vector<std::string> List1;
    std::string cboRating, txtDescription, rchNotes, cboLogtype;
    std::string txtimgname, txtExpTime, txtmode, txtscope, txtCCD, txtFocDis, txtFov, txtCrate;
    bool chkdframe = false, chkFfield = false;
    std::string txtRating, rchNotesccd;
    std::string RichTextBox1;
    std::string txtFaintestStar, txtSkyQuality;

    // The text of a Text or Rich field; nullptr for the others.
    std::string* Text(LogField field);
    const std::string* Text(LogField field) const;
    bool* Check(LogField field); // chkdframe, chkFfield, SeenFlag (Option1)
};

// A rich box holds HTML or plain text; blank when its plain text is blank after trimming.
bool RichIsBlank(std::string_view text);
std::string RichPlainText(std::string_view text);
// The text kept for a rich box: HTML as it stands, plain text turned into HTML.
std::string RichToHtml(std::string_view text);

// What the form reaches beyond itself.
struct LogContext
{
    services::UiPort& ui;
    data::Database* logbook = nullptr;
    data::Database* objectDb = nullptr;
    data::Preferences& prefs; // Ltype, tLogTime, UseCd (the object database is read-only)
    data::ProgramDir dir;     // exp.dat
    data::CurrentObject& current;
    const astro::Clock& clock; // today and the present time
};

class LogEntryForm
{
public:
    explicit LogEntryForm(LogContext& context);

    LogFields f;
    std::string lblObNo;   // empty: the entry is not stored yet
    long long dataRec = 0; // the stored entry's object key (DataRec)
    bool dirty = false;
    std::string mode = "N"; // "R": opened for one object from a spreadsheet row
    std::string currentQuery;
    std::string lblTime;
    // Search and filter controls of the Object List tab.
    std::string cboSlog = ShowAllLogTypes;
    std::string txtSearch;
    bool chkFilterSeen = false;
    bool chkClear = false;

    // The lists the boxes offer.
    std::vector<std::string> slogItems, logTypeItems, equipmentItems, locationItems;
    std::vector<std::string> catalogItems, expModeItems, scopeItems; // scopeItems: txtscope, txtCCD
    // grdLog: one row of the 12 captions' cells per observation.
    std::vector<std::array<std::string, kLogCols>> grdLog;
    std::string caption; // the main window's caption after a load
    int highlightedRow = 0;
    // The images of the entry: cbologimages' lines and the picture shown.
    std::vector<std::string> cbologimages;
    std::string imagePath, imageDescription;

    // Opening: the lists, cleared fields, today's date, the grid and the chosen observation.
    void Form_Load();
    void LoadLogTypeCombo();
    void LoadEquipmentCombo();
    // Returns false when the grid's query failed (the grid is then empty).
    bool LoadObservations();
    void cmdShowAll();
    void cmdFind();
    // cmdClear: all fields emptied, today's date, the current object's id.
    void cmdClear();

    // The commands; each returns true when it reached its success message.
    bool cmdAdd_Click();
    bool cmdUpdate_Click();
    bool AddEntryToLogbook();
    bool UpdateEntryInLogbook();
    void UpdateCCDLog();
    void UpdateSessionLog();
    void DeleteSession();
    void UpdateSelvaneTable();
    bool DeleteObservation();
    void SaveFields();
    // Returns false when LastLogEntry is empty (nothing happens then).
    bool cmdLastEntry_Click();
    std::string GetLastEntry(const std::string& field);
    void GetLogRecord();
    void CheckDirtyFlag();
    // A click on data row `row` (from 1) of grdLog.
    void GridClick(int row);
    // The grid row holding observation n, from 1; 0 when none.
    int RowOf(long long n) const;
    void vsElastic_Click();

    // Field entry: the focus arriving (its recall), a value typed, the focus leaving (its
    // rules). LostFocus returns false when the field refused its value and keeps the focus.
    void GotFocus(LogField field);
    void SetValue(LogField field, const std::string& value);
    void SetCheck(LogField field, bool value);
    bool LostFocus(LogField field);

    // Images. AttachImage asks for the file and its description through the port.
    void AttachImage();
    void LoadImages();
    void ChooseImage(int index);
    void DeleteImage();

    // The chart window on the object (vsElastic_Click); set by the window when charts exist.
    std::function<void(const std::string& objectId, const std::string& catalogId)> openChart;

    long long Number() const; // lblObNo's value, 0 when empty
    std::string CatalogId() const;
    // The catalogue box's text for a stored catalogue id.
    std::string CatalogText(std::string_view catalogId) const;
    const data::FilterLookups& Catalogs() const { return catalogs_; }

    // The window whose routines these are, in fault locations ("frmLogEntryNew").
    std::string formName = FormLocation;
    // The catalogue box holds a CatalogName (as the outside window's does) rather than a
    // catalogue description; a text that is no CatalogName is still taken as a description.
    bool catalogByName = false;

    // The storage steps the entry windows share; a fault is reported under formName.routine.
    void LoadCatalogs();
    // The Logbook row of the form, after the Messier shorthand: a new row (its object key
    // looked up into dataRec) or the row numbered lblObNo. False when nothing was written.
    bool WriteLogbookRow(bool adding, const char* routine);
    // Entry n with its ImageLog and CCDLog rows removed; the object's Observed flag is
    // cleared first when no other entry names it. False on a fault.
    bool RemoveEntry(long long n, const char* routine);
    services::vb::Regional Regional() const;

private:
    LogContext& ctx_;
    data::FilterLookups catalogs_;

    std::string Location(const char* routine) const;
    bool Trap(const char* routine, const std::function<void()>& body);
    std::string Today() const;
    std::string Now() const;
    bool MessierShorthand();
    long long ObjectKey();
    void WriteEntryColumns(data::Recordset& rs, bool adding);
    void LoadSessionRow();
    std::string StoredDate() const; // mskDate as YYYY-MM-DD, or as typed when no date
    std::string StoredTime() const;
    std::string DateCell(std::string_view stored) const;
    // A stored date (YYYY-MM-DD) in the regional short form; any other text as it stands.
    std::string ShownDate(std::string_view stored) const;
    // mskDate as the #...# literal the session tables are looked up by.
    std::string SessionDateLiteral() const;
};

// The Date cell of a log grid for a stored date (YYYY-MM-DD): under a month-first short-date
// pattern the grid's month-first form, under "d.MM.yy", "d/M/yyyy" and "dd. M. yy" the stored
// value, under any other pattern the regional short date. A text that is no date stays as it is.
std::string LogDateCell(std::string_view stored, const services::vb::Regional& regional);

// The command line writes texts of the forms with services::EscapedForLine.
using services::EscapedForLine;

// The form's values as selvane-cli prints them: "Field\tValue", then one line per field.
std::string FormText(const LogEntryForm& form);

} // namespace logbook
