#include "app/RsuCommand.h"

#include "app/CliOptions.h"
#include "reports/ReportSetup.h"
#include "services/ScriptedUiPort.h"
#include "services/Vb.h"

#include <optional>

namespace app {

namespace {

enum class StepKind { Open, New, Col, Line, Font, Save, Apply };

struct Step
{
    StepKind kind;
    std::string text; // Open, Save: the file; Line: the text; Font: the name
    int index = 0;    // Col
    bool on = false;  // Col
    double size = 0;  // Font
};

struct RsuArgs
{
    reports::SettingsKind kind = reports::SettingsKind::Database;
    std::vector<Step> steps;
    std::string error;
};

RsuArgs ParseRsuArgs(const std::vector<std::string>& args)
{
    RsuArgs r;
    const auto fail = [&r](std::string error) {
        r.error = std::move(error);
        return r;
    };
    if (args.empty() || (args[0] != "database" && args[0] != "log"))
        return fail("rsu needs database or log");
    r.kind = args[0] == "database" ? reports::SettingsKind::Database : reports::SettingsKind::Log;
    const int columns = reports::ColumnCount(r.kind);
    bool save = false;
    bool apply = false;
    for (std::size_t i = 1; i < args.size(); ++i) {
        const std::string& word = args[i];
        if (word == "--new" || word == "--apply") {
            r.steps.push_back({word == "--new" ? StepKind::New : StepKind::Apply, {}});
            apply = apply || word == "--apply";
            continue;
        }
        if (word != "--open" && word != "--col" && word != "--line" && word != "--font" &&
            word != "--save")
            return fail("unknown argument \"" + word + "\" of rsu");
        if (i + 1 >= args.size())
            return fail(word + " needs a value");
        const std::string& value = args[++i];
        if (word == "--open" || word == "--save") {
            if (value.empty())
                return fail(word + " needs a file name");
            r.steps.push_back({word == "--open" ? StepKind::Open : StepKind::Save, value});
            save = save || word == "--save";
        } else if (word == "--line") {
            r.steps.push_back({StepKind::Line, value});
        } else if (word == "--font") {
            const std::size_t comma = value.rfind(',');
            const std::string size = comma == std::string::npos
                                         ? std::string()
                                         : services::vb::Trim(value.substr(comma + 1));
            if (comma == std::string::npos || comma == 0 || !services::vb::IsNumeric(size) ||
                services::vb::Val(size) <= 0)
                return fail("--font takes NAME,SIZE, not \"" + value + "\"");
            r.steps.push_back(
                {StepKind::Font, value.substr(0, comma), 0, false, services::vb::Val(size)});
        } else {
            // I=ON,WIDTH; the width is everything after the first comma.
            const std::size_t equals = value.find('=');
            const std::size_t comma = value.find(',', equals == std::string::npos ? 0 : equals);
            if (equals == std::string::npos || comma == std::string::npos)
                return fail("--col takes I=ON,WIDTH, not \"" + value + "\"");
            const std::optional<int> index = WholeNumber(value.substr(0, equals));
            if (!index)
                return fail("--col needs a column number, not \"" + value.substr(0, equals) + "\"");
            if (*index < 0 || *index >= columns)
                return fail("--col " + std::to_string(*index) + " is not a column (0 to " +
                            std::to_string(columns - 1) + ")");
            const std::string on = value.substr(equals + 1, comma - equals - 1);
            if (on != "0" && on != "1")
                return fail("--col takes ON 1 or 0, not \"" + on + "\"");
            // The width box holds one line.
            if (value.find_first_of("\r\n", comma) != std::string::npos)
                return fail("--col takes a width of one line");
            r.steps.push_back({StepKind::Col, value.substr(comma + 1), *index, on == "1"});
        }
    }
    if (save && apply)
        return fail("give one of --save and --apply");
    return r;
}

// Runs one step on the window; false when it failed.
bool RunStep(reports::ReportSetup& setup, spread::AppState& TMM, const Step& step)
{
    const std::size_t errors = ErrorsShown(TMM.ui);
    auto* scripted = dynamic_cast<services::ScriptedUiPort*>(&TMM.ui);
    switch (step.kind) {
    case StepKind::Open:
    case StepKind::Save:
        if (scripted)
            scripted->fileAnswers.assign(1, step.text);
        if (step.kind == StepKind::Open)
            setup.cmdOpen_Click();
        else
            setup.cmdSave_Click();
        break;
    case StepKind::New:
        setup.cmdNew_Click();
        break;
    case StepKind::Col: {
        reports::ReportColumn& column = setup.form.columns[static_cast<std::size_t>(step.index)];
        column.width = step.text;
        // The log's notes box speaks when it is clicked on.
        if (setup.Kind() == reports::SettingsKind::Log && step.index == reports::kNotesColumn &&
            step.on != column.on)
            setup.NotesClick(step.on);
        column.on = step.on;
        break;
    }
    case StepKind::Line:
        setup.form.cboLine = step.text;
        break;
    case StepKind::Font:
        setup.form.fontName = step.text;
        setup.form.fontSize = step.size;
        break;
    case StepKind::Apply:
        return setup.SaveApply();
    }
    return ErrorsShown(TMM.ui) == errors;
}

} // namespace

std::string CheckRsuArgs(const std::vector<std::string>& args)
{
    return ParseRsuArgs(args).error;
}

int RunRsuCommand(spread::AppState& TMM, const std::vector<std::string>& args, std::ostream& out)
{
    const RsuArgs r = ParseRsuArgs(args);
    if (!r.error.empty())
        return 2;
    reports::ReportSetup setup(r.kind, TMM);
    const std::size_t errorsBefore = ErrorsShown(TMM.ui);
    setup.Form_Load();
    bool failed = ErrorsShown(TMM.ui) != errorsBefore;
    for (const Step& step : r.steps) {
        if (!RunStep(setup, TMM, step)) {
            failed = true;
            break;
        }
    }

    const std::vector<std::string>& captions = reports::ReportColumnCaptions(r.kind);
    out << "Index\tCaption\tOn\tWidth\n";
    for (std::size_t i = 0; i < setup.form.columns.size(); ++i)
        out << i << '\t' << captions[i] << '\t' << (setup.form.columns[i].on ? 1 : 0) << '\t'
            << setup.form.columns[i].width << '\n';
    out.flush();
    return failed || !out ? 1 : 0;
}

} // namespace app
