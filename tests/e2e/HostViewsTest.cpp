// What the host simulator's views print for a person: the inventory on a host that lists the
// sample PCI devices, the tree export, and the watch over a polling cycle of 15 s.
#include <gtest/gtest.h>

#include <string>

#include "e2e/HostSessions.h"
#include "support/SandboxHost.h"

namespace {

TEST_F(HostSessions, InventoryOfAdaptersAndCabinetsInTheirStates) {
    const ProcessResult& r = Inventory();
    // A fan and a sensor in warning, a power supply critical: degraded (16) and failed (32).
    ASSERT_EQ(r.exitCode, 48) << r.err;
    // The host lists both adapters, yet its scan gives no ids.
    const char* noIds =
        "  PCI ids: device (not available), vendor (not available), subsystem "
        "(not available), subsystem vendor (not available)\n";
    const char* expected[] = {
        "Start returned 1 after",
        "2 adapter(s)",
        "Adapter 0: TL RAID EP580e",
        "  type 8 SAS, status 0 OK, PCI device id TYPE_PCI&BUS_59&DEV_0&FUNC_0",
        noIds,
        "    2  MIRAVEX MX2000N (16)  8 SAS  5 global hotspare  0 no error  1907348 MB",
        "    0  Cache Backup Unit CBU-4  0 normal  255 none of these",
        "    0        2 warning",
        "Adapter 1: TL RAID EP580e",
        noIds,
        "  Batteries: none",
        "  all             2 warning",
        "Cabinets: 800, 801",
        "Cabinet 800: VK16",
        "  chassis model VK16R, vendor ORLANE, serial number VK16A2100011",
        "    2  Fan 3  Fan_3        3 non critical   4 power supply",
        "    1  Canister 1     4 non critical  3 canister      57 C         55 C     65 C",
        "    1  Power Supply 1  2 critical",
        "  Power supply redundancy: 0 not redundant",
        "Cabinet 801: VK12 T2",
        "    1  Front panel  6 OK    2 LED panel     23 C         40 C     45 C",
        "  Power supply redundancy: 1 redundant",
        "Stopping the module (a stop takes 10 s by design)...",
        "Module deleted.",
        "Exit status 48: something is degraded or rebuilding; something has failed.",
    };
    EXPECT_TRUE(ContainsInOrder(r.out, expected));
    // Not a terminal: no colour.
    EXPECT_EQ(r.out.find('\033'), std::string::npos);
}

TEST_F(HostSessions, ExportPrintsTheTreeAsItCameOrNothing) {
    EXPECT_EQ(ExportJson().exitCode, 0) << ExportJson().err;
    EXPECT_EQ(ExportJson().out, ReadWholeFile(SourcePath("samples/export/demo.json")));

    const ProcessResult& none = ExportWithoutService();
    EXPECT_EQ(none.exitCode, 1);
    EXPECT_EQ(none.out, "");
    EXPECT_NE(none.err.find("emhost: no tree: the module answers ST 19"), std::string::npos)
        << none.err;
}

// The polling thread drops the snapshots at its second cycle, and a client that never renews
// sees the new state.
TEST_F(HostSessions, WatchSeesTheProgressMoveAfterTheNextCycle) {
    const ProcessResult& r = Watch();
    ASSERT_EQ(r.exitCode, 0) << r.err << r.out;
    const char* expected[] = {
        "Start returned 1 after",
        " first look:",
        "   logical drive 1 'Data' of adapter 0: rebuild or check progress: 37 %",
        " the polling thread dropped the snapshots: MDC progress [37 -> 50] 'TL RAID EP540i "
        "A0L1'",
        " logical drive 1 'Data' of adapter 0: rebuild or check progress: 37 % -> 50 %",
        " client 2, which never renews, sees a new tree: the module dropped the snapshots.",
        "   logical drive 1 'Data' of adapter 0: rebuild or check progress: 37 % -> 50 %",
        "Time is up. Stopping the module",
        "Module deleted.",
    };
    EXPECT_TRUE(ContainsInOrder(r.out, expected));
    EXPECT_EQ(r.out.find(" event: "), std::string::npos) << r.out;
}

// Every line a JSON object of the format 1.0: the first look's values as new ones, the failed
// drive as a change; the watch ends at that look with the bits of what it saw.
TEST_F(HostSessions, WatchJsonEndsAtTheFirstFailure) {
    const ProcessResult& r = WatchJson();
    EXPECT_EQ(r.exitCode, 48) << r.err << r.out;
    const std::string drive =
        R"("kind":"change","client":1,"object":"drive","adapter":0,"index":4,)"
        R"x("name":"MIRAVEX MX4000N (10)","field":"status",)x";
    const char* expected[] = {
        R"("kind":"change","client":1,"object":"adapter","adapter":0,"name":"TL RAID EP540i",)"
        R"("field":"status","old":null,"new":{"code":0,"name":"OK"}})",
        R"("field":"progress","old":null,"new":37})",
    };
    EXPECT_TRUE(ContainsInOrder(r.out, expected));
    EXPECT_NE(r.out.find(drive + R"("old":{"code":0,"name":"operational"},)"
                                 R"("new":{"code":11,"name":"failed"}})"),
              std::string::npos)
        << r.out;
    for (const std::string& line : Lines(r.out))
        EXPECT_EQ(line.rfind(R"({"format_version":[1,0],"time":")", 0), 0u) << line;
    EXPECT_NE(r.err.find("Something has failed. Stopping the module"), std::string::npos) << r.err;
}

}  // namespace
