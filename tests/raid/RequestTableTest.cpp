// Every row of the request table on a tree made for it: the numbers, texts and statuses
// that a client of the switch gets.
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

TEST_F(RequestTableTest, AdaptersAndOverallStatus) {
    CheckRows("request-table.rows", "AdaptersAndOverallStatus");
}

TEST_F(RequestTableTest, PhysicalDrives) {
    CheckRows("request-table.rows", "PhysicalDrives");
}

TEST_F(RequestTableTest, LogicalDrivesBatteriesPortsEnclosures) {
    CheckRows("request-table.rows", "LogicalDrivesBatteriesPortsEnclosures");
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

TEST_F(RequestTableTest, EnclosuresOfSeveralAdapters) {
    ServeTree(SampleTree("two-adapters-enclosures.xml"));
    CheckRows("request-table.rows", "EnclosuresOfSeveralAdapters", 2);
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
    const std::string t = Debug.Take();
    EXPECT_TRUE(
        Has(t, "\nEM_TLRAID (REQ)     : OC 0x2110-0x0000 OID 0x0000 MID 0x00000000 Stat 0x16"));
    EXPECT_TRUE(Has(
        t, "\nEM_TLRAID (RET)     : OC 0x2110-0x0000 OID 0x0000 MID 0x00000000 Stat 0x00 Data 2"));
}

}  // namespace
