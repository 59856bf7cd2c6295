#include "scope/ui/frmNearby.h"

#include "services/Vb.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace scope::ui {

namespace {

QString Q(const std::string& text)
{
    return QString::fromStdString(text);
}

constexpr int kIdColumn = 8;

} // namespace

frmNearby::frmNearby(spread::AppState& TMM, SearchWindow window, NearbyHooks hooks, QWidget* parent)
    : QDialog(parent), TMM_(TMM), window_(window), hooks_(std::move(hooks))
{
    const bool identify = window == SearchWindow::Identify;
    setObjectName(identify ? "frmIdentify" : "frmNTOS");
    setWindowTitle(identify ? kIdentifyMenuText : "Nearby Target Object Search");
    setModal(false);
    resize(720, 460);
    auto* layout = new QVBoxLayout(this);

    auto* status = new QHBoxLayout;
    for (QLabel** label : {&lblRA, &lblDEC, &lblConst}) {
        *label = new QLabel(this);
        (*label)->setMinimumWidth(label == &lblConst ? 90 : 190);
        status->addWidget(*label);
    }
    lblRA->setObjectName("lblRA");
    lblDEC->setObjectName("lblDEC");
    lblConst->setObjectName("lblConst");
    status->addStretch();
    layout->addLayout(status);

    auto* controls = new QHBoxLayout;
    controls->addWidget(new QLabel("Degrees from center:", this));
    cboDegrees = new QComboBox(this);
    cboDegrees->setObjectName("cboDegrees");
    cboDegrees->setEditable(true);
    for (const double degrees : kDegreesItems)
        cboDegrees->addItem(Q(services::vb::CStr(degrees)));
    controls->addWidget(cboDegrees);
    chkNear = new QCheckBox("Check Adjacent Constellations", this);
    chkNear->setObjectName("chkNear");
    controls->addWidget(chkNear);
    controls->addStretch();
    lblWait = new QLabel(this);
    lblWait->setObjectName("lblWait");
    controls->addWidget(lblWait);
    layout->addLayout(controls);

    vaSpread1 = new QTableWidget(0, 9, this);
    vaSpread1->setObjectName("vaSpread1");
    vaSpread1->setHorizontalHeaderLabels(
        {"pln", "Object ID", "Other ID", "Ang Sep", "Catalog", "Mag", "Const", "Type", "ID"});
    vaSpread1->setColumnHidden(kIdColumn, true);
    vaSpread1->setEditTriggers(QAbstractItemView::NoEditTriggers);
    vaSpread1->setSelectionBehavior(QAbstractItemView::SelectRows);
    vaSpread1->setSelectionMode(QAbstractItemView::SingleSelection);
    vaSpread1->verticalHeader()->setVisible(false);
    vaSpread1->horizontalHeader()->setStretchLastSection(true);
    vaSpread1->setContextMenuPolicy(Qt::CustomContextMenu);
    layout->addWidget(vaSpread1, 1);

    auto* buttons = new QHBoxLayout;
    Command2 = new QPushButton("Search Now", this);
    Command2->setObjectName("Command2");
    Command1 = new QPushButton("Close", this);
    Command1->setObjectName("Command1");
    buttons->addStretch();
    buttons->addWidget(Command2);
    buttons->addWidget(Command1);
    layout->addLayout(buttons);

    connect(Command2, &QPushButton::clicked, this, [this] { Search(); });
    connect(Command1, &QPushButton::clicked, this, &QDialog::close);
    connect(chkNear, &QCheckBox::toggled, this,
            [this](bool on) { TMM_.target.CheckAdjacent = on; });
    connect(vaSpread1, &QTableWidget::cellDoubleClicked, this,
            [this](int row, int) { TogglePlan(row); });
    connect(vaSpread1, &QWidget::customContextMenuRequested, this,
            [this](const QPoint& at) { ShowMenu(at); });
}

