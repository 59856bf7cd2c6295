#include "scope/Discovery.h"

#include "scope/AlpacaTelescope.h"
#include "scope/IndiTelescope.h"

#include <exception>
#include <future>

namespace scope {

Discovery DiscoverTelescopes(const std::vector<std::string>& indiServers,
                             const std::vector<std::string>& alpacaAddresses, int timeoutMs)
{
    // Each place waits out its own timeout, so they are asked side by side.
    std::vector<std::future<std::vector<DeviceEntry>>> searches;
    for (const std::string& server : indiServers)
        searches.push_back(std::async(std::launch::async, [server, timeoutMs] {
            return ListIndiTelescopes(server, timeoutMs);
        }));
    for (const std::string& address : alpacaAddresses)
        searches.push_back(std::async(std::launch::async, [address, timeoutMs] {
            return ListAlpacaTelescopes(address, timeoutMs);
        }));

    Discovery found;
    for (auto& search : searches) {
        try {
            for (DeviceEntry& device : search.get())
                found.devices.push_back(std::move(device));
        } catch (const std::exception& e) {
            found.problems.emplace_back(e.what());
        }
    }
    return found;
}

} // namespace scope
