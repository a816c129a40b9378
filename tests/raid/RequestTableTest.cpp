// Every row of the request table on a tree made for it: the numbers, texts and statuses
// that a client of the switch gets.
#include <cstdio>
#include <cstdlib>

#include "RaidTestKit.h"
#include "support/CaptureTraceServer.h"
#include "support/Process.h"
#include "support/SandboxHost.h"

namespace {

class RequestTableTest : public RaidModuleTest {
  protected:
    void SetUp() override {
        ServeTree(ReadWholeFile(SourcePath("tests/raid/testdata/request-table.xml")));
        Daemon().SetUp(true);
        MakeModule(false);
    }
};

struct Row {
    uint32_t oc, oe, oi;
    const char* da;  // request data as JSON, or empty
    const char* want;
};

std::string Describe(const Row& r) {
    char text[96];
    snprintf(text, sizeof(text), "OC 0x%04X OE %u OI %u DA %s", r.oc, r.oe, r.oi, r.da);
    return text;
}

TEST_F(RequestTableTest, AdaptersAndOverallStatus) {
    const Row rows[] = {
        {0x2110, 0, 0, "", R"({"ST":0,"DA":2})"},
        {0x2111, 0, 1, "", R"({"ST":0,"DA":"Beta"})"},
        {0x2111, 0, 2, "", R"({"ST":19})"},
        {0x2112, 0, 0, "", R"({"ST":0,"DA":8})"},
        {0x2112, 0, 1, "", R"({"ST":0,"DA":5})"},
        {0x2116, 0, 0, "", R"({"ST":0,"DA":1})"},
        {0x2116, 0, 1, "", R"({"ST":0,"DA":255})"},
        {0x2117, 0, 0, "", R"({"ST":0,"DA":"TYPE_PCI&BUS_24&DEV_0&FUNC_1&SEG_2"})"},
        {0x2117, 0, 1, "", R"({"ST":19})"},
        {0x211D, 0, 0, R"("Firmware")", R"({"ST":0,"DA":"5.1"})"},
        {0x211D, 0, 0, R"("Nope")", R"({"ST":19,"DA":"Nope"})"},
        {0x211D, 0, 0, "", R"({"ST":18})"},
        {0x211D, 0, 0, R"("")", R"({"ST":18,"DA":""})"},
        {0x211D, 0, 9, R"("Name")", R"({"ST":19,"DA":"Name"})"},
        {0x2120, 0, 0, "", R"({"ST":0,"DA":2})"},
        {0x2121, 0, 0, "", R"({"ST":0,"DA":1})"},
        {0x2122, 0, 0, "", R"({"ST":0,"DA":0})"},
        {0x2123, 0, 0, "", R"({"ST":0,"DA":3})"},
        {0x2125, 0, 0, "", R"({"ST":0,"DA":1})"},
        // The disks failed and aren't replaceable by the customer: 0.
        {0x212A, 0, 0, "", R"({"ST":0,"DA":0})"},
    };
    for (const Row& r : rows)
        EXPECT_EQ(Answer(r.oc, r.oe, r.oi, 1, r.da), r.want) << Describe(r);
}

TEST_F(RequestTableTest, PhysicalDrives) {
    const Row rows[] = {
        {0x2130, 0, 0, "", R"({"ST":0,"DA":3})"},
        {0x2130, 1, 0, "", R"({"ST":0,"DA":0})"},
        {0x2130, 2, 0, "", R"({"ST":19})"},
        {0x2131, 0, 1, "", R"({"ST":0,"DA":11})"},
        {0x2131, 0, 2, "", R"({"ST":0,"DA":9})"},
        {0x2131, 0, 3, "", R"({"ST":2})"},
        {0x2131, 5, 0, "", R"({"ST":19})"},
        {0x2132, 0, 0, "", R"({"ST":0,"DA":0})"},
        {0x2132, 0, 1, "", R"({"ST":0,"DA":1})"},
        {0x2133, 0, 0, "", R"({"ST":0,"DA":"D0"})"},
        {0x2133, 0, 1, "", R"({"ST":0,"DA":""})"},
        {0x2134, 0, 1, "", R"({"ST":0,"DA":7})"},
        {0x2134, 0, 2, "", R"({"ST":0,"DA":15})"},
        {0x2135, 0, 0, "", R"({"ST":0,"DA":1})"},
        {0x2135, 0, 1, "", R"({"ST":19})"},
        {0x2136, 0, 0, "", R"({"ST":0,"DA":1})"},
        {0x2136, 0, 1, "", R"({"ST":0,"DA":0})"},
        {0x2137, 0, 1, "", R"({"ST":0,"DA":255})"},
        {0x2137, 0, 2, "", R"({"ST":0,"DA":9})"},
        {0x213B, 0, 1, "", R"({"ST":0,"DA":0})"},
        {0x213B, 0, 0, "", R"({"ST":19})"},
        {0x213C, 0, 2, "", R"({"ST":0,"DA":2})"},
        {0x213D, 0, 0, R"("SerialNumber")", R"({"ST":0,"DA":"S0"})"},
        {0x213D, 0, 0, R"("Missing")", R"({"ST":19,"DA":"Missing"})"},
        {0x213D, 0, 7, R"("Name")", R"({"ST":2,"DA":"Name"})"},
        {0x213D, 0, 7, "", R"({"ST":18})"},
    };
    for (const Row& r : rows)
        EXPECT_EQ(Answer(r.oc, r.oe, r.oi, 1, r.da), r.want) << Describe(r);
}

TEST_F(RequestTableTest, LogicalDrivesBatteriesPortsEnclosures) {
    const Row rows[] = {
        {0x2150, 0, 0, "", R"({"ST":0,"DA":2})"},
        {0x2150, 1, 0, "", R"({"ST":0,"DA":0})"},
        {0x2151, 0, 0, "", R"({"ST":0,"DA":2})"},
        {0x2151, 0, 1, "", R"({"ST":0,"DA":4})"},
        {0x2151, 0, 2, "", R"({"ST":2})"},
        {0x2152, 0, 0, "", R"({"ST":0,"DA":"L0"})"},
        {0x2152, 0, 1, "", R"({"ST":0,"DA":""})"},
        {0x2153, 0, 0, "", R"({"ST":0,"DA":8589934592})"},
        {0x2153, 0, 1, "", R"({"ST":19})"},
        {0x2154, 0, 0, "", R"({"ST":0,"DA":100})"},
        {0x2155, 0, 0, "", R"({"ST":0,"DA":"RAID-5"})"},
        {0x2155, 0, 1, "", R"({"ST":19})"},
        {0x215D, 0, 0, R"("RAIDLevel")", R"({"ST":0,"DA":"RAID-5"})"},
        {0x2160, 0, 0, "", R"({"ST":0,"DA":1})"},
        {0x2161, 0, 0, "", R"({"ST":0,"DA":"BBU"})"},
        {0x2161, 0, 1, "", R"({"ST":2})"},
        {0x2162, 0, 0, "", R"({"ST":0,"DA":8})"},
        {0x2162, 1, 0, "", R"({"ST":0,"DA":0})"},
        {0x2163, 0, 0, "", R"({"ST":0,"DA":4})"},
        {0x2163, 1, 0, "", R"({"ST":19})"},
        {0x216D, 0, 0, R"("Status")", R"({"ST":0,"DA":"Temperature Problem"})"},
        {0x2180, 0, 0, "", R"({"ST":0,"DA":2})"},
        {0x2180, 1, 0, "", R"({"ST":0,"DA":0})"},
        {0x2181, 0, 0, "", R"({"ST":0,"DA":"Port 0"})"},
        {0x2181, 0, 1, "", R"({"ST":0,"DA":""})"},
        {0x2181, 0, 2, "", R"({"ST":2})"},
        {0x2182, 0, 0, "", R"({"ST":1})"},
        {0x218D, 0, 0, R"("Name")", R"({"ST":0,"DA":"Port 0"})"},
        {0x2190, 0, 0, "", R"({"ST":0,"DA":1})"},
        {0x2191, 0, 0, "", R"({"ST":0,"DA":"Encl5"})"},
        {0x2192, 0, 0, "", R"({"ST":0,"DA":2})"},
        {0x219C, 0, 0, "", R"({"ST":0,"DA":0})"},
        {0x219D, 0, 0, R"("EnclosureNumber")", R"({"ST":0,"DA":"5"})"},
        {0x219D, 0, 1, R"("EnclosureNumber")", R"({"ST":2,"DA":"EnclosureNumber"})"},
    };
    for (const Row& r : rows)
        EXPECT_EQ(Answer(r.oc, r.oe, r.oi, 1, r.da), r.want) << Describe(r);
}

// Adapter and overall statuses at their failed end, and the SMART state of all drives,
// where the adapter that decides is not the first.
TEST_F(RequestTableTest, FailedStatusesAndSmartAcrossAdapters) {
    auto tree = [](const char* adapters, const char* first, const char* second) {
        return std::string("<amEMTL Version=\"2\"><System><Multiplexer><Status>Operational") +
               "</Status><StatusOverall>Failed</StatusOverall><StatusAdapters>" + adapters +
               "</StatusAdapters></Multiplexer>" + "<Adapter><Status>Failed</Status><Ports><Port>" +
               first + "</Port></Ports>" + "</Adapter><Adapter><Status>OK</Status><Ports><Port>" +
               second + "</Port></Ports></Adapter></System></amEMTL>";
    };
    auto drive = [](const char* status) {
        return std::string("<PhysicalDrive><Status>") + status + "</Status></PhysicalDrive>";
    };
    struct Case {
        std::string xml;
        const char* adapters;  // 0x2121
        const char* smart;     // 0x2125
    } cases[] = {
        // No statement in the first adapter, an error in the second behind a clean drive.
        {tree("Failed", drive("Failed").c_str(),
              (drive("Operational") + drive("Operational SMART Error")).c_str()),
         R"({"ST":0,"DA":3})", R"({"ST":0,"DA":1})"},
        // An error in the first adapter wins over a clean drive in the second.
        {tree("Warning", drive("Hotspare SMART Error").c_str(), drive("Operational").c_str()),
         R"({"ST":0,"DA":2})", R"({"ST":0,"DA":1})"},
        // A clean drive in the first adapter doesn't end the walk: the error in the second
        // counts.
        {tree("Failed", drive("Operational").c_str(), drive("Rebuilding SMART Error").c_str()),
         R"({"ST":0,"DA":3})", R"({"ST":0,"DA":1})"},
        // Only the second adapter says anything: no error.
        {tree("OK", drive("Failed").c_str(), drive("Operational").c_str()), R"({"ST":0,"DA":1})",
         R"({"ST":0,"DA":0})"},
        // No drive says anything.
        {tree("Bogus", drive("Failed").c_str(), drive("Unknown").c_str()), R"({"ST":0,"DA":0})",
         R"({"ST":0,"DA":255})"},
    };
    uint32_t client = 10;
    for (const Case& c : cases) {
        ServeTree(c.xml);
        ++client;  // a new client fetches the new tree
        EXPECT_EQ(Answer(0x2116, 0, 0, client), R"({"ST":0,"DA":2})") << c.xml;
        EXPECT_EQ(Answer(0x2120, 0, 0, client), R"({"ST":0,"DA":3})") << c.xml;
        EXPECT_EQ(Answer(0x2121, 0, 0, client), c.adapters) << c.xml;
        EXPECT_EQ(Answer(0x2125, 0, 0, client), c.smart) << c.xml;
    }
}

// Enclosures past the first of an adapter, numbered from 0 in each adapter.
TEST_F(RequestTableTest, EnclosuresOfSeveralAdapters) {
    ServeTree(SampleTree("two-adapters-enclosures.xml"));
    const Row rows[] = {
        {0x2190, 0, 0, "", R"({"ST":0,"DA":2})"}, {0x219C, 0, 0, "", R"({"ST":0,"DA":0})"},
        {0x219C, 0, 1, "", R"({"ST":0,"DA":1})"}, {0x219C, 1, 1, "", R"({"ST":0,"DA":1})"},
        {0x219C, 0, 2, "", R"({"ST":2})"},
    };
    for (const Row& r : rows)
        EXPECT_EQ(Answer(r.oc, r.oe, r.oi, 2, r.da), r.want) << Describe(r);
}

TEST_F(RequestTableTest, CodesWithoutRowsAnswerUnknownAndReturnZero) {
    struct Code {
        uint32_t oc, oe;
        uint32_t st, ret;
    } codes[] = {
        {0x2113, 0, 1, 0},  {0x2100, 0, 1, 0},  {0x21F2, 0, 1, 0}, {0x0C00, 1, 1, 0},
        {0x0C20, 0, 19, 0}, {0x0C21, 0, 19, 0}, {0x1041, 0, 2, 1}, {0x1042, 0, 2, 1},
        {0x2182, 0, 1, 1},  {0x2110, 0, 0, 1},
    };
    for (const Code& c : codes) {
        CommandRecord record;
        record.SetJson("{\"SIP\":{\"CMD\":[{\"OC\":" + std::to_string(c.oc) +
                       ",\"OE\":" + std::to_string(c.oe) + ",\"CI\":1}]}}");
        EXPECT_EQ(m_pModule->ModuleRequest(&record), c.ret) << std::hex << c.oc;
        EXPECT_EQ(record.GetField("ST", 99), c.st) << std::hex << c.oc;
    }
}

TEST_F(RequestTableTest, VersionComesFromTheEnvironment) {
    ScopedTraceLevel trace(3);
    setenv("TL_RAID_VERSION", "7.2.1", 1);
    EXPECT_EQ(Answer(0x0C00, 0xAA03), R"({"ST":0,"DA":"7.2.1"})");
    setenv("TL_RAID_VERSION", "", 1);
    EXPECT_EQ(Answer(0x0C00, 0xAA03), R"({"ST":19})");
    unsetenv("TL_RAID_VERSION");
    EXPECT_EQ(Answer(0x0C00, 0xAA03), R"({"ST":19})");
    EXPECT_TRUE(Has(Debug.Take(), "\nCOsInfo             :    GetTessalineRaidVersion: N/A\n"));
}

TEST_F(RequestTableTest, RecordsForAnotherCabinetAreNotReadHere) {
    CommandRecord record;
    record.SetJson(R"({"SIP":{"CMD":[{"OC":8464,"CA":800,"CI":1}]}})");
    EXPECT_EQ(m_pModule->ModuleRequest(&record), 0u);
    EXPECT_EQ(record.GetField("ST", 0), 20u);
    EXPECT_EQ(Daemon().Fetches(), 0u);
}

TEST_F(RequestTableTest, RequestsAreTracedInAndOut) {
    ScopedTraceLevel trace(2);
    Answer(0x2110, 0, 0, 7);
    std::string t = Debug.Take();
    EXPECT_NE(
        t.find("\nEM_TLRAID (REQ)     : OC 0x2110-0x0000 OID 0x0000 MID 0x00000000 Stat 0x16"),
        std::string::npos);
    EXPECT_NE(t.find("\nEM_TLRAID (RET)     : OC 0x2110-0x0000 OID 0x0000 MID 0x00000000 Stat 0x00 "
                     "Data 2"),
              std::string::npos);
}

}  // namespace
