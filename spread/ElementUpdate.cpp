#include "spread/ElementUpdate.h"

#include "services/UiPort.h"
#include "services/Vb.h"

namespace spread {

namespace vb = services::vb;

namespace {

std::string Counted(long n, const char* one, const char* many)
{
    return std::to_string(n) + " " + (n == 1 ? one : many);
}

} // namespace

std::optional<data::MinorBodyKind> ElementFileKind(std::string_view fileName)
{
    const std::string name = vb::LCase(fileName);
    if (name.find("comet") != std::string::npos)
        return data::MinorBodyKind::Comet;
    if (name.find("mpcorb") != std::string::npos)
        return data::MinorBodyKind::Asteroid;
    return std::nullopt;
}

std::string ImportedText(std::string_view fileName, data::MinorBodyKind kind,
                         const data::ImportResult& result)
{
    const bool comets = kind == data::MinorBodyKind::Comet;
    return std::string(fileName) + ": " + Counted(result.lines, "element line", "element lines") +
           " read, " +
           Counted(result.added, comets ? "comet" : "asteroid", comets ? "comets" : "asteroids") +
           " added, " + std::to_string(result.replaced) + " replaced.";
}

bool UpdateElements(services::UiPort& ui, const std::filesystem::path& astComet)
{
    const std::string answer = ui.AskOpenFile(UpdateElementsTitle, ElementFileFilter);
    if (vb::Trim(answer).empty())
        return false;
    const std::filesystem::path file(answer);
    const std::string fileName = file.filename().string();
    std::optional<data::MinorBodyKind> kind = ElementFileKind(fileName);
    if (!kind)
        kind = ui.Ask(CometOrAsteroidQuestion, UpdateElementsTitle, false)
                   ? data::MinorBodyKind::Comet
                   : data::MinorBodyKind::Asteroid;
    const data::ImportResult result = data::ImportElements(astComet, *kind, file);
    if (!result.refusal.empty()) {
        ui.ShowMessage(result.refusal, UpdateElementsTitle, "E");
        return false;
    }
    ui.ShowMessage(ImportedText(fileName, *kind, result), UpdateElementsTitle, "I");
    return true;
}

} // namespace spread
