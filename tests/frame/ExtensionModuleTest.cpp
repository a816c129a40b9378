// The module base: notifications, records sent to the switch, the information block, the
// trace of a record, and the export layer.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "frame/CabinetNumber.h"
#include "frame/ExtensionModule.h"
#include "frame/ModuleExports.h"
#include "frame/RecordTrace.h"
#include "support/CaptureTraceServer.h"

namespace {

class FakeSwitch : public ISwitch {
  public:
    int SendRequest(CIExtensionModule*, CommandRecord* record, uint32_t timeoutMs) override {
        requests.push_back(record->ToJson());
        lastTimeout = timeoutMs;
        record->SetDataUInt(1, 0);
        return 0;
    }
    int SendEvent(CIExtensionModule*, CommandRecord* record) override {
        statusDuringEvent = record->GetField("ST", 0);
        return 0;
    }
    uint32_t GetSwitchType() override { return type; }

    uint32_t type = 1;
    std::vector<std::string> requests;
    uint32_t lastTimeout = 0;
    uint32_t statusDuringEvent = 0;
};

class TestModule : public CExtensionModule {
  public:
    const char* GetModuleName() override { return "EM_TEST"; }
    int OnModuleNotification(uint32_t code, uint64_t param, void*) override {
        lastCode = code;
        lastParam = param;
        return 7;
    }
    bool SwitchShutdown() const { return m_bSwitchShutdown; }

