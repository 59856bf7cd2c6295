#include "logbook/LogEntryForm.h"

#include "logbook/Equipment.h"
#include "logbook/ObservedFlag.h"
#include "services/Fault.h"
#include "services/Validate.h"

#include <QTextDocument>

#include <algorithm>

namespace logbook {

namespace vb = services::vb;

namespace {

const std::vector<LogFieldName> kFieldNames{
    {LogField::txtObjectID, "txtObjectID", "ObjectID", FieldKind::Text},
    {LogField::cboCatalog, "cboCatalog", "Catalog", FieldKind::Text},
    {LogField::SeenFlag, "SeenFlag", "SeenFlag", FieldKind::Check},
    {LogField::mskDate, "mskDate", "DateObserved", FieldKind::Text},
    {LogField::mskTime, "mskTime", "TimeObserved", FieldKind::Text},
    {LogField::txtLocation, "txtLocation", "LocationObserved", FieldKind::Text},
    {LogField::cboTransparency, "cboTransparency", "Transparency", FieldKind::Text},
    {LogField::cboSee, "cboSee", "Seeing", FieldKind::Text},
    {LogField::txtEquipment, "txtEquipment", "equipmentused", FieldKind::Text},
    {LogField::List1, "List1", "OtherEquipment", FieldKind::Lines},
    {LogField::cboRating, "cboRating", "Rating", FieldKind::Text},
    {LogField::txtDescription, "txtDescription", "shortdescription", FieldKind::Text},
    {LogField::rchNotes, "rchNotes", "ObservationText", FieldKind::Rich},
    {LogField::cboLogtype, "cboLogtype", "LogType", FieldKind::Text},
    {LogField::txtimgname, "txtimgname", "ImageName", FieldKind::Text},
    {LogField::txtExpTime, "txtExpTime", "ExposureTime", FieldKind::Text},
    {LogField::txtmode, "txtmode", "ExposureMode", FieldKind::Text},
    {LogField::txtscope, "txtscope", "Telescope", FieldKind::Text},
    {LogField::txtCCD, "txtCCD", "CCDCamera", FieldKind::Text},
    {LogField::txtFocDis, "txtFocDis", "FocalDistance", FieldKind::Text},
    {LogField::txtFov, "txtFov", "FieldOfView", FieldKind::Text},
    {LogField::txtCrate, "txtCrate", "Coolingrate", FieldKind::Text},
    {LogField::chkdframe, "chkdframe", "darkframe", FieldKind::Check},
    {LogField::chkFfield, "chkFfield", "flatfield", FieldKind::Check},
    {LogField::txtRating, "txtRating", "PictureRating", FieldKind::Text},
    {LogField::rchNotesccd, "rchNotesccd", "Notes", FieldKind::Rich},
    {LogField::RichTextBox1, "RichTextBox1", "sessiontext", FieldKind::Rich},
    {LogField::txtFaintestStar, "txtFaintestStar", "FaintestStar", FieldKind::Text},
    {LogField::txtSkyQuality, "txtSkyQuality", "SkyQuality", FieldKind::Text},
};

// The CCD fields' limits on leaving, with the number their message names.
struct CcdLimit
{
    LogField field;
    std::size_t limit;
};
constexpr std::array<CcdLimit, 9> kCcdLimits{{
    {LogField::txtimgname, 50},
    {LogField::txtExpTime, 20},
    {LogField::txtmode, 20},
    {LogField::txtscope, 100},
    {LogField::txtCCD, 50},
    {LogField::txtFocDis, 50},
    {LogField::txtFov, 20},
    {LogField::txtCrate, 20},
    {LogField::txtRating, 10},
}};

std::size_t CharCount(std::string_view text)
{
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
        return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
    }));
}

bool Blank(std::string_view text)
{
    return vb::Trim(text).empty();
}

// A text column's value: one blank for a blank box, so that readers compare trimmed values.
std::string Stored(const std::string& text)
{
    return Blank(text) ? std::string(" ") : text;
}

// A stored text shown in a box: a blank stays blank, without the stored space.
std::string Shown(const data::Field& field)
{
    std::string text = field.Value();
    return Blank(text) ? std::string() : text;
}

// OtherEquipment: each line followed by CR LF; read back by splitting at CR, the LF behind it
// skipped.
std::string JoinLines(const std::vector<std::string>& lines)
{
    std::string text;
    for (const std::string& line : lines)
        text += line + "\r\n";
    return text;
}

std::vector<std::string> SplitLines(std::string_view text)
{
    std::vector<std::string> lines;
    if (Blank(text))
        return lines;
    std::string line;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\r') {
            lines.push_back(line);
            line.clear();
            if (i + 1 < text.size() && text[i + 1] == '\n')
                ++i;
        } else {
            line += text[i];
        }
    }
    if (!line.empty())
        lines.push_back(line);
    return lines;
}

std::string NumberText(long long n)
{
    return std::to_string(n);
}

QDate ToQDate(const astro::LocalDateTime& t)
{
    return QDate(t.year, t.month, t.day);
}

// TMM.FormatDateForSpread: a stored date in the grid's month-first forms.
std::string FormatDateForSpread(std::string_view stored, const std::string& pattern)
{
    const QDate date = QDate::fromString(
        QString::fromUtf8(stored.data(), static_cast<int>(stored.size())), Qt::ISODate);
    const std::string lower = vb::LCase(pattern);
    if (!date.isValid())
        return std::string(stored);
    if (lower.find("yyyy") != std::string::npos)
        return vb::FormatDate(date, "mm/dd/yyyy");
    if (lower.find("yy") != std::string::npos)
        return vb::FormatDate(date, "mm/dd/yy");
    return std::string(stored);
}

} // namespace

const std::vector<std::string>& TransparencyList()
{
    static const std::vector<std::string> list{"Extremely Clear", "Very Clear",     "Clear",
                                               "Partly Clear",    "Somewhat Clear", "Poor",
                                               "Very Poor"};
    return list;
}

const std::vector<std::string>& SeeingList()
{
    // "Pefectly" is the stored text of every logbook; it is kept as it is.
    static const std::vector<std::string> list{"Pefectly Stable", "Mostly Stable",
                                               "Somewhat Stable", "Unstable", "Very Unstable"};
    return list;
}

const std::vector<std::string>& RatingList()
{
    static const std::vector<std::string> list{"A+", "A", "B+", "B", "C+", "C", "D+", "D", "F"};
    return list;
}

std::string AntoniadiNumeral(std::string_view seeing)
{
    static const std::array<const char*, 5> numerals{"I", "II", "III", "IV", "V"};
    const auto& list = SeeingList();
    for (std::size_t i = 0; i < list.size(); ++i)
        if (list[i] == seeing)
            return numerals[i];
    return {};
}

