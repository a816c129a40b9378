// Sessions of the REST client with the simulated daemon. Each test runs tlr-rest-driver
// inside the sandbox, where the simulator listens on the daemon's fixed address and the fake
// lsof names it, then reads what the driver printed and what the simulator logged.

#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <filesystem>
#include <string>
#include <vector>

#include "RunCommand.h"
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

bool HasHeader(const rapidjson::Value& request, const std::string& line) {
    for (const auto& header : request["headers"].GetArray()) {
        if (line == header.GetString())
            return true;
    }
    return false;
}

int CountHeaders(const rapidjson::Value& request, const std::string& prefix) {
    int count = 0;
    for (const auto& header : request["headers"].GetArray())
        count += std::string(header.GetString()).rfind(prefix, 0) == 0 ? 1 : 0;
    return count;
}

bool Traced(const rapidjson::Value& step, const std::string& text) {
    for (const auto& message : step["trace"].GetArray()) {
        if (std::string(message.GetString()).find(text) != std::string::npos)
            return true;
    }
    return false;
}

class RestSessionTest : public RestSandboxTest {
  protected:
    RestSessionTest() : RestSandboxTest(kTree) {}
};

TEST_F(RestSessionTest, LoginPrecedesEveryRequest) {
    const Session s = Run({"sdt:5", "sdt:5", "redfish:5:{}"});
    ASSERT_EQ(s.nStatus, 0) << s.sOut;
    ASSERT_EQ(s.steps.size(), 3u) << s.sOut;
    ASSERT_EQ(s.requests.size(), 6u);

    const char* const paths[] = {kLoginPath, kTreePath,  kLoginPath,
                                 kTreePath,  kLoginPath, kRedfishPath};
    std::vector<std::string> tokens;
    for (size_t i = 0; i < 6; ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(Str(s.requests[i], "path"), paths[i]);
        EXPECT_EQ(s.requests[i]["status"].GetInt(), 200);
        if (i % 2 == 0) {
            tokens.push_back(IssuedToken(s.requests[i]));
        } else {
            EXPECT_EQ(Str(s.requests[i], "bearer"), tokens.back());
        }
    }
    EXPECT_NE(tokens[0], tokens[1]);
    EXPECT_NE(tokens[1], tokens[2]);
    EXPECT_TRUE(s.steps[0]["ok"].GetBool());
    EXPECT_EQ(Str(s.steps[0], "out"), kTree);
    EXPECT_EQ(Str(s.steps[1], "out"), kTree);
    EXPECT_TRUE(s.steps[2]["ok"].GetBool());
    EXPECT_EQ(Str(s.steps[2], "access_token"), tokens[2]);
}

TEST_F(RestSessionTest, LoginIsAFormAndTreeRequestCarriesTwoHeaders) {
    const Session s = Run({"sdt:5"});
    ASSERT_EQ(s.requests.size(), 2u) << s.sOut;
    const rapidjson::Value& login = s.requests[0];
    const std::string jwt = Str(s.steps[0], "jwt");
    EXPECT_EQ(Str(login, "body"), "jwt=" + jwt + "&client_id=TLRM_CLIENT_TLAS");
    EXPECT_TRUE(HasHeader(login, "Content-Type: application/x-www-form-urlencoded"));
    EXPECT_EQ(CountHeaders(login, "Authorization:"), 0);
    EXPECT_TRUE(login["jwt"]["valid"].GetBool()) << Str(login["jwt"], "reason");

    const rapidjson::Value& tree = s.requests[1];
    EXPECT_TRUE(HasHeader(tree, "Content-Type: application/json"));
    EXPECT_TRUE(HasHeader(tree, "Authorization: Bearer " + IssuedToken(login)));
    EXPECT_EQ(CountHeaders(tree, "Authorization:"), 1);
    EXPECT_EQ(CountHeaders(tree, "Content-Type:"), 1);
}

TEST_F(RestSessionTest, JwtIsReusedWhileItHoldsAndRenewedAfter) {
    // Lifetime 3 s: the token made at t holds until the start of second floor(t) + 3. The
    // second login comes in a later second, where a new token would differ in iat.
    const Session s =
        Run({"sdt:5", "sleep:1100", "sdt:5", "sleep:2000", "sdt:5"}, "", "", "--lifetime 3");
    ASSERT_EQ(s.steps.size(), 3u) << s.sOut;
    ASSERT_EQ(s.requests.size(), 6u);
    const std::string first = FormJwt(s.requests[0]);
    EXPECT_EQ(FormJwt(s.requests[2]), first);
    EXPECT_NE(FormJwt(s.requests[4]), first);
    EXPECT_EQ(FormJwt(s.requests[4]), Str(s.steps[2], "jwt"));
    for (const rapidjson::Document& step : s.steps)
        EXPECT_TRUE(step["ok"].GetBool());
    const rapidjson::Value& claims = s.requests[4]["jwt"]["payload"];
    const int64_t lifetime = claims["exp"].GetInt64() - claims["iat"].GetInt64();
    EXPECT_TRUE(lifetime == 3 || lifetime == 4) << lifetime;
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
    EXPECT_TRUE(Traced(s.steps[0], "GetXmlSdt: SDT not found in JSON response"));
    EXPECT_FALSE(Traced(s.steps[0], "GetAccessToken FOUND"));
}

