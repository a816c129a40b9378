#pragma once

#include <cstdint>

class CIExtensionModule;
class HostSwitch;
class HostTraceServer;

struct WatchOptions {
    uint32_t durationSec = 0;  // 0: until SIGINT
    uint32_t lookIntervalMs = 0;
};

// "emhost watch": starts the module, then at every look renews the snapshot of one client
// and prints in words what changed since the look before, with the time; prints every event
// record that the module sends and every drop of the snapshots, seen in the trace and by a
// second client that never renews. Stops the module on SIGINT or after the duration.
// Returns the process's exit status.
int RunWatch(CIExtensionModule& module, HostSwitch& hostSwitch, HostTraceServer& trace,
             const WatchOptions& options);
