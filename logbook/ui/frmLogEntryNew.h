#pragma once
// The logbook's main window: the entry fields above seven tabs (the grid of observations, the
// session notes, the observing notes, the CCD log, the images, the chart and the notes of other
// observers).
//
// The window keeps no rule of its own; every rule is a routine of logbook::LogEntryForm. Before
// a routine runs, the widgets' values are copied into the form without marking it changed;
// afterwards every field, list and the grid show the form again. A field's focus arriving, a
// value typed and the focus leaving reach the form's GotFocus, SetValue and LostFocus, and a
// field that refuses its value gets the focus back.

#include "logbook/LogEntryForm.h"

#include <QPixmap>
#include <QPointer>
#include <QWidget>

#include <array>
#include <functional>
#include <map>
#include <string>
#include <vector>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QRadioButton;
class QTabWidget;
class QTableWidget;
class QTextEdit;
class QToolBar;

namespace logbook::ui {

class frmLogEntryNew : public QWidget
{
public:
    explicit frmLogEntryNew(logbook::LogContext& context, QWidget* parent = nullptr);

    // Opens the window in a mode: "N", or "R" for the spreadsheet's current object. An open
    // window first offers its pending changes for saving; then the form loads (lists, cleared
    // fields, the grid and the chosen entry) and the window is shown and raised.
    void Open(const std::string& mode);
    logbook::LogEntryForm& Model() { return form_; }

    // Prints a report of the open entry: 134 (cmdPrintSum), 18, 19 or 20 (the notes bands'
    // print tools). Without it the print commands do nothing.
    std::function<void(int number)> printReport;
    // cmdPrintSum: the summary when the entry names its object and catalogue, else the
    // message that it must.
    void cmdPrintSum_Click();
    // The search window, modal; a search loads the grid with its first statement.
    void Search();

    // The tool band of a rich box: miBold ... comment, and delete on the session band.
    QToolBar* RichBar(QTextEdit* box) const;
    // The formatting keys of a rich box (Ctrl+B, U, L, N, R, Alt+C) on a key press or its
    // shortcut override; true when the event was one of them. owner parents the colour dialog.
    static bool RichKey(QTextEdit& box, QEvent* event, QWidget* owner);

    // The entry fields above the tabs.
    QLineEdit* txtObjectID = nullptr;
    QLineEdit* txtOtherID = nullptr;
    QComboBox* cboCatalog = nullptr;
    QRadioButton* Option1 = nullptr; // seen
    QRadioButton* Option2 = nullptr; // attempted, not seen
    QLineEdit* mskDate = nullptr;
    QLineEdit* mskTime = nullptr;
    QLabel* lblTime = nullptr;
    QComboBox* txtLocation = nullptr;
    QComboBox* cboTransparency = nullptr;
    QComboBox* cboSee = nullptr; // shows the Antoniadi numeral beside each text of the list
    QComboBox* txtEquipment = nullptr;
    QListWidget* List1 = nullptr;
    QPushButton* cmdOtherEquipment = nullptr;
    QComboBox* cboRating = nullptr;
    QLineEdit* txtDescription = nullptr;
    QComboBox* cboLogtype = nullptr;
    QLabel* lblObNo = nullptr;
    QPushButton* cmdAdd = nullptr;
    QPushButton* cmdUpdate = nullptr;
    QPushButton* cmdDelete = nullptr;
    QPushButton* cmdClear = nullptr;
    QPushButton* cmdLastEntry = nullptr;
    QPushButton* cmdPrintSum = nullptr;
    QCheckBox* chkClear = nullptr;

    QTabWidget* vsIndexTab1 = nullptr;
    // Object List
    QTableWidget* grdLog = nullptr;
    QComboBox* cboSlog = nullptr;
    QLineEdit* txtSearch = nullptr;
    QPushButton* cmdFind = nullptr;
    QPushButton* cmdShowAll = nullptr;
    QPushButton* cmdSearch = nullptr; // frmLogSearch; its first statement becomes the grid's query
    QCheckBox* chkFilterSeen = nullptr;
    // Session Notes
    QTextEdit* RichTextBox1 = nullptr;
    QLineEdit* txtFaintestStar = nullptr;
    QLineEdit* txtSkyQuality = nullptr;
    // Observing Notes
    QTextEdit* rchNotes = nullptr;
    // CCD Log
    QLineEdit* txtimgname = nullptr;
    QLineEdit* txtExpTime = nullptr;
    QComboBox* txtmode = nullptr;
    QComboBox* txtscope = nullptr;
    QComboBox* txtCCD = nullptr;
    QLineEdit* txtFocDis = nullptr;
    QLineEdit* txtFov = nullptr;
    QLineEdit* txtCrate = nullptr;
    QCheckBox* chkdframe = nullptr;
    QCheckBox* chkFfield = nullptr;
    QLineEdit* txtRating = nullptr;
    QTextEdit* rchNotesccd = nullptr;
    // Images
    QComboBox* cbologimages = nullptr;
    QLabel* svImage1 = nullptr; // the picture, scaled to fit; the file is only read
    QLabel* lblImageDescription = nullptr;
    QToolBar* imageBar = nullptr;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    QWidget* BuildEntryFields();
    QWidget* BuildObjectList();
    QWidget* BuildCcdLog();
    QWidget* BuildImages();
    // A rich box with its tool band above it and the keys' help under it.
    QWidget* RichPage(QTextEdit*& box, const char* name, logbook::LogField field, bool sessionBand,
                      QWidget* below = nullptr);
    QLineEdit* LineField(const char* name, logbook::LogField field);
    QComboBox* ComboField(const char* name, logbook::LogField field);
    void Watch(QWidget* widget, logbook::LogField field);

    // Widgets to form (silently) and form to widgets (signals blocked).
    void ReadWidgets();
    void ReadField(logbook::LogField field);
    void ShowModel();
    void ShowFields();
    void ShowField(logbook::LogField field);
    void ShowLists();
    void ShowGrid();
    void ShowImages();
    // Runs one routine of the form between the two copies.
    void Run(const std::function<void()>& routine);

    void FieldFocusIn(QWidget* widget, logbook::LogField field);
    void FieldFocusOut(QWidget* widget, logbook::LogField field);
    void PickOtherEquipment();
    void SortGrid(int column);

    logbook::LogContext& ctx_;
    logbook::LogEntryForm form_;
    std::map<logbook::LogField, QWidget*> widgetOf_;
    std::map<QObject*, logbook::LogField> fieldOf_;
    std::map<QTextEdit*, QToolBar*> richBars_;
    // What each list box was last filled with, so that an unchanged list is left alone.
    std::map<QComboBox*, std::vector<std::string>> filled_;
    std::vector<std::array<std::string, logbook::kLogCols>> shownRows_;
    bool gridShown_ = false;
    bool sortDescending_ = true; // the order of the last header sort; the first is ascending
    QString shownImage_;
    // The field that refused its value while its focus is given back; other fields' focus
    // events are not the user's until then.
    QPointer<QWidget> refused_;
    bool running_ = false;
};

} // namespace logbook::ui
