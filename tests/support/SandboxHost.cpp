#include "support/SandboxHost.h"

#include <sys/stat.h>
#include <sys/vfs.h>

#include <fstream>
#include <sstream>

namespace {

constexpr char kStateDir[] = "/run/tlr-sandbox";
constexpr long kTmpfsMagic = 0x01021994;

}  // namespace

bool sandbox_host::Inside() {
    struct stat st;
    struct statfs fs;
    return stat(kStateDir, &st) == 0 && statfs("/opt", &fs) == 0 && fs.f_type == kTmpfsMagic;
}

std::string ReadWholeFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}
