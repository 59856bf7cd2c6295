#pragma once
// The object the spreadsheet leaves for the logbook windows before opening one: the current
// object's id, catalogue id and key (SelvaneTable.ID), and an observation number to be shown
// on opening.

#include <string>

namespace data {

struct CurrentObject
{
    std::string id;
    std::string catalogId;
    long long key = 0;
    long long observationNumber = 0; // 0: none
};

} // namespace data
