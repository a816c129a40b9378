// The host's PCI list: records by length and position, names from Adapter.ini, the reads.
#include <gtest/gtest.h>

#include <cstdio>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "inventory/PciConfigList.h"
#include "inventory/PciParser.h"
#include "inventory/SystemAdapter.h"
#include "support/Process.h"
#include "support/SandboxHost.h"
#include "support/TempDir.h"

namespace {

// A device record of the host's PCI list, written the way the host prints it, a blank line behind.
struct PciRecordValues {
    uint32_t nBus = 0x18;
    uint32_t nSlot = 0;
    uint32_t nVendorId = 0x1000;
    uint32_t nDeviceId = 0x10E2;
    uint32_t nSubDeviceId = 0x1234;
    std::string sDeviceName = "SAS RAID-on-Chip";
    uint32_t nInterrupt = 14;
    size_t nLines = 36;  // 34 to 38 make a record; others are refused
};

std::string Format(const char* format, uint32_t value) {
    char text[64];
    snprintf(text, sizeof(text), format, value);
    return text;
}

// The record's lines, each with its newline: the record as the host prints it, with the
// test's values in their lines, cut to its length. Records of 34 lines have a tail of their own.
std::vector<std::string> PciRecordLines(const PciRecordValues& s) {
    std::istringstream text(
        ReadWholeFile(SourcePath(s.nLines == 34 ? "tests/inventory/testdata/pci-record-34.txt"
                                                : "tests/inventory/testdata/pci-record.txt")));
    char address[16];
    snprintf(address, sizeof(address), "0000:%02x:%02x.0", s.nBus, s.nSlot);
    const std::pair<const char*, std::string> values[] = {
        {"0000:", address},
        {"   Address:", std::string("   Address: ") + address},
        {"   Bus:", Format("   Bus: 0x%02x", s.nBus)},
        {"   Slot:", Format("   Slot: 0x%02x", s.nSlot)},
        {"   Device Name:", "   Device Name: " + s.sDeviceName},
        {"   Vendor ID:", Format("   Vendor ID: 0x%04x", s.nVendorId)},
        {"   Device ID:", Format("   Device ID: 0x%04x", s.nDeviceId)},
        {"   SubDevice ID:", Format("   SubDevice ID: 0x%04x", s.nSubDeviceId)},
        {"   Legacy Interrupt:", Format("   Legacy Interrupt: %u", s.nInterrupt)}};
    std::vector<std::string> lines;
    for (std::string line; lines.size() < s.nLines && std::getline(text, line);) {
        for (const auto& [prefix, value] : values) {
            if (line.rfind(prefix, 0) == 0)
                line = value;
        }
        lines.push_back(line + "\n");
    }
    return lines;
}

std::string PciRecordText(const PciRecordValues& values) {
    std::string text;
    for (const std::string& line : PciRecordLines(values))
        text += line;
    return text + "\n";
}

class PciList : public ::testing::Test {
  protected:
    // A list over a file of records, read through cat, named from the test's Adapter.ini.
    CPciConfigList& Scan(const std::string& output, bool withIni = true) {
        std::string listPath = m_Dir.Write("pci-list.txt", output);
        std::string iniPath = withIni ? SourcePath("tests/inventory/testdata/Adapter.ini")
                                      : m_Dir.Path() + "/missing.ini";
        m_pList = std::make_unique<CPciConfigList>("cat " + listPath, iniPath);
        EXPECT_TRUE(m_pList->ScanPciSlots(0));
        return *m_pList;
    }
    PciSlotInfo Entry(size_t index) {
        PciSlotInfo info;
        EXPECT_TRUE(m_pList->GetEntry(index, info)) << index;
        return info;
    }

