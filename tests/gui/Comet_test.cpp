// The comet and asteroid windows and the element import from the main window's keys, over a
// real AstComet.mdb in a temporary program folder.

#include "GuiApp.h"

#include "app/CometWiring.h"
#include "astro/Orbits.h"
#include "astro/ui/frmComet.h"
#include "data/MinorBodies.h"
#include "data/ProgramDir.h"
#include "spread/AppState.h"
#include "spread/ElementUpdate.h"
#include "spread/MinorBodyEphemeris.h"
#include "spread/PortFaults.h"
#include "spread/ui/frmMainScreen.h"
#include "tests/TestFiles.h"
#include "tests/data/TestDatabases.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QDateTimeEdit>
#include <QDir>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QSpinBox>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>

// Qt's strings as text in the failure messages.
inline void PrintTo(const QString& text, std::ostream* os)
{
    *os << '"' << text.toStdString() << '"';
}

namespace {

const std::filesystem::path kSourceResources = SELVANE_SOURCE_RESOURCES;
const std::filesystem::path kBuiltResources = SELVANE_RESOURCE_DIR;

// The folder the screenshots go to (SELVANE_SCREENSHOTS), or nothing.
QString ShotFolder()
{
    const char* folder = std::getenv("SELVANE_SCREENSHOTS");
    return folder && *folder ? QString(folder) : QString();
}

// The test port, with the real message window shown and saved when a screenshot is asked for.
class ShotPort : public TestPort
{
public:
    QString shot; // file name of the next message window's screenshot

    void DisplayMessage(const services::Message& message) override
    {
        TestPort::DisplayMessage(message);
        if (shot.isEmpty() || ShotFolder().isEmpty())
            return;
        const QString file = QDir(ShotFolder()).filePath(shot);
        shot.clear();
        QTimer::singleShot(200, [file] {
            if (QWidget* box = QApplication::activeModalWidget()) {
                EXPECT_TRUE(box->grab().save(file));
                box->close();
            }
        });
        services::QtUiPort::DisplayMessage(message);
    }
};

// One line of the comet element file, columns as the Minor Planet Center writes them.
std::string CometLine(const char* name, int year, int month, double day, double q, double e,
                      double peri, double node, double incl, double H, double K)
{
    char line[256];
    std::snprintf(line, sizeof line,
                  "%-12s  %4d %02d %7.4f %9.6f  %8.6f  %8.4f  %8.4f  %8.4f  20240101  %4.1f %4.1f  "
                  "%-56s MPC 12345\n",
                  "", year, month, day, q, e, peri, node, incl, H, K, name);
    return line;
}

struct Screen
{
    bool appReady = (App(), true);
    QTemporaryDir temp;
    data::ProgramDir dir{temp.path().toStdString()};
    ShotPort ui;
    spread::AppState state{ui, dir, data::SettingsStore(dir.File("Selvane2000.ini"))};
    astro::FixedClock clock{{2024, 3, 15, 22, 0, 0}};
    std::unique_ptr<spread::frmMainScreen> window;
    std::filesystem::path astComet = dir.File(data::AstCometFileName);

