#include "scope/IndiTelescope.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <cstdlib>
#include <map>
#include <mutex>
#include <utility>

#include <libindi/baseclient.h>
#include <libindi/basedevice.h>
#include <libindi/indipropertynumber.h>
#include <libindi/indipropertyswitch.h>
#include <libindi/indipropertytext.h>

// libindi's client library writes its diagnostics straight to stderr through IDLog, one line at
// every connectServer() among them, and stderr of selvane-cli is a parsed interface. This
// definition takes the library's place for the whole program; every failure that matters reaches
// the caller as a TelescopeError instead.
extern "C" void IDLog(const char*, ...) {}

namespace scope {
namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr auto kServerTimeout = 3s;  // connectServer
constexpr auto kDeviceTimeout = 10s; // CONNECTION on and EQUATORIAL_EOD_COORD defined
constexpr auto kSlewTimeout = 180s;
constexpr auto kSyncTimeout = 10s;
constexpr auto kPollInterval = 50ms; // how often a slew asks keepGoing
// A device answers a goto at once; an update that is not Busy may still be one the device sent
// before it read the goto, so a refusal is only believed when no Busy followed within this time.
constexpr auto kRefusalGrace = 500ms;
// Listing stops once no new device has arrived for this long.
constexpr auto kListQuiet = 500ms;
// A property not yet defined is waited for until no definition has arrived for this long.
constexpr auto kDefinitionsQuiet = 250ms;
constexpr auto kDefinitionsTimeout = 3s;
// How long a command waits for the device's answer before the link may be dropped.
constexpr auto kCommandTimeout = 3s;
constexpr double kSyncTolerance = 1e-4; // hours of RA, degrees of Dec

constexpr const char* kEod = "EQUATORIAL_EOD_COORD";
constexpr const char* kTimeUtc = "TIME_UTC";

// One property vector as the server last sent it.
struct Vector
{
    IPState state = IPS_IDLE;
    std::vector<std::pair<std::string, double>> numbers;
    std::vector<std::pair<std::string, bool>> switches;
    std::vector<std::pair<std::string, std::string>> texts;
    unsigned long updates = 0;     // definitions and updates received
    unsigned long busyUpdates = 0; // of those, the ones in state Busy

    std::optional<double> Number(std::string_view element) const
    {
        for (const auto& [name, value] : numbers)
            if (name == element)
                return value;
        return std::nullopt;
    }
    std::optional<bool> Switch(std::string_view element) const
    {
        for (const auto& [name, on] : switches)
            if (name == element)
                return on;
        return std::nullopt;
    }
    std::optional<std::string> Text(std::string_view element) const
    {
        for (const auto& [name, text] : texts)
            if (name == element)
                return text;
        return std::nullopt;
    }
};

using DeviceVectors = std::map<std::string, Vector>; // property name → vector

// A client of one server. libindi calls the overrides on its own reader thread: they only copy
// what arrived into the members below, under the mutex, and wake the caller's thread, which
// waits on `changed`. No libindi call is made while the mutex is held.
class IndiLink final : public INDI::BaseClient
{
public:
    IndiLink(const std::string& host, int port, const std::string& device)
    {
        setServer(host.c_str(), static_cast<unsigned>(port));
        if (!device.empty())
            watchDevice(device.c_str());
    }
    ~IndiLink() override { disconnectServer(); }

    bool Open(Clock::duration timeout)
    {
        const auto us = std::chrono::duration_cast<std::chrono::microseconds>(timeout).count();
        setConnectionTimeout(static_cast<uint32_t>(us / 1000000),
                             static_cast<uint32_t>(us % 1000000));
        return connectServer();
    }

    // Sends a switch vector holding the given elements only.
    void SendSwitches(const std::string& device, const char* property,
                      const std::vector<std::pair<std::string, bool>>& states)
    {
        INDI::PropertySwitch vector(states.size());
        vector.fill(device.c_str(), property, "", "", IP_RW, ISR_NOFMANY, 0, IPS_IDLE);
        for (size_t i = 0; i < states.size(); ++i) {
            vector[i].setName(states[i].first);
            vector[i].setState(states[i].second ? ISS_ON : ISS_OFF);
        }
        sendNewSwitch(vector);
    }

