#pragma once
// frmIdentify and frmNTOS, one window class for the twins: the radius (cboDegrees), chkNear,
// Search Now (Command2), Close (Command1), the status texts and the result grid vaSpread1 with
// its menu (sort by the column under the mouse, the plan toggle, Goto).

#include "scope/NearbySearch.h"

#include <QDialog>

#include <functional>
#include <optional>
#include <utility>

class QCheckBox;
class QComboBox;
class QLabel;
class QPushButton;
class QTableWidget;

namespace scope::ui {

// What the window reaches outside the spreadsheet's state.
struct NearbyHooks
{
    // Identify: where the mount points (hours, degrees), nothing after the message that no
    // telescope is attached.
    std::function<std::optional<std::pair<double, double>>()> ReadScope;
    // The list's Goto: the mount slewed to a J2000 position.
    std::function<void(double raHours, double decDeg)> Goto;
    // After the plan of the current tab changed.
    std::function<void()> PlanChanged;
};

class frmNearby : public QDialog
{
public:
    frmNearby(spread::AppState& TMM, SearchWindow window, NearbyHooks hooks,
              QWidget* parent = nullptr);

    // Form_Load: NTOS refuses without a home target (the message, no window); otherwise the
    // window is shown with cboDegrees at gDegScope and chkNear as last left (gCAConst at first).
    void Open();
    // Command2_Click: IdentifyObjects with the window's radius and chkNear.
    void Search();

    QLabel* lblWait = nullptr;
    QLabel* lblRA = nullptr;
    QLabel* lblDEC = nullptr;
    QLabel* lblConst = nullptr;
    QComboBox* cboDegrees = nullptr;
    QCheckBox* chkNear = nullptr;
    QPushButton* Command2 = nullptr; // Search Now
    QPushButton* Command1 = nullptr; // Close
    QTableWidget* vaSpread1 = nullptr;

private:
    void ShowRows();
    void TogglePlan(int row);
    void ShowMenu(const QPoint& at);

    spread::AppState& TMM_;
    SearchWindow window_;
    NearbyHooks hooks_;
    std::vector<NearbyRow> rows_;
};

} // namespace scope::ui
