#pragma once

#include <cstdint>
#include <string>

class CIExtensionModule;
class ISwitch;

struct MetricsOptions {
    std::string output;         // empty: standard output
    uint32_t nIntervalSec = 0;  // 0: once
};

// "emhost metrics": starts the module, then renews a client's snapshot, reads the storage
// and writes its metrics, once or at every interval until SIGINT or SIGTERM; stops the
// module. Returns the process's exit status (ExitStatus.h): the bits of the last read, or
// 2 when the output file could not be written.
int RunMetrics(CIExtensionModule& module, ISwitch& hostSwitch, const MetricsOptions& options);
