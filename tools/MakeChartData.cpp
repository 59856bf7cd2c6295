// make-chart-data OUTDIR KSTARSDIR
// Writes the chart engine's star, figure, name, boundary and Milky Way files (tools/ChartData.h).

#include "services/Fault.h"
#include "tools/ChartData.h"

#include <iostream>

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::cerr << "usage: make-chart-data OUTDIR KSTARSDIR\n";
        return 2;
    }
    try {
        const auto counts = tools::BuildChartData(argv[2], argv[1]);
        std::cout << counts.stars << " stars, " << counts.linePoints << " figure points ("
                  << counts.unresolvedLinePoints << " unresolved), " << counts.boundaryPoints
                  << " boundary points, " << counts.names << " names, " << counts.milkyWayPoints
                  << " Milky Way points\n";
        return counts.unresolvedLinePoints == 0 ? 0 : 1;
    } catch (const services::Fault& fault) {
        std::cerr << fault.what() << '\n';
        return 1;
    }
}
