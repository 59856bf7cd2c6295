#pragma once
// frmBuildTour (key createtour): the title, the introduction, the destination and optMode of a
// tour for the Autostar hand controller, written from the rows of the current spreadsheet tab.

#include "scope/Tour.h"
#include "services/UiPort.h"
#include "spread/Grid.h"

#include <QDialog>

#include <array>
#include <filesystem>

class QLineEdit;
class QPushButton;
class QRadioButton;

namespace scope::ui {

class frmBuildTour : public QDialog
{
public:
    // Given: ui, the program's port; defaultFile, the destination proposed at each opening
    //   (SelvaneTour.mtf in the program folder). Both outlive the window.
    frmBuildTour(services::UiPort& ui, std::filesystem::path defaultFile,
                 QWidget* parent = nullptr);

    // Form_Load: the defaults in the fields, then the window shown for grid, which must stay
    // alive while the window is open.
    void Open(const spread::Grid& grid);
    // The save dialog; a cancel leaves the destination as it stood.
    void Command1_Click();
    // The tour written; the window closes when it was.
    void cmdOK_Click();

    TourOptions Options() const;

    QLineEdit* txtTitle = nullptr;
    QLineEdit* txtIntro = nullptr;
    QLineEdit* txtFile = nullptr;
    QPushButton* Command1 = nullptr;
    std::array<QRadioButton*, 2> optMode{};
    QPushButton* cmdOK = nullptr;
    QPushButton* cmdCancel = nullptr;

private:
    services::UiPort& ui_;
    std::filesystem::path defaultFile_;
    const spread::Grid* grid_ = nullptr;
};

} // namespace scope::ui
