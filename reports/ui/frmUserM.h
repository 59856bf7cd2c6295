#pragma once
// The report window (frmUserM): the preview of a PainterSurface's pages on grey, the page and
// zoom commands, printing, page setup, PDF saving and the options of the plan and finder sheets.
// The controls only read and write the core ReportWindow, which builds the reports.

#include "reports/PainterSurface.h"
#include "reports/ReportWindow.h"

#include <QDialog>

#include <functional>
#include <memory>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPrinter;
class QPushButton;
class QRadioButton;
class QResizeEvent;
class QScrollArea;
class QStatusBar;
class QWidget;

namespace reports {

class frmUserM : public QDialog
{
public:
    // Given: context, what the reports read (its TMM.ui is the window's port); it outlives the
    //   window.
    explicit frmUserM(ReportContext& context, QWidget* parent = nullptr);
    ~frmUserM() override;

    ReportWindow& Window() { return window_; }
    PainterSurface& Surface() { return surface_; }

    // Prepares the controls for ReportNumber and builds the report (ReportWindow::Form_Load),
    // then shows the first page.
    void Form_Load();

    // What ReportS runs, with the report number; unset: nothing.
    std::function<void(int reportNumber)> onReportSetup;

    QPushButton* Command9 = nullptr; // Preview
    QPushButton* Command4 = nullptr; // Print
    QPushButton* Command2 = nullptr; // Next
    QPushButton* Command3 = nullptr; // Previous
    QPushButton* Command5 = nullptr; // first page
    QPushButton* Command6 = nullptr; // last page
    QPushButton* cmdZoomIn = nullptr;
    QPushButton* cmdZoomOut = nullptr;
    QPushButton* cmdFit = nullptr;
    QPushButton* Command10 = nullptr; // page setup
    QPushButton* ReportS = nullptr;
    QPushButton* Command1 = nullptr; // Close
    QPushButton* cmdSavePdf = nullptr;
    QCheckBox* chkLand = nullptr;
    QCheckBox* chkMissing = nullptr; // "Still to observe", shown for the certificates
    QLineEdit* txtFrom = nullptr;
    QLineEdit* txtTo = nullptr;
    QWidget* chartOptions = nullptr; // the frame of the options below
    QLineEdit* txtFov = nullptr;
    QRadioButton* optShow[2] = {}; // chart, image
    QCheckBox* chkBW = nullptr;
    QCheckBox* chkTelrad = nullptr;
    QCheckBox* chkMW = nullptr;
    QLineEdit* txtCircle = nullptr;
    QStatusBar* Sbar = nullptr;
    QScrollArea* preview = nullptr;
    QLabel* page = nullptr; // the page shown in the preview

    // The dots to the inch the preview shows the page at (zoom 0: the page fits the view).
    double PreviewDpi() const;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void ReadControls();
    void ShowControls();
    void Refresh();
    void Preview();
    void Print();
    void PageSetup();
    void SavePdf();

    PainterSurface surface_;
    ReportWindow window_;
    std::unique_ptr<QPrinter> printer_; // the printer of Setup and Print
};

} // namespace reports