    // Given: shipped, the built AstComet.mdb instead of the few rows of the tests.
    explicit Screen(bool shipped = false)
    {
        for (const auto& entry : std::filesystem::directory_iterator(kSourceResources))
            if (entry.is_regular_file())
                std::filesystem::copy_file(entry.path(), dir.File(entry.path().filename()));
        if (shipped) {
            std::filesystem::copy_file(kBuiltResources / data::AstCometFileName, astComet);
        } else {
            testing_data::MakeAstComet(astComet); // 1P/Halley without magnitudes
            auto db = data::Database::Open(astComet, {});
            db->Execute("Insert Into Comet (Name, tyear, tmonth, tday, q, e, i, ArgPeri, ascnode, "
                        "Mag, K, EPOCH) Values ('2P/Encke', 2023, 10, 22.5, 0.3393, 0.8471, "
                        "11.35, 187.3, 334.2, 11.5, 6, 2000)");
            db->Execute("Insert Into Comet (Name, tyear, tmonth, tday, q, e, i, ArgPeri, ascnode, "
                        "Mag, K, EPOCH) Values ('12P/Pons-Brooks', 2024, 4, 21.14, 0.7808, 0.9546, "
                        "74.19, 198.99, 255.86, 5, 7.5, 2000)");
            db->Execute("Insert Into Comet (Name, tyear, tmonth, tday, q, e, i, ArgPeri, ascnode, "
                        "Mag, K, EPOCH) Values ('C/1995 O1 (Hale-Bopp)', 1997, 4, 1.1, 0.914, "
                        "0.995, 89.4, 130.59, 282.47, -2, 4, 2000)");
            db->Execute("Insert Into Asteroids (Anumb, Name, eyear, emonth, eday, a, e, i, M, "
                        "Node, omega, g, h) Values (1, '(1) Ceres', 2024, 10, 17, 2.7675, 0.0796, "
                        "10.588, 60.0786, 80.25, 73.3, 3.34, 0.12)");
            db->Execute("Insert Into Asteroids (Anumb, Name, eyear, emonth, eday, a, e, i, M, "
                        "Node, omega, g, h) Values (4, '(4) Vesta', 2024, 10, 17, 2.3615, 0.0902, "
                        "7.144, 169.35, 103.71, 151.66, 3.25, 0.32)");
        }
        state.prefs.UseRealTime = "N";
        state.prefs.PDate = "2024-03-15";
        state.prefs.Ptime = "22:00";
        state.prefs.Plat = 46.5;
        state.prefs.PLon = 90.2;
        state.prefs.PTz = 6;
        state.prefs.PStd = "S";
        state.NoLoadYet = false;
        spread::MainScreenHooks hooks;
        hooks.computerClock = &clock;
        window = std::make_unique<spread::frmMainScreen>(state, ui, hooks);
        app::WireComets(*window, state, ui, clock);
    }

    astro::ui::frmComet& Open(const char* key)
    {
        window->ab_ToolClick(key);
        auto* form = window->findChild<astro::ui::frmComet*>(
            std::string(key) == "mnuComet" ? "frmComet" : "frmAsteroid");
        EXPECT_NE(form, nullptr) << key;
        return *form;
    }

    static QStringList Names(const astro::ui::frmComet& form)
    {
        QStringList names;
        const QAbstractItemModel* model = form.lstNames->model();
        for (int r = 0; r < model->rowCount(); ++r)
            names << model->index(r, 0).data().toString();
        return names;
    }

    static void Choose(astro::ui::frmComet& form, const QString& name)
    {
        const QAbstractItemModel* model = form.lstNames->model();
        for (int r = 0; r < model->rowCount(); ++r)
            if (model->index(r, 0).data().toString() == name) {
                form.lstNames->setCurrentIndex(model->index(r, 0));
                return;
            }
        ADD_FAILURE() << "not in the list: " << name.toStdString();
    }

    static QString Cell(const astro::ui::frmComet& form, int row, int col)
    {
        return form.grdEphemeris->model()->index(row, col).data().toString();
    }

