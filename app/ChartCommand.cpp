#include "app/ChartCommand.h"

#include "app/CliOptions.h"
#include "app/GridCommand.h"
#include "astro/Text.h"
#include "charts/ChartCalls.h"
#include "charts/ChartPage.h"
#include "charts/PlotFile.h"
#include "data/ProgramDir.h"
#include "scope/Speech.h"
#include "services/Fault.h"
#include "services/ScriptedUiPort.h"
#include "services/Vb.h"
#include "spread/StarCharts.h"

#include <QPainter>

#include <charconv>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <optional>
#include <set>

namespace app {

namespace {

namespace vb = services::vb;

constexpr int kDefaultWidth = 1200;
constexpr int kDefaultHeight = 900;
constexpr int kMinSide = 16;
constexpr int kMaxSide = 8000;

struct ChartArgs
{
    std::string mode;
    std::vector<std::string> modeArgs;
    std::optional<std::string> sql, plan;
    bool build = false;
    int row = 1;
    std::string target = "D";
    std::optional<std::string> png, pdf, objects, calls, type;
    int width = kDefaultWidth;
    int height = kDefaultHeight;
    std::optional<double> mag;
    bool chartOpen = false;
    std::string error;
};

bool ParseSize(const std::string& text, int& width, int& height)
{
    const std::size_t x = text.find_first_of("xX");
    if (x == std::string::npos)
        return false;
    const std::optional<int> w = WholeNumber(text.substr(0, x));
    const std::optional<int> h = WholeNumber(text.substr(x + 1));
    if (!w || !h || *w < kMinSide || *w > kMaxSide || *h < kMinSide || *h > kMaxSide)
        return false;
    width = *w;
    height = *h;
    return true;
}

ChartArgs ParseChartArgs(const std::vector<std::string>& args)
{
    static const std::set<std::string> valued{"--sql",     "--plan",  "--row",  "--target",
                                              "--png",     "--pdf",   "--size", "--mag",
                                              "--objects", "--calls", "--type"};
    ChartArgs a;
    std::vector<std::string> positional;
    int lists = 0;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& word = args[i];
        if (word == "--build") {
            a.build = true;
            ++lists;
            continue;
        }
        if (word == "--chart-open") {
            a.chartOpen = true;
            continue;
        }
        if (!valued.contains(word)) {
            if (word.starts_with("--")) {
                a.error = "unknown option \"" + word + "\" of chart";
                return a;
            }
            positional.push_back(word);
            continue;
        }
        if (i + 1 >= args.size()) {
            a.error = word + " needs a value";
            return a;
        }
        const std::string& value = args[++i];
        if (word == "--sql" || word == "--plan") {
            (word == "--sql" ? a.sql : a.plan) = value;
            ++lists;
        } else if (word == "--row") {
            const std::optional<int> row = WholeNumber(value);
            if (!row || *row < 1) {
                a.error = "--row takes a row number from 1, not \"" + value + "\"";
                return a;
            }
            a.row = *row;
        } else if (word == "--target") {
            if (value != "D" && value != "C") {
                a.error = "--target takes D or C, not \"" + value + "\"";
                return a;
            }
            a.target = value;
        } else if (word == "--size") {
            if (!ParseSize(value, a.width, a.height)) {
                a.error = "--size takes WxH, each 16 to 8000, not \"" + value + "\"";
                return a;
            }
        } else if (word == "--mag") {
            a.mag = astro::ParseNumber(value);
            if (!a.mag) {
                a.error = "--mag takes a number, not \"" + value + "\"";
                return a;
            }
        } else {
            std::optional<std::string>& slot = word == "--png"       ? a.png
                                               : word == "--pdf"     ? a.pdf
                                               : word == "--objects" ? a.objects
                                               : word == "--calls"   ? a.calls
                                                                     : a.type;
            slot = value;
        }
    }
    if (lists > 1) {
        a.error = "give one of --sql, --build and --plan";
        return a;
    }
    if (positional.empty()) {
        a.error = "chart needs a mode";
        return a;
    }
    a.mode = positional.front();
    a.modeArgs.assign(positional.begin() + 1, positional.end());
    static const std::set<std::string> plain{"all", "allsel", "sob", "sc", "print"};
    const std::size_t wanted = plain.contains(a.mode)                    ? 0
                               : a.mode == "radec" || a.mode == "finder" ? 2
                               : a.mode == "const" || a.mode == "plot"   ? 1
                                                                         : 99;
    if (wanted == 99) {
        a.error = "unknown mode \"" + a.mode + "\" of chart";
        return a;
    }
    if (a.modeArgs.size() != wanted) {
        a.error = a.mode + (wanted == 0         ? " takes no arguments"
                            : wanted == 1       ? (a.mode == "plot" ? " takes a plot file"
                                                                    : " takes a constellation entry")
                            : a.mode == "radec" ? " takes two numbers: H D"
                                                : " takes an object and its catalogue");
        return a;
    }
    if (a.mode == "radec")
        for (const std::string& number : a.modeArgs)
            if (!astro::ParseNumber(number)) {
                a.error = "radec takes numbers, not \"" + number + "\"";
                return a;
            }
    if (a.type) {
        if (a.mode != "plot") {
            a.error = "--type goes with plot";
            return a;
        }
        bool known = false;
        for (const std::string& type : charts::PlotTypes)
            known = known || type.substr(0, 2) == *a.type;
        if (!known) {
            a.error = "--type takes a chart type code of the plot window (01 to 23), not \"" +
                      *a.type + "\"";
            return a;
        }
    }
    return a;
}

// One chart as the command reports it.
struct ChartResult
{
    std::string target;
    double raHours = 0;
    double decDeg = 0;
    double field = 0;
    std::optional<double> limitMag;
    std::optional<int> stars;
    int plotted = 0;
    std::optional<charts::ChartImage> image; // own charts
};

int StarsDrawn(const charts::ChartImage& image)
{
    int stars = 0;
    for (const charts::DrawnObject& drawn : image.drawn)
        stars += drawn.kind == charts::DrawnKind::Star ? 1 : 0;
    return stars;
}

std::string ObjectLine(const charts::DrawnObject& d)
{
    const char* kind = d.kind == charts::DrawnKind::Star  ? "star"
                       : d.kind == charts::DrawnKind::Dso ? "dso"
                                                          : "circle";
    const std::string code = d.kind == charts::DrawnKind::Star ? "" : std::to_string(d.code);
    return std::string(kind) + "\t" + d.id + "\t" + d.name + "\t" + code + "\t" +
           FixedDecimals(d.raHours, 6) + "\t" + FixedDecimals(d.decDeg, 5) + "\t" +
           (d.mag ? FixedDecimals(*d.mag, 2) : std::string()) + "\t" + FixedDecimals(d.x, 2) +
           "\t" + FixedDecimals(d.y, 2) + "\t" + FixedDecimals(d.r, 2);
}

// Several panels side by side in one picture; what was drawn moves with its panel.
charts::ChartImage SideBySide(const std::vector<ChartResult>& charts)
{
    charts::ChartImage joined = *charts.front().image;
    if (charts.size() == 1)
        return joined;
    const int width = joined.image.width();
    QImage image(width * static_cast<int>(charts.size()), joined.image.height(),
                 QImage::Format_RGB32);
    QPainter painter(&image);
    joined.drawn.clear();
    for (std::size_t i = 0; i < charts.size(); ++i) {
        const int left = width * static_cast<int>(i);
        painter.drawImage(left, 0, charts[i].image->image);
        for (charts::DrawnObject drawn : charts[i].image->drawn) {
            drawn.x += left;
            joined.drawn.push_back(std::move(drawn));
        }
    }
    painter.end();
    joined.image = image;
    return joined;
}

bool WriteLines(const std::string& path, const std::string& header,
                const std::vector<std::string>& lines)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    if (!header.empty())
        out << header << "\n";
    for (const std::string& line : lines)
        out << line << "\n";
    return static_cast<bool>(out.flush());
}

