#include "reports/ui/frmRSU.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFontDialog>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace reports {

namespace {

// The column boxes stand in three columns of rows, so that the 31 of the database report fit
// on a small screen.
constexpr int kColumnGroups = 3;
constexpr int kWidthBoxPixels = 56;

QPushButton* Button(QWidget* parent, QLayout* layout, const char* name, const QString& caption)
{
    auto* button = new QPushButton(caption, parent);
    button->setObjectName(QString::fromLatin1(name));
    button->setAutoDefault(false);
    layout->addWidget(button);
    return button;
}

} // namespace

frmRSU::frmRSU(SettingsKind kind, spread::AppState& TMM, QWidget* parent)
    : QDialog(parent), setup_(kind, TMM)
{
    const bool database = kind == SettingsKind::Database;
    setObjectName(database ? QStringLiteral("frmRSU") : QStringLiteral("frmrsu2"));
    setWindowTitle(database ? tr("Database Report Setup") : tr("Logbook Report Setup"));
    chooseFont = [this](const QFont& current) -> std::optional<QFont> {
        bool ok = false;
        const QFont chosen = QFontDialog::getFont(&ok, current, this);
        if (!ok)
            return std::nullopt;
        return chosen;
    };

    auto* outer = new QVBoxLayout(this);
    auto* columns = new QGroupBox(tr("Columns and widths (inches)"), this);
    auto* grid = new QGridLayout(columns);
    grid->setHorizontalSpacing(6);
    grid->setVerticalSpacing(2);
    const std::vector<std::string>& captions = ReportColumnCaptions(kind);
    const int count = ColumnCount(kind);
    const int rows = (count + kColumnGroups - 1) / kColumnGroups;
    const QString widthName = database ? QStringLiteral("tWid") : QStringLiteral("txtWidth");
    for (int i = 0; i < count; ++i) {
        auto* box =
            new QCheckBox(QString::fromStdString(captions[static_cast<std::size_t>(i)]), columns);
        box->setObjectName(QStringLiteral("Check1_%1").arg(i));
        auto* width = new QLineEdit(columns);
        width->setObjectName(QStringLiteral("%1_%2").arg(widthName).arg(i));
        width->setFixedWidth(kWidthBoxPixels);
        const int group = i / rows;
        grid->addWidget(box, i % rows, group * 3);
        grid->addWidget(width, i % rows, group * 3 + 1);
        Check1.push_back(box);
        tWid.push_back(width);
    }
    for (int group = 0; group + 1 < kColumnGroups; ++group)
        grid->setColumnMinimumWidth(group * 3 + 2, 18);
    grid->setRowStretch(rows, 1);
    outer->addWidget(columns, 1);

    auto* look = new QHBoxLayout;
    look->addWidget(new QLabel(tr("Line spacing"), this));
    cboLine = new QComboBox(this);
    cboLine->setObjectName(QStringLiteral("cboLine"));
    cboLine->setEditable(true);
    for (const std::string& item : LineSpacingItems())
        cboLine->addItem(QString::fromStdString(item));
    look->addWidget(cboLine);
    look->addSpacing(18);
    cmdFont = Button(this, look, "cmdFont", tr("Font..."));
    lblfont = new QLabel(this);
    lblfont->setObjectName(QStringLiteral("lblfont"));
    lblfont->setFrameShape(QFrame::StyledPanel);
    lblfont->setMinimumWidth(160);
    look->addWidget(lblfont);
    look->addStretch();
    outer->addLayout(look);

    auto* commands = new QHBoxLayout;
    cmdOpen = Button(this, commands, "cmdOpen", tr("Open"));
    cmdSave = Button(this, commands, "cmdSave", tr("Save"));
    cmdNew = Button(this, commands, "cmdNew", tr("New"));
    commands->addStretch();
    cmdApply = Button(this, commands, "cmdApply", tr("Apply"));
    cmdClose = Button(this, commands, "cmdClose", tr("Close"));
    outer->addLayout(commands);

    connect(cmdOpen, &QPushButton::clicked, this, [this] {
        ReadForm();
        setup_.cmdOpen_Click();
        ShowForm();
    });
    connect(cmdSave, &QPushButton::clicked, this, [this] {
        ReadForm();
        setup_.cmdSave_Click();
    });
    connect(cmdNew, &QPushButton::clicked, this, [this] {
        ReadForm();
        setup_.cmdNew_Click();
        ShowForm();
    });
    connect(cmdFont, &QPushButton::clicked, this, [this] { FontClick(); });
    connect(cmdApply, &QPushButton::clicked, this, [this] { ApplyClick(); });
    connect(cmdClose, &QPushButton::clicked, this, &QDialog::reject);
    if (!database)
        connect(Check1[kNotesColumn], &QCheckBox::clicked, this,
                [this](bool on) { setup_.NotesClick(on); });

    ShowForm();
}

void frmRSU::Form_Load()
{
    setup_.Form_Load();
    ShowForm();
}

void frmRSU::ShowForm()
{
    const ReportForm& form = setup_.form;
    for (std::size_t i = 0; i < form.columns.size() && i < Check1.size(); ++i) {
        Check1[i]->setChecked(form.columns[i].on);
        tWid[i]->setText(QString::fromStdString(form.columns[i].width));
    }
    cboLine->setEditText(QString::fromStdString(form.cboLine));
    lblfont->setText(QString::fromStdString(form.lblfont()));
}

void frmRSU::ReadForm()
{
    ReportForm& form = setup_.form;
    for (std::size_t i = 0; i < form.columns.size() && i < Check1.size(); ++i) {
        form.columns[i].on = Check1[i]->isChecked();
        form.columns[i].width = tWid[i]->text().toStdString();
    }
    form.cboLine = cboLine->currentText().toStdString();
}

void frmRSU::FontClick()
{
    const ReportForm& form = setup_.form;
    QFont current(QString::fromStdString(form.fontName));
    if (form.fontSize > 0)
        current.setPointSizeF(form.fontSize);
    const std::optional<QFont> chosen = chooseFont(current);
    if (!chosen)
        return;
    setup_.form.fontName = chosen->family().toStdString();
    setup_.form.fontSize = chosen->pointSizeF() > 0 ? chosen->pointSizeF() : chosen->pointSize();
    lblfont->setText(QString::fromStdString(setup_.form.lblfont()));
}

void frmRSU::ApplyClick()
{
    ReadForm();
    if (setup_.SaveApply())
        accept();
}

} // namespace reports