    void SendNumbers(const std::string& device, const char* property,
                     const std::vector<std::pair<std::string, double>>& values)
    {
        INDI::PropertyNumber vector(values.size());
        vector.fill(device.c_str(), property, "", "", IP_RW, 0, IPS_IDLE);
        for (size_t i = 0; i < values.size(); ++i) {
            vector[i].setName(values[i].first);
            vector[i].setValue(values[i].second);
        }
        sendNewNumber(vector);
    }

    void SendTexts(const std::string& device, const char* property,
                   const std::vector<std::pair<std::string, std::string>>& texts)
    {
        INDI::PropertyText vector(texts.size());
        vector.fill(device.c_str(), property, "", "", IP_RW, 0, IPS_IDLE);
        for (size_t i = 0; i < texts.size(); ++i) {
            vector[i].setName(texts[i].first);
            vector[i].setText(texts[i].second);
        }
        sendNewText(vector);
    }

    std::mutex mutex;
    std::condition_variable changed;
    std::map<std::string, DeviceVectors> devices; // device name → its vectors
    Clock::time_point lastDefinition{};           // when the last property was defined
    std::vector<std::string> warnings;            // the devices' warnings and errors, in order
    bool lost = false;                            // the server closed the link

protected:
    void newProperty(INDI::Property property) override { Store(property, true); }
    void updateProperty(INDI::Property property) override { Store(property, false); }

    void removeProperty(INDI::Property property) override
    {
        std::lock_guard lock(mutex);
        auto device = devices.find(property.getDeviceName());
        if (device != devices.end())
            device->second.erase(property.getName());
        changed.notify_all();
    }

    void removeDevice(INDI::BaseDevice device) override
    {
        std::lock_guard lock(mutex);
        devices.erase(device.getDeviceName());
        changed.notify_all();
    }

    // Device messages read "TIMESTAMP: [LEVEL] text"; warnings and errors are kept so that a
    // refusal can say why.
    void newMessage(INDI::BaseDevice device, int messageId) override
    {
        std::string text = device.messageQueue(static_cast<size_t>(messageId));
        const auto level = text.find(": [");
        if (level == std::string::npos)
            return;
        const bool serious =
            text.compare(level + 3, 7, "WARNING") == 0 || text.compare(level + 3, 5, "ERROR") == 0;
        const auto close = text.find("] ", level);
        if (!serious || close == std::string::npos)
            return;
        text = text.substr(close + 2);
        while (!text.empty() && text.back() == ' ')
            text.pop_back();
        std::lock_guard lock(mutex);
        warnings.push_back(text);
        changed.notify_all();
    }

    void serverDisconnected(int) override
    {
        std::lock_guard lock(mutex);
        lost = true;
        changed.notify_all();
    }

private:
    void Store(const INDI::Property& property, bool defined)
    {
        Vector copy;
        copy.state = property.getState();
        switch (property.getType()) {
        case INDI_NUMBER:
            for (const auto& widget : *property.getNumber())
                copy.numbers.emplace_back(widget.getName(), widget.getValue());
            break;
        case INDI_SWITCH:
            for (const auto& widget : *property.getSwitch())
                copy.switches.emplace_back(widget.getName(), widget.getState() == ISS_ON);
            break;
        case INDI_TEXT:
            for (const auto& widget : *property.getText())
                copy.texts.emplace_back(widget.getName(), widget.getText());
            break;
        default:
            break;
        }
        std::lock_guard lock(mutex);
        Vector& stored = devices[property.getDeviceName()][property.getName()];
        copy.updates = stored.updates + 1;
        copy.busyUpdates = stored.busyUpdates + (copy.state == IPS_BUSY ? 1 : 0);
        stored = std::move(copy);
        if (defined)
            lastDefinition = Clock::now();
        changed.notify_all();
    }
};

std::optional<std::pair<std::string, int>> ParseHostPort(std::string_view text)
{
    const auto colon = text.rfind(':');
    if (colon == std::string_view::npos || colon == 0 || colon + 1 == text.size())
        return std::nullopt;
    int port = 0;
    for (char c : text.substr(colon + 1)) {
        if (c < '0' || c > '9' || port > 65535)
            return std::nullopt;
        port = port * 10 + (c - '0');
    }
    if (port < 1 || port > 65535)
        return std::nullopt;
    return std::pair{std::string(text.substr(0, colon)), port};
}

std::string Where(const std::string& host, int port)
{
    return host + ":" + std::to_string(port);
}

class IndiTelescope final : public Telescope
{
public:
    IndiTelescope(std::string identifier, IndiAddress address)
        : identifier_(std::move(identifier)), address_(std::move(address)),
          server_(Where(address_.host, address_.port)), device_(address_.device + " at " + server_)
    {
    }

