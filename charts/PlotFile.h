#pragma once
// Plot files: positions typed by hand into frmStPlot, kept as a list of fixed-column entries,
// saved to and read from a `.plt` text file, and sent to a star chart.
//
// An entry is one text of fixed columns (1-based):
//   1-2 RA hours "00", 4-5 minutes, 7-8 seconds, 9-11 " | ", 12 the declination sign ("+" or
//   "-"), 13-14 degrees, 16-17 minutes, 19-20 seconds, 21-23 " | ", 24 on the name or "n/a".
// Entries are always read by position, so an entry edited by hand with shifted columns gives
// wrong coordinates without a message, and garbage gives zeros.
//
// A plot file holds txtFov, txtObjName, then one entry a line, written as plain lines ended by
// CR LF. It is read back as the runtime's Input # reads fields: CR LF or LF end a line and a
// comma ends a field, so a name with a comma in it comes back as two list entries.

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace services {
class UiPort;
}

namespace charts {

// The types of cboType; the first two characters are the chart's object type code.
extern const std::vector<std::string> PlotTypes;

// The entry of a position typed with whole seconds (row 1).
// Given: rah, ram, ras (hours, minutes, seconds of RA), decd, decm, decs (degrees, minutes,
//   seconds of declination) as typed; name, empty for "n/a".
// Returned: the entry.
// Notes: the declination's sign is taken from the first character of decd ("-00" stays
//   south); the other fields count by size. The position is rounded to whole seconds, and a
//   rounding to 60 carries into the next field (RA wraps at 24 hours).
std::string PlotEntry(const std::string& rah, const std::string& ram, const std::string& ras,
                      const std::string& decd, const std::string& decm, const std::string& decs,
                      const std::string& name);

// The entry of a position typed with decimal minutes "00.0" and no seconds (row 2).
// Given: rah2 (hours), ram2 (decimal minutes), decd2 (degrees), decm2 (decimal minutes), name.
// Returned: the entry, the decimal minutes turned into minutes and rounded seconds.
std::string PlotEntry2(const std::string& rah2, const std::string& ram2, const std::string& decd2,
                       const std::string& decm2, const std::string& name);

// A position read back from an entry by its columns.
struct PlotPosition
{
    double raHours = 0;    // columns 1-2
    double raMinutes = 0;  // columns 4-5, plus the seconds of 7-8 over 60
    double decDegrees = 0; // columns 12-14 with their sign
    double decMinutes = 0; // columns 16-17, plus the seconds of 19-20 over 60; never negative
    bool north = true;     // column 12 is no "-": how the sign of "-00" survives
    std::string name;      // column 24 on, "n/a" when there is none
};
PlotPosition ReadPlotEntry(const std::string& entry);

// The input fields of frmStPlot that have a range check when they are left.
enum class PlotField {
    txtRah,
    txtram,
    txtras,
    txtdecd,
    txtdecm,
    txtdecs,
    txtrah2,
    txtram2,
    txtdecd2,
    txtdecm2,
};

// The check of one field when it is left.
// Given: field, and text, its value as typed.
// Returned: the message for the user ("Enter between 0 and 23", title "Invalid Input"), or
//   empty when the value passes. An empty value passes; a value that is no number is refused
//   with the field's message.
std::string CheckPlotField(PlotField field, const std::string& text);

inline constexpr const char* PlotInvalidTitle = "Invalid Input";

// A plot file as read: the two fields and the entries.
struct PlotFileContents
{
    std::string txtFov;
    std::string txtObjName;
    std::vector<std::string> entries;
};

// The plot file's text: the lines of the file, each ended by CR LF.
std::string WritePlotText(const PlotFileContents& contents);
// Reads a plot file's text by Input # fields; never fails, whatever the bytes.
PlotFileContents ReadPlotText(std::string_view text);

// Reads a plot file.
// Status: throws services::Fault "File not found" (or the system's reason) with an empty
//   location when the file cannot be read.
PlotFileContents ReadPlotFile(const std::filesystem::path& path);
// Writes a plot file, replacing what was there.
// Status: throws services::Fault with the system's reason when it cannot be written.
void WritePlotFile(const std::filesystem::path& path, const PlotFileContents& contents);

// The chart calls that charting makes, the chart engine's DrawChart and PlotDSO.
struct PlotDrawChart
{
    std::string ChartTarget; // "D": the program's own chart, "C": the planetarium
    double raHours = 0;
    double raMinutes = 0; // minutes plus seconds over 60
    double decDegrees = 0;
    double decMinutes = 0;
    int fieldDeg = 0; // txtFov, rounded
    std::string heading;
};
struct PlotDso
{
    PlotPosition position;
    int typeCode = 0;  // the first two characters of cboType
    std::string label; // txtObjName
};
struct PlotChartCalls
{
    std::function<void(const PlotDrawChart&)> DrawChart;
    std::function<void(const PlotDso&)> PlotDSO;
};

// frmStPlot: its controls' state and its buttons. The window's widgets copy their texts in and
// out; everything the buttons do happens here.
class frmStPlot
{
public:
    explicit frmStPlot(services::UiPort& ui) : ui_(ui) {}

    std::string ChartTarget = "D";
    std::string txtFov;
    std::string txtObjName;
    std::vector<std::string> List1;
    int cboType = 0; // the index into PlotTypes
    // Row 1, whole seconds.
    std::string txtRah, txtram, txtras, txtdecd, txtdecm, txtdecs;
    // Row 2, decimal minutes.
    std::string txtrah2, txtram2, txtdecd2, txtdecm2;
    // The entry's name; empty gives "n/a".
    std::string txtName;
    // The field that should have the focus after a message, or nullptr.
    std::string* focus = nullptr;

    std::string& Field(PlotField field);

    // The field is left: its check runs. A refused value is shown, cleared and the focus stays.
    // Returned: true when the value passed.
    bool LeaveField(PlotField field);
    // Command1: adds the entry of the filled row (row 2 when only row 2 holds text) and
    // clears both rows and the name. Returned: true when an entry was added.
    bool Command1_Click();
    // SSCommand2, "Save": asks for the file and writes it. Returned: true when written.
    bool SSCommand2_Click();
    // SSCommand3, "Open": asks for the file and reads it into the fields and the list.
    // Returned: true when read.
    bool SSCommand3_Click();
    // SSCommand4, "Chart": a chart on the first entry, with every entry marked on it. Returned:
    // false when the list is empty or a call failed.
    bool SSCommand4_Click(const PlotChartCalls& chart);
    // A click on entry index of List1 fills row 1 and the name from it.
    void List1_Click(std::size_t index);

private:
    services::UiPort& ui_;
};

} // namespace charts
