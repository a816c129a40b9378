// Sessions of the REST client with the simulated daemon. Each test runs tlr-rest-driver
// inside the sandbox, where the simulator listens on the daemon's fixed address and the fake
// lsof names it, then reads what the driver printed and what the simulator logged.

#include <gtest/gtest.h>
#include <rapidjson/document.h>

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

// Quotes, a backslash and a non-ASCII letter, so that JSON escapes must be undone.
constexpr char kTree[] =
    "<?xml version=\"1.0\"?>\n<amEMTL Version=\"2\"><System><Adapter Nr=\"0\" "
    "Name=\"Ctrl \\ \xC3\xA9\"><Status>Operational</Status></Adapter></System></amEMTL>\n";

// How many header lines of the request start with prefix, and whether one is exactly line.
int CountHeaders(const rapidjson::Value& request, const std::string& prefix) {
    int count = 0;
    for (const auto& header : request["headers"].GetArray())
        count += std::string(header.GetString()).rfind(prefix, 0) == 0 ? 1 : 0;
    return count;
}
bool HasHeader(const rapidjson::Value& request, const std::string& line) {
    for (const auto& header : request["headers"].GetArray()) {
        if (line == header.GetString())
            return true;
    }
    return false;
}

bool Traced(const rapidjson::Value& step, const std::string& text) {
    for (const auto& message : step["trace"].GetArray()) {
        if (std::string(message.GetString()).find(text) != std::string::npos)
            return true;
    }
    return false;
}

// The requests of the log whose path is path.
std::vector<const rapidjson::Document*> OnPath(const Session& s, const std::string& path) {
    std::vector<const rapidjson::Document*> found;
    for (const rapidjson::Document& request : s.requests) {
        if (Str(request, "path") == path)
            found.push_back(&request);
    }
    return found;
}

class RestSessionTest : public RestSandboxTest {
  protected:
    RestSessionTest() : RestSandboxTest(kTree) {}
};

TEST_F(RestSessionTest, EveryRequestLogsInWithTheHeldJwtAndCarriesItsOwnToken) {
    const Session s = Run({"sdt:5", "sdt:5", R"(redfish:5:{\"Id\":\"1\",\"Path\":\"C:\\dir\"})"});
    ASSERT_EQ(s.nStatus, 0) << s.sOut;
    ASSERT_EQ(s.steps.size(), 3u) << s.sOut;
    ASSERT_EQ(s.requests.size(), 6u);

    const char* const paths[] = {kLoginPath, kTreePath,  kLoginPath,
                                 kTreePath,  kLoginPath, kRedfishPath};
    std::set<std::string> tokens;
    for (size_t i = 0; i < 6; i += 2) {
        SCOPED_TRACE(i);
        const rapidjson::Value& login = s.requests[i];
        const rapidjson::Value& request = s.requests[i + 1];
        EXPECT_EQ(Str(login, "path"), paths[i]);
        EXPECT_EQ(Str(request, "path"), paths[i + 1]);
        EXPECT_EQ(login["status"].GetInt(), 200);
        EXPECT_EQ(request["status"].GetInt(), 200);
        // A form with the one JWT that the client holds, valid for the daemon.
        EXPECT_EQ(Str(login, "body"),
                  "jwt=" + Str(s.steps[0], "jwt") + "&client_id=TLRM_CLIENT_TLAS");
        EXPECT_TRUE(login["jwt"]["valid"].GetBool()) << Str(login["jwt"], "reason");
        EXPECT_TRUE(HasHeader(login, "Content-Type: application/x-www-form-urlencoded"));
        EXPECT_EQ(CountHeaders(login, "Authorization:"), 0);
        // The request: JSON, with the token of its own login.
        EXPECT_EQ(Str(request, "bearer"), IssuedToken(login));
        EXPECT_TRUE(HasHeader(request, "Authorization: Bearer " + IssuedToken(login)));
        EXPECT_EQ(CountHeaders(request, "Authorization:"), 1);
        EXPECT_TRUE(HasHeader(request, "Content-Type: application/json"));
        EXPECT_EQ(CountHeaders(request, "Content-Type:"), 1);
        tokens.insert(IssuedToken(login));
        EXPECT_TRUE(s.steps[i / 2]["ok"].GetBool());
    }
    EXPECT_EQ(tokens.size(), 3u);
    EXPECT_EQ(Str(s.steps[0], "out"), kTree);
    EXPECT_EQ(Str(s.steps[1], "out"), kTree);
    EXPECT_EQ(Str(s.steps[2], "access_token"), IssuedToken(s.requests[4]));
    // The Redfish body goes out without the backslashes; the daemon's echo comes back as is.
    EXPECT_EQ(Str(s.requests[5], "body"), R"({"Id":"1","Path":"C:dir"})");
    EXPECT_EQ(Str(s.steps[2], "out"), R"({"Id":"1","Path":"C:dir"})");
}

