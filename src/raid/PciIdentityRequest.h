#pragma once

#include <vector>

#include "inventory/SystemAdapter.h"

class CommandRecord;
class CTLRaidData;

// Fills a vector with the host's system adapters.
using SystemAdapterLister = void (*)(std::vector<CSystemAdapter>&);

// Answers the PCI identity of a RAID adapter: the request's OE selects the device id (0),
// vendor id (1), subsystem id (2) or subsystem vendor id (3) of the system adapter at the
// adapter document's PCI address, taken from a fresh scan of the host. Any OE above 3
// answers status 1; an address or adapter not found, or a device that is no PCI device,
// status 19. The adapter document is the request's adapter OI, already found.
void AnswerPciIdentity(CommandRecord& record, CTLRaidData& adapter,
                       SystemAdapterLister listAdapters = ListSystemAdapters);
