#include "logbook/LogImport.h"

#include "logbook/ObservedFlag.h"
#include "services/Fault.h"
#include "services/Vb.h"

#include <sqlite3.h>

#include <map>
#include <set>

namespace logbook {

namespace vb = services::vb;

namespace {

void Check(sqlite3* db, int rc, int expected = SQLITE_OK)
{
    if (rc != expected)
        throw services::Fault(sqlite3_errmsg(db), "");
}

std::string Folded(std::string_view name)
{
    std::string out(name);
    for (char& c : out)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return out;
}

bool Blank(const std::optional<std::string>& value)
{
    return !value || vb::Trim(*value).empty();
}

// A row with its columns resolved against one table: canonical name to value. Columns the
// table lacks are dropped; of a column named twice the last value counts.
using Resolved = std::map<std::string, std::optional<std::string>>;

class Writer
{
public:
    explicit Writer(sqlite3* db) : db_(db) {}
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;
    ~Writer()
    {
        for (auto& [sql, stmt] : statements_)
            sqlite3_finalize(stmt);
    }

    Resolved Resolve(const std::string& table, const ImportRow& row,
                     std::initializer_list<const char*> skipped = {})
    {
        const auto& columns = Columns(table);
        std::set<std::string> skip;
        for (const char* name : skipped)
            skip.insert(Folded(name));
        Resolved out;
        for (const auto& [name, value] : row) {
            const std::string key = Folded(vb::Trim(name));
            auto found = columns.find(key);
            if (found == columns.end() || skip.count(key))
                continue;
            // A null in a column that must hold a value leaves the table's default.
            if (!value && found->second.notNull)
                out.erase(found->second.name);
            else
                out[found->second.name] = value;
        }
        return out;
    }

    long long Insert(const std::string& table, const Resolved& row)
    {
        std::string names, marks;
        for (const auto& [name, value] : row) {
            names += (names.empty() ? "\"" : ", \"") + name + "\"";
            marks += marks.empty() ? "?" : ", ?";
        }
        const std::string sql =
            row.empty() ? "INSERT INTO " + table + " DEFAULT VALUES"
                        : "INSERT INTO " + table + " (" + names + ") VALUES (" + marks + ")";
        sqlite3_stmt* stmt = Prepared(sql);
        Bind(stmt, row);
        Check(db_, sqlite3_step(stmt), SQLITE_DONE);
        return sqlite3_last_insert_rowid(db_);
    }

    // Whether the table has a row whose key columns equal the row's (a missing one is null).
    bool Has(const std::string& table, const Resolved& row, std::initializer_list<const char*> keys)
    {
        std::string where;
        Resolved values;
        for (const char* key : keys) {
            where += (where.empty() ? "\"" : " AND \"") + std::string(key) + "\" IS ?";
            auto found = row.find(key);
            values[std::string(key)] =
                found == row.end() ? std::optional<std::string>() : found->second;
        }
        sqlite3_stmt* stmt = Prepared("SELECT 1 FROM " + table + " WHERE " + where + " LIMIT 1");
        int index = 1;
        for (const char* key : keys)
            BindOne(stmt, index++, values[key]);
        const int rc = sqlite3_step(stmt);
        if (rc != SQLITE_ROW && rc != SQLITE_DONE)
            Check(db_, rc, SQLITE_ROW);
        // A statement left on its row keeps the transaction's read locks after the commit,
        // those on the linked object database too, so that its observed flags cannot be set.
        sqlite3_reset(stmt);
        return rc == SQLITE_ROW;
    }

    void Exec(const char* sql) { Check(db_, sqlite3_exec(db_, sql, nullptr, nullptr, nullptr)); }

private:
    struct Column
    {
        std::string name;
        bool notNull = false;
    };

    sqlite3* db_;
    std::map<std::string, std::map<std::string, Column>> tables_;
    std::map<std::string, sqlite3_stmt*> statements_;

    const std::map<std::string, Column>& Columns(const std::string& table)
    {
        auto found = tables_.find(table);
        if (found != tables_.end())
            return found->second;
        auto& columns = tables_[table];
        sqlite3_stmt* stmt = Prepared("PRAGMA table_info(" + table + ")");
        int rc;
        while ((rc = sqlite3_step(stmt)) == SQLITE_ROW) {
            const auto* name = reinterpret_cast<const char*>(sqlite3_column_text(stmt, 1));
            columns[Folded(name)] = Column{name, sqlite3_column_int(stmt, 3) != 0};
        }
        Check(db_, rc, SQLITE_DONE);
        if (columns.empty())
            throw services::Fault("Could not find table '" + table + "'", "");
        return columns;
    }

    sqlite3_stmt* Prepared(const std::string& sql)
    {
        sqlite3_stmt*& stmt = statements_[sql];
        if (!stmt)
            Check(db_, sqlite3_prepare_v2(db_, sql.c_str(), -1, &stmt, nullptr));
        sqlite3_reset(stmt);
        sqlite3_clear_bindings(stmt);
        return stmt;
    }

    static void BindOne(sqlite3_stmt* stmt, int index, const std::optional<std::string>& value)
    {
        if (value)
            sqlite3_bind_text(stmt, index, value->data(), static_cast<int>(value->size()),
                              SQLITE_TRANSIENT);
        else
            sqlite3_bind_null(stmt, index);
    }

