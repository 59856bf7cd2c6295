#include "app/ScopeCommand.h"

#include "app/CliOptions.h"
#include "app/CliScope.h"
#include "app/GridCommand.h"
#include "astro/Text.h"
#include "data/Preferences.h"
#include "scope/Discovery.h"
#include "scope/Speech.h"
#include "scope/TelescopeStuff.h"
#include "services/Fault.h"
#include "services/ScriptedUiPort.h"

#include <iostream>
#include <map>
#include <optional>
#include <set>

namespace app {

namespace {

// One line of the command: what tab 0 loads, the row clicked, the action and its arguments.
struct ScopeLine
{
    enum class List
    {
        Kept, // the start list, or what an earlier line loaded
        Sql,
        Build,
        Plan,
        Object,
    };
    List list = List::Kept;
    std::string value; // the SQL, the plan file or the ObjectID
    std::optional<std::string> catalog;
    std::optional<int> row;
    std::vector<std::string> indi, alpaca;
    std::string action;
    std::vector<std::string> args;
};

std::optional<int> PositiveInt(const std::string& text)
{
    const std::optional<int> n = WholeNumber(text);
    return n && *n >= 1 ? n : std::nullopt;
}

// Reads a line's words; topLevel allows the action "-".
std::string ParseScopeLine(const std::vector<std::string>& words, bool topLevel, ScopeLine& line)
{
    static const std::set<std::string> actions{"devices", "choose",   "enable", "goto",
                                               "slew",    "sync",     "position"};
    std::vector<std::string> positional;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string& word = words[i];
        const bool takesValue = word == "--sql" || word == "--plan" || word == "--object" ||
                                word == "--catalog" || word == "--row" || word == "--indi" ||
                                word == "--alpaca";
        if (!takesValue && word != "--build") {
            if (word.starts_with("--"))
                return "unknown option \"" + word + "\" of scope";
            positional.push_back(word);
            continue;
        }
        std::string value;
        if (takesValue) {
            if (i + 1 >= words.size())
                return word + " needs a value";
            value = words[++i];
        }
        if (word == "--sql" || word == "--build" || word == "--plan" || word == "--object") {
            if (line.list != ScopeLine::List::Kept)
                return "give one of --sql, --build, --plan and --object";
            line.list = word == "--sql"     ? ScopeLine::List::Sql
                        : word == "--build" ? ScopeLine::List::Build
                        : word == "--plan"  ? ScopeLine::List::Plan
                                            : ScopeLine::List::Object;
            line.value = value;
        } else if (word == "--catalog") {
            line.catalog = value;
        } else if (word == "--row") {
            line.row = PositiveInt(value);
            if (!line.row)
                return "--row takes a row number from 1, not \"" + value + "\"";
        } else {
            (word == "--indi" ? line.indi : line.alpaca).push_back(value);
        }
    }
    if (line.catalog && line.list != ScopeLine::List::Object)
        return "--catalog goes with --object";
    if (positional.empty())
        return "scope needs an action";
    line.action = positional.front();
    line.args.assign(positional.begin() + 1, positional.end());
    if (!actions.contains(line.action) && !(topLevel && line.action == "-"))
        return "unknown action \"" + line.action + "\" of scope";
    if ((!line.indi.empty() || !line.alpaca.empty()) && line.action != "devices")
        return "--indi and --alpaca go with devices";
    const std::size_t wanted = line.action == "choose" ? 1 : line.action == "slew" ? 6 : 0;
    if (line.args.size() != wanted)
        return line.action + " takes " +
               (wanted == 0 ? std::string("no arguments")
                            : wanted == 1 ? std::string("one identifier")
                                          : std::string("six numbers: H M S D M S"));
    if (line.action == "slew")
        for (const std::string& number : line.args)
            if (!astro::ParseNumber(number))
                return "slew takes numbers, not \"" + number + "\"";
    return {};
}

std::string TrueFalse(bool value)
{
    return value ? "True" : "False";
}

std::string Fixed(const std::optional<double>& value, int decimals)
{
    return value ? FixedDecimals(*value, decimals) : std::string();
}

// The menu of the command line: the caption of lx200enable and the tools' states, for the run.
class CliTelescopeMenu : public scope::TelescopeMenu
{
public:
    std::string Caption() const override { return caption_; }
    void SetCaption(const std::string& caption) override { caption_ = caption; }
    void SetToolEnabled(std::string_view band, std::string_view key, bool enabled) override
    {
        enabled_[std::string(band) + "/" + std::string(key)] = enabled;
    }
    void Redraw() override {}

