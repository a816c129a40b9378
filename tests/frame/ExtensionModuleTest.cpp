// The module base: notifications, records sent to the switch, the information block, the
// trace of a record, and the export layer.
#include <gtest/gtest.h>

#include <vector>

#include "frame/CabinetNumber.h"
#include "frame/ExtensionModule.h"
#include "frame/ModuleExports.h"
#include "frame/RecordTrace.h"
#include "support/CaptureTraceServer.h"

namespace {

class FakeSwitch : public ISwitch {
  public:
    int SendRequest(CIExtensionModule*, CommandRecord* record, uint32_t) override {
        request = record->ToJson();
        record->SetDataUInt(1, 0);
        return 0;
    }
    int SendEvent(CIExtensionModule*, CommandRecord* record) override {
        statusDuringEvent = record->GetField("ST", 0);
        return 0;
    }
    uint32_t GetSwitchType() override { return type; }

    uint32_t type = 1;
    std::string request;
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
    // The shutdown flag is set with tracing off as well.
    ScopedTraceLevel quiet(0);
    EXPECT_EQ(module.OnNotify(SCN_SWITCH_SHUTDOWN, 0, nullptr), 7);
    EXPECT_TRUE(module.SwitchShutdown());
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
    sw.type = 10;
    module.Start(&sw, 0);
    EXPECT_NE(Debug.Take().find(R"("Tessaline Host Warden")"), std::string::npos);
}

// The switch questions at start show a request getting the cabinet; one that names it keeps it.
TEST(ExtensionModuleTest, SwitchRequestKeepsItsOwnCabinetAndBaseRequestIsUnknown) {
    g_nCabinetNumber = 3;
    FakeSwitch sw;
    TestModule module;
    module.Start(&sw, 0);
    CommandRecord addressed(0x2110, 0, 0, 7, status::kNone);
    module.SendSwitchRequest(addressed, 1);
    EXPECT_EQ(sw.request, R"({"SIP":{"V":1,"CMD":[{"OC":8464,"CA":7}]}})");
    EXPECT_EQ(addressed.GetField("DA", 0), 1u);
    g_nCabinetNumber = 0;
    // The base answers a request with 'unknown code'.
    CommandRecord record;
    ASSERT_TRUE(record.SetJson(R"({"SIP":{"CMD":[]}})"));
    EXPECT_EQ(module.ModuleRequest(&record), 0u);
    EXPECT_EQ(record.ToJson(), R"({"SIP":{"CMD":[{"ST":1}]}})");
}

TEST(ExtensionModuleTest, EventsCarryStatus255DuringTheCall) {
    FakeSwitch sw;
    TestModule module;
    // Without a switch requests fail and events keep their status.
    CommandRecord request(1, 0, 0, 0, status::kNone);
    module.SendSwitchRequest(request, 1);
    EXPECT_EQ(request.GetField("ST", 0), 6u);
    CommandRecord event(1, 0, 0, 0, 4);
    module.SendSwitchEvent(event);
    EXPECT_EQ(sw.statusDuringEvent, 0u);
    module.Start(&sw, 0);
    module.SendSwitchEvent(event);
    EXPECT_EQ(sw.statusDuringEvent, 255u);
    EXPECT_EQ(event.GetField("ST", 0), 4u);
    CommandRecord noStatus(1, 0, 0, 0, status::kNone);
    module.SendSwitchEvent(noStatus);
    EXPECT_EQ(noStatus.GetField("ST", 0), 22u);
}

TEST(ModuleInfoTest, ShortBlockStaysUntouched) {
    std::vector<uint8_t> block(256, 0xA5);
    block[0] = 245;
    block[1] = block[2] = block[3] = 0;
    const std::vector<uint8_t> before = block;
    EXPECT_FALSE(FillModuleInfo(reinterpret_cast<ModuleInfoBlock*>(block.data()), "N", "D"));
    EXPECT_EQ(block, before);
}

TEST(RecordTraceTest, LineFormByData) {
    ScopedTraceLevel trace(6);
    const std::string head = "\nT                   : OC 0x0001-0x0000 OID 0x0000";
    const std::string plain = head + " MID 0x00000000 Stat 0x16";
    const std::pair<const char*, std::string> rows[] = {
        {R"("OC":8464,"MI":65538,"ST":0)",
         "\nT                   : OC 0x2110-0x0000 OID 0x0000 MID 0x00010002 Stat 0x00"},
        {R"("OC":1,"OE":2,"OI":3,"CA":5,"DA":-4)",
         "\nT                   : OC 0x0001-0x0002 OID 0x0003 CABID 0005 MID 0x00000000 Stat "
         "0x16 Data -4"},
        {R"("OC":1,"DA":{"a":1.5})", plain + " Data (JSON struct):\n{\"a\":1.5}"},
        {R"("OC":1,"DA":[{"b":1e20}])", plain + " Data (JSON struct):\n[{\"b\":1e+20}]"},
        {R"("OC":1,"DA":"abc")", plain + " Len 4"},
        {R"("OC":1,"CA":-1,"DA":{"RAW":[1,2]})",
         head + " CABID -001 MID 0x00000000 Stat 0x16 Len 2"},
    };
    for (const auto& [members, want] : rows) {
        CommandRecord record;
        ASSERT_TRUE(record.SetJson(std::string(R"({"SIP":{"CMD":[{)") + members + "}]}}"));
        TraceRecord(3, "T", record);
        EXPECT_EQ(Debug.Take(), want) << members;
    }
}

// The life cycle's answers and traces through the shipped module show in the end-to-end
// session; here what it never meets: a factory that fails and unknown setup actions.
TEST(ModuleExportsTest, FailedCreationAndUnknownSetupActions) {
    ScopedTraceLevel trace(2);
    CIExtensionModule* module = nullptr;
    EXPECT_FALSE(module_exports::Create(
        &module, [] { return static_cast<CIExtensionModule*>(nullptr); }, "EM_TEST"));
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
