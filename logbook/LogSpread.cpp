#include "logbook/LogSpread.h"

#include "services/Fault.h"
#include "services/Vb.h"

#include <QDate>
#include <QString>
#include <QTextDocument>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <numeric>
#include <sstream>
#include <unordered_map>
#include <unordered_set>
#include <variant>

namespace logbook {

namespace vb = services::vb;

namespace {

constexpr const char* kSpreadSelect =
    "SELECT Logbook.ObjectID, SelvaneTable.OtherID, SelvaneTable.ObjectType, "
    "SelvaneTable.Constellation, Logbook.ObservationNumber, Logbook.Catalog, "
    "Logbook.DateObserved, Logbook.TimeObserved, Logbook.LocationObserved, Logbook.SeenFlag, "
    "Logbook.Transparency, Logbook.Seeing, Logbook.EquipmentUsed, Logbook.Rating, "
    "Logbook.ShortDescription, Logbook.ObservationText, Logbook.LogType, CCDLog.ImageName, "
    "CCDLog.ExposureTime, CCDLog.ExposureMode, CCDLog.Telescope, CCDLog.CCDcamera, "
    "CCDLog.FocalDistance, CCDLog.FieldOfView, CCDLog.CoolingRate, CCDLog.DarkFrame, "
    "CCDLog.FlatField, CCDLog.PictureRating, CCDLog.Notes FROM (CCDLog RIGHT JOIN Logbook ON "
    "CCDLog.ObservationNumber = Logbook.ObservationNumber) LEFT JOIN SelvaneTable ON "
    "(Logbook.Catalog = SelvaneTable.Catalog) AND (Logbook.ObjectId = SelvaneTable.ObjectID)";

// The field behind each plain cell, by column; nullptr for the cells made otherwise.
constexpr std::array<const char*, kLogSpreadCols> kCellFields{
    "ObjectID",      nullptr,         nullptr,         nullptr,        "ObjectType",
    "Constellation", "Catalog",       nullptr,         "TimeObserved", "LocationObserved",
    "Transparency",  "Seeing",        "EquipmentUsed", "Rating",       "ShortDescription",
    "LogType",       "ImageName",     "ExposureTime",  "ExposureMode", "Telescope",
    "CCDCamera",     "FocalDistance", "FieldOfView",   "CoolingRate",  nullptr,
    nullptr,         "PictureRating", nullptr};

// The widths a column has before any are stored, in characters.
constexpr std::array<double, kLogSpreadCols + 1> kDefaultWidths{
    4,  12, 7,  6,  6,  6,  6,  8,  10, 9,  14, 13, 14, 16, 7,
    30, 10, 16, 12, 16, 16, 14, 14, 16, 14, 10, 10, 18, 9};

// A field of the set by name, or none when the query lacks it.
std::optional<data::Field> Optional(data::Recordset& rs, const char* name)
{
    if (!rs.HasField(name))
        return std::nullopt;
    return rs.Fields(name);
}

std::string TextOf(const std::optional<data::Field>& field)
{
    return field ? field->Value() : std::string();
}

// Whether notes have words, read quickly: a letter or digit outside markup (and outside the
// head of an HTML page) is a word; anything else is decided by RichIsBlank.
bool HasNotes(std::string_view text)
{
    const std::size_t body = text.find("<body");
    std::size_t i = body == std::string_view::npos ? 0 : body;
    const bool markup = Qt::mightBeRichText(
        QString::fromUtf8(text.data(), static_cast<int>(std::min<std::size_t>(text.size(), 512))));
    bool inTag = false;
    for (; i < text.size(); ++i) {
        const char c = text[i];
        if (markup && c == '<')
            inTag = true;
        else if (markup && c == '>')
            inTag = false;
        else if (!inTag && std::isalnum(static_cast<unsigned char>(c)))
            return true;
    }
    return !RichIsBlank(text);
}

std::string Check(bool on)
{
    return on ? "1" : "0";
}

// A sort key of one cell: a number, or a text folded for a comparison without regard to case.
using SortKey = std::variant<double, QString>;

SortKey KeyOf(const LogSpreadRow& row, int col)
{
    const std::string& cell = row.cells[static_cast<std::size_t>(col - 1)];
    if (col == kSpreadNumberCol)
        return vb::Val(cell);
    if (col == kSpreadDateCol) {
        const QDate date = QDate::fromString(QString::fromStdString(row.storedDate), Qt::ISODate);
        // Deliberate: a text that is no date sorts before every date, as an empty cell does.
        return date.isValid() ? static_cast<double>(date.toJulianDay()) : -1e300;
    }
    return QString::fromStdString(cell).toCaseFolded();
}

} // namespace

std::string LogSpreadSql(const std::string& logType)
{
    std::string sql = kSpreadSelect;
    if (logType != ShowAllTypes)
        sql += " WHERE (((Logbook.LogType)='" + vb::QuoteForSql(logType) + "'))";
    return sql;
}

std::string ImageListSql(const std::string& logType)
{
    std::string sql = "Select Logbook.ObjectID, Logbook.Catalog, ImageLog.ImagePath, "
                      "ImageLog.ImageDescription from ImageLog INNER JOIN Logbook On "
                      "ImageLog.ObservationNumber = Logbook.ObservationNumber ";
    if (logType != ShowAllTypes)
        sql += "Where Logtype = '" + vb::QuoteForSql(logType) + "'";
    return sql;
}

const std::vector<std::string>& LogSortKeys()
{
    static const std::vector<std::string> keys = [] {
        const std::pair<const char*, int> names[] = {{"ObjectID", 1},
                                                     {"ObservationNumber", 2},
                                                     {"ObjectType", 5},
                                                     {"Constellation", 6},
                                                     {"Catalog", 7},
                                                     {"DateObserved", 8},
                                                     {"LocationObserved", 10},
                                                     {"Transparency", 11},
                                                     {"Seeing", 12},
                                                     {"EquipmentUsed", 13},
                                                     {"Rating", 14},
                                                     {"ShortDescription", 15},
                                                     {"LogType", 16},
                                                     {"CCD Image Name", 17},
                                                     {"CCD Exposure Time", 18},
                                                     {"CCD Exposure Mode", 19},
                                                     {"CCD Telescope", 20},
                                                     {"CCD Camera", 21},
                                                     {"CCD Focal Distance", 22},
                                                     {"CCD Field of View", 23},
                                                     {"CCD Cooling Rate", 24},
                                                     {"CCD Dark Frame", 25},
                                                     {"CCD Flat Field", 26},
                                                     {"CCD Picture Rating", 27}};
        std::vector<std::string> list;
        for (const auto& [name, col] : names) {
            std::string key = name;
            key.resize(58, ' ');
            list.push_back(key + "- Col " + vb::Format(col, "00"));
        }
        return list;
    }();
    return keys;
}

int SortKeyColumn(std::string_view text)
{
    if (text.size() < 2)
        return 0;
    const std::string_view digits = text.substr(text.size() - 2);
    if (digits.find_first_not_of("0123456789") != std::string_view::npos)
        return 0;
    const int col = static_cast<int>(vb::Val(digits));
    return col >= 1 && col <= kLogSpreadCols ? col : 0;
}

std::string SortKeyFor(std::string_view columnOrName)
{
    const bool number = !columnOrName.empty() && columnOrName.size() <= 2 &&
                        columnOrName.find_first_not_of("0123456789") == std::string_view::npos;
    for (const std::string& key : LogSortKeys()) {
        if (number ? SortKeyColumn(key) == static_cast<int>(vb::Val(columnOrName))
                   : vb::SameText(vb::Trim(key.substr(0, 58)), vb::Trim(columnOrName)))
            return key;
    }
    return {};
}

namespace {

// Sorts by the levels in order, each a column and its direction; stable.
void SortByLevels(std::vector<LogSpreadRow>& rows, const std::vector<std::pair<int, bool>>& by)
{
    struct Level
    {
        std::vector<SortKey> keys;
        bool descending;
    };
    std::vector<Level> levels;
    for (const auto& [col, descending] : by) {
        Level level{{}, descending};
        level.keys.reserve(rows.size());
        for (const LogSpreadRow& row : rows)
            level.keys.push_back(KeyOf(row, col));
        levels.push_back(std::move(level));
    }
    if (levels.empty())
        return;
    std::vector<std::size_t> order(rows.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        for (const Level& level : levels) {
            const SortKey& x = level.keys[a];
            const SortKey& y = level.keys[b];
            int c = 0;
            if (const auto* dx = std::get_if<double>(&x))
                c = *dx < std::get<double>(y) ? -1 : (std::get<double>(y) < *dx ? 1 : 0);
            else
                c = std::get<QString>(x).compare(std::get<QString>(y));
            if (c != 0)
                return level.descending ? c > 0 : c < 0;
        }
        return false;
    });
    std::vector<LogSpreadRow> sorted;
    sorted.reserve(rows.size());
    for (const std::size_t i : order)
        sorted.push_back(std::move(rows[i]));
    rows = std::move(sorted);
}

} // namespace

