// Set-up of the enclosure map: which enclosures become cabinets, their numbers and texts,
// their objects, and the trace of a walk.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "enclosure/EnclosureSetup.h"
#include "enclosure/EnclosureTestTrees.h"
#include "storage/TLRaidData.h"
#include "storage/TreeText.h"
#include "support/CaptureTraceServer.h"
#include "support/Process.h"

namespace {

std::string OneAdapter(const std::string& enclosures) {
    return WholeTree(Adapter("Adapter 0", 0, Port("SAS", 0, enclosures)));
}

// Each object as "key index name [designation] status[/location] [temperatures];".
std::string Objects(const EnclosureMap& map) {
    std::ostringstream out;
    for (const auto& [key, f] : map.m_Fans)
        out << key << " " << f.Index << " " << f.Name << " " << f.Designation << " " << +f.Status
            << "/" << +f.Location << ";";
    for (const auto& [key, t] : map.m_TempSensors)
        out << key << " " << t.Index << " " << t.Name << " " << +t.Status << "/" << +t.Location
            << " " << +t.Temperature << "/" << +t.WarningTemperature << "/"
            << +t.CriticalTemperature << ";";
    for (const auto& [key, s] : map.m_PowerSupplies)
        out << key << " " << s.Index << " " << s.Name << " " << +s.Status << ";";
    return out.str();
}

// Each case of testdata/setup-rules.txt is three lines: "# what", "count cabinets" as the
// set-up gives them, and the whole tree.
TEST(SetupEnclosureMap, Rules) {
    const std::vector<std::string> lines =
        Lines(SourceText("tests/enclosure/testdata/setup-rules.txt"));
    ASSERT_FALSE(lines.empty());
    ASSERT_EQ(lines.size() % 3, 0u);
    for (size_t i = 0; i < lines.size(); i += 3) {
        CTLRaidData doc;
        EXPECT_TRUE(doc.SetDoc(lines[i + 2])) << lines[i];
        EnclosureMap map;
        const int count = SetupEnclosureMap(map, doc);
        EXPECT_EQ(std::to_string(count) + " " + Cabinets(map), lines[i + 1]) << lines[i];
    }
}

// A sensor between the fans and the supplies, fans without status or location.
TEST(SetupEnclosureMap, ObjectsOfACabinet) {
    CTLRaidData doc;
    ASSERT_TRUE(doc.SetDoc(SourceText("tests/enclosure/testdata/cabinet-objects.xml")));
    EnclosureMap map;
    ASSERT_EQ(SetupEnclosureMap(map, doc), 1);
    EXPECT_EQ(Cabinets(map), "800 0/0 3/1/1 |VK16R||1;");
    // Fans count from 1 in their designation; the temperature 300 keeps its low eight bits.
    EXPECT_EQ(Objects(map),
              "800-0 0 F0 Fan_1 2/5;800-1 1 F1 Fan_2 0/0;800-2 2 F2 Fan_3 0/4;"
              "800-0 0 T0 6/4 44/10/31;800-0 0 S0 0;");
    EXPECT_FALSE(map.m_Cabinets.begin()->second.PSRedundancy);
}

TEST(SetupEnclosureMap, Trace) {
    CTLRaidData doc;
    ASSERT_TRUE(doc.SetDoc(OneAdapter(
        Encl("A VK16", "<EnclosureNumber>2</EnclosureNumber>" + Identity("V", "P", "VK16", "S1") +
                           "<Processor Name=\"P0\"><Fan/></Processor>") +
        Encl("Back", Identity("", "", "", "S1")) + Encl("Back", ""))));
    ScopedTraceLevel level(5);
    Debug.Take();
    EnclosureMap map;
    ASSERT_EQ(SetupEnclosureMap(map, doc), 1);
    // The expected text begins with the first message's newline; the file adds one at its end.
    EXPECT_EQ(Debug.Take() + "\n", SourceText("tests/enclosure/testdata/setup-trace.txt"));
}

}  // namespace
