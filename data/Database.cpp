#include "data/Database.h"

#include "data/JetSql.h"
#include "services/Fault.h"
#include "services/Vb.h"

#include <cctype>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <system_error>
#include <utility>

namespace data {

namespace {

[[noreturn]] void Fail(const std::string& message)
{
    throw services::Fault(message, "");
}

[[noreturn]] void FailFrom(sqlite3* db)
{
    const int code = sqlite3_extended_errcode(db);
    if ((code & 0xff) == SQLITE_READONLY)
        Fail(ReadOnlyMessage);
    Fail(sqlite3_errmsg(db));
}

// Prepares exactly one statement; text after it is refused.
sqlite3_stmt* Prepare(sqlite3* db, const std::string& sql)
{
    sqlite3_stmt* stmt = nullptr;
    const char* tail = nullptr;
    if (sqlite3_prepare_v2(db, sql.c_str(), static_cast<int>(sql.size()), &stmt, &tail) !=
        SQLITE_OK)
        FailFrom(db);
    for (const char* p = tail; p && *p; ++p)
        if (!std::isspace(static_cast<unsigned char>(*p)) && *p != ';') {
            sqlite3_finalize(stmt);
            Fail(SecondStatementMessage);
        }
    if (!stmt)
        Fail("Invalid SQL statement; expected 'DELETE', 'INSERT', 'PROCEDURE', 'SELECT', or "
             "'UPDATE'.");
    return stmt;
}

std::string Quoted(std::string_view name)
{
    std::string out = "\"";
    for (char c : name) {
        if (c == '"')
            out += '"';
        out += c;
    }
    return out + '"';
}

// The text form of a stored double as the engine gives it: up to 15 significant digits.
std::string NumberText(double value)
{
    char buffer[40];
    std::snprintf(buffer, sizeof buffer, "%.15g", value);
    return buffer;
}

} // namespace

// ---------------------------------------------------------------------------------------------
// Field

bool Field::IsNull() const
{
    return rs_->IsNull(index_);
}
std::string_view Field::Text() const
{
    return rs_->Text(index_);
}
double Field::Double() const
{
    return rs_->Double(index_);
}
long long Field::Long() const
{
    return rs_->Long(index_);
}
const std::string& Field::Name() const
{
    return rs_->names_[index_];
}
void Field::Set(std::string_view text)
{
    rs_->EditCell(index_).value = std::string(text);
}
void Field::Set(double value)
{
    rs_->EditCell(index_).value = value;
}
void Field::Set(long long value)
{
    rs_->EditCell(index_).value = value;
}
void Field::SetNull()
{
    rs_->EditCell(index_).value = std::monostate{};
}

// ---------------------------------------------------------------------------------------------
// Recordset

Recordset::Recordset(Recordset&& other) noexcept
{
    *this = std::move(other);
}

Recordset& Recordset::operator=(Recordset&& other) noexcept
{
    if (this != &other) {
        Close();
        db_ = other.db_;
        stmt_ = std::exchange(other.stmt_, nullptr);
        sql_ = std::move(other.sql_);
        names_ = std::move(other.names_);
        qualified_ = std::move(other.qualified_);
        origins_ = std::move(other.origins_);
        declared_ = std::move(other.declared_);
        numberText_ = std::move(other.numberText_);
        eof_ = other.eof_;
        bof_ = other.bof_;
        position_ = other.position_;
        count_ = other.count_;
        pendingLast_ = other.pendingLast_;
        held_ = other.held_;
        offset_ = other.offset_;
        table_ = std::move(other.table_);
        rows_ = std::move(other.rows_);
        rowids_ = std::move(other.rowids_);
        deleted_ = std::move(other.deleted_);
        mode_ = other.mode_;
        buffer_ = std::move(other.buffer_);
        touched_ = std::move(other.touched_);
    }
    return *this;
}

Recordset::~Recordset()
{
    Close();
}

void Recordset::Close()
{
    if (stmt_)
        sqlite3_finalize(stmt_);
    stmt_ = nullptr;
    rows_.clear();
    eof_ = bof_ = true;
}

int Recordset::FindField(std::string_view name) const
{
    for (size_t i = 0; i < names_.size(); ++i)
        if (services::vb::SameText(names_[i], name))
            return static_cast<int>(i);
    for (size_t i = 0; i < qualified_.size(); ++i)
        if (!qualified_[i].empty() && services::vb::SameText(qualified_[i], name))
            return static_cast<int>(i);
    return -1;
}

Field Recordset::Fields(std::string_view name)
{
    const int index = FindField(name);
    if (index < 0)
        Fail(ItemNotFoundMessage);
    return Field(this, index);
}

Field Recordset::Fields(int index)
{
    if (index < 0 || index >= FieldCount())
        Fail(ItemNotFoundMessage);
    return Field(this, index);
}

void Recordset::Step()
{
    const int rc = sqlite3_step(stmt_);
    if (rc == SQLITE_ROW) {
        ++position_;
        if (position_ + 1 > count_)
            count_ = position_ + 1;
        eof_ = false;
        return;
    }
    eof_ = true;
    if (rc != SQLITE_DONE)
        FailFrom(db_);
}

void Recordset::Restart()
{
    sqlite3_reset(stmt_);
    position_ = -1;
    pendingLast_ = false;
    Step();
}

void Recordset::MoveFirst()
{
    if (bof_)
        Fail(NoCurrentRecordMessage);
    if (held_) {
        position_ = 0;
        eof_ = rows_.empty();
        return;
    }
    Restart();
}

void Recordset::MoveLast()
{
    if (bof_)
        Fail(NoCurrentRecordMessage);
    if (held_) {
        position_ = static_cast<long>(rows_.size()) - 1;
        eof_ = rows_.empty();
        return;
    }
    // The rows are counted by the engine without decoding them; the statement is brought to
    // the last row only when a field of it is read.
    sqlite3_stmt* count = Prepare(db_, "SELECT count(*) FROM (" + sql_ + ")");
    const int rc = sqlite3_step(count);
    const long total = rc == SQLITE_ROW ? static_cast<long>(sqlite3_column_int64(count, 0)) : 0;
    sqlite3_finalize(count);
    if (rc != SQLITE_ROW)
        FailFrom(db_);
    count_ = total;
    eof_ = total == 0;
    pendingLast_ = total > 0;
}

void Recordset::PositionAtPendingLast() const
{
    auto* self = const_cast<Recordset*>(this);
    self->pendingLast_ = false;
    if (position_ < 0 || position_ > count_ - 1) {
        sqlite3_reset(stmt_);
        self->position_ = -1;
    }
    while (position_ < count_ - 1) {
        self->Step();
        if (eof_)
            break;
    }
}

void Recordset::MoveNext()
{
    if (eof_)
        Fail(NoCurrentRecordMessage);
    if (held_) {
        ++position_;
        eof_ = position_ >= static_cast<long>(rows_.size());
        return;
    }
    if (pendingLast_)
        PositionAtPendingLast();
    Step();
}

long Recordset::RecordCount() const
{
    if (held_) {
        long live = 0;
        for (bool d : deleted_)
            live += d ? 0 : 1;
        return live;
    }
    return count_;
}

void Recordset::CheckCurrent() const
{
    if (eof_ || position_ < 0)
        Fail(NoCurrentRecordMessage);
    if (held_ && deleted_[position_])
        Fail("Record is deleted.");
}

const Recordset::Cell& Recordset::CellAt(int index) const
{
    if (mode_ != EditMode::None && touched_[index])
        return buffer_[index];
    CheckCurrent();
    return rows_[position_][index];
}

// The current row's value of a column of a streamed set. The value is the statement's own,
// read through the value routines, which skip the statement routines' per-call locking and
// error bookkeeping: the set is read by one thread at a time.
inline sqlite3_value* Recordset::StreamedValue(int index) const
{
    if (pendingLast_)
        PositionAtPendingLast();
    if (eof_ || position_ < 0) // a streamed set has no deleted rows
        Fail(NoCurrentRecordMessage);
    return sqlite3_column_value(stmt_, StatementColumn(index));
}

bool Recordset::IsNull(int index) const
{
    if (!held_ && mode_ == EditMode::None)
        return sqlite3_value_type(StreamedValue(index)) == SQLITE_NULL;
    return std::holds_alternative<std::monostate>(CellAt(index).value);
}

std::string_view Recordset::Text(int index) const
{
    if (!held_ && mode_ == EditMode::None) {
        sqlite3_value* value = StreamedValue(index);
        if (sqlite3_value_type(value) == SQLITE_FLOAT) {
            // The engine's text of a double drops a zero fraction ("4", not "4.0").
            auto& slot = numberText_[index];
            const int n =
                std::snprintf(slot.data(), slot.size(), "%.15g", sqlite3_value_double(value));
            return {slot.data(), static_cast<size_t>(n)};
        }
        const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
        if (!text)
            return {};
        return {text, static_cast<size_t>(sqlite3_value_bytes(value))};
    }
    const Cell& cell = CellAt(index);
    if (const auto* s = std::get_if<std::string>(&cell.value))
        return *s;
    if (const auto* l = std::get_if<long long>(&cell.value))
        cell.text = std::to_string(*l);
    else if (const auto* d = std::get_if<double>(&cell.value))
        cell.text = NumberText(*d);
    else
        cell.text.clear();
    return cell.text;
}

int Recordset::ValueType(int index) const
{
    if (!held_ && mode_ == EditMode::None)
        return sqlite3_value_type(StreamedValue(index));
    const Cell& cell = CellAt(index);
    if (std::holds_alternative<long long>(cell.value))
        return SQLITE_INTEGER;
    if (std::holds_alternative<double>(cell.value))
        return SQLITE_FLOAT;
    if (std::holds_alternative<std::string>(cell.value))
        return SQLITE_TEXT;
    return SQLITE_NULL;
}

double Recordset::Double(int index) const
{
    if (!held_ && mode_ == EditMode::None)
        return sqlite3_value_double(StreamedValue(index));
    const Cell& cell = CellAt(index);
    if (const auto* d = std::get_if<double>(&cell.value))
        return *d;
    if (const auto* l = std::get_if<long long>(&cell.value))
        return static_cast<double>(*l);
    if (const auto* s = std::get_if<std::string>(&cell.value))
        return std::strtod(s->c_str(), nullptr);
    return 0;
}

long long Recordset::Long(int index) const
{
    if (!held_ && mode_ == EditMode::None)
        return sqlite3_value_int64(StreamedValue(index));
    const Cell& cell = CellAt(index);
    if (const auto* l = std::get_if<long long>(&cell.value))
        return *l;
    if (const auto* d = std::get_if<double>(&cell.value))
        return static_cast<long long>(*d);
    if (const auto* s = std::get_if<std::string>(&cell.value))
        return std::strtoll(s->c_str(), nullptr, 10);
    return 0;
}

Recordset::Cell& Recordset::EditCell(int index)
{
    if (mode_ == EditMode::None)
        Fail(UpdateWithoutEditMessage);
    if (origins_[index].empty())
        Fail("Field '" + names_[index] + "' is based on an expression and cannot be edited.");
    touched_[index] = true;
    return buffer_[index];
}

void Recordset::AddNew()
{
    if (!Updatable())
        Fail(ReadOnlyMessage);
    mode_ = EditMode::AddNew;
    buffer_.assign(names_.size(), Cell{});
    touched_.assign(names_.size(), false);
}

void Recordset::Edit()
{
    if (!Updatable())
        Fail(ReadOnlyMessage);
    CheckCurrent();
    mode_ = EditMode::Edit;
    buffer_.assign(names_.size(), Cell{});
    touched_.assign(names_.size(), false);
}

void Recordset::CancelUpdate()
{
    mode_ = EditMode::None;
    buffer_.clear();
    touched_.clear();
}

namespace {

void Bind(sqlite3* db, sqlite3_stmt* stmt, int slot,
          const std::variant<std::monostate, long long, double, std::string>& value)
{
    int rc = SQLITE_OK;
    if (const auto* l = std::get_if<long long>(&value))
        rc = sqlite3_bind_int64(stmt, slot, *l);
    else if (const auto* d = std::get_if<double>(&value))
        rc = sqlite3_bind_double(stmt, slot, *d);
    else if (const auto* s = std::get_if<std::string>(&value))
        rc = sqlite3_bind_text(stmt, slot, s->data(), static_cast<int>(s->size()),
                               SQLITE_TRANSIENT);
    else
        rc = sqlite3_bind_null(stmt, slot);
    if (rc != SQLITE_OK)
        FailFrom(db);
}

void RunWrite(sqlite3* db, sqlite3_stmt* stmt)
{
    const int rc = sqlite3_step(stmt);
    if (rc != SQLITE_DONE) {
        const int code = sqlite3_extended_errcode(db);
        std::string message = sqlite3_errmsg(db);
        sqlite3_finalize(stmt);
        if ((code & 0xff) == SQLITE_READONLY)
            Fail(ReadOnlyMessage);
        Fail(message);
    }
    sqlite3_finalize(stmt);
}

} // namespace

void Recordset::Update()
{
    if (mode_ == EditMode::None)
        Fail(UpdateWithoutEditMessage);
    std::vector<int> columns;
    for (size_t i = 0; i < touched_.size(); ++i)
        if (touched_[i])
            columns.push_back(static_cast<int>(i));
    if (mode_ == EditMode::AddNew) {
        std::string names, placeholders;
        for (int c : columns) {
            names += (names.empty() ? "" : ", ") + Quoted(origins_[c]);
            placeholders += placeholders.empty() ? "?" : ", ?";
        }
        const std::string sql = columns.empty()
                                    ? "INSERT INTO " + table_ + " DEFAULT VALUES"
                                    : "INSERT INTO " + table_ + " (" + names + ") VALUES (" +
                                          placeholders + ")";
        sqlite3_stmt* stmt = Prepare(db_, sql);
        for (size_t k = 0; k < columns.size(); ++k)
            Bind(db_, stmt, static_cast<int>(k + 1), buffer_[columns[k]].value);
        RunWrite(db_, stmt);
        // The new row joins the end of the set, as it does in an editable set of the engine;
        // the current row stays where it was.
        const long long rowid = sqlite3_last_insert_rowid(db_);
        sqlite3_stmt* reread = Prepare(db_, "SELECT * FROM " + table_ + " WHERE rowid = ?");
        sqlite3_bind_int64(reread, 1, rowid);
        std::vector<Cell> row(names_.size());
        if (sqlite3_step(reread) == SQLITE_ROW) {
            const int n = sqlite3_column_count(reread);
            for (size_t i = 0; i < names_.size(); ++i)
                for (int k = 0; k < n; ++k)
                    if (services::vb::SameText(sqlite3_column_name(reread, k), origins_[i])) {
                        switch (sqlite3_column_type(reread, k)) {
                        case SQLITE_INTEGER:
                            row[i].value = static_cast<long long>(sqlite3_column_int64(reread, k));
                            break;
                        case SQLITE_FLOAT:
                            row[i].value = sqlite3_column_double(reread, k);
                            break;
                        case SQLITE_NULL:
                            break;
                        default:
                            row[i].value = std::string(
                                reinterpret_cast<const char*>(sqlite3_column_text(reread, k)),
                                static_cast<size_t>(sqlite3_column_bytes(reread, k)));
                        }
                        break;
                    }
        }
        sqlite3_finalize(reread);
        rows_.push_back(std::move(row));
        rowids_.push_back(rowid);
        deleted_.push_back(false);
        if (rows_.size() == 1) {
            bof_ = false;
            position_ = 0;
            eof_ = false;
        }
    } else {
        if (!columns.empty()) {
            std::string sets;
            for (int c : columns)
                sets += (sets.empty() ? "" : ", ") + Quoted(origins_[c]) + " = ?";
            sqlite3_stmt* stmt =
                Prepare(db_, "UPDATE " + table_ + " SET " + sets + " WHERE rowid = ?");
            for (size_t k = 0; k < columns.size(); ++k)
                Bind(db_, stmt, static_cast<int>(k + 1), buffer_[columns[k]].value);
            sqlite3_bind_int64(stmt, static_cast<int>(columns.size() + 1), rowids_[position_]);
            RunWrite(db_, stmt);
            for (int c : columns)
                rows_[position_][c].value = buffer_[c].value;
        }
    }
    CancelUpdate();
}

void Recordset::Delete()
{
    if (!Updatable())
        Fail(ReadOnlyMessage);
    CheckCurrent();
    sqlite3_stmt* stmt = Prepare(db_, "DELETE FROM " + table_ + " WHERE rowid = ?");
    sqlite3_bind_int64(stmt, 1, rowids_[position_]);
    RunWrite(db_, stmt);
    // As in the engine, the deleted row stays current until the next move.
    deleted_[position_] = true;
}

// ---------------------------------------------------------------------------------------------
// Database

std::string SqliteUri(const std::filesystem::path& path, bool readOnly, bool immutable)
{
    std::string uri = "file:";
    const std::string text = std::filesystem::absolute(path).string();
    for (unsigned char c : text) {
        if (std::isalnum(c) || std::strchr("/-_.~", c))
            uri += static_cast<char>(c);
        else {
            char buffer[4];
            std::snprintf(buffer, sizeof buffer, "%%%02X", c);
            uri += buffer;
        }
    }
    std::string query;
    if (readOnly)
        query += "mode=ro";
    if (immutable)
        query += std::string(query.empty() ? "" : "&") + "immutable=1";
    return query.empty() ? uri : uri + "?" + query;
}

std::string CheckDatabaseFile(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return "Could not open the file '" + path.string() + "'.";
    char header[20] = {};
    in.read(header, sizeof header);
    const auto got = static_cast<size_t>(in.gcount());
    if (got >= 19 && std::memcmp(header + 4, "Standard Jet DB", 15) == 0)
        return "'" + path.string() +
               "' is a Jet database of the earlier edition, which Selvane cannot read. "
               "Selvane reads SQLite 3 databases only.";
    if (got < 16 || std::memcmp(header, "SQLite format 3", 16) != 0)
        return "Unrecognized database format '" + path.string() + "'.";
    return {};
}

std::unique_ptr<Database> Database::Open(const std::filesystem::path& path,
                                         const OpenOptions& options)
{
    std::error_code ec;
    const bool exists = std::filesystem::exists(path, ec);
    if (!exists && !options.create)
        Fail("Could not find file '" + path.string() + "'.");
    if (exists && std::filesystem::file_size(path, ec) > 0) {
        if (std::string problem = CheckDatabaseFile(path); !problem.empty())
            Fail(problem);
    } else if (exists && !options.create) {
        Fail("Unrecognized database format '" + path.string() + "'.");
    }

    const bool readOnly = options.readOnly || options.exclusive;
    int flags = SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX;
    flags |= readOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE;
    if (options.create && !readOnly)
        flags |= SQLITE_OPEN_CREATE;
    std::unique_ptr<Database> db(new Database);
    db->path_ = path;
    const std::string uri = SqliteUri(path, readOnly, options.exclusive);
    if (sqlite3_open_v2(uri.c_str(), &db->db_, flags, nullptr) != SQLITE_OK) {
        std::string message = db->db_ ? sqlite3_errmsg(db->db_) : "out of memory";
        Fail("Could not open '" + path.string() + "': " + message);
    }
    sqlite3_extended_result_codes(db->db_, 1);
    sqlite3_busy_timeout(db->db_, 3000);
    // Reading the schema proves the file is a whole database before anyone relies on it.
    char* error = nullptr;
    if (sqlite3_exec(db->db_, "SELECT count(*) FROM sqlite_master", nullptr, nullptr, &error) !=
        SQLITE_OK) {
        std::string message = error ? error : sqlite3_errmsg(db->db_);
        sqlite3_free(error);
        Fail("The database '" + path.string() + "' cannot be read: " + message);
    }
    if (options.wal && !db->ReadOnly()) {
        if (sqlite3_exec(db->db_, "PRAGMA journal_mode=WAL; PRAGMA synchronous=FULL", nullptr,
                         nullptr, &error) != SQLITE_OK) {
            std::string message = error ? error : sqlite3_errmsg(db->db_);
            sqlite3_free(error);
            Fail("Could not open '" + path.string() + "': " + message);
        }
    }
    return db;
}

Database::~Database()
{
    Close();
}

void Database::Close()
{
    if (db_)
        sqlite3_close_v2(db_);
    db_ = nullptr;
}

bool Database::ReadOnly() const
{
    return sqlite3_db_readonly(db_, "main") == 1;
}

Recordset Database::OpenRecordset(std::string_view sql, RecordsetType type)
{
    if (!db_)
        Fail("Object invalid or no longer set.");
    Recordset rs;
    rs.db_ = db_;
    rs.sql_ = TranslateJetSql(sql);
    sqlite3_stmt* stmt = Prepare(db_, rs.sql_);
    const int n = sqlite3_column_count(stmt);
    if (n == 0) {
        sqlite3_finalize(stmt);
        Fail("Invalid operation.");
    }

    // An editable set writes to the one table all its columns come from.
    std::string table, schema;
    bool single = type == Dynaset;
    for (int i = 0; i < n; ++i) {
        const char* t = sqlite3_column_table_name(stmt, i);
        const char* s = sqlite3_column_database_name(stmt, i);
        const char* o = sqlite3_column_origin_name(stmt, i);
        rs.names_.emplace_back(sqlite3_column_name(stmt, i));
        rs.qualified_.push_back(t && o ? std::string(t) + "." + o : std::string());
        rs.origins_.push_back(o ? o : "");
        const char* declared = sqlite3_column_decltype(stmt, i);
        rs.declared_.push_back(declared ? declared : "");
        if (!t || !s)
            single = false;
        else if (table.empty())
            table = t, schema = s;
        else if (table != t || schema != s)
            single = false;
    }
    if (single) {
        // The rowid goes in front as column 0, so that writes find their row.
        size_t start = rs.sql_.find_first_not_of(" \t\r\n");
        std::string_view head = std::string_view(rs.sql_).substr(start, 6);
        std::string_view next = std::string_view(rs.sql_).substr(start + 6);
        const size_t word = next.find_first_not_of(" \t\r\n");
        const bool distinct = word != std::string_view::npos &&
                              next.size() >= word + 8 &&
                              services::vb::SameText(next.substr(word, 8), "distinct");
        sqlite3_stmt* withRowid = nullptr;
        if (services::vb::SameText(head, "select") && !distinct) {
            const std::string rewritten = rs.sql_.substr(0, start + 6) + " " + Quoted(table) +
                                          ".rowid," + rs.sql_.substr(start + 6);
            if (sqlite3_prepare_v2(db_, rewritten.c_str(), -1, &withRowid, nullptr) != SQLITE_OK)
                withRowid = nullptr;
        }
        if (withRowid) {
            sqlite3_finalize(stmt);
            stmt = withRowid;
            rs.offset_ = 1;
            rs.table_ = Quoted(schema) + "." + Quoted(table);
        }
    }
    rs.stmt_ = stmt;
    rs.numberText_.resize(rs.names_.size());

    if (type == Snapshot || !rs.Updatable()) {
        rs.Step();
        rs.bof_ = rs.eof_;
        return rs;
    }

    // An editable set holds its rows, so that writes during the walk cannot disturb it.
    for (;;) {
        const int rc = sqlite3_step(stmt);
        if (rc == SQLITE_DONE)
            break;
        if (rc != SQLITE_ROW)
            FailFrom(db_);
        rs.rowids_.push_back(sqlite3_column_int64(stmt, 0));
        std::vector<Recordset::Cell> row(rs.names_.size());
        for (int i = 0; i < n; ++i) {
            const int column = i + 1;
            switch (sqlite3_column_type(stmt, column)) {
            case SQLITE_INTEGER:
                row[i].value = static_cast<long long>(sqlite3_column_int64(stmt, column));
                break;
            case SQLITE_FLOAT:
                row[i].value = sqlite3_column_double(stmt, column);
                break;
            case SQLITE_NULL:
                break;
            default:
                row[i].value = std::string(
                    reinterpret_cast<const char*>(sqlite3_column_text(stmt, column)),
                    static_cast<size_t>(sqlite3_column_bytes(stmt, column)));
            }
        }
        rs.rows_.push_back(std::move(row));
    }
    sqlite3_finalize(stmt);
    rs.stmt_ = nullptr;
    rs.held_ = true;
    rs.deleted_.assign(rs.rows_.size(), false);
    rs.count_ = static_cast<long>(rs.rows_.size());
    rs.position_ = 0;
    rs.eof_ = rs.bof_ = rs.rows_.empty();
    return rs;
}

long Database::Execute(std::string_view sql)
{
    if (!db_)
        Fail("Object invalid or no longer set.");
    sqlite3_stmt* stmt = Prepare(db_, TranslateJetSql(sql));
    if (sqlite3_column_count(stmt) > 0) {
        sqlite3_finalize(stmt);
        Fail("Cannot execute a select query.");
    }
    RunWrite(db_, stmt);
    return static_cast<long>(sqlite3_changes(db_));
}

void Database::Attach(const std::filesystem::path& path, const std::string& schema,
                      bool immutable)
{
    sqlite3_stmt* stmt = Prepare(db_, "ATTACH DATABASE ? AS " + Quoted(schema));
    const std::string uri = SqliteUri(path, true, immutable);
    sqlite3_bind_text(stmt, 1, uri.c_str(), -1, SQLITE_TRANSIENT);
    RunWrite(db_, stmt);
}

void Database::Detach(const std::string& schema)
{
    RunWrite(db_, Prepare(db_, "DETACH DATABASE " + Quoted(schema)));
}

bool Database::IsAttached(const std::string& schema) const
{
    return db_ && sqlite3_db_filename(db_, schema.c_str()) != nullptr;
}

} // namespace data
