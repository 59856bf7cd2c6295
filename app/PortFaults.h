#pragma once
// The astronomy routines' faults, handed to the port's fault report; counted so that a command
// can end with status 1.

#include "astro/FaultSink.h"
#include "services/Fault.h"
#include "services/UiPort.h"

#include <string>

namespace app {

class PortFaults : public astro::FaultSink
{
public:
    explicit PortFaults(services::UiPort& ui) : ui_(ui) {}

    void ReportFault(std::string_view message, std::string_view location) override
    {
        ++count;
        ui_.ReportFault(std::string(message), std::string(location));
    }
    void EndProcess(int exitCode) override { services::EndProcess(exitCode); }

    int count = 0;

private:
    services::UiPort& ui_;
};

} // namespace app
