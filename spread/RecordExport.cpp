#include "spread/RecordExport.h"

#include "logbook/LogEntryForm.h"
#include "services/Fault.h"
#include "services/OutputFile.h"
#include "services/Vb.h"

#include <QDate>

#include <set>

namespace spread {

namespace vb = services::vb;

namespace {

enum class ValueKind {
    Text,    // CDATA in XML
    Rich,    // text read through the rich text box
    Date,    // DateObserved: month/day/year
    Time,    // TimeObserved: a date field written as stored
    Boolean, // "True" / "False"
    Number,
};

enum class Writer {
    Csv,
    XmlLog,
    XmlObjects,
};

struct Column
{
    data::Field field;
    std::string name; // as written: the field name, or "Table.Field" where a join repeats it
    ValueKind kind = ValueKind::Number;
    bool declaredText = false;
    bool declared = false; // false for an expression: its kind follows each value
};

bool IsOneOf(std::string_view name, std::initializer_list<const char*> names)
{
    for (const char* n : names)
        if (vb::SameText(name, n))
            return true;
    return false;
}

std::vector<Column> ColumnsOf(data::Recordset& rs, Writer writer)
{
    std::set<std::string> seen, repeated;
    for (int i = 0; i < rs.FieldCount(); ++i)
        if (!seen.insert(vb::UCase(rs.FieldName(i))).second)
            repeated.insert(vb::UCase(rs.FieldName(i)));

    std::vector<Column> columns;
    for (int i = 0; i < rs.FieldCount(); ++i) {
        Column c;
        c.field = rs.Fields(i);
        const std::string& name = rs.FieldName(i);
        c.name = repeated.count(vb::UCase(name)) && !rs.QualifiedName(i).empty()
                     ? rs.QualifiedName(i)
                     : name;
        const std::string type = vb::UCase(rs.DeclaredType(i));
        c.declared = !type.empty();
        c.declaredText = type.find("TEXT") != std::string::npos ||
                         type.find("CHAR") != std::string::npos ||
                         type.find("CLOB") != std::string::npos;
        if (IsOneOf(name, {"Observed", "SeenFlag", "darkframe", "flatfield"}))
            c.kind = ValueKind::Boolean;
        else if (writer != Writer::XmlObjects && vb::SameText(name, "DateObserved"))
            c.kind = ValueKind::Date;
        else if (vb::SameText(name, "TimeObserved"))
            c.kind = ValueKind::Time;
        else if ((writer == Writer::Csv && IsOneOf(name, {"ObservationText", "Notes"})) ||
                 (writer == Writer::XmlLog &&
                  IsOneOf(name, {"Notes", "ObservationText", "ShortDescription"})))
            c.kind = ValueKind::Rich;
        else
            c.kind = c.declaredText ? ValueKind::Text : ValueKind::Number;
        columns.push_back(std::move(c));
    }
    return columns;
}

// A date stored as YYYY-MM-DD as month/day/year without padding; any other text as stored.
std::string DateText(std::string_view stored)
{
    const QDate date = QDate::fromString(
        QString::fromUtf8(stored.data(), static_cast<qsizetype>(stored.size())), Qt::ISODate);
    if (!date.isValid())
        return std::string(stored);
    return std::to_string(date.month()) + "/" + std::to_string(date.day()) + "/" +
           std::to_string(date.year());
}

// The value's text as the runtime gives it.
void ValueText(data::Recordset& rs, int index, const Column& c, std::string& out)
{
    out.clear();
    const int type = rs.ValueType(index);
    if (type == SQLITE_NULL)
        return;
    switch (c.kind) {
    case ValueKind::Boolean:
        out = c.field.Long() != 0 ? "True" : "False";
        return;
    case ValueKind::Date:
        out = DateText(c.field.Text());
        return;
    default:
        break;
    }
    if (type == SQLITE_FLOAT)
        out = vb::CStr(c.field.Double());
    else
        out.assign(c.field.Text());
}

// A text field, for XML: declared text, or an expression whose value is text.
bool IsTextValue(data::Recordset& rs, int index, const Column& c)
{
    if (c.kind == ValueKind::Text || c.kind == ValueKind::Rich)
        return true;
    if (c.kind != ValueKind::Number || c.declared)
        return false;
    return rs.ValueType(index) == SQLITE_TEXT;
}

// One value of the text export: double quotes removed, CR LF and lone CR "|", LF removed, a
// last "|" cut.
std::string CleanForText(std::string_view value)
{
    std::string out;
    out.reserve(value.size());
    for (std::size_t i = 0; i < value.size(); ++i) {
        const char ch = value[i];
        if (ch == '"' || ch == '\n')
            continue;
        if (ch == '\r') {
            out += '|';
            if (i + 1 < value.size() && value[i + 1] == '\n')
                ++i;
            continue;
        }
        out += ch;
    }
    if (!out.empty() && out.back() == '|')
        out.pop_back();
    return out;
}

std::string RichForText(std::string_view value)
{
    std::string joined;
    for (const std::string& line : RichTextLines(value)) {
        joined += CleanForText(line);
        joined += '|';
    }
    if (!joined.empty())
        joined.pop_back();
    return vb::Trim(joined);
}

std::string RichForXml(std::string_view value)
{
    std::string joined;
    for (const std::string& line : RichTextLines(value))
        joined += vb::Trim(line) + "\r\n";
    return joined;
}

void AppendQuoted(std::string& line, std::string_view text)
{
    line += '"';
    line += text;
    line += '"';
}

void WriteCsv(services::UiPort& ui, const std::string& sql, const std::filesystem::path& file,
              data::Database& database)
{
    ui.Pump();
    data::Recordset rs = database.OpenRecordset(sql, data::Snapshot);
    services::OutputFile out(file);
    const std::vector<Column> columns = ColumnsOf(rs, Writer::Csv);
    std::string line, value;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (i > 0)
            line += ',';
        AppendQuoted(line, vb::Trim(columns[i].name));
    }
    line += '\n';
    out.Write(line);
    for (; !rs.Eof(); rs.MoveNext()) {
        line.clear();
        for (std::size_t i = 0; i < columns.size(); ++i) {
            if (i > 0)
                line += ',';
            ValueText(rs, static_cast<int>(i), columns[i], value);
            AppendQuoted(line, columns[i].kind == ValueKind::Rich ? RichForText(value)
                                                                  : vb::Trim(CleanForText(value)));
        }
        line += '\n';
        out.Write(line);
    }
    out.Close();
}

void WriteXml(Writer writer, services::UiPort& ui, const std::string& sql,
              const std::filesystem::path& file, data::Database& database)
{
    ui.Pump();
    data::Recordset rs = database.OpenRecordset(sql, data::Snapshot);
    services::OutputFile out(file);
    std::vector<Column> columns = ColumnsOf(rs, writer);
    if (writer == Writer::XmlLog)
        for (Column& c : columns)
            for (std::size_t at; (at = c.name.find("\xC3\xB6")) != std::string::npos;)
                c.name.erase(at, 2);
    const char* record = writer == Writer::XmlLog ? "LOG" : "OBJECTS";
    const std::string open = std::string("<") + record + ">\n";
    const std::string close = std::string("</") + record + ">\n";

    out.Write("<?xml version=\"1.0\"?>\n<SELVANE2003>\n");
    std::string lines, value;
    for (; !rs.Eof(); rs.MoveNext()) {
        lines = open;
        for (std::size_t i = 0; i < columns.size(); ++i) {
            const Column& c = columns[i];
            const int index = static_cast<int>(i);
            ValueText(rs, index, c, value);
            if (c.kind == ValueKind::Rich)
                value = RichForXml(value);
            const bool cdata = IsTextValue(rs, index, c);
            lines += '<';
            lines += c.name;
            lines += cdata ? "><![CDATA[" : ">";
            lines += vb::Trim(value);
            lines += cdata ? "]]></" : "</";
            lines += c.name;
            lines += ">\n";
        }
        lines += close;
        out.Write(lines);
    }
    out.Write("</SELVANE2003>\n");
    out.Close();
}

} // namespace

