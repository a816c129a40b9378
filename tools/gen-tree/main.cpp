// gen-tree: writes a valid storage tree of a chosen size to standard output or a file.
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "GenTreeOptions.h"
#include "TreeWriter.h"
#include "runtime/Pipe.h"

namespace {

constexpr int kExitDone = 0;
constexpr int kExitWriteFailed = 1;
constexpr int kExitBadOptions = 2;

int WriteOut(const std::string& sText, const std::string& sPath) {
    if (sPath.empty()) {
        if (fwrite(sText.data(), 1, sText.size(), stdout) != sText.size() || fflush(stdout)) {
            perror("gen-tree: standard output");
            return kExitWriteFailed;
        }
        return kExitDone;
    }
    FilePtr file(fopen(sPath.c_str(), "wb"));
    if (!file) {
        perror(("gen-tree: " + sPath).c_str());
        return kExitWriteFailed;
    }
    if (fwrite(sText.data(), 1, sText.size(), file.get()) != sText.size() ||
        fclose(file.release()) != 0) {
        perror(("gen-tree: " + sPath).c_str());
        return kExitWriteFailed;
    }
    return kExitDone;
}

}  // namespace

int main(int argc, char** argv) {
    GenTreeOptions options;
    std::string sError;
    if (!ParseGenTreeOptions(std::vector<std::string>(argv + 1, argv + argc), options, sError)) {
        fprintf(stderr, "gen-tree: %s\n", sError.c_str());
        return kExitBadOptions;
    }
    if (options.bHelp) {
        fputs(GenTreeUsage().c_str(), stdout);
        return kExitDone;
    }
    return WriteOut(WriteTree(options), options.sOutput);
}
