#include "logbook/ui/ctlLogSpread.h"

#include "logbook/ui/frmLogSearch.h"
#include "logbook/ui/frmLogSort.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QPushButton>
#include <QSplitter>
#include <QStyle>
#include <QTabWidget>
#include <QTableView>
#include <QTextEdit>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace logbook::ui {

namespace {

QString Q(const std::string& text)
{
    return QString::fromStdString(text);
}

std::size_t Index(int col)
{
    return static_cast<std::size_t>(col - 1);
}

// A picture that asks for its larger view when clicked.
class ClickablePicture : public QLabel
{
public:
    std::function<void()> clicked;
    using QLabel::QLabel;

protected:
    void mousePressEvent(QMouseEvent* event) override
    {
        QLabel::mousePressEvent(event);
        if (clicked)
            clicked();
    }
};

} // namespace

LogSpreadModel::LogSpreadModel(const logbook::LogSpread& view, QObject* parent)
    : QAbstractTableModel(parent), view_(view)
{
}

void LogSpreadModel::Reset()
{
    beginResetModel();
    endResetModel();
}

int LogSpreadModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(view_.grdObjectLog.size());
}

int LogSpreadModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : logbook::kLogSpreadCols;
}

QVariant LogSpreadModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    const int col = index.column() + 1;
    const std::string& cell =
        view_.grdObjectLog[static_cast<std::size_t>(index.row())].cells[Index(col)];
    const bool picture = col == logbook::kSpreadImageCol || col == logbook::kSpreadNotesCol;
    const bool check = col == logbook::kSpreadDarkFrameCol || col == logbook::kSpreadFlatFieldCol;
    switch (role) {
    case Qt::DisplayRole:
        return picture || check ? QVariant() : QVariant(Q(cell));
    case Qt::DecorationRole:
        if (picture && cell == "1")
            return QApplication::style()->standardIcon(col == logbook::kSpreadImageCol
                                                           ? QStyle::SP_FileDialogContentsView
                                                           : QStyle::SP_FileDialogDetailedView);
        return {};
    case Qt::CheckStateRole:
        return check ? QVariant(cell == "1" ? Qt::Checked : Qt::Unchecked) : QVariant();
    case Qt::TextAlignmentRole:
        return col == logbook::kSpreadNumberCol ? QVariant(Qt::AlignRight | Qt::AlignVCenter)
                                                : QVariant();
    default:
        return {};
    }
}

QVariant LogSpreadModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole)
        return {};
    if (orientation == Qt::Horizontal)
        return section >= 0 && section < logbook::kLogSpreadCols
                   ? QVariant(logbook::LogSpreadCaptions[static_cast<std::size_t>(section)])
                   : QVariant();
    return section + 1;
}

// ---------------------------------------------------------------------------------------------

