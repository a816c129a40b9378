#pragma once

#include <cstdint>

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
