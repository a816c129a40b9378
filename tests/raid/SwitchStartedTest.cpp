// The switch's answers about customer replaceable parts, and the answer of
// CM_RaidStatusCustomerReplaceable that they decide.
#include "RaidTestKit.h"

namespace {

constexpr uint32_t kCssHdd = oc::kDisksCustomerReplaceable;
constexpr uint32_t kCssBbu = oc::kBatteriesCustomerReplaceable;
constexpr uint32_t kCustomerReplaceable = oc::CM_RaidStatusCustomerReplaceable;

// A tree whose disks are in this state (OK or Failed) and whose battery has this component
// status.
std::string Tree(const char* disks, int battery) {
    return std::string("<amEMTL Version=\"2\"><System><Multiplexer><Status>Operational</Status>") +
           "<StatusDisks>" + disks + "</StatusDisks></Multiplexer><Adapter><Status>OK</Status>" +
           "<Battery ComponentStatus=\"" + std::to_string(battery) +
           "\"/></Adapter></System></amEMTL>";
}

class SwitchStartedTest : public RaidModuleTest {
  protected:
    // Runs OnSwitchStarted on a switch of this type with these answers.
    EM_TLRAID& Started(uint32_t type, const std::string& hdd, const std::string& bbu) {
        m_pSwitch = std::make_unique<FakeSwitch>(type);
        if (!hdd.empty())
            m_pSwitch->Answer(kCssHdd, hdd);
        if (!bbu.empty())
            m_pSwitch->Answer(kCssBbu, bbu);
        EM_TLRAID& module = MakeModule(false);
        module.Start(m_pSwitch.get(), 0);
        m_bStarted = true;
        module.OnSwitchStarted();
        return module;
    }
    std::unique_ptr<FakeSwitch> m_pSwitch;
};

TEST_F(SwitchStartedTest, AnswerCountsByStatusAndData) {
    struct Row {
        const char* reply;
        bool flag;
    } rows[] = {
        {R"({"ST":12,"DA":1})", true},   {R"({"ST":13,"DA":1})", false},
        {R"({"DA":1})", false},          {R"({"ST":0,"DA":256})", false},
        {R"({"ST":0,"DA":true})", true}, {R"({"ST":0,"DA":{"RAW":[1]}})", true},
        {R"({"ST":21,"DA":3})", true},   {R"({"ST":255,"DA":1})", true},
        {R"({"ST":0})", false},          {R"({"ST":6,"DA":1})", false},
    };
    for (const Row& row : rows) {
        EM_TLRAID& module = Started(1, row.reply, row.reply);
        EXPECT_EQ(module.IsCssHdd(), row.flag) << row.reply;
        EXPECT_EQ(module.IsCssBbu(), row.flag) << row.reply;
        EXPECT_EQ(module.AreTestRequestsEnabled(), row.flag) << row.reply;
        StopModule();
    }
}

TEST_F(SwitchStartedTest, AgentlessHostsAskOnlyAboutBatteries) {
    for (uint32_t type : {5u, 10u}) {
        EM_TLRAID& module = Started(type, R"({"ST":0,"DA":1})", R"({"ST":0,"DA":0})");
        std::vector<std::string> asked = m_pSwitch->Requests();
        ASSERT_EQ(asked.size(), 1u) << type;
        EXPECT_NE(asked[0].find("\"OC\":8468"), std::string::npos);
        EXPECT_FALSE(module.IsCssHdd());
        EXPECT_TRUE(module.AreTestRequestsEnabled());
        StopModule();
    }
}

TEST_F(SwitchStartedTest, CustomerReplaceableAnswerFollowsTheFlagsAndTheTree) {
    struct Row {
        const char* disks;
        int battery;
        const char* hdd;
        const char* bbu;
        const char* want;
    } rows[] = {
        // Failed or warning disks or batteries answer whether the customer may replace them;
        // healthy parts answer 1 only when both kinds are replaceable.
        {"Failed", 0, R"({"ST":0,"DA":1})", R"({"ST":0,"DA":0})", R"({"ST":0,"DA":1})"},
        {"Failed", 0, R"({"ST":0,"DA":0})", R"({"ST":0,"DA":1})", R"({"ST":0,"DA":0})"},
        {"OK", 3, R"({"ST":0,"DA":1})", R"({"ST":0,"DA":0})", R"({"ST":0,"DA":0})"},
        {"OK", 2, R"({"ST":0,"DA":1})", R"({"ST":0,"DA":0})", R"({"ST":0,"DA":0})"},
        {"Warning", 1, R"({"ST":0,"DA":0})", R"({"ST":0,"DA":0})", R"({"ST":0,"DA":0})"},
        {"OK", 1, R"({"ST":0,"DA":0})", R"({"ST":0,"DA":1})", R"({"ST":0,"DA":0})"},
        {"OK", 1, R"({"ST":0,"DA":1})", R"({"ST":0,"DA":1})", R"({"ST":0,"DA":1})"},
    };
    ServeSample("demo.xml");
    for (const Row& row : rows) {
        ServeTree(Tree(row.disks, row.battery));
        Started(1, row.hdd, row.bbu);
        EXPECT_EQ(Answer(kCustomerReplaceable, 0, 0, 1), row.want)
            << row.disks << " " << row.battery << " " << row.hdd << " " << row.bbu;
        StopModule();
    }
}

TEST_F(SwitchStartedTest, WithTheServiceDownItStillEnds) {
    EM_TLRAID& module = Started(1, R"({"ST":0,"DA":1})", "");
    EXPECT_TRUE(module.IsCssHdd());
    EXPECT_FALSE(module.IsCssBbu());
}

}  // namespace
