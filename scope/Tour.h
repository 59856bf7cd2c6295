#pragma once
// frmBuildTour's file: the rows of a spreadsheet tab as a tour for the Autostar hand controller
// (.mtf), which the user loads with the Autostar Update utility. The mount is never touched.
//
// The file is UTF-8 text, every line ended by CR LF. Quotes around texts are the character 34;
// a quote inside a name or an introduction is written as typed, since the file has no escape.
// Grid columns read (rows from 1): 3 observed mark, 4 ObjectID, 5 OtherID, 6 type, 7 R.A.
// "HH MM SS.S", 8 Dec. "sDD MM SS.S", 10 Alt, 11 Azm, 15 Const, 16 Size, 17 Mag1.

#include "services/UiPort.h"
#include "spread/Grid.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace scope {

inline constexpr const char* kTourLocation = "frmBuildTour";
inline constexpr const char* kTourFileName = "SelvaneTour.mtf";
inline constexpr const char* kTourDefaultTitle = "Selvane 2003";
inline constexpr const char* kTourDefaultIntro =
    "Welcome to the Selvane 2003 custom generated tour.";
inline constexpr const char* kTourSaveTitle = "Save Autostar Tour File";
inline constexpr const char* kTourFilter = "*.mtf";
inline constexpr const char* kTourDefaultExt = ".mtf";
inline constexpr const char* kTourEmptyText = "The list has no objects";
inline constexpr const char* kTourEmptyTitle = "No Objects Selected";
inline constexpr const char* kTourCreatedTitle = "TOUR SCRIPT CREATED";

// optMode: what each object line tells on the hand controller.
enum class TourMode {
    MaximizeMemory = 0, // the name alone
    IncludeDetails = 1, // type, position, altitude, azimuth, size, magnitude, constellation
};

struct TourOptions
{
    std::string title; // txtTitle; empty gives kTourDefaultTitle
    std::string intro; // txtIntro; empty gives kTourDefaultIntro
    TourMode mode = TourMode::IncludeDetails;
};

// The position texts of an object line.
// Given: ra, column 7 "HH MM SS.S"; dec, column 8 "sDD MM SS.S".
// Returned: "HH:MM:SS" and "sDDdMMmSSs"; the seconds are the first two digits of the last four
//   characters (trailing blanks ignored), so tenths are dropped, never rounded.
std::string TourRa(std::string_view ra);
std::string TourDec(std::string_view dec);

// The whole file's text for rows 1 to MaxRows of grid.
std::string TourText(const spread::Grid& grid, const TourOptions& options);

// Writes text to file in one go: through a temporary file beside it that is renamed over it,
// so that a failure leaves no new file behind (an earlier file of that name stays as it was).
// Status: throws services::Fault with the runtime's text and an empty location.
void WriteWholeFile(const std::filesystem::path& file, std::string_view text);

struct TourResult
{
    bool written = false;
    int objects = 0; // the object lines written
};

// frmBuildTour's Create: the tour of grid written to file and the message that tells so.
// Status: a grid without rows is refused with kTourEmptyText (kind I), nothing written; a write
//   failure is reported as a fault and leaves no file.
// Location: frmBuildTour
TourResult BuildTour(services::UiPort& ui, const spread::Grid& grid,
                     const std::filesystem::path& file, const TourOptions& options);

} // namespace scope
