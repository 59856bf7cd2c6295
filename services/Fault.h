#pragma once
// The project's one error type, and the trap that every command runs its core call in.

#include <functional>
#include <stdexcept>
#include <string>

namespace services {

class UiPort;

// A failure of a file, database or format routine: the system's exact message text and the
// location it is reported under ("TMM.RebuildLink").
class Fault : public std::runtime_error
{
public:
    Fault(const std::string& message, std::string location)
        : std::runtime_error(message), location_(std::move(location))
    {
    }
    const std::string& Location() const { return location_; }

private:
    std::string location_;
};

// Runs body; a failure inside is reported through the port's fault report under location
// (a Fault's own location wins when it has one) and Trap returns false. A command's outputs
// stay as they stood when the failure happened.
bool Trap(UiPort& ui, const std::string& location, const std::function<void()>& body);

// As Trap, but the fault goes to the error log only, without a window.
bool TrapSilently(UiPort& ui, const std::string& location, const std::function<void()>& body);

// Ends the process after a fatal fault has been reported. Tests replace the handler so that
// the routine that ends the program can be exercised; the handler must not return normally
// (throwing is allowed).
using EndProcessHandler = std::function<void(int exitCode)>;
void SetEndProcessHandler(EndProcessHandler handler);
[[noreturn]] void EndProcess(int exitCode);

} // namespace services
