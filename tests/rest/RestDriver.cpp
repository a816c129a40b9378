// tlr-rest-driver: runs REST client operations for the session tests, inside the sandbox.
//
//   tlr-rest-driver STEP...                          one after the other
//   tlr-rest-driver --thread STEP... [--thread STEP...]...   each group on a thread of its own
//     sdt:TIMEOUT              GetXmlSdt
//     redfish:TIMEOUT:BODY     SendRedfishRequest
//
// One client serves all steps, so that its JWT carries from step to step. Each step prints
// one JSON line as it ends: {"thread","step","ok","out","jwt","trace":[messages since the
// line before]}. The out text starts as "untouched" so that a test sees whether the
// operation replaced it.

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "TestRestClient.h"
#include "support/CaptureTraceServer.h"

namespace {

std::mutex g_PrintLock;

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
    std::lock_guard<std::mutex> lock(g_PrintLock);
    printf("%s\n", buffer.GetString());
    fflush(stdout);
}

// Runs one step; false when the step can't be read.
bool RunStep(int thread, const std::string& step, CTestRestClient& client) {
    const size_t colon = step.find(':');
    const std::string name = step.substr(0, colon);
    const std::string rest = colon == std::string::npos ? "" : step.substr(colon + 1);
    const uint32_t timeout = static_cast<uint32_t>(strtoul(rest.c_str(), nullptr, 10));
    const size_t body = rest.find(':');
    std::string out = "untouched";
    bool ok = false;
    if (name == "sdt" && colon != std::string::npos)
        ok = client.GetXmlSdt(out, timeout);
    else if (name == "redfish" && body != std::string::npos)
        ok = client.SendRedfishRequest(rest.substr(body + 1), out, timeout);
    else
        return false;
    PrintStep(thread, name, ok, out, client);
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    CTestRestClient client;
    Debug.TakeMessages();
    const bool threaded = argc > 1 && std::string(argv[1]) == "--thread";
    std::vector<std::vector<std::string>> groups(threaded ? 0 : 1);
    for (int i = 1; i < argc; ++i) {
        if (std::string(argv[i]) == "--thread")
            groups.emplace_back();
        else
            groups.back().push_back(argv[i]);
    }
    std::vector<std::string> errors(groups.size());
    auto run = [&](size_t group) {
        for (const std::string& step : groups[group]) {
            if (!RunStep(static_cast<int>(group), step, client)) {
                errors[group] = "bad step " + step;
                return;
            }
        }
    };
    std::vector<std::thread> threads;
    for (size_t t = 0; threaded && t < groups.size(); ++t)
        threads.emplace_back(run, t);
    if (!threaded)
        run(0);
    for (std::thread& thread : threads)
        thread.join();
    for (const std::string& error : errors) {
        if (!error.empty()) {
            fprintf(stderr, "tlr-rest-driver: %s\n", error.c_str());
            return 2;
        }
    }
    return 0;
}
