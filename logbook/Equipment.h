#pragma once
// The equipment lists: four small text files of the program folder, one record per line, in the
// order of the list on the screen. A record is the list row as it stands.
//
//   scope.dat     columns 1-33 name (blank padded), 34-37 F-ratio "00.0", 38 blank,
//                 39-41 aperture in millimetres "000"
//   eyepiece.dat  columns 1-33 name, 34-37 size (focal length, mm) "00.0",
//                 38-40 apparent field in degrees " 00"
//   ccd.dat       free text, up to 100 characters
//   exp.dat       free text, up to 100 characters (readers keep the first 32)
//
// Numbers in the files always have a full stop as decimal sign, whatever the regional formats.
// Lines are written ended by LF and read ended by CR LF, LF or CR. A file is written whole under
// a temporary name in the same folder, flushed to the disk and renamed over the old one, so a
// crash leaves either the old list or the new one.
// Texts are UTF-8; columns and lengths count characters (code points), not bytes.
//
// The logbook's Equipment table is the pick list the entry forms offer for main equipment,
// telescope and camera; SyncEquipmentTable keeps it in step with the scope, eyepiece and CCD
// lists.

#include "data/ProgramDir.h"
#include "services/Vb.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace data {
class Database;
}
namespace services {
class UiPort;
}

