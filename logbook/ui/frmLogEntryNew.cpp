#include "logbook/ui/frmLogEntryNew.h"

#include "logbook/ui/frmEQDialog.h"
#include "logbook/ui/frmLogSearch.h"
#include "services/Vb.h"

#include <QAction>
#include <QCheckBox>
#include <QCloseEvent>
#include <QColorDialog>
#include <QComboBox>
#include <QFocusEvent>
#include <QFontDialog>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QResizeEvent>
#include <QSignalBlocker>
#include <QTabWidget>
#include <QTableWidget>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextEdit>
#include <QTextList>
#include <QTimer>
#include <QToolBar>
#include <QVBoxLayout>

namespace logbook::ui {

namespace {

namespace vb = services::vb;

QString Q(const std::string& text)
{
    return QString::fromStdString(text);
}

std::string S(const QString& text)
{
    return text.toStdString();
}

QColor ColourOf(const std::array<int, 3>& rgb)
{
    return QColor(rgb[0], rgb[1], rgb[2]);
}

// The grid's roles: the form's row number of a view row (on its first cell), and the key a
// header sort compares.
constexpr int kRowRole = Qt::UserRole + 1;
constexpr int kSortRole = Qt::UserRole + 2;

// A grid cell that sorts by its key when it has one: the number of "Obs #", the date of "Date".
class LogCell : public QTableWidgetItem
{
public:
    explicit LogCell(const QString& text) : QTableWidgetItem(text) { setFlags(Qt::ItemIsEnabled); }
    bool operator<(const QTableWidgetItem& other) const override
    {
        const QVariant mine = data(kSortRole);
        const QVariant theirs = other.data(kSortRole);
        if (!mine.isValid() || !theirs.isValid())
            return text() < other.text();
        if (mine.typeId() == QMetaType::Double && theirs.typeId() == QMetaType::Double)
            return mine.toDouble() < theirs.toDouble();
        return mine.toString() < theirs.toString();
    }
};

// The picture of the Images tab, scaled to the space it has and kept in proportion.
class PictureView : public QLabel
{
public:
    explicit PictureView(QWidget* parent) : QLabel(parent)
    {
        setAlignment(Qt::AlignCenter);
        setMinimumSize(120, 90);
        setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
    }
    void SetPicture(const QPixmap& picture)
    {
        picture_ = picture;
        Fit();
    }

protected:
    void resizeEvent(QResizeEvent* event) override
    {
        QLabel::resizeEvent(event);
        Fit();
    }

private:
    void Fit()
    {
        if (picture_.isNull()) {
            clear();
            return;
        }
        setPixmap(picture_.size().boundedTo(size()) == picture_.size()
                      ? picture_
                      : picture_.scaled(size(), Qt::KeepAspectRatio, Qt::SmoothTransformation));
    }

