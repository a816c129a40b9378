// The shipped inventory against the sandbox's host, which serves samples/localcli: the PCI
// list, Adapter.ini, the NIC list and the kernel's device list at their host paths.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "inventory/PciConfigList.h"
#include "inventory/SystemAdapter.h"
#include "support/CaptureTraceServer.h"
#include "support/SandboxHost.h"
#include "support/TempDir.h"

namespace {

class InventoryHost : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(sandbox_host::Inside()) << "run this test through build/sandbox";
        setenv("LC_ALL", "C", 1);
    }
};

std::string MacText(const std::vector<uint8_t>& mac) {
    std::string text;
    char part[4];
    for (uint8_t b : mac) {
        snprintf(part, sizeof(part), text.empty() ? "%02x" : ":%02x", b);
        text += part;
    }
    return text;
}

TEST_F(InventoryHost, SystemAdaptersOfTheHost) {
    CPciConfigList list;
    ASSERT_TRUE(list.ScanPciSlots(0));
    std::vector<CSystemAdapter> adapters;
    ASSERT_TRUE(ScanSystemAdapters(adapters, list, nullptr));
    struct Row {
        const char* name;
        const char* className;
        const char* driver;
        const char* hardwareId;
        const char* mac;
        const char* hardwareMac;
    } rows[] = {
        {" 0000:00:00.0", "System", "", "PCI\\VEN_8086&DEV_2020&SUBSYS_00001235&REV_04", "", ""},
        {"tlraid_sata 0000:00:17.0", "SCSIAdapter", "tlraid_sata",
         "PCI\\VEN_8086&DEV_a186&SUBSYS_000011df&REV_09", "", ""},
        {"tlraid_sas 0000:18:00.0", "SCSIAdapter", "tlraid_sas",
         "PCI\\VEN_1000&DEV_10e2&SUBSYS_00001234&REV_01", "", ""},
        // A NIC's name starts with its interface name, which nothing gives.
        {" 0000:19:00.0", "net", "cvxen", "PCI\\VEN_8086&DEV_1572&SUBSYS_000011f6&REV_02",
         "3c:fd:fe:aa:bb:10", "3c:fd:fe:aa:bb:10"},
        {" 0000:19:00.1", "net", "cvxen", "PCI\\VEN_8086&DEV_1572&SUBSYS_000011f6&REV_02",
         "3c:fd:fe:aa:bb:11", "3c:fd:fe:aa:bb:11"},
        // No driver in the kernel's list: the name that Adapter.ini gives.
        {" 0000:3b:00.0", "net", "Corvane Gigabit Network Connection",
         "PCI\\VEN_8086&DEV_1533&SUBSYS_00000000&REV_03", "a0:36:9f:12:34:56", "a0:36:9f:12:34:56"},
        {"ostrelfc 0000:af:00.0", "SCSIAdapter", "ostrelfc",
         "PCI\\VEN_10df&DEV_f400&SUBSYS_0000f401&REV_01", "", ""},
        {" 0000:d7:00.0", "System", "", "PCI\\VEN_8086&DEV_2030&SUBSYS_00000000&REV_04", "", ""},
    };
    // The records of 33 and 39 lines are dropped, the last one is lost.
    ASSERT_EQ(adapters.size(), std::size(rows));
    for (size_t i = 0; i < std::size(rows); ++i) {
        const CSystemAdapter& a = adapters[i];
        EXPECT_EQ(a.m_sName, rows[i].name) << i;
        EXPECT_EQ(a.m_sClassName, rows[i].className) << i;
        EXPECT_EQ(a.m_sDriver, rows[i].driver) << i;
        EXPECT_EQ(a.m_sHardwareId, rows[i].hardwareId) << i;
        EXPECT_EQ(MacText(a.m_Mac), rows[i].mac) << i;
        EXPECT_EQ(MacText(a.m_HardwareMac), rows[i].hardwareMac) << i;
        EXPECT_EQ(a.m_sInterface, "") << i;
        EXPECT_FALSE(IsPciDevice(a)) << i;
    }
}

TEST_F(InventoryHost, SnapshotMacsMustBeWellFormed) {
    ScopedTraceLevel level(2);
    TempDir dir;
    // Lines as the snapshot's pipeline prints them: the MAC of vmnic2 is one digit short.
    std::string path =
        dir.Write("snapshot.txt",
                  "vmnic2,0000:19:00.0,cvxen,Up,Up,10000,Full,3c:fd:fe:aa:bb:1,9000,Corvane\n"
                  "vmnic10,0000:19:00.1,cvxen,Up,Down,0,Half,02:00:00:00:00:0A,1500,Corvane\n");
    SystemAdapterSources sources;
    std::string command = "cat " + path;
    sources.pszNicSnapshotCommand = command.c_str();
    CPciConfigList list;
    list.ScanPciSlots(0);
    std::vector<CSystemAdapter> adapters;
    ScanSystemAdapters(adapters, list, nullptr, sources);
    ASSERT_EQ(adapters.size(), 8u);
    EXPECT_EQ(MacText(adapters[3].m_HardwareMac), "");
    EXPECT_EQ(MacText(adapters[3].m_Mac), "3c:fd:fe:aa:bb:10");  // the process-wide list
    EXPECT_EQ(MacText(adapters[4].m_HardwareMac), "02:00:00:00:00:0a");
    EXPECT_EQ(MacText(adapters[5].m_HardwareMac), "") << "no snapshot line for 3b:00.0";
    std::string trace = Debug.Take();
    EXPECT_NE(trace.find("\nCSystemAdapter      : Found entry with MAC 3c:fd:fe:aa:bb:1"
                         "\nCSystemAdapter      : Empty or invalid MAC Entry"),
              std::string::npos)
        << trace;
}

}  // namespace
