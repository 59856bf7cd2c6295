#pragma once
// The ASCOM Alpaca backend of the telescope driver: a device over HTTP.

#include "scope/Telescope.h"

namespace scope {

// The driver of an identifier alpaca://HOST:PORT/telescope/N; nothing when it is not of that
// form.
std::unique_ptr<Telescope> MakeAlpacaTelescope(std::string_view identifier);

} // namespace scope
