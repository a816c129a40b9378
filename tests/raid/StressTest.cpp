// Every family of requests from many threads and clients at once, beside detaches and
// renewals, while the polling thread reads a tree that changes under it; then the stop and
// the module's end. TLR_STRESS_REQUESTS, read by this test alone, sets the count of a long run.
#include <rapidjson/document.h>
#include <rapidjson/pointer.h>

#include <atomic>
#include <cstdlib>
#include <iostream>
#include <map>
#include <thread>
#include <vector>

#include "RaidTestKit.h"

namespace {

constexpr size_t kSuiteRequests = 4000;
constexpr uint32_t kThreads = 16;
constexpr uint32_t kClients = 40;
constexpr uint32_t kDetachEvery = 23;
constexpr uint32_t kDaemonFailsEvery = 7;
constexpr int kRunCapMs = 30 * 60 * 1000;

struct Request {
    uint32_t nOc, nOe, nOi, nCa;  // CA 0: none, the server itself
    const char* pszDa;            // JSON of DA, or none
};

// Each family, with objects that are there in some trees and not in others. PCI identities
// are left out: they read the host's own device list, which is no part of the daemon seam.
const Request kRequests[] = {
    {oc::kIdentityText, oc::kSelectRaidVersion, 0, 0, nullptr},
    {oc::kDeclinedIdentityFirst, 0, 0, 0, nullptr},
    {oc::kCabinetNumbers, 0, 0, 0, nullptr},
    {oc::kAdapterCount, 0, 0, 0, nullptr},
    {oc::kAdapterName, 0, 1, 0, nullptr},
    {oc::kAdapterDeviceId, 0, 1, 0, nullptr},
    {oc::kAdapterProperty, 0, 0, 0, "\"Firmware\""},
    {oc::kOverallStatus, 0, 0, 0, nullptr},
    {oc::kSmartStatus, 0, 0, 0, nullptr},
    {oc::CM_RaidStatusCustomerReplaceable, 0, 0, 0, nullptr},
    {oc::kDriveCount, 0, 0, 0, nullptr},
    {oc::kDriveStatus, 0, 3, 0, nullptr},
    {oc::kDriveExtendedStatus, 0, 0, 0, nullptr},
    {oc::kDriveProperty, 0, 2, 0, "\"SerialNumber\""},
    {oc::kLogicalDriveCount, 0, 0, 0, nullptr},
    {oc::kLogicalDriveRaidLevel, 0, 0, 0, nullptr},
    {oc::kBatteryStatus, 0, 0, 0, nullptr},
    {oc::kBatteryLearnCycle, 0, 0, 0, nullptr},
    {oc::kPortName, 0, 1, 0, nullptr},
    {oc::kEnclosureCount, 0, 0, 0, nullptr},
    {oc::kEnclosureProperty, 0, 0, 0, "\"Name\""},
    {oc::kStorageTreeExport, oc::kSelectTreeXml, 0, 0, nullptr},
    {oc::kStorageTreeExport, oc::kSelectTreeJson, 0, 0, nullptr},
    {oc::kRestPassThrough, 0, 0, 0, "\"{}\""},
    {oc::kTreeValueByPath, 0, 0, 0, "\"System/Adapter[0]/Status\""},
    {oc::kRenewSnapshot, 0, 0, 0, nullptr},
    {oc::kAdapterIndexByDeviceId, 0, 0, 0, "\"TYPE_PCI&BUS_24&DEV_0&FUNC_0\""},
    {oc::kTestRawTree, 0, 0, 0, nullptr},
    {oc::kTestAttribute, oc::kSelectTestDiskAttribute, 0, 0, "5"},
    {0x9999, 0, 0, 0, nullptr},
    {oc::CM_FanStatus, 0, 1, 800, nullptr},
    {oc::kTempSensorName, 0, 2, 801, nullptr},
    {oc::kCabinetSettingWrite, oc::kSelectSensorSetting, 0, 800, "50"},
    {oc::kCabinetPresent, 0, 0, 900, nullptr}};

std::string RecordText(const Request& r, uint32_t client) {
    std::string command = "{\"OC\":" + std::to_string(r.nOc) + ",\"OE\":" + std::to_string(r.nOe) +
                          ",\"OI\":" + std::to_string(r.nOi) + ",\"CI\":" + std::to_string(client);
    if (r.nCa != 0)
        command += ",\"CA\":" + std::to_string(r.nCa);
    if (r.pszDa)
        command += ",\"DA\":" + std::string(r.pszDa);
    return "{\"SIP\":{\"V\":1,\"CMD\":[" + command + "}]}}";
}

// The answer's status when the record is well formed, still asks the same single command,
// and carries a status the module may answer; else kNone.
uint32_t AnsweredStatus(const std::string& json, uint32_t code) {
    rapidjson::Document doc;
    doc.Parse(json.c_str());
    const rapidjson::Value* cmds = rapidjson::Pointer("/SIP/CMD").Get(doc);
    const rapidjson::Value* oc = rapidjson::Pointer("/SIP/CMD/0/OC").Get(doc);
    const rapidjson::Value* st = rapidjson::Pointer("/SIP/CMD/0/ST").Get(doc);
    if (doc.HasParseError() || !cmds || !cmds->IsArray() || cmds->Size() != 1 || !oc ||
        *oc != code || !st || !st->IsUint())
        return status::kNone;
    for (uint32_t allowed : status::kModuleAnswers) {
        if (st->GetUint() == allowed)
            return allowed;
    }
    return status::kNone;
}

class StressTest : public RaidModuleTest {
  protected:
    // Runs this many requests and ends the module; gives the answers by status.
    std::map<uint32_t, size_t> Run(size_t total);
};

std::map<uint32_t, size_t> StressTest::Run(size_t total) {
    // Served in turn: cabinets, adapters and drives come and go, MDC progress moves, and some
    // trees are refused as a whole.
    std::vector<std::string> trees;
    for (const char* name : {"cabinets.xml", "flat.xml", "demo.xml", "logical-drives.xml",
                             "mux-not-operational.xml", "adapter-initializing.xml"})
        trees.push_back(SampleTree(name));
    ServeTree(trees[0]);
    Daemon().SetUp(true);
    RaidTimings timings = FastTimings();
    timings.nPollIntervalMs = 2;
    EXPECT_EQ(StartModule(timings), 1);
    EM_TLRAID& module = *m_pModule;

    std::atomic<size_t> next{0};
    std::atomic<uint32_t> finished{0};
    std::mutex lock;
    std::map<uint32_t, size_t> statuses;
    std::vector<std::thread> threads;
    for (uint32_t t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            std::map<uint32_t, size_t> mine;
            for (size_t i; (i = next++) < total;) {
                const Request& r = kRequests[i % std::size(kRequests)];
                const uint32_t client = (t * 7 + static_cast<uint32_t>(i)) % kClients;
                if (i % kDetachEvery == 0)
                    module.ClientDetached(client);
                CommandRecord record;
                record.SetJson(RecordText(r, client));
                module.ModuleRequest(&record);
                const uint32_t st = AnsweredStatus(record.ToJson(), r.nOc);
                EXPECT_NE(st, status::kNone) << record.ToJson();
                ++mine[st];
            }
            std::lock_guard<std::mutex> guard(lock);
            for (const auto& [st, n] : mine)
                statuses[st] += n;
            ++finished;
        });
    }
    // The daemon changes its tree once the last one was fetched, and fails now and then.
    std::atomic<bool> done{false};
    std::thread changer([&] {
        for (size_t turn = 1; !done; ++turn) {
            Daemon().WaitForFetches(Daemon().Fetches() + 1);
            if (turn % kDaemonFailsEvery == 0)
                Daemon().Fail();
            else
                Daemon().Serve(trees[turn % trees.size()]);
        }
    });
    if (!WaitUntil([&] { return finished == kThreads; }, kRunCapMs)) {
        ADD_FAILURE() << "requests hung: " << next << " of " << total << " begun";
        std::abort();
    }
    for (auto& t : threads)
        t.join();
    done = true;
    changer.join();
    EXPECT_EQ(StopModule(), 1);
    m_pModule.reset();
    return statuses;
}

TEST_F(StressTest, EveryFamilyOnManyThreadsWhileTheTreeChanges) {
    const char* count = std::getenv("TLR_STRESS_REQUESTS");
    const size_t total = count ? std::strtoull(count, nullptr, 10) : kSuiteRequests;
    const auto begin = std::chrono::steady_clock::now();
    const std::map<uint32_t, size_t> statuses = Run(total);
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;

    size_t answered = 0;
    std::cout << "stress: " << kThreads << " threads, " << total << " requests, " << took.count()
              << " s; answers by status:";
    for (const auto& [st, n] : statuses) {
        std::cout << ' ' << st << '=' << n;
        answered += n;
    }
    std::cout << std::endl;
    EXPECT_EQ(answered, total);
    EXPECT_GT(statuses.count(status::kOk), 0u);
}

}  // namespace
