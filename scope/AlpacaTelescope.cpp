#include "scope/AlpacaTelescope.h"

#include <algorithm>
#include <atomic>
#include <cctype>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>
#include <thread>
#include <utility>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <arpa/inet.h>
#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "services/HttpClient.h"

namespace scope {

using services::HostPort;
using services::HttpAnswer;
using services::HttpError;
using services::HttpExchange;
using services::HttpFailure;
using services::ParseHostPort;

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr std::chrono::seconds requestTimeout = 5s;
constexpr auto slewPollInterval = 200ms;
constexpr auto keepGoingInterval = 50ms;
constexpr std::chrono::seconds slewBound = 180s;
// ErrorNumber of a property or method the device does not implement.
constexpr int notImplemented = 0x400;
// A rate the panel's buttons move an axis at, in degrees per second, when the device allows it.
constexpr double preferredAxisRate = 1.0;
constexpr std::string_view discoveryDatagram = "alpacadiscovery1";

// The ClientID of this process and its transaction counter, shared by every driver object, so
// that no two requests of one run carry the same pair.
struct ClientIds
{
    std::uint32_t clientId;
    std::atomic<std::uint32_t> nextTransaction{1};
};

ClientIds& Client()
{
    static ClientIds ids{[] {
        std::random_device seed;
        return std::uniform_int_distribution<std::uint32_t>(1, 65535)(seed);
    }()};
    return ids;
}

// "ClientID=…&ClientTransactionID=…", the next transaction.
std::string ClientParameters()
{
    ClientIds& ids = Client();
    return "ClientID=" + std::to_string(ids.clientId) +
           "&ClientTransactionID=" + std::to_string(ids.nextTransaction++);
}

std::string FormatNumber(double value)
{
    char text[64];
    auto [end, ec] = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed);
    if (ec != std::errc())
        return "0";
    return std::string(text, end);
}

bool EqualsNoCase(std::string_view a, std::string_view b)
{
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::tolower(static_cast<unsigned char>(x)) ==
                      std::tolower(static_cast<unsigned char>(y));
           });
}

// The plain-text body of a 4xx or 5xx answer, made fit for one line of a message.
std::string OneLine(const std::string& text)
{
    std::string line;
    for (char c : text)
        line += (c == '\r' || c == '\n' || c == '\t') ? ' ' : c;
    std::size_t first = line.find_first_not_of(' ');
    if (first == std::string::npos)
        return {};
    line = line.substr(first, line.find_last_not_of(' ') - first + 1);
    if (line.size() > 300)
        line = line.substr(0, 300) + "...";
    return line;
}

// A refusal by the device: an ErrorNumber other than 0, or an HTTP error status.
class DeviceRefusal : public TelescopeError
{
public:
    DeviceRefusal(const std::string& message, int errorNumber)
        : TelescopeError(message), errorNumber_(errorNumber)
    {
    }
    int ErrorNumber() const { return errorNumber_; } // 0 for an HTTP error status

private:
    int errorNumber_;
};

using Parameters = std::vector<std::pair<std::string, std::string>>;

// What a request is part of, as the messages name it ("refused the slew").
namespace activity {
constexpr const char* connection = "connection";
constexpr const char* capabilities = "capability query";
constexpr const char* target = "target";
constexpr const char* slew = "slew";
constexpr const char* sync = "sync";
constexpr const char* position = "position reading";
constexpr const char* abort = "abort";
constexpr const char* move = "move";
constexpr const char* tracking = "tracking";
constexpr const char* park = "park";
constexpr const char* unpark = "unpark";
} // namespace activity

class AlpacaTelescope final : public Telescope
{
public:
    AlpacaTelescope(std::string identifier, std::string address, HostPort server,
                    std::uint32_t deviceNumber)
        : identifier_(std::move(identifier)), address_(std::move(address)),
          server_(std::move(server)),
          basePath_("/api/v1/telescope/" + std::to_string(deviceNumber) + "/")
    {
    }

    const std::string& Identifier() const override { return identifier_; }

    void SetConnected(bool connected) override
    {
        // Dropping the link sends nothing: other clients may share the device.
        if (connected && !GetBool("connected", activity::connection))
            Put("connected", {{"Connected", "true"}}, activity::connection);
        connected_ = connected;
    }
    bool Connected() const override { return connected_; }

