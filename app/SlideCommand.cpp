#include "app/SlideCommand.h"

#include "app/CliOptions.h"
#include "app/CliScope.h"
#include "app/GridCommand.h"
#include "logbook/LogEntryForm.h"
#include "scope/SlideShow.h"

#include <iostream>
#include <optional>

namespace app {

namespace {

struct SlideStep
{
    std::string name;
    int entry = 0;                                              // pick
    std::vector<std::pair<logbook::LogField, std::string>> log; // log
};

struct SlideArgs
{
    GridArgs load;
    std::vector<SlideStep> steps;
};

std::string ParseSlideArgs(const std::vector<std::string>& args, SlideArgs& parsed)
{
    bool loadGiven = false;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& word = args[i];
        if (word == "--sql" || word == "--plan" || word == "--build") {
            if (loadGiven)
                return "give one of --sql, --build and --plan";
            if (!parsed.steps.empty())
                return word + " goes before the steps";
            loadGiven = true;
            if (word == "--build") {
                parsed.load.build = true;
                continue;
            }
            if (i + 1 >= args.size())
                return word + " needs a value";
            (word == "--sql" ? parsed.load.sql : parsed.load.plan) = args[++i];
            continue;
        }
        SlideStep step{word};
        if (word == "pick") {
            const std::optional<int> n =
                i + 1 < args.size() ? WholeNumber(args[i + 1]) : std::nullopt;
            if (!n || *n < 1)
                return "pick takes an entry number from 1";
            step.entry = *n;
            ++i;
        } else if (word == "log") {
            while (i + 1 < args.size() && args[i + 1].find('=') != std::string::npos) {
                const std::string& assignment = args[++i];
                const auto equals = assignment.find('=');
                const auto field = logbook::FindLogField(assignment.substr(0, equals));
                if (!field)
                    return "unknown log field \"" + assignment.substr(0, equals) + "\"";
                step.log.emplace_back(*field, assignment.substr(equals + 1));
            }
        } else if (word != "next" && word != "prev" && word != "on" && word != "tick" &&
                   word != "off") {
            return "unknown step \"" + word + "\" of slideshow";
        }
        parsed.steps.push_back(std::move(step));
    }
    return {};
}

void PrintState(const scope::SlideShow& show, std::ostream& out)
{
    out << show.CurrentRow << "\t" << show.shown.txtObjectID << "\t" << show.statusBar << "\n";
}

} // namespace

std::string CheckSlideArgs(const std::vector<std::string>& args)
{
    SlideArgs parsed;
    return ParseSlideArgs(args, parsed);
}

int RunSlideCommand(spread::AppState& TMM, const spread::LoadFormResult& start,
                    const std::vector<std::string>& args, std::ostream& out,
                    const astro::Clock& computerClock)
{
    SlideArgs parsed;
    if (!ParseSlideArgs(args, parsed).empty())
        return 2;
    if (LoadTab0(TMM, start, parsed.load, computerClock) != 0)
        return 1;
    TMM.CurrTab = 0;
    if (!scope::StartSlideShow(TMM))
        return 1;
    CliScope telescope(TMM, computerClock);
    scope::SlideShow show(TMM, telescope.context);
    show.Load();
    out << "Row\tObject\tStatus\n";
    PrintState(show, out);
    for (const SlideStep& step : parsed.steps) {
        if (step.name == "next") {
            show.cmdNext();
        } else if (step.name == "prev") {
            show.cmdPrevious();
        } else if (step.name == "pick") {
            show.cbogoto(step.entry);
        } else if (step.name == "log") {
            for (const auto& [field, value] : step.log)
                if (std::string* text = show.log.Text(field))
                    *text = value;
            show.cmdAddLog();
        } else if (step.name == "on") {
            show.cmdOn();
        } else if (step.name == "tick") {
            show.Timer1();
        } else {
            show.cmdOff();
        }
        PrintState(show, out);
    }
    out.flush();
    return ErrorsShown(TMM.ui) > 0 ? 1 : 0;
}

} // namespace app
