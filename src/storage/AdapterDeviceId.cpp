#include "storage/AdapterDeviceId.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "storage/KeepPos.h"

namespace {

constexpr uint8_t kNoAddress = 255;

long ChildNumber(CXmlDoc& doc) {
    return strtol(doc.GetChildData().c_str(), nullptr, 10);
}

}  // namespace

bool GetAdapterDeviceId(CXmlDoc& adapter, std::string& id) {
    CKeepPos keep(adapter);
    if (!adapter.FindElem("Adapter"))
        return false;
    // The children are searched forward only, in this order.
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