    bool CanSlew() override { return GetBool("canslewasync", activity::capabilities); }
    bool CanSync() override { return GetBool("cansync", activity::capabilities); }

    void SetTargetDeclination(double degrees) override
    {
        Put("targetdeclination", {{"TargetDeclination", FormatNumber(degrees)}}, activity::target);
    }
    void SetTargetRightAscension(double hours) override
    {
        Put("targetrightascension", {{"TargetRightAscension", FormatNumber(hours)}},
            activity::target);
    }

    void SlewToTarget(const KeepGoing& keepGoing) override
    {
        // Devices refuse a slew while not tracking.
        if (!GetBool("tracking", activity::slew) && GetBool("cansettracking", activity::slew))
            Put("tracking", {{"Tracking", "true"}}, activity::slew);
        Put("slewtotargetasync", {}, activity::slew);
        Clock::time_point start = Clock::now();
        while (GetBool("slewing", activity::slew)) {
            if (Clock::now() - start > slewBound) {
                try {
                    Put("abortslew", {}, activity::slew);
                } catch (const TelescopeError&) {
                    // The bound's message says more than a failed abort would.
                }
                throw TelescopeError("The telescope at " + address_ +
                                     " did not finish the slew within " +
                                     std::to_string(slewBound.count()) + " s");
            }
            for (auto waited = 0ms; waited < slewPollInterval; waited += keepGoingInterval) {
                if (keepGoing && !keepGoing()) {
                    Put("abortslew", {}, activity::slew);
                    throw TelescopeError("The slew was stopped");
                }
                std::this_thread::sleep_for(keepGoingInterval);
            }
        }
    }

    void SyncToTarget() override { Put("synctotarget", {}, activity::sync); }

    double RightAscension() override { return GetDouble("rightascension", activity::position); }
    double Declination() override { return GetDouble("declination", activity::position); }
    std::optional<double> Altitude() override { return Optional("altitude"); }
    std::optional<double> Azimuth() override { return Optional("azimuth"); }

    void AbortSlew() override { Put("abortslew", {}, activity::abort); }

    // East and north are the positive directions of the primary and secondary axes.
    void MoveAxis(Direction direction, bool moving) override
    {
        int axis = (direction == Direction::North || direction == Direction::South) ? 1 : 0;
        double rate = 0;
        if (moving) {
            rate = AxisRate(axis);
            if (direction == Direction::South || direction == Direction::West)
                rate = -rate;
        }
        Put("moveaxis", {{"Axis", std::to_string(axis)}, {"Rate", FormatNumber(rate)}},
            activity::move);
    }

    std::optional<bool> Tracking() override
    {
        try {
            return GetBool("tracking", activity::tracking);
        } catch (const DeviceRefusal& refusal) {
            if (refusal.ErrorNumber() == notImplemented)
                return std::nullopt;
            throw;
        }
    }
    void SetTracking(bool on) override
    {
        Put("tracking", {{"Tracking", on ? "true" : "false"}}, activity::tracking);
    }
    void Park() override { Put("park", {}, activity::park); }
    void Unpark() override { Put("unpark", {}, activity::unpark); }

private:
    std::optional<double> Optional(const std::string& method)
    {
        try {
            return GetDouble(method, activity::position);
        } catch (const DeviceRefusal& refusal) {
            if (refusal.ErrorNumber() == notImplemented)
                return std::nullopt;
            throw;
        }
    }

    // The allowed rate nearest to the preferred one; the preferred one when the device lists
    // none.
    double AxisRate(int axis)
    {
        QJsonValue ranges;
        try {
            ranges = Get("axisrates", {{"Axis", std::to_string(axis)}}, activity::move);
        } catch (const DeviceRefusal&) {
            return preferredAxisRate;
        }
        double best = preferredAxisRate;
        double bestDistance = INFINITY;
        for (const QJsonValue& range : ranges.toArray()) {
            double low = std::abs(range.toObject().value("Minimum").toDouble());
            double high = std::abs(range.toObject().value("Maximum").toDouble());
            if (low > high)
                std::swap(low, high);
            double candidate = std::clamp(preferredAxisRate, low, high);
            if (candidate > 0 && std::abs(candidate - preferredAxisRate) < bestDistance) {
                best = candidate;
                bestDistance = std::abs(candidate - preferredAxisRate);
            }
        }
        return best;
    }

    bool GetBool(const std::string& method, const char* what)
    {
        QJsonValue value = Get(method, {}, what);
        if (!value.isBool())
            throw Unreadable(what);
        return value.toBool();
    }

