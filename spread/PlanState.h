#pragma once
// The observing plan of each spreadsheet tab, as the application state holds it: up to 500
// entries per tab, in the order of tagging. The grid's "pln" marks are derived from it.

#include "spread/PlanFile.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace spread {

inline constexpr int kPlanTabs = 5; // the spreadsheet tabs 0 to 4

// The plan of one spreadsheet tab.
struct TabPlan
{
    bool PlanActive = false;         // the tab is in plan mode ("RECORD MODE")
    std::vector<PlanEntry> entries;  // the entries in use, in the order of tagging
    std::string PlanFile;            // the file name last opened for the tab

    int PlanCount() const { return static_cast<int>(entries.size()); }
};

using PlanTabs = std::array<TabPlan, kPlanTabs>;

// The "pln" cell of a row with this record id: "X" when the plan holds it, "X*" when its entry
// has a note, " " otherwise. Every load marks its rows with it.
std::string_view PlanMark(const TabPlan& plan, double recordId);

} // namespace spread