    uint32_t lastCode = 0;
    uint64_t lastParam = 0;
};

TEST(ExtensionModuleTest, ShutdownNotificationSetsTheFlagWithTracingOffOrOn) {
    for (uint32_t level : {0u, 6u}) {
        ScopedTraceLevel trace(level);
        TestModule module;
        EXPECT_EQ(module.OnNotify(SCN_SWITCH_SHUTDOWN, 0, nullptr), 7);
        EXPECT_TRUE(module.SwitchShutdown());
    }
}

TEST(ExtensionModuleTest, EveryCodeReachesOnModuleNotification) {
    ScopedTraceLevel trace(4);
    TestModule module;
    EXPECT_EQ(module.OnNotify(0x12345, 0x1122334455, nullptr), 7);
    EXPECT_EQ(module.lastCode, 0x12345u);
    EXPECT_EQ(module.lastParam, 0x1122334455u);
    EXPECT_FALSE(module.SwitchShutdown());
    EXPECT_EQ(Debug.Take(),
              "\n\nEM_TEST             : ## NOTIFY: Code = 0Xx12345, param = 0x22334455"
              "\nEM_TEST             :   call OnModuleNotification()..."
              "\nEM_TEST             :   ... OnModuleNotification() completed");
    module.OnNotify(SCN_POWERSTATE_RESUME, 1, nullptr);
    EXPECT_NE(Debug.Take().find("\nEM_TEST             : *** SCN_POWERSTATE_RESUME *** \n"),
              std::string::npos);
}

TEST(ExtensionModuleTest, StartNamesTheEventLogSourceBySwitchType) {
    ScopedTraceLevel trace(4);
    FakeSwitch sw;
    sw.type = 5;
    TestModule module;
    EXPECT_EQ(module.Start(&sw, 9), 1);
    EXPECT_EQ(
        Debug.Take(),
        "\nEM_TEST             : Register event log source \"Tessaline Agentless Service\" ..."
        "\nEM_TEST             : ... event log source \"Tessaline Agentless Service\" "
        "registered");
    EXPECT_TRUE(module.IsAgentlessSwitch());
    sw.type = 10;
    module.Start(&sw, 0);
    EXPECT_NE(Debug.Take().find("\"Tessaline Host Warden\""), std::string::npos);
    EXPECT_TRUE(module.IsAgentlessSwitch());
    sw.type = 1;
    EXPECT_FALSE(module.IsAgentlessSwitch());
    EXPECT_FALSE(TestModule().IsAgentlessSwitch());
}

TEST(ExtensionModuleTest, BaseRequestAnswersUnknownCode) {
    TestModule module;
    CommandRecord record;
    ASSERT_TRUE(record.SetJson("{\"SIP\":{\"CMD\":[]}}"));
    EXPECT_EQ(module.ModuleRequest(&record), 0u);
    EXPECT_EQ(record.ToJson(), "{\"SIP\":{\"CMD\":[{\"ST\":1}]}}");
}

TEST(ExtensionModuleTest, SwitchRequestAddsTheCabinetUnlessOneIsThere) {
    g_nCabinetNumber = 3;
    FakeSwitch sw;
    TestModule module;
    module.Start(&sw, 0);
    CommandRecord request(0x2110, 0, 0, 0, status::kNone);
    request.RemoveField("CA");
    module.SendSwitchRequest(request, 5000);
    EXPECT_EQ(sw.requests.back(), "{\"SIP\":{\"V\":1,\"CMD\":[{\"OC\":8464,\"CA\":3}]}}");
    EXPECT_EQ(sw.lastTimeout, 5000u);
    EXPECT_EQ(request.GetField("DA", 0), 1u);

    CommandRecord addressed(0x2110, 0, 0, 7, status::kNone);
    module.SendSwitchRequest(addressed, 1);
    EXPECT_EQ(addressed.GetField("CA", 0), 7u);
    g_nCabinetNumber = 0;
}

TEST(ExtensionModuleTest, WithoutSwitchRequestsFailAndEventsKeepTheirStatus) {
    TestModule module;
    CommandRecord request(1, 0, 0, 0, status::kNone);
    module.SendSwitchRequest(request, 1);
    EXPECT_EQ(request.GetField("ST", 0), 6u);
    CommandRecord event(1, 0, 0, 0, 3);
    module.SendSwitchEvent(event);
    EXPECT_EQ(event.GetField("ST", 0), 3u);
}

TEST(ExtensionModuleTest, EventsCarryStatus255DuringTheCall) {
    FakeSwitch sw;
    TestModule module;
    module.Start(&sw, 0);
    CommandRecord event(1, 0, 0, 0, 4);
    module.SendSwitchEvent(event);
    EXPECT_EQ(sw.statusDuringEvent, 255u);
    EXPECT_EQ(event.GetField("ST", 0), 4u);
    CommandRecord noStatus(1, 0, 0, 0, status::kNone);
    module.SendSwitchEvent(noStatus);
    EXPECT_EQ(noStatus.GetField("ST", 0), 22u);
}

TEST(ExtensionModuleTest, CabinetNumberIsStoredAndTraced) {
    ScopedTraceLevel trace(2);
    TestModule module;
    EXPECT_EQ(module.SetCabinetNumber(12), 1);
    EXPECT_EQ(g_nCabinetNumber, 12u);
    EXPECT_TRUE(g_bCabinetNumberSet);
    EXPECT_EQ(Debug.Take(), "\n\nEM_TEST             : ## Server cabinet number = 12 ##\n");
    g_nCabinetNumber = 0;
}

std::vector<uint8_t> InfoBlock(uint32_t size) {
    std::vector<uint8_t> block(std::max<uint32_t>(size, 256), 0xA5);
    memcpy(block.data(), &size, 4);
    return block;
}

TEST(ModuleInfoTest, ShortBlockStaysUntouched) {
    auto block = InfoBlock(245);
    auto before = block;
    EXPECT_FALSE(FillModuleInfo(reinterpret_cast<ModuleInfoBlock*>(block.data()), "N", "D"));
    EXPECT_EQ(block, before);
}

TEST(RecordTraceTest, LineFormByData) {
    ScopedTraceLevel trace(6);
    struct Row {
        const char* members;
        const char* want;
    } rows[] = {
        {"\"OC\":8464,\"MI\":65538,\"ST\":0",
         "\nT                   : OC 0x2110-0x0000 OID 0x0000 MID 0x00010002 Stat 0x00"},
        {"\"OC\":1,\"OE\":2,\"OI\":3,\"CA\":5,\"DA\":-4",
         "\nT                   : OC 0x0001-0x0002 OID 0x0003 CABID 0005 MID 0x00000000 Stat "
         "0x16 Data -4"},
        {"\"OC\":1,\"DA\":{\"a\":1.5}",
         "\nT                   : OC 0x0001-0x0000 OID 0x0000 MID 0x00000000 Stat 0x16 Data (JSON "
         "struct):\n{\"a\":1.5}"},
        {"\"OC\":1,\"DA\":[{\"b\":1e20}]",
         "\nT                   : OC 0x0001-0x0000 OID 0x0000 MID 0x00000000 Stat 0x16 Data (JSON "
         "struct):\n[{\"b\":1e+20}]"},
        {"\"OC\":1,\"DA\":\"abc\"",
         "\nT                   : OC 0x0001-0x0000 OID 0x0000 MID 0x00000000 Stat 0x16 Len 4"},
        {"\"OC\":1,\"CA\":-1,\"DA\":{\"RAW\":[1,2]}",
         "\nT                   : OC 0x0001-0x0000 OID 0x0000 CABID -001 MID 0x00000000 Stat 0x16 "
         "Len 2"},
    };
    for (const Row& row : rows) {
        CommandRecord record;
        ASSERT_TRUE(record.SetJson(std::string("{\"SIP\":{\"CMD\":[{") + row.members + "}]}}"));
        TraceRecord(3, "T", record);
        EXPECT_EQ(Debug.Take(), row.want) << row.members;
    }
}

CIExtensionModule* MakeNothing() {
    return nullptr;
}

// The life cycle's answers and traces through the shipped module show in the end-to-end
// session; here what it never meets: a factory that fails and unknown setup actions.
TEST(ModuleExportsTest, FailedCreationAndUnknownSetupActions) {
    ScopedTraceLevel trace(2);
    CIExtensionModule* module = nullptr;
    EXPECT_FALSE(module_exports::Create(&module, MakeNothing, "EM_TEST"));
    EXPECT_EQ(module, nullptr);
    EXPECT_EQ(module_exports::Delete("EM_TEST"), 0);
    Debug.Take();
    for (uint32_t unknown : {0u, 5u}) {
        EXPECT_EQ(module_exports::SetupAction(unknown, "EM_TLRAID"), 1);
        EXPECT_EQ(
            Debug.Take(),
            "\n\nEM_TLRAID           : ## ERROR! Setup action call with unknown action type (" +
                std::to_string(unknown) + ") - no action defined!\n");
    }
}

}  // namespace
