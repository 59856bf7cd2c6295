// selvane-builddb OUTDIR TABLESDIR KSTARSDIR STELLARIUMDIR
// Builds the shipped databases and text files into OUTDIR; run by the build.

#include "services/Fault.h"
#include "tools/Builder.h"

#include <iostream>

int main(int argc, char** argv)
{
    if (argc != 5) {
        std::cerr << "usage: selvane-builddb OUTDIR TABLESDIR KSTARSDIR STELLARIUMDIR\n";
        return 2;
    }
    tools::BuildInputs inputs;
    inputs.tablesDir = argv[2];
    inputs.kstarsDir = argv[3];
    inputs.stellariumDir = argv[4];
    try {
        tools::BuildDatabases(inputs, argv[1], std::cout);
    } catch (const services::Fault& fault) {
        std::cerr << "selvane-builddb: " << fault.what() << " (" << fault.Location() << ")\n";
        return 1;
    }
    return 0;
}
