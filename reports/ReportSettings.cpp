#include "reports/ReportSettings.h"

#include "services/Fault.h"
#include "services/Vb.h"

#include <cmath>

namespace reports {

namespace vb = services::vb;

const std::vector<std::string>& ReportColumnCaptions(SettingsKind kind)
{
    static const std::vector<std::string> database{
        "Plan",   "Img",          "Obs",        "Object Id", "Other Id", "Type",    "R.A.",
        "Decl.",  "Epoch",        "Alt",        "Azm",       "Rise",     "Transit", "Set",
        "Const",  "Size",         "Mag 1",      "Mag 2",     "MCode",    "Gal Lon", "Gal Lat",
        "PosAng", "Separ",        "Catalog",    "Img Path",  "Her #",    "Rec Id",  "Sky #",
        "Ura #",  "Mill Chart #", "Description"};
    static const std::vector<std::string> log{"Object",          "Observation #", "Image Available",
                                              "Observing Notes", "Object Type",   "Constellation",
                                              "Catalog",         "Date",          "Time",
                                              "Location",        "Transparency",  "Seeing",
                                              "Equipment",       "Rating",        "Desc",
                                              "Log Type",        "Image Name",    "Exp Time",
                                              "Exp Mode",        "Telescope",     "CCD Camera",
                                              "Focal Dist",      "FOV",           "Cool Rate",
                                              "DarkFrame",       "FlatField",     "Pic Rating"};
    return kind == SettingsKind::Database ? database : log;
}

int ColumnCount(SettingsKind kind)
{
    return kind == SettingsKind::Database ? kDatabaseReportColumns : kLogReportColumns;
}

const std::vector<std::string>& LineSpacingItems()
{
    static const std::vector<std::string> items{"1 - Single", "2 - Double", "3 - Triple"};
    return items;
}

std::string ReportForm::lblfont() const
{
    return fontName + ", " + vb::CStr(fontSize);
}

int ReportForm::LineSpacingPercent() const
{
    if (cboLine.empty() || cboLine[0] < '0' || cboLine[0] > '9')
        return 0;
    return (cboLine[0] - '0') * 100;
}

int ReportForm::WidthTwips(int index) const
{
    if (index < 0 || index >= static_cast<int>(columns.size()))
        return 0;
    const double twips = vb::Val(columns[static_cast<std::size_t>(index)].width) * 1440;
    if (!std::isfinite(twips) || std::fabs(twips) > 1e9)
        return 0;
    return static_cast<int>(std::lround(twips));
}

ReportForm DesignForm(SettingsKind kind)
{
    ReportForm form;
    form.kind = kind;
    form.cboLine = LineSpacingItems().front();
    form.fontName = "Arial";
    form.fontSize = 10;
    form.columns.assign(static_cast<std::size_t>(ColumnCount(kind)), ReportColumn{false, "1"});
    // The columns a first report shows, with their widths in inches.
    const std::vector<std::pair<int, const char*>> shown =
        kind == SettingsKind::Database
            ? std::vector<std::pair<int, const char*>>{{3, "1.2"}, {4, "1.2"}, {5, ".7"}, {6, "1"},
                                                       {7, "1"},   {14, ".6"}, {16, ".6"}}
            : std::vector<std::pair<int, const char*>>{{0, "1.1"}, {1, ".6"},  {7, ".9"}, {8, ".8"},
                                                       {9, "1.2"}, {11, ".6"}, {13, ".6"}};
    for (const auto& [index, width] : shown)
        form.columns[static_cast<std::size_t>(index)] = {true, width};
    return form;
}

namespace {

// Input #'s view of a file: its fields one after the other, whatever line they stand on.
class FieldReader
{
public:
    explicit FieldReader(std::string_view text)
    {
        for (const std::string& line : vb::SplitLines(text)) {
            if (vb::Trim(line).empty())
                continue;
            for (std::string& field : vb::ReadRecord(line))
                fields_.push_back(std::move(field));
        }
    }

    const std::string& Text()
    {
        if (next_ >= fields_.size())
            throw services::Fault(kInputPastEnd, "");
        return fields_[next_++];
    }

    double Number()
    {
        const std::string& text = Text();
        const std::string trimmed = vb::Trim(text);
        if (trimmed.empty())
            return 0;
        if (!vb::IsNumeric(trimmed))
            throw services::Fault(kTypeMismatch, "");
        return vb::Val(trimmed);
    }

private:
    std::vector<std::string> fields_;
    std::size_t next_ = 0;
};

} // namespace

void ReadReportForm(std::string_view text, ReportForm& form)
{
    FieldReader reader(text);
    ReportForm read = form;
    read.cboLine = reader.Text();
    read.fontName = reader.Text();
    read.fontSize = reader.Number();
    read.columns.assign(static_cast<std::size_t>(ColumnCount(form.kind)), ReportColumn{});
    for (ReportColumn& column : read.columns) {
        // The box takes the value rounded half to even, and only 1 is on; a huge value must
        // not reach a conversion to a whole number.
        const double value = reader.Number();
        column.on = value > 0.5 && value < 1.5;
        column.width = reader.Text();
    }
    form = std::move(read);
}

std::string WriteReportForm(const ReportForm& form)
{
    std::string text = vb::WriteRecord({form.cboLine, form.fontName, form.fontSize});
    for (const ReportColumn& column : form.columns)
        text += vb::WriteRecord({static_cast<long long>(column.on ? 1 : 0), column.width});
    return text;
}

std::string DefaultFileName(SettingsKind kind)
{
    return kind == SettingsKind::Database ? kDefaultRpt : kDefaultRpl;
}

const char* SettingKey(SettingsKind kind)
{
    return kind == SettingsKind::Database ? "defReport" : "defReportL";
}

} // namespace reports
