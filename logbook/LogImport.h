#pragma once
// Entries brought into the logbook from outside: an observing log file of another program, an
// earlier logbook file. Every entry becomes a new entry, numbered in the order of its source;
// its dependent rows (CCD details, images) follow it; all of it is written in one transaction,
// so an import is whole or absent.
//
// Values are texts in the form the logbook stores them (dates and times as the log entry window
// writes them, Yes/No as "-1" / "0"); a column is named as in the logbook's schema, in any case.

#include "logbook/LogEntryForm.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace logbook {

// One row of a table: column name (any case) and value; std::nullopt is a stored null. A column
// the row does not name is left to the table's default.
using ImportRow = std::vector<std::pair<std::string, std::optional<std::string>>>;

struct ImportEntry
{
    ImportRow logbook;             // Logbook's columns; ObservationNumber and DataRec not read
    std::optional<ImportRow> ccd;  // its CCDLog row; ObservationNumber not read
    std::vector<ImportRow> images; // its ImageLog rows; Sequence and ObservationNumber not read
};

struct ImportBatch
{
    std::vector<ImportEntry> entries; // in source order
    // SessionLog rows (a session date the logbook has is skipped, with its SessionSky row),
    // PerLogType, Equipment and ObservingSites rows (each added when not there yet).
    std::vector<ImportRow> sessions, sessionSky, logTypes, equipment, sites;
};

struct ImportResult
{
    std::vector<long long> numbers; // the new observation numbers, in source order
    int skipped = 0; // entries equal in object, catalogue, date and time to one already logged
};

// Writes a batch as new entries: each gets the next observation number, its DataRec and the
// object's observed flag as a new entry made in the log entry window gets them, and the log type
// defaultType when it has none. An entry equal in ObjectID, Catalog, DateObserved and
// TimeObserved to one in the logbook (or earlier in the batch) is skipped.
// Status: throws services::Fault with the engine's message on a failure; nothing is written then.
ImportResult ImportEntries(LogContext& ctx, const ImportBatch& batch,
                           const std::string& defaultType);

} // namespace logbook
