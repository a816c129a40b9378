#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "inventory/InventoryHost.h"
#include "inventory/PciSlotInfo.h"

class CPciConfigList;

class CPnpDevice {};

// A device of the host with the names it is known by.
class CSystemDevice : public CPnpDevice {
  public:
    virtual ~CSystemDevice() = default;

    // "<enumerator>\<device>\<instance>" where the platform gives one; the PCI scan has
    // none to give and leaves it empty.
    std::string m_sInstanceId;
    std::string m_sHardwareId;  // "PCI\VEN_%04x&DEV_%04x&SUBSYS_%08x&REV_%02x"
    std::string m_sClassName;
    std::string m_sName;  // "<interface or driver> <address>"
    std::string m_sDriver;
    std::string m_sInterface;
    PciSlotInfo m_Pci;
    std::string m_sText1;
    std::string m_sDeviceName;
    std::string m_sText3;
    std::vector<uint8_t> m_Mac;          // from the process-wide NIC list (net only)
    std::vector<uint8_t> m_HardwareMac;  // from the interface or the NIC snapshot; may be empty
};

class CSystemAdapter : public CSystemDevice {};

// The class a PCI device is listed under, and whether its driver is looked up.
struct PciDeviceClass {
    const char* pszName;
    bool bDriver;
};
PciDeviceClass ClassifyPciDevice(uint8_t baseClass, uint8_t subClass, uint16_t vendorId);

// Where a scan of system adapters reads the NIC snapshot and the drivers.
struct SystemAdapterSources {
    const char* pszNicSnapshotCommand = inventory_host::kNicSnapshotCommand;
    const char* pszPciDevices = inventory_host::kPciDevices;
};

// Appends an adapter for each usable device of the list: class, hardware id, driver and,
// for NICs, MAC addresses. No lookup that fails stops the scan.
bool ScanSystemAdapters(std::vector<CSystemAdapter>& adapters, CPciConfigList& list, void* unused);
bool ScanSystemAdapters(std::vector<CSystemAdapter>& adapters, CPciConfigList& list, void* unused,
                        const SystemAdapterSources& sources);

// The host's system adapters from a fresh PCI list.
void ListSystemAdapters(std::vector<CSystemAdapter>& adapters);

// True when the device's enumerator, the instance text up to its first backslash, is
// "PCI" or "B06BDRV", exactly.
bool IsPciDevice(const CSystemDevice& device);

// The driver that the host's PCI device file names for a device (the domain plays no
// part); false with an empty buffer when it names none.
bool GetAdapterDriverName(uint16_t domain, uint8_t bus, uint8_t slot, uint8_t function,
                          char* buffer, size_t size);
bool GetAdapterDriverName(uint16_t domain, uint8_t bus, uint8_t slot, uint8_t function,
                          char* buffer, size_t size, const char* devicesPath);
