// Redundancy of a cabinet's power supplies, from their stored states.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "enclosure/EnclosureStates.h"

namespace {

// Cabinet 800 with a supply count and records of these states; -1 is a supply without record.
EnclosureMap CabinetWithSupplies(uint8_t count, const std::vector<int>& states) {
    EnclosureMap map;
    CabinetRecord& cabinet = map.m_Cabinets[MakeCabinetKey(800)];
    cabinet.CabinetNr = 800;
    cabinet.PowerSupplyCount = count;
    for (uint32_t i = 0; i < states.size(); ++i) {
        if (states[i] >= 0)
            map.m_PowerSupplies[MakeObjectKey(800, i)].Status = static_cast<uint8_t>(states[i]);
    }
    return map;
}

TEST(EnclosurePSRedundancy, FromTheStoredStates) {
    struct Row {
        const char* what;
        uint8_t count;
        std::vector<int> states;
        bool redundant;
    };
    const Row rows[] = {
        {"two healthy", 2, {1, 1}, true},
        {"one healthy supply is never redundant", 1, {1}, false},
        {"none", 0, {}, false},
        {"one critical", 2, {1, 2}, false},
        {"one not installed (0)", 3, {1, 1, 0}, false},
        {"a supply without record counts as healthy", 2, {1, -1}, true},
        {"records beyond the count are not looked at", 2, {1, 1, 2}, true},
    };
    for (const Row& row : rows) {
        EnclosureMap map = CabinetWithSupplies(row.count, row.states);
        bool redundant = !row.redundant, changed = false;
        EXPECT_EQ(EnclosurePSRedundancy(map, 800, redundant, changed), 1) << row.what;
        EXPECT_EQ(redundant, row.redundant) << row.what;
        EXPECT_EQ(changed, row.redundant) << row.what;  // against the 0 of set-up
        EXPECT_EQ(map.m_Cabinets.begin()->second.PSRedundancy, row.redundant) << row.what;
    }
}

TEST(EnclosurePSRedundancy, ChangeIsToldOnce) {
    EnclosureMap map = CabinetWithSupplies(2, {1, 1});
    bool redundant = false, changed = false;
    EnclosurePSRedundancy(map, 800, redundant, changed);
    ASSERT_TRUE(changed);
    EnclosurePSRedundancy(map, 800, redundant, changed);
    EXPECT_TRUE(redundant);
    EXPECT_FALSE(changed);
    map.m_PowerSupplies.at("800-0").Status = 6;
    EnclosurePSRedundancy(map, 800, redundant, changed);
    EXPECT_FALSE(redundant);
    EXPECT_TRUE(changed);
}

TEST(EnclosurePSRedundancy, UnknownCabinetAndNoCabinets) {
    EnclosureMap map = CabinetWithSupplies(2, {1, 1});
    bool redundant = true, changed = true;
    EXPECT_EQ(EnclosurePSRedundancy(map, 801, redundant, changed), 1);
    EXPECT_FALSE(redundant);
    EXPECT_FALSE(changed);
    EnclosureMap empty;
    redundant = changed = true;
    EXPECT_EQ(EnclosurePSRedundancy(empty, 800, redundant, changed), 0);
    EXPECT_FALSE(redundant);
    EXPECT_FALSE(changed);
    EXPECT_TRUE(empty.m_Cabinets.empty());
}

}  // namespace
