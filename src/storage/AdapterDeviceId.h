#pragma once

#include <string>

#include "xml/XmlDoc.h"

// The device id of an adapter document's PCI address, as clients name adapters:
// "TYPE_PCI&BUS_b&DEV_d&FUNC_f", with "&SEG_s" behind it for a segment other than 0.
// False, and the text untouched, without PCIBus or PCIDevice or for the address 255.255.255.
bool GetAdapterDeviceId(CXmlDoc& adapter, std::string& id);
