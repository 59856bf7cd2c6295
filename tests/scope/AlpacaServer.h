#pragma once
// An in-process stand-in for an Alpaca device, written from the published API: an HTTP server
// on 127.0.0.1 (a free port) that records every request and answers from a script, and a UDP
// responder for discovery on 127.0.0.1. It checks that our requests conform to the API; it is
// not a real device and proves nothing about interoperation.

#include <atomic>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace alpaca_test {

struct Request
{
    std::string method;                         // GET, PUT
    std::string path;                           // /api/v1/telescope/0/slewing
    std::string query;                          // after '?', as sent
    std::string body;                           // as sent
    std::map<std::string, std::string> headers; // names in lower case
    // The parameters of the query (GET) or the form body (PUT), in their order.
    std::vector<std::pair<std::string, std::string>> parameters;
};

// How the server answers one request.
struct Reply
{
    enum class Kind {
        Json,   // the standard answer around value / error
        Raw,    // status and body as given (text/plain)
        Silent, // reads the request, never answers
        Hangup  // closes the connection without answering
    };
    Kind kind = Kind::Json;
    std::string valueJson; // empty: no Value (a method's answer)
    int errorNumber = 0;
    std::string errorMessage;
    int status = 200;
    std::string rawBody;
    bool chunked = false; // sends the body in chunks of a few bytes
};

Reply Value(bool value);
Reply Value(double value);
Reply ValueJson(std::string json); // an array, a string ...
Reply Done();
Reply DeviceError(int errorNumber, std::string message);
Reply Http(int status, std::string text);
Reply Silent();
Reply Hangup();

// Answers by the method (the last path segment) and verb: "GET slewing". A key with several
// replies gives them in turn and repeats the last; a PUT without a key is answered Done(), a GET
// without a key with HTTP 400.
using Script = std::map<std::string, std::vector<Reply>>;

class AlpacaServer
{
public:
    explicit AlpacaServer(Script script);
    ~AlpacaServer();

    int Port() const { return port_; }
    std::string Address() const { return "127.0.0.1:" + std::to_string(port_); }
    std::vector<Request> Requests() const;
    // Closes the listening socket: later connections are refused.
    void Stop();

private:
    void Serve();
    void Handle(int connection);
    Reply Next(const Request& request);

    Script script_;
    std::map<std::string, std::size_t> used_;
    int listener_ = -1;
    int port_ = 0;
    int serverTransaction_ = 0;
    std::atomic<bool> stopping_{false};
    mutable std::mutex mutex_;
    std::vector<Request> requests_;
    std::thread thread_;
};

// A discovery responder on 127.0.0.1: answers each datagram with the given texts, one datagram
// each, and records what it received.
class DiscoveryResponder
{
public:
    explicit DiscoveryResponder(std::vector<std::string> answers);
    ~DiscoveryResponder();

    std::string Address() const { return "127.0.0.1:" + std::to_string(port_); }
    std::vector<std::string> Received() const;

private:
    std::vector<std::string> answers_;
    int socket_ = -1;
    int port_ = 0;
    std::atomic<bool> stopping_{false};
    mutable std::mutex mutex_;
    std::vector<std::string> received_;
    std::thread thread_;
};

} // namespace alpaca_test