class ChartSession
{
public:
    ChartSession(spread::AppState& TMM, const astro::Clock& clock, const ChartArgs& args)
        : TMM_(TMM), clock_(clock), args_(args),
          own_(TMM.dir.path, [this]() -> const charts::ChartSky& { return Sky(); }),
          cdc_([this] { return MakeBridge(); },
               [this]() -> const charts::ChartSky& { return Sky(); }),
          link_(own_, cdc_), context_{TMM,
                                      link_,
                                      args.row,
                                      [] { return false; },
                                      [] { return false; },
                                      [] { return scope::EspeakVoiceExists(); },
                                      clock}
    {
        link_.ChartTarget = args.target;
        if (args.calls)
            link_.callLog = &callLog_;
        own_.Opened = [this](std::shared_ptr<charts::ChartDocument> document) {
            documents_.push_back(std::move(document));
        };
    }

    // Runs the mode. Returned: false when it stopped without a chart.
    bool Run()
    {
        const std::string& mode = args_.mode;
        if (mode == "all" || mode == "allsel")
            spread::PlotAllObjects_Click(context_, mode == "allsel");
        else if (mode == "sob")
            spread::ChartSOB(context_, args_.target);
        else if (mode == "sc")
            spread::mnuSC_Click(context_);
        else if (mode == "radec")
            spread::PlotRaanddec(context_, vb::Val(args_.modeArgs[0]), vb::Val(args_.modeArgs[1]));
        else if (mode == "const")
            spread::CenterOnConst(context_, args_.modeArgs[0]);
        else if (mode == "plot")
            return Plot();
        else if (mode == "print")
            return Print();
        else
            return Finder();
        return Collect();
    }

