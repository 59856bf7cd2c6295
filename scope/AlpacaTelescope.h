#pragma once
// The ASCOM Alpaca backend of the telescope driver: a device over HTTP.
//
// Requests go to http://HOST:PORT/api/v1/telescope/N/<method> (method names in lower case),
// GET parameters in the query string, PUT parameters as a form body, every request carrying
// this process's ClientID (chosen at random once, 1 to 65535) and a ClientTransactionID counted
// from 1 for the whole process. Numbers travel with a decimal point whatever the locale. Each
// request, connect included, ends within 5 s.

#include "scope/Telescope.h"

namespace scope {

// The driver of an identifier alpaca://HOST:PORT/telescope/N; nothing when it is not of that
// form.
std::unique_ptr<Telescope> MakeAlpacaTelescope(std::string_view identifier);

// The telescopes of the Alpaca servers that answer a discovery datagram ("alpacadiscovery1")
// sent by UDP to address (HOST:PORT, usually the broadcast address 255.255.255.255:32227):
// answers are gathered for timeoutMs, then each server's configured devices are asked for and
// those of type Telescope are listed as alpaca://HOST:PORT/telescope/N with their DeviceName, in
// the order the servers answered. A server that fails to list its devices is left out.
// Throws TelescopeError when address is not HOST:PORT or the datagram cannot be sent.
std::vector<DeviceEntry> ListAlpacaTelescopes(const std::string& address, int timeoutMs);

} // namespace scope
