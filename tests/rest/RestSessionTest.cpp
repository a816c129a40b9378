// Sessions of the REST client with the simulated daemon. Each test runs tlr-rest-driver
// inside the sandbox, where the simulator listens on the daemon's fixed address and the fake
// lsof names it, then reads what the driver printed and what the simulator logged.

#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <cstdio>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "rest/RestConstants.h"
#include "support/Process.h"
#include "support/SandboxHost.h"
#include "support/TempDir.h"

namespace {

constexpr const char* kLoginPath = tlr_rest::kAuthEndpoint;
constexpr const char* kTreePath = tlr_rest::kSdtEndpoint;
constexpr const char* kRedfishPath = tlr_rest::kRedfishEndpoint;

// Quotes, a backslash and a non-ASCII letter, so that JSON escapes must be undone.
constexpr char kTree[] =
    "<?xml version=\"1.0\"?>\n<amEMTL Version=\"2\"><System><Adapter Nr=\"0\" "
    "Name=\"Ctrl \\ \xC3\xA9\"><Status>Operational</Status></Adapter></System></amEMTL>\n";

using Texts = std::vector<std::string>;

struct Session {
    int nStatus = -1;
    std::string sOut;
    std::vector<rapidjson::Document> steps;
    std::vector<rapidjson::Document> requests;
};

// A string member, or "<none>".
std::string Str(const rapidjson::Value& object, const char* key) {
    if (!object.IsObject() || !object.HasMember(key) || !object[key].IsString())
        return "<none>";
    return std::string(object[key].GetString(), object[key].GetStringLength());
}

// The access token that a login reply carried.
std::string IssuedToken(const rapidjson::Value& request) {
    rapidjson::Document reply;
    reply.Parse(Str(request, "reply").c_str());
    return Str(reply, "access_token");
}

// The texts of an array member that contain text, or with atStart that begin with it.
Texts Find(const rapidjson::Value& object, const char* array, const std::string& text,
           bool atStart) {
    Texts found;
    for (const auto& item : object[array].GetArray()) {
        const size_t at = std::string(item.GetString()).find(text);
        if (atStart ? at == 0 : at != std::string::npos)
            found.push_back(item.GetString());
    }
    return found;
}
Texts Headers(const rapidjson::Value& request, const std::string& prefix) {
    return Find(request, "headers", prefix, true);
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

// One JSON document per line; lines that don't parse are left out.
std::vector<rapidjson::Document> ParseLines(const std::string& text) {
    std::vector<rapidjson::Document> documents;
    for (const std::string& line : Lines(text)) {
        rapidjson::Document doc;
        if (!doc.Parse(line.c_str()).HasParseError())
            documents.push_back(std::move(doc));
    }
    return documents;
}

// A private directory with the simulator's tree, control file and request log.
class RestSessionTest : public ::testing::Test {
  protected:
    // Runs the driver's steps in the sandbox, with the simulator.
    Session Run(const std::vector<std::string>& steps, const Texts& sandboxOptions = {}) {
        Texts options = {"--trace-level", "6"};
        options.insert(options.end(), sandboxOptions.begin(), sandboxOptions.end());
        options.insert(options.end(), {"--sim", "--tree " + m_sTree + " --control " + m_Dir.Path() +
                                                    "/control.json --log " + m_sLog});
        Texts argv = {BuildPath("tests/tlr-rest-driver")};
        argv.insert(argv.end(), steps.begin(), steps.end());
        const ProcessResult result = RunProcess(InSandbox(options, argv));
        return {result.exitCode, result.out, ParseLines(result.out),
                ParseLines(ReadWholeFile(m_sLog))};
    }
    void Control(const std::string& json) { m_Dir.Write("control.json", json); }

    TempDir m_Dir;
    std::string m_sTree = m_Dir.Write("tree.xml", kTree);
    std::string m_sLog = m_Dir.Path() + "/requests.jsonl";
};

TEST_F(RestSessionTest, EveryRequestLogsInWithTheHeldJwtAndCarriesItsOwnToken) {
    const Session s = Run({"sdt:5", "sdt:5", R"(redfish:5:{\"Id\":\"1\",\"Path\":\"C:\\dir\"})"});
    ASSERT_EQ(s.nStatus, 0) << s.sOut;
    ASSERT_EQ(s.steps.size(), 3u) << s.sOut;
    ASSERT_EQ(s.requests.size(), 6u);

    const char* const paths[] = {kTreePath, kTreePath, kRedfishPath};
    std::set<std::string> tokens;
    for (size_t i = 0; i < 3; ++i) {
        SCOPED_TRACE(i);
        const rapidjson::Value& login = s.requests[2 * i];
        const rapidjson::Value& request = s.requests[2 * i + 1];
        EXPECT_EQ(Str(login, "path"), kLoginPath);
        EXPECT_EQ(Str(request, "path"), paths[i]);
        EXPECT_EQ(request["status"].GetInt(), 200);
        // A form with the one JWT that the client holds, valid for the daemon.
        EXPECT_EQ(Str(login, "body"),
                  "jwt=" + Str(s.steps[0], "jwt") + "&client_id=TLRM_CLIENT_TLAS");
        EXPECT_TRUE(login["jwt"]["valid"].GetBool()) << Str(login["jwt"], "reason");
        EXPECT_EQ(Headers(login, "Content-Type:"),
                  Texts{"Content-Type: application/x-www-form-urlencoded"});
        EXPECT_EQ(Headers(login, "Authorization:"), Texts{});
        // The request: JSON, with the token of its own login.
        EXPECT_EQ(Headers(request, "Authorization:"),
                  Texts{"Authorization: Bearer " + IssuedToken(login)});
        EXPECT_EQ(Headers(request, "Content-Type:"), Texts{"Content-Type: application/json"});
        tokens.insert(IssuedToken(login));
        EXPECT_TRUE(s.steps[i]["ok"].GetBool());
        // The Redfish body goes out without the backslashes; the daemon's echo comes back.
        EXPECT_EQ(Str(s.steps[i], "out"), i < 2 ? kTree : R"({"Id":"1","Path":"C:dir"})");
    }
    EXPECT_EQ(tokens.size(), 3u);
    EXPECT_EQ(Str(s.requests[5], "body"), R"({"Id":"1","Path":"C:dir"})");
}

TEST_F(RestSessionTest, RefusedLoginLeavesABareBearer) {
    Control(R"({"authJwt":{"refuse":true}})");
    const Session s = Run({"sdt:5"});
    ASSERT_EQ(s.steps.size(), 1u) << s.sOut;
    ASSERT_EQ(s.requests.size(), 2u);
    EXPECT_EQ(s.requests[0]["status"].GetInt(), 401);
    // The server trims the value: "Authorization: Bearer " arrives as "Bearer".
    EXPECT_EQ(Headers(s.requests[1], "Authorization:"), Texts{"Authorization: Bearer"});
    EXPECT_EQ(s.requests[1]["status"].GetInt(), 401);
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
        Control(row.control);
        const Session s = Run({"sdt:5"});
        ASSERT_EQ(s.steps.size(), 1u) << s.sOut;
        EXPECT_EQ(s.steps[0]["ok"].GetBool(), row.ok);
        EXPECT_EQ(Str(s.steps[0], "out"), row.out);
        EXPECT_NE(Find(s.steps[0], "trace", row.trace, false), Texts{});
    }
}

// No lock is held over an exchange: the threads' slow logins, and then their slow requests,
// are with the daemon at the same time.
TEST_F(RestSessionTest, TimeOutCoversTheRequestButNotTheLoginAndThreadsExchangeTogether) {
    // Every answer comes after 1.2 s; three threads at once, two with a time-out of 1 s.
    Control(R"({"authJwt":{"delay_ms":1200},"sdt":{"delay_ms":1200},
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
    const auto logins = OnPath(s, kLoginPath), trees = OnPath(s, kTreePath),
               redfish = OnPath(s, kRedfishPath);
    ASSERT_EQ(logins.size(), 3u);
    ASSERT_EQ(trees.size(), 2u);
    ASSERT_EQ(redfish.size(), 1u);
    auto overlap = [](const rapidjson::Value& a, const rapidjson::Value& b) {
        return a["received_us"].GetInt64() < b["answered_us"].GetInt64() &&
               b["received_us"].GetInt64() < a["answered_us"].GetInt64();
    };
    EXPECT_TRUE(overlap(*logins[0], *logins[1]));
    EXPECT_TRUE(overlap(*trees[0], *redfish[0]));
}

// The sandbox's lsof runs the client's pipeline on the text given.
TEST_F(RestSessionTest, LsofOutputDecidesWhereRequestsGo) {
    const std::string noNewline = m_Dir.Write(
        "lsof", "tlrcd 2101 root 12 127.0.0.1 SOCKET_INET 0 TCP 127.0.0.1:34246 (LISTEN)");
    struct Row {
        const char* option;
        std::string lsof;
        bool ok;
        size_t requests;
        const char* trace;
    };
    const Row rows[] = {
        // awk ends every line it prints, so a last line without one loses nothing.
        {"--lsof-file", noNewline, true, 2, "hostname read: 127.0.0.1"},
        {"--lsof", "sshd 1987 root 3 0.0.0.0 SOCKET_INET", false, 0,
         "GetMainServerIpAddress: failed to read output"},
        {"--lsof", "tlrcd 2101 root 12 127.0.0.2 SOCKET_INET", false, 0,
         "SetAuthToken: failed to perform request rc=7"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.lsof);
        std::remove(m_sLog.c_str());
        const Session s = Run({"sdt:5"}, {row.option, row.lsof});
        ASSERT_EQ(s.steps.size(), 1u) << s.sOut;
        EXPECT_EQ(s.steps[0]["ok"].GetBool(), row.ok);
        EXPECT_EQ(s.requests.size(), row.requests);
        EXPECT_NE(Find(s.steps[0], "trace", row.trace, false), Texts{});
    }
}

// Threads sharing the one client: each exchange keeps its own token and reply.
TEST_F(RestSessionTest, ThreadsKeepTheirOwnTokensAndReplies) {
    constexpr int kThreads = 4, kRounds = 8;
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

}  // namespace
