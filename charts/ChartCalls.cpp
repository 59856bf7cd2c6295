#include "charts/ChartCalls.h"

#include "services/Fault.h"
#include "services/LineText.h"

#include <QString>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <system_error>
#include <utility>

namespace charts {

namespace {

struct TypeCode
{
    std::string_view name;
    std::uint8_t code;
};

constexpr TypeCode kTypeCodes[] = {
    {"Gx", 1},      {"GxAct", 1},    {"GxPec", 1},  {"GxCl", 1},  {"OC", 2},       {"C+N", 2},
    {"Gb", 3},      {"RfNb", 4},     {"DKNb", 4},   {"HII", 4},   {"Nb", 4},       {"Pl", 5},
    {"Vars", 6},    {"**", 7},       {"***", 7},    {"Ast", 7},   {"D*", 7},       {"D*?", 7},
    {"Dblst", 7},   {"MERCURY", 11}, {"VENUS", 12}, {"MARS", 14}, {"JUPITER", 15}, {"SATURN", 16},
    {"URANUS", 17}, {"NEPTUNE", 18}, {"PLUTO", 19}, {"SUN", 20},  {"MOON", 20},    {"ASTEROID", 22},
    {"COMET", 23},
};

// One argument of a logged call.
std::string Number(double value)
{
    char text[40];
    std::snprintf(text, sizeof text, "%.10g", value + 0.0); // no "-0"
    return text;
}

class Line
{
public:
    explicit Line(std::string_view name) : text_(name) {}
    Line& operator<<(double value)
    {
        text_ += '\t' + Number(value);
        return *this;
    }
    Line& operator<<(std::string_view text)
    {
        text_ += '\t' + services::EscapedForLine(text);
        return *this;
    }
    Line& operator<<(const std::string& text) { return *this << std::string_view(text); }
    std::string Text() && { return std::move(text_); }

private:
    std::string text_;
};

// The arguments 6 to 14 of DrawChart (from the heading on), as CenterOnConst shares them.
Line& DrawTail(Line& line, const DrawChartCall& call)
{
    return line << call.heading << call.title << call.guideStarPath << call.superTychoPath
                << call.driver << call.flag11 << call.flag12 << call.delay
                << std::string_view(call.telescope ? "Scope" : "");
}

Line& PlotArguments(Line& line, const PlotDsoCall& call)
{
    return line << call.raHours << call.raMinutes << call.decDegrees << call.decMinutes
                << call.north << call.type << call.size << call.objectId << call.extraId
                << call.info << call.imageFile << call.observed << call.flag;
}

double RaOf(double hours, double minutes)
{
    return hours + minutes / 60.0;
}

PlotObject ObjectOf(const PlotDsoCall& call)
{
    PlotObject object;
    object.raHours = RaOf(call.raHours, call.raMinutes);
    object.decDeg = SplitDeclination(call.decDegrees, call.decMinutes, call.north);
    object.typeCode = call.type;
    object.sizeArcmin = call.size < 1 ? 1 : call.size;
    object.objectId = call.objectId;
    object.extraId = call.extraId;
    object.observed = call.observed != 0;
    object.flag = call.flag;
    return object;
}

} // namespace

std::uint8_t ChartTypeCode(std::string_view typeOrBody)
{
    for (const TypeCode& entry : kTypeCodes)
        if (entry.name == typeOrBody)
            return entry.code;
    return 9;
}

double SplitDeclination(double degrees, double minutes, int north)
{
    const double value = std::fabs(degrees) + std::fabs(minutes) / 60.0;
    return degrees < 0 || minutes < 0 || north == 0 ? -value : value;
}

// ---------------------------------------------------------------------------------------
// OwnChart

OwnChart::OwnChart(std::filesystem::path programDir, std::function<const ChartSky&()> sky)
    : programDir_(std::move(programDir)), sky_(std::move(sky))
{
}

void OwnChart::Open(std::shared_ptr<ChartDocument> document)
{
    // The working file marks the open chart; what it holds is the engine's own affair.
    const std::filesystem::path file = WorkFile();
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out << "Selvane chart\r\n" << document->heading << "\r\n";
    if (!out.flush())
        throw services::Fault("Cannot write " + file.string(), "");
    current_ = std::move(document);
    if (Opened)
        Opened(current_);
}

void OwnChart::DrawChart(const DrawChartCall& call)
{
    auto document = std::make_shared<ChartDocument>();
    document->raHours = RaOf(call.raHours, call.raMinutes);
    document->decDeg = SplitDeclination(call.decDegrees, call.decMinutes);
    document->fieldDeg = call.field;
    document->heading = call.heading;
    document->driver = call.telescope ? call.driver : std::string();
    document->crosshairDelay = call.telescope ? call.delay : 0;
    Open(std::move(document));
}

void OwnChart::CenterOnConst(const CenterOnConstCall& call)
{
    const ConstellationLabel* label = FindConstellationLabel(sky_(), call.constellation);
    if (!label)
        throw services::Fault("Unknown constellation: " + call.constellation, "");
    DrawChartCall chart = call.chart;
    chart.raHours = label->raHours;
    chart.raMinutes = 0;
    chart.decDegrees = label->decDeg;
    chart.decMinutes = 0;
    DrawChart(chart);
    current_->constellation = label->abbreviation;
}

void OwnChart::PlotDSO(const PlotDsoCall& call)
{
    if (!current_)
        return;
    current_->objects.push_back(ObjectOf(call));
    current_->infos.push_back(call.info);
    current_->imageFiles.push_back(call.imageFile);
}

void OwnChart::CloseChart()
{
    current_.reset();
    std::error_code ignored;
    std::filesystem::remove(WorkFile(), ignored);
}

void OwnChart::Closed(const ChartDocument* document)
{
    if (document && document == current_.get())
        CloseChart();
}

const ConstellationLabel* FindConstellationLabel(const ChartSky& sky, std::string_view abbr)
{
    // Serpens has two parts; its chart centres on the head.
    const QString wanted =
        QString::fromUtf8(abbr.data(), static_cast<qsizetype>(abbr.size())).trimmed();
    const QString key = wanted.compare("Ser", Qt::CaseInsensitive) == 0 ? "SCp" : wanted;
    for (const ConstellationLabel& label : sky.labels)
        if (QString::fromStdString(label.abbreviation).compare(key, Qt::CaseInsensitive) == 0)
            return &label;
    return nullptr;
}

// ---------------------------------------------------------------------------------------
// CdcBridge

CdcBridge::CdcBridge(std::function<std::unique_ptr<Planetarium>()> make,
                     std::function<const ChartSky&()> sky)
    : make_(std::move(make)), sky_(std::move(sky))
{
}

Planetarium& CdcBridge::Current()
{
    if (!planetarium_)
        planetarium_ = make_();
    return *planetarium_;
}

void CdcBridge::CDC_SetObservatory(const PlanetariumSite& site)
{
    site_ = site;
}

void CdcBridge::CDC_SetDate(const astro::LocalDateTime& moment)
{
    moment_ = moment;
}

void CdcBridge::CDC_DrawChart(const CdcDrawChartCall& call)
{
    // A new chart starts on a new exchange: the site and moment set before it go along.
    planetarium_ = make_();
    if (site_)
        planetarium_->CDC_SetObservatory(*site_);
    if (moment_)
        planetarium_->CDC_SetDate(*moment_);
    planetarium_->CDC_DrawChart(RaOf(call.raHours, call.raMinutes),
                                SplitDeclination(call.decDegrees, call.decMinutes), call.field,
                                call.heading);
}

void CdcBridge::CDC_CenterOnConst(const CenterOnConstCall& call)
{
    const ConstellationLabel* label = FindConstellationLabel(sky_(), call.constellation);
    if (!label)
        throw services::Fault("Unknown constellation: " + call.constellation, "");
    planetarium_ = make_();
    if (site_)
        planetarium_->CDC_SetObservatory(*site_);
    if (moment_)
        planetarium_->CDC_SetDate(*moment_);
    planetarium_->CDC_CenterOnConst(label->abbreviation, label->raHours, label->decDeg,
                                    call.chart.field, call.chart.heading);
}

void CdcBridge::CDC_PlotDSO(const PlotDsoCall& call)
{
    if (call.flag == 1)
        return; // circles belong to the own chart
    const PlotObject object = ObjectOf(call);
    Current().CDC_PlotDSO(
        {call.objectId, object.raHours, object.decDeg, DsoLabel(call.extraId, call.objectId)});
}

void CdcBridge::EndChart()
{
    Current().CDC_EndChart();
}

// ---------------------------------------------------------------------------------------
// The call log and ChartLink

std::string CallLine(const DrawChartCall& call)
{
    Line line("DrawChart");
    line << call.raHours << call.raMinutes << call.decDegrees << call.decMinutes << call.field;
    return std::move(DrawTail(line, call)).Text();
}

std::string CallLine(const CenterOnConstCall& call)
{
    Line line("CenterOnConst");
    line << call.constellation;
    return std::move(DrawTail(line, call.chart)).Text();
}

std::string CdcCallLine(const CenterOnConstCall& call)
{
    Line line("CDC_CenterOnConst");
    const DrawChartCall& c = call.chart;
    line << call.constellation << c.heading << c.title << c.guideStarPath << c.superTychoPath
         << c.driver << c.flag11 << c.flag12 << c.delay;
    return std::move(line).Text();
}

std::string CallLine(const PlotDsoCall& call)
{
    Line line("PlotDSO");
    return std::move(PlotArguments(line, call)).Text();
}

std::string CdcCallLine(const PlotDsoCall& call)
{
    Line line("CDC_PlotDSO");
    return std::move(PlotArguments(line, call)).Text();
}

std::string CallLine(const CdcDrawChartCall& call)
{
    Line line("CDC_DrawChart");
    line << call.raHours << call.raMinutes << call.decDegrees << call.decMinutes << call.field
         << call.port << call.delay << call.heading << call.title << call.guideStarPath
         << call.superTychoPath << call.driver << call.flag13 << call.flag14;
    return std::move(line).Text();
}

void ChartLink::Log(std::string line)
{
    if (callLog)
        callLog->push_back(std::move(line));
}

void ChartLink::DrawChart(const DrawChartCall& call)
{
    Log(CallLine(call));
    own_.DrawChart(call);
}

void ChartLink::CenterOnConst(const CenterOnConstCall& call)
{
    Log(CallLine(call));
    own_.CenterOnConst(call);
}

void ChartLink::PlotDSO(const PlotDsoCall& call)
{
    Log(CallLine(call));
    own_.PlotDSO(call);
}

void ChartLink::CloseChart()
{
    Log("CloseChart");
    own_.CloseChart();
}

void ChartLink::CDC_SetObservatory(const PlanetariumSite& site)
{
    Log(std::move(Line("CDC_SetObservatory")
                  << site.Plat << site.Plon << site.PTz << site.PStd << site.name)
            .Text());
    cdc_.CDC_SetObservatory(site);
}

void ChartLink::CDC_SetDate(const astro::LocalDateTime& moment)
{
    Log(std::move(Line("CDC_SetDate")
                  << moment.year << moment.month << moment.day << moment.hour << moment.minute)
            .Text());
    cdc_.CDC_SetDate(moment);
}

void ChartLink::CDC_DrawChart(const CdcDrawChartCall& call)
{
    Log(CallLine(call));
    cdc_.CDC_DrawChart(call);
}

void ChartLink::CDC_CenterOnConst(const CenterOnConstCall& call)
{
    Log(CdcCallLine(call));
    cdc_.CDC_CenterOnConst(call);
}

void ChartLink::CDC_PlotDSO(const PlotDsoCall& call)
{
    Log(CdcCallLine(call));
    cdc_.CDC_PlotDSO(call);
}

void ChartLink::CDC_EndChart()
{
    cdc_.EndChart();
}

// ---------------------------------------------------------------------------------------

std::string InfoTextHtml(std::string_view info)
{
    // \O starts a line with its label, \D starts the data, \L\U toggles the heading style.
    QString html;
    bool heading = false;
    bool inLine = false;
    const QString text = QString::fromUtf8(info.data(), static_cast<qsizetype>(info.size()));
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 1 < text.size()) {
            const QChar code = text[i + 1];
            if (code == 'O') {
                html += inLine ? "<br>" : "";
                inLine = true;
                html += "<b>";
                i += 1;
                continue;
            }
            if (code == 'D') {
                html += "</b>";
                i += 1;
                continue;
            }
            if (code == 'L' && i + 3 < text.size() && text[i + 2] == '\\' && text[i + 3] == 'U') {
                html += heading ? "</u>" : "<u>";
                heading = !heading;
                i += 3;
                continue;
            }
        }
        html += QString(text[i]).toHtmlEscaped();
    }
    if (heading)
        html += "</u>";
    return html.toStdString();
}

} // namespace charts
