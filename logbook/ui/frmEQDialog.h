#pragma once
// The picker of a log entry's other equipment: the logbook's Equipment table on the left
// (List1), the entry's lines on the right (List2). Add copies the chosen pick across, Remove
// takes the chosen line out; OK hands the lines back to the entry.

#include <QDialog>

#include <string>
#include <vector>

class QListWidget;
class QPushButton;
class QWidget;

namespace data {
class Database;
}
namespace services {
class UiPort;
}

namespace logbook::ui {

inline constexpr const char* EQDialogLoadLocation = "frmEQDialog.Form_Load";

class frmEQDialog : public QDialog
{
public:
    // Fills List1 from the Equipment table (a failure is reported and leaves it empty) and
    // List2 from lines.
    frmEQDialog(services::UiPort& ui, data::Database& logbook,
                const std::vector<std::string>& lines, QWidget* parent = nullptr);

    // Shows the picker; on OK replaces lines by List2's rows and returns true.
    static bool Pick(QWidget* parent, services::UiPort& ui, data::Database& logbook,
                     std::vector<std::string>& lines);

    void cmdAdd_Click();
    void cmdRemove_Click();
    // The rows of List2, in order.
    std::vector<std::string> Lines() const;

    QListWidget* List1 = nullptr;
    QListWidget* List2 = nullptr;
    QPushButton* cmdAdd = nullptr;
    QPushButton* cmdRemove = nullptr;
    QPushButton* cmdOK = nullptr;
    QPushButton* cmdCancel = nullptr;
};

} // namespace logbook::ui
