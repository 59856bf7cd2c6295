#include "reports/LogReports.h"

#include "data/CurrentObject.h"
#include "logbook/LogEntryForm.h"
#include "logbook/LogSpread.h"
#include "reports/ReportSetup.h"
#include "reports/ReportWindow.h"
#include "services/Fault.h"
#include "services/Vb.h"
#include "spread/AppState.h"

#include <QDate>
#include <QImage>

#include <algorithm>
#include <cmath>
#include <optional>

namespace reports {

namespace vb = services::vb;

namespace {

constexpr const char* kCrLf = "\r\n";
constexpr int kPumpEvery = 50;

// The right part of the column reports' footer: the title, 14 blanks, the date.
std::string ColumnFooter(const char* title, const ReportContext& context)
{
    return std::string(kProductLine) + "|" + title + "       " + std::string(14, ' ') +
           PresentDate(context) + "  |Page %d";
}

// The frame of the column reports: header, footer, the forms' line spacing and table font.
void ColumnFrame(PrintSurface& s, const char* title, const ReportForm& form,
                 const ReportContext& context)
{
    s.StartDoc();
    const int spacing = form.LineSpacingPercent();
    s.SetLineSpacing(spacing > 0 ? spacing : 100);
    s.SetHeaderFont("Arial", 10);
    s.SetHeader(std::string(title) + kCrLf);
    s.SetFooter(ColumnFooter(title, context));
    const std::string name = vb::Trim(form.fontName);
    s.SetFont({name.empty() ? "Arial" : name, TableFontSize(form.fontSize)});
}

// The form of a settings window as the report reads it: loaded hidden from its file.
ReportForm LoadedForm(SettingsKind kind, spread::AppState& TMM)
{
    ReportSetup setup(kind, TMM);
    setup.Form_Load();
    return setup.form;
}

// frmRSU's alignments by column index.
char DatabaseAlign(int index)
{
    switch (index) {
    case 9:
    case 10:
    case 15:
    case 16:
    case 17:
    case 18:
    case 19:
    case 21:
    case 27:
    case 28:
        return '>';
    case 0:
    case 1:
    case 2:
    case 14:
        return '^';
    default:
        return '<';
    }
}

constexpr int kDescriptionIndex = 30;
constexpr int kRecordIdCol = 27;

std::string Description(spread::AppState& TMM, std::string_view key)
{
    const std::string trimmed = vb::Trim(key);
    if (trimmed.empty() || !vb::IsNumeric(trimmed) || TMM.objectDb == nullptr)
        return {};
    data::Recordset rs = TMM.objectDb->OpenRecordset(
        "Select Description From SelvaneTable Where ID=" + vb::Format(vb::Val(trimmed), "0"),
        data::Snapshot);
    return rs.Eof() ? std::string() : vb::Trim(rs.Fields("Description").Text());
}

std::string YesNo(bool on)
{
    return on ? "Yes" : "No";
}

// The notes of one observation as plain text, or the line that says there are none.
std::string NotesOf(data::Database& logbook, std::string_view number)
{
    std::string plain;
    const std::string trimmed = vb::Trim(number);
    if (vb::IsNumeric(trimmed)) {
        data::Recordset rs = logbook.OpenRecordset(
            "Select * From Logbook Where ObservationNumber = " + vb::Format(vb::Val(trimmed), "0"),
            data::Snapshot);
        if (!rs.Eof())
            plain = logbook::RichPlainText(rs.Fields("ObservationText").Text());
    }
    return vb::Trim(plain).empty() ? "  * NOTES HAVE NOT BEEN ENTERED *" : plain;
}

// The log spreadsheet the report prints: the caller's, or one loaded as the refresh button
// loads it.
struct LogView
{
    explicit LogView(ReportWindow& window)
    {
        ReportContext& context = window.Context();
        spread::AppState& TMM = context.TMM;
        if (context.logSpread != nullptr) {
            view = context.logSpread;
            if (window.ReportNumber == 30)
                view->cmdRefresh_Click();
            return;
        }
        logContext.emplace(logbook::LogContext{TMM.ui, TMM.logbookDb.get(), TMM.objectDb.get(),
                                               TMM.prefs, TMM.dir, current, context.clock});
        own.emplace(*logContext);
        own->Init();
        own->cmdRefresh_Click();
        view = &*own;
    }

