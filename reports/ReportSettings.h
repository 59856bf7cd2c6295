#pragma once
// The column reports' settings: the forms of frmRSU (the database report, 31 columns, .Rpt
// files) and frmrsu2 (the log report, 27 columns, .Rpl files) without their widgets, and the
// files that keep them.
//
// A settings file is a sequential file of quoted comma-separated records: first the line
// spacing text, the font name and the font size, then per column, from index 0 upward, the
// check box value (1 on, 0 off) and the width text in inches. The fields are read one after
// the other as Input # reads them, so a record's place alone says which column it belongs to.

#include <string>
#include <string_view>
#include <vector>

namespace spread {
struct AppState;
}

namespace reports {

enum class SettingsKind {
    Database, // frmRSU, .Rpt
    Log,      // frmrsu2, .Rpl
};

inline constexpr int kDatabaseReportColumns = 31;
inline constexpr int kLogReportColumns = 27;
inline constexpr const char* kDefaultRpt = "Default.Rpt";
inline constexpr const char* kDefaultRpl = "default2.Rpl";
// frmrsu2's notes box is its column 3, "Observing Notes".
inline constexpr int kNotesColumn = 3;
inline constexpr const char* kInputPastEnd = "Input past end of file";
inline constexpr const char* kTypeMismatch = "Type mismatch";

// The captions of a form's columns, by index from 0.
const std::vector<std::string>& ReportColumnCaptions(SettingsKind kind);
int ColumnCount(SettingsKind kind);
// The items of the line spacing box; the first character of the text is the spacing.
const std::vector<std::string>& LineSpacingItems();

struct ReportColumn
{
    bool on = false;   // Check1(i)
    std::string width; // tWid(i) / txtWidth(i), inches as typed
    bool operator==(const ReportColumn&) const = default;
};

struct ReportForm
{
    SettingsKind kind = SettingsKind::Database;
    std::string cboLine;
    std::string fontName;              // DSFont
    double fontSize = 10;              // DSSize
    std::vector<ReportColumn> columns; // ColumnCount(kind) of them
    bool operator==(const ReportForm&) const = default;

    // "<name>, <size>" as lblfont shows it.
    std::string lblfont() const;
    // The line spacing in percent: the first character's value times 100 (0 when it is no
    // digit).
    int LineSpacingPercent() const;
    // A column's width in twips: the width text's value (VB Val) times 1440.
    int WidthTwips(int index) const;
};

// The form as the window is designed, before any file is read.
ReportForm DesignForm(SettingsKind kind);

// Reads a settings file's text into form. Throws services::Fault with kInputPastEnd when the
// text holds fewer fields than the form has, kTypeMismatch when a number field holds no
// number; form is then left as it was.
void ReadReportForm(std::string_view text, ReportForm& form);
// The file's text for a form: CR LF after each record.
std::string WriteReportForm(const ReportForm& form);

// The default file in the program folder, and the setting that names the file last applied.
std::string DefaultFileName(SettingsKind kind);
const char* SettingKey(SettingsKind kind); // "defReport" / "defReportL"

} // namespace reports
