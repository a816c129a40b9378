// The sample trees: well formed for an independent parser, and each one described.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "storage/TreeText.h"
#include "support/Process.h"

namespace {

TEST(SampleTrees, AllWellFormedForAnIndependentParser) {
    std::vector<std::string> names = SampleTreeNames();
    ASSERT_GE(names.size(), 14u);
    std::vector<std::string> command = {"python3", "-c",
                                        "import sys, xml.etree.ElementTree as ET\n"
                                        "for path in sys.argv[1:]:\n"
                                        "    ET.parse(path)\n"
                                        "print(len(sys.argv) - 1)\n"};
    for (const std::string& name : names) {
        command.push_back(SourcePath("samples/trees/" + name));
    }
    ProcessResult result = RunProcess(command);
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.out, std::to_string(names.size()) + "\n");
}

TEST(SampleTrees, EachOneIsDescribedInTheReadme) {
    std::ifstream in(SourcePath("samples/trees/README.md"));
    std::string readme((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    ASSERT_FALSE(readme.empty());
    for (const std::string& name : SampleTreeNames()) {
        EXPECT_NE(readme.find("| `" + name + "` |"), std::string::npos) << name;
    }
}

}  // namespace