void AdvancedSort(std::vector<LogSpreadRow>& rows, const LogSortBoxes& boxes)
{
    std::vector<std::pair<int, bool>> levels;
    for (const LogSortBox& box : boxes)
        if (const int col = SortKeyColumn(box.text); col != 0)
            levels.emplace_back(col, box.descending);
    SortByLevels(rows, levels);
}

void SortColumn(std::vector<LogSpreadRow>& rows, int col, bool descending)
{
    if (col >= 1 && col <= kLogSpreadCols)
        SortByLevels(rows, {{col, descending}});
}

// ---------------------------------------------------------------------------------------------

LogSpread::LogSpread(LogContext& context) : widths(kDefaultWidths), ctx_(context) {}

bool LogSpread::Trap(const char* routine, const std::function<void()>& body)
{
    return services::Trap(ctx_.ui, std::string(LogSpreadLocation) + "." + routine, body);
}

void LogSpread::Init()
{
    LoadLogType();
    SQLFromEntry();
    SetDBColumns();
}

void LogSpread::LoadLogType()
{
    logTypeItems = {ShowAllTypes};
    Trap("LoadLogType", [&] {
        if (!ctx_.logbook)
            return;
        auto rs = ctx_.logbook->OpenRecordset("Select * From PerLogType Order By LogType",
                                              data::Snapshot);
        auto type = rs.Fields("LogType");
        for (; !rs.Eof(); rs.MoveNext())
            logTypeItems.push_back(type.Value());
    });
}

