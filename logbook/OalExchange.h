#pragma once
// The logbook in the Open Astronomy Log format (versions 2.0 and 2.1), the exchange format of
// observing programs.
//
// An export is a valid 2.1 document: the observer, a site per location, a target per object and
// an observation per entry. Each observation carries its entry unchanged as its first child, the
// processing instruction <?selvane-log {...}?> holding the Logbook row (but its number and
// DataRec), its CCDLog row and its ImageLog rows as JSON, so that an export read back gives the
// same rows. A document written by another program is read through the format's own elements.

#include "logbook/LogImport.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace logbook {

inline constexpr const char* OalNamespace = "http://groups.google.com/group/openastronomylog";
inline constexpr const char* OalInstruction = "selvane-log";
inline constexpr const char* OalTitle = "Open Astronomy Log";

// Writes the entries a Logbook query selects (empty: all of them, in number order) to file,
// replacing it whole.
// Returned: the number of observations written. An entry whose date is not a date is left
//   out with a message.
// Status: throws services::Fault on a database or file failure; the file is then untouched.
int ExportOal(LogContext& ctx, const std::filesystem::path& file, const std::string& sql = {});

struct OalDocument
{
    std::string notALog; // the message when the file cannot be read or is no log
    ImportBatch batch;
    std::vector<std::string> skipped; // a message per observation that could not be read
};

// Reads a document into entries for ImportEntries: from each observation's processing
// instruction when it has one, else from its elements. Times come into the logbook's frame
// (Universal Time when the setting tLogTime begins with "U", else the site's standard time).
// Status: throws services::Fault when the object database cannot be read.
OalDocument ReadOal(LogContext& ctx, const std::filesystem::path& file);

// ReadOal, a message for each observation skipped, then ImportEntries.
// Returned: nothing when the file is no log (the user is told so; the logbook is untouched).
// Status: throws services::Fault as ImportEntries does.
std::optional<ImportResult> ImportOal(LogContext& ctx, const std::filesystem::path& file,
                                      const std::string& defaultType);

} // namespace logbook