const std::vector<LogFieldName>& LogFieldNames()
{
    return kFieldNames;
}

std::optional<LogField> FindLogField(std::string_view name)
{
    for (const LogFieldName& n : kFieldNames)
        if (vb::SameText(n.control, name) || vb::SameText(n.column, name))
            return n.field;
    if (vb::SameText(name, "Option1"))
        return LogField::SeenFlag;
    return std::nullopt;
}

const LogFieldName& NameOf(LogField field)
{
    for (const LogFieldName& n : kFieldNames)
        if (n.field == field)
            return n;
    throw std::invalid_argument("unknown log field");
}

std::string* LogFields::Text(LogField field)
{
    return const_cast<std::string*>(std::as_const(*this).Text(field));
}

const std::string* LogFields::Text(LogField field) const
{
    switch (field) {
    case LogField::txtObjectID:
        return &txtObjectID;
    case LogField::cboCatalog:
        return &cboCatalog;
    case LogField::mskDate:
        return &mskDate;
    case LogField::mskTime:
        return &mskTime;
    case LogField::txtLocation:
        return &txtLocation;
    case LogField::cboTransparency:
        return &cboTransparency;
    case LogField::cboSee:
        return &cboSee;
    case LogField::txtEquipment:
        return &txtEquipment;
    case LogField::cboRating:
        return &cboRating;
    case LogField::txtDescription:
        return &txtDescription;
    case LogField::rchNotes:
        return &rchNotes;
    case LogField::cboLogtype:
        return &cboLogtype;
    case LogField::txtimgname:
        return &txtimgname;
    case LogField::txtExpTime:
        return &txtExpTime;
    case LogField::txtmode:
        return &txtmode;
    case LogField::txtscope:
        return &txtscope;
    case LogField::txtCCD:
        return &txtCCD;
    case LogField::txtFocDis:
        return &txtFocDis;
    case LogField::txtFov:
        return &txtFov;
    case LogField::txtCrate:
        return &txtCrate;
    case LogField::txtRating:
        return &txtRating;
    case LogField::rchNotesccd:
        return &rchNotesccd;
    case LogField::RichTextBox1:
        return &RichTextBox1;
    case LogField::txtFaintestStar:
        return &txtFaintestStar;
    case LogField::txtSkyQuality:
        return &txtSkyQuality;
    case LogField::SeenFlag:
    case LogField::List1:
    case LogField::chkdframe:
    case LogField::chkFfield:
        return nullptr;
    }
    return nullptr;
}

bool* LogFields::Check(LogField field)
{
    switch (field) {
    case LogField::SeenFlag:
        return &Option1;
    case LogField::chkdframe:
        return &chkdframe;
    case LogField::chkFfield:
        return &chkFfield;
    default:
        return nullptr;
    }
}

bool RichIsBlank(std::string_view text)
{
    return Blank(RichPlainText(text));
}

std::string RichPlainText(std::string_view text)
{
    const QString q = QString::fromUtf8(text.data(), static_cast<int>(text.size()));
    if (!Qt::mightBeRichText(q))
        return q.toStdString();
    QTextDocument document;
    document.setHtml(q);
    return document.toPlainText().toStdString();
}

std::string RichToHtml(std::string_view text)
{
    const QString q = QString::fromUtf8(text.data(), static_cast<int>(text.size()));
    if (Qt::mightBeRichText(q))
        return std::string(text);
    return Qt::convertFromPlainText(q, Qt::WhiteSpaceNormal).toStdString();
}

// ---------------------------------------------------------------------------------------------

LogEntryForm::LogEntryForm(LogContext& context) : ctx_(context) {}

std::string LogEntryForm::Location(const char* routine) const
{
    return formName + "." + routine;
}

bool LogEntryForm::Trap(const char* routine, const std::function<void()>& body)
{
    return services::Trap(ctx_.ui, Location(routine), body);
}

services::vb::Regional LogEntryForm::Regional() const
{
    return data::RegionalOf(ctx_.prefs);
}

std::string LogEntryForm::Today() const
{
    return vb::ShortDate(ToQDate(ctx_.clock.Now()), Regional());
}

std::string LogEntryForm::Now() const
{
    const astro::LocalDateTime t = ctx_.clock.Now();
    return vb::LongTime(QTime(t.hour, t.minute, t.second));
}

long long LogEntryForm::Number() const
{
    return static_cast<long long>(vb::Val(lblObNo));
}

std::string LogEntryForm::CatalogId() const
{
    const std::string text = vb::Trim(f.cboCatalog);
    if (catalogByName)
        for (const data::CatalogRow& row : catalogs_.catalogs)
            if (vb::SameText(row.CatalogName, text))
                return row.CatalogName;
    return data::GetCatalogID(catalogs_, text);
}

std::string LogEntryForm::CatalogText(std::string_view catalogId) const
{
    if (catalogByName) {
        for (const data::CatalogRow& row : catalogs_.catalogs)
            if (vb::SameText(row.CatalogName, catalogId))
                return row.CatalogName;
        return {};
    }
    return data::GetCatalogName(catalogs_, catalogId);
}

void LogEntryForm::LoadCatalogs()
{
    Trap("Form_Load", [&] {
        if (ctx_.objectDb)
            catalogs_ = data::LoadFilterLookups(*ctx_.objectDb);
    });
}

std::string LogEntryForm::StoredDate() const
{
    if (const auto date = vb::ParseDate(f.mskDate, Regional()))
        return date->toString(Qt::ISODate).toStdString();
    return f.mskDate;
}

std::string LogEntryForm::StoredTime() const
{
    if (const auto time = vb::ParseTime(f.mskTime))
        return vb::LongTime(*time);
    return f.mskTime;
}

std::string LogEntryForm::DateCell(std::string_view stored) const
{
    return LogDateCell(stored, Regional());
}

std::string LogDateCell(std::string_view stored, const services::vb::Regional& regional)
{
    const std::string& pattern = regional.dateformat;
    if (!pattern.empty() && (pattern[0] == 'm' || pattern[0] == 'M'))
        return FormatDateForSpread(stored, pattern);
    for (const char* fixed : {"d.MM.yy", "d/M/yyyy", "dd. M. yy"})
        if (vb::SameText(pattern, fixed))
            return std::string(stored);
    const QDate date = QDate::fromString(
        QString::fromUtf8(stored.data(), static_cast<int>(stored.size())), Qt::ISODate);
    return date.isValid() ? vb::ShortDate(date, regional) : std::string(stored);
}

std::string LogEntryForm::ShownDate(std::string_view stored) const
{
    const QDate date = QDate::fromString(
        QString::fromUtf8(stored.data(), static_cast<int>(stored.size())), Qt::ISODate);
    return date.isValid() ? vb::ShortDate(date, Regional()) : std::string(stored);
}

