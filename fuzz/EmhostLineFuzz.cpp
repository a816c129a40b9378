// Any input lines of emhost's line protocol, with a module library that makes no module (the
// actions that need one answer error lines) and waits cut short.
#include "FuzzKit.h"
#include "LineProtocol.h"

namespace {

constexpr int64_t kLongestWaitMs = 2;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    HostOutput output(nullptr);
    HostSwitch hostSwitch(output, 1);
    ModuleLibrary library;
    library.Create = [](CIExtensionModule** module, uint64_t) {
        *module = nullptr;
        return false;
    };
    library.Delete = [] { return 0; };
    library.GetModuleName = [] { return "EM_TLRAID"; };
    library.SetupAction = [](uint32_t) { return 0; };
    LineProtocol protocol(output, hostSwitch, library, kLongestWaitMs);
    std::string_view lines = AsText(data, size);
    while (!lines.empty()) {
        const size_t end = std::min(lines.find('\n'), lines.size());
        if (!protocol.HandleLine(std::string(lines.substr(0, end))))
            break;
        lines.remove_prefix(std::min(end + 1, lines.size()));
    }
    return 0;
}
