#pragma once
// The session error log, errorlog.txt in the program folder: deleted at each start, one entry
// appended per trapped fault.

#include <filesystem>
#include <string>

namespace services {

inline constexpr const char* ErrorLogFileName = "errorlog.txt";

// One entry: "<date> <time> ERROR: <message> LOCATION OF ERROR: <location>", a line break,
// then a line holding only a line break.
std::string FormatErrorLogEntry(const std::string& dateText, const std::string& timeText,
                                const std::string& message, const std::string& location);

// Appends an entry stamped with the computer clock; any failure is swallowed.
void AppendToErrorLog(const std::filesystem::path& path, const std::string& message,
                      const std::string& location);

// Deletes the session's log, ignoring every error.
void DeleteErrorLog(const std::filesystem::path& path);

} // namespace services
