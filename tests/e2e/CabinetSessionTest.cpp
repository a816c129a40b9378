// The external enclosures as cabinets, seen through the host simulator: the set-up at start,
// the list of cabinets for the switch and for a client, and requests addressed to a cabinet.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "support/Emhost.h"

namespace {

std::string Sample(const std::string& name) {
    return SourcePath("samples/trees/" + name);
}

EmhostOptions WithTree(const std::string& tree) {
    EmhostOptions o;
    o.sandbox = {"--trace-level", "4", "--sim", "--tree " + Sample(tree)};
    return o;
}

// A request of client 7 with the given members, as emhost reads it.
std::string Request(const std::string& members) {
    return "{\"SIP\":{\"V\":1,\"CMD\":[{" + members + ",\"CI\":7}]}}";
}
// The result line of that request: what ModuleRequest returned and what it added.
std::string Answer(uint32_t ret, const std::string& members, const std::string& added) {
    return "{\"ret\":" + std::to_string(ret) + ",\"record\":{\"SIP\":{\"V\":1,\"CMD\":[{" +
           members + ",\"CI\":7," + added + "}]}}}";
}

struct Exchange {
    std::string members;  // of the request
    uint32_t ret;
    std::string added;  // ST and DA as the answer has them
};

// Starts the module (server cabinet 1) on a tree and sends the exchanges' requests after the
// switch's question for the list; checks every answer in order.
EmhostRun RunExchanges(const std::string& tree, const std::string& expectedList,
                       const std::vector<Exchange>& exchanges) {
    std::vector<std::string> lines = {"{\"host\":\"create\"}", "{\"host\":\"cabinet\",\"nr\":1}",
                                      "{\"host\":\"start\"}", "{\"host\":\"selist\"}"};
    for (const Exchange& e : exchanges)
        lines.push_back(Request(e.members));
    EmhostRun run = RunEmhost(lines, WithTree(tree));
    EXPECT_EQ(run.process.exitCode, 0) << run.process.err;
    EXPECT_EQ(run.lines.size(), lines.size()) << run.process.out;
    if (run.lines.size() != lines.size())
        return run;
    EXPECT_EQ(WithoutElapsed(run.lines[2]), "{\"host\":\"start\",\"ret\":1,\"ms\":T}");
    EXPECT_EQ(run.lines[3], "{\"host\":\"selist\",\"ret\":1,\"list\":" + expectedList + "}");
    for (size_t i = 0; i < exchanges.size(); ++i) {
        const Exchange& e = exchanges[i];
        EXPECT_EQ(run.lines[4 + i], Answer(e.ret, e.members, e.added)) << "request " << e.members;
    }
    return run;
}

TEST(CabinetSessionTest, TwoSupportedEnclosuresBecomeCabinets800And801) {
    EmhostRun run = RunExchanges(
        "cabinets.xml", "[800,801]",
        {
            // The list for a client: two bytes per number, low byte first.
            {"\"OC\":544", 1, "\"ST\":0,\"DA\":{\"RAW\":[32,3,33,3]}"},
            // The VK16 behind port 1; its duplicate behind port 2 took no number.
            {"\"OC\":3072,\"OE\":264,\"CA\":800", 1, "\"ST\":0,\"DA\":\"VK16R\""},
            {"\"OC\":3072,\"OE\":1536,\"CA\":800", 1, "\"ST\":0,\"DA\":\"VK16A2034501\""},
            {"\"OC\":768,\"CA\":800", 1, "\"ST\":0,\"DA\":4"},
            {"\"OC\":1296,\"CA\":800", 1, "\"ST\":0,\"DA\":1"},
            {"\"OC\":57866,\"CA\":800", 1, "\"ST\":0,\"DA\":1"},
            // The VK12 T2 behind port 3.
            {"\"OC\":3072,\"OE\":264,\"CA\":801", 1, "\"ST\":0,\"DA\":\"VK12T21R\""},
            {"\"OC\":3072,\"OE\":1544,\"CA\":801", 1, "\"ST\":0,\"DA\":\"VK12 T2\""},
            {"\"OC\":1026,\"OI\":2,\"CA\":801", 1, "\"ST\":0,\"DA\":41"},
            {"\"OC\":57345,\"OE\":145,\"OI\":2,\"CA\":801", 1, "\"ST\":0,\"DA\":80"},
            {"\"OC\":772,\"OI\":1,\"CA\":801", 1, "\"ST\":0,\"DA\":\"Fan 2\""},
            {"\"OC\":769,\"OI\":2,\"CA\":801", 1, "\"ST\":2"},
            {"\"OC\":3072,\"OE\":7,\"CA\":801", 0, "\"ST\":1"},
            // No such cabinet: nothing but the status.
            {"\"OC\":768,\"CA\":802", 0, "\"ST\":20"},
            // The server itself, by its own number: its adapters, not a cabinet's.
            {"\"OC\":8464,\"CA\":1", 1, "\"ST\":0,\"DA\":2"},
        });
    const char* trace[] = {
        "\nEM_TLRAID           : Got valid TLRAID response",
        "\nEM_TLRAID           : SetupEnclosureMap - Enclosure = 'SGPIO Backplane 8x2.5' found, "
        "currently not supported!",
        "\nEM_TLRAID           : SetupEnclosureMap - SAS Enclosure 's':'Orlane VK16 JBOD' added to "
        "EnclosureMap",
        "\nEM_TLRAID           : SetupEnclosureMap     - duplicate enclosure Orlane VK16 JBOD "
        "found",
        "\nEM_TLRAID           : SetupEnclosureMap - SAS Enclosure 's':'Orlane VK12 T2 JBOD' added "
        "to EnclosureMap",
        "\nEM_TLRAID           : SetupEnclosureMap     - 2 enclosure(s) found",
        "\nEM_TLRAID           : Init, SetupEnclosure OK",
        "_StorageDeviceTreePollingThread",
        "\nEM_TLRAID           : GetServerSeList, NumberOfSeCabinets = 2",
        "\nEM_TLRaid           : REQUEST for cabinet 800 accepted",
        "\nEM_TLRaid           : REQUEST for cabinet 802 rejected",
    };
    EXPECT_TRUE(ContainsInOrder(run.trace, trace));
}

TEST(CabinetSessionTest, OneEnclosureIsOneCabinet) {
    RunExchanges("demo.xml", "[800]",
                 {
                     {"\"OC\":544", 1, "\"ST\":0,\"DA\":{\"RAW\":[32,3]}"},
                     {"\"OC\":1028,\"OI\":6,\"CA\":800", 1, "\"ST\":19"},
                     {"\"OC\":768,\"CA\":801", 0, "\"ST\":20"},
                 });
}

TEST(CabinetSessionTest, WithoutEnclosuresTheListIsEmptyAndAnswered) {
    EmhostRun run = RunExchanges("sas-port.xml", "[]",
                                 {
                                     // No cabinets is an answer: status 0 and no data.
                                     {"\"OC\":544", 1, "\"ST\":0"},
                                     {"\"OC\":257,\"CA\":800", 0, "\"ST\":20"},
                                 });
    EXPECT_NE(run.trace.find("\nEM_TLRAID           : Init, SetupEnclosure FAILED"),
              std::string::npos)
        << run.trace;
}

// The inventory asks each listed cabinet as a client would, and says what the codes mean.
TEST(CabinetSessionTest, InventoryShowsEachCabinetInItsStates) {
    ProcessResult r =
        RunProcess(InSandbox({"--sim", "--tree " + Sample("two-adapters-enclosures.xml")},
                             {BuildPath("emhost"), "inventory"}));
    ASSERT_EQ(r.exitCode, 0) << r.err;
    const char* expected[] = {
        "Overall status:",
        "Cabinets: 800, 801",
        "Cabinet 800: VK16",
        "  chassis model VK16R, vendor ORLANE, serial number VK16A2100011",
        "    #  name   designation  status           location",
        "    2  Fan 3  Fan_3        3 non critical   4 power supply",
        "    3  Fan 4  Fan_4        6 not installed  4 power supply",
        "    #  name           status          location        temperature  warning  critical",
        "    1  Canister 1     4 non critical  3 canister      57 C         55 C     65 C",
        "    4  PSU 1 hotspot  0 unknown       5 power supply  0 C          70 C     80 C",
        "    1  Power Supply 1  2 critical",
        "  Power supply redundancy: 0 not redundant",
        "Cabinet 801: VK12 T2",
        "  chassis model VK12T2, vendor ORLANE, serial number VK12B2100420",
        "    1  Front panel  6 OK    2 LED panel     23 C         40 C     45 C",
        "  Power supply redundancy: 1 redundant",
        "Module deleted.",
    };
    EXPECT_TRUE(ContainsInOrder(r.out, expected));
}

}  // namespace
