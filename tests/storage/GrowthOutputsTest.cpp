// The answers and traces of the requests over whole trees (cleaning, SMART of all drives, the
// overall component statuses, the export as XML and JSON) on trees that grow in width, depth
// and attributes, on the sample trees and on small odd ones, against the figures kept in testdata.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "../bench/GrowthTreeGen.h"
#include "storage/StorageTreeConvert.h"
#include "storage/TLRaidData.h"
#include "storage/TreeText.h"
#include "storage/XmlValidator.h"
#include "support/CaptureTraceServer.h"

namespace {

// One line per answer: its name, and a hash and the length of the answer with its trace.
std::string Line(const std::string& name, const std::string& answer) {
    const std::string text = answer + "|" + Debug.Take();
    uint64_t hash = 0xcbf29ce484222325ull;
    for (unsigned char c : text) {
        hash = (hash ^ c) * 0x100000001b3ull;
    }
    std::ostringstream line;
    line << name << ' ' << std::hex << hash << std::dec << ' ' << text.size() << '\n';
    return line.str();
}

std::string Answers(const std::string& name, const std::string& text) {
    std::string lines = Line(name + " clean", CleanStorageTreeText(text));
    CTLRaidData tree;
    tree.SetDoc(text);
    lines += Line(name + " smart", std::to_string(tree.GetSmartFlagOfAllDrives()));
    int32_t disks = 0;
    const bool disksTaken = tree.GetPhysicalDiskOverallComponentStatus(disks);
    lines += Line(name + " disks", std::to_string(disksTaken) + " " + std::to_string(disks));
    uint32_t bbu = 0;
    const bool bbuSeen = tree.GetBbuOverallComponentStatus(bbu);
    lines += Line(name + " bbu", std::to_string(bbuSeen) + " " + std::to_string(bbu));
    for (int format : {int(kStorageTreeXml), int(kStorageTreeJson)}) {
        std::string out;
        const bool done = ExportStorageTree(tree, format, out);
        lines += Line(name + " export" + std::to_string(format), std::to_string(done) + out);
    }
    return lines;
}

TEST(GrowthOutputs, SameAsRecorded) {
    ScopedTraceLevel level(5);
    Debug.Take();
    std::string lines;
    const GrowthShape shapes[] = {{1, 1, 1},   {10, 1, 1}, {100, 1, 1}, {1, 10, 1},
                                  {1, 100, 1}, {1, 1, 10}, {10, 1, 100}};
    for (const GrowthShape& s : shapes) {
        const std::string name = "w" + std::to_string(s.nDrives) + "d" + std::to_string(s.nDepth) +
                                 "a" + std::to_string(s.nAttribs);
        lines += Answers(name, GrowthTreeGen::Make(s));
    }
    for (const std::string& sample : SampleTreeNames()) {
        lines += Answers(sample, SampleTree(sample));
    }
    // NUL bytes in names, duplicate, bare and valueless attributes.
    for (const std::string odd : {"attrib-name-nul", "attrib-odd", "export-dup", "tag-name-nul"}) {
        lines += Answers(odd, SourceText("tests/storage/testdata/odd/" + odd + ".xml"));
    }
    const std::string path = std::string(TLR_SOURCE_DIR) + "/tests/storage/testdata/growth.txt";
    if (std::getenv("TLR_RECORD_GROWTH")) {
        std::ofstream(path, std::ios::binary) << lines;
    }
    EXPECT_EQ(lines, SourceText("tests/storage/testdata/growth.txt"));
}

}  // namespace
