#include "astro/ui/frmComet.h"

#include "astro/Text.h"
#include "astro/Time.h"
#include "astro/ui/OutputTable.h"
#include "data/MinorBodies.h"
#include "services/Fault.h"
#include "services/OutputFile.h"
#include "services/UiPort.h"
#include "spread/MinorBodyEphemeris.h"
#include "spread/PortFaults.h"

#include <QAbstractTableModel>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QDateTimeEdit>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QSortFilterProxyModel>
#include <QSpinBox>
#include <QStringListModel>
#include <QTableView>
#include <QVBoxLayout>

#include <algorithm>
#include <memory>

namespace astro::ui {

// The ephemeris rows as the table shows them, replaced whole at each Compute, so that a long
// run costs one reset of the view and no per-row signals.
class EphemerisModel : public QAbstractTableModel
{
public:
    using QAbstractTableModel::QAbstractTableModel;

    void SetRows(std::vector<spread::EphemerisRow> rows)
    {
        beginResetModel();
        rows_ = std::move(rows);
        endResetModel();
    }
    const std::vector<spread::EphemerisRow>& Rows() const { return rows_; }

    int rowCount(const QModelIndex& parent = {}) const override
    {
        return parent.isValid() ? 0 : static_cast<int>(rows_.size());
    }
    int columnCount(const QModelIndex& parent = {}) const override
    {
        return parent.isValid() ? 0 : spread::kEphemerisColumns;
    }
    QVariant data(const QModelIndex& index, int role) const override
    {
        if (!index.isValid())
            return {};
        if (role == Qt::DisplayRole)
            return QString::fromStdString(rows_[static_cast<std::size_t>(index.row())]
                                               [static_cast<std::size_t>(index.column())]);
        if (role == Qt::TextAlignmentRole && index.column() > 0)
            return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
        return {};
    }
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override
    {
        if (role != Qt::DisplayRole)
            return {};
        if (orientation == Qt::Vertical)
            return section + 1;
        return QString::fromUtf8(spread::EphemerisHeader()[static_cast<std::size_t>(section)]);
    }

private:
    std::vector<spread::EphemerisRow> rows_;
};

namespace {

QString Q(const std::string& text)
{
    return QString::fromStdString(text);
}

std::string Number(double x)
{
    char buffer[32];
    return std::string(buffer, NumberText(x, buffer));
}

std::string Number(const std::optional<double>& x)
{
    return x ? Number(*x) : std::string();
}

// A calendar date with the fraction of its day, as 1986-02-09.4589.
std::string DayText(double year, double month, double day)
{
    return FixedText(year, 4, 0) + "-" + FixedText(month, 2, 0) + "-" + (day < 10 ? "0" : "") +
           Number(day);
}

constexpr const char* kCometCaptions[] = {"Perihelion date",
                                          "q (AU)",
                                          "e",
                                          "i (\u00b0)",
                                          "Node (\u00b0)",
                                          "Argument of perihelion (\u00b0)",
                                          "H",
                                          "K",
                                          "Equinox"};
constexpr const char* kAsteroidCaptions[] = {
    "Epoch",      "a (AU)", "e", "i (\u00b0)", "Node (\u00b0)", "Argument of perihelion (\u00b0)",
    "M (\u00b0)", "H",      "G", "Equinox"};

} // namespace

frmComet::frmComet(SolarContext context, const std::string& mode, QWidget* parent)
    : QDialog(parent), context_(std::move(context)), comet_(mode != "A")
{
    setObjectName(comet_ ? "frmComet" : "frmAsteroid");
    setWindowTitle(comet_ ? "Comet" : "Asteroid Data");
    resize(1060, 720);

    auto* names = new QVBoxLayout;
    txtFilter = new QLineEdit(this);
    txtFilter->setObjectName("txtFilter");
    txtFilter->setPlaceholderText("Filter names");
    txtFilter->setClearButtonEnabled(true);
    names_ = new QStringListModel(this);
    filtered_ = new QSortFilterProxyModel(this);
    filtered_->setSourceModel(names_);
    filtered_->setFilterCaseSensitivity(Qt::CaseInsensitive);
    lstNames = new QListView(this);
    lstNames->setObjectName("lstNames");
    lstNames->setModel(filtered_);
    lstNames->setUniformItemSizes(true);
    lstNames->setEditTriggers(QAbstractItemView::NoEditTriggers);
    lstNames->setMinimumWidth(240);
    names->addWidget(txtFilter);
    names->addWidget(lstNames);
    // Typing narrows the list; when the chosen name drops out, the first one left is chosen.
    connect(txtFilter, &QLineEdit::textChanged, this, [this](const QString& text) {
        filtered_->setFilterFixedString(text);
        if (!lstNames->currentIndex().isValid() && filtered_->rowCount() > 0)
            lstNames->setCurrentIndex(filtered_->index(0, 0));
    });
    connect(lstNames->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this] { ShowElements(); });

