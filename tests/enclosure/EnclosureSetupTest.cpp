// Set-up of the enclosure map: which enclosures become cabinets, their numbers and texts,
// their objects, and the trace of a walk.
#include <gtest/gtest.h>

#include <string>

#include "enclosure/EnclosureSetup.h"
#include "enclosure/EnclosureTestTrees.h"
#include "storage/TLRaidData.h"
#include "storage/TreeText.h"
#include "support/CaptureTraceServer.h"

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

const std::string kProcessor =
    "<Processor Name=\"P\"><Fan/><Fan/><TemperatureSensor/><PowerSupply/></Processor>";

TEST(SetupEnclosureMap, Rules) {
    const std::string kSystem = "<amEMTL Version=\"2\"><System>", kEnd = "</System></amEMTL>";
    const std::string kAdapter = Adapter("Adapter 0", 0, Port("SAS", 0, Encl("A VK16", "")));
    struct Row {
        const char* what;
        std::string tree;
        int count;
        std::string cabinets;
    };
    const Row rows[] = {
        {"one enclosure with everything",
         WholeTree(Adapter(
             "Adapter 3", 3,
             Port("SAS", 0,
                  Encl("Orlane VK16 JBOD", "<EnclosureNumber>7</EnclosureNumber>" +
                                               Identity("V", "P", "VK16", "S1") + kProcessor)))),
         1, "800 3/7 2/1/1 P|VK16R|V|S1;"},
        {"texts carry over to the next enclosure, the suffix is not doubled",
         OneAdapter(Encl("A VK16", Identity("V1", "P1", "VK12", "S1")) +
                    Encl("B VK12", Identity("", "", "", "S2"))),
         2, "800 0/0 0/0/0 P1|VK12R|V1|S1;801 0/0 0/0/0 P1|VK12R|V1|S2;"},
        {"a skipped enclosure's texts carry over too",
         OneAdapter(Encl("Backplane", Identity("BV", "BP", "", "BS")) +
                    Encl("B VK16", Identity("", "", "", "S2"))),
         1, "800 0/0 0/0/0 BP|VK16R|BV|S2;"},
        {"a duplicate's texts carry over, and the next one gets its number",
         OneAdapter(Encl("A VK16", Identity("V1", "P1", "", "S1")) +
                    Encl("B VK16", Identity("V2", "P2", "", "S1")) +
                    Encl("C VK12", Identity("", "", "", "S3"))),
         2, "800 0/0 0/0/0 P1|VK16R|V1|S1;801 0/0 0/0/0 P2|VK12R|V2|S3;"},
        {"a missing serial number inherits and is not held against the others",
         OneAdapter(Encl("A VK16", Identity("", "", "", "S1")) + Encl("B VK16", "")), 2,
         "800 0/0 0/0/0 |VK16R||S1;801 0/0 0/0/0 |VK16R||S1;"},
        {"two empty serial numbers match",
         OneAdapter(Encl("A VK16", "<SerialNumber/>") + Encl("B VK16", "<SerialNumber/>") +
                    Encl("C VK16", "")),
         2, "800 0/0 0/0/0 |VK16R||;801 0/0 0/0/0 |VK16R||;"},
        {"models from the name, in the order of the rows",
         OneAdapter(Encl("X VK16 T2", Identity("", "", "", "1")) +
                    Encl("JABIL VK12", Identity("", "J", "", "2")) +
                    Encl("VK12 T2 box", Identity("", "", "", "3")) +
                    Encl("VK12", Identity("", "", "", "4")) +
                    Encl("JABIL box", Identity("", "", "", "5"))),
         4,
         "800 0/0 0/0/0 |VK16R||1;801 0/0 0/0/0 Orlane VK16|VK16R||2;"
         "802 0/0 0/0/0 J|VK12T2R||3;803 0/0 0/0/0 J|VK12R||4;"},
        {"once a ChassisID was seen, names no longer give the model",
         OneAdapter(Encl("A VK12", Identity("", "", "VK16T2", "1")) +
                    Encl("B VK12", Identity("", "", "", "2")) +
                    Encl("C VK12", Identity("", "", "VK12R", "3")) +
                    Encl("D VK12", Identity("", "", "Other", "4"))),
         4,
         "800 0/0 0/0/0 |VK16T2R||1;801 0/0 0/0/0 |VK16T2R||2;"
         "802 0/0 0/0/0 |VK12R||3;803 0/0 0/0/0 |Other||4;"},
        {"a processor ahead of the serial number is not found",
         OneAdapter(Encl("A VK16", kProcessor + Identity("", "", "", "1")) +
                    Encl("B VK16", Identity("", "", "", "2") + kProcessor)),
         2, "800 0/0 0/0/0 |VK16R||1;801 0/0 2/1/1 |VK16R||2;"},
        {"numbers run on across ports and adapters",
         WholeTree(
             Adapter("Adapter 0", 0,
                     Port("SAS", 0, Encl("A VK16", Identity("", "", "", "1"))) +
                         Port("SAS", 1, Encl("B VK16", Identity("", "", "", "2")))) +
             Adapter("Adapter 1", 1, Port("SAS", 0, Encl("C VK16", Identity("", "", "", "3"))))),
         3, "800 0/0 0/0/0 |VK16R||1;801 0/0 0/0/0 |VK16R||2;802 1/0 0/0/0 |VK16R||3;"},
        {"a short adapter name ends the walk, six characters are enough",
         WholeTree(
             Adapter("Adapt0", 0, Port("SAS", 0, Encl("A VK16", Identity("", "", "", "1")))) +
             Adapter("Adp1", 1, Port("SAS", 0, Encl("B VK16", Identity("", "", "", "2")))) +
             Adapter("Adapter 2", 2, Port("SAS", 0, Encl("C VK16", Identity("", "", "", "3"))))),
         1, "800 0/0 0/0/0 |VK16R||1;"},
        {"a port of another type hides the SAS ports behind it, not the next adapter",
         WholeTree(
             Adapter(
                 "Adapter 0", 0,
                 Port("SATA", 0, "") + Port("SAS", 1, Encl("A VK16", Identity("", "", "", "1")))) +
             Adapter("Adapter 1", 1, Port("SAS", 0, Encl("B VK16", Identity("", "", "", "2"))))),
         1, "800 1/0 0/0/0 |VK16R||2;"},
        {"version 1: SASPort under the adapter, its Type not read",
         WholeTree(Adapter("Adapter 0", 0,
                           "<SASPort Type=\"SATA\">" + Encl("A VK16", Identity("", "", "", "1")) +
                               "</SASPort><Port Type=\"SAS\">" +
                               Encl("B VK16", Identity("", "", "", "2")) + "</Port>",
                           true),
                   "", "1"),
         1, "800 0/0 0/0/0 |VK16R||1;"},
        {"other versions read no SASPort",
         WholeTree(Adapter("Adapter 0", 0,
                           "<SASPort>" + Encl("A VK16", Identity("", "", "", "1")) + "</SASPort>",
                           true)),
         0, ""},
        {"a multiplexer that is not ready",
         kSystem + "<Multiplexer><Status>Busy</Status></Multiplexer>" + kAdapter + kEnd, 0, ""},
        {"a multiplexer without status", kSystem + "<Multiplexer/>" + kAdapter + kEnd, 0, ""},
        {"no multiplexer", kSystem + kAdapter + kEnd, 0, ""},
    };
    for (const Row& row : rows) {
        SetupResult r = RunSetup(row.tree);
        EXPECT_EQ(r.count, row.count) << row.what;
        EXPECT_EQ(r.cabinets, row.cabinets) << row.what;
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
    const std::string tag = "\nEM_TLRAID           : ";
    const std::string more = "\n                    :                       - ";
    EXPECT_EQ(Debug.Take(),
              tag + "-> SetupEnclosureMap" + tag +
                  "SetupEnclosureMap     - Multiplexer status Operational" + tag +
                  "SetupEnclosureMap     - controller Adapter 0" + tag +
                  "SetupEnclosureMap     - SAS port 0 (Encl)" + tag + "XMLVendor V found" + tag +
                  "XMLProduct P found" + tag + "XMLChassisID P found" + tag +
                  "XMLSerialNumber S1 found" + tag +
                  "SetupEnclosureMap     - supported enclosure A VK16 found" + tag +
                  "SetupEnclosureMap - Enclosure = 'A VK16', Processor 'P0': 1 Fans, 0 Temp "
                  "Sensors, 0 Power Supplies" +
                  tag + "ChassisID from TLRAID = VK16R" + tag +
                  "SetupEnclosureMap - SAS Enclosure 's':'A VK16' added to EnclosureMap" + more +
                  "CabinetModel = P" + more + "ChassisModel = VK16R" + more +
                  "CtrNr = 0, Enclosure = 2, SerialNumber = S1" + more +
                  "1 Fans, 0 Temp Sensors, 0 Power Supplies" + tag + "XMLSerialNumber S1 found" +
                  tag + "SetupEnclosureMap     - duplicate enclosure Back found" + tag +
                  "SetupEnclosureMap - Enclosure = 'Back' is duplicate, ignored!" + tag +
                  "XMLSerialNumber not found" + tag +
                  "SetupEnclosureMap - Enclosure = 'Back' found, currently not supported!" + tag +
                  "SetupEnclosureMap     - 1 enclosure(s) found" + tag + "<- SetupEnclosureMap");
}

}  // namespace