    QPixmap picture_;
};

// A rich box's value as the form keeps it: its HTML, or nothing when its text is blank.
std::string RichValue(const QTextEdit& box)
{
    if (box.toPlainText().trimmed().isEmpty())
        return {};
    return S(box.toHtml());
}

void ShowRich(QTextEdit& box, const std::string& value)
{
    if (RichValue(box) == value)
        return;
    const QString text = Q(value);
    if (Qt::mightBeRichText(text)) {
        box.setHtml(text);
    } else if (box.toPlainText() != text) {
        box.setPlainText(text);
    }
}

// A list box's text as the form keeps it: the text behind a shown item (the seeing list shows
// a numeral beside its stored text), else the text as typed.
std::string ComboText(const QComboBox& box)
{
    const QString text = box.currentText();
    const int item = box.findText(text);
    if (item >= 0 && box.itemData(item).isValid())
        return S(box.itemData(item).toString());
    return S(text);
}

void ShowCombo(QComboBox& box, const std::string& value)
{
    if (ComboText(box) == value && (box.isEditable() || box.currentIndex() >= 0))
        return;
    int item = box.findData(Q(value));
    if (item < 0)
        item = box.findText(Q(value));
    if (item >= 0) {
        box.setCurrentIndex(item);
    } else {
        box.setCurrentIndex(-1);
        if (box.isEditable())
            box.setEditText(Q(value));
    }
}

void ToggleBold(QTextEdit& box)
{
    QTextCharFormat format;
    format.setFontWeight(box.fontWeight() >= QFont::Bold ? QFont::Normal : QFont::Bold);
    box.mergeCurrentCharFormat(format);
}

void ToggleItalic(QTextEdit& box)
{
    box.setFontItalic(!box.fontItalic());
}

void ToggleUnderline(QTextEdit& box)
{
    box.setFontUnderline(!box.fontUnderline());
}

// The paragraphs of the selection leave their list when the first is in one; else they become
// a bulleted list.
void ToggleBullets(QTextEdit& box)
{
    QTextCursor cursor = box.textCursor();
    cursor.beginEditBlock();
    if (cursor.currentList()) {
        QTextDocument* document = box.document();
        QTextBlock block = document->findBlock(cursor.selectionStart());
        const QTextBlock last = document->findBlock(cursor.selectionEnd());
        for (;;) {
            if (QTextList* list = block.textList()) {
                list->remove(block);
                QTextCursor at(block);
                QTextBlockFormat format = at.blockFormat();
                format.setIndent(0);
                at.setBlockFormat(format);
            }
            if (block == last || !block.isValid())
                break;
            block = block.next();
        }
    } else {
        cursor.createList(QTextListFormat::ListDisc);
    }
    cursor.endEditBlock();
}

// The "comment" tool: the selection bold in the comment colour.
void MarkComment(QTextEdit& box)
{
    QTextCharFormat format;
    format.setFontWeight(QFont::Bold);
    format.setForeground(ColourOf(CommentRgb));
    box.mergeCurrentCharFormat(format);
}

void ChooseColour(QTextEdit& box, QWidget* owner)
{
    const QColor colour = QColorDialog::getColor(box.textColor(), owner, "Font Color");
    if (colour.isValid())
        box.setTextColor(colour);
}

void ChooseFont(QTextEdit& box, QWidget* owner)
{
    bool ok = false;
    const QFont font = QFontDialog::getFont(&ok, box.currentFont(), owner, "Font");
    if (ok)
        box.setCurrentFont(font);
}

QLabel* FieldLabel(const QString& text, QWidget* buddy, QWidget* parent)
{
    auto* label = new QLabel(text, parent);
    label->setBuddy(buddy);
    return label;
}

void SelectAllLater(QWidget* widget)
{
    QLineEdit* edit = qobject_cast<QLineEdit*>(widget);
    if (auto* box = qobject_cast<QComboBox*>(widget))
        edit = box->lineEdit();
    // After the click that brought the focus has placed the cursor; not when the focus has
    // moved on meanwhile.
    if (edit)
        QTimer::singleShot(0, edit, [edit] {
            if (edit->hasFocus())
                edit->selectAll();
        });
}

} // namespace

// ---------------------------------------------------------------------------------------------
// Building

frmLogEntryNew::frmLogEntryNew(logbook::LogContext& context, QWidget* parent)
    : QWidget(parent, Qt::Window), ctx_(context), form_(context)
{
    setObjectName("frmLogEntryNew");
    setWindowTitle("Logbook");
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(BuildEntryFields());

    vsIndexTab1 = new QTabWidget(this);
    vsIndexTab1->setObjectName("vsIndexTab1");
    QWidget* pages[7] = {};
    pages[0] = BuildObjectList();

    auto* sky = new QWidget(this);
    auto* skyLayout = new QHBoxLayout(sky);
    skyLayout->setContentsMargins(0, 0, 0, 0);
    txtFaintestStar = LineField("txtFaintestStar", LogField::txtFaintestStar);
    txtSkyQuality = LineField("txtSkyQuality", LogField::txtSkyQuality);
    txtFaintestStar->setMaximumWidth(90);
    txtSkyQuality->setMaximumWidth(90);
    skyLayout->addWidget(FieldLabel("Faintest star (mag)", txtFaintestStar, sky));
    skyLayout->addWidget(txtFaintestStar);
    skyLayout->addSpacing(20);
    skyLayout->addWidget(FieldLabel("Sky quality (mag/arcsec²)", txtSkyQuality, sky));
    skyLayout->addWidget(txtSkyQuality);
    skyLayout->addStretch();
    pages[1] = RichPage(RichTextBox1, "RichTextBox1", LogField::RichTextBox1, true, sky);
    // The notes come first when the tab is opened, the two readings after them.
    setTabOrder(RichTextBox1, txtFaintestStar);
    setTabOrder(txtFaintestStar, txtSkyQuality);
    pages[2] = RichPage(rchNotes, "rchNotes", LogField::rchNotes, false);
    pages[3] = BuildCcdLog();
    pages[4] = BuildImages();
    auto* chart = new QLabel(this);
    chart->setObjectName("ctlQuickChartLog");
    pages[5] = chart;
    pages[6] = new QWidget(this);
    for (std::size_t tab = 0; tab < TabCaptions.size(); ++tab)
        vsIndexTab1->addTab(pages[tab], TabCaptions[tab]);
    layout->addWidget(vsIndexTab1, 1);

    resize(1100, 760);
}

QWidget* frmLogEntryNew::BuildEntryFields()
{
    auto* area = new QWidget(this);
    auto* row = new QHBoxLayout(area);
    row->setContentsMargins(0, 0, 0, 0);

    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(8);
    grid->setVerticalSpacing(4);
    txtObjectID = LineField("txtObjectID", LogField::txtObjectID);
    txtOtherID = new QLineEdit(area);
    txtOtherID->setObjectName("txtOtherID");
    txtOtherID->setReadOnly(true);
    txtOtherID->setFocusPolicy(Qt::NoFocus);
    cboCatalog = ComboField("cboCatalog", LogField::cboCatalog);

    auto* seen = new QWidget(area);
    auto* seenLayout = new QHBoxLayout(seen);
    seenLayout->setContentsMargins(0, 0, 0, 0);
    Option1 = new QRadioButton("Seen", seen);
    Option1->setObjectName("Option1");
    Option2 = new QRadioButton("Attempted, not seen", seen);
    Option2->setObjectName("Option2");
    Option1->setChecked(true);
    seenLayout->addWidget(Option1);
    seenLayout->addWidget(Option2);
    seenLayout->addStretch();
    widgetOf_[LogField::SeenFlag] = Option1;
    connect(Option1, &QRadioButton::clicked, this,
            [this] { form_.SetCheck(LogField::SeenFlag, true); });
    connect(Option2, &QRadioButton::clicked, this,
            [this] { form_.SetCheck(LogField::SeenFlag, false); });

    mskDate = LineField("mskDate", LogField::mskDate);
    mskTime = LineField("mskTime", LogField::mskTime);
    lblTime = new QLabel(area);
    lblTime->setObjectName("lblTime");
    auto* time = new QWidget(area);
    auto* timeLayout = new QHBoxLayout(time);
    timeLayout->setContentsMargins(0, 0, 0, 0);
    timeLayout->addWidget(mskTime, 1);
    timeLayout->addWidget(lblTime);

    txtLocation = ComboField("txtLocation", LogField::txtLocation);
    cboTransparency = ComboField("cboTransparency", LogField::cboTransparency);
    cboSee = ComboField("cboSee", LogField::cboSee);
    txtEquipment = ComboField("txtEquipment", LogField::txtEquipment);
    cboRating = ComboField("cboRating", LogField::cboRating);
    cboLogtype = ComboField("cboLogtype", LogField::cboLogtype);
    txtDescription = LineField("txtDescription", LogField::txtDescription);

    const std::tuple<int, int, const char*, QWidget*> cells[] = {
        {0, 0, "Object ID", txtObjectID},
        {0, 2, "Other ID", txtOtherID},
        {0, 4, "Catalog", cboCatalog},
        {1, 0, "Date", mskDate},
        {1, 2, "Time", time},
        {1, 4, "Observed", seen},
        {2, 0, "Location", txtLocation},
        {2, 2, "Transparency", cboTransparency},
        {2, 4, "Seeing", cboSee},
        {3, 0, "Equipment", txtEquipment},
        {3, 2, "Rating", cboRating},
        {3, 4, "Log Type", cboLogtype},
    };
    for (const auto& [r, c, caption, widget] : cells) {
        grid->addWidget(FieldLabel(caption, widget, area), r, c);
        grid->addWidget(widget, r, c + 1);
    }
    grid->addWidget(FieldLabel("Description", txtDescription, area), 4, 0);
    grid->addWidget(txtDescription, 4, 1, 1, 5);
    for (int c : {1, 3, 5})
        grid->setColumnStretch(c, 1);
    row->addLayout(grid, 1);

    auto* other = new QGroupBox("Other Equipment", area);
    auto* otherLayout = new QVBoxLayout(other);
    List1 = new QListWidget(other);
    List1->setObjectName("List1");
    widgetOf_[LogField::List1] = List1;
    cmdOtherEquipment = new QPushButton("Choose...", other);
    cmdOtherEquipment->setObjectName("cmdOtherEquipment");
    connect(cmdOtherEquipment, &QPushButton::clicked, this, [this] { PickOtherEquipment(); });
    List1->setMaximumHeight(List1->fontMetrics().height() * 5 + 8);
    otherLayout->setContentsMargins(6, 4, 6, 4);
    otherLayout->setSpacing(4);
    otherLayout->addWidget(List1, 1);
    otherLayout->addWidget(cmdOtherEquipment, 0, Qt::AlignRight);
    other->setFixedWidth(220);
    row->addWidget(other);

    auto* commands = new QVBoxLayout;
    auto* number = new QHBoxLayout;
    lblObNo = new QLabel(area);
    lblObNo->setObjectName("lblObNo");
    lblObNo->setFrameShape(QFrame::StyledPanel);
    lblObNo->setMinimumWidth(60);
    number->addWidget(new QLabel("Obs #", area));
    number->addWidget(lblObNo, 1);
    commands->addLayout(number);
    const std::tuple<QPushButton**, const char*, const char*> buttons[] = {
        {&cmdAdd, "cmdAdd", "Add"},
        {&cmdUpdate, "cmdUpdate", "Update"},
        {&cmdDelete, "cmdDelete", "Delete"},
        {&cmdClear, "cmdClear", "Clear"},
        {&cmdLastEntry, "cmdLastEntry", "Last Entry"},
        {&cmdPrintSum, "cmdPrintSum", "Print Summary"},
    };
    for (const auto& [button, name, caption] : buttons) {
        *button = new QPushButton(caption, area);
        (*button)->setObjectName(name);
        commands->addWidget(*button);
    }
    chkClear = new QCheckBox("Clear after Add", area);
    chkClear->setObjectName("chkClear");
    commands->addWidget(chkClear);
    commands->addStretch();
    row->addLayout(commands);
    area->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);

