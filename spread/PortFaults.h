#pragma once
// The astronomy routines' faults and plain message boxes, handed to the user-interface port:
// a fault goes to the port's fault report (shown and appended to the error log), a message box
// to the message window. Faults are counted, so that a command can end with its status.

#include "astro/FaultSink.h"
#include "astro/PlanetaryTerms.h"
#include "services/Fault.h"
#include "services/UiPort.h"

#include <string>

namespace spread {

class PortFaults : public astro::FaultSink, public astro::MessageBoxSink
{
public:
    explicit PortFaults(services::UiPort& ui) : ui_(ui) {}

    void ReportFault(std::string_view message, std::string_view location) override
    {
        ++count;
        ui_.ReportFault(std::string(message), std::string(location));
    }
    void EndProcess(int exitCode) override { services::EndProcess(exitCode); }
    void ShowMessageBox(std::string_view text) override
    {
        ui_.ShowMessage(std::string(text), "", "I");
    }

    int count = 0;

private:
    services::UiPort& ui_;
};

} // namespace spread
