// The words of the tree as codes, temperatures as numbers, the keys and the cabinet list.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "enclosure/CabinetRequest.h"
#include "enclosure/EnclosureCodes.h"
#include "enclosure/EnclosureMap.h"

namespace {

TEST(EnclosureCodes, StatusWordsOfTheThreeKinds) {
    struct Row {
        const char* text;
        int fan, sensor, supply;
    };
    const Row rows[] = {
        {"OK", 1, 6, 1},
        {"ok", 1, 6, 1},
        {"Critical", 2, 5, 2},
        {"Non Critical", 3, 4, 1},
        {"Unrecoverable", 2, 3, 2},
        {"not installed", 6, 0, 0},
        {"Unknown", 5, 0, 6},
        {"Not Available", 5, 0, 2},
        {"", 5, 0, 0},
        {"Degraded", 5, 0, 0},
        {"OK ", 5, 0, 0},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(FanStatusFromText(row.text), row.fan) << row.text;
        EXPECT_EQ(TempSensorStatusFromText(row.text), row.sensor) << row.text;
        EXPECT_EQ(PowerSupplyStatusFromText(row.text), row.supply) << row.text;
    }
    EXPECT_EQ(FanStatusFromText(nullptr), 5);
}

TEST(EnclosureCodes, LocationWords) {
    struct Row {
        const char* text;
        int fan, sensor;
    };
    const Row rows[] = {
        {"undefined", 0, 0},
        {"Power (3)", 4, 0},
        {"power (0)", 4, 0},
        {"FEM (1)", 5, 4},
        {"FEM (2)", 0, 0},
        {"SBB Canister (1)", 0, 3},
        {"LEDPanel", 0, 2},
        {"Midplane left", 0, 4},
        {"Baseboard right rear", 0, 4},
        {"PSU (3) hotspot", 0, 5},
        {"PSU (2) inlet", 0, 5},
        {"PSU (4) inlet", 0, 0},
        {"", 0, 0},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(FanLocationFromText(row.text), row.fan) << row.text;
        EXPECT_EQ(TempSensorLocationFromText(row.text), row.sensor) << row.text;
    }
}

TEST(EnclosureCodes, NumberTextTakesItsBaseFromItsStart) {
    struct Row {
        const char* text;
        long value;
    };
    const Row rows[] = {
        {"0", 0},     {"7", 7},     {"42", 42},   {"07", 7},  {"09", 0}, {"012", 10}, {"09x", 0},
        {"0x1F", 31}, {"0X1f", 31}, {"300", 300}, {"-5", -5}, {"", 0},   {"4a", 4},   {"x12", 0},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(ParseNumberText(row.text), row.value) << row.text;
    }
}

TEST(EnclosureKeys, Formats) {
    EXPECT_EQ(MakeCabinetKey(800), "SAS-ENCL CAB-NR=800");
    EXPECT_EQ(MakeObjectKey(800, 0), "800-0");
    EXPECT_EQ(MakeObjectKey(1234, 17), "1234-17");
    EXPECT_EQ(MakeFanDesignation(1), "Fan_1");
}

EnclosureMap MapOfCabinets(uint32_t first, uint32_t count) {
    EnclosureMap map;
    for (uint32_t n = first; n < first + count; ++n) {
        map.m_Cabinets[MakeCabinetKey(n)].CabinetNr = n;
    }
    return map;
}

// The keys are ordered as text: 1000 before 800, and within an object kind 10 before 2.
TEST(EnclosureKeys, CabinetNumbersComeInTheOrderOfTheirTexts) {
    EnclosureMap map = MapOfCabinets(800, 250);  // 800 .. 1049
    std::vector<uint32_t> numbers = {7};
    ASSERT_TRUE(GetCabinetNumbers(map, numbers));
    ASSERT_EQ(numbers.size(), 251u);
    EXPECT_EQ(numbers[0], 7u);  // earlier contents stay
    EXPECT_EQ(numbers[1], 1000u);
    EXPECT_EQ(numbers[50], 1049u);
    EXPECT_EQ(numbers[51], 800u);
    EXPECT_EQ(numbers.back(), 999u);

    map.m_Fans[MakeObjectKey(800, 2)].Index = 2;
    map.m_Fans[MakeObjectKey(800, 10)].Index = 10;
    EXPECT_EQ(map.m_Fans.begin()->second.Index, 10u);
}

TEST(EnclosureKeys, NoCabinetsLeaveTheVectorAlone) {
    EnclosureMap map;
    std::vector<uint32_t> numbers;
    EXPECT_FALSE(GetCabinetNumbers(map, numbers));
    EXPECT_TRUE(numbers.empty());
    numbers = {5};
    EXPECT_TRUE(GetCabinetNumbers(map, numbers));  // what was there counts
    EXPECT_EQ(numbers, std::vector<uint32_t>{5});
}

TEST(ServerSeList, NoneOneAndMoreThanTheArrayHolds) {
    uint32_t sentinel = 0;
    uint32_t* list = &sentinel;
    uint8_t count = 99;
    EXPECT_EQ(GetServerSeList(EnclosureMap(), &list, &count), 1);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(list, &sentinel);  // without cabinets the list is not handed out

    EXPECT_EQ(GetServerSeList(MapOfCabinets(800, 2), &list, &count), 1);
    ASSERT_EQ(count, 2);
    EXPECT_EQ(list[0], 800u);
    EXPECT_EQ(list[1], 801u);

    EXPECT_EQ(GetServerSeList(MapOfCabinets(800, 150), &list, &count), 1);
    ASSERT_EQ(count, 128);
    EXPECT_EQ(list[0], 800u);
    EXPECT_EQ(list[127], 927u);
}

}  // namespace
