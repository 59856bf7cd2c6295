#pragma once
// What the filter tests share: filters from the default preferences, with nothing selected, and
// with text settings given as member and value.

#include "data/ObjectFilter.h"
#include "data/Preferences.h"

#include <string>
#include <utility>
#include <vector>

namespace filter_test {

using F = data::ObjectFilter;
using Fields = std::vector<std::pair<std::string F::*, const char*>>;

inline data::ObjectFilter Defaults()
{
    return data::FilterFromPreferences(data::Preferences{});
}

// No selection at all: the SQL then starts with the magnitude clause.
inline data::ObjectFilter Unselected()
{
    data::ObjectFilter f = Defaults();
    f.ObCat = "All Catalogs";
    f.Obcon = "All Constellations";
    f.Obtod = "All Types";
    return f;
}

inline data::ObjectFilter With(data::ObjectFilter f, const Fields& fields)
{
    for (const auto& [member, value] : fields)
        f.*member = value;
    return f;
}

} // namespace filter_test