    const std::string& Identifier() const override { return identifier_; }

    void SetConnected(bool connected) override
    {
        if (!connected) {
            link_.reset();
            return;
        }
        if (Connected())
            return;
        link_.reset();
        auto link = std::make_unique<IndiLink>(address_.host, address_.port, address_.device);
        if (!link->Open(kServerTimeout))
            throw TelescopeError("No INDI server answers at " + server_);
        const auto deadline = Clock::now() + kDeviceTimeout;
        std::unique_lock lock(link->mutex);
        const auto vectors = [&]() -> const DeviceVectors* {
            auto device = link->devices.find(address_.device);
            return device == link->devices.end() ? nullptr : &device->second;
        };
        const auto connection = [&]() -> const Vector* {
            auto all = vectors();
            auto found = all ? all->find("CONNECTION") : DeviceVectors::const_iterator{};
            return all && found != all->end() ? &found->second : nullptr;
        };
        link->changed.wait_until(lock, deadline, [&] { return link->lost || connection(); });
        if (link->lost)
            throw Lost("while connecting " + address_.device);
        if (!connection())
            throw TelescopeError("The INDI server at " + server_ + " has no device \"" +
                                 address_.device + "\"");
        // Only an answer to this client's request counts: the device may still show the Alert of
        // an earlier attempt.
        const unsigned long connectionAtSend = connection()->updates;
        if (!connection()->Switch("CONNECT").value_or(false)) {
            lock.unlock();
            link->SendSwitches(address_.device, "CONNECTION",
                               {{"CONNECT", true}, {"DISCONNECT", false}});
            lock.lock();
        }
        const auto ready = [&] {
            const Vector* on = connection();
            return link->lost || !on ||
                   (on->state == IPS_ALERT && on->updates > connectionAtSend) ||
                   (on->Switch("CONNECT").value_or(false) && vectors()->contains(kEod));
        };
        link->changed.wait_until(lock, deadline, ready);
        if (link->lost)
            throw Lost("while connecting " + address_.device);
        if (!connection() ||
            (connection()->state == IPS_ALERT && connection()->updates > connectionAtSend))
            throw TelescopeError(device_ + " could not be connected");
        if (!ready())
            throw TelescopeError(device_ + " did not offer " + kEod + " within 10 s");
        lock.unlock();
        link_ = std::move(link);
    }

    bool Connected() const override
    {
        if (!link_)
            return false;
        std::lock_guard lock(link_->mutex);
        return !link_->lost;
    }

    bool CanSlew() override
    {
        auto modes = Find("ON_COORD_SET", "the capability query");
        return modes && (modes->Switch("SLEW") || modes->Switch("TRACK"));
    }

    bool CanSync() override
    {
        auto modes = Find("ON_COORD_SET", "the capability query");
        return modes && modes->Switch("SYNC");
    }

    void SetTargetDeclination(double degrees) override { targetDecDeg_ = degrees; }
    void SetTargetRightAscension(double hours) override { targetRaHours_ = hours; }

