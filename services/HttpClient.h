#pragma once
// A small blocking HTTP/1.1 client over POSIX sockets, enough for a device that answers short
// JSON texts: one request per connection ("Connection: close"), the whole exchange, connect
// included, bounded by one timeout. Addresses are HOST:PORT texts, HOST a name, an IPv4 address
// or an IPv6 address in brackets ([::1]:11111).

#include <chrono>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace services {

// What went wrong with an exchange, as the caller words it for the user.
enum class HttpFailure {
    Unreachable, // no connection could be made (refused, no route, unknown host)
    Timeout,     // no complete answer before the deadline
    Lost,        // the connection broke or closed before the answer was complete
    Garbled      // the answer is not HTTP
};

class HttpError : public std::runtime_error
{
public:
    HttpError(HttpFailure failure, const std::string& detail)
        : std::runtime_error(detail), failure_(failure)
    {
    }
    HttpFailure Failure() const { return failure_; }

private:
    HttpFailure failure_;
};

struct HostPort
{
    std::string host; // without brackets
    int port = 0;     // 1 to 65535
};

// HOST:PORT as written in an identifier or a setting; nothing when it is not of that form.
std::optional<HostPort> ParseHostPort(std::string_view text);

struct HttpAnswer
{
    int status = 0;   // 200, 400, 500 ...
    std::string body; // decoded from chunks when the server sent them
};

// Sends one request and returns the answer, whatever its status. target is the path with its
// query string; a non-empty formBody goes as application/x-www-form-urlencoded. Throws HttpError.
HttpAnswer HttpExchange(const HostPort& server, std::string_view method, std::string_view target,
                        std::string_view formBody, std::chrono::milliseconds timeout);

// Opens a TCP connection within timeout, for line protocols of their own; the caller owns the
// descriptor, which is non-blocking. Throws HttpError (Unreachable or Timeout).
int TcpConnect(const HostPort& server, std::chrono::milliseconds timeout);

} // namespace services
