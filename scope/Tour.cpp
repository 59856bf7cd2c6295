#include "scope/Tour.h"

#include "services/Fault.h"
#include "services/OutputFile.h"
#include "services/Vb.h"

#include <system_error>

namespace scope {

namespace {

namespace vb = services::vb;

constexpr std::string_view kEol = "\r\n";
constexpr char kQuote = '"';

// The seconds of a fixed-position text: the first two of its last four characters.
std::string Seconds(std::string_view text)
{
    const std::string trimmed = vb::RTrim(text);
    const std::size_t start = trimmed.size() > 4 ? trimmed.size() - 4 : 0;
    return trimmed.substr(start, 2);
}

std::string Quoted(std::string_view text)
{
    std::string quoted;
    quoted.reserve(text.size() + 2);
    quoted += kQuote;
    quoted += text;
    quoted += kQuote;
    return quoted;
}

void Line(std::string& out, std::string_view text)
{
    out += text;
    out += kEol;
}

std::string ObjectLine(const spread::Grid& grid, int row, TourMode mode)
{
    const auto cell = [&](int col) { return std::string(grid.Text(row, col)); };
    const std::string ra = TourRa(grid.Text(row, 7));
    const std::string dec = TourDec(grid.Text(row, 8));
    std::string name = vb::Trim(grid.Text(row, 4));
    if (const std::string other = vb::Trim(grid.Text(row, 5)); !other.empty())
        name += " " + other;

    std::string details = "OBJECT:" + name;
    if (mode == TourMode::IncludeDetails) {
        details += " TYPE:" + cell(6) + " RA:" + ra + " DEC:" + dec;
        if (!vb::Trim(grid.Text(row, 10)).empty())
            details += " ALT:" + cell(10);
        details +=
            " AZM:" + cell(11) + " SIZE:" + cell(16) + " MAG:" + cell(17) + " CONST:" + cell(15);
        if (vb::Trim(grid.Text(row, 3)) == "X")
            details += ". This object has been observed";
    }
    return "AUTO SELECT USER " + ra + " " + dec + " " + Quoted(name) + " " +
           Quoted(details + "  - PRESS MODE TO CONTINUE THE TOUR.");
}

} // namespace

std::string TourRa(std::string_view ra)
{
    return vb::Mid(ra, 1, 2) + ":" + vb::Mid(ra, 4, 2) + ":" + Seconds(ra);
}

std::string TourDec(std::string_view dec)
{
    return vb::Mid(dec, 1, 1) + vb::Mid(dec, 2, 2) + "d" + vb::Mid(dec, 5, 2) + "m" + Seconds(dec) +
           "s";
}

std::string TourText(const spread::Grid& grid, const TourOptions& options)
{
    const std::string title = options.title.empty() ? kTourDefaultTitle : options.title;
    const std::string intro = options.intro.empty() ? kTourDefaultIntro : options.intro;
    std::string out;
    Line(out, "//////////////////////////////////////");
    Line(out, "// Selvane 2003 Custom Autostar Tour");
    Line(out, "//");
    Line(out, "// Created by Selvane");
    Line(out, "//////////////////////////////////////");
    Line(out, "TITLE " + Quoted(title));
    Line(out, "AUTO SELECT TEXT " + Quoted("Selvane 2003") + " " + Quoted(intro));
    Line(out, "AUTO SLEW ON");
    for (int row = 1; row <= grid.MaxRows(); ++row)
        Line(out, ObjectLine(grid, row, options.mode));
    Line(out, "AUTO SLEW OFF");
    Line(out, "AUTO SELECT TEXT " + Quoted("Selvane 2003") + " " + Quoted("The END!"));
    Line(out, "#END");
    return out;
}

void WriteWholeFile(const std::filesystem::path& file, std::string_view text)
{
    const std::filesystem::path partial = file.string() + ".partial";
    try {
        services::OutputFile out(partial);
        out.Write(text);
        out.Close();
        std::error_code ec;
        std::filesystem::rename(partial, file, ec);
        if (ec)
            throw services::Fault(services::FileErrorText(ec.value()), "");
    } catch (...) {
        std::error_code ignored;
        std::filesystem::remove(partial, ignored);
        throw;
    }
}

TourResult BuildTour(services::UiPort& ui, const spread::Grid& grid,
                     const std::filesystem::path& file, const TourOptions& options)
{
    TourResult result;
    if (grid.MaxRows() <= 0) {
        ui.ShowMessage(kTourEmptyText, kTourEmptyTitle, "I");
        return result;
    }
    result.written =
        services::Trap(ui, kTourLocation, [&] { WriteWholeFile(file, TourText(grid, options)); });
    if (!result.written)
        return result;
    result.objects = grid.MaxRows();
    ui.ShowMessage(file.string() +
                       ".  Use the Autostar Update utility to load the script into your Autostar.",
                   kTourCreatedTitle, "I");
    return result;
}

} // namespace scope
