#pragma once

#include "enclosure/EnclosureMap.h"

class CTLRaidData;

// Fills the map from a storage tree once at start-up: every supported enclosure behind the
// SAS ports of the adapters that is not a duplicate becomes a cabinet, numbered from 800 in
// tree order, with its fans, sensors and supplies as the tree shows them now. Empties the
// cabinets first. Gives the number of cabinets added, 0 when the tree is not usable. The
// document's positions are kept.
int SetupEnclosureMap(EnclosureMap& map, CTLRaidData& doc);
