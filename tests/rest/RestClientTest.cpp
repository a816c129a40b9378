// The REST client's steps that need no daemon: the lsof line, the login reply, the JWT and
// its lifetime, the header list. Exchanges with a daemon are in RestSessionTest.cpp.

#include <curl/curl.h>
#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <algorithm>
#include <atomic>
#include <deque>
#include <stdexcept>
#include <string>
#include <thread>
#include <typeinfo>
#include <vector>

#include "RunCommand.h"
#include "TestRestClient.h"
#include "rest/CurlHandles.h"
#include "support/CaptureTraceServer.h"

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

void SetClock(std::initializer_list<int64_t> readings) {
    g_ClockReadings = readings;
}

TLRAIDRestClientSettings FakeClockSettings(int64_t lifetime = 300) {
    TLRAIDRestClientSettings settings;
    settings.nTokenLifetime = lifetime;
    settings.pNow = FakeNow;
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
        {"exit 3", false, "untouched", "GetMainServerIpAddress: failed to read output"},
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
    std::string xml = "old tree";
    std::string reply = "old reply";
    EXPECT_FALSE(client.GetXmlSdt(xml, 5));
    EXPECT_FALSE(client.SendRedfishRequest("{}", reply, 5));
    EXPECT_EQ(xml, "old tree");
    EXPECT_EQ(reply, "old reply");
    const std::vector<std::string> messages = Debug.TakeMessages();
    EXPECT_FALSE(Traced(messages, "SetAuthToken"));
    EXPECT_FALSE(Traced(messages, "SendGet"));
    EXPECT_FALSE(Traced(messages, "CrudMethod::POST"));
}