    double GetDouble(const std::string& method, const char* what)
    {
        QJsonValue value = Get(method, {}, what);
        if (!value.isDouble())
            throw Unreadable(what);
        return value.toDouble();
    }

    QJsonValue Get(const std::string& method, const Parameters& parameters, const char* what)
    {
        return Exchange("GET", method, parameters, what);
    }

    void Put(const std::string& method, const Parameters& parameters, const char* what)
    {
        Exchange("PUT", method, parameters, what);
    }

    // One request; its Value (undefined for a method). Throws TelescopeError.
    QJsonValue Exchange(std::string_view verb, const std::string& method,
                        const Parameters& parameters, const char* what)
    {
        std::string query;
        for (const auto& [name, value] : parameters)
            query += name + "=" + value + "&";
        query += ClientParameters();
        bool isGet = verb == "GET";
        std::string target = basePath_ + method + (isGet ? "?" + query : "");

        HttpAnswer answer;
        try {
            answer = HttpExchange(server_, verb, target, isGet ? "" : query, requestTimeout);
        } catch (const HttpError& error) {
            throw Transport(error, what);
        }
        answered_ = true;

        if (answer.status < 200 || answer.status > 299) {
            std::string body = OneLine(answer.body);
            throw DeviceRefusal("The telescope at " + address_ + " refused the " + what +
                                    (body.empty() ? "" : ": " + body) + " (HTTP " +
                                    std::to_string(answer.status) + ")",
                                0);
        }
        QJsonDocument document = QJsonDocument::fromJson(QByteArray::fromStdString(answer.body));
        if (!document.isObject())
            throw Unreadable(what);
        QJsonObject object = document.object();
        int errorNumber = object.value("ErrorNumber").toInt(0);
        if (errorNumber != 0) {
            std::string message = OneLine(object.value("ErrorMessage").toString().toStdString());
            throw DeviceRefusal("The telescope at " + address_ + " refused the " + what +
                                    (message.empty() ? "" : ": " + message) + " (error " +
                                    std::to_string(errorNumber) + ")",
                                errorNumber);
        }
        return object.value("Value");
    }

    TelescopeError Transport(const HttpError& error, const char* what) const
    {
        switch (error.Failure()) {
        case HttpFailure::Timeout:
            return TelescopeError(address_ + " did not answer within " +
                                  std::to_string(requestTimeout.count()) + " s");
        case HttpFailure::Unreachable:
            // A device that answered before and now refuses has gone away in the middle.
            if (!answered_)
                return TelescopeError("The telescope at " + address_ +
                                      " could not be reached: " + error.what());
            [[fallthrough]];
        case HttpFailure::Lost:
            return TelescopeError("The connection to " + address_ + " was lost during the " + what);
        case HttpFailure::Garbled:
            break;
        }
        return Unreadable(what);
    }

    TelescopeError Unreadable(const char* what) const
    {
        return TelescopeError("The telescope at " + address_ +
                              " gave an unreadable answer during the " + what);
    }

    std::string identifier_;
    std::string address_; // HOST:PORT as written in the identifier
    HostPort server_;
    std::string basePath_; // /api/v1/telescope/N/
    bool connected_ = false;
    bool answered_ = false;
};

std::string AddressText(const sockaddr_storage& from, int port)
{
    char host[INET6_ADDRSTRLEN] = {};
    if (from.ss_family == AF_INET6) {
        ::inet_ntop(AF_INET6, &reinterpret_cast<const sockaddr_in6&>(from).sin6_addr, host,
                    sizeof host);
        return "[" + std::string(host) + "]:" + std::to_string(port);
    }
    ::inet_ntop(AF_INET, &reinterpret_cast<const sockaddr_in&>(from).sin_addr, host, sizeof host);
    return std::string(host) + ":" + std::to_string(port);
}

