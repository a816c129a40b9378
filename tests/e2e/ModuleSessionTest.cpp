// The shipped module through the host simulator, as the agent daemon drives it: its entry
// points, one whole session against the REST daemon simulator on a tree with adapters and
// cabinets, on a host that lists the sample PCI devices. The logic behind each answer has
// its own tests; this shows that every path reaches it.
#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <string>
#include <vector>

#include "e2e/HostSessions.h"
#include "support/SandboxHost.h"

namespace {

// The information block of 246 bytes: kind 3, name and description zero filled, class
// bits 10; the filler bytes 0xA5 stay where the module writes nothing.
std::string InfoBlock() {
    auto padded = [](const std::string& text) { return text + std::string(100 - text.size(), 0); };
    const std::string bytes = std::string("\xf6\0\0\0", 4) + std::string(4, '\xa5') + "\xa6" +
                              std::string(12, '\xa5') + "\xa6" + std::string(20, '\xa5') +
                              std::string("\x03\0\0\0", 4) + padded("EM_TLRAID") +
                              padded("TLRAID extension module");
    std::string hex;
    for (const unsigned char c : bytes)
        hex += {"0123456789abcdef"[c >> 4], "0123456789abcdef"[c & 15]};
    return hex;
}

}  // namespace

const std::vector<Exchange>& SessionExchanges() {
    static const std::vector<Exchange> exchanges = {
        {R"({"host":"name"})", R"({"host":"name","ret":1,"name":"EM_TLRAID","module_name":null})"},
        {R"({"host":"setup","action":2})", R"({"host":"setup","ret":1})"},
        {R"({"host":"create"})", R"({"host":"create","ret":1})"},
        {R"({"host":"create"})", R"({"host":"create","ret":1})"},
        {R"({"host":"name"})",
         R"({"host":"name","ret":1,"name":"EM_TLRAID","module_name":"EM_TLRAID"})"},
        {R"({"host":"info","size":246})",
         R"({"host":"info","ret":1,"block":")" + InfoBlock() + "\"}"},
        {R"({"host":"detected"})", R"({"host":"detected","ret":1})"},
        {R"({"host":"cabinet","nr":1})", R"({"host":"cabinet","ret":1})"},
        {R"({"host":"start"})", R"({"host":"start","ret":1,"ms":T})"},
        {R"({"host":"switch-started"})",
         R"({"switch-request":{"SIP":{"V":1,"CMD":[{"OC":8467,"CA":1}]}},"timeout_ms":5000})"},
        {"", R"({"switch-request":{"SIP":{"V":1,"CMD":[{"OC":8468,"CA":1}]}},"timeout_ms":5000})"},
        {"", R"({"host":"switch-started","ret":0,"ms":T})"},
        {R"({"host":"selist"})", R"({"host":"selist","ret":1,"list":[800,801]})"},
        // The switch's answers to 8467 and 8468 decide the customer replaceable parts.
        {R"({"SIP":{"V":1,"CMD":[{"OC":8490,"CI":7}]}})",
         R"({"ret":1,"record":{"SIP":{"V":1,"CMD":[{"OC":8490,"CI":7,"ST":0,"DA":1}]}}})"},
        {R"({"SIP":{"V":1,"CMD":[{"OC":8464,"CI":7}]}})",
         R"({"ret":1,"record":{"SIP":{"V":1,"CMD":[{"OC":8464,"CI":7,"ST":0,"DA":2}]}}})"},
        {R"({"SIP":{"V":1,"CMD":[{"OC":544,"CI":7}]}})",
         R"({"ret":1,"record":{"SIP":{"V":1,"CMD":[{"OC":544,"CI":7,"ST":0,"DA":{"RAW":[32,3,33,3]}}]}}})"},
        {R"({"SIP":{"V":1,"CMD":[{"OC":3072,"OE":264,"CA":800,"CI":7}]}})",
         R"({"ret":1,"record":{"SIP":{"V":1,"CMD":[{"OC":3072,"OE":264,"CA":800,"CI":7,"ST":0,"DA":"VK16R"}]}}})"},
        {R"({"SIP":{"V":1,"CMD":[{"OC":768,"CA":802,"CI":7}]}})",
         R"({"ret":0,"record":{"SIP":{"V":1,"CMD":[{"OC":768,"CA":802,"CI":7,"ST":20}]}}})"},
        // The PCI identity scans the host; the tree gives its adapters no PCI instance.
        {R"({"SIP":{"V":1,"CMD":[{"OC":8472,"CI":7}]}})",
         R"({"ret":1,"record":{"SIP":{"V":1,"CMD":[{"OC":8472,"CI":7,"ST":19}]}}})"},
        // The daemon echoes a Redfish body, which goes out without the escapes' backslashes.
        {R"({"SIP":{"V":1,"CMD":[{"OC":8657,"CI":4,"DA":"{\\\"Id\\\":1}"}]}})",
         R"({"ret":1,"record":{"SIP":{"V":1,"CMD":[{"OC":8657,"CI":4,"DA":"{\"Id\":1}","ST":0}]}}})"},
        {R"({"SIP":{"V":1,"CMD":[{"OC":8656,"CI":7}]}})", "the export, checked below"},
        {R"({"host":"notify","code":131072})", R"({"host":"notify","ret":0})"},
        {R"({"host":"stop"})", R"({"host":"stop","ret":1,"ms":T})"},
        {R"({"host":"delete"})", R"({"host":"delete","ret":1})"},
        {R"({"host":"delete"})", R"({"host":"delete","ret":0})"},
    };
    return exchanges;
}

