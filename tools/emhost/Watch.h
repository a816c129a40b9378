#pragma once

#include <cstdint>

#include "Colour.h"

class CIExtensionModule;
class HostSwitch;
class HostTraceServer;

struct WatchOptions {
    uint32_t durationSec = 0;  // 0: until SIGINT or SIGTERM
    uint32_t lookIntervalMs = 0;
    bool bJson = false;
    bool bExitOnChange = false;
    bool bExitOnFailure = false;
    Palette palette;
};

// "emhost watch": starts the module, then at every look renews the snapshot of one client
// and prints in words what changed since the look before, with the time; prints every event
// record that the module sends and every drop of the snapshots, seen in the trace and by a
// second client that never renews. Stops the module on SIGINT or SIGTERM, after the
// duration, or at the change or failure it was told to end on. Returns the process's exit
// status (ExitStatus.h): the bits of the last look.
int RunWatch(CIExtensionModule& module, HostSwitch& hostSwitch, HostTraceServer& trace,
             const WatchOptions& options);
