#include "inventory/SystemAdapter.h"

#include <cstdio>
#include <cstring>
#include <exception>

#include "inventory/EsxiNetworkSnapshot.h"
#include "inventory/NetworkContainer.h"
#include "inventory/PciConfigList.h"
#include "runtime/DebugClient.h"

namespace {

constexpr int kAnySub = -1;
constexpr size_t kDriverBytes = 256;
constexpr size_t kInterfaceBytes = 128;
constexpr size_t kMacTextLength = 17;  // "xx:xx:xx:xx:xx:xx"
constexpr uint8_t kMultiFunctionBit = 0x01;
constexpr uint8_t kHeaderLayoutMask = 0x7F;

enum BaseClass : uint8_t {
    kOldDevice = 0x00,
    kStorage = 0x01,
    kNetwork = 0x02,
    kDisplay = 0x03,
    kMultimedia = 0x04,
    kMemory = 0x05,
    kBridge = 0x06,
    kCommunication = 0x07,
    kSystemPeripheral = 0x08,
    kInput = 0x09,
    kProcessor = 0x0B,
    kSerialBus = 0x0C,
    kWireless = 0x0D,
};

// Serial bus controllers of these vendors are storage adapters, whatever their sub class.
constexpr uint16_t kStorageSerialBusVendors[] = {0x10DF, 0x1077, 0x19A2};

constexpr char kScsi[] = "SCSIAdapter";
constexpr char kDisplayName[] = "Display";
constexpr char kSystem[] = "System";

struct ClassRow {
    uint8_t nBase;
    int nSub;  // kAnySub for all
    bool bStorageVendors;
    PciDeviceClass cls;
};

// First match wins; a device that matches no row is "Unknown" without a driver.
constexpr ClassRow kClassRows[] = {
    {kOldDevice, 0x01, false, {kDisplayName, false}},
    {kStorage, 0x00, false, {kScsi, true}},
    {kStorage, 0x04, false, {kScsi, true}},
    {kStorage, 0x06, false, {kScsi, true}},
    {kStorage, 0x07, false, {kScsi, true}},
    {kStorage, 0x80, false, {kScsi, true}},
    {kStorage, 0x01, false, {"hdc", true}},
    {kStorage, 0x02, false, {"fdc", false}},
    {kStorage, 0x08, false, {"Non-Volatile-Memory", true}},
    {kNetwork, kAnySub, false, {"net", true}},
    {kDisplay, kAnySub, false, {kDisplayName, false}},
    {kMultimedia, 0x00, false, {kDisplayName, false}},
    {kMultimedia, 0x01, false, {"MEDIA", false}},
    {kMemory, kAnySub, false, {"MTD", false}},
    {kBridge, kAnySub, false, {kSystem, false}},
    {kSystemPeripheral, kAnySub, false, {kSystem, false}},
    {kProcessor, kAnySub, false, {kSystem, false}},
    {kCommunication, 0x00, false, {"Ports", false}},
    {kCommunication, 0x01, false, {"Ports", false}},
    {kInput, 0x00, false, {"Keyboard", false}},
    {kInput, 0x01, false, {"HIDClass", false}},
    {kInput, 0x02, false, {"Mouse", false}},
    {kSerialBus, kAnySub, true, {kScsi, true}},
    {kSerialBus, 0x00, false, {"1394", false}},
    {kSerialBus, 0x03, false, {"USB", false}},
    {kWireless, 0x00, false, {"Infrared", false}},
    {kWireless, 0x01, false, {"Infrared", false}},
};

bool IsStorageVendor(uint16_t vendorId) {
    for (uint16_t v : kStorageSerialBusVendors) {
        if (v == vendorId)
            return true;
    }
    return false;
}

std::string PciText(const PciAddress& a) {
    char text[32];
    snprintf(text, sizeof(text), "%04x:%02x:%02x.%d", a.nDomain, a.nBus, a.nSlot, a.nFunction);
    return text;
}

// The NIC's MAC addresses: the process-wide list's, then the interface's, else the
// snapshot's. The process-wide list knows no interface names, so the interface stays
// empty and its address is found only through the snapshot.
void ReadMacs(CSystemAdapter& adapter, const CEsxiNetworkSnapshot& snapshot) {
    const PciAddress& a = adapter.m_Pci.address;
    char interfaceName[kInterfaceBytes] = "";
    MacAddress mac{};
    GetMACInformation(a.nDomain, a.nBus, a.nSlot, a.nFunction, interfaceName, sizeof(interfaceName),
                      mac);
    adapter.m_sInterface = interfaceName;
    adapter.m_Mac.assign(mac.begin(), mac.end());

    MacAddress hardware{};
    if (GetHardwareMacInformation(adapter.m_sInterface.c_str(), hardware)) {
        adapter.m_HardwareMac.assign(hardware.begin(), hardware.end());
        return;
    }
    std::string key = PciText(a);
    TLR_TRACE(2,
              "\nCSystemAdapter      : Didn't find MAC, fallback on esxcli based detection for "
              "PCI device %s",
              key.c_str());
    CEsxiNicSnapshot nic;
    if (!snapshot.FindByPciDevice(key.c_str(), nic))
        return;
    TLR_TRACE(2, "\nCSystemAdapter      : Found entry with MAC %s", nic.sMacAddress.c_str());
    if (nic.sMacAddress.size() != kMacTextLength) {
        TLR_TRACE(2, "\nCSystemAdapter      : Empty or invalid MAC Entry");
        return;
    }
    unsigned int b[6] = {};
    sscanf(nic.sMacAddress.c_str(), "%x:%x:%x:%x:%x:%x", &b[0], &b[1], &b[2], &b[3], &b[4], &b[5]);
    adapter.m_HardwareMac.assign(std::begin(b), std::end(b));
}

}  // namespace

