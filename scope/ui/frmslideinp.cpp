#include "scope/ui/frmslideinp.h"

#include "scope/ui/frmSlide.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>
#include <QPushButton>
#include <QStatusBar>
#include <QTimer>
#include <QVBoxLayout>

namespace scope::ui {

namespace {

QComboBox* ListBox(const std::vector<std::string>& entries, bool editable)
{
    auto* box = new QComboBox;
    box->setEditable(editable);
    for (const std::string& entry : entries)
        box->addItem(QString::fromStdString(entry));
    return box;
}

QLineEdit* ReadOnly()
{
    auto* edit = new QLineEdit;
    edit->setReadOnly(true);
    return edit;
}

std::string Text(const QComboBox* box)
{
    return box->currentText().toStdString();
}

} // namespace

frmslideinp::frmslideinp(spread::AppState& TMM, ScopeContext& s,
                         std::function<void(const std::string&)> moreInfo, QWidget* parent)
    : QDialog(parent), slide(TMM, s), moreInfo_(std::move(moreInfo))
{
    setWindowTitle("Telescope Slide Show");
    txtObjectID = ReadOnly();
    txtCatalog = ReadOnly();
    txtra = ReadOnly();
    txtdec = ReadOnly();
    txtdatarec = ReadOnly();
    txtShort = new QLineEdit;
    cboSee = ListBox(SlideSeeingList(), false);
    cboTransparency = ListBox(SlideTransparencyList(), false);
    cboRating = ListBox(logbook::RatingList(), false);
    cbologtype = ListBox({TMM.prefs.Ltype}, true);
    txtLocation = ListBox({}, true);
    txtEquipment = ListBox({}, true);
    cbogoto = ListBox({}, false);
    imgObject = new QLabel;
    imgObject->setFixedSize(320, 320);
    imgObject->setAlignment(Qt::AlignCenter);
    imgObject->setFrameShape(QFrame::Box);
    lblFov = new QLabel;
    StatusBar1 = new QStatusBar;
    StatusBar1->setSizeGripEnabled(false);
    chkaltmap = new QCheckBox("Use Alt GMTOffset (4,5,6)");
    chkaltmap->setToolTip("Users who specify 1,2, or 3 for the GMTOffset should use 4,5,6 at the "
                          "keypad instead of 1,2,3");
    cmdPrevious = new QPushButton("<< Previous");
    cmdNext = new QPushButton("Next >>");
    cmdAddLog = new QPushButton("Add Log");
    cmdOn = new QPushButton("Controller On");
    cmdOff = new QPushButton("Controller Off");
    cmdMoreInfo = new QPushButton("More Info");
    cmdHelp = new QPushButton("Help");
    cmdClose = new QPushButton("Close");
    Timer1 = new QTimer(this);
    Timer1->setInterval(kSlideTimerMs);

    auto* object = new QFormLayout;
    object->addRow("Object ID", txtObjectID);
    object->addRow("Catalog", txtCatalog);
    object->addRow("R.A.", txtra);
    object->addRow("Dec.", txtdec);
    object->addRow("Record", txtdatarec);
    object->addRow("Go to", cbogoto);
    auto* log = new QFormLayout;
    log->addRow("Seeing", cboSee);
    log->addRow("Transparency", cboTransparency);
    log->addRow("Rating", cboRating);
    log->addRow("Log Type", cbologtype);
    log->addRow("Location", txtLocation);
    log->addRow("Equipment", txtEquipment);
    log->addRow("Short Description", txtShort);
    auto* fields = new QVBoxLayout;
    fields->addLayout(object);
    fields->addLayout(log);
    fields->addWidget(chkaltmap);
    auto* picture = new QVBoxLayout;
    picture->addWidget(imgObject);
    picture->addWidget(lblFov);
    picture->addStretch();
    auto* top = new QHBoxLayout;
    top->addLayout(fields, 1);
    top->addLayout(picture);
    auto* buttons = new QGridLayout;
    buttons->addWidget(cmdPrevious, 0, 0);
    buttons->addWidget(cmdNext, 0, 1);
    buttons->addWidget(cmdAddLog, 0, 2);
    buttons->addWidget(cmdMoreInfo, 0, 3);
    buttons->addWidget(cmdOn, 1, 0);
    buttons->addWidget(cmdOff, 1, 1);
    buttons->addWidget(cmdHelp, 1, 2);
    buttons->addWidget(cmdClose, 1, 3);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addLayout(buttons);
    layout->addWidget(StatusBar1);

    connect(cmdNext, &QPushButton::clicked, this, [this] { Run([this] { slide.cmdNext(); }); });
    connect(cmdPrevious, &QPushButton::clicked, this,
            [this] { Run([this] { slide.cmdPrevious(); }); });
    connect(cmdAddLog, &QPushButton::clicked, this, [this] {
        ReadLogFields();
        Run([this] { slide.cmdAddLog(); });
    });
    connect(cmdOn, &QPushButton::clicked, this, [this] { Run([this] { slide.cmdOn(); }); });
    connect(cmdOff, &QPushButton::clicked, this, [this] { Run([this] { slide.cmdOff(); }); });
    connect(cbogoto, &QComboBox::activated, this, [this](int index) {
        if (!showing_)
            Run([this, index] { slide.cbogoto(index + 1); });
    });
    connect(chkaltmap, &QCheckBox::toggled, this, [this](bool on) { slide.chkaltmap = on; });
    connect(Timer1, &QTimer::timeout, this, [this] {
        // The tick stops the timer while it works: a slew can outlast a second.
        Timer1->stop();
        ReadLogFields();
        Run([this] { slide.Timer1(); });
    });
    // Without an object's details window the button stays off rather than doing nothing.
    cmdMoreInfo->setEnabled(static_cast<bool>(moreInfo_));
    connect(cmdMoreInfo, &QPushButton::clicked, this, [this] {
        if (moreInfo_)
            moreInfo_(slide.MoreInfoId());
    });
    connect(cmdHelp, &QPushButton::clicked, this, [this, &TMM] {
        auto* help = new frmslidehelp(TMM.dir.path, this);
        help->setAttribute(Qt::WA_DeleteOnClose);
        help->show();
    });
    connect(cmdClose, &QPushButton::clicked, this, &QDialog::close);
    resize(760, 560);
}

frmslideinp::~frmslideinp()
{
    Timer1->stop();
}

void frmslideinp::Open()
{
    Run([this] {
        slide.Load();
        showing_ = true;
        cbogoto->clear();
        for (const std::string& id : slide.gotoList)
            cbogoto->addItem(QString::fromStdString(id));
        for (const std::string& site : slide.locations)
            txtLocation->addItem(QString::fromStdString(site));
        for (const std::string& kit : slide.equipment)
            txtEquipment->addItem(QString::fromStdString(kit));
        showing_ = false;
    });
}

void frmslideinp::Run(const std::function<void()>& click)
{
    click();
    ShowState();
}

void frmslideinp::ReadLogFields()
{
    slide.log.cboSee = Text(cboSee);
    slide.log.cboTransparency = Text(cboTransparency);
    slide.log.cboRating = Text(cboRating);
    slide.log.cboLogtype = Text(cbologtype);
    slide.log.txtLocation = Text(txtLocation);
    slide.log.txtEquipment = Text(txtEquipment);
    slide.log.txtDescription = txtShort->text().toStdString();
}

void frmslideinp::ShowState()
{
    const SlideObject& o = slide.shown;
    txtObjectID->setText(QString::fromStdString(o.txtObjectID));
    txtCatalog->setText(QString::fromStdString(o.txtCatalog));
    txtra->setText(QString::fromStdString(o.txtra));
    txtdec->setText(QString::fromStdString(o.txtdec));
    txtdatarec->setText(QString::fromStdString(o.txtdatarec));
    const QPixmap image(QString::fromStdString(o.imagePath));
    if (image.isNull()) {
        imgObject->setText("No image");
        lblFov->clear();
    } else {
        imgObject->setPixmap(
            image.scaled(imgObject->size(), Qt::KeepAspectRatio, Qt::SmoothTransformation));
        lblFov->setText(QString("Field of view: %1'").arg(o.imageFov));
    }
    StatusBar1->showMessage(QString::fromStdString(slide.statusBar));
    const QSignalBlocker block(chkaltmap);
    chkaltmap->setChecked(slide.chkaltmap);
    // The Go to list follows the row shown.
    if (slide.CurrentRow >= 1 && slide.CurrentRow <= cbogoto->count())
        cbogoto->setCurrentIndex(slide.CurrentRow - 1);
    cmdOn->setEnabled(slide.cmdOnEnabled);
    cmdOff->setEnabled(slide.cmdOffEnabled);
    if (slide.Timer1Enabled && !Timer1->isActive())
        Timer1->start();
    if (!slide.Timer1Enabled)
        Timer1->stop();
}

} // namespace scope::ui
