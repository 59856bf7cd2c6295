#include "scope/AcpScript.h"

#include "scope/Tour.h"
#include "services/Fault.h"
#include "services/OutputFile.h"
#include "services/Vb.h"
#include "spread/Plans.h"

#include <cmath>
#include <fstream>
#include <iterator>
#include <sstream>
#include <system_error>

namespace scope {

namespace {

namespace fs = std::filesystem;
namespace vb = services::vb;

constexpr std::string_view kEol = "\r\n";

// The record of one grid row, or nothing when it is gone.
std::optional<AcpObject> ReadObject(data::Database& db, long long id)
{
    data::Recordset rs = db.OpenRecordset(
        "Select * From SelvaneTable Where ID = " + std::to_string(id), data::Snapshot);
    if (rs.Eof())
        return std::nullopt;
    AcpObject object;
    object.RAhours = rs.Fields("RAhours").Double();
    object.RAminutes = rs.Fields("RAminutes").Double();
    object.DeclinationDegrees = rs.Fields("DeclinationDegrees").Double();
    object.DeclinationMinutes = rs.Fields("DeclinationMinutes").Double();
    object.ObjectID = rs.Fields("ObjectID").Value();
    object.OtherID = rs.Fields("OtherID").Value();
    object.constellation = rs.Fields("constellation").Value();
    if (const data::Field magnitude = rs.Fields("Magnitude"); !magnitude.IsNull())
        object.Magnitude = magnitude.Double();
    const std::string type = rs.Fields("ObjectType").Value();
    rs.Close();

    data::Recordset types = db.OpenRecordset("Select * From ValidObjectTypes Where ObjectType = '" +
                                                 vb::QuoteForSql(type) + "'",
                                             data::Snapshot);
    if (!types.Eof())
        object.typeDesc = types.Fields("objecttypedesc").Value();
    return object;
}

std::string ListText(data::Database* db, const spread::Grid* grid, int& objects)
{
    objects = 0;
    std::string text;
    if (!grid || grid->MaxRows() == 0)
        return text;
    if (!db)
        throw services::Fault("The object database is not open.", "");
    for (int row = 1; row <= grid->MaxRows(); ++row) {
        const auto id = static_cast<long long>(vb::Val(grid->Text(row, spread::kRecordIdCol)));
        if (const std::optional<AcpObject> object = ReadObject(*db, id)) {
            text += AcpEntry(*object);
            ++objects;
        }
    }
    return text;
}

std::string ReadWholeFile(const fs::path& file)
{
    std::ifstream in(file, std::ios::binary);
    if (!in)
        throw services::Fault("File not found", "");
    std::ostringstream text;
    text << in.rdbuf();
    if (in.bad())
        throw services::Fault("Input past end of file", "");
    return text.str();
}

void RemoveQuietly(const fs::path& file)
{
    std::error_code ignored;
    fs::remove(file, ignored);
}

// The list written to its open file; a failure removes it.
void FinishList(services::OutputFile& out, const fs::path& sfl, std::string_view text)
{
    try {
        out.Write(text);
        out.Close();
    } catch (...) {
        RemoveQuietly(sfl);
        throw;
    }
}

// .vbs read into .tmp, .vbs deleted, .tmp renamed to .vbs.
void PointScriptAt(const data::ProgramDir& dir, const fs::path& sfl)
{
    const fs::path vbs = dir.File(kSlideShowScript);
    const fs::path tmp = dir.File(kSlideShowWork);
    const std::string script = RetargetScript(ReadWholeFile(vbs), sfl.string());
    try {
        services::OutputFile out(tmp);
        out.Write(script);
        out.Close();
    } catch (...) {
        RemoveQuietly(tmp);
        throw;
    }
    std::error_code ec;
    fs::remove(vbs, ec);
    if (!ec)
        fs::rename(tmp, vbs, ec);
    if (ec)
        throw services::Fault(services::FileErrorText(ec.value()), "");
}

} // namespace

std::string AcpEntry(const AcpObject& object)
{
    const double raHours = object.RAhours + object.RAminutes / 60;
    double decDeg = object.DeclinationDegrees + object.DeclinationMinutes / 60;
    if (object.DeclinationDegrees < 0 || object.DeclinationMinutes < 0 ||
        std::signbit(object.DeclinationDegrees))
        decDeg =
            -(std::fabs(object.DeclinationDegrees) + std::fabs(object.DeclinationMinutes) / 60);
    const bool south = decDeg < 0;

    std::string text;
    const auto line = [&](const std::string& value) {
        text += value;
        text += kEol;
    };
    line("!START");
    line(vb::Format(raHours, "00.000000") + " " + (south ? "-" : "+") +
         vb::Format(std::fabs(decDeg), "00.000000"));
    line(vb::Trim(object.OtherID).empty() ? object.ObjectID
                                          : object.OtherID + ", " + object.ObjectID);
    line("located in the constellation of ");
    line(object.constellation);
    line(object.Magnitude ? "and has a magnitude of " + vb::CStr(*object.Magnitude) + "."
                          : std::string("Magnitude is Not Available"));
    line(object.typeDesc ? "The object type for this object is " + *object.typeDesc + "."
                         : std::string("The object type for this object is unknown."));
    return text;
}

std::string RetargetScript(std::string_view script, const std::string& sflPath)
{
    std::string out;
    out.reserve(script.size() + sflPath.size() + 64);
    for (const std::string& line : vb::SplitLines(script)) {
        if (line.starts_with(kOpenListLine))
            out += std::string(kOpenListLine) + "\"" + sflPath + "\", ForReading, False)";
        else
            out += line;
        out += kEol;
    }
    return out;
}

bool AcpInstalled(const std::string& ACPPath)
{
    std::error_code ec;
    return !vb::Trim(ACPPath).empty() && fs::is_directory(ACPPath, ec);
}

AcpScriptResult CreateAcpScript(services::UiPort& ui, const std::string& ACPPath,
                                const data::ProgramDir& dir, const spread::Grid* grid,
                                data::Database* objectDb)
{
    AcpScriptResult result;
    std::error_code ec;
    result.sfl = fs::absolute(dir.File(kSlideShowList), ec);
    result.vbs = fs::absolute(dir.File(kSlideShowScript), ec);
    if (!AcpInstalled(ACPPath)) {
        ui.ShowMessage("Please install it before you run this option", "ACP Not Installed", "I");
        return result;
    }
    std::string list;
    if (!services::Trap(ui, kAcpScriptLocation,
                        [&] { list = ListText(objectDb, grid, result.objects); }))
        return result;

    std::optional<services::OutputFile> out;
    try {
        out.emplace(result.sfl);
    } catch (const services::Fault&) {
        ui.ShowMessage("Invalid Filename was specified", "Script Generation Aborted.", "I");
        return result;
    }
    if (!services::Trap(ui, kAcpScriptLocation, [&] {
            FinishList(*out, result.sfl, list);
            PointScriptAt(dir, result.sfl);
        }))
        return result;
    result.written = true;
    ui.ShowMessage("You can now go to ACP and run the script titled SelvaneSlideShow.vbs in the "
                   "Selvane 2003 directory.",
                   "Script Object List is complete.", "I");
    return result;
}

} // namespace scope
