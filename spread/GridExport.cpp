#include "spread/GridExport.h"

#include "services/Fault.h"
#include "services/Html.h"
#include "services/OutputFile.h"
#include "services/Vb.h"

#include <QDateTime>
#include <QXmlStreamWriter>

#include <xlsxwriter.h>

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <memory>
#include <optional>
#include <vector>

namespace spread {

namespace vb = services::vb;

namespace {

std::vector<int> VisibleColumns(const Grid& grid)
{
    std::vector<int> cols;
    for (int col = 1; col <= kGridCols; ++col)
        if (grid.ColWidth(col) != 0)
            cols.push_back(col);
    return cols;
}

int VisibleRows(const Grid& grid)
{
    int n = 0;
    for (int row = 1; row <= grid.MaxRows(); ++row)
        n += grid.RowHidden(row) ? 0 : 1;
    return n;
}

// One line of an export's log file. The log is a record for the observer, not part of the
// export: a log that cannot be written leaves the written file as good as it is.
void AppendLog(const std::filesystem::path& logFile, const std::filesystem::path& file, int rows,
               int cols)
{
    std::FILE* log = std::fopen(logFile.c_str(), "ab");
    if (!log)
        return;
    const std::string line =
        QDateTime::currentDateTime().toString("yyyy-MM-dd hh:mm:ss").toStdString() + "\t" +
        file.string() + "\t" + std::to_string(rows) + " rows\t" + std::to_string(cols) +
        " columns\n";
    std::fwrite(line.data(), 1, line.size(), log);
    std::fclose(log);
}

// A cell's number, when its whole text is one ("+42.54", " 8.40", "-1.5E-05").
bool CellNumber(std::string_view text, double& value)
{
    const std::string trimmed = vb::Trim(text);
    if (trimmed.empty())
        return false;
    const std::string plain = trimmed[0] == '+' ? trimmed.substr(1) : trimmed;
    if (plain.empty() || plain[0] == '+' || plain[0] == ' ')
        return false;
    char* end = nullptr;
    errno = 0;
    value = std::strtod(plain.c_str(), &end);
    return end == plain.c_str() + plain.size() && errno == 0 && std::isfinite(value);
}

void Check(lxw_error error)
{
    if (error != LXW_NO_ERROR)
        throw services::Fault(lxw_strerror(error), "");
}

const char* CssAlign(HAlign align)
{
    switch (align) {
    case HAlign::Left:
        return "left";
    case HAlign::Center:
        return "center";
    case HAlign::Right:
        return "right";
    case HAlign::General:
        break;
    }
    return nullptr;
}

// "05 34 32.0" (hours) or "-00 49 23.9" (degrees) as a decimal number; nothing when the text
// holds no three numbers.
std::optional<double> Sexagesimal(std::string_view text)
{
    const std::string t = vb::Trim(text);
    double a = 0, b = 0, c = 0;
    char extra = 0;
    if (std::sscanf(t.c_str(), "%lf %lf %lf %c", &a, &b, &c, &extra) != 3)
        return std::nullopt;
    const double magnitude = std::fabs(a) + b / 60.0 + c / 3600.0;
    return !t.empty() && t[0] == '-' ? -magnitude : magnitude;
}

} // namespace

bool IsNumericExportColumn(int col)
{
    return col == 10 || col == 11 || (col >= 16 && col <= 18) || (col >= 20 && col <= 23);
}

void WriteGridExcel(const Grid& grid, const std::filesystem::path& file,
                    const std::filesystem::path& logFile)
{
    // The file is made here first, so that a place it cannot be written to is named as the
    // runtime names it, before the workbook is built.
    services::OutputFile(file).Close();
    lxw_workbook_options options{};
    options.constant_memory = LXW_TRUE;
    const std::string name = file.string();
    lxw_workbook* book = workbook_new_opt(name.c_str(), &options);
    if (!book)
        throw services::Fault(services::FileErrorText(errno ? errno : EIO), "");
    // The workbook is freed by its close; a fault on the way closes it too.
    struct Closer
    {
        lxw_workbook* book;
        ~Closer()
        {
            if (book)
                workbook_close(book);
        }
    } closer{book};

    lxw_worksheet* sheet = workbook_add_worksheet(book, "sheet1");
    lxw_format* bold = workbook_add_format(book);
    format_set_bold(bold);
    lxw_format* number = workbook_add_format(book);
    format_set_num_format(number, "0.00");

    const std::vector<int> cols = VisibleColumns(grid);
    for (std::size_t i = 0; i < cols.size(); ++i) {
        const auto c = static_cast<lxw_col_t>(i);
        Check(worksheet_set_column(sheet, c, c, grid.ColWidth(cols[i]) + 1, nullptr));
    }
    worksheet_freeze_panes(sheet, 1, 0);

    for (std::size_t i = 0; i < cols.size(); ++i)
        Check(worksheet_write_string(sheet, 0, static_cast<lxw_col_t>(i),
                                     grid.Header(cols[i]).c_str(), bold));
    lxw_row_t out = 1;
    std::string text;
    for (int row = 1; row <= grid.MaxRows(); ++row) {
        if (grid.RowHidden(row))
            continue;
        for (std::size_t i = 0; i < cols.size(); ++i) {
            const auto c = static_cast<lxw_col_t>(i);
            text.assign(grid.Text(row, cols[i]));
            double value = 0;
            if (IsNumericExportColumn(cols[i]) && CellNumber(text, value))
                Check(worksheet_write_number(sheet, out, c, value, number));
            else
                Check(worksheet_write_string(sheet, out, c, text.c_str(), nullptr));
        }
        ++out;
    }
    closer.book = nullptr;
    Check(workbook_close(book));
    AppendLog(logFile, file, static_cast<int>(out) - 1, static_cast<int>(cols.size()));
}

void WriteGridHtml(const Grid& grid, const std::filesystem::path& file,
                   const std::filesystem::path& logFile)
{
    services::OutputFile out(file);
    const std::vector<int> cols = VisibleColumns(grid);
    std::string text = "<!DOCTYPE html>\n<html>\n<head>\n<meta charset=\"utf-8\">\n<title>";
    services::AppendHtmlEscaped(text, grid.Tag());
    text += "</title>\n<style>\ntable { border-collapse: collapse; }\n"
            "th, td { border: 1px solid #999; padding: 1px 4px; white-space: pre; }\n"
            "th { background: #eee; }\n";
    for (std::size_t i = 0; i < cols.size(); ++i)
        if (const char* align = CssAlign(grid.TypeHAlign(cols[i])))
            text += "td:nth-child(" + std::to_string(i + 1) + ") { text-align: " + align + "; }\n";
    text += "</style>\n</head>\n<body>\n<h1>";
    services::AppendHtmlEscaped(text, grid.Tag());
    text += "</h1>\n<table>\n<thead>\n<tr>";
    for (const int col : cols) {
        text += "<th>";
        services::AppendHtmlEscaped(text, grid.Header(col));
        text += "</th>";
    }
    text += "</tr>\n</thead>\n<tbody>\n";
    out.Write(text);
    for (int row = 1; row <= grid.MaxRows(); ++row) {
        if (grid.RowHidden(row))
            continue;
        text = "<tr>";
        for (const int col : cols) {
            text += "<td>";
            services::AppendHtmlEscaped(text, grid.Text(row, col));
            text += "</td>";
        }
        text += "</tr>\n";
        out.Write(text);
    }
    out.Write("</tbody>\n</table>\n</body>\n</html>\n");
    out.Close();
    AppendLog(logFile, file, VisibleRows(grid), static_cast<int>(cols.size()));
}

void WriteSkyList(const Grid& grid, const std::filesystem::path& file)
{
    services::OutputFile out(file);
    out.Write("SkySafariObservingListVersion=3.0\n");
    std::string text;
    for (int row = 1; row <= grid.MaxRows(); ++row) {
        if (grid.RowHidden(row))
            continue;
        text = "SkyObject=BeginObject\n   ObjectID=4,-1,-1\n   CatalogNumber=" +
               vb::Trim(grid.Text(row, 4)) + "\n";
        const std::string other = vb::Trim(grid.Text(row, 5));
        if (!other.empty())
            text += "   CatalogNumber=" + other + "\n";
        text += "EndObject=SkyObject\n";
        out.Write(text);
    }
    out.Close();
}

void WriteObservingList(const Grid& grid, const ObservingListSite& site,
                        const std::filesystem::path& file)
{
    services::OutputFile out(file);
    QByteArray bytes;
    QXmlStreamWriter xml(&bytes);
    xml.setAutoFormatting(true);
    const auto flush = [&] {
        out.Write(std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())));
        bytes.clear();
    };
    xml.writeStartDocument();
    xml.writeNamespace("http://observation.sourceforge.net/openastronomylog", "oal");
    xml.writeStartElement("http://observation.sourceforge.net/openastronomylog", "observations");
    xml.writeAttribute("version", "2.0");
    xml.writeStartElement("geodate");
    xml.writeTextElement("name", QString::fromStdString(site.name));
    xml.writeTextElement("province", "");
    xml.writeTextElement("country", "");
    xml.writeTextElement("date", QString::fromStdString(site.date));
    xml.writeEndElement();
    xml.writeStartElement("targets");
    for (int row = 1; row <= grid.MaxRows(); ++row) {
        if (grid.RowHidden(row))
            continue;
        const QString id = QString::fromStdString(vb::Trim(grid.Text(row, 4)));
        xml.writeStartElement("target");
        xml.writeAttribute("id", QString(id).remove(' '));
        xml.writeTextElement("datasource", "Selvane");
        xml.writeTextElement("name", id);
        const std::optional<double> ra = Sexagesimal(grid.Text(row, 7));
        const std::optional<double> dec = Sexagesimal(grid.Text(row, 8));
        if (ra && dec) {
            xml.writeStartElement("position");
            xml.writeStartElement("ra");
            xml.writeAttribute("unit", "deg");
            xml.writeCharacters(QString::number(*ra * 15.0, 'f', 6));
            xml.writeEndElement();
            xml.writeStartElement("dec");
            xml.writeAttribute("unit", "deg");
            xml.writeCharacters(QString::number(*dec, 'f', 6));
            xml.writeEndElement();
            xml.writeEndElement();
        }
        xml.writeEndElement();
        if (bytes.size() > (1 << 16))
            flush();
    }
    xml.writeEndElement();
    xml.writeEndElement();
    xml.writeEndDocument();
    flush();
    out.Close();
}

} // namespace spread