namespace {

TEST_F(HostSessions, LineProtocolWithAdaptersAndCabinets) {
    const EmhostRun& run = Session();
    const std::vector<Exchange>& exchanges = SessionExchanges();
    ASSERT_EQ(run.process.exitCode, 0) << run.process.err;
    ASSERT_EQ(run.lines.size(), exchanges.size()) << run.process.out;
    for (size_t i = 0; i < exchanges.size(); ++i) {
        if (exchanges[i].input.find("8656") != std::string::npos) {
            rapidjson::Document answer;
            answer.Parse(run.lines[i].c_str());
            ASSERT_TRUE(answer.IsObject()) << run.lines[i];
            const rapidjson::Value& command = answer["record"]["SIP"]["CMD"][0];
            EXPECT_EQ(command["ST"].GetInt(), 0);
            EXPECT_EQ(command["DA"].GetString(),
                      ReadWholeFile(SourcePath("samples/export/cabinets.xml")));
            continue;
        }
        EXPECT_EQ(WithoutElapsed(run.lines[i]), exchanges[i].output) << exchanges[i].input;
    }

    const char* trace[] = {
        "\nEM_TLRAID           : ## Setup action \"RESTORE\" call - no action function defined",
        "\nEM DLL (EM_TLRAID ) : Create module",
        "\nEM DLL (EM_TLRAID ) : ## ERROR: Module already existing!\n",
        "\n\nEM_TLRAID           : ## Server cabinet number = 1 ##\n",
        "\n### Starting module EM_TLRAID ###\n",
        "\nEM_TLRAID           : Got valid TLRAID response",
        "\nEM_TLRAID           : SetupEnclosureMap     - 2 enclosure(s) found",
        "\nEM_TLRAID           : Init, SetupEnclosure OK",
        "_StorageDeviceTreePollingThread",
        "\nEM_TLRAID           : HDD CSS component",
        "\nEM_TLRAID           : BBU NOT CSS component",
        "\nEM_TLRAID           : GetServerSeList, NumberOfSeCabinets = 2",
        "\nEM_TLRaid           : REQUEST for cabinet 800 accepted",
        "\nEM_TLRaid           : REQUEST for cabinet 802 rejected",
        "\nCSystemAdapter      : Found 8 PCI devices",
        "\nEM_TLRAID           : *** SCN_SWITCH_SHUTDOWN *** \n",
        "\n### Stopping module EM_TLRAID ###\n",
        "\nEM DLL (EM_TLRAID ) : .. Module destroyed successfully!",
    };
    EXPECT_TRUE(ContainsInOrder(run.trace, trace));
    // The level comes from the host's configuration: nothing of level 5 is written.
    EXPECT_EQ(run.trace.find("\nTLRAIDRestClient::GetXmlSdt"), std::string::npos);

    const std::string requests = SessionRequests();
    EXPECT_NE(requests.find(R"("path":"/api/v1/redfishOp")"), std::string::npos) << requests;
    EXPECT_NE(requests.find(R"("body":"{\"Id\":1}")"), std::string::npos) << requests;
}

}  // namespace
