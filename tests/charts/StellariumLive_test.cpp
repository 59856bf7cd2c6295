// The Stellarium bridge against the real program, opt in: SELVANE_STELLARIUM_TEST=1 starts
// Debian's stellarium under xvfb-run with its Remote Control plugin on a private home folder,
// charts M 42 and reads the view and the status back. Skipped otherwise, or when the program
// or xvfb-run is missing.

#include "charts/Planetarium.h"
#include "services/HttpClient.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace std::chrono_literals;

constexpr int kPort = 18090;

TEST(StellariumLive, ChartsM42AndReadsItBack)
{
    const char* optIn = std::getenv("SELVANE_STELLARIUM_TEST");
    if (!optIn || std::string(optIn) != "1")
        GTEST_SKIP() << "set SELVANE_STELLARIUM_TEST=1 to run against the real program";
    const char* pathEnv = std::getenv("PATH");
    std::string path = pathEnv ? pathEnv : "";
    std::filesystem::path program =
        charts::FindPlanetariumProgram(charts::PlanetariumKind::Stellarium, "", path);
    if (program.empty() || ::access("/usr/bin/xvfb-run", X_OK) != 0)
        GTEST_SKIP() << "stellarium or xvfb-run is not installed";

    std::filesystem::path home = std::filesystem::temp_directory_path() /
                                 ("selvane-stellarium-" + std::to_string(::getpid()));
    std::filesystem::create_directories(home / ".stellarium");
    std::ofstream(home / ".stellarium" / "config.ini")
        << "[main]\nversion = 0.22.2\n\n[plugins_load_at_startup]\nRemoteControl = true\n\n"
           "[RemoteControl]\nautostart = true\nport = "
        << kPort << "\nuse_password = false\n";

    pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        ::setsid();
        ::setenv("HOME", home.c_str(), 1);
        ::execl("/usr/bin/xvfb-run", "xvfb-run", "-a", program.c_str(), nullptr);
        ::_exit(127);
    }
    struct Stop
    {
        pid_t pid;
        std::filesystem::path home;
        ~Stop()
        {
            ::kill(-pid, SIGTERM);
            ::waitpid(pid, nullptr, 0);
            std::filesystem::remove_all(home);
        }
    } stop{child, home};

    services::HostPort server{"127.0.0.1", kPort};
    bool up = false;
    for (int i = 0; i < 60 && !up; ++i) {
        try {
            up = services::HttpExchange(server, "GET", "/api/main/status", "", 1s).status == 200;
        } catch (const services::HttpError&) {
            std::this_thread::sleep_for(1s);
        }
    }
    ASSERT_TRUE(up) << "Stellarium's Remote Control did not answer within a minute";

    auto bridge =
        charts::MakeStellarium({charts::PlanetariumKind::Stellarium, "127.0.0.1", kPort}, 5s);
    charts::PlanetariumSite site;
    site.Plat = 41.88;
    site.Plon = 87.63;
    site.PTz = 5;
    site.PStd = "D";
    bridge->CDC_SetObservatory(site);
    bridge->CDC_SetDate({2025, 11, 8, 21, 30, 0});
    bridge->CDC_DrawChart(5.588139, -5.391111, 35, "");
    bridge->CDC_PlotDSO({"NGC1976", 5.588139, -5.391111, "M 42"});
    ASSERT_NO_THROW(bridge->CDC_EndChart());
    std::this_thread::sleep_for(2s); // the view moves in steps

    std::string view =
        services::HttpExchange(server, "GET", "/api/main/view?coord=j2000", "", 5s).body;
    double x = 0, y = 0, z = 0;
    std::size_t open = view.find('[');
    ASSERT_NE(open, std::string::npos) << view;
    ASSERT_EQ(std::sscanf(view.c_str() + open, "[%lf, %lf, %lf]", &x, &y, &z), 3) << view;
    double ra = std::atan2(y, x) * 12 / M_PI;
    EXPECT_NEAR(ra < 0 ? ra + 24 : ra, 5.588139, 0.01);
    EXPECT_NEAR(std::asin(z) * 180 / M_PI, -5.391111, 0.1);

    std::string status = services::HttpExchange(server, "GET", "/api/main/status", "", 5s).body;
    EXPECT_NE(status.find("\"Selvane\""), std::string::npos) << status;
}

} // namespace
