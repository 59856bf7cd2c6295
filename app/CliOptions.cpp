#include "app/CliOptions.h"

#include <charconv>
#include <string_view>

#include "data/PreferenceRules.h"
#include "services/ScriptedUiPort.h"

#include <QLocale>

namespace app {

CliOptions ParseCliOptions(const std::vector<std::string>& args)
{
    CliOptions o;
    size_t i = 0;
    auto value = [&](const std::string& name) -> std::string {
        if (i + 1 >= args.size()) {
            o.error = name + " needs a value";
            return {};
        }
        return args[++i];
    };
    for (; i < args.size() && o.error.empty(); ++i) {
        const std::string& a = args[i];
        if (a == "--home")
            o.home = value(a);
        else if (a == "--settings")
            o.settings = value(a);
        else if (a == "--set") {
            const std::string pair = value(a);
            if (!o.error.empty())
                break;
            const size_t eq = pair.find('=');
            if (eq == std::string::npos || eq == 0) {
                o.error = "--set needs KEY=VALUE, not \"" + pair + "\"";
                break;
            }
            const std::string key = pair.substr(0, eq);
            const std::string text = pair.substr(eq + 1);
            const data::RuleVerdict verdict = data::CheckPreference(
                key, text, services::vb::RegionalFromLocale(QLocale::system()),
                data::RuleSource::Stored);
            if (!verdict.kept) {
                o.error = "--set " + pair + ": " + verdict.message;
                break;
            }
            data::Preferences probe;
            if (std::string why = data::SetPreference(probe, key, *verdict.kept); !why.empty()) {
                o.error = why;
                break;
            }
            o.sets.emplace_back(key, *verdict.kept);
        } else if (a.starts_with("--"))
            o.error = "unknown option " + a;
        else {
            o.command = a;
            o.commandArgs.assign(args.begin() + static_cast<long>(i) + 1, args.end());
            break;
        }
    }
    if (o.error.empty() && o.command.empty())
        o.error = "no command given";
    return o;
}

std::string FixedDecimals(double x, int decimals)
{
    char buffer[400];
    return {
        buffer,
        std::to_chars(buffer, buffer + sizeof buffer, x, std::chars_format::fixed, decimals).ptr};
}

std::optional<int> WholeNumber(std::string_view text)
{
    int n = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), n);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return n;
}

std::optional<std::vector<std::string>> SplitShellWords(const std::string& line)
{
    std::vector<std::string> words;
    std::string word;
    bool inWord = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        if (c == ' ' || c == '\t' || c == '\r' || c == '\n') {
            if (inWord)
                words.push_back(std::move(word));
            word.clear();
            inWord = false;
            continue;
        }
        inWord = true;
        if (c == '\\') {
            if (++i >= line.size())
                return std::nullopt;
            word += line[i];
        } else if (c == '\'') {
            const std::size_t close = line.find('\'', i + 1);
            if (close == std::string::npos)
                return std::nullopt;
            word += line.substr(i + 1, close - i - 1);
            i = close;
        } else if (c == '"') {
            for (++i;; ++i) {
                if (i >= line.size())
                    return std::nullopt;
                if (line[i] == '"')
                    break;
                if (line[i] == '\\' && i + 1 < line.size() &&
                    std::string_view("\"\\$`").find(line[i + 1]) != std::string_view::npos)
                    ++i;
                word += line[i];
            }
        } else {
            word += c;
        }
    }
    if (inWord)
        words.push_back(std::move(word));
    return words;
}

std::size_t ErrorsShown(const services::UiPort& ui)
{
    const auto* scripted = dynamic_cast<const services::ScriptedUiPort*>(&ui);
    if (!scripted)
        return 0;
    std::size_t errors = 0;
    for (const services::ScriptedUiPort::Shown& shown : scripted->shown)
        errors += shown.message.kind == "E" ? 1 : 0;
    return errors;
}

} // namespace app