    void Shoot(QWidget& widget, const char* name)
    {
        if (ShotFolder().isEmpty())
            return;
        QDir().mkpath(ShotFolder());
        widget.show();
        QApplication::processEvents();
        EXPECT_TRUE(widget.grab().save(QDir(ShotFolder()).filePath(name)));
    }
};

TEST(frmComet, FilterNarrowsTheListAndShowsTheElements)
{
    Screen s;
    astro::ui::frmComet& comets = s.Open("mnuComet");
    EXPECT_EQ(comets.windowTitle(), "Comet");
    EXPECT_TRUE(comets.isVisible());
    struct Row
    {
        const char* filter;
        QStringList names;
    };
    const Row rows[] = {
        {"", {"1P/Halley", "2P/Encke", "12P/Pons-Brooks", "C/1995 O1 (Hale-Bopp)"}},
        {"p/", {"1P/Halley", "2P/Encke", "12P/Pons-Brooks"}},
        {"HAL", {"1P/Halley", "C/1995 O1 (Hale-Bopp)"}},
        {"pons-b", {"12P/Pons-Brooks"}},
        {"(", {"C/1995 O1 (Hale-Bopp)"}}, // a plain substring, not a pattern
        {"Ceres", {}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.filter);
        comets.txtFilter->clear();
        QTest::keyClicks(comets.txtFilter, row.filter);
        EXPECT_EQ(Screen::Names(comets), row.names);
    }

    // The one name left is chosen.
    comets.txtFilter->setText("pons");
    const char* cometElements[] = {"2024-04-21.14", "0.7808", "0.9546", "74.19", "255.86",
                                   "198.99",        "5",      "7.5",    "2000"};
    ASSERT_EQ(comets.lblElement.size(), std::size(cometElements));
    for (std::size_t i = 0; i < comets.lblElement.size(); ++i)
        EXPECT_EQ(comets.lblElement[i]->text(), cometElements[i]) << i;

    // The asteroid window is another window, with its own list and the asteroids' elements.
    astro::ui::frmComet& asteroids = s.Open("mnuAsteroid");
    EXPECT_EQ(asteroids.windowTitle(), "Asteroid Data");
    EXPECT_NE(&asteroids, &comets);
    EXPECT_EQ(Screen::Names(asteroids), (QStringList{"(1) Ceres", "(4) Vesta"}));
    QTest::keyClicks(asteroids.txtFilter, "VES");
    Screen::Choose(asteroids, "(4) Vesta");
    const char* asteroidElements[] = {"2024-10-17", "2.3615", "0.0902", "7.144", "103.71",
                                      "151.66",     "169.35", "3.25",   "0.32",  "2000"};
    ASSERT_EQ(asteroids.lblElement.size(), std::size(asteroidElements));
    for (std::size_t i = 0; i < asteroids.lblElement.size(); ++i)
        EXPECT_EQ(asteroids.lblElement[i]->text(), asteroidElements[i]) << i;

    // A second click brings back the same window, filter and all.
    EXPECT_EQ(&s.Open("mnuComet"), &comets);
    EXPECT_EQ(Screen::Names(comets), QStringList{"12P/Pons-Brooks"});
    EXPECT_TRUE(s.ui.shown.empty());
}

// The table against EPHEM run directly on the same row: dates, the cut right ascension and
// declination (never above the value, less than a unit of the last place below it), the
// distances, elongation, magnitude and the altitude at the settings' site.
TEST(frmComet, ComputeFillsAStepARowAsEphemGivesThem)
{
    Screen s;
    astro::ui::frmComet& form = s.Open("mnuComet");
    // The settings' 2024-03-15 22:00 at a zone of 6 hours is 2024-03-16 04:00 UT.
    EXPECT_EQ(form.dtpStart->dateTime(), QDateTime(QDate(2024, 3, 16), QTime(4, 0), Qt::UTC));

    struct Row
    {
        const char* name;
        double step;
        int unit; // 0 days, 1 hours
        int steps;
        bool magnitudes;
    };
    const Row rows[] = {
        {"12P/Pons-Brooks", 2, 0, 30, true},
        {"2P/Encke", -6, 1, 9, true},   // backwards, in hours
        {"1P/Halley", 1, 0, 3, false},  // a row without H and K: no magnitude
        {"(1) Ceres", 10, 0, 12, true}, // an asteroid: H and G
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const bool asteroid = row.name[0] == '(';
        astro::ui::frmComet& window = asteroid ? s.Open("mnuAsteroid") : form;
        Screen::Choose(window, row.name);
        window.dtpStart->setDateTime(QDateTime(QDate(2024, 3, 1), QTime(0, 0), Qt::UTC));
        window.txtSteps->setValue(row.steps);
        window.txtStep->setValue(row.step);
        window.cboUnit->setCurrentIndex(row.unit);
        QTest::mouseClick(window.cmdCompute, Qt::LeftButton);
        EXPECT_TRUE(s.ui.shown.empty());
        ASSERT_EQ(window.grdEphemeris->model()->rowCount(), row.steps);
        ASSERT_EQ(window.grdEphemeris->model()->columnCount(), 10);

        astro::EphemInput in = asteroid
                                   ? spread::EphemInputOf(*data::FindAsteroid(s.astComet, row.name))
                                   : spread::EphemInputOf(*data::FindComet(s.astComet, row.name));
        in.start = astro::ElementDateText(2024, 3, 1);
        in.steps = row.steps;
        in.step = row.unit ? row.step / 24 : row.step;
        spread::PortFaults faults(s.ui);
        std::vector<astro::EphemStep> steps;
        ASSERT_TRUE(astro::EPHEM(in, s.dir.path, faults, faults,
                                 [&](const astro::EphemStep& step) { steps.push_back(step); }));
        ASSERT_EQ(steps.size(), static_cast<std::size_t>(row.steps));
        for (int r = 0; r < row.steps; ++r) {
            SCOPED_TRACE(r);
            const astro::EphemStep& step = steps[static_cast<std::size_t>(r)];
            EXPECT_EQ(Screen::Cell(window, r, 0).toStdString(), spread::StepTimeText(step.jd));
            const QString ra = Screen::Cell(window, r, 1);
            EXPECT_EQ(ra.size() - ra.indexOf('.'), 4) << ra.toStdString();
            EXPECT_LE(ra.toDouble(), step.ra);
            EXPECT_GT(ra.toDouble(), step.ra - 0.001);
            const QString dec = Screen::Cell(window, r, 3);
            EXPECT_TRUE(dec.startsWith(step.dec < 0 ? '-' : '+')) << dec.toStdString();
            EXPECT_EQ(dec.size() - dec.indexOf('.'), 3) << dec.toStdString();
            EXPECT_LE(std::fabs(dec.toDouble()), std::fabs(step.dec));
            EXPECT_GT(std::fabs(dec.toDouble()), std::fabs(step.dec) - 0.01);
            EXPECT_NEAR(Screen::Cell(window, r, 5).toDouble(), step.delta, 5e-7);
            EXPECT_NEAR(Screen::Cell(window, r, 6).toDouble(), step.r, 5e-7);
            EXPECT_EQ(Screen::Cell(window, r, 7).toDouble(), step.elongation);
            if (row.magnitudes) {
                ASSERT_TRUE(step.mag.has_value());
                EXPECT_NEAR(Screen::Cell(window, r, 8).toDouble(), *step.mag, 0.005);
            } else {
                EXPECT_EQ(Screen::Cell(window, r, 8), "");
            }
            EXPECT_NEAR(Screen::Cell(window, r, 9).toDouble(),
                        astro::SiteAltitude(step.jd, step.ra, step.dec, 46.5, 90.2, faults), 0.05);
        }
        EXPECT_EQ(faults.count, 0);
    }
    // Steps of 6 hours backwards from 2024-03-01 00:00 cross the leap day.
    Screen::Choose(form, "2P/Encke");
    form.txtStep->setValue(-6);
    form.cboUnit->setCurrentIndex(1);
    QTest::mouseClick(form.cmdCompute, Qt::LeftButton);
    EXPECT_EQ(Screen::Cell(form, 0, 0), "2024-03-01 00:00");
    EXPECT_EQ(Screen::Cell(form, 1, 0), "2024-02-29 18:00");
}

TEST(frmComet, ComputeRefusesAZeroStepAndAMissingChoice)
{
    Screen s;
    astro::ui::frmComet& form = s.Open("mnuComet");
    QTest::mouseClick(form.cmdCompute, Qt::LeftButton);
    ASSERT_EQ(s.ui.shown.size(), 1u);
    EXPECT_EQ(s.ui.shown[0].LongMessage, "Please choose a comet from the list first.");
    EXPECT_EQ(s.ui.shown[0].kind, "U");

    Screen::Choose(form, "2P/Encke");
    QTest::mouseClick(form.cmdCompute, Qt::LeftButton);
    ASSERT_EQ(form.grdEphemeris->model()->rowCount(), 10);
    form.txtStep->setValue(0);
    QTest::mouseClick(form.cmdCompute, Qt::LeftButton);
    ASSERT_EQ(s.ui.shown.size(), 2u);
    EXPECT_EQ(s.ui.shown[1].LongMessage, "The step must not be 0.");
    EXPECT_EQ(form.grdEphemeris->model()->rowCount(), 10); // the last table stays
}

TEST(frmComet, CopyAndSaveWriteTheTableAsText)
{
    Screen s;
    astro::ui::frmComet& form = s.Open("mnuComet");
    Screen::Choose(form, "12P/Pons-Brooks");
    form.txtSteps->setValue(5);
    QTest::mouseClick(form.cmdCompute, Qt::LeftButton);

    const std::string text = form.EphemerisText();
    const QStringList lines = QString::fromStdString(text).split('\n');
    ASSERT_EQ(lines.size(), 7); // header, 5 rows, and the empty rest after the last "\n"
    EXPECT_EQ(lines[0], "Date (UT)\tRA (h)\tRA\tDec (\u00b0)\tDec\tDelta (AU)\tr (AU)\tElong "
                        "(\u00b0)\tMag\tAlt (\u00b0)");
    EXPECT_EQ(lines[6], "");
    for (int r = 0; r < 5; ++r) {
        QStringList cells;
        for (int c = 0; c < 10; ++c)
            cells << Screen::Cell(form, r, c);
        EXPECT_EQ(lines[r + 1], cells.join('\t'));
    }
    EXPECT_EQ(text.find('\r'), std::string::npos);

    QTest::mouseClick(form.cmdCopy, Qt::LeftButton);
    EXPECT_EQ(QApplication::clipboard()->text().toStdString(), text);

    const std::filesystem::path file = s.dir.File("pons.txt");
    s.ui.saveAnswers = {file.string()};
    QTest::mouseClick(form.cmdSave, Qt::LeftButton);
    EXPECT_EQ(test_files::ReadText(file), text);
    // A cancelled save dialog writes nothing; a folder that is not there is a fault.
    s.ui.saveAnswers = {""};
    QTest::mouseClick(form.cmdSave, Qt::LeftButton);
    EXPECT_TRUE(s.ui.shown.empty());
    s.ui.saveAnswers = {s.dir.File("no/such/folder/x.txt").string()};
    QTest::mouseClick(form.cmdSave, Qt::LeftButton);
    ASSERT_EQ(s.ui.shown.size(), 1u);
    EXPECT_EQ(s.ui.shown[0].kind, "E");
}

TEST(UpdateElements, ImportsAGoodFileAndRefusesABadOne)
{
    Screen s;
    astro::ui::frmComet& form = s.Open("mnuComet");
    auto db = data::Database::Open(s.astComet, {});
    const std::multiset<std::string> before = testing_data::Dump(*db);
    db.reset();

    // A bad line refuses the whole file: nothing is written.
    const std::filesystem::path bad = s.dir.File("CometEls.txt");
    {
        std::string mistyped = CometLine("C/1995 O1 (Hale-Bopp)", 1997, 4, 1.1, 0.914, 0.995,
                                         130.59, 282.47, 89.4, -2, 4);
        mistyped[33] = 'x'; // in the perihelion distance, columns 31-39
        std::ofstream out(bad, std::ios::binary);
        out << CometLine("C/2023 A3 (Tsuchinshan-ATLAS)", 2024, 9, 27.7, 0.3914, 1.0001, 308.5,
                         21.56, 139.11, 4.5, 4)
            << mistyped;
    }
    s.ui.openAnswers = {bad.string()};
    s.ui.shot = "elements-refused.png";
    s.window->ab_ToolClick("upastcom");
    ASSERT_EQ(s.ui.shown.size(), 1u);
    EXPECT_EQ(s.ui.shown[0].kind, "E");
    EXPECT_EQ(s.ui.shown[0].ShortMessage, spread::UpdateElementsTitle);
    EXPECT_EQ(s.ui.shown[0].LongMessage.rfind("CometEls.txt line 2: ", 0), 0u)
        << s.ui.shown[0].LongMessage;
    db = data::Database::Open(s.astComet, {});
    EXPECT_EQ(testing_data::Dump(*db), before);
    db.reset();

    // A good file: one comet added, one replaced, and the open window's list follows.
    const std::filesystem::path good = s.dir.File("CometEls.txt");
    {
        std::ofstream out(good, std::ios::binary | std::ios::trunc);
        out << CometLine("C/2023 A3 (Tsuchinshan-ATLAS)", 2024, 9, 27.7, 0.3914, 1.0001, 308.5,
                         21.56, 139.11, 4.5, 4)
            << CometLine("2P/Encke", 2023, 10, 22.4, 0.3395, 0.8470, 187.2, 334.1, 11.4, 11, 6);
    }
    s.ui.openAnswers = {good.string()};
    s.ui.shot = "elements-import.png";
    s.window->ab_ToolClick("upastcom");
    ASSERT_EQ(s.ui.shown.size(), 2u);
    EXPECT_EQ(s.ui.shown[1].kind, "I");
    EXPECT_EQ(s.ui.shown[1].ShortMessage, spread::UpdateElementsTitle);
    EXPECT_EQ(s.ui.shown[1].LongMessage,
              "CometEls.txt: 2 element lines read, 1 comet added, 1 replaced.");
    EXPECT_TRUE(Screen::Names(form).contains("C/2023 A3 (Tsuchinshan-ATLAS)"));
    EXPECT_EQ(Screen::Names(form).size(), 5);
    Screen::Choose(form, "2P/Encke");
    EXPECT_EQ(form.lblElement[1]->text(), "0.3395");

    // A name that says nothing: the question decides; a cancelled dialog does nothing.
    const std::filesystem::path other = s.dir.File("elements.dat");
    std::filesystem::copy_file(good, other);
    s.ui.openAnswers = {other.string(), ""};
    s.ui.askAnswers = {true};
    s.window->ab_ToolClick("upastcom");
    ASSERT_EQ(s.ui.questions.size(), 1u);
    EXPECT_EQ(s.ui.questions[0], spread::CometOrAsteroidQuestion);
    ASSERT_EQ(s.ui.shown.size(), 3u);
    EXPECT_EQ(s.ui.shown[2].LongMessage,
              "elements.dat: 2 element lines read, 0 comets added, 2 replaced.");
    s.window->ab_ToolClick("upastcom");
    EXPECT_EQ(s.ui.shown.size(), 3u);
}

// The shipped elements: a comet's ephemeris of a few dozen steps (and the screenshot of it).
TEST(frmComet, ShippedElements)
{
    Screen s(true);
    astro::ui::frmComet& form = s.Open("mnuComet");
    QTest::keyClicks(form.txtFilter, "Pons-Brooks");
    const QStringList names = Screen::Names(form);
    ASSERT_FALSE(names.isEmpty());
    Screen::Choose(form, names.front());
    form.dtpStart->setDateTime(QDateTime(QDate(2024, 3, 1), QTime(0, 0), Qt::UTC));
    form.txtSteps->setValue(40);
    QTest::mouseClick(form.cmdCompute, Qt::LeftButton);
    EXPECT_TRUE(s.ui.shown.empty());
    EXPECT_EQ(form.grdEphemeris->model()->rowCount(), 40);
    s.Shoot(form, "comet-window.png");
}

} // namespace
