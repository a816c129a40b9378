// Set-up of the enclosure map: which enclosures become cabinets, their numbers and texts,
// their objects, and the trace of a walk.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "enclosure/EnclosureSetup.h"
#include "enclosure/EnclosureTestTrees.h"
#include "storage/TLRaidData.h"
#include "storage/TreeText.h"
#include "support/CaptureTraceServer.h"
#include "support/Process.h"

namespace {

struct SetupResult {
    int count;
    std::string cabinets;
};

SetupResult RunSetup(const std::string& text) {
    CTLRaidData doc;
    EXPECT_TRUE(doc.SetDoc(text)) << text;
    EnclosureMap map;
    int count = SetupEnclosureMap(map, doc);
    return {count, Cabinets(map)};
}

std::string OneAdapter(const std::string& enclosures) {
    return WholeTree(Adapter("Adapter 0", 0, Port("SAS", 0, enclosures)));
}

// Each object as "key index name [designation] status[/location] [temperatures];".
std::string Objects(const EnclosureMap& map) {
    std::string text;
    auto add = [&text](const std::string& key, uint32_t index, const std::string& name,
                       const std::string& rest) {
        text += key + " " + std::to_string(index) + " " + name + " " + rest + ";";
    };
    auto n = [](uint32_t value) { return std::to_string(value); };
    for (const auto& [key, fan] : map.m_Fans)
        add(key, fan.Index, fan.Name,
            fan.Designation + " " + n(fan.Status) + "/" + n(fan.Location));
    for (const auto& [key, t] : map.m_TempSensors)
        add(key, t.Index, t.Name,
            n(t.Status) + "/" + n(t.Location) + " " + n(t.Temperature) + "/" +
                n(t.WarningTemperature) + "/" + n(t.CriticalTemperature));
    for (const auto& [key, supply] : map.m_PowerSupplies)
        add(key, supply.Index, supply.Name, n(supply.Status));
    return text;
}

// Each case of testdata/setup-rules.txt is three lines: "# what", "count cabinets" as the
// set-up gives them, and the whole tree.
TEST(SetupEnclosureMap, Rules) {
    const std::vector<std::string> lines =
        Lines(SourceText("tests/enclosure/testdata/setup-rules.txt"));
    ASSERT_FALSE(lines.empty());
    ASSERT_EQ(lines.size() % 3, 0u);
    for (size_t i = 0; i < lines.size(); i += 3) {
        const SetupResult r = RunSetup(lines[i + 2]);
        EXPECT_EQ(std::to_string(r.count) + " " + r.cabinets, lines[i + 1]) << lines[i];
    }
}

TEST(SetupEnclosureMap, ObjectsOfACabinet) {
    CTLRaidData doc;
    ASSERT_TRUE(doc.SetDoc(OneAdapter(
        Encl("A VK16",
             Identity("", "", "", "1") +
                 "<Processor Name=\"P\">"
                 "<Fan Name=\"F0\"><Status>Critical</Status><Location>FEM (1)</Location></Fan>"
                 "<Fan Name=\"F1\"/>"
                 "<PowerSupply Name=\"S0\"><Status>Not Installed</Status></PowerSupply>"
                 "<TemperatureSensor Name=\"T0\"><Status>OK</Status><Location>FEM (1)</Location>"
                 "<CriticalTemperatureH>0x1F</CriticalTemperatureH>"
                 "<WarningTemperatureH>012</WarningTemperatureH><Temperature>300</Temperature>"
                 "</TemperatureSensor>"
                 "<Fan Name=\"F2\"><Location>Power (2)</Location></Fan>"
                 "</Processor>"))));
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
