#pragma once

#include <cstdint>
#include <string>
#include <vector>

// A device record of the host's PCI list, written the way the host prints it.
struct PciRecordValues {
    uint32_t nBus = 0x18;
    uint32_t nSlot = 0;
    uint32_t nFunction = 0;
    uint32_t nVendorId = 0x1000;
    uint32_t nDeviceId = 0x10E2;
    uint32_t nSubVendorId = 0x1B4E;
    uint32_t nSubDeviceId = 0x1234;
    uint32_t nClass = 0x0104;
    std::string sDeviceName = "SAS RAID-on-Chip";
    uint32_t nInterrupt = 14;
    size_t nLines = 36;  // 34 to 38 make a record; others are refused
};

// The record's lines, each with its newline.
std::vector<std::string> PciRecordLines(const PciRecordValues& values);
// The lines joined, and a blank line behind.
std::string PciRecordText(const PciRecordValues& values);
