#pragma once
// The telescope chooser: the telescopes found (the INDI telescopes of the server of the setting
// indiserver, the Alpaca telescopes answering discovery at alpacadiscovery) and an identifier
// that can be typed. Its answer becomes the setting telescopetype.

#include "scope/Discovery.h"

#include <QDialog>

#include <functional>
#include <string>
#include <vector>

class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;

namespace scope::ui {

class frmChooser : public QDialog
{
public:
    using Discover = std::function<Discovery()>;

    // discover runs at each showing and at Search again.
    explicit frmChooser(Discover discover, QWidget* parent = nullptr);

    // Shows the chooser modally, current selected (or typed, when no device found has it).
    // Returned: the chosen identifier, trimmed; empty when cancelled.
    std::string Choose(const std::string& current);

    // The search, as Choose and the button run it: fills the list and the status line.
    void Search();

private:
    Discover discover_;
    QListWidget* lstDevices = nullptr;
    QLineEdit* txtIdentifier = nullptr;
    QLabel* lblStatus = nullptr;
    QPushButton* cmdSearch = nullptr;
};

} // namespace scope::ui
