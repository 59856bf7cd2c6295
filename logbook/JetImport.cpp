#include "logbook/JetImport.h"

#include "services/Fault.h"
#include "services/RtfReader.h"
#include "services/Vb.h"

#include <QFile>
#include <QProcess>
#include <QString>

#include <algorithm>
#include <map>
#include <memory>

namespace logbook {

namespace vb = services::vb;

namespace {

// How a column's value is read.
enum class Kind { Text, Date, Time, YesNo, Rich };

struct Column
{
    const char* name; // as this logbook spells it
    Kind kind;
};

struct TableColumns
{
    const char* table;
    std::vector<Column> columns;
};

// The tables taken from an old logbook and their columns. ObservationNumber is read separately
// to link the rows; Sequence and DataRec are given anew.
const std::vector<TableColumns>& Tables()
{
    static const std::vector<TableColumns> tables{
        {"Logbook",
         {{"ObjectID", Kind::Text},
          {"Catalog", Kind::Text},
          {"DateObserved", Kind::Date},
          {"TimeObserved", Kind::Time},
          {"LocationObserved", Kind::Text},
          {"EquipmentUsed", Kind::Text},
          {"OtherEquipment", Kind::Text},
          {"Seeing", Kind::Text},
          {"Transparency", Kind::Text},
          {"Rating", Kind::Text},
          {"ShortDescription", Kind::Text},
          {"ObservationText", Kind::Rich},
          {"SeenFlag", Kind::YesNo},
          {"LogType", Kind::Text}}},
        {"CCDLog",
         {{"ImageName", Kind::Text},
          {"ExposureTime", Kind::Text},
          {"ExposureMode", Kind::Text},
          {"Telescope", Kind::Text},
          {"CCDCamera", Kind::Text},
          {"FocalDistance", Kind::Text},
          {"FieldOfView", Kind::Text},
          {"Coolingrate", Kind::Text},
          {"darkframe", Kind::YesNo},
          {"flatfield", Kind::YesNo},
          {"PictureRating", Kind::Text},
          {"Notes", Kind::Rich}}},
        {"ImageLog", {{"ImageDescription", Kind::Text}, {"ImagePath", Kind::Text}}},
        {"SessionLog", {{"SessionDate", Kind::Date}, {"sessiontext", Kind::Rich}}},
        {"PerLogType", {{"LogType", Kind::Text}, {"LogTypeDesc", Kind::Text}}},
        {"Equipment", {{"Equipment", Kind::Text}}},
        {"ObservingSites",
         {{"ProfileName", Kind::Text},
          {"Location", Kind::Text},
          {"Latitude", Kind::Text},
          {"Longitude", Kind::Text},
          {"EastWest", Kind::Text},
          {"TimeZone", Kind::Text}}},
    };
    return tables;
}

services::Fault Failure(const std::string& message)
{
    return services::Fault(message, ImportJetLocation);
}

// ---------------------------------------------------------------------------------------------
// One line of mdb-json: an object of strings, numbers, true, false and null.

class JsonLine
{
public:
    explicit JsonLine(std::string_view text) : s_(text) {}

    // False when the line is no such object.
    bool Read(ImportRow& row)
    {
        Blanks();
        if (!Take('{'))
            return false;
        Blanks();
        if (Take('}'))
            return AtEnd();
        for (;;) {
            std::string name;
            Blanks();
            if (!String(name))
                return false;
            Blanks();
            if (!Take(':'))
                return false;
            Blanks();
            std::optional<std::string> value;
            if (!Value(value))
                return false;
            row.emplace_back(std::move(name), std::move(value));
            Blanks();
            if (Take('}'))
                return AtEnd();
            if (!Take(','))
                return false;
        }
    }

private:
    std::string_view s_;
    std::size_t i_ = 0;

