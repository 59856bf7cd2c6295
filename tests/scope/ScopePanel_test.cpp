// The control panel's operations against the real indiserver and Debian's
// indi_simulator_telescope, each one under the connect-per-operation rule; skipped when the
// server is not installed.

#include "scope/ScopePanel.h"

#include "services/ScriptedUiPort.h"

#include "IndiSimulator.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <sstream>
#include <thread>

namespace {

using inditest::IndiSimulator;

class ScopePanelTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (!inditest::ServerInstalled())
            GTEST_SKIP() << "indiserver and indi_simulator_telescope are not installed";
        ASSERT_TRUE(simulator.Start());
        ui.echo = false;
        prefs.telescopetype = simulator.Identifier();
        layer.MakeDriver = scope::MakeTelescope;
    }

    // The fault windows shown so far, as "location: message".
    std::vector<std::string> Faults() const
    {
        std::vector<std::string> faults;
        for (const auto& shown : ui.shown)
            if (shown.message.Title == "System Error")
                faults.push_back(shown.Text());
        return faults;
    }

    // Waits up to five seconds for a condition the simulator reaches in its own time.
    static bool Eventually(const std::function<bool()>& condition)
    {
        for (int i = 0; i < 100; ++i) {
            if (condition())
                return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        return condition();
    }

    double Declination()
    {
        const auto p = scope::ReadScopePositionAt(s, scope::kPanelRefreshLocation);
        return p ? p->dec : std::nan("");
    }

    IndiSimulator simulator;
    services::ScriptedUiPort ui;
    data::Preferences prefs;
    scope::TelescopeState state;
    scope::DriverLayer layer;
    std::ostringstream heard;
    scope::StreamSpeech platform{heard, false};
    scope::Speech speech{platform};
    astro::FixedClock clock{{2024, 1, 15, 20, 0, 0}};
    scope::ScopeContext s{ui, prefs, state, layer, speech, clock};
};

TEST(PanelRefreshSeconds, ScopeDelay1AtLeastOne)
{
    data::Preferences prefs;
    for (const auto& [delay, seconds] : {std::pair{3, 3}, {1, 1}, {0, 1}, {-5, 1}, {60, 60}}) {
        SCOPED_TRACE(delay);
        prefs.ScopeDelay1 = delay;
        EXPECT_EQ(scope::PanelRefreshSeconds(prefs), seconds);
    }
}

TEST_F(ScopePanelTest, MoveTrackingAndStopEachReleaseTheLink)
{
    ASSERT_TRUE(scope::PanelSetTracking(s, true)) << Faults().front();
    EXPECT_FALSE(state.Scope);
    EXPECT_TRUE(Eventually([&] { return scope::PanelTracking(s) == std::optional<bool>(true); }));
    ASSERT_TRUE(scope::PanelSetTracking(s, false));
    EXPECT_TRUE(Eventually([&] { return scope::PanelTracking(s) == std::optional<bool>(false); }));

    const auto labels = scope::PanelPosition(s);
    ASSERT_TRUE(labels);
    EXPECT_FALSE(labels->lblRa.empty());
    EXPECT_FALSE(labels->lblAlt.empty());
    const double before = Declination();
    ASSERT_FALSE(std::isnan(before));

    // The mount keeps moving between the press and the release, with no link held.
    ASSERT_TRUE(scope::PanelMove(s, scope::Direction::North, true));
    EXPECT_FALSE(state.Scope);
    std::this_thread::sleep_for(std::chrono::milliseconds(800));
    ASSERT_TRUE(scope::PanelMove(s, scope::Direction::North, false));
    EXPECT_TRUE(Eventually([&] {
        return simulator.Get("TELESCOPE_MOTION_NS.MOTION_NORTH")["MOTION_NORTH"] == "Off";
    }));
    // Which way north turns the axis depends on the side of the pier: only check that it moved.
    EXPECT_GT(std::fabs(Declination() - before), 0.5);
    EXPECT_TRUE(scope::PanelStop(s));
    EXPECT_FALSE(state.Scope);
    EXPECT_TRUE(Faults().empty()) << Faults().front();
}

TEST_F(ScopePanelTest, ParkedMountRefusesTheGotoUntilUnparked)
{
    // Aligned near the goto's target, so that the slew is short.
    ASSERT_TRUE(scope::SyncScope(s, "06 00 00.0", "+09 30 00.0"));
    // Park where the mount stands, so that parking takes no slew.
    simulator.Set("TELESCOPE_PARK_OPTION.PARK_CURRENT=On");
    ASSERT_TRUE(scope::PanelPark(s));
    ASSERT_TRUE(Eventually([&] {
        return simulator.Get("TELESCOPE_PARK.PARK")["PARK"] == "On" &&
               simulator.Get("TELESCOPE_PARK._STATE")["_STATE"] == "Ok";
    }));

    scope::SolarSystemGoto(s, {6, 0, 0}, {10, 0, 0});
    ASSERT_EQ(Faults().size(), 1u);
    EXPECT_NE(Faults()[0].find("is the mount parked?"), std::string::npos) << Faults()[0];
    EXPECT_NE(Faults()[0].find("Occurred in : " + std::string(scope::kSlewLocation)),
              std::string::npos);
    EXPECT_FALSE(state.Scope);

    ASSERT_TRUE(scope::PanelUnpark(s));
    ASSERT_TRUE(
        Eventually([&] { return simulator.Get("TELESCOPE_PARK.UNPARK")["UNPARK"] == "On"; }));
    scope::SolarSystemGoto(s, {6, 0, 0}, {10, 0, 0});
    EXPECT_EQ(Faults().size(), 1u);
    EXPECT_NEAR(Declination(), 10.0, 1e-6);
}

TEST_F(ScopePanelTest, LostMountGivesOneFaultAtThePanelsLocation)
{
    simulator.Stop();
    EXPECT_FALSE(scope::PanelPosition(s));
    EXPECT_FALSE(scope::PanelMove(s, scope::Direction::East, true));
    EXPECT_FALSE(scope::PanelTracking(s));
    EXPECT_FALSE(state.Scope);
    const std::vector<std::string> faults = Faults();
    ASSERT_EQ(faults.size(), 3u);
    const std::string where = "No INDI server answers at " + simulator.Address();
    EXPECT_EQ(faults[0], where + "\nOccurred in : frmScopePanel.Refresh");
    EXPECT_EQ(faults[1], where + "\nOccurred in : frmScopePanel.MoveAxis");
    EXPECT_EQ(faults[2], where + "\nOccurred in : frmScopePanel.Tracking");
}

} // namespace
