#include "reports/Certificates.h"

#include "reports/ReportSetup.h"
#include "reports/ReportWindow.h"
#include "services/Fault.h"
#include "services/Vb.h"
#include "spread/AppState.h"

#include <QDate>

#include <algorithm>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace reports {

namespace vb = services::vb;

namespace {

constexpr const char* kHerschelHeader = "Observed Herschel Objects Report (Herschel Certificate)";
constexpr const char* kMessierHeader = "Observed Messier Objects Report (Messier Certificate)";
// Rows between two calls of the event pump.
constexpr int kPumpEvery = 200;

data::Database& Logbook(spread::AppState& TMM)
{
    if (TMM.logbookDb == nullptr)
        throw services::Fault("The logbook is not open", "");
    return *TMM.logbookDb;
}

data::Database& ObjectDatabase(spread::AppState& TMM)
{
    if (TMM.objectDb == nullptr)
        throw services::Fault("The object database is not open", "");
    return *TMM.objectDb;
}

// DSFont and DSSize: the font of the database report's settings file (the file last applied,
// else the program folder's default). A file that is missing or cannot be read leaves the
// settings window's design font; the certificates never report the column report's file.
FontSpec DSFont(spread::AppState& TMM)
{
    ReportSetup setup(SettingsKind::Database, TMM);
    try {
        setup.ReadOpeningFile();
    } catch (const services::Fault&) {
    }
    const ReportForm& form = setup.form;
    FontSpec font;
    if (!vb::Trim(form.fontName).empty())
        font.name = form.fontName;
    if (form.fontSize > 0)
        font.size = form.fontSize;
    return font;
}

// A logbook text as it prints: blanks are stored as one space.
std::string Text(const data::Field& field)
{
    return vb::Trim(field.Text());
}

enum class Kind {
    Herschel,
    Messier,
};

// The designation a kept row stands for: "H IV-58" or "M31".
std::string Designation(Kind kind, const data::Field& key)
{
    return kind == Kind::Herschel ? Text(key) : "M" + std::to_string(key.Long());
}

// The list's members in the list's order: xref's designations, the Messier numbers of
// catalogue "2000".
std::vector<std::string> ListMembers(Kind kind, data::Database& logbook)
{
    std::vector<std::string> members;
    std::set<std::string> seen;
    data::Recordset rs = logbook.OpenRecordset(
        kind == Kind::Herschel ? "Select Distinct Her From xref Order By Her"
                               : "Select Distinct MessierNumber From SelvaneTable Where Catalog "
                                 "= '2000' and MessierNumber > 0 Order By MessierNumber",
        data::Snapshot);
    for (data::Field key = rs.Fields(0); !rs.Eof(); rs.MoveNext()) {
        std::string member = Designation(kind, key);
        if (!member.empty() && seen.insert(member).second)
            members.push_back(std::move(member));
    }
    return members;
}

// The members no kept row names, several to a line.
void PrintMissing(PrintSurface& s, Kind kind, data::Database& logbook,
                  const std::set<std::string>& kept, const FontSpec& font)
{
    const std::size_t perLine = kind == Kind::Herschel ? 6 : 10;
    std::vector<std::string> lines;
    std::size_t onLine = 0;
    for (const std::string& member : ListMembers(kind, logbook)) {
        if (kept.contains(member))
            continue;
        if (onLine == 0)
            lines.emplace_back();
        else
            lines.back() += ",  ";
        lines.back() += member;
        onLine = (onLine + 1) % perLine;
    }
    s.Paragraph("");
    s.SetFont({font.name, font.size, true});
    s.Paragraph(kStillToObserve);
    s.SetFont(font);
    for (const std::string& line : lines)
        s.Paragraph(line);
}

struct Certificate
{
    Kind kind;
    bool longForm;
};

// The walk of a certificate: keep is called for the first row of each key in the set's order,
// the rows that follow with the same key are skipped. Returns the rows kept.
template <typename Keep>
int WalkFirstRows(data::Recordset& rs, const data::Field& key, services::UiPort& ui, Keep&& keep)
{
    int count = 0;
    std::optional<std::string> previous;
    for (int n = 1; !rs.Eof(); rs.MoveNext(), ++n) {
        if (n % kPumpEvery == 0 && ui.Pump())
            break;
        if (previous && key.Text() == *previous)
            continue;
        previous = key.Value();
        ++count;
        keep();
    }
    return count;
}

// The count of the Herschel objects in the logbook.
int CountHerschel(data::Database& logbook, services::UiPort& ui)
{
    data::Recordset rs = logbook.OpenRecordset(kHerschelSql, data::Snapshot);
    return WalkFirstRows(rs, rs.Fields("Her"), ui, [] {});
}

void PrintCertificate(ReportWindow& window, const Certificate& c)
{
    spread::AppState& TMM = window.Context().TMM;
    const ReportContext& context = window.Context();
    data::Database& logbook = Logbook(TMM);
    const bool herschel = c.kind == Kind::Herschel;
    const char* sql = herschel ? (c.longForm ? kHerschelLongSql : kHerschelSql)
                               : (c.longForm ? kMessierLongSql : kMessierSql);
    data::Recordset rs = logbook.OpenRecordset(sql, data::Snapshot);
    const data::Field key = rs.Fields(herschel ? "Her" : "MessierNumber");
    const data::Field date = rs.Fields("DateObserved");
    const data::Field id = herschel ? rs.Fields("ObjectId") : data::Field();
    std::optional<data::Field> time, seeing, transparency, equipment, notes;
    if (c.longForm) {
        time = rs.Fields("TimeObserved");
        seeing = rs.Fields("Seeing");
        transparency = rs.Fields("Transparency");
        equipment = rs.Fields("EquipmentUsed");
        notes = rs.Fields("ShortDescription");
    }

    const FontSpec dsFont = DSFont(TMM);
    const FontSpec font{dsFont.name, c.longForm ? dsFont.size : 12};
    PrintSurface& s = window.Surface();
    s.StartDoc();
    s.SetHeaderFont("Arial", 10);
    s.SetHeader(herschel ? kHerschelHeader : kMessierHeader);
    s.SetFont(font);

    std::set<std::string> kept;
    const int count = WalkFirstRows(rs, key, TMM.ui, [&] {
        const std::string designation = Designation(c.kind, key);
        kept.insert(designation);
        if (!c.longForm) {
            const std::string on = " on " + ShortDateText(date.Text(), context);
            s.Paragraph(herschel ? "Hersch #:" + designation + ", NGC #: " + Text(id) + on
                                 : designation + on);
            return;
        }
        s.SetFont({font.name, font.size, true});
        s.Paragraph(std::string(herschel ? "Herschell Object : " : "") + designation +
                    " was observed on " + LongDateText(date.Text(), context));
        s.SetFont(font);
        s.Paragraph("Time Observed : " + Text(*time));
        s.Paragraph("Seeing Conditions : " + Text(*seeing) +
                    "   Transparency : " + Text(*transparency));
        s.Paragraph("Primary Equipment : " + Text(*equipment));
        s.Paragraph("Notes : " + Text(*notes));
        s.Paragraph("");
    });

    if (window.chkMissing)
        PrintMissing(s, c.kind, logbook, kept, font);

    // Set after the body, the count stands on every page.
    const std::string counted =
        "You have observed " + std::to_string(count) +
        (herschel ? " Herschel Objects so far." : " Messier Objects so far.");
    const bool pageOnly = !herschel && c.longForm;
    s.SetFooter(counted + (pageOnly ? "| |Page %d" : "||" + PresentDate(context) + "  Page %d"));
    s.EndDoc();
}

// The rows a statement finds.
long CountRows(data::Database& db, const std::string& sql)
{
    data::Recordset rs = db.OpenRecordset(sql, data::Snapshot);
    long rows = 0;
    for (; !rs.Eof(); rs.MoveNext())
        ++rows;
    return rows;
}

std::string PadRight(std::string text, std::size_t width)
{
    if (text.size() < width)
        text.append(width - text.size(), ' ');
    return text;
}

std::string PadLeft(const std::string& text, std::size_t width)
{
    return text.size() < width ? std::string(width - text.size(), ' ') + text : text;
}

struct Body
{
    const char* id;
    const char* line;
};

constexpr Body kBodies[] = {
    {"SUN", "     The Sun has been observed"},     {"MOON", "     The Moon has been observed"},
    {"MERCURY", "     Mercury has been observed"}, {"VENUS", "     Venus has been observed"},
    {"MARS", "     Mars has been observed"},       {"JUPITER", "     Jupiter has been observed"},
    {"SATURN", "     Saturn has been observed"},   {"URANUS", "     Uranus has been observed"},
    {"NEPTUNE", "     Neptune has been observed"}, {"PLUTO", "     Pluto has been observed"},
};

} // namespace