std::string LogEntryForm::SessionDateLiteral() const
{
    return "#" +
           vb::DateForSql(vb::ParseDate(f.mskDate, Regional()).value_or(QDate()), Regional()) + "#";
}

// ---------------------------------------------------------------------------------------------
// Opening and the lists

void LogEntryForm::Form_Load()
{
    LoadLogTypeCombo();
    // The pick list of instruments starts from the equipment files until it is kept in step
    // by the equipment window.
    Trap("LoadEquipmentCombo", [&] {
        if (ctx_.logbook &&
            ctx_.logbook->OpenRecordset("Select * From Equipment", data::Snapshot).Eof())
            SyncEquipmentTable(*ctx_.logbook, ctx_.dir);
    });
    LoadEquipmentCombo();
    Trap("Form_Load", [&] {
        locationItems.clear();
        if (!ctx_.logbook)
            return;
        auto rs = ctx_.logbook->OpenRecordset("Select * From ObservingSites", data::Snapshot);
        auto name = rs.Fields("ProfileName");
        for (; !rs.Eof(); rs.MoveNext())
            if (!Blank(name.Text()))
                locationItems.push_back(name.Value());
    });
    catalogItems.clear();
    Trap("Form_Load", [&] {
        if (!ctx_.objectDb)
            return;
        LoadCatalogs();
        auto rs = ctx_.objectDb->OpenRecordset(
            "Select * From CatalogLookup Where ImpCount>0 Order By CatalogDescription",
            data::Snapshot);
        auto description = rs.Fields("CatalogDescription");
        for (; !rs.Eof(); rs.MoveNext())
            catalogItems.push_back(description.Value());
    });
    cmdClear();
    lblTime = " " + ctx_.prefs.tLogTime;
    LoadObservations();
    GetLogRecord();
    highlightedRow = 0;

    expModeItems.clear();
    // A missing list of modes leaves the box without choices; the error log says why.
    services::TrapSilently(ctx_.ui, Location("Form_Load"), [&] {
        for (const std::string& line : ReadEquipmentFile(ctx_.dir, EquipmentKind::Exp))
            expModeItems.push_back(line.substr(0, 32));
    });
    scopeItems = equipmentItems;
    dirty = false;
}

void LogEntryForm::LoadLogTypeCombo()
{
    slogItems = {ShowAllLogTypes};
    logTypeItems.clear();
    Trap("LoadLogTypeCombo", [&] {
        if (!ctx_.logbook)
            return;
        auto rs = ctx_.logbook->OpenRecordset("Select * From PerLogType", data::Snapshot);
        auto type = rs.Fields("LogType");
        for (; !rs.Eof(); rs.MoveNext()) {
            slogItems.push_back(type.Value());
            logTypeItems.push_back(type.Value());
        }
    });
    f.cboLogtype = ctx_.prefs.Ltype;
    cboSlog = ShowAllLogTypes;
}

void LogEntryForm::LoadEquipmentCombo()
{
    equipmentItems.clear();
    Trap("LoadEquipmentCombo", [&] {
        if (!ctx_.logbook)
            return;
        auto rs = ctx_.logbook->OpenRecordset("Select * From Equipment Order By Equipment",
                                              data::Snapshot);
        auto item = rs.Fields("Equipment");
        for (; !rs.Eof(); rs.MoveNext())
            equipmentItems.push_back(item.Value());
    });
}

void LogEntryForm::cmdClear()
{
    const std::string logType = f.cboLogtype;
    f = LogFields{};
    // Deliberate: the log type stays; it names the logbook being kept, not the observation.
    f.cboLogtype = logType;
    f.mskDate = Today();
    f.txtObjectID = ctx_.current.id;
    lblObNo.clear();
    dataRec = 0;
    // Deliberate: the session box shows the night's notes of the new date rather than an empty
    // box, which the next entry of that date would write over the night's notes.
    LoadSessionRow();
    cbologimages.clear();
    imagePath.clear();
    imageDescription.clear();
}

bool LogEntryForm::LoadObservations()
{
    grdLog.clear();
    const bool loaded = Trap("LoadObservations", [&] {
        if (!ctx_.logbook)
            return;
        std::string sql;
        if (mode == "R")
            sql = "Select * From Logbook Where ObjectID='" + ctx_.current.id + "' ";
        else if (!currentQuery.empty())
            sql = currentQuery;
        else if (cboSlog == ShowAllLogTypes)
            sql = "Select * From Logbook Order By DateObserved Desc";
        else
            sql = "Select * From Logbook where LogType = '" + vb::QuoteForSql(cboSlog) +
                  "' Order By DateObserved Desc";
        auto rs = ctx_.logbook->OpenRecordset(sql, data::Snapshot);
        auto id = rs.Fields("ObjectID"), number = rs.Fields("ObservationNumber"),
             catalog = rs.Fields("Catalog"), date = rs.Fields("DateObserved"),
             time = rs.Fields("TimeObserved"), location = rs.Fields("LocationObserved"),
             transparency = rs.Fields("Transparency"), seeing = rs.Fields("Seeing"),
             equipment = rs.Fields("EquipmentUsed"), rating = rs.Fields("Rating"),
             shortText = rs.Fields("ShortDescription"), type = rs.Fields("LogType"),
             seen = rs.Fields("SeenFlag");
        for (; !rs.Eof(); rs.MoveNext()) {
            if (chkFilterSeen && !seen.Bool())
                continue;
            grdLog.push_back({id.Value(), number.Value(), catalog.Value(), DateCell(date.Text()),
                              time.Value(), location.Value(), transparency.Value(), seeing.Value(),
                              equipment.Value(), rating.Value(), shortText.Value(), type.Value()});
        }
    });
    caption = "Logbook   -   " + std::to_string(grdLog.size()) + " Entries Displayed...";
    highlightedRow = 0;

    Trap("LoadObservations", [&] {
        if (!ctx_.logbook)
            return;
        if (ctx_.current.observationNumber != 0) {
            const long long n = ctx_.current.observationNumber;
            // Deliberate: the number is shown once; a later load keeps the entry on the form.
            ctx_.current.observationNumber = 0;
            auto rs = ctx_.logbook->OpenRecordset(
                "Select * From Logbook Where ObservationNumber = " + NumberText(n), data::Snapshot);
            if (!rs.Eof())
                lblObNo = NumberText(n);
        } else if (mode == "R") {
            std::string sql = "Select * From Logbook Where ObjectID='" + ctx_.current.id + "'";
            if (cboSlog != ShowAllLogTypes)
                sql += " and LogType = '" + vb::QuoteForSql(cboSlog) + "'";
            auto rs = ctx_.logbook->OpenRecordset(sql, data::Snapshot);
            if (!rs.Eof()) {
                lblObNo = rs.Fields("ObservationNumber").Value();
                ctx_.current.id.clear();
                ctx_.current.catalogId.clear();
            }
        }
    });
    mode = "N";
    return loaded;
}

