#include "app/ElementsCommand.h"

#include "data/MinorBodies.h"
#include "services/UiPort.h"

namespace app {

std::string CheckElementsArgs(const std::vector<std::string>& args)
{
    if (args.empty() || args[0] != "import")
        return "elements needs import";
    if (args.size() < 2 || (args[1] != "comets" && args[1] != "asteroids"))
        return "elements import needs comets or asteroids";
    if (args.size() != 3)
        return "elements import takes a kind and one file";
    return {};
}

int RunElementsCommand(const data::ProgramDir& dir, services::UiPort& ui,
                       const std::vector<std::string>& args, std::ostream& out)
{
    if (!CheckElementsArgs(args).empty())
        return 2;
    const auto kind =
        args[1] == "comets" ? data::MinorBodyKind::Comet : data::MinorBodyKind::Asteroid;
    const data::ImportResult result =
        data::ImportElements(dir.File(data::AstCometFileName), kind, args[2]);
    if (!result.refusal.empty()) {
        ui.ShowMessage(result.refusal, ElementsTitle, "E");
        return 1;
    }
    out << "Kind\tLines\tAdded\tReplaced\n"
        << args[1] << '\t' << result.lines << '\t' << result.added << '\t' << result.replaced
        << '\n';
    out.flush();
    return 0;
}

} // namespace app
