#include "app/ConstellationCommand.h"

#include "astro/Constellation.h"
#include "services/UiPort.h"
#include "spread/PortFaults.h"

#include <iostream>

namespace app {

namespace {

void WriteAnswer(std::ostream& out, const astro::ConstellationName& answer)
{
    out << answer.name << '\t' << answer.abbreviation << '\n';
}

std::vector<std::string> SplitTabs(const std::string& line)
{
    std::vector<std::string> fields;
    std::size_t start = 0;
    for (;;) {
        const std::size_t tab = line.find('\t', start);
        fields.push_back(line.substr(start, tab - start));
        if (tab == std::string::npos)
            return fields;
        start = tab + 1;
    }
}

} // namespace

std::string CheckConstellationArgs(const std::vector<std::string>& args)
{
    if (args.size() == 1 && args[0] == "-")
        return {};
    if (args.size() < 2)
        return "constellation needs RA and DEC, or - to read them from standard input";
    if (args.size() > 3)
        return "constellation takes RA, DEC and an optional EPOCH";
    return {};
}

int RunConstellationCommand(const data::ProgramDir& dir, services::UiPort& ui,
                            const std::vector<std::string>& args, std::istream& in,
                            std::ostream& out)
{
    if (const std::string error = CheckConstellationArgs(args); !error.empty()) {
        std::cerr << "selvane-cli: " << error << "\n" << ConstellationUsage << "\n";
        return 2;
    }
    spread::PortFaults faults(ui);
    out << "Name\tAbbr\n";
    if (args.size() != 1) {
        const std::string epoch = args.size() == 3 ? args[2] : DefaultConstellationEpoch;
        WriteAnswer(out, astro::GetCon(args[0], args[1], epoch, dir.path, faults));
        out.flush();
        return faults.count > 0 ? 1 : 0;
    }

    bool malformed = false;
    std::string line;
    for (long number = 1; std::getline(in, line); ++number) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        const std::vector<std::string> fields = SplitTabs(line);
        if (fields.size() < 2 || fields.size() > 3) {
            std::cerr << "selvane-cli: constellation: line " << number << " has " << fields.size()
                      << (fields.size() == 1 ? " field" : " fields")
                      << ", not RA<TAB>DEC[<TAB>EPOCH]\n";
            malformed = true;
            WriteAnswer(out, {});
            continue;
        }
        const std::string& epoch = fields.size() == 3 ? fields[2] : DefaultConstellationEpoch;
        WriteAnswer(out, astro::GetCon(fields[0], fields[1], epoch, dir.path, faults));
    }
    out.flush();
    return faults.count > 0 || malformed ? 1 : 0;
}

} // namespace app
