// The slide-show script for ACP over a real SQLite object database: the list and the script
// byte for byte, ACP not found, a program folder that cannot take the list, a missing script.

#include "scope/AcpScript.h"

#include "services/ScriptedUiPort.h"

#include "../data/TestDatabases.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

namespace fs = std::filesystem;

std::string ReadBytes(const fs::path& file)
{
    std::ifstream in(file, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

void WriteBytes(const fs::path& file, const std::string& bytes)
{
    std::ofstream(file, std::ios::binary) << bytes;
}

// The grid rows point at their records by RecordID (column 27) alone.
spread::Grid RowsOf(std::initializer_list<const char*> ids)
{
    spread::Grid grid;
    for (const char* id : ids)
        grid.AppendRow(std::string(26, '\t') + id);
    return grid;
}

// A script whose lines end in CR LF, LF alone and CR alone (an empty one too), the last without
// an end; the indented open line is not the one to rewrite.
constexpr const char* kScript = "' list reader\r\n"
                                "Set a = FS.OpenTextFile(\"old.sfl\", ForReading, False)\n"
                                "  Set a = FS.OpenTextFile(\"keep.sfl\")\r"
                                "\r"
                                "a.Close";

struct AcpFolder
{
    AcpFolder()
    {
        testing_data::MakeObjectDatabase(folder.objectPath);
        db = data::Database::Open(folder.objectPath);
        // A southern object whose degrees are 0, no other identifier, a type with a quote.
        db->Execute("Insert Into SelvaneTable (ID, ObjectID, OtherID, ObjectType, RAhours, "
                    "RAminutes, DeclinationDegrees, DeclinationMinutes, constellation, "
                    "Magnitude, Catalog) Values (4, 'IC 1', ' ', 'DRK''N', 23, 59.97, 0, -30, "
                    "'Peg', 12.25, '2000')");
        db->Execute("Insert Into ValidObjectTypes (ObjectType, ObjectTypeDesc) Values "
                    "('DRK''N', 'Dark nebula')");
        fs::create_directory(acp);
        WriteBytes(vbs(), kScript);
        ui.echo = false;
    }
    fs::path vbs() const { return folder.dir.File(scope::kSlideShowScript); }
    fs::path sfl() const { return folder.dir.File(scope::kSlideShowList); }

    testing_data::TestFolder folder;
    fs::path acp = folder.dir.File("ACP");
    std::unique_ptr<data::Database> db;
    services::ScriptedUiPort ui;
};

TEST(CreateAcpScript, ListAndScriptByteForByte)
{
    AcpFolder f;
    // Row 99 has no record any more and is left out.
    const spread::Grid grid = RowsOf({"2", "1", "99", "3", "4"});
    const scope::AcpScriptResult result =
        scope::CreateAcpScript(f.ui, f.acp.string(), f.folder.dir, &grid, f.db.get());
    ASSERT_TRUE(result.written);
    EXPECT_EQ(result.objects, 4);
    EXPECT_EQ(result.sfl, fs::absolute(f.sfl()));

    // NGC 1976: -(5 + 27/60); M 31: 42.7/60 hours; NGC 7000: a null magnitude; IC 1: 0 degrees
    // and -30 minutes stay south, 23h 59.97m does not wrap to 24.
    EXPECT_EQ(ReadBytes(f.sfl()), "!START\r\n"
                                  "05.590000 -05.450000\r\n"
                                  "M 42, NGC 1976\r\n"
                                  "located in the constellation of \r\n"
                                  "Ori\r\n"
                                  "and has a magnitude of 4.\r\n"
                                  "The object type for this object is unknown.\r\n"
                                  "!START\r\n"
                                  "00.711667 +41.266667\r\n"
                                  "M 31, NGC 224\r\n"
                                  "located in the constellation of \r\n"
                                  "And\r\n"
                                  "and has a magnitude of 3.4.\r\n"
                                  "The object type for this object is Galaxy.\r\n"
                                  "!START\r\n"
                                  "20.980000 +44.333333\r\n"
                                  "North America, NGC 7000\r\n"
                                  "located in the constellation of \r\n"
                                  "Cyg\r\n"
                                  "Magnitude is Not Available\r\n"
                                  "The object type for this object is unknown.\r\n"
                                  "!START\r\n"
                                  "23.999500 -00.500000\r\n"
                                  "IC 1\r\n"
                                  "located in the constellation of \r\n"
                                  "Peg\r\n"
                                  "and has a magnitude of 12.25.\r\n"
                                  "The object type for this object is Dark nebula.\r\n");
    EXPECT_EQ(ReadBytes(f.vbs()), "' list reader\r\n"
                                  "Set a = FS.OpenTextFile(\"" +
                                      fs::absolute(f.sfl()).string() +
                                      "\", ForReading, False)\r\n"
                                      "  Set a = FS.OpenTextFile(\"keep.sfl\")\r\n"
                                      "\r\n"
                                      "a.Close\r\n");
    EXPECT_FALSE(fs::exists(f.folder.dir.File(scope::kSlideShowWork)));
    ASSERT_EQ(f.ui.shown.size(), 1u);
    EXPECT_EQ(f.ui.shown[0].message.kind, "I");
    EXPECT_EQ(f.ui.shown[0].message.ShortMessage, "Script Object List is complete.");
    EXPECT_EQ(f.ui.shown[0].Text(), "You can now go to ACP and run the script titled "
                                    "SelvaneSlideShow.vbs in the Selvane 2003 directory.");

    // Run again, the rewritten script is pointed at the list once more and keeps its lines.
    const std::string once = ReadBytes(f.vbs());
    ASSERT_TRUE(
        scope::CreateAcpScript(f.ui, f.acp.string(), f.folder.dir, &grid, f.db.get()).written);
    EXPECT_EQ(ReadBytes(f.vbs()), once);
}

TEST(CreateAcpScript, RefusalsAndFaultsWriteNothing)
{
    AcpFolder f;
    const spread::Grid grid = RowsOf({"1"});
    // No folder set, a folder that does not exist, a file in place of the folder.
    WriteBytes(f.folder.dir.File("notafolder"), "x");
    for (const std::string& acp :
         {std::string(), (f.acp / "gone").string(), f.folder.dir.File("notafolder").string()}) {
        SCOPED_TRACE(acp);
        f.ui.shown.clear();
        EXPECT_FALSE(scope::CreateAcpScript(f.ui, acp, f.folder.dir, &grid, f.db.get()).written);
        ASSERT_EQ(f.ui.shown.size(), 1u);
        EXPECT_EQ(f.ui.shown[0].message.kind, "I");
        EXPECT_EQ(f.ui.shown[0].message.ShortMessage, "ACP Not Installed");
        EXPECT_EQ(f.ui.shown[0].Text(), "Please install it before you run this option");
        EXPECT_FALSE(fs::exists(f.sfl()));
        EXPECT_EQ(ReadBytes(f.vbs()), kScript);
    }

    // A program folder that cannot take the list.
    f.ui.shown.clear();
    const data::ProgramDir missing{f.folder.dir.File("gone")};
    EXPECT_FALSE(scope::CreateAcpScript(f.ui, f.acp.string(), missing, &grid, f.db.get()).written);
    ASSERT_EQ(f.ui.shown.size(), 1u);
    EXPECT_EQ(f.ui.shown[0].message.kind, "I");
    EXPECT_EQ(f.ui.shown[0].message.ShortMessage, "Script Generation Aborted.");
    EXPECT_EQ(f.ui.shown[0].Text(), "Invalid Filename was specified");
    EXPECT_FALSE(fs::exists(missing.path));

    // The shipped script gone: a fault at the routine's place, and no working copy left.
    fs::remove(f.vbs());
    f.ui.shown.clear();
    EXPECT_FALSE(
        scope::CreateAcpScript(f.ui, f.acp.string(), f.folder.dir, &grid, f.db.get()).written);
    ASSERT_EQ(f.ui.shown.size(), 1u);
    EXPECT_EQ(f.ui.shown[0].message.kind, "E");
    EXPECT_EQ(f.ui.shown[0].Text(), "File not found\nOccurred in : ctlSpread.CreateACPScript");
    EXPECT_FALSE(fs::exists(f.vbs()));
    EXPECT_FALSE(fs::exists(f.folder.dir.File(scope::kSlideShowWork)));
}

} // namespace
