#include "app/PlotFileCommand.h"

#include "charts/PlotFile.h"
#include "services/ScriptedUiPort.h"

#include <optional>
#include <sstream>

namespace app {

namespace {

// One --add or --add2: the typed fields and the name.
struct PlotAdd
{
    bool second = false;
    std::vector<std::string> fields;
    std::string name;
};

struct PlotFileRequest
{
    std::string error;
    std::optional<std::string> open, fov, name, save;
    std::vector<PlotAdd> adds;
};

// The fields of an --add value, and the rest of the text, trimmed, as the name.
std::optional<PlotAdd> SplitAdd(const std::string& text, bool second)
{
    PlotAdd add;
    add.second = second;
    const std::size_t count = second ? 4 : 6;
    std::size_t at = 0;
    while (add.fields.size() < count) {
        const std::size_t start = text.find_first_not_of(" \t", at);
        if (start == std::string::npos)
            return std::nullopt;
        at = std::min(text.find_first_of(" \t", start), text.size());
        add.fields.push_back(text.substr(start, at - start));
    }
    const std::size_t start = text.find_first_not_of(" \t", at);
    if (start != std::string::npos)
        add.name = text.substr(start, text.find_last_not_of(" \t") + 1 - start);
    return add;
}

PlotFileRequest ParsePlotFileArgs(const std::vector<std::string>& args)
{
    PlotFileRequest r;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& arg = args[i];
        if (arg != "--open" && arg != "--fov" && arg != "--name" && arg != "--save" &&
            arg != "--add" && arg != "--add2") {
            r.error = "unknown argument \"" + arg + "\"";
            return r;
        }
        if (i + 1 >= args.size()) {
            r.error = arg + " needs a value";
            return r;
        }
        const std::string& value = args[++i];
        if (arg == "--add" || arg == "--add2") {
            const std::optional<PlotAdd> add = SplitAdd(value, arg == "--add2");
            if (!add) {
                r.error = arg + " \"" + value + "\" needs " +
                          (arg == "--add" ? "H M S D M S" : "H M.M D M.M");
                return r;
            }
            r.adds.push_back(*add);
            continue;
        }
        std::optional<std::string>& slot = arg == "--open"   ? r.open
                                           : arg == "--fov"  ? r.fov
                                           : arg == "--name" ? r.name
                                                             : r.save;
        if (slot) {
            r.error = arg + " given twice";
            return r;
        }
        slot = value;
    }
    return r;
}

constexpr charts::PlotField Row1[] = {charts::PlotField::txtRah,  charts::PlotField::txtram,
                                      charts::PlotField::txtras,  charts::PlotField::txtdecd,
                                      charts::PlotField::txtdecm, charts::PlotField::txtdecs};
constexpr charts::PlotField Row2[] = {charts::PlotField::txtrah2, charts::PlotField::txtram2,
                                      charts::PlotField::txtdecd2, charts::PlotField::txtdecm2};

} // namespace

std::string CheckPlotFileArgs(const std::vector<std::string>& args)
{
    return ParsePlotFileArgs(args).error;
}

int RunPlotFileCommand(services::UiPort& ui, const std::vector<std::string>& args,
                       std::ostream& out)
{
    const PlotFileRequest r = ParsePlotFileArgs(args);
    if (!r.error.empty())
        return 2;
    auto* scripted = dynamic_cast<services::ScriptedUiPort*>(&ui);
    charts::frmStPlot form(ui);
    if (r.open) {
        if (scripted)
            scripted->fileAnswers.push_back(*r.open);
        if (!form.SSCommand3_Click())
            return 1;
    }
    if (r.fov)
        form.txtFov = *r.fov;
    if (r.name)
        form.txtObjName = *r.name;
    for (const PlotAdd& add : r.adds) {
        for (std::size_t k = 0; k < add.fields.size(); ++k) {
            const charts::PlotField field = add.second ? Row2[k] : Row1[k];
            form.Field(field) = add.fields[k];
            if (!form.LeaveField(field))
                return 1;
        }
        form.txtName = add.name;
        if (!form.Command1_Click())
            return 1;
    }
    if (r.save) {
        if (scripted)
            scripted->fileAnswers.push_back(*r.save);
        if (!form.SSCommand2_Click())
            return 1;
    }
    std::ostringstream text;
    text << "Entry\n";
    for (const std::string& entry : form.List1)
        text << entry << "\n";
    out << text.str();
    return 0;
}

} // namespace app
