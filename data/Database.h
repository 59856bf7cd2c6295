#pragma once
// The database engine operations the routines use, over the SQLite C API.
//
//   auto db = Database::Open(path, OpenOptions{});          // shared, read and write
//   Recordset rs = db->OpenRecordset(sql, Snapshot);        // read-only, streamed
//   Field mag = rs.Fields("magnitude");                     // resolved once, any case
//   while (!rs.Eof()) { double m = mag.Double(); rs.MoveNext(); }
//   db->Execute("Update SelvaneTable Set Observed = True Where ID = 4");
//
// SQL text is Jet's dialect (data/JetSql.h), one statement per call. A snapshot streams its rows
// from the statement: reading a field allocates nothing and a text stays valid until the next
// move. An editable set (Dynaset) of one table holds its rows and offers AddNew, Edit, Update
// and Delete; sets over joins, views or expressions are read-only.
// Every failure throws services::Fault with the engine's message and an empty location, for the
// caller's trap to place.

#include <sqlite3.h>

#include <array>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace data {

inline constexpr const char* ReadOnlyMessage = "Cannot update. Database or object is read-only.";
inline constexpr const char* NoCurrentRecordMessage = "No current record.";
inline constexpr const char* ItemNotFoundMessage = "Item not found in this collection.";
inline constexpr const char* UpdateWithoutEditMessage =
    "Update or CancelUpdate without AddNew or Edit.";
// The schema name under which RebuildLink attaches the object database to the logbook.
inline constexpr const char* LinkSchema = "SelvaneLink";

struct OpenOptions
{
    bool readOnly = false;
    // Read-only media: no locks and no journal are looked for (the file is immutable).
    bool exclusive = false;
    // The logbook: write-ahead log and full synchronous commits.
    bool wal = false;
    // Create the file when it is missing (new databases only).
    bool create = false;
};

enum RecordsetType
{
    Dynaset = 2,  // editable when it reads one table
    Snapshot = 4, // read-only, streamed
};

class Recordset;

// One column of a record set, resolved once by name; read it at each row.
class Field
{
public:
    Field() = default;
    bool IsNull() const;
    // The text form; empty for null. Valid until the set moves or the field is written.
    std::string_view Text() const;
    std::string Value() const { return std::string(Text()); }
    double Double() const;   // 0 for null
    long long Long() const;  // 0 for null
    bool Bool() const { return Long() != 0; }
    const std::string& Name() const;

    // Writing needs AddNew or Edit first.
    void Set(std::string_view text);
    void Set(const char* text) { Set(std::string_view(text)); }
    void Set(double value);
    void Set(long long value);
    void Set(int value) { Set(static_cast<long long>(value)); }
    void SetBool(bool value) { Set(value ? -1LL : 0LL); } // Yes/No fields hold -1 and 0
    void SetNull();

private:
    friend class Recordset;
    Field(Recordset* rs, int index) : rs_(rs), index_(index) {}
    Recordset* rs_ = nullptr;
    int index_ = -1;
};

class Recordset
{
public:
    Recordset(Recordset&& other) noexcept;
    Recordset& operator=(Recordset&& other) noexcept;
    Recordset(const Recordset&) = delete;
    Recordset& operator=(const Recordset&) = delete;
    ~Recordset();

    bool Eof() const { return eof_; }
    // True only for a set without rows, where both ends meet.
    bool Bof() const { return bof_; }
    // Rows visited so far; exact after MoveLast (and always for an editable set).
    long RecordCount() const;
    void MoveFirst();
    void MoveLast();
    void MoveNext();

