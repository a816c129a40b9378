// The status words as codes, and the cabinet numbers in the order of their keys.
#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "enclosure/CabinetRequest.h"
#include "enclosure/EnclosureCodes.h"
#include "frame/CommandRecord.h"

namespace {

TEST(EnclosureCodes, StatusWordsOfTheThreeKinds) {
    struct Row {
        const char* text;
        int fan, sensor, supply;
    };
    const Row rows[] = {
        {"OK", 1, 6, 1},
        {"Critical", 2, 5, 2},
        {"Non Critical", 3, 4, 1},
        {"Unrecoverable", 2, 3, 2},
        {"not installed", 6, 0, 0},
        {"Unknown", 5, 0, 6},
        {"Not Available", 5, 0, 2},
        {"", 5, 0, 0},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(FanStatusFromText(row.text), row.fan) << row.text;
        EXPECT_EQ(TempSensorStatusFromText(row.text), row.sensor) << row.text;
        EXPECT_EQ(PowerSupplyStatusFromText(row.text), row.supply) << row.text;
    }
}

EnclosureMap MapOfCabinets(uint32_t first, uint32_t count) {
    EnclosureMap map;
    for (uint32_t n = first; n < first + count; ++n)
        map.m_Cabinets[MakeCabinetKey(n)].CabinetNr = n;
    return map;
}

TEST(CabinetNumbers, InTheOrderOfTheirKeysAfterWhatWasThere) {
    std::vector<uint32_t> numbers;
    EXPECT_FALSE(GetCabinetNumbers(EnclosureMap(), numbers));
    numbers = {7};
    EXPECT_TRUE(GetCabinetNumbers(EnclosureMap(), numbers));
    ASSERT_TRUE(GetCabinetNumbers(MapOfCabinets(998, 4), numbers));
    EXPECT_EQ(numbers, (std::vector<uint32_t>{7, 1000, 1001, 998, 999}));
}

// The switch's answer: two bytes a number, in the order of the keys, the higher bytes dropped;
// no data without cabinets.
TEST(CabinetNumbers, CabinetListOfNoneOneAndSeveral) {
    const std::pair<EnclosureMap, std::vector<uint8_t>> rows[] = {
        {EnclosureMap(), {}},
        {MapOfCabinets(70000, 1), {112, 17}},
        {MapOfCabinets(998, 4), {232, 3, 233, 3, 230, 3, 231, 3}},
    };
    for (const auto& [map, bytes] : rows) {
        CommandRecord record(0x0220, 0, 0, 0, 19);
        AnswerCabinetList(map, record);
        std::vector<uint8_t> answer;
        EXPECT_EQ(record.GetDataBytes(0, answer), !bytes.empty());
        EXPECT_EQ(answer, bytes);
        EXPECT_EQ(record.GetField("ST", 999), 0u);
    }
}

TEST(CabinetNumbers, ServerSeListHoldsAtMost128) {
    uint32_t sentinel = 0;
    uint32_t* list = &sentinel;
    uint8_t count = 99;
    EXPECT_EQ(GetServerSeList(EnclosureMap(), &list, &count), 1);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(list, &sentinel);  // without cabinets the list is not handed out
    EXPECT_EQ(GetServerSeList(MapOfCabinets(800, 150), &list, &count), 1);
    ASSERT_EQ(count, 128);
    EXPECT_EQ(list[0], 800u);
    EXPECT_EQ(list[127], 927u);
}

}  // namespace
