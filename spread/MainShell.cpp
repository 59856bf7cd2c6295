#include "spread/MainShell.h"

#include "services/Fault.h"
#include "spread/Grid.h"
#include "services/Vb.h"

#include <algorithm>
#include <QString>

namespace spread {

std::string TabCaptionKey(int tab)
{
    return "tab" + std::to_string(tab + 1) + "caption";
}

std::string DefaultTabCaption(int tab)
{
    return "Selv " + std::to_string(tab + 1);
}

std::string TabCaptionProposal(int tab)
{
    return "Selvane" + std::to_string(tab + 1);
}

const std::vector<std::string>& RowsReturnedChoices()
{
    static const std::vector<std::string> choices = {
        "All Objects", "25", "50", "75", "100", "250", "500", "1000", "5000", "10000", "25000"};
    return choices;
}

long RowretFromChoice(const std::string& text)
{
    if (text.rfind("All", 0) == 0)
        return 0;
    const double value = services::vb::Val(text);
    // A typed value beyond the range of a long integer counts as all rows.
    if (!(value >= 0) || value > 2147483647.0)
        return 0;
    return static_cast<long>(services::vb::Fix(value));
}

std::string RowretText(long rowret)
{
    return rowret == 0 ? RowsReturnedChoices().front() : std::to_string(rowret);
}

void ResetFilter(Grid& grid)
{
    for (int row = 1; row <= grid.MaxRows(); ++row)
        grid.SetRowHidden(row, false);
}

void FilterGrid(Grid& grid, int col, const std::string& text)
{
    ResetFilter(grid);
    if (text.empty())
        return;
    const QString wanted = QString::fromStdString(text);
    for (int row = 1; row <= grid.MaxRows(); ++row) {
        const std::string_view cell = grid.Text(row, col);
        const QString cellText =
            QString::fromUtf8(cell.data(), static_cast<qsizetype>(cell.size()));
        if (!cellText.contains(wanted, Qt::CaseInsensitive))
            grid.SetRowHidden(row, true);
    }
}

namespace {

// RefreshTime in seconds; anything that is not a positive number counts as 0.
int RefreshSeconds(const std::string& RefreshTime)
{
    const double seconds = services::vb::Val(RefreshTime);
    return seconds > 0 && seconds < 86400 * 7 ? static_cast<int>(services::vb::Fix(seconds)) : 0;
}

} // namespace

bool Timer2Tick(RealTimeTimers& timers, const std::string& RefreshTime)
{
    const int seconds = RefreshSeconds(RefreshTime);
    if (seconds <= 0 || !timers.RealTimeRearm)
        return false;
    timers.timer1IntervalMs = seconds * 1000;
    timers.RealTimeRearm = false;
    return true;
}

std::optional<RealTimeMoment> Timer1Tick(RealTimeTimers& timers, const std::string& UseRealTime,
                                         const std::string& RefreshTime,
                                         const astro::LocalDateTime& now)
{
    if (UseRealTime != "Y" || RefreshSeconds(RefreshTime) <= 0)
        return std::nullopt;
    const QDate date(now.year, now.month, now.day);
    const QTime time(now.hour, now.minute, now.second);
    RealTimeMoment moment{services::vb::FormatDate(date, "mm/dd/yy"),
                          services::vb::FormatTime(time, "hh:mm")};
    // The date text is read back by position, whatever the regional separator.
    if (moment.PDate.size() >= 6) {
        moment.PDate[2] = '/';
        moment.PDate[5] = '/';
    }
    timers.RealTimeRearm = true;
    return moment;
}

void ShutDown::CloseApplication()
{
    if (closingDown_)
        return;
    closingDown_ = true;
    for (const auto* step : {&steps_.SaveTheColumns, &steps_.SavePreferences, &steps_.AutoBackup,
                             &steps_.DisconnectTelescope, &steps_.RestoreColours,
                             &steps_.SaveLayout, &steps_.UnloadWindows}) {
        if (*step)
            services::Trap(ui_, "frmMainScreen.CloseApplication", *step);
    }
}

} // namespace spread
