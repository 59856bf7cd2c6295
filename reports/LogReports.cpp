#include "reports/LogReports.h"

#include "reports/ReportWindow.h"

#include <stdexcept>

namespace reports {

void Printdatabasereport(ReportWindow&)
{
    throw std::runtime_error("not built yet");
}
void Printlogreport(ReportWindow&)
{
    throw std::runtime_error("not built yet");
}
void PrintLogSummary(ReportWindow&)
{
    throw std::runtime_error("not built yet");
}
void PrintLogSingle(ReportWindow&)
{
    throw std::runtime_error("not built yet");
}

} // namespace reports