void LogEntryForm::cmdShowAll()
{
    currentQuery = cboSlog == ShowAllLogTypes
                       ? std::string("Select * From Logbook Order By DateObserved Desc")
                       : "Select * From Logbook where Logtype='" + vb::QuoteForSql(cboSlog) +
                             "' Order By DateObserved Desc";
    LoadObservations();
}

void LogEntryForm::cmdFind()
{
    // The search text goes to the database as typed, wildcards and all.
    currentQuery = "Select * From Logbook where ObjectID Like '" + txtSearch + "'";
    if (cboSlog != ShowAllLogTypes)
        currentQuery += " and Logtype='" + vb::QuoteForSql(cboSlog) + "'";
    LoadObservations();
}

// ---------------------------------------------------------------------------------------------
// Add, update, delete

bool LogEntryForm::cmdAdd_Click()
{
    if (Blank(f.cboCatalog)) {
        ctx_.ui.ShowMessage("Catalog is a required entry", "Invalid Input", "E");
        return false;
    }
    if (!vb::ParseTime(f.mskTime) && !vb::IsDate(f.mskTime, Regional())) {
        ctx_.ui.ShowMessage("Please enter a valid time ", "Invalid Format", "U");
        return false;
    }
    if (Blank(f.mskDate)) {
        ctx_.ui.ShowMessage("Date must be entered", "Date", "U");
        return false;
    }
    if (f.txtObjectID.empty()) {
        ctx_.ui.ShowMessage("Please enter an object id", "Object ID Required", "U");
        return false;
    }
    // Deliberate: an entry that could not be written is not reported as created.
    if (!AddEntryToLogbook())
        return false;
    UpdateSessionLog();
    Trap("cmdAdd_Click", [&] {
        auto rs = ctx_.logbook->OpenRecordset(
            "Select ObservationNumber from Logbook Order By ObservationNumber Desc",
            data::Snapshot);
        lblObNo = rs.Eof() ? NumberText(Number() + 1) : rs.Fields("ObservationNumber").Value();
    });
    UpdateCCDLog();
    LoadObservations();
    LoadImages();
    SaveFields();
    ctx_.ui.ShowMessage("A logbook entry was created successfully", "Observation Added", "I");
    // Deliberate: the clear asked for by chkClear comes after the session, CCD and last-entry
    // writes, which would otherwise store the cleared boxes in place of what was typed.
    if (chkClear)
        cmdClear();
    return true;
}

bool LogEntryForm::MessierShorthand()
{
    const std::string& id = f.txtObjectID;
    if (id.size() < 2 || id[0] != 'M' || vb::Val(id.substr(1, 1)) <= 0 || !ctx_.objectDb)
        return false;
    auto rs = ctx_.objectDb->OpenRecordset("Select * From SelvaneTable Where MessierNumber = " +
                                               vb::Format(vb::Val(id.substr(1)), "0") +
                                               " and catalog = '2000'",
                                           data::Snapshot);
    if (rs.Eof())
        return false;
    f.txtObjectID = rs.Fields("ObjectID").Value();
    f.txtOtherID = rs.Fields("OtherID").Value();
    return true;
}

long long LogEntryForm::ObjectKey()
{
    return logbook::ObjectKey(ctx_.objectDb, f.txtObjectID, CatalogId());
}

void LogEntryForm::WriteEntryColumns(data::Recordset& rs, bool adding)
{
    if (Blank(f.cboLogtype))
        f.cboLogtype = DefaultLogType;
    rs.Fields("ObjectID").Set(f.txtObjectID);
    rs.Fields("Catalog").Set(CatalogId());
    rs.Fields("SeenFlag").SetBool(f.Option1);
    rs.Fields("DateObserved").Set(StoredDate());
    rs.Fields("TimeObserved").Set(StoredTime());
    rs.Fields("LocationObserved").Set(Stored(f.txtLocation));
    rs.Fields("Transparency").Set(Stored(f.cboTransparency));
    rs.Fields("Seeing").Set(Stored(f.cboSee));
    rs.Fields("equipmentused").Set(Stored(f.txtEquipment));
    rs.Fields("OtherEquipment").Set(Stored(JoinLines(f.List1)));
    rs.Fields("Rating").Set(Stored(f.cboRating));
    rs.Fields("shortdescription").Set(Stored(f.txtDescription));
    if (!adding)
        rs.Fields("ObservationText").Set(RichIsBlank(f.rchNotes) ? " " : RichToHtml(f.rchNotes));
    else if (!RichIsBlank(f.rchNotes))
        rs.Fields("ObservationText").Set(RichToHtml(f.rchNotes));
    rs.Fields("LogType").Set(f.cboLogtype);
    if (adding)
        rs.Fields("DataRec").Set(ctx_.current.key);
}

bool LogEntryForm::WriteLogbookRow(bool adding, const char* routine)
{
    bool written = false;
    Trap(routine, [&] {
        MessierShorthand();
        if (adding) {
            ctx_.current.key = ObjectKey();
            dataRec = ctx_.current.key;
        }
        auto rs = ctx_.logbook->OpenRecordset(
            adding ? std::string("Select * From Logbook")
                   : "Select * From Logbook where ObservationNumber = " + NumberText(Number()));
        if (adding) {
            rs.AddNew();
        } else {
            if (rs.Eof())
                return;
            rs.Edit();
        }
        WriteEntryColumns(rs, adding);
        rs.Update();
        written = true;
    });
    return written;
}

bool LogEntryForm::AddEntryToLogbook()
{
    if (!WriteLogbookRow(true, "AddEntryToLogbook"))
        return false;
    UpdateSelvaneTable();
    dirty = false;
    ctx_.current.id = f.txtObjectID;
    LoadObservations();
    return true;
}

void LogEntryForm::UpdateSelvaneTable()
{
    Trap("UpdateSelvaneTable", [&] {
        ctx_.current.catalogId = CatalogId();
        if (ctx_.current.catalogId.empty() || ctx_.prefs.UseCd || !ctx_.objectDb)
            return;
        f.txtObjectID = vb::UCase(f.txtObjectID);
        ctx_.objectDb->Execute(
            ObservedUpdateSql(f.txtObjectID, ctx_.current.catalogId, ctx_.current.key));
    });
}