TEST_F(RestSessionTest, RefusedLoginLeavesABareBearer) {
    WriteFile(m_sControl, R"({"authJwt":{"refuse":true}})");
    const Session s = Run({"sdt:5"});
    ASSERT_EQ(s.steps.size(), 1u) << s.sOut;
    ASSERT_EQ(s.requests.size(), 2u);
    EXPECT_EQ(s.requests[0]["status"].GetInt(), 401);
    // The server trims the value: "Authorization: Bearer " arrives as "Bearer".
    EXPECT_TRUE(HasHeader(s.requests[1], "Authorization: Bearer"));
    EXPECT_EQ(s.requests[1]["status"].GetInt(), 401);
    EXPECT_EQ(Str(s.steps[0], "access_token"), "");
    EXPECT_FALSE(s.steps[0]["ok"].GetBool());
    EXPECT_EQ(Str(s.steps[0], "out"), "untouched");
}

// The reply's SDT member is read as the login reply's token is (see RestClientTest); here
// what is particular to the tree.
TEST_F(RestSessionTest, TreeReplies) {
    struct Row {
        const char* name;
        const char* control;
        bool ok;
        const char* out;
        const char* trace;
    };
    const Row rows[] = {
        {"SDT a number", R"({"sdt":{"sdt":5}})", false, "untouched",
         "GetXmlSdt: SDT de-jsonization failed"},
        {"not JSON", R"({"sdt":{"body":"<amEMTL/>"}})", false, "untouched",
         "GetXmlSdt: SDT not found in JSON response"},
        {"500 with a tree", R"({"sdt":{"status":500,"body":"{\"SDT\":\"<a/>\"}"}})", true, "<a/>",
         "SDT fetched successfully, size 14"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        WriteFile(m_sControl, row.control);
        const Session s = Run({"sdt:5"});
        ASSERT_EQ(s.steps.size(), 1u) << s.sOut;
        EXPECT_EQ(s.steps[0]["ok"].GetBool(), row.ok);
        EXPECT_EQ(Str(s.steps[0], "out"), row.out);
        EXPECT_TRUE(Traced(s.steps[0], row.trace));
    }
}

TEST_F(RestSessionTest, TimeOutCoversTheRequestButNotTheLogin) {
    // Every answer comes after 1.2 s; three threads at once, two with a time-out of 1 s.
    WriteFile(m_sControl, R"({"authJwt":{"delay_ms":1200},"sdt":{"delay_ms":1200},
                              "redfishOp":{"delay_ms":1200}})");
    const Session s = Run({"--thread", "sdt:1", "--thread", "sdt:0", "--thread", "redfish:1:{}"});
    ASSERT_EQ(s.nStatus, 0) << s.sOut;
    ASSERT_EQ(s.steps.size(), 3u) << s.sOut;
    const std::map<int, std::pair<bool, std::string>> expected = {
        {0, {false, "untouched"}}, {1, {true, kTree}}, {2, {false, ""}}};
    for (const rapidjson::Document& step : s.steps) {
        const auto& [ok, out] = expected.at(step["thread"].GetInt());
        EXPECT_EQ(step["ok"].GetBool(), ok) << Str(step, "step");
        EXPECT_EQ(Str(step, "out"), out) << Str(step, "step");
    }
    // Each thread got past its slow login and sent its request.
    EXPECT_EQ(OnPath(s, kLoginPath).size(), 3u);
    EXPECT_EQ(OnPath(s, kTreePath).size(), 2u);
    EXPECT_EQ(OnPath(s, kRedfishPath).size(), 1u);
}

