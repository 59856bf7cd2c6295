#pragma once
// The printable finder page of one chart: the heading, the chart picture and under it a legend
// (centre, field, star limit, date), a magnitude key and a symbol key, on white paper.
// Positions are J2000: right ascension in hours, declination in degrees. The keys are drawn
// with the chart engine's own marks (charts/ChartEngine.h), so they match the picture. Text is
// written as text, so the PDF can be searched and its fonts are embedded.

#include "astro/ObservingClock.h"
#include "charts/ChartEngine.h"

#include <QRectF>

#include <filesystem>
#include <string>

class QPainter;

namespace charts {

struct ChartPageInfo
{
    std::string heading; // the chart heading (setting TCaption), top of the page
    double raHours = 0;  // centre, J2000
    double decDeg = 0;
    double fieldDeg = 35;
    double limitMag = 0; // faintest star drawn
    std::string date;    // the chart's date and time as text, e.g. "2025-11-08 21:30"
    bool landscape = false;
};

enum class PagePaper { Letter, A4 };

// The date line of a page: "2025-11-08 21:30".
std::string ChartPageDate(const astro::LocalDateTime& moment);

// The legend's texts: "RA 5h 35m 17.3s  Dec -5° 23' 28\"" (UTF-8; seconds of right ascension
// to a tenth, of declination whole, carried upwards), "Field 35°" and "Stars to mag 7.6".
// Right ascension is brought into 0..24 h first; the field and magnitude keep one decimal
// unless it is 0.
std::string ChartCentreText(double raHours, double decDeg);
std::string ChartFieldText(double fieldDeg);
std::string ChartLimitText(double limitMag);

// PaintChartPage: paints the page of chart into the rectangle page of painter (the printable
// area, in the painter's units), as for a printer.
// Given: chart as RenderChart returned it, drawn in day colours; info for the heading and the
//   legend.
// Notes: the picture fills the width keeping its aspect, smaller when the page is too short
//   for it and the legend; the magnitude key shows a dot for each whole magnitude from the
//   brightest star the chart drew (0 when it drew none) to the limit, at the chart's scale; the
//   symbol key shows one symbol for each kind of mark the chart draws. A null picture leaves
//   its place blank. All sizes follow the page's shorter side, so any device gives one layout.
void PaintChartPage(QPainter& painter, const QRectF& page, const ChartImage& chart,
                    const ChartPageInfo& info);

// WriteChartPdf: writes the page of chart as a one-page PDF file at path.
// Given: path; chart and info as for PaintChartPage; paper Letter or A4, 12.7 mm margins,
//   landscape when info.landscape.
// Status: throws services::Fault, location "charts.WriteChartPdf", with the system's reason
//   ("Path not found", "Permission denied", "Disk full") or "Cannot write <path>"; a failed
//   write leaves no file behind (the page is made in memory first).
void WriteChartPdf(const std::filesystem::path& path, const ChartImage& chart,
                   const ChartPageInfo& info, PagePaper paper = PagePaper::Letter);

} // namespace charts
