#pragma once
// The logbook search (frmLogSearch) without its widgets: the criteria boxes, the two statements
// a search builds at once, and the lists its boxes offer. The first statement is the log entry
// window's grid query; the second, which differs only in its date literals, goes to the other
// users of the search. A search always stays within the current log type (Ltype).
//
// Texts go into the statements as the boxes hold them: the site, notes and equipment quoted,
// the object id, type and constellation not. A search on the object id needs the join that only
// a type or constellation criterion brings; without it the database refuses the statement.

#include "data/Database.h"
#include "data/ObjectFilter.h"
#include "services/UiPort.h"

#include <QDate>

#include <string>
#include <vector>

namespace logbook {

inline constexpr const char* LogSearchLocation = "frmLogSearch";

// The pair of options optSeen: neither, the first (seen) or the second (not seen).
enum class SeenChoice {
    Any,
    Seen,
    NotSeen,
};

struct LogSearchCriteria
{
    bool optObjectID = false;
    std::string txtObjectID;
    bool optSite = false;
    std::string cboSite;
    std::string txtNotes; // searched when not blank
    bool optEquipment = false;
    std::string cboEquip;
    bool optDate = false;
    QDate DTPicker1, DTPicker2; // from, to
    bool optType = false;
    std::string cboType; // its first 5 characters are the type code
    bool optConst = false;
    std::string cboCon; // its first 3 characters are the constellation
    SeenChoice optSeen = SeenChoice::Any;
};

struct LogSearchSql
{
    std::string first;  // the entry window's grid query
    std::string second; // the same without the blank behind the date comparisons
};

// cmdFind_Click's statements for the criteria within log type ltype.
LogSearchSql BuildLogSearchSql(const LogSearchCriteria& criteria, const std::string& ltype);

// What the boxes offer on opening.
struct LogSearchLists
{
    std::vector<std::string> cboEquip;        // Equipment's items
    std::vector<std::string> cboSite;         // ObservingSites' ProfileName
    std::vector<data::ObjectTypeRow> cboType; // the object types, code and description
    std::vector<std::string> cboCon;          // "Ori-Orion", ...
};

// Fills the lists; a table that cannot be read leaves its list empty, reported under
// "frmLogSearch.Form_Load".
LogSearchLists LoadLogSearchLists(services::UiPort& ui, data::Database* logbook,
                                  data::Database* objectDb);

} // namespace logbook
