#pragma once
// The report settings windows frmRSU and frmrsu2 without their widgets: the form, the file it
// came from, and the commands New, Open, Save and Apply. Faults are reported at
// "frmRSU.<routine>" or "frmRSU2.<routine>" and leave the form as it was.

#include "reports/ReportSettings.h"

namespace reports {

class ReportSetup
{
public:
    ReportSetup(SettingsKind kind, spread::AppState& TMM);

    ReportForm form;
    // The file the form was read from or last saved to (the held name); empty: none yet.
    std::string fileName;

    // Opening: the file the setting (defReport / defReportL) names, else the program folder's
    // default; a file that cannot be read is reported at "<window>.Form_Load" and the form
    // keeps its design.
    void Form_Load();
    // The reading behind Form_Load, for a caller that wants the form without the window's
    // message: throws services::Fault when the file cannot be read; the form is then kept.
    void ReadOpeningFile();
    // All columns off, their widths empty.
    void cmdNew_Click();
    // The open dialogue ("Open Database Report" / "Open Log Report", filter "*.Rpt" /
    // "*.Rpl"); the chosen file is read into the form.
    void cmdOpen_Click();
    // The save dialogue ("Save Database Report Format" / "Save Logbook Report Settings"); the
    // extension is added when missing; a blank name or the bare filter does nothing.
    void cmdSave_Click();
    // Writes the form to the held name (else the program folder's default) and stores the
    // name in the setting.
    // Returned: false when it faulted (the setting is then as it was).
    bool SaveApply();
    // frmrsu2's notes box: setting it on tells what it does.
    void NotesClick(bool on);

    // "frmRSU" / "frmRSU2".
    const char* WindowName() const;
    SettingsKind Kind() const { return form.kind; }

private:
    spread::AppState& TMM_;
};

} // namespace reports
