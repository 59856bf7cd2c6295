#include "charts/PlotFile.h"

#include "services/Fault.h"
#include "services/OutputFile.h"
#include "services/UiPort.h"
#include "services/Vb.h"

#include <cerrno>
#include <cmath>
#include <fstream>
#include <iterator>

namespace charts {

namespace vb = services::vb;

const std::vector<std::string> PlotTypes = {
    "01 - Gal",   "02 - Ocl",     "03 - Gcl",     "04 - Dfn",      "05 - Pln",
    "06 - Var",   "07 - Dbl",     "11 - Mercury", "12 - Venus",    "13 - Earth",
    "14 - Mars",  "15 - Jupiter", "16 - Saturn",  "17 - Uranus",   "18 - Neptune",
    "19 - Pluto", "20 - Sun",     "21 - Moon",    "22 - Asteroid", "23 - Comet",
};

namespace {

constexpr const char* NoName = "n/a";

// A sexagesimal value in whole seconds, split into its three fields. A whole part that would
// need more than nine digits is held at that, so that no typed value makes an unbounded text.
struct Sexagesimal
{
    double whole = 0;
    int minutes = 0;
    int seconds = 0;
};

Sexagesimal ToWholeSeconds(double whole, double minutes, double seconds, bool wrapAt24)
{
    double total =
        std::floor(std::fabs(whole) * 3600 + std::fabs(minutes) * 60 + std::fabs(seconds) + 0.5);
    if (!std::isfinite(total) || total > 1e12)
        total = 1e12;
    if (wrapAt24)
        total = std::fmod(total, 24.0 * 3600);
    Sexagesimal s;
    s.whole = std::floor(total / 3600);
    const double rest = total - s.whole * 3600;
    s.minutes = static_cast<int>(rest / 60);
    s.seconds = static_cast<int>(rest - s.minutes * 60.0);
    return s;
}

std::string Entry(const Sexagesimal& ra, bool south, const Sexagesimal& dec,
                  const std::string& name)
{
    const std::string trimmed = vb::Trim(name);
    return vb::Format(ra.whole, "00") + " " + vb::Format(ra.minutes, "00") + " " +
           vb::Format(ra.seconds, "00") + " | " + (south ? "-" : "+") +
           vb::Format(dec.whole, "00") + " " + vb::Format(dec.minutes, "00") + " " +
           vb::Format(dec.seconds, "00") + " | " + (trimmed.empty() ? NoName : trimmed);
}

bool South(const std::string& degrees)
{
    const std::string trimmed = vb::Trim(degrees);
    return !trimmed.empty() && trimmed[0] == '-';
}

using vb::Mid;

struct Range
{
    double low;
    double high;
    const char* message;
};

Range RangeOf(PlotField field)
{
    switch (field) {
    case PlotField::txtRah:
    case PlotField::txtrah2:
        return {0, 23, "Enter between 0 and 23"};
    case PlotField::txtdecm:
        return {0, 59, "Enter between 0 and 59"};
    case PlotField::txtdecd:
    case PlotField::txtdecd2:
        return {-89, 89, "Enter between -89 and 89"};
    case PlotField::txtram:
    case PlotField::txtras:
    case PlotField::txtram2:
    case PlotField::txtdecs:
    case PlotField::txtdecm2:
        break;
    }
    return {0, 59.9999, "Enter between 0 and 59.9999"};
}

} // namespace

std::string PlotEntry(const std::string& rah, const std::string& ram, const std::string& ras,
                      const std::string& decd, const std::string& decm, const std::string& decs,
                      const std::string& name)
{
    return Entry(ToWholeSeconds(vb::Val(rah), vb::Val(ram), vb::Val(ras), true), South(decd),
                 ToWholeSeconds(vb::Val(decd), vb::Val(decm), vb::Val(decs), false), name);
}

std::string PlotEntry2(const std::string& rah2, const std::string& ram2, const std::string& decd2,
                       const std::string& decm2, const std::string& name)
{
    return Entry(ToWholeSeconds(vb::Val(rah2), vb::Val(ram2), 0, true), South(decd2),
                 ToWholeSeconds(vb::Val(decd2), vb::Val(decm2), 0, false), name);
}

PlotPosition ReadPlotEntry(const std::string& entry)
{
    PlotPosition p;
    p.raHours = vb::Val(Mid(entry, 1, 2));
    p.raMinutes = vb::Val(Mid(entry, 4, 2)) + vb::Val(Mid(entry, 7, 2)) / 60;
    p.decDegrees = vb::Val(Mid(entry, 12, 3));
    p.decMinutes = std::fabs(vb::Val(Mid(entry, 16, 2)) + vb::Val(Mid(entry, 19, 2)) / 60);
    p.north = Mid(entry, 12, 1) != "-";
    p.name = vb::Trim(Mid(entry, 24));
    if (p.name.empty())
        p.name = NoName;
    return p;
}

std::string CheckPlotField(PlotField field, const std::string& text)
{
    const std::string value = vb::Trim(text);
    if (value.empty())
        return {};
    const Range range = RangeOf(field);
    if (!vb::IsNumeric(value))
        return range.message;
    const double n = vb::Val(value);
    return n < range.low || n > range.high ? range.message : std::string();
}

std::string WritePlotText(const PlotFileContents& contents)
{
    std::string text = contents.txtFov + "\r\n" + contents.txtObjName + "\r\n";
    for (const std::string& entry : contents.entries)
        text += entry + "\r\n";
    return text;
}

PlotFileContents ReadPlotText(std::string_view text)
{
    // Input # reads field after field across the lines; a blank line is one empty field.
    std::vector<std::string> fields;
    for (const std::string& line : vb::SplitLines(text)) {
        std::vector<std::string> record = vb::ReadRecord(line);
        if (record.empty())
            record.emplace_back();
        for (std::string& field : record)
            fields.push_back(std::move(field));
    }
    PlotFileContents contents;
    if (!fields.empty())
        contents.txtFov = fields[0];
    if (fields.size() > 1)
        contents.txtObjName = fields[1];
    for (std::size_t i = 2; i < fields.size(); ++i)
        if (!fields[i].empty())
            contents.entries.push_back(fields[i]);
    return contents;
}

PlotFileContents ReadPlotFile(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        const int error = errno;
        throw services::Fault(
            error == ENOENT || error == 0 ? "File not found" : services::FileErrorText(error), "");
    }
    const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (in.bad())
        throw services::Fault(services::FileErrorText(EIO), "");
    return ReadPlotText(text);
}

