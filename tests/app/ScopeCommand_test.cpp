// selvane-cli scope run as a program: on Debian's simulator mount (skipped without indiserver),
// on the in-process Alpaca server, and without any mount.

#include "CliRunner.h"

#include "../scope/AlpacaServer.h"
#include "../scope/IndiSimulator.h"

#include <QFile>
#include <QThread>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

using clitest::CliRun;
using clitest::Split;

class ScopeCommandTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(home.isValid());
        QFile settings(home.path() + "/s.ini");
        ASSERT_TRUE(settings.open(QIODevice::WriteOnly));
        settings.write("[Preferences]\nFIRST=False\nDsound=True\n");
    }

    CliRun Run(const QStringList& args, const std::string& input = {})
    {
        QProcess process;
        clitest::StartCli(process, home.path(), QStringList{"scope"} + args);
        process.write(input.c_str());
        process.closeWriteChannel();
        EXPECT_TRUE(process.waitForFinished(240000));
        return clitest::Finish(process);
    }

    // The values line of an action's output, split at tabs.
    static std::vector<std::string> Values(const CliRun& run, std::size_t line = 1)
    {
        return run.lines.size() > line ? Split(run.lines[line], '\t') : std::vector<std::string>{};
    }

    QTemporaryDir home;
};

double Number(const std::string& text)
{
    return std::strtod(text.c_str(), nullptr);
}

TEST_F(ScopeCommandTest, UsageRowsAndAMissingDriver)
{
    for (const QStringList& bad :
         {QStringList{"bogus"}, QStringList{}, QStringList{"slew", "1", "2"},
          QStringList{"slew", "1", "2", "3", "x", "5", "6"}, QStringList{"--catalog", "M", "goto"},
          QStringList{"--row", "0", "goto"}, QStringList{"--sql", "x", "--build", "goto"},
          QStringList{"--indi", "h:1", "goto"}})
        EXPECT_EQ(Run(bad).exit, 2) << bad.join(' ').toStdString();

    CliRun beyond = Run({"--row", "9999", "goto"});
    EXPECT_EQ(beyond.exit, 1);
    EXPECT_NE(beyond.err.find("no row 9999"), std::string::npos);
    EXPECT_TRUE(beyond.lines.empty());

    // No driver chosen: the enable refuses, a position is a fault shown at its place.
    CliRun enable = Run({"enable"});
    EXPECT_EQ(enable.exit, 1);
    ASSERT_GE(enable.lines.size(), 2u);
    EXPECT_EQ(enable.lines[1], "caption\tEnable The Telescope");
    EXPECT_NE(enable.err.find("[I] Attention!: Your telescope does not appear to be connected."),
              std::string::npos);

    // Lines of a script: statuses after each, a bad line does not stop the rest.
    CliRun script = Run({"-"}, "# a comment\n\nposition\nslew 1 2\nchoose 'x y'\nbogus 'open\n");
    EXPECT_EQ(script.exit, 2);
    std::vector<std::string> statuses;
    for (const std::string& line : script.lines)
        if (line.starts_with("#\t"))
            statuses.push_back(line.substr(2));
    EXPECT_EQ(statuses, (std::vector<std::string>{"1", "2", "0", "2"}));
    EXPECT_NE(script.err.find("Occurred in : TelescopeStuff.GetScopePosition"), std::string::npos);
    EXPECT_NE(std::find(script.lines.begin(), script.lines.end(), "x y\tASCOM"),
              script.lines.end());
}

TEST_F(ScopeCommandTest, DrivesTheSimulatorMount)
{
    if (!inditest::ServerInstalled())
        GTEST_SKIP() << "indiserver and indi_simulator_telescope are not installed";
    inditest::IndiSimulator simulator;
    ASSERT_TRUE(simulator.Start());
    const QString identifier = QString::fromStdString(simulator.Identifier());

    CliRun devices = Run({"devices", "--indi", QString::fromStdString(simulator.Address())});
    EXPECT_EQ(devices.exit, 0) << devices.err;
    EXPECT_EQ(devices.lines, (std::vector<std::string>{
                                 "Identifier\tDevice",
                                 simulator.Identifier() + "\tTelescope Simulator"}));

    ASSERT_EQ(Run({"choose", identifier}).exit, 0);

    // The chosen driver is read back from the settings by the next run.
    CliRun enable = Run({"enable"});
    EXPECT_EQ(enable.exit, 0) << enable.err;
    EXPECT_EQ(Values(enable), (std::vector<std::string>{"caption", "Disconnect Telescope"}));
    EXPECT_EQ(Values(enable, 2), (std::vector<std::string>{"createtour", "True"}));
    EXPECT_EQ(Values(enable, 3), (std::vector<std::string>{"sync", "True"}));
    EXPECT_NE(enable.err.find("[speak] Telescope Control is Active."), std::string::npos);

    // Sync on M 2, then a short goto to the object next to it, both in one script.
    CliRun script = Run({"--object", "NGC 7089", "-"},
                        "sync\ngoto --object 'NGC 7099'\nposition\n");
    ASSERT_EQ(script.exit, 0) << script.err;
    ASSERT_EQ(script.lines.size(), 9u);
    const std::vector<std::string> sync = Values(script, 1);
    EXPECT_EQ(sync, (std::vector<std::string>{"NGC 7089", "21.557500", "-0.823056", "True"}));
    const std::vector<std::string> slew = Values(script, 4);
    ASSERT_EQ(slew.size(), 8u);
    EXPECT_EQ(slew[0], "NGC 7099");
    EXPECT_EQ(slew[1], "21");
    EXPECT_EQ(slew[7], "True");
    const double targetRa = Number(slew[5]), targetDec = Number(slew[6]);
    EXPECT_NEAR(targetRa, Number(slew[1]) + Number(slew[2]) / 60, 1e-6);
    EXPECT_NEAR(targetDec, Number(slew[3]) - Number(slew[4]) / 60, 1e-6);
    const std::vector<std::string> position = Values(script, 7);
    ASSERT_EQ(position.size(), 7u);
    EXPECT_EQ(position[0], simulator.Identifier() + " Current Position");
    EXPECT_NEAR(Number(position[5]), targetRa, 0.002);
    EXPECT_NEAR(Number(position[6]), targetDec, 0.01);
    EXPECT_EQ(position[1].substr(0, 4), "21h ");
    EXPECT_FALSE(position[3].empty()); // the simulator's altitude, "-12 34' 56"
    EXPECT_NE(script.err.find("[10] Slewing " + simulator.Identifier()), std::string::npos);
    EXPECT_NE(script.err.find("[speak] Target is Locked."), std::string::npos);

    // The server killed in the middle of a long slew: the fault names the address, and the next
    // run connects to the restarted server.
    QProcess far;
    clitest::StartCli(far, home.path(), {"scope", "--object", "NGC 1952", "goto"});
    ASSERT_TRUE(far.waitForStarted());
    QThread::msleep(3000);
    const int port = simulator.Port();
    simulator.KillServer();
    ASSERT_TRUE(far.waitForFinished(60000));
    CliRun killed = clitest::Finish(far);
    EXPECT_EQ(killed.exit, 1);
    EXPECT_NE(killed.err.find("The connection to " + simulator.Address() +
                              " was lost during the slew\nOccurred in : TelescopeStuff.SlewTelescope"),
              std::string::npos)
        << killed.err;
    simulator.Stop();
    ASSERT_TRUE(simulator.Start(port));
    EXPECT_EQ(Run({"position"}).exit, 0);
}

