#pragma once
// "Select Printout Type": the quick printout of the grid as it stands, or the classic printout
// of the database or logbook report. The choice shown first comes from the setting printpref.

#include <QDialog>

#include <string>

class QRadioButton;
class QPushButton;

namespace reports::ui {

class frmPrintout : public QDialog
{
public:
    // printpref: "C" checks the classic printout, anything else the quick one.
    frmPrintout(const std::string& caller, const std::string& printpref, QWidget* parent = nullptr);

    // "C" for the classic printout, "N" for the quick one, as the buttons stand.
    std::string Choice() const;
    // Shows the window and waits. Returned: Choice() after OK; empty on cancel.
    std::string Ask();

    const std::string& Caller() const { return caller_; }

    QRadioButton* optQuick = nullptr;
    QRadioButton* optClassic = nullptr;
    QPushButton* cmdOK = nullptr;
    QPushButton* cmdCancel = nullptr;

private:
    std::string caller_;
};

} // namespace reports::ui
