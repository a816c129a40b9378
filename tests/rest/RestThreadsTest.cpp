// One client shared by several threads at once, against the simulated daemon: every exchange
// keeps its own token and reply while the JWT is renewed, and a slow exchange of one thread
// doesn't hold up another's.

#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "SessionKit.h"
#include "rest/RestConstants.h"

namespace {

constexpr const char* kLoginPath = tlr_rest::kAuthEndpoint;
constexpr const char* kTreePath = tlr_rest::kSdtEndpoint;
constexpr const char* kRedfishPath = tlr_rest::kRedfishEndpoint;

constexpr char kTree[] =
    "<?xml version=\"1.0\"?>\n<amEMTL Version=\"2\"><System><Adapter Nr=\"0\" "
    "Name=\"Shared\"><Status>Operational</Status></Adapter></System></amEMTL>\n";

class RestThreadsTest : public RestSandboxTest {
  protected:
    RestThreadsTest() : RestSandboxTest(kTree) {}
};

size_t CountExchanges(const std::vector<std::string>& steps) {
    return static_cast<size_t>(
        std::count_if(steps.begin(), steps.end(),
                      [](const std::string& step) { return step.rfind("sleep:", 0) != 0; }));
}

std::string RedfishBody(int thread, int round) {
    return "{\"t\":" + std::to_string(thread) + ",\"i\":" + std::to_string(round) + "}";
}

TEST_F(RestThreadsTest, EveryExchangeKeepsItsOwnTokenWhileTheJwtIsRenewed) {
    // JWTs of 3 s over a run of more than 6 s: each is renewed while the others are busy.
    constexpr int kThreads = 4;
    constexpr int kRounds = 12;
    std::vector<std::string> steps;
    for (int t = 0; t < kThreads; ++t) {
        steps.push_back("--thread");
        for (int i = 0; i < kRounds; ++i) {
            steps.push_back("sdt:5");
            steps.push_back("redfish:5:" + RedfishBody(t, i));
            steps.push_back("sleep:500");
        }
    }
    const Session s = Run(steps, "", "", "--lifetime 3");
    ASSERT_EQ(s.nStatus, 0) << s.sOut;
    ASSERT_EQ(s.steps.size(), static_cast<size_t>(kThreads * kRounds * 2)) << s.sOut;

    // Each thread got its own replies, in its own order.
    std::map<int, int> redfishRound;
    for (const rapidjson::Document& step : s.steps) {
        const int thread = step["thread"].GetInt();
        SCOPED_TRACE(thread);
        EXPECT_TRUE(step["ok"].GetBool());
        if (Str(step, "step") == "sdt") {
            EXPECT_EQ(Str(step, "out"), kTree);
        } else {
            EXPECT_EQ(Str(step, "out"), RedfishBody(thread, redfishRound[thread]++));
        }
    }

    // Every login was granted with a valid JWT; every request carried a token that a login
    // issued, and no two requests carried the same one.
    ASSERT_EQ(s.requests.size(), s.steps.size() * 2);
    std::multiset<std::string> issued;
    std::multiset<std::string> carried;
    std::set<std::string> jwts;
    for (const rapidjson::Document& request : s.requests) {
        const std::string path = Str(request, "path");
        SCOPED_TRACE(path);
        EXPECT_EQ(request["status"].GetInt(), 200);
        if (path == kLoginPath) {
            EXPECT_TRUE(request["jwt"]["valid"].GetBool()) << Str(request["jwt"], "reason");
            issued.insert(IssuedToken(request));
            jwts.insert(FormJwt(request));
        } else {
            EXPECT_TRUE(path == kTreePath || path == kRedfishPath);
            carried.insert(Str(request, "bearer"));
        }
    }
    EXPECT_EQ(carried, issued);
    EXPECT_EQ(std::set<std::string>(issued.begin(), issued.end()).size(), issued.size());
    EXPECT_GE(jwts.size(), 2u) << "no renewal during the run";
}

TEST_F(RestThreadsTest, SlowExchangeDoesNotHoldUpAnotherThread) {
    // Thread 0 sends the slow request; thread 1's requests must reach the daemon while it is
    // still unanswered. A thread sends nothing while its own request is pending, so a request
    // received inside that window is the other thread's. When every login is slow, both
    // threads send one, and only the other thread's login counts (thread 0's tree request
    // follows its own login at once, inside thread 1's window).
    struct Row {
        const char* name;
        const char* control;
        const char* slowPath;
        bool onlySlowOnesCount;
        std::vector<std::string> slow;
        std::vector<std::string> other;
    };
    const std::vector<std::string> treeRounds = {"sleep:300", "sdt:10", "sleep:300", "sdt:10",
                                                 "sleep:300", "sdt:10", "sleep:300", "sdt:10"};
    const std::vector<std::string> redfishRounds = {
        "sleep:300", "redfish:10:{}", "sleep:300", "redfish:10:{}",
        "sleep:300", "redfish:10:{}", "sleep:300", "redfish:10:{}"};
    const Row rows[] = {
        {"slow login",
         R"({"authJwt":{"delay_ms":2000}})",
         kLoginPath,
         true,
         {"sdt:10"},
         {"redfish:10:{}"}},
        {"slow tree request",
         R"({"sdt":{"delay_ms":4000}})",
         kTreePath,
         false,
         {"sdt:10"},
         redfishRounds},
        {"slow Redfish request",
         R"({"redfishOp":{"delay_ms":4000}})",
         kRedfishPath,
         false,
         {"redfish:10:{}"},
         treeRounds},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        std::filesystem::remove(m_sLog);
        WriteFile(m_sControl, row.control);
        std::vector<std::string> steps = {"--thread"};
        steps.insert(steps.end(), row.slow.begin(), row.slow.end());
        steps.push_back("--thread");
        steps.insert(steps.end(), row.other.begin(), row.other.end());
        const Session s = Run(steps);
        ASSERT_EQ(s.nStatus, 0) << s.sOut;
        ASSERT_EQ(s.steps.size(), CountExchanges(row.slow) + CountExchanges(row.other)) << s.sOut;
        for (const rapidjson::Document& step : s.steps)
            EXPECT_TRUE(step["ok"].GetBool()) << Str(step, "step");

        int overlapping = 0;
        for (const rapidjson::Document& slow : s.requests) {
            if (Str(slow, "path") != row.slowPath)
                continue;
            const int64_t from = slow["received_us"].GetInt64();
            const int64_t to = slow["answered_us"].GetInt64();
            for (const rapidjson::Document& other : s.requests) {
                if (row.onlySlowOnesCount && Str(other, "path") != row.slowPath)
                    continue;
                const int64_t received = other["received_us"].GetInt64();
                overlapping += received > from && received < to ? 1 : 0;
            }
        }
        EXPECT_GT(overlapping, 0) << "nothing reached the daemon during the slow request";
    }
}

}  // namespace
