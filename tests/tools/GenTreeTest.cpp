// gen-tree: its determinism, and trees that the storage reader and a second parser take as
// valid, with the sizes asked for and serial numbers of their own.
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
}

struct Size {
    uint32_t adapters, ports, enclosures, drives, portDrives, logical, batteries, faults;
};

// Checks the tree's validity and that each adapter has what the options asked for.
void ExpectTreeOfSize(const Size& s, uint64_t seed) {
    SCOPED_TRACE("seed " + std::to_string(seed) + ", faults " + std::to_string(s.faults));
    const uint32_t values[] = {s.adapters,   s.ports,   s.enclosures, s.drives,
                               s.portDrives, s.logical, s.batteries,  s.faults};
    std::vector<std::string> args = {"--seed", std::to_string(seed)};
    for (const char* option : {"--adapters", "--ports", "--enclosures", "--drives", "--port-drives",
                               "--logical-drives", "--batteries", "--faults"})
        args.insert(args.end(), {option, std::to_string(values[args.size() / 2 - 1])});
    ProcessResult r = GenTree(args);
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
    // Every adapter, drive and enclosure has a serial number of its own.
    std::set<std::string> serials;
    size_t count = 0;
    for (size_t at = r.out.find("<SerialNumber>"); at != std::string::npos;
         at = r.out.find("<SerialNumber>", at + 1), ++count)
        serials.insert(r.out.substr(at + 14, r.out.find('<', at + 14) - at - 14));
    EXPECT_EQ(count, s.adapters * (1 + s.ports * (s.portDrives + s.enclosures * (s.drives + 1))));
    EXPECT_EQ(serials.size(), count);
    // A second parser finds the text well formed.
    TempDir dir;
    const ProcessResult parsed = RunProcess(
        {"python3", "-c", "import sys, xml.etree.ElementTree as ET; ET.parse(sys.argv[1])",
         dir.Write("tree.xml", r.out)});
    EXPECT_EQ(parsed.exitCode, 0) << parsed.err;
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
        {2, 2, 3, 6, 1, 3, 1, 30}, {1, 4, 0, 0, 3, 2, 1, 100}, {16, 4, 2, 32, 0, 8, 0, 5},
    };
    for (const Size& s : sizes) {
        ExpectTreeOfSize(s, 1);
        ExpectTreeOfSize(s, 12345);
    }
}

}  // namespace