TEST_F(RestSessionTest, RedfishBodyGoesOutWithoutBackslashes) {
    const Session s = Run({R"(redfish:5:{\"Id\":\"1\",\"Path\":\"C:\\dir\"})"});
    ASSERT_EQ(s.steps.size(), 1u) << s.sOut;
    ASSERT_EQ(s.requests.size(), 2u);
    EXPECT_EQ(Str(s.requests[1], "body"), R"({"Id":"1","Path":"C:dir"})");
    EXPECT_TRUE(HasHeader(s.requests[1], "Content-Type: application/json"));
    EXPECT_TRUE(s.steps[0]["ok"].GetBool());
    // The simulator echoes the body; the reply is handed over as it came.
    EXPECT_EQ(Str(s.steps[0], "out"), R"({"Id":"1","Path":"C:dir"})");
    EXPECT_TRUE(
        Traced(s.steps[0], R"(CrudMethod::POST response      [{"Id":"1","Path":"C:dir"}])"));
}

TEST_F(RestSessionTest, TreeRepliesOfEveryShape) {
    struct Row {
        const char* name;
        const char* control;
        bool ok;
        const char* out;
        const char* trace;
    };
    const Row rows[] = {
        {"SDT after other members", R"({"sdt":{"body":"{\"Version\":1,\"SDT\":\"<amEMTL/>\"}"}})",
         true, "<amEMTL/>", "SDT de-jsonized successfully, size: 9"},
        {"SDT a number", R"({"sdt":{"sdt":5}})", false, "untouched",
         "GetXmlSdt: SDT de-jsonization failed"},
        {"SDT null", R"({"sdt":{"sdt":null}})", false, "untouched",
         "GetXmlSdt: SDT de-jsonization failed"},
        {"SDT nested", R"({"sdt":{"body":"{\"Reply\":{\"SDT\":\"<a/>\"}}"}})", false, "untouched",
         "GetXmlSdt: SDT not found in JSON response"},
        {"not JSON", R"({"sdt":{"body":"<amEMTL/>"}})", false, "untouched",
         "GetXmlSdt: SDT not found in JSON response"},
        {"empty reply", R"({"sdt":{"body":""}})", false, "untouched",
         "GetXmlSdt: SDT not found in JSON response"},
        {"500 with an error", R"({"sdt":{"status":500}})", false, "untouched",
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
    struct Row {
        const char* name;
        const char* control;
        const char* step;
        bool ok;
        const char* out;
        const char* trace;
    };
    const Row rows[] = {
        {"slow tree", R"({"sdt":{"delay_ms":3000}})", "sdt:1", false, "untouched",
         "SendGet: Request failed rc=28"},
        {"slow login", R"({"authJwt":{"delay_ms":1500}})", "sdt:1", true, kTree,
         "SendGet Request succeeded"},
        {"no time-out", R"({"sdt":{"delay_ms":1500}})", "sdt:0", true, kTree,
         "SendGet Request succeeded"},
        {"slow Redfish", R"({"redfishOp":{"delay_ms":3000}})", "redfish:1:{}", false, "",
         "CrudMethod::POST FAILED [28]"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        WriteFile(m_sControl, row.control);
        const Session s = Run({row.step});
        ASSERT_EQ(s.steps.size(), 1u) << s.sOut;
        EXPECT_EQ(s.steps[0]["ok"].GetBool(), row.ok);
        EXPECT_EQ(Str(s.steps[0], "out"), row.out);
        EXPECT_TRUE(Traced(s.steps[0], row.trace));
    }
}

TEST_F(RestSessionTest, LsofOutputDecidesWhereRequestsGo) {
    const std::string usual =
        "COMMAND PID USER FD HOST TYPE NODE NAME\n"
        "tlrcd 2101 root 12 127.0.0.1 SOCKET_INET 0 TCP 127.0.0.1:34246 (LISTEN)";
    WriteFile(m_sDir + "/lsof-no-newline", usual);
    struct Row {
        const char* name;
        std::string lsofOption;
        bool ok;
        size_t requests;
        const char* trace;
    };
    const Row rows[] = {
        {"usual line", "--lsof " + ShellQuote(usual), true, 2, "hostname read: 127.0.0.1"},
        // awk ends every line it prints, so a last line without one loses nothing.
        {"last line without newline", "--lsof-file " + m_sDir + "/lsof-no-newline", true, 2,
         "hostname read: 127.0.0.1"},
        // An empty fifth column leaves a line of one character: the newline.
        {"one character", "--lsof 'tlrcd 2101 SOCKET_INET'", false, 0,
         "GetMainServerIpAddress : could not read hostname"},
        {"no daemon socket", "--lsof 'sshd 1987 root 3 0.0.0.0 SOCKET_INET'", false, 0,
         "GetMainServerIpAddress: failed to read output"},
        {"another address", "--lsof 'tlrcd 2101 root 12 127.0.0.2 SOCKET_INET'", false, 0,
         "SetAuthToken: failed to perform request rc=7"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        std::filesystem::remove(m_sLog);
        const Session s = Run({"sdt:5"}, row.lsofOption);
        ASSERT_EQ(s.steps.size(), 1u) << s.sOut;
        EXPECT_EQ(s.steps[0]["ok"].GetBool(), row.ok);
        EXPECT_EQ(s.requests.size(), row.requests);
        EXPECT_TRUE(Traced(s.steps[0], row.trace));
    }
}

TEST_F(RestSessionTest, NoDaemonFailsBothRequests) {
    const Session s = Run({"sdt:5", "redfish:5:{}"}, "", "", "", false);
    ASSERT_EQ(s.steps.size(), 2u) << s.sOut;
    EXPECT_FALSE(s.steps[0]["ok"].GetBool());
    EXPECT_TRUE(Traced(s.steps[0], "SetAuthToken: failed to perform request rc=7"));
    EXPECT_TRUE(Traced(s.steps[0], "GetXmlSdt: REST request failed"));
    EXPECT_FALSE(s.steps[1]["ok"].GetBool());
    EXPECT_TRUE(Traced(s.steps[1], "SendRedfishRequest: REST request failed"));
    EXPECT_EQ(Str(s.steps[1], "access_token"), "");
}

}  // namespace
