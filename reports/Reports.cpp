// Stand-in until the report table lands: every number prints an empty frame.
#include "reports/ReportWindow.h"

namespace reports {

void ReportWindow::Command9_Click()
{
    surface_.StartDoc();
    surface_.Paragraph("Report " + std::to_string(ReportNumber));
    surface_.EndDoc();
}

void ReportWindow::PrintNewChart(int number)
{
    ReportNumber = number;
    Command9_Click();
}

} // namespace reports
