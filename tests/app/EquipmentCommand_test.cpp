// selvane-cli equipment run as a program in a fresh program folder seeded with the shipped
// lists, and its argument check.

#include "app/EquipmentCommand.h"

#include "CliRunner.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using clitest::CliRun;

TEST(CheckEquipmentArgs, UsageErrors)
{
    const struct
    {
        std::vector<std::string> args;
        bool ok;
    } rows[] = {
        {{"list", "EXP"}, true},
        {{"add", "eyepiece", "25 mm", "25", "52"}, true},
        {{"add", "exp", ""}, true},
        {{"delete", "ccd", "12"}, true},
        {{}, false},
        {{"show", "scope"}, false},
        {{"list", "telescope"}, false},
        {{"list", "scope", "1"}, false},
        {{"add", "scope", "C8", "203"}, false},
        {{"add", "ccd", "a", "b"}, false},
        {{"delete", "scope"}, false},
        {{"delete", "scope", "0"}, false},
        {{"delete", "scope", "-1"}, false},
        {{"delete", "scope", "1.5"}, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.args.empty() ? "" : row.args[0] + " " + row.args.back());
        EXPECT_EQ(app::CheckEquipmentArgs(row.args).empty(), row.ok);
    }
}

class EquipmentCli : public ::testing::Test
{
protected:
    CliRun Cli(const QStringList& args, const QString& lang = "C")
    {
        return clitest::RunCli(home.path(),
                               QStringList{"--set", "cdDrive=" SELVANE_RESOURCES
                                                    "/SelvPro13000.mdb",
                                           "equipment"} +
                                   args,
                               lang);
    }
    QTemporaryDir home;
};

TEST_F(EquipmentCli, ShippedListsAddAndDelete)
{
    CliRun run = Cli({"list", "scope"});
    ASSERT_EQ(run.exit, 0) << run.err;
    ASSERT_GE(run.lines.size(), 4u);
    EXPECT_EQ(run.lines[0], "Row\tRecord");
    for (size_t i = 1; i < run.lines.size(); ++i) {
        EXPECT_TRUE(run.lines[i].starts_with(std::to_string(i) + "\t")) << run.lines[i];
        EXPECT_EQ(run.lines[i].size(), 2u + 41u) << run.lines[i];
    }
    const size_t shipped = run.lines.size() - 1;

    // A 40-character name: one warning on stderr, its first 33 characters kept.
    run = Cli({"add", "scope", "Forty character telescope name, exactly.", "130", "5"});
    EXPECT_EQ(run.exit, 0) << run.err;
    EXPECT_TRUE(run.lines.empty());
    EXPECT_NE(run.err.find("[U] Truncation has occurred: Scope name will be truncated to 33 "
                           "characters"),
              std::string::npos)
        << run.err;
    // Typed under a comma decimal sign, the file still holds a full stop.
    run = Cli({"add", "scope", "Fast Newtonian", "254", "4,5"}, "de_DE.UTF-8");
    EXPECT_EQ(run.exit, 0) << run.err;
    run = Cli({"delete", "scope", "1"});
    EXPECT_EQ(run.exit, 0) << run.err;

    run = Cli({"list", "scope"});
    ASSERT_EQ(run.lines.size(), shipped + 2);
    EXPECT_EQ(run.lines[shipped],
              std::to_string(shipped) + "\tForty character telescope name, e05.0 130");
    EXPECT_EQ(run.lines[shipped + 1], std::to_string(shipped + 1) + "\tFast Newtonian" +
                                          std::string(19, ' ') + "04.5 254");

    run = Cli({"delete", "scope", QString::number(shipped + 2)});
    EXPECT_EQ(run.exit, 1);
    EXPECT_NE(run.err.find("no row"), std::string::npos) << run.err;
}

TEST_F(EquipmentCli, UsageAndFileErrors)
{
    for (const QStringList& args : {QStringList{}, {"list", "telescope"}, {"delete", "exp", "x"}}) {
        SCOPED_TRACE(args.join(' ').toStdString());
        const CliRun run = Cli(args);
        EXPECT_EQ(run.exit, 2);
        EXPECT_NE(run.err.find("usage: selvane-cli ... equipment"), std::string::npos) << run.err;
    }

    // An exp.dat that cannot be read (a folder stands under its name) is reported at the tab.
    ASSERT_TRUE(QDir(home.path()).mkpath("exp.dat"));
    const CliRun run = Cli({"list", "exp"});
    EXPECT_EQ(run.exit, 1);
    EXPECT_TRUE(run.lines.empty());
    EXPECT_NE(run.err.find("frmEditEquipment.sstab1_Click"), std::string::npos) << run.err;
}

} // namespace
