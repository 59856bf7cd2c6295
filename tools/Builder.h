#pragma once
// Builds the shipped database files and the shipped text files from the offline catalogue data.

#include <iosfwd>
#include <string>

namespace tools {

struct BuildInputs
{
    std::string kstarsDir;     // the desktop-planetarium data folder (NGC/IC list, places, orbits)
    std::string stellariumDir; // the planetarium data folder (deep-sky and star catalogues)
    std::string tablesDir;     // the project's resources/ folder with the small fact tables
};

// Writes SelvPro13000.mdb, SelvPro708000.mdb, Logbook2003-1.mdb, AstComet.mdb, ccdimages.mdb,
// Href.txt and the shipped plans into outDir, printing row counts and times to log.
// Status: throws services::Fault when an input cannot be read or a check of the content fails
// (110 Messier objects, 400 Herschel objects, every plan entry found).
void BuildDatabases(const BuildInputs& inputs, const std::string& outDir, std::ostream& log);

} // namespace tools
