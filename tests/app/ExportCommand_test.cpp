// selvane-cli export on a copy of the small edition holding awkward names: every format read
// back against the grid it was made from, XML through xmllint, and the usage errors.

#include "CliRunner.h"

#include "data/Database.h"
#include "tests/TestFiles.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <string>

namespace {

using clitest::CliRun;

// Exit status and output of a program run to its end.
std::pair<int, std::string> Tool(const QString& program, const QStringList& args)
{
    QProcess p;
    p.setProcessChannelMode(QProcess::MergedChannels);
    p.start(program, args);
    if (!p.waitForFinished(120000))
        return {-1, "timed out"};
    return {p.exitCode(), p.readAll().toStdString()};
}

long Count(const std::string& text, const std::string& part)
{
    long n = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++n;
    return n;
}

std::string Slurp(const QString& path)
{
    return test_files::ReadText(path.toStdString());
}

class ExportCli : public ::testing::Test
{
protected:
    void SetUp() override
    {
        db = home.filePath("objects.mdb");
        ASSERT_TRUE(QFile::copy(SELVANE_RESOURCES "/SelvPro13000.mdb", db));
        QFile(db).setPermissions(QFile::ReadOwner | QFile::WriteOwner);
        auto objects = data::Database::Open(db.toStdString());
        objects->Execute("Insert Into SelvaneTable (ObjectID, OtherID, ObjectType, RAhours, "
                         "RAminutes, DeclinationDegrees, DeclinationMinutes, constellation, "
                         "Catalog, Magnitude) Values ('Abell \"39\" & <PN>', 'Étoile ü', 'PN', "
                         "16, 27.6, 27, 54, 'Her', 'AWKWARD', 13.7)");
        objects->Execute("Insert Into SelvaneTable (ObjectID, OtherID, ObjectType, RAhours, "
                         "RAminutes, DeclinationDegrees, DeclinationMinutes, constellation, "
                         "Catalog) Values ('Cr ]]> 399', '', 'OC', 19, 25.4, -0, -20, 'Vul', "
                         "'AWKWARD')");
    }

    CliRun Cli(const QStringList& args)
    {
        return clitest::RunCli(home.path(),
                               QStringList{"--set", "cdDrive=" + db, "--set", "PDate=03/15/2024",
                                           "--set", "Ptime=22:00"} +
                                   args);
    }

    QString Out(const char* name) const { return home.filePath(name); }

    QTemporaryDir home;
    QString db;
};

TEST_F(ExportCli, EveryFormatReadsBackAsTheGrid)
{
    for (const char* where : {"", "Select * From SelvaneTable Where Catalog = 'AWKWARD'"}) {
        const QStringList query = *where ? QStringList{"--sql", where} : QStringList{};
        const CliRun grid = Cli(QStringList{"grid"} + query);
        ASSERT_EQ(grid.exit, 0) << grid.err;
        {
            std::ofstream tsv(Out("grid.tsv").toStdString());
            for (const std::string& line : grid.lines)
                tsv << line << "\n";
        }
        for (const auto& [kind, file] : {std::pair{"excel", "list.xlsx"},
                                         {"html", "list.htm"},
                                         {"text", "list.txt"},
                                         {"xml", "list.xml"},
                                         {"skylist", "list.skylist"},
                                         {"obslist", "obs.xml"}}) {
            const CliRun run = Cli(QStringList{"export", kind, Out(file)} + query);
            ASSERT_EQ(run.exit, 0) << kind << run.err;
            EXPECT_NE(run.err.find("[I] Export Complete: Finished exporting file to " +
                                   Out(file).toStdString()),
                      std::string::npos)
                << kind << run.err;
        }
        for (const auto& [kind, file] : {std::pair{"xlsx", "list.xlsx"}, {"html", "list.htm"}}) {
            const auto [exit, out] =
                Tool("/usr/bin/python3", {SELVANE_TEST_SOURCES "/export_readback.py", kind,
                                          Out(file), Out("grid.tsv")});
            EXPECT_EQ(exit, 0) << kind << ": " << out;
        }
        const long rows = static_cast<long>(grid.lines.size()) - 1;
        const std::string sky = Slurp(Out("list.skylist"));
        EXPECT_EQ(std::count_if(sky.begin(), sky.end(), [](char c) { return c == '\n'; }),
                  1 + 4 * rows + (*where ? 1 : rows)); // an OtherID line for every Messier row
        const std::string text = Slurp(Out("list.txt"));
        EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), rows + 1);
        const std::string xml = Slurp(Out("list.xml"));
        EXPECT_EQ(Count(xml, "<OBJECTS>\n"), rows);
        if (!*where) { // the awkward list's "]]>" breaks its XML, as the layout allows
            EXPECT_EQ(Tool("xmllint", {"--noout", Out("list.xml"), Out("obs.xml")}).first, 0);
        }
    }

    // The awkward names, escaped where the format escapes and as they stand where it does not.
    const std::string text = Slurp(Out("list.txt"));
    EXPECT_NE(text.find("\"Abell 39 & <PN>\",\"Étoile ü\",\"PN\""), std::string::npos) << text;
    const std::string xml = Slurp(Out("list.xml"));
    EXPECT_NE(xml.find("<ObjectID><![CDATA[Cr ]]> 399]]></ObjectID>"), std::string::npos);
    EXPECT_NE(Slurp(Out("list.htm")).find("<td>Abell &quot;39&quot; &amp; &lt;PN&gt;</td>"),
              std::string::npos);
    EXPECT_NE(Slurp(Out("obs.xml")).find("<name>Abell &quot;39&quot; &amp; &lt;PN&gt;</name>"),
              std::string::npos);
    EXPECT_NE(Slurp(Out("obs.xml")).find("<date>15032024</date>"), std::string::npos);
}

TEST_F(ExportCli, FaultsCancelAndUsage)
{
    const CliRun cancelled = Cli({"export", "xml", ""});
    EXPECT_EQ(cancelled.exit, 0);
    EXPECT_NE(cancelled.err.find("[I] Export Complete: Finished exporting file to \n"),
              std::string::npos);

    const CliRun missing = Cli({"export", "html", Out("no/such/list.htm")});
    EXPECT_EQ(missing.exit, 1);
    EXPECT_NE(missing.err.find("Path not found\nOccurred in : ctlSpread.Export"), std::string::npos)
        << missing.err;
    const CliRun badQuery = Cli({"export", "text", Out("t.txt"), "--sql", "Select * From Nope"});
    EXPECT_EQ(badQuery.exit, 1);

    for (const QStringList& args :
         {QStringList{"export"}, QStringList{"export", "pdf", "x"}, QStringList{"export", "text"},
          QStringList{"export", "text", "x", "--count"},
          QStringList{"export", "text", "x", "--sql", "S", "--build"}})
        EXPECT_EQ(Cli(args).exit, 2) << args.join(' ').toStdString();
}

} // namespace