    // The Tab key follows the fields in the order an observation is written down.
    QWidget* const order[] = {txtObjectID, cboCatalog,      mskDate, mskTime,           Option1,
                              txtLocation, cboTransparency, cboSee,  txtEquipment,      cboRating,
                              cboLogtype,  txtDescription,  List1,   cmdOtherEquipment, cmdAdd};
    for (std::size_t i = 1; i < std::size(order); ++i)
        setTabOrder(order[i - 1], order[i]);

    connect(cmdAdd, &QPushButton::clicked, this, [this] { Run([this] { form_.cmdAdd_Click(); }); });
    connect(cmdUpdate, &QPushButton::clicked, this,
            [this] { Run([this] { form_.cmdUpdate_Click(); }); });
    connect(cmdDelete, &QPushButton::clicked, this,
            [this] { Run([this] { form_.DeleteObservation(); }); });
    connect(cmdClear, &QPushButton::clicked, this, [this] { Run([this] { form_.cmdClear(); }); });
    connect(cmdLastEntry, &QPushButton::clicked, this,
            [this] { Run([this] { form_.cmdLastEntry_Click(); }); });
    connect(cmdPrintSum, &QPushButton::clicked, this, [this] { cmdPrintSum_Click(); });
    return area;
}

QWidget* frmLogEntryNew::BuildObjectList()
{
    auto* page = new QWidget(this);
    auto* layout = new QVBoxLayout(page);
    auto* search = new QHBoxLayout;
    cboSlog = new QComboBox(page);
    cboSlog->setObjectName("cboSlog");
    cboSlog->setMinimumWidth(140);
    txtSearch = new QLineEdit(page);
    txtSearch->setObjectName("txtSearch");
    txtSearch->setMaximumWidth(200);
    cmdFind = new QPushButton("Find", page);
    cmdFind->setObjectName("cmdFind");
    cmdShowAll = new QPushButton("Show ALL", page);
    cmdShowAll->setObjectName("cmdShowAll");
    chkFilterSeen = new QCheckBox("Filter Not Seen Entries", page);
    chkFilterSeen->setObjectName("chkFilterSeen");
    search->addWidget(FieldLabel("Log Type", cboSlog, page));
    search->addWidget(cboSlog);
    search->addSpacing(12);
    search->addWidget(FieldLabel("Object ID", txtSearch, page));
    search->addWidget(txtSearch);
    search->addWidget(cmdFind);
    search->addWidget(cmdShowAll);
    cmdSearch = new QPushButton("Search...", page);
    cmdSearch->setObjectName("cmdSearch");
    search->addWidget(cmdSearch);
    search->addSpacing(12);
    search->addWidget(chkFilterSeen);
    search->addStretch();
    layout->addLayout(search);

    grdLog = new QTableWidget(0, kLogCols, page);
    grdLog->setObjectName("grdLog");
    QStringList captions;
    for (const char* caption : LogGridCaptions)
        captions << caption;
    grdLog->setHorizontalHeaderLabels(captions);
    grdLog->setSelectionMode(QAbstractItemView::NoSelection);
    grdLog->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grdLog->verticalHeader()->setDefaultSectionSize(grdLog->fontMetrics().height() + 6);
    grdLog->horizontalHeader()->setSectionsClickable(true);
    grdLog->horizontalHeader()->setStretchLastSection(true);
    // Room for the sort arrow from the start, so that a sorted caption is not cut.
    grdLog->horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
    grdLog->horizontalHeader()->setSortIndicatorShown(true);
    layout->addWidget(grdLog, 1);

    connect(grdLog, &QTableWidget::cellClicked, this, [this](int row, int) {
        const QTableWidgetItem* first = grdLog->item(row, 0);
        if (!first)
            return;
        const int formRow = first->data(kRowRole).toInt();
        Run([this, formRow] { form_.GridClick(formRow); });
    });
    connect(grdLog->horizontalHeader(), &QHeaderView::sectionClicked, this,
            [this](int column) { SortGrid(column); });
    connect(cboSlog, &QComboBox::activated, this, [this] { Run([this] { form_.cmdShowAll(); }); });
    connect(cmdFind, &QPushButton::clicked, this, [this] { Run([this] { form_.cmdFind(); }); });
    connect(txtSearch, &QLineEdit::returnPressed, this,
            [this] { Run([this] { form_.cmdFind(); }); });
    connect(cmdShowAll, &QPushButton::clicked, this,
            [this] { Run([this] { form_.cmdShowAll(); }); });
    connect(cmdSearch, &QPushButton::clicked, this, [this] { Search(); });
    connect(chkFilterSeen, &QCheckBox::clicked, this,
            [this] { Run([this] { form_.LoadObservations(); }); });
    return page;
}

