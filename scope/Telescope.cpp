#include "scope/Telescope.h"

#include "scope/AlpacaTelescope.h"
#include "scope/IndiTelescope.h"

namespace scope {

std::string Telescope::UtcOffset()
{
    throw TelescopeError("not supported");
}

void Telescope::SetUtcOffset(const std::string&)
{
    throw TelescopeError("not supported");
}

std::unique_ptr<Telescope> MakeTelescope(std::string_view identifier)
{
    if (identifier.starts_with("indi://"))
        return MakeIndiTelescope(identifier);
    if (identifier.starts_with("alpaca://"))
        return MakeAlpacaTelescope(identifier);
    return nullptr;
}

} // namespace scope