    bool Enabled(std::string_view band, std::string_view key) const
    {
        const auto found = enabled_.find(std::string(band) + "/" + std::string(key));
        return found != enabled_.end() && found->second;
    }

private:
    std::string caption_;
    std::map<std::string, bool> enabled_;
};

// What the drivers of one action were given and answered.
struct DriverWatch
{
    std::optional<double> targetRa, targetDec, ra, dec;
};

// A driver seen from outside: every call goes to the real one, the targets it is given and the
// position it answers are noted.
class WatchedTelescope : public scope::Telescope
{
public:
    WatchedTelescope(std::unique_ptr<scope::Telescope> driver, DriverWatch& watch)
        : driver_(std::move(driver)), watch_(watch)
    {
    }
    const std::string& Identifier() const override { return driver_->Identifier(); }
    void SetConnected(bool connected) override { driver_->SetConnected(connected); }
    bool Connected() const override { return driver_->Connected(); }
    bool CanSlew() override { return driver_->CanSlew(); }
    bool CanSync() override { return driver_->CanSync(); }
    void SetTargetDeclination(double degrees) override
    {
        driver_->SetTargetDeclination(degrees);
        watch_.targetDec = degrees;
    }
    void SetTargetRightAscension(double hours) override
    {
        driver_->SetTargetRightAscension(hours);
        watch_.targetRa = hours;
    }
    void SlewToTarget(const scope::KeepGoing& keepGoing) override
    {
        driver_->SlewToTarget(keepGoing);
    }
    void SyncToTarget() override { driver_->SyncToTarget(); }
    double RightAscension() override { return *(watch_.ra = driver_->RightAscension()); }
    double Declination() override { return *(watch_.dec = driver_->Declination()); }
    std::optional<double> Altitude() override { return driver_->Altitude(); }
    std::optional<double> Azimuth() override { return driver_->Azimuth(); }
    void AbortSlew() override { driver_->AbortSlew(); }
    void MoveAxis(scope::Direction direction, bool moving) override
    {
        driver_->MoveAxis(direction, moving);
    }
    std::optional<bool> Tracking() override { return driver_->Tracking(); }
    void SetTracking(bool on) override { driver_->SetTracking(on); }
    void Park() override { driver_->Park(); }
    void Unpark() override { driver_->Unpark(); }

private:
    std::unique_ptr<scope::Telescope> driver_;
    DriverWatch& watch_;
};

// The command's run: the telescope state, the toggle and the clicked row live as long as it.
class ScopeSession
{
public:
    ScopeSession(spread::AppState& TMM, const spread::LoadFormResult& start, std::ostream& out,
                 const astro::Clock& computerClock)
        : TMM_(TMM), start_(start), out_(out), clock_(computerClock), scope_(TMM, computerClock),
          context_(scope_.context)
    {
        scope_.layer.MakeDriver = [this](std::string_view identifier) {
            std::unique_ptr<scope::Telescope> driver = scope::MakeTelescope(identifier);
            return driver ? std::make_unique<WatchedTelescope>(std::move(driver), watch_)
                          : std::unique_ptr<scope::Telescope>();
        };
        scope_.layer.Choose = [this](const std::string&) { return answer_; };
        scope::ResetTelescopeMenu(menu_, TMM.dir.path);
    }

    // Runs one line; its status.
    int Run(const ScopeLine& line)
    {
        if (const int status = Select(line); status != 0)
            return status;
        watch_ = {};
        const std::size_t errorsBefore = ErrorsShown(TMM_.ui);
        const int status = Act(line);
        return ErrorsShown(TMM_.ui) > errorsBefore ? std::max(status, 1) : status;
    }

