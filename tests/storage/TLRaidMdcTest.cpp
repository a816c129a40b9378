// The MDC progress of the logical drives, by drive key.
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "storage/TLRaidData.h"
#include "storage/TreeText.h"

namespace {

std::string Drive(const std::string& children) {
    return "<LogicalDrive LogDriveNumber=\"0\"><Status>Operational</Status>" + children +
           "</LogicalDrive>";
}

std::string Mdc(const std::string& text) {
    return "<MDCProgress>" + text + "</MDCProgress>";
}

TEST(GetMDCProgressMap, EveryDriveByItsKey) {
    // The key takes the adapter's Name element; the attribute of that name is not read.
    const std::string tree = WholeTree(
        "<Adapter Name=\"Attribute\" Nr=\"3\"><Name>Ctl A</Name>" + Drive("") + Drive(Mdc("12")) +
        Drive(Mdc("")) + "</Adapter>" + "<Adapter Name=\"No element\"><Status>OK</Status>" +
        Drive(Mdc("65535")) + Drive(Mdc("70000")) + Drive(Mdc("65534")) + "</Adapter>" +
        "<Adapter><Name>Ctl C</Name></Adapter>");
    CTLRaidData doc;
    ASSERT_TRUE(doc.SetDoc(tree));
    const std::map<std::string, int16_t> expected = {
        {"Ctl A A0L0", -1}, {"Ctl A A0L1", 12}, {"Ctl A A0L2", 0},
        {" A1L0", -1},      {" A1L1", 4464},    {" A1L2", -2},
    };
    EXPECT_EQ(doc.GetMDCProgressMap(), expected);
}

TEST(GetMDCProgressMap, SampleTreeAndBrokenTrees) {
    CTLRaidData doc;
    ASSERT_TRUE(doc.SetDoc(SampleTree("logical-drives.xml")));
    ASSERT_TRUE(doc.FindElem("amEMTL"));
    const uint32_t main = doc.GetMainPos();
    const std::map<std::string, int16_t> progress = doc.GetMDCProgressMap();
    EXPECT_EQ(doc.GetMainPos(), main);
    int running = 0;
    for (const auto& entry : progress) {
        EXPECT_EQ(entry.first.compare(0, 15, "TL RAID EP540i "), 0) << entry.first;
        running += entry.second >= 0;
    }
    EXPECT_EQ(running, 3);
    EXPECT_EQ(progress.at("TL RAID EP540i A0L1"), 12);

    for (const char* text : {"<NoRoot/>", "<amEMTL><System/></amEMTL>"}) {
        ASSERT_TRUE(doc.SetDoc(std::string(text)));
        EXPECT_TRUE(doc.GetMDCProgressMap().empty()) << text;
    }
}

}  // namespace
