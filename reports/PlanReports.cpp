// The sheets for the telescope. Lengths are twips, fonts points; the at-scope sheet's circles and
// picture frame stand at page coordinates, everything else flows from the top margin. Each
// routine runs under its own trap, so a database fault leaves the pages built so far.

#include "reports/PlanReports.h"

#include "data/ProgramDir.h"
#include "logbook/Equipment.h"
#include "logbook/LogEntryForm.h"
#include "services/Fault.h"
#include "services/Vb.h"
#include "spread/AppState.h"
#include "spread/Grid.h"
#include "spread/PlanFile.h"
#include "spread/StarCharts.h"

#include <QDate>
#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <map>
#include <optional>

namespace reports {

namespace vb = services::vb;

namespace {

constexpr const char* kNotAvailable = "n/a";

// ---------------------------------------------------------------------------------------
// Shared reading

spread::Grid& CurrentGrid(ReportContext& context)
{
    return context.TMM.grids[static_cast<std::size_t>(
        std::clamp(context.TMM.CurrTab, 0, spread::kSpreadTabs - 1))];
}

std::string OrNotAvailable(const std::string& text)
{
    return text.empty() ? std::string(kNotAvailable) : text;
}

// ---------------------------------------------------------------------------------------
// printAtScopeLog

constexpr const char* kSheetTitle = "Selvane 2003 Observation Log Entry";
constexpr const char* kSheetFooter = "This Log Entry Sheet is a modified version of the National "
                                     "Deep Sky Observers (NDSOS) Visual Log Form.  ";
constexpr Margins kSheetMargins{1140, 1440, 200, 500};
constexpr int kUnderscoreLines = 10;
constexpr int kCircleRadius = 2000;
constexpr int kCircleY = 12350;
constexpr int kLowPowerX = 4000;
constexpr int kHighPowerX = 8500;
// The object's picture: a square box right of the description lines.
constexpr int kPictureLeft = kSheetMargins.left + 1440 + 5500;
constexpr int kPictureTop = kSheetMargins.top + 1440 + 3200;
constexpr int kPictureSide = 2880;
// Blank 8 point lines (184 twips each) that take the flow from under the captions (about
// 10350 twips down the page) to below the circles' bottom at 14350, so that the ocular line
// stands at about 14750, under the drawings and above the bottom margin (15340).
constexpr int kOcularGapLines = 24;

void SheetFont(PrintSurface& s, double size, bool bold = false)
{
    FontSpec font;
    font.size = size;
    font.bold = bold;
    s.SetFont(font);
}

// One at-scope sheet on the current page; row nothing prints the blank sheet.
void AtScopeSheet(ReportContext& context, PrintSurface& s, const std::optional<PlanRow>& row)
{
    SheetFont(s, 20, true);
    s.Paragraph("");
    s.Paragraph(kSheetTitle);
    s.Paragraph("");

    SheetFont(s, 12, true);
    s.Paragraph("Object Data :");
    SheetFont(s, 8);
    TableRows objectData{std::vector<std::string>(8)};
    TableRows atlas{std::vector<std::string>(5)};
    if (row) {
        objectData = {{row->ObjectID, row->OtherID, row->RA, row->Dec, row->Mag, row->Size,
                       row->Type, row->Const}};
        atlas = {{row->observed == "X" ? " Yes" : " No", row->Herschel, row->SkyChart,
                  row->Uranometria, row->Millennium}};
    }
    s.Table("^1400|^1500|^1500|^1500|^1000|^1000|^1000|^1000;",
            "ObjectID|Other Name|R.A.|Dec.|Mag.|Size|Type|Const;", objectData);
    s.Table("^1400|^1500|^2000|^1500|^1500;",
            "Observed|Hersch #|Sky Chart #|Uranometria #|Millennium #;", atlas);

    SheetFont(s, 12, true);
    s.Paragraph("Location :");
    SheetFont(s, 8);
    s.Table("+^2000|+^3100|+^3500|+^1300;", "Observer's Name|Address|Observing Site|Elevation;",
            {std::vector<std::string>(4, "\r\n")});

    SheetFont(s, 12, true);
    s.Paragraph("Observation :");
    SheetFont(s, 8);
    s.Table("+^1200|+^1200|+^1000|+^1000|+^1700|+^1600|+^1200|+^1000;",
            "Seeing (1-5)|Transparency (1-7)|Date UT|Time UT|Scope Make|Scope Type|Scope "
            "Size|Focal Length;",
            {std::vector<std::string>(8, "\r\n")});
    s.Table("+^2000|+^2000|+<2000;",
            "Was this Object hard to identify in starfield|Was this the first time you saw this "
            "object|Colors Noted;",
            {{"  YES   NO", " YES  NO", ""}});

    SheetFont(s, 10, true);
    s.Paragraph("Description : ");
    SheetFont(s, 8);
    s.Paragraph(" (use the back for additional space)");
    SheetFont(s, 10);
    for (int i = 0; i < kUnderscoreLines; ++i)
        s.Paragraph(std::string(59, '_'));

    if (row && row->database) {
        const std::string file = spread::FindObjectImage(context.TMM, row->ImagePath);
        const QImage image = file.empty() ? QImage() : QImage(QString::fromStdString(file));
        if (!image.isNull())
            s.DrawPicture(image, kPictureLeft, kPictureTop, kPictureLeft + kPictureSide,
                          kPictureTop + kPictureSide);
    }

    // Deliberate: the captions follow the description lines without the two blank lines above
    // them, so that they stand above the drawing circles rather than across their tops.
    SheetFont(s, 12, true);
    s.Paragraph("              LOW POWER FIELD DRAWING                   HIGH POWER FIELD DRAWING");
    SheetFont(s, 10);
    s.Paragraph("                             include field stars for identification          "
                "                      Look for additional details");
    SheetFont(s, 8);
    s.SetPenWidth(1);
    s.Circle(kLowPowerX, kCircleY, kCircleRadius);
    s.Circle(kHighPowerX, kCircleY, kCircleRadius);
    // Deliberate: the circles are drawn at page coordinates and leave the flow of text where it
    // stands, right under the captions and level with the circles' tops; the ocular line is
    // written below the circles, where the drawings' powers and filters belong, and not across
    // them.
    s.Paragraph(std::string(kOcularGapLines - 1, '\n'));
    s.Paragraph("                       Ocular (Power) __________   Filter _________          "
                "                   Ocular (Power) __________   Filter _________");
    s.SetFooter(kSheetFooter + PresentDate(context));
}

void BeginSheet(ReportWindow& window)
{
    PrintSurface& s = window.Surface();
    s.SetOrientation(Orientation::Portrait);
    s.SetMargins(kSheetMargins);
    s.StartDoc();
    s.SetHeaderFont("Arial", 8);
}

// ---------------------------------------------------------------------------------------
// printplanreport

constexpr const char* kPlanHeader = "\r\nSelvane 2003 Observing Plan Details Report\r\n";
constexpr const char* kNoLogEntries =
    "* the logbook does not contain any entries for this object *";
constexpr const char* kNoOtherNotes = "* there are no notes from other observers *";

struct Labelled
{
    const char* label;
    std::string value;
};

// The seventeen lines of the plan report, in order.
std::vector<Labelled> PlanLines(const PlanRow& r)
{
    return {
        {"OTHER ID", OrNotAvailable(r.OtherID)},
        {"HERSCHELL DESIGNATION", OrNotAvailable(r.Herschel)},
        {"R.A.", r.RA},
        {"DECLINATION", r.Dec},
        {"MAGNITUDE", OrNotAvailable(r.Mag)},
        {"SIZE", OrNotAvailable(r.Size)},
        {"TYPE", r.Type},
        {"CONSTELLATION", r.Const},
        {"SKY CHART #", OrNotAvailable(r.SkyChart)},
        {"URANOMETRIA", OrNotAvailable(r.Uranometria)},
        {"MILLENNIUM #", OrNotAvailable(r.Millennium)},
        {"ALTITUDE", r.Alt},
        {"AZIMUTH", r.Azm},
        {"OBJECT RISES", r.Rise},
        {"OBJECT SETS", r.Set},
        {"OBJECT OPTIMUM", r.Transit},
        {"DESCRIPTION", r.Desc},
    };
}

int TextWidth(const PrintSurface& s, const Margins& m)
{
    return s.PageWidth() - m.left - m.right;
}

spread::PrintChartOptions ChartOptions(const ReportWindow& window, double fieldDeg, int pixels)
{
    spread::PrintChartOptions options;
    options.field = fieldDeg;
    options.blackAndWhite = window.chkBW;
    options.telrads = window.chkTelrad;
    options.milkyWay = window.chkMW;
    options.circle = static_cast<int>(std::lround(vb::Val(window.txtCircle)));
    options.width = pixels;
    options.height = pixels;
    return options;
}

// TMM.PrintChart of the report's row.
std::optional<QImage> ReportChart(ReportContext& context, const spread::PrintChartOptions& options)
{
    spread::ChartContext& charts = *context.charts;
    const int selected = charts.selectedRow;
    charts.selectedRow = context.row;
    const std::optional<charts::ChartImage> chart = spread::PrintChart(charts, options);
    charts.selectedRow = selected;
    if (!chart || chart->image.isNull())
        return std::nullopt;
    return chart->image;
}

void PersonalObservations(ReportContext& context, PrintSurface& s, const PlanRow& row)
{
    spread::AppState& TMM = context.TMM;
    FontSpec heading;
    heading.bold = true;
    s.SetFont(heading);
    s.Paragraph("PERSONAL OBSERVATIONS\r\n");
    s.SetFont(FontSpec{});
    data::Recordset rs = TMM.logbookDb->OpenRecordset(
        "Select * From Logbook Where ObjectId = '" + vb::QuoteForSql(row.ObjectID) +
            "' and Catalog = '" + vb::QuoteForSql(row.Catalog) + "' and LogType = '" +
            vb::QuoteForSql(TMM.prefs.Ltype) + "' Order By DateObserved Desc",
        data::Snapshot);
    if (rs.Eof())
        s.Paragraph(kNoLogEntries);
    for (; !rs.Eof(); rs.MoveNext()) {
        s.Paragraph(ShortDateText(rs.Fields("DateObserved").Text(), context) + " " +
                    rs.Fields("TimeObserved").Value() + "\r\n");
        const std::string text =
            vb::Trim(logbook::RichPlainText(rs.Fields("ObservationText").Text()));
        if (!text.empty())
            s.Paragraph("\r\n" + text + "\r\n");
    }
}

void OtherObservers(ReportContext& context, PrintSurface& s, const PlanRow& row)
{
    FontSpec heading;
    heading.bold = true;
    s.SetFont(heading);
    s.Paragraph("NOTES FROM OTHER OBSERVERS\r\n");
    s.SetFont(FontSpec{});
    data::Recordset rs = context.TMM.logbookDb->OpenRecordset(
        "Select * From UserCatalog Where ObjectId = '" + vb::QuoteForSql(row.ObjectID) +
            "' Order By Author, ObjectId  ",
        data::Snapshot);
    if (rs.Eof())
        s.Paragraph(kNoOtherNotes);
    for (; !rs.Eof(); rs.MoveNext())
        s.Paragraph(rs.Fields("Author").Value() + "  \r\n------------------------------------\r\n" +
                    rs.Fields("Notes").Value() + "\r\n\r\n");
}

// ---------------------------------------------------------------------------------------
// printchartreport

constexpr const char* kFinderTitle = "Selvane 2003 Finder Chart";
constexpr Margins kFinderMargins{1140, 1440, 200, 1000};
constexpr int kNakedSide = 6000;
constexpr int kPanelSide = 4000;
// Puts the Telrad chart under its caption, which the blanks of the caption line place about
// 4400 twips from the margin.
constexpr int kPanelGap = 400;
// Chart pictures at about 170 dots to the inch.
constexpr int kNakedPixels = 700;
constexpr int kPanelPixels = 480;

// ---------------------------------------------------------------------------------------
// PrintPlanObjectsObserved

constexpr const char* kPlanFormat = "+<1440|+<850|+<2000|+<1440|+<2000|+<1440|+<1440|+^650|+<1440;";
constexpr const char* kPlanHeaderRow =
    "ObjectID|Catalog|Date/Time|Location|Equipment|Seeing|Trans|Rating|Notes;";
constexpr const char* kHerschelFormat =
    "+<1440|+<1440|+<850|+<2000|+<1440|+<2000|+<1440|+<1440|+^650|+<1440;";
constexpr const char* kHerschelHeaderRow =
    "ObjectID|Hersch|Catalog|Date/Time|Location|Equipment|Seeing|Trans|Rating|Notes;";

std::filesystem::path PlanPath(const spread::AppState& TMM, const std::string& name)
{
    const std::filesystem::path path(name);
    return path.has_parent_path() ? path : TMM.dir.path / path;
}

// The plan's record ids, each with its Herschel designation ("" when not looked up).
std::map<long long, std::string> PlanIds(spread::AppState& TMM, const spread::PlanRead& plan,
                                         bool shipped)
{
    std::map<long long, std::string> ids;
    for (const spread::PlanEntry& entry : plan.entries) {
        const bool lookUp =
            shipped || plan.format == spread::PlanFormat::Old || entry.PlanRecordID == 0;
        const std::string catalog = vb::UCase(vb::Trim(entry.PlanCatalog));
        if (!lookUp || catalog == "PLANETS" || catalog == "COMET" || catalog == "ASTEROID") {
            if (entry.PlanRecordID != 0)
                ids.emplace(std::llround(entry.PlanRecordID), std::string());
            continue;
        }
        // Deliberate: the older plans store the bare NGC number; an identifier that is no
        // number is looked for as it stands.
        const std::string id =
            vb::IsNumeric(entry.PlanObjectID) ? "NGC " + entry.PlanObjectID : entry.PlanObjectID;
        data::Recordset rs = TMM.objectDb->OpenRecordset(
            "Select ID, Hobject From SelvaneTable Where ObjectID = '" + vb::QuoteForSql(id) +
                "' and Catalog = '" + vb::QuoteForSql(entry.PlanCatalog) + "'",
            data::Snapshot);
        if (!rs.Eof())
            ids[rs.Fields("ID").Long()] = vb::Trim(rs.Fields("Hobject").Text());
        else if (entry.PlanRecordID != 0)
            ids.emplace(std::llround(entry.PlanRecordID), std::string());
    }
    return ids;
}

// ---------------------------------------------------------------------------------------
// QuickPrintout

constexpr Margins kQuickMargins{500, 500, 500, 1000};
// The grid's widths count characters of its font; printed in Arial 8, a digit is 1139/2048 of
// an em wide (the face's advance), 89 twips, and each column has 8 pixels (120 twips) of room
// as on the screen.
constexpr double kQuickCharTwips = 8.0 * kTwipsPerPoint * 1139.0 / 2048.0;
constexpr double kQuickColumnPadding = 120;
constexpr double kQuickFont = 8;
constexpr double kQuickMinFont = 6;

} // namespace

PlanRow PlanRowOf(const spread::Grid& grid, int row)
{
    const auto cell = [&](int col) { return vb::Trim(grid.Text(row, col)); };
    PlanRow r;
    r.observed = cell(3);
    r.ObjectID = cell(4);
    r.OtherID = cell(5);
    r.Type = cell(6);
    r.RA = cell(7);
    r.Dec = cell(8);
    r.Alt = cell(10);
    r.Azm = cell(11);
    r.Rise = cell(12);
    r.Transit = cell(13);
    r.Set = cell(14);
    r.Const = cell(15);
    r.Size = cell(16);
    r.Mag = cell(17);
    r.Catalog = cell(24);
    r.ImagePath = cell(25);
    r.Herschel = cell(26);
    r.RecordID = cell(27);
    r.SkyChart = cell(28);
    r.Uranometria = cell(29);
    r.Millennium = cell(30);
    r.Desc = cell(31);
    const std::string catalog = vb::UCase(r.Catalog);
    r.database = catalog != "PLANETS" && catalog != "COMET" && catalog != "ASTEROID";
    return r;
}

std::vector<EyepieceField> EyepieceFields(const data::ProgramDir& dir)
{
    std::vector<EyepieceField> fields;
    std::vector<std::string> scopes, eyepieces;
    try {
        scopes = logbook::ReadEquipmentFile(dir, logbook::EquipmentKind::Scope);
        eyepieces = logbook::ReadEquipmentFile(dir, logbook::EquipmentKind::Eyepiece);
    } catch (const services::Fault&) {
        return fields;
    }
    if (scopes.empty())
        return fields;
    const double scopeFocal =
        vb::Val(vb::Mid(scopes.front(), 39)) * vb::Val(vb::Mid(scopes.front(), 34, 4));
    if (scopeFocal <= 0)
        return fields;
    for (const std::string& line : eyepieces) {
        if (fields.size() == 4)
            break;
        const double focal = vb::Val(vb::Mid(line, 34, 4));
        const double apparent = vb::Val(vb::Mid(line, 38, 3));
        if (focal <= 0 || apparent <= 0)
            continue;
        const double power = scopeFocal / focal;
        fields.push_back({vb::Trim(vb::Mid(line, 1, 33)), power, apparent / power});
    }
    return fields;
}

void DrawEyepieceCircles(QImage& chart, double fieldDeg, const std::vector<EyepieceField>& fields)
{
    if (chart.isNull() || fieldDeg <= 0 || fields.empty())
        return;
    if (chart.format() != QImage::Format_RGB32 && chart.format() != QImage::Format_ARGB32)
        chart = chart.convertToFormat(QImage::Format_RGB32);
    const double pixelsPerDeg = std::min(chart.width(), chart.height()) / fieldDeg;
    const QPointF centre(chart.width() / 2.0, chart.height() / 2.0);
    QPainter painter(&chart);
    painter.setRenderHint(QPainter::Antialiasing);
    QFont font("Arial");
    font.setPixelSize(std::max(10, chart.height() / 40));
    painter.setFont(font);
    for (const EyepieceField& f : fields) {
        const double radius = f.trueFieldDeg / 2 * pixelsPerDeg;
        charts::DrawFinderCircle(painter, centre, radius, charts::FinderCircleColour(false));
        painter.drawText(centre + QPointF(radius * 0.71 + 2, -radius * 0.71 - 2),
                         QString::fromStdString(vb::Format(f.power, "0") + "x"));
    }
}

void printAtScopeLog(ReportWindow& window, bool blank)
{
    ReportContext& context = window.Context();
    window.Build("printAtScopeLog", [&] {
        std::optional<PlanRow> row;
        if (!blank)
            row = PlanRowOf(CurrentGrid(context), context.row);
        BeginSheet(window);
        AtScopeSheet(context, window.Surface(), row);
    });
}

void printbatchscopelog(ReportWindow& window)
{
    ReportContext& context = window.Context();
    window.Build("printbatchscopelog", [&] {
        const spread::Grid& grid = CurrentGrid(context);
        BeginSheet(window);
        for (int r = 1; r <= grid.MaxRows(); ++r) {
            if (r > 1)
                window.Surface().NewPage();
            AtScopeSheet(context, window.Surface(), PlanRowOf(grid, r));
            if (context.TMM.ui.Pump())
                break;
        }
    });
}

void printplanreport(ReportWindow& window)
{
    ReportContext& context = window.Context();
    PrintSurface& s = window.Surface();
    window.Build("printplanreport", [&] {
        const PlanRow row = PlanRowOf(CurrentGrid(context), context.row);
        const Margins margins;
        s.SetMargins(margins);
        s.StartDoc();
        s.SetHeaderFont("Arial", 10);
        s.SetHeader(kPlanHeader);
        s.SetFooter(DataFooter(context));

        FontSpec title;
        title.size = 12;
        title.bold = true;
        s.SetFont(title);
        s.Paragraph("OBJECT DATA FOR " + row.ObjectID);
        FontSpec courier;
        courier.name = "Courier New";
        s.SetFont(courier);
        for (const Labelled& line : PlanLines(row))
            s.Table("2700|3000;", "", {{line.label, line.value}});

        if (row.database) {
            spread::AppState& TMM = context.TMM;
            std::optional<QImage> picture;
            const std::string file = spread::FindObjectImage(TMM, row.ImagePath);
            if (window.optShow == "I" && !file.empty()) {
                const QImage image(QString::fromStdString(file));
                if (!image.isNull())
                    picture = image;
            }
            if (!picture && context.charts)
                picture = ReportChart(context, ChartOptions(window, vb::Val(window.txtFov), 1200));
            if (picture) {
                // A square of five inches at most fits below the seventeen lines, so the data
                // and the picture share the first page.
                const int side = std::min(TextWidth(s, margins), 5 * kTwipsPerInch);
                s.Paragraph("");
                s.Pictures({*picture}, side, side, 0);
            }
            PersonalObservations(context, s, row);
            OtherObservers(context, s, row);
        }
    });
}

void printchartreport(ReportWindow& window)
{
    ReportContext& context = window.Context();
    PrintSurface& s = window.Surface();
    spread::AppState& TMM = context.TMM;
    std::error_code ignored;
    if (context.charts && std::filesystem::exists(context.charts->link.Own().WorkFile(), ignored)) {
        TMM.ui.ShowMessage("Please close your star chart first before running this report",
                           "Invalid Usage", "I");
        return;
    }
    window.Build("printchartreport", [&] {
        const PlanRow row = PlanRowOf(CurrentGrid(context), context.row);
        s.SetOrientation(Orientation::Portrait);
        s.SetMargins(kFinderMargins);
        s.StartDoc();
        s.SetFooter(DataFooter(context));
        FontSpec title;
        title.size = 20;
        title.bold = true;
        s.SetFont(title);
        s.Paragraph(kFinderTitle);
        FontSpec data;
        data.size = 14;
        s.SetFont(data);
        s.Paragraph("FINDER CHART FOR : " + row.ObjectID);
        // The object's data as the plan report labels it, two to a line so that the three
        // charts still fit on the page.
        const std::vector<Labelled> lines = PlanLines(row);
        TableRows body;
        for (const int i : {0, 2, 6, 3, 4, 5, 7, 8, 9, 10}) {
            const Labelled& line = lines[static_cast<std::size_t>(i)];
            if (body.empty() || body.back().size() == 4)
                body.emplace_back();
            body.back().push_back(line.label);
            body.back().push_back(line.value);
        }
        s.Table("2700|2750|2700|2750;", "", body);

        if (!context.charts || !row.database)
            return;
        // An eyepiece circle overrides the telrads: said by the first chart, once.
        spread::PrintChartOptions options = ChartOptions(window, 75, kNakedPixels);
        const std::optional<QImage> naked = ReportChart(context, options);
        options.telrads = options.telrads && options.circle <= 0;
        options.field = 15;
        options.width = options.height = kPanelPixels;
        std::optional<QImage> eyepiece = ReportChart(context, options);
        options.field = 3;
        const std::optional<QImage> telrad = ReportChart(context, options);
        if (eyepiece && TMM.prefs.repEyepieces)
            DrawEyepieceCircles(*eyepiece, 15, EyepieceFields(TMM.dir));
        FontSpec caption;
        caption.bold = true;
        s.SetFont(caption);
        s.Paragraph("Naked Eye Chart");
        if (naked)
            s.Pictures({*naked}, kNakedSide, kNakedSide, 0);
        s.Paragraph(
            "Eyepiece Chart                                                   Telrad Chart");
        std::vector<QImage> panels;
        for (const std::optional<QImage>& panel : {eyepiece, telrad})
            if (panel)
                panels.push_back(*panel);
        if (!panels.empty())
            s.Pictures(panels, kPanelSide, kPanelSide, kPanelGap);
    });
}

void PrintPlanObjectsObserved(ReportWindow& window)
{
    ReportContext& context = window.Context();
    PrintSurface& s = window.Surface();
    spread::AppState& TMM = context.TMM;
    const std::string name = window.ObsPlanName();
    std::string bytes;
    try {
        if (vb::Trim(name).empty())
            throw services::Fault(spread::FileNotFoundText, "");
        bytes = spread::ReadPlanBytes(PlanPath(TMM, name));
    } catch (const services::Fault&) {
        TMM.ui.ShowMessage("The plan file " + name + " could not be read", "Invalid Plan", "E");
        return;
    }
    window.Build("PrintPlanObjectsObserved", [&] {
        const spread::PlanRead plan = spread::ReadPlanText(bytes);
        const bool herschel = spread::IsShippedPlan(PlanPath(TMM, name).string());
        const std::map<long long, std::string> ids = PlanIds(TMM, plan, herschel);

        s.SetOrientation(Orientation::Landscape);
        s.StartDoc();
        s.SetFooter(NotesFooter());
        s.SetFont(FontSpec{});
        s.Paragraph("Observing Plan : " + name +
                    "            The following objects have been observed in this plan");

        std::string sql = "Select Distinct ObjectID, Catalog, DateObserved, TimeObserved, "
                          "LocationObserved, EquipmentUsed, Seeing, Transparency, Rating, "
                          "ShortDescription, DataRec from Logbook ";
        sql += window.ObsPlanOrderBy();
        TableRows body;
        data::Recordset rs = TMM.logbookDb->OpenRecordset(sql, data::Snapshot);
        for (; !rs.Eof(); rs.MoveNext()) {
            const auto found = ids.find(rs.Fields("DataRec").Long());
            if (found == ids.end())
                continue;
            std::vector<std::string> cells{rs.Fields("ObjectID").Value()};
            if (herschel)
                cells.push_back(found->second);
            cells.push_back(rs.Fields("Catalog").Value());
            cells.push_back(ShortDateText(rs.Fields("DateObserved").Text(), context) + " " +
                            rs.Fields("TimeObserved").Value());
            for (const char* field : {"LocationObserved", "EquipmentUsed", "Seeing", "Transparency",
                                      "Rating", "ShortDescription"})
                cells.push_back(vb::Trim(rs.Fields(field).Text()));
            body.push_back(std::move(cells));
        }
        s.Table(herschel ? kHerschelFormat : kPlanFormat,
                herschel ? kHerschelHeaderRow : kPlanHeaderRow, body);
    });
}

void QuickPrintout(const spread::Grid& grid, PrintSurface& surface, const ReportContext& context)
{
    // The columns shown and holding a text in some row shown: a column blank all down the list
    // (rise and set switched off, no pictures) would only squeeze the others on paper.
    const auto shownRows = [&grid](const auto& visit) {
        for (int r = 1; r <= grid.MaxRows(); ++r)
            if (!grid.RowHidden(r))
                visit(r);
    };
    std::vector<int> columns;
    std::vector<double> widths;
    double total = 0;
    for (int col = 1; col <= spread::kGridCols; ++col) {
        if (grid.ColWidth(col) <= 0)
            continue;
        bool filled = false;
        shownRows([&](int r) { filled = filled || !vb::Trim(grid.Text(r, col)).empty(); });
        if (!filled)
            continue;
        columns.push_back(col);
        widths.push_back(grid.ColWidth(col) * kQuickCharTwips + kQuickColumnPadding);
        total += widths.back();
    }
    surface.SetOrientation(Orientation::Landscape);
    surface.SetMargins(kQuickMargins);
    const double room = surface.PageWidth() - kQuickMargins.left - kQuickMargins.right;
    const double scale = total > room ? room / total : 1.0;
    // The print shrinks with the columns, down to 6 points, so that the texts keep to their
    // cells.
    const double fontSize = std::max(kQuickMinFont, std::round(kQuickFont * scale * 2) / 2);

    std::string format, header;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const int col = columns[i];
        const char* align = grid.TypeHAlign(col) == spread::HAlign::Right    ? ">"
                            : grid.TypeHAlign(col) == spread::HAlign::Center ? "^"
                                                                             : "<";
        format += (i ? "|" : "") + std::string(align) +
                  std::to_string(static_cast<int>(std::floor(widths[i] * scale)));
        header += (i ? "|" : "") + grid.Header(col);
    }
    format += ';';
    header += ';';
    TableRows body;
    shownRows([&](int r) {
        std::vector<std::string> cells;
        cells.reserve(columns.size());
        for (const int col : columns)
            cells.emplace_back(grid.Text(r, col));
        body.push_back(std::move(cells));
    });

    surface.StartDoc();
    surface.SetHeaderFont("Arial", 8);
    surface.SetHeader(grid.Tag());
    surface.SetFooter(DataFooter(context));
    FontSpec font;
    font.size = fontSize;
    surface.SetFont(font);
    surface.Table(format, header, body);
    surface.EndDoc();
}

} // namespace reports
