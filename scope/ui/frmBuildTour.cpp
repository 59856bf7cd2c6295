#include "scope/ui/frmBuildTour.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace scope::ui {

namespace {

QString Q(const std::string& text)
{
    return QString::fromStdString(text);
}

} // namespace

frmBuildTour::frmBuildTour(services::UiPort& ui, std::filesystem::path defaultFile, QWidget* parent)
    : QDialog(parent), ui_(ui), defaultFile_(std::move(defaultFile))
{
    setObjectName("frmBuildTour");
    setWindowTitle("Create Tour Script");
    setModal(true);
    auto* layout = new QVBoxLayout(this);

    auto* fields = new QGridLayout;
    const auto field = [&](int row, const char* caption, const char* name) {
        fields->addWidget(new QLabel(caption, this), row, 0, Qt::AlignRight);
        auto* edit = new QLineEdit(this);
        edit->setObjectName(name);
        fields->addWidget(edit, row, 1, 1, 2);
        return edit;
    };
    txtTitle = field(0, "Tour Title :", "txtTitle");
    txtIntro = field(1, "Introduction :", "txtIntro");
    fields->addWidget(new QLabel("Select Destination and FileName :", this), 2, 0, 1, 3);
    txtFile = new QLineEdit(this);
    txtFile->setObjectName("txtFile");
    txtFile->setMinimumWidth(420);
    Command1 = new QPushButton("...", this);
    Command1->setObjectName("Command1");
    Command1->setToolTip(kTourSaveTitle);
    Command1->setFixedWidth(40);
    auto* destination = new QHBoxLayout;
    destination->addWidget(txtFile, 1);
    destination->addWidget(Command1);
    fields->addLayout(destination, 3, 0, 1, 3);
    layout->addLayout(fields);

    auto* mode = new QGroupBox("Tour Options", this);
    auto* modeLayout = new QVBoxLayout(mode);
    optMode[0] = new QRadioButton(
        "Maximize memory - This option will only display object id and common name if one "
        "exists.  Use this to store more objects in the tour.",
        mode);
    optMode[1] = new QRadioButton("Include object details - This option will consume more "
                                  "memory causing fewer objects to be stored in your tour.",
                                  mode);
    for (std::size_t i = 0; i < optMode.size(); ++i) {
        optMode[i]->setObjectName(QString("optMode%1").arg(i));
        modeLayout->addWidget(optMode[i]);
    }
    layout->addWidget(mode);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    cmdOK = new QPushButton("Create Tour", this);
    cmdOK->setObjectName("cmdOK");
    cmdOK->setDefault(true);
    cmdCancel = new QPushButton("Cancel", this);
    cmdCancel->setObjectName("cmdCancel");
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);
    layout->addLayout(buttons);

    connect(Command1, &QPushButton::clicked, this, [this] { Command1_Click(); });
    connect(cmdOK, &QPushButton::clicked, this, [this] { cmdOK_Click(); });
    connect(cmdCancel, &QPushButton::clicked, this, [this] { reject(); });
}

void frmBuildTour::Open(const spread::Grid& grid)
{
    grid_ = &grid;
    txtTitle->setText(kTourDefaultTitle);
    txtIntro->setText(kTourDefaultIntro);
    txtFile->setText(Q(defaultFile_.string()));
    optMode[1]->setChecked(true);
    show();
    raise();
    activateWindow();
}

void frmBuildTour::Command1_Click()
{
    const std::string chosen = ui_.AskSaveFile(kTourSaveTitle, kTourFilter, kTourDefaultExt,
                                               txtFile->text().toStdString());
    if (!chosen.empty())
        txtFile->setText(Q(chosen));
}

TourOptions frmBuildTour::Options() const
{
    TourOptions options;
    options.title = txtTitle->text().toStdString();
    options.intro = txtIntro->text().toStdString();
    options.mode = optMode[0]->isChecked() ? TourMode::MaximizeMemory : TourMode::IncludeDetails;
    return options;
}

void frmBuildTour::cmdOK_Click()
{
    if (!grid_)
        return;
    const std::string file = txtFile->text().trimmed().toStdString();
    const TourResult result = BuildTour(
        ui_, *grid_, file.empty() ? defaultFile_ : std::filesystem::path(file), Options());
    if (result.written)
        accept();
}

} // namespace scope::ui