    auto* elements = new OutputGroup("Elements", this);
    const char* const* captions = comet_ ? kCometCaptions : kAsteroidCaptions;
    const int count = comet_ ? std::size(kCometCaptions) : std::size(kAsteroidCaptions);
    for (int i = 0; i < count; ++i)
        lblElement.push_back(
            elements->AddRow(QString::fromUtf8(captions[i]), QString("lblElement%1").arg(i + 1)));

    auto* run = new QGroupBox("Ephemeris", this);
    auto* form = new QFormLayout(run);
    dtpStart = new QDateTimeEdit(run);
    dtpStart->setObjectName("dtpStart");
    dtpStart->setTimeSpec(Qt::UTC);
    dtpStart->setDisplayFormat("yyyy-MM-dd HH:mm");
    dtpStart->setCalendarPopup(true);
    txtSteps = new QSpinBox(run);
    txtSteps->setObjectName("txtSteps");
    txtSteps->setRange(1, 100000);
    txtSteps->setValue(10);
    auto* step = new QHBoxLayout;
    txtStep = new QDoubleSpinBox(run);
    txtStep->setObjectName("txtStep");
    txtStep->setRange(-36525, 36525);
    txtStep->setDecimals(4);
    txtStep->setValue(1);
    cboUnit = new QComboBox(run);
    cboUnit->setObjectName("cboUnit");
    cboUnit->addItems({"days", "hours"});
    step->addWidget(txtStep, 1);
    step->addWidget(cboUnit);
    form->addRow("Start (UT)", dtpStart);
    form->addRow("Number of steps", txtSteps);
    form->addRow("Step", step);
    cmdCompute = new QPushButton("Compute", run);
    cmdCompute->setObjectName("cmdCompute");
    cmdCompute->setDefault(true);
    form->addRow(cmdCompute);

    auto* right = new QVBoxLayout;
    right->addWidget(elements);
    right->addWidget(run);
    right->addStretch();
    auto* top = new QHBoxLayout;
    top->addLayout(names, 1);
    top->addLayout(right, 1);

    grdEphemeris = new QTableView(this);
    grdEphemeris->setObjectName("grdEphemeris");
    ephemeris_ = new EphemerisModel(this);
    grdEphemeris->setModel(ephemeris_);
    grdEphemeris->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grdEphemeris->verticalHeader()->setDefaultSectionSize(20);
    // The widths come from the first rows: all rows of a column have the same form.
    grdEphemeris->horizontalHeader()->setResizeContentsPrecision(50);

    auto* buttons = new QDialogButtonBox(this);
    cmdCopy = buttons->addButton("Copy", QDialogButtonBox::ActionRole);
    cmdCopy->setObjectName("cmdCopy");
    cmdSave = buttons->addButton("Save...", QDialogButtonBox::ActionRole);
    cmdSave->setObjectName("cmdSave");
    cmdClose = buttons->addButton(QDialogButtonBox::Close);
    cmdClose->setObjectName("cmdClose");

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(grdEphemeris, 1);
    layout->addWidget(buttons);

    connect(cmdCompute, &QPushButton::clicked, this, [this] { cmdCompute_Click(); });
    connect(cmdCopy, &QPushButton::clicked, this, [this] { cmdCopy_Click(); });
    connect(cmdSave, &QPushButton::clicked, this, [this] { cmdSave_Click(); });
    connect(cmdClose, &QPushButton::clicked, this, &QDialog::close);

    spread::PortFaults faults(context_.ui);
    const UTInstant ut = ConvertToGMT(context_.observingClock(), context_.computerClock, faults);
    const QDate date(ut.year, ut.month, static_cast<int>(ut.day));
    dtpStart->setDateTime(QDateTime(date.isValid() ? date : QDate(2000, 1, 1),
                                    QTime(static_cast<int>(ut.hour), ut.minute), Qt::UTC));
    RefreshList();
}

std::filesystem::path frmComet::AstComet() const
{
    return context_.programDir / data::AstCometFileName;
}

std::string frmComet::CurrentName() const
{
    return lstNames->currentIndex().data().toString().toStdString();
}

