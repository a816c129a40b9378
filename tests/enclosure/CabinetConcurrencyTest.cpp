// A writer of states, as the polling thread will be, against request threads reading the same
// records. Run under the thread sanitizer, this also shows the fields free of data races.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "enclosure/CabinetRequest.h"
#include "enclosure/EnclosureStates.h"
#include "enclosure/EnclosureTestTrees.h"
#include "frame/CommandRecord.h"
#include "frame/SwitchProtocol.h"

namespace {

TEST(CabinetConcurrency, ReadersSeeTheOldOrTheNewState) {
    EnclosureMap map = SampleCabinets();
    FanRecord& fan = map.m_Fans.at("800-0");
    TempSensorRecord& sensor = map.m_TempSensors.at("800-0");
    PowerSupplyRecord& supply = map.m_PowerSupplies.at("800-1");
    // The readers may run before the writer's first store: start from the writer's even state.
    fan.Status = 1;
    sensor.Temperature = 30;
    supply.Status = 1;
    std::atomic<bool> stop{false};
    std::atomic<int> badAnswers{0};

    std::thread writer([&] {
        for (int i = 0; i < 20000; ++i) {
            bool odd = i & 1;
            fan.Status = odd ? 2 : 1;
            sensor.Temperature = odd ? 70 : 30;
            supply.Status = odd ? 2 : 1;
            bool redundant = false, changed = false;
            EnclosurePSRedundancy(map, 800, redundant, changed);
        }
        stop = true;
    });
    auto reader = [&](uint32_t oc, uint32_t a, uint32_t b) {
        while (!stop) {
            CommandRecord record(oc, 0, 0, 800, status::kNone);
            HandleCabinetRequest(map, record);
            uint32_t value = 0;
            if (!record.GetDataUInt(0, value) || (value != a && value != b))
                ++badAnswers;
            std::vector<uint32_t> numbers;
            GetCabinetNumbers(map, numbers);
        }
    };
    std::vector<std::thread> readers;
    readers.emplace_back(reader, 769u, 1u, 2u);
    readers.emplace_back(reader, 1026u, 30u, 70u);
    readers.emplace_back(reader, 1296u, 0u, 1u);  // which writes the redundancy too
    writer.join();
    for (std::thread& t : readers)
        t.join();
    EXPECT_EQ(badAnswers, 0);
    EXPECT_EQ(map.m_Cabinets.size(), 2u);
}

}  // namespace