    // Loads tab 0 when the line asks, and clicks its row when the line or its action needs one.
    // Returned: 0, or 1 when the list could not be loaded or has no such row.
    int Select(const ScopeLine& line)
    {
        if (line.list != ScopeLine::List::Kept) {
            if (const int status = Load(line); status != 0)
                return status;
            row_ = 1;
        }
        if (line.row)
            row_ = *line.row;
        if (line.list == ScopeLine::List::Kept && !line.row && !RowAction(line))
            return 0;
        if (!listLoaded_)
            return 1;
        if (row_ > TMM_.grids[0].MaxRows()) {
            std::cerr << "selvane-cli: no row " << row_ << " in the list\n";
            return 1;
        }
        return 0;
    }

private:
    static bool RowAction(const ScopeLine& line)
    {
        return line.action == "goto" || line.action == "sync";
    }

    int Load(const ScopeLine& line)
    {
        listLoaded_ = false;
        GridArgs args;
        args.build = line.list == ScopeLine::List::Build;
        args.plan = line.list == ScopeLine::List::Plan ? line.value : std::string();
        args.sql = line.list == ScopeLine::List::Sql      ? line.value
                   : line.list == ScopeLine::List::Object ? ObjectSql(line)
                                                          : std::string();
        if (LoadTab0(TMM_, start_, args, clock_) != 0)
            return 1;
        listLoaded_ = true;
        if (line.list == ScopeLine::List::Object && TMM_.grids[0].MaxRows() == 0) {
            std::cerr << "selvane-cli: no object \"" << line.value << "\""
                      << (line.catalog ? " in catalogue \"" + *line.catalog + "\"" : "")
                      << "\n";
            return 1;
        }
        return 0;
    }

    static std::string Quoted(const std::string& text)
    {
        std::string quoted = "'";
        for (const char c : text)
            quoted += c == '\'' ? std::string("''") : std::string(1, c);
        return quoted + "'";
    }

    static std::string ObjectSql(const ScopeLine& line)
    {
        std::string sql = "Select * From SelvaneTable WHERE ObjectID = " + Quoted(line.value);
        if (line.catalog)
            sql += " and Catalog = " + Quoted(*line.catalog);
        return sql;
    }

    scope::Selection Selected() const { return RowSelection(TMM_.grids[0], row_); }

    int Act(const ScopeLine& line)
    {
        const std::string& action = line.action;
        if (action == "devices")
            return Devices(line);
        if (action == "choose")
            return Choose(line.args[0]);
        if (action == "enable")
            return Enable();
        if (action == "goto") {
            const scope::Selection selection = Selected();
            const scope::GotoResult result = scope::gotoobject(context_, selection);
            PrintSlew(selection.SelectedObjectID, result.strings, result.result);
            return 0;
        }
        if (action == "slew") {
            const auto n = [&](int i) { return services::vb::Val(line.args[i]); };
            const scope::SlewStrings strings =
                scope::SolarSystemSlewStrings({n(0), n(1), n(2)}, {n(3), n(4), n(5)});
            PrintSlew("", strings, scope::SlewTelescope(context_, strings));
            return 0;
        }
        if (action == "sync") {
            const scope::Selection cells = Selected();
            const bool aligned = scope::SyncScope(context_, cells.SelectedRA, cells.SelectedDec);
            out_ << "Object\tTargetRA\tTargetDec\tResult\n"
                 << cells.SelectedObjectID << "\t" << Fixed(watch_.targetRa, 6) << "\t"
                 << Fixed(watch_.targetDec, 6) << "\t" << TrueFalse(aligned) << "\n";
            return aligned ? 0 : 1;
        }
        return Position();
    }

    int Devices(const ScopeLine& line)
    {
        std::vector<std::string> indi = line.indi, alpaca = line.alpaca;
        if (indi.empty() && alpaca.empty()) {
            indi.push_back(TMM_.prefs.indiserver);
            alpaca.push_back(TMM_.prefs.alpacadiscovery);
        }
        const scope::Discovery found = scope::DiscoverTelescopes(indi, alpaca);
        out_ << "Identifier\tDevice\n";
        for (const scope::DeviceEntry& device : found.devices)
            out_ << device.identifier << "\t" << device.device << "\n";
        for (const std::string& problem : found.problems)
            std::cerr << "selvane-cli: " << problem << "\n";
        return found.problems.empty() ? 0 : 1;
    }

