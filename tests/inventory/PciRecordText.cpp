#include "inventory/PciRecordText.h"

#include <cstdio>

namespace {

std::string Format(const char* format, uint32_t value) {
    char text[64];
    snprintf(text, sizeof(text), format, value);
    return text;
}

}  // namespace

std::vector<std::string> PciRecordLines(const PciRecordValues& s) {
    char address[32];
    snprintf(address, sizeof(address), "0000:%02x:%02x.%x", s.nBus, s.nSlot, s.nFunction);
    std::vector<std::string> lines = {
        address,
        std::string("   Address: ") + address,
        "   Segment: 0x0000",
        Format("   Bus: 0x%02x", s.nBus),
        Format("   Slot: 0x%02x", s.nSlot),
        Format("   Function: 0x%x", s.nFunction),
        "   VMkernel Name: vmhba2",
        "   Device Name: " + s.sDeviceName,
        "   Vendor Name: Halvard Storage",
        "   Current Owner: VMkernel",
        Format("   Vendor ID: 0x%04x", s.nVendorId),
        Format("   Device ID: 0x%04x", s.nDeviceId),
        Format("   SubVendor ID: 0x%04x", s.nSubVendorId),
        Format("   SubDevice ID: 0x%04x", s.nSubDeviceId),
        Format("   Device Class: 0x%04x", s.nClass),
        "   Device Class Name: RAID bus controller",
        "   Programming Interface: 0x01",
        "   Revision ID: 0x02",
        "   Interrupt Line: 0x0e",
        "   IRQ: 0x0e",
        "   Interrupt Vector: 0x2e",
        "   PCI Pin: 0x03",
        "   Spawned Bus: 0x00",
        "   Flags: 0x3219",
        "   Module ID: 0x22",
        "   Module Name: tlraid_sas",
        "   Chassis: 0x0",
        Format("   Legacy Interrupt: %u", s.nInterrupt),
        "   Slot Description: Slot 4",
    };
    if (s.nLines == 34) {
        lines.insert(lines.end(), {"   Passthru Capable: true",
                                   "   Parent Device:", "   Dependent Device: PCI 0:24:0:0",
                                   "   Reset Method: Bridge reset", "   FPT Sharable: true"});
    } else {
        const char* tail[] = {"   Device Layer Bus Address: s00000018.00",
                              "   Passthru Capable: true",
                              "   Parent Device: PCI 0:0:3:0",
                              "   Dependent Device: PCI 0:24:0:0",
                              "   Reset Method: Function reset",
                              "   FPT Sharable: true",
                              "   NUMA Node: 0",
                              "   SR-IOV Capable: false",
                              "   Extended Device ID: 0x10e2",
                              "   Hardware Label: Slot 4"};
        for (size_t i = 0; lines.size() < s.nLines && i < sizeof(tail) / sizeof(tail[0]); ++i)
            lines.push_back(tail[i]);
        while (lines.size() > s.nLines)
            lines.pop_back();
    }
    for (std::string& line : lines)
        line += "\n";
    return lines;
}

std::string PciRecordText(const PciRecordValues& values) {
    std::string text;
    for (const std::string& line : PciRecordLines(values))
        text += line;
    return text + "\n";
}
