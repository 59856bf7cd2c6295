#pragma once
// Observing plan files (.PLN): one record per line in the comma-separated, double-quoted form of
// a sequential file, lines ended by CR LF, no header and no count. A record of the present
// format holds ObjectID, Catalog, ID and the note; one of the older format ObjectID, Catalog and
// ID. Record ids are the ID of SelvaneTable, kept as doubles; 0 marks a free entry.
// Texts are UTF-8 as read; bytes that are not are passed through untouched.

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace spread {

// The most entries a plan holds.
inline constexpr int kMaxPlanEntries = 500;

inline constexpr const char* MaxObjectsText =
    "You have reached the maximum # of objects (500) allowed in an observing plan";
inline constexpr const char* MaxObjectsTitle = "Maximum Objects Exceeded!";
// What a record whose id is no number reports; the records before it stay read.
inline constexpr const char* TypeMismatchText = "Type mismatch";
inline constexpr const char* FileNotFoundText = "File not found";

// One entry of a plan.
struct PlanEntry
{
    std::string PlanObjectID;
    std::string PlanCatalog; // Catalog, or "PLANETS", "COMET", "ASTEROID"
    double PlanRecordID = 0; // ID of SelvaneTable; 0 marks a free entry
    std::string PlanNote;    // empty if none

    bool operator==(const PlanEntry&) const = default;
};

enum class PlanFormat
{
    New, // four fields: ObjectID, Catalog, ID, note
    Old, // three fields: ObjectID, Catalog, ID
};

// The format of a plan file from its first line alone: exactly 3 commas mean New, anything
// else Old. Commas inside quotes count too, so a first note holding a comma reads as Old.
PlanFormat DetectPlanFormat(std::string_view firstLine);

// What reading a plan text gives.
struct PlanRead
{
    PlanFormat format = PlanFormat::Old;
    std::vector<PlanEntry> entries; // in file order, at most kMaxPlanEntries
    // The last record id above 0 that was read, 0 if none (kept for the caller).
    double largestRecordId = 0;
    // More records followed the 500th; they were not read.
    bool truncated = false;
    // The text of the fault that ended the reading early (the entries before it stay); empty
    // when the whole text was read.
    std::string fault;
};

// ReadPlanText: the entries of a plan file's text.
// Given: text, the file's bytes.
// Returned: the format of the first line and the entries, one per non-blank line: with Old,
//   the first three fields and an empty note; with New, four fields. Missing fields are empty,
//   a missing or empty id is 0.
// Status: never throws. An id that is no number ends the reading with TypeMismatchText in
//   fault; records beyond kMaxPlanEntries are refused and set truncated.
// Notes: each line is one record, so that a misdetected format costs the notes and never
//   shifts the fields of the following records.
PlanRead ReadPlanText(std::string_view text);

// The file's bytes. Status: throws services::Fault (FileNotFoundText, empty location) when the
// file cannot be read.
std::string ReadPlanBytes(const std::filesystem::path& path);

// The text of a plan file: one four-field record per entry whose id is not 0, in order, each
// line ended by CR LF.
std::string WritePlanText(const std::vector<PlanEntry>& entries);

// Writes WritePlanText to the file, replacing it.
// Status: throws services::Fault naming the file when it cannot be written; what was written
// before the failure stays in the file.
void WritePlanFile(const std::filesystem::path& path, const std::vector<PlanEntry>& entries);

// True when the upper-cased path ends in the name of one of the shipped plans, "HCLUB1.PLN",
// "HCLUB2.PLN", "CALDWELL.PLN" or "123096.PLN", whose ids belong to an older object table.
bool IsShippedPlan(std::string_view path);

// Finds the ID of SelvaneTable for the stored ObjectID and Catalog of a shipped plan's entry;
// nothing when no row matches.
using PlanIdLookup =
    std::function<std::optional<double>(const std::string& objectId, const std::string& catalog)>;

// The query the lookup of a shipped entry runs: "Select ID From SelvaneTable Where ObjectID =
// 'NGC " the stored ObjectID "' and Catalog = '" the stored Catalog "'", quotes doubled.
std::string ShippedIdSql(const std::string& objectId, const std::string& catalog);

// RepairShippedIds: each entry takes the id the lookup finds for it; an entry without a match
// keeps its stored id.
// Status: a failing lookup throws through; the entries before it stay repaired.
void RepairShippedIds(std::vector<PlanEntry>& entries, const PlanIdLookup& lookup);

} // namespace spread
