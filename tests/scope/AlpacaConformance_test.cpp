// Conformance of the Alpaca backend to the published Alpaca API, checked against an in-process
// server written from the API definition (no Alpaca device or simulator runs here): paths,
// verbs, parameters, transaction ids, the device's error answers, timeouts and discovery. These
// tests do not show interoperation with any real device.

#include <algorithm>
#include <cctype>
#include <chrono>
#include <functional>
#include <locale>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "AlpacaServer.h"
#include "scope/AlpacaTelescope.h"

namespace {

using namespace alpaca_test;
using scope::Direction;
using scope::Telescope;

std::string Text(bool value)
{
    return value ? "true" : "false";
}

std::string Text(double value)
{
    return std::to_string(value);
}

std::string Text(std::optional<double> value)
{
    return value ? Text(*value) : "none";
}

std::string Text(std::optional<bool> value)
{
    return value ? Text(*value) : "none";
}

// "PUT moveaxis Axis=0&Rate=1": verb, method and the parameters other than the client's ids.
std::string Summary(const Request& request)
{
    std::string text = request.method + " " + request.path.substr(request.path.rfind('/') + 1);
    std::string parameters;
    for (const auto& [name, value] : request.parameters)
        if (name != "ClientID" && name != "ClientTransactionID")
            parameters += (parameters.empty() ? "" : "&") + name + "=" + value;
    return parameters.empty() ? text : text + " " + parameters;
}

std::vector<std::string> Summaries(const AlpacaServer& server)
{
    std::vector<std::string> result;
    for (const Request& request : server.Requests())
        result.push_back(Summary(request));
    return result;
}

std::unique_ptr<Telescope> Driver(const AlpacaServer& server, int device = 0)
{
    auto driver = scope::MakeAlpacaTelescope("alpaca://" + server.Address() + "/telescope/" +
                                             std::to_string(device));
    EXPECT_TRUE(driver);
    return driver;
}

// A locale that writes numbers with a decimal comma, to show that nothing on the wire uses it.
struct CommaDecimals : std::numpunct<char>
{
    char do_decimal_point() const override { return ','; }
};

class GlobalLocale
{
public:
    explicit GlobalLocale(const std::locale& locale) : saved_(std::locale::global(locale)) {}
    ~GlobalLocale() { std::locale::global(saved_); }

private:
    std::locale saved_;
};

TEST(AlpacaConformance, IdentifierForms)
{
    struct Row
    {
        const char* identifier;
        bool accepted;
    };
    const Row rows[] = {
        {"alpaca://192.168.1.20:11111/telescope/0", true},
        {"alpaca://mount.local:80/telescope/12", true},
        {"alpaca://[::1]:11111/telescope/1", true},
        {"alpaca://127.0.0.1:11111/Telescope/0", true}, // the path sent is lower case anyway
        {"alpaca://127.0.0.1:11111/telescope/", false},
        {"alpaca://127.0.0.1:11111/telescope/x", false},
        {"alpaca://127.0.0.1:11111/telescope/-1", false},
        {"alpaca://127.0.0.1:11111/telescope/0/", false},
        {"alpaca://127.0.0.1:11111/camera/0", false},
        {"alpaca://127.0.0.1/telescope/0", false},
        {"alpaca://127.0.0.1:0/telescope/0", false},
        {"alpaca://127.0.0.1:65536/telescope/0", false},
        {"alpaca://:11111/telescope/0", false},
        {"indi://127.0.0.1:7624/Telescope Simulator", false},
        {"", false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.identifier);
        auto driver = scope::MakeAlpacaTelescope(row.identifier);
        EXPECT_EQ(driver != nullptr, row.accepted);
        if (driver) {
            EXPECT_EQ(driver->Identifier(), row.identifier);
            EXPECT_FALSE(driver->Connected());
        }
    }
}

// Each operation's requests in order, the answer it made of the device's, and, for every
// request, the rules of the API: path in lower case under the device, GET parameters in the
// query and PUT parameters in a form body, one ClientID for the process and a
// ClientTransactionID one above the previous request's. Numbers go with a decimal point while
// the process's locale writes a comma.
TEST(AlpacaConformance, RequestsOfEachOperation)
{
    using Operation = std::function<std::string(Telescope&)>;
    struct Row
    {
        const char* label;
        Script script;
        Operation operation;
        std::vector<std::string> requests;
        std::string result;
    };
    const Reply notImplemented = DeviceError(0x400, "Property not implemented");
    const std::vector<Row> rows = {
        {"connect, device not connected",
         {{"GET connected", {Value(false)}}},
         [](Telescope& t) {
             t.SetConnected(true);
             return Text(t.Connected());
         },
         {"GET connected", "PUT connected Connected=true"},
         "true"},
        {"connect, device already connected by another client",
         {{"GET connected", {Value(true)}}},
         [](Telescope& t) {
             t.SetConnected(true);
             return Text(t.Connected());
         },
         {"GET connected"},
         "true"},
        {"disconnect sends nothing",
         {},
         [](Telescope& t) {
             t.SetConnected(false);
             return Text(t.Connected());
         },
         {},
         "false"},
        {"can slew asks for the asynchronous slew",
         {{"GET canslewasync", {Value(true)}}},
         [](Telescope& t) { return Text(t.CanSlew()); },
         {"GET canslewasync"},
         "true"},
        {"can sync",
         {{"GET cansync", {Value(false)}}},
         [](Telescope& t) { return Text(t.CanSync()); },
         {"GET cansync"},
         "false"},
        {"target, declination first as the routines set it",
         {},
         [](Telescope& t) {
             t.SetTargetDeclination(-41.27);
             t.SetTargetRightAscension(0.712);
             return std::string();
         },
         {"PUT targetdeclination TargetDeclination=-41.27",
          "PUT targetrightascension TargetRightAscension=0.712"},
         ""},
        {"a tiny right ascension and the pole: no exponent",
         {},
         [](Telescope& t) {
             t.SetTargetDeclination(90);
             t.SetTargetRightAscension(1e-7);
             return std::string();
         },
         {"PUT targetdeclination TargetDeclination=90",
          "PUT targetrightascension TargetRightAscension=0.0000001"},
         ""},
        {"slew while tracking: no tracking change, polls until not slewing",
         {{"GET tracking", {Value(true)}},
          {"GET slewing", {Value(true), Value(true), Value(false)}}},
         [](Telescope& t) {
             t.SlewToTarget([] { return true; });
             return std::string();
         },
         {"GET tracking", "PUT slewtotargetasync", "GET slewing", "GET slewing", "GET slewing"},
         ""},
        {"slew while not tracking: tracking switched on first",
         {{"GET tracking", {Value(false)}},
          {"GET cansettracking", {Value(true)}},
          {"GET slewing", {Value(false)}}},
         [](Telescope& t) {
             t.SlewToTarget({});
             return std::string();
         },
         {"GET tracking", "GET cansettracking", "PUT tracking Tracking=true",
          "PUT slewtotargetasync", "GET slewing"},
         ""},
        {"slew while not tracking, tracking not settable: slew asked all the same",
         {{"GET tracking", {Value(false)}},
          {"GET cansettracking", {Value(false)}},
          {"GET slewing", {Value(false)}}},
         [](Telescope& t) {
             t.SlewToTarget({});
             return std::string();
         },
         {"GET tracking", "GET cansettracking", "PUT slewtotargetasync", "GET slewing"},
         ""},
        {"sync",
         {},
         [](Telescope& t) {
             t.SyncToTarget();
             return std::string();
         },
         {"PUT synctotarget"},
         ""},
        {"position",
         {{"GET rightascension", {Value(23.999)}},
          {"GET declination", {Value(-89.5)}},
          {"GET altitude", {Value(45.25)}},
          {"GET azimuth", {Value(359.75)}}},
         [](Telescope& t) {
             std::string text = Text(t.RightAscension());
             text += " " + Text(t.Declination());
             text += " " + Text(t.Altitude());
             return text + " " + Text(t.Azimuth());
         },
         {"GET rightascension", "GET declination", "GET altitude", "GET azimuth"},
         "23.999000 -89.500000 45.250000 359.750000"},
        {"altitude and azimuth not implemented: nothing, so the caller computes them",
         {{"GET altitude", {notImplemented}}, {"GET azimuth", {notImplemented}}},
         [](Telescope& t) {
             std::string text = Text(t.Altitude());
             return text + " " + Text(t.Azimuth());
         },
         {"GET altitude", "GET azimuth"},
         "none none"},
        {"an answer sent in chunks",
         {{"GET rightascension", {[] {
               Reply r = Value(5.5);
               r.chunked = true;
               return r;
           }()}}},
         [](Telescope& t) { return Text(t.RightAscension()); },
         {"GET rightascension"},
         "5.500000"},
        {"abort",
         {},
         [](Telescope& t) {
             t.AbortSlew();
             return std::string();
         },
         {"PUT abortslew"},
         ""},
        {"move east at 1 deg/s when allowed, then stop",
         {{"GET axisrates", {ValueJson(R"([{"Minimum":0,"Maximum":3}])")}}},
         [](Telescope& t) {
             t.MoveAxis(Direction::East, true);
             t.MoveAxis(Direction::East, false);
             return std::string();
         },
         {"GET axisrates Axis=0", "PUT moveaxis Axis=0&Rate=1", "PUT moveaxis Axis=0&Rate=0"},
         ""},
        {"move west, north and south at the allowed rates nearest 1 deg/s",
         {{"GET axisrates",
           {ValueJson(R"([{"Minimum":0.25,"Maximum":0.5}])"),
            ValueJson(R"([{"Minimum":2,"Maximum":4}])"),
            ValueJson(R"([{"Minimum":0.25,"Maximum":0.5},{"Minimum":3,"Maximum":4}])")}}},
         [](Telescope& t) {
             t.MoveAxis(Direction::West, true);
             t.MoveAxis(Direction::North, true);
             t.MoveAxis(Direction::South, true);
             return std::string();
         },
         {"GET axisrates Axis=0", "PUT moveaxis Axis=0&Rate=-0.5", "GET axisrates Axis=1",
          "PUT moveaxis Axis=1&Rate=2", "GET axisrates Axis=1", "PUT moveaxis Axis=1&Rate=-0.5"},
         ""},
        {"move with no rates listed: 1 deg/s",
         {{"GET axisrates", {ValueJson("[]"), notImplemented}}},
         [](Telescope& t) {
             t.MoveAxis(Direction::North, true);
             t.MoveAxis(Direction::North, true);
             return std::string();
         },
         {"GET axisrates Axis=1", "PUT moveaxis Axis=1&Rate=1", "GET axisrates Axis=1",
          "PUT moveaxis Axis=1&Rate=1"},
         ""},
        {"tracking read, then switched off",
         {{"GET tracking", {Value(true), notImplemented}}},
         [](Telescope& t) {
             std::string before = Text(t.Tracking());
             t.SetTracking(false);
             return before + " " + Text(t.Tracking());
         },
         {"GET tracking", "PUT tracking Tracking=false", "GET tracking"},
         "true none"},
        {"park and unpark",
         {},
         [](Telescope& t) {
             t.Park();
             t.Unpark();
             return std::string();
         },
         {"PUT park", "PUT unpark"},
         ""},
    };

    GlobalLocale comma(std::locale(std::locale::classic(), new CommaDecimals));
    std::string clientId;
    long previous = -1; // the counter is the process's: it runs on from row to row
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        AlpacaServer server(row.script);
        auto driver = Driver(server, 3);
        ASSERT_TRUE(driver);
        EXPECT_EQ(row.operation(*driver), row.result);
        EXPECT_EQ(Summaries(server), row.requests);

        for (const Request& request : server.Requests()) {
            SCOPED_TRACE(request.method + " " + request.path);
            std::string method = request.path.substr(request.path.rfind('/') + 1);
            EXPECT_EQ(request.path, "/api/v1/telescope/3/" + method);
            EXPECT_EQ(std::count_if(request.path.begin(), request.path.end(),
                                    [](unsigned char c) { return std::isupper(c); }),
                      0);
            if (request.method == "GET") {
                EXPECT_EQ(request.body, "");
            } else {
                EXPECT_EQ(request.method, "PUT");
                EXPECT_EQ(request.query, "");
                EXPECT_EQ(request.headers.at("content-type"), "application/x-www-form-urlencoded");
            }
            ASSERT_GE(request.parameters.size(), 2u);
            const auto& id = request.parameters[request.parameters.size() - 2];
            const auto& transaction = request.parameters.back();
            EXPECT_EQ(id.first, "ClientID");
            EXPECT_EQ(transaction.first, "ClientTransactionID");
            if (clientId.empty())
                clientId = id.second;
            EXPECT_EQ(id.second, clientId);
            long number = std::stol(transaction.second);
            EXPECT_GE(number, 1);
            if (previous >= 0) {
                EXPECT_EQ(number, previous + 1);
            }
            previous = number;
        }
    }
    long id = std::stol(clientId);
    EXPECT_GE(id, 1);
    EXPECT_LE(id, 65535);
}

