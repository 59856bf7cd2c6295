#pragma once
// The certificates and the statistics sheet: what the logbook holds against the Herschel 400
// (Printherschel, report 7; Printherschel2, 77) and the Messier list (Printmessierreport1, 133;
// Printmessierreport2, 4), and Printstat (report 8).

namespace reports {

class ReportWindow;

void Printherschel(ReportWindow& window);
void Printherschel2(ReportWindow& window);
void Printmessierreport1(ReportWindow& window);
void Printmessierreport2(ReportWindow& window);
void Printstat(ReportWindow& window);

} // namespace reports
