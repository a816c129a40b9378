#include "SecretsNote.h"

#include "rest/RestConstants.h"
#include "runtime/DebugClient.h"

uint32_t ConfiguredTraceLevel(const char* moduleName) {
    CDebugClient client;
    client.Initialize(moduleName);
    return client.m_nLevel;
}

std::string SecretsNote(uint32_t level, const std::string& traceFile) {
    if (level < tlr_rest::kSecretsTraceLevel)
        return std::string();
    return "emhost: trace level " + std::to_string(level) +
           " puts secrets in the module's trace (its JWT from level " +
           std::to_string(tlr_rest::kSecretsTraceLevel) +
           ", access tokens and whole replies from level 5), which goes to " +
           (traceFile.empty() ? std::string("standard error") : traceFile + " (mode 0600)") + "\n";
}
