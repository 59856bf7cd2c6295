// Timed ephemerides of 12P/Pons-Brooks from the shipped AstComet.mdb: the rows alone
// (ComputeEphemeris), and Compute in the comet window until the table has been painted once.
// Prints wall milliseconds for 1,000, 10,000 and 100,000 steps.
// Budget on a 2-core machine: 10,000 steps in the window well under a second.
//
// comet_window_bench   (the resources beside this program; the offscreen platform by default)

#include "astro/ObservingClock.h"
#include "astro/ui/frmComet.h"
#include "data/MinorBodies.h"
#include "services/ScriptedUiPort.h"
#include "spread/EphemerisTable.h"
#include "spread/MinorBodyEphemeris.h"
#include "spread/PortFaults.h"

#include <QAbstractItemModel>
#include <QApplication>
#include <QDateTimeEdit>
#include <QLineEdit>
#include <QListView>
#include <QSpinBox>
#include <QTableView>
#include <QTemporaryDir>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>

namespace {

double Milliseconds(const std::function<void()>& run)
{
    const auto start = std::chrono::steady_clock::now();
    run();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
        .count();
}

} // namespace

int main(int argc, char* argv[])
{
    if (!std::getenv("QT_QPA_PLATFORM"))
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
    QApplication application(argc, argv);
    const std::filesystem::path resources =
        (QCoreApplication::applicationDirPath() + "/resources").toStdString();
    QTemporaryDir temp;
    const std::filesystem::path dir = temp.path().toStdString();
    for (const auto& entry : std::filesystem::directory_iterator(resources))
        if (entry.is_regular_file() && entry.path().extension() != ".mdb")
            std::filesystem::copy_file(entry.path(), dir / entry.path().filename());
    std::filesystem::copy_file(resources / data::AstCometFileName, dir / data::AstCometFileName);

    services::ScriptedUiPort ui;
    const astro::FixedClock clock({2024, 3, 1, 0, 0, 0});
    astro::ObservingClock site;
    site.PDate = "2024-03-01";
    astro::ui::frmComet form(astro::ui::SolarContext{ui, dir, [site] { return site; }, clock}, "C");
    form.txtFilter->setText("12P/Pons-Brooks");
    form.lstNames->setCurrentIndex(form.lstNames->model()->index(0, 0));
    form.show();
    QApplication::processEvents();

    const auto row = data::FindComet(dir / data::AstCometFileName, "12P/Pons-Brooks");
    if (!row) {
        std::printf("12P/Pons-Brooks is not in the shipped AstComet.mdb\n");
        return 1;
    }
    for (int steps : {1000, 10000, 100000}) {
        astro::EphemInput in = spread::EphemInputOf(*row);
        in.start = spread::StartTextOf(2460370.5);
        in.steps = steps;
        in.step = 0.1;
        spread::PortFaults faults(ui);
        std::size_t rows = 0;
        const double core = Milliseconds([&] {
            rows = spread::ComputeEphemeris(in, dir, site.Plat, site.Plon, faults, faults).size();
        });
        form.txtSteps->setValue(steps);
        const double window = Milliseconds([&] {
            form.cmdCompute_Click();
            form.grdEphemeris->repaint();
            QApplication::processEvents();
        });
        std::printf("%6d steps: rows %8.1f ms, window %8.1f ms (%d rows shown)%s\n", steps, core,
                    window, form.grdEphemeris->model()->rowCount(),
                    rows == static_cast<std::size_t>(steps) && ui.shown.empty() ? "" : "  FAILED");
    }
    return 0;
}
