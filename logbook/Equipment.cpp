#include "logbook/Equipment.h"

#include "data/Database.h"
#include "services/Fault.h"
#include "services/OutputFile.h"
#include "services/UiPort.h"

#include <QString>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <set>

namespace logbook {

namespace {

namespace vb = services::vb;

std::u32string Characters(std::string_view text)
{
    const QList<uint> ucs4 =
        QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())).toUcs4();
    return std::u32string(ucs4.begin(), ucs4.end());
}

std::string Utf8(const std::u32string& chars)
{
    return QString::fromUcs4(chars.data(), static_cast<qsizetype>(chars.size())).toStdString();
}

size_t Length(std::string_view text)
{
    return Characters(text).size();
}

// Characters [first, first + count) of a text; npos for count: to the end.
std::string Mid(std::string_view text, size_t first, size_t count = std::u32string::npos)
{
    const std::u32string chars = Characters(text);
    if (first >= chars.size())
        return {};
    return Utf8(chars.substr(first, count));
}

// Padded with blanks on the right until it has width characters, then cut to width.
std::string PadRight(std::string_view text, size_t width)
{
    std::u32string chars = Characters(text);
    chars.resize(width, U' ');
    return Utf8(chars);
}

// Padded with blanks on the left until it has width characters, then its first width kept.
std::string PadLeft(std::string_view text, size_t width)
{
    std::u32string chars = Characters(text);
    if (chars.size() < width)
        chars.insert(0, width - chars.size(), U' ');
    chars.resize(width);
    return Utf8(chars);
}

// The value of a number typed under the regional decimal sign.
double TypedValue(const std::string& text, const vb::Regional& regional)
{
    std::string plain = text;
    const std::string& point = regional.decimalchar;
    if (!point.empty() && point != ".")
        for (size_t at = plain.find(point); at != std::string::npos;
             at = plain.find(point, at + 1))
            plain.replace(at, point.size(), ".");
    return vb::Val(plain);
}

// One numeric box of an add: trimmed, warned about when longer than width, padded on the left
// and cut to width, then replaced by its value. Returns the value.
double NumericBox(services::UiPort& ui, std::string& box, size_t width, const char* warning,
                  const vb::Regional& regional)
{
    const std::string trimmed = vb::Trim(box);
    if (Length(trimmed) > width)
        ui.ShowMessage(warning, TruncationTitle, "U");
    const double value = TypedValue(PadLeft(trimmed, width), regional);
    box = vb::Format(value, "General Number", regional);
    return value;
}

void NameBox(services::UiPort& ui, std::string& box, const char* warning)
{
    const std::string trimmed = vb::Trim(box);
    if (Length(trimmed) > kScopeNameWidth)
        ui.ShowMessage(warning, TruncationTitle, "U");
    box = PadRight(trimmed, kScopeNameWidth);
}

// "00.0" with a full stop, whatever the regional decimal sign, so that the file is the same in
// every locale.
std::string FileDecimal(double value)
{
    return vb::Format(value, "00.0");
}

[[noreturn]] void ThrowErrno(int error)
{
    throw services::Fault(services::FileErrorText(error), "");
}

// Writes every byte; returns 0, or the errno of the failure.
int WriteAll(int fd, const std::string& bytes)
{
    size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            return errno;
        done += static_cast<size_t>(n);
    }
    return 0;
}

// A result other than the expected one throws the engine's message.
void Check(sqlite3* db, int rc, int expected = SQLITE_OK)
{
    if (rc != expected)
        throw services::Fault(sqlite3_errmsg(db), "");
}

std::string Folded(const std::string& text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()))
        .toCaseFolded()
        .toStdString();
}

} // namespace

std::optional<EquipmentKind> ParseEquipmentKind(std::string_view text)
{
    if (vb::SameText(text, "scope"))
        return EquipmentKind::Scope;
    if (vb::SameText(text, "eyepiece"))
        return EquipmentKind::Eyepiece;
    if (vb::SameText(text, "ccd"))
        return EquipmentKind::Ccd;
    if (vb::SameText(text, "exp"))
        return EquipmentKind::Exp;
    return std::nullopt;
}

const char* EquipmentFileName(EquipmentKind kind)
{
    switch (kind) {
    case EquipmentKind::Scope:
        return "scope.dat";
    case EquipmentKind::Eyepiece:
        return "eyepiece.dat";
    case EquipmentKind::Ccd:
        return "ccd.dat";
    case EquipmentKind::Exp:
        return "exp.dat";
    }
    return "";
}

