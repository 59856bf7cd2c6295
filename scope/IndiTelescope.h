#pragma once
// The INDI backend of the telescope driver: a client of an indiserver (libindi's BaseClient).
//
// Identifiers read indi://HOST:PORT/DEVICE; the device name is everything after the first slash
// and may hold blanks ("indi://127.0.0.1:7624/Telescope Simulator"). Coordinates go to and come
// from EQUATORIAL_EOD_COORD, so they are of the equinox of date (JNow) and are sent as given.

#include "scope/Telescope.h"

namespace scope {

// Where an indi:// identifier points.
struct IndiAddress
{
    std::string host;
    int port = 0;
    std::string device;
};

// The parts of indi://HOST:PORT/DEVICE; nothing for any other form (no device, no port, a port
// outside 1..65535).
std::optional<IndiAddress> ParseIndiIdentifier(std::string_view identifier);

// The driver of an identifier indi://HOST:PORT/DEVICE; nothing when it is not of that form.
std::unique_ptr<Telescope> MakeIndiTelescope(std::string_view identifier);

// The telescopes of the server at hostPort ("127.0.0.1:7624"): every device whose
// DRIVER_INFO.DRIVER_INTERFACE has bit 0 set, as indi://HOST:PORT/DEVICE, sorted by name. Listens
// at most timeoutMs; returns earlier once the devices have stopped arriving. Throws
// TelescopeError when hostPort is malformed or no server answers there.
std::vector<DeviceEntry> ListIndiTelescopes(const std::string& hostPort, int timeoutMs);

} // namespace scope
