#include "services/ErrorLog.h"

#include <QDateTime>

#include "services/Vb.h"

#include <fstream>
#include <system_error>

namespace services {

std::string FormatErrorLogEntry(const std::string& dateText, const std::string& timeText,
                                const std::string& message, const std::string& location)
{
    return dateText + " " + timeText + " ERROR: " + message + " LOCATION OF ERROR: " + location +
           "\n\n";
}

void AppendToErrorLog(const std::filesystem::path& path, const std::string& message,
                      const std::string& location)
{
    if (path.empty())
        return;
    try {
        const QDateTime now = QDateTime::currentDateTime();
        std::ofstream out(path, std::ios::app | std::ios::binary);
        out << FormatErrorLogEntry(vb::ShortDate(now.date()), vb::LongTime(now.time()), message,
                                   location);
    } catch (...) {
        // A failure while reporting is not reported again.
    }
}

void DeleteErrorLog(const std::filesystem::path& path)
{
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
}

} // namespace services