    const std::vector<ChartResult>& Results() const { return results_; }
    const std::vector<std::string>& Calls() const { return callLog_; }

    // Every own chart closes before the command ends.
    void CloseAll()
    {
        for (const auto& document : documents_)
            own_.Closed(document.get());
    }

private:
    const charts::ChartSky& Sky()
    {
        if (!sky_)
            sky_ = charts::LoadChartSky(data::ResourcesBesideExecutable().string());
        return *sky_;
    }

    std::unique_ptr<charts::Planetarium> MakeBridge()
    {
        const std::optional<charts::PlanetariumAddress> address =
            charts::ParsePlanetarium(TMM_.prefs.planetarium);
        if (!address)
            throw charts::PlanetariumError("The setting planetarium \"" + TMM_.prefs.planetarium +
                                           "\" names no planetarium: give cdc://HOST:PORT or "
                                           "stellarium://HOST:PORT");
        return charts::MakePlanetarium(*address, TMM_.dir.File("SelvaneObs.txt"),
                                       std::chrono::milliseconds(5000));
    }

    charts::ChartRequest Request(double ra, double dec, double field) const
    {
        charts::ChartRequest request;
        request.raHours = ra;
        request.decDeg = dec;
        request.fieldDeg = field;
        request.width = args_.width;
        request.height = args_.height;
        const bool starsOnly = TMM_.prefs.chartstarsonly || args_.mode == "sc";
        request.layers = charts::ParseChartLayers(starsOnly ? charts::kStarsOnlyChartLayers
                                                            : TMM_.prefs.chartlayers)
                             .layers;
        if (args_.mag)
            request.limitMag = args_.mag;
        else if (const std::optional<double> mag = astro::ParseNumber(TMM_.prefs.chartmag))
            request.limitMag = mag;
        return request;
    }

    ChartResult Own(double ra, double dec, double field,
                    const std::vector<charts::PlotObject>& objects, int plotted)
    {
        ChartResult result{"D", ra, dec, field, {}, {}, plotted, {}};
        result.image = charts::RenderChart(Sky(), Request(ra, dec, field), objects);
        result.field = result.image->fieldDeg;
        result.limitMag = result.image->limitMag;
        result.stars = StarsDrawn(*result.image);
        return result;
    }

    // The charts the mode made, from the own engine or the planetarium.
    bool Collect()
    {
        if (ErrorsShown(TMM_.ui) > 0)
            return false;
        if (args_.target == "C") {
            const charts::PlanetariumChart* sent = cdc_.LastChart();
            if (!sent)
                return false;
            results_.push_back({"C",
                                sent->raHours,
                                sent->decDegrees,
                                sent->field,
                                {},
                                {},
                                static_cast<int>(sent->objects.size()),
                                {}});
            return true;
        }
        for (const auto& d : documents_)
            results_.push_back(Own(d->raHours, d->decDeg, d->fieldDeg, d->objects,
                                   static_cast<int>(d->objects.size())));
        return !results_.empty();
    }

    bool Plot()
    {
        charts::frmStPlot form(TMM_.ui);
        form.ChartTarget = args_.target;
        auto& ui = dynamic_cast<services::ScriptedUiPort&>(TMM_.ui);
        ui.fileAnswers.push_back(args_.modeArgs[0]);
        if (!form.SSCommand3_Click())
            return false;
        if (args_.type)
            for (std::size_t i = 0; i < charts::PlotTypes.size(); ++i)
                if (charts::PlotTypes[i].substr(0, 2) == *args_.type)
                    form.cboType = static_cast<int>(i);
        if (!spread::ChartPlotFile(context_, form))
            return false;
        return Collect();
    }

    bool Print()
    {
        const data::Preferences& p = TMM_.prefs;
        spread::PrintChartOptions options;
        options.field = p.repChartFOV;
        options.blackAndWhite = p.ShowBW;
        options.telrads = p.ShowTelrad;
        options.milkyWay = p.ShowMilky;
        options.circle = p.ShowCircle;
        options.width = args_.width;
        options.height = args_.height;
        std::optional<charts::ChartImage> image = spread::PrintChart(context_, options);
        if (!image || documents_.empty())
            return false;
        const charts::ChartDocument& d = *documents_.back();
        ChartResult result{"D",
                           d.raHours,
                           d.decDeg,
                           image->fieldDeg,
                           image->limitMag,
                           StarsDrawn(*image),
                           static_cast<int>(d.objects.size()),
                           image};
        results_.push_back(std::move(result));
        return true;
    }