QWidget* frmLogEntryNew::BuildCcdLog()
{
    auto* page = new QWidget(this);
    auto* layout = new QHBoxLayout(page);
    auto* fields = new QFormLayout;
    txtimgname = LineField("txtimgname", LogField::txtimgname);
    txtExpTime = LineField("txtExpTime", LogField::txtExpTime);
    txtmode = ComboField("txtmode", LogField::txtmode);
    txtscope = ComboField("txtscope", LogField::txtscope);
    txtCCD = ComboField("txtCCD", LogField::txtCCD);
    txtFocDis = LineField("txtFocDis", LogField::txtFocDis);
    txtFov = LineField("txtFov", LogField::txtFov);
    txtCrate = LineField("txtCrate", LogField::txtCrate);
    txtRating = LineField("txtRating", LogField::txtRating);
    chkdframe = new QCheckBox("Dark Frame", page);
    chkdframe->setObjectName("chkdframe");
    chkFfield = new QCheckBox("Flat Field", page);
    chkFfield->setObjectName("chkFfield");
    for (auto [check, field] :
         {std::pair{chkdframe, LogField::chkdframe}, std::pair{chkFfield, LogField::chkFfield}}) {
        widgetOf_[field] = check;
        connect(check, &QCheckBox::clicked, this,
                [this, field](bool checked) { form_.SetCheck(field, checked); });
    }
    fields->addRow("Image Name", txtimgname);
    fields->addRow("Exposure Time", txtExpTime);
    fields->addRow("Exposure Mode", txtmode);
    fields->addRow("Telescope", txtscope);
    fields->addRow("CCD Camera", txtCCD);
    fields->addRow("Focal Distance", txtFocDis);
    fields->addRow("Field of View", txtFov);
    fields->addRow("Cooling Rate", txtCrate);
    auto* checks = new QHBoxLayout;
    checks->addWidget(chkdframe);
    checks->addWidget(chkFfield);
    checks->addStretch();
    fields->addRow("", checks);
    fields->addRow("Picture Rating", txtRating);
    auto* left = new QWidget(page);
    left->setLayout(fields);
    left->setFixedWidth(320);
    layout->addWidget(left, 0, Qt::AlignTop);
    layout->addWidget(RichPage(rchNotesccd, "rchNotesccd", LogField::rchNotesccd, false), 1);
    return page;
}

