#include "services/UiPort.h"

#include "services/ErrorLog.h"

namespace services {

std::string TitleForKind(const std::string& kind)
{
    if (kind == "I")
        return "Informational Message";
    if (kind == "E")
        return "System Error";
    if (kind == "U")
        return "Data Entry Error";
    return {};
}

void UiPort::ShowMessage(const std::string& text, const std::string& title,
                         const std::string& kind, bool pause)
{
    Message m;
    m.kind = kind;
    m.Title = TitleForKind(kind);
    m.ShortMessage = title;
    m.LongMessage = text;
    m.PauseWindow = pause;
    DisplayMessage(m);
}

void UiPort::BusyMessage(const std::string&, const std::string&)
{
    Busy(BusyKind::Working);
}

void UiPort::ReportFault(const std::string& message, const std::string& location)
{
    Message m;
    m.kind = "E";
    m.Title = "System Error";
    m.ShortMessage = "The Following Error Has Occurred";
    m.LongMessage = location.empty() ? message : message + "\nOccurred in : " + location;
    DisplayMessage(m);
    LogFault(message, location);
}

void UiPort::LogFault(const std::string& message, const std::string& location)
{
    // A failure while reporting is not reported again.
    AppendToErrorLog(errorLog_, message, location);
}

} // namespace services
