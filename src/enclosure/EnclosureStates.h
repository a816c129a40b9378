#pragma once

#include <cstdint>
#include <vector>

#include "enclosure/EnclosureMap.h"

class CommandRecord;
class CTLRaidData;

// Works out from the stored supply states whether a cabinet's power supplies are redundant:
// two or more, and none with a status other than 1 (a supply without a record counts as
// healthy). A change against the cabinet's PSRedundancy is stored and told by bChanged.
// Gives 0 when there are no cabinets at all, else 1; both flags are false for an unknown
// cabinet.
int EnclosurePSRedundancy(EnclosureMap& map, uint32_t nCabinet, bool& bRedundant, bool& bChanged);

// Holds a fresh storage tree against the map: every fan, sensor and supply that the tree
// shows and the map knows gets its new state stored, and each change of a state appends one
// event record (OC, OI unless 0, CA, ST) to events; a change of a cabinet's supply
// redundancy, checked behind every supply, appends one without OI. Cabinet numbers are
// counted afresh from 800 on every port, one for every enclosure, accepted at set-up or not.
// Objects are only looked up, never added. A multiplexer that is not ready skips the walk.
// Gives 1, or 0 after an adapter without a name; the events up to then stay. The document's
// positions are kept.
int ReadEnclosureStates(EnclosureMap& map, std::vector<CommandRecord>& events, CTLRaidData& doc);
