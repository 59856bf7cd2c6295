#pragma once
// A telescope driver for the routines' tests: it records every call, in order, into a script
// that outlives the driver (the routines make and drop a driver per operation), and answers
// and fails as the script says. This stands in for a mount only where the routines' own
// behaviour is tested; the backends are tested against the real simulator and server.

#include "scope/Telescope.h"

#include <memory>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace scope_test {

struct TelescopeScript
{
    // Answers.
    bool canSlew = true;
    bool canSync = true;
    double ra = 0;                  // hours
    double dec = 0;                 // degrees
    std::optional<double> altitude; // nothing: the driver does not offer it
    std::optional<double> azimuth;
    // Calls that throw TelescopeError ("SetConnected(true)", "SlewToTarget", "Azimuth", ...).
    std::set<std::string> failOn;
    // How often a slew asks keepGoing before it arrives.
    int slewPolls = 3;

    // What happened.
    std::vector<std::string> calls; // "SetTargetDeclination(-0.5)", ...
    std::vector<std::string> made;  // identifiers of the drivers made
    int alive = 0;                  // drivers not yet destroyed
    std::optional<double> targetRa, targetDec;
    bool arrived = false;

    bool Called(const std::string& call) const
    {
        for (const std::string& c : calls)
            if (c == call)
                return true;
        return false;
    }
};

class RecordingTelescope : public scope::Telescope
{
public:
    RecordingTelescope(std::string identifier, TelescopeScript& script)
        : identifier_(std::move(identifier)), script_(script)
    {
        ++script_.alive;
    }
    ~RecordingTelescope() override { --script_.alive; }

    const std::string& Identifier() const override { return identifier_; }

    void SetConnected(bool connected) override
    {
        Call(connected ? "SetConnected(true)" : "SetConnected(false)");
        connected_ = connected;
    }
    bool Connected() const override { return connected_; }
    bool CanSlew() override { return Answer("CanSlew", script_.canSlew); }
    bool CanSync() override { return Answer("CanSync", script_.canSync); }
    void SetTargetDeclination(double degrees) override
    {
        Call("SetTargetDeclination(" + Number(degrees) + ")");
        script_.targetDec = degrees;
    }
    void SetTargetRightAscension(double hours) override
    {
        Call("SetTargetRightAscension(" + Number(hours) + ")");
        script_.targetRa = hours;
    }
    void SlewToTarget(const scope::KeepGoing& keepGoing) override
    {
        Call("SlewToTarget");
        for (int i = 0; i < script_.slewPolls; ++i)
            if (!keepGoing()) {
                Call("AbortSlew");
                throw scope::TelescopeError("The slew was stopped");
            }
        script_.arrived = true;
    }
    void SyncToTarget() override { Call("SyncToTarget"); }
    double RightAscension() override { return Answer("RightAscension", script_.ra); }
    double Declination() override { return Answer("Declination", script_.dec); }
    std::optional<double> Altitude() override { return Answer("Altitude", script_.altitude); }
    std::optional<double> Azimuth() override { return Answer("Azimuth", script_.azimuth); }
    void AbortSlew() override { Call("AbortSlew"); }
    void MoveAxis(scope::Direction, bool) override { Call("MoveAxis"); }
    std::optional<bool> Tracking() override
    {
        Call("Tracking");
        return std::nullopt;
    }
    void SetTracking(bool) override { Call("SetTracking"); }
    void Park() override { Call("Park"); }
    void Unpark() override { Call("Unpark"); }

private:
    static std::string Number(double x)
    {
        std::ostringstream out;
        out << x;
        return out.str();
    }

    template <class T> T Answer(const std::string& call, T value)
    {
        Call(call);
        return value;
    }

    void Call(const std::string& call)
    {
        script_.calls.push_back(call);
        if (script_.failOn.count(call))
            throw scope::TelescopeError(call + " failed at 127.0.0.1:7624");
    }

    std::string identifier_;
    TelescopeScript& script_;
    bool connected_ = false;
};

// A driver factory making recording drivers; like MakeTelescope it makes nothing from an
// empty identifier.
inline auto RecordingDrivers(TelescopeScript& script)
{
    return [&script](std::string_view identifier) -> std::unique_ptr<scope::Telescope> {
        if (identifier.empty())
            return nullptr;
        script.made.emplace_back(identifier);
        return std::make_unique<RecordingTelescope>(std::string(identifier), script);
    };
}

} // namespace scope_test