bool LogEntryForm::cmdUpdate_Click()
{
    bool updated = false;
    if (!vb::ParseTime(f.mskTime) && !vb::IsDate(f.mskTime, Regional()))
        ctx_.ui.ShowMessage("Please enter a valid time", "Invalid Time", "U");
    else if (Blank(f.mskDate) || Blank(f.mskTime))
        ctx_.ui.ShowMessage("Date and Time must be entered", "Date/Time", "U");
    else if (Blank(lblObNo))
        updated = UpdateEntryInLogbook(); // an add, with its own session and CCD writes
    else if ((updated = UpdateEntryInLogbook())) {
        // Deliberate: nothing more is written for an entry that is no longer in the logbook,
        // so no session or CCD row is made for a number that names no observation.
        UpdateSessionLog();
        UpdateCCDLog();
    }
    SaveFields();
    return updated;
}

bool LogEntryForm::UpdateEntryInLogbook()
{
    if (Blank(lblObNo))
        return cmdAdd_Click();
    if (!WriteLogbookRow(false, "UpdateEntryInLogbook"))
        return false;
    UpdateSelvaneTable();
    // Deliberate: a stored update leaves nothing pending, so the next click does not offer to
    // save it again.
    dirty = false;
    ctx_.ui.ShowMessage("A logbook entry was updated successfully", "Observation Updated", "I");
    return true;
}

void LogEntryForm::UpdateCCDLog()
{
    const long long n = Number();
    if (n == 0)
        return;
    Trap("UpdateCCDLog", [&] {
        auto rs = ctx_.logbook->OpenRecordset("Select * From CCDLog where ObservationNumber = " +
                                              NumberText(n));
        if (rs.Eof()) {
            rs.AddNew();
            rs.Fields("ObservationNumber").Set(n);
        } else {
            rs.Edit();
        }
        rs.Fields("ImageName").Set(Stored(f.txtimgname));
        // A box emptied by the user keeps the stored value.
        const std::array<std::pair<const char*, const std::string*>, 7> kept{{
            {"ExposureTime", &f.txtExpTime},
            {"ExposureMode", &f.txtmode},
            {"Telescope", &f.txtscope},
            {"CCDCamera", &f.txtCCD},
            {"FocalDistance", &f.txtFocDis},
            {"FieldOfView", &f.txtFov},
            {"Coolingrate", &f.txtCrate},
        }};
        for (const auto& [column, text] : kept)
            if (!Blank(*text))
                rs.Fields(column).Set(*text);
        rs.Fields("darkframe").SetBool(f.chkdframe);
        rs.Fields("flatfield").SetBool(f.chkFfield);
        rs.Fields("PictureRating").Set(Stored(f.txtRating));
        rs.Fields("Notes").Set(RichIsBlank(f.rchNotesccd) ? " " : RichToHtml(f.rchNotesccd));
        rs.Update();
    });
}

void LogEntryForm::UpdateSessionLog()
{
    Trap("UpdateSessionLog", [&] {
        const std::string literal = SessionDateLiteral();
        auto rs =
            ctx_.logbook->OpenRecordset("Select * From SessionLog where SessionDate = " + literal);
        if (rs.Eof())
            rs.AddNew();
        else
            rs.Edit();
        rs.Fields("SessionDate").Set(StoredDate());
        rs.Fields("sessiontext")
            .Set(RichIsBlank(f.RichTextBox1) ? " " : RichToHtml(f.RichTextBox1));
        rs.Update();

        // The night's faintest star and sky-quality reading, kept beside the session text.
        auto sky =
            ctx_.logbook->OpenRecordset("Select * From SessionSky where SessionDate = " + literal);
        if (sky.Eof() && Blank(f.txtFaintestStar) && Blank(f.txtSkyQuality))
            return;
        if (sky.Eof())
            sky.AddNew();
        else
            sky.Edit();
        sky.Fields("SessionDate").Set(StoredDate());
        sky.Fields("FaintestStar").Set(vb::Trim(f.txtFaintestStar));
        sky.Fields("SkyQuality").Set(vb::Trim(f.txtSkyQuality));
        sky.Update();
    });
}

void LogEntryForm::DeleteSession()
{
    Trap("DeleteSession", [&] {
        std::string text = f.mskDate;
        if (text.find('.') != std::string::npos) {
            std::vector<std::string> parts;
            std::string part;
            for (char c : text + ".") {
                if (c == '.') {
                    parts.push_back(vb::Trim(part));
                    part.clear();
                } else {
                    part += c;
                }
            }
            if (parts.size() >= 3)
                text = vb::Format(vb::Val(parts[0]), "0") + "/" +
                       vb::Format(vb::Val(parts[1]), "0") + "/" +
                       vb::Format(vb::Val(parts[2]), "0");
        }
        ctx_.logbook->Execute("Delete From SessionLog where SessionDate = #" + text + "#");
        ctx_.logbook->Execute("Delete From SessionSky where SessionDate = #" + text + "#");
        f.RichTextBox1.clear();
        f.txtFaintestStar.clear();
        f.txtSkyQuality.clear();
    });
}

bool LogEntryForm::DeleteObservation()
{
    const long long n = Number();
    if (n == 0 || !ctx_.logbook)
        return false;
    if (!ctx_.ui.Ask("Are you sure you want to delete this observation", "Selvane 2003", true))
        return false;
    if (!RemoveEntry(n, "DeleteObservation"))
        return false;
    ctx_.ui.ShowMessage("A logbook entry was deleted successfully", "Observation Deleted", "I");
    lblObNo.clear();
    LoadObservations();
    return true;
}

bool LogEntryForm::RemoveEntry(long long n, const char* routine)
{
    std::optional<services::Fault> flagFault;
    const bool deleted = Trap(routine, [&] {
        auto entry = ctx_.logbook->OpenRecordset(
            "Select * From Logbook Where ObservationNumber = " + NumberText(n), data::Snapshot);
        const std::string id = entry.Eof() ? f.txtObjectID : entry.Fields("ObjectID").Value();
        const std::string catalog = entry.Eof() ? CatalogId() : entry.Fields("Catalog").Value();
        entry.Close();
        // Deliberate: the flag is cleared before the entry goes, so that an interrupted delete
        // leaves an entry without its flag (which the fix command repairs), never a flag
        // without an entry. The rule is the same: no other row of any log type keeps it.
        if (!ctx_.prefs.UseCd && ctx_.objectDb) {
            try {
                auto others = ctx_.logbook->OpenRecordset(
                    "Select * From Logbook Where ObjectID = '" + vb::QuoteForSql(id) +
                        "' and Catalog = '" + catalog + "'",
                    data::Snapshot);
                bool another = false;
                for (auto number = others.Fields("ObservationNumber"); !others.Eof();
                     others.MoveNext())
                    another = another || number.Long() != n;
                if (!another)
                    ctx_.objectDb->Execute(
                        "Update SelvaneTable Set Observed = False  Where ObjectID = '" +
                        vb::QuoteForSql(id) + "' and Catalog = '" + catalog + "'");
            } catch (const services::Fault& fault) {
                flagFault = fault;
            }
        }
        ctx_.logbook->Execute("Delete From Logbook Where ObservationNumber = " + NumberText(n));
        ctx_.logbook->Execute("Delete From Imagelog where ObservationNumber = " + NumberText(n));
        ctx_.logbook->Execute("Delete From ccdlog where ObservationNumber = " + NumberText(n));
    });
    if (flagFault) {
        ctx_.ui.ReportFault(flagFault->what(), Location(routine));
        return false;
    }
    return deleted;
}