    TempDir m_Dir;
    std::unique_ptr<CPciConfigList> m_pList;
};

TEST(PciParserRecord, LengthDecidesTheTail) {
    // Lines, parsed, line 29 and the first of the tail; in 34 lines the flag stands in line 29
    // and "Parent Device:" is empty.
    const std::tuple<size_t, bool, const char*, const char*> rows[] = {
        {33, false, "", ""},
        {34, true, "", ""},
        {38, true, "s00000018.00", "PCI 0:0:3:0"},
        {39, false, "", ""}};
    for (const auto& [lines, parsed, line29, firstTail] : rows) {
        PciRecordValues values;
        values.nLines = lines;
        PciParser parser;
        ASSERT_EQ(parser.Parse(PciRecordLines(values)), parsed) << lines;
        if (!parsed)
            continue;
        EXPECT_TRUE(parser.Get().bFlag1 && parser.Get().bFlag2) << lines;  // "true" in 29 or 30
        EXPECT_EQ(parser.Get().sLine29, line29) << lines;
        EXPECT_EQ(parser.Get().sTail[0], firstTail) << lines;
    }
}

TEST(PciParserRecord, ValuesBehindTheFirstColon) {
    std::vector<std::string> lines = PciRecordLines(PciRecordValues());
    lines[6] = "   VMkernel Name:\t \r\n";  // the colon ends the line once blanks are cut
    lines[7] = "   Device Name: a: b  \n";  // later colons are part of the value
    lines[8] = "   no colon here\n";
    lines[10] = "   Vendor ID: none\n";  // no number: 0
    PciParser parser;
    ASSERT_TRUE(parser.Parse(lines));
    EXPECT_EQ(parser.Get().sLine6, "");
    EXPECT_EQ(parser.Get().sDeviceName, "a: b");
    EXPECT_EQ(parser.Get().sLine8, "");
    EXPECT_EQ(parser.Get().nVendorId, 0u);
}

TEST_F(PciList, DevicesNamedFromAdapterIni) {
    // Vendor, device, sub device and the name.
    const std::tuple<uint32_t, uint32_t, uint32_t, const char*> rows[] = {
        {0x8086, 0x10FB, 0x0000, "Corvane 10GbE X10"},  // cleaned of blanks and comment
        {0x8086, 0x10FB, 0x1234, "Corvane 10GbE X10 for the sub device"},
        {0x8086, 0x10FB, 0x4321, "Corvane 10GbE X10"},  // no key with the sub device
        {0x8086, 0x1572, 0x0000, "the host's name"},    // empty value: the record's name
        {0x10DF, 0xF400, 0x0000, "the host's name"},    // keys are upper-case hex
        {0x1000, 0x10E2, 0x0001, "Halvard SAS RAID"},
    };
    std::string output;
    uint32_t slot = 0;
    for (const auto& [vendor, device, subDevice, name] : rows) {
        PciRecordValues values;
        values.nSlot = slot++;
        values.nVendorId = vendor;
        values.nDeviceId = device;
        values.nSubDeviceId = subDevice;
        values.sDeviceName = "the host's name";
        output += PciRecordText(values);
    }
    ASSERT_EQ(Scan(output).GetCount(), std::size(rows));
    for (size_t i = 0; i < std::size(rows); ++i)
        EXPECT_EQ(Entry(i).sDeviceName, std::get<3>(rows[i])) << i;

    // Without the file every device keeps the host's name.
    ASSERT_EQ(Scan(output, false).GetCount(), std::size(rows));
    EXPECT_EQ(Entry(0).sDeviceName, "the host's name");
}

TEST_F(PciList, EntriesCarryTheRecordsNumbers) {
    PciRecordValues values;
    values.nInterrupt = 255;
    Scan(PciRecordText(values));
    PciSlotInfo info = Entry(0);
    EXPECT_EQ(info.address.nBus, 0x18);
    EXPECT_EQ(info.nBaseClass, 1);
    EXPECT_EQ(info.nSubClass, 4);
    EXPECT_EQ(info.nHeaderType, 0);
    EXPECT_EQ(info.nExtra1, 0x0E);  // lines 18 and 21
    EXPECT_EQ(info.nExtra2, 3);
    EXPECT_EQ(info.nInterrupt, 0xFFFFFFFFu);
    EXPECT_EQ(info.sText1, "tlraid_sas");
    EXPECT_EQ(info.sText3, "s00000018.00");
}

TEST_F(PciList, ALineOfTwoHundredBytesCountsTwice) {
    // A record of 34 lines with a long device name arrives as 35: the tail moves by one.
    PciRecordValues values;
    values.nLines = 34;
    values.sDeviceName = std::string(190, 'n');
    Scan(PciRecordText(values), false);
    ASSERT_EQ(m_pList->GetCount(), 1u);
    EXPECT_EQ(Entry(0).sDeviceName, std::string(199 - 16, 'n'));
    EXPECT_EQ(Entry(0).nVendorId, 0u) << "the vendor id is read from the device id's line";

    // One more line in a record of 38 makes 39, which is refused.
    values.nLines = 38;
    EXPECT_EQ(Scan(PciRecordText(values)).GetCount(), 0u);
}

TEST_F(PciList, ASecondScanAddsAndOverwrites) {
    PciRecordValues a;
    Scan(PciRecordText(a));
    a.nInterrupt = 7;
    PciRecordValues b;
    b.nBus = 0x19;
    m_Dir.Write("pci-list.txt", PciRecordText(a) + PciRecordText(b));
    ASSERT_TRUE(m_pList->ScanPciSlots(0));
    ASSERT_EQ(m_pList->GetCount(), 2u);
    EXPECT_EQ(Entry(0).nInterrupt, 7u);
    PciSlotInfo found;
    EXPECT_TRUE(m_pList->Find(PciAddress{0, 0x19, 0, 0}, found));
    EXPECT_FALSE(m_pList->GetEntry(2, found));
}

TEST_F(PciList, OnlyDevicesWithBothIdsBecomeSystemAdapters) {
    PciRecordValues usable, noDevice, vendorZero, deviceZero;
    noDevice.nBus = 0x19;
    noDevice.nVendorId = 0xFFFF;
    vendorZero.nBus = 0x1A;
    vendorZero.nVendorId = 0;
    deviceZero.nBus = 0x1B;
    deviceZero.nDeviceId = 0;
    Scan(PciRecordText(usable) + PciRecordText(noDevice) + PciRecordText(vendorZero) +
         PciRecordText(deviceZero));
    ASSERT_EQ(m_pList->GetCount(), 4u);
    std::vector<CSystemAdapter> adapters;
    SystemAdapterSources sources;
    sources.pszNicSnapshotCommand = "true";
    sources.pszPciDevices = "/nonexistent";
    ASSERT_TRUE(ScanSystemAdapters(adapters, *m_pList, nullptr, sources));
    ASSERT_EQ(adapters.size(), 1u);
    EXPECT_EQ(adapters[0].m_sHardwareId, "PCI\\VEN_1000&DEV_10e2&SUBSYS_00001234&REV_02");
}

TEST(PciListCommand, AMissingCommandStillStartsTheShell) {
    CPciConfigList list("/nonexistent/localcli hardware pci list 2>/dev/null", "/nonexistent.ini");
    EXPECT_TRUE(list.ScanPciSlots(0));
    EXPECT_EQ(list.GetCount(), 0u);
}

TEST(PciAddressOrder, AllOnesMatchesAnyAddress) {
    PciAddress low{0, 0x18, 0, 0}, high{0, 0x18, 0, 1}, otherDomain{1, 0, 0, 0};
    PciAddress any{0, 0xFF, 0xFF, 0xFF};
    EXPECT_TRUE(low < high && !(high < low) && high < otherDomain);
    EXPECT_FALSE(any < low || low < any);
}

}  // namespace