    int FieldCount() const { return static_cast<int>(names_.size()); }
    const std::string& FieldName(int index) const { return names_[index]; }
    // A field by name without regard to case; "Table.Field" picks one of equal names in a
    // join. Throws ItemNotFoundMessage for a name the set does not hold.
    Field Fields(std::string_view name);
    Field Fields(int index);
    bool HasField(std::string_view name) const { return FindField(name) >= 0; }
    // "Table.Field" of the table column behind a field; empty for an expression.
    const std::string& QualifiedName(int index) const { return qualified_[index]; }
    // The declared type of the table column behind a field ("TEXT", "REAL", "INTEGER"); empty
    // for an expression.
    const std::string& DeclaredType(int index) const { return declared_[index]; }
    // The kind of the current row's value: SQLITE_NULL, SQLITE_INTEGER, SQLITE_FLOAT,
    // SQLITE_TEXT or SQLITE_BLOB.
    int ValueType(int index) const;

    bool Updatable() const { return !table_.empty(); }
    void AddNew();
    void Edit();
    void Update();
    void CancelUpdate();
    void Delete();
    void Close();

private:
    friend class Database;
    friend class Field;
    struct Cell
    {
        std::variant<std::monostate, long long, double, std::string> value;
        mutable std::string text; // the text form of a number, made when asked for
    };
    enum class EditMode
    {
        None,
        Edit,
        AddNew
    };

    Recordset() = default;
    int FindField(std::string_view name) const;
    void Step();
    void Restart();
    void PositionAtPendingLast() const;
    void CheckCurrent() const;
    const Cell& CellAt(int index) const;
    sqlite3_value* StreamedValue(int index) const;
    Cell& EditCell(int index);
    int StatementColumn(int index) const { return index + offset_; }

    bool IsNull(int index) const;
    std::string_view Text(int index) const;
    double Double(int index) const;
    long long Long(int index) const;

    sqlite3* db_ = nullptr;
    sqlite3_stmt* stmt_ = nullptr;
    std::string sql_;           // the translated text, for the count of MoveLast
    std::vector<std::string> names_;
    std::vector<std::string> qualified_; // "Table.Field" of each column, or empty
    std::vector<std::string> origins_;   // the table column behind each field
    std::vector<std::string> declared_;  // its declared type
    // The text of a streamed floating-point value, one slot per field, made without allocating.
    mutable std::vector<std::array<char, 32>> numberText_;
    bool eof_ = true;
    bool bof_ = true;
    long position_ = -1; // row index of the current row
    long count_ = 0;     // rows seen (streamed) or held
    mutable bool pendingLast_ = false;
    // Editable sets hold their rows; the statement is then finished.
    bool held_ = false;
    int offset_ = 0; // 1 when the statement's first column is the rowid
    std::string table_; // "schema"."table" an editable set writes to; empty: read-only
    std::vector<std::vector<Cell>> rows_;
    std::vector<long long> rowids_;
    std::vector<bool> deleted_;
    EditMode mode_ = EditMode::None;
    std::vector<Cell> buffer_;
    std::vector<bool> touched_;
};

class Database
{
public:
    // Opens an existing database file (or creates one when options.create is set).
    // Status: throws a Fault naming the file when it is missing, is a Jet database, is not a
    // database, or is damaged.
    static std::unique_ptr<Database> Open(const std::filesystem::path& path,
                                          const OpenOptions& options = {});
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    Recordset OpenRecordset(std::string_view sql, RecordsetType type = Dynaset);
    // Runs one INSERT, UPDATE or DELETE (or DDL); returns the number of rows changed.
    long Execute(std::string_view sql);
    // Attaches another file under a schema name, read-only.
    void Attach(const std::filesystem::path& path, const std::string& schema, bool immutable);
    void Detach(const std::string& schema);
    bool IsAttached(const std::string& schema) const;

    const std::filesystem::path& Path() const { return path_; }
    bool ReadOnly() const;
    sqlite3* Handle() const { return db_; }
    void Close();

private:
    Database() = default;
    sqlite3* db_ = nullptr;
    std::filesystem::path path_;
};

// The URI SQLite opens for a path, with mode=ro and immutable=1 as asked.
std::string SqliteUri(const std::filesystem::path& path, bool readOnly, bool immutable);

// Recognises the file kinds that Open refuses; empty text when the file looks like SQLite 3.
std::string CheckDatabaseFile(const std::filesystem::path& path);

} // namespace data
