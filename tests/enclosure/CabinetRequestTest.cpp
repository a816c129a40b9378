// Requests addressed to a cabinet, and the server's list of its cabinets, as a client of the
// switch sees the answers.
#include <gtest/gtest.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <memory>
#include <string>

#include "enclosure/CabinetRequest.h"
#include "enclosure/EnclosureTestTrees.h"
#include "frame/CabinetNumber.h"
#include "frame/CommandRecord.h"
#include "frame/SwitchProtocol.h"
#include "support/CaptureTraceServer.h"

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

TEST_F(CabinetRequestTest, AnswersAndBounds) {
    struct Row {
        uint32_t oc, oe, oi, ca, da;
        const char* answer;
        uint32_t result;
    };
    const Row rows[] = {
        {257, 0, 0, 800, kNone, "ST=0 DA={\"RAW\":[1,1]}", 1},
        {768, 0, 0, 800, kNone, "ST=0 DA=4", 1},
        {769, 0, 0, 800, kNone, "ST=0 DA=1", 1},
        {769, 0, 3, 800, kNone, "ST=19", 1},  // record missing
        {769, 0, 4, 800, kNone, "ST=2", 1},
        {769, 0, 0xFFFFFFFF, 800, kNone, "ST=2", 1},
        {770, 0, 99, 800, kNone, "ST=19", 1},
        {771, 0, 0, 800, kNone, "ST=0 DA=5", 1},
        {772, 0, 1, 800, kNone, "ST=0 DA=\"Fan 2\"", 1},
        {773, 0, 2, 800, kNone, "ST=0 DA=\"Fan_3\"", 1},
        {1024, 0, 0, 800, kNone, "ST=0 DA=6", 1},
        {1025, 0, 0, 800, kNone, "ST=0 DA=6", 1},
        {1026, 0, 2, 800, kNone, "ST=0 DA=24", 1},
        {1027, 0, 2, 800, kNone, "ST=0 DA=2", 1},
        {1028, 0, 5, 800, kNone, "ST=0 DA=\"PSU 1 inlet\"", 1},
        {1028, 0, 6, 800, kNone, "ST=19", 1},  // the count itself passes the bound
        {1028, 0, 7, 800, kNone, "ST=2", 1},
        {1280, 0, 0, 801, kNone, "ST=0 DA=2", 1},
        {1281, 0, 1, 800, kNone, "ST=0 DA=1", 1},
        {1281, 0, 2, 800, kNone, "ST=2", 1},
        {1284, 0, 1, 801, kNone, "ST=0 DA=\"Power Supply 1\"", 1},
        {1296, 0, 0, 800, kNone, "ST=0 DA=1", 1},
        {3072, 264, 0, 801, kNone, "ST=0 DA=\"VK12T21R\"", 1},
        {3072, 1536, 0, 801, kNone, "ST=0 DA=\"VK12B1187720\"", 1},
        {3072, 1544, 0, 801, kNone, "ST=0 DA=\"VK12 T2\"", 1},
        {3072, 1546, 0, 801, kNone, "ST=0 DA=\"ORLANE\"", 1},
        {3072, 0xAA03, 0, 800, kNone, "ST=1", 0},
        {57345, 113, 3, 800, kNone, "ST=0 DA=0", 1},
        {57345, 113, 4, 800, kNone, "ST=2", 1},
        {57345, 115, 5, 800, kNone, "ST=0 DA=0", 1},
        {57345, 144, 0, 800, kNone, "ST=0 DA=55", 1},
        {57345, 145, 0, 800, kNone, "ST=0 DA=65", 1},
        {57345, 144, 1, 800, kNone, "ST=19", 1},  // no warning threshold: no thresholds
        {57345, 145, 4, 800, kNone, "ST=19", 1},  // record missing
        {57345, 145, 6, 800, kNone, "ST=2", 1},
        {57345, 146, 0, 800, kNone, "ST=1", 0},
        {57346, 113, 0, 800, 0, "ST=0 DA=0", 1},
        {57346, 113, 0, 800, 5, "ST=4 DA=5", 1},
        {57346, 113, 0, 800, 0x100, "ST=0 DA=256", 1},  // the low byte counts
        {57346, 113, 0, 800, kNone, "ST=0", 1},
        {57346, 115, 6, 800, 0, "ST=2 DA=0", 1},
        {57346, 124, 0, 800, 0, "ST=1 DA=0", 0},
        {57866, 0, 0, 801, kNone, "ST=0 DA=1", 1},
        {0x2110, 0, 0, 800, kNone, "ST=1", 0},
        {769, 0, 0, 900, kNone, "ST=20", 0},
    };
    for (const Row& row : rows) {
        auto record = Request(row.oc, row.oe, row.oi, row.ca, row.da);
        uint32_t result = HandleCabinetRequest(m_Map, *record);
        std::string label = std::to_string(row.oc) + "/" + std::to_string(row.oe) + " OI " +
                            std::to_string(row.oi) + " CA " + std::to_string(row.ca);
        EXPECT_EQ(Answer(*record), row.answer) << label;
        EXPECT_EQ(result, row.result) << label;
    }
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
    CabinetRecord& cabinet = m_Map.m_Cabinets.at(MakeCabinetKey(800));
    ASSERT_FALSE(cabinet.PSRedundancy);  // as set-up leaves it
    auto first = Request(1296, 0, 0, 800);
    HandleCabinetRequest(m_Map, *first);
    EXPECT_EQ(Answer(*first), "ST=0 DA=1");
    EXPECT_TRUE(cabinet.PSRedundancy);

    m_Map.m_PowerSupplies.at("800-1").Status = 2;
    auto second = Request(1296, 0, 0, 800);
    HandleCabinetRequest(m_Map, *second);
    EXPECT_EQ(Answer(*second), "ST=0 DA=0");
    EXPECT_FALSE(cabinet.PSRedundancy);
}

