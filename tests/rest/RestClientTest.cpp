// The REST client's steps that need no daemon: the lsof line, the login reply, the JWT and
// its lifetime, and the probe of the daemon. Exchanges with a daemon are in
// RestSessionTest.cpp.

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <deque>
#include <string>
#include <thread>
#include <vector>

#include "TestRestClient.h"
#include "rest/RaidDaemon.h"
#include "rest/RestConstants.h"
#include "support/CaptureTraceServer.h"
#include "support/Process.h"

namespace {

constexpr int64_t kSecond = 1000000000;

// A clock that gives the readings queued for it, then keeps giving the last one.
std::deque<int64_t> g_ClockReadings{0};

int64_t FakeNow() {
    const int64_t now = g_ClockReadings.front();
    if (g_ClockReadings.size() > 1)
        g_ClockReadings.pop_front();
    return now;
}

TLRAIDRestClientSettings ClockSettings(int64_t (*now)(), int64_t lifetime = 300) {
    TLRAIDRestClientSettings settings;
    settings.nTokenLifetime = lifetime;
    settings.pNow = now;
    return settings;
}

TLRAIDRestClientSettings LsofSettings(const std::string& command) {
    TLRAIDRestClientSettings settings;
    settings.sLsofCommand = command;
    return settings;
}

bool Traced(const std::vector<std::string>& messages, const std::string& text) {
    return std::any_of(messages.begin(), messages.end(), [&](const std::string& message) {
        return message.find(text) != std::string::npos;
    });
}

class RestClientTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        ASSERT_TRUE(EnableTracing(6)) << "the trace configuration of this host keeps tracing off";
    }
    void SetUp() override { Debug.TakeMessages(); }
};

TEST_F(RestClientTest, HostIsTheFirstLineLessItsLastCharacter) {
    struct Row {
        const char* command;
        bool ok;
        std::string host;
        const char* trace;
    };
    const Row rows[] = {
        {"printf '127.0.0.1\\n10.1.1.1\\n'", true, "127.0.0.1", "hostname read: 127.0.0.1"},
        {"printf 'abc'", true, "ab", "hostname read: ab"},
        {"printf '%300s' '' | tr ' ' a", true, std::string(254, 'a'), "hostname read: aaa"},
        {"printf 'x'", false, "", "GetMainServerIpAddress : could not read hostname"},
        {"printf '\\n127.0.0.1\\n'", false, "", "GetMainServerIpAddress : could not read hostname"},
        {"true", false, "untouched", "GetMainServerIpAddress: failed to read output"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.command);
        CTestRestClient client(LsofSettings(row.command));
        std::string host = "untouched";
        EXPECT_EQ(client.GetMainServerIpAddress(host), row.ok);
        EXPECT_EQ(host, row.host);
        EXPECT_TRUE(Traced(Debug.TakeMessages(), row.trace));
    }
}

TEST_F(RestClientTest, NoHostMeansNoRequestAndUntouchedOutput) {
    CTestRestClient client(LsofSettings("printf 'x'"));
    std::string xml = "old tree", reply = "old reply";
    EXPECT_FALSE(client.GetXmlSdt(xml, 5));
    EXPECT_FALSE(client.SendRedfishRequest("{}", reply, 5));
    EXPECT_EQ(xml + "/" + reply, "old tree/old reply");
    const std::vector<std::string> messages = Debug.TakeMessages();
    EXPECT_FALSE(Traced(messages, "SetAuthToken") || Traced(messages, "CrudMethod::POST"));
}

TEST_F(RestClientTest, AccessTokenIsTheFirstTopLevelStringMember) {
    struct Row {
        const char* reply;
        const char* token;
    };
    const Row rows[] = {
        {R"({"token_type":"Bearer","expires_in":60,"access_token":"abc"})", "abc"},
        {R"({"access_token":"first","access_token":"second"})", "first"},
        {R"({"outer":{"access_token":"abc"}})", ""},
        {R"({"access_token":5})", ""},
        {R"({"access_tokens":"abc","access_toke":"abc"})", ""},
        {R"(["access_token","abc"])", ""},
        {R"({"access_token":"abc")", ""},
    };
    CTestRestClient client;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.reply);
        EXPECT_EQ(client.GetAccessToken(row.reply), row.token);
        const std::vector<std::string> messages = Debug.TakeMessages();
        EXPECT_TRUE(Traced(messages, std::string("GetAccessToken [") + row.reply + "]"));
        EXPECT_EQ(Traced(messages, "GetAccessToken FOUND["), *row.token != '\0');
    }
}

