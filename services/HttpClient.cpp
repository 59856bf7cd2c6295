#include "services/HttpClient.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <charconv>
#include <cstring>

#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace services {

namespace {

using Clock = std::chrono::steady_clock;

// Answers beyond this are not what a device sends; they end the exchange.
constexpr std::size_t maxAnswerBytes = 4 * 1024 * 1024;

class Socket
{
public:
    explicit Socket(int fd) : fd_(fd) {}
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;
    ~Socket()
    {
        if (fd_ >= 0)
            ::close(fd_);
    }
    int Fd() const { return fd_; }

private:
    int fd_;
};

// Milliseconds left until deadline, rounded up, for poll().
int MsLeft(Clock::time_point deadline)
{
    auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    return static_cast<int>(std::clamp<long long>(left, 0, 24 * 3600 * 1000));
}

// Waits until fd is ready for events; false at the deadline.
bool WaitFor(int fd, short events, Clock::time_point deadline)
{
    for (;;) {
        pollfd p{fd, events, 0};
        int n = ::poll(&p, 1, MsLeft(deadline));
        if (n > 0)
            return true;
        if (n == 0)
            return false;
        if (errno != EINTR)
            return true; // the following call reports the error
    }
}

[[noreturn]] void Fail(HttpFailure failure, const std::string& detail)
{
    throw HttpError(failure, detail);
}

std::string ErrnoText(int error)
{
    return std::strerror(error);
}

int Connect(const HostPort& server, Clock::time_point deadline)
{
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = AI_NUMERICSERV;
    addrinfo* found = nullptr;
    std::string port = std::to_string(server.port);
    int rc = ::getaddrinfo(server.host.c_str(), port.c_str(), &hints, &found);
    if (rc != 0)
        Fail(HttpFailure::Unreachable, ::gai_strerror(rc));

    int lastError = ECONNREFUSED;
    bool timedOut = false;
    int result = -1;
    for (addrinfo* a = found; a && result < 0; a = a->ai_next) {
        int fd =
            ::socket(a->ai_family, a->ai_socktype | SOCK_NONBLOCK | SOCK_CLOEXEC, a->ai_protocol);
        if (fd < 0) {
            lastError = errno;
            continue;
        }
        if (::connect(fd, a->ai_addr, a->ai_addrlen) == 0) {
            result = fd;
            break;
        }
        if (errno != EINPROGRESS) {
            lastError = errno;
            ::close(fd);
            continue;
        }
        if (!WaitFor(fd, POLLOUT, deadline)) {
            ::close(fd);
            timedOut = true;
            break;
        }
        int error = 0;
        socklen_t length = sizeof error;
        if (::getsockopt(fd, SOL_SOCKET, SO_ERROR, &error, &length) != 0)
            error = errno;
        if (error == 0) {
            result = fd;
        } else {
            lastError = error;
            ::close(fd);
        }
    }
    ::freeaddrinfo(found);
    if (result >= 0)
        return result;
    if (timedOut)
        Fail(HttpFailure::Timeout, "no connection");
    Fail(HttpFailure::Unreachable, ErrnoText(lastError));
}

void SendAll(int fd, std::string_view data, Clock::time_point deadline)
{
    while (!data.empty()) {
        if (!WaitFor(fd, POLLOUT, deadline))
            Fail(HttpFailure::Timeout, "the request could not be sent");
        ssize_t n = ::send(fd, data.data(), data.size(), MSG_NOSIGNAL);
        if (n < 0) {
            if (errno == EINTR || errno == EAGAIN || errno == EWOULDBLOCK)
                continue;
            Fail(HttpFailure::Lost, ErrnoText(errno));
        }
        data.remove_prefix(static_cast<std::size_t>(n));
    }
}

bool EqualsNoCase(std::string_view a, std::string_view b)
{
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::tolower(static_cast<unsigned char>(x)) ==
                      std::tolower(static_cast<unsigned char>(y));
           });
}

std::string_view Trim(std::string_view s)
{
    while (!s.empty() && (s.front() == ' ' || s.front() == '\t'))
        s.remove_prefix(1);
    while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\r'))
        s.remove_suffix(1);
    return s;
}

struct Head
{
    int status = 0;
    std::optional<std::size_t> contentLength;
    bool chunked = false;
};

Head ParseHead(std::string_view head)
{
    Head result;
    std::size_t lineEnd = head.find("\r\n");
    std::string_view statusLine = head.substr(0, lineEnd);
    // "HTTP/1.1 200 OK"
    if (!statusLine.starts_with("HTTP/1.") || statusLine.size() < 12 || statusLine[8] != ' ')
        Fail(HttpFailure::Garbled, "not an HTTP answer");
    std::string_view code = statusLine.substr(9, 3);
    auto [end, ec] = std::from_chars(code.data(), code.data() + code.size(), result.status);
    if (ec != std::errc() || end != code.data() + code.size() || result.status < 100)
        Fail(HttpFailure::Garbled, "not an HTTP answer");

    while (lineEnd != std::string_view::npos) {
        std::size_t start = lineEnd + 2;
        lineEnd = head.find("\r\n", start);
        std::string_view line = head.substr(start, lineEnd - start);
        std::size_t colon = line.find(':');
        if (colon == std::string_view::npos)
            continue;
        std::string_view name = Trim(line.substr(0, colon));
        std::string_view value = Trim(line.substr(colon + 1));
        if (EqualsNoCase(name, "Content-Length")) {
            std::size_t length = 0;
            auto [e, err] = std::from_chars(value.data(), value.data() + value.size(), length);
            if (err != std::errc() || e != value.data() + value.size())
                Fail(HttpFailure::Garbled, "a bad Content-Length");
            result.contentLength = length;
        } else if (EqualsNoCase(name, "Transfer-Encoding")) {
            result.chunked = value.find("chunked") != std::string_view::npos;
        }
    }
    return result;
}

