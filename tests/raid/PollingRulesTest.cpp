// The decisions of a polling cycle: when the SMART report is due, and which MDC changes drop
// the snapshots.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "raid/PollingRules.h"

namespace {

constexpr time_t kHour = 3600;

TEST(SmartClock, SpacingAndHours) {
    const time_t last = 100 * kHour;
    struct Row {
        time_t difference;
        bool due;
    } const rows[] = {{0, false},     {3600, false}, {3601, true},
                      {-3600, false}, {-3601, true}, {-2 * kHour, true}};
    for (const Row& row : rows)
        EXPECT_EQ(SmartCheckDue(last + row.difference, last), row.due) << row.difference;
    for (int hour = 0; hour < 24; ++hour)
        EXPECT_EQ(IsSmartReportHour(hour), hour == 11 || hour == 23) << hour;
    // Within the hour the local time is not even asked for.
    time_t unchanged = last;
    EXPECT_FALSE(LookAtSmartClock(last + 3600, unchanged, [](time_t) -> std::tm {
        ADD_FAILURE() << "local time asked for";
        return std::tm{};
    }));
    EXPECT_EQ(unchanged, last);
}

struct Change {
    std::string key;
    int16_t from, to;
    bool operator==(const Change& o) const { return key == o.key && from == o.from && to == o.to; }
};

std::vector<Change> Compare(const MdcProgressMap& previous, const MdcProgressMap& current) {
    std::vector<Change> changes;
    const int count = CompareMdcProgress(
        previous, current, [&changes](const std::string& key, int16_t from, int16_t to) {
            changes.push_back({key, from, to});
        });
    EXPECT_EQ(count, static_cast<int>(changes.size()));
    return changes;
}

TEST(MdcComparison, KeysComparedOneByOne) {
    // Several changes in one cycle are several calls, in key order.
    EXPECT_EQ(Compare({{"b A0L1", 5}, {"b A0L0", 1}}, {{"b A0L0", 2}, {"b A0L1", 6}}),
              (std::vector<Change>{{"b A0L0", 1, 2}, {"b A0L1", 5, 6}}));
    // Drives that come or go are no change either; nor is an empty map.
    EXPECT_TRUE(Compare({{"a A0L0", 5}}, {{"a A0L0", 5}, {"a A0L1", 3}}).empty());
    EXPECT_TRUE(Compare({{"a A0L0", 5}, {"a A0L1", 3}}, {}).empty());
}

}  // namespace