    data::CurrentObject current;
    std::optional<logbook::LogContext> logContext;
    std::optional<logbook::LogSpread> own;
    logbook::LogSpread* view = nullptr;
};

const std::string& Cell(const logbook::LogSpreadRow& row, int col)
{
    return row.cells[static_cast<std::size_t>(col - 1)];
}

// A stored text as a report shows it: trimmed, dates in the regional short date.
std::string Shown(data::Recordset& rs, const char* field)
{
    return rs.HasField(field) ? vb::Trim(rs.Fields(field).Text()) : std::string();
}

TableRows FieldRows(data::Recordset& rs,
                    const std::vector<std::pair<const char*, const char*>>& rows,
                    const ReportContext& context)
{
    TableRows body;
    for (const auto& [label, field] : rows) {
        std::string value = Shown(rs, field);
        if (std::string_view(field) == "DateObserved")
            value = ShortDateText(value, context);
        else if (std::string_view(field) == "darkframe" || std::string_view(field) == "flatfield")
            value = YesNo(vb::Val(value) != 0);
        body.push_back({label, value});
    }
    return body;
}

// The columns of a form that are on, with the table's format (each a boxed cell of the
// column's alignment and width) and header strings, both ended by ";".
struct ColumnTable
{
    std::vector<int> shown;
    std::string format, header;
};

ColumnTable OnColumns(const ReportForm& form, char (*align)(int index))
{
    const std::vector<std::string>& captions = ReportColumnCaptions(form.kind);
    ColumnTable table;
    for (int i = 0; i < static_cast<int>(form.columns.size()); ++i) {
        if (!form.columns[static_cast<std::size_t>(i)].on)
            continue;
        if (!table.shown.empty()) {
            table.format += '|';
            table.header += '|';
        }
        table.shown.push_back(i);
        table.format += std::string("+") + align(i) + std::to_string(form.WidthTwips(i));
        table.header += captions[static_cast<std::size_t>(i)];
    }
    table.format += ';';
    table.header += ';';
    return table;
}

} // namespace

double TableFontSize(double size)
{
    return std::isfinite(size) && size >= 4 && size <= 72 ? size : 10;
}

void Printdatabasereport(ReportWindow& window)
{
    ReportContext& context = window.Context();
    spread::AppState& TMM = context.TMM;
    const ReportForm form = LoadedForm(SettingsKind::Database, TMM);
    PrintSurface& s = window.Surface();
    ColumnFrame(s, "D a t a b a s e  R e p o r t", form, context);

    const auto [shown, format, header] = OnColumns(form, DatabaseAlign);

    const int tab = std::clamp(TMM.CurrTab, 0, spread::kSpreadTabs - 1);
    const spread::Grid& grid = TMM.grids[static_cast<std::size_t>(tab)];
    TableRows body;
    for (int row = 1; !shown.empty() && row <= grid.MaxRows(); ++row) {
        std::vector<std::string> cells;
        for (const int i : shown) {
            if (i == kDescriptionIndex)
                cells.push_back(Description(TMM, grid.Text(row, kRecordIdCol)));
            else
                cells.push_back(vb::Trim(grid.Text(row, i + 1)));
        }
        body.push_back(std::move(cells));
        if (row % kPumpEvery == 0 && TMM.ui.Pump())
            break;
    }
    s.Table(format, header, body);
    s.EndDoc();
}

void Printlogreport(ReportWindow& window)
{
    ReportContext& context = window.Context();
    spread::AppState& TMM = context.TMM;
    LogView log(window);
    const ReportForm form = LoadedForm(SettingsKind::Log, TMM);
    PrintSurface& s = window.Surface();
    ColumnFrame(s, "L o g b o o k  R e p o r t", form, context);
    const std::vector<logbook::LogSpreadRow>& rows = log.view->grdObjectLog;

    if (form.columns[kNotesColumn].on) {
        if (TMM.logbookDb == nullptr)
            throw services::Fault("The logbook is not open", "");
        s.SetFont({"Arial", TableFontSize(form.fontSize)});
        int n = 0;
        for (const logbook::LogSpreadRow& row : rows) {
            s.Paragraph("");
            s.Paragraph("Notes For Object : " + vb::Trim(Cell(row, 1)));
            s.Paragraph(std::string(56, '-'));
            s.Paragraph(NotesOf(*TMM.logbookDb, Cell(row, logbook::kSpreadNumberCol)));
            if (++n % kPumpEvery == 0 && TMM.ui.Pump())
                break;
        }
        s.EndDoc();
        return;
    }

    const auto [shown, format, header] = OnColumns(form, [](int) { return '>'; });

    TableRows body;
    for (const logbook::LogSpreadRow& row : rows) {
        if (shown.empty())
            break;
        std::vector<std::string> cells;
        for (const int i : shown) {
            const int col = i + 1;
            const std::string text = vb::Trim(Cell(row, col));
            if (col == logbook::kSpreadImageCol || col == logbook::kSpreadNotesCol)
                cells.push_back(YesNo(vb::Val(text) != 0));
            else
                cells.push_back(text);
        }
        body.push_back(std::move(cells));
        if (body.size() % kPumpEvery == 0 && TMM.ui.Pump())
            break;
    }
    s.Table(format, header, body);
    s.EndDoc();
}

void PrintLogSummary(ReportWindow& window)
{
    ReportContext& context = window.Context();
    spread::AppState& TMM = context.TMM;
    const logbook::LogEntryForm* entry = context.entry;
    if (entry == nullptr) {
        TMM.ui.ShowMessage("Please open an observation of the logbook first", "Invalid Usage", "I");
        return;
    }
    const logbook::LogFields& f = entry->f;
    PrintSurface& s = window.Surface();
    s.StartDoc();
    s.SetHeaderFont("Arial", 10);
    s.SetHeader("Selvane 2003 Logbook Summary Report For Object " + f.txtObjectID);
    s.SetFooter(NotesFooter());

    const std::string number = vb::Trim(entry->lblObNo);
    if (!number.empty() && vb::IsNumeric(number) && TMM.logbookDb != nullptr) {
        data::Recordset rs = TMM.logbookDb->OpenRecordset(
            "Select ImageDescription, ImagePath From ImageLog where ObservationNumber = " +
                vb::Format(vb::Val(number), "0"),
            data::Snapshot);
        for (; !rs.Eof(); rs.MoveNext()) {
            const QImage image(QString::fromStdString(vb::Trim(rs.Fields("ImagePath").Text())));
            if (!image.isNull()) {
                // At most 5 by 3.5 inches, in the picture's own proportions.
                const double scale = std::min(5.0 * kTwipsPerInch / image.width(),
                                              3.5 * kTwipsPerInch / image.height());
                s.Pictures({image}, static_cast<int>(image.width() * scale),
                           static_cast<int>(image.height() * scale), 0);
            }
            s.SetFont({"Arial", 10, true});
            s.Paragraph(vb::Trim(rs.Fields("ImageDescription").Text()));
            s.Paragraph("");
        }
    }

    std::string other;
    for (const std::string& item : f.List1)
        other += (other.empty() ? "" : ", ") + item;
    s.SetFont({"Courier New", 10});
    // Each label padded to 13 characters.
    const auto lines = [&](const std::vector<std::pair<std::string, std::string>>& items) {
        for (const auto& [label, value] : items)
            s.Paragraph(label + std::string(label.size() < 13 ? 13 - label.size() : 0, ' ') +
                        value);
    };
    lines({{"Object : ", f.txtObjectID},
           {"Other ID     ", f.txtOtherID},
           {"Object Seen  ", YesNo(f.Option1)},
           {"Catalog      ", f.cboCatalog},
           {"Log Type     ", f.cboLogtype},
           {"Rating       ", f.cboRating},
           {"Date Obs.    ", ShortDateText(f.mskDate, context)},
           {"Time Obs.    ", f.mskTime},
           {"Location     ", f.txtLocation},
           {"Transparency ", f.cboTransparency},
           {"Seeing       ", f.cboSee},
           {"Short Note   ", f.txtDescription},
           {"Equipment    ", f.txtEquipment},
           {"Other Equip  ", other}});
    const auto section = [&](const char* title) {
        s.Paragraph("");
        s.SetFont({"Courier New", 10, true});
        s.Paragraph(title);
        s.SetFont({"Courier New", 10});
    };
    section("CCD LOGBOOK INFO");
    lines({{"Image Name   ", f.txtimgname},
           {"Exposure     ", f.txtExpTime},
           {"Exp Mode     ", f.txtmode},
           {"Telescope    ", f.txtscope},
           {"CCD Camera   ", f.txtCCD},
           {"Focal Dist   ", f.txtFocDis},
           {"F.O.V.       ", f.txtFov},
           {"Cooling Rate ", f.txtCrate},
           {"Pic Rating   ", f.txtRating},
           {"Dark Frame    ", YesNo(f.chkdframe)},
           {"Flat Field    ", YesNo(f.chkFfield)}});
    section("SESSION NOTES");
    s.Paragraph(logbook::RichPlainText(f.RichTextBox1));
    section("OBSERVING NOTES");
    s.Paragraph(logbook::RichPlainText(f.rchNotes));
    s.EndDoc();
}

const std::vector<std::string>& LogSingleSortColumns()
{
    static const std::vector<std::string> columns{"",
                                                  "Logbook.ObservationNumber",
                                                  "ObjectID",
                                                  "Catalog",
                                                  "DateObserved",
                                                  "TimeObserved",
                                                  "LocationObserved",
                                                  "EquipmentUsed",
                                                  "OtherEquipment",
                                                  "Seeing",
                                                  "Transparency",
                                                  "Rating",
                                                  "ShortDescription",
                                                  "SeenFlag",
                                                  "LogType",
                                                  "ImageName",
                                                  "ExposureTime",
                                                  "ExposureMode",
                                                  "Telescope",
                                                  "CCDCamera",
                                                  "FocalDistance",
                                                  "FieldOfView",
                                                  "Coolingrate",
                                                  "darkframe",
                                                  "flatfield",
                                                  "PictureRating"};
    return columns;
}

std::string LogSingleOrder(const SortSelection& selection)
{
    std::string clause;
    for (std::size_t k = 0; k < selection.column.size(); ++k) {
        // A blank box would give the key "," alone, which is dropped.
        const std::string column = vb::Trim(selection.column[k]);
        if (!column.empty())
            clause += column + (selection.descending[k] ? " Desc," : ",");
    }
    if (!clause.empty() && clause.back() == ',')
        clause.pop_back();
    return clause;
}

std::string LogSingleSql(const SortSelection& selection, const std::string& ltype)
{
    std::string sql = "SELECT * FROM Logbook LEFT JOIN CCDLog ON Logbook.ObservationNumber = "
                      "CCDLog.ObservationNumber Where LogType = '" +
                      vb::QuoteForSql(ltype) + "' ";
    if (!vb::Trim(selection.like).empty())
        sql += " and ObjectID Like '" + vb::QuoteForSql(selection.like) + "' ";
    const std::string order = LogSingleOrder(selection);
    if (!order.empty())
        sql += " Order By " + order;
    return sql;
}

void PrintLogSingle(ReportWindow& window)
{
    ReportContext& context = window.Context();
    spread::AppState& TMM = context.TMM;
    if (TMM.logbookDb == nullptr)
        throw services::Fault("The logbook is not open", "");
    data::Recordset rs = TMM.logbookDb->OpenRecordset(
        LogSingleSql(window.sortSelection, TMM.prefs.Ltype), data::Snapshot);
    PrintSurface& s = window.Surface();
    s.StartDoc();
    s.SetHeaderFont("Arial", 10);
    s.SetHeader("Selvane 2003 LOGBOOK");
    s.SetFooter(NotesFooter());
    const FontSpec body{"Arial", 10};
    for (int n = 1; !rs.Eof(); rs.MoveNext(), ++n) {
        s.SetFont({"Arial", 12, true});
        s.Paragraph("Object Observed: " + Shown(rs, "ObjectID") +
                    "  Date: " + LongDateText(Shown(rs, "DateObserved"), context));
        s.SetFont(body);
        s.Table("<1800|<5000;", "Desc |Data;",
                FieldRows(rs,
                          {{"Observation #", "ObservationNumber"},
                           {"ObjectID", "ObjectID"},
                           {"Catalog", "Catalog"},
                           {"Date Observed", "DateObserved"},
                           {"Time Observed", "TimeObserved"},
                           {"Location", "LocationObserved"},
                           {"Transparency", "Transparency"},
                           {"Seeing", "Seeing"},
                           {"Rating", "Rating"},
                           {"Short Description", "ShortDescription"}},
                          context));
        const std::string notes = logbook::RichPlainText(Shown(rs, "ObservationText"));
        if (!vb::Trim(notes).empty()) {
            s.Paragraph("");
            s.Paragraph("Observation Notes:");
            s.Paragraph(notes);
        }
        if (const std::string equipment = Shown(rs, "EquipmentUsed"); !equipment.empty())
            s.Paragraph("Primary Equipment Used: " + equipment);
        if (const std::string other = Shown(rs, "OtherEquipment"); !other.empty())
            s.Paragraph("Additional Equipment Used: " + other);
        if (!Shown(rs, "ImageName").empty()) {
            s.Paragraph("");
            s.Paragraph("CCD General Information :");
            s.Table("<1800|<5000;", "Desc |Data;",
                    FieldRows(rs,
                              {{"Image Name", "ImageName"},
                               {"Exposure Time", "ExposureTime"},
                               {"Exposure Mode", "ExposureMode"},
                               {"Telescope", "Telescope"},
                               {"CCD Camera", "CCDCamera"},
                               {"Focal Distance", "FocalDistance"},
                               {"Field of View", "FieldOfView"},
                               {"Cooling Rate", "Coolingrate"},
                               {"Dark Frame", "darkframe"},
                               {"Flat Field", "flatfield"},
                               {"Picture Rating", "PictureRating"}},
                              context));
            s.Paragraph("CCD Notes :");
            s.Paragraph(logbook::RichPlainText(Shown(rs, "Notes")));
        }
        s.Paragraph("");
        if (n % kPumpEvery == 0 && TMM.ui.Pump())
            break;
    }
    s.EndDoc();
}

} // namespace reports
