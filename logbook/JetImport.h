#pragma once
// Logbooks of earlier editions: Jet database files (.mdb), read through mdbtools (mdb-tables,
// mdb-json) into the batch that ImportEntries writes as new entries.
//
// What is taken: every Logbook row with its CCDLog row and ImageLog rows (linked by the old
// ObservationNumber, which is not kept), the SessionLog rows, and the PerLogType, Equipment and
// ObservingSites rows. Columns are found by name without regard to case; columns this logbook
// does not have are dropped. Values keep the old logbook's text: dates as YYYY-MM-DD, times as
// HH:MM:SS (a Jet date/time holding a time reads as the time), Yes/No as -1 / 0, numbers as
// written; notes written as RTF become the logbook's rich text (HTML).
//
// The file is read whole before anything is written; a file that cannot be read leaves the
// logbook as it was.

#include "logbook/LogImport.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace logbook {

inline constexpr const char* ImportJetLocation = "frmConvert.ImportJet";

// The mdbtools programs and the time each run may take.
struct JetTools
{
    std::string tables = "mdb-tables";
    std::string json = "mdb-json";
    int timeoutMs = 60000;
};

// The tables of an old logbook as mdb-json wrote them: one JSON object a line.
struct JetTables
{
    std::vector<std::pair<std::string, std::string>> tables; // name, mdb-json text
};

// Reads a Jet file's tables through mdbtools.
// Given: path, the file; tools, the programs and their time limit.
// Returned: Logbook and those of CCDLog, ImageLog, SessionLog, PerLogType, Equipment,
//   ObservingSites the file has, under the names the file gives them.
// Status: throws services::Fault (location ImportJetLocation) naming the file, and the program
//   where one failed, when the file cannot be opened, is no Jet database or has no Logbook
//   table, or when a program is missing, fails or runs past the time limit.
JetTables ReadJetFile(const std::string& path, const JetTools& tools = {});

// The rows of one table as mdb-json writes it.
// Returned: per row its columns in the text's order; strings as they are, numbers as written,
//   true/false as "-1"/"0", null as std::nullopt.
// Status: throws services::Fault naming table and file on a line that is no JSON object.
std::vector<ImportRow> ParseJetRows(std::string_view json, const std::string& table,
                                    const std::string& path);

// The entries and lists of an old logbook, as ImportEntries takes them.
// Given: tables, as ReadJetFile gives them; path, the file (for messages).
// Returned: the entries in the order of their old numbers (rows without one last, in table
//   order), each with its CCDLog row (the first one) and ImageLog rows; CCDLog and ImageLog rows
//   of numbers without a Logbook row are dropped.
// Status: throws services::Fault as ParseJetRows.
ImportBatch JetBatch(const JetTables& tables, const std::string& path);

} // namespace logbook
