#include "app/OutsideCommand.h"

#include "app/LogCommand.h"
#include "logbook/OutsideForm.h"
#include "services/Fault.h"
#include "services/ScriptedUiPort.h"
#include "services/Vb.h"

#include <iostream>
#include <optional>

namespace app {

namespace {

namespace vb = services::vb;
using logbook::OutsideButton;
using logbook::OutsideControl;

struct OutsideArgs
{
    long long obsn = -1;
    std::optional<std::string> object;
    std::vector<bool> answers;
    std::string error;
};

OutsideArgs ParseOutsideArgs(const std::vector<std::string>& args)
{
    OutsideArgs a;
    for (std::size_t i = 0; i < args.size() && a.error.empty(); ++i) {
        const std::string& arg = args[i];
        const bool hasValue = i + 1 < args.size();
        if (arg == "--answer") {
            if (!hasValue || (args[i + 1] != "yes" && args[i + 1] != "no"))
                a.error = "--answer takes yes or no";
            else
                a.answers.push_back(args[++i] == "yes");
        } else if (arg == "--obsn") {
            const std::string n = hasValue ? args[i + 1] : std::string();
            if (n.empty() || n.size() > 12 || n.find_first_not_of("0123456789") != n.npos ||
                std::stoll(n) == 0)
                a.error = "--obsn needs an observation number";
            else
                a.obsn = std::stoll(args[++i]);
        } else if (arg == "--object") {
            if (!hasValue)
                a.error = "--object needs an object id";
            else
                a.object = args[++i];
        } else {
            a.error = "unknown argument \"" + arg + "\" of outside";
        }
    }
    return a;
}

enum class Act {
    Type,
    Key,
    Pick,
    List,
    Grid,
    Print,
    PrintGrid,
};

struct Step
{
    Act act;
    int line = 0;
    const OutsideControl* control = nullptr; // Type
    const OutsideButton* button = nullptr;
    std::string buttonText; // as the script names it
    std::string text;       // Type's TEXT, Pick's ENTRY
    bool hasEntry = false;
    int keyCode = 0;
    int row = 0;
};

// \t, \n, \r and \\ of a typed text; any other backslash stands for itself.
std::string Unescaped(const std::string& text)
{
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char next = i + 1 < text.size() ? text[i + 1] : '\0';
        if (text[i] == '\\' && (next == 't' || next == 'n' || next == 'r' || next == '\\')) {
            out += next == 't' ? '\t' : next == 'n' ? '\n' : next == 'r' ? '\r' : '\\';
            ++i;
        } else {
            out += text[i];
        }
    }
    return out;
}

// The button a text begins with, the longest caption or key first ("Exp Mode x"), and the
// rest behind it; nullptr when it begins with none.
const OutsideButton* LeadingButton(const std::string& text, std::string& name, std::string& rest)
{
    const OutsideButton* found = nullptr;
    for (const OutsideButton& b : logbook::OutsideButtons()) {
        for (const std::string& candidate : {std::string(b.caption), std::string(b.key)}) {
            if (text.size() < candidate.size() ||
                !vb::SameText(text.substr(0, candidate.size()), candidate) ||
                (text.size() > candidate.size() && text[candidate.size()] != ' ') ||
                (found && candidate.size() <= name.size()))
                continue;
            found = &b;
            name = text.substr(0, candidate.size());
            rest = vb::Trim(text.substr(candidate.size()));
        }
    }
    return found;
}

// One line of the script; the usage error when it names no known control, key, button or
// action.
std::string ParseStep(const std::string& line, Step& step)
{
    const std::string word = line.substr(0, line.find(' '));
    const std::string rest = line.size() > word.size() ? line.substr(word.size() + 1) : "";
    if (line[0] == '^') {
        if (line.size() != 2 || !std::isalnum(static_cast<unsigned char>(line[1])))
            return "unknown key \"" + line + "\"";
        step.act = Act::Key;
        step.keyCode = std::toupper(static_cast<unsigned char>(line[1]));
        return {};
    }
    if (word == "pick" || word == "list") {
        std::string entry;
        step.button = LeadingButton(vb::Trim(rest), step.buttonText, entry);
        if (!step.button)
            return "unknown button \"" + vb::Trim(rest) + "\"";
        step.act = word == "pick" ? Act::Pick : Act::List;
        if (step.act == Act::List && !entry.empty())
            return "unknown button \"" + vb::Trim(rest) + "\"";
        step.hasEntry = !entry.empty();
        step.text = entry;
        return {};
    }
    if (word == "grid") {
        const std::string n = vb::Trim(rest);
        if (n.empty() || n.size() > 9 || n.find_first_not_of("0123456789") != n.npos ||
            std::stoi(n) == 0)
            return "grid needs a row number";
        step.act = Act::Grid;
        step.row = std::stoi(n);
        return {};
    }
    if (vb::Trim(line) == "print") {
        step.act = Act::Print;
        return {};
    }
    if (word == "print") {
        if (vb::Trim(rest) != "grid")
            return "unknown action \"" + line + "\"";
        step.act = Act::PrintGrid;
        return {};
    }
    const auto eq = line.find('=');
    if (eq == std::string::npos)
        return "unknown action \"" + line + "\"";
    const std::string name = vb::Trim(line.substr(0, eq));
    step.act = Act::Type;
    step.text = Unescaped(line.substr(eq + 1));
    // The number is the window's to give: the box takes no focus and no typing.
    if (vb::SameText(name, "txtObs"))
        return "txtObs takes no typing";
    step.control = logbook::FindOutsideControl(name);
    if (!step.control)
        return "unknown control \"" + name + "\"";
    const bool check = step.control->field == logbook::LogField::chkdframe ||
                       step.control->field == logbook::LogField::chkFfield;
    if (check && !vb::SameText(step.text, "True") && !vb::SameText(step.text, "False"))
        return name + " takes True or False";
    return {};
}

// The shown row an ENTRY names: the same text, else the same text trimmed, in any case.
std::optional<std::string> ListedRow(const std::vector<std::string>& rows, const std::string& entry)
{
    for (const std::string& row : rows)
        if (row == entry)
            return row;
    for (const std::string& row : rows)
        if (vb::SameText(vb::Trim(row), vb::Trim(entry)))
            return row;
    return std::nullopt;
}

int FaultsShown(const services::UiPort& ui)
{
    const auto* scripted = dynamic_cast<const services::ScriptedUiPort*>(&ui);
    if (!scripted)
        return 0;
    int n = 0;
    for (const auto& shown : scripted->shown)
        n += shown.message.ShortMessage == "The Following Error Has Occurred";
    return n;
}

// Runs one step; false when it failed.
bool RunStep(logbook::OutsideForm& form, logbook::LogContext& context, const Step& step,
             std::ostream& out)
{
    const OutsideControl* target =
        step.button ? logbook::FindOutsideControl(step.button->control) : nullptr;
    switch (step.act) {
    case Act::Type:
        form.tab = step.control->tab;
        form.SetText(*step.control, step.text);
        return form.LostFocus(*step.control);
    case Act::Key:
        form.KeyDown(step.keyCode);
        return true;
    case Act::Pick:
    case Act::List: {
        form.tab = target->tab;
        const logbook::OutsidePopupList list =
            logbook::LoadOutsidePopup(context, step.button->key, form.Text(*target));
        if (step.act == Act::List) {
            for (const std::string& row : list.rows)
                out << step.buttonText << "\t" << logbook::EscapedForLine(row) << "\n";
            return true;
        }
        if (!step.hasEntry)
            return true;
        const auto row = ListedRow(list.rows, step.text);
        if (!row) {
            std::cerr << "selvane-cli: \"" << step.text << "\" is not in the list of "
                      << step.buttonText << "\n";
            return false;
        }
        form.SetText(*target, *row);
        return true;
    }
    case Act::Grid:
        if (form.KeyDown('G') != logbook::OutsideKey::Grid)
            return true; // Ctrl+G belongs to the first tab; elsewhere the keys do nothing
        if (!form.GridEnter(step.row)) {
            std::cerr << "selvane-cli: no row " << step.row << " in the grid\n";
            return false;
        }
        return true;
    case Act::Print:
        out << logbook::OutsideFormText(form);
        return true;
    case Act::PrintGrid:
        out << logbook::OutsideGridText(form);
        return true;
    }
    return true;
}

} // namespace

