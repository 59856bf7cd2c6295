#pragma once
// The log view of the main window: the logbook as a spreadsheet on page 0, the images of the
// observations on page 1 and the observations that have notes on page 2, with the log type box,
// refresh, sort, search and the grid's find and sort tools above them.
//
// Every rule is a routine of logbook::LogSpread; the widget shows its rows and lists. A double
// click on a row or a notes item leaves that observation as the current object and asks for the
// entry window (openEntry); the row count goes to the status band (showCount).

#include "logbook/LogSpread.h"

#include <QAbstractTableModel>
#include <QWidget>

#include <functional>
#include <string>

class QComboBox;
class QLabel;
class QLineEdit;
class QMenu;
class QPushButton;
class QTabWidget;
class QTableView;
class QTextEdit;
class QTreeWidget;

namespace logbook::ui {

// grdObjectLog's rows for a table view: picture cells as icons, check cells as check marks.
class LogSpreadModel : public QAbstractTableModel
{
public:
    explicit LogSpreadModel(const logbook::LogSpread& view, QObject* parent = nullptr);
    // Shows the view's rows again after a load or a sort.
    void Reset();
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    const logbook::LogSpread& view_;
};

class ctlLogSpread : public QWidget
{
public:
    explicit ctlLogSpread(logbook::LogContext& context, QWidget* parent = nullptr);

    // Init on first use (log types, query, column widths), then cmdRefresh_Click.
    void Show();
    // cmdRefresh_Click: the query from the box, the grid and both lists, the count shown.
    void cmdRefresh_Click();
    // The held grid loaded again (a search's override first).
    void LoadTheGrid();
    // frmLogSort, modal; OK sorts the grid.
    void AdvancedSort();
    // frmLogSearch, modal; each search loads its first statement here.
    void Search();
    // Page 0, 1 or 2.
    void SSTab1_Click(int page);

    logbook::LogSpread& Model() { return view_; }

    std::function<void()> openEntry;                        // frmLogEntryNew in mode "R"
    std::function<void(const std::string& text)> showCount; // lblNOM
    // The printouts of cmdPrint (key pol): the log grid on page 0, and the notes of the chosen
    // item on the notes page under its title. Unset: nothing is printed.
    std::function<void()> printLog;
    std::function<void(const std::string& title, const std::string& notes)> printNotes;
    // cmdPrint: page 0 the log grid; the notes page the chosen item's notes, titled
    // "Object ID : <id> - <other id>"; nothing on the images page or without an item.
    void cmdPrint_Click();

    QComboBox* cboLogTypeFilter = nullptr;
    QLineEdit* tolFind = nullptr;
    QTabWidget* sstab1 = nullptr;
    QTableView* grdObjectLog = nullptr;
    QTreeWidget* ListView1 = nullptr;
    QLabel* svImage1 = nullptr;
    QTreeWidget* ListView2 = nullptr;
    QTextEdit* RichTextBox1 = nullptr;
    QMenu* BandPopup = nullptr;
    QPushButton* cmdPrint = nullptr;

private:
    void ShowGrid();
    void ShowLists();
    void ShowWidths();
    void FindInColumn();
    void ResetFilter();
    void SortCurrentColumn(bool descending);
    void ShowImage(int index);
    void ShowLargerImage();

    logbook::LogContext& ctx_;
    logbook::LogSpread view_;
    LogSpreadModel* model_ = nullptr;
    bool initialised_ = false;
    bool showingWidths_ = false;
    QString imagePath_;
};

} // namespace logbook::ui
