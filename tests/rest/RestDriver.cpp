// tlr-rest-driver: runs REST client operations for the session tests, inside the sandbox.
//
//   tlr-rest-driver STEP...
//   tlr-rest-driver --thread STEP... [--thread STEP...]...
//     sdt:TIMEOUT              GetXmlSdt
//     redfish:TIMEOUT:BODY     SendRedfishRequest
//
// One client serves all steps, so that its JWT carries from step to step. Each step prints
// one JSON line: {"step","ok","out","jwt","access_token","trace":[messages]}. The out text
// starts as "untouched" so that a test sees whether the operation replaced it.
//
// With --thread, each group of steps runs on a thread of its own, all on the one client and
// all at once. A line then says {"thread","step","ok","out"}, printed as the step ends; the
// trace and the access token are the whole process's, so they are left out.

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

// The access token of the last login, as the client traced it: empty when none was found.
std::string TracedAccessToken(const std::vector<std::string>& messages) {
    const std::string found = "GetAccessToken FOUND[";
    std::string token;
    for (const std::string& message : messages) {
        const size_t start = message.find(found);
        if (start != std::string::npos) {
            const size_t from = start + found.size();
            token = message.substr(from, message.rfind(']') - from);
        }
    }
    return token;
}

void WriteString(rapidjson::Writer<rapidjson::StringBuffer>& writer, const char* key,
                 const std::string& value) {
    writer.Key(key);
    writer.String(value.c_str(), static_cast<rapidjson::SizeType>(value.size()));
}

// One step's line; thread < 0 for the single sequence, which also reports tokens and trace.
void PrintStep(int thread, const std::string& step, bool ok, const std::string& out,
               CTestRestClient& client) {
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    writer.StartObject();
    if (thread >= 0) {
        writer.Key("thread");
        writer.Int(thread);
    }
    WriteString(writer, "step", step);
    writer.Key("ok");
    writer.Bool(ok);
    WriteString(writer, "out", out);
    if (thread < 0) {
        const std::vector<std::string> messages = Debug.TakeMessages();
        WriteString(writer, "jwt", client.HeldJwt());
        WriteString(writer, "access_token", TracedAccessToken(messages));
        writer.Key("trace");
        writer.StartArray();
        for (const std::string& message : messages)
            writer.String(message.c_str(), static_cast<rapidjson::SizeType>(message.size()));
        writer.EndArray();
    }
    writer.EndObject();
    std::lock_guard<std::mutex> lock(g_PrintLock);
    printf("%s\n", buffer.GetString());
    fflush(stdout);
}

// Runs one step; false with a message in error when the step can't be read.
bool RunStep(int thread, const std::string& step, CTestRestClient& client, std::string& error) {
    const size_t colon = step.find(':');
    if (colon == std::string::npos) {
        error = "bad step " + step;
        return false;
    }
    const std::string name = step.substr(0, colon);
    const std::string rest = step.substr(colon + 1);
    std::string out = "untouched";
    if (name == "sdt") {
        const bool ok =
            client.GetXmlSdt(out, static_cast<uint32_t>(strtoul(rest.c_str(), nullptr, 10)));
        PrintStep(thread, name, ok, out, client);
    } else if (name == "redfish") {
        const size_t second = rest.find(':');
        if (second == std::string::npos) {
            error = "redfish wants TIMEOUT:BODY";
            return false;
        }
        const uint32_t timeout = static_cast<uint32_t>(strtoul(rest.c_str(), nullptr, 10));
        const bool ok = client.SendRedfishRequest(rest.substr(second + 1), out, timeout);
        PrintStep(thread, name, ok, out, client);
    } else {
        error = "unknown step " + step;
        return false;
    }
    return true;
}

int Usage(const std::string& error) {
    fprintf(stderr, "tlr-rest-driver: %s\n", error.c_str());
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    const int first = 1;
    CTestRestClient client;
    Debug.TakeMessages();

    if (first < argc && std::string(argv[first]) == "--thread") {
        std::vector<std::vector<std::string>> groups;
        for (int i = first; i < argc; ++i) {
            if (std::string(argv[i]) == "--thread")
                groups.emplace_back();
            else
                groups.back().push_back(argv[i]);
        }
        std::vector<std::string> errors(groups.size());
        std::vector<std::thread> threads;
        for (size_t t = 0; t < groups.size(); ++t) {
            threads.emplace_back([&, t] {
                for (const std::string& step : groups[t]) {
                    if (!RunStep(static_cast<int>(t), step, client, errors[t]))
                        return;
                }
            });
        }
        for (std::thread& thread : threads)
            thread.join();
        for (const std::string& error : errors) {
            if (!error.empty())
                return Usage(error);
        }
        return 0;
    }

    for (int i = first; i < argc; ++i) {
        std::string error;
        if (!RunStep(-1, argv[i], client, error))
            return Usage(error);
    }
    return 0;
}