ctlLogSpread::ctlLogSpread(logbook::LogContext& context, QWidget* parent)
    : QWidget(parent), ctx_(context), view_(context)
{
    setObjectName("ctlLogSpread");

    auto* bar = new QHBoxLayout;
    bar->addWidget(new QLabel("Log Type", this));
    cboLogTypeFilter = new QComboBox(this);
    cboLogTypeFilter->setObjectName("cboLogTypeFilter");
    cboLogTypeFilter->setMinimumContentsLength(16);
    bar->addWidget(cboLogTypeFilter);
    auto button = [&](const char* name, const char* caption, std::function<void()> action) {
        auto* b = new QPushButton(caption, this);
        b->setObjectName(name);
        connect(b, &QPushButton::clicked, this, std::move(action));
        bar->addWidget(b);
        return b;
    };
    button("cmdRefresh", "Refresh", [this] { cmdRefresh_Click(); });
    button("cmdSort", "Sort...", [this] { AdvancedSort(); });
    button("cmdSearch", "Search...", [this] { Search(); });
    bar->addSpacing(16);
    bar->addWidget(new QLabel("Find", this));
    tolFind = new QLineEdit(this);
    tolFind->setObjectName("tolFind");
    tolFind->setMaximumWidth(160);
    bar->addWidget(tolFind);
    connect(tolFind, &QLineEdit::returnPressed, this, [this] { FindInColumn(); });
    button("tolResetFilter", "Reset Filter", [this] { ResetFilter(); });
    button("tolsorta", "Sort Ascending", [this] { SortCurrentColumn(false); });
    button("tolsortd", "Sort Descending", [this] { SortCurrentColumn(true); });
    bar->addSpacing(16);
    cmdPrint = button("pol", "Print", [this] { cmdPrint_Click(); });
    bar->addStretch(1);

    sstab1 = new QTabWidget(this);
    sstab1->setObjectName("sstab1");

    grdObjectLog = new QTableView(sstab1);
    grdObjectLog->setObjectName("grdObjectLog");
    model_ = new LogSpreadModel(view_, grdObjectLog);
    grdObjectLog->setModel(model_);
    grdObjectLog->setSelectionBehavior(QAbstractItemView::SelectRows);
    grdObjectLog->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grdObjectLog->setContextMenuPolicy(Qt::CustomContextMenu);
    grdObjectLog->verticalHeader()->setDefaultSectionSize(20);
    grdObjectLog->setWordWrap(false);
    sstab1->addTab(grdObjectLog, "Logbook");

    auto* images = new QSplitter(Qt::Horizontal, sstab1);
    ListView1 = new QTreeWidget(images);
    ListView1->setObjectName("ListView1");
    ListView1->setRootIsDecorated(false);
    ListView1->setHeaderLabels({logbook::ImageListCaptions[0], logbook::ImageListCaptions[1],
                                logbook::ImageListCaptions[2]});
    auto* picture = new ClickablePicture(images);
    picture->setObjectName("svImage1");
    picture->setAlignment(Qt::AlignCenter);
    picture->setMinimumSize(200, 150);
    picture->setToolTip("Click for the larger view");
    picture->clicked = [this] { ShowLargerImage(); };
    svImage1 = picture;
    images->addWidget(ListView1);
    images->addWidget(svImage1);
    images->setSizes({500, 400});
    sstab1->addTab(images, "Images");

    auto* notes = new QSplitter(Qt::Horizontal, sstab1);
    ListView2 = new QTreeWidget(notes);
    ListView2->setObjectName("ListView2");
    ListView2->setRootIsDecorated(false);
    QStringList notesCaptions;
    for (const char* caption : logbook::NotesListCaptions)
        notesCaptions << caption;
    ListView2->setHeaderLabels(notesCaptions);
    RichTextBox1 = new QTextEdit(notes);
    RichTextBox1->setObjectName("RichTextBox1");
    RichTextBox1->setReadOnly(true);
    notes->addWidget(ListView2);
    notes->addWidget(RichTextBox1);
    notes->setSizes({500, 400});
    sstab1->addTab(notes, "Notes");

    BandPopup = new QMenu(this);
    BandPopup->setObjectName("BandPopup");
    BandPopup->addAction("View/Edit This Observation", this, [this] {
        if (openEntry)
            openEntry();
    });
    BandPopup->addAction("Search the Logbook...", this, [this] { Search(); });
    BandPopup->addAction("Sort...", this, [this] { AdvancedSort(); });

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    layout->addLayout(bar);
    layout->addWidget(sstab1, 1);

    connect(grdObjectLog, &QTableView::doubleClicked, this, [this](const QModelIndex& index) {
        view_.TakeRow(index.row() + 1);
        if (openEntry)
            openEntry();
    });
    connect(grdObjectLog, &QTableView::customContextMenuRequested, this, [this](const QPoint& pos) {
        const QModelIndex index = grdObjectLog->indexAt(pos);
        if (!index.isValid())
            return;
        view_.TakeRow(index.row() + 1);
        BandPopup->popup(grdObjectLog->viewport()->mapToGlobal(pos));
    });
    connect(grdObjectLog->horizontalHeader(), &QHeaderView::sectionResized, this,
            [this](int section, int, int size) {
                if (showingWidths_)
                    return;
                const int unit = grdObjectLog->fontMetrics().horizontalAdvance('0');
                view_.widths[static_cast<std::size_t>(section + 1)] =
                    size <= 0 ? 0 : static_cast<double>(size - 8) / unit;
                view_.SaveTheColumns();
            });
    connect(ListView1, &QTreeWidget::currentItemChanged, this,
            [this] { ShowImage(ListView1->indexOfTopLevelItem(ListView1->currentItem())); });
    connect(ListView2, &QTreeWidget::currentItemChanged, this, [this] {
        view_.ListView2_Click(ListView2->indexOfTopLevelItem(ListView2->currentItem()));
        const QString text = Q(view_.RichTextBox1);
        if (Qt::mightBeRichText(text))
            RichTextBox1->setHtml(text);
        else
            RichTextBox1->setPlainText(text);
    });
    connect(ListView2, &QTreeWidget::itemDoubleClicked, this, [this](QTreeWidgetItem* item) {
        view_.TakeNotesItem(ListView2->indexOfTopLevelItem(item));
        if (openEntry)
            openEntry();
    });
    connect(sstab1, &QTabWidget::currentChanged, this, [this](int page) { SSTab1_Click(page); });
}

void ctlLogSpread::Show()
{
    if (!initialised_) {
        initialised_ = true;
        view_.Init();
        const QSignalBlocker block(cboLogTypeFilter);
        for (const std::string& type : view_.logTypeItems)
            cboLogTypeFilter->addItem(Q(type));
        cboLogTypeFilter->setCurrentText(Q(view_.cboLogTypeFilter));
        ShowWidths();
    }
    cmdRefresh_Click();
}

void ctlLogSpread::cmdRefresh_Click()
{
    view_.cboLogTypeFilter = cboLogTypeFilter->currentText().toStdString();
    view_.cmdRefresh_Click();
    ShowGrid();
    ShowLists();
}

void ctlLogSpread::LoadTheGrid()
{
    view_.LoadTheGrid();
    ShowGrid();
    ShowLists();
}