    void SlewToTarget(const KeepGoing& keepGoing) override
    {
        const auto modes = Require("ON_COORD_SET", "the slew");
        const char* mode = modes.Switch("TRACK")  ? "TRACK"
                           : modes.Switch("SLEW") ? "SLEW"
                                                  : nullptr;
        if (!mode)
            throw TelescopeError(device_ + " cannot slew");
        const auto [raHours, decDeg] = Target("slew");
        Require(kEod, "the slew");

        IndiLink& link = *link_;
        std::unique_lock lock(link.mutex);
        const Vector& before = link.devices[address_.device][kEod];
        const unsigned long updatesAtSend = before.updates;
        const unsigned long busyAtSend = before.busyUpdates;
        const size_t warningsAtSend = link.warnings.size();
        lock.unlock();
        SendMode(modes, mode);
        link.SendNumbers(address_.device, kEod, {{"RA", raHours}, {"DEC", decDeg}});

        const auto deadline = Clock::now() + kSlewTimeout;
        std::optional<Clock::time_point> firstAnswer;
        lock.lock();
        for (;;) {
            link.changed.wait_for(lock, kPollInterval);
            if (link.lost)
                throw Lost("during the slew");
            const DeviceVectors& vectors = link.devices[address_.device];
            const auto eod = vectors.find(kEod);
            if (eod == vectors.end())
                throw TelescopeError(device_ + " withdrew " + kEod + " during the slew");
            const Vector& now = eod->second;
            const bool accepted = now.busyUpdates > busyAtSend;
            if (now.updates > updatesAtSend && !firstAnswer)
                firstAnswer = Clock::now();
            if (now.state != IPS_BUSY &&
                (accepted || (firstAnswer && Clock::now() - *firstAnswer >= kRefusalGrace))) {
                if (now.state == IPS_OK)
                    return;
                if (accepted)
                    throw TelescopeError("The slew of " + device_ + " ended before it arrived");
                std::string text = "The slew was refused by " + device_ + " (is the mount parked?)";
                if (link.warnings.size() > warningsAtSend)
                    text += ". " + address_.device + " said: " + link.warnings.back();
                throw TelescopeError(text);
            }
            const bool late = Clock::now() >= deadline;
            lock.unlock();
            if (late || (keepGoing && !keepGoing())) {
                StopMotion();
                throw TelescopeError(late ? "The slew of " + device_ + " did not end within 180 s"
                                          : std::string("The slew was stopped"));
            }
            lock.lock();
        }
    }

    void SyncToTarget() override
    {
        const auto modes = Require("ON_COORD_SET", "the sync");
        if (!modes.Switch("SYNC"))
            throw TelescopeError(device_ + " cannot sync");
        const auto [raHours, decDeg] = Target("sync");
        Require(kEod, "the sync");

        IndiLink& link = *link_;
        std::unique_lock lock(link.mutex);
        const unsigned long updatesAtSend = link.devices[address_.device][kEod].updates;
        lock.unlock();
        SendMode(modes, "SYNC");
        link.SendNumbers(address_.device, kEod, {{"RA", raHours}, {"DEC", decDeg}});

        // The state tells nothing here (a mount that is not tracking answers Idle): the sync is
        // done when an update holds the values sent.
        const auto holdsTarget = [&](const Vector& eod) {
            const double ra = eod.Number("RA").value_or(NAN);
            const double dec = eod.Number("DEC").value_or(NAN);
            const double raOff = std::fabs(std::remainder(ra - raHours, 24.0));
            return raOff <= kSyncTolerance && std::fabs(dec - decDeg) <= kSyncTolerance;
        };
        lock.lock();
        const bool answered = link.changed.wait_for(lock, kSyncTimeout, [&] {
            if (link.lost)
                return true;
            const DeviceVectors& vectors = link.devices[address_.device];
            const auto eod = vectors.find(kEod);
            return eod == vectors.end() || eod->second.state == IPS_ALERT ||
                   (eod->second.updates > updatesAtSend && holdsTarget(eod->second));
        });
        if (link.lost)
            throw Lost("during the sync");
        const DeviceVectors& vectors = link.devices[address_.device];
        const auto eod = vectors.find(kEod);
        if (!answered || eod == vectors.end() || eod->second.state == IPS_ALERT)
            throw TelescopeError("The sync was refused by " + device_ + " (is the mount parked?)");
    }

    double RightAscension() override
    {
        return Require(kEod, "the reading of the position").Number("RA").value_or(NAN);
    }

    double Declination() override
    {
        return Require(kEod, "the reading of the position").Number("DEC").value_or(NAN);
    }

    std::optional<double> Altitude() override
    {
        auto horizontal = Find("HORIZONTAL_COORD", "the reading of the position");
        return horizontal ? horizontal->Number("ALT") : std::nullopt;
    }

    std::optional<double> Azimuth() override
    {
        auto horizontal = Find("HORIZONTAL_COORD", "the reading of the position");
        return horizontal ? horizontal->Number("AZ") : std::nullopt;
    }

    void AbortSlew() override
    {
        Require("TELESCOPE_ABORT_MOTION", "the abort");
        Command("TELESCOPE_ABORT_MOTION", {{"ABORT", true}});
    }

