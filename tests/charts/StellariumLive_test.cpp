// The Stellarium bridge against the real program, opt in: SELVANE_STELLARIUM_TEST=1 starts
// Debian's stellarium under xvfb-run with its Remote Control plugin on a private home folder,
// charts M 42 and reads the view and the status back. Skipped otherwise, or when the program
// or xvfb-run is missing. Stellarium renders with Mesa's software OpenGL there; it answers
// after 15 to 30 seconds on a 2-core machine.

#include "charts/Planetarium.h"
#include "services/HttpClient.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
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
    // Stellarium needs a whole configuration (a few lines alone crash it at start), so the
    // program's own defaults are taken with the plugin loaded and its server started on kPort.
    const std::filesystem::path defaults =
        program.parent_path().parent_path() / "share/stellarium/data/default_cfg.ini";
    std::ifstream in(defaults);
    ASSERT_TRUE(in) << "no " << defaults;
    std::ofstream config(home / ".stellarium" / "config.ini");
    for (std::string line; std::getline(in, line);) {
        if (line.starts_with("fullscreen"))
            line = "fullscreen = false";
        config << line << "\n";
        if (line == "[plugins_load_at_startup]")
            config << "RemoteControl = true\n";
    }
    config << "\n[RemoteControl]\nautostart = true\nport = " << kPort << "\nuse_password = false\n";
    config.close();

    pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        ::setsid();
        ::setenv("HOME", home.c_str(), 1);
        ::setenv("LIBGL_ALWAYS_SOFTWARE", "1", 1);
        // The tests' offscreen platform would keep it off the X server xvfb-run starts.
        ::unsetenv("QT_QPA_PLATFORM");
        ::execl("/usr/bin/xvfb-run", "xvfb-run", "-a", program.c_str(), nullptr);
        ::_exit(127);
    }
    struct Stop
    {
        pid_t pid;
        std::filesystem::path home;
        ~Stop()
        {
            // The whole group: xvfb-run, its X server and stellarium.
            ::kill(-pid, SIGTERM);
            for (int i = 0; i < 100 && ::waitpid(pid, nullptr, WNOHANG) == 0; ++i)
                std::this_thread::sleep_for(100ms);
            ::kill(-pid, SIGKILL);
            ::waitpid(pid, nullptr, 0); // at once: reaped above, or killed

            std::filesystem::remove_all(home);
        }
    } stop{child, home};

    services::HostPort server{"127.0.0.1", kPort};
    bool up = false;
    const auto start = std::chrono::steady_clock::now();
    while (!up && std::chrono::steady_clock::now() - start < 180s) {
        try {
            up = services::HttpExchange(server, "GET", "/api/main/status", "", 1s).status == 200;
        } catch (const services::HttpError&) {
        }
        if (!up)
            std::this_thread::sleep_for(1s);
    }
    ASSERT_TRUE(up) << "Stellarium's Remote Control did not answer within three minutes";

    // Deliberate: generous timeouts. A new field makes Stellarium load star catalogues on the
    // thread that also answers requests, which takes 10 seconds and more with software OpenGL.
    auto bridge =
        charts::MakeStellarium({charts::PlanetariumKind::Stellarium, "127.0.0.1", kPort}, 60s);
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
        services::HttpExchange(server, "GET", "/api/main/view?coord=j2000", "", 60s).body;
    // In the log of a run, as the program saw the chart.
    std::printf("view: %s\n", view.c_str());
    double x = 0, y = 0, z = 0;
    std::size_t open = view.find('[');
    ASSERT_NE(open, std::string::npos) << view;
    ASSERT_EQ(std::sscanf(view.c_str() + open, "[%lf, %lf, %lf]", &x, &y, &z), 3) << view;
    double ra = std::atan2(y, x) * 12 / M_PI;
    // The view keeps its place against the horizon while the program's clock runs, so its right
    // ascension creeps by a second of time each second.
    EXPECT_NEAR(ra < 0 ? ra + 24 : ra, 5.588139, 0.01);
    EXPECT_NEAR(std::asin(z) * 180 / M_PI, -5.391111, 0.1);

    std::string status = services::HttpExchange(server, "GET", "/api/main/status", "", 60s).body;
    std::printf("status: %s\n", status.c_str());
    EXPECT_NE(status.find("\"Selvane\""), std::string::npos) << status;
}

} // namespace
