#pragma once
// The chart commands of the spreadsheet: charts of the current tab's rows, of the selected row,
// of a position, of a constellation, the chart a report prints, and the three-panel finder.
// They feed the chart protocol (charts/ChartCalls.h) through one ChartLink, whose ChartTarget
// each command sets first: "D" the program's own chart, "C" the outside planetarium.
//
// Grid cells are read by meaning in the object grid's layout: observed 3 ("X"), ObjectID 4,
// OtherID 5, Type 6, R.A. 7 ("HH MM SS.S"), Dec. 8 ("sDD MM SS.S"), Epoch 9, Rise 12,
// Transit 13, Set 14, Const 15, Size 16, Mag1 17, Mag2 18, Catalog 24, Image Path 25.
// Every position goes to the engines precessed to J2000 (2000 January 1).

#include "astro/ObservingClock.h"
#include "charts/ChartCalls.h"
#include "charts/PlotFile.h"
#include "spread/AppState.h"

#include <QImage>

#include <array>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace spread {

inline constexpr const char* kPlotAllLocation = "ctlSpread.PlotAllObjects_Click";
inline constexpr const char* kPrintChartLocation = "TMM.PrintChart";
inline constexpr const char* kStarChartLocation = "TMM.CreateStarChartFromDatabase";
inline constexpr const char* kGotoConLocation = "frmGotoCon.cboCon_Click";
inline constexpr const char* kShowChartLocation = "frmStarChart.ShowChart";
inline constexpr const char* kCdcSetDateLocation = "TMM.CDCSetDate";

// The cells of one grid row that the charts read.
struct ChartRow
{
    std::string observed, ObjectID, OtherID, Type, RA, Dec, Epoch, Rise, Transit, Set, Const, Size,
        Mag1, Mag2, Catalog, ImagePath;
};
ChartRow ChartRowOf(const Grid& grid, int row);

// The object's picture: the Image Path cell (25) looked for in the image folder SVImagePath (the
// program folder when blank), in its widefieldimages and oldds folders first; "" when there is
// none.
std::string FindObjectImage(const AppState& TMM, const std::string& imagePath);

// What the chart commands use besides the application state.
struct ChartContext
{
    AppState& TMM;
    charts::ChartLink& link;
    // The row selected in the current tab, from 1.
    int selectedRow = 1;
    // Whether the telescope is enabled (the caption of lx200enable).
    std::function<bool()> TelescopeEnabled;
    // ConnectTelescope: true when the handle is connected afterwards.
    std::function<bool()> ConnectTelescope;
    // Whether a speaking driver (ACP.Scope or ACP.Telescope) is registered.
    std::function<bool()> SpeechRegistered;
    const astro::Clock& computerClock;
};

// ChartOpen: for target "D" with DSO.DAT in the program folder, "Only 1 chart can be opened at
// a time" (title "Invalid Usage", kind I) and true.
bool ChartOpen(ChartContext& c);

// PlotAllObjects_Click: a chart of every row of the current tab, centred on row 1 (on the
// selected row with centredOnSelected: PlotALLCenteredOnSelected_Click). Stops at 50,000
// objects with "Some objects were not plotted because ...".
// Location: ctlSpread.PlotAllObjects_Click
void PlotAllObjects_Click(ChartContext& c, bool centredOnSelected = false);
// ChartSOB(target): sets ChartTarget and charts the selected row alone, centred on it, with the
// selected-row info text (PlotandCenterSelectedObject_Click).
void ChartSOB(ChartContext& c, const std::string& target);
// VSO2 and VSOAll (keys vso and vsoall): the selected row, or every row of the tab, sent to the
// planetarium (ChartTarget "C").
void VSO2(ChartContext& c);
void VSOAll(ChartContext& c);
// mnuSC_Click: a chart centred on the selected row, with no objects.
void mnuSC_Click(ChartContext& c);
// PlotRaanddec: a chart on a position in decimal hours and degrees (a telescope's), without
// precession. All four split fields 0: "Please verify that the ACP control panel is not active
// if you have ACP installed" (title "Error!", kind E).
void PlotRaanddec(ChartContext& c, double raHours, double decDegrees);
// frmGotoCon's click: centres on the constellation of the list entry's first three characters.
// Location: frmGotoCon.cboCon_Click
void CenterOnConst(ChartContext& c, const std::string& entry);

