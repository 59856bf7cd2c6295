#include "logbook/LogSearch.h"

#include "services/Fault.h"
#include "services/Vb.h"

namespace logbook {

namespace vb = services::vb;

namespace {

constexpr const char* kJoinSelect =
    "SELECT SelvaneTable.ObjectID, SelvaneTable.ObjectType, SelvaneTable.Constellation, "
    "Logbook.ObservationNumber, Logbook.Catalog, Logbook.DateObserved, Logbook.TimeObserved, "
    "Logbook.LocationObserved, Logbook.Transparency, Logbook.Seeing, Logbook.EquipmentUsed, "
    "Logbook.Rating, Logbook.ShortDescription, Logbook.ObservationText, Logbook.LogType, "
    "CCDLog.ImageName, CCDLog.ExposureTime, CCDLog.ExposureMode, CCDLog.Telescope, "
    "CCDLog.CCDcamera, CCDLog.FocalDistance, CCDLog.FieldOfView, CCDLog.CoolingRate, "
    "CCDLog.DarkFrame, CCDLog.FlatField, CCDLog.PictureRating, CCDLog.Notes, Logbook.SeenFlag "
    "FROM (CCDLog RIGHT JOIN Logbook ON CCDLog.ObservationNumber = Logbook.ObservationNumber) "
    "INNER JOIN SelvaneTable ON (Logbook.Catalog = SelvaneTable.Catalog) AND (Logbook.ObjectId "
    "= SelvaneTable.ObjectID) Where LogType = '";

// The first n characters of a text (UTF-8 characters, not bytes).
std::string Left(const std::string& text, std::size_t n)
{
    std::size_t i = 0;
    for (std::size_t count = 0; i < text.size() && count < n; ++count) {
        ++i;
        while (i < text.size() && (static_cast<unsigned char>(text[i]) & 0xC0) == 0x80)
            ++i;
    }
    return text.substr(0, i);
}

} // namespace

LogSearchSql BuildLogSearchSql(const LogSearchCriteria& c, const std::string& ltype)
{
    const std::string type = vb::QuoteForSql(ltype);
    std::string head = c.optType || c.optConst
                           ? kJoinSelect + type + "' "
                           : "Select * From Logbook Where LogType = '" + type + "' ";
    std::string before, after; // the conditions in front of and behind the dates
    std::string& sql = before;
    if (c.optObjectID) {
        std::string id = c.txtObjectID;
        if (id.empty() || id.back() != '*')
            id += "*";
        sql += " and SelvaneTable.ObjectID like '" + id + "' ";
    }
    if (c.optSite)
        sql += " and LocationObserved = '" + vb::QuoteForSql(c.cboSite) + "' ";
    if (!vb::Trim(c.txtNotes).empty())
        sql += " and ObservationText Like '*" + vb::QuoteForSql(c.txtNotes) + "*' ";
    if (c.optEquipment)
        sql += " and EquipmentUsed = '" + vb::QuoteForSql(c.cboEquip) + "' ";
    std::string dates, datesTight;
    if (c.optDate) {
        const std::string from = "#" + vb::DateForSql(c.DTPicker1) + "#";
        const std::string to = "#" + vb::DateForSql(c.DTPicker2) + "#";
        dates = " and DateObserved >= " + from + " and DateObserved <= " + to;
        datesTight = " and DateObserved >=" + from + " and DateObserved <=" + to;
    }
    if (c.optType)
        after += " and SelvaneTable.ObjectType = '" + Left(c.cboType, 5) + "' ";
    if (c.optConst)
        after += " and SelvaneTable.Constellation = '" + Left(c.cboCon, 3) + "' ";
    if (c.optSeen == SeenChoice::Seen)
        after += " and Logbook.SeenFlag = -1";
    else if (c.optSeen == SeenChoice::NotSeen)
        after += " and Logbook.SeenFlag <> -1";
    return {head + before + dates + after, head + before + datesTight + after};
}

LogSearchLists LoadLogSearchLists(services::UiPort& ui, data::Database* logbook,
                                  data::Database* objectDb)
{
    LogSearchLists lists;
    const std::string location = std::string(LogSearchLocation) + ".Form_Load";
    services::Trap(ui, location, [&] {
        if (!logbook)
            return;
        auto rs = logbook->OpenRecordset("Select * From Equipment", data::Snapshot);
        auto item = rs.Fields("Equipment");
        for (; !rs.Eof(); rs.MoveNext())
            lists.cboEquip.push_back(item.Value());
    });
    services::Trap(ui, location, [&] {
        if (!logbook)
            return;
        auto rs = logbook->OpenRecordset("Select * from ObservingSites", data::Snapshot);
        auto name = rs.Fields("ProfileName");
        for (; !rs.Eof(); rs.MoveNext())
            lists.cboSite.push_back(name.Value());
    });
    services::Trap(ui, location, [&] {
        if (objectDb)
            lists.cboType = data::LoadFilterLookups(*objectDb).types;
    });
    lists.cboCon = data::ConstellationList();
    return lists;
}

} // namespace logbook