std::vector<std::string> RichTextLines(std::string_view value)
{
    const std::string plain = logbook::RichPlainText(value);
    std::vector<std::string> lines;
    std::size_t start = 0;
    while (start < plain.size()) {
        std::size_t end = plain.find('\n', start);
        if (end == std::string::npos)
            end = plain.size();
        std::string line = plain.substr(start, end - start);
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        lines.push_back(std::move(line));
        start = end + 1;
    }
    return lines;
}

std::int16_t CSVExport(services::UiPort& ui, const std::string& sql,
                       const std::filesystem::path& file, data::Database& database)
{
    if (!services::Trap(ui, "TMM.CSVExport", [&] { WriteCsv(ui, sql, file, database); }))
        return 1;
    ui.ShowMessage(FinishedExportingText + file.string(), ExportCompleteTitle, "I");
    return 0;
}

std::int16_t XMLExportLog(services::UiPort& ui, const std::string& sql,
                          const std::filesystem::path& file, data::Database& database)
{
    return services::Trap(ui, "TMM.XMLExportLog",
                          [&] { WriteXml(Writer::XmlLog, ui, sql, file, database); })
               ? 0
               : 1;
}

std::int16_t XMLExportObjects(services::UiPort& ui, const std::string& sql,
                              const std::filesystem::path& file, data::Database& database)
{
    return services::Trap(ui, "TMM.XMLExportObjects",
                          [&] { WriteXml(Writer::XmlObjects, ui, sql, file, database); })
               ? 0
               : 1;
}

} // namespace spread