    void Blanks()
    {
        while (i_ < s_.size() && (s_[i_] == ' ' || s_[i_] == '\t' || s_[i_] == '\r'))
            ++i_;
    }
    bool Take(char c)
    {
        if (i_ < s_.size() && s_[i_] == c) {
            ++i_;
            return true;
        }
        return false;
    }
    bool AtEnd()
    {
        Blanks();
        return i_ == s_.size();
    }
    bool Literal(std::string_view word)
    {
        if (s_.substr(i_, word.size()) != word)
            return false;
        i_ += word.size();
        return true;
    }

    bool Value(std::optional<std::string>& value)
    {
        if (i_ >= s_.size())
            return false;
        if (s_[i_] == '"') {
            value.emplace();
            return String(*value);
        }
        if (Literal("null"))
            return true;
        if (Literal("true")) {
            value = "-1";
            return true;
        }
        if (Literal("false")) {
            value = "0";
            return true;
        }
        const std::size_t start = i_;
        while (i_ < s_.size() &&
               std::string_view("+-0123456789.eE").find(s_[i_]) != std::string_view::npos)
            ++i_;
        if (i_ == start)
            return false;
        value = std::string(s_.substr(start, i_ - start));
        return true;
    }

    int Hex4()
    {
        if (i_ + 4 > s_.size())
            return -1;
        int v = 0;
        for (int k = 0; k < 4; ++k) {
            const char c = s_[i_ + k];
            const int d = c >= '0' && c <= '9'   ? c - '0'
                          : c >= 'a' && c <= 'f' ? c - 'a' + 10
                          : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                                 : -1;
            if (d < 0)
                return -1;
            v = v * 16 + d;
        }
        i_ += 4;
        return v;
    }