namespace logbook {

enum class EquipmentKind
{
    Scope,    // scope.dat, List1
    Eyepiece, // eyepiece.dat, List2
    Ccd,      // ccd.dat, List3
    Exp,      // exp.dat, List4
};

// "scope", "eyepiece", "ccd", "exp" (any case); nullopt for anything else.
std::optional<EquipmentKind> ParseEquipmentKind(std::string_view text);
// "scope.dat", "eyepiece.dat", "ccd.dat", "exp.dat".
const char* EquipmentFileName(EquipmentKind kind);

inline constexpr int kScopeNameWidth = 33;
inline constexpr int kMaxEquipmentText = 100;

inline constexpr const char* ReadListLocation = "frmEditEquipment.sstab1_Click";
// "frmEditEquipment.UpdateScope", ".UpdateEye", ".UpdateCCD", ".UpdateExp".
const char* UpdateLocation(EquipmentKind kind);

inline constexpr const char* TruncationTitle = "Truncation has occurred";
inline constexpr const char* MaxLengthText = "Up to 100 characters are allowed.";
inline constexpr const char* CcdMaxLengthTitle = "Maximum Length Exceeded";
inline constexpr const char* ExpMaxLengthTitle = "Maximum length exceeded";

// The lines of one list file.
// Status: throws services::Fault "File not found" (or the system's reason) when the file cannot
//   be read.
std::vector<std::string> ReadEquipmentFile(const data::ProgramDir& dir, EquipmentKind kind);

// Writes the list as the whole file, each row ended by LF, through a temporary file renamed
// over the old one.
// Status: throws services::Fault ("Path not found", "Permission denied", ...) when the file
//   cannot be written; the old file then stands unchanged.
void WriteEquipmentFile(const data::ProgramDir& dir, EquipmentKind kind,
                        const std::vector<std::string>& rows);

// sstab1_Click's reading of a tab: the rows of the kind's file.
// Returned: the rows; empty when the file could not be read, which is reported through the
//   port's fault report.
// Location: frmEditEquipment.sstab1_Click
std::vector<std::string> ReadEquipmentList(services::UiPort& ui, const data::ProgramDir& dir,
                                           EquipmentKind kind);

// The rewrite of a file from its list, after an add or a delete.
// Returned: true when written; false when the fault was reported.
// Location: frmEditEquipment.UpdateScope, .UpdateEye, .UpdateCCD, .UpdateExp
bool UpdateScope(services::UiPort& ui, const data::ProgramDir& dir,
                 const std::vector<std::string>& List1);
bool UpdateEye(services::UiPort& ui, const data::ProgramDir& dir,
               const std::vector<std::string>& List2);
bool UpdateCCD(services::UiPort& ui, const data::ProgramDir& dir,
               const std::vector<std::string>& List3);
bool UpdateExp(services::UiPort& ui, const data::ProgramDir& dir,
               const std::vector<std::string>& List4);
// The one of the four for kind.
bool UpdateEquipmentFile(services::UiPort& ui, const data::ProgramDir& dir, EquipmentKind kind,
                         const std::vector<std::string>& rows);

// The boxes of the scope tab, Text1(0) to Text1(2).
struct ScopeBoxes
{
    std::string name;     // Text1(0)
    std::string aperture; // Text1(1), millimetres
    std::string fratio;   // Text1(2)
};

// The boxes of the eyepiece tab, Text2(0) to Text2(2).
struct EyepieceBoxes
{
    std::string name;  // Text2(0)
    std::string size;  // Text2(1), focal length in millimetres
    std::string field; // Text2(2), apparent field in degrees
};

// The record an add of a scope makes from its boxes.
// Given: boxes as typed; regional, whose decimal sign the typed numbers use.
// Returned: the record (name, F-ratio "00.0", a blank, aperture "000"); boxes as the add leaves
//   them: the name padded or cut to 33 characters, the aperture and F-ratio cut to 3 and 4.
// Notes: a name over 33, an aperture over 3 or an F-ratio over 4 characters (after trimming)
//   warns, in that order, with "Truncation has occurred", kind "U", and the add goes on.
//   A box that is not a number counts as 0.
std::string MakeScopeRecord(services::UiPort& ui, ScopeBoxes& boxes,
                            const services::vb::Regional& regional);

// The record an add of an eyepiece makes: name, size "00.0", apparent field " 00"; the same
// warnings for a name over 33, a size over 4 and a field over 3 characters.
std::string MakeEyepieceRecord(services::UiPort& ui, EyepieceBoxes& boxes,
                               const services::vb::Regional& regional);

// The record an add of a CCD or an exposure mode makes from text3: the trimmed text. Over 100
// characters warns "Up to 100 characters are allowed." (titles "Maximum Length Exceeded" for
// CCDs, "Maximum length exceeded" for modes, kind "U"); the text is added all the same.
std::string MakeTextRecord(services::UiPort& ui, EquipmentKind kind, std::string_view text3);

// The boxes a click on a scope row fills: the first 33 characters, 4 characters from the 34th,
// and from the 38th to the end (the blank before the aperture included). Short rows give empty
// or short boxes.
ScopeBoxes SplitScopeRecord(std::string_view record);

// Add: the record as the list's last row, then the file rewritten.
// Returned: true when the file was written.
bool AddEquipmentRow(services::UiPort& ui, const data::ProgramDir& dir, EquipmentKind kind,
                     std::vector<std::string>& rows, const std::string& record);

// Delete: the row at index (from 0) taken out of the list, then the file rewritten.
// Returned: false, changing nothing, when index is not a row; false when the rewrite failed
//   (the row is gone from the list all the same); true otherwise.
bool DeleteEquipmentRow(services::UiPort& ui, const data::ProgramDir& dir, EquipmentKind kind,
                        std::vector<std::string>& rows, int index);

// The name of a list row as the Equipment table holds it: the trimmed first 33 characters of a
// scope or eyepiece row, the trimmed text of a CCD or mode row.
std::string EquipmentName(EquipmentKind kind, std::string_view row);

// Makes the Equipment table hold exactly the names of scope.dat, eyepiece.dat and ccd.dat, in
// that order and in file order, without blanks and without repeats (compared without regard to
// case), in one transaction.
// Notes: a missing file counts as an empty list.
// Status: throws services::Fault when a file cannot be read or the table cannot be written; the
//   table then stands as it was.
void SyncEquipmentTable(data::Database& logbook, const data::ProgramDir& dir);

// frmEQDialog's pick list: Equipment of "Select * From Equipment", in table order; null rows
// are left out.
// Status: throws services::Fault when the table cannot be read.
std::vector<std::string> LoadEquipmentTable(data::Database& logbook);

} // namespace logbook
