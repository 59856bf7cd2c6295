#include "app/EquipmentCommand.h"

#include "logbook/Equipment.h"
#include "services/Fault.h"

#include <charconv>
#include <iostream>

namespace app {

namespace {

using logbook::EquipmentKind;

bool IsRowNumber(const std::string& text)
{
    return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos &&
           text.find_first_not_of('0') != std::string::npos;
}

// The list as the tab shows it; false when the file could not be read (the port has shown
// why).
bool ReadList(services::UiPort& ui, const data::ProgramDir& dir, EquipmentKind kind,
              std::vector<std::string>& rows)
{
    return services::Trap(ui, logbook::ReadListLocation,
                          [&] { rows = logbook::ReadEquipmentFile(dir, kind); });
}

bool SyncTable(services::UiPort& ui, const data::ProgramDir& dir, data::Database* logbook,
               EquipmentKind kind)
{
    if (!logbook || kind == EquipmentKind::Exp)
        return true;
    return services::Trap(ui, logbook::UpdateLocation(kind),
                          [&] { logbook::SyncEquipmentTable(*logbook, dir); });
}

} // namespace

std::string CheckEquipmentArgs(const std::vector<std::string>& args)
{
    if (args.empty())
        return "equipment needs list, add or delete";
    const std::string& sub = args[0];
    if (sub != "list" && sub != "add" && sub != "delete")
        return "unknown equipment command \"" + sub + "\"";
    if (args.size() < 2)
        return "equipment " + sub + " needs a KIND";
    const auto kind = logbook::ParseEquipmentKind(args[1]);
    if (!kind)
        return "unknown equipment KIND \"" + args[1] + "\" (scope, eyepiece, ccd or exp)";
    if (sub == "list" && args.size() != 2)
        return "equipment list takes KIND only";
    if (sub == "delete") {
        if (args.size() != 3)
            return "equipment delete takes KIND and ROW";
        if (!IsRowNumber(args[2]))
            return "ROW \"" + args[2] + "\" is not a row number from 1";
    }
    if (sub == "add") {
        const bool boxes = *kind == EquipmentKind::Scope || *kind == EquipmentKind::Eyepiece;
        if (boxes && args.size() != 5)
            return "equipment add " + args[1] + " takes three values";
        if (!boxes && args.size() != 3)
            return "equipment add " + args[1] + " takes one TEXT";
    }
    return {};
}

int RunEquipmentCommand(services::UiPort& ui, const data::ProgramDir& dir,
                        data::Database* logbook, const services::vb::Regional& regional,
                        const std::vector<std::string>& args, std::ostream& out)
{
    if (const std::string error = CheckEquipmentArgs(args); !error.empty()) {
        std::cerr << "selvane-cli: " << error << "\n" << EquipmentUsage << "\n";
        return 2;
    }
    const std::string& sub = args[0];
    const EquipmentKind kind = *logbook::ParseEquipmentKind(args[1]);
    std::vector<std::string> rows;
    if (!ReadList(ui, dir, kind, rows))
        return 1;

    if (sub == "list") {
        out << "Row\tRecord\n";
        for (size_t i = 0; i < rows.size(); ++i)
            out << i + 1 << '\t' << rows[i] << '\n';
        return 0;
    }

    if (sub == "add") {
        std::string record;
        if (kind == EquipmentKind::Scope) {
            logbook::ScopeBoxes boxes{args[2], args[3], args[4]};
            record = logbook::MakeScopeRecord(ui, boxes, regional);
        } else if (kind == EquipmentKind::Eyepiece) {
            logbook::EyepieceBoxes boxes{args[2], args[3], args[4]};
            record = logbook::MakeEyepieceRecord(ui, boxes, regional);
        } else {
            record = logbook::MakeTextRecord(ui, kind, args[2]);
        }
        if (!logbook::AddEquipmentRow(ui, dir, kind, rows, record))
            return 1;
        return SyncTable(ui, dir, logbook, kind) ? 0 : 1;
    }

    // delete
    size_t row = 0;
    const std::string& text = args[2];
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), row);
    (void)end;
    if (ec != std::errc() || row > rows.size()) {
        std::cerr << "selvane-cli: no row " << text << " in " << logbook::EquipmentFileName(kind)
                  << " (" << rows.size() << " rows)\n";
        return 1;
    }
    if (!logbook::DeleteEquipmentRow(ui, dir, kind, rows, static_cast<int>(row - 1)))
        return 1;
    return SyncTable(ui, dir, logbook, kind) ? 0 : 1;
}

} // namespace app
