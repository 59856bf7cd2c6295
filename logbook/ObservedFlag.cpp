#include "logbook/ObservedFlag.h"

#include "services/Fault.h"
#include "services/Vb.h"

namespace logbook {

namespace vb = services::vb;

std::string ObservedUpdateSql(const std::string& objectId, const std::string& catalogId,
                              long long key)
{
    const std::string id = vb::UCase(objectId);
    if (vb::Trim(id).empty())
        return "Update SelvaneTable Set Observed = True  Where ID = " + std::to_string(key);
    if (id[0] != 'M' || catalogId != "2000")
        return "Update SelvaneTable Set Observed = True Where ObjectID = '" + vb::QuoteForSql(id) +
               "' and Catalog = '" + catalogId + "'";
    return "Update SelvaneTable Set Observed = True  Where MessierNumber = " + id.substr(1) +
           " and Catalog = '" + catalogId + "'";
}

long long ObjectKey(data::Database* objectDb, const std::string& objectId,
                    const std::string& catalogId)
{
    if (!objectDb)
        return 0;
    auto rs = objectDb->OpenRecordset("Select * From SelvaneTable Where ObjectID ='" +
                                          vb::QuoteForSql(objectId) + "' and Catalog = '" +
                                          catalogId + "'",
                                      data::Snapshot);
    return rs.Eof() ? 0 : rs.Fields("ID").Long();
}

void InsertQuickEntry(data::Database& logbook, const astro::Clock& clock, const QuickEntry& entry)
{
    const astro::LocalDateTime now = clock.Now();
    std::string columns =
        "ObjectID, Catalog, DateObserved, TimeObserved, SeenFlag, DataRec, LogType";
    std::string values =
        "'" + vb::QuoteForSql(entry.ObjectID) + "', '" + vb::QuoteForSql(entry.Catalog) + "', #" +
        vb::DateForSql(QDate(now.year, now.month, now.day)) + "#, '" +
        vb::LongTime(QTime(now.hour, now.minute, now.second)) + "', " + (entry.seen ? "-1" : "0") +
        ", " + std::to_string(entry.DataRec) + ",'" + vb::QuoteForSql(entry.LogType) + "'";
    const auto add = [&](const char* column, const std::optional<std::string>& text) {
        if (!text)
            return;
        columns += std::string(", ") + column;
        values += ", '" + vb::QuoteForSql(*text) + "'";
    };
    add("LocationObserved", entry.LocationObserved);
    add("EquipmentUsed", entry.EquipmentUsed);
    add("OtherEquipment", entry.OtherEquipment);
    add("Transparency", entry.Transparency);
    add("Seeing", entry.Seeing);
    add("ShortDescription", entry.ShortDescription);
    add("ObservationText", entry.ObservationText);
    add("Rating", entry.Rating);
    logbook.Execute("Insert Into Logbook (" + columns + ") values(" + values + ")");
}

bool AddToLogbook(services::UiPort& ui, data::Database& logbook, data::Database& objectDb,
                  const data::Preferences& prefs, const astro::Clock& clock,
                  const std::string& objectId, const std::string& catalogId, long long key,
                  const std::function<void(long long number)>& openEntry)
{
    constexpr const char* title = "Logbook Add";
    if (vb::Trim(prefs.Ltype).empty()) {
        ui.ShowMessage("Please go to MISC preferences and specify the log type.  Normally the log "
                       "type should be  DEFAULT",
                       title, "I");
        return false;
    }
    if (!ui.Ask("Add this object to your " + prefs.Ltype + " personal logbook ?", title, false))
        return false;
    const bool added = services::Trap(ui, "TMM.AddToLogbook", [&] {
        InsertQuickEntry(
            logbook, clock,
            {.ObjectID = objectId, .Catalog = catalogId, .LogType = prefs.Ltype, .DataRec = key});
        objectDb.Execute("Update SelvaneTable Set Observed = True Where ID = " +
                         std::to_string(key));
    });
    if (!added)
        return false;
    if (ui.Ask("Would you like to add additional information to this log entry?", title, false)) {
        long long number = 0;
        services::Trap(ui, "TMM.AddToLogbook", [&] {
            auto rs =
                logbook.OpenRecordset("Select max(ObservationNumber) From Logbook", data::Snapshot);
            number = rs.Eof() ? 0 : rs.Fields(0).Long();
        });
        if (number != 0 && openEntry)
            openEntry(number);
    }
    return true;
}

bool fixObs_Click(services::UiPort& ui, data::Database& logbook, data::Database& objectDb,
                  const data::Preferences& prefs)
{
    constexpr const char* title = "Update Database";
    if (prefs.UseCd) {
        ui.ShowMessage("In order to inform the Selvane database of your observations, you must "
                       "use the database on the hard drive.  Selvane cannot update the database "
                       "on the CD ROM.",
                       title, "I");
        return false;
    }
    ui.ShowMessage("This option will now read through your logbook and update the selvane "
                   "database as to which objects you have observed.   This operation will update "
                   "the Selvane Database as it resides on your hard disk.",
                   title, "I");
    ui.Busy(services::BusyKind::Working);
    const bool done = services::Trap(ui, "ctlSpread.fixObs_Click", [&] {
        objectDb.Execute("Update SelvaneTable Set Observed = 0 where Observed = -1");
        auto rs = logbook.OpenRecordset("Select * from Logbook");
        auto id = rs.Fields("ObjectID"), catalog = rs.Fields("Catalog"),
             dataRec = rs.Fields("DataRec");
        for (; !rs.Eof(); rs.MoveNext()) {
            const std::string where = " Where ObjectId = '" + vb::QuoteForSql(id.Text()) +
                                      "' and Catalog = '" + catalog.Value() + "'";
            objectDb.Execute("Update SelvaneTable Set Observed = -1" + where);
            auto found =
                objectDb.OpenRecordset("Select ID From SelvaneTable" + where, data::Snapshot);
            if (found.Eof())
                continue;
            const long long key = found.Fields("ID").Long();
            // A DataRec that is already right is not written again.
            if (key == dataRec.Long())
                continue;
            rs.Edit();
            dataRec.Set(key);
            rs.Update();
        }
    });
    ui.EndBusy();
    return done;
}

} // namespace logbook
