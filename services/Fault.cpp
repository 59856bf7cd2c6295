#include "services/Fault.h"

#include "services/UiPort.h"

#include <cstdlib>
#include <exception>
#include <utility>

namespace services {

namespace {

EndProcessHandler& Handler()
{
    static EndProcessHandler handler;
    return handler;
}

bool RunTrapped(UiPort& ui, const std::string& location, const std::function<void()>& body,
                bool show)
{
    std::string message;
    std::string where = location;
    try {
        body();
        return true;
    } catch (const Fault& f) {
        message = f.what();
        if (!f.Location().empty())
            where = f.Location();
    } catch (const std::exception& e) {
        message = e.what();
    } catch (...) {
        message = "Unexpected error.";
    }
    if (show)
        ui.ReportFault(message, where);
    else
        ui.LogFault(message, where);
    return false;
}

} // namespace

bool Trap(UiPort& ui, const std::string& location, const std::function<void()>& body)
{
    return RunTrapped(ui, location, body, true);
}

bool TrapSilently(UiPort& ui, const std::string& location, const std::function<void()>& body)
{
    return RunTrapped(ui, location, body, false);
}

void SetEndProcessHandler(EndProcessHandler handler)
{
    Handler() = std::move(handler);
}

void EndProcess(int exitCode)
{
    if (Handler())
        Handler()(exitCode);
    std::exit(exitCode);
}

} // namespace services
