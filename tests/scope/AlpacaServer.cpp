#include "AlpacaServer.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <stdexcept>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace alpaca_test {

namespace {

constexpr int pollMs = 20;

std::string Lower(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

std::string Trim(const std::string& text)
{
    std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

std::vector<std::pair<std::string, std::string>> SplitParameters(const std::string& text)
{
    std::vector<std::pair<std::string, std::string>> result;
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = text.find('&', start);
        if (end == std::string::npos)
            end = text.size();
        std::string item = text.substr(start, end - start);
        std::size_t equals = item.find('=');
        result.emplace_back(item.substr(0, equals),
                            equals == std::string::npos ? "" : item.substr(equals + 1));
        start = end + 1;
    }
    return result;
}

std::string JsonString(const std::string& text)
{
    std::string out = "\"";
    for (char c : text) {
        if (c == '"' || c == '\\')
            out += '\\';
        out += c;
    }
    return out + "\"";
}

sockaddr_in Loopback(int port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

int BoundSocket(int type, int& port)
{
    int fd = ::socket(AF_INET, type | SOCK_CLOEXEC, 0);
    sockaddr_in address = Loopback(0);
    if (fd < 0 || ::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0)
        throw std::runtime_error("test server: no socket on 127.0.0.1");
    socklen_t length = sizeof address;
    ::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length);
    port = ntohs(address.sin_port);
    return fd;
}

bool Readable(int fd)
{
    pollfd p{fd, POLLIN, 0};
    return ::poll(&p, 1, pollMs) > 0;
}

void SendAll(int fd, const std::string& data)
{
    std::size_t sent = 0;
    while (sent < data.size()) {
        ssize_t n = ::send(fd, data.data() + sent, data.size() - sent, MSG_NOSIGNAL);
        if (n <= 0)
            return;
        sent += static_cast<std::size_t>(n);
    }
}

} // namespace

Reply Value(bool value)
{
    return ValueJson(value ? "true" : "false");
}

Reply Value(double value)
{
    char text[64];
    auto end = std::to_chars(text, text + sizeof text, value).ptr;
    return ValueJson(std::string(text, end));
}

Reply ValueJson(std::string json)
{
    Reply reply;
    reply.valueJson = std::move(json);
    return reply;
}

Reply Done()
{
    return {};
}

Reply DeviceError(int errorNumber, std::string message)
{
    Reply reply;
    reply.errorNumber = errorNumber;
    reply.errorMessage = std::move(message);
    return reply;
}

Reply Http(int status, std::string text)
{
    Reply reply;
    reply.kind = Reply::Kind::Raw;
    reply.status = status;
    reply.rawBody = std::move(text);
    return reply;
}

Reply Silent()
{
    Reply reply;
    reply.kind = Reply::Kind::Silent;
    return reply;
}

Reply Hangup()
{
    Reply reply;
    reply.kind = Reply::Kind::Hangup;
    return reply;
}

AlpacaServer::AlpacaServer(Script script) : script_(std::move(script))
{
    listener_ = BoundSocket(SOCK_STREAM, port_);
    ::listen(listener_, 16);
    thread_ = std::thread([this] { Serve(); });
}

AlpacaServer::~AlpacaServer()
{
    Stop();
}

void AlpacaServer::Stop()
{
    if (stopping_.exchange(true))
        return;
    thread_.join();
    ::close(listener_);
}

std::vector<Request> AlpacaServer::Requests() const
{
    std::lock_guard lock(mutex_);
    return requests_;
}

void AlpacaServer::Serve()
{
    while (!stopping_) {
        if (!Readable(listener_))
            continue;
        int connection = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        if (connection < 0)
            continue;
        Handle(connection);
        ::close(connection);
    }
}

Reply AlpacaServer::Next(const Request& request)
{
    std::string method = request.path.substr(request.path.rfind('/') + 1);
    std::string key = request.method + " " + method;
    auto found = script_.find(key);
    if (found == script_.end() || found->second.empty())
        return request.method == "PUT" ? Done() : Http(400, "Unknown method " + method);
    std::size_t& used = used_[key];
    const Reply& reply = found->second[std::min(used, found->second.size() - 1)];
    ++used;
    return reply;
}

void AlpacaServer::Handle(int connection)
{
    std::string received;
    std::size_t headEnd = std::string::npos;
    std::size_t contentLength = 0;
    while (!stopping_) {
        if (headEnd != std::string::npos && received.size() >= headEnd + 4 + contentLength)
            break;
        if (!Readable(connection))
            continue;
        char buffer[4096];
        ssize_t n = ::recv(connection, buffer, sizeof buffer, 0);
        if (n <= 0)
            return;
        received.append(buffer, static_cast<std::size_t>(n));
        if (headEnd == std::string::npos &&
            (headEnd = received.find("\r\n\r\n")) != received.npos) {
            std::size_t at = Lower(received.substr(0, headEnd)).find("\r\ncontent-length:");
            if (at != std::string::npos)
                contentLength = std::stoul(received.substr(at + 17));
        }
    }
    if (stopping_)
        return;

    Request request;
    std::size_t lineEnd = received.find("\r\n");
    std::string line = received.substr(0, lineEnd);
    std::size_t space1 = line.find(' ');
    std::size_t space2 = line.rfind(' ');
    request.method = line.substr(0, space1);
    std::string target = line.substr(space1 + 1, space2 - space1 - 1);
    std::size_t question = target.find('?');
    request.path = target.substr(0, question);
    if (question != std::string::npos)
        request.query = target.substr(question + 1);
    while (lineEnd < headEnd) {
        std::size_t start = lineEnd + 2;
        lineEnd = received.find("\r\n", start);
        std::string header = received.substr(start, lineEnd - start);
        std::size_t colon = header.find(':');
        if (colon != std::string::npos)
            request.headers[Lower(header.substr(0, colon))] = Trim(header.substr(colon + 1));
    }
    request.body = received.substr(headEnd + 4, contentLength);
    request.parameters = SplitParameters(request.method == "GET" ? request.query : request.body);

    int clientTransaction = 0;
    for (const auto& [name, value] : request.parameters)
        if (Lower(name) == "clienttransactionid")
            clientTransaction = std::atoi(value.c_str());

    Reply reply;
    {
        std::lock_guard lock(mutex_);
        requests_.push_back(request);
        reply = Next(request);
    }

    switch (reply.kind) {
    case Reply::Kind::Hangup:
        return;
    case Reply::Kind::Silent:
        // Keeps the connection open until the client gives up.
        while (!stopping_) {
            if (!Readable(connection))
                continue;
            char buffer[256];
            if (::recv(connection, buffer, sizeof buffer, 0) <= 0)
                return;
        }
        return;
    case Reply::Kind::Json:
    case Reply::Kind::Raw:
        break;
    }

    std::string body = reply.rawBody;
    std::string contentType = "text/plain; charset=utf-8";
    if (reply.kind == Reply::Kind::Json) {
        contentType = "application/json; charset=utf-8";
        body = "{";
        if (!reply.valueJson.empty())
            body += "\"Value\":" + reply.valueJson + ",";
        body += "\"ClientTransactionID\":" + std::to_string(clientTransaction) +
                ",\"ServerTransactionID\":" + std::to_string(++serverTransaction_) +
                ",\"ErrorNumber\":" + std::to_string(reply.errorNumber) +
                ",\"ErrorMessage\":" + JsonString(reply.errorMessage) + "}";
    }
    std::string head = "HTTP/1.1 " + std::to_string(reply.status) +
                       (reply.status == 200 ? " OK" : " Error") +
                       "\r\nContent-Type: " + contentType + "\r\nConnection: close\r\n";
    if (!reply.chunked) {
        SendAll(connection,
                head + "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body);
        return;
    }
    std::string chunks;
    for (std::size_t at = 0; at < body.size(); at += 7) {
        std::string piece = body.substr(at, 7);
        char size[16];
        auto end = std::to_chars(size, size + sizeof size, piece.size(), 16).ptr;
        chunks += std::string(size, end) + "\r\n" + piece + "\r\n";
    }
    SendAll(connection, head + "Transfer-Encoding: chunked\r\n\r\n" + chunks + "0\r\n\r\n");
}

DiscoveryResponder::DiscoveryResponder(std::vector<std::string> answers)
    : answers_(std::move(answers))
{
    socket_ = BoundSocket(SOCK_DGRAM, port_);
    thread_ = std::thread([this] {
        while (!stopping_) {
            if (!Readable(socket_))
                continue;
            char buffer[512];
            sockaddr_in from{};
            socklen_t length = sizeof from;
            ssize_t n = ::recvfrom(socket_, buffer, sizeof buffer, 0,
                                   reinterpret_cast<sockaddr*>(&from), &length);
            if (n < 0)
                continue;
            {
                std::lock_guard lock(mutex_);
                received_.emplace_back(buffer, static_cast<std::size_t>(n));
            }
            for (const std::string& answer : answers_)
                ::sendto(socket_, answer.data(), answer.size(), 0,
                         reinterpret_cast<sockaddr*>(&from), length);
        }
    });
}

DiscoveryResponder::~DiscoveryResponder()
{
    stopping_ = true;
    thread_.join();
    ::close(socket_);
}

std::vector<std::string> DiscoveryResponder::Received() const
{
    std::lock_guard lock(mutex_);
    return received_;
}

} // namespace alpaca_test