// ---------------------------------------------------------------------------------------------
// The last entry

void LogEntryForm::SaveFields()
{
    Trap("SaveFields", [&] {
        auto rs = ctx_.logbook->OpenRecordset("Select * From LastLogEntry");
        if (rs.Eof())
            rs.AddNew();
        else
            rs.Edit();
        if (Blank(lblObNo))
            rs.Fields("ObservationNumber").SetNull();
        else
            rs.Fields("ObservationNumber").Set(Number());
        const std::array<std::pair<const char*, const std::string*>, 11> texts{{
            {"ObjectID", &f.txtObjectID},
            {"DateObserved", &f.mskDate},
            {"TimeObserved", &f.mskTime},
            {"LocationObserved", &f.txtLocation},
            {"Transparency", &f.cboTransparency},
            {"Seeing", &f.cboSee},
            {"EquipmentUsed", &f.txtEquipment},
            {"Rating", &f.cboRating},
            {"ShortDescription", &f.txtDescription},
            {"ObservationText", &f.rchNotes},
            {"LogType", &f.cboLogtype},
        }};
        for (const auto& [column, text] : texts)
            rs.Fields(column).Set(*text);
        rs.Fields("Catalog").Set(CatalogId());
        rs.Fields("DateObserved").Set(StoredDate());
        rs.Fields("TimeObserved").Set(StoredTime());
        rs.Fields("OtherEquipment").Set(JoinLines(f.List1));
        const std::array<std::pair<const char*, const std::string*>, 6> ccd{{
            {"ImageName", &f.txtimgname},
            {"ExposureMode", &f.txtmode},
            {"Telescope", &f.txtscope},
            {"CCDCamera", &f.txtCCD},
            {"FocalDistance", &f.txtFocDis},
            {"FieldOfView", &f.txtFov},
        }};
        for (const auto& [column, text] : ccd)
            rs.Fields(column).Set(*text);
        if (!Blank(f.txtCrate))
            rs.Fields("Coolingrate").Set(f.txtCrate);
        rs.Fields("darkframe").SetBool(f.chkdframe);
        rs.Fields("flatfield").SetBool(f.chkFfield);
        rs.Fields("PictureRating").Set(f.txtRating);
        rs.Fields("Notes").Set(f.rchNotesccd);
        rs.Fields("sessiontext").Set(f.RichTextBox1);
        rs.Update();
    });
}

bool LogEntryForm::cmdLastEntry_Click()
{
    bool recalled = false;
    Trap("cmdLastEntry_Click", [&] {
        auto rs = ctx_.logbook->OpenRecordset("Select * From LastLogEntry", data::Snapshot);
        if (rs.Eof())
            return;
        lblObNo = rs.Fields("ObservationNumber").Value();
        f.txtObjectID = rs.Fields("ObjectID").Value();
        f.cboCatalog = CatalogText(rs.Fields("Catalog").Text());
        f.mskDate = ShownDate(rs.Fields("DateObserved").Text());
        f.mskTime = rs.Fields("TimeObserved").Value();
        f.txtLocation = rs.Fields("LocationObserved").Value();
        f.cboTransparency = rs.Fields("Transparency").Value();
        f.cboSee = rs.Fields("Seeing").Value();
        f.txtEquipment = rs.Fields("EquipmentUsed").Value();
        f.List1 = SplitLines(rs.Fields("OtherEquipment").Text());
        f.cboRating = rs.Fields("Rating").Value();
        f.txtDescription = rs.Fields("ShortDescription").Value();
        f.rchNotes = rs.Fields("ObservationText").Value();
        f.cboLogtype = rs.Fields("LogType").Value();
        f.txtimgname = rs.Fields("ImageName").Value();
        f.txtmode = rs.Fields("ExposureMode").Value();
        f.txtscope = rs.Fields("Telescope").Value();
        f.txtCCD = rs.Fields("CCDCamera").Value();
        f.txtFocDis = rs.Fields("FocalDistance").Value();
        f.txtFov = rs.Fields("FieldOfView").Value();
        f.chkdframe = rs.Fields("darkframe").Bool();
        f.chkFfield = rs.Fields("flatfield").Bool();
        f.txtRating = rs.Fields("PictureRating").Value();
        f.rchNotesccd = rs.Fields("Notes").Value();
        f.RichTextBox1 = rs.Fields("sessiontext").Value();
        dirty = true;
        recalled = true;
    });
    return recalled;
}

std::string LogEntryForm::GetLastEntry(const std::string& field)
{
    std::string value;
    Trap("GetLastEntry", [&] {
        auto rs =
            ctx_.logbook->OpenRecordset("Select " + field + " From LastLogEntry ", data::Snapshot);
        if (!rs.Eof())
            value = rs.Fields(0).Value();
    });
    return value;
}

// ---------------------------------------------------------------------------------------------
// Showing an entry

void LogEntryForm::LoadSessionRow()
{
    f.RichTextBox1.clear();
    f.txtFaintestStar.clear();
    f.txtSkyQuality.clear();
    if (!ctx_.logbook)
        return;
    Trap("GetLogRecord", [&] {
        const std::string literal = SessionDateLiteral();
        auto session = ctx_.logbook->OpenRecordset(
            "Select * From SessionLog where SessionDate = " + literal, data::Snapshot);
        if (!session.Eof())
            f.RichTextBox1 = Shown(session.Fields("sessiontext"));
        auto sky = ctx_.logbook->OpenRecordset(
            "Select * From SessionSky where SessionDate = " + literal, data::Snapshot);
        if (!sky.Eof()) {
            f.txtFaintestStar = sky.Fields("FaintestStar").Value();
            f.txtSkyQuality = sky.Fields("SkyQuality").Value();
        }
    });
}

