#include "reports/ReportSetup.h"

#include "services/Fault.h"
#include "services/OutputFile.h"
#include "services/Vb.h"
#include "spread/AppState.h"

#include <filesystem>
#include <fstream>
#include <sstream>

namespace reports {

namespace {

std::string ReadSettingsFile(const std::string& path)
{
    std::error_code ec;
    if (!std::filesystem::is_regular_file(path, ec))
        throw services::Fault("File not found", "");
    std::ifstream in(path, std::ios::binary);
    if (!in)
        throw services::Fault("Permission denied", "");
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

std::string& HeldSetting(data::Preferences& prefs, SettingsKind kind)
{
    return kind == SettingsKind::Database ? prefs.defReport : prefs.defReportL;
}

} // namespace

ReportSetup::ReportSetup(SettingsKind kind, spread::AppState& TMM)
    : form(DesignForm(kind)), TMM_(TMM)
{
}

const char* ReportSetup::WindowName() const
{
    return form.kind == SettingsKind::Database ? "frmRSU" : "frmRSU2";
}

void ReportSetup::Form_Load()
{
    services::Trap(TMM_.ui, std::string(WindowName()) + ".Form_Load", [&] { ReadOpeningFile(); });
}

void ReportSetup::ReadOpeningFile()
{
    const std::string held = HeldSetting(TMM_.prefs, form.kind);
    const std::string path = held.empty() ? TMM_.dir.Text(DefaultFileName(form.kind)) : held;
    ReadReportForm(ReadSettingsFile(path), form);
    fileName = path;
}

void ReportSetup::cmdNew_Click()
{
    services::Trap(TMM_.ui, std::string(WindowName()) + ".cmdNew_Click", [&] {
        for (ReportColumn& column : form.columns)
            column = ReportColumn{};
    });
}

void ReportSetup::cmdOpen_Click()
{
    const bool database = form.kind == SettingsKind::Database;
    const std::string name = TMM_.ui.AskOpenFile(
        database ? "Open Database Report" : "Open Log Report", database ? "*.Rpt" : "*.Rpl");
    if (services::vb::Trim(name).empty())
        return;
    services::Trap(TMM_.ui, std::string(WindowName()) + ".cmdOpen_Click", [&] {
        ReadReportForm(ReadSettingsFile(name), form);
        fileName = name;
    });
}

void ReportSetup::cmdSave_Click()
{
    const bool database = form.kind == SettingsKind::Database;
    const std::string filter = database ? "*.Rpt" : "*.Rpl";
    const std::string ext = database ? ".Rpt" : ".Rpl";
    std::string name = TMM_.ui.AskSaveFile(
        database ? "Save Database Report Format" : "Save Logbook Report Settings", filter, ext, "");
    if (services::vb::Trim(name).empty() || name == filter)
        return;
    const std::string upper = services::vb::UCase(name);
    if (upper.size() < 4 || upper.substr(upper.size() - 4) != services::vb::UCase(ext))
        name += ext;
    services::Trap(TMM_.ui, std::string(WindowName()) + ".cmdSave_Click", [&] {
        services::OutputFile file(name);
        file.Write(WriteReportForm(form));
        file.Close();
        fileName = name;
    });
}

bool ReportSetup::SaveApply()
{
    return services::Trap(TMM_.ui, std::string(WindowName()) + ".SaveApply", [&] {
        const std::string name =
            fileName.empty() ? TMM_.dir.Text(DefaultFileName(form.kind)) : fileName;
        services::OutputFile file(name);
        file.Write(WriteReportForm(form));
        file.Close();
        fileName = name;
        HeldSetting(TMM_.prefs, form.kind) = name;
        TMM_.settings.Save(SettingKey(form.kind), name);
    });
}

void ReportSetup::NotesClick(bool on)
{
    if (form.kind != SettingsKind::Log)
        return;
    form.columns[kNotesColumn].on = on;
    if (on)
        TMM_.ui.ShowMessage("When you select the NOTES check box, only observing notes will be "
                            "displayed.  To see other logbook information, just leave this "
                            "unchecked.",
                            "Notes only will be displayed", "I");
}

} // namespace reports
