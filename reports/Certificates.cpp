#include "reports/Certificates.h"

#include "reports/ReportWindow.h"

#include <stdexcept>

namespace reports {

void Printherschel(ReportWindow&)
{
    throw std::runtime_error("not built yet");
}
void Printherschel2(ReportWindow&)
{
    throw std::runtime_error("not built yet");
}
void Printmessierreport1(ReportWindow&)
{
    throw std::runtime_error("not built yet");
}
void Printmessierreport2(ReportWindow&)
{
    throw std::runtime_error("not built yet");
}
void Printstat(ReportWindow&)
{
    throw std::runtime_error("not built yet");
}

} // namespace reports