void LogEntryForm::GetLogRecord()
{
    const long long n = Number();
    if (n == 0 || !ctx_.logbook)
        return;
    Trap("GetLogRecord", [&] {
        auto rs = ctx_.logbook->OpenRecordset(
            "Select * From Logbook Where ObservationNumber = " + NumberText(n), data::Snapshot);
        if (rs.Eof())
            return;
        f.Option1 = rs.Fields("SeenFlag").Bool();
        const std::string catalogId = rs.Fields("Catalog").Value();
        f.cboCatalog = CatalogText(catalogId);
        f.txtObjectID = rs.Fields("ObjectID").Value();
        f.mskDate = ShownDate(rs.Fields("DateObserved").Text());
        f.mskTime = rs.Fields("TimeObserved").Value();
        f.txtLocation = Shown(rs.Fields("LocationObserved"));
        f.cboTransparency = Shown(rs.Fields("Transparency"));
        f.cboSee = Shown(rs.Fields("Seeing"));
        f.txtEquipment = Shown(rs.Fields("EquipmentUsed"));
        f.cboRating = Shown(rs.Fields("Rating"));
        f.txtDescription = Shown(rs.Fields("ShortDescription"));
        f.cboLogtype = Shown(rs.Fields("LogType"));
        f.rchNotes = Shown(rs.Fields("ObservationText"));
        f.List1 = SplitLines(rs.Fields("OtherEquipment").Text());
        dataRec = rs.Fields("DataRec").Long();

        f.txtOtherID.clear();
        if (ctx_.objectDb) {
            auto other = ctx_.objectDb->OpenRecordset(
                "Select OtherID From SelvaneTable Where ObjectID ='" +
                    vb::QuoteForSql(f.txtObjectID) + "' and Catalog='" + catalogId + "'",
                data::Snapshot);
            if (!other.Eof())
                f.txtOtherID = other.Fields("OtherID").Value();
        }
        LoadSessionRow();

        auto ccd = ctx_.logbook->OpenRecordset(
            "Select * From CCDLog where ObservationNumber=" + NumberText(n), data::Snapshot);
        const bool has = !ccd.Eof();
        auto text = [&](const char* column) {
            return has ? Shown(ccd.Fields(column)) : std::string();
        };
        f.txtimgname = text("ImageName");
        f.txtExpTime = text("ExposureTime");
        f.txtmode = text("ExposureMode");
        f.txtscope = text("Telescope");
        f.txtCCD = text("CCDCamera");
        f.txtFocDis = text("FocalDistance");
        f.txtFov = text("FieldOfView");
        f.txtCrate = text("Coolingrate");
        f.chkdframe = has && ccd.Fields("darkframe").Bool();
        f.chkFfield = has && ccd.Fields("flatfield").Bool();
        f.txtRating = text("PictureRating");
        f.rchNotesccd = text("Notes");
    });
    imagePath.clear();
    imageDescription.clear();
    LoadImages();
    dirty = false;
}

void LogEntryForm::CheckDirtyFlag()
{
    if (!dirty)
        return;
    if (!ctx_.ui.Ask("Changes pending...Would you like to save your observation first?",
                     "WARNING ...", false))
        return;
    if (Blank(lblObNo))
        cmdAdd_Click();
    else
        cmdUpdate_Click();
}

void LogEntryForm::GridClick(int row)
{
    if (row < 1 || row > static_cast<int>(grdLog.size()))
        return;
    // Deliberate: the clicked entry's number is taken before a pending save reloads the grid,
    // so the entry clicked is the one shown.
    const std::string number =
        vb::Format(vb::Val(grdLog[static_cast<std::size_t>(row - 1)][1]), "0");
    CheckDirtyFlag();
    highlightedRow = RowOf(static_cast<long long>(vb::Val(number)));
    lblObNo = number;
    GetLogRecord();
}

int LogEntryForm::RowOf(long long n) const
{
    for (std::size_t i = 0; i < grdLog.size(); ++i)
        if (static_cast<long long>(vb::Val(grdLog[i][1])) == n)
            return static_cast<int>(i) + 1;
    return 0;
}

void LogEntryForm::vsElastic_Click()
{
    if (Blank(lblObNo) || Blank(f.txtObjectID) || Blank(f.cboCatalog) || !ctx_.objectDb)
        return;
    Trap("vsElastic_Click", [&] {
        auto rs = ctx_.objectDb->OpenRecordset("Select * From SelvaneTable Where ObjectID = '" +
                                                   vb::QuoteForSql(f.txtObjectID) +
                                                   "' and Catalog = '" + CatalogId() + "'",
                                               data::Snapshot);
        if (rs.Eof())
            ctx_.ui.ShowMessage("Object is not in the Selvane database", "Object", "I");
        else if (openChart)
            openChart(f.txtObjectID, CatalogId());
    });
}

// ---------------------------------------------------------------------------------------------
// Field entry

void LogEntryForm::GotFocus(LogField field)
{
    static const std::array<std::pair<LogField, const char*>, 6> recalled{{
        {LogField::cboSee, "Seeing"},
        {LogField::cboTransparency, "Transparency"},
        {LogField::txtEquipment, "EquipmentUsed"},
        {LogField::txtLocation, "LocationObserved"},
        {LogField::cboLogtype, "LogType"},
        {LogField::cboCatalog, "Catalog"},
    }};
    for (const auto& [which, column] : recalled) {
        if (which != field || !Blank(*f.Text(field)))
            continue;
        std::string value = GetLastEntry(column);
        if (field == LogField::cboCatalog)
            value = CatalogText(value);
        *f.Text(field) = value;
        // Deliberate: only a value recalled marks the form changed; tabbing through the empty
        // boxes of a first entry leaves nothing to save.
        dirty = dirty || !Blank(value);
    }
}

void LogEntryForm::SetValue(LogField field, const std::string& value)
{
    if (field == LogField::List1)
        f.List1.push_back(value);
    else if (std::string* text = f.Text(field))
        *text = value;
    dirty = true;
}

void LogEntryForm::SetCheck(LogField field, bool value)
{
    if (bool* check = f.Check(field))
        *check = value;
    dirty = true;
}

