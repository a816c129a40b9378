// Redundancy of a cabinet's power supplies, from their stored states.
#include <gtest/gtest.h>

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
        uint8_t count;
        std::vector<int> states;
        uint32_t cabinet;
        int result;
        bool redundant;
    };
    const Row rows[] = {
        {2, {1, 1}, 800, 1, true},    {1, {1}, 800, 1, false},       {0, {}, 800, 1, false},
        {2, {1, 2}, 800, 1, false},   {3, {1, 1, 0}, 800, 1, false}, {2, {1, -1}, 800, 1, true},
        {2, {1, 1, 2}, 800, 1, true}, {2, {1, 1}, 801, 1, false},
    };
    for (const Row& row : rows) {
        EnclosureMap map = CabinetWithSupplies(row.count, row.states);
        bool redundant = !row.redundant, changed = !row.redundant;
        EXPECT_EQ(EnclosurePSRedundancy(map, row.cabinet, redundant, changed), row.result);
        EXPECT_EQ(redundant, row.redundant) << row.states.size();
        EXPECT_EQ(changed, row.redundant);  // against the 0 that set-up stores
        EXPECT_EQ(map.m_Cabinets.begin()->second.PSRedundancy, row.redundant);
    }
    EnclosureMap empty;
    bool redundant = true, changed = true;
    EXPECT_EQ(EnclosurePSRedundancy(empty, 800, redundant, changed), 0);
    EXPECT_FALSE(redundant || changed);
}

}  // namespace
