// selvane-cli log run as a program in a fresh program folder: the shipped databases are copied
// in, so the logbook and the observed flags written are the folder's own.

#include "CliRunner.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <map>

namespace {

using clitest::CliRun;

class LogCli : public ::testing::Test
{
protected:
    CliRun Log(QStringList args) { return clitest::RunCli(home.path(), QStringList{"log"} + args); }

    // The form printed by log show, by field name.
    std::map<std::string, std::string> Show(int n)
    {
        const CliRun run = Log({"show", QString::number(n)});
        EXPECT_EQ(0, run.exit) << run.err;
        std::map<std::string, std::string> form;
        for (const std::string& line : run.lines) {
            const auto tab = line.find('\t');
            form[line.substr(0, tab)] = line.substr(tab + 1);
        }
        return form;
    }

    QTemporaryDir home;
};

TEST_F(LogCli, AddShowUpdateDeleteKeepTheirWords)
{
    CliRun run =
        Log({"add", "txtObjectID=m31", "Catalog=NGC 2000", "mskDate=2026-11-20", "mskTime=21",
             "List1=Telrad", "List1=OIII filter", "rchNotes=<b>Dust</b> lane",
             "Seeing=Mostly Stable", "chkdframe=True", "shortdescription=tab\there"});
    ASSERT_EQ(0, run.exit) << run.err;
    EXPECT_EQ(std::vector<std::string>{"1"}, run.lines);
    EXPECT_EQ("[I] Observation Added: A logbook entry was created successfully\n", run.err);

    // The fields as stored are checked with the entry form; here what the printing escapes.
    auto form = Show(1);
    EXPECT_EQ("Value", form["Field"]);
    EXPECT_EQ("NGC 224", form["ObjectID"]);
    EXPECT_EQ("Telrad\\nOIII filter", form["OtherEquipment"]);
    EXPECT_EQ("Dust lane", form["ObservationText"]);
    EXPECT_EQ("True", form["darkframe"]);
    EXPECT_EQ("tab\\there", form["shortdescription"]);

    run = Log({"update", "1", "Rating=A+", "SeenFlag=False"});
    EXPECT_EQ(0, run.exit) << run.err;
    EXPECT_EQ(std::vector<std::string>{"1"}, run.lines);
    form = Show(1);
    EXPECT_EQ("A+", form["Rating"]);
    EXPECT_EQ("False", form["SeenFlag"]);
    EXPECT_EQ("Telrad\\nOIII filter", form["OtherEquipment"]);

    run = Log({"list", "--object", "NGC 224"});
    ASSERT_EQ(2u, run.lines.size());
    EXPECT_EQ("Object ID\tObs #\tCatalog\tDate\tTime\tLocation\tTransparency\tSeeing\tEquipment\t"
              "Rating\tShort Description\tLog Type",
              run.lines[0]);
    EXPECT_EQ(0u, run.lines[1].find("NGC 224\t1\t2000\t11/20/26\t21:00:00\t"));
    EXPECT_TRUE(Log({"list", "--filter-seen"}).lines.size() == 1);

    // A No to the question, or no answer at all, keeps the entry.
    run = Log({"delete", "1"});
    EXPECT_EQ(1, run.exit);
    EXPECT_EQ("[?] Selvane 2003: Are you sure you want to delete this observation\n", run.err);
    run = Log({"delete", "1", "--answer", "yes"});
    EXPECT_EQ(0, run.exit);
    EXPECT_EQ(std::vector<std::string>{"1"}, run.lines);
    run = Log({"show", "1"});
    EXPECT_EQ(1, run.exit);
    EXPECT_EQ("selvane-cli: no observation 1\n", run.err);
}

TEST_F(LogCli, RefusalsWriteNothingAndUsageErrors)
{
    CliRun run = Log({"add", "ObjectID=" + QString(26, 'A'), "Catalog=NGC 2000"});
    EXPECT_EQ(1, run.exit);
    EXPECT_EQ("[U] Input Validation Error: Maximum of 25 character(s) allowed\r\n\n", run.err);
    run = Log({"add", "ObjectID=NGC 7000", "Catalog=NGC 2000", "mskDate=02/30/2026"});
    EXPECT_EQ(1, run.exit);
    EXPECT_EQ("[U] Invalid Date: You have entered an invalid date\n", run.err);
    run = Log({"add", "ObjectID=NGC 7000", "mskTime=late"});
    EXPECT_EQ(1, run.exit);
    EXPECT_EQ("[E] Invalid Input: Catalog is a required entry\n", run.err);
    EXPECT_EQ(1u, Log({"list"}).lines.size());

    for (const QStringList& bad :
         {QStringList{"add", "Colour=red"}, QStringList{"add", "chkdframe=yes"},
          QStringList{"update", "x"}, QStringList{"frobnicate"}, QStringList{},
          QStringList{"click"}, QStringList{"delete", "1", "--answer", "maybe"},
          QStringList{"last", "--add", "--update"}, QStringList{"add", "OtherID=M 1"}}) {
        run = Log(bad);
        EXPECT_EQ(2, run.exit) << bad.join(' ').toStdString();
        EXPECT_NE(std::string::npos, run.err.find("usage: selvane-cli ... log"));
    }
}

TEST_F(LogCli, LastEntryAndTheOneClickLog)
{
    ASSERT_EQ(0, Log({"add", "ObjectID=NGC 7000", "Catalog=NGC 2000", "mskDate=2026-11-20",
                      "mskTime=22:10", "LocationObserved=Backyard"})
                     .exit);
    // The recall brings back the number, so --update changes that entry and --add makes one.
    CliRun run = Log({"last", "--update", "Rating=B"});
    EXPECT_EQ(0, run.exit) << run.err;
    EXPECT_EQ(std::vector<std::string>{"1"}, run.lines);
    run = Log({"last", "--add", "mskTime=23:00"});
    EXPECT_EQ(std::vector<std::string>{"2"}, run.lines);
    auto form = Show(2);
    EXPECT_EQ("Backyard", form["LocationObserved"]);
    EXPECT_EQ("23:00:00", form["TimeObserved"]);
    run = Log({"last"});
    EXPECT_EQ("ObservationNumber\t2", run.lines.at(1));

    // Row 1 of the start list (the Messier list) logged from the spreadsheet.
    run = Log({"click", "1", "--answer", "yes"});
    EXPECT_EQ(0, run.exit) << run.err;
    EXPECT_EQ(std::vector<std::string>{"3"}, run.lines);
    EXPECT_EQ("[?] Logbook Add: Add this object to your Default personal logbook ?\n"
              "[?] Logbook Add: Would you like to add additional information to this log entry?\n",
              run.err);
    run = Log({"click", "1"});
    EXPECT_EQ(1, run.exit);
    EXPECT_TRUE(run.lines.empty());
    run = Log({"click", "9999", "--answer", "yes"});
    EXPECT_EQ(1, run.exit);

    run = Log({"fix"});
    EXPECT_EQ(0, run.exit);
    EXPECT_EQ(3u, Log({"list"}).lines.size() - 1);
}

} // namespace
