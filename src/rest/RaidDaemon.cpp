#include "rest/RaidDaemon.h"

#include <sys/stat.h>

#include <cstdio>
#include <cstring>

#include "rest/RestConstants.h"
#include "runtime/DebugClient.h"
#include "runtime/Pipe.h"

namespace {

constexpr size_t kProbeLineLength = 256;

bool PathExists(const char* path) {
    struct stat st;
    return stat(path, &st) == 0;
}

template <size_t N>
bool AnyPathExists(const char* const (&paths)[N]) {
    for (const char* path : paths) {
        if (PathExists(path))
            return true;
    }
    return false;
}

}  // namespace

CRaidDaemon::CRaidDaemon(const RaidDaemonSettings& settings)
    : m_TreeClient(settings.rest),
      m_ProbeClient(settings.rest),
      m_sProbeCommand(settings.sProbeCommand) {}

bool CRaidDaemon::IsInstalled() {
    return AnyPathExists(raid_host::kInstallMarks);
}

bool CRaidDaemon::IsServiceRunning() {
    return AnyPathExists(raid_host::kPidFiles);
}

bool CRaidDaemon::ProbeRestServer(uint32_t timeoutSec) {
    PipePtr pipe(popen(m_sProbeCommand.c_str(), "r"));
    if (!pipe) {
        TLR_TRACE(2, "\nCDeviceTLRaid::DetectTLRaid: failed to call lsof");
        return false;
    }
    char line[kProbeLineLength] = {};
    const std::string port = std::to_string(tlr_rest::kDaemonPort);
    if (!fgets(line, sizeof(line), pipe.get()) || !strstr(line, port.c_str())) {
        TLR_TRACE(4, "\nCDeviceTLRaid::DetectTLRaid: TLRCD REST server NOT running");
        return false;
    }
    TLR_TRACE(4, "\nCDeviceTLRaid::DetectTLRaid: TLRCD REST server is running");
    std::string ignored;
    return m_ProbeClient.GetXmlSdt(ignored, timeoutSec);
}

bool CRaidDaemon::FetchTree(std::string& xml, uint32_t timeoutSec) {
    return m_TreeClient.GetXmlSdt(xml, timeoutSec);
}

bool CRaidDaemon::PostRedfish(const std::string& body, std::string& reply, uint32_t timeoutSec) {
    return m_ProbeClient.SendRedfishRequest(body, reply, timeoutSec);
}
