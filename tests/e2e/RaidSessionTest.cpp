// The RAID module through the host simulator, against the REST daemon simulator, as the
// agent daemon and a client of its switch see it.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/Emhost.h"

namespace {

std::string Sample(const std::string& name) {
    return SourcePath("samples/trees/" + name);
}

EmhostOptions WithTree(const std::string& tree, std::vector<std::string> emhost = {},
                       const std::string& traceLevel = "3") {
    EmhostOptions o;
    o.sandbox = {"--trace-level", traceLevel, "--sim", "--tree " + tree};
    o.emhost = std::move(emhost);
    return o;
}

TEST(RaidSessionTest, TheHostsSessionWithOneAdapter) {
    auto run =
        RunEmhost({"{\"host\":\"create\"}", "{\"host\":\"cabinet\",\"nr\":1}",
                   "{\"host\":\"start\"}", "{\"SIP\":{\"V\":1,\"CMD\":[{\"OC\":8464,\"CI\":7}]}}",
                   "{\"host\":\"stop\"}", "{\"host\":\"delete\"}"},
                  WithTree(Sample("sas-port.xml")));
    ASSERT_EQ(run.process.exitCode, 0) << run.process.err;
    ASSERT_EQ(run.lines.size(), 6u) << run.process.out;
    EXPECT_EQ(run.lines[0], "{\"host\":\"create\",\"ret\":1}");
    EXPECT_EQ(run.lines[1], "{\"host\":\"cabinet\",\"ret\":1}");
    EXPECT_EQ(WithoutElapsed(run.lines[2]), "{\"host\":\"start\",\"ret\":1,\"ms\":T}");
    EXPECT_EQ(run.lines[3],
              "{\"ret\":1,\"record\":{\"SIP\":{\"V\":1,\"CMD\":[{\"OC\":8464,\"CI\":7,\"ST\":0,"
              "\"DA\":1}]}}}");
    EXPECT_EQ(WithoutElapsed(run.lines[4]), "{\"host\":\"stop\",\"ret\":1,\"ms\":T}");
    // Nothing shortens the last wait of a stop.
    EXPECT_GE(ElapsedMs(run.lines[4]), 10000);
    EXPECT_EQ(run.lines[5], "{\"host\":\"delete\",\"ret\":1}");
    EXPECT_NE(run.trace.find("Got valid TLRAID response"), std::string::npos);
}

TEST(RaidSessionTest, SwitchAnswersDecideTheCustomerReplaceableParts) {
    auto run =
        RunEmhost({"{\"host\":\"create\"}", "{\"host\":\"start\"}", "{\"host\":\"switch-started\"}",
                   "{\"SIP\":{\"CMD\":[{\"OC\":8490,\"CI\":1}]}}"},
                  WithTree(Sample("demo.xml"), {"--answer", "0x2113={\"ST\":0,\"DA\":1}",
                                                "--answer", "8468={\"ST\":12,\"DA\":0}"}));
    ASSERT_EQ(run.lines.size(), 6u) << run.process.out;
    EXPECT_EQ(
        run.lines[2],
        "{\"switch-request\":{\"SIP\":{\"V\":1,\"CMD\":[{\"OC\":8467,\"CA\":0}]}},\"timeout_ms\":"
        "5000}");
    EXPECT_EQ(
        run.lines[3],
        "{\"switch-request\":{\"SIP\":{\"V\":1,\"CMD\":[{\"OC\":8468,\"CA\":0}]}},\"timeout_ms\":"
        "5000}");
    EXPECT_EQ(WithoutElapsed(run.lines[4]), "{\"host\":\"switch-started\",\"ret\":0,\"ms\":T}");
    EXPECT_EQ(run.lines[5],
              "{\"ret\":1,\"record\":{\"SIP\":{\"CMD\":[{\"OC\":8490,\"CI\":1,\"ST\":0,"
              "\"DA\":1}]}}}");
    EXPECT_NE(run.trace.find("\nEM_TLRAID           : HDD CSS component"), std::string::npos);
    EXPECT_NE(run.trace.find("\nEM_TLRAID           : BBU NOT CSS component"), std::string::npos);
}

TEST(RaidSessionTest, AgentlessSwitchAsksOnlyAboutBatteries) {
    auto run = RunEmhost(
        {"{\"host\":\"create\"}", "{\"host\":\"start\"}", "{\"host\":\"switch-started\"}"},
        WithTree(Sample("demo.xml"), {"--switch-type", "5"}, "4"));
    ASSERT_EQ(run.lines.size(), 4u) << run.process.out;
    EXPECT_NE(run.lines[2].find("\"OC\":8468"), std::string::npos);
    EXPECT_NE(run.trace.find("\"Tessaline Agentless Service\""), std::string::npos);
}

TEST(RaidSessionTest, InventoryOfTheDemoServer) {
    // The sandbox as scripts/demo sets it up: the host lists both adapters, yet gives no ids.
    std::vector<std::string> sandbox = {"--sim", "--tree " + Sample("demo.xml")};
    for (const std::string& option : SampleHostOptions())
        sandbox.push_back(option);
    ProcessResult r = RunProcess(InSandbox(sandbox, {BuildPath("emhost"), "inventory"}));
    ASSERT_EQ(r.exitCode, 0) << r.err;
    const char* noIds =
        "  PCI ids: device (not available), vendor (not available), subsystem "
        "(not available), subsystem vendor (not available)\n";
    const char* expected[] = {
        "Start returned 1 after",
        "2 adapter(s)",
        "Adapter 0: TL RAID EP540i",
        "  type 8 SAS, status 0 OK, PCI device id TYPE_PCI&BUS_24&DEV_0&FUNC_0",
        noIds,
        "    5  MIRAVEX MX4000N (11)  8 SAS  5 global hotspare  0 no error  3814697 MB",
        "    0  Cache Backup Unit CBU-4  0 normal  1 requested",
        "Adapter 1: Onboard SATA RAID",
        noIds,
        "  Batteries: none",
        "  disks           1 OK",
        "Cabinets: 800",
        "Cabinet 800: VK16",
        "  chassis model VK16R, vendor ORLANE, serial number VK16A2034501",
        "    3  Fan 4  Fan_4        1 OK    4 power supply",
        "    2  Front panel  6 OK    2 LED panel     24 C         40 C     45 C",
        "    1  Power Supply 1  1 OK",
        "  Power supply redundancy: 1 redundant",
        "Stopping the module (a stop takes 10 s by design)...",
        "Module deleted.",
    };
    EXPECT_TRUE(ContainsInOrder(r.out, expected));
}

TEST(RaidSessionTest, InventoryWithoutTheServiceSaysSo) {
    ProcessResult r = RunProcess(InSandbox({"--raid", "none"}, {BuildPath("emhost"), "inventory"}));
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_NE(r.out.find("No storage tree: the module answers (not available)."), std::string::npos)
        << r.out;
    // No tree, no set-up: the list of cabinets is answered, and empty.
    EXPECT_NE(r.out.find("\nCabinets: none\n"), std::string::npos) << r.out;
}

}  // namespace
