#include "ModuleLocation.h"

#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr char kModuleFile[] = "em_tlraid.so";
// The installed module's directory relative to the installed emhost's, set by the build
// from its install directories.
constexpr char kInstalledModuleDir[] = TLR_MODULE_FROM_BIN;

std::string DirectoryOfSelf() {
    char path[PATH_MAX];
    ssize_t n = readlink("/proc/self/exe", path, sizeof(path) - 1);
    if (n <= 0)
        return ".";
    path[n] = '\0';
    std::string p(path);
    size_t slash = p.rfind('/');
    return slash == std::string::npos ? "." : p.substr(0, slash);
}

bool IsFile(const std::string& path) {
    struct stat st;
    return stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

}  // namespace

std::string DefaultModulePath() {
    const std::string self = DirectoryOfSelf();
    const std::string beside = self + "/" + kModuleFile;
    const std::string installed = self + "/" + kInstalledModuleDir + "/" + kModuleFile;
    return IsFile(beside) || !IsFile(installed) ? beside : installed;
}
