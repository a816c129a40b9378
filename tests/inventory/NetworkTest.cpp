// NICs: the snapshot pipeline over a NIC list, the process-wide MAC list, interface MACs.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "inventory/EsxiNetworkSnapshot.h"
#include "inventory/InventoryHost.h"
#include "inventory/NetworkContainer.h"
#include "support/Process.h"

namespace {

// The NIC lists of testdata/, read by a command that starts with the given one.
std::string ListCommand(const char* command, const char* list) {
    return std::string(command) + " " + SourcePath(std::string("tests/inventory/testdata/") + list);
}

// The host's pipeline over testdata/nic-list.txt instead of the host's command.
std::string SnapshotCommand(const char* command) {
    std::string pipeline = inventory_host::kNicSnapshotCommand;
    const std::string host = inventory_host::kNicListCommand;
    return pipeline.replace(pipeline.find(host), host.size(), ListCommand(command, "nic-list.txt"));
}

class NicList : public ::testing::Test {
  protected:
    // The system's sort orders equal keys by the locale: pin it.
    void SetUp() override { setenv("LC_ALL", "C", 1); }

    CEsxiNetworkSnapshot& Populate(const char* command = "cat") {
        m_pSnapshot = std::make_unique<CEsxiNetworkSnapshot>(SnapshotCommand(command));
        m_pSnapshot->Populate();
        return *m_pSnapshot;
    }
    std::vector<std::string> Names() const {
        std::vector<std::string> names;
        for (const CEsxiNicSnapshot& nic : m_pSnapshot->Records())
            names.push_back(nic.sName);
        return names;
    }

    std::unique_ptr<CEsxiNetworkSnapshot> m_pSnapshot;
};

TEST_F(NicList, SortedByNumberCommaLosesTheNicLastMatchWins) {
    Populate();
    // vmnic3's description holds a comma.
    EXPECT_EQ(Names(), (std::vector<std::string>{"vmnic0", "vmnic1", "vmnic2", "vmnic5", "vmnic6",
                                                 "vmnic7", "vmnic10"}));
    const CEsxiNicSnapshot& nic = m_pSnapshot->Records()[2];
    EXPECT_EQ(nic.sPciDevice, "0000:19:00.0");
    EXPECT_EQ(nic.sColumn3, "cvxen");
    EXPECT_EQ(nic.nColumn6, 10000);
    EXPECT_EQ(nic.sMacAddress, "3c:fd:fe:aa:bb:10");
    EXPECT_EQ(nic.nColumn9, 1500);
    // The description keeps its blanks, and the newline of the line.
    EXPECT_EQ(nic.sDescription, "Corvane 10GbE Controller\n");

    // The last match wins, case aside.
    CEsxiNicSnapshot found;
    ASSERT_TRUE(m_pSnapshot->FindByPciDevice("0000:af:00.0", found));
    EXPECT_EQ(found.sName, "vmnic7");
    ASSERT_TRUE(m_pSnapshot->FindByPciDevice("0000:B0:00.0", found));
    EXPECT_EQ(found.sName, "vmnic6");
    EXPECT_FALSE(m_pSnapshot->FindByPciDevice("0000:b0:00.1", found));
    EXPECT_EQ(found.sName, "vmnic6");

    EXPECT_TRUE(Populate("head -2").Records().empty()) << "nothing but the header";
}

TEST(NetworkContainerList, MacsByPciAddress) {
    std::map<PciAddress, MacAddress> macs =
        NetworkContainer::Read(ListCommand("cat", "nic-macs.txt").c_str());
    ASSERT_EQ(macs.size(), 2u);
    // Read by columns, a comma doesn't matter; the later line of an address wins; a pseudo
    // device has no address.
    EXPECT_EQ((macs[PciAddress{0, 0x19, 0, 0}]), (MacAddress{0x3c, 0xfd, 0xfe, 0xaa, 0xbb, 0x99}));
    EXPECT_EQ((macs[PciAddress{0, 0x3b, 0, 0}]), (MacAddress{0xa0, 0x36, 0x9f, 0x12, 0x34, 0x56}));
    // The first two lines are headers, whatever they hold.
    EXPECT_TRUE(
        NetworkContainer::Read((ListCommand("tail -n +3", "nic-macs.txt") + " | head -2").c_str())
            .empty());
}

TEST(HardwareMac, OnlyNamedInterfacesAnswer) {
    MacAddress mac{1, 2, 3, 4, 5, 6};
    EXPECT_TRUE(GetHardwareMacInformation("lo", mac));
    EXPECT_EQ(mac, (MacAddress{}));  // the loopback's address is all zeros
    EXPECT_FALSE(GetHardwareMacInformation("", mac));
    EXPECT_FALSE(GetHardwareMacInformation("tlrnoif0", mac));
}

}  // namespace