PciDeviceClass ClassifyPciDevice(uint8_t baseClass, uint8_t subClass, uint16_t vendorId) {
    for (const ClassRow& row : kClassRows) {
        if (row.nBase != baseClass)
            continue;
        if (row.bStorageVendors ? IsStorageVendor(vendorId)
                                : row.nSub == kAnySub || row.nSub == subClass) {
            return row.cls;
        }
    }
    return {"Unknown", false};
}

bool ScanSystemAdapters(std::vector<CSystemAdapter>& adapters, CPciConfigList& list, void* unused) {
    return ScanSystemAdapters(adapters, list, unused, SystemAdapterSources());
}

bool ScanSystemAdapters(std::vector<CSystemAdapter>& adapters, CPciConfigList& list,
                        void* /*unused*/, const SystemAdapterSources& sources) {
    TLR_TRACE(5, "\nCSystemAdapter      : -> ScanSystemAdapters");
    CEsxiNetworkSnapshot snapshot(sources.pszNicSnapshotCommand);
    snapshot.Populate();
    const size_t count = list.GetCount();
    TLR_TRACE(2, "\nCSystemAdapter      : Found %d PCI devices", static_cast<int>(count));
    for (size_t index = 0; index < count; ++index) {
        PciSlotInfo pci;
        if (!list.GetEntry(index, pci))
            continue;
        if ((pci.nHeaderType & kMultiFunctionBit) || pci.nVendorId == 0 ||
            pci.nVendorId == 0xFFFF || pci.nDeviceId == 0) {
            continue;
        }
        CSystemAdapter adapter;
        char hardwareId[96];
        snprintf(hardwareId, sizeof(hardwareId), "PCI\\VEN_%04x&DEV_%04x&SUBSYS_%08x&REV_%02x",
                 pci.nVendorId, pci.nDeviceId,
                 (pci.nHeaderType & kHeaderLayoutMask) == 0 ? pci.nSubDeviceId : 0u, pci.nRevision);
        adapter.m_sHardwareId = hardwareId;
        adapter.m_Pci = pci;
        adapter.m_sText1 = pci.sText1;
        adapter.m_sDeviceName = pci.sDeviceName;
        adapter.m_sText3 = pci.sText3;

        const PciDeviceClass cls = ClassifyPciDevice(pci.nBaseClass, pci.nSubClass, pci.nVendorId);
        adapter.m_sClassName = cls.pszName;
        const PciAddress& a = pci.address;
        if (cls.bDriver) {
            char driver[kDriverBytes];
            adapter.m_sDriver = GetAdapterDriverName(a.nDomain, a.nBus, a.nSlot, a.nFunction,
                                                     driver, sizeof(driver), sources.pszPciDevices)
                                    ? driver
                                    : pci.sDeviceName;
        }
        const bool isNet = pci.nBaseClass == kNetwork;
        if (isNet)
            ReadMacs(adapter, snapshot);
        const std::string& label = isNet         ? adapter.m_sInterface
                                   : cls.bDriver ? adapter.m_sDriver
                                                 : std::string();
        char name[kDriverBytes + 32];
        snprintf(name, sizeof(name), "%s %04x:%02x:%02x.%d", label.c_str(), a.nDomain, a.nBus,
                 a.nSlot, a.nFunction);
        adapter.m_sName = name;
        TLR_TRACE(3, "\nCSystemAdapter      : Adding PCI adapter \"%s\" (Class: %s)",
                  adapter.m_sHardwareId.c_str(), adapter.m_sClassName.c_str());
        adapters.push_back(std::move(adapter));
    }
    TLR_TRACE(5, "\nCSystemAdapter      : <- ScanSystemAdapters");
    return true;
}

void ListSystemAdapters(std::vector<CSystemAdapter>& adapters) {
    CPciConfigList list;
    {
        CRecursiveLockGuard guard(list.GetLock());
        try {
            list.ScanPciSlots(0);
        } catch (...) {
            // A scan that throws leaves what it found so far.
        }
    }
    ScanSystemAdapters(adapters, list, nullptr);
}

bool IsPciDevice(const CSystemDevice& device) {
    std::string instance = device.m_sInstanceId;
    char* save = nullptr;
    const char* token = instance.empty() ? nullptr : strtok_r(&instance[0], "\\", &save);
    std::string word = token ? token : "";
    return word == "PCI" || word == "B06BDRV";
}
