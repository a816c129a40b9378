// Sub-documents of the tree and of an adapter, the property reads and the MDC progress map.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <utility>

#include "storage/TLRaidData.h"
#include "storage/TreeText.h"

namespace {

// The root's tag and the text of one of its children, or "untouched".
std::string Describe(CTLRaidData& doc, const char* child) {
    doc.ResetPos();
    if (!doc.FindElem()) {
        return "";
    }
    std::string tag = doc.GetTagName();
    if (tag == "Untouched") {
        return "untouched";
    }
    doc.FindChildElem(child);
    return tag + " " + doc.GetChildData();
}

TEST(TLRaidDataSubDocs, MultiplexerAndAdapters) {
    CTLRaidData tree, out;
    ASSERT_TRUE(tree.SetDoc(SampleTree("demo.xml")));
    EXPECT_TRUE(tree.GetMultiplexerData(out));
    EXPECT_EQ(Describe(out, "Status"), "Multiplexer Operational");
    EXPECT_EQ(tree.GetAdapterCount(), 2u);
    EXPECT_TRUE(tree.GetAdapterData(out, 1));
    EXPECT_EQ(Describe(out, "Name"), "Adapter Onboard SATA RAID");
    out.SetDoc(std::string("<Untouched/>"));
    EXPECT_FALSE(tree.GetAdapterData(out, 2));
    EXPECT_EQ(Describe(out, "Name"), "untouched");

    const char* const broken[] = {"", "<amEMTL><Other/></amEMTL>",
                                  "<System><Adapter/><Multiplexer/></System>"};
    for (const char* text : broken) {
        CTLRaidData doc;
        doc.SetDoc(std::string(text));
        EXPECT_EQ(doc.GetAdapterCount(), 0u) << text;
        EXPECT_FALSE(doc.GetAdapterData(out, 0)) << text;
        EXPECT_FALSE(doc.GetMultiplexerData(out)) << text;
        EXPECT_EQ(Describe(out, "Name"), "untouched");
    }
}

TEST(TLRaidDataSubDocs, LogicalDrivesAreTheAdaptersChildrenOnly) {
    CTLRaidData tree, adapter, out;
    ASSERT_TRUE(tree.SetDoc(SampleTree("demo.xml")));
    ASSERT_TRUE(tree.GetAdapterData(adapter, 0));
    EXPECT_TRUE(adapter.GetRaidLogicalDriveData(out, 1));
    EXPECT_EQ(Describe(out, "MDCProgress"), "LogicalDrive 37");
    // The back references under the drives' Layout elements are not logical drives.
    EXPECT_FALSE(adapter.GetRaidLogicalDriveData(out, 2));
}

TEST(TLRaidDataSubDocs, OnlyTheFirstBatteryIsReachable) {
    CTLRaidData tree, adapter, battery;
    ASSERT_TRUE(tree.SetDoc(SampleTree("batteries.xml")));
    ASSERT_TRUE(tree.GetAdapterData(adapter, 1));  // two Battery elements
    battery.SetDoc(std::string("<Untouched/>"));
    EXPECT_FALSE(adapter.GetBatteryData(battery, 1));
    EXPECT_EQ(Describe(battery, "Name"), "untouched");
    EXPECT_TRUE(adapter.GetBatteryData(battery, 0));
    EXPECT_EQ(Describe(battery, "Status"), "Battery Charging");
    EXPECT_EQ(battery.GetBatteryLearnCycleStatus(), 1);

    ASSERT_TRUE(tree.GetAdapterData(adapter, 3));  // none
    EXPECT_FALSE(adapter.GetBatteryData(battery, 0));
}

TEST(TLRaidDataProperties, EachReadLooksForItsOwnRoot) {
    const std::pair<const char*, bool (CTLRaidData::*)(std::string&, const char*)> reads[] = {
        {"PhysicalDrive", &CTLRaidData::GetPhysicalDriveProperty},
        {"Port", &CTLRaidData::GetPortProperty},
        {"LogicalDrive", &CTLRaidData::GetLogicalDriveProperty},
        {"Battery", &CTLRaidData::GetBatteryProperty},
        {"Enclosure", &CTLRaidData::GetEnclosureProperty},
    };
    for (const auto& [root, read] : reads) {
        CTLRaidData doc, other;
        ASSERT_TRUE(doc.SetDoc("<" + std::string(root) +
                               " Name=\"attr\"><Name>V &amp; W</Name><Name>second</Name></" + root +
                               ">"));
        std::string value = "untouched";
        EXPECT_FALSE((doc.*read)(value, "Missing")) << root;
        EXPECT_FALSE((doc.*read)(value, nullptr)) << root;
        ASSERT_TRUE(other.SetDoc(std::string("<Channel><Name>first</Name></Channel>")));
        EXPECT_FALSE((other.*read)(value, "Name")) << root;
        EXPECT_EQ(value, "untouched") << root;
        EXPECT_TRUE((doc.*read)(value, "Name")) << root;  // the first child, not the attribute
        EXPECT_EQ(value, "V & W") << root;
    }
}

// The MDC progress of the logical drives, by drive key.
std::string LogicalDrive(const std::string& children) {
    return "<LogicalDrive LogDriveNumber=\"0\"><Status>Operational</Status>" + children +
           "</LogicalDrive>";
}

std::string Mdc(const std::string& text) {
    return "<MDCProgress>" + text + "</MDCProgress>";
}

TEST(GetMDCProgressMap, EveryDriveByItsKey) {
    // The key takes the adapter's Name element; the attribute of that name is not read.
    const std::string tree =
        WholeTree("<Adapter Name=\"Attribute\" Nr=\"3\"><Name>Ctl A</Name>" + LogicalDrive("") +
                  LogicalDrive(Mdc("12")) + LogicalDrive(Mdc("")) + "</Adapter>" +
                  "<Adapter Name=\"No element\"><Status>OK</Status>" + LogicalDrive(Mdc("65535")) +
                  LogicalDrive(Mdc("70000")) + LogicalDrive(Mdc("65534")) + "</Adapter>" +
                  "<Adapter><Name>Ctl C</Name></Adapter>");
    CTLRaidData doc;
    ASSERT_TRUE(doc.SetDoc(tree));
    const std::map<std::string, int16_t> expected = {
        {"Ctl A A0L0", -1}, {"Ctl A A0L1", 12}, {"Ctl A A0L2", 0},
        {" A1L0", -1},      {" A1L1", 4464},    {" A1L2", -2},
    };
    EXPECT_EQ(doc.GetMDCProgressMap(), expected);
}

TEST(GetMDCProgressMap, TreesWithoutSystemOrAdaptersGiveNone) {
    for (const char* text : {"<NoRoot/>", "<amEMTL><System/></amEMTL>"}) {
        CTLRaidData doc;
        ASSERT_TRUE(doc.SetDoc(std::string(text)));
        EXPECT_TRUE(doc.GetMDCProgressMap().empty()) << text;
    }
}

}  // namespace