bool ListsMissing(int number)
{
    return number == 4 || number == 7 || number == 77 || number == 133;
}

void Printherschel(ReportWindow& window)
{
    PrintCertificate(window, {Kind::Herschel, false});
}

void Printherschel2(ReportWindow& window)
{
    PrintCertificate(window, {Kind::Herschel, true});
}

void Printmessierreport1(ReportWindow& window)
{
    PrintCertificate(window, {Kind::Messier, false});
}

void Printmessierreport2(ReportWindow& window)
{
    PrintCertificate(window, {Kind::Messier, true});
}

void Printstat(ReportWindow& window)
{
    spread::AppState& TMM = window.Context().TMM;
    const ReportContext& context = window.Context();
    if (TMM.prefs.UseCd)
        TMM.ui.ShowMessage(kCdRomNote, kCdRomNoteTitle, "I");
    data::Database& objects = ObjectDatabase(TMM);
    data::Database& logbook = Logbook(TMM);

    PrintSurface& s = window.Surface();
    s.StartDoc();
    s.SetHeaderFont("Arial", 10);
    s.SetFont({"Arial", 14, true});
    s.Paragraph("Logbook Statistics :");
    s.Paragraph("");
    s.SetFont({"Courier New", 10});

    s.Paragraph("1. Count of total number of objects you have observed for each type of object.");
    s.Paragraph("");
    long total = 0;
    {
        // A description longer than 20 characters stands whole and pushes its count to the
        // right.
        data::Recordset types =
            objects.OpenRecordset("Select * From ValidObjectTypes", data::Snapshot);
        const data::Field type = types.Fields("ObjectType");
        const data::Field desc = types.Fields("objecttypedesc");
        for (; !types.Eof(); types.MoveNext()) {
            const long n =
                CountRows(objects, "Select * From Selvanetable where ObjectType = '" +
                                       vb::QuoteForSql(type.Text()) + "' and Observed = -1");
            total += n;
            s.Paragraph("     " + PadRight(desc.Value(), 20) + " = " +
                        PadLeft(std::to_string(n), 5));
            if (TMM.ui.Pump())
                break;
        }
    }
    for (const Body& body : kBodies) {
        data::Recordset rs = logbook.OpenRecordset(
            std::string("Select ObjectID from Logbook Where ObjectID = '") + body.id + "'",
            data::Snapshot);
        if (!rs.Eof()) {
            ++total;
            s.Paragraph(body.line);
        }
    }
    for (const auto& [catalog, name] : {std::pair{"COMET", "Comet"}, {"ASTEROID", "Asteroid"}}) {
        data::Recordset rs = logbook.OpenRecordset(
            std::string("Select distinct(ObjectID) from Logbook Where Catalog = '") + catalog + "'",
            data::Snapshot);
        for (const data::Field id = rs.Fields(0); !rs.Eof(); rs.MoveNext()) {
            ++total;
            s.Paragraph(std::string("     ") + name + " " + id.Value() + " has been observed");
        }
    }
    s.Paragraph("                               =========");
    s.Paragraph("                  Total Objects :  " + std::to_string(total));
    s.Paragraph("");

    const long messier = CountRows(objects, "Select * from Selvanetable where MessierNumber > 0 "
                                            "and Observed = -1 and catalog = '2000'");
    s.Paragraph("2. Messier Objects Observed : " +
                (messier > 0 ? std::to_string(messier) : std::string("None")));
    s.Paragraph("");
    const int herschel = CountHerschel(logbook, TMM.ui);
    s.Paragraph("3. Herschel Objects Observed : " +
                (herschel > 0 ? std::to_string(herschel) : std::string("None")));
    s.Paragraph("");

    data::Recordset last =
        logbook.OpenRecordset("Select * from Logbook Where LogType = '" +
                                  vb::QuoteForSql(TMM.prefs.Ltype) + "' Order By DateObserved Desc",
                              data::Snapshot);
    std::string date = "n/a", location = "n/a";
    if (!last.Eof()) {
        date = ShortDateText(last.Fields("DateObserved").Text(), context);
        location = Text(last.Fields("LocationObserved"));
        if (location.empty())
            location = "Not Recorded";
    }
    s.Paragraph("4. Date of Last Logged Observation : " + date);
    s.Paragraph("5. Location of Last Logged Observation : " + location);

    s.SetFooter(DataFooter(context));
    s.EndDoc();
}

} // namespace reports
