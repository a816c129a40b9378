// host-facts: prints the host's paths and the daemon's port, as the module and its REST
// client know them, and the statuses the module answers with, as shell assignments. The build
// writes them to build/host-facts.sh, where the sandbox reads them, so that the sandbox lays
// out the host the module expects; the stress script checks answers against the statuses.
#include <cstdio>
#include <string>

#include "frame/SwitchProtocol.h"
#include "rest/DaemonHost.h"
#include "rest/RestConstants.h"
#include "runtime/DebugClient.h"

namespace {

// The first of the paths under /opt, where the sandbox's tmpfs lets it write.
template <size_t N>
const char* FirstUnderOpt(const char* const (&paths)[N]) {
    for (const char* path : paths) {
        if (std::string(path).rfind("/opt/", 0) == 0)
            return path;
    }
    return nullptr;
}

}  // namespace

int main() {
    const char* installMark = FirstUnderOpt(raid_host::kInstallMarks);
    if (!installMark) {
        fprintf(stderr, "host-facts: no install mark under /opt\n");
        return 1;
    }
    printf("kTraceDir='%s'\n", CDebugClient::kConfigDir);
    printf("kInstallMark='%s'\n", installMark);
    printf("kPidFile='%s'\n", raid_host::kPidFiles[0]);
    printf("kSimPort=%u\n", static_cast<unsigned>(tlr_rest::kDaemonPort));
    std::string answers;
    for (uint32_t st : status::kModuleAnswers)
        answers += (answers.empty() ? "" : " ") + std::to_string(st);
    printf("kAnswerStatuses='%s'\n", answers.c_str());
    return 0;
}
