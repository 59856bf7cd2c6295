// Conformance of the planetarium bridge to the published command sets of the two programs,
// checked against servers in this process (no planetarium runs here): Cartes du Ciel's TCP
// command server (greeting, CR LF replies, "Failed!", unsolicited ">" lines) and Stellarium's
// Remote Control form POSTs.

#include "FakeCartesServer.h"
#include "charts/Planetarium.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cmath>
#include <fstream>
#include <functional>
#include <map>
#include <mutex>
#include <sstream>
#include <thread>

namespace {

using namespace std::chrono_literals;
using charts::PlanetariumAddress;
using charts::PlanetariumKind;
using fakecdc::AllOk;
using fakecdc::ClosedPort;
using fakecdc::FakeCartesServer;
using fakecdc::Listen;
using fakecdc::SendText;

std::string UrlDecode(std::string_view text)
{
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '+')
            result += ' ';
        else if (text[i] == '%' && i + 2 < text.size()) {
            result += static_cast<char>(std::stoi(std::string(text.substr(i + 1, 2)), nullptr, 16));
            i += 2;
        } else
            result += text[i];
    }
    return result;
}

struct Post
{
    std::string path;
    std::map<std::string, std::string> form;
};

// Answers every request "ok", unless reply(path) gives a status and a body; records the POSTs.
class FakeStellariumServer
{
public:
    using Reply = std::function<std::pair<int, std::string>(const std::string&)>;
    explicit FakeStellariumServer(Reply reply = nullptr) : listener_(Listen(port_))
    {
        thread_ = std::thread([this, reply = std::move(reply)] {
            for (;;) {
                int fd = ::accept(listener_, nullptr, nullptr);
                if (fd < 0)
                    return;
                Serve(fd, reply);
                ::close(fd);
            }
        });
    }
    ~FakeStellariumServer()
    {
        ::shutdown(listener_, SHUT_RDWR);
        thread_.join();
        ::close(listener_);
    }
    PlanetariumAddress Address() const { return {PlanetariumKind::Stellarium, "127.0.0.1", port_}; }
    std::vector<Post> Posts()
    {
        std::lock_guard lock(mutex_);
        return posts_;
    }

private:
    void Serve(int fd, const Reply& reply)
    {
        std::string received;
        char chunk[65536];
        std::size_t headEnd = std::string::npos;
        std::size_t length = 0;
        for (;;) {
            if (headEnd == std::string::npos &&
                (headEnd = received.find("\r\n\r\n")) != std::string::npos) {
                std::size_t at = received.find("Content-Length: ");
                length = at < headEnd ? std::stoul(received.substr(at + 16)) : 0;
            }
            if (headEnd != std::string::npos && received.size() >= headEnd + 4 + length)
                break;
            ssize_t n = ::recv(fd, chunk, sizeof chunk, 0);
            if (n <= 0)
                return;
            received.append(chunk, static_cast<std::size_t>(n));
        }
        std::istringstream request(received.substr(0, headEnd));
        std::string method, path;
        request >> method >> path;
        Post post{path, {}};
        std::stringstream body(received.substr(headEnd + 4, length));
        for (std::string field; std::getline(body, field, '&');) {
            std::size_t eq = field.find('=');
            post.form[field.substr(0, eq)] = UrlDecode(field.substr(eq + 1));
        }
        {
            std::lock_guard lock(mutex_);
            posts_.push_back(post);
        }
        auto [status, text] = reply ? reply(path) : std::pair{200, std::string("ok")};
        SendText(fd, "HTTP/1.1 " + std::to_string(status) + " X\r\nContent-Length: " +
                         std::to_string(text.size()) + "\r\nConnection: close\r\n\r\n" + text);
    }

    int port_ = 0;
    int listener_;
    std::thread thread_;
    std::mutex mutex_;
    std::vector<Post> posts_;
};

charts::PlanetariumSite Chicago()
{
    charts::PlanetariumSite site;
    site.Plat = 41.88;
    site.Plon = 87.63;
    site.PTz = 5;
    site.PStd = "D";
    return site;
}

