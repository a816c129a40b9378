// Requests addressed to a cabinet, and the server's list of its cabinets, as a client of the
// switch sees the answers.
#include <gtest/gtest.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <memory>
#include <sstream>
#include <string>

#include "enclosure/CabinetRequest.h"
#include "enclosure/EnclosureTestTrees.h"
#include "frame/CabinetNumber.h"
#include "frame/CommandRecord.h"
#include "frame/SwitchProtocol.h"
#include "storage/TreeText.h"
#include "support/Process.h"

namespace {

constexpr uint32_t kNone = status::kNone;  // no DA in the request

std::unique_ptr<CommandRecord> Request(uint32_t oc, uint32_t oe, uint32_t oi, uint32_t ca,
                                       uint32_t da = kNone) {
    auto record = std::make_unique<CommandRecord>(oc, oe, oi, ca, status::kNone);
    if (da != kNone)
        record->SetField("DA", rapidjson::Value(da));
    return record;
}

// "ST=0 DA=..." with DA as JSON, or "ST=19" without DA.
std::string Answer(const CommandRecord& record) {
    std::string text = "ST=" + std::to_string(record.GetField("ST", 999));
    const rapidjson::Value* command = record.Command(0);
    const rapidjson::Value* da = command ? CommandRecord::FindMember(*command, "DA") : nullptr;
    if (da) {
        rapidjson::StringBuffer buffer;
        rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
        da->Accept(writer);
        text += std::string(" DA=") + buffer.GetString();
    }
    return text;
}

class CabinetRequestTest : public ::testing::Test {
  protected:
    // Cabinet 800: 4 fans, 6 sensors, 2 supplies; 801: 2, 3, 2. Sensor 1 of 800 has no
    // warning threshold; fan 3 and sensor 4 of 800 have lost their records.
    void SetUp() override {
        m_Map = SampleCabinets();
        m_Map.m_TempSensors.at("800-1").WarningTemperature = 0;
        m_Map.m_Fans.erase("800-3");
        m_Map.m_TempSensors.erase("800-4");
    }

    EnclosureMap m_Map;
};

// Each line of testdata/cabinet-requests.txt is one request and its answer.
TEST_F(CabinetRequestTest, AnswersAndBounds) {
    size_t count = 0;
    for (const std::string& line :
         Lines(SourceText("tests/enclosure/testdata/cabinet-requests.txt"))) {
        if (line.empty() || line[0] == '#')
            continue;
        std::istringstream in(line);
        std::string oc, oe, oi, ca, da, answer;
        uint32_t result = 0;
        in >> oc >> oe >> oi >> ca >> da >> result >> std::ws;
        std::getline(in, answer);
        auto n = [](const std::string& text) {
            return static_cast<uint32_t>(std::stoul(text, nullptr, 0));
        };
        auto record = Request(n(oc), n(oe), n(oi), n(ca), da == "-" ? kNone : n(da));
        EXPECT_EQ(HandleCabinetRequest(m_Map, *record), result) << line;
        EXPECT_EQ(Answer(*record), answer) << line;
        ++count;
    }
    EXPECT_GT(count, 40u);
    // No request added a record.
    EXPECT_EQ(m_Map.m_Cabinets.size(), 2u);
    EXPECT_EQ(m_Map.m_Fans.size(), 5u);
    EXPECT_EQ(m_Map.m_TempSensors.size(), 8u);
    EXPECT_EQ(m_Map.m_PowerSupplies.size(), 4u);
}

TEST_F(CabinetRequestTest, UnknownCabinetChangesNothingButTheStatus) {
    auto record = Request(772, 7, 1, 900, 3);
    EXPECT_EQ(HandleCabinetRequest(m_Map, *record), 0u);
    auto expected = Request(772, 7, 1, 900, 3);
    expected->SetStatus(20);  // the one member the request gets
    EXPECT_EQ(record->ToJson(), expected->ToJson());
}

TEST_F(CabinetRequestTest, RedundancyRequestStoresThePresentState) {
    const auto& stored = m_Map.m_Cabinets.at(MakeCabinetKey(800)).PSRedundancy;
    ASSERT_FALSE(stored);  // as set-up leaves it
    for (const uint8_t status : {1, 2}) {
        m_Map.m_PowerSupplies.at("800-1").Status = status;
        HandleCabinetRequest(m_Map, *Request(1296, 0, 0, 800));
        EXPECT_EQ(stored, status == 1);
    }
}

// The server's own number never reaches a cabinet through the dispatcher, which keeps it.
TEST_F(CabinetRequestTest, PresenceOfTheServersOwnNumber) {
    uint32_t saved = g_nCabinetNumber;
    g_nCabinetNumber = 801;
    auto own = Request(57866, 0, 0, 801);
    EXPECT_EQ(HandleCabinetRequest(m_Map, *own), 0u);
    EXPECT_EQ(Answer(*own), "ST=19");
    g_nCabinetNumber = saved;
}

}  // namespace
