// gen-tree: its refusals, its determinism, and trees that the storage reader takes as valid
// with the sizes asked for.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "storage/TLRaidData.h"
#include "support/Process.h"
#include "support/SandboxHost.h"
#include "support/TempDir.h"

namespace {

ProcessResult GenTree(std::vector<std::string> args) {
    args.insert(args.begin(), BuildPath("gen-tree"));
    return RunProcess(args);
}

TEST(GenTree, BadOptionsAreRefusedClearly) {
    struct Row {
        std::vector<std::string> args;
        const char* message;
    };
    const Row rows[] = {
        {{"--bogus"}, "gen-tree: unknown option '--bogus' (see --help)\n"},
        {{"--drives"}, "gen-tree: --drives needs a value\n"},
        {{"--drives", "x"}, "gen-tree: --drives needs a whole number from 0 to 4096, not 'x'\n"},
        {{"--seed", "18446744073709551616"},
         "gen-tree: --seed needs a whole number from 0 to 18446744073709551615, not "
         "'18446744073709551616'\n"},
        {{"--adapters", "256", "--ports", "64", "--drives", "4096"},
         "gen-tree: the tree would hold 67108864 drives; at most 2000000 are allowed\n"},
    };
    for (const Row& row : rows) {
        ProcessResult r = GenTree(row.args);
        EXPECT_EQ(r.exitCode, 2) << row.message;
        EXPECT_EQ(r.err, row.message);
        EXPECT_EQ(r.out, "") << row.message;
    }
}

TEST(GenTree, SameSeedSameTreeOnStandardOutputOrInAFile) {
    TempDir dir;
    const std::string path = dir.Path() + "/tree.xml";
    std::vector<std::string> args = {"--adapters", "3", "--drives", "5", "--faults", "20"};
    ProcessResult a = GenTree(args);
    args.insert(args.end(), {"--output", path});
    ProcessResult toFile = GenTree(args);
    ProcessResult c = GenTree({"--adapters", "3", "--drives", "5", "--faults", "20", "--seed=2"});
    ASSERT_EQ(a.exitCode, 0);
    EXPECT_EQ(toFile.out, "");
    EXPECT_EQ(ReadWholeFile(path), a.out);
    EXPECT_NE(c.out, a.out);

    ProcessResult bad = GenTree({"--output", dir.Path() + "/missing/tree.xml"});
    EXPECT_EQ(bad.exitCode, 1);
    EXPECT_NE(bad.err.find("gen-tree: " + dir.Path() + "/missing/tree.xml: "), std::string::npos)
        << bad.err;
}

struct Size {
    uint32_t adapters, ports, enclosures, drives, portDrives, logical, batteries, faults;
};

// Checks the tree's validity and that each adapter has what the options asked for.
void ExpectTreeOfSize(const Size& s, uint64_t seed) {
    SCOPED_TRACE("seed " + std::to_string(seed) + ", faults " + std::to_string(s.faults));
    ProcessResult r =
        GenTree({"--adapters", std::to_string(s.adapters), "--ports", std::to_string(s.ports),
                 "--enclosures", std::to_string(s.enclosures), "--drives", std::to_string(s.drives),
                 "--port-drives", std::to_string(s.portDrives), "--logical-drives",
                 std::to_string(s.logical), "--batteries", std::to_string(s.batteries), "--faults",
                 std::to_string(s.faults), "--seed", std::to_string(seed)});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    CTLRaidData tree;
    ASSERT_TRUE(tree.SetDoc(r.out)) << tree.GetResult();
    EXPECT_TRUE(tree.IsValid());
    ASSERT_EQ(tree.GetAdapterCount(), s.adapters);
    for (uint32_t a = 0; a < s.adapters; ++a) {
        CTLRaidData adapter;
        ASSERT_TRUE(tree.GetAdapterData(adapter, a));
        EXPECT_EQ(adapter.GetPhysicalDriveCount(),
                  s.ports * (s.portDrives + s.enclosures * s.drives));
        EXPECT_EQ(adapter.GetEnclosureCount(), s.ports * s.enclosures);
        CTLRaidData doc;
        EXPECT_EQ(adapter.GetRaidLogicalDriveData(doc, s.logical ? s.logical - 1 : 0),
                  s.logical > 0);
        EXPECT_FALSE(adapter.GetRaidLogicalDriveData(doc, s.logical));
        EXPECT_EQ(adapter.GetBatteryData(doc, 0), s.batteries > 0);
        EXPECT_NE(adapter.GetAdapterType(), -1);
        AdapterPciAddress address;
        EXPECT_TRUE(adapter.GetAdapterPciAddress(address));
    }
    // The multiplexer's word agrees with the drives: a tree without faults is OK.
    int32_t disks = 0;
    EXPECT_TRUE(tree.GetPhysicalDiskOverallComponentStatus(disks));
    if (s.faults == 0) {
        EXPECT_EQ(disks, 1);
    }
}

TEST(GenTree, TreesAreValidAndOfTheSizeAskedFor) {
    const Size sizes[] = {
        {0, 2, 1, 8, 0, 2, 1, 0},  {1, 0, 0, 0, 0, 0, 0, 0},   {3, 3, 2, 5, 2, 4, 2, 0},
        {2, 2, 3, 6, 1, 3, 1, 30}, {1, 4, 0, 0, 3, 2, 1, 100},
    };
    for (const Size& s : sizes) {
        ExpectTreeOfSize(s, 1);
        ExpectTreeOfSize(s, 12345);
    }
}

TEST(GenTree, LargeTreeHasUniqueSerialNumbersAndIsWellFormed) {
    // 16 adapters with 256 drives each.
    ProcessResult r = GenTree({"--adapters", "16", "--ports", "4", "--enclosures", "2", "--drives",
                               "32", "--logical-drives", "8", "--faults", "5"});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    std::set<std::string> serials;
    size_t count = 0;
    for (size_t at = r.out.find("<SerialNumber>"); at != std::string::npos;
         at = r.out.find("<SerialNumber>", at + 1)) {
        size_t end = r.out.find('<', at + 14);
        serials.insert(r.out.substr(at + 14, end - at - 14));
        ++count;
    }
    EXPECT_EQ(count, 16u * (1 + 256 + 8));  // adapters, drives, enclosures
    EXPECT_EQ(serials.size(), count);

    CTLRaidData tree;
    ASSERT_TRUE(tree.SetDoc(r.out));
    EXPECT_TRUE(tree.IsValid());
    CTLRaidData adapter;
    ASSERT_TRUE(tree.GetAdapterData(adapter, 15));
    // Every drive has a serial number, so its index by serial number is its place.
    for (uint32_t i = 0; i < 256; i += 51) {
        CTLRaidData drive;
        ASSERT_TRUE(adapter.GetPhysicalDriveData(drive, i));
        uint32_t index = 0;
        EXPECT_TRUE(adapter.GetPhysicalDriveIndex(index, drive));
        EXPECT_EQ(index, i);
    }

    TempDir dir;
    std::string path = dir.Write("big.xml", r.out);
    ProcessResult parsed = RunProcess(
        {"python3", "-c", "import sys, xml.etree.ElementTree as ET; ET.parse(sys.argv[1])", path});
    EXPECT_EQ(parsed.exitCode, 0) << parsed.err;
}

}  // namespace
