#pragma once
// The certificates and the statistics sheet: what the logbook holds against the Herschel 400
// (Printherschel, report 7; Printherschel2, 77) and the Messier list (Printmessierreport1, 133;
// Printmessierreport2, 4), and Printstat (report 8).
//
// A certificate walks its selection in the selection's order and keeps the first row of each
// Herschel designation or Messier number: an object logged many times counts once, with the
// first row found. A Herschel object is a logbook row of catalogue "2000" whose id is an NGC
// number of xref; a Messier object a logbook row that names, by id and catalogue, a row of
// SelvaneTable in catalogue "2000" with a Messier number. The Messier selection joins the
// object database through the logbook's link (data::RebuildLink).
//
// With the window's chkMissing ("Still to observe", setting CertMissing) a certificate ends
// with the list's members that no kept row names, in the list's order.

namespace reports {

class ReportWindow;

inline constexpr const char* kHerschelSql =
    "SELECT Logbook.ObjectId, Logbook.Catalog, Logbook.DateObserved, xref.Her FROM Logbook INNER "
    "JOIN xref ON Logbook.ObjectId = xref.NGC Where (((LOGBOOK.Catalog) = '2000')) ORDER BY her;";
inline constexpr const char* kHerschelLongSql =
    "SELECT Logbook.ObjectId, Logbook.Catalog, Logbook.DateObserved, Logbook.TimeObserved, "
    "Logbook.Seeing, Logbook.Transparency, Logbook.EquipmentUsed, Logbook.ShortDescription, "
    "xref.Her FROM Logbook INNER JOIN xref ON Logbook.ObjectId = xref.NGC Where "
    "(((LOGBOOK.Catalog) = '2000')) ORDER BY her;";
inline constexpr const char* kMessierSql =
    "SELECT distinct(SelvaneTable.ObjectId), Logbook.ObjectId, SelvaneTable.Catalog, "
    "SelvaneTable.MessierNumber,  DateObserved,  Logbook.Catalog, Logbook.DataRec FROM Logbook "
    "LEFT JOIN SelvaneTable ON (Logbook.ObjectId = SelvaneTable.ObjectID) and (Logbook.Catalog "
    "=SelvaneTable.Catalog)  Where SelvaneTable.Catalog = '2000' and (SelvaneTable.MessierNumber) "
    "> 0 Order By SelvaneTable.MessierNumber";
inline constexpr const char* kMessierLongSql =
    "SELECT distinct(SelvaneTable.ObjectId), Logbook.ObjectId, SelvaneTable.Catalog, "
    "SelvaneTable.MessierNumber,  Logbook.DateObserved, Logbook.TimeObserved, Logbook.Seeing, "
    "Logbook.Transparency, Logbook.EquipmentUsed, Logbook.ShortDescription,  Logbook.Catalog, "
    "Logbook.DataRec FROM Logbook LEFT JOIN SelvaneTable ON (Logbook.ObjectId = "
    "SelvaneTable.ObjectID) and (Logbook.Catalog =SelvaneTable.Catalog)  Where "
    "SelvaneTable.Catalog = '2000' and (SelvaneTable.MessierNumber) > 0 Order By "
    "SelvaneTable.MessierNumber";

inline constexpr const char* kStillToObserve = "Still to observe :";
inline constexpr const char* kCdRomNote =
    "ATTENTION - This report will not yield accurate results if you are using the database "
    "located on the CD ROM.  You might consider copying the CD ROM database to your hard drive.";
inline constexpr const char* kCdRomNoteTitle = "Important Note";

// Whether a report is a certificate, the reports that show chkMissing.
bool ListsMissing(int number);

// Locations: frmUserM.<routine>. The certificates and Printstat throw services::Fault when a
// database they read is not open.
void Printherschel(ReportWindow& window);
void Printherschel2(ReportWindow& window);
void Printmessierreport1(ReportWindow& window);
void Printmessierreport2(ReportWindow& window);
// Notes: the read-only object database is the flag prefs.UseCd, which the opening of the
// object database sets from the mount table (data::OpenObjectDatabase).
void Printstat(ReportWindow& window);

} // namespace reports
