#include "logbook/OutsideForm.h"

#include "logbook/Equipment.h"
#include "logbook/ObservedFlag.h"
#include "services/Fault.h"
#include "services/Vb.h"

#include <QDate>

namespace logbook {

namespace vb = services::vb;

namespace {

const std::vector<OutsideControl> kControls{
    {"txtObjectID", LogField::txtObjectID, 0},
    {"txtCatalog", LogField::cboCatalog, 0},
    {"txtLogType", LogField::cboLogtype, 0},
    {"txtdate", LogField::mskDate, 0},
    {"txttime", LogField::mskTime, 0},
    {"txtseeing", LogField::cboSee, 0},
    {"txttransparency", LogField::cboTransparency, 0},
    {"txtRating", LogField::cboRating, 0},
    {"txtLocation", LogField::txtLocation, 0},
    {"txtEquipment", LogField::txtEquipment, 0},
    {"txtshortnotes", LogField::txtDescription, 0},
    {"RichTextBox2", LogField::rchNotes, 0},
    {"txtimgname", LogField::txtimgname, 1},
    {"txtExpTime", LogField::txtExpTime, 1},
    {"txtmode", LogField::txtmode, 1},
    {"txtscope", LogField::txtscope, 1},
    {"txtcamera", LogField::txtCCD, 1},
    {"txtFocDis", LogField::txtFocDis, 1},
    {"txtFov", LogField::txtFov, 1},
    {"txtCrate", LogField::txtCrate, 1},
    {"txtRating2", LogField::txtRating, 1},
    {"chkdframe", LogField::chkdframe, 1},
    {"chkFfield", LogField::chkFfield, 1},
    {"rchNotesccd", LogField::rchNotesccd, 1},
    {"RichTextBox3", LogField::RichTextBox1, 2},
};

const std::vector<OutsideButton> kButtons{
    {"Catalog", "CATALOG", "txtCatalog"},
    {"Logtype", "LOGTYPE", "txtLogType"},
    {"Rating", "RATING", "txtRating"},
    {"Location", "LOCATION", "txtLocation"},
    {"Equip", "EQUIPMENT", "txtEquipment"},
    {"Seeing", "SEEING", "txtseeing"},
    {"Transparency", "TRANSPARENCY", "txttransparency"},
    {"Exp Mode", "EXPMODE", "txtmode"},
    {"Telescope", "SCOPE", "txtscope"},
    {"Camera", "CAMERA", "txtcamera"},
};

QDate Today(const astro::Clock& clock)
{
    const astro::LocalDateTime t = clock.Now();
    return QDate(t.year, t.month, t.day);
}

std::vector<std::string> Column(data::Database* db, const std::string& sql, const char* column)
{
    std::vector<std::string> rows;
    if (!db)
        return rows;
    auto rs = db->OpenRecordset(sql, data::Snapshot);
    auto field = rs.Fields(column);
    for (; !rs.Eof(); rs.MoveNext())
        rows.push_back(field.Value());
    return rows;
}

} // namespace

const std::vector<OutsideControl>& OutsideControls()
{
    return kControls;
}

const OutsideControl* FindOutsideControl(std::string_view name)
{
    for (const OutsideControl& c : kControls)
        if (vb::SameText(c.name, name))
            return &c;
    return nullptr;
}

const std::vector<OutsideButton>& OutsideButtons()
{
    return kButtons;
}

const OutsideButton* FindOutsideButton(std::string_view name)
{
    for (const OutsideButton& b : kButtons)
        if (vb::SameText(b.caption, name) || vb::SameText(b.key, name))
            return &b;
    return nullptr;
}

// ---------------------------------------------------------------------------------------------

OutsideForm::OutsideForm(LogContext& context, data::SettingsStore& settings)
    : entry(context), ctx_(context), settings_(settings)
{
    entry.formName = OutsideLocation;
    entry.catalogByName = true;
}

bool OutsideForm::Trap(const char* routine, const std::function<void()>& body)
{
    return services::Trap(ctx_.ui, std::string(OutsideLocation) + "." + routine, body);
}

void OutsideForm::Form_Load()
{
    if (vb::Trim(settings_.Get(FirstOutsideSetting, "")).empty()) {
        ctx_.ui.ShowMessage(FirstOutsideText, FirstOutsideTitle, "I");
        settings_.Save(FirstOutsideSetting, "Y");
        settings_.Sync();
    }
    tab = 0;
    entry.LoadCatalogs();
    // The log type the user keeps, as the entry window starts with it.
    entry.f.cboLogtype = ctx_.prefs.Ltype;
    Clear();
    LoadGrid();
    if (OBSN == -1 || !ctx_.logbook)
        return;
    Trap("Form_Load", [&] {
        auto rs = ctx_.logbook->OpenRecordset("Select * From Logbook where ObservationNumber=" +
                                                  std::to_string(OBSN),
                                              data::Snapshot);
        if (rs.Eof())
            return;
        rs.Close();
        // Deliberate: the whole entry is shown, not only its object, date and time, so that an
        // update from here does not write blanks over what it holds already.
        entry.lblObNo = std::to_string(OBSN);
        entry.GetLogRecord();
    });
}

void OutsideForm::LoadGrid()
{
    vaSpread1.clear();
    Trap("LoadGrid", [&] {
        if (!ctx_.logbook)
            return;
        const QDate today = Today(ctx_.clock);
        const vb::Regional regional = entry.Regional();
        auto rs = ctx_.logbook->OpenRecordset("Select * From Logbook Where DateObserved >=#" +
                                                  vb::DateForSql(today.addDays(-1), regional) +
                                                  "# and DateObserved <=#" +
                                                  vb::DateForSql(today.addDays(1), regional) +
                                                  "# Order by DateObserved Desc, TimeObserved Desc",
                                              data::Snapshot);
        auto id = rs.Fields("ObjectID"), number = rs.Fields("ObservationNumber"),
             catalog = rs.Fields("Catalog"), date = rs.Fields("DateObserved"),
             time = rs.Fields("TimeObserved");
        for (; !rs.Eof(); rs.MoveNext()) {
            const QDate day =
                QDate::fromString(QString::fromStdString(std::string(date.Text())), Qt::ISODate);
            vaSpread1.push_back({id.Value(), number.Value(),
                                 data::GetCatalogName(entry.Catalogs(), catalog.Value()),
                                 day.isValid() ? vb::ShortDate(day, regional) : date.Value(),
                                 time.Value()});
        }
    });
}

OutsideKey OutsideForm::KeyDown(int keyCode)
{
    if (keyCode < 49 || keyCode > 85)
        return OutsideKey::None;
    if (keyCode >= '1' && keyCode <= '3') {
        tab = keyCode - '1';
        return OutsideKey::Tab;
    }
    switch (keyCode) {
    case 'A':
        AddEntry();
        return OutsideKey::Add;
    case 'U':
        UpdateEntryToLogbook();
        return OutsideKey::Update;
    default:
        break;
    }
    // Clearing, deleting and the grid belong to the first tab.
    if (tab != 0)
        return OutsideKey::None;
    switch (keyCode) {
    case 'C':
        Clear();
        return OutsideKey::Clear;
    case 'D':
        DeleteEntry();
        return OutsideKey::Delete;
    case 'G':
        return OutsideKey::Grid;
    default:
        return OutsideKey::None;
    }
}

void OutsideForm::Clear()
{
    entry.cmdClear();
    entry.f.txtObjectID = ctx_.current.id;
}

bool OutsideForm::GridEnter(int row)
{
    if (row < 1 || row > static_cast<int>(vaSpread1.size()))
        return false;
    const std::string number =
        vb::Format(vb::Val(vaSpread1[static_cast<std::size_t>(row - 1)][1]), "0");
    Clear();
    entry.lblObNo = number;
    entry.GetLogRecord();
    return true;
}

// The database takes only a date into DateObserved; a text that is none is refused as it
// would refuse it, and nothing is written.
bool OutsideForm::DateIsValid(const char* routine)
{
    if (vb::ParseDate(entry.f.mskDate, entry.Regional()))
        return true;
    return Trap(routine, [&] {
        throw services::Fault("\"" + entry.f.mskDate + "\" is no date for DateObserved", "");
    });
}

// The Logbook row of the entry, new or stored; false when nothing was written.
bool OutsideForm::WriteEntry(bool isNew, const char* routine)
{
    if (!ctx_.logbook || !DateIsValid(routine))
        return false;
    entry.f.Option1 = true;
    entry.f.List1.clear();
    return entry.WriteLogbookRow(isNew, routine);
}

// The rows that follow an entry's Logbook row, the grid again, and the step's message.
void OutsideForm::FinishWrite(const char* verb, const char* message)
{
    UpdateSelvaneTable();
    UpdateSessionLog();
    UpdateCCDLog();
    LoadGrid();
    entry.dirty = false;
    if (stored)
        stored(verb, entry.Number());
    ctx_.ui.ShowMessage(message, message, "I");
}

bool OutsideForm::AddEntry()
{
    if (!WriteEntry(true, "AddEntry"))
        return false;
    // Deliberate: the number of the row just written is the highest one; it is read before
    // anything else is written, so that a failure below still leaves the entry identified.
    Trap("AddEntry", [&] {
        auto rs = ctx_.logbook->OpenRecordset("Select max(ObservationNumber) From Logbook",
                                              data::Snapshot);
        if (!rs.Eof())
            entry.lblObNo = rs.Fields(0).Value();
    });
    FinishWrite("added", "Observation Added");
    return true;
}

bool OutsideForm::UpdateEntryToLogbook()
{
    // A new entry is stored as the entry window stores it: an update without a number adds.
    if (vb::Trim(entry.lblObNo).empty())
        return AddEntry();
    if (!WriteEntry(false, "UpdateEntryToLogbook"))
        return false;
    FinishWrite("updated", "Observation Updated");
    return true;
}

bool OutsideForm::DeleteEntry()
{
    if (vb::Trim(entry.lblObNo).empty() || !ctx_.logbook)
        return false;
    const long long n = entry.Number();
    if (!entry.RemoveEntry(n, "DeleteEntry"))
        return false;
    Clear();
    LoadGrid();
    if (stored)
        stored("deleted", n);
    ctx_.ui.ShowMessage("Observation Deleted", "Observation Deleted", "I");
    return true;
}

void OutsideForm::UpdateSelvaneTable()
{
    // The location is spelt as the error reports of earlier editions have it.
    services::Trap(ctx_.ui, "frmOutSideMain.UpdateSelvaneTable", [&] {
        ctx_.current.catalogId = entry.CatalogId();
        if (ctx_.current.catalogId.empty() || ctx_.prefs.UseCd || !ctx_.objectDb)
            return;
        entry.f.txtObjectID = vb::UCase(entry.f.txtObjectID);
        ctx_.objectDb->Execute(
            ObservedUpdateSql(entry.f.txtObjectID, ctx_.current.catalogId, entry.dataRec));
    });
}

void OutsideForm::UpdateSessionLog()
{
    entry.UpdateSessionLog();
}

void OutsideForm::UpdateCCDLog()
{
    entry.UpdateCCDLog();
}

std::string OutsideForm::Text(const OutsideControl& control) const
{
    if (const std::string* text = entry.f.Text(control.field))
        return *text;
    return *const_cast<LogFields&>(entry.f).Check(control.field) ? "True" : "False";
}

void OutsideForm::SetText(const OutsideControl& control, const std::string& value)
{
    if (control.field == LogField::chkdframe || control.field == LogField::chkFfield)
        entry.SetCheck(control.field, vb::SameText(value, "True"));
    else
        entry.SetValue(control.field, value);
}

bool OutsideForm::LostFocus(const OutsideControl& control)
{
    switch (control.field) {
    case LogField::txtObjectID:
        entry.f.txtObjectID = vb::UCase(entry.f.txtObjectID);
        return true;
    case LogField::mskDate:
    case LogField::mskTime:
    case LogField::RichTextBox1: // the night's notes are kept as the focus leaves them
        return entry.LostFocus(control.field);
    default:
        return true;
    }
}

// ---------------------------------------------------------------------------------------------

OutsidePopupList LoadOutsidePopup(LogContext& context, std::string_view key,
                                  std::string_view present)
{
    OutsidePopupList list;
    const std::string which = vb::UCase(key);
    const std::string location = std::string(OutsidePopupLocation) + ".Form_Load";
    // A missing list of exposure modes leaves the popup empty; the error log says why.
    if (which == "EXPMODE")
        services::TrapSilently(context.ui, location, [&] {
            for (const std::string& line : ReadEquipmentFile(context.dir, EquipmentKind::Exp))
                list.rows.push_back(line.substr(0, 32));
        });
    services::Trap(context.ui, location, [&] {
        if (which == "CATALOG") {
            list.rows = Column(context.objectDb,
                               "Select ID, CatalogName, CatalogDescription From CatalogLookup "
                               "Order By CatalogDescription",
                               "CatalogName");
            for (const char* fixed : {"PLANETS", "COMET", "ASTEROID"})
                list.rows.push_back(fixed);
        } else if (which == "LOGTYPE") {
            list.rows = Column(context.logbook, "Select * From PerLogType", "LogType");
        } else if (which == "RATING") {
            list.rows = RatingList();
        } else if (which == "LOCATION") {
            list.rows = Column(context.logbook, "Select * from ObservingSites", "ProfileName");
        } else if (which == "EQUIPMENT") {
            list.rows = Column(context.logbook, "Select * From Equipment", "Equipment");
        } else if (which == "SEEING") {
            list.rows = SeeingList();
        } else if (which == "TRANSPARENCY") {
            list.rows = TransparencyList();
        } else if (which == "SCOPE" || which == "CAMERA") {
            list.rows =
                Column(context.logbook, "Select * From Equipment Order By Equipment", "Equipment");
        }
    });
    const std::string wanted = vb::Trim(present);
    for (std::size_t i = 0; i < list.rows.size() && list.selected < 0; ++i)
        if (list.rows[i] == wanted)
            list.selected = static_cast<int>(i);
    return list;
}

std::string OutsideFormText(const OutsideForm& form)
{
    const vb::Regional regional = form.entry.Regional();
    std::string out = "Field\tValue\n";
    for (const OutsideControl& c : OutsideControls()) {
        std::string value = form.Text(c);
        if (c.field == LogField::mskDate) {
            if (const auto date = vb::ParseDate(value, regional))
                value = date->toString(Qt::ISODate).toStdString();
        } else if (c.field == LogField::mskTime) {
            if (const auto time = vb::ParseTime(value))
                value = vb::LongTime(*time);
        } else if (NameOf(c.field).kind == FieldKind::Rich) {
            value = RichPlainText(value);
        }
        out += std::string(c.name) + "\t" + EscapedForLine(value) + "\n";
    }
    out += "txtObs\t" + EscapedForLine(form.entry.lblObNo) + "\n";
    return out;
}

std::string OutsideGridText(const OutsideForm& form)
{
    std::string out;
    for (std::size_t i = 0; i < OutsideGridCaptions.size(); ++i)
        out += (i ? "\t" : "") + std::string(OutsideGridCaptions[i]);
    out += "\n";
    for (const auto& row : form.vaSpread1) {
        for (std::size_t i = 0; i < row.size(); ++i)
            out += (i ? "\t" : "") + EscapedForLine(row[i]);
        out += "\n";
    }
    return out;
}

} // namespace logbook
