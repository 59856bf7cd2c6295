#include "spread/CommandTable.h"

#include "services/Fault.h"
#include "services/UiPort.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <stdexcept>

namespace spread {

namespace {

// Keys in the order of the comparison chain. The chain holds tolLogbook a second time, for
// editing the logbook; the first entry always wins, so the second is left out.
constexpr std::array kTools = std::to_array<CommandTool>({
    {"tollogreportnew", "My Logbook Report", "My Logbook Report", "Reports", false},
    {"tolOutside", "Outside", "Outside", "Toolbar Logbook", false},
    {"tolerrorlog", "Session Error Log", "Session Error Log", "Utilities", false},
    {"toladdnotes", "Add/Update Note For Observing Plan Object",
     "Add/Update Note For Observing Plan Object", "gridmenu Planner", false},
    {"tolNTOS", "Nearby Target Object Search", "Nearby Target Object Search", "Telescopeb", false},
    {"tolAutoBackup", "Configure Auto Logbook Backup", "Configure Auto Logbook Backup", "Logbook",
     false},
    {"tolPDA", "Send Plans To Pocket PC", "Send Plans To Pocket PC", "Planner", false},
    {"tolResetFilter", "Reset Filter", "Reset Filter", "Toolbar gridmenu", false},
    {"tolLogSpread", "Logbook Spread", "Logbook Spread", "Toolbar", false},
    {"tolInterChart", "Interactive Chart", "Interactive Chart", "Toolbar", false},
    {"tolQuickChart1", "Quick Chart 1", "Quick Chart 1", "Toolbar", false},
    {"tolQuickChart2", "Quick Chart 2", "Quick Chart 2", "Toolbar", false},
    {"tolLogbook", "Edit/View the Logbook", "Edit/View the Logbook", "Toolbar", false},
    {"tolSpread", "Spread", "Spread", "Toolbar", false},
    {"upastcom", "Update Asteroid/Comet Elements", "Update Asteroid/Comet Elements", "SolarSystem",
     false},
    {"popo", "Objects Observed By Observing Plan", "Objects Observed By Observing Plan", "Report",
     false},
    {"mnugotoweb", "Go To Selvane 2003 Website", "Go To Selvane 2003 Website", "bandinternet",
     false},
    {"mnuBoard", "Go To Selvane 2003 Message Board", "Go To Selvane 2003 Message Board",
     "bandinternet", false},
    {"mnuEGroups", "Go To Selvane 2003 Yahoo Groups", "Go To Selvane 2003 Yahoo Groups",
     "bandinternet", false},
    {"vsoall", "Send All Objects To Variable Star Observer",
     "Send All Objects To Variable Star Observer", "Ciel", false},
    {"vso", "", "Send Selected Object To Variable Star Observer", "Ciel gridmenu", false},
    {"meteor", "Meteor Showers", "Meteor Showers", "SolarSystem", false},
    {"realsky", "Real Sky Image", "Real Sky Image", "Imaging gridmenu", false},
    {"sync", "Sync", "Sync", "gridmenu Telescopeb", false},
    {"logbookez2", "EZ Logbook Update - Within Date Range", "EZ Logbook Update - Within Date Range",
     "Logbook", false},
    {"sethome", "Set As Home Target", "Set As Home Target", "gridmenu Telescopeb", false},
    {"identifyobject", "Identify Objects at Current Position",
     "Identify Objects at Current Position", "Telescopeb", false},
    {"athesummary", "Summary", "Summary", "SolarSystem", false},
    {"athesun", "SolarSystem", "SolarSystem", "SolarSystem", false},
    {"athemoon", "Moon", "Moon", "SolarSystem", false},
    {"athemercury", "Mercury", "Mercury", "SolarSystem", false},
    {"athevenus", "Venus", "Venus", "SolarSystem", false},
    {"athemars", "Mars", "Mars", "SolarSystem", false},
    {"athejupiter", "Jupiter", "Jupiter", "SolarSystem", false},
    {"athesaturn", "Saturn", "Saturn", "SolarSystem", false},
    {"atheuranus", "Uranus", "Uranus", "SolarSystem", false},
    {"atheneptune", "Neptune", "Neptune", "SolarSystem", false},
    {"athepluto", "Pluto", "Pluto", "SolarSystem", false},
    {"compactlog", "Compact and Repair Logbook", "Compact and Repair Logbook", "TableMaintenance",
     false},
    {"createtour", "Create Tour Script", "Create a custom tour script", "Telescopeb", false},
    {"fullmoon", "Dates of New and Full Moons", "Dates of New and Full Moons", "Report SolarSystem",
     false},
    {"skyrover", "Go To Skyrover Sketches", "Go To Skyrover Sketches", "Internet", false},
    {"comdat", "Compact and Repair Database", "Compact and Repair Database", "TableMaintenance",
     false},
    {"addcat", "Add New Catalog To Database", "Add New Catalog To Database", "TableMaintenance",
     false},
    {"extapp", "External Applications", "External Applications", "Utilities", false},
    {"plogone", "Print Logbook - 1 object per page", "Print Logbook - 1 object per page", "Reports",
     false},
    {"setupwizard", "Setup Wizard", "Setup Wizard", "Preferences", false},
    {"findobject", "Find", "Find", "Database Toolbar", true},
    {"scopesetup", "Scope Setup", "Scope Setup", "Telescopeb Preferences", false},
    {"Cartes du Ciel", "Cartes du Ciel", "Cartes du Ciel", "cielcharts", false},
    {"mnumoonrise", "Moonrise", "Moonrise", "SolarSystem", false},
    {"querybuilder", "Query Builder", "Query Builder", "query", true},
    {"tolQuery", "", "Query Builder", "Toolbar", true},
    {"timesignal", "Time Signals In Browser", "Time Signals In Browser", "Internet", false},
    {"atscope", "Log Sheet", "Log Sheet", "Report", false},
    {"atscopeb", "Print Blank LogSheet", "Print Blank LogSheet", "Report", false},
    {"atscopec", "Print LogSheet For All Objects On Spreadsheet",
     "Print LogSheet For All Objects On Spreadsheet", "Report", false},
    {"mnuopd", "Observing Plan Details Report", "Observing Plan Details Report", "Report gridmenu",
     false},
    {"mnufinder", "3-Panel Finder Chart", "3-Panel Finder Chart", "Report PlotChart", false},
    {"OFinder", "Finder Chart", "Finder Chart", "PlotChart", false},
    {"rpref", "Reset Preferences To Default", "Reset Preferences To Default", "Preferences", false},
    {"mnuAck", "Acknowledgements", "Acknowledgements", "Help", false},
    {"mnuFitsview", "FitsView - from NRAO/AUI", "FitsView - from NRAO/AUI", "Imaging", false},
    {"csc", "Create Slide Show Script for ACP",
     "Create a script based on objects in Selvane 99 to run in ACP", "Telescopeb", false},
    {"acpweb", "Goto the ACP Website", "Goto the ACP Website", "bandinternet", false},
    {"mnuIConfig", "Internet Configuration", "Internet Configuration", "Internet Preferences",
     false},
    {"mnuNGCOnLine", "Go To the Interactive NGC Catalog Online",
     "Go To the Interactive NGC Catalog Online", "Internet gridmenu", false},
    {"mnuDSS", "Go To Digital Sky Survey On-line", "Go To Digital Sky Survey On-line",
     "Internet Imaging", false},
    {"cspos", "Current Scope Position", "Current Scope Position", "Telescopeb", false},
    {"linkshelf", "Link Shelf", "Link Shelf", "Utilities", false},
    {"mnuComet", "Comet", "Comet", "SolarSystem", false},
    {"mnuAsteroid", "Asteroid Data", "Asteroid Data", "SolarSystem", false},
    {"mnuSolar", "Solar System Information", "Solar System Information", "SolarSystem", false},
    {"actBackLog", "Backup Logbook", "Backup Logbook", "Logbook", false},
    {"wiz1", "What's Up Wizard", "What's Up Wizard", "Planner", true},
    {"tolWUW", "What's Up", "What's Up", "Toolbar", true},
    {"wiz2", "What's Up - Messier Objects", "What's Up - Messier Objects", "Planner", false},
    {"wiz3", "What's Up - Herschel", "What's Up - Herschel", "Planner", false},
    {"imagepref", "Image", "Image", "Preferences", false},
    {"rtool", "Rebuild Toolbar Icons", "Rebuild Toolbar Icons", "Preferences", false},
    {"savegrid", "Save Current Spreadsheet", "Save Current Spreadsheet", "File", false},
    {"open", "Open Spreadsheet", "Open Spreadsheet", "File", false},
    {"scolumn", "Select Columns", "Select Columns", "Database gridmenu", true},
    {"chartsob", "Plot and Center Selected Object", "Plot and Center Selected Object",
     "svcharts gridmenu", false},
    {"cdc_chartsob", "Plot and Center Selected Object", "Plot and Center Selected Object",
     "cielcharts", false},
    {"chartpref", "Chart", "Chart", "Preferences", false},
    {"redmode", "Night Vision", "Night Vision", "Toolbar Utilities", false},
    {"synctime", "Sync Time", "Sync Time", "Utilities", false},
    {"printlist", "Report", "Report", "Report Toolbar", true},
    {"pol", "", "Print", "Toolbar", false},
    {"Spreadsheet", "Specify Spreadsheet Options", "Specify Spreadsheet Options", "Preferences",
     false},
    {"date", "Date and Time", "Date and Time", "Preferences", false},
    {"geographic", "Geographic Location", "Geographic Location", "Preferences", false},
    {"equipment", "Equipment", "Equipment", "Preferences", false},
    {"misc", "Geographic Location", "Geographic Location", "Preferences", false},
    {"record", "", "Record Observing Plan", "Planner", false},
    {"close", "Clear Observing Plan", "Clear Observing Plan", "Planner", false},
    {"closeplan", "", "Close Observing Plan", "Toolbar", false},
    {"show", "Show Objects In Plan", "Show Objects In Plan", "Planner", false},
    {"logbook", "EZ Logbook Update", "EZ Logbook Update", "Logbook", false},
    {"observed", "Show Database Objects already Observed", "Show Database Objects already Observed",
     "Database", false},
    {"messier", "Show All Messier Objects", "Show All Messier Objects", "Database", false},
    {"image", "Show Objects with Attached Image (NGC2000)",
     "Show Objects with Attached Image (NGC2000)", "Database", false},
    {"imageprocessing", "Image Processing", "Image Processing", "Imaging", false},
    {"chartstoolbar", "Star Charts", "Star Charts", "Charts Toolbar", false},
    {"charts", "Plot All Objects", "Plot All Objects", "svcharts", false},
    {"cdc_charts", "Plot and Center All Objects", "Plot and Center All Objects", "cielcharts",
     false},
    {"catalog", "", "Select Catalogs", "Database", false},
    {"apply", "", "Apply Filter", "Toolbar", false},
    {"refresh", "", "Refresh", "Toolbar", false},
    {"mnugridff", "", "Find Object Data", "gridmenu", false},
    {"viewdatst", "Structure", "Structure", "Database", false},
    {"mnudecode", "Visual Description Codes", "Visual Description Codes", "Help", false},
    {"exso", "Export Selected Objects to Ascii File", "Export Selected Objects to Ascii File",
     "Export gridmenu", false},
    {"eed", "", "Export Entire Database", "Export", false},
    {"exportexcel", "Export Selected Objects To Excel", "Export Selected Objects To Excel",
     "Export", false},
    {"exporthtml", "Export Selected Objects to HTML", "Export Selected Objects to HTML", "Export",
     false},
    {"exportsoxml", "Export Selected Objects To XML", "Export Selected Objects To XML", "Export",
     false},
    {"exportlogxml", "Export Logbook To XML", "Export Logbook To XML", "Export Logbook", false},
    {"skylist", "Export Selected Objects To SkySafari List",
     "Export Selected Objects To SkySafari List", "Export", true},
    {"obslist", "Export Selected Objects To KStars Observing List",
     "Export Selected Objects To KStars Observing List", "Export", true},
    {"fixobs", "Fix Observations", "Fix Observations", "Logbook", false},
    {"exit", "Exit", "Exit", "File Toolbar", false},
    {"mnueight", "Show All Objects Brighter than 8th Magnitude",
     "Show All Objects Brighter than 8th Magnitude", "Database", false},
    {"ccdlogs", "Maintain CCD Logbook", "Maintain CCD Logbook", "TableMaintenance", false},
    {"dqvo", "Maintain Object Database", "Maintain Object Database", "TableMaintenance", false},
    {"qvol", "Maintain Object Logbook", "Maintain Object Logbook", "TableMaintenance", false},
    {"qvoi", "Maintain Object Images", "Maintain Object Images", "TableMaintenance", false},
    {"mnumucat", "Maintain User Catalog", "Maintain User Catalog", "TableMaintenance", false},
    {"mnustoprp", "", "Stop Recording Plan", "gridmenu", false},
    {"mnuopenps", "Open Existing Plan", "Open Existing Plan", "Planner File", false},
    {"mnusaveps", "Save Current Plan", "Save Current Plan", "Planner File", true},
    {"mnueditlog", "View/Edit Logbook", "View/Edit Logbook", "Logbook", false},
    {"vlassp", "View Logbook in Spreadsheet", "View Logbook in Spreadsheet", "Logbook", false},
    {"tolLogbookGrid", "Log Grid", "Log Grid", "Toolbar", false},
    {"mnuviewo", "View Other Amateur Logbooks", "View Other Amateur Logbooks", "Logbook", false},
    {"mnuimpold", "Import Other Logs into Selvane", "Import Other Logs into Selvane", "Logbook",
     false},
    {"ilm", "", "Import Other Amateur Logs", "Logbook", false},
    {"mnuconvp", "Convert NGP Export File to Ascii Format",
     "Convert NGP Export File to Ascii Format", "Logbook", false},
    {"mnuepld", "Export Logbook To Text File", "Export Logbook To Text File", "Logbook", false},
    {"mnuppsm", "Plot Planets, Sun, and Moon", "Plot Planets, Sun, and Moon", "svcharts", true},
    {"mnuplote", "Plot Entered Coordinates", "Plot Entered Coordinates", "svcharts", false},
    {"cdc_mnuplote", "Plot Entered Coordinates", "Plot Entered Coordinates", "cielcharts", false},
    {"mnugotocon", "Go to Constellation", "Go to Constellation", "svcharts", false},
    {"cdc_mnugotocon", "Go to Constellation", "Go to Constellation", "cielcharts", false},
    {"mnusc", "Show Charts With Stars Only", "Show Charts With Stars Only", "svcharts", false},
    {"mnulun", "Lunar Map", "Lunar Map", "SolarSystem", false},
    {"mnufaoq", "Find", "Find", "gridmenu", false},
    {"mnuaddtoplan", "", "Add Object To Observing Plan", "gridmenu", true},
    {"mnuqvcs", "Object Details", "Object Details", "gridmenu", false},
    {"plotos", "", "Plot Selected Object", "PlotChart gridmenu", false},
    {"mnuppppdef", "Plot All Objects Centered on Selected Object",
     "Plot All Objects Centered on Selected Object", "svcharts gridmenu", false},
    {"cdc_mnuppppdef", "Plot All Objects Centered on Selected Object",
     "Plot All Objects Centered on Selected Object", "cielcharts", false},
    {"sortcolumn", "Sort Column in Ascending Order", "Sort Column in Ascending Order", "gridmenu",
     false},
    {"scds", "Sort Column in Descending Order", "Sort Column in Descending Order", "gridmenu",
     true},
    {"dm2", "", "Edit Object", "gridmenu", false},
    {"dm", "", "Edit Object", "Database", false},
    {"el", "", "Log This Object", "gridmenu", false},
    {"cscb", "", "Center Selected Object On Chart", "gridmenu", true},
    {"mnulinpo", "Amateur Logs", "Amateur Logs", "gridmenu", false},
    {"desdet", "Description Details", "Description Details", "gridmenu", false},
    {"ddd", "", "Decode Description", "gridmenu", false},
    {"mnucontents", "Selvane 2003 Help", "Selvane 2003 Help", "Help", false},
    {"dbs", "", "Database Credits", "Help", false},
    {"mnuabout", "About Selvane 2003", "About Selvane 2003", "Help", false},
    {"lx200cp", "LX 200 Control Panel", "LX 200 Control Panel", "Telescopeb Toolbar", false},
    {"lx200enable", "Enable The Telescope", "Enable The Telescope", "Telescopeb Toolbar", false},
    {"gotoobject", "Locate the object in the Telescope", "Locate the object in the Telescope",
     "gridmenu Telescopeb", false},
    {"sslococ", "Show Scope Location on Chart", "Show Scope Location on Chart", "Telescopeb",
     false},
    {"plotscope", "Plot Scope Location", "Plot Scope Location", "Telescopeb PlotChart", false},
    {"slideshow", "Slide Show", "Slide Show", "Telescopeb", false},
    {"scopepanel", "Telescope Control Panel", "Telescope Control Panel", "Telescopeb", false},
    {"importassistant", "Import", "Import", "Database", false},
    {"logreport", "Logbook Report - Table Format", "Logbook Report - Table Format", "Reports",
     false},
    {"messiercert", "Messier Certificate Summary", "Messier Certificate Summary", "Reports", false},
    {"messiercert2", "Messier Certificate Detail", "Messier Certificate Detail", "Reports", false},
    {"herschelcert", "Herschel Certificate Summary", "Herschel Certificate Summary", "Reports",
     false},
    {"herschelcert2", "Herschel Certificate Detail", "Herschel Certificate Detail", "Reports",
     false},
    {"stat", "Logbook Observed Statistics", "Logbook Observed Statistics", "Reports", false},
    {"messier2", "Show Messier Objects Observed", "Show Messier Objects Observed", "Database",
     false},
    {"messier3", "Show Messier Objects Not Observed", "Show Messier Objects Not Observed",
     "Database", false},
    {"herschelobs", "Show Herschel Objects Observed", "Show Herschel Objects Observed", "Database",
     false},
    {"herschelnotobs", "Show Herschel Objects Not Observed", "Show Herschel Objects Not Observed",
     "Database", false},
    {"herschelshow", "Show All Herschel Objects", "Show All Herschel Objects", "Database", false},
    {"selvaneupdates", "Check for Selvane Updates", "Check for Selvane Updates", "Internet", false},
    {"uploadlog", "Upload Logbook", "Upload Logbook", "Logbook Internet", false},
    {"tolvmoon", "Virtual Moon Atlas", "Virtual Moon Atlas", "SolarSystem", false},
});

constexpr std::array kBands = std::to_array<CommandBand>({
    {"MnuBand1", "Main Menu", ""},
    {"File", "&File", "MnuBand1"},
    {"Export", "&Export", "File"},
    {"Database", "&Database", "MnuBand1"},
    {"query", "&Query", "Database"},
    {"TableMaintenance", "&Table Maintenance", "Database"},
    {"Planner", "&Planner", "MnuBand1"},
    {"Logbook", "&Logbook", "MnuBand1"},
    {"Report", "&Reports", "MnuBand1"},
    {"Reports", "&Logbook Reports", "Report"},
    {"Charts", "&Charts", "MnuBand1"},
    {"svcharts", "&Selvane Charts", "Charts"},
    {"cielcharts", "&Cartes du Ciel", "Charts"},
    {"PlotChart", "&Plot Chart", "Charts"},
    {"SolarSystem", "&Solar System", "MnuBand1"},
    {"Telescopeb", "&Telescope", "MnuBand1"},
    {"Imaging", "&Imaging", "MnuBand1"},
    {"Internet", "&Internet", "MnuBand1"},
    {"bandinternet", "&Web Pages", "Internet"},
    {"Utilities", "&Utilities", "MnuBand1"},
    {"Ciel", "&Variable Star Observer", "Utilities"},
    {"Preferences", "P&references", "MnuBand1"},
    {"Help", "&Help", "MnuBand1"},
    {"Toolbar", "Toolbar", ""},
    {"gridmenu", "Spreadsheet", ""},
    {"barShortCuts", "Short Cuts", ""},
    {"BarStatus", "Status", ""},
});

bool EndsWith(const std::string& text, std::string_view tail)
{
    return text.size() >= tail.size() &&
           text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
}

std::string Lower(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

} // namespace

std::span<const CommandTool> CommandTable()
{
    return kTools;
}

std::span<const CommandBand> CommandBands()
{
    return kBands;
}

const CommandTool* FindTool(std::string_view key)
{
    for (const CommandTool& tool : kTools)
        if (tool.key == key)
            return &tool;
    return nullptr;
}

bool ToolInBand(const CommandTool& tool, std::string_view band)
{
    std::string_view rest = tool.bands;
    while (!rest.empty()) {
        const auto blank = rest.find(' ');
        if (rest.substr(0, blank) == band)
            return true;
        if (blank == std::string_view::npos)
            break;
        rest.remove_prefix(blank + 1);
    }
    return false;
}

std::string_view MenuText(const CommandTool& tool)
{
    return tool.caption.empty() ? tool.hint : tool.caption;
}

CommandDispatcher::CommandDispatcher(services::UiPort& ui, Context context)
    : ui_(ui), context_(std::move(context))
{
}

void CommandDispatcher::SetAction(std::string_view key, Action action)
{
    if (!FindTool(key))
        throw std::invalid_argument("No tool with the key " + std::string(key));
    actions_.insert_or_assign(std::string(key), std::move(action));
}

bool CommandDispatcher::HasAction(std::string_view key) const
{
    return actions_.find(key) != actions_.end();
}

std::vector<std::string> CommandDispatcher::NotAvailableKeys() const
{
    std::vector<std::string> keys;
    for (const CommandTool& tool : kTools)
        if (!HasAction(tool.key))
            keys.emplace_back(tool.key);
    return keys;
}

void CommandDispatcher::ab_ToolClick(const std::string& key)
{
    services::Trap(ui_, DispatchLocation, [&] { RunChain(key); });
}

void CommandDispatcher::RunChain(const std::string& key)
{
    const int currTab = context_.CurrTab ? context_.CurrTab() : 0;
    if (currTab < FirstImageTab && context_.SetGridTooltipText)
        context_.SetGridTooltipText();

    const std::string lowered = Lower(key);
    // Deliberate: both short-cut tests run, and the chain below still runs after them.
    if (EndsWith(lowered, ".pln")) {
        if (context_.OpenPlan)
            context_.OpenPlan(key);
        else
            ui_.ShowMessage(NotAvailableText, NotAvailableTitle, "I");
    }
    if (EndsWith(lowered, ".qry")) {
        if (context_.OpenQuery)
            context_.OpenQuery(key);
        else
            ui_.ShowMessage(NotAvailableText, NotAvailableTitle, "I");
    }

    const CommandTool* tool = FindTool(key);
    if (!tool)
        return;
    if (tool->needsTab && currTab >= FirstImageTab) {
        ui_.ShowMessage(NeedsTabText, NeedsTabTitle, "I");
        return;
    }
    const auto action = actions_.find(tool->key);
    if (action == actions_.end() || !action->second) {
        ui_.ShowMessage(NotAvailableText, NotAvailableTitle, "I");
        return;
    }
    action->second();
}

} // namespace spread