void ctlLogSpread::AdvancedSort()
{
    frmLogSort sort(this);
    if (sort.exec() != QDialog::Accepted)
        return;
    view_.AdvancedSort(sort.Boxes());
    ShowGrid();
}

void ctlLogSpread::Search()
{
    frmLogSearch search(ctx_, this);
    search.found = [this](const logbook::LogSearchSql& sql) {
        view_.queryOverride = sql.first;
        LoadTheGrid();
        sstab1->setCurrentIndex(0);
    };
    search.exec();
}

void ctlLogSpread::cmdPrint_Click()
{
    if (sstab1->currentIndex() == 0) {
        if (printLog)
            printLog();
        return;
    }
    const int item = ListView2->indexOfTopLevelItem(ListView2->currentItem());
    if (sstab1->currentIndex() != 2 || item < 0 ||
        item >= static_cast<int>(view_.ListView2.size()) || !printNotes)
        return;
    const logbook::NotesItem& notes = view_.ListView2[static_cast<std::size_t>(item)];
    printNotes("Object ID : " + notes.object + " - " + notes.otherId, view_.RichTextBox1);
}

void ctlLogSpread::SSTab1_Click(int page)
{
    // The lists take the page's width.
    QTreeWidget* list = page == 1 ? ListView1 : page == 2 ? ListView2 : nullptr;
    if (!list)
        return;
    for (int col = 0; col < list->columnCount(); ++col)
        list->resizeColumnToContents(col);
}

void ctlLogSpread::ShowGrid()
{
    model_->Reset();
    for (int row = 0; row < model_->rowCount(); ++row)
        grdObjectLog->setRowHidden(row, false);
    if (model_->rowCount() > 0)
        grdObjectLog->setCurrentIndex(model_->index(0, 0));
    if (showCount)
        showCount(view_.lblNOM);
}

void ctlLogSpread::ShowLists()
{
    ListView2->clear();
    for (const logbook::NotesItem& item : view_.ListView2) {
        auto* line =
            new QTreeWidgetItem({Q(item.object), Q(item.otherId), Q(item.date), Q(item.catalog)});
        line->setData(0, Qt::UserRole, static_cast<qlonglong>(item.number));
        ListView2->addTopLevelItem(line);
    }
    RichTextBox1->clear();
    ListView1->clear();
    for (const logbook::ImageItem& item : view_.ListView1)
        ListView1->addTopLevelItem(
            new QTreeWidgetItem({Q(item.object), Q(item.description), Q(item.path)}));
    svImage1->clear();
    imagePath_.clear();
    SSTab1_Click(sstab1->currentIndex());
}

void ctlLogSpread::ShowWidths()
{
    showingWidths_ = true;
    const int unit = grdObjectLog->fontMetrics().horizontalAdvance('0');
    for (int col = 1; col <= logbook::kLogSpreadCols; ++col) {
        const double width = view_.widths[static_cast<std::size_t>(col)];
        grdObjectLog->setColumnHidden(col - 1, width == 0);
        if (width > 0)
            grdObjectLog->setColumnWidth(col - 1, static_cast<int>(width * unit) + 8);
    }
    showingWidths_ = false;
}

void ctlLogSpread::FindInColumn()
{
    const int col = std::max(0, grdObjectLog->currentIndex().column());
    const std::string text = tolFind->text().toStdString();
    for (int row = 0; row < model_->rowCount(); ++row) {
        const std::string& cell =
            view_.grdObjectLog[static_cast<std::size_t>(row)].cells[static_cast<std::size_t>(col)];
        grdObjectLog->setRowHidden(row, cell.find(text) == std::string::npos);
    }
}

void ctlLogSpread::ResetFilter()
{
    for (int row = 0; row < model_->rowCount(); ++row)
        grdObjectLog->setRowHidden(row, false);
}

void ctlLogSpread::SortCurrentColumn(bool descending)
{
    logbook::SortColumn(view_.grdObjectLog, std::max(0, grdObjectLog->currentIndex().column()) + 1,
                        descending);
    ShowGrid();
}

void ctlLogSpread::ShowImage(int index)
{
    svImage1->clear();
    imagePath_.clear();
    if (index < 0 || index >= static_cast<int>(view_.ListView1.size()))
        return;
    imagePath_ = Q(view_.ListView1[static_cast<std::size_t>(index)].path);
    const QPixmap picture(imagePath_);
    if (picture.isNull()) {
        svImage1->setText("The image cannot be shown:\n" + imagePath_);
        return;
    }
    svImage1->setPixmap(
        picture.size().boundedTo(svImage1->size()) == picture.size()
            ? picture
            : picture.scaled(svImage1->size(), Qt::KeepAspectRatio, Qt::SmoothTransformation));
}

void ctlLogSpread::ShowLargerImage()
{
    const QPixmap picture(imagePath_);
    if (picture.isNull())
        return;
    QDialog larger(this);
    larger.setWindowTitle(imagePath_);
    auto* label = new QLabel(&larger);
    label->setPixmap(picture);
    auto* layout = new QVBoxLayout(&larger);
    layout->addWidget(label);
    larger.exec();
}

} // namespace logbook::ui