    bool String(std::string& out)
    {
        if (!Take('"'))
            return false;
        while (i_ < s_.size()) {
            const char c = s_[i_++];
            if (c == '"')
                return true;
            if (c != '\\') {
                out += c;
                continue;
            }
            if (i_ >= s_.size())
                return false;
            const char e = s_[i_++];
            switch (e) {
            case '"':
            case '\\':
            case '/':
                out += e;
                break;
            case 'b':
                out += '\b';
                break;
            case 'f':
                out += '\f';
                break;
            case 'n':
                out += '\n';
                break;
            case 'r':
                out += '\r';
                break;
            case 't':
                out += '\t';
                break;
            case 'u': {
                int unit = Hex4();
                if (unit < 0)
                    return false;
                char32_t c32 = static_cast<char32_t>(unit);
                if (unit >= 0xD800 && unit < 0xDC00 && s_.substr(i_, 2) == "\\u") {
                    i_ += 2;
                    const int low = Hex4();
                    if (low < 0xDC00 || low >= 0xE000)
                        return false;
                    c32 = 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
                }
                out += QString::fromUcs4(&c32, 1).toStdString();
                break;
            }
            default:
                return false;
            }
        }
        return false;
    }
};

// "YYYY-MM-DD HH:MM:SS" as mdb-json writes a date/time under the format the import asks for.
bool IsJetDateTime(std::string_view v)
{
    if (v.size() != 19)
        return false;
    for (std::size_t k = 0; k < v.size(); ++k) {
        const bool digit = v[k] >= '0' && v[k] <= '9';
        const char sep = k == 4 || k == 7 ? '-' : k == 10 ? ' ' : k == 13 || k == 16 ? ':' : 0;
        if (sep ? v[k] != sep : !digit)
            return false;
    }
    return true;
}

std::string Converted(Kind kind, const std::string& v)
{
    switch (kind) {
    case Kind::Date:
        return IsJetDateTime(v) ? v.substr(0, 10) : v;
    case Kind::Time:
        return IsJetDateTime(v) ? v.substr(11) : v;
    case Kind::YesNo:
        if (vb::SameText(vb::Trim(v), "True") || vb::SameText(vb::Trim(v), "Yes"))
            return "-1";
        return vb::Val(v) != 0 ? "-1" : "0";
    case Kind::Rich:
        return services::IsRtf(v) ? services::RtfToHtml(v) : v;
    case Kind::Text:
        break;
    }
    return v;
}

// A source row in the logbook's columns and forms.
ImportRow Mapped(const ImportRow& source, const TableColumns& table)
{
    ImportRow row;
    for (const Column& column : table.columns)
        for (const auto& [name, value] : source)
            if (vb::SameText(name, column.name)) {
                row.emplace_back(column.name, value ? std::optional(Converted(column.kind, *value))
                                                    : std::nullopt);
                break;
            }
    return row;
}

// The old observation number of a row; nullopt when it has none.
std::optional<long long> OldNumber(const ImportRow& source)
{
    for (const auto& [name, value] : source)
        if (vb::SameText(name, "ObservationNumber") && value && vb::IsNumeric(*value))
            return static_cast<long long>(vb::Val(*value));
    return std::nullopt;
}

const std::string* FindTable(const JetTables& tables, std::string_view name)
{
    for (const auto& [table, text] : tables.tables)
        if (vb::SameText(table, name))
            return &text;
    return nullptr;
}

std::string Duration(int ms)
{
    return ms % 1000 == 0 ? std::to_string(ms / 1000) + " seconds"
                          : std::to_string(ms) + " milliseconds";
}

// Starts one mdbtools program on the file.
std::unique_ptr<QProcess> StartTool(const std::string& program, const QStringList& args)
{
    auto process = std::make_unique<QProcess>();
    process->start(QString::fromStdString(program), args);
    return process;
}

// Waits for a program started by StartTool; its standard output.
std::string FinishTool(QProcess& process, const std::string& program, const std::string& path,
                       const JetTools& tools)
{
    if (!process.waitForStarted(tools.timeoutMs))
        throw Failure("The earlier logbook " + path + " cannot be read: the program " + program +
                      " (mdbtools) cannot be started. Is mdbtools installed?");
    if (!process.waitForFinished(tools.timeoutMs)) {
        process.kill();
        process.waitForFinished(5000);
        throw Failure("The earlier logbook " + path + " cannot be read: " + program +
                      " (mdbtools) did not finish within " + Duration(tools.timeoutMs) + ".");
    }
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
        std::string why = vb::Trim(process.readAllStandardError().toStdString());
        if (const auto end = why.find('\n'); end != std::string::npos)
            why = vb::Trim(why.substr(0, end));
        throw Failure("The earlier logbook " + path + " cannot be read: " + program +
                      " (mdbtools) failed" +
                      (process.exitStatus() == QProcess::NormalExit
                           ? " with status " + std::to_string(process.exitCode())
                           : std::string(" (it crashed)")) +
                      (why.empty() ? "" : ": " + why) + ".");
    }
    return process.readAllStandardOutput().toStdString();
}

} // namespace

JetTables ReadJetFile(const std::string& path, const JetTools& tools)
{
    QFile file(QString::fromStdString(path));
    if (!file.open(QIODevice::ReadOnly))
        throw Failure("The earlier logbook " + path + " cannot be opened.");
    // A Jet file names its engine in its first page: "Standard Jet DB" (Jet 3, Jet 4) or
    // "Standard ACE DB" (the later engine).
    const QByteArray head = file.read(32);
    file.close();
    if (head.size() < 19 ||
        (head.mid(4, 15) != "Standard Jet DB" && head.mid(4, 15) != "Standard ACE DB"))
        throw Failure(path + " is not a logbook of an earlier edition: it is no Jet database.");

    const QString file_ = QString::fromStdString(path);
    const std::string list =
        FinishTool(*StartTool(tools.tables, {"-1", file_}), tools.tables, path, tools);
    std::vector<std::string> names;
    for (const std::string& line : vb::SplitLines(list))
        if (const std::string name = vb::Trim(line); !name.empty())
            names.push_back(name);

    // The tables are read side by side; a program still running when another fails is ended
    // with its process.
    std::vector<std::pair<std::string, std::unique_ptr<QProcess>>> reads;
    for (const TableColumns& wanted : Tables()) {
        const auto found = std::find_if(names.begin(), names.end(), [&](const std::string& n) {
            return vb::SameText(n, wanted.table);
        });
        if (found != names.end())
            reads.emplace_back(*found, StartTool(tools.json, {"-T", "%Y-%m-%d %H:%M:%S", file_,
                                                              QString::fromStdString(*found)}));
        else if (vb::SameText(wanted.table, "Logbook"))
            throw Failure(path +
                          " is not a logbook of an earlier edition: it has no Logbook table.");
    }
    JetTables result;
    for (auto& [table, process] : reads)
        result.tables.emplace_back(table, FinishTool(*process, tools.json, path, tools));
    return result;
}

