#pragma once
// The record writers of the export keys: a query's records as a comma-separated text file, and
// as the XML of the objects or of the logbook.
//
// Each streams the records of a read-only snapshot into the file, one line at a time (lines end
// in "\n", UTF-8 without a byte order mark). A value's text is the runtime's: numbers to 15
// significant digits, Yes/No fields "True"/"False", a null empty; DateObserved of the logbook
// is a date, written month/day/year without padding. Where two tables of a join have a field of
// the same name, the field carries its table's name ("Logbook.ObservationNumber").

#include "data/Database.h"
#include "services/UiPort.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace spread {

// The export's own message, after a file is written and also when the dialog was cancelled.
inline constexpr const char* ExportCompleteTitle = "Export Complete";
inline constexpr const char* FinishedExportingText = "Finished exporting file to ";

// The lines of a rich text box's value as its plain text holds them (HTML read as HTML, any
// other text as plain text); a final line break ends the last line without starting another.
std::vector<std::string> RichTextLines(std::string_view value);

// TMM.CSVExport: the field names, then one line per record, every value double-quoted and
// separated by commas; double quotes are removed from the values and line breaks become "|".
// ObservationText and Notes are rich text: their lines are joined with "|".
// Returned: 0, after "Finished exporting file to " and the file under "Export Complete"; 1
//   after a fault, reported at "TMM.CSVExport" (the file stays as far as it was written).
std::int16_t CSVExport(services::UiPort& ui, const std::string& sql,
                       const std::filesystem::path& file, data::Database& database);

// TMM.XMLExportLog: the records of the logbook query as <LOG> elements of <SELVANE2003>, one
// field a line, text fields wrapped in CDATA (a "]]>" inside is written as it stands). Notes,
// ObservationText and ShortDescription are rich text: their lines, each trimmed and ended by
// CR LF. The character "ö" is removed from the element names.
// Returned: 0; 1 after a fault, reported at "TMM.XMLExportLog".
std::int16_t XMLExportLog(services::UiPort& ui, const std::string& sql,
                          const std::filesystem::path& file, data::Database& database);

// TMM.XMLExportObjects: the same layout with <OBJECTS> elements and every value as it stands.
// Returned: 0; 1 after a fault, reported at "TMM.XMLExportObjects".
std::int16_t XMLExportObjects(services::UiPort& ui, const std::string& sql,
                              const std::filesystem::path& file, data::Database& database);

} // namespace spread
