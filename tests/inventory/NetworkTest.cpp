// NICs: the snapshot pipeline over a NIC list, the process-wide MAC list, interface MACs.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "inventory/EsxiNetworkSnapshot.h"
#include "inventory/InventoryHost.h"
#include "inventory/NetworkContainer.h"
#include "support/TempDir.h"

namespace {

const char kHeader[] =
    "Name     PCI Device    Driver  Admin Status  Link Status  Speed  Duplex  MAC Address"
    "        MTU   Description\n"
    "-------  ------------  ------  ------------  -----------  -----  ------  -----------------"
    "  ----  -----------\n";

std::string Nic(const std::string& name, const std::string& pci, const std::string& mac,
                const std::string& description = "Corvane 10GbE Controller") {
    return name + "  " + pci + "  cvxen  Up  Up  10000  Full  " + mac + "  1500  " + description +
           "\n";
}

// The host's pipeline with the NIC list read from a file instead of the host's command.
std::string SnapshotCommand(const std::string& listPath) {
    std::string command = inventory_host::kNicSnapshotCommand;
    const std::string host = inventory_host::kNicListCommand;
    return command.replace(command.find(host), host.size(), "cat " + listPath);
}

class NicList : public ::testing::Test {
  protected:
    // The system's sort orders equal keys by the locale: pin it.
    void SetUp() override { setenv("LC_ALL", "C", 1); }

    CEsxiNetworkSnapshot& Populate(const std::string& body) {
        std::string path = m_Dir.Write("nic-list.txt", kHeader + body);
        m_pSnapshot = std::make_unique<CEsxiNetworkSnapshot>(SnapshotCommand(path));
        m_pSnapshot->Populate();
        return *m_pSnapshot;
    }
    std::vector<std::string> Names() const {
        std::vector<std::string> names;
        for (const CEsxiNicSnapshot& nic : m_pSnapshot->Records())
            names.push_back(nic.sName);
        return names;
    }

    TempDir m_Dir;
    std::unique_ptr<CEsxiNetworkSnapshot> m_pSnapshot;
};

TEST_F(NicList, SortedByTheNumberOfTheNic) {
    Populate(Nic("vmnic10", "0000:19:00.1", "3c:fd:fe:aa:bb:11") +
             Nic("vmnic2", "0000:19:00.0", "3c:fd:fe:aa:bb:10") +
             Nic("vmnic0", "0000:3b:00.0", "a0:36:9f:12:34:56") +
             Nic("vmnic1", "0000:3b:00.1", "a0:36:9f:12:34:57"));
    EXPECT_EQ(Names(), (std::vector<std::string>{"vmnic0", "vmnic1", "vmnic2", "vmnic10"}));

    const CEsxiNicSnapshot& nic = m_pSnapshot->Records()[2];
    EXPECT_EQ(nic.sPciDevice, "0000:19:00.0");
    EXPECT_EQ(nic.sColumn3, "cvxen");
    EXPECT_EQ(nic.nColumn6, 10000);
    EXPECT_EQ(nic.sMacAddress, "3c:fd:fe:aa:bb:10");
    EXPECT_EQ(nic.nColumn9, 1500);
    // The description keeps its blanks, and the newline of the line.
    EXPECT_EQ(nic.sDescription, "Corvane 10GbE Controller\n");
}

TEST_F(NicList, ACommaInTheDescriptionLosesTheNic) {
    Populate(Nic("vmnic3", "0000:d8:00.0", "00:0e:1e:c0:ff:ee", "Dual-port, 25GbE Adapter") +
             Nic("vmnic4", "0000:d8:00.1", "00:0e:1e:c0:ff:ef"));
    EXPECT_EQ(Names(), (std::vector<std::string>{"vmnic4"}));
}

TEST_F(NicList, TheLastMatchWinsCaseAside) {
    Populate(Nic("vmnic5", "0000:af:00.0", "00:00:00:00:00:05") +
             Nic("vmnic7", "0000:AF:00.0", "00:00:00:00:00:07") +
             Nic("vmnic6", "0000:b0:00.0", "00:00:00:00:00:06"));
    CEsxiNicSnapshot found;
    ASSERT_TRUE(m_pSnapshot->FindByPciDevice("0000:af:00.0", found));
    EXPECT_EQ(found.sName, "vmnic7");
    ASSERT_TRUE(m_pSnapshot->FindByPciDevice("0000:B0:00.0", found));
    EXPECT_EQ(found.sName, "vmnic6");
    EXPECT_FALSE(m_pSnapshot->FindByPciDevice("0000:b0:00.1", found));
    EXPECT_EQ(found.sName, "vmnic6");
}

TEST_F(NicList, NothingButTheHeader) {
    EXPECT_TRUE(Populate("").Records().empty());
}

TEST(NetworkContainerList, MacsByPciAddress) {
    TempDir dir;
    std::string path = dir.Write(
        "nic-list.txt",
        std::string(kHeader) + Nic("vmnic2", "0000:19:00.0", "3c:fd:fe:aa:bb:10") +
            "vusb0    Pseudo        cdce    Up  Up  100  Full  02:00:00:00:00:01  1500  USB\n" +
            Nic("vmnic9", "0000:19:00.0", "3c:fd:fe:aa:bb:99", "a, b") +
            Nic("vmnic0", "0000:3B:00.0", "A0:36:9F:12:34:56"));
    std::map<PciAddress, MacAddress> macs = NetworkContainer::Read(("cat " + path).c_str());
    ASSERT_EQ(macs.size(), 2u);
    // Read by columns, a comma doesn't matter; the later line of an address wins.
    EXPECT_EQ((macs[PciAddress{0, 0x19, 0, 0}]), (MacAddress{0x3c, 0xfd, 0xfe, 0xaa, 0xbb, 0x99}));
    EXPECT_EQ((macs[PciAddress{0, 0x3b, 0, 0}]), (MacAddress{0xa0, 0x36, 0x9f, 0x12, 0x34, 0x56}));

    // The first two lines are headers, whatever they hold.
    path = dir.Write("headers.txt", Nic("vmnic2", "0000:19:00.0", "3c:fd:fe:aa:bb:10") +
                                        Nic("vmnic3", "0000:19:00.1", "3c:fd:fe:aa:bb:11"));
    EXPECT_TRUE(NetworkContainer::Read(("cat " + path).c_str()).empty());
}

TEST(HardwareMac, OnlyNamedInterfacesAnswer) {
    MacAddress mac{1, 2, 3, 4, 5, 6};
    EXPECT_TRUE(GetHardwareMacInformation("lo", mac));
    EXPECT_EQ(mac, (MacAddress{}));  // the loopback's address is all zeros
    EXPECT_FALSE(GetHardwareMacInformation("", mac));
    EXPECT_FALSE(GetHardwareMacInformation("tlrnoif0", mac));
}

}  // namespace
