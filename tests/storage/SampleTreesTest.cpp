// The sample trees and their expected exports: well formed for independent parsers, and each
// expected JSON holding the tree of its expected XML.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "storage/TreeText.h"
#include "support/Process.h"

namespace {

// Parses every file given; for each X.json, compares it with X.xml as the JSON writer maps
// elements: "@" members are attributes, "#text" or a plain value the text, arrays siblings of
// one name. JSON gathers siblings of a name at the first, so children compare sorted by name.
const char* const kCheck = R"(import json, sys, xml.etree.ElementTree as ET
def js(name, v):
    if not isinstance(v, dict):
        return (name, (), str(v), ())
    kids = [js(k, e) for k, x in v.items() if k[0] != '@' and k != '#text'
            for e in (x if isinstance(x, list) else [x])]
    return (name, tuple((k[1:], str(x)) for k, x in v.items() if k[0] == '@'),
            str(v.get('#text', '')), tuple(sorted(kids, key=lambda n: n[0])))
def xs(e):
    kids = sorted((xs(c) for c in e), key=lambda n: n[0])
    return (e.tag, tuple(e.attrib.items()), '' if len(e) else e.text or '', tuple(kids))
for path in sys.argv[1:]:
    if path.endswith('.json'):
        (name, value), = json.load(open(path)).items()
        assert js(name, value) == xs(ET.parse(path[:-5] + '.xml').getroot()), path
    else:
        ET.parse(path)
print(len(sys.argv) - 1)
)";

TEST(SampleTrees, WellFormedAndTheExportsHoldTheirTrees) {
    std::vector<std::string> names = SampleTreeNames();
    ASSERT_GE(names.size(), 14u);
    std::vector<std::string> command = {"python3", "-c", kCheck};
    for (const std::string& name : names) {
        const std::string base = name.substr(0, name.size() - 4);
        command.push_back(SourcePath("samples/trees/" + name));
        command.push_back(SourcePath("samples/export/" + base + ".xml"));
        command.push_back(SourcePath("samples/export/" + base + ".json"));
    }
    ProcessResult result = RunProcess(command);
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.out, std::to_string(command.size() - 3) + "\n");
}

}  // namespace
