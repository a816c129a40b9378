// The PCI identity of a RAID adapter: the order of its steps and its statuses, from given
// system adapters.
#include <gtest/gtest.h>

#include <string>

#include "frame/CommandRecord.h"
#include "frame/SwitchProtocol.h"
#include "raid/PciIdentityRequest.h"
#include "storage/TLRaidData.h"

namespace {

std::vector<CSystemAdapter> g_Adapters;
int g_nListed = 0;

void GivenAdapters(std::vector<CSystemAdapter>& out) {
    ++g_nListed;
    out = g_Adapters;
}

CSystemAdapter Adapter(uint8_t bus, uint16_t vendor, uint16_t device, uint8_t headerType,
                       const char* instance = "PCI\\VEN_1000&DEV_10E2\\5&2") {
    CSystemAdapter a;
    a.m_sInstanceId = instance;
    a.m_Pci.address = PciAddress{0, bus, 0, 0};
    a.m_Pci.nVendorId = vendor;
    a.m_Pci.nDeviceId = device;
    a.m_Pci.nSubVendorId = 0x1B4E;
    a.m_Pci.nSubDeviceId = 0x1234;
    a.m_Pci.nHeaderType = headerType;
    return a;
}

// The answer for an adapter with these PCI children, as "ST" or "ST:DA".
std::string Ask(const std::string& children, uint32_t oe) {
    CTLRaidData adapter;
    adapter.SetDoc("<Adapter Nr=\"0\">" + children + "</Adapter>");
    CommandRecord record(oc::kAdapterPciIdentity, oe, 0, 0, 19);
    AnswerPciIdentity(record, adapter, GivenAdapters);
    std::string answer = std::to_string(record.GetField("ST", 0));
    uint32_t value = 0;
    if (record.GetDataUInt(0, value))
        answer += ":" + std::to_string(value);
    return answer;
}

TEST(PciIdentity, IdsBySelector) {
    const std::string bus24 = "<PCIBus>24</PCIBus><PCIDevice>0</PCIDevice>";
    struct Row {
        CSystemAdapter adapter;
        const char* answers[5];  // OE 0 to 4
    } rows[] = {
        {Adapter(0x18, 0x1000, 0x10E2, 0x00), {"0:4322", "0:4096", "0:4660", "0:6990", "1"}},
        // Only the header's low seven bits decide whether subsystem ids are given.
        {Adapter(0x18, 0x1000, 0x10E2, 0x80), {"0:4322", "0:4096", "0:4660", "0:6990", "1"}},
        {Adapter(0x18, 0x1000, 0x10E2, 0x01), {"0:4322", "0:4096", "0:0", "0:0", "1"}},
        {Adapter(0x18, 0xFFFF, 0x10E2, 0x00), {"19", "19", "19", "19", "1"}},
        {Adapter(0x18, 0x1000, 0x0000, 0x00), {"19", "19", "19", "19", "1"}},
        {Adapter(0x18, 0x1000, 0x10E2, 0x00, "PCIROOT\\0"), {"19", "19", "19", "19", "1"}},
        // Another address: no adapter, so even OE 4 answers 19.
        {Adapter(0x19, 0x1000, 0x10E2, 0x00), {"19", "19", "19", "19", "19"}},
    };
    for (size_t i = 0; i < std::size(rows); ++i) {
        g_Adapters = {rows[i].adapter};
        for (uint32_t oe = 0; oe < 5; ++oe)
            EXPECT_EQ(Ask(bus24, oe), rows[i].answers[oe]) << "row " << i << " OE " << oe;
    }
}

TEST(PciIdentity, TheFirstAdapterAtTheAddressCounts) {
    g_Adapters = {Adapter(0x18, 0x1000, 0x10E2, 0, "pci\\x"), Adapter(0x18, 0x1000, 0x10E3, 0)};
    EXPECT_EQ(Ask("<PCIBus>24</PCIBus><PCIDevice>0</PCIDevice><PCIFunction>0</PCIFunction>"
                  "<PCISegment>0</PCISegment>",
                  0),
              "19");
}

TEST(PciIdentity, NoAddressNoScan) {
    g_Adapters = {Adapter(0x18, 0x1000, 0x10E2, 0)};
    g_nListed = 0;
    EXPECT_EQ(Ask("<PCIDevice>0</PCIDevice>", 4), "19");
    EXPECT_EQ(g_nListed, 0);
}

}  // namespace