    bool Finder()
    {
        std::optional<spread::frmStarChart> form =
            spread::CreateStarChartFromDatabase(context_, args_.modeArgs[0], args_.modeArgs[1]);
        if (!form || ErrorsShown(TMM_.ui) > 0)
            return false;
        for (const spread::StarChartPanel& panel : form->panels)
            results_.push_back(Own(form->ObjectRA, form->ObjectDec, panel.fieldDeg, form->objects,
                                   static_cast<int>(form->objects.size())));
        return true;
    }

    spread::AppState& TMM_;
    const astro::Clock& clock_;
    const ChartArgs& args_;
    std::optional<charts::ChartSky> sky_;
    charts::OwnChart own_;
    charts::CdcBridge cdc_;
    charts::ChartLink link_;
    spread::ChartContext context_;
    std::vector<std::shared_ptr<charts::ChartDocument>> documents_;
    std::vector<std::string> callLog_;
    std::vector<ChartResult> results_;
};

} // namespace

std::string CheckChartArgs(const std::vector<std::string>& args)
{
    return ParseChartArgs(args).error;
}

int RunChartCommand(spread::AppState& TMM, const spread::LoadFormResult& start,
                    const std::vector<std::string>& args, std::ostream& out,
                    const astro::Clock& computerClock)
{
    const ChartArgs a = ParseChartArgs(args);
    if (!a.error.empty())
        return 2;

    // Tab 0 and its selected row, for the modes that read the list.
    const bool readsList =
        a.mode != "radec" && a.mode != "const" && a.mode != "plot" && a.mode != "finder";
    if (LoadListRow(TMM, start, a.sql, a.build, a.plan, readsList ? a.row : 0, computerClock) != 0)
        return 1;
    if (a.chartOpen) {
        std::ofstream open(TMM.dir.File(charts::kChartWorkFile), std::ios::binary);
        open << "open\r\n";
    }

    ChartSession session(TMM, computerClock, a);
    bool made = false;
    services::Trap(TMM.ui, "selvane-cli chart", [&] { made = session.Run(); });
    session.CloseAll();
    made = made && ErrorsShown(TMM.ui) == 0;

    // The outputs, only for a chart that was made; a failed write leaves none of them.
    std::vector<std::filesystem::path> written;
    const auto fail = [&](const std::string& path) {
        TMM.ui.ShowMessage("Cannot write " + path, "Star Chart", "E");
        for (const auto& file : written) {
            std::error_code ignored;
            std::filesystem::remove(file, ignored);
        }
        return 1;
    };
    if (made && a.calls) {
        if (!WriteLines(*a.calls, "", session.Calls()))
            return fail(*a.calls);
        written.emplace_back(*a.calls);
    }
    std::vector<ChartResult> results = session.Results();
    const bool ownImages = made && !results.empty() && results.front().image.has_value();
    if (ownImages) {
        const charts::ChartImage joined = SideBySide(results);
        if (a.objects) {
            std::vector<std::string> lines;
            for (const charts::DrawnObject& drawn : joined.drawn)
                lines.push_back(ObjectLine(drawn));
            if (!WriteLines(*a.objects, "Kind\tId\tName\tCode\tRA\tDec\tMag\tX\tY\tR", lines))
                return fail(*a.objects);
            written.emplace_back(*a.objects);
        }
        if (a.png) {
            if (!joined.image.save(QString::fromStdString(*a.png), "PNG"))
                return fail(*a.png);
            written.emplace_back(*a.png);
        }
        if (a.pdf) {
            const ChartResult& first = results.front();
            charts::ChartPageInfo info;
            info.heading = TMM.prefs.TCaption;
            info.raHours = first.raHours;
            info.decDeg = first.decDeg;
            info.fieldDeg = first.field;
            info.limitMag = first.limitMag.value_or(0);
            info.date = charts::ChartPageDate(computerClock.Now());
            try {
                charts::WriteChartPdf(*a.pdf, joined, info);
            } catch (const services::Fault&) {
                return fail(*a.pdf);
            }
            written.emplace_back(*a.pdf);
        }
    }

    out << "Target\tRA\tDec\tField\tMag\tStars\tPlotted\n";
    if (!made)
        return 1;
    for (const ChartResult& r : results)
        out << r.target << "\t" << FixedDecimals(r.raHours, 6) << "\t" << FixedDecimals(r.decDeg, 5)
            << "\t" << FixedDecimals(r.field, 0) << "\t"
            << (r.limitMag ? FixedDecimals(*r.limitMag, 2) : std::string()) << "\t"
            << (r.stars ? std::to_string(*r.stars) : std::string()) << "\t" << r.plotted << "\n";
    return 0;
}

} // namespace app
