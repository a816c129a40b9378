#pragma once

#include <string>

#include "enclosure/EnclosureMap.h"

// Small storage trees with enclosures, written inline, and the map as one line of text.

// <Enclosure Name=".."> with the children given as markup.
std::string Encl(const std::string& name, const std::string& children);
// The identity children; an empty argument leaves its element out.
std::string Identity(const std::string& vendor, const std::string& product,
                     const std::string& chassis, const std::string& serial);
std::string Port(const std::string& type, int nr, const std::string& enclosures);
// An adapter with its ports under Ports, or, with bare, straight under it.
std::string Adapter(const std::string& name, int nr, const std::string& ports, bool bare = false);

// Each cabinet in key order as "nr ctr/encl fans/sensors/supplies product|chassis|vendor|serial;".
std::string Cabinets(const EnclosureMap& map);

// The map of the sample tree with cabinets: the VK16 (800) and the VK12 T2 (801).
EnclosureMap SampleCabinets();