QWidget* frmLogEntryNew::BuildImages()
{
    auto* page = new QWidget(this);
    auto* layout = new QVBoxLayout(page);
    auto* top = new QHBoxLayout;
    cbologimages = new QComboBox(page);
    cbologimages->setObjectName("cbologimages");
    cbologimages->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    cbologimages->setMinimumContentsLength(40);
    imageBar = new QToolBar(page);
    imageBar->setObjectName("imageBar");
    imageBar->setToolButtonStyle(Qt::ToolButtonTextOnly);
    QAction* add = imageBar->addAction("Add Image");
    add->setObjectName("addimage");
    QAction* remove = imageBar->addAction("Delete Image");
    remove->setObjectName("deleteimage");
    top->addWidget(cbologimages, 1);
    top->addWidget(imageBar);
    layout->addLayout(top);
    lblImageDescription = new QLabel(page);
    lblImageDescription->setObjectName("lblImageDescription");
    layout->addWidget(lblImageDescription);
    auto* picture = new PictureView(page);
    picture->setObjectName("svImage1");
    svImage1 = picture;
    layout->addWidget(svImage1, 1);

    connect(cbologimages, &QComboBox::activated, this,
            [this](int index) { Run([this, index] { form_.ChooseImage(index); }); });
    connect(add, &QAction::triggered, this, [this] { Run([this] { form_.AttachImage(); }); });
    connect(remove, &QAction::triggered, this, [this] { Run([this] { form_.DeleteImage(); }); });
    return page;
}

QWidget* frmLogEntryNew::RichPage(QTextEdit*& box, const char* name, LogField field,
                                  bool sessionBand, QWidget* below)
{
    auto* page = new QWidget(this);
    auto* layout = new QVBoxLayout(page);
    auto* bar = new QToolBar(page);
    bar->setObjectName(QString(name) + "Band");
    bar->setToolButtonStyle(Qt::ToolButtonTextOnly);
    box = new QTextEdit(page);
    box->setObjectName(name);
    box->setAcceptRichText(true);
    QTextEdit* target = box;
    using Tool = std::function<void(QTextEdit&)>;
    const std::tuple<const char*, const char*, Tool> tools[] = {
        {"miBold", "Bold", ToggleBold},
        {"miItalic", "Italic", ToggleItalic},
        {"miUnderline", "Underline", ToggleUnderline},
        {"miLeft", "Left", [](QTextEdit& b) { b.setAlignment(Qt::AlignLeft); }},
        {"miCenter", "Center", [](QTextEdit& b) { b.setAlignment(Qt::AlignHCenter); }},
        {"miRight", "Right", [](QTextEdit& b) { b.setAlignment(Qt::AlignRight); }},
        {"miBullets", "Bullets", ToggleBullets},
        {"color", "Color", [this](QTextEdit& b) { ChooseColour(b, this); }},
        {"font", "Font", [this](QTextEdit& b) { ChooseFont(b, this); }},
        {"comment", "Comment", MarkComment},
    };
    for (const auto& [key, caption, tool] : tools) {
        QAction* action = bar->addAction(caption);
        action->setObjectName(key);
        connect(action, &QAction::triggered, this, [target, tool = tool] { tool(*target); });
    }
    bar->addSeparator();
    QAction* print = bar->addAction("Print");
    print->setObjectName("print");
    const int notesReport = field == LogField::RichTextBox1 ? 18
                            : field == LogField::rchNotes   ? 19
                                                            : 20;
    connect(print, &QAction::triggered, this, [this, notesReport] {
        Run([this, notesReport] {
            if (printReport)
                printReport(notesReport);
        });
    });
    if (sessionBand) {
        QAction* remove = bar->addAction("Delete");
        remove->setObjectName("delete");
        remove->setToolTip("Delete Session Log Entry");
        connect(remove, &QAction::triggered, this,
                [this] { Run([this] { form_.DeleteSession(); }); });
    }
    richBars_[box] = bar;
    Watch(box, field);
    connect(box, &QTextEdit::textChanged, this,
            [this, target, field] { form_.SetValue(field, RichValue(*target)); });

    layout->addWidget(bar);
    layout->addWidget(box, 1);
    auto* help = new QLabel(RichTextHelp, page);
    help->setObjectName(QString(name) + "Help");
    layout->addWidget(help);
    if (below)
        layout->addWidget(below);
    return page;
}