std::string CheckOutsideArgs(const std::vector<std::string>& args)
{
    return ParseOutsideArgs(args).error;
}

int RunOutsideCommand(spread::AppState& TMM, const std::vector<std::string>& args,
                      std::istream& script, std::ostream& out, const astro::Clock& clock)
{
    const OutsideArgs a = ParseOutsideArgs(args);
    if (!a.error.empty())
        return 2;

    std::vector<Step> steps;
    std::string line;
    bool usageError = false;
    for (int number = 1; std::getline(script, line); ++number) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (vb::Trim(line).empty() || line[0] == '#')
            continue;
        Step step;
        step.line = number;
        if (const std::string error = ParseStep(line, step); !error.empty()) {
            std::cerr << "selvane-cli: line " << number << ": " << error << "\n";
            usageError = true;
            continue;
        }
        steps.push_back(step);
    }
    if (usageError)
        return 2;

    QueueAnswers(TMM, a.answers);
    if (!LogbookOpen(TMM))
        return 1;

    data::CurrentObject current;
    if (a.object)
        current.id = *a.object;
    logbook::LogContext context{
        TMM.ui, TMM.logbookDb.get(), TMM.objectDb.get(), TMM.prefs, TMM.dir, current, clock};
    logbook::OutsideForm form(context, TMM.settings);
    form.OBSN = a.obsn;
    form.stored = [&out](const char* what, long long number) {
        out << what << "\t" << number << "\n";
    };
    bool failed = false;
    const bool ran = services::Trap(TMM.ui, "selvane-cli.outside", [&] {
        const int faults = FaultsShown(TMM.ui);
        form.Form_Load();
        for (const Step& step : steps)
            if (!RunStep(form, context, step, out))
                failed = true;
        failed = failed || FaultsShown(TMM.ui) != faults;
    });
    out.flush();
    return ran && !failed ? 0 : 1;
}

} // namespace app
