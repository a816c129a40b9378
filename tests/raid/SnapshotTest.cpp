// Client snapshots: each client reads its own tree, fetched once, until it renews it,
// detaches, or its first fetch failed.
#include "RaidTestKit.h"
#include "support/CaptureTraceServer.h"

namespace {

// A valid tree with this many adapters.
std::string TreeWithAdapters(int adapters) {
    std::string xml =
        "<amEMTL Version=\"2\"><System><Multiplexer><Status>Operational</Status></Multiplexer>";
    for (int i = 0; i < adapters; ++i)
        xml += "<Adapter><Status>OK</Status></Adapter>";
    return xml + "</System></amEMTL>";
}

class SnapshotTest : public RaidModuleTest {
  protected:
    void SetUp() override {
        ServeTree(TreeWithAdapters(2));
        Daemon().SetUp(true);
        MakeModule(false);
    }
    std::string Adapters(uint32_t ci) { return Answer(0x2110, 0, 0, ci); }
};

TEST_F(SnapshotTest, EachClientKeepsItsTreeUntilItAsksForANewOne) {
    ScopedTraceLevel trace(3);
    EXPECT_EQ(Adapters(1), R"({"ST":0,"DA":2})");
    EXPECT_TRUE(Has(Debug.Take(),
                    "\nEM_TLRAID (GetSnap) : CID 0x00000001: Got valid TLRAID XML snpashot"
                    "\nEM_TLRAID (GetSnap) : CID 0x00000001: Added TLRAID snapshot (1 snapshots "
                    "in list)"));
    ServeTree(TreeWithAdapters(3));
    EXPECT_EQ(Adapters(1), R"({"ST":0,"DA":2})");
    EXPECT_EQ(Adapters(2), R"({"ST":0,"DA":3})");
    EXPECT_EQ(Daemon().Fetches(), 2u);

    EXPECT_EQ(Answer(0x21DF, 0, 0, 1), R"({"ST":0})");
    EXPECT_EQ(Adapters(1), R"({"ST":0,"DA":3})");
    // Client 0 is a client like any other.
    EXPECT_EQ(Adapters(0), R"({"ST":0,"DA":3})");
    EXPECT_EQ(m_pModule->SnapshotCount(), 3u);
}

TEST_F(SnapshotTest, DetachedClientGetsAFreshTreeNextTime) {
    EXPECT_EQ(Adapters(4), R"({"ST":0,"DA":2})");
    ServeTree(TreeWithAdapters(1));
    m_pModule->ClientDetached(4);
    m_pModule->ClientDetached(99);  // unknown: nothing changes
    EXPECT_EQ(m_pModule->SnapshotCount(), 0u);
    EXPECT_EQ(Adapters(4), R"({"ST":0,"DA":1})");
}

TEST_F(SnapshotTest, FailedFirstFetchIsNotRetried) {
    Daemon().Fail();
    EXPECT_EQ(Adapters(5), R"({"ST":19})");
    EXPECT_EQ(Daemon().Fetches(), 1u);
    ServeTree(TreeWithAdapters(2));
    EXPECT_EQ(Adapters(5), R"({"ST":19})");
    EXPECT_EQ(Daemon().Fetches(), 1u);
    // A renewal makes the client whole again.
    EXPECT_EQ(Answer(0x21DF, 0, 0, 5), R"({"ST":0})");
    EXPECT_EQ(Adapters(5), R"({"ST":0,"DA":2})");
}

TEST_F(SnapshotTest, InvalidTreeIsFetchedForEveryTryThenKept) {
    ServeTree("<amEMTL Version=\"1\"/>");
    EXPECT_EQ(Adapters(6), R"({"ST":19})");
    EXPECT_EQ(Daemon().Fetches(), 3u);
    EXPECT_EQ(Adapters(6), R"({"ST":19})");
    EXPECT_EQ(Daemon().Fetches(), 3u);
}

TEST_F(SnapshotTest, RenewalThatFailsAnswersSixAndLeavesAnEntry) {
    Daemon().Fail();
    EXPECT_EQ(Answer(0x21DF, 0, 0, 8), R"({"ST":6})");
    EXPECT_EQ(m_pModule->SnapshotCount(), 1u);
    EXPECT_EQ(Adapters(8), R"({"ST":19})");
    EXPECT_EQ(Answer(0x212A, 0, 0, 8), R"({"ST":6})");
}

TEST_F(SnapshotTest, AdapterIndexEqualToTheCountIsNotThere) {
    CTLRaidData adapter;
    EXPECT_TRUE(m_pModule->GetRaidAdapterData(adapter, 1, 1));
    EXPECT_FALSE(m_pModule->GetRaidAdapterData(adapter, 1, 2));
}

}  // namespace
