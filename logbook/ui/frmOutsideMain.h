#pragma once
// The outside window: log entry at the telescope from the keyboard alone. Tab moves from field
// to field and list button; Enter on a list button opens its popup (frmOutsidePopup); Ctrl+1,
// 2, 3 change the tab; Ctrl+A adds, Ctrl+U updates; on the first tab Ctrl+C clears, Ctrl+D
// deletes and Ctrl+G puts the focus on the grid, where Enter shows the row's entry. The rich
// boxes keep their formatting keys beside these.
//
// The window keeps no rule of its own: every rule is a routine of logbook::OutsideForm. Before
// a routine runs the widgets' values are copied into the form; afterwards the widgets show the
// form again.

#include "logbook/OutsideForm.h"

#include <QWidget>

#include <map>
#include <string>

class QLabel;
class QLineEdit;
class QPushButton;
class QTabWidget;
class QTableWidget;

namespace logbook::ui {

class frmOutsideMain : public QWidget
{
public:
    frmOutsideMain(logbook::LogContext& context, data::SettingsStore& settings,
                   QWidget* parent = nullptr);

    // Loads the form on the observation OBSN (-1: none) and shows the window, the focus on
    // the object id.
    void Open(long long OBSN = -1);
    logbook::OutsideForm& Model() { return form_; }

    QTabWidget* tabs = nullptr;
    QLabel* lblKeys = nullptr;
    QTableWidget* vaSpread1 = nullptr;
    QLineEdit* txtObs = nullptr;
    // A control by its name (QLineEdit, QTextEdit or QCheckBox), a list button by its caption.
    QWidget* Control(const std::string& name) const;
    QPushButton* Button(const std::string& caption) const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* BuildTab(int tab);
    void ReadWidgets();
    void ShowModel();
    // True when Ctrl with this key is one of the window's keys on the present tab.
    bool OwnsKey(int key) const;
    void Key(int key);
    void PickFor(const logbook::OutsideButton& button);
    void Leave(QWidget* widget, const logbook::OutsideControl& control);
    void FocusControl(const char* name);

    logbook::LogContext& ctx_;
    logbook::OutsideForm form_;
    std::map<std::string, QWidget*> widgets_; // by control name
    std::map<QObject*, const logbook::OutsideControl*> controlOf_;
    std::map<QObject*, const logbook::OutsideButton*> buttonOf_;
    bool running_ = false;
};

} // namespace logbook::ui