bool LogEntryForm::LostFocus(LogField field)
{
    auto validate = [&](const std::string& text, int maxLength) {
        services::clsValidate validator;
        validator.Init();
        validator.Maxlength = static_cast<short>(maxLength);
        validator.AllowComma = true;
        validator.AllowSingleQuote = true;
        validator.AllowDoubleQuote = true;
        validator.CheckText = text;
        bool ok = true;
        validator.ValidateText(ctx_.ui, ok);
        return ok;
    };
    auto tooLong = [&](const std::string& text, std::size_t limit, const std::string& message,
                       const std::string& title) {
        if (CharCount(text) <= limit)
            return false;
        ctx_.ui.ShowMessage(message, title, "U");
        return true;
    };

    switch (field) {
    case LogField::txtObjectID:
        f.txtObjectID = vb::UCase(f.txtObjectID);
        return validate(f.txtObjectID, 25);
    case LogField::txtDescription:
        return validate(f.txtDescription, 50);
    case LogField::cboCatalog:
        if (Blank(f.cboCatalog)) {
            ctx_.ui.ShowMessage("Catalog is a required entry", "Invalid Input", "E");
            return false;
        }
        return true;
    case LogField::txtLocation:
        return !tooLong(f.txtLocation, 50, "Location Must be less than 50 characters long",
                        "Maximum Characters Exceeded");
    case LogField::txtEquipment:
        return !tooLong(f.txtEquipment, 50, "Equipment Must be less than 50 characters long",
                        "Maximum Characters Exceeded");
    case LogField::mskDate: {
        if (Blank(f.mskDate)) {
            f.mskDate = Today();
        } else if (const auto date = vb::ParseDate(f.mskDate, Regional())) {
            f.mskDate = vb::ShortDate(*date, Regional());
        } else {
            ctx_.ui.ShowMessage("You have entered an invalid date", "Invalid Date", "U");
            return false;
        }
        LoadSessionRow();
        return true;
    }
    case LogField::mskTime:
        if (Blank(f.mskTime))
            f.mskTime = Now();
        else if (f.mskTime.size() == 2)
            f.mskTime += ":00:00";
        else if (f.mskTime.size() == 5)
            f.mskTime += ":00";
        return true;
    case LogField::RichTextBox1:
        UpdateSessionLog();
        return true;
    default:
        break;
    }
    for (const CcdLimit& limit : kCcdLimits)
        if (limit.field == field)
            return !tooLong(*f.Text(field), limit.limit,
                            "Please enter up to " + std::to_string(limit.limit) +
                                " characters only",
                            "Maximum length exceeded");
    return true;
}

// ---------------------------------------------------------------------------------------------
// Images

void LogEntryForm::AttachImage()
{
    if (Number() == 0 && !cmdAdd_Click())
        return;
    const std::string path = ctx_.ui.AskOpenFile(
        "Attach Image", "Images (*.png *.jpg *.jpeg *.bmp *.gif *.tif *.tiff *.xpm *.ppm)");
    if (path.empty())
        return;
    imagePath = path;
    std::string description;
    for (;;) {
        description =
            ctx_.ui.InputBox("Please enter a short description for this image", "Description", "");
        // Deliberate: a cancelled box attaches nothing, rather than asking without end.
        if (description.empty())
            return;
        if (!Blank(description) && CharCount(description) <= 50)
            break;
        ctx_.ui.ShowMessage("A short description is required.  Up to 50 characters may be entered.",
                            "Information Required", "U");
    }
    Trap("AttachImage", [&] {
        ctx_.logbook->Execute("Insert into ImageLog (ObservationNumber, ImageDescription, "
                              "ImagePath)  Values(" +
                              NumberText(Number()) + ", '" + vb::QuoteForSql(description) + "', '" +
                              path + "')");
    });
    LoadImages();
}

void LogEntryForm::LoadImages()
{
    cbologimages.clear();
    imagePath.clear();
    imageDescription.clear();
    Trap("LoadImages", [&] {
        if (!ctx_.logbook || Number() == 0)
            return;
        auto rs = ctx_.logbook->OpenRecordset("Select * From ImageLog Where ObservationNumber = " +
                                                  NumberText(Number()),
                                              data::Snapshot);
        auto sequence = rs.Fields("Sequence"), path = rs.Fields("ImagePath"),
             description = rs.Fields("ImageDescription");
        for (; !rs.Eof(); rs.MoveNext()) {
            if (cbologimages.empty()) {
                imagePath = path.Value();
                imageDescription = description.Value();
            }
            cbologimages.push_back(vb::Format(sequence.Double(), "000000") + " " + path.Value());
        }
    });
    if (cbologimages.empty())
        cbologimages.push_back(NoImagesAttached);
}

void LogEntryForm::ChooseImage(int index)
{
    if (index < 0 || index >= static_cast<int>(cbologimages.size()) ||
        cbologimages[static_cast<std::size_t>(index)] == NoImagesAttached)
        return;
    const std::string& line = cbologimages[static_cast<std::size_t>(index)];
    imagePath = line.size() > 7 ? line.substr(7) : std::string();
    Trap("LoadImages", [&] {
        auto rs = ctx_.logbook->OpenRecordset("Select * From ImageLog where Sequence = " +
                                                  vb::Format(vb::Val(line.substr(0, 6)), "0"),
                                              data::Snapshot);
        imageDescription = rs.Eof() ? std::string() : rs.Fields("ImageDescription").Value();
    });
}

void LogEntryForm::DeleteImage()
{
    if (cbologimages.empty() || cbologimages.front() == NoImagesAttached || imagePath.empty())
        return;
    std::string sequence;
    for (const std::string& line : cbologimages)
        if (line.size() > 7 && line.substr(7) == imagePath)
            sequence = vb::Format(vb::Val(line.substr(0, 6)), "0");
    Trap("DeleteImage", [&] {
        // The picture file itself is left where it is.
        ctx_.logbook->Execute("Delete From ImageLog Where Sequence = " + sequence);
    });
    imagePath.clear();
    LoadImages();
}

// ---------------------------------------------------------------------------------------------

std::string FormText(const LogEntryForm& form)
{
    const LogFields& f = form.f;
    const services::vb::Regional regional = form.Regional();
    std::string out = "Field\tValue\n";
    auto line = [&](std::string_view name, std::string_view value) {
        out += std::string(name) + "\t" + EscapedForLine(value) + "\n";
    };
    line("ObservationNumber", form.lblObNo);
    line("OtherID", f.txtOtherID);
    for (const LogFieldName& name : LogFieldNames()) {
        if (name.field == LogField::RichTextBox1)
            break;
        const LogField field = name.field;
        if (field == LogField::mskDate) {
            const auto date = vb::ParseDate(f.mskDate, regional);
            line(name.column, date ? date->toString(Qt::ISODate).toStdString() : f.mskDate);
        } else if (field == LogField::mskTime) {
            const auto time = vb::ParseTime(f.mskTime);
            line(name.column, time ? vb::LongTime(*time) : f.mskTime);
        } else if (field == LogField::List1) {
            std::string lines;
            for (const std::string& l : f.List1)
                lines += (lines.empty() ? "" : "\n") + l;
            line(name.column, lines);
        } else if (name.kind == FieldKind::Check) {
            line(name.column, *const_cast<LogFields&>(f).Check(field) ? "True" : "False");
        } else if (name.kind == FieldKind::Rich) {
            line(name.column, RichPlainText(*f.Text(field)));
        } else {
            line(name.column, *f.Text(field));
        }
        if (field == LogField::cboLogtype)
            line("DataRec", std::to_string(form.dataRec));
    }
    line("sessiontext", RichPlainText(f.RichTextBox1));
    return out;
}

} // namespace logbook