void LogSpread::SQLFromEntry()
{
    if (cboLogTypeFilter == LogTypeDesignText)
        cboLogTypeFilter = ShowAllTypes;
    sql = LogSpreadSql(cboLogTypeFilter);
}

bool LogSpread::LoadTheGrid()
{
    ctx_.ui.Busy(services::BusyKind::Loading);
    grdObjectLog.clear();
    ListView2.clear();
    RichTextBox1.clear();
    if (!queryOverride.empty()) {
        sql = queryOverride;
        queryOverride.clear();
    }
    const services::vb::Regional regional = data::RegionalOf(ctx_.prefs);
    const bool loaded = Trap("LoadTheGrid", [&] {
        if (!ctx_.logbook)
            throw services::Fault("The database is not open.", "");
        std::optional<data::Recordset> opened;
        try {
            opened.emplace(ctx_.logbook->OpenRecordset(sql, data::Snapshot));
        } catch (const std::exception&) {
            throw services::Fault(SqlFailedText + sql, "");
        }
        data::Recordset& rs = *opened;
        // The observations that have a row in ImageLog, read once rather than one look-up per
        // record.
        std::unordered_set<long long> withImages;
        std::unordered_map<std::string, std::string> dateCells;
        {
            auto images = ctx_.logbook->OpenRecordset("Select ObservationNumber From ImageLog",
                                                      data::Snapshot);
            auto imageNumber = images.Fields(0);
            for (; !images.Eof(); images.MoveNext())
                withImages.insert(imageNumber.Long());
        }
        std::array<std::optional<data::Field>, kLogSpreadCols> fields;
        for (std::size_t i = 0; i < fields.size(); ++i)
            if (kCellFields[i])
                fields[i] = Optional(rs, kCellFields[i]);
        const auto number = Optional(rs, "ObservationNumber");
        const auto date = Optional(rs, "DateObserved");
        const auto notes = Optional(rs, "ObservationText");
        const auto dark = Optional(rs, "DarkFrame");
        const auto flat = Optional(rs, "FlatField");
        const auto seen = Optional(rs, "SeenFlag");
        const auto id = fields[0];
        const auto otherId = Optional(rs, "OtherID");
        const auto catalog = fields[6];
        for (; !rs.Eof(); rs.MoveNext()) {
            LogSpreadRow row;
            for (std::size_t i = 0; i < fields.size(); ++i)
                if (fields[i])
                    row.cells[i] = fields[i]->Value();
            const std::string n = TextOf(number);
            row.cells[kSpreadNumberCol - 1] = n;
            row.storedDate = TextOf(date);
            // One night's entries share their date: each stored date is formatted once.
            auto shown = dateCells.find(row.storedDate);
            if (shown == dateCells.end())
                shown =
                    dateCells.emplace(row.storedDate, LogDateCell(row.storedDate, regional)).first;
            row.cells[kSpreadDateCol - 1] = shown->second;
            row.cells[kSpreadImageCol - 1] =
                Check(number && !number->IsNull() && withImages.count(number->Long()) > 0);
            const bool hasNotes = notes && HasNotes(notes->Text());
            row.cells[kSpreadNotesCol - 1] = Check(hasNotes);
            row.cells[kSpreadDarkFrameCol - 1] = Check(dark && dark->Long() == -1);
            row.cells[kSpreadFlatFieldCol - 1] = Check(flat && flat->Long() == -1);
            row.cells[kSpreadSeenCol - 1] = TextOf(seen);
            if (hasNotes) {
                NotesItem item;
                item.object = TextOf(id);
                if (id && !id->IsNull() && otherId && !otherId->IsNull())
                    item.otherId = otherId->Value();
                item.date = row.cells[kSpreadDateCol - 1];
                item.catalog = TextOf(catalog);
                item.number = number ? number->Long() : 0;
                ListView2.push_back(std::move(item));
            }
            grdObjectLog.push_back(std::move(row));
        }
    });
    if (loaded)
        lblNOM = std::to_string(grdObjectLog.size()) + " Objects";
    ctx_.ui.EndBusy();
    return loaded;
}

