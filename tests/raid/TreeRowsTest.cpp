// The rows on the tree as a whole: export, path question, adapter by device id, the raw tree,
// the Redfish pass-through and the test attribute, with the statuses that set them apart
// from the object rows.
#include "RaidTestKit.h"
#include "support/CaptureTraceServer.h"
#include "support/Process.h"
#include "support/SandboxHost.h"

namespace {

std::string ExportedSample(const std::string& name) {
    return ReadWholeFile(SourcePath("samples/export/" + name));
}

class TreeRowsTest : public RaidModuleTest {
  protected:
    void SetUp() override {
        ServeSample("batteries.xml");
        MakeModule(false);
    }
    // The DA text of an answer, and its status.
    std::string Text(uint32_t oc, uint32_t oe, uint32_t ci, uint32_t& st,
                     const std::string& daJson = "") {
        auto record = Ask(oc, oe, 0, ci, daJson);
        st = record->GetField("ST", 99);
        std::string text;
        record->GetDataString(0, text, 0);
        return text;
    }
};

TEST_F(TreeRowsTest, ExportSelectorAndMissingTree) {
    // An unknown form is refused before any snapshot is fetched.
    EXPECT_EQ(Answer(0x21D0, 2, 0, 5), R"({"ST":1})");
    EXPECT_EQ(Daemon().Fetches(), 0u);
    // A tree that the reader refuses is no snapshot, though the export could rebuild it.
    ServeTree(SampleTree("mux-not-operational.xml"));
    EXPECT_EQ(Answer(0x21D0, 0, 0, 6), R"({"ST":19})");
    EXPECT_EQ(Answer(0x21D0, 1, 0, 6), R"({"ST":19})");
}

TEST_F(TreeRowsTest, PathQuestionTellsOnlyWhetherThePathExists) {
    CheckRows("tree-rows.rows", "PathQuestion");
    ServeTree("");
    EXPECT_EQ(Answer(0x21DD, 0, 0, 2, R"("System")"), R"({"ST":19,"DA":"System"})");
}

TEST_F(TreeRowsTest, AdapterByDeviceId) {
    CheckRows("tree-rows.rows", "AdapterByDeviceId");
    // Without a tree these two answer 6, not 19.
    ServeTree("no tree");
    for (uint32_t oc : {0x21F0u, 0x21F1u}) {
        EXPECT_EQ(Answer(oc, 0, 0, 2, R"("TYPE_PCI&BUS_26&DEV_0&FUNC_0")"),
                  R"({"ST":6,"DA":"TYPE_PCI&BUS_26&DEV_0&FUNC_0"})")
            << std::hex << oc;
    }
}

TEST_F(TreeRowsTest, RawTreeIsCleanedOfControlCharacters) {
    // A tab, a bell and an escape in texts and an attribute; UTF-8 stays.
    ServeTree(
        "<amEMTL Version=\"2\"><System><Adapter Name=\"A\x07\"><Name>caf\xc3\xa9\tX\x1b</Name>"
        "<Vendor>M\xc3\xbcller</Vendor><Status>OK</Status></Adapter></System></amEMTL>");
    uint32_t st = 99;
    EXPECT_EQ(Text(0xF020, 0, 1, st),
              "<amEMTL Version=\"2\"><System><Adapter Name=\"A?\"><Name>caf\xc3\xa9?X?</Name>"
              "<Vendor>M\xc3\xbcller</Vendor><Status>OK</Status></Adapter></System></amEMTL>");
    EXPECT_EQ(st, 0u);
    // Fetched anew each time: no snapshot is made or read.
    EXPECT_EQ(m_pModule->SnapshotCount(), 0u);
    ServeTree("<amEMTL><Name>\x07</Name>");
    EXPECT_EQ(Text(0xF020, 0, 1, st), "<amEMTL><Name>\x07</Name>");
    EXPECT_EQ(st, 0u);
    EXPECT_EQ(Daemon().Fetches(), 2u);
    Daemon().restServerUp = false;
    EXPECT_EQ(Answer(0xF020), R"({"ST":6})");
}

TEST_F(TreeRowsTest, RedfishBodyGoesToTheDaemonAndTheReplyComesBack) {
    ScopedTraceLevel trace(3);
    Daemon().SetRedfishReply(R"({"@odata.id":"/redfish/v1/Systems"})");
    const std::string body = R"({"Method":"GET","Path":"/"})";
    uint32_t st = 99;
    EXPECT_EQ(Text(0x21D1, 0, 1, st, R"("{\"Method\":\"GET\",\"Path\":\"/\"}")"),
              R"({"@odata.id":"/redfish/v1/Systems"})");
    EXPECT_EQ(st, 0u);
    EXPECT_EQ(Daemon().RedfishBodies(), std::vector<std::string>{body});
    EXPECT_TRUE(Has(Debug.Take(), "\nTLRAIDRestClient    : RaidRedfishRequest [" + body + "]"));

    // A missing body answers 19 and sends nothing.
    EXPECT_EQ(Answer(0x21D1), R"({"ST":19})");
    EXPECT_EQ(Daemon().RedfishBodies().size(), 1u);
    // Whatever the daemon does, the client gets its reply: here an empty one.
    Daemon().restServerUp = false;
    EXPECT_EQ(Answer(0x21D1, 0, 0, 1, R"("{}")"), R"({"ST":0,"DA":""})");
}

TEST_F(TreeRowsTest, TestAttributeBehindItsGate) {
    ScopedTraceLevel trace(3);
    // Before the switch allowed test requests.
    EXPECT_EQ(Answer(0xF021, 38, 0, 1, "5"), R"({"ST":6,"DA":5})");
    EXPECT_EQ(Answer(0xF021, 40), R"({"ST":6})");

    m_Switch.Answer(oc::kDisksCustomerReplaceable, R"({"ST":0,"DA":1})");
    MakeModule(true).OnSwitchStarted();
    ASSERT_TRUE(m_pModule->AreTestRequestsEnabled());
    Debug.Take();
    uint32_t value = 99;
    EXPECT_EQ(Answer(0xF021, 38, 0, 1, "513"), R"({"ST":0,"DA":513})");
    EXPECT_EQ(m_pModule->GetTestAttribute(value), "PD0Status");
    EXPECT_EQ(value, 1u);
    EXPECT_EQ(Answer(0xF021, 39, 0, 1, "7"), R"({"ST":0,"DA":7})");
    EXPECT_EQ(m_pModule->GetTestAttribute(value), "BBU0Status");
    EXPECT_EQ(value, 7u);
    EXPECT_EQ(Answer(0xF021, 39), R"({"ST":0})");
    // Another selector leaves the preset status and the attribute as it was.
    EXPECT_EQ(Answer(0xF021, 40, 0, 1, "3"), R"({"ST":19,"DA":3})");
    EXPECT_EQ(m_pModule->GetTestAttribute(value), "");
    EXPECT_EQ(value, 0u);
    EXPECT_TRUE(
        Has(Debug.Take(), "\nEM_TLRaid           : ModuleRequest - BBU testAttribute set to 7"));
    // The attribute changes no answer.
    uint32_t st = 99;
    EXPECT_EQ(Text(0x21D0, 1, 3, st), ExportedSample("batteries.json"));
    EXPECT_EQ(st, 0u);
}

}  // namespace