QLineEdit* frmLogEntryNew::LineField(const char* name, LogField field)
{
    auto* edit = new QLineEdit(this);
    edit->setObjectName(name);
    Watch(edit, field);
    connect(edit, &QLineEdit::textEdited, this,
            [this, field](const QString& text) { form_.SetValue(field, S(text)); });
    return edit;
}

QComboBox* frmLogEntryNew::ComboField(const char* name, LogField field)
{
    auto* box = new QComboBox(this);
    box->setObjectName(name);
    box->setEditable(true);
    box->setInsertPolicy(QComboBox::NoInsert);
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    box->setMinimumContentsLength(8);
    Watch(box, field);
    auto typed = [this, box, field] { form_.SetValue(field, ComboText(*box)); };
    connect(box->lineEdit(), &QLineEdit::textEdited, this, typed);
    connect(box, &QComboBox::activated, this, typed);
    return box;
}

void frmLogEntryNew::Watch(QWidget* widget, LogField field)
{
    widgetOf_[field] = widget;
    fieldOf_[widget] = field;
    widget->installEventFilter(this);
}

QToolBar* frmLogEntryNew::RichBar(QTextEdit* box) const
{
    const auto found = richBars_.find(box);
    return found == richBars_.end() ? nullptr : found->second;
}

// ---------------------------------------------------------------------------------------------
// Between the widgets and the form

void frmLogEntryNew::ReadField(LogField field)
{
    QWidget* widget = widgetOf_.at(field);
    switch (NameOf(field).kind) {
    case FieldKind::Text:
        if (auto* edit = qobject_cast<QLineEdit*>(widget))
            *form_.f.Text(field) = S(edit->text());
        else if (auto* box = qobject_cast<QComboBox*>(widget))
            *form_.f.Text(field) = ComboText(*box);
        break;
    case FieldKind::Rich:
        *form_.f.Text(field) = RichValue(*static_cast<QTextEdit*>(widget));
        break;
    case FieldKind::Check:
        if (field == LogField::SeenFlag)
            form_.f.Option1 = !Option2->isChecked();
        else
            *form_.f.Check(field) = static_cast<QCheckBox*>(widget)->isChecked();
        break;
    case FieldKind::Lines:
        form_.f.List1.clear();
        for (int row = 0; row < List1->count(); ++row)
            form_.f.List1.push_back(S(List1->item(row)->text()));
        break;
    }
}

void frmLogEntryNew::ReadWidgets()
{
    for (const LogFieldName& name : LogFieldNames())
        ReadField(name.field);
    form_.cboSlog = S(cboSlog->currentText());
    form_.txtSearch = S(txtSearch->text());
    form_.chkFilterSeen = chkFilterSeen->isChecked();
    form_.chkClear = chkClear->isChecked();
}

void frmLogEntryNew::ShowField(LogField field)
{
    QWidget* widget = widgetOf_.at(field);
    const QSignalBlocker block(widget);
    switch (NameOf(field).kind) {
    case FieldKind::Text: {
        const std::string& value = *form_.f.Text(field);
        if (auto* edit = qobject_cast<QLineEdit*>(widget)) {
            if (S(edit->text()) != value)
                edit->setText(Q(value));
        } else if (auto* box = qobject_cast<QComboBox*>(widget)) {
            ShowCombo(*box, value);
        }
        break;
    }
    case FieldKind::Rich:
        ShowRich(*static_cast<QTextEdit*>(widget), *form_.f.Text(field));
        break;
    case FieldKind::Check:
        if (field == LogField::SeenFlag) {
            const QSignalBlocker other(Option2);
            (form_.f.Option1 ? Option1 : Option2)->setChecked(true);
        } else {
            static_cast<QCheckBox*>(widget)->setChecked(*form_.f.Check(field));
        }
        break;
    case FieldKind::Lines: {
        std::vector<std::string> shown;
        for (int row = 0; row < List1->count(); ++row)
            shown.push_back(S(List1->item(row)->text()));
        if (shown != form_.f.List1) {
            List1->clear();
            for (const std::string& line : form_.f.List1)
                List1->addItem(Q(line));
        }
        break;
    }
    }
}

void frmLogEntryNew::ShowFields()
{
    for (const LogFieldName& name : LogFieldNames())
        ShowField(name.field);
    txtOtherID->setText(Q(form_.f.txtOtherID));
    lblObNo->setText(Q(form_.lblObNo));
    lblTime->setText(Q(form_.lblTime));
}

