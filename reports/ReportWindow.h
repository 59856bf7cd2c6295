#pragma once
// The report window's core (frmUserM): the report number and the values callers hand over, the
// options of the plan and finder sheets, Command9_Click that builds the report of the number on
// a print surface, and the page commands of the preview. The window shell shows the pages of a
// PainterSurface and forwards its buttons here; selvane-cli and the tests drive it directly.

#include "reports/PrintSurface.h"

#include <QImage>

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace astro {
class Clock;
}
namespace logbook {
class LogEntryForm;
class LogSpread;
} // namespace logbook
namespace spread {
struct AppState;
struct ChartContext;
} // namespace spread

namespace reports {

inline constexpr const char* kReportCaption = "Selvane 2003 Reporting";
// The left part of every footer.
inline constexpr const char* kProductLine = "Selvane 2003";
inline constexpr const char* kNoRowText = "Please select an object on the spreadsheet first";
inline constexpr const char* kNoRowTitle = "Invalid Usage";

// What the reports read beyond the report window.
struct ReportContext
{
    spread::AppState& TMM;
    const astro::Clock& clock; // the present date of the footers
    // The current row of the current tab (TMM.CurrTab), from 1.
    int row = 1;
    // The star charts (PrintChart, ChartOpen); none: reports 15 and 16 draw no chart.
    spread::ChartContext* charts = nullptr;
    // The open observation of the entry window (reports 17 to 20, 134); none: no entry is open.
    logbook::LogEntryForm* entry = nullptr;
    // The log spreadsheet (ctlLogSpread) that reports 3 and 30 print; none: the report loads
    // one of its own as the refresh button does.
    logbook::LogSpread* logSpread = nullptr;
    // The text of the window that asked for report 10 (frmDescDet, plain) or 11 (frmViewLog,
    // rich text).
    std::string windowText;
    // The picture of a chart window for reports 90 and 900 to 903; none: no such window.
    std::function<std::optional<QImage>(int number)> capture;
};

// The present date in the regional short date.
std::string PresentDate(const ReportContext& context);
// A stored date (ISO "yyyy-mm-dd", a time may follow) in the regional short date; any other
// text as it stands.
std::string ShortDateText(std::string_view stored, const ReportContext& context);
// The same in the "Long Date" form.
std::string LongDateText(std::string_view stored, const ReportContext& context);
// Footers: "<product>||<date>  Page %d" for the data reports, "<product>||Page %d" for the
// notes and text reports.
std::string DataFooter(const ReportContext& context);
std::string NotesFooter();

// frmSortSelection's answer for report 88: up to three column names, each with its direction
// (an empty name is no key), and an object filter for Like (blank: every object).
struct SortSelection
{
    std::array<std::string, 3> column;
    std::array<bool, 3> descending{};
    std::string like;
};

class ReportWindow
{
public:
    ReportWindow(ReportContext& context, PrintSurface& surface);

    int ReportNumber = 0;
    // Whether a number is one of the report table's.
    static bool Known(int number);
    // Whether a report reads the current row of the current tab (12, 15, 16); without one it
    // says so and prints nothing.
    static bool ReadsCurrentRow(int number);

    // The values callers hand over before the window opens.
    void ObsPlan(std::string name) { obsPlan_ = std::move(name); }
    // The caption of frmPlanObs' sort box; an unknown caption sorts nothing.
    void ObsPlanSort(const std::string& caption);
    void RichTextToPrint(std::string text) { richText_ = std::move(text); }
    void ObjectIDToPrint(std::string id) { objectId_ = std::move(id); }
    void NotesSQL(std::string sql) { notesSql_ = std::move(sql); }
    const std::string& ObsPlanName() const { return obsPlan_; }
    const std::string& ObsPlanOrderBy() const { return obsPlanOrderBy_; }
    const std::string& RichText() const { return richText_; }
    const std::string& ObjectID() const { return objectId_; }
    const std::string& Notes() const { return notesSql_; }

    // Controls.
    bool chkLand = false;
    bool chkLandEnabled = true;
    // The options of reports 15 and 16, shown for those numbers, from the settings ShowCI
    // (optShow: "C" a chart, "I" the image), ShowBW, ShowTelrad, ShowMilky, ShowCircle and
    // repChartFOV.
    bool chartOptionsVisible = false;
    std::string txtFov;
    std::string optShow = "C";
    bool chkBW = false, chkTelrad = false, chkMW = true;
    std::string txtCircle;
    std::string txtFrom, txtTo = "9999";
    // Report 88's order and filter, from frmSortSelection.
    SortSelection sortSelection;
    // The certificates' "Still to observe" box (setting CertMissing), shown for 4, 7, 77 and
    // 133.
    bool chkMissing = false;
    std::string lblmes;

    // Opening: chkLand_Click, then Command9_Click for every number but 90 and 900 to 903,
    // which their callers print with PrintNewChart.
    void Form_Load();
    // Portrait with the box off and disabled for reports 12 to 17 (and the chart options for
    // 15 and 16); other numbers take the box's value.
    void chkLand_Click();
    // Builds the report of ReportNumber on the surface; a fault is reported at
    // frmUserM.<routine> and the pages built so far stay.
    void Command9_Click();
    // Runs a report's body under the fault location frmUserM.<routine>; a document the body
    // started is ended after a fault too, so that the pages built so far stay.
    void Build(const char* routine, const std::function<void()>& body);
    // PrintNewChart: the picture of a chart window under its title.
    void PrintNewChart(int number);

    // The preview's page commands, within 1 to the page count.
    int Page() const { return page_; }
    int Pages() const { return surface_.PageCount(); }
    void Next();     // Command2
    void Previous(); // Command3
    void First();    // Command5
    void Last();     // Command6
    // Zoom in percent; 0 is "fit the window". Steps of 10; a step from 0 starts at 100.
    double Zoom() const { return zoom_; }
    void ZoomIn();
    void ZoomOut();
    void ZoomNormal(); // cmdFit
    // Sbar: "You are on Page <n> of <m>".
    std::string Sbar() const;
    // Command4's pages: blank From is 1, blank or too large To the page count.
    std::pair<int, int> PrintRange() const;

    PrintSurface& Surface() { return surface_; }
    ReportContext& Context() { return context_; }

private:
    ReportContext& context_;
    PrintSurface& surface_;
    std::string obsPlan_, obsPlanOrderBy_, richText_, objectId_, notesSql_;
    int page_ = 1;
    double zoom_ = 0;
};

} // namespace reports
