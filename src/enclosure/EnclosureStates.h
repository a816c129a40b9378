#pragma once

#include <cstdint>

#include "enclosure/EnclosureMap.h"

// Works out from the stored supply states whether a cabinet's power supplies are redundant:
// two or more, and none with a status other than 1 (a supply without a record counts as
// healthy). A change against the cabinet's PSRedundancy is stored and told by bChanged.
// Gives 0 when there are no cabinets at all, else 1; both flags are false for an unknown
// cabinet.
int EnclosurePSRedundancy(EnclosureMap& map, uint32_t nCabinet, bool& bRedundant, bool& bChanged);