void frmLogEntryNew::ShowLists()
{
    auto fill = [this](QComboBox* box, const std::vector<std::string>& items, bool numerals) {
        std::vector<std::string>& filled = filled_[box];
        if (filled == items && box->count() == static_cast<int>(items.size()))
            return;
        const QSignalBlocker block(box);
        box->clear();
        for (const std::string& item : items) {
            if (numerals && !AntoniadiNumeral(item).empty())
                box->addItem(Q(AntoniadiNumeral(item) + "  " + item), Q(item));
            else
                box->addItem(Q(item));
        }
        filled = items;
    };
    fill(cboCatalog, form_.catalogItems, false);
    fill(txtLocation, form_.locationItems, false);
    fill(cboTransparency, TransparencyList(), false);
    fill(cboSee, SeeingList(), true);
    fill(cboRating, RatingList(), false);
    fill(txtEquipment, form_.equipmentItems, false);
    fill(cboLogtype, form_.logTypeItems, false);
    fill(txtmode, form_.expModeItems, false);
    fill(txtscope, form_.scopeItems, false);
    fill(txtCCD, form_.scopeItems, false);
    fill(cboSlog, form_.slogItems, false);
    const QSignalBlocker block(cboSlog);
    ShowCombo(*cboSlog, form_.cboSlog);

    const QSignalBlocker blockSearch(txtSearch);
    if (S(txtSearch->text()) != form_.txtSearch)
        txtSearch->setText(Q(form_.txtSearch));
    chkFilterSeen->setChecked(form_.chkFilterSeen);
    chkClear->setChecked(form_.chkClear);
}

void frmLogEntryNew::ShowGrid()
{
    if (!gridShown_ || shownRows_ != form_.grdLog) {
        grdLog->setRowCount(0);
        grdLog->setRowCount(static_cast<int>(form_.grdLog.size()));
        const services::vb::Regional regional = form_.Regional();
        for (int row = 0; row < static_cast<int>(form_.grdLog.size()); ++row) {
            const auto& cells = form_.grdLog[static_cast<std::size_t>(row)];
            for (int col = 0; col < kLogCols; ++col) {
                const std::string& text = cells[static_cast<std::size_t>(col)];
                auto* item = new LogCell(Q(text));
                if (col == 0)
                    item->setData(kRowRole, row + 1);
                if (col == 1)
                    item->setData(kSortRole, vb::Val(text));
                if (col == 3)
                    if (const auto date = vb::ParseDate(text, regional))
                        item->setData(kSortRole, date->toString(Qt::ISODate));
                grdLog->setItem(row, col, item);
            }
        }
        grdLog->resizeColumnsToContents();
        shownRows_ = form_.grdLog;
        gridShown_ = true;
    }
    // The row of the entry shown is highlighted while the grid still holds it where it was
    // clicked.
    int highlighted = form_.highlightedRow;
    if (highlighted < 1 || highlighted > static_cast<int>(form_.grdLog.size()) ||
        static_cast<long long>(
            vb::Val(form_.grdLog[static_cast<std::size_t>(highlighted - 1)][1])) != form_.Number())
        highlighted = 0;
    const QColor colour = ColourOf(HighlightRgb);
    for (int row = 0; row < grdLog->rowCount(); ++row) {
        const bool on = grdLog->item(row, 0)->data(kRowRole).toInt() == highlighted;
        for (int col = 0; col < kLogCols; ++col)
            grdLog->item(row, col)->setData(Qt::BackgroundRole, on ? QVariant(colour) : QVariant());
    }
}

void frmLogEntryNew::ShowImages()
{
    std::vector<std::string>& filled = filled_[cbologimages];
    if (filled != form_.cbologimages) {
        const QSignalBlocker block(cbologimages);
        cbologimages->clear();
        for (const std::string& line : form_.cbologimages)
            cbologimages->addItem(Q(line));
        filled = form_.cbologimages;
    }
    for (int i = 0; i < static_cast<int>(form_.cbologimages.size()); ++i) {
        const std::string& line = form_.cbologimages[static_cast<std::size_t>(i)];
        if (!form_.imagePath.empty() && line.size() > 7 && line.substr(7) == form_.imagePath) {
            const QSignalBlocker block(cbologimages);
            cbologimages->setCurrentIndex(i);
        }
    }
    lblImageDescription->setText(Q(form_.imageDescription));
    const QString path = Q(form_.imagePath);
    if (path != shownImage_) {
        static_cast<PictureView*>(svImage1)->SetPicture(path.isEmpty() ? QPixmap() : QPixmap(path));
        shownImage_ = path;
    }
    svImage1->setVisible(!path.isEmpty());
}

void frmLogEntryNew::ShowModel()
{
    ShowLists();
    ShowFields();
    ShowGrid();
    ShowImages();
    setWindowTitle(form_.caption.empty() ? QString("Logbook") : Q(form_.caption));
}

void frmLogEntryNew::Run(const std::function<void()>& routine)
{
    if (running_)
        return;
    running_ = true;
    ReadWidgets();
    routine();
    ShowModel();
    running_ = false;
}

