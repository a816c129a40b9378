#pragma once

#include <cstdint>
#include <string>

#include "xml/XmlDoc.h"

// The device id of an adapter document's PCI address, as clients name adapters:
// "TYPE_PCI&BUS_b&DEV_d&FUNC_f", with "&SEG_s" behind it for a segment other than 0.
// False, and the text untouched, without PCIBus or PCIDevice or for the address 255.255.255.
bool GetAdapterDeviceId(CXmlDoc& adapter, std::string& id);

// The index among the adapters of a whole tree of the one with that device id; an adapter
// without a usable address has the empty id. False, and the index untouched, if none has it.
bool FindAdapterIndex(CXmlDoc& tree, uint32_t& nIndex, const std::string& sDeviceId);

// The same walk, but the index is the number of adapters with a battery up to and including
// the one found. The battery is looked for first, and the address is read from behind it.
bool FindBatteryAdapterIndex(CXmlDoc& tree, uint32_t& nIndex, const std::string& sDeviceId);