    void MoveAxis(Direction direction, bool moving) override
    {
        const bool northSouth = direction == Direction::North || direction == Direction::South;
        const char* property = northSouth ? "TELESCOPE_MOTION_NS" : "TELESCOPE_MOTION_WE";
        Require(property, "the motion");
        const std::string first = northSouth ? "MOTION_NORTH" : "MOTION_WEST";
        const std::string second = northSouth ? "MOTION_SOUTH" : "MOTION_EAST";
        const bool toFirst = direction == Direction::North || direction == Direction::West;
        Command(property, {{first, moving && toFirst}, {second, moving && !toFirst}});
    }

    std::optional<bool> Tracking() override
    {
        auto track = Find("TELESCOPE_TRACK_STATE", "the reading of the tracking");
        return track ? track->Switch("TRACK_ON") : std::nullopt;
    }

    void SetTracking(bool on) override
    {
        Require("TELESCOPE_TRACK_STATE", "the change of tracking");
        Command("TELESCOPE_TRACK_STATE", {{"TRACK_ON", on}, {"TRACK_OFF", !on}});
    }

    void Park() override { SendPark(true); }
    void Unpark() override { SendPark(false); }

    std::string UtcOffset() override
    {
        const Vector time = Require(kTimeUtc, "the reading of the UTC offset");
        const auto offset = time.Text("OFFSET");
        if (!offset)
            throw TelescopeError(device_ + " has no OFFSET in " + kTimeUtc);
        return *offset;
    }

    // The whole vector goes back with OFFSET changed: the device takes UTC and offset together.
    void SetUtcOffset(const std::string& hours) override
    {
        const Vector time = Require(kTimeUtc, "the change of the UTC offset");
        std::vector<std::pair<std::string, std::string>> texts;
        for (const auto& [name, text] : time.texts)
            texts.emplace_back(name, name == "OFFSET" ? hours : text);
        std::unique_lock lock(link_->mutex);
        const DeviceVectors& vectors = link_->devices[address_.device];
        const auto updates = [&] {
            auto found = vectors.find(kTimeUtc);
            return found == vectors.end() ? 0ul : found->second.updates;
        };
        const unsigned long before = updates();
        lock.unlock();
        link_->SendTexts(address_.device, kTimeUtc, texts);
        lock.lock();
        link_->changed.wait_for(lock, kCommandTimeout,
                                [&] { return link_->lost || updates() > before; });
        if (link_->lost)
            throw Lost(std::string("after the change of ") + kTimeUtc);
        auto found = vectors.find(kTimeUtc);
        if (found == vectors.end() || found->second.state == IPS_ALERT)
            throw TelescopeError("The UTC offset was refused by " + device_);
    }

private:
    TelescopeError Lost(const std::string& when) const
    {
        return TelescopeError("The connection to " + server_ + " was lost " + when);
    }

    // A copy of a vector of the device; nothing when the device lacks it. Throws when not
    // connected.
    std::optional<Vector> Find(const char* property, const std::string& during)
    {
        if (!link_)
            throw TelescopeError(device_ + " is not connected");
        std::unique_lock lock(link_->mutex);
        const DeviceVectors& vectors = link_->devices[address_.device];
        // A new link is ready once the coordinates are defined, but the server may still be
        // defining the device's other properties: a missing one is waited for until the
        // definitions have stopped arriving.
        const auto deadline = Clock::now() + kDefinitionsTimeout;
        while (!link_->lost && !vectors.contains(property) &&
               Clock::now() - link_->lastDefinition < kDefinitionsQuiet && Clock::now() < deadline)
            link_->changed.wait_for(lock, kPollInterval);
        if (link_->lost)
            throw Lost("during " + during);
        auto found = vectors.find(property);
        if (found == vectors.end())
            return std::nullopt;
        return found->second;
    }

    Vector Require(const char* property, const std::string& during)
    {
        auto vector = Find(property, during);
        if (!vector)
            throw TelescopeError(device_ + " has no " + property + " property");
        return *vector;
    }

    std::pair<double, double> Target(const char* operation) const
    {
        if (!targetRaHours_ || !targetDecDeg_)
            throw TelescopeError(std::string("No target was set for the ") + operation + " of " +
                                 device_);
        return {*targetRaHours_, *targetDecDeg_};
    }

