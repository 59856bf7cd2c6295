#pragma once
// The slide-show script for the observatory program ACP (key csc): the rows of a spreadsheet
// tab written as an object list, SelvaneSlideShow.sfl, and the shipped script
// SelvaneSlideShow.vbs pointed at that list. All three files, with the working copy
// SelvaneSlideShow.tmp, lie in the program folder.
//
// The list holds seven lines an object, UTF-8, each ended by CR LF: "!START"; right ascension
// in hours and declination in degrees, both "00.000000" (the declination signed "+" or "-");
// the name; "located in the constellation of "; the constellation; the magnitude; the long
// object type. The script is read a line at a time (CR LF, LF or CR end a line) and every line
// is written back ended by CR LF.

#include "data/Database.h"
#include "data/ProgramDir.h"
#include "services/UiPort.h"
#include "spread/Grid.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace scope {

inline constexpr const char* kAcpScriptLocation = "ctlSpread.CreateACPScript";
inline constexpr const char* kSlideShowList = "SelvaneSlideShow.sfl";
inline constexpr const char* kSlideShowScript = "SelvaneSlideShow.vbs";
inline constexpr const char* kSlideShowWork = "SelvaneSlideShow.tmp";
// The one line of the script this routine rewrites starts with these 24 characters.
inline constexpr std::string_view kOpenListLine = "Set a = FS.OpenTextFile(";

// The fields of one SelvaneTable record that its entry shows.
struct AcpObject
{
    double RAhours = 0, RAminutes = 0;
    double DeclinationDegrees = 0, DeclinationMinutes = 0;
    std::string ObjectID, OtherID, constellation;
    std::optional<double> Magnitude;     // null: "Magnitude is Not Available"
    std::optional<std::string> typeDesc; // objecttypedesc of ValidObjectTypes, if found
};

// The seven lines of one object, each ended by CR LF.
// Notes: the declination is -(|degrees| + |minutes|/60) when either field is negative; a stored
//   -0 degrees counts as negative, as the grid shows it south; the magnitude is written as the
//   runtime turns a number into text (vb::CStr).
std::string AcpEntry(const AcpObject& object);

// The script's text with its list line pointed at sflPath, every line ended by CR LF.
std::string RetargetScript(std::string_view script, const std::string& sflPath);

// Whether ACPPath names an existing folder (empty: ACP is not installed).
bool AcpInstalled(const std::string& ACPPath);

struct AcpScriptResult
{
    bool written = false;
    int objects = 0;
    std::filesystem::path sfl, vbs;
};

// csc: the list written from the rows of grid (the current tab's, or none for an image tab),
// each read again from SelvaneTable of objectDb by its RecordID (column 27); rows whose record
// is gone are left out. Then the script pointed at the list and the final message.
// Status: ACP not found, or a list that cannot be created in the program folder, give their
//   messages (kind I) and nothing is written; a fault on the way (the database, the script
//   missing or unreadable) is reported and the files stand as they were before the step that
//   failed.
// Location: ctlSpread.CreateACPScript
AcpScriptResult CreateAcpScript(services::UiPort& ui, const std::string& ACPPath,
                                const data::ProgramDir& dir, const spread::Grid* grid,
                                data::Database* objectDb);

} // namespace scope
