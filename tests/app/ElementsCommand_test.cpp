// selvane-cli elements run as a program in a fresh program folder holding an empty
// AstComet.mdb: the import's counts, a refused file and the argument check.

#include "app/ElementsCommand.h"

#include "CliRunner.h"
#include "data/Database.h"
#include "data/Schema.h"
#include "tests/TestFiles.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

using clitest::CliRun;
using Lines = std::vector<std::string>;

const std::string kHalley =
    "0001P         1986 02  9.4589  0.574938  0.967923  111.8648   59.1006  "
    "162.1906  19860205   4.0  6.0  1P/Halley";
const std::string kCeres = "00001    3.33  0.15 K2555 188.70269   73.27343   80.25221   10.58780  "
                           "0.0794013  0.21424651   2.7660512  0 E2024-V47  7330 125 1801-2024 "
                           "0.80 M-v 30k MPCLINUX   4000 (1) Ceres                   20241101";

class ElementsCli : public ::testing::Test
{
protected:
    void SetUp() override
    {
        data::OpenOptions options;
        options.create = true;
        auto db = data::Database::Open(home.filePath("AstComet.mdb").toStdString(), options);
        data::CreateSchema(db->Handle(), data::SchemaKind::AstComet);
        db->Execute("Insert Into Comet (Name, q, e) Values ('1p/halley', 0.5, 0.9)");
    }

    // Writes text into the folder and imports it; the decimal comma of the locale must not
    // matter.
    CliRun Import(const QString& kind, const QString& name, const std::string& text)
    {
        test_files::WriteText(home.filePath(name).toStdString(), text);
        return clitest::RunCli(home.path(), {"elements", "import", kind, home.filePath(name)},
                               "de_DE.UTF-8");
    }

    QTemporaryDir home;
};

TEST_F(ElementsCli, CountsAndRefusals)
{
    const std::string atlas = kHalley.substr(0, 102) + "C/2023 A3 (Tsuchinshan-ATLAS)";
    CliRun run = Import("comets", "CometEls.txt", kHalley + "\n\n" + atlas + "\n");
    EXPECT_EQ(run.exit, 0) << run.err;
    EXPECT_EQ(run.lines, (Lines{"Kind\tLines\tAdded\tReplaced", "comets\t2\t1\t1"}));

    run = Import("asteroids", "MPCORB.DAT", std::string(100, '-') + "\n" + kCeres + "\n");
    EXPECT_EQ(run.exit, 0) << run.err;
    EXPECT_EQ(run.lines, (Lines{"Kind\tLines\tAdded\tReplaced", "asteroids\t1\t1\t0"}));

    run = Import("comets", "CometEls.txt", kHalley + "\n" + kHalley.substr(0, 30) + "0.8x7");
    EXPECT_EQ(run.exit, 1);
    EXPECT_TRUE(run.lines.empty());
    EXPECT_NE(run.err.find("[E] Update Asteroid/Comet Elements: CometEls.txt line 2: the "
                           "perihelion distance \"0.8x7\" is not a number"),
              std::string::npos)
        << run.err;

    for (const QStringList& args : {QStringList{"elements", "import", "planets", "x"},
                                    QStringList{"elements", "import", "comets"},
                                    QStringList{"elements", "export", "comets", "x"}}) {
        SCOPED_TRACE(args.join(" ").toStdString());
        run = clitest::RunCli(home.path(), args);
        EXPECT_EQ(run.exit, 2);
        EXPECT_NE(run.err.find(app::ElementsUsage), std::string::npos) << run.err;
    }
}

} // namespace
