#include "storage/AdapterDeviceId.h"

#include <cstdio>
#include <cstdlib>

#include "storage/KeepPos.h"
#include "storage/TLRaidData.h"

namespace {

constexpr uint8_t kNoAddress = 255;

long ChildNumber(CXmlDoc& doc) {
    return strtol(doc.GetChildData().c_str(), nullptr, 10);
}

// The device id of the adapter at the main position. Its children are searched forward from
// the child position, in this order, so that elements in front of it aren't found.
bool DeviceIdAtMain(CXmlDoc& adapter, std::string& id) {
    if (!adapter.FindChildElem("PCIBus"))
        return false;
    auto bus = static_cast<uint8_t>(ChildNumber(adapter));
    if (!adapter.FindChildElem("PCIDevice"))
        return false;
    auto device = static_cast<uint8_t>(ChildNumber(adapter));
    uint8_t function = 0;
    if (adapter.FindChildElem("PCIFunction"))
        function = static_cast<uint8_t>(ChildNumber(adapter));
    uint16_t segment = 0;
    if (adapter.FindChildElem("PCISegment"))
        segment = static_cast<uint16_t>(ChildNumber(adapter));
    if (bus == kNoAddress && device == kNoAddress && function == kNoAddress)
        return false;

    char text[96];
    if (segment != 0) {
        snprintf(text, sizeof(text), "TYPE_PCI&BUS_%d&DEV_%d&FUNC_%d&SEG_%d", bus, device, function,
                 segment);
    } else {
        snprintf(text, sizeof(text), "TYPE_PCI&BUS_%d&DEV_%d&FUNC_%d", bus, device, function);
    }
    id = text;
    return true;
}

bool FindAdapter(CXmlDoc& tree, uint32_t& nIndex, const std::string& sDeviceId,
                 bool bCountBatteries) {
    CKeepPos keep(tree);
    if (!tree.FindElem(kStorageTreeRoot) || !tree.IntoElem() || !tree.FindElem("System") ||
        !tree.IntoElem())
        return false;
    uint32_t nCount = 0;
    while (tree.FindElem("Adapter")) {
        if (bCountBatteries && tree.FindChildElem("Battery"))
            ++nCount;
        std::string id;
        DeviceIdAtMain(tree, id);
        if (id == sDeviceId) {
            nIndex = nCount;
            return true;
        }
        if (!bCountBatteries)
            ++nCount;
    }
    return false;
}

}  // namespace

bool GetAdapterDeviceId(CXmlDoc& adapter, std::string& id) {
    CKeepPos keep(adapter);
    if (!adapter.FindElem("Adapter"))
        return false;
    return DeviceIdAtMain(adapter, id);
}

bool FindAdapterIndex(CXmlDoc& tree, uint32_t& nIndex, const std::string& sDeviceId) {
    return FindAdapter(tree, nIndex, sDeviceId, false);
}

bool FindBatteryAdapterIndex(CXmlDoc& tree, uint32_t& nIndex, const std::string& sDeviceId) {
    return FindAdapter(tree, nIndex, sDeviceId, true);
}