TEST_F(RestSessionTest, LsofOutputDecidesWhereRequestsGo) {
    WriteFile(m_sDir + "/lsof-no-newline",
              "tlrcd 2101 root 12 127.0.0.1 SOCKET_INET 0 TCP 127.0.0.1:34246 (LISTEN)");
    struct Row {
        const char* name;
        std::vector<std::string> lsofOptions;
        bool ok;
        size_t requests;
        const char* trace;
    };
    const Row rows[] = {
        // awk ends every line it prints, so a last line without one loses nothing.
        {"last line without newline",
         {"--lsof-file", m_sDir + "/lsof-no-newline"},
         true,
         2,
         "hostname read: 127.0.0.1"},
        {"no daemon socket",
         {"--lsof", "sshd 1987 root 3 0.0.0.0 SOCKET_INET"},
         false,
         0,
         "GetMainServerIpAddress: failed to read output"},
        {"another address",
         {"--lsof", "tlrcd 2101 root 12 127.0.0.2 SOCKET_INET"},
         false,
         0,
         "SetAuthToken: failed to perform request rc=7"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        std::filesystem::remove(m_sLog);
        const Session s = Run({"sdt:5"}, row.lsofOptions);
        ASSERT_EQ(s.steps.size(), 1u) << s.sOut;
        EXPECT_EQ(s.steps[0]["ok"].GetBool(), row.ok);
        EXPECT_EQ(s.requests.size(), row.requests);
        EXPECT_TRUE(Traced(s.steps[0], row.trace));
    }
}

TEST_F(RestSessionTest, NoDaemonFailsBothRequests) {
    const Session s = Run({"sdt:5", "redfish:5:{}"}, {}, false);
    ASSERT_EQ(s.steps.size(), 2u) << s.sOut;
    EXPECT_FALSE(s.steps[0]["ok"].GetBool());
    EXPECT_TRUE(Traced(s.steps[0], "SetAuthToken: failed to perform request rc=7"));
    EXPECT_TRUE(Traced(s.steps[0], "GetXmlSdt: REST request failed"));
    EXPECT_FALSE(s.steps[1]["ok"].GetBool());
    EXPECT_TRUE(Traced(s.steps[1], "SendRedfishRequest: REST request failed"));
}

// Threads sharing the one client: each exchange keeps its own token and reply.
TEST_F(RestSessionTest, ThreadsKeepTheirOwnTokensAndReplies) {
    constexpr int kThreads = 4;
    constexpr int kRounds = 8;
    auto body = [](int thread, int round) {
        return "{\"t\":" + std::to_string(thread) + ",\"i\":" + std::to_string(round) + "}";
    };
    std::vector<std::string> steps;
    for (int t = 0; t < kThreads; ++t) {
        steps.push_back("--thread");
        for (int i = 0; i < kRounds; ++i)
            steps.insert(steps.end(), {"sdt:5", "redfish:5:" + body(t, i)});
    }
    const Session s = Run(steps);
    ASSERT_EQ(s.nStatus, 0) << s.sOut;
    ASSERT_EQ(s.steps.size(), static_cast<size_t>(kThreads * kRounds * 2)) << s.sOut;
    std::map<int, int> round;
    for (const rapidjson::Document& step : s.steps) {
        const int thread = step["thread"].GetInt();
        EXPECT_TRUE(step["ok"].GetBool());
        EXPECT_EQ(Str(step, "out"),
                  Str(step, "step") == "sdt" ? kTree : body(thread, round[thread]++));
    }
    // Every request carried a token that a login issued, and no two the same one.
    std::multiset<std::string> issued, carried;
    for (const rapidjson::Document& request : s.requests) {
        EXPECT_EQ(request["status"].GetInt(), 200);
        if (Str(request, "path") == kLoginPath)
            issued.insert(IssuedToken(request));
        else
            carried.insert(Str(request, "bearer"));
    }
    EXPECT_EQ(carried, issued);
    EXPECT_EQ(std::set<std::string>(issued.begin(), issued.end()).size(), issued.size());
}

// No lock is held over an exchange: two threads' slow logins, and then their slow requests,
// are with the daemon at the same time.
TEST_F(RestSessionTest, ThreadsExchangeAtTheSameTime) {
    WriteFile(m_sControl, R"({"authJwt":{"delay_ms":1000},"sdt":{"delay_ms":1000},
                              "redfishOp":{"delay_ms":1000}})");
    const Session s = Run({"--thread", "sdt:10", "--thread", "redfish:10:{}"});
    ASSERT_EQ(s.nStatus, 0) << s.sOut;
    auto overlap = [](const rapidjson::Value& a, const rapidjson::Value& b) {
        return a["received_us"].GetInt64() < b["answered_us"].GetInt64() &&
               b["received_us"].GetInt64() < a["answered_us"].GetInt64();
    };
    const auto logins = OnPath(s, kLoginPath);
    const auto trees = OnPath(s, kTreePath);
    const auto redfish = OnPath(s, kRedfishPath);
    ASSERT_EQ(logins.size(), 2u);
    ASSERT_EQ(trees.size(), 1u);
    ASSERT_EQ(redfish.size(), 1u);
    EXPECT_TRUE(overlap(*logins[0], *logins[1]));
    EXPECT_TRUE(overlap(*trees[0], *redfish[0]));
}

}  // namespace
