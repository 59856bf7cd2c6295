#include "LogTestSession.h"

#include "logbook/ObservedFlag.h"

#include <QImage>

#include <fstream>

using logbook::LogField;
using logtest::FillEntry;
using logtest::LogSession;
using logtest::Type;
using Strings = std::vector<std::string>;

namespace {

TEST(LogEntry, AddChecksRunInOrderAndWriteNothing)
{
    LogSession s;
    auto form = s.Open();
    EXPECT_EQ("11/24/26", form->f.mskDate);
    EXPECT_EQ("Default", form->f.cboLogtype);
    EXPECT_EQ(" Local", form->lblTime);
    EXPECT_TRUE(form->f.Option1);

    EXPECT_FALSE(form->cmdAdd_Click());
    form->f.cboCatalog = "NGC 2000";
    form->f.mskTime = "25:99";
    EXPECT_FALSE(form->cmdAdd_Click());
    form->f.mskTime = "21:30:00";
    form->f.mskDate = " ";
    EXPECT_FALSE(form->cmdAdd_Click());
    form->f.mskDate = "11/24/2026";
    EXPECT_FALSE(form->cmdAdd_Click());
    EXPECT_EQ((Strings{"Invalid Input|Catalog is a required entry|E",
                       "Invalid Format|Please enter a valid time |U", "Date|Date must be entered|U",
                       "Object ID Required|Please enter an object id|U"}),
              s.TakeShown());
    EXPECT_EQ("Logbook 0, SessionLog 0, LastLogEntry 0",
              s.Counts({"Logbook", "SessionLog", "LastLogEntry"}));
}

TEST(LogEntry, AddStoresEveryTableInOrderWithBlanksAsOneSpace)
{
    LogSession s;
    auto form = s.Open();
    FillEntry(*form);
    EXPECT_EQ("M31", form->f.txtObjectID);
    EXPECT_EQ("21:30:00", form->f.mskTime);
    form->f.List1 = {"Telrad", "OIII filter"};
    Type(*form, LogField::txtDescription, "Dust lane, \"bright\" core, O'Meara's note");
    ASSERT_TRUE(form->cmdAdd_Click());

    // The Messier shorthand logs the main id.
    EXPECT_EQ("1|NGC 224|M 31",
              form->lblObNo + "|" + form->f.txtObjectID + "|" + form->f.txtOtherID);
    EXPECT_EQ("NGC 224|2000|-1|2026-11-24|21:30:00| | |Telrad\r\nOIII filter\r\n|<null>|1|Default",
              s.Log("Select ObjectID || '|' || Catalog || '|' || SeenFlag || '|' || DateObserved "
                    "|| '|' || TimeObserved || '|' || LocationObserved || '|' || Seeing || '|' || "
                    "OtherEquipment || '|' || ifnull(ObservationText, '<null>') || '|' || "
                    "DataRec || '|' || LogType From Logbook"));
    EXPECT_EQ("Dust lane, \"bright\" core, O'Meara's note",
              s.Log("Select ShortDescription From Logbook"));
    EXPECT_EQ("-1", s.Obj("Select Observed From SelvaneTable Where ID = 1"));
    EXPECT_EQ("1|2026-11-24|1",
              s.Log("Select (Select count(*) From CCDLog Where ObservationNumber = 1) || '|' || "
                    "(Select SessionDate From SessionLog) || '|' || (Select ObservationNumber "
                    "From LastLogEntry)"));
    ASSERT_EQ(1u, form->grdLog.size());
    EXPECT_EQ("Logbook   -   1 Entries Displayed...", form->caption);
    EXPECT_EQ((Strings{"Observation Added|A logbook entry was created successfully|I"}),
              s.TakeShown());
    EXPECT_FALSE(form->dirty);
    EXPECT_EQ("11/24/26", form->grdLog[0][3]);

    // The same object on the same night is a second observation with its own rows; an empty
    // session box empties that night's notes.
    form->f.RichTextBox1 = "Clear and steady";
    ASSERT_TRUE(form->cmdAdd_Click());
    EXPECT_EQ("Clear and steady",
              logbook::RichPlainText(s.Log("Select sessiontext From SessionLog")));
    form->f.RichTextBox1.clear();
    ASSERT_TRUE(form->cmdAdd_Click());
    EXPECT_EQ("Logbook 3, CCDLog 3, SessionLog 1", s.Counts({"Logbook", "CCDLog", "SessionLog"}));
    EXPECT_EQ(" ", s.Log("Select sessiontext From SessionLog"));
}

TEST(LogEntry, MessierShorthandAndFlagStatements)
{
    LogSession s;
    auto form = s.Open();
    // "M" and a non-digit is no shorthand; in catalogue 2000 the flag update by Messier number
    // then fails, is reported, and the entry stays.
    FillEntry(*form, "MCG 5-7");
    ASSERT_TRUE(form->cmdAdd_Click());
    EXPECT_EQ("MCG 5-7|0", s.Log("Select ObjectID || '|' || DataRec From Logbook"));
    const Strings shown = s.TakeShown();
    ASSERT_EQ(2u, shown.size());
    EXPECT_NE(std::string::npos, shown[0].find("frmLogEntryNew.UpdateSelvaneTable"));

    EXPECT_EQ("Update SelvaneTable Set Observed = True  Where ID = 7",
              logbook::ObservedUpdateSql(" ", "2000", 7));
    EXPECT_EQ(
        "Update SelvaneTable Set Observed = True Where ObjectID = 'O''NEIL 1' and Catalog = 'UGC'",
        logbook::ObservedUpdateSql("o'neil 1", "UGC", 7));
    EXPECT_EQ(
        "Update SelvaneTable Set Observed = True  Where MessierNumber = 42 and Catalog = '2000'",
        logbook::ObservedUpdateSql("M42", "2000", 0));

    // M0 and M with a blank are not shorthand either.
    form->cmdClear();
    FillEntry(*form, "M0");
    s.TakeShown();
    ASSERT_TRUE(form->cmdAdd_Click());
    EXPECT_EQ("M0", s.Log("Select ObjectID From Logbook Where ObservationNumber = 2"));
}

TEST(LogEntry, FieldRulesOnLeaving)
{
    LogSession s;
    auto form = s.Open();
    // Object id: upper case, 25 characters, commas and quotes allowed.
    EXPECT_TRUE(Type(*form, LogField::txtObjectID, "ngc 7000, 'n.a.' \"x\""));
    EXPECT_EQ("NGC 7000, 'N.A.' \"X\"", form->f.txtObjectID);
    EXPECT_FALSE(Type(*form, LogField::txtObjectID, std::string(26, 'A')));
    EXPECT_FALSE(Type(*form, LogField::txtDescription, std::string(51, 'd')));
    EXPECT_TRUE(Type(*form, LogField::txtDescription, std::string(50, 'd')));
    EXPECT_EQ((Strings{"Input Validation Error|Maximum of 25 character(s) allowed\r\n|U",
                       "Input Validation Error|Maximum of 50 character(s) allowed\r\n|U"}),
              s.TakeShown());

    EXPECT_TRUE(Type(*form, LogField::txtLocation, std::string(50, 'l')));
    EXPECT_FALSE(Type(*form, LogField::txtLocation, std::string(51, 'l')));
    EXPECT_FALSE(Type(*form, LogField::txtEquipment, std::string(51, 'e')));
    EXPECT_FALSE(Type(*form, LogField::txtscope, std::string(101, 's')));
    EXPECT_TRUE(Type(*form, LogField::txtscope, std::string(100, 's')));
    EXPECT_FALSE(Type(*form, LogField::txtRating, "12345678901"));
    // Characters, not bytes: 50 accented letters fit.
    std::string accented;
    for (int i = 0; i < 50; ++i)
        accented += "\xC3\xA9";
    EXPECT_TRUE(Type(*form, LogField::txtLocation, accented));
    EXPECT_FALSE(Type(*form, LogField::cboCatalog, "  "));
    EXPECT_EQ(
        (Strings{"Maximum Characters Exceeded|Location Must be less than 50 characters long|U",
                 "Maximum Characters Exceeded|Equipment Must be less than 50 characters long|U",
                 "Maximum length exceeded|Please enter up to 100 characters only|U",
                 "Maximum length exceeded|Please enter up to 10 characters only|U",
                 "Invalid Input|Catalog is a required entry|E"}),
        s.TakeShown());

    // Date and time.
    EXPECT_FALSE(Type(*form, LogField::mskDate, "13/45/2026"));
    EXPECT_TRUE(Type(*form, LogField::mskDate, "2026-12-01"));
    EXPECT_EQ("12/01/26", form->f.mskDate);
    EXPECT_TRUE(Type(*form, LogField::mskDate, ""));
    EXPECT_EQ("11/24/26", form->f.mskDate);
    EXPECT_EQ((Strings{"Invalid Date|You have entered an invalid date|U"}), s.TakeShown());
    for (const auto& [typed, kept] : std::vector<std::pair<std::string, std::string>>{
             {"21", "21:00:00"}, {"21:45", "21:45:00"}, {"", "21:30:05"}, {"9:5", "9:5"}}) {
        Type(*form, LogField::mskTime, typed);
        EXPECT_EQ(kept, form->f.mskTime) << typed;
    }
}

TEST(LogEntry, RecallOfTheLastEntry)
{
    LogSession s;
    auto form = s.Open();
    FillEntry(*form);
    Type(*form, LogField::cboSee, "Mostly Stable");
    Type(*form, LogField::txtLocation, "Backyard");
    Type(*form, LogField::txtExpTime, "300 s");
    Type(*form, LogField::txtCrate, "-20");
    form->f.List1 = {"Barlow 2x"};
    ASSERT_TRUE(form->cmdAdd_Click());

    // A blank box takes the last entry's value when it gets the focus, and marks the form.
    auto next = s.Open();
    next->GotFocus(LogField::cboSee);
    next->GotFocus(LogField::cboCatalog);
    next->GotFocus(LogField::txtEquipment);
    EXPECT_EQ("Mostly Stable|NGC 2000|",
              next->f.cboSee + "|" + next->f.cboCatalog + "|" + next->f.txtEquipment);
    EXPECT_TRUE(next->dirty);

    // The whole recall: all but exposure time and cooling rate, and the number, so that an
    // update changes that observation.
    next->f.txtExpTime = "kept";
    ASSERT_TRUE(next->cmdLastEntry_Click());
    EXPECT_EQ("1|kept||Backyard", next->lblObNo + "|" + next->f.txtExpTime + "|" +
                                      next->f.txtCrate + "|" + next->f.txtLocation);
    EXPECT_EQ(Strings{"Barlow 2x"}, next->f.List1);
    next->f.cboRating = "A+";
    ASSERT_TRUE(next->cmdUpdate_Click());
    EXPECT_EQ(1, s.Count("Logbook"));
    EXPECT_EQ("A+", s.Log("Select Rating From Logbook Where ObservationNumber = 1"));
    // An emptied CCD box keeps the stored value; the exposure time is not carried over.
    EXPECT_EQ("kept|-20", s.Log("Select ExposureTime || '|' || Coolingrate From CCDLog"));

    // An empty LastLogEntry recalls nothing.
    s.logbook->Execute("Delete From LastLogEntry");
    auto third = s.Open();
    EXPECT_FALSE(third->cmdLastEntry_Click());
    EXPECT_EQ("", third->lblObNo);
}

TEST(LogEntry, UpdateChecksAndAGoneEntry)
{
    LogSession s;
    auto form = s.Open();
    FillEntry(*form);
    ASSERT_TRUE(form->cmdAdd_Click());
    s.TakeShown();
    form->f.mskTime = "x";
    EXPECT_FALSE(form->cmdUpdate_Click());
    form->f.mskTime = "21:00:00";
    form->f.mskDate = "";
    EXPECT_FALSE(form->cmdUpdate_Click());
    EXPECT_EQ((Strings{"Invalid Time|Please enter a valid time|U",
                       "Date/Time|Date and Time must be entered|U"}),
              s.TakeShown());

    // An entry deleted elsewhere is not written again, and gets no new CCD or session row.
    form->f.mskDate = "11/25/2026";
    s.logbook->Execute("Delete From Logbook");
    s.logbook->Execute("Delete From CCDLog");
    EXPECT_FALSE(form->cmdUpdate_Click());
    EXPECT_TRUE(s.TakeShown().empty());
    EXPECT_EQ("Logbook 0, CCDLog 0, SessionLog 1", s.Counts({"Logbook", "CCDLog", "SessionLog"}));
}

TEST(LogEntry, QuotesAreStoredAsTypedButTheObjectQueryOfRecordModeFails)
{
    LogSession s;
    auto form = s.Open();
    FillEntry(*form, "O'NEIL'S 1");
    ASSERT_TRUE(form->cmdAdd_Click());
    EXPECT_EQ("O'NEIL'S 1", s.Log("Select ObjectID From Logbook"));
    s.TakeShown();

    s.current.id = "O'NEIL'S 1";
    auto record = s.Open("R");
    const Strings shown = s.TakeShown();
    ASSERT_FALSE(shown.empty());
    EXPECT_NE(std::string::npos, shown[0].find("frmLogEntryNew.LoadObservations"));
    EXPECT_EQ("N", record->mode);

    // Record mode for a logged object shows its entry and forgets the current object.
    s.current.id = "NGC 7000";
    auto form2 = s.Open();
    FillEntry(*form2, "NGC 7000");
    ASSERT_TRUE(form2->cmdAdd_Click());
    s.current.id = "NGC 7000";
    auto shownForm = s.Open("R");
    EXPECT_EQ("2|NGC 7000|North America|", shownForm->lblObNo + "|" + shownForm->f.txtObjectID +
                                               "|" + shownForm->f.txtOtherID + "|" + s.current.id);
}

TEST(LogEntry, ObservationListsAndSearch)
{
    LogSession s;
    auto form = s.Open();
    FillEntry(*form, "NGC 224");
    ASSERT_TRUE(form->cmdAdd_Click());
    FillEntry(*form, "NGC 7000");
    form->f.Option1 = false;
    form->f.cboLogtype = "Galaxies";
    Type(*form, LogField::mskDate, "11/20/2026");
    ASSERT_TRUE(form->cmdAdd_Click());

    EXPECT_EQ(2u, form->grdLog.size());
    EXPECT_EQ("NGC 224", form->grdLog[0][0]); // newest date first
    form->chkFilterSeen = true;
    form->LoadObservations();
    ASSERT_EQ(1u, form->grdLog.size());
    form->chkFilterSeen = false;
    form->cboSlog = "Galaxies";
    form->cmdShowAll();
    ASSERT_EQ(1u, form->grdLog.size());
    EXPECT_EQ("NGC 7000", form->grdLog[0][0]);
    form->cboSlog = logbook::ShowAllLogTypes;
    form->txtSearch = "NGC 2*";
    form->cmdFind();
    ASSERT_EQ(1u, form->grdLog.size());
    EXPECT_EQ("NGC 224", form->grdLog[0][0]);

    // A click shows the row's entry; changes pending are offered for saving first.
    form->currentQuery.clear();
    form->LoadObservations();
    form->GridClick(2);
    EXPECT_EQ("2", form->lblObNo);
    EXPECT_FALSE(form->f.Option1);
    form->f.cboRating = "B";
    form->dirty = true;
    s.ui.answers = {true};
    form->GridClick(1);
    EXPECT_EQ((Strings{"Changes pending...Would you like to save your observation first?"}),
              s.ui.asked);
    EXPECT_EQ("B", s.Log("Select Rating From Logbook Where ObservationNumber = 2"));
    EXPECT_EQ("1|NGC 224", form->lblObNo + "|" + form->f.txtObjectID);

    // Under a day-first locale the grid shows the locale's date.
    s.prefs.dateformat = "dd.mm.yyyy";
    s.prefs.datesep = ".";
    form->LoadObservations();
    EXPECT_EQ("24.11.2026", form->grdLog[0][3]);
}

TEST(LogEntry, DeleteAndTheFlagRule)
{
    LogSession s;
    auto form = s.Open();
    FillEntry(*form, "NGC 7000");
    ASSERT_TRUE(form->cmdAdd_Click());
    form->f.cboLogtype = "Galaxies";
    ASSERT_TRUE(form->cmdAdd_Click());
    s.TakeShown();
    EXPECT_EQ("-1", s.Obj("Select Observed From SelvaneTable Where ID = 3"));

    // No keeps the entry.
    EXPECT_FALSE(form->DeleteObservation());
    EXPECT_EQ(2, s.Count("Logbook"));
    // A row of another log type keeps the flag; the last row clears it.
    s.ui.answers = {true};
    ASSERT_TRUE(form->DeleteObservation());
    EXPECT_EQ("-1", s.Obj("Select Observed From SelvaneTable Where ID = 3"));
    form->lblObNo = "1";
    form->GetLogRecord();
    s.logbook->Execute("Insert Into ImageLog (ObservationNumber, ImagePath) Values (1, '/x.png')");
    s.ui.answers = {true};
    ASSERT_TRUE(form->DeleteObservation());
    EXPECT_EQ("0", s.Obj("Select Observed From SelvaneTable Where ID = 3"));
    EXPECT_EQ("Logbook 0, CCDLog 0, ImageLog 0", s.Counts({"Logbook", "CCDLog", "ImageLog"}));
    EXPECT_EQ(Strings(2, "Observation Deleted|A logbook entry was deleted successfully|I"),
              s.TakeShown());

    // Numbers are never given twice, not even the deleted last one.
    FillEntry(*form, "NGC 7000");
    ASSERT_TRUE(form->cmdAdd_Click());
    EXPECT_EQ("3", form->lblObNo);
}

TEST(LogEntry, ReadOnlyObjectDatabaseKeepsTheEntryWithoutFlagOrMessage)
{
    LogSession s(true);
    ASSERT_TRUE(s.prefs.UseCd);
    auto form = s.Open();
    FillEntry(*form, "NGC 7000");
    ASSERT_TRUE(form->cmdAdd_Click());
    EXPECT_EQ((Strings{"Observation Added|A logbook entry was created successfully|I"}),
              s.TakeShown());
    EXPECT_EQ("NGC 7000", s.Log("Select ObjectID From Logbook"));
    EXPECT_EQ("0", s.Obj("Select Observed From SelvaneTable Where ID = 3"));
    s.ui.answers = {true};
    EXPECT_TRUE(form->DeleteObservation());
}

TEST(LogEntry, SessionNotesAndSky)
{
    LogSession s;
    auto form = s.Open();
    Type(*form, LogField::mskDate, "11/05/2026");
    form->f.txtFaintestStar = "6.2";
    form->f.txtSkyQuality = "21.3";
    EXPECT_TRUE(Type(*form, LogField::RichTextBox1, "<b>Transparent</b> after midnight"));
    EXPECT_EQ("<b>Transparent</b> after midnight", s.Log("Select sessiontext From SessionLog"));
    EXPECT_EQ("2026-11-05|6.2|21.3", s.Log("Select SessionDate || '|' || FaintestStar || '|' || "
                                           "SkyQuality From SessionSky"));
    // A new date shows that date's notes; the first date's come back with it.
    Type(*form, LogField::mskDate, "11/06/2026");
    EXPECT_EQ("", form->f.RichTextBox1);
    Type(*form, LogField::mskDate, "11/05/2026");
    EXPECT_EQ("Transparent after midnight", logbook::RichPlainText(form->f.RichTextBox1));
    EXPECT_EQ("6.2", form->f.txtFaintestStar);

    // A date written with dots is read month first and removes nothing, silently.
    form->f.mskDate = "05.11.2026";
    form->DeleteSession();
    EXPECT_EQ(1, s.Count("SessionLog"));
    EXPECT_TRUE(s.TakeShown().empty());
    form->f.mskDate = "11/05/2026";
    form->DeleteSession();
    EXPECT_EQ("SessionLog 0, SessionSky 0", s.Counts({"SessionLog", "SessionSky"}));
    EXPECT_EQ("", form->f.RichTextBox1);
}

TEST(LogEntry, ImagesKeepTheirFiles)
{
    LogSession s;
    const std::string picture = s.f.dir.File("m31.png").string();
    QImage(8, 8, QImage::Format_RGB32).save(QString::fromStdString(picture));
    auto form = s.Open();
    FillEntry(*form, "NGC 224");
    s.ui.fileAnswers = {picture};
    s.ui.inputAnswers = {"   ", std::string(51, 'x'), "Core and dust lane"};
    form->AttachImage(); // not stored yet: added first
    EXPECT_EQ("1", form->lblObNo);
    const Strings shown = s.TakeShown();
    ASSERT_EQ(3u, shown.size());
    EXPECT_EQ("Information Required|A short description is required.  Up to 50 characters may be "
              "entered.|U",
              shown[1]);
    ASSERT_EQ(1u, form->cbologimages.size());
    EXPECT_EQ("000001 " + picture, form->cbologimages[0]);
    EXPECT_EQ("Core and dust lane", form->imageDescription);

    // A cancelled description attaches nothing.
    s.ui.fileAnswers = {picture};
    form->AttachImage();
    EXPECT_EQ(1, s.Count("ImageLog"));

    form->DeleteImage();
    EXPECT_EQ(0, s.Count("ImageLog"));
    EXPECT_EQ(Strings{logbook::NoImagesAttached}, form->cbologimages);
    EXPECT_TRUE(std::filesystem::exists(picture));
}

TEST(LogEntry, FormTextEscapesAndOrders)
{
    LogSession s;
    auto form = s.Open();
    FillEntry(*form);
    form->f.txtDescription = "a\tb\\c";
    form->f.List1 = {"one", "two"};
    form->f.rchNotes = "<b>Bold</b> notes";
    const std::string text = logbook::FormText(*form);
    EXPECT_EQ(0u, text.find("Field\tValue\nObservationNumber\t\nOtherID\t\nObjectID\tM31\n"
                            "Catalog\tNGC 2000\nSeenFlag\tTrue\nDateObserved\t2026-11-24\n"
                            "TimeObserved\t21:30:00\n"));
    EXPECT_NE(std::string::npos, text.find("\nOtherEquipment\tone\\ntwo\n"));
    EXPECT_NE(std::string::npos, text.find("\nshortdescription\ta\\tb\\\\c\n"));
    EXPECT_NE(
        std::string::npos,
        text.find("\nObservationText\tBold notes\nLogType\tDefault\nDataRec\t0\nImageName\t"));
    EXPECT_NE(std::string::npos, text.find("\nNotes\t\nsessiontext\t\n"));
}

} // namespace
