#pragma once
// The telescopes the chooser can offer: the INDI telescopes of indiservers and the Alpaca
// telescopes answering discovery.

#include "scope/Telescope.h"

#include <string>
#include <vector>

namespace scope {

// What a search found: the devices, and a line for each place that did not answer.
struct Discovery
{
    std::vector<DeviceEntry> devices;
    std::vector<std::string> problems;
};

// How long each place is listened to.
inline constexpr int kDiscoveryTimeoutMs = 2000;

// Asks every place at once: the INDI servers (HOST:PORT) and the Alpaca discovery addresses
// (HOST:PORT, usually a broadcast address). Devices come in the order of the places given,
// INDI servers first; a place that fails gives its problem instead, naming its address.
Discovery DiscoverTelescopes(const std::vector<std::string>& indiServers,
                             const std::vector<std::string>& alpacaAddresses,
                             int timeoutMs = kDiscoveryTimeoutMs);

} // namespace scope