TEST_F(RestClientTest, AccessTokenIsTheFirstTopLevelStringMember) {
    struct Row {
        const char* reply;
        const char* token;
    };
    const Row rows[] = {
        {R"({"access_token":"abc"})", "abc"},
        {R"({"token_type":"Bearer","expires_in":60,"access_token":"abc"})", "abc"},
        {R"({"access_token":"first","access_token":"second"})", "first"},
        {R"({"outer":{"access_token":"abc"}})", ""},
        {R"({"access_token":5})", ""},
        {R"({"access_token":null})", ""},
        {R"({"access_tokens":"abc","access_toke":"abc"})", ""},
        {R"(["access_token","abc"])", ""},
        {R"({"access_token":"abc")", ""},
        {"not json", ""},
        {"", ""},
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

TEST_F(RestClientTest, JwtHoldsUntilTheNanosecondOfExp) {
    CTestRestClient client(FakeClockSettings(300));
    SetClock({0});
    EXPECT_EQ(client.IsJwtValid(), 0u) << "no token yet";

    SetClock({1000 * kSecond + kSecond / 2});
    client.CreateJwt();
    EXPECT_EQ(client.IsJwtValid(), 1u);
    SetClock({1300 * kSecond});
    EXPECT_EQ(client.IsJwtValid(), 1u);
    SetClock({1300 * kSecond + 1});
    EXPECT_EQ(client.IsJwtValid(), 0u);
}

// A clock that threads may read while a test moves it.
std::atomic<int64_t> g_SharedNow{0};

int64_t SharedNow() {
    return g_SharedNow.load();
}

TEST_F(RestClientTest, ThreadsLoggingInTogetherGetTheHeldJwt) {
    TLRAIDRestClientSettings settings;
    settings.nTokenLifetime = 300;
    settings.pNow = SharedNow;
    CTestRestClient client(settings);
    // The first logins find no token, the later ones a held or an expired one: every thread
    // gets the token that the client holds afterwards.
    std::vector<std::string> previous;
    for (const int64_t now : {1000 * kSecond, 1300 * kSecond, 1300 * kSecond + 1}) {
        SCOPED_TRACE(now);
        g_SharedNow = now;
        constexpr int kThreads = 8;
        std::vector<std::vector<std::string>> seen(kThreads);
        std::vector<std::thread> threads;
        for (int t = 0; t < kThreads; ++t) {
            threads.emplace_back([&client, &seen, t] {
                for (int i = 0; i < 20; ++i)
                    seen[t].push_back(client.JwtForLogin());
            });
        }
        for (std::thread& thread : threads)
            thread.join();
        const std::string held = client.HeldJwt();
        for (const std::vector<std::string>& tokens : seen)
            EXPECT_EQ(std::count(tokens.begin(), tokens.end(), held), 20);
        previous.push_back(held);
    }
    // Still valid at the nanosecond of exp, renewed just after it.
    EXPECT_EQ(previous[1], previous[0]);
    EXPECT_NE(previous[2], previous[1]);
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
        CTestRestClient client(FakeClockSettings(row.lifetime));
        SetClock({row.firstReading, row.secondReading});
        const std::string token = client.CreateJwt();
        EXPECT_EQ(client.m_sJwt, token);

        // A second implementation must accept the signature and read the same claims.
        const CommandResult check =
            RunCommand(std::string(TLR_PYTHON3) + " " + TLR_SOURCE_DIR +
                       "/tests/rest/check_jwt.py " + ShellQuote(token) + " --ignore-exp");
        ASSERT_EQ(check.nStatus, 0) << token;
        rapidjson::Document doc;
        doc.Parse(check.sOut.c_str());
        ASSERT_TRUE(doc.IsObject()) << check.sOut;
        EXPECT_STREQ(doc["header"]["typ"].GetString(), "JWT");
        EXPECT_STREQ(doc["header"]["alg"].GetString(), "HS256");
        const rapidjson::Value& claims = doc["claims"];
        EXPECT_EQ(claims.MemberCount(), 3u) << check.sOut;
        EXPECT_STREQ(claims["iss"].GetString(), "TLRM_CLIENT_TLAS");
        EXPECT_EQ(claims["iat"].GetInt64(), row.iat);
        EXPECT_EQ(claims["exp"].GetInt64(), row.exp);
    }
}

TEST_F(RestClientTest, TokensWithoutUsableExpThrowFromTheValidityTest) {
    // Signed with the shared key by another implementation: {"iss":..,"iat":1} and the same
    // with "exp":"soon".
    const std::string noExp =
        "eyJhbGciOiJIUzI1NiIsInR5cCI6IkpXVCJ9.eyJpc3MiOiJUTFJNX0NMSUVOVF9UTEFTIiwiaWF0IjoxfQ."
        "gVWneslyFgyAw1oqzZGlUgjQz16AvS6tZGzSpGIXoeg";
    const std::string textExp =
        "eyJhbGciOiJIUzI1NiIsInR5cCI6IkpXVCJ9."
        "eyJpc3MiOiJUTFJNX0NMSUVOVF9UTEFTIiwiaWF0IjoxLCJleHAiOiJzb29uIn0."
        "Cq8m5WLWMMFn1TT6jGgpEp7sf-OqCmqWoKxN5b86pcE";
    CTestRestClient client;
    client.m_sJwt = noExp;
    try {
        client.IsJwtValid();
        ADD_FAILURE() << "no exception";
    } catch (const std::runtime_error& e) {
        EXPECT_STREQ(e.what(), "claim not found");
    }
    client.m_sJwt = textExp;
    EXPECT_THROW(client.IsJwtValid(), std::bad_cast);
    client.m_sJwt = "not a token";
    EXPECT_ANY_THROW(client.IsJwtValid());
}

TEST_F(RestClientTest, HeaderListHasContentTypeThenBearer) {
    for (const std::string token : {"", "0123abcd"}) {
        SCOPED_TRACE(token);
        CTestRestClient client;
        const CurlSlistPtr list = client.AddAuthBearerHeader(token);
        std::vector<std::string> lines;
        for (const curl_slist* item = list.get(); item; item = item->next)
            lines.push_back(item->data);
        EXPECT_EQ(lines, (std::vector<std::string>{"Content-Type: application/json",
                                                   "Authorization: Bearer " + token}));
    }
}

}  // namespace
