#pragma once
// The report settings windows: frmRSU for the database report (31 columns, "Database Report
// Setup") and frmrsu2 for the log report (27 columns, "Logbook Report Setup"), one class for
// both. The controls only read and write the core ReportSetup, which holds the form, reads and
// writes the files and reports the faults.

#include "reports/ReportSetup.h"

#include <QDialog>
#include <QFont>

#include <functional>
#include <optional>
#include <vector>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace reports {

class frmRSU : public QDialog
{
public:
    // Given: kind, which of the two windows; TMM, whose port shows the file dialogues and the
    //   messages, whose settings hold defReport / defReportL; it outlives the window.
    frmRSU(SettingsKind kind, spread::AppState& TMM, QWidget* parent = nullptr);

    ReportSetup& Setup() { return setup_; }

    // Reads the held or default file into the form (ReportSetup::Form_Load) and shows it.
    void Form_Load();
    // The controls from the form, and the form from the controls.
    void ShowForm();
    void ReadForm();

    // The font dialogue: the font chosen, or nothing when cancelled. Set to QFontDialog by the
    // constructor; tests replace it.
    std::function<std::optional<QFont>(const QFont& current)> chooseFont;

    std::vector<QCheckBox*> Check1; // per column, with its caption
    std::vector<QLineEdit*> tWid;   // per column, the width in inches (txtWidth in frmrsu2)
    QComboBox* cboLine = nullptr;
    QPushButton* cmdFont = nullptr;
    QLabel* lblfont = nullptr;
    QPushButton* cmdOpen = nullptr;
    QPushButton* cmdSave = nullptr;
    QPushButton* cmdNew = nullptr;
    QPushButton* cmdApply = nullptr;
    QPushButton* cmdClose = nullptr;

private:
    void FontClick();
    void ApplyClick();

    ReportSetup setup_;
};

} // namespace reports