const char* UpdateLocation(EquipmentKind kind)
{
    switch (kind) {
    case EquipmentKind::Scope:
        return "frmEditEquipment.UpdateScope";
    case EquipmentKind::Eyepiece:
        return "frmEditEquipment.UpdateEye";
    case EquipmentKind::Ccd:
        return "frmEditEquipment.UpdateCCD";
    case EquipmentKind::Exp:
        return "frmEditEquipment.UpdateExp";
    }
    return "";
}

std::vector<std::string> ReadEquipmentFile(const data::ProgramDir& dir, EquipmentKind kind)
{
    const std::filesystem::path path = dir.File(EquipmentFileName(kind));
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        throw services::Fault(errno == ENOENT ? "File not found" : services::FileErrorText(errno),
                              "");
    std::string text;
    char buffer[8192];
    for (;;) {
        const ssize_t n = ::read(fd, buffer, sizeof buffer);
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0) {
            const int error = errno;
            ::close(fd);
            ThrowErrno(error);
        }
        if (n == 0)
            break;
        text.append(buffer, static_cast<size_t>(n));
    }
    ::close(fd);
    return vb::SplitLines(text);
}

void WriteEquipmentFile(const data::ProgramDir& dir, EquipmentKind kind,
                        const std::vector<std::string>& rows)
{
    const std::filesystem::path path = dir.File(EquipmentFileName(kind));
    std::string bytes;
    for (const std::string& row : rows)
        bytes += row + "\n";

    std::string temp = dir.File(std::string(".") + EquipmentFileName(kind) + ".XXXXXX").string();
    const int fd = ::mkstemp(temp.data());
    if (fd < 0)
        ThrowErrno(errno);
    // The new file keeps the old one's permissions.
    struct stat old{};
    ::fchmod(fd, ::stat(path.c_str(), &old) == 0 ? old.st_mode & 07777 : 0644);
    int error = WriteAll(fd, bytes);
    if (error == 0 && ::fsync(fd) != 0)
        error = errno;
    if (::close(fd) != 0 && error == 0)
        error = errno;
    if (error == 0 && ::rename(temp.c_str(), path.c_str()) != 0)
        error = errno;
    if (error != 0) {
        ::unlink(temp.c_str());
        ThrowErrno(error);
    }
    // The rename itself reaches the disk with the folder.
    const int folder = ::open(dir.path.empty() ? "." : dir.path.c_str(), O_RDONLY | O_DIRECTORY);
    if (folder >= 0) {
        ::fsync(folder);
        ::close(folder);
    }
}

std::vector<std::string> ReadEquipmentList(services::UiPort& ui, const data::ProgramDir& dir,
                                           EquipmentKind kind)
{
    std::vector<std::string> rows;
    services::Trap(ui, ReadListLocation, [&] { rows = ReadEquipmentFile(dir, kind); });
    return rows;
}

bool UpdateEquipmentFile(services::UiPort& ui, const data::ProgramDir& dir, EquipmentKind kind,
                         const std::vector<std::string>& rows)
{
    return services::Trap(ui, UpdateLocation(kind),
                          [&] { WriteEquipmentFile(dir, kind, rows); });
}

bool UpdateScope(services::UiPort& ui, const data::ProgramDir& dir,
                 const std::vector<std::string>& List1)
{
    return UpdateEquipmentFile(ui, dir, EquipmentKind::Scope, List1);
}

bool UpdateEye(services::UiPort& ui, const data::ProgramDir& dir,
               const std::vector<std::string>& List2)
{
    return UpdateEquipmentFile(ui, dir, EquipmentKind::Eyepiece, List2);
}

bool UpdateCCD(services::UiPort& ui, const data::ProgramDir& dir,
               const std::vector<std::string>& List3)
{
    return UpdateEquipmentFile(ui, dir, EquipmentKind::Ccd, List3);
}

bool UpdateExp(services::UiPort& ui, const data::ProgramDir& dir,
               const std::vector<std::string>& List4)
{
    return UpdateEquipmentFile(ui, dir, EquipmentKind::Exp, List4);
}

std::string MakeScopeRecord(services::UiPort& ui, ScopeBoxes& boxes,
                            const vb::Regional& regional)
{
    NameBox(ui, boxes.name, "Scope name will be truncated to 33 characters");
    const double aperture = NumericBox(ui, boxes.aperture, 3,
                                       "Aperature will be truncated to 3 characters", regional);
    const double fratio =
        NumericBox(ui, boxes.fratio, 4, "F-Ratio will be truncated to 4 characters", regional);
    return boxes.name + FileDecimal(fratio) + " " + vb::Format(aperture, "000");
}

