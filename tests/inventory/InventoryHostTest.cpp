// The shipped inventory against the sandbox's host, which serves samples/localcli: the PCI
// list, Adapter.ini, the NIC list and the kernel's device list at their host paths.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "inventory/PciConfigList.h"
#include "inventory/SystemAdapter.h"
#include "support/CaptureTraceServer.h"
#include "support/Process.h"
#include "support/SandboxHost.h"

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
    ScopedTraceLevel level(1);
    CPciConfigList list;
    ASSERT_TRUE(list.ScanPciSlots(0));
    // The records of 33 and 39 lines are dropped, the last one is lost.
    EXPECT_TRUE(
        Debug.Take().find("\n CPciConfigList::ScanPciSlots: Configuration not readed properly.") !=
        std::string::npos);
    std::vector<CSystemAdapter> adapters;
    ASSERT_TRUE(ScanSystemAdapters(adapters, list, nullptr));
    // Name, class, driver, hardware id, MAC and hardware MAC. A NIC's name starts with its
    // interface name, which nothing gives; without a driver in the kernel's list the name is
    // the one Adapter.ini gives.
    std::string listing;
    for (const CSystemAdapter& a : adapters) {
        listing += a.m_sName + "|" + a.m_sClassName + "|" + a.m_sDriver + "|" + a.m_sHardwareId +
                   "|" + MacText(a.m_Mac) + "|" + MacText(a.m_HardwareMac) + "\n";
        EXPECT_EQ(a.m_sInterface, "");
        EXPECT_FALSE(IsPciDevice(a));
    }
    EXPECT_EQ(listing, ReadWholeFile(SourcePath("tests/inventory/testdata/host-adapters.txt")));
}

TEST_F(InventoryHost, SnapshotMacsMustBeWellFormed) {
    ScopedTraceLevel level(2);
    // Lines as the snapshot's pipeline prints them: the MAC of vmnic2 is one digit short.
    const std::string command = "cat " + SourcePath("tests/inventory/testdata/nic-snapshot.txt");
    SystemAdapterSources sources;
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
