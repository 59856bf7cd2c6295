#pragma once
// Taking a list out of the system: the export keys of the main window on the current tab.
//
//   exso         IDN2: the current query's records as text (TMM.CSVExport)
//   exportexcel  Export("EXCEL"): the grid as a workbook
//   exporthtml   Export("HTML"): the grid as a page
//   exportsoxml  IDN3: the current query's records as XML (TMM.XMLExportObjects)
//   exportlogxml Export("XMLLOG", the logbook query): the logbook as XML (TMM.XMLExportLog)
//   mnuepld      the logbook query as text (TMM.CSVExport on the logbook)
//   skylist, obslist: the grid as a SkySafari or a KStars observing list
//
// Each asks for the file through the port's save dialog; an empty answer is a cancel.

#include "astro/ObservingClock.h"
#include "spread/AppState.h"

#include <string>

namespace spread {

// The query of the logbook exports: every entry with its CCD details.
inline constexpr const char* LogExportSql =
    "SELECT * FROM Logbook LEFT JOIN CCDLog ON Logbook.ObservationNumber = "
    "CCDLog.ObservationNumber;";
inline constexpr const char* ExportBeforeYouContinue =
    "Please select the objects you want to export first by changing preferences and pressing "
    "refresh on the main spreadsheet";
inline constexpr const char* ExportMayTakeAWhile =
    "This export may take a while.  Click Cancel when prompted to SAVE to cancel this operation";
// Above this many rows an object export warns first.
inline constexpr int kLongExportRows = 25000;

// The file name of steps 4 to 6: a name whose last characters are not the extension's letters
// gets the extension ("notes.csv" gives "notes.csv.txt"; "mytxt" stays); empty when the
// export does not go on (a blank name, or the bare filter).
// ext: ".txt", ".xlsx", ".htm", ".XML"; filter: "*.txt".
std::string ExportFileName(const std::string& answer, const std::string& ext,
                           const std::string& filter);

// ctlSpread.Export on the grid of TMM.CurrTab. kind: "EXCEL", "HTML", "XMLLOG", "XMLOBJECTS";
// any other kind that is not blank is the text export ("aa"). sql: the query of the record
// writers. Ends with "Finished exporting file to " and the file under "Export Complete", also
// after a cancel.
// Returned: false when a writer reported a fault (at its location; "ctlSpread.Export" for the
//   grid formats); true otherwise, a cancel included.
bool Export(AppState& TMM, const std::string& kind, const std::string& sql);

// IDN2 and IDN3: the text and the XML export of the current list's query (the SQL box).
bool IDN2(AppState& TMM);
bool IDN3(AppState& TMM);
// mnuEpld_Click: the logbook query as text, from the logbook.
bool mnuEpld_Click(AppState& TMM);

// The grid of TMM.CurrTab as a SkySafari (.skylist) or a KStars observing list (.xml), the
// extension added when missing; the list's night is the observing date.
// Returned: false after a fault (reported at "ctlSpread.ExportSkyList" or
//   "ctlSpread.ExportObservingList").
bool ExportSkyList(AppState& TMM);
bool ExportObservingList(AppState& TMM, const astro::Clock& computerClock);

} // namespace spread
