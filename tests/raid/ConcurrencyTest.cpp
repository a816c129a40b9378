// Requests on many threads for many clients, with clients going and snapshots dropped
// beside them, then a stop. Run under the thread sanitizer too (scripts/sanitize).
#include <atomic>
#include <thread>
#include <vector>

#include "RaidTestKit.h"

namespace {

using ConcurrencyTest = RaidModuleTest;

TEST_F(ConcurrencyTest, RequestsDetachesAndStopTogether) {
    ServeSample("demo.xml");
    EM_TLRAID& module = MakeModule();
    constexpr int kRequesters = 6;
    constexpr int kRequests = 30;
    constexpr uint32_t kClients = 9;
    const uint32_t codes[][3] = {{0x2110, 0, 0}, {0x2111, 0, 1}, {0x2131, 0, 3}, {0x2152, 1, 0},
                                 {0x2163, 0, 0}, {0x2125, 0, 0}, {0x21DF, 0, 0}, {0x2190, 0, 0}};
    std::atomic<int> unexpected{0};
    std::atomic<bool> requestsDone{false};

    std::vector<std::thread> threads;
    for (int t = 0; t < kRequesters; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < kRequests; ++i) {
                const uint32_t* c = codes[(t + i) % std::size(codes)];
                if (Ask(c[0], c[1], c[2], (t * 7 + i) % kClients)->GetField("ST", 99) != 0)
                    ++unexpected;
            }
        });
    }
    std::thread detacher([&] {
        for (uint32_t i = 0; !requestsDone; ++i) {
            module.ClientDetached(i % kClients);
            if (i % 16 == 0)
                module.ClearAllSnapshots();
            std::this_thread::yield();
        }
    });
    for (auto& t : threads)
        t.join();
    requestsDone = true;
    detacher.join();
    EXPECT_EQ(unexpected, 0);
    EXPECT_EQ(StopModule(), 1);
}

TEST_F(ConcurrencyTest, ServiceThatComesWhileRequestsArrive) {
    // The wait thread finds the service, sets up the cabinets and starts the polling thread
    // while requests for the server and its cabinets come in; then the polling thread reads
    // the tree, cycle after cycle, beside them and beside renewals.
    ServeSample("cabinets.xml");
    Daemon().running = false;
    Daemon().restServerUp = false;
    RaidTimings timings = FastTimings();
    timings.nPollIntervalMs = 50;
    ASSERT_EQ(StartModule(timings), 1);
    EM_TLRAID& module = *m_pModule;

    // OC, OI and the cabinet (0: the server itself).
    const uint32_t requests[][3] = {{0x2110, 0, 0},   {0x21DF, 0, 0},   {0x0220, 0, 0},
                                    {0x0300, 0, 800}, {0x0301, 1, 800}, {0x0510, 0, 801},
                                    {0x2190, 0, 0},   {0x2152, 0, 0}};
    std::atomic<bool> done{false};
    std::vector<std::thread> threads;
    for (uint32_t t = 0; t < 4; ++t) {
        threads.emplace_back([&, t] {
            for (uint32_t i = 0; !done; ++i) {
                const uint32_t* r = requests[(t + i) % std::size(requests)];
                std::string command = "{\"OC\":" + std::to_string(r[0]) +
                                      ",\"OI\":" + std::to_string(r[1]) +
                                      ",\"CI\":" + std::to_string(t);
                if (r[2] != 0)
                    command += ",\"CA\":" + std::to_string(r[2]);
                CommandRecord record;
                record.SetJson("{\"SIP\":{\"CMD\":[" + command + "}]}}");
                module.ModuleRequest(&record);
                module.ClientDetached((t + i) % 5);
            }
        });
    }
    Daemon().running = true;
    Daemon().restServerUp = true;
    const char kCabinetAnswer[] = "{\"ST\":0,\"DA\":{\"RAW\":[32,3,33,3]}}";
    EXPECT_TRUE(WaitUntil([&] { return Answer(0x0220) == kCabinetAnswer; }));
    const size_t kMoreFetches = Daemon().Fetches() + 12;
    EXPECT_GE(Daemon().WaitForFetches(kMoreFetches), kMoreFetches);
    done = true;
    for (auto& t : threads)
        t.join();
    EXPECT_EQ(Answer(0x0220), kCabinetAnswer);
    EXPECT_EQ(StopModule(), 1);
}

}  // namespace