// M 42 on a chart of 35 degrees at 21:30:45 daylight time in Chicago, with two objects.
void ChartOrion(charts::Planetarium& bridge)
{
    bridge.CDC_SetObservatory(Chicago());
    bridge.CDC_SetDate({2025, 11, 8, 21, 30, 45});
    bridge.CDC_PlotDSO({"stale", 1, 1, ""}); // dropped by the chart that follows
    bridge.CDC_DrawChart(5.588139, -5.391111, 34.6, "Orion tonight");
    bridge.CDC_PlotDSO({"NGC1976", 5.588139, -5.391111, "M 42"});
    bridge.CDC_PlotDSO({"A name running well past the thirty-two columns", 5.5, 10.25, ""});
}

std::string ReadFile(const std::filesystem::path& file)
{
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::filesystem::path ListFile(const char* name)
{
    return std::filesystem::temp_directory_path() /
           ("selvane-bridge-" + std::to_string(::getpid()) + "-" + name + ".txt");
}

std::string ErrorOf(const std::function<void()>& action)
{
    try {
        action();
    } catch (const charts::PlanetariumError& error) {
        return error.what();
    }
    return "no error";
}

TEST(CartesDuCielConformance, CommandLinesAndObjectList)
{
    FakeCartesServer server("OK! id=1 chart=Chart_1", [](const std::string& line) {
        std::vector<std::string> replies;
        if (line.starts_with("SETRA")) // a click in the chart arrives before the reply
            replies.push_back(">\tNGC 1982 clicked");
        replies.push_back(line == "QUIT" ? "Bye!" : "OK!");
        return replies;
    });
    std::filesystem::path list = ListFile("orion");
    auto bridge = charts::MakeCartesDuCiel(server.Address(), list, 2s);
    ChartOrion(*bridge);
    bridge->CDC_EndChart();

    std::vector<std::string> expected = {
        "SETCHARTEQUINOX J2000",
        "SETOBS LAT:+41d52m48sLON:+087d37m48sALT:0mOBS:Selvane",
        "SETTZ UTC-4",
        "SETDATE 2025-11-08T21:30:00",
        "SETRA 5.588139",
        "SETDEC -5.391111",
        "SETFOV 35",
        "OBSLISTLOAD " + list.string(),
        "REDRAW",
        "QUIT",
    };
    EXPECT_EQ(server.Lines(), expected);
    EXPECT_EQ(ReadFile(list), "Orion tonight\r\n"
                              "NGC1976                           83.82209  -5.39111"
                              "M 42                            \r\n"
                              "A name running well past the thi  82.50000  10.25000"
                              "A name running well past the thi\r\n");
    std::filesystem::remove(list);
}

TEST(CartesDuCielConformance, ChartWithoutObjectsSendsNoList)
{
    FakeCartesServer server("OK! id=1 chart=Chart_1", AllOk);
    auto bridge = charts::MakeCartesDuCiel(server.Address(), ListFile("none"), 2s);
    bridge->CDC_SetObservatory(Chicago());
    bridge->CDC_CenterOnConst("Orion", 5.5, 5, 500, "");
    bridge->CDC_EndChart();
    std::vector<std::string> lines = server.Lines();
    ASSERT_EQ(lines.size(), 9u);
    EXPECT_EQ(lines[6], "SETFOV 180"); // the widest field
    EXPECT_EQ(lines[7], "REDRAW");
    EXPECT_EQ(bridge->Chart().constellation, "Ori");
}

// A server from before the equinox command draws in the equinox of the chart's date: the
// centre and the list go precessed to 2025 November 9, about 26 years of precession.
TEST(CartesDuCielConformance, OldServerGetsPositionsOfTheChartDate)
{
    FakeCartesServer server("OK! id=1 chart=Chart_1", [](const std::string& line) {
        return std::vector<std::string>{line.starts_with("SETCHARTEQUINOX")
                                            ? "Failed! Bad command name"
                                        : line == "QUIT" ? "Bye!"
                                                         : "OK!"};
    });
    std::filesystem::path list = ListFile("old");
    auto bridge = charts::MakeCartesDuCiel(server.Address(), list, 2s);
    ChartOrion(*bridge);
    bridge->CDC_EndChart();

    std::vector<std::string> lines = server.Lines();
    ASSERT_EQ(lines.size(), 10u);
    ASSERT_TRUE(lines[4].starts_with("SETRA ") && lines[5].starts_with("SETDEC "));
    double ra = std::stod(lines[4].substr(6));
    double dec = std::stod(lines[5].substr(7));
    // About 2.95 s of time and 2.16" a year for M 42.
    EXPECT_NEAR(ra - 5.588139, 25.86 * 2.95 / 3600, 0.0005);
    EXPECT_NEAR(dec + 5.391111, 25.86 * 2.16 / 3600, 0.001);
    std::string text = ReadFile(list);
    std::istringstream row(text.substr(text.find("NGC1976") + 32, 20));
    double listRa = 0, listDec = 0;
    row >> listRa >> listDec;
    EXPECT_NEAR(listRa, ra * 15, 1e-4);
    EXPECT_NEAR(listDec, dec, 1e-5);
    std::filesystem::remove(list);
}

TEST(CartesDuCielConformance, SitesAndZonesOnTheWire)
{
    charts::PlanetariumSite site;
    site.Plat = -33.8688;
    site.Plon = -151.2093;
    site.name = "Sydney";
    EXPECT_EQ(charts::CdcObservatory(site), "LAT:-33d52m08sLON:-151d12m33sALT:0mOBS:Sydney");
    site.Plat = 41.999999; // rounds up through the minutes and degrees
    site.Plon = 0;
    EXPECT_EQ(charts::CdcObservatory(site), "LAT:+42d00m00sLON:+000d00m00sALT:0mOBS:Sydney");

    struct Zone
    {
        double PTz;
        const char* PStd;
        const char* text;
    };
    for (Zone zone : {Zone{5, "D", "UTC-4"}, Zone{5, "S", "UTC-5"}, Zone{-5.5, "S", "UTC+5:30"},
                      Zone{3.5, "S", "UTC-3:30"}, Zone{0, "S", "UTC+0"}, Zone{-1, "D", "UTC+2"},
                      Zone{1, "D", "UTC+0"}}) {
        site.PTz = zone.PTz;
        site.PStd = zone.PStd;
        EXPECT_EQ(charts::CdcTimeZone(site), zone.text) << zone.PTz << zone.PStd;
    }
}

TEST(CartesDuCielConformance, RefusalsAndSilenceStopTheChart)
{
    // No server.
    PlanetariumAddress nobody{PlanetariumKind::CartesDuCiel, "127.0.0.1", ClosedPort()};
    auto lonely = charts::MakeCartesDuCiel(nobody, ListFile("x"), 2s);
    std::string message = ErrorOf([&] { lonely->CDC_EndChart(); });
    EXPECT_NE(message.find("Cartes du Ciel at 127.0.0.1:" + std::to_string(nobody.port)),
              std::string::npos)
        << message;
    EXPECT_NE(message.find("does not answer"), std::string::npos) << message;

    // A server with no room for another client.
    {
        FakeCartesServer full("Failed! Maximum connection reach!", AllOk);
        auto bridge = charts::MakeCartesDuCiel(full.Address(), ListFile("x"), 2s);
        message = ErrorOf([&] { bridge->CDC_EndChart(); });
        EXPECT_NE(message.find("answered \"Failed! Maximum connection reach!\""), std::string::npos)
            << message;
        EXPECT_TRUE(full.Lines().empty());
    }
    // A command refused: nothing more is sent.
    {
        FakeCartesServer server("OK! id=1 chart=Chart_1", [](const std::string& line) {
            return std::vector<std::string>{line.starts_with("SETFOV") ? "Failed! out of range"
                                                                       : "OK!"};
        });
        auto bridge = charts::MakeCartesDuCiel(server.Address(), ListFile("x"), 2s);
        ChartOrion(*bridge);
        message = ErrorOf([&] { bridge->CDC_EndChart(); });
        EXPECT_NE(message.find("answered \"Failed! out of range\" to \"SETFOV 35\""),
                  std::string::npos)
            << message;
        std::vector<std::string> lines = server.Lines();
        EXPECT_EQ(lines.back(), "SETFOV 35");
    }
    // Another program on the port: greets, then says nothing.
    {
        FakeCartesServer mute("SSH-2.0-something",
                              [](const std::string&) { return std::vector<std::string>{}; });
        auto bridge = charts::MakeCartesDuCiel(mute.Address(), ListFile("x"), 300ms);
        message = ErrorOf([&] { bridge->CDC_EndChart(); });
        EXPECT_NE(message.find("\"SSH-2.0-something\""), std::string::npos) << message;
    }
}

TEST(StellariumConformance, FormsOfOneChart)
{
    FakeStellariumServer server;
    auto bridge = charts::MakeStellarium(server.Address(), 2s);
    ChartOrion(*bridge);
    bridge->CDC_PlotDSO({"Quote\"d", 0, -0.5, ""});
    bridge->CDC_EndChart();

    std::vector<Post> posts = server.Posts();
    ASSERT_EQ(posts.size(), 5u);
    EXPECT_EQ(posts[0].path, "/api/location/setlocationfields");
    EXPECT_EQ(posts[0].form, (std::map<std::string, std::string>{{"latitude", "41.88"},
                                                                 {"longitude", "-87.63"},
                                                                 {"altitude", "0"},
                                                                 {"name", "Selvane"},
                                                                 {"planet", "Earth"}}));
    EXPECT_EQ(posts[1].path, "/api/main/time");
    // 21:30 of UTC-4 is 01:30 UT on November 9.
    EXPECT_NEAR(std::stod(posts[1].form.at("time")), 2460988.5625, 1e-6);
    EXPECT_EQ(posts[2].path, "/api/main/view");
    double x, y, z;
    ASSERT_EQ(std::sscanf(posts[2].form.at("j2000").c_str(), "[%lf,%lf,%lf]", &x, &y, &z), 3);
    EXPECT_NEAR(std::atan2(y, x) * 12 / M_PI, 5.588139, 1e-5);
    EXPECT_NEAR(std::asin(z) * 180 / M_PI, -5.391111, 1e-4);
    EXPECT_NEAR(x * x + y * y + z * z, 1, 1e-5);
    EXPECT_EQ(posts[3].path, "/api/main/fov");
    EXPECT_EQ(posts[3].form.at("fov"), "35");
    EXPECT_EQ(posts[4].path, "/api/scripts/direct");
    EXPECT_EQ(posts[4].form.at("code"),
              "LabelMgr.deleteAllLabels();MarkerMgr.deleteAllMarkers();"
              "MarkerMgr.markerEquatorial(\"5h35m17.30s\",\"-5d23m28.0s\",true,true,\"circle\","
              "\"#ff0000\",12);"
              "LabelMgr.labelEquatorial(\"M 42\",\"5h35m17.30s\",\"-5d23m28.0s\",true,14,"
              "\"#ff0000\");"
              "MarkerMgr.markerEquatorial(\"5h30m00.00s\",\"10d15m00.0s\",true,true,\"circle\","
              "\"#ff0000\",12);"
              "LabelMgr.labelEquatorial(\"A name running well past the thirty-two columns\","
              "\"5h30m00.00s\",\"10d15m00.0s\",true,14,\"#ff0000\");"
              "MarkerMgr.markerEquatorial(\"0h00m00.00s\",\"-0d30m00.0s\",true,true,\"circle\","
              "\"#ff0000\",12);"
              "LabelMgr.labelEquatorial(\"Quote\\\"d\",\"0h00m00.00s\",\"-0d30m00.0s\",true,14,"
              "\"#ff0000\");");
}

TEST(StellariumConformance, FiveHundredObjectsAScript)
{
    FakeStellariumServer server;
    auto bridge = charts::MakeStellarium(server.Address(), 2s);
    bridge->CDC_DrawChart(0, 0, 10, "");
    for (int i = 0; i < 1001; ++i)
        bridge->CDC_PlotDSO({"N" + std::to_string(i), i / 50.0, 0, ""});
    bridge->CDC_EndChart();

    std::vector<Post> posts = server.Posts();
    ASSERT_EQ(posts.size(), 7u);
    auto count = [](const std::string& code) {
        std::size_t n = 0;
        for (std::size_t at = 0; (at = code.find("markerEquatorial", at)) != std::string::npos;
             ++at)
            ++n;
        return n;
    };
    EXPECT_EQ(count(posts[4].form.at("code")), 500u);
    EXPECT_EQ(count(posts[5].form.at("code")), 500u);
    EXPECT_EQ(count(posts[6].form.at("code")), 1u);
    EXPECT_TRUE(posts[4].form.at("code").starts_with("LabelMgr.deleteAllLabels();"));
    EXPECT_TRUE(posts[5].form.at("code").starts_with("MarkerMgr.markerEquatorial(\"10h00m"));
    EXPECT_NE(posts[6].form.at("code").find("\"N1000\""), std::string::npos);
}

TEST(StellariumConformance, PositionTextsRoundWithCarry)
{
    EXPECT_EQ(charts::StellariumRa(5.588139), "5h35m17.30s");
    EXPECT_EQ(charts::StellariumRa(23.9999999), "0h00m00.00s");
    EXPECT_EQ(charts::StellariumRa(1.9999999), "2h00m00.00s");
    EXPECT_EQ(charts::StellariumRa(-1), "23h00m00.00s");
    EXPECT_EQ(charts::StellariumDec(-5.391111), "-5d23m28.0s");
    EXPECT_EQ(charts::StellariumDec(-0.00000001), "0d00m00.0s");
    EXPECT_EQ(charts::StellariumDec(89.99999), "90d00m00.0s");
}

TEST(StellariumConformance, WrongRepliesAndNoServer)
{
    PlanetariumAddress nobody{PlanetariumKind::Stellarium, "127.0.0.1", ClosedPort()};
    std::string message = ErrorOf([&] { charts::MakeStellarium(nobody, 2s)->CDC_EndChart(); });
    EXPECT_NE(
        message.find("Stellarium at 127.0.0.1:" + std::to_string(nobody.port) + " does not answer"),
        std::string::npos)
        << message;

    FakeStellariumServer refusing([](const std::string& path) {
        return path == "/api/main/fov" ? std::pair{400, std::string("requires fov parameter")}
                                       : std::pair{200, std::string("ok")};
    });
    message = ErrorOf([&] { charts::MakeStellarium(refusing.Address(), 2s)->CDC_EndChart(); });
    EXPECT_NE(message.find("answered \"HTTP 400 requires fov parameter\" to /api/main/fov"),
              std::string::npos)
        << message;
    EXPECT_EQ(refusing.Posts().size(), 4u); // no script after the refusal

    FakeStellariumServer other([](const std::string&) {
        return std::pair{200, std::string("<html>router</html>")};
    });
    message = ErrorOf([&] { charts::MakeStellarium(other.Address(), 2s)->CDC_EndChart(); });
    EXPECT_NE(message.find("answered \"<html>router</html>\" to /api/location/setlocationfields"),
              std::string::npos)
        << message;
}

TEST(PlanetariumSetting, AddressesAndPrograms)
{
    auto cdc = charts::ParsePlanetarium("");
    ASSERT_TRUE(cdc);
    EXPECT_EQ(charts::PlanetariumUrl(*cdc), "cdc://127.0.0.1:3292");
    EXPECT_EQ(charts::PlanetariumUrl(*charts::ParsePlanetarium(" Stellarium://sky.local ")),
              "stellarium://sky.local:8090");
    EXPECT_EQ(charts::PlanetariumUrl(*charts::ParsePlanetarium("cdc://[::1]:4000/")),
              "cdc://[::1]:4000");
    EXPECT_EQ(charts::PlanetariumUrl(*charts::ParsePlanetarium("cdc://10.0.0.2")),
              "cdc://10.0.0.2:3292");
    for (const char* bad : {"127.0.0.1:3292", "http://x:1", "cdc://", "cdc://x:0",
                            "stellarium://x:99999", "cdc://a b:1"})
        EXPECT_FALSE(charts::ParsePlanetarium(bad)) << bad;

    std::filesystem::path dir = ListFile("bin");
    std::filesystem::create_directories(dir / "a");
    std::filesystem::create_directories(dir / "b");
    std::ofstream(dir / "a" / "stellarium") << ""; // not executable
    std::ofstream(dir / "b" / "stellarium") << "#!/bin/sh\n";
    std::filesystem::permissions(dir / "b" / "stellarium", std::filesystem::perms::owner_all);
    std::string path = (dir / "a").string() + "::" + (dir / "b").string();
    EXPECT_EQ(charts::FindPlanetariumProgram(PlanetariumKind::Stellarium, "", path),
              dir / "b" / "stellarium");
    EXPECT_EQ(charts::FindPlanetariumProgram(PlanetariumKind::CartesDuCiel, "", path),
              std::filesystem::path());
    EXPECT_EQ(charts::FindPlanetariumProgram(PlanetariumKind::Stellarium, (dir / "b").string(), ""),
              dir / "b" / "stellarium");
    EXPECT_EQ(charts::FindPlanetariumProgram(PlanetariumKind::Stellarium,
                                             (dir / "b" / "stellarium").string(), ""),
              dir / "b" / "stellarium");
    std::filesystem::remove_all(dir);
}

} // namespace
