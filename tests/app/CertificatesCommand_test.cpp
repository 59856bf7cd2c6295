// The certificates and the statistics sheet through selvane-cli report on the built databases:
// the PDF's text read back with pdftotext, and "Still to observe" taken from the settings file.

#include "CliRunner.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <string>

namespace {

using clitest::CliRun;

class CertificatesCommandTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(home.isValid());
        WriteSettings("");
    }

    void WriteSettings(const char* more)
    {
        QFile settings(home.path() + "/s.ini");
        ASSERT_TRUE(settings.open(QIODevice::WriteOnly));
        settings.write(QByteArray("[Preferences]\nFIRST=False\n") + more);
    }

    void Log(const char* id, const char* date)
    {
        const CliRun run = clitest::RunCli(
            home.path(), {"log", "add", QString("ObjectID=") + id, "Catalog=NGC 2000",
                          QString("DateObserved=") + date, "TimeObserved=21:00"});
        ASSERT_EQ(run.exit, 0) << run.err;
    }

    // The text of the report's PDF.
    std::string Report(const char* number)
    {
        const QString pdf = home.path() + "/r" + number + ".pdf";
        const CliRun run = clitest::RunCli(home.path(), {"report", number, "--pdf", pdf});
        EXPECT_EQ(run.exit, 0) << run.err;
        QProcess process;
        process.start("pdftotext", {"-layout", pdf, "-"});
        EXPECT_TRUE(process.waitForFinished(60000));
        return process.readAllStandardOutput().toStdString();
    }

    static int Occurrences(const std::string& text, const std::string& part)
    {
        int n = 0;
        for (std::size_t at = text.find(part); at != std::string::npos;
             at = text.find(part, at + part.size()))
            ++n;
        return n;
    }

    QTemporaryDir home;
};

TEST_F(CertificatesCommandTest, CertificatesCountEachObjectOnceAndListWhatIsLeft)
{
    // NGC 891 (H V-19) three times, NGC 7000 (H V-37), M 31 (NGC 224) and M 1 (NGC 1952) once.
    for (const char* date : {"10/01/2024", "11/02/2024", "09/03/2023"})
        Log("NGC 891", date);
    Log("NGC 7000", "06/06/2022");
    Log("NGC 224", "08/01/2025");
    Log("NGC 1952", "01/05/2025");

    std::string text = Report("7");
    EXPECT_EQ(Occurrences(text, "NGC #: NGC 891 on "), 1) << text;
    EXPECT_EQ(Occurrences(text, "Hersch #:"), 2) << text;
    EXPECT_NE(text.find("You have observed 2 Herschel Objects so far."), std::string::npos);
    EXPECT_EQ(text.find("Still to observe"), std::string::npos);

    text = Report("133");
    EXPECT_NE(text.find("M1 on 01/05/25"), std::string::npos) << text;
    EXPECT_NE(text.find("M31 on 08/01/25"), std::string::npos) << text;
    EXPECT_NE(text.find("You have observed 2 Messier Objects so far."), std::string::npos);

    text = Report("8");
    EXPECT_NE(text.find("Logbook Statistics :"), std::string::npos) << text;
    EXPECT_NE(text.find("3. Herschel Objects Observed : 2"), std::string::npos) << text;
    EXPECT_NE(text.find("4. Date of Last Logged Observation : 08/01/25"), std::string::npos);

    // The setting turns the list of what is left on; nothing new on the command line.
    WriteSettings("CertMissing=True\n");
    text = Report("133");
    const std::size_t heading = text.find("Still to observe :");
    ASSERT_NE(heading, std::string::npos) << text;
    const std::string left = text.substr(heading);
    EXPECT_NE(left.find("M2,"), std::string::npos) << left;
    EXPECT_NE(left.find("M110"), std::string::npos) << left;
    EXPECT_EQ(left.find("M1,"), std::string::npos) << left;
    EXPECT_EQ(left.find("M31,"), std::string::npos) << left;
    text = Report("77");
    EXPECT_NE(text.find("Herschell Object : H V-19 was observed on"), std::string::npos) << text;
    EXPECT_NE(text.find("Still to observe :"), std::string::npos);
}

} // namespace
