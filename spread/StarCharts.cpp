#include "spread/StarCharts.h"

#include "astro/Position.h"
#include "charts/Projection.h"
#include "data/ObjectFilter.h"
#include "services/Fault.h"
#include "services/Vb.h"
#include "spread/LoadTheGrid.h"
#include "spread/PortFaults.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>

namespace spread {

namespace vb = services::vb;

namespace {

constexpr const char* kChartBusyText = "Creating Star Chart, please wait.";
constexpr const char* kChartBusyKind = "3";

// Cells 7 and 8 as a position: "HH MM SS.S" and "sDD MM SS.S"; a "-00" puts its sign on the
// minutes.
struct CellPosition
{
    astro::Hms ra;
    astro::Dms dec;
    double epoch = 2000;
};

using vb::Mid;

CellPosition ReadCells(const ChartRow& row)
{
    CellPosition p;
    p.ra = {vb::Val(Mid(row.RA, 1, 2)), vb::Val(Mid(row.RA, 4, 2)), vb::Val(Mid(row.RA, 7, 8))};
    p.dec = {vb::Val(Mid(row.Dec, 1, 3)), vb::Val(Mid(row.Dec, 5, 2)), vb::Val(Mid(row.Dec, 8, 8))};
    if (row.Dec.starts_with('-') && p.dec.degrees == 0) {
        if (p.dec.minutes > 0)
            p.dec.minutes = -p.dec.minutes;
        else if (p.dec.seconds > 0)
            p.dec.seconds = -p.dec.seconds;
    }
    const std::string epoch = vb::Trim(Mid(row.Epoch, 1, 4));
    if (!epoch.empty())
        p.epoch = vb::Val(epoch);
    return p;
}

// A position split as the engines take it: hours and minutes, degrees and minutes, the sign of
// a southern declination under one degree on the minutes.
struct Split
{
    double raHours = 0, raMinutes = 0, decDegrees = 0, decMinutes = 0;
    std::uint8_t north = 1;
};

double Signed(double degrees, double minutes, double seconds)
{
    const double value = std::fabs(degrees) + std::fabs(minutes) / 60 + std::fabs(seconds) / 3600;
    return degrees < 0 || minutes < 0 || seconds < 0 ? -value : value;
}

Split SplitDecimal(double raHours, double decDegrees)
{
    Split s;
    raHours = std::fmod(std::fmod(raHours, 24.0) + 24.0, 24.0);
    s.raHours = std::floor(raHours);
    s.raMinutes = (raHours - s.raHours) * 60;
    s.decDegrees = std::trunc(decDegrees);
    s.decMinutes = (decDegrees - s.decDegrees) * 60;
    if (s.decDegrees != 0)
        s.decMinutes = std::fabs(s.decMinutes);
    s.decDegrees += 0.0; // no negative zero on the wire
    s.north = decDegrees >= 0 ? 1 : 0;
    return s;
}

Split SplitPosition(const astro::Hms& ra, const astro::Dms& dec)
{
    return SplitDecimal(ra.hours + ra.minutes / 60 + ra.seconds / 3600,
                        Signed(dec.degrees, dec.minutes, dec.seconds));
}

// A decimal position as sexagesimal triples, the sign on the first non-zero field.
astro::Hms HmsOf(double hours)
{
    const double h = std::floor(hours);
    const double m = std::floor((hours - h) * 60);
    return {h, m, ((hours - h) * 60 - m) * 60};
}

astro::Dms DmsOf(double degrees)
{
    const double a = std::fabs(degrees);
    const double d = std::floor(a);
    const double m = std::floor((a - d) * 60);
    astro::Dms dms{d, m, ((a - d) * 60 - m) * 60};
    if (degrees < 0) {
        double& first = d != 0 ? dms.degrees : m != 0 ? dms.minutes : dms.seconds;
        first = -first;
    }
    return dms;
}

// The row's position in J2000.
Split PrecessedRow(const ChartRow& row, const astro::PrecessionPlan& plan, astro::FaultSink& faults)
{
    const CellPosition p = ReadCells(row);
    const astro::PrecessedPosition j2000 = astro::Precession(plan, p.ra, p.dec, p.epoch, faults);
    return SplitPosition(j2000.ra, j2000.dec);
}

std::string Upper(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

bool SolarSystemCatalog(const std::string& catalog)
{
    const std::string c = Upper(vb::Trim(catalog));
    return c == "SOLAR" || c == "COMET" || c == "PLANETS" || c == "ASTEROID";
}

std::uint8_t RowTypeCode(const ChartRow& row)
{
    const std::string catalog = Upper(vb::Trim(row.Catalog));
    if (catalog == "COMET" || catalog == "ASTEROID")
        return charts::ChartTypeCode(catalog);
    if (catalog == "SOLAR" || catalog == "PLANETS")
        return charts::ChartTypeCode(Upper(vb::Trim(row.ObjectID)));
    return charts::ChartTypeCode(vb::Trim(row.Type));
}

std::int16_t SizeOf(const std::string& size)
{
    const std::string trimmed = vb::Trim(size);
    if (trimmed.empty() || !vb::IsNumeric(trimmed))
        return 1;
    return static_cast<std::int16_t>(std::clamp(std::round(vb::Val(trimmed)), -32768.0, 32767.0));
}

// What the charts need of the databases, read once per command.
class ChartLookups
{
public:
    explicit ChartLookups(AppState& TMM) : TMM_(TMM)
    {
        if (TMM.objectDb)
            lookups_ = data::LoadFilterLookups(*TMM.objectDb);
    }

    std::string CatalogName(const std::string& catalog) const
    {
        return data::GetCatalogName(lookups_, catalog);
    }

    // The extra identifier of a row's label: its Messier number, else its other name.
    // Deliberate: an object without a Messier number is labelled by its other name ("M 42" of
    // the catalogue "2000"), not left to its ObjectID.
    std::string ExtraId(const ChartRow& row)
    {
        const std::string other = vb::Trim(row.OtherID);
        if (SolarSystemCatalog(row.Catalog) || vb::Trim(row.Catalog) == "2000" || !TMM_.objectDb)
            return other;
        // Deliberate: the Messier numbers are read once per chart rather than with a query per
        // row; 50,000 queries took seconds, and the answers are the same.
        if (!messier_) {
            messier_.emplace();
            data::Recordset rs = TMM_.objectDb->OpenRecordset(
                "Select MessierNumber, Catalog, ObjectID From SelvaneTable Where MessierNumber > 0",
                data::Snapshot);
            for (; !rs.Eof(); rs.MoveNext())
                messier_->emplace(Key(rs.Fields("Catalog").Value(), rs.Fields("ObjectID").Value()),
                                  std::to_string(rs.Fields("MessierNumber").Long()));
        }
        const auto found = messier_->find(Key(vb::Trim(row.Catalog), vb::Trim(row.ObjectID)));
        return found != messier_->end() ? found->second : other;
    }

    // The observers' notes of UserCatalog, when chartnotes is on, read once per chart in the
    // order Author, ObjectId.
    std::string Notes(const std::string& objectId)
    {
        if (!TMM_.prefs.chartnotes || !TMM_.logbookDb)
            return {};
        if (!notes_) {
            notes_.emplace();
            data::Recordset rs = TMM_.logbookDb->OpenRecordset(
                "Select * From UserCatalog Order By Author, ObjectId  ", data::Snapshot);
            for (; !rs.Eof(); rs.MoveNext()) {
                std::string& text = (*notes_)[Upper(rs.Fields("ObjectId").Value())];
                if (text.empty())
                    text = "\\O\\L\\UOTHER LOGBOOK INFO\\L\\U";
                text +=
                    "\\O" + rs.Fields("Author").Value() + " Notes\\D " + rs.Fields("Notes").Value();
            }
        }
        const auto found = notes_->find(Upper(objectId));
        return found != notes_->end() ? found->second : std::string();
    }

    std::string ImageFile(const std::string& imagePath) const
    {
        return FindObjectImage(TMM_, imagePath);
    }

private:
    // The database compares identifiers without regard to case.
    static std::string Key(const std::string& catalog, const std::string& id)
    {
        return Upper(catalog) + '\t' + Upper(id);
    }

    AppState& TMM_;
    data::FilterLookups lookups_;
    std::optional<std::map<std::string, std::string>> messier_;
    std::optional<std::map<std::string, std::string>> notes_;
};

std::string Field(const char* label, const std::string& value)
{
    return std::string("\\O") + label + "\\D " + value;
}

// The info text of a row of a whole-tab chart; selected: the variant of the selected row.
std::string InfoText(const ChartRow& row, ChartLookups& lookups, bool selected)
{
    const std::string id = vb::Trim(row.ObjectID);
    std::string text = "\\O\\L\\UOBJECT ID   :\\D " + id + "\\L\\U";
    text += Field("CATALOG     :", lookups.CatalogName(vb::Trim(row.Catalog)));
    text += Field("OTHER ID    :", vb::Trim(row.OtherID));
    text += Field("OBJECT TYPE :", vb::Trim(row.Type));
    if (selected) {
        const CellPosition p = ReadCells(row);
        text += Field("RA HOURS    :", vb::Format(p.ra.hours, "00"));
        text += Field("RA MINUTES  :", vb::Format(p.ra.minutes + p.ra.seconds / 60, "00.0"));
        text += Field("DECL DEGREES:", vb::Trim(Mid(row.Dec, 1, 3)));
        text += Field("DECL MINUTE :",
                      vb::Format(std::fabs(p.dec.minutes) + std::fabs(p.dec.seconds) / 60, "00.0"));
        if (SolarSystemCatalog(row.Catalog))
            text += Field("RISES       :", vb::Trim(row.Rise));
    } else {
        text += Field("RA          :", vb::Trim(row.RA));
        text += Field("DECLINATION :", vb::Trim(row.Dec));
    }
    text += Field("OBJECT SIZE :", vb::Trim(row.Size));
    text += Field("CONST.      :", vb::Trim(row.Const));
    text += Field("MAGNITUDE 1 :", vb::Trim(row.Mag1));
    text += Field("MAGNITUDE 2 :", vb::Trim(row.Mag2));
    text += Field("OBSERVED    :", vb::Trim(row.observed) == "X" ? "Yes" : "No");
    return text + lookups.Notes(id);
}

bool IsTarget(const ChartContext& c, const char* target)
{
    return c.link.ChartTarget == target;
}

// The port of CDC_DrawChart: Comport, or 10 / 11 when a speaking driver is registered.
std::int16_t ChartPort(ChartContext& c)
{
    if (c.SpeechRegistered && c.SpeechRegistered())
        return c.TMM.prefs.Dsound ? 10 : 11;
    return static_cast<std::int16_t>(vb::Val(c.TMM.prefs.Comport));
}

// TMM.CDCSetDate: the site and the computer clock, to the minute.
void CDCSetDate(ChartContext& c)
{
    const data::Preferences& p = c.TMM.prefs;
    charts::PlanetariumSite site;
    site.Plat = p.Plat;
    site.Plon = p.PLon;
    site.PTz = p.PTz;
    site.PStd = p.PStd;
    c.link.CDC_SetObservatory(site);
    astro::LocalDateTime now = c.computerClock.Now();
    now.second = 0;
    c.link.CDC_SetDate(now);
}

charts::DrawChartCall BaseDrawCall(ChartContext& c, bool withTelescope = true)
{
    const data::Preferences& p = c.TMM.prefs;
    charts::DrawChartCall call;
    call.field = static_cast<std::int16_t>(std::clamp(std::round(p.chartfield), 1.0, 180.0));
    call.heading = p.TCaption;
    call.guideStarPath = p.HGCPath;
    call.superTychoPath = p.STychoPath;
    if (withTelescope && c.TelescopeEnabled && c.TelescopeEnabled()) {
        call.telescope = c.ConnectTelescope && c.ConnectTelescope();
        call.driver = p.telescopetype;
        call.delay = static_cast<std::uint8_t>(std::clamp(p.ScopeDelay1, 0, 255));
    }
    return call;
}

// Opens a chart on a centre in the engine of ChartTarget.
void OpenChart(ChartContext& c, const Split& centre, std::optional<std::int16_t> field = {})
{
    if (IsTarget(c, "C")) {
        CDCSetDate(c);
        const charts::DrawChartCall base = BaseDrawCall(c, false);
        charts::CdcDrawChartCall call;
        call.raHours = centre.raHours;
        call.raMinutes = centre.raMinutes;
        call.decDegrees = centre.decDegrees;
        call.decMinutes = centre.decMinutes;
        call.field = field.value_or(base.field);
        call.port = ChartPort(c);
        call.delay = static_cast<std::int16_t>(c.TMM.prefs.LX200Delay);
        call.heading = base.heading;
        call.guideStarPath = base.guideStarPath;
        call.superTychoPath = base.superTychoPath;
        call.driver = c.TelescopeEnabled && c.TelescopeEnabled() ? c.TMM.prefs.telescopetype : "";
        c.link.CDC_DrawChart(call);
        return;
    }
    charts::DrawChartCall call = BaseDrawCall(c);
    call.raHours = centre.raHours;
    call.raMinutes = centre.raMinutes;
    call.decDegrees = centre.decDegrees;
    call.decMinutes = centre.decMinutes;
    if (field)
        call.field = *field;
    c.link.DrawChart(call);
}

void Plot(ChartContext& c, const charts::PlotDsoCall& call)
{
    if (IsTarget(c, "C"))
        c.link.CDC_PlotDSO(call);
    else
        c.link.PlotDSO(call);
}

// Sends a planetarium chart; its refusal is the user's message.
void EndChart(ChartContext& c)
{
    if (!IsTarget(c, "C"))
        return;
    try {
        c.link.CDC_EndChart();
    } catch (const charts::PlanetariumError& e) {
        c.TMM.ui.ShowMessage(e.what(), "Star Chart", "E");
    }
}

charts::PlotDsoCall RowCall(const ChartRow& row, const Split& at, ChartLookups& lookups,
                            bool selected)
{
    charts::PlotDsoCall call;
    call.raHours = at.raHours;
    call.raMinutes = at.raMinutes;
    call.decDegrees = at.decDegrees;
    call.decMinutes = at.decMinutes;
    call.north = at.north;
    call.type = RowTypeCode(row);
    call.size = SizeOf(row.Size);
    call.objectId = vb::Trim(row.ObjectID);
    call.extraId = lookups.ExtraId(row);
    call.info = InfoText(row, lookups, selected);
    call.imageFile = lookups.ImageFile(row.ImagePath);
    call.observed = vb::Trim(row.observed) == "X" ? 1 : 0;
    return call;
}

Grid& CurrentGrid(ChartContext& c)
{
    return c.TMM.grids[static_cast<std::size_t>(std::clamp(c.TMM.CurrTab, 0, kSpreadTabs - 1))];
}

// Runs a chart command under the busy message and its fault trap.
void RunChart(ChartContext& c, const char* location, const std::function<void()>& body)
{
    c.TMM.ui.BusyMessage(kChartBusyKind, kChartBusyText);
    services::Trap(c.TMM.ui, location, [&] {
        try {
            body();
        } catch (const charts::PlanetariumError& e) {
            c.TMM.ui.ShowMessage(e.what(), "Star Chart", "E");
        }
    });
    c.TMM.ui.EndBusy();
}

} // namespace

std::string FindObjectImage(const AppState& TMM, const std::string& imagePath)
{
    const std::string name = vb::Trim(imagePath);
    if (name.empty())
        return {};
    const std::filesystem::path base =
        TMM.prefs.SVImagePath.empty() ? TMM.dir.path : std::filesystem::path(TMM.prefs.SVImagePath);
    for (const char* folder : {"widefieldimages", "oldds", ""}) {
        std::error_code ignored;
        const std::filesystem::path file = base / folder / name;
        if (std::filesystem::is_regular_file(file, ignored))
            return file.string();
    }
    return {};
}

ChartRow ChartRowOf(const Grid& grid, int row)
{
    const auto cell = [&](int col) { return std::string(grid.Text(row, col)); };
    return {cell(3),  cell(4),  cell(5),  cell(6),  cell(7),  cell(8),  cell(9),  cell(12),
            cell(13), cell(14), cell(15), cell(16), cell(17), cell(18), cell(24), cell(25)};
}

bool ChartOpen(ChartContext& c)
{
    std::error_code ignored;
    if (IsTarget(c, "D") && std::filesystem::exists(c.link.Own().WorkFile(), ignored)) {
        c.TMM.ui.ShowMessage("Only 1 chart can be opened at a time", "Invalid Usage", "I");
        return true;
    }
    return false;
}

void PlotAllObjects_Click(ChartContext& c, bool centredOnSelected)
{
    if (ChartOpen(c))
        return;
    RunChart(c, kPlotAllLocation, [&] {
        Grid& grid = CurrentGrid(c);
        PortFaults faults(c.TMM.ui);
        const astro::PrecessionPlan plan = astro::MakePrecessionPlan("2000", "1", "1");
        const int centreRow = centredOnSelected ? c.selectedRow : 1;
        OpenChart(c, PrecessedRow(ChartRowOf(grid, centreRow), plan, faults));
        ChartLookups lookups(c.TMM);
        int plotted = 0;
        for (int r = 1; r <= grid.MaxRows(); ++r) {
            if (plotted == charts::kMaxPlottedObjects) {
                c.TMM.ui.ShowMessage("Some objects were not plotted because you have reached "
                                     "the maximum of 50000 plotted objects at one time",
                                     "Plotting Limitation", "I");
                break;
            }
            const ChartRow row = ChartRowOf(grid, r);
            Plot(c, RowCall(row, PrecessedRow(row, plan, faults), lookups, false));
            ++plotted;
        }
        EndChart(c);
    });
}

void ChartSOB(ChartContext& c, const std::string& target)
{
    c.link.ChartTarget = target;
    if (ChartOpen(c))
        return;
    RunChart(c, kPlotAllLocation, [&] {
        PortFaults faults(c.TMM.ui);
        const astro::PrecessionPlan plan = astro::MakePrecessionPlan("2000", "1", "1");
        const ChartRow row = ChartRowOf(CurrentGrid(c), c.selectedRow);
        const Split at = PrecessedRow(row, plan, faults);
        OpenChart(c, at);
        ChartLookups lookups(c.TMM);
        Plot(c, RowCall(row, at, lookups, true));
        EndChart(c);
    });
}

void VSO2(ChartContext& c)
{
    ChartSOB(c, "C");
}

void VSOAll(ChartContext& c)
{
    c.link.ChartTarget = "C";
    PlotAllObjects_Click(c);
}

void mnuSC_Click(ChartContext& c)
{
    if (ChartOpen(c))
        return;
    RunChart(c, kPlotAllLocation, [&] {
        PortFaults faults(c.TMM.ui);
        const astro::PrecessionPlan plan = astro::MakePrecessionPlan("2000", "1", "1");
        OpenChart(c, PrecessedRow(ChartRowOf(CurrentGrid(c), c.selectedRow), plan, faults));
        EndChart(c);
    });
}

void PlotRaanddec(ChartContext& c, double raHours, double decDegrees)
{
    if (ChartOpen(c))
        return;
    const Split at = SplitDecimal(raHours, decDegrees);
    if (at.raHours == 0 && at.raMinutes == 0 && at.decDegrees == 0 && at.decMinutes == 0) {
        c.TMM.ui.ShowMessage(
            "Please verify that the ACP control panel is not active if you have ACP installed",
            "Error!", "E");
        return;
    }
    RunChart(c, kPlotAllLocation, [&] {
        OpenChart(c, at);
        EndChart(c);
    });
}

void CenterOnConst(ChartContext& c, const std::string& entry)
{
    if (ChartOpen(c))
        return;
    services::Trap(c.TMM.ui, kGotoConLocation, [&] {
        charts::CenterOnConstCall call;
        call.constellation = entry.substr(0, std::min<std::size_t>(3, entry.size()));
        if (IsTarget(c, "C")) {
            CDCSetDate(c);
            call.chart = BaseDrawCall(c, false);
            c.link.CDC_CenterOnConst(call);
            EndChart(c);
        } else {
            call.chart = BaseDrawCall(c);
            c.link.CenterOnConst(call);
        }
    });
}

bool ChartPlotFile(ChartContext& c, charts::frmStPlot& form)
{
    c.link.ChartTarget = form.ChartTarget;
    if (form.List1.empty() || ChartOpen(c))
        return false;
    // Deliberate: the centre's sign of "-00" is the first entry's, since the chart call has no
    // north flag and "-00 30" would otherwise be drawn north of the equator.
    const bool south = !charts::ReadPlotEntry(form.List1.front()).north;
    bool charted = false;
    RunChart(c, kPlotAllLocation, [&] {
        charts::PlotChartCalls calls;
        calls.DrawChart = [&](const charts::PlotDrawChart& draw) {
            Split centre{draw.raHours, draw.raMinutes, draw.decDegrees, draw.decMinutes};
            if (south && centre.decDegrees == 0)
                centre.decMinutes = -std::fabs(centre.decMinutes);
            const data::Preferences& p = c.TMM.prefs;
            const std::string heading = p.TCaption;
            c.TMM.prefs.TCaption = draw.heading;
            OpenChart(c, centre, static_cast<std::int16_t>(std::clamp(draw.fieldDeg, 1, 180)));
            c.TMM.prefs.TCaption = heading;
        };
        calls.PlotDSO = [&](const charts::PlotDso& dso) {
            charts::PlotDsoCall call;
            call.raHours = dso.position.raHours;
            call.raMinutes = dso.position.raMinutes;
            call.decDegrees = dso.position.decDegrees;
            call.decMinutes = dso.position.decMinutes;
            call.north = dso.position.north ? 1 : 0;
            call.type = static_cast<std::uint8_t>(std::clamp(dso.typeCode, 0, 255));
            call.objectId = dso.position.name;
            call.extraId = dso.label;
            call.info = "\\O\\L\\UOBJECT ID   :\\D " + dso.position.name + "\\L\\U";
            Plot(c, call);
        };
        charted = form.SSCommand4_Click(calls);
        if (charted)
            EndChart(c);
    });
    return charted;
}

std::optional<charts::ChartImage> PrintChart(ChartContext& c, const PrintChartOptions& options)
{
    c.link.ChartTarget = "D";
    std::error_code ignored;
    if (std::filesystem::exists(c.link.Own().WorkFile(), ignored)) {
        c.TMM.ui.ShowMessage("A chart is already open", "Invalid Usage", "I");
        return std::nullopt;
    }
    bool telrads = options.telrads;
    if (telrads && options.circle > 0) {
        c.TMM.ui.ShowMessage("Eyepiece circles override telrads.  As a result, no telrads will "
                             "show on your chart",
                             "Overriden", "I");
        telrads = false;
    }
    std::optional<charts::ChartImage> picture;
    services::Trap(c.TMM.ui, kPrintChartLocation, [&] {
        const ChartRow row = ChartRowOf(CurrentGrid(c), c.selectedRow);
        data::Recordset rs = c.TMM.objectDb->OpenRecordset(
            "Select * from SelvaneTable Where ObjectId = '" +
                vb::QuoteForSql(vb::Trim(row.ObjectID)) + "' and Catalog = '" +
                vb::QuoteForSql(vb::Trim(row.Catalog)) + "'",
            data::Snapshot);
        if (rs.Eof())
            return;
        PortFaults faults(c.TMM.ui);
        const astro::Hms ra =
            HmsOf(rs.Fields("RAhours").Double() + rs.Fields("RAminutes").Double() / 60);
        const astro::Dms dec = DmsOf(charts::SplitDeclination(
            rs.Fields("DeclinationDegrees").Double(), rs.Fields("DeclinationMinutes").Double()));
        const double epoch = rs.Fields("EPOCH").IsNull() ? 2000 : rs.Fields("EPOCH").Double();
        const astro::PrecessedPosition j2000 =
            astro::Precession("2000", "1", "1", ra, dec, epoch, faults);
        const Split at = SplitPosition(j2000.ra, j2000.dec);

        OpenChart(c, at,
                  static_cast<std::int16_t>(std::clamp(std::round(options.field), 1.0, 180.0)));
        ChartLookups lookups(c.TMM);
        charts::PlotDsoCall object = RowCall(row, at, lookups, false);
        object.type = charts::ChartTypeCode(rs.Fields("ObjectType").Value());
        Plot(c, object);
        std::vector<int> circles;
        if (options.circle > 0)
            circles.push_back(options.circle);
        else if (telrads)
            circles = {30, 120, 240};
        for (const int size : circles) {
            charts::PlotDsoCall circle = object;
            circle.size = static_cast<std::int16_t>(size);
            circle.flag = 1;
            Plot(c, circle);
        }
        const std::shared_ptr<charts::ChartDocument> document = c.link.Own().Current();
        if (document) {
            charts::ChartRequest request;
            request.raHours = document->raHours;
            request.decDeg = document->decDeg;
            request.fieldDeg = document->fieldDeg;
            request.width = options.width;
            request.height = options.height;
            request.layers.milkyway = options.milkyWay;
            picture = charts::RenderChart(c.link.Own().Sky(), request, document->objects);
            if (options.blackAndWhite)
                picture->image = picture->image.convertToFormat(QImage::Format_Grayscale8);
        }
        c.link.CloseChart();
    });
    return picture;
}

std::filesystem::path PlanetariumProgram(const data::Preferences& prefs)
{
    const std::optional<charts::PlanetariumAddress> address =
        charts::ParsePlanetarium(prefs.planetarium);
    if (!address)
        return {};
    const char* path = std::getenv("PATH");
    return charts::FindPlanetariumProgram(address->kind, prefs.CartesPath, path ? path : "");
}

// ---------------------------------------------------------------------------------------
// The Virtual Moon Atlas

namespace {

// "+41d52m48s": sign, degrees, minutes and whole seconds, each of at least two digits.
std::string AtlasAngle(double degrees)
{
    const long total = std::lround(std::fabs(degrees) * 3600);
    return std::string(degrees < 0 ? "-" : "+") +
           vb::Format(static_cast<double>(total / 3600), "00") + "d" +
           vb::Format(static_cast<double>(total / 60 % 60), "00") + "m" +
           vb::Format(static_cast<double>(total % 60), "00") + "s";
}

} // namespace

std::optional<std::vector<std::string>> VirtualMoonArguments(const data::Preferences& prefs,
                                                             const astro::Clock& computerClock)
{
    const astro::ObservingClock clock = ClockFrom(prefs);
    const std::optional<astro::CivilDate> date = astro::ObservingDate(clock, computerClock);
    if (!date)
        return std::nullopt;
    int hour = static_cast<int>(vb::Val(Mid(prefs.Ptime, 1, 2)));
    int minute = static_cast<int>(vb::Val(Mid(prefs.Ptime, 4, 2)));
    int second = 0;
    if (prefs.UseRealTime == "Y") {
        const astro::LocalDateTime now = computerClock.Now();
        hour = now.hour;
        minute = now.minute;
        second = now.second;
    }
    const auto two = [](int n) { return vb::Format(n, "00"); };
    char zone[32];
    std::snprintf(zone, sizeof zone, "%g", -prefs.PTz + 0.0);
    return std::vector<std::string>{
        "-o", "LAT:" + AtlasAngle(prefs.Plat) + "LON:" + AtlasAngle(prefs.PLon) + "TZ:" + zone,
        "-d",
        std::to_string(date->year) + "-" + two(date->month) + "-" + two(date->day) + "T" +
            two(hour) + ":" + two(minute) + ":" + two(second)};
}

void tolvmoon(ChartContext& c, const std::string& program,
              const std::function<void(const std::string&, const std::vector<std::string>&)>& start)
{
    if (program.empty()) {
        c.TMM.ui.ShowMessage(std::string("You need to first install the Virtual Moon Atlas.  "
                                         "Click here to go to their website\n") +
                                 kVirtualMoonSite,
                             "Virtual Moon Atlas", "I");
        return;
    }
    const std::optional<std::vector<std::string>> arguments =
        VirtualMoonArguments(c.TMM.prefs, c.computerClock);
    if (arguments)
        start(program, *arguments);
}

// ---------------------------------------------------------------------------------------
// frmStarChart

std::string FieldLabel(double fieldDeg)
{
    const bool whole = fieldDeg == std::floor(fieldDeg);
    return " Field of View is " + vb::Format(fieldDeg, whole ? "0" : "0.##") + " degrees.";
}

void frmStarChart::ShowChart(ChartContext& c)
{
    c.TMM.ui.BusyMessage(kChartBusyKind, kChartBusyText);
    services::Trap(c.TMM.ui, kShowChartLocation, [&] {
        const double fields[3] = {75, 15, 3};
        for (int i = 0; i < 3; ++i)
            panels[static_cast<std::size_t>(i)] = {fields[i], FieldLabel(fields[i]), i == 0};
        std::string id = ObjectID;
        if (Catalog != "2000" && !id.empty() && vb::IsNumeric(id))
            id = "r" + id;
        objects.clear();
        if (!ObjectType.empty()) {
            charts::PlotObject object;
            object.raHours = ObjectRA;
            object.decDeg = ObjectDec;
            object.typeCode = charts::ChartTypeCode(ObjectType);
            object.sizeArcmin = ObjectSize > 0 ? ObjectSize : 1;
            object.objectId = id;
            objects.push_back(object);
        } else {
            PortFaults faults(c.TMM.ui);
            const astro::PrecessionPlan plan = astro::MakePrecessionPlan("2000", "1", "1");
            Grid& grid = CurrentGrid(c);
            for (int r = 1; r <= grid.MaxRows(); ++r) {
                const ChartRow row = ChartRowOf(grid, r);
                const Split at = PrecessedRow(row, plan, faults);
                charts::PlotObject object;
                object.raHours = at.raHours + at.raMinutes / 60;
                object.decDeg = charts::SplitDeclination(at.decDegrees, at.decMinutes, at.north);
                object.typeCode = RowTypeCode(row);
                object.sizeArcmin = SizeOf(row.Size);
                object.objectId = vb::Trim(row.ObjectID);
                objects.push_back(object);
            }
        }
        zoomList = {"01x", "03x", "07x", "10x", "15x"};
    });
    c.TMM.ui.EndBusy();
}

int frmStarChart::ActivePanel() const
{
    for (int i = 0; i < 3; ++i)
        if (panels[static_cast<std::size_t>(i)].active)
            return i;
    return 0;
}

void frmStarChart::PanelClick(int i)
{
    for (int k = 0; k < 3; ++k)
        panels[static_cast<std::size_t>(k)].active = k == i;
}

void frmStarChart::SetActiveField(double fieldDeg)
{
    StarChartPanel& panel = panels[static_cast<std::size_t>(ActivePanel())];
    panel.fieldDeg = charts::ClampField(fieldDeg);
    panel.txtLab = FieldLabel(panel.fieldDeg);
}

std::optional<frmStarChart> CreateStarChartFromDatabase(ChartContext& c,
                                                        const std::string& objectID,
                                                        const std::string& catalogue)
{
    std::optional<frmStarChart> form;
    services::Trap(c.TMM.ui, kStarChartLocation, [&] {
        data::Recordset rs = c.TMM.objectDb->OpenRecordset(
            "Select * From SelvaneTable Where ObjectID = '" + vb::QuoteForSql(objectID) +
                "' and Catalog = '" + catalogue + "'",
            data::Snapshot);
        if (rs.Eof()) {
            c.TMM.ui.ShowMessage("Object is not in the Selvane database", "Not Found", "I");
            return;
        }
        frmStarChart chart;
        chart.ObjectRA = rs.Fields("RAhours").Double() + rs.Fields("RAminutes").Double() / 60;
        chart.ObjectDec = charts::SplitDeclination(rs.Fields("DeclinationDegrees").Double(),
                                                   rs.Fields("DeclinationMinutes").Double());
        chart.ObjectType = rs.Fields("ObjectType").Value();
        chart.ObjectID = rs.Fields("ObjectID").Value();
        chart.Catalog = catalogue;
        chart.ObjectSize = rs.Fields("ObjectSize").Double();
        chart.ShowChart(c);
        form = std::move(chart);
    });
    return form;
}

} // namespace spread