// The HOST:PORT texts of the servers that answered the datagram, in the order they answered.
std::vector<std::string> DiscoverServers(const std::string& address, int timeoutMs)
{
    std::optional<HostPort> target = ParseHostPort(address);
    if (!target)
        throw TelescopeError("The discovery address " + address + " is not HOST:PORT");
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_DGRAM;
    hints.ai_flags = AI_NUMERICSERV;
    addrinfo* found = nullptr;
    std::string port = std::to_string(target->port);
    if (int rc = ::getaddrinfo(target->host.c_str(), port.c_str(), &hints, &found); rc != 0)
        throw TelescopeError("The discovery address " + address +
                             " could not be resolved: " + ::gai_strerror(rc));
    std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> owner(found, &::freeaddrinfo);

    int fd = ::socket(found->ai_family, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (fd < 0)
        throw TelescopeError("No discovery socket: " + std::string(std::strerror(errno)));
    std::unique_ptr<int, void (*)(int*)> closer(&fd, [](int* f) { ::close(*f); });
    int on = 1;
    ::setsockopt(fd, SOL_SOCKET, SO_BROADCAST, &on, sizeof on);
    if (::sendto(fd, discoveryDatagram.data(), discoveryDatagram.size(), 0, found->ai_addr,
                 found->ai_addrlen) < 0)
        throw TelescopeError("The discovery datagram could not be sent to " + address + ": " +
                             std::strerror(errno));

    std::vector<std::string> servers;
    Clock::time_point deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
    for (;;) {
        auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        if (left.count() <= 0)
            break;
        pollfd p{fd, POLLIN, 0};
        if (::poll(&p, 1, static_cast<int>(left.count())) <= 0)
            continue; // nothing more before the deadline, or a signal
        char answer[2048];
        sockaddr_storage from{};
        socklen_t fromLength = sizeof from;
        ssize_t n = ::recvfrom(fd, answer, sizeof answer, 0, reinterpret_cast<sockaddr*>(&from),
                               &fromLength);
        if (n <= 0)
            continue;
        QJsonDocument document =
            QJsonDocument::fromJson(QByteArray(answer, static_cast<qsizetype>(n)));
        int alpacaPort = document.object().value("AlpacaPort").toInt(0);
        if (alpacaPort < 1 || alpacaPort > 65535)
            continue;
        std::string server = AddressText(from, alpacaPort);
        if (std::find(servers.begin(), servers.end(), server) == servers.end())
            servers.push_back(server);
    }
    return servers;
}

} // namespace

std::unique_ptr<Telescope> MakeAlpacaTelescope(std::string_view identifier)
{
    constexpr std::string_view scheme = "alpaca://";
    constexpr std::string_view kind = "/telescope/";
    if (!identifier.starts_with(scheme))
        return nullptr;
    std::string_view rest = identifier.substr(scheme.size());
    std::size_t slash = rest.find('/');
    if (slash == std::string_view::npos)
        return nullptr;
    std::string_view address = rest.substr(0, slash);
    std::optional<HostPort> server = ParseHostPort(address);
    std::string_view path = rest.substr(slash);
    if (!server || path.size() <= kind.size() || !EqualsNoCase(path.substr(0, kind.size()), kind))
        return nullptr;
    std::string_view number = path.substr(kind.size());
    std::uint32_t deviceNumber = 0;
    auto [end, ec] = std::from_chars(number.data(), number.data() + number.size(), deviceNumber);
    if (ec != std::errc() || end != number.data() + number.size())
        return nullptr;
    return std::make_unique<AlpacaTelescope>(std::string(identifier), std::string(address),
                                             std::move(*server), deviceNumber);
}

std::vector<DeviceEntry> ListAlpacaTelescopes(const std::string& address, int timeoutMs)
{
    std::vector<DeviceEntry> entries;
    for (const std::string& server : DiscoverServers(address, timeoutMs)) {
        HttpAnswer answer;
        try {
            answer = HttpExchange(*ParseHostPort(server), "GET",
                                  "/management/v1/configureddevices?" + ClientParameters(), "",
                                  requestTimeout);
        } catch (const HttpError&) {
            continue;
        }
        QJsonObject object =
            QJsonDocument::fromJson(QByteArray::fromStdString(answer.body)).object();
        if (answer.status != 200 || object.value("ErrorNumber").toInt(0) != 0)
            continue;
        for (const QJsonValue& device : object.value("Value").toArray()) {
            QJsonObject fields = device.toObject();
            if (fields.value("DeviceType").toString().compare("telescope", Qt::CaseInsensitive))
                continue;
            int number = fields.value("DeviceNumber").toInt(-1);
            if (number < 0)
                continue;
            entries.push_back({"alpaca://" + server + "/telescope/" + std::to_string(number),
                               fields.value("DeviceName").toString().toStdString()});
        }
    }
    return entries;
}

} // namespace scope
