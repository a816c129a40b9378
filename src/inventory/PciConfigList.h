#pragma once

#include <cstddef>
#include <map>
#include <string>

#include "inventory/PciSlotInfo.h"
#include "runtime/RecursiveLock.h"

class PciParser;

// The host's PCI devices by address, as its PCI list command reports them, named from
// Adapter.ini where it knows them. Callers take the lock around each access.
class CPciConfigList {
  public:
    // The host's command and Adapter.ini.
    CPciConfigList();
    // Another command and profile file, for tests.
    CPciConfigList(std::string command, std::string adapterIni);
    CPciConfigList(const CPciConfigList&) = delete;
    CPciConfigList& operator=(const CPciConfigList&) = delete;

    // Runs the command and adds every record it reports; true if the command started.
    bool ScanPciSlots(int unused);

    CRecursiveLock& GetLock() { return m_Lock; }
    size_t GetCount();
    // The entry at an index in address order, stepping from the first; false past the end.
    bool GetEntry(size_t index, PciSlotInfo& out);
    bool Find(const PciAddress& address, PciSlotInfo& out);

  private:
    void AddRecord(const PciParser& parser);
    // The name that Adapter.ini gives the device, empty if none (or no file).
    std::string IniDeviceName(uint16_t vendorId, uint16_t subVendorId, uint16_t deviceId,
                              uint16_t subDeviceId) const;

    std::string m_sCommand;
    std::string m_sAdapterIni;
    std::map<PciAddress, PciSlotInfo> m_Map;
    CRecursiveLock m_Lock;
};
