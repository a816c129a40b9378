// tlr-rest-driver: runs REST client operations for the session tests, inside the sandbox.
//
//   tlr-rest-driver [--lifetime SEC] STEP...
//     sdt:TIMEOUT              GetXmlSdt
//     redfish:TIMEOUT:BODY     SendRedfishRequest
//     sleep:MS                 waits
//
// One client serves all steps, so that its JWT carries from step to step. Each step prints
// one JSON line: {"step","ok","out","jwt","access_token","trace":[messages]}. The out text
// starts as "untouched" so that a test sees whether the operation replaced it.

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include "TestRestClient.h"
#include "support/CaptureTraceServer.h"

namespace {

void PrintStep(const std::string& step, bool ok, const std::string& out,
               const CTestRestClient& client) {
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    writer.StartObject();
    writer.Key("step");
    writer.String(step.c_str(), static_cast<rapidjson::SizeType>(step.size()));
    writer.Key("ok");
    writer.Bool(ok);
    writer.Key("out");
    writer.String(out.c_str(), static_cast<rapidjson::SizeType>(out.size()));
    writer.Key("jwt");
    writer.String(client.m_sJwt.c_str());
    writer.Key("access_token");
    writer.String(client.m_sAccessToken.c_str());
    writer.Key("trace");
    writer.StartArray();
    for (const std::string& message : Debug.TakeMessages())
        writer.String(message.c_str(), static_cast<rapidjson::SizeType>(message.size()));
    writer.EndArray();
    writer.EndObject();
    printf("%s\n", buffer.GetString());
    fflush(stdout);
}

int Usage(const char* error) {
    fprintf(stderr, "tlr-rest-driver: %s\n", error);
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    TLRAIDRestClientSettings settings;
    int first = 1;
    if (argc > 2 && std::string(argv[1]) == "--lifetime") {
        settings.nTokenLifetime = strtoll(argv[2], nullptr, 10);
        first = 3;
    }
    CTestRestClient client(settings);
    Debug.TakeMessages();
    for (int i = first; i < argc; ++i) {
        const std::string step = argv[i];
        const size_t colon = step.find(':');
        if (colon == std::string::npos)
            return Usage(("bad step " + step).c_str());
        const std::string name = step.substr(0, colon);
        const std::string rest = step.substr(colon + 1);
        std::string out = "untouched";
        if (name == "sdt") {
            const bool ok =
                client.GetXmlSdt(out, static_cast<uint32_t>(strtoul(rest.c_str(), nullptr, 10)));
            PrintStep(name, ok, out, client);
        } else if (name == "redfish") {
            const size_t second = rest.find(':');
            if (second == std::string::npos)
                return Usage("redfish wants TIMEOUT:BODY");
            const uint32_t timeout = static_cast<uint32_t>(strtoul(rest.c_str(), nullptr, 10));
            const bool ok = client.SendRedfishRequest(rest.substr(second + 1), out, timeout);
            PrintStep(name, ok, out, client);
        } else if (name == "sleep") {
            std::this_thread::sleep_for(
                std::chrono::milliseconds(strtol(rest.c_str(), nullptr, 10)));
        } else {
            return Usage(("unknown step " + step).c_str());
        }
    }
    return 0;
}