void WritePlotFile(const std::filesystem::path& path, const PlotFileContents& contents)
{
    services::OutputFile file(path);
    file.Write(WritePlotText(contents));
    file.Close();
}

std::string& frmStPlot::Field(PlotField field)
{
    switch (field) {
    case PlotField::txtRah:
        return txtRah;
    case PlotField::txtram:
        return txtram;
    case PlotField::txtras:
        return txtras;
    case PlotField::txtdecd:
        return txtdecd;
    case PlotField::txtdecm:
        return txtdecm;
    case PlotField::txtdecs:
        return txtdecs;
    case PlotField::txtrah2:
        return txtrah2;
    case PlotField::txtram2:
        return txtram2;
    case PlotField::txtdecd2:
        return txtdecd2;
    case PlotField::txtdecm2:
        break;
    }
    return txtdecm2;
}

bool frmStPlot::LeaveField(PlotField field)
{
    std::string& text = Field(field);
    const std::string message = CheckPlotField(field, text);
    if (message.empty())
        return true;
    ui_.ShowMessage(message, PlotInvalidTitle, "E");
    text.clear();
    focus = &text;
    return false;
}

bool frmStPlot::Command1_Click()
{
    auto blank = [](const std::string& text) { return vb::Trim(text).empty(); };
    const bool row1Used = !blank(txtRah) || !blank(txtram) || !blank(txtras) || !blank(txtdecd) ||
                          !blank(txtdecm) || !blank(txtdecs);
    const bool row2Used =
        !blank(txtrah2) || !blank(txtram2) || !blank(txtdecd2) || !blank(txtdecm2);
    const bool second = row2Used && !row1Used;
    const bool complete =
        second ? !blank(txtrah2) && !blank(txtram2) && !blank(txtdecd2) && !blank(txtdecm2)
               : !blank(txtRah) && !blank(txtram) && !blank(txtras) && !blank(txtdecd) &&
                     !blank(txtdecm) && !blank(txtdecs);
    if (!complete) {
        ui_.ShowMessage("Please entire entire coordinates", "Input Required", "U");
        focus = second ? &txtrah2 : &txtRah;
        return false;
    }
    List1.push_back(second ? PlotEntry2(txtrah2, txtram2, txtdecd2, txtdecm2, txtName)
                           : PlotEntry(txtRah, txtram, txtras, txtdecd, txtdecm, txtdecs, txtName));
    for (std::string* field : {&txtRah, &txtram, &txtras, &txtdecd, &txtdecm, &txtdecs, &txtrah2,
                               &txtram2, &txtdecd2, &txtdecm2, &txtName})
        field->clear();
    focus = second ? &txtrah2 : &txtRah;
    return true;
}

