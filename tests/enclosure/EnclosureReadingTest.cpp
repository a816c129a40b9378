// Reading enclosure states from a fresh tree: which changes become events, the bytes of an
// event record, and the cabinet numbers under which the states are compared.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "enclosure/EnclosureSetup.h"
#include "enclosure/EnclosureStates.h"
#include "enclosure/EnclosureTestTrees.h"
#include "frame/CommandRecord.h"
#include "storage/TLRaidData.h"
#include "storage/TreeText.h"
#include "support/CaptureTraceServer.h"

namespace {

// Objects of a processor by their Status texts; "-" leaves the Status element out. A sensor
// is "temperature/status", an empty temperature leaving that element out.
std::string Processor(const std::vector<std::string>& fans,
                      const std::vector<std::string>& sensors = {},
                      const std::vector<std::string>& supplies = {}) {
    auto status = [](const std::string& text) {
        return text == "-" ? std::string() : "<Status>" + text + "</Status>";
    };
    std::string xml = "<Processor Name=\"SES\">";
    for (size_t i = 0; i < fans.size(); ++i)
        xml += "<Fan Name=\"Fan " + std::to_string(i) + "\">" + status(fans[i]) + "</Fan>";
    for (const std::string& sensor : sensors) {
        const size_t slash = sensor.find('/');
        const std::string temperature = sensor.substr(0, slash);
        xml += "<TemperatureSensor Name=\"T\">" +
               (temperature.empty() ? "" : "<Temperature>" + temperature + "</Temperature>") +
               status(sensor.substr(slash + 1)) + "</TemperatureSensor>";
    }
    for (const std::string& supply : supplies)
        xml += "<PowerSupply Name=\"PSU\">" + status(supply) + "</PowerSupply>";
    return xml + "</Processor>";
}

std::string OneEnclosure(const std::string& processor,
                         const std::string& adapterName = "Adapter 0") {
    return WholeTree(Adapter(adapterName, 0, Port("SAS", 0, Encl("JBOD VK16", processor))));
}

// The commands of the events, each as its JSON object, separated by blanks.
std::string Commands(const std::vector<CommandRecord>& events) {
    const std::string prefix = "{\"SIP\":{\"V\":1,\"CMD\":[", suffix = "]}}";
    std::string text;
    for (const CommandRecord& event : events) {
        std::string json = event.ToJson();
        EXPECT_EQ(json.compare(0, prefix.size(), prefix), 0) << json;
        text += (text.empty() ? "" : " ") +
                json.substr(prefix.size(), json.size() - prefix.size() - suffix.size());
    }
    return text;
}

// A map set up from one tree, then held against others.
class Reading {
  public:
    explicit Reading(const std::string& setupTree) {
        CTLRaidData doc;
        EXPECT_TRUE(doc.SetDoc(setupTree));
        EXPECT_GT(SetupEnclosureMap(m_Map, doc), 0);
    }
    // The commands of the events of one reading of the tree.
    std::string Read(const std::string& tree, int expectedResult = 1) {
        CTLRaidData doc;
        EXPECT_TRUE(doc.SetDoc(tree));
        m_Events.clear();
        EXPECT_EQ(ReadEnclosureStates(m_Map, m_Events, doc), expectedResult);
        return Commands(m_Events);
    }
    EnclosureMap m_Map;
    std::vector<CommandRecord> m_Events;
};

TEST(ReadEnclosureStates, OnlyAChangedCodeFires) {
    Reading reading(OneEnclosure(Processor({"OK", "OK"}, {"30/OK"})));
    // Each step: the fans, the sensor, and the events that this reading gives.
    struct Step {
        std::vector<std::string> fans;
        std::string sensor;
        std::string events;
    };
    const Step steps[] = {
        {{"OK", "OK"}, "30/OK", ""},
        {{"Critical", "OK"}, "31/OK", "{\"OC\":769,\"CA\":800,\"ST\":2}"},
        {{"Critical", "OK"}, "45/OK", ""},
        {{"Unrecoverable", "-"}, "/Critical", "{\"OC\":1025,\"CA\":800,\"ST\":5}"},
        {{"OK", "Unknown"},
         "/Critical",
         "{\"OC\":769,\"CA\":800,\"ST\":1} {\"OC\":769,\"OI\":1,\"CA\":800,\"ST\":5}"},
    };
    for (const Step& step : steps) {
        EXPECT_EQ(reading.Read(OneEnclosure(Processor(step.fans, {step.sensor}))), step.events)
            << step.fans[0] << " " << step.sensor;
    }
    const TempSensorRecord& sensor = reading.m_Map.m_TempSensors.at("800-0");
    EXPECT_EQ(sensor.Temperature, 45);  // the last reading that had a temperature
    EXPECT_EQ(sensor.Status, 5);
}

TEST(ReadEnclosureStates, ObjectsAreFoundInAnyOrderUnderTheProcessor) {
    Reading reading(OneEnclosure(Processor({"OK"}, {"30/OK"}, {"OK"})));
    const std::string reversed =
        "<Processor Name=\"SES\"><PowerSupply Name=\"PSU\"><Status>Critical</Status>"
        "</PowerSupply><TemperatureSensor Name=\"T\"><Temperature>70</Temperature>"
        "<Status>Critical</Status></TemperatureSensor><Fan Name=\"Fan 0\">"
        "<Status>Critical</Status></Fan></Processor>";
    EXPECT_EQ(reading.Read(OneEnclosure(reversed)),
              "{\"OC\":769,\"CA\":800,\"ST\":2} {\"OC\":1025,\"CA\":800,\"ST\":5} "
              "{\"OC\":1281,\"CA\":800,\"ST\":2}");
}

TEST(ReadEnclosureStates, RedundancyIsCheckedBehindEverySupply) {
    Reading reading(OneEnclosure(Processor({}, {}, {"OK", "OK"})));
    // Set-up stores "not redundant", so the first reading finds the change.
    EXPECT_EQ(reading.Read(OneEnclosure(Processor({}, {}, {"OK", "Non Critical"}))),
              "{\"OC\":1296,\"CA\":800,\"ST\":1}");
    EXPECT_EQ(reading.Read(OneEnclosure(Processor({}, {}, {"Critical", "OK"}))),
              "{\"OC\":1281,\"CA\":800,\"ST\":2} {\"OC\":1296,\"CA\":800,\"ST\":0}");
    EXPECT_EQ(reading.Read(OneEnclosure(Processor({}, {}, {"Critical", "Critical"}))),
              "{\"OC\":1281,\"OI\":1,\"CA\":800,\"ST\":2}");
    // Both recover: redundancy comes back in the pass of the second one.
    EXPECT_EQ(reading.Read(OneEnclosure(Processor({}, {}, {"OK", "OK"}))),
              "{\"OC\":1281,\"CA\":800,\"ST\":1} {\"OC\":1281,\"OI\":1,\"CA\":800,\"ST\":1} "
              "{\"OC\":1296,\"CA\":800,\"ST\":1}");
}

TEST(ReadEnclosureStates, CabinetsAreCountedPerPortOverEveryEnclosure) {
    // Set-up skips the backplane: A is cabinet 800, B on the second port 801.
    auto tree = [](const std::string& backplane, const std::string& a, const std::string& b) {
        return WholeTree(Adapter(
            "Adapter 0", 0,
            Port("SAS", 0,
                 Encl("Backplane", Processor({backplane})) + Encl("A VK16", Processor({a}))) +
                Port("SAS", 1, Encl("B VK12", Identity("", "", "", "B") + Processor({b})))));
    };
    Reading reading(tree("OK", "OK", "OK"));
    ASSERT_EQ(Cabinets(reading.m_Map).substr(0, 4), "800 ");
    ASSERT_EQ(reading.m_Map.m_Fans.size(), 2u);
    // Read again, the backplane is 800, A is 801, and B on its port is 800 again.
    EXPECT_EQ(reading.Read(tree("Unknown", "Critical", "Not Installed")),
              "{\"OC\":769,\"CA\":800,\"ST\":5} {\"OC\":769,\"CA\":801,\"ST\":2} "
              "{\"OC\":769,\"CA\":800,\"ST\":6}");
    EXPECT_EQ(reading.m_Map.m_Fans.at("800-0").Status, 6);
    EXPECT_EQ(reading.m_Map.m_Fans.at("801-0").Status, 2);
    EXPECT_EQ(reading.m_Map.m_Fans.size(), 2u);
}

TEST(ReadEnclosureStates, ObjectsWithoutRecordsAreOnlyWalked) {
    Reading reading(OneEnclosure(Processor({"OK"}, {"30/OK"}, {"OK"})));
    EXPECT_EQ(reading.Read(OneEnclosure(Processor({"OK", "Critical", "Critical"},
                                                  {"30/OK", "40/Critical"}, {"OK", "Critical"}))),
              "");
    EXPECT_EQ(reading.m_Map.m_Fans.size() + reading.m_Map.m_TempSensors.size() +
                  reading.m_Map.m_PowerSupplies.size(),
              3u);
}

TEST(ReadEnclosureStates, EndsOfTheWalk) {
    Reading reading(OneEnclosure(Processor({"OK"})));
    const std::string failed =
        Adapter("Adapter 0", 0, Port("SAS", 0, Encl("A VK16", Processor({"Critical"}))));

    // Not ready: nothing read, nothing stored, result 1.
    std::string notReady = WholeTree(failed);
    notReady.replace(notReady.find("Operational"), 11, "Not Ready");
    EXPECT_EQ(reading.Read(notReady), "");
    EXPECT_EQ(reading.m_Map.m_Fans.at("800-0").Status, 1);

    // An adapter without a name ends the walk with 0; what was found before stays.
    EXPECT_EQ(reading.Read(WholeTree(failed + Adapter("", 1, "")), 0),
              "{\"OC\":769,\"CA\":800,\"ST\":2}");
    EXPECT_EQ(reading.m_Map.m_Fans.at("800-0").Status, 2);
    // A short name is enough here.
    EXPECT_EQ(reading.Read(OneEnclosure(Processor({"OK"}), "A")),
              "{\"OC\":769,\"CA\":800,\"ST\":1}");

    // The caller's positions are kept.
    CTLRaidData doc;
    ASSERT_TRUE(doc.SetDoc(WholeTree(failed)));
    ASSERT_TRUE(doc.FindElem(kStorageTreeRoot) && doc.IntoElem() && doc.FindElem("System"));
    const uint32_t parent = doc.GetParentPos(), main = doc.GetMainPos();
    std::vector<CommandRecord> events;
    EXPECT_EQ(ReadEnclosureStates(reading.m_Map, events, doc), 1);
    EXPECT_EQ(events.size(), 1u);
    EXPECT_EQ(doc.GetParentPos(), parent);
    EXPECT_EQ(doc.GetMainPos(), main);
}

TEST(ReadEnclosureStates, Trace) {
    const std::string setup = OneEnclosure(Processor({"OK"}, {"30/OK"}, {"OK", "OK"}));
    Reading reading(setup);
    reading.Read(setup);  // redundancy found at the first reading
    ScopedTraceLevel level(4);
    reading.Read(OneEnclosure(Processor({"Critical"}, {"41/Critical"}, {"Critical", "OK"})));
    EXPECT_EQ(Debug.Take() + "\n", SourceText("tests/enclosure/testdata/reading-trace.txt"));
}

}  // namespace
