// System adapters: the class table, the enumerator test and the driver lookup.
#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <utility>

#include "inventory/SystemAdapter.h"
#include "support/Process.h"

namespace {

TEST(PciDeviceClassTable, ClassAndDriverByBaseAndSubClass) {
    // Base class, sub class, vendor, the class's name and whether it needs a driver.
    const std::tuple<uint8_t, uint8_t, uint16_t, const char*, bool> rows[] = {
        // The table's rules: a sub class of its own, one for the whole base class, and the
        // classes that need a driver; a pair that no row names is unknown.
        {0x01, 0x01, 0x8086, "hdc", true},
        {0x01, 0x02, 0x8086, "fdc", false},
        {0x01, 0x03, 0x8086, "Unknown", false},
        {0x01, 0x08, 0x8086, "Non-Volatile-Memory", true},
        {0x04, 0x00, 0x8086, "Display", false},
        {0x0C, 0x03, 0x8086, "USB", false},
        {0xFF, 0x00, 0x8086, "Unknown", false},
        // Serial bus controllers of three vendors are storage, whatever their sub class.
        {0x0C, 0x04, 0x10DF, "SCSIAdapter", true},
        {0x0C, 0x03, 0x1077, "SCSIAdapter", true},
        {0x0C, 0x00, 0x19A2, "SCSIAdapter", true}};
    for (const auto& [base, sub, vendor, name, driver] : rows) {
        PciDeviceClass cls = ClassifyPciDevice(base, sub, vendor);
        EXPECT_STREQ(cls.pszName, name) << std::hex << +base << "/" << +sub;
        EXPECT_EQ(cls.bDriver, driver) << std::hex << +base << "/" << +sub;
    }
}

TEST(PciDeviceEnumerator, OnlyTheExactWordsPass) {
    const std::pair<const char*, bool> rows[] = {
        {"PCI\\VEN_1000&DEV_10e2\\4&1", true},
        {"PCI", true},
        {"B06BDRV\\L2ND&PCI_1639", true},
        {"\\PCI\\VEN_1000", true},  // leading backslashes are skipped by the split
        {"PCIROOT\\0", false},
        {"pci\\VEN_1000", false},
        {"", false}};
    for (const auto& [instance, pci] : rows) {
        CSystemAdapter adapter;
        adapter.m_sInstanceId = instance;
        EXPECT_EQ(IsPciDevice(adapter), pci) << instance;
    }
    CSystemAdapter scanned;
    scanned.m_sHardwareId = "PCI\\VEN_1000&DEV_10e2&SUBSYS_00001234&REV_01";
    EXPECT_FALSE(IsPciDevice(scanned)) << "the hardware id is not the instance";
}

TEST(PciDriverName, FoundByBusAndDevfnAlone) {
    // The kernel's device list: 00:00.0 without a driver, 00:17.0, 18:00.0 (a driver behind
    // blanks), 19:00.1, and last 3b:00.0 without a driver and without an end of line.
    const std::string path = SourcePath("tests/inventory/testdata/pci-devices");
    struct Row {
        uint16_t domain;
        uint8_t bus, slot, function;
        bool found;
        const char* driver;
    } rows[] = {
        {0, 0x00, 0x17, 0, true, "tlraid_sata"}, {0, 0x18, 0x00, 0, true, "tlraid_sas"},
        {7, 0x18, 0x00, 0, true, "tlraid_sas"},  // the domain plays no part
        {0, 0x18, 0x00, 8, true, "tlraid_sas"},  // nor the function's bits above 7
        {0, 0x19, 0x00, 1, true, "cvxen"},       {0, 0x19, 0x00, 0, false, ""},
        {0, 0x00, 0x00, 0, false, ""},  // listed without a driver
        {0, 0x3b, 0x00, 0, false, ""},
    };
    for (const Row& row : rows) {
        char buffer[32] = "previous";
        EXPECT_EQ(GetAdapterDriverName(row.domain, row.bus, row.slot, row.function, buffer,
                                       sizeof(buffer), path.c_str()),
                  row.found)
            << std::hex << +row.bus << ":" << +row.slot << "." << +row.function;
        EXPECT_STREQ(buffer, row.driver);
    }

    char small[4] = "";
    EXPECT_TRUE(GetAdapterDriverName(0, 0x19, 0, 1, small, sizeof(small), path.c_str()));
    EXPECT_STREQ(small, "cvx");
    EXPECT_FALSE(
        GetAdapterDriverName(0, 0x18, 0, 0, small, sizeof(small), (path + ".none").c_str()));
    EXPECT_STREQ(small, "");
}

}  // namespace
