#pragma once

#include <cstdint>

// The waits, tries and time-outs of the module. The shipped module uses these values;
// tests build a module with shorter ones.
struct RaidTimings {
    uint32_t nStartDetectWaitMs = 15000;  // DetectTLRaid in Start
    uint32_t nStartDetectTries = 10;
    uint32_t nThreadDetectWaitMs = 10000;  // DetectTLRaid in the wait thread
    uint32_t nThreadDetectTries = 10;
    uint32_t nProbeTimeoutSec = 10;  // the REST probe of DetectRestServer
    uint32_t nInitTries = 180;       // InitializeAfterTLRaidStart
    uint32_t nInitWaitMs = 1000;
    uint32_t nInitTimeoutSec = 30;
    uint32_t nStopPollEndedWaitMs = 10000;  // Stop: the polling thread's end
    uint32_t nStopWaitMs = 10000;           // Stop: the wait that nothing shortens
    uint32_t nSnapshotTries = 10;           // first fetch of a client's snapshot
    uint32_t nSnapshotTimeoutSec = 8;
    uint32_t nSnapshotRetrySleepSec = 1;
    uint32_t nSwitchRequestTimeoutMs = 5000;  // the questions of OnSwitchStarted
    uint32_t nSwitchStartedTreeTimeoutSec = 30;
    uint32_t nPollIntervalMs = 15000;  // the polling thread's wait between cycles
    uint32_t nPollTimeoutSec = 5;
    uint32_t nRequestTreeTimeoutSec = 5;  // trees fetched by requests themselves
};

namespace raid_host {

constexpr int kThreadPriority = 63;

}  // namespace raid_host