std::vector<ImportRow> ParseJetRows(std::string_view json, const std::string& table,
                                    const std::string& path)
{
    std::vector<ImportRow> rows;
    std::size_t start = 0;
    int lineNumber = 0;
    while (start < json.size()) {
        std::size_t end = json.find('\n', start);
        if (end == std::string_view::npos)
            end = json.size();
        const std::string_view line = json.substr(start, end - start);
        start = end + 1;
        ++lineNumber;
        if (vb::Trim(line).empty())
            continue;
        ImportRow row;
        if (!JsonLine(line).Read(row))
            throw Failure("The earlier logbook " + path + " cannot be read: mdb-json gave row " +
                          std::to_string(lineNumber) + " of table " + table +
                          " in a form that cannot be read.");
        rows.push_back(std::move(row));
    }
    return rows;
}

ImportBatch JetBatch(const JetTables& tables, const std::string& path)
{
    ImportBatch batch;
    auto rowsOf = [&](const TableColumns& table) {
        const std::string* text = FindTable(tables, table.table);
        return text ? ParseJetRows(*text, table.table, path) : std::vector<ImportRow>{};
    };
    const auto& all = Tables();
    auto table = [&](std::string_view name) -> const TableColumns& {
        return *std::find_if(all.begin(), all.end(),
                             [&](const TableColumns& t) { return name == t.table; });
    };

    // Entries in the order they were logged, which their old numbers keep.
    std::vector<ImportRow> logbook = rowsOf(table("Logbook"));
    std::stable_sort(logbook.begin(), logbook.end(), [](const ImportRow& a, const ImportRow& b) {
        const auto na = OldNumber(a), nb = OldNumber(b);
        return na && (!nb || *na < *nb);
    });
    std::map<long long, std::size_t> entryOf; // old number -> entry; the first row wins
    for (const ImportRow& source : logbook) {
        if (const auto n = OldNumber(source))
            entryOf.emplace(*n, batch.entries.size());
        batch.entries.push_back({Mapped(source, table("Logbook")), std::nullopt, {}});
    }
    for (const ImportRow& source : rowsOf(table("CCDLog"))) {
        const auto n = OldNumber(source);
        if (!n || !entryOf.count(*n))
            continue;
        ImportEntry& entry = batch.entries[entryOf[*n]];
        if (!entry.ccd)
            entry.ccd = Mapped(source, table("CCDLog"));
    }
    for (const ImportRow& source : rowsOf(table("ImageLog"))) {
        const auto n = OldNumber(source);
        if (n && entryOf.count(*n))
            batch.entries[entryOf[*n]].images.push_back(Mapped(source, table("ImageLog")));
    }
    const std::pair<const char*, std::vector<ImportRow>*> lists[] = {
        {"SessionLog", &batch.sessions},
        {"PerLogType", &batch.logTypes},
        {"Equipment", &batch.equipment},
        {"ObservingSites", &batch.sites}};
    for (const auto& [name, target] : lists)
        for (const ImportRow& source : rowsOf(table(name)))
            target->push_back(Mapped(source, table(name)));
    return batch;
}

} // namespace logbook