bool frmStPlot::SSCommand2_Click()
{
    if (vb::Trim(txtFov).empty() || vb::Trim(txtObjName).empty()) {
        ui_.ShowMessage("Please specify a default field of view and an object name",
                        "Default Required", "U");
        return false;
    }
    std::string name = ui_.AskSaveFile("Save Plot File", "*.plt", "plt", "*.plt");
    if (name.empty() || name == "*.plt")
        return false;
    if (name.size() < 4 || !vb::SameText(name.substr(name.size() - 4), ".plt"))
        name += ".PLT";
    return services::Trap(ui_, "frmStPlot.SSCommand2_Click", [&] {
        WritePlotFile(name, {txtFov, txtObjName, List1});
    });
}

bool frmStPlot::SSCommand3_Click()
{
    const std::string name = ui_.AskOpenFile("Open Plot File", "*.plt");
    if (name.empty())
        return false;
    return services::Trap(ui_, "frmStPlot.SSCommand3_Click", [&] {
        PlotFileContents contents = ReadPlotFile(name);
        txtFov = std::move(contents.txtFov);
        txtObjName = std::move(contents.txtObjName);
        List1 = std::move(contents.entries);
    });
}

bool frmStPlot::SSCommand4_Click(const PlotChartCalls& chart)
{
    if (List1.empty() || !chart.DrawChart || !chart.PlotDSO)
        return false;
    return services::Trap(ui_, "frmStPlot.SSCommand4_Click", [&] {
        const PlotPosition centre = ReadPlotEntry(List1.front());
        const double fov = std::round(vb::Val(txtFov));
        PlotDrawChart draw;
        draw.ChartTarget = ChartTarget;
        draw.raHours = centre.raHours;
        draw.raMinutes = centre.raMinutes;
        draw.decDegrees = centre.decDegrees;
        draw.decMinutes = centre.decMinutes;
        draw.fieldDeg = static_cast<int>(std::fmax(-32768, std::fmin(32767, fov)));
        draw.heading = txtObjName;
        chart.DrawChart(draw);
        const int typeCode = cboType >= 0 && static_cast<std::size_t>(cboType) < PlotTypes.size()
                                 ? static_cast<int>(vb::Val(
                                       PlotTypes[static_cast<std::size_t>(cboType)].substr(0, 2)))
                                 : 0;
        for (const std::string& entry : List1)
            chart.PlotDSO({ReadPlotEntry(entry), typeCode, txtObjName});
    });
}

void frmStPlot::List1_Click(std::size_t index)
{
    if (index >= List1.size())
        return;
    const std::string& entry = List1[index];
    txtRah = vb::Trim(Mid(entry, 1, 2));
    txtram = vb::Trim(Mid(entry, 4, 2));
    txtras = vb::Trim(Mid(entry, 7, 2));
    txtdecd = vb::Trim(Mid(entry, 12, 3));
    if (!txtdecd.empty() && txtdecd[0] == '+')
        txtdecd.erase(0, 1);
    txtdecm = vb::Trim(Mid(entry, 16, 2));
    txtdecs = vb::Trim(Mid(entry, 19, 2));
    txtName = vb::Trim(Mid(entry, 24));
    if (txtName == NoName)
        txtName.clear();
}

} // namespace charts