void frmLogEntryNew::cmdPrintSum_Click()
{
    Run([this] {
        if (services::vb::Trim(form_.f.txtObjectID).empty() ||
            services::vb::Trim(form_.f.cboCatalog).empty()) {
            ctx_.ui.ShowMessage("You must select an existing object or complete the entry of the "
                                "existing object before it can be printed.",
                                "ATTENTION", "I");
            return;
        }
        if (printReport)
            printReport(134);
    });
}

void frmLogEntryNew::Search()
{
    frmLogSearch search(ctx_, this);
    search.found = [this](const logbook::LogSearchSql& sql) {
        Run([this, &sql] {
            form_.currentQuery = sql.first;
            form_.mode = "N";
            form_.LoadObservations();
        });
    };
    search.exec();
}

void frmLogEntryNew::Open(const std::string& mode)
{
    if (isVisible()) {
        ReadWidgets();
        form_.CheckDirtyFlag();
    }
    running_ = true;
    form_.mode = mode;
    form_.Form_Load();
    ShowModel();
    vsIndexTab1->setCurrentIndex(0);
    running_ = false;
    show();
    raise();
    activateWindow();
}

// ---------------------------------------------------------------------------------------------
// Focus, keys, closing

void frmLogEntryNew::FieldFocusIn(QWidget* widget, LogField field)
{
    if (refused_) {
        if (refused_ != widget)
            return;
        refused_ = nullptr;
    }
    ReadWidgets();
    form_.GotFocus(field);
    ShowField(field);
    SelectAllLater(widget);
}

void frmLogEntryNew::FieldFocusOut(QWidget* widget, LogField field)
{
    if (refused_)
        return;
    ReadWidgets();
    const bool kept = form_.LostFocus(field);
    ShowFields();
    if (!kept) {
        refused_ = widget;
        QTimer::singleShot(0, widget, [widget] { widget->setFocus(Qt::OtherFocusReason); });
    }
}

bool frmLogEntryNew::RichKey(QTextEdit& box, QEvent* event, QWidget* owner)
{
    const auto* key = static_cast<QKeyEvent*>(event);
    std::function<void(QTextEdit&)> tool;
    if (key->modifiers() == Qt::ControlModifier) {
        switch (key->key()) {
        case Qt::Key_B:
            tool = ToggleBold;
            break;
        case Qt::Key_U:
            tool = ToggleUnderline;
            break;
        case Qt::Key_L:
            tool = [](QTextEdit& b) { b.setAlignment(Qt::AlignLeft); };
            break;
        case Qt::Key_N:
            tool = [](QTextEdit& b) { b.setAlignment(Qt::AlignHCenter); };
            break;
        case Qt::Key_R:
            tool = [](QTextEdit& b) { b.setAlignment(Qt::AlignRight); };
            break;
        default:
            break;
        }
    } else if (key->modifiers() == Qt::AltModifier && key->key() == Qt::Key_C) {
        tool = [owner](QTextEdit& b) { ChooseColour(b, owner); };
    }
    if (!tool)
        return false;
    // The box's own bindings (Ctrl+U deletes the line on some desktops) and any shortcut of
    // the program give way to the formatting keys.
    if (event->type() == QEvent::ShortcutOverride) {
        event->accept();
        return true;
    }
    tool(box);
    return true;
}

bool frmLogEntryNew::eventFilter(QObject* watched, QEvent* event)
{
    const auto found = fieldOf_.find(watched);
    if (found == fieldOf_.end())
        return QWidget::eventFilter(watched, event);
    auto* widget = static_cast<QWidget*>(watched);
    switch (event->type()) {
    case QEvent::ShortcutOverride:
    case QEvent::KeyPress:
        if (auto* box = qobject_cast<QTextEdit*>(widget))
            return RichKey(*box, event, this);
        break;
    case QEvent::FocusIn:
    case QEvent::FocusOut: {
        // Another window coming to the front (a message, a dialog) and a list's popup are no
        // move between fields.
        const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
        if (running_ || reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason)
            break;
        if (event->type() == QEvent::FocusIn)
            FieldFocusIn(widget, found->second);
        else
            FieldFocusOut(widget, found->second);
        break;
    }
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

void frmLogEntryNew::closeEvent(QCloseEvent* event)
{
    Run([this] { form_.CheckDirtyFlag(); });
    event->accept();
}

// ---------------------------------------------------------------------------------------------

void frmLogEntryNew::PickOtherEquipment()
{
    ReadWidgets();
    if (!ctx_.logbook)
        return;
    std::vector<std::string> lines = form_.f.List1;
    if (!frmEQDialog::Pick(this, ctx_.ui, *ctx_.logbook, lines))
        return;
    form_.f.List1.clear();
    for (const std::string& line : lines)
        form_.SetValue(LogField::List1, line);
    form_.dirty = true;
    ShowField(LogField::List1);
}

void frmLogEntryNew::SortGrid(int column)
{
    sortDescending_ = !sortDescending_;
    const Qt::SortOrder order = sortDescending_ ? Qt::DescendingOrder : Qt::AscendingOrder;
    grdLog->sortItems(column, order);
    grdLog->horizontalHeader()->setSortIndicator(column, order);
}

} // namespace logbook::ui
