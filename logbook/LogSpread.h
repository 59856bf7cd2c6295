#pragma once
// The logbook as a spreadsheet (ctlLogSpread) without its widgets: every observation in one row
// of 28 cells with its object's data and its CCD data, the list of the observations that have
// notes and the list of their images, the multi-level sort of frmLogSort, and the saved column
// widths.
//
// The rows come from one query on the logbook, which reaches SelvaneTable through the attached
// object database. A cell whose column the query lacks is empty; the picture cells (Image,
// Notes) and the check cells (Dark Frame, Flat Field) hold "1" or "0". Faults are reported under
// "ctlLogSpread.<routine>" and end that routine; nothing here writes to the logbook.

#include "logbook/LogEntryForm.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace logbook {

inline constexpr const char* LogSpreadLocation = "ctlLogSpread";
inline constexpr const char* LogSortLocation = "frmLogSort";
inline constexpr const char* ShowAllTypes = "Show All Types";
// The text the log type box holds until it is first filled.
inline constexpr const char* LogTypeDesignText = "Combo1";
inline constexpr const char* SqlFailedText =
    "The SQL statement failed....Please verify that the statement was entered correctly:";
inline constexpr const char* ColumnWidthsFileName = "dbCol2.dat";

inline constexpr int kLogSpreadCols = 28;
inline constexpr std::array<const char*, kLogSpreadCols> LogSpreadCaptions{"Object ID",
                                                                           "Obs #",
                                                                           "Image",
                                                                           "Notes",
                                                                           "Type",
                                                                           "Const",
                                                                           "Catalog",
                                                                           "Date",
                                                                           "Time",
                                                                           "Location",
                                                                           "Transparency",
                                                                           "Seeing",
                                                                           "Equipment",
                                                                           "Rating",
                                                                           "Short Description",
                                                                           "Log Type",
                                                                           "CCD Image Name",
                                                                           "CCD Exp Time",
                                                                           "CCD Exposure Mode",
                                                                           "CCD Telescope",
                                                                           "CCD Camera",
                                                                           "CCD Focal Dist",
                                                                           "CCD Field Of View",
                                                                           "CCD Cool Rate",
                                                                           "Dark Frame",
                                                                           "Flat Field",
                                                                           "CCD Picture Rating",
                                                                           "Seen Flag"};
// Column numbers, from 1, of the cells that are not plain field texts.
inline constexpr int kSpreadNumberCol = 2;
inline constexpr int kSpreadImageCol = 3;
inline constexpr int kSpreadNotesCol = 4;
inline constexpr int kSpreadDateCol = 8;
inline constexpr int kSpreadDarkFrameCol = 25;
inline constexpr int kSpreadFlatFieldCol = 26;
inline constexpr int kSpreadSeenCol = 28;

// The notes page's list (ListView2) and the images page's list (ListView1).
inline constexpr std::array<const char*, 5> NotesListCaptions{"Object", "OtherID", "Date",
                                                              "Catalog", "ObservationText"};
inline constexpr std::array<const char*, 3> ImageListCaptions{"Object", "Image Desc", "Image Path"};

// The query of the log type box: the whole logbook joined with its objects and CCD rows, and
// for a log type other than ShowAllTypes only the entries of that type.
std::string LogSpreadSql(const std::string& logType);
// BuildListView1's query: the images of the logbook, or of one log type.
std::string ImageListSql(const std::string& logType);

struct LogSpreadRow
{
    std::array<std::string, kLogSpreadCols> cells; // column n in cells[n - 1]
    std::string storedDate; // DateObserved as stored, the key of a sort by date
};

struct NotesItem
{
    std::string object, otherId, date, catalog; // date as the Date cell shows it
    long long number = 0;                       // the item's tag
};

struct ImageItem
{
    std::string object, catalog, description, path;
};

// frmLogSort: three boxes of keys, each with its direction. A key's text ends in its column
// number; an empty box is no key.
struct LogSortBox
{
    std::string text;
    bool descending = false;
};
using LogSortBoxes = std::array<LogSortBox, 3>;

// The 24 keys the boxes offer, in their order.
const std::vector<std::string>& LogSortKeys();
// The column a box's text names (its last two characters); 0 for an empty or unknown text.
int SortKeyColumn(std::string_view text);
// The key of a column, or of a key's name ("DateObserved", any case); empty when none.
std::string SortKeyFor(std::string_view columnOrName);

// Sorts the rows by up to three keys in box order; empty boxes are skipped, and with none the
// rows stay as they are. Column 2 compares as numbers, column 8 as dates (a text that is no date
// before every date), the others as texts without regard to case; rows that compare equal keep
// their order.
void AdvancedSort(std::vector<LogSpreadRow>& rows, const LogSortBoxes& boxes);
// tolsorta and tolsortd: the rows by one column (1 to 28) under the same comparisons.
void SortColumn(std::vector<LogSpreadRow>& rows, int col, bool descending);

class LogSpread
{
public:
    explicit LogSpread(LogContext& context);

    std::string cboLogTypeFilter = LogTypeDesignText;
    std::vector<std::string> logTypeItems; // ShowAllTypes first, then PerLogType's types
    std::string sql;                       // the held query
    // The shared query override: a search leaves its statement here for the next load.
    std::string queryOverride;

    std::vector<LogSpreadRow> grdObjectLog;
    std::vector<NotesItem> ListView2;
    std::vector<ImageItem> ListView1;
    std::string RichTextBox1; // the notes of the chosen ListView2 item
    std::string lblNOM;       // "<n> Objects" after a load

    // Column widths in characters, column 0 (the row headers) to 28.
    std::array<double, kLogSpreadCols + 1> widths{};

    // Init: the log type box, the held query and the stored column widths.
    void Init();
    void LoadLogType();
    // The held query from the log type box; its design text first becomes ShowAllTypes.
    void SQLFromEntry();
    // Runs the held query (or the override, which is then emptied) into the grid and the notes
    // list. Returns false when the query failed: the grid is empty and lblNOM as it was.
    bool LoadTheGrid();
    // The refresh button: the query from the box, the grid, the images list.
    bool cmdRefresh_Click();
    void BuildListView1();
    // A click on notes item `index` (from 0): its notes into RichTextBox1, empty when none.
    void ListView2_Click(int index);
    // A double click or the right button on data row `row` (from 1), or on notes item
    // `index`: the object, catalogue and number become the current object's, for the entry
    // window in mode "R".
    void TakeRow(int row);
    void TakeNotesItem(int index);
    void AdvancedSort(const LogSortBoxes& boxes);

    // The widths of columns 1 to 27 from dbCol2.dat (each plus 1 under autosizespread when
    // not 0); a missing file keeps the defaults.
    void SetDBColumns();
    // Writes the widths of columns 0 to 27 to dbCol2.dat, five to a record.
    void SaveTheColumns();

private:
    LogContext& ctx_;
    bool Trap(const char* routine, const std::function<void()>& body);
};

} // namespace logbook