    int Choose(const std::string& answer)
    {
        answer_ = answer;
        scope::scopesetup(context_);
        const bool saved = services::Trap(TMM_.ui, scope::kChooserLocation, [&] {
            data::SavePreferences(TMM_.prefs, TMM_.settings);
            TMM_.settings.Sync();
        });
        out_ << "telescopetype\tDriverType\n"
             << TMM_.prefs.telescopetype << "\t" << TMM_.prefs.DriverType << "\n";
        return saved ? 0 : 1;
    }

    int Enable()
    {
        const bool enabling = !scope::IsTelescopeEnabled(menu_);
        scope::lx200enable(context_, menu_);
        out_ << "Tool\tState\ncaption\t" << menu_.Caption() << "\n";
        // lx200cp stands in two bands and both follow the same rule; the panel is ours.
        std::set<std::string_view> printed;
        for (const scope::TelescopeTool& tool : scope::kTelescopeTools)
            if (tool.key != "scopepanel" && printed.insert(tool.key).second)
                out_ << tool.key << "\t" << TrueFalse(menu_.Enabled(tool.band, tool.key)) << "\n";
        return enabling && !scope::IsTelescopeEnabled(menu_) ? 1 : 0;
    }

    void PrintSlew(const std::string& object, const scope::SlewStrings& strings, bool result)
    {
        out_ << "Object\tRAh\tRAm\tDecd\tDecm\tTargetRA\tTargetDec\tResult\n"
             << object << "\t" << strings.raHours << "\t" << strings.raMinutes << "\t"
             << strings.decDegrees << "\t" << strings.decMinutes << "\t"
             << Fixed(watch_.targetRa, 6) << "\t" << Fixed(watch_.targetDec, 6) << "\t"
             << TrueFalse(result) << "\n";
    }

    int Position()
    {
        const scope::ScopePosShown shown = scope::GetPos(context_);
        const scope::ScopePosLabels labels = shown.labels.value_or(scope::ScopePosLabels{});
        out_ << "Title\tRA\tDec\tAlt\tAzm\tRAHours\tDecDegrees\n"
             << scope::ScopePosTitle(TMM_.prefs.telescopetype) << "\t" << labels.lblRa << "\t"
             << labels.lblDec << "\t" << labels.lblAlt << "\t" << labels.lblAzm << "\t"
             << Fixed(watch_.ra, 9) << "\t" << Fixed(watch_.dec, 9) << "\n";
        return shown.position.result ? 0 : 1;
    }

    spread::AppState& TMM_;
    const spread::LoadFormResult& start_;
    std::ostream& out_;
    const astro::Clock& clock_;
    CliScope scope_;
    scope::ScopeContext& context_;
    CliTelescopeMenu menu_;
    DriverWatch watch_;
    std::string answer_; // what the chooser answers
    bool listLoaded_ = start_.startListLoaded;
    int row_ = 1;
};

} // namespace

scope::Selection RowSelection(const spread::Grid& grid, int row)
{
    const auto cell = [&](int col) { return std::string(grid.Text(row, col)); };
    return {cell(7), cell(8), cell(9), cell(spread::kObjectIdCol)};
}

std::string CheckScopeArgs(const std::vector<std::string>& args)
{
    ScopeLine line;
    return ParseScopeLine(args, true, line);
}

int RunScopeCommand(spread::AppState& TMM, const spread::LoadFormResult& start,
                    const std::vector<std::string>& args, std::istream& in, std::ostream& out,
                    const astro::Clock& computerClock)
{
    ScopeLine first;
    if (!ParseScopeLine(args, true, first).empty())
        return 2;
    ScopeSession session(TMM, start, out, computerClock);
    if (first.action != "-") {
        const int status = session.Run(first);
        out.flush();
        return status;
    }

    // The list and row of the command line hold for the lines that follow.
    int worst = session.Select(first);
    std::string text;
    while (std::getline(in, text)) {
        const std::optional<std::vector<std::string>> words = SplitShellWords(text);
        if (words && (words->empty() || words->front().starts_with('#')))
            continue;
        ScopeLine line;
        std::string error = words ? ParseScopeLine(*words, false, line)
                                  : "a quote is left open in \"" + text + "\"";
        int status = 2;
        if (!error.empty())
            std::cerr << "selvane-cli: " << error << "\n";
        else
            status = session.Run(line);
        out << "#\t" << status << "\n";
        out.flush();
        worst = std::max(worst, status);
    }
    return worst;
}

} // namespace app
