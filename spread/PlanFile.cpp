#include "spread/PlanFile.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iterator>

#include "services/Fault.h"
#include "services/Vb.h"

namespace spread {

namespace {

namespace vb = services::vb;

// Hands out the records of a text one at a time. A record ends at CR LF, LF or CR outside
// double quotes, so that a note holding a line break reads back whole; a last record without
// an end counts. Quotes are counted by parity, which a doubled quote leaves unchanged.
class RecordReader
{
public:
    explicit RecordReader(std::string_view text) : text_(text) {}

    bool Next(std::string_view& record)
    {
        if (pos_ >= text_.size())
            return false;
        bool quoted = false;
        size_t end = pos_;
        while (end < text_.size()) {
            const char c = text_[end];
            if (c == '"')
                quoted = !quoted;
            else if ((c == '\r' || c == '\n') && !quoted)
                break;
            ++end;
        }
        record = text_.substr(pos_, end - pos_);
        pos_ = end;
        if (pos_ < text_.size()) {
            ++pos_;
            if (text_[end] == '\r' && pos_ < text_.size() && text_[pos_] == '\n')
                ++pos_;
        }
        return true;
    }

private:
    std::string_view text_;
    size_t pos_ = 0;
};

// The first line as Line Input reads it, up to the first CR or LF.
std::string_view FirstLine(std::string_view text)
{
    return text.substr(0, text.find_first_of("\r\n"));
}

bool Blank(std::string_view line)
{
    return line.find_first_not_of(" \t") == std::string_view::npos;
}

std::string FieldAt(std::vector<std::string>& fields, size_t index)
{
    return index < fields.size() ? std::move(fields[index]) : std::string();
}

// The id field as Input # reads it into a number: blank is 0, a number its value.
std::optional<double> RecordId(const std::string& field)
{
    const std::string text = vb::Trim(field);
    if (text.empty())
        return 0.0;
    if (!vb::IsNumeric(text))
        return std::nullopt;
    const double value = vb::Val(text);
    if (!std::isfinite(value))
        return std::nullopt;
    return value;
}

bool EndsWith(std::string_view text, std::string_view tail)
{
    return text.size() >= tail.size() && text.substr(text.size() - tail.size()) == tail;
}

} // namespace

PlanFormat DetectPlanFormat(std::string_view firstLine)
{
    return std::count(firstLine.begin(), firstLine.end(), ',') == 3 ? PlanFormat::New
                                                                     : PlanFormat::Old;
}

PlanRead ReadPlanText(std::string_view text)
{
    PlanRead read;
    read.format = DetectPlanFormat(FirstLine(text));
    RecordReader records(text);
    std::string_view line;
    while (records.Next(line)) {
        if (Blank(line))
            continue;
        if (static_cast<int>(read.entries.size()) >= kMaxPlanEntries) {
            read.truncated = true;
            break;
        }
        std::vector<std::string> fields = vb::ReadRecord(line);
        const std::optional<double> id = RecordId(fields.size() > 2 ? fields[2] : std::string());
        if (!id) {
            read.fault = TypeMismatchText;
            break;
        }
        PlanEntry entry;
        entry.PlanObjectID = FieldAt(fields, 0);
        entry.PlanCatalog = FieldAt(fields, 1);
        entry.PlanRecordID = *id;
        if (read.format == PlanFormat::New)
            entry.PlanNote = FieldAt(fields, 3);
        // Deliberate: the last id above 0, not the greatest, is what the caller is given.
        if (*id > 0)
            read.largestRecordId = *id;
        read.entries.push_back(std::move(entry));
    }
    return read;
}

std::string ReadPlanBytes(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios::binary);
    if (!in)
        throw services::Fault(FileNotFoundText, "");
    std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (in.bad())
        throw services::Fault(FileNotFoundText, "");
    return bytes;
}

std::string WritePlanText(const std::vector<PlanEntry>& entries)
{
    std::string text;
    for (const PlanEntry& e : entries) {
        if (e.PlanRecordID == 0)
            continue;
        text += vb::WriteRecord({e.PlanObjectID, e.PlanCatalog, e.PlanRecordID, e.PlanNote});
    }
    return text;
}

void WritePlanFile(const std::filesystem::path& path, const std::vector<PlanEntry>& entries)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    if (!out)
        throw services::Fault("Cannot write " + path.string(), "");
    const std::string text = WritePlanText(entries);
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
    out.close();
    if (!out)
        throw services::Fault("Cannot write " + path.string(), "");
}

bool IsShippedPlan(std::string_view path)
{
    const std::string upper = vb::UCase(path);
    for (const char* name : {"HCLUB1.PLN", "HCLUB2.PLN", "CALDWELL.PLN", "123096.PLN"})
        if (EndsWith(upper, name))
            return true;
    return false;
}

std::string ShippedIdSql(const std::string& objectId, const std::string& catalog)
{
    return "Select ID From SelvaneTable Where ObjectID = 'NGC " + vb::QuoteForSql(objectId) +
           "' and Catalog = '" + vb::QuoteForSql(catalog) + "'";
}

void RepairShippedIds(std::vector<PlanEntry>& entries, const PlanIdLookup& lookup)
{
    for (PlanEntry& e : entries)
        if (const std::optional<double> id = lookup(e.PlanObjectID, e.PlanCatalog))
            e.PlanRecordID = *id;
}

} // namespace spread