void frmComet::RefreshList()
{
    const QString chosen = Q(CurrentName());
    std::vector<std::string> read;
    services::Trap(context_.ui, "frmComet.Form_Load", [&] {
        read = data::MinorBodyNames(AstComet(), comet_ ? data::MinorBodyKind::Comet
                                                       : data::MinorBodyKind::Asteroid);
    });
    QStringList list;
    list.reserve(static_cast<qsizetype>(read.size()));
    for (const std::string& name : read)
        list.push_back(Q(name));
    names_->setStringList(list);
    const int row = chosen.isEmpty() ? -1 : static_cast<int>(list.indexOf(chosen));
    if (row >= 0)
        lstNames->setCurrentIndex(filtered_->mapFromSource(names_->index(row)));
    ShowElements();
}

void frmComet::ShowElements()
{
    const std::string name = CurrentName();
    std::vector<std::string> values(lblElement.size());
    if (!name.empty())
        services::Trap(context_.ui, "frmComet.lstNames_Click", [&] {
            if (comet_) {
                if (const auto row = data::FindComet(AstComet(), name))
                    values = {DayText(row->tyear, row->tmonth, row->tday),
                              Number(row->q),
                              Number(row->e),
                              Number(row->i),
                              Number(row->ascnode),
                              Number(row->ArgPeri),
                              Number(row->Mag),
                              Number(row->K),
                              Number(row->EPOCH)};
            } else if (const auto row = data::FindAsteroid(AstComet(), name)) {
                values = {DayText(row->eyear, row->emonth, row->eday),
                          Number(row->a),
                          Number(row->e),
                          Number(row->i),
                          Number(row->Node),
                          Number(row->omega),
                          Number(row->M),
                          Number(row->g),
                          Number(row->h),
                          "2000"};
            }
        });
    for (std::size_t i = 0; i < lblElement.size() && i < values.size(); ++i)
        SetText(lblElement[i], values[i]);
}

void frmComet::cmdCompute_Click()
{
    services::UiPort& ui = context_.ui;
    const std::string title = windowTitle().toStdString();
    const std::string name = CurrentName();
    if (name.empty()) {
        ui.ShowMessage(comet_ ? "Please choose a comet from the list first."
                              : "Please choose an asteroid from the list first.",
                       title, "U");
        return;
    }
    if (txtStep->value() == 0) {
        ui.ShowMessage("The step must not be 0.", title, "U");
        return;
    }
    services::Trap(ui, "frmComet.cmdCompute_Click", [&] {
        astro::EphemInput in;
        if (comet_) {
            const auto row = data::FindComet(AstComet(), name);
            if (!row)
                throw services::Fault(name + " is not in " + data::AstCometFileName, "");
            in = spread::EphemInputOf(*row);
        } else {
            const auto row = data::FindAsteroid(AstComet(), name);
            if (!row)
                throw services::Fault(name + " is not in " + data::AstCometFileName, "");
            in = spread::EphemInputOf(*row);
        }
        const QDateTime start = dtpStart->dateTime();
        in.start =
            ElementDateText(start.date().year(), start.date().month(),
                            start.date().day() + start.time().msecsSinceStartOfDay() / 86400000.0);
        in.steps = txtSteps->value();
        in.step = txtStep->value() / (cboUnit->currentIndex() == 1 ? 24.0 : 1.0);
        const ObservingClock site = context_.observingClock();
        spread::PortFaults faults(ui);
        QApplication::setOverrideCursor(Qt::WaitCursor);
        const std::unique_ptr<QWidget, void (*)(QWidget*)> restoreCursor(
            this, [](QWidget*) { QApplication::restoreOverrideCursor(); });
        std::vector<spread::EphemerisRow> rows =
            spread::ComputeEphemeris(in, context_.programDir, site.Plat, site.Plon, faults, faults);
        ephemeris_->SetRows(std::move(rows));
        computedName_ = name;
        grdEphemeris->resizeColumnsToContents();
    });
}

std::string frmComet::EphemerisText() const
{
    return spread::EphemerisText(ephemeris_->Rows());
}

void frmComet::cmdCopy_Click()
{
    QApplication::clipboard()->setText(Q(EphemerisText()));
}

void frmComet::cmdSave_Click()
{
    std::string suggested = computedName_.empty() ? std::string("ephemeris") : computedName_;
    std::replace_if(
        suggested.begin(), suggested.end(),
        [](char c) { return c == '/' || c == '\\' || c == ':'; }, '-');
    const std::string file =
        context_.ui.AskSaveFile("Save Ephemeris", "Text files (*.txt)", "txt", suggested + ".txt");
    if (file.empty())
        return;
    services::Trap(context_.ui, "frmComet.cmdSave_Click", [&] {
        services::OutputFile out(file);
        out.Write(EphemerisText());
        out.Close();
    });
}

} // namespace astro::ui