void frmNearby::Open()
{
    if (window_ == SearchWindow::NTOS && TMM_.target.TargetRA.empty()) {
        TMM_.ui.ShowMessage(kNoTargetText, kNoTargetTitle, "I");
        return;
    }
    if (!TMM_.target.CheckAdjacentSet) {
        TMM_.target.CheckAdjacent = TMM_.prefs.gCAConst;
        TMM_.target.CheckAdjacentSet = true;
    }
    chkNear->setChecked(TMM_.target.CheckAdjacent);
    cboDegrees->setCurrentText(Q(services::vb::CStr(TMM_.prefs.gDegScope)));
    show();
    raise();
    activateWindow();
}

void frmNearby::Search()
{
    lblWait->setText(kPleaseWait);
    vaSpread1->setRowCount(0);
    // The wait text is painted before the search takes the thread.
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    SearchRequest request;
    request.window = window_;
    request.degrees = services::vb::Val(cboDegrees->currentText().toStdString());
    request.checkAdjacent = chkNear->isChecked();
    request.ReadScope = hooks_.ReadScope;
    NearbySearch search = IdentifyObjects(TMM_, request);
    lblRA->setText(Q(search.status.RAtext));
    lblDEC->setText(Q(search.status.DECtext));
    lblConst->setText(Q(search.status.Consttext));
    rows_ = std::move(search.rows);
    ShowRows();
    lblWait->clear();
}

void frmNearby::ShowRows()
{
    vaSpread1->setRowCount(static_cast<int>(rows_.size()));
    for (int r = 0; r < static_cast<int>(rows_.size()); ++r) {
        const NearbyRow& row = rows_[static_cast<std::size_t>(r)];
        const std::string cells[] = {row.pln,    row.ObjectID, row.OtherID,
                                     row.AngSep, row.Catalog,  row.Mag,
                                     row.Const,  row.Type,     std::to_string(row.ID)};
        for (int c = 0; c < 9; ++c) {
            auto* item = new QTableWidgetItem(Q(cells[c]));
            if (c == 3 || c == 5)
                item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
            vaSpread1->setItem(r, c, item);
        }
    }
    vaSpread1->resizeColumnsToContents();
}

void frmNearby::TogglePlan(int row)
{
    if (row < 0 || row >= static_cast<int>(rows_.size()))
        return;
    NearbyRow& entry = rows_[static_cast<std::size_t>(row)];
    if (!UpdatePlan(TMM_, window_, entry))
        return;
    vaSpread1->item(row, 0)->setText(Q(entry.pln));
    if (hooks_.PlanChanged)
        hooks_.PlanChanged();
}

void frmNearby::ShowMenu(const QPoint& at)
{
    const int column = vaSpread1->columnAt(at.x());
    const int row = vaSpread1->rowAt(at.y());
    QMenu menu(this);
    QAction* ascending = menu.addAction("Sort Column in Ascending Order");
    ascending->setObjectName("sortcolumn");
    QAction* descending = menu.addAction("Sort Column in Descending Order");
    descending->setObjectName("scds");
    menu.addSeparator();
    QAction* plan = menu.addAction("Add/Remove Object in Plan");
    plan->setObjectName("addtoplan");
    QAction* slew = menu.addAction("Goto");
    slew->setObjectName("gotoobject");
    plan->setEnabled(row >= 0);
    slew->setEnabled(row >= 0 && hooks_.Goto != nullptr);
    ascending->setEnabled(column >= 0);
    descending->setEnabled(column >= 0);
    QAction* chosen = menu.exec(vaSpread1->viewport()->mapToGlobal(at));
    if (chosen == ascending || chosen == descending) {
        SortRows(rows_, column, chosen == ascending);
        ShowRows();
    } else if (chosen == plan) {
        TogglePlan(row);
    } else if (chosen == slew) {
        const NearbyRow& entry = rows_[static_cast<std::size_t>(row)];
        hooks_.Goto(entry.raHours, entry.decDeg);
    }
}

} // namespace scope::ui
