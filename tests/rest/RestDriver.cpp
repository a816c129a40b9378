// tlr-rest-driver [--thread] STEP... [--thread STEP...]...: runs REST client operations for
// the session tests, inside the sandbox; each group of steps after a --thread on a thread of
// its own, all at once, and all on one client, so that its JWT carries from step to step.
//     sdt:TIMEOUT              GetXmlSdt
//     redfish:TIMEOUT:BODY     SendRedfishRequest
// Each step prints one JSON line as it ends: {"thread","step","ok","out","jwt","trace":
// [messages since the line before]}. The out text starts as "untouched" so that a test sees
// whether the operation replaced it.

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "TestRestClient.h"
#include "support/CaptureTraceServer.h"

namespace {

void PrintStep(int thread, const std::string& step, bool ok, const std::string& out,
               CTestRestClient& client) {
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    auto string = [&writer](const std::string& text) {
        writer.String(text.c_str(), static_cast<rapidjson::SizeType>(text.size()));
    };
    writer.StartObject();
    writer.Key("thread");
    writer.Int(thread);
    writer.Key("step");
    string(step);
    writer.Key("ok");
    writer.Bool(ok);
    writer.Key("out");
    string(out);
    writer.Key("jwt");
    string(client.HeldJwt());
    writer.Key("trace");
    writer.StartArray();
    for (const std::string& message : Debug.TakeMessages())
        string(message);
    writer.EndArray();
    writer.EndObject();
    static std::mutex printLock;
    std::lock_guard<std::mutex> lock(printLock);
    printf("%s\n", buffer.GetString());
    fflush(stdout);
}

// Runs one step; false when the step can't be read.
bool RunStep(int thread, const std::string& step, CTestRestClient& client) {
    const size_t colon = step.find(':'), body = step.find(':', colon + 1);
    if (colon == std::string::npos)
        return false;
    const std::string name = step.substr(0, colon);
    const auto timeout = static_cast<uint32_t>(strtoul(step.c_str() + colon + 1, nullptr, 10));
    std::string out = "untouched";
    bool ok = false;
    if (name == "sdt")
        ok = client.GetXmlSdt(out, timeout);
    else if (name == "redfish" && body != std::string::npos)
        ok = client.SendRedfishRequest(step.substr(body + 1), out, timeout);
    else
        return false;
    PrintStep(thread, name, ok, out, client);
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    CTestRestClient client;
    Debug.TakeMessages();
    std::vector<std::vector<std::string>> groups(1);
    for (int i = 1; i < argc; ++i) {
        if (std::string(argv[i]) != "--thread")
            groups.back().push_back(argv[i]);
        else if (i > 1)
            groups.emplace_back();
    }
    std::atomic<bool> bad{false};
    std::vector<std::thread> threads;
    for (size_t t = 0; t < groups.size(); ++t) {
        threads.emplace_back([&, t] {
            for (const std::string& step : groups[t]) {
                if (!RunStep(static_cast<int>(t), step, client)) {
                    bad = true;
                    return;
                }
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    if (bad)
        fprintf(stderr, "tlr-rest-driver: a step it can't read\n");
    return bad ? 2 : 0;
}
