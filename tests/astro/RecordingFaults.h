#pragma once
// A fault sink that records what the routines report; the fatal end of the process becomes
// an exception, so the routine that ends the program can be exercised.

#include "astro/FaultSink.h"

#include <string>
#include <vector>

namespace astro_test {

struct ProcessEnded
{
    int exitCode = 0;
};

class RecordingFaults : public astro::FaultSink
{
public:
    struct Report
    {
        std::string message;
        std::string location;
    };

    void ReportFault(std::string_view message, std::string_view location) override
    {
        reports.push_back({std::string(message), std::string(location)});
    }
    void EndProcess(int exitCode) override { throw ProcessEnded{exitCode}; }

    // Each report as "message @ location".
    std::vector<std::string> Texts() const
    {
        std::vector<std::string> texts;
        for (const Report& r : reports)
            texts.push_back(r.message + " @ " + r.location);
        return texts;
    }

    std::vector<Report> reports;
};

} // namespace astro_test
