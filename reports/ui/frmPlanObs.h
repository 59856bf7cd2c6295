#pragma once
// "Objects Observed By Observing Plan": the observing plans of the program folder and the
// order of the printed list; the choice goes to the report window's ObsPlan and ObsPlanSort.

#include <QDialog>

#include <filesystem>
#include <string>

class QComboBox;
class QListWidget;
class QPushButton;

namespace reports::ui {

class frmPlanObs : public QDialog
{
public:
    // Lists the *.pln files of programDir, by name.
    explicit frmPlanObs(const std::filesystem::path& programDir, QWidget* parent = nullptr);

    // The chosen plan's file name; empty when none is chosen.
    std::string Plan() const;
    // The caption of the sort box.
    std::string Sort() const;

    QListWidget* lstPlans = nullptr;
    QComboBox* cbosort = nullptr;
    QPushButton* cmdPrint = nullptr;
    QPushButton* cmdCancel = nullptr;
};

} // namespace reports::ui