// The body of a chunked transfer when all its chunks are there; nothing while more is due.
std::optional<std::string> Unchunk(std::string_view data)
{
    std::string body;
    for (;;) {
        std::size_t lineEnd = data.find("\r\n");
        if (lineEnd == std::string_view::npos)
            return std::nullopt;
        std::string_view sizeText = data.substr(0, lineEnd);
        sizeText = sizeText.substr(0, sizeText.find(';'));
        sizeText = Trim(sizeText);
        std::size_t size = 0;
        auto [end, ec] =
            std::from_chars(sizeText.data(), sizeText.data() + sizeText.size(), size, 16);
        if (ec != std::errc() || end != sizeText.data() + sizeText.size())
            Fail(HttpFailure::Garbled, "a bad chunk");
        data.remove_prefix(lineEnd + 2);
        if (size == 0)
            return body; // trailers, if any, are not needed
        if (data.size() < size + 2)
            return std::nullopt;
        body.append(data.substr(0, size));
        data.remove_prefix(size + 2);
    }
}

std::string HostHeader(const HostPort& server)
{
    bool v6 = server.host.find(':') != std::string::npos;
    return (v6 ? "[" + server.host + "]" : server.host) + ":" + std::to_string(server.port);
}

} // namespace

std::optional<HostPort> ParseHostPort(std::string_view text)
{
    std::string_view host;
    std::string_view port;
    if (text.starts_with('[')) {
        std::size_t close = text.find(']');
        if (close == std::string_view::npos || close + 1 >= text.size() || text[close + 1] != ':')
            return std::nullopt;
        host = text.substr(1, close - 1);
        port = text.substr(close + 2);
    } else {
        std::size_t colon = text.rfind(':');
        if (colon == std::string_view::npos)
            return std::nullopt;
        host = text.substr(0, colon);
        port = text.substr(colon + 1);
        if (host.find(':') != std::string_view::npos)
            return std::nullopt;
    }
    if (host.empty() || host.find_first_of("/ \t?#@[]") != std::string_view::npos)
        return std::nullopt;
    int number = 0;
    auto [end, ec] = std::from_chars(port.data(), port.data() + port.size(), number);
    if (port.empty() || ec != std::errc() || end != port.data() + port.size() || number < 1 ||
        number > 65535)
        return std::nullopt;
    return HostPort{std::string(host), number};
}

int TcpConnect(const HostPort& server, std::chrono::milliseconds timeout)
{
    return Connect(server, Clock::now() + timeout);
}

HttpAnswer HttpExchange(const HostPort& server, std::string_view method, std::string_view target,
                        std::string_view formBody, std::chrono::milliseconds timeout)
{
    Clock::time_point deadline = Clock::now() + timeout;
    Socket socket(Connect(server, deadline));

    std::string request;
    request.append(method).append(" ").append(target).append(" HTTP/1.1\r\n");
    request.append("Host: ").append(HostHeader(server)).append("\r\n");
    request.append("Accept: application/json\r\n");
    request.append("Connection: close\r\n");
    if (!formBody.empty() || method == "PUT" || method == "POST") {
        request.append("Content-Type: application/x-www-form-urlencoded\r\n");
        request.append("Content-Length: ").append(std::to_string(formBody.size())).append("\r\n");
    }
    request.append("\r\n").append(formBody);
    SendAll(socket.Fd(), request, deadline);

    std::string received;
    std::optional<Head> head;
    std::size_t bodyStart = 0;
    char buffer[8192];
    for (;;) {
        if (head) {
            std::string_view rest = std::string_view(received).substr(bodyStart);
            if (head->chunked) {
                if (std::optional<std::string> body = Unchunk(rest))
                    return {head->status, std::move(*body)};
            } else if (head->contentLength && rest.size() >= *head->contentLength) {
                return {head->status, std::string(rest.substr(0, *head->contentLength))};
            }
        }
        if (!WaitFor(socket.Fd(), POLLIN, deadline))
            Fail(HttpFailure::Timeout, "no answer");
        ssize_t n = ::recv(socket.Fd(), buffer, sizeof buffer, 0);
        if (n < 0) {
            if (errno == EINTR || errno == EAGAIN || errno == EWOULDBLOCK)
                continue;
            Fail(HttpFailure::Lost, ErrnoText(errno));
        }
        if (n == 0) {
            // The server closed: complete only for a body that runs to the end of the stream.
            if (!head)
                Fail(HttpFailure::Lost, received.empty() ? "closed without an answer"
                                                         : "closed in the middle of the answer");
            if (head->chunked || head->contentLength)
                Fail(HttpFailure::Lost, "closed in the middle of the answer");
            return {head->status, received.substr(bodyStart)};
        }
        received.append(buffer, static_cast<std::size_t>(n));
        if (received.size() > maxAnswerBytes)
            Fail(HttpFailure::Garbled, "an answer too long");
        if (!head) {
            std::size_t end = received.find("\r\n\r\n");
            if (end != std::string::npos) {
                head = ParseHead(std::string_view(received).substr(0, end));
                bodyStart = end + 4;
            }
        }
    }
}

} // namespace services