// frmStPlot's Chart button: the plot window's entries charted in the engine of its ChartTarget,
// with the telescope when it is enabled. Returned: false when it stopped.
bool ChartPlotFile(ChartContext& c, charts::frmStPlot& form);

// The two ways of TMM.PrintChart's circles: eyepiece circles override telrads.
struct PrintChartOptions
{
    double field = 15; // degrees
    bool blackAndWhite = false;
    bool telrads = false; // rings of 30, 120 and 240 arc minutes
    bool milkyWay = true;
    int circle = 0;   // an eyepiece circle, arc minutes; 0 for none
    int width = 1200; // pixels
    int height = 1200;
};
// TMM.PrintChart: the chart of the selected row's object drawn without being shown, then
// CloseChart. Returned: the picture; nothing when it stopped (a chart open, no such object, a
// fault).
// Location: TMM.PrintChart
std::optional<charts::ChartImage> PrintChart(ChartContext& c, const PrintChartOptions& options);

// frmStarChart: the three-panel finder of one object, or of the current tab's rows.
struct StarChartPanel
{
    double fieldDeg = 0;
    std::string txtLab; // " Field of View is " + field + " degrees."
    bool active = false;
};
class frmStarChart
{
public:
    // The object's properties, as CreateStarChartFromDatabase loads them.
    double ObjectRA = 0;  // hours, J2000
    double ObjectDec = 0; // degrees, J2000
    std::string ObjectType, ObjectID, Catalog;
    double ObjectSize = 0;
    bool PlotMessier = true;
    bool PlotHersch = true;

    // The panels, 75, 15 and 3 degrees wide at first; panel 0 is active.
    std::array<StarChartPanel, 3> panels;
    // What each panel plots: the object, or the rows handed to it.
    std::vector<charts::PlotObject> objects;
    // "01x", "03x", "07x", "10x", "15x".
    std::vector<std::string> zoomList;
    bool fv = true; // the toolbar's two display options
    bool mi = false;

    // ShowChart: sets the panels up and plots. Location: frmStarChart.ShowChart
    void ShowChart(ChartContext& c);
    // A click in panel i makes it active.
    void PanelClick(int i);
    // A field typed or chosen for the active panel (clamped to 1..180); the label follows.
    void SetActiveField(double fieldDeg);
    int ActivePanel() const;
};

// TMM.CreateStarChartFromDatabase: the finder of one object of the database. No such record:
// "Object is not in the Selvane database" (title "Not Found", kind I) and nothing.
// Location: TMM.CreateStarChartFromDatabase
std::optional<frmStarChart> CreateStarChartFromDatabase(ChartContext& c,
                                                        const std::string& objectID,
                                                        const std::string& catalogue);

// The Virtual Moon Atlas (key tolvmoon): its program, found on the search path.
inline constexpr const char* kVirtualMoonProgram = "virtualmoon";
inline constexpr const char* kVirtualMoonSite = "https://www.ap-i.net/avl/en/start";
// The arguments that open it on the site and the observing moment: "-o",
// "LAT:+41d52m48sLON:+087d37m48sTZ:-6" (whole arc seconds, Plon as is, the time zone negated),
// "-d", "2025-11-08T21:30:00". The moment is PDate and Ptime, or the computer clock under real
// time; nothing when PDate is no date.
std::optional<std::vector<std::string>> VirtualMoonArguments(const data::Preferences& prefs,
                                                             const astro::Clock& computerClock);
// tolvmoon: starts the atlas through start(program, arguments), or, when it is not installed
// (program empty), says "You need to first install the Virtual Moon Atlas.  Click here to go to
// their website" with the atlas's address.
void tolvmoon(
    ChartContext& c, const std::string& program,
    const std::function<void(const std::string&, const std::vector<std::string>&)>& start);

// The outside planetarium's program: the setting planetarium's kind found through CartesPath or
// on the search path; empty when it is not installed (its menu entries are then hidden and
// frmChartType is not offered).
std::filesystem::path PlanetariumProgram(const data::Preferences& prefs);

// The label of a finder panel.
std::string FieldLabel(double fieldDeg);

} // namespace spread
