#pragma once
// The INDI backend of the telescope driver: a client of an indiserver.

#include "scope/Telescope.h"

namespace scope {

// The driver of an identifier indi://HOST:PORT/DEVICE; nothing when it is not of that form.
std::unique_ptr<Telescope> MakeIndiTelescope(std::string_view identifier);

} // namespace scope