// A clock that threads may read while a test moves it.
std::atomic<int64_t> g_SharedNow{0};

int64_t SharedNow() {
    return g_SharedNow.load();
}

TEST_F(RestClientTest, ThreadsLoggingInTogetherGetTheHeldJwt) {
    CTestRestClient client(ClockSettings(SharedNow));
    // The first logins find no token, the later ones a held or an expired one: every thread
    // gets the token that the client holds afterwards.
    std::vector<std::string> held;
    for (const int64_t now : {1000 * kSecond, 1300 * kSecond, 1300 * kSecond + 1}) {
        g_SharedNow = now;
        std::vector<std::vector<std::string>> seen(8);
        std::vector<std::thread> threads;
        for (std::vector<std::string>& tokens : seen) {
            threads.emplace_back([&client, &tokens] {
                for (int i = 0; i < 20; ++i)
                    tokens.push_back(client.JwtForLogin());
            });
        }
        for (std::thread& thread : threads)
            thread.join();
        held.push_back(client.HeldJwt());
        for (const std::vector<std::string>& tokens : seen)
            EXPECT_EQ(std::count(tokens.begin(), tokens.end(), held.back()), 20) << now;
    }
    // Still valid at the nanosecond of exp, renewed just after it.
    EXPECT_EQ(held[1], held[0]);
    EXPECT_NE(held[2], held[1]);
}

TEST_F(RestClientTest, JwtClaimsAreIssuerIssuedAtAndExpiry) {
    struct Row {
        int64_t firstReading;
        int64_t secondReading;
        int64_t lifetime;
        int64_t iat;
        int64_t exp;
    };
    const Row rows[] = {
        {1000 * kSecond + 1, 1000 * kSecond + 2, 300, 1000, 1300},
        {1000 * kSecond - 1, 1000 * kSecond + 1, 300, 999, 1300},
        {5000 * kSecond, 5000 * kSecond, 2, 5000, 5002},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.iat);
        CTestRestClient client(ClockSettings(FakeNow, row.lifetime));
        g_ClockReadings = {row.firstReading, row.secondReading};
        const std::string token = client.CreateJwt();
        EXPECT_EQ(client.HeldJwt(), token);

        // A second implementation must accept the signature and read the same claims.
        const ProcessResult check =
            RunProcess({TLR_PYTHON3, SourcePath("tests/rest/check_jwt.py"), token});
        EXPECT_EQ(check.exitCode, 0) << token;
        EXPECT_EQ(check.out, "{\"claims\": {\"exp\": " + std::to_string(row.exp) +
                                 ", \"iat\": " + std::to_string(row.iat) +
                                 ", \"iss\": \"TLRM_CLIENT_TLAS\"}, \"header\": {\"alg\": "
                                 "\"HS256\", \"typ\": \"JWT\"}}\n");
    }
}

// The probe of the real daemon: the first line of its lsof pipeline must name the daemon's
// port before a tree is asked for. No daemon runs here, so a probe that goes on to the tree
// fails at the address lookup.
TEST(RaidDaemonProbe, OnlyTheDaemonsPortOnTheFirstLineGoesOnToTheTree) {
    const std::string port = std::to_string(tlr_rest::kDaemonPort);
    struct Row {
        const char* what;
        std::string probeOutput;
        bool goesOn;
    };
    const Row rows[] = {
        {"nothing listed", "", false},
        {"another port", "tlrcd 2101 root 12u SOCKET_INET TCP 127.0.0.1:443\n", false},
        {"the port on the second line only", "x\ntlrcd SOCKET_INET 127.0.0.1:" + port + "\n",
         false},
        {"the daemon's port", "tlrcd 2101 root 12u SOCKET_INET TCP 127.0.0.1:" + port + "\n", true},
    };
    ScopedTraceLevel trace(4);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        RaidDaemonSettings settings;
        settings.sProbeCommand = "printf '" + row.probeOutput + "'";
        settings.rest.sLsofCommand = "true";
        CRaidDaemon daemon(settings);
        Debug.Take();
        EXPECT_FALSE(daemon.ProbeRestServer(1));
        const std::string t = Debug.Take();
        EXPECT_EQ(t.find("\nCDeviceTLRaid::DetectTLRaid: TLRCD REST server is running") !=
                      std::string::npos,
                  row.goesOn);
        EXPECT_EQ(t.find("GetMainServerIpAddress") != std::string::npos, row.goesOn);
    }
}

}  // namespace
