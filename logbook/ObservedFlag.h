#pragma once
// SelvaneTable.Observed repeats what the logbook knows, so that the spreadsheet can show and
// filter observed objects without reading the logbook. The logbook is the truth: the flag is
// written after the entry and may lag behind it, never run ahead of it. Here are its writers
// that are not routines of the entry window, and the one-click log of the spreadsheet.

#include "astro/ObservingClock.h"
#include "data/Database.h"
#include "data/Preferences.h"
#include "services/UiPort.h"

#include <functional>
#include <optional>
#include <string>

namespace logbook {

// The statement UpdateSelvaneTable runs for an entry's object: by key when the id is blank,
// by MessierNumber for an M id in catalogue "2000", else by id and catalogue.
std::string ObservedUpdateSql(const std::string& objectId, const std::string& catalogId,
                              long long key);

// The object's key (SelvaneTable.ID) an entry stores as DataRec: the row of that id and
// catalogue id; 0 when there is none or no object database is open.
long long ObjectKey(data::Database* objectDb, const std::string& objectId,
                    const std::string& catalogId);

// A quick entry, written in one row of Logbook by InsertQuickEntry. Columns left unset stay
// null; blank texts are stored as one space by the caller, as the logbook keeps them.
struct QuickEntry
{
    std::string ObjectID, Catalog, LogType;
    long long DataRec = 0;
    bool seen = true;
    std::optional<std::string> LocationObserved, EquipmentUsed, OtherEquipment, Transparency,
        Seeing, ShortDescription, ObservationText, Rating;
};

// The one writer of quick entries (the spreadsheet's one-click log, the slide show's log):
// today's date and the time now from clock. The number comes from Logbook's AUTOINCREMENT, so
// no number is ever given twice. Throws the database's error.
void InsertQuickEntry(data::Database& logbook, const astro::Clock& clock, const QuickEntry& entry);

// TMM.AddToLogbook: the one-click log of a spreadsheet row (grid column 3).
// Given: objectId, catalogId, key, the row's ObjectID, Catalog and RecordID; openEntry, the
//   window that takes further details of the new observation (called with its number when
//   the user asks for it).
// Returned: true when the entry was written and its object flagged; the caller then marks
//   the row "X".
bool AddToLogbook(services::UiPort& ui, data::Database& logbook, data::Database& objectDb,
                  const data::Preferences& prefs, const astro::Clock& clock,
                  const std::string& objectId, const std::string& catalogId, long long key,
                  const std::function<void(long long number)>& openEntry = {});

// fixObs_Click: every Observed flag and DataRec rebuilt from the logbook, in one pass.
// Returned: false when the object database is read-only (the user is told so) or a step
//   failed (reported under "ctlSpread.fixObs_Click").
bool fixObs_Click(services::UiPort& ui, data::Database& logbook, data::Database& objectDb,
                  const data::Preferences& prefs);

} // namespace logbook
