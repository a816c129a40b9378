// Any file as a profile file and as a trace configuration file: every way of reading it,
// into buffers of a few sizes, each exactly as large as it claims.
#include <vector>

#include "FuzzKit.h"
#include "runtime/ProfileFile.h"
#include "runtime/TraceConfig.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    DropTrace();
    const std::string& path = WriteInputFile(AsText(data, size));
    for (uint32_t bytes : {1u, 2u, 3u, 17u, 4096u}) {
        std::vector<char> buffer(bytes);
        GetPrivateProfileString("EM_TLRAID", "DebugLevel", "default", buffer.data(), bytes,
                                path.c_str());
        GetPrivateProfileString("1000", "Vendor", "", buffer.data(), bytes, path.c_str());
        GetPrivateProfileString("EM_TLRAID", nullptr, nullptr, buffer.data(), bytes, path.c_str());
        GetPrivateProfileString(nullptr, nullptr, nullptr, buffer.data(), bytes, path.c_str());
    }
    const size_t slash = path.rfind('/');
    for (const char* section : {"EM_TLRAID", "Global", ""}) {
        ConfigSectionReader reader;
        if (!reader.LocateSection(section, path.c_str() + slash + 1, path.substr(0, slash)))
            continue;
        uint32_t value = 0;
        for (const char* key : {"FileDebugLevel", "TraceFlags", "DynamicUpdate", ""})
            reader.ReadKey(key, value);
    }
    return 0;
}