    // ON_COORD_SET is one of many and stays at what was last chosen: every coordinate write sets
    // it first, the chosen element on and the others off.
    void SendMode(const Vector& modes, const std::string& mode)
    {
        std::vector<std::pair<std::string, bool>> states;
        for (const auto& [name, on] : modes.switches)
            states.emplace_back(name, name == mode);
        link_->SendSwitches(address_.device, "ON_COORD_SET", states);
    }

    void StopMotion()
    {
        link_->SendSwitches(address_.device, "TELESCOPE_ABORT_MOTION", {{"ABORT", true}});
    }

    // Sends a switch vector and waits for the device's answer to it. A link dropped right after
    // a send can lose the command: closing a socket that holds unread updates resets it, and
    // the server then drops what it had not read yet.
    void Command(const char* property, const std::vector<std::pair<std::string, bool>>& states)
    {
        std::unique_lock lock(link_->mutex);
        const DeviceVectors& vectors = link_->devices[address_.device];
        const auto updates = [&] {
            auto found = vectors.find(property);
            return found == vectors.end() ? 0ul : found->second.updates;
        };
        const unsigned long before = updates();
        lock.unlock();
        link_->SendSwitches(address_.device, property, states);
        lock.lock();
        link_->changed.wait_for(lock, kCommandTimeout,
                                [&] { return link_->lost || updates() > before; });
        if (link_->lost)
            throw Lost(std::string("after the change of ") + property);
    }

    void SendPark(bool park)
    {
        Require("TELESCOPE_PARK", park ? "the park" : "the unpark");
        Command("TELESCOPE_PARK", {{"PARK", park}, {"UNPARK", !park}});
    }

    std::string identifier_;
    IndiAddress address_;
    std::string server_; // HOST:PORT
    std::string device_; // "DEVICE at HOST:PORT", as messages name it
    std::unique_ptr<IndiLink> link_;
    std::optional<double> targetRaHours_;
    std::optional<double> targetDecDeg_;
};

} // namespace

std::optional<IndiAddress> ParseIndiIdentifier(std::string_view identifier)
{
    constexpr std::string_view scheme = "indi://";
    if (!identifier.starts_with(scheme))
        return std::nullopt;
    identifier.remove_prefix(scheme.size());
    const auto slash = identifier.find('/');
    if (slash == std::string_view::npos || slash + 1 == identifier.size())
        return std::nullopt;
    auto hostPort = ParseHostPort(identifier.substr(0, slash));
    if (!hostPort)
        return std::nullopt;
    return IndiAddress{hostPort->first, hostPort->second,
                       std::string(identifier.substr(slash + 1))};
}

std::unique_ptr<Telescope> MakeIndiTelescope(std::string_view identifier)
{
    auto address = ParseIndiIdentifier(identifier);
    if (!address)
        return nullptr;
    return std::make_unique<IndiTelescope>(std::string(identifier), std::move(*address));
}

std::vector<DeviceEntry> ListIndiTelescopes(const std::string& hostPort, int timeoutMs)
{
    const auto address = ParseHostPort(hostPort);
    if (!address)
        throw TelescopeError("\"" + hostPort + "\" is not an INDI server address (HOST:PORT)");
    const auto timeout = std::chrono::milliseconds(std::max(timeoutMs, 1));
    const auto deadline = Clock::now() + timeout;
    IndiLink link(address->first, address->second, "");
    if (!link.Open(std::min<Clock::duration>(timeout, kServerTimeout)))
        throw TelescopeError("No INDI server answers at " + hostPort);

    std::unique_lock lock(link.mutex);
    while (!link.lost && Clock::now() < deadline) {
        link.changed.wait_for(lock, kPollInterval);
        if (link.lastDefinition != Clock::time_point{} &&
            Clock::now() - link.lastDefinition >= kListQuiet)
            break;
    }
    if (link.lost)
        throw TelescopeError("The connection to " + hostPort +
                             " was lost during the device listing");
    std::vector<DeviceEntry> entries;
    for (const auto& [device, vectors] : link.devices) {
        auto info = vectors.find("DRIVER_INFO");
        if (info == vectors.end())
            continue;
        const auto interfaces = info->second.Text("DRIVER_INTERFACE").value_or("0");
        if (std::strtoul(interfaces.c_str(), nullptr, 10) & 1)
            entries.push_back({"indi://" + hostPort + "/" + device, device});
    }
    return entries;
}

} // namespace scope
