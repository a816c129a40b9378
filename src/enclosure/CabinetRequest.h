#pragma once

#include <cstdint>
#include <vector>

#include "enclosure/EnclosureMap.h"

class CommandRecord;

// Answers a record addressed to an enclosure's cabinet (its CA) from the map alone: counts,
// states, locations, names and thresholds of the cabinet's fans, sensors and supplies, and its
// identity texts. Gives 1 when the record was dealt with, 0 for an unknown cabinet (status 20)
// or a code the cabinet does not know (status 1). Code 1296 may store a new redundancy.
uint32_t HandleCabinetRequest(EnclosureMap& map, CommandRecord& record);

// The server's list of its cabinets: two bytes per number, low byte first. Without cabinets
// the record gets no data and status 0.
void AnswerCabinetList(const EnclosureMap& map, CommandRecord& record);

// The cabinet numbers for the switch, in a process-wide array of at most 128 that each call
// overwrites. *pCount is always written; *ppList only when there are cabinets. Gives 1.
int GetServerSeList(const EnclosureMap& map, uint32_t** ppList, uint8_t* pCount);

// What a row of the cabinet table holds OI against before it answers.
enum class CabinetBound {
    kNone,
    kFans,
    kTempSensors,
    kTempSensorsAbove,  // OI equal to the count passes, and finds no record
    kPowerSupplies,
};

// How a row of the cabinet table is addressed: its code, the one OE it is for when
// bBySelector, and the bound of OI.
struct CabinetRowAddress {
    uint32_t nOc = 0;
    bool bBySelector = false;
    uint32_t nOe = 0;
    CabinetBound bound = CabinetBound::kNone;
};

// The addressing of every row of the cabinet table, in its order.
std::vector<CabinetRowAddress> CabinetRowAddresses();