// The device's refusals and broken exchanges become faults that say what failed and where.
TEST(AlpacaConformance, FaultsNameTheDeviceAndWhatFailed)
{
    using Operation = std::function<void(Telescope&)>;
    struct Row
    {
        const char* label;
        Script script;
        Operation operation;
        std::string message; // {A} stands for the server's HOST:PORT
    };
    const Operation slew = [](Telescope& t) { t.SlewToTarget([] { return true; }); };
    const std::vector<Row> rows = {
        {"slew refused while parked",
         {{"GET tracking", {Value(true)}},
          {"PUT slewtotargetasync", {DeviceError(0x408, "Invalid while parked")}}},
         slew,
         "The telescope at {A} refused the slew: Invalid while parked (error 1032)"},
        {"position while the device is not connected",
         {{"GET rightascension", {DeviceError(0x407, "Not connected")}}},
         [](Telescope& t) { t.RightAscension(); },
         "The telescope at {A} refused the position reading: Not connected (error 1031)"},
        {"altitude failing otherwise than not implemented",
         {{"GET altitude", {DeviceError(0x40B, "Invalid operation")}}},
         [](Telescope& t) { t.Altitude(); },
         "The telescope at {A} refused the position reading: Invalid operation (error 1035)"},
        {"sync refused",
         {{"PUT synctotarget", {DeviceError(0x40B, "")}}},
         [](Telescope& t) { t.SyncToTarget(); },
         "The telescope at {A} refused the sync (error 1035)"},
        {"connect refused by a device that cannot connect",
         {{"GET connected", {Value(false)}},
          {"PUT connected", {DeviceError(0x500, "Serial port COM3 not found")}}},
         [](Telescope& t) { t.SetConnected(true); },
         "The telescope at {A} refused the connection: Serial port COM3 not found (error 1280)"},
        {"HTTP 400 with its plain-text reason",
         {{"GET cansync", {Http(400, "Unknown device number 0\r\n")}}},
         [](Telescope& t) { t.CanSync(); },
         "The telescope at {A} refused the capability query: Unknown device number 0 (HTTP 400)"},
        {"HTTP 500 on the azimuth is no \"not implemented\"",
         {{"GET azimuth", {Http(500, "Driver exception")}}},
         [](Telescope& t) { t.Azimuth(); },
         "The telescope at {A} refused the position reading: Driver exception (HTTP 500)"},
        {"HTTP 500 without a text",
         {{"PUT park", {Http(500, "")}}},
         [](Telescope& t) { t.Park(); },
         "The telescope at {A} refused the park (HTTP 500)"},
        {"an answer that is no JSON",
         {{"GET declination", {Http(200, "<html>hello</html>")}}},
         [](Telescope& t) { t.Declination(); },
         "The telescope at {A} gave an unreadable answer during the position reading"},
        {"a value of the wrong type",
         {{"GET canslewasync", {ValueJson("\"yes\"")}}},
         [](Telescope& t) { t.CanSlew(); },
         "The telescope at {A} gave an unreadable answer during the capability query"},
        {"connection closed without an answer",
         {{"GET rightascension", {Hangup()}}},
         [](Telescope& t) { t.RightAscension(); },
         "The connection to {A} was lost during the position reading"},
        {"connection closed while polling the slew",
         {{"GET tracking", {Value(true)}}, {"GET slewing", {Value(true), Hangup()}}},
         slew,
         "The connection to {A} was lost during the slew"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        AlpacaServer server(row.script);
        auto driver = Driver(server);
        ASSERT_TRUE(driver);
        std::string expected = row.message;
        expected.replace(expected.find("{A}"), 3, server.Address());
        try {
            row.operation(*driver);
            ADD_FAILURE() << "no fault";
        } catch (const scope::TelescopeError& error) {
            EXPECT_EQ(std::string(error.what()), expected);
        }
    }
}

// The observer's Stop and a server that goes away in the middle of a slew: the slew ends at once
// with its fault, and a stopped slew is aborted on the device.
TEST(AlpacaConformance, SlewStoppedOrLost)
{
    Script slewing{{"GET tracking", {Value(true)}}, {"GET slewing", {Value(true)}}};
    {
        AlpacaServer server(slewing);
        auto driver = Driver(server);
        int asked = 0;
        try {
            driver->SlewToTarget([&] { return ++asked < 3; });
            ADD_FAILURE() << "the slew went on";
        } catch (const scope::TelescopeError& error) {
            EXPECT_STREQ(error.what(), "The slew was stopped");
        }
        EXPECT_EQ(asked, 3);
        std::vector<std::string> requests = Summaries(server);
        ASSERT_GE(requests.size(), 4u);
        EXPECT_EQ(requests[1], "PUT slewtotargetasync");
        EXPECT_EQ(requests.back(), "PUT abortslew");
    }
    {
        AlpacaServer server(slewing);
        auto driver = Driver(server);
        int asked = 0;
        try {
            driver->SlewToTarget([&] {
                if (++asked == 5)
                    server.Stop(); // the device's server is gone: connections are refused
                return true;
            });
            ADD_FAILURE() << "the slew went on";
        } catch (const scope::TelescopeError& error) {
            EXPECT_EQ(std::string(error.what()),
                      "The connection to " + server.Address() + " was lost during the slew");
        }
    }
}

// A port where nothing listens fails at once; a server that accepts and never answers fails at
// the request bound of 5 s, well within the 15 s an observer waits.
TEST(AlpacaConformance, UnreachableAndSilentDevices)
{
    std::string closedAddress;
    {
        AlpacaServer gone({});
        closedAddress = gone.Address();
    }
    auto driver = scope::MakeAlpacaTelescope("alpaca://" + closedAddress + "/telescope/0");
    try {
        driver->SetConnected(true);
        ADD_FAILURE() << "connected to nothing";
    } catch (const scope::TelescopeError& error) {
        EXPECT_EQ(std::string(error.what()), "The telescope at " + closedAddress +
                                                 " could not be reached: Connection refused");
    }
    EXPECT_FALSE(driver->Connected());

    AlpacaServer silent({{"GET connected", {Silent()}}});
    driver = Driver(silent);
    auto start = std::chrono::steady_clock::now();
    try {
        driver->SetConnected(true);
        ADD_FAILURE() << "a silent server answered";
    } catch (const scope::TelescopeError& error) {
        EXPECT_EQ(std::string(error.what()), silent.Address() + " did not answer within 5 s");
    }
    double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    EXPECT_GE(seconds, 4.9);
    EXPECT_LT(seconds, 8.0); // 5 s and the machine's slack
}

// Discovery on 127.0.0.1 only: the datagram, the answers gathered (a duplicate, a foreign
// datagram and a server that is gone are passed over) and the telescopes among the devices.
TEST(AlpacaConformance, DiscoveryListsTelescopes)
{
    AlpacaServer devices({{"GET configureddevices", {ValueJson(R"([
        {"DeviceName":"Roll-off mount","DeviceType":"Telescope","DeviceNumber":0,"UniqueID":"a"},
        {"DeviceName":"Main camera","DeviceType":"Camera","DeviceNumber":0,"UniqueID":"b"},
        {"DeviceName":"Guide mount","DeviceType":"TELESCOPE","DeviceNumber":2,"UniqueID":"c"}
    ])")}}});
    std::string gonePort;
    {
        AlpacaServer gone({});
        gonePort = std::to_string(gone.Port());
    }
    std::string answer = R"({"AlpacaPort": )" + std::to_string(devices.Port()) + "}";
    DiscoveryResponder responder({"hello", answer, answer, R"({"AlpacaPort": )" + gonePort + "}"});

    auto start = std::chrono::steady_clock::now();
    std::vector<scope::DeviceEntry> found = scope::ListAlpacaTelescopes(responder.Address(), 400);
    double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();

    EXPECT_EQ(responder.Received(), std::vector<std::string>{"alpacadiscovery1"});
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found[0].identifier, "alpaca://" + devices.Address() + "/telescope/0");
    EXPECT_EQ(found[0].device, "Roll-off mount");
    EXPECT_EQ(found[1].identifier, "alpaca://" + devices.Address() + "/telescope/2");
    EXPECT_EQ(found[1].device, "Guide mount");
    EXPECT_GE(seconds, 0.39);
    EXPECT_LT(seconds, 3.0);

    std::vector<Request> requests = devices.Requests();
    ASSERT_EQ(requests.size(), 1u);
    EXPECT_EQ(requests[0].method, "GET");
    EXPECT_EQ(requests[0].path, "/management/v1/configureddevices");
    ASSERT_EQ(requests[0].parameters.size(), 2u);
    EXPECT_EQ(requests[0].parameters[0].first, "ClientID");
    EXPECT_EQ(requests[0].parameters[1].first, "ClientTransactionID");

    // Each identifier found makes a driver.
    for (const scope::DeviceEntry& entry : found)
        EXPECT_TRUE(scope::MakeAlpacaTelescope(entry.identifier));

    // Nobody answering is an empty list; a malformed address is a fault.
    DiscoveryResponder mute({});
    EXPECT_TRUE(scope::ListAlpacaTelescopes(mute.Address(), 100).empty());
    EXPECT_THROW(scope::ListAlpacaTelescopes("255.255.255.255", 100), scope::TelescopeError);
}

} // namespace
