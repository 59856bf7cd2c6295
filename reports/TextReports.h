#pragma once
// The text and notes reports of the report window: the text documents of the program folder,
// the text of the window that asked (an object's description, another observer's log), the
// notes of the open logbook entry, the year's new and full moons, and the logbook notes of the
// log view's selection.

#include "reports/ReportWindow.h"

#include <string>
#include <string_view>

namespace reports {

// Reports 1 and 5 (HelpFlat.rtf, DataSt.rtf of the program folder) and 6 (DataSt.rtf in
// "Courier New"). A missing file is a fault.
void PrintTextDocument(ReportWindow& window);
// Reports 10 (the window's text, plain) and 11 (rich text), under ObjectIDToPrint.
void PrintWindowText(ReportWindow& window);
// Reports 17 to 20: the notes of the open entry; without an open entry, a message.
void PrintEntryNotes(ReportWindow& window);
// calcfullmoon (report 150): asks the year, then its new and full moons.
// Location: frmUserM.calcfullmoon
void calcfullmoon(ReportWindow& window);
// Report 1111: asks whether to print all the notes of NotesSQL's selection or the one note of
// RichTextToPrint; report 1112: the log information of NotesSQL's selection.
// Location: frmUserM.PrintNotes
void PrintNotes(ReportWindow& window);

} // namespace reports
