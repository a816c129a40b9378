// The overall component statuses of all physical drives and of all batteries.
#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "storage/TLRaidData.h"
#include "storage/TreeText.h"
#include "support/CaptureTraceServer.h"

namespace {

std::string Drive(const std::string& status) {
    return "<PhysicalDrive><Status>" + status + "</Status></PhysicalDrive>";
}

std::string FlatAdapter(const std::string& drives) {
    return "<Adapter>" + drives + "</Adapter>";
}

TEST(TLRaidDataDiskOverall, MultiplexerWordFirstThenTheWorstDrive) {
    auto disks = [](const char* word) {
        return "<StatusDisks>" + std::string(word) + "</StatusDisks>";
    };
    const std::string failed = FlatAdapter(Drive("Failed"));
    const std::tuple<std::string, bool, int32_t> rows[] = {
        {WholeTree(failed, disks("OK")), true, 1},
        {WholeTree(failed, disks("Warning")), true, 2},
        {WholeTree(failed, disks("FAILED")), true, 3},
        {WholeTree(FlatAdapter(Drive("Rebuilding") + Drive("Failed"))), true, 3},
        {WholeTree(FlatAdapter(Drive("Rebuilding")) + FlatAdapter(Drive("Operational"))), true, 2},
        // A word that maps to nothing counts as none.
        {WholeTree(FlatAdapter(Drive("Rebuilding")), disks("Unknown")), true, 2},
        // The SMART variants of Failed, Available and Offline say nothing.
        {WholeTree(FlatAdapter(Drive("Failed SMART Error"))), true, 0},
        {WholeTree(FlatAdapter(Drive("Failed SMART Error") + Drive("Operational"))), true, 1},
        {WholeTree(FlatAdapter(Drive("Unknown") + "<PhysicalDrive><Name>x</Name></PhysicalDrive>")),
         true, 0},
        // No drive taken, or no multiplexer: false.
        {WholeTree(FlatAdapter("")), false, 0},
        {WholeTree(""), false, 0},
        {"<amEMTL Version=\"2\"><System>" + failed + "</System></amEMTL>", false, 0},
        {SampleTree("smart-drives.xml"), true, 2},  // no StatusDisks: from the drives
        {SampleTree("logical-drives.xml"), true, 3},
        {SampleTree("batteries.xml"), true, 1},  // StatusDisks OK, although no drive is there
    };
    for (const auto& [tree, result, status] : rows) {
        CTLRaidData doc;
        doc.SetDoc(tree);
        int32_t got = 77;
        EXPECT_EQ(doc.GetPhysicalDiskOverallComponentStatus(got), result) << tree;
        EXPECT_EQ(got, status) << tree;
    }
}

std::string BatteryAdapter(const std::string& batteries) {
    return "<Adapter><Status>OK</Status>" + batteries + "</Adapter>";
}

std::string Battery(const std::string& componentStatus) {
    return "<Battery ComponentStatus=\"" + componentStatus + "\"><Status>Normal</Status></Battery>";
}

TEST(TLRaidDataBbuOverall, HighestComponentStatusOfEachAdaptersFirstBattery) {
    const std::tuple<std::string, bool, uint32_t> rows[] = {
        {BatteryAdapter(Battery("1")) + BatteryAdapter(Battery("3")), true, 3},
        {BatteryAdapter(Battery("2")) + BatteryAdapter("") + BatteryAdapter(Battery("1")), true, 2},
        // Only the first battery of an adapter is read.
        {BatteryAdapter(Battery("1") + Battery("3")), true, 1},
        // Compared as signed numbers: -1 leaves 0, and the result is still true.
        {BatteryAdapter(Battery("-1")), true, 0},
        {BatteryAdapter(""), false, 0},
        {"", false, 0},
        {"none", false, 0},  // no System at all
    };
    for (const auto& [system, result, wanted] : rows) {
        CTLRaidData tree;
        tree.SetDoc(system == "none" ? "<amEMTL Version=\"2\"><Other/></amEMTL>"
                                     : WholeTree(system));
        uint32_t status = 77;
        EXPECT_EQ(tree.GetBbuOverallComponentStatus(status), result) << system;
        EXPECT_EQ(status, wanted) << system;
    }
}

TEST(TLRaidDataBbuOverall, SampleTreeAndTrace) {
    ScopedTraceLevel level(3);
    CTLRaidData tree;
    tree.SetDoc(SampleTree("batteries.xml"));
    uint32_t status = 0;
    EXPECT_TRUE(tree.GetBbuOverallComponentStatus(status));
    EXPECT_EQ(status, 3u);
    const std::string line =
        "\nCTLRaidData         : GetBbuOverallComponentStatus - new BBU overall component "
        "status = ";
    EXPECT_EQ(Debug.Take(), "\nCTLRaidData         : GetBbuOverallComponentStatus" + line + "1" +
                                line + "2" + line + "3");
}

}  // namespace
