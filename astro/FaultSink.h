#pragma once
// How the astronomy routines report a trapped fault. The core cannot reach the user itself:
// the application adapts this to its fault report (message plus location, appended to the
// error log), and tests record what arrives.

#include <string_view>

namespace astro {

// The run-time's descriptions of the faults these routines trap; they are the message text
// of the report.
inline constexpr std::string_view kInvalidCall = "Invalid procedure call or argument";
inline constexpr std::string_view kOverflow = "Overflow";
inline constexpr std::string_view kSubscriptOutOfRange = "Subscript out of range";
inline constexpr std::string_view kDivisionByZero = "Division by zero";
inline constexpr std::string_view kTypeMismatch = "Type mismatch";
inline constexpr std::string_view kFileNotFound = "File not found";
inline constexpr std::string_view kInputPastEndOfFile = "Input past end of file";

// Where the one fatal fault is reported; the process ends right after.
inline constexpr std::string_view kFatalFaultLocation = "Module1.CalcASN";

class FaultSink
{
public:
    virtual ~FaultSink() = default;

    // A trapped fault: the run-time's description and the routine's location, such as
    // "Module1.CalcJulian". The routine then returns its outputs as they stood.
    virtual void ReportFault(std::string_view message, std::string_view location) = 0;

    // Ends the process after the one fatal fault (CalcASN) has been reported. It must not
    // return normally: the application ends the process, tests throw. Should it return, the
    // process ends anyway.
    virtual void EndProcess(int exitCode) = 0;
};

// Passes faults on under the location of one routine, for a long routine whose local steps
// call other routines: what they report is the routine's fault. The fatal arcsine fault keeps
// its own location. Counts what passed, so the routine can stop after a fault.
class RoutineFaults : public FaultSink
{
public:
    RoutineFaults(FaultSink& inner, std::string_view location) : inner_(inner), location_(location)
    {
    }

    void ReportFault(std::string_view message, std::string_view location) override
    {
        ++count;
        inner_.ReportFault(message, location == kFatalFaultLocation ? location : location_);
    }
    void EndProcess(int exitCode) override { inner_.EndProcess(exitCode); }

    int count = 0;

private:
    FaultSink& inner_;
    std::string_view location_;
};

} // namespace astro
