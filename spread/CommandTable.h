#pragma once
// The command table of the main window and the one dispatcher every menu, tool bar and context
// menu click reaches, ab_ToolClick. The table lists the keys in the order of the comparison
// chain; keys compare case-sensitively. The window builds its command bar from the table and
// fills the dispatcher with one action per key it can perform; a key with no action yet belongs
// to a subsystem of a later version and says so.

#include <functional>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace services {
class UiPort;
}

namespace spread {

// One tool of the command bar.
struct CommandTool
{
    std::string_view key;     // the tool's Name, compared case-sensitively
    std::string_view caption; // empty when the tool has no text of its own
    std::string_view hint;    // tooltip; the caption unless the tool has a hint of its own
    std::string_view bands;   // the bands the tool stands in, separated by blanks
    bool needsTab;            // refused unless a spreadsheet tab (0 to 4) is current
};

// One band of the command bar: a menu of the main menu, a sub-menu, the tool bar, the grid's
// context menu, the short-cut list or the status band.
struct CommandBand
{
    std::string_view name;
    std::string_view caption;
    std::string_view parent; // the band whose menu holds this one; empty for a top-level band
};

// Every key, in chain order.
std::span<const CommandTool> CommandTable();
// Every band, in the order the menus stand.
std::span<const CommandBand> CommandBands();
// The first tool of the chain whose key equals key exactly; nullptr when none does.
const CommandTool* FindTool(std::string_view key);
bool ToolInBand(const CommandTool& tool, std::string_view band);
// The text a menu entry shows: the caption, or the hint for a tool with no caption.
std::string_view MenuText(const CommandTool& tool);

inline constexpr const char* NotAvailableText = "This command is not available in this version.";
inline constexpr const char* NotAvailableTitle = "Not Available";
inline constexpr const char* NeedsTabText = "Please select a spreadsheet tab first";
inline constexpr const char* NeedsTabTitle = "Invalid Usage!";
inline constexpr const char* DispatchLocation = "frmMainScreen.ab_ToolClick";
inline constexpr int FirstImageTab = 5;

// The dispatcher core, free of widgets: the window supplies the current tab, the grid-tooltip
// refresh, the two short-cut openers and one action per key.
class CommandDispatcher
{
public:
    using Action = std::function<void()>;
    using Opener = std::function<void(const std::string& key)>;

    struct Context
    {
        std::function<int()> CurrTab; // 0 to 4 spreadsheet tabs, 5 and 6 image tabs
        std::function<void()> SetGridTooltipText;
        Opener OpenPlan;  // the key into the plan selector, then cboPlan_Click
        Opener OpenQuery; // the key into the query selector, then cboQry_Click
    };

    CommandDispatcher(services::UiPort& ui, Context context);

    // Gives a key of the table its action. A key that is not in the table is a programming
    // error: it throws std::invalid_argument.
    void SetAction(std::string_view key, Action action);
    bool HasAction(std::string_view key) const;
    // The keys of the table that have no action, in chain order.
    std::vector<std::string> NotAvailableKeys() const;

    // Runs the command of a clicked tool.
    // Given: key, the tool's Name (saved plans and queries of the short-cut band by file name).
    // Status: never throws; a failure inside an action is reported and appended to the error
    //   log under DispatchLocation, and the program goes on.
    // Notes: a key ending in ".pln" or ".qry" in any case opens the plan or query; both tests are
    //   made and the chain still runs after them. A key matching nothing does nothing.
    void ab_ToolClick(const std::string& key);

private:
    void RunChain(const std::string& key);

    services::UiPort& ui_;
    Context context_;
    std::map<std::string, Action, std::less<>> actions_;
};

} // namespace spread
