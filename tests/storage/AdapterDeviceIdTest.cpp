// Adapters by device id: the id of an address, and the two ways of counting to an adapter.
#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "storage/AdapterDeviceId.h"
#include "storage/TLRaidData.h"
#include "storage/TreeText.h"

namespace {

// The address read for the PCI address question as "bus.device.function.segment", and the
// device id; both search the children forward in this order, each in its own code.
TEST(AdapterDeviceId, FromTheAddress) {
    // Children, address (null: none), id (null: none).
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"<PCIBus>24</PCIBus><PCIDevice>0</PCIDevice><PCIFunction>1</PCIFunction>", "24.0.1.0",
         "TYPE_PCI&BUS_24&DEV_0&FUNC_1"},
        {"<PCIBus>129</PCIBus><PCIDevice>3</PCIDevice><PCISegment>1</PCISegment>", "129.3.0.1",
         "TYPE_PCI&BUS_129&DEV_3&FUNC_0&SEG_1"},
        // The segment before the function is not found behind it.
        {"<PCIBus>5</PCIBus><PCIDevice>6</PCIDevice><PCISegment>3</PCISegment>"
         "<PCIFunction>4</PCIFunction>",
         "5.6.4.0", "TYPE_PCI&BUS_5&DEV_6&FUNC_4"},
        // The segment is cut to 16 bits, the others to 8; text without digits is 0.
        {"<PCIBus>300</PCIBus><PCIDevice>-1</PCIDevice><PCIFunction>x</PCIFunction>"
         "<PCISegment>65537</PCISegment>",
         "44.255.0.1", "TYPE_PCI&BUS_44&DEV_255&FUNC_0&SEG_1"},
        // 255.255.255 is no device id, but an address; 255.255.0 is both.
        {"<PCIBus>255</PCIBus><PCIDevice>255</PCIDevice><PCIFunction>255</PCIFunction>"
         "<PCISegment>2</PCISegment>",
         "255.255.255.2", nullptr},
        {"<PCIBus>255</PCIBus><PCIDevice>255</PCIDevice>", "255.255.0.0",
         "TYPE_PCI&BUS_255&DEV_255&FUNC_0"},
        // Bus and device must be there, in this order.
        {"<PCIDevice>1</PCIDevice><PCIBus>1</PCIBus>", nullptr, nullptr},
    };
    for (const auto& [children, address, wantedId] : rows) {
        CTLRaidData adapter;
        adapter.SetDoc(std::string("<Adapter Nr=\"0\">") + children + "</Adapter>");
        AdapterPciAddress a;
        a.nBus = a.nDevice = a.nFunction = 9;
        a.nSegment = 9;
        EXPECT_EQ(adapter.GetAdapterPciAddress(a), address != nullptr) << children;
        EXPECT_EQ(std::to_string(a.nBus) + "." + std::to_string(a.nDevice) + "." +
                      std::to_string(a.nFunction) + "." + std::to_string(a.nSegment),
                  address ? address : "9.9.9.9")
            << children;
        std::string id = "untouched";
        EXPECT_EQ(GetAdapterDeviceId(adapter, id), wantedId != nullptr) << children;
        EXPECT_EQ(id, wantedId ? wantedId : "untouched") << children;
    }
}

const char* const kAdapters =
    "<Adapter><PCIBus>3</PCIBus><PCIDevice>0</PCIDevice></Adapter>"
    "<Adapter><Battery/><PCIBus>255</PCIBus><PCIDevice>255</PCIDevice>"
    "<PCIFunction>255</PCIFunction></Adapter>"
    "<Adapter><PCIBus>4</PCIBus><PCIDevice>0</PCIDevice><PCIFunction>2</PCIFunction></Adapter>"
    "<Adapter><Battery/><PCIBus>5</PCIBus><PCIDevice>0</PCIDevice></Adapter>"
    "<Adapter><PCIBus>6</PCIBus><PCIDevice>0</PCIDevice><Battery/></Adapter>";

// Each id's index among all adapters and among those with batteries (-1: not found, and the
// index untouched).
TEST(AdapterDeviceId, IndexAmongTheAdaptersAndByBatteries) {
    const std::tuple<const char*, int, int> rows[] = {
        // No battery before it, none of its own.
        {"TYPE_PCI&BUS_3&DEV_0&FUNC_0", 0, 0},
        {"TYPE_PCI&BUS_4&DEV_0&FUNC_2", 2, 1},  // one battery before it
        {"TYPE_PCI&BUS_5&DEV_0&FUNC_0", 3, 2},  // its own battery counts
        // The address behind the battery isn't found: that adapter's id is empty.
        {"TYPE_PCI&BUS_6&DEV_0&FUNC_0", 4, -1},
        {"", 1, 1},  // the first adapter without an address
        {"TYPE_PCI&BUS_4&DEV_0&FUNC_2 ", -1, -1},
        {"TYPE_PCI&BUS_7&DEV_0&FUNC_0", -1, -1},
    };
    CTLRaidData tree;
    tree.SetDoc(WholeTree(kAdapters));
    for (const auto& [id, nAdapter, nBattery] : rows) {
        uint32_t index = 99;
        EXPECT_EQ(FindAdapterIndex(tree, index, id), nAdapter >= 0) << id;
        EXPECT_EQ(index, nAdapter >= 0 ? uint32_t(nAdapter) : 99u) << id;
        index = 99;
        EXPECT_EQ(FindBatteryAdapterIndex(tree, index, id), nBattery >= 0) << id;
        EXPECT_EQ(index, nBattery >= 0 ? uint32_t(nBattery) : 99u) << id;
    }
}

TEST(AdapterDeviceId, TreeWithoutSystem) {
    CTLRaidData tree;
    tree.SetDoc("<amEMTL><Adapter><PCIBus>3</PCIBus><PCIDevice>0</PCIDevice></Adapter></amEMTL>");
    uint32_t index = 99;
    EXPECT_FALSE(FindAdapterIndex(tree, index, "TYPE_PCI&BUS_3&DEV_0&FUNC_0"));
    EXPECT_FALSE(FindBatteryAdapterIndex(tree, index, ""));
    EXPECT_EQ(index, 99u);
}

}  // namespace
