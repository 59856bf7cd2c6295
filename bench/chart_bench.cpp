// Timed chart renders (a plain program: it prints its figures).
// 1. A 60 degree field around Orion to magnitude 8 with every layer, 1600 x 1200 pixels: the
//    median of 15 renders into the image (no PNG encoding). Budget: 50 ms.
// 2. The same chart with 50,000 plotted objects spread over the field, all types, labelled.
//    Budget: 1 s.
// Reads the chart data from the build's resources folder.
//
// chart_bench [RESOURCES [PNG [PDF]]]   (PNG: also save the chart with a few objects of every
// type, by day and by night; PDF: also write its printable finder page)

#include "charts/ChartEngine.h"
#include "charts/ChartPage.h"

#include <QGuiApplication>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

namespace {

double Milliseconds(const charts::ChartSky& sky, const charts::ChartRequest& request,
                    const std::vector<charts::PlotObject>& objects, std::size_t& drawn)
{
    const auto start = std::chrono::steady_clock::now();
    const auto chart = charts::RenderChart(sky, request, objects);
    const auto end = std::chrono::steady_clock::now();
    drawn = chart.drawn.size();
    return std::chrono::duration<double, std::milli>(end - start).count();
}

// A few objects of every type around Orion, and the finder circle on M 42.
std::vector<charts::PlotObject> objectsForPicture()
{
    std::vector<charts::PlotObject> objects;
    const int codes[] = {1, 2, 3, 4, 5, 6, 7, 9, 11, 15, 20, 22, 23};
    for (int k = 0; k < 26; ++k) {
        charts::PlotObject o;
        o.raHours = 4.0 + (k % 13) * 0.3;
        o.decDeg = k < 13 ? 15 : -15;
        o.typeCode = codes[k % 13];
        o.sizeArcmin = k < 13 ? 10 : 60;
        o.objectId = "Obj " + std::to_string(k);
        o.observed = k % 5 == 0;
        objects.push_back(o);
    }
    charts::PlotObject m42;
    m42.raHours = 5.588;
    m42.decDeg = -5.39;
    m42.typeCode = 4;
    m42.sizeArcmin = 85;
    m42.objectId = "NGC 1976";
    m42.extraId = "42";
    objects.push_back(m42);
    m42.flag = 1;
    m42.sizeArcmin = 240;
    objects.push_back(m42);
    return objects;
}

double Median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM",
            qgetenv("QT_QPA_PLATFORM").isEmpty() ? "offscreen" : qgetenv("QT_QPA_PLATFORM"));
    int qtArgc = 1;
    QGuiApplication app(qtArgc, argv);
    const std::string folder = argc > 1 ? argv[1] : SELVANE_RESOURCE_DIR;
    const auto loadStart = std::chrono::steady_clock::now();
    const charts::ChartSky sky = charts::LoadChartSky(folder);
    const double loadMs =
        std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - loadStart)
            .count();
    std::printf("chart data load: %.1f ms (%zu stars)\n", loadMs, sky.stars.size());

    charts::ChartRequest request;
    request.raHours = 5.6;
    request.decDeg = 0;
    request.fieldDeg = 60;
    request.width = 1600;
    request.height = 1200;
    request.limitMag = 8.0;

    std::size_t drawn = 0;
    std::vector<double> times;
    for (int k = 0; k < 15; ++k)
        times.push_back(Milliseconds(sky, request, {}, drawn));
    std::printf("60 deg, mag 8, all layers, 1600x1200: median %.1f ms, best %.1f ms "
                "(%zu stars drawn; budget 50 ms)\n",
                Median(times), *std::min_element(times.begin(), times.end()), drawn);

    if (argc > 2) {
        std::vector<charts::PlotObject> some(objectsForPicture());
        charts::RenderChart(sky, request, some).image.save(QString::fromLocal8Bit(argv[2]));
        request.nightMode = true;
        charts::RenderChart(sky, request, some)
            .image.save(QString::fromLocal8Bit(argv[2]).replace(".png", "-night.png"));
        request.nightMode = false;
    }
    if (argc > 3) {
        charts::ChartRequest finder = request;
        finder.raHours = 5.588139;
        finder.decDeg = -5.391111;
        finder.fieldDeg = 35;
        finder.width = 800;
        finder.height = 600;
        finder.limitMag.reset();
        const charts::ChartImage chart = charts::RenderChart(sky, finder, objectsForPicture());
        charts::ChartPageInfo info;
        info.heading = "M 42  Orion Nebula";
        info.raHours = finder.raHours;
        info.decDeg = finder.decDeg;
        info.fieldDeg = chart.fieldDeg;
        info.limitMag = chart.limitMag;
        info.date = "2025-11-08 21:30";
        charts::WriteChartPdf(argv[3], chart, info);
    }

    std::mt19937 random(7);
    std::uniform_real_distribution<double> ra(3.6, 7.6);
    std::uniform_real_distribution<double> dec(-28, 28);
    std::uniform_real_distribution<double> size(0.5, 40);
    const int codes[] = {1, 2, 3, 4, 5, 6, 7, 9, 11, 22, 23};
    std::vector<charts::PlotObject> objects(50000);
    for (std::size_t k = 0; k < objects.size(); ++k) {
        auto& o = objects[k];
        o.raHours = ra(random);
        o.decDeg = dec(random);
        o.sizeArcmin = size(random);
        o.typeCode = codes[k % std::size(codes)];
        o.objectId = "NGC " + std::to_string(k + 1);
        o.extraId = k % 50 == 0 ? std::to_string(k / 50 % 110 + 1) : "";
        o.observed = k % 3 == 0;
    }
    times.clear();
    for (int k = 0; k < 5; ++k)
        times.push_back(Milliseconds(sky, request, objects, drawn));
    std::printf("the same with 50,000 plotted objects: median %.1f ms (%zu things drawn; "
                "budget 1000 ms)\n",
                Median(times), drawn);
    return 0;
}