    static void Bind(sqlite3_stmt* stmt, const Resolved& row)
    {
        int index = 1;
        for (const auto& [name, value] : row)
            BindOne(stmt, index++, value);
    }
};

std::string Text(const Resolved& row, const char* column)
{
    auto found = row.find(column);
    return found == row.end() || !found->second ? std::string() : *found->second;
}

} // namespace

ImportResult ImportEntries(LogContext& ctx, const ImportBatch& batch,
                           const std::string& defaultType)
{
    ImportResult result;
    sqlite3* db = ctx.logbook->Handle();
    const std::string logType = vb::Trim(defaultType).empty() ? DefaultLogType : defaultType;
    // The objects to flag once the entries are committed: upper-cased id and catalogue id.
    std::map<std::pair<std::string, std::string>, long long> logged;

    Writer w(db);
    w.Exec("BEGIN IMMEDIATE");
    try {
        for (const ImportRow& row : batch.logTypes) {
            Resolved r = w.Resolve("PerLogType", row);
            if (!w.Has("PerLogType", r, {"LogType"}))
                w.Insert("PerLogType", r);
        }
        for (const ImportRow& row : batch.equipment) {
            Resolved r = w.Resolve("Equipment", row);
            if (!w.Has("Equipment", r, {"Equipment"}))
                w.Insert("Equipment", r);
        }
        for (const ImportRow& row : batch.sites) {
            Resolved r = w.Resolve("ObservingSites", row);
            if (!w.Has("ObservingSites", r, {"ProfileName"}))
                w.Insert("ObservingSites", r);
        }
        // A night the logbook already has keeps its own notes and sky readings.
        std::set<std::string> keptDates;
        for (const ImportRow& row : batch.sessions) {
            Resolved r = w.Resolve("SessionLog", row);
            if (w.Has("SessionLog", r, {"SessionDate"}))
                keptDates.insert(Folded(Text(r, "SessionDate")));
            else
                w.Insert("SessionLog", r);
        }
        for (const ImportRow& row : batch.sessionSky) {
            Resolved r = w.Resolve("SessionSky", row);
            if (!keptDates.count(Folded(Text(r, "SessionDate"))) &&
                !w.Has("SessionSky", r, {"SessionDate"}))
                w.Insert("SessionSky", r);
        }

        for (const ImportEntry& entry : batch.entries) {
            Resolved r = w.Resolve("Logbook", entry.logbook, {"ObservationNumber", "DataRec"});
            if (w.Has("Logbook", r, {"ObjectID", "Catalog", "DateObserved", "TimeObserved"})) {
                ++result.skipped;
                continue;
            }
            if (Blank(r["LogType"]))
                r["LogType"] = logType;
            const std::string id = Text(r, "ObjectID"), catalog = Text(r, "Catalog");
            const auto object = std::make_pair(vb::UCase(id), catalog);
            auto known = logged.find(object);
            const long long key =
                known != logged.end() ? known->second : ObjectKey(ctx.objectDb, id, catalog);
            r["DataRec"] = std::to_string(key);
            const long long number = w.Insert("Logbook", r);
            const std::string n = std::to_string(number);
            if (entry.ccd) {
                Resolved ccd = w.Resolve("CCDLog", *entry.ccd, {"ObservationNumber"});
                ccd["ObservationNumber"] = n;
                w.Insert("CCDLog", ccd);
            }
            for (const ImportRow& image : entry.images) {
                Resolved img = w.Resolve("ImageLog", image, {"Sequence", "ObservationNumber"});
                img["ObservationNumber"] = n;
                w.Insert("ImageLog", img);
            }
            result.numbers.push_back(number);
            logged.emplace(object, key);
        }
        w.Exec("COMMIT");
    } catch (...) {
        sqlite3_exec(db, "ROLLBACK", nullptr, nullptr, nullptr);
        throw;
    }

    // The flags follow the committed entries as after an add in the entry window; a failure
    // is told once and never takes an entry back.
    if (ctx.prefs.UseCd || !ctx.objectDb)
        return result;
    // One transaction for all the flags: a commit per object would be a disc sync per object.
    sqlite3* objects = ctx.objectDb->Handle();
    const bool batched = sqlite3_exec(objects, "BEGIN", nullptr, nullptr, nullptr) == SQLITE_OK;
    bool told = false;
    for (const auto& [object, key] : logged) {
        const auto& [id, catalog] = object;
        if (catalog.empty())
            continue;
        const auto mark = [&] { ctx.objectDb->Execute(ObservedUpdateSql(id, catalog, key)); };
        const std::string location = "ImportEntries.UpdateSelvaneTable";
        if (told)
            services::TrapSilently(ctx.ui, location, mark);
        else
            told = !services::Trap(ctx.ui, location, mark);
    }
    if (batched && sqlite3_exec(objects, "COMMIT", nullptr, nullptr, nullptr) != SQLITE_OK) {
        const std::string message = sqlite3_errmsg(objects);
        sqlite3_exec(objects, "ROLLBACK", nullptr, nullptr, nullptr);
        if (!told)
            ctx.ui.ReportFault(message, "ImportEntries.UpdateSelvaneTable");
    }
    return result;
}

} // namespace logbook
