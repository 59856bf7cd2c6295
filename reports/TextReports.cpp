#include "reports/TextReports.h"

#include "astro/Moon.h"
#include "astro/Time.h"
#include "logbook/LogEntryForm.h"
#include "services/Fault.h"
#include "services/RtfReader.h"
#include "services/Vb.h"
#include "spread/AppState.h"
#include "spread/PortFaults.h"

#include <QDate>

#include <fstream>
#include <sstream>

namespace reports {

namespace vb = services::vb;

namespace {

constexpr const char* kCrLf = "\r\n";

FontSpec Arial(double size, bool bold = false)
{
    return {"Arial", size, bold};
}

spread::AppState& TMM(ReportWindow& window)
{
    return window.Context().TMM;
}

std::string ReadFile(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios::binary);
    if (!in)
        throw services::Fault("File not found", "");
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

// A date of the year as "00" fields in the order of the regional short date, joined by the
// date separator.
std::string PhaseDate(const astro::CalendarDate& date, const vb::Regional& regional)
{
    const std::string day = vb::Format(static_cast<int>(date.day), "00");
    const std::string month = vb::Format(date.month, "00");
    const std::string year = vb::Format(date.year, "0000");
    const std::string& sep = regional.datesep;
    const std::string pattern = vb::LCase(regional.dateformat);
    const std::size_t d = pattern.find('d'), m = pattern.find('m'), y = pattern.find('y');
    if (y < d && y < m)
        return year + sep + month + sep + day;
    return d < m ? day + sep + month + sep + year : month + sep + day + sep + year;
}

// One logbook record of reports 1111 and 1112.
void PrintLogRecord(PrintSurface& s, data::Recordset& rs, bool information,
                    const ReportContext& context)
{
    const auto text = [&](const char* name) { return rs.Fields(name).Value(); };
    std::string object = "Object ID: " + text("ObjectID");
    if (rs.HasField("OtherID") && !vb::Trim(text("OtherID")).empty())
        object += " - " + text("OtherID");
    s.SetFont(Arial(12, information));
    s.Paragraph(object);
    s.SetFont(Arial(10));
    s.Paragraph("Date Obs : " + ShortDateText(text("DateObserved"), context) + " " +
                text("TimeObserved") + "   Location : " + text("LocationObserved"));
    s.Paragraph("Sky Conditions :  Transparency = " + text("Transparency") +
                "  Seeing = " + text("Seeing"));
    s.Paragraph("Equipment : " + text("equipmentused"));
    const std::string notes = text("ObservationText");
    if (information) {
        const std::string plain = logbook::RichPlainText(notes);
        if (!vb::Trim(plain).empty())
            s.Paragraph(plain);
        // Deliberate: the rule of 146 dashes is written at 8 points, where it fits the width
        // of a portrait page on one line instead of breaking into a second, short one.
        s.SetFont(Arial(8));
        s.Paragraph(std::string(146, '-'));
    } else {
        s.RichText(notes);
    }
    s.Paragraph("");
}

} // namespace

void PrintTextDocument(ReportWindow& window)
{
    PrintSurface& s = window.Surface();
    const int number = window.ReportNumber;
    const char* name = number == 1 ? "HelpFlat.rtf" : "DataSt.rtf";
    const std::string text = ReadFile(TMM(window).dir.File(name));
    s.StartDoc();
    s.SetHeaderFont("Arial", 10);
    s.SetHeader(std::string(kCrLf) + kProductLine + kCrLf);
    s.SetFooter(NotesFooter());
    s.SetFont(number == 6 ? FontSpec{"Courier New", 10} : Arial(10));
    s.RichText(services::IsRtf(text) ? services::RtfToHtml(text) : text);
    s.EndDoc();
}

void PrintWindowText(ReportWindow& window)
{
    PrintSurface& s = window.Surface();
    s.StartDoc();
    s.SetHeaderFont("Arial", 10);
    s.SetHeader(window.ObjectID() + kCrLf);
    s.SetFooter(NotesFooter());
    s.SetFont(Arial(10));
    const std::string& text = window.Context().windowText;
    if (window.ReportNumber == 11)
        s.RichText(text);
    else
        s.Paragraph(text);
    s.EndDoc();
}

void PrintEntryNotes(ReportWindow& window)
{
    const logbook::LogEntryForm* entry = window.Context().entry;
    if (entry == nullptr) {
        TMM(window).ui.ShowMessage("Please open an observation of the logbook first",
                                   "Invalid Usage", "I");
        return;
    }
    const logbook::LogFields& f = entry->f;
    std::string header, text;
    switch (window.ReportNumber) {
    case 17:
        header = "Observation Text For Object " + f.txtObjectID + " ";
        text = f.rchNotes;
        break;
    case 18:
        header = "Session Notes ";
        text = f.RichTextBox1;
        break;
    case 19:
        header = "Observing Notes ";
        text = f.rchNotes;
        break;
    default:
        header = "CCD Notes ";
        text = f.rchNotesccd;
        break;
    }
    PrintSurface& s = window.Surface();
    s.StartDoc();
    s.SetHeaderFont("Arial", 10);
    s.SetHeader(header);
    s.SetFooter(NotesFooter());
    s.SetFont(Arial(10));
    s.RichText(text);
    s.EndDoc();
}

void calcfullmoon(ReportWindow& window)
{
    spread::AppState& state = TMM(window);
    const std::string answer =
        state.ui.InputBox("What year would you like to calculate?", state.prefs.ProgramName, "");
    const double year = vb::Val(answer);
    if (year < 1900) {
        state.ui.ShowMessage("Please enter a year after 1900", "Invalid Input!", "E");
        return;
    }
    spread::PortFaults faults(state.ui);
    const std::vector<astro::LunarPhase> phases = astro::GetMoonPhase(year, faults);
    const vb::Regional regional = data::RegionalOf(state.prefs);
    PrintSurface& s = window.Surface();
    s.StartDoc();
    s.SetHeaderFont("Arial", 10);
    s.SetFooter(DataFooter(window.Context()));
    s.SetFont(Arial(14, true));
    s.Paragraph("Dates of Full and New Moons - " + vb::Format(year, "0"));
    s.Paragraph("");
    s.SetFont(Arial(10));
    for (const astro::LunarPhase& phase : phases) {
        const astro::CalendarDate date = astro::JDToCalendar(phase.jd, faults);
        if (faults.count > 0)
            break;
        // Deliberate: the search runs over more than the year; only the asked year's dates
        // belong under its heading.
        if (date.year != static_cast<int>(year))
            continue;
        s.Paragraph(std::string(phase.full ? "Full Moon on " : "New Moon on ") +
                    PhaseDate(date, regional));
    }
    s.EndDoc();
}

void PrintNotes(ReportWindow& window)
{
    spread::AppState& state = TMM(window);
    PrintSurface& s = window.Surface();
    const bool information = window.ReportNumber == 1112;
    if (!information && !state.ui.Ask("Click Yes to print ALL notes or No to print selected note",
                                      "NOTES PRINTOUT", false)) {
        s.StartDoc();
        s.SetHeaderFont("Arial", 10);
        s.SetFooter(NotesFooter());
        s.SetHeader(std::string("NOTES FROM LOGBOOK:") + kCrLf);
        s.SetFont(Arial(12, true));
        s.Paragraph(window.ObjectID());
        s.Paragraph("");
        s.Paragraph("");
        s.SetFont(Arial(10));
        s.RichText(window.RichText());
        s.EndDoc();
        return;
    }
    if (state.logbookDb == nullptr)
        throw services::Fault("The logbook is not open", "");
    const std::string sql = information
                                ? window.Notes()
                                : window.Notes() + " Order By DateObserved Desc, Logbook.ObjectID";
    data::Recordset rs = state.logbookDb->OpenRecordset(sql, data::Snapshot);
    s.StartDoc();
    s.SetHeaderFont("Arial", 10);
    s.SetFooter(NotesFooter());
    s.SetHeader(std::string(information ? "MY LOGBOOK INFORMATION:" : "NOTES FROM LOGBOOK:") +
                kCrLf);
    for (int n = 1; !rs.Eof(); rs.MoveNext(), ++n) {
        PrintLogRecord(s, rs, information, window.Context());
        if (n % 50 == 0 && state.ui.Pump())
            break;
    }
    s.EndDoc();
}

} // namespace reports