TEST_F(ScopeCommandTest, DrivesAnAlpacaMount)
{
    using namespace alpaca_test;
    AlpacaServer mount({{"GET connected", {Value(false)}},
                        {"GET canslewasync", {Value(true)}},
                        {"GET slewing", {Value(true), Value(false)}},
                        {"GET rightascension", {Value(5.5)}},
                        {"GET declination", {Value(-5.25)}},
                        {"GET tracking", {Value(true)}},
                        {"GET altitude", {DeviceError(0x400, "Property not implemented")}},
                        {"GET azimuth", {DeviceError(0x400, "Property not implemented")}},
                        {"GET configureddevices",
                         {ValueJson(R"([{"DeviceName":"Roll-off mount","DeviceType":"Telescope",)"
                                    R"("DeviceNumber":0,"UniqueID":"a"}])")}}});
    DiscoveryResponder responder({R"({"AlpacaPort": )" + std::to_string(mount.Port()) + "}"});
    const std::string identifier = "alpaca://" + mount.Address() + "/telescope/0";

    CliRun devices = Run({"devices", "--alpaca", QString::fromStdString(responder.Address())});
    EXPECT_EQ(devices.exit, 0) << devices.err;
    EXPECT_EQ(devices.lines, (std::vector<std::string>{"Identifier\tDevice",
                                                        identifier + "\tRoll-off mount"}));

    CliRun script = Run({"-"}, "choose " + identifier + "\nslew 5 30 12 -5 20 31\nposition\n");
    ASSERT_EQ(script.exit, 0) << script.err;
    EXPECT_EQ(Values(script, 4), (std::vector<std::string>{"", "05", "30.2", "-05", "21",
                                                            "5.503333", "-5.350000", "True"}));
    // Altitude not offered: altitude and azimuth are computed for the site.
    const std::vector<std::string> position = Values(script, 7);
    ASSERT_EQ(position.size(), 7u);
    EXPECT_EQ(position[1], "5h 30m 0s");
    EXPECT_EQ(position[2], "-5h 15m 0s");
    EXPECT_FALSE(position[3].empty());
    EXPECT_EQ(position[5], "5.500000000");

    std::vector<std::string> puts;
    for (const Request& request : mount.Requests())
        if (request.method == "PUT")
            puts.push_back(request.path.substr(request.path.rfind('/') + 1));
    EXPECT_EQ(puts, (std::vector<std::string>{"connected", "targetdeclination",
                                              "targetrightascension", "slewtotargetasync",
                                              "connected"}));
}

TEST_F(ScopeCommandTest, AParkedAlpacaMountRefusesTheSlew)
{
    using namespace alpaca_test;
    AlpacaServer mount({{"GET connected", {Value(true)}},
                        {"GET canslewasync", {Value(true)}},
                        {"GET tracking", {Value(true)}},
                        {"PUT slewtotargetasync", {DeviceError(0x408, "Invalid while parked")}}});
    CliRun run = Run({"--row", "2", "-"},
                     "choose alpaca://" + mount.Address() + "/telescope/0\ngoto\n");
    EXPECT_EQ(run.exit, 1);
    const std::vector<std::string> slew = Values(run, 4);
    ASSERT_EQ(slew.size(), 8u);
    EXPECT_EQ(slew[0], "NGC 7089");
    EXPECT_EQ(slew[7], "True"); // the routine ran; the fault says the mount did not move
    EXPECT_NE(run.err.find("Invalid while parked"), std::string::npos) << run.err;
    EXPECT_NE(run.err.find("Occurred in : TelescopeStuff.SlewTelescope"), std::string::npos);
}

} // namespace