std::string MakeEyepieceRecord(services::UiPort& ui, EyepieceBoxes& boxes,
                               const vb::Regional& regional)
{
    NameBox(ui, boxes.name, "Eyepiece name will be truncated to 33 characters");
    const double size = NumericBox(ui, boxes.size, 4,
                                   "Eyepiece Size will be truncated to 4 characters", regional);
    const double field = NumericBox(ui, boxes.field, 3,
                                    "Apparent Field will be truncated to 3 characters", regional);
    return boxes.name + FileDecimal(size) + vb::Format(field, " 00");
}

std::string MakeTextRecord(services::UiPort& ui, EquipmentKind kind, std::string_view text3)
{
    std::string text = vb::Trim(text3);
    if (Length(text) > kMaxEquipmentText)
        ui.ShowMessage(MaxLengthText,
                       kind == EquipmentKind::Exp ? ExpMaxLengthTitle : CcdMaxLengthTitle, "U");
    return text;
}

ScopeBoxes SplitScopeRecord(std::string_view record)
{
    ScopeBoxes boxes;
    boxes.name = Mid(record, 0, kScopeNameWidth);
    boxes.fratio = Mid(record, 33, 4);
    boxes.aperture = Mid(record, 37);
    return boxes;
}

bool AddEquipmentRow(services::UiPort& ui, const data::ProgramDir& dir, EquipmentKind kind,
                     std::vector<std::string>& rows, const std::string& record)
{
    rows.push_back(record);
    return UpdateEquipmentFile(ui, dir, kind, rows);
}

bool DeleteEquipmentRow(services::UiPort& ui, const data::ProgramDir& dir, EquipmentKind kind,
                        std::vector<std::string>& rows, int index)
{
    if (index < 0 || static_cast<size_t>(index) >= rows.size())
        return false;
    rows.erase(rows.begin() + index);
    return UpdateEquipmentFile(ui, dir, kind, rows);
}

std::string EquipmentName(EquipmentKind kind, std::string_view row)
{
    if (kind == EquipmentKind::Scope || kind == EquipmentKind::Eyepiece)
        return vb::Trim(Mid(row, 0, kScopeNameWidth));
    return vb::Trim(row);
}

void SyncEquipmentTable(data::Database& logbook, const data::ProgramDir& dir)
{
    std::vector<std::string> names;
    std::set<std::string> seen;
    for (EquipmentKind kind : {EquipmentKind::Scope, EquipmentKind::Eyepiece, EquipmentKind::Ccd}) {
        if (!std::filesystem::exists(dir.File(EquipmentFileName(kind))))
            continue;
        for (const std::string& row : ReadEquipmentFile(dir, kind)) {
            std::string name = EquipmentName(kind, row);
            if (!name.empty() && seen.insert(Folded(name)).second)
                names.push_back(std::move(name));
        }
    }

    sqlite3* db = logbook.Handle();
    Check(db, sqlite3_exec(db, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr));
    sqlite3_stmt* insert = nullptr;
    try {
        Check(db, sqlite3_exec(db, "DELETE FROM Equipment", nullptr, nullptr, nullptr));
        Check(db, sqlite3_prepare_v2(db, "INSERT INTO Equipment (Equipment) VALUES (?)", -1,
                                     &insert, nullptr));
        for (const std::string& name : names) {
            sqlite3_bind_text(insert, 1, name.data(), static_cast<int>(name.size()),
                              SQLITE_TRANSIENT);
            Check(db, sqlite3_step(insert), SQLITE_DONE);
            sqlite3_reset(insert);
        }
        sqlite3_finalize(insert);
        insert = nullptr;
        Check(db, sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr));
    } catch (...) {
        sqlite3_finalize(insert);
        sqlite3_exec(db, "ROLLBACK", nullptr, nullptr, nullptr);
        throw;
    }
}

std::vector<std::string> LoadEquipmentTable(data::Database& logbook)
{
    std::vector<std::string> names;
    data::Recordset rs = logbook.OpenRecordset("Select * From Equipment", data::Snapshot);
    data::Field equipment = rs.Fields("Equipment");
    while (!rs.Eof()) {
        if (!equipment.IsNull())
            names.push_back(equipment.Value());
        rs.MoveNext();
    }
    return names;
}

} // namespace logbook