// The server's own number never reaches a cabinet through the dispatcher, which keeps it.
TEST_F(CabinetRequestTest, PresenceOfTheServersOwnNumber) {
    uint32_t saved = g_nCabinetNumber;
    g_nCabinetNumber = 801;
    auto own = Request(57866, 0, 0, 801);
    EXPECT_EQ(HandleCabinetRequest(m_Map, *own), 0u);
    EXPECT_EQ(Answer(*own), "ST=19");
    g_nCabinetNumber = saved;

    // A key whose record holds another number is found, and the walk then misses it.
    m_Map.m_Cabinets.at(MakeCabinetKey(801)).CabinetNr = 0;
    auto stale = Request(57866, 0, 0, 801);
    EXPECT_EQ(HandleCabinetRequest(m_Map, *stale), 1u);
    EXPECT_EQ(Answer(*stale), "ST=20");
}

TEST(CabinetList, NoneOneAndSeveral) {
    struct Row {
        std::vector<uint32_t> cabinets;
        const char* answer;
    };
    const Row rows[] = {
        {{}, "ST=0"},
        {{800}, "ST=0 DA={\"RAW\":[32,3]}"},
        {{800, 801, 1000}, "ST=0 DA={\"RAW\":[232,3,32,3,33,3]}"},  // in the order of the keys
        {{70000}, "ST=0 DA={\"RAW\":[112,17]}"},                    // the higher bytes dropped
    };
    for (const Row& row : rows) {
        EnclosureMap map;
        for (uint32_t n : row.cabinets)
            map.m_Cabinets[MakeCabinetKey(n)].CabinetNr = n;
        CommandRecord record(0x0220, 0, 0, 0, 19);
        AnswerCabinetList(map, record);
        EXPECT_EQ(Answer(record), row.answer) << row.cabinets.size();
    }
}

}  // namespace