bool LogSpread::cmdRefresh_Click()
{
    SQLFromEntry();
    const bool loaded = LoadTheGrid();
    BuildListView1();
    return loaded;
}

void LogSpread::BuildListView1()
{
    ListView1.clear();
    Trap("BuildListView1", [&] {
        if (!ctx_.logbook)
            return;
        if (cboLogTypeFilter == LogTypeDesignText)
            cboLogTypeFilter = ShowAllTypes;
        auto rs = ctx_.logbook->OpenRecordset(ImageListSql(cboLogTypeFilter), data::Snapshot);
        auto id = rs.Fields("ObjectID"), catalog = rs.Fields("Catalog"),
             path = rs.Fields("ImagePath"), description = rs.Fields("ImageDescription");
        for (; !rs.Eof(); rs.MoveNext())
            ListView1.push_back({id.Value(), catalog.Value(), description.Value(), path.Value()});
    });
}

void LogSpread::ListView2_Click(int index)
{
    RichTextBox1.clear();
    if (index < 0 || index >= static_cast<int>(ListView2.size()))
        return;
    TakeNotesItem(index);
    Trap("ListView2_Click", [&] {
        auto rs = ctx_.logbook->OpenRecordset(
            "Select ObservationText From Logbook where ObservationNumber=" +
                std::to_string(ListView2[static_cast<std::size_t>(index)].number),
            data::Snapshot);
        if (!rs.Eof())
            RichTextBox1 = rs.Fields("ObservationText").Value();
    });
}

void LogSpread::TakeRow(int row)
{
    if (row < 1 || row > static_cast<int>(grdObjectLog.size()))
        return;
    const auto& cells = grdObjectLog[static_cast<std::size_t>(row - 1)].cells;
    ctx_.current.id = cells[0];
    ctx_.current.catalogId = cells[6];
    ctx_.current.observationNumber = static_cast<long long>(vb::Val(cells[kSpreadNumberCol - 1]));
}

void LogSpread::TakeNotesItem(int index)
{
    if (index < 0 || index >= static_cast<int>(ListView2.size()))
        return;
    const NotesItem& item = ListView2[static_cast<std::size_t>(index)];
    ctx_.current.id = item.object;
    ctx_.current.catalogId = item.catalog;
    ctx_.current.observationNumber = item.number;
}

void LogSpread::AdvancedSort(const LogSortBoxes& boxes)
{
    services::Trap(ctx_.ui, std::string(LogSortLocation) + ".AdvancedSort",
                   [&] { logbook::AdvancedSort(grdObjectLog, boxes); });
}

void LogSpread::SetDBColumns()
{
    Trap("setDBColumns", [&] {
        std::ifstream in(ctx_.dir.File(ColumnWidthsFileName), std::ios::binary);
        if (!in)
            return;
        std::stringstream text;
        text << in.rdbuf();
        std::vector<double> stored;
        for (const std::string& line : vb::SplitLines(text.str()))
            for (const std::string& field : vb::ReadRecord(line))
                stored.push_back(vb::Val(field));
        for (int col = 1; col <= 27 && col < static_cast<int>(stored.size()); ++col) {
            double width = stored[static_cast<std::size_t>(col)];
            if (ctx_.prefs.autosizespread && width != 0)
                width += 1;
            widths[static_cast<std::size_t>(col)] = width;
        }
    });
}

void LogSpread::SaveTheColumns()
{
    Trap("SaveTheColumns", [&] {
        std::string text;
        std::vector<vb::RecordField> record;
        for (int col = 0; col < kLogSpreadCols; ++col) {
            record.emplace_back(vb::Format(widths[static_cast<std::size_t>(col)], "0.##"));
            if (record.size() == 5 || col == kLogSpreadCols - 1) {
                text += vb::WriteRecord(record);
                record.clear();
            }
        }
        std::ofstream out(ctx_.dir.File(ColumnWidthsFileName), std::ios::binary | std::ios::trunc);
        out << text;
        if (!out)
            throw services::Fault("Path/File access error", "");
    });
}

} // namespace logbook
