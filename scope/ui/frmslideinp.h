#pragma once
// The slide show's window (frmslideinp): the object shown, its image with the field of view, the
// quick log's fields, the keypad controller, and Timer1 polling the keypad once a second while
// the controller is on. Every control hands its click to scope::SlideShow and shows the state
// it leaves.

#include "scope/SlideShow.h"

#include <QDialog>

#include <functional>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QStatusBar;
class QTimer;

namespace scope::ui {

class frmslideinp : public QDialog
{
public:
    // Given: moreInfo, the object's details window for an identifier (may be empty).
    frmslideinp(spread::AppState& TMM, ScopeContext& s,
                std::function<void(const std::string& objectId)> moreInfo,
                QWidget* parent = nullptr);
    ~frmslideinp() override;

    // Form_Load: the show's load, then the state shown.
    void Open();

    SlideShow slide;

    QLineEdit *txtObjectID, *txtCatalog, *txtra, *txtdec, *txtdatarec, *txtShort;
    QComboBox *cboSee, *cboTransparency, *cboRating, *cbologtype, *txtLocation, *txtEquipment,
        *cbogoto;
    QLabel* imgObject;
    QLabel* lblFov;
    QStatusBar* StatusBar1;
    QCheckBox* chkaltmap;
    QPushButton *cmdNext, *cmdPrevious, *cmdAddLog, *cmdOn, *cmdOff, *cmdMoreInfo, *cmdHelp,
        *cmdClose;
    QTimer* Timer1;

private:
    void Run(const std::function<void()>& click);
    void ShowState();
    void ReadLogFields();

    std::function<void(const std::string&)> moreInfo_;
    bool showing_ = false;
};

} // namespace scope::ui
