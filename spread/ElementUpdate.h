#pragma once
// Update Asteroid/Comet Elements (key upastcom): the observer picks a file of current elements,
// "CometEls.txt" (comets) or "MPCORB.DAT" (asteroids), and its rows are merged into
// AstComet.mdb; the message says how many were read, added and replaced, or why the file was
// refused.

#include "data/MinorBodies.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace services {
class UiPort;
}

namespace spread {

inline constexpr const char* UpdateElementsTitle = "Update Asteroid/Comet Elements";
inline constexpr const char* ElementFileFilter = "Element files (*.txt *.TXT *.dat *.DAT)";
inline constexpr const char* CometOrAsteroidQuestion =
    "Are these comet elements? (No: asteroid elements)";

// The kind of an element file from its name: a name holding "comet" (any case) is comets, one
// holding "mpcorb" asteroids; nothing for any other name.
std::optional<data::MinorBodyKind> ElementFileKind(std::string_view fileName);

// The message after an import, as "CometEls.txt: 8 element lines read, 7 comets added,
// 1 replaced."
std::string ImportedText(std::string_view fileName, data::MinorBodyKind kind,
                         const data::ImportResult& result);

// Asks for the file (cancelled: nothing happens), takes its kind from its name or, when the
// name does not tell, from the Yes/No question, imports it into astComet and shows the counts
// (kind "I") or the refusal (kind "E") under UpdateElementsTitle.
// Returned: true when the tables were written.
bool UpdateElements(services::UiPort& ui, const std::filesystem::path& astComet);

} // namespace spread
