#include "spread/ui/ctlSpreadFilter.h"

#include "data/Preferences.h"
#include "services/Fault.h"
#include "spread/AppState.h"
#include "spread/Grid.h"
#include "spread/Spreadsheet.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace spread {

namespace {

QString Q(const std::string& text)
{
    return QString::fromStdString(text);
}
std::string S(const QString& text)
{
    return text.toStdString();
}

// The texts a label shows when nothing is picked.
constexpr const char* AllCatalogs = "All Catalogs";
constexpr const char* AllConstellations = "All Constellations";
constexpr const char* AllTypes = "All Types";

const char* AllTextOf(data::DescTag tag)
{
    switch (tag) {
    case data::DescTag::Catalogs:
        return AllCatalogs;
    case data::DescTag::Constellations:
        return AllConstellations;
    case data::DescTag::Types:
        break;
    }
    return AllTypes;
}

// A picked entry is kept in the label followed by ";": "NGC 2000;Caldwell;".
std::string LabelOf(const QListWidget& list, data::DescTag tag)
{
    std::string label;
    for (int i = 0; i < list.count(); ++i)
        if (list.item(i)->isSelected())
            label += S(list.item(i)->text()) + ";";
    return label.empty() ? AllTextOf(tag) : label;
}

// Shows a label's entries as the picker's selection. Entries the picker does not offer stay in
// the label only.
void SelectEntries(QListWidget& list, const std::string& label, data::DescTag tag)
{
    const std::vector<std::string> entries =
        label.rfind("All", 0) == 0 ? std::vector<std::string>{} : data::DecodeDesc(label, tag);
    for (int i = 0; i < list.count(); ++i) {
        const std::string text = S(list.item(i)->text());
        list.item(i)->setSelected(std::find(entries.begin(), entries.end(), text) != entries.end());
    }
    // The first pick in view, so that a choice far down the list is seen.
    const QList<QListWidgetItem*> picked = list.selectedItems();
    if (!picked.isEmpty())
        list.scrollToItem(picked.front(), QAbstractItemView::PositionAtTop);
}

data::DescTag TagOf(const QListWidget* list, const ctlSpreadFilter& panel)
{
    if (list == panel.lstCatalog)
        return data::DescTag::Catalogs;
    if (list == panel.lstConst)
        return data::DescTag::Constellations;
    return data::DescTag::Types;
}

QLabel* SelectionLabel(const char* name)
{
    auto* label = new QLabel;
    label->setObjectName(name);
    label->setWordWrap(true);
    label->setFrameShape(QFrame::StyledPanel);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

} // namespace

const std::vector<std::string>& ConstellationList()
{
    return data::ConstellationList();
}

ctlSpreadFilter::ctlSpreadFilter(AppState& state, QWidget* parent) : QWidget(parent), state_(state)
{
    setObjectName("ctlSpreadFilter");
    tabFilter = new QTabWidget;
    tabFilter->setObjectName("tabFilter");
    tabFilter->addTab(BuildFiltersPage(), "&Filters");
    tabFilter->addTab(BuildSelectPage(), "&Select");
    tabFilter->addTab(BuildRanges1Page(), "&Ranges1");
    tabFilter->addTab(BuildRanges2Page(), "&Ranges2");
    tabFilter->addTab(BuildSortPage(), "&Sort");
    tabFilter->addTab(BuildQueryPage(), "&Query");
    // The logs of the selected object and the detail pane are filled by the grid's click.
    for (const char* caption : {"&Pers. Log", "&Other Log", "&D"})
        tabFilter->addTab(new QWidget, caption);

    sscommandRefresh = new QPushButton("Refresh");
    sscommandRefresh->setObjectName("sscommandRefresh");
    sscommandRefresh->setToolTip("Load the current tab with these filters");
    cmdApply = new QPushButton("Apply");
    cmdApply->setObjectName("cmdApply");
    cmdApply->setToolTip("Apply the filters to the current tab");
    cmdReset = new QPushButton("Reset");
    cmdReset->setObjectName("cmdReset");
    cmdReset->setToolTip("Set every range back to its default and refresh");

    auto* buttons = new QVBoxLayout;
    buttons->addWidget(sscommandRefresh);
    buttons->addWidget(cmdApply);
    buttons->addWidget(cmdReset);
    buttons->addStretch();

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    layout->addWidget(tabFilter, 1);
    layout->addLayout(buttons);

    connect(sscommandRefresh, &QPushButton::clicked, this, [this] {
        SavePreferences();
        emit RefreshRequested();
    });
    connect(cmdApply, &QPushButton::clicked, this, [this] {
        StoreInPreferences();
        emit ApplyRequested();
    });
    connect(cmdReset, &QPushButton::clicked, this, [this] { Reset(); });
    connect(tabFilter, &QTabWidget::currentChanged, this,
            [this](int page) { state_.prefs.maintab = page; });

    for (QListWidget* list : {lstCatalog, lstConst, lstType})
        connect(list, &QListWidget::itemSelectionChanged, this,
                [this, list] { PickerChanged(list); });
    for (QLineEdit* box : findChildren<QLineEdit*>())
        connect(box, &QLineEdit::textEdited, this, [this] { StoreInPreferences(); });
    for (QCheckBox* box : findChildren<QCheckBox*>())
        connect(box, &QCheckBox::toggled, this, [this] { StoreInPreferences(); });
    for (QComboBox* combo : cbosort)
        connect(combo, &QComboBox::currentIndexChanged, this, [this] { StoreInPreferences(); });

    FillPickers();
    RefreshPref();
}

QLineEdit* ctlSpreadFilter::RangeBox(const char* name)
{
    auto* box = new QLineEdit;
    box->setObjectName(name);
    box->setMaximumWidth(80);
    return box;
}

QWidget* ctlSpreadFilter::BuildFiltersPage()
{
    auto* page = new QWidget;
    auto* grid = new QGridLayout(page);
    const struct
    {
        const char* caption;
        QListWidget** list;
        const char* listName;
        QLabel** label;
        const char* labelName;
    } pickers[] = {
        {"Catalogs", &lstCatalog, "lstCatalog", &lblCatDes, "lblCatDes"},
        {"Constellations", &lstConst, "lstConst", &lblConst, "lblConst"},
        {"Object Types", &lstType, "lstType", &lblType, "lblType"},
    };
    int col = 0;
    for (const auto& p : pickers) {
        *p.list = new QListWidget;
        (*p.list)->setObjectName(p.listName);
        (*p.list)->setSelectionMode(QAbstractItemView::MultiSelection);
        *p.label = SelectionLabel(p.labelName);
        grid->addWidget(new QLabel(p.caption), 0, col);
        grid->addWidget(*p.list, 1, col);
        grid->addWidget(*p.label, 2, col);
        grid->setColumnStretch(col, 1);
        ++col;
    }
    return page;
}

QWidget* ctlSpreadFilter::BuildSelectPage()
{
    auto* page = new QWidget;
    auto* grid = new QGridLayout(page);
    grid->addWidget(new QLabel("From"), 0, 1);
    grid->addWidget(new QLabel("To"), 0, 2);
    txtMagLower[0] = RangeBox("txtMagLower0");
    txtMagUpper[0] = RangeBox("txtMagUpper0");
    txtMagLower[1] = RangeBox("txtMagLower1");
    txtMagUpper[1] = RangeBox("txtMagUpper1");
    txtSizeLower = RangeBox("txtSizeLower");
    txtSizeUpper = RangeBox("txtSizeUpper");
    chkIB = new QCheckBox("Include blanks");
    chkIB->setObjectName("chkIB");
    chkIB2 = new QCheckBox("Include blanks");
    chkIB2->setObjectName("chkIB2");
    chkIB3 = new QCheckBox("Include blanks");
    chkIB3->setObjectName("chkIB3");
    const struct
    {
        const char* caption;
        QLineEdit* lower;
        QLineEdit* upper;
        QCheckBox* blanks;
    } rows[] = {
        {"Magnitude 1", txtMagLower[0], txtMagUpper[0], chkIB},
        {"Magnitude 2", txtMagLower[1], txtMagUpper[1], chkIB2},
        {"Size (arc min)", txtSizeLower, txtSizeUpper, chkIB3},
    };
    int row = 1;
    for (const auto& r : rows) {
        grid->addWidget(new QLabel(r.caption), row, 0);
        grid->addWidget(r.lower, row, 1);
        grid->addWidget(r.upper, row, 2);
        grid->addWidget(r.blanks, row, 3);
        ++row;
    }
    txtObjectID = new QLineEdit;
    txtObjectID->setObjectName("txtObjectID");
    txtObjectID->setToolTip("Use * as a wildcard: NGC 1*");
    txtOtherID = new QLineEdit;
    txtOtherID->setObjectName("txtOtherID");
    txtOtherID->setToolTip("Use * as a wildcard: M *");
    grid->addWidget(new QLabel("Object ID"), row, 0);
    grid->addWidget(txtObjectID, row, 1, 1, 3);
    ++row;
    grid->addWidget(new QLabel("Other ID"), row, 0);
    grid->addWidget(txtOtherID, row, 1, 1, 3);
    grid->setColumnStretch(4, 1);
    grid->setRowStretch(row + 1, 1);
    return page;
}

QWidget* ctlSpreadFilter::BuildRanges1Page()
{
    auto* page = new QWidget;
    auto* grid = new QGridLayout(page);
    txtFROMRAH = RangeBox("txtFROMRAH");
    txtFROMRAM = RangeBox("txtFROMRAM");
    txtTORAH = RangeBox("txtTORAH");
    txtTORAM = RangeBox("txtTORAM");
    txtFROMDECD = RangeBox("txtFROMDECD");
    txtFROMDECM = RangeBox("txtFROMDECM");
    txtTODECD = RangeBox("txtTODECD");
    txtTODECM = RangeBox("txtTODECM");
    grid->addWidget(new QLabel("From"), 0, 1, 1, 2);
    grid->addWidget(new QLabel("To"), 0, 3, 1, 2);
    const struct
    {
        const char* caption;
        QLineEdit* boxes[4];
        const char* units[2];
    } rows[] = {
        {"Right ascension", {txtFROMRAH, txtFROMRAM, txtTORAH, txtTORAM}, {"h", "m"}},
        {"Declination", {txtFROMDECD, txtFROMDECM, txtTODECD, txtTODECM}, {"°", "'"}},
    };
    int row = 1;
    for (const auto& r : rows) {
        grid->addWidget(new QLabel(r.caption), row, 0);
        for (int i = 0; i < 4; ++i) {
            auto* cell = new QHBoxLayout;
            cell->addWidget(r.boxes[i]);
            cell->addWidget(new QLabel(r.units[i % 2]));
            grid->addLayout(cell, row, 1 + i);
        }
        ++row;
    }
    auto* note = new QLabel("Limits act on whole hours of right ascension and whole degrees of "
                            "declination.");
    note->setWordWrap(true);
    grid->addWidget(note, row, 0, 1, 5);
    grid->setColumnStretch(5, 1);
    grid->setRowStretch(row + 1, 1);
    return page;
}

QWidget* ctlSpreadFilter::BuildRanges2Page()
{
    auto* page = new QWidget;
    auto* grid = new QGridLayout(page);
    txtSepLow = RangeBox("txtSepLow");
    txtSepHigh = RangeBox("txtSepHigh");
    txtPAlow = RangeBox("txtPAlow");
    txtPAHigh = RangeBox("txtPAHigh");
    txtdblMag = RangeBox("txtdblMag");
    txtdblMag2 = RangeBox("txtdblMag2");
    grid->addWidget(new QLabel("From"), 0, 1);
    grid->addWidget(new QLabel("To"), 0, 2);
    lblSep = new QLabel;
    lblSep->setObjectName("lblSep");
    ShowTargeting(state_.target.TargetingOn);
    grid->addWidget(lblSep, 1, 0);
    grid->addWidget(txtSepLow, 1, 1);
    grid->addWidget(txtSepHigh, 1, 2);
    grid->addWidget(new QLabel("Position angle (°)"), 2, 0);
    grid->addWidget(txtPAlow, 2, 1);
    grid->addWidget(txtPAHigh, 2, 2);
    grid->addWidget(new QLabel("Magnitude difference at most"), 3, 0);
    grid->addWidget(txtdblMag, 3, 1);
    grid->addWidget(new QLabel("Magnitude difference at least"), 4, 0);
    grid->addWidget(txtdblMag2, 4, 1);
    cmdTarget = new QPushButton("TARGET");
    cmdTarget->setObjectName("cmdTarget");
    connect(cmdTarget, &QPushButton::clicked, this, &ctlSpreadFilter::TargetRequested);
    grid->addWidget(cmdTarget, 1, 3);
    grid->setColumnStretch(4, 1);
    grid->setRowStretch(5, 1);
    return page;
}

void ctlSpreadFilter::ShowTargeting(bool targetingOn)
{
    if (lblSep)
        lblSep->setText(targetingOn ? "Distance from home target (°)" : "Separation (arc sec)");
}

QWidget* ctlSpreadFilter::BuildSortPage()
{
    auto* page = new QWidget;
    auto* grid = new QGridLayout(page);
    for (int i = 0; i < 3; ++i) {
        cbosort[i] = new QComboBox;
        cbosort[i]->setObjectName(QString("cbosort%1").arg(i));
        for (const std::string& name : data::SortComboList(i))
            cbosort[i]->addItem(Q(name));
        chkD[i] = new QCheckBox("Descending Sequence");
        chkD[i]->setObjectName(QString("chkD%1").arg(i));
        grid->addWidget(new QLabel(QString("Sort %1").arg(i + 1)), i, 0);
        grid->addWidget(cbosort[i], i, 1);
        grid->addWidget(chkD[i], i, 2);
    }
    grid->setColumnStretch(3, 1);
    grid->setRowStretch(3, 1);
    return page;
}

QWidget* ctlSpreadFilter::BuildQueryPage()
{
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    txtSQL = new QPlainTextEdit;
    txtSQL->setObjectName("txtSQL");
    txtSQL->setReadOnly(true);
    layout->addWidget(txtSQL);
    return page;
}

void ctlSpreadFilter::FillPickers()
{
    writing_ = true;
    lstCatalog->clear();
    for (const data::CatalogRow& row : lookups_.catalogs)
        lstCatalog->addItem(Q(row.CatalogDescription));
    lstType->clear();
    for (const data::ObjectTypeRow& row : lookups_.types)
        lstType->addItem(Q(row.ObjectTypeDesc));
    if (lstConst->count() == 0)
        for (const std::string& name : ConstellationList())
            lstConst->addItem(Q(name));
    writing_ = false;
}

void ctlSpreadFilter::SetLookups(data::FilterLookups lookups)
{
    lookups_ = std::move(lookups);
    FillPickers();
    RefreshPref();
}

void ctlSpreadFilter::ReloadLookups()
{
    services::Trap(state_.ui, "ctlSpread.LoadLookups", [&] {
        if (!state_.objectDb)
            throw services::Fault("The object database is not open.", "ctlSpread.LoadLookups");
        SetLookups(data::LoadFilterLookups(*state_.objectDb));
    });
}

void ctlSpreadFilter::RefreshPref()
{
    spread::RefreshPref(state_);
    const data::ObjectFilter& f = state_.controls.filter;
    const data::SortOptions& sorts = state_.controls.sorts;
    writing_ = true;
    lblCatDes->setText(Q(f.ObCat));
    lblConst->setText(Q(f.Obcon));
    lblType->setText(Q(f.Obtod));
    SelectEntries(*lstCatalog, f.ObCat, data::DescTag::Catalogs);
    SelectEntries(*lstConst, f.Obcon, data::DescTag::Constellations);
    SelectEntries(*lstType, f.Obtod, data::DescTag::Types);
    const std::pair<QLineEdit*, const std::string*> boxes[] = {
        {txtMagLower[0], &f.gMagL},  {txtMagUpper[0], &f.gMagU}, {txtMagLower[1], &f.gMagL2},
        {txtMagUpper[1], &f.gMagU2}, {txtSizeLower, &f.gSizeL},  {txtSizeUpper, &f.gSizeU},
        {txtSepLow, &f.gSepL},       {txtSepHigh, &f.gSepH},     {txtPAlow, &f.gPAL},
        {txtPAHigh, &f.gPAH},        {txtFROMRAH, &f.gFRAH},     {txtFROMRAM, &f.gFRAM},
        {txtTORAH, &f.gTRAH},        {txtTORAM, &f.gTRAM},       {txtFROMDECD, &f.gFDECD},
        {txtFROMDECM, &f.gFDECM},    {txtTODECD, &f.gTDECD},     {txtTODECM, &f.gTDECM},
        {txtObjectID, &f.gObjID},    {txtOtherID, &f.gOther},    {txtdblMag, &f.gmagdif},
        {txtdblMag2, &f.gmagdif2},
    };
    for (const auto& [box, text] : boxes)
        box->setText(Q(*text));
    chkIB->setChecked(f.PIB == "Y");
    chkIB2->setChecked(f.PIB2 == "Y");
    chkIB3->setChecked(f.PIB3 == "Y");
    for (int i = 0; i < 3; ++i) {
        cbosort[i]->setCurrentIndex(std::max(0, cbosort[i]->findText(Q(sorts.cbosort[i]))));
        chkD[i]->setChecked(sorts.chkD[i]);
    }
    txtSQL->setPlainText(Q(state_.SQL));
    writing_ = false;
}

data::ObjectFilter ctlSpreadFilter::Filter() const
{
    data::ObjectFilter f;
    f.ObCat = S(lblCatDes->text());
    f.Obcon = S(lblConst->text());
    f.Obtod = S(lblType->text());
    f.gMagL = S(txtMagLower[0]->text());
    f.gMagU = S(txtMagUpper[0]->text());
    f.gMagL2 = S(txtMagLower[1]->text());
    f.gMagU2 = S(txtMagUpper[1]->text());
    f.gSizeL = S(txtSizeLower->text());
    f.gSizeU = S(txtSizeUpper->text());
    f.gSepL = S(txtSepLow->text());
    f.gSepH = S(txtSepHigh->text());
    f.gPAL = S(txtPAlow->text());
    f.gPAH = S(txtPAHigh->text());
    f.gFRAH = S(txtFROMRAH->text());
    f.gTRAH = S(txtTORAH->text());
    f.gFDECD = S(txtFROMDECD->text());
    f.gTDECD = S(txtTODECD->text());
    f.gFRAM = S(txtFROMRAM->text());
    f.gTRAM = S(txtTORAM->text());
    f.gFDECM = S(txtFROMDECM->text());
    f.gTDECM = S(txtTODECM->text());
    f.gmagdif = S(txtdblMag->text());
    f.gmagdif2 = S(txtdblMag2->text());
    f.gObjID = S(txtObjectID->text());
    f.gOther = S(txtOtherID->text());
    f.PIB = chkIB->isChecked() ? "Y" : "N";
    f.PIB2 = chkIB2->isChecked() ? "Y" : "N";
    f.PIB3 = chkIB3->isChecked() ? "Y" : "N";
    // "<none>", the first entry, keeps no sort in the settings.
    std::array<std::string*, 3> sorts{&f.sort1, &f.sort2, &f.sort3};
    std::array<std::string*, 3> des{&f.Des1, &f.Des2, &f.Des3};
    for (int i = 0; i < 3; ++i) {
        *sorts[i] = cbosort[i]->currentIndex() > 0 ? S(cbosort[i]->currentText()) : "";
        *des[i] = chkD[i]->isChecked() ? "D" : "";
    }
    return f;
}

void ctlSpreadFilter::StoreInPreferences()
{
    if (writing_)
        return;
    data::FilterToPreferences(Filter(), state_.prefs);
}

void ctlSpreadFilter::PickerChanged(QListWidget* list)
{
    if (writing_)
        return;
    const data::DescTag tag = TagOf(list, *this);
    QLabel* label = tag == data::DescTag::Catalogs         ? lblCatDes
                    : tag == data::DescTag::Constellations ? lblConst
                                                           : lblType;
    label->setText(Q(LabelOf(*list, tag)));
    StoreInPreferences();
}

std::string ctlSpreadFilter::BuildSQLSelectString()
{
    StoreInPreferences();
    const data::SqlSelect select =
        data::BuildSQLSelectString(FilterForSql(state_.target, Filter()), lookups_);
    state_.SQL = select.SQL;
    state_.OrderBy = select.OrderBy;
    txtSQL->setPlainText(Q(select.SQL));
    return select.SQL;
}

int ctlSpreadFilter::CurrentPage() const
{
    return tabFilter->currentIndex();
}

void ctlSpreadFilter::SetCurrentPage(int page)
{
    if (page >= 0 && page < tabFilter->count())
        tabFilter->setCurrentIndex(page);
}

void ctlSpreadFilter::SavePreferences()
{
    StoreInPreferences();
    services::Trap(state_.ui, "ctlSpread.SavePreferences",
                   [&] { data::SavePreferences(state_.prefs, state_.settings); });
}

void ctlSpreadFilter::Reset()
{
    data::ObjectFilter f = Filter();
    data::ResetRanges(f);
    data::FilterToPreferences(f, state_.prefs);
    RefreshPref();
    SavePreferences();
    emit RefreshRequested();
}

namespace {

GridLoad PanelLoad(ctlSpreadFilter& panel)
{
    GridLoad load;
    load.BuildSQLSelectString = [&panel] { return panel.BuildSQLSelectString(); };
    return load;
}

} // namespace

GridLoad RefreshFromPanel(AppState& TMM, ctlSpreadFilter& panel, const astro::Clock& computerClock)
{
    GridLoad load = PanelLoad(panel);
    sscommandRefresh_Click(TMM, load, computerClock);
    panel.RefreshPref();
    return load;
}

GridLoad ApplyFromPanel(AppState& TMM, ctlSpreadFilter& panel, const astro::Clock& computerClock)
{
    GridLoad load = PanelLoad(panel);
    ApplyIt(TMM, load, computerClock);
    panel.RefreshPref();
    return load;
}

} // namespace spread
