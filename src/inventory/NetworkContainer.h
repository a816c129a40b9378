#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

#include "inventory/PciSlotInfo.h"

using MacAddress = std::array<uint8_t, 6>;

// The MAC address of each NIC by PCI address, read once from the host's NIC list on first
// use and kept for the life of the process: a NIC added later has no entry.
class NetworkContainer {
  public:
    static NetworkContainer& Instance();
    ~NetworkContainer();

    // Reads a NIC list printed by a command: two header lines, then one NIC a line with
    // its PCI address in the second column and its MAC in the eighth.
    static std::map<PciAddress, MacAddress> Read(const char* command);

    bool Find(const PciAddress& address, MacAddress& mac) const;

  private:
    NetworkContainer();
    std::map<PciAddress, MacAddress> m_Macs;
};

// The NIC's MAC from the process-wide container, zeros if it has none. The name buffer is
// left as it is: the container knows no interface names. Always true.
bool GetMACInformation(uint16_t domain, uint8_t bus, uint8_t slot, uint8_t function, char* name,
                       size_t nameSize, MacAddress& mac);

// The hardware address of a network interface by its name; false if there is no such
// interface (or no socket to ask through).
bool GetHardwareMacInformation(const char* interfaceName, MacAddress& mac);
