#pragma once
// A mount, as every telescope routine addresses it: one driver object made from the identifier
// held in the setting telescopetype, with exactly the operations the routines call. Backends:
//
//   indi://HOST:PORT/DEVICE          a client of an indiserver (device name may hold blanks)
//   alpaca://HOST:PORT/telescope/N   an ASCOM Alpaca device over HTTP
//
// "Connected" is the client's link to the server or device: dropping it never switches the
// mount off, parks it or stops it. Right ascension is in decimal hours, declination, altitude and
// azimuth in decimal degrees. Every operation blocks the calling thread; a failure throws
// TelescopeError, whose text says what failed and names the address ("The connection to
// 127.0.0.1:7624 was lost during the slew").

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace scope {

class TelescopeError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

// Called now and then during a long wait (a slew); false asks the driver to abort the motion
// and throw TelescopeError ("The slew was stopped").
using KeepGoing = std::function<bool()>;

enum class Direction { North, South, East, West };

class Telescope
{
public:
    virtual ~Telescope() = default;

    // The identifier the driver was made from.
    virtual const std::string& Identifier() const = 0;

    // Makes or drops the link to the server or device (the driver's connected property).
    virtual void SetConnected(bool connected) = 0;
    virtual bool Connected() const = 0;

    virtual bool CanSlew() = 0;
    virtual bool CanSync() = 0;

    // The target, as the next slew or sync takes it.
    virtual void SetTargetDeclination(double degrees) = 0;
    virtual void SetTargetRightAscension(double hours) = 0;

    // Slews to the target and returns when the mount has arrived; throws when it refused
    // (parked, not allowed), when the link is lost or when keepGoing answered false.
    virtual void SlewToTarget(const KeepGoing& keepGoing) = 0;
    virtual void SyncToTarget() = 0;

    virtual double RightAscension() = 0;
    virtual double Declination() = 0;
    // Nothing when the device does not offer the value (the caller computes it from right
    // ascension and declination for the site); throws on any other failure.
    virtual std::optional<double> Altitude() = 0;
    virtual std::optional<double> Azimuth() = 0;

    // The control panel's operations.
    virtual void AbortSlew() = 0;
    virtual void MoveAxis(Direction direction, bool moving) = 0;
    virtual std::optional<bool> Tracking() = 0; // nothing when unknown
    virtual void SetTracking(bool on) = 0;
    virtual void Park() = 0;
    virtual void Unpark() = 0;

    // The mount's UTC offset as the device keeps it: hours as text ("-1.00"), added to UTC to
    // give local time (INDI TIME_UTC OFFSET). The slide show's keypad control reads and writes
    // it. A backend without such a value (Alpaca) throws TelescopeError "not supported".
    virtual std::string UtcOffset();
    virtual void SetUtcOffset(const std::string& hours);
};

// Makes the driver of an identifier; nothing for an identifier of no known kind or form. Nothing
// is connected yet.
std::unique_ptr<Telescope> MakeTelescope(std::string_view identifier);

// A device the chooser can offer.
struct DeviceEntry
{
    std::string identifier; // indi://127.0.0.1:7624/Telescope Simulator
    std::string device;     // the INDI device name or the Alpaca DeviceName
};

} // namespace scope
