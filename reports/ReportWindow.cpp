#include "reports/ReportWindow.h"

#include "astro/ObservingClock.h"
#include "services/Vb.h"
#include "spread/AppState.h"

#include <QDate>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

namespace reports {

namespace {

struct SortCaption
{
    const char* caption;
    const char* clause;
};

constexpr std::array<SortCaption, 8> kSortCaptions{{
    {"ObjectID", "Order By ObjectID"},
    {"Catalog", "Order By Catalog"},
    {"Date/Time", "Order By DateObserved, TimeObserved"},
    {"Location", "Order By LocationObserved"},
    {"Equipment", "Order By EquipmentUsed"},
    {"Seeing", "Order By Seeing"},
    {"Transparency", "Order By Transparency"},
    {"Rating", "Order By Rating"},
}};

// A number with the decimals it needs: 15, 12.5.
std::string Trimmed(double value)
{
    std::string text = services::vb::Format(value, "0.##");
    if (!text.empty() && (text.back() == '.' || text.back() == ','))
        text.pop_back();
    return text;
}

} // namespace

std::string PresentDate(const ReportContext& context)
{
    const astro::LocalDateTime now = context.clock.Now();
    return services::vb::ShortDate(QDate(now.year, now.month, now.day),
                                   data::RegionalOf(context.TMM.prefs));
}

namespace {

// A stored date: ISO "yyyy-mm-dd", a time may follow.
std::optional<QDate> StoredDate(std::string_view stored)
{
    const std::string_view day = stored.substr(0, 10);
    const QDate date =
        QDate::fromString(QString::fromUtf8(day.data(), static_cast<int>(day.size())), Qt::ISODate);
    return date.isValid() ? std::optional<QDate>(date) : std::nullopt;
}

} // namespace

std::string ShortDateText(std::string_view stored, const ReportContext& context)
{
    const std::optional<QDate> date = StoredDate(stored);
    return date ? services::vb::ShortDate(*date, data::RegionalOf(context.TMM.prefs))
                : std::string(stored);
}

std::string LongDateText(std::string_view stored, const ReportContext& context)
{
    const std::optional<QDate> date = StoredDate(stored);
    return date ? services::vb::FormatDate(*date, "Long Date", data::RegionalOf(context.TMM.prefs))
                : std::string(stored);
}

std::string DataFooter(const ReportContext& context)
{
    return std::string(kProductLine) + "||" + PresentDate(context) + "  Page %d";
}

std::string NotesFooter()
{
    return std::string(kProductLine) + "||Page %d";
}

ReportWindow::ReportWindow(ReportContext& context, PrintSurface& surface)
    : context_(context), surface_(surface)
{
    const data::Preferences& p = context.TMM.prefs;
    txtFov = Trimmed(p.repChartFOV);
    optShow = p.ShowCI == "I" ? "I" : "C";
    chkBW = p.ShowBW;
    chkTelrad = p.ShowTelrad;
    chkMW = p.ShowMilky;
    txtCircle = p.ShowCircle == 0 ? "" : std::to_string(p.ShowCircle);
    chkMissing = p.CertMissing;
}

void ReportWindow::ObsPlanSort(const std::string& caption)
{
    obsPlanOrderBy_.clear();
    for (const SortCaption& sort : kSortCaptions) {
        if (caption == sort.caption)
            obsPlanOrderBy_ = sort.clause;
    }
}

void ReportWindow::chkLand_Click()
{
    const bool sheet = ReportNumber >= 12 && ReportNumber <= 17;
    chkLandEnabled = !sheet;
    if (sheet)
        chkLand = false;
    chartOptionsVisible = ReportNumber == 15 || ReportNumber == 16;
    surface_.SetOrientation(chkLand ? Orientation::Landscape : Orientation::Portrait);
}

void ReportWindow::Form_Load()
{
    chkLand_Click();
    if (ReportNumber != 90 && (ReportNumber < 900 || ReportNumber > 903))
        Command9_Click();
}

void ReportWindow::Next()
{
    page_ = std::clamp(page_ + 1, 1, std::max(1, Pages()));
}

void ReportWindow::Previous()
{
    page_ = std::clamp(page_ - 1, 1, std::max(1, Pages()));
}

void ReportWindow::First()
{
    page_ = 1;
}

void ReportWindow::Last()
{
    page_ = std::max(1, Pages());
}

void ReportWindow::ZoomIn()
{
    zoom_ = (zoom_ == 0 ? 100 : zoom_) + 10;
}

void ReportWindow::ZoomOut()
{
    zoom_ = std::max(10.0, (zoom_ == 0 ? 100 : zoom_) - 10);
}

void ReportWindow::ZoomNormal()
{
    zoom_ = 100;
}

std::string ReportWindow::Sbar() const
{
    return "You are on Page " + std::to_string(page_) + " of " + std::to_string(Pages());
}

std::pair<int, int> ReportWindow::PrintRange() const
{
    const int pages = Pages();
    const auto number = [](const std::string& text) {
        return static_cast<int>(std::lround(services::vb::Val(text)));
    };
    const bool blankFrom = services::vb::Trim(txtFrom).empty();
    const bool blankTo = services::vb::Trim(txtTo).empty();
    const int from = blankFrom ? 1 : std::clamp(number(txtFrom), 1, std::max(1, pages));
    int to = blankTo ? pages : number(txtTo);
    if (to > pages || to < from)
        to = pages;
    return {from, to};
}

} // namespace reports
