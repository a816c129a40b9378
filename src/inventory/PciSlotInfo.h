#pragma once

#include <cstdint>
#include <string>

// The key of a PCI device: domain, bus, slot, function, ordered in that sequence. An address
// with bus, slot and function all kAnyNumber stands for any device: it is neither less nor greater
// than another address.
struct PciAddress {
    uint16_t nDomain = 0;
    uint8_t nBus = 0;
    uint8_t nSlot = 0;
    uint8_t nFunction = 0;

    static constexpr uint8_t kAnyNumber = 0xFF;

    bool IsAny() const {
        return nBus == kAnyNumber && nSlot == kAnyNumber && nFunction == kAnyNumber;
    }
    bool operator<(const PciAddress& other) const;
};

// One device of the PCI list, as the host's device list reports it.
struct PciSlotInfo {
    static constexpr uint32_t kNoInterrupt = 0xFFFFFFFF;

    PciAddress address;
    uint16_t nVendorId = 0;
    uint16_t nDeviceId = 0;
    uint8_t nRevision = 0;
    uint8_t nProgInterface = 0;
    uint8_t nSubClass = 0;
    uint8_t nBaseClass = 0;
    uint8_t nHeaderType = 0;  // the list doesn't tell it: always 0
    uint16_t nSubVendorId = 0;
    uint16_t nSubDeviceId = 0;
    uint8_t nExtra1 = 0;  // two further numbers of the record, carried along
    uint8_t nExtra2 = 0;
    uint32_t nInterrupt = 0;  // 255 in the record is kNoInterrupt
    std::string sText1;
    std::string sDeviceName;  // from Adapter.ini, or as the host names it
    std::string sText3;
};
