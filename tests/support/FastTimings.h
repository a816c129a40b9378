#pragma once

#include "raid/RaidSettings.h"

// Waits, tries and time-outs short enough for tests.
inline RaidTimings FastTimings() {
    RaidTimings t;
    t.nStartDetectWaitMs = 40;
    t.nThreadDetectWaitMs = 40;
    t.nProbeTimeoutSec = 5;
    t.nInitTries = 5;
    t.nInitWaitMs = 20;
    t.nInitTimeoutSec = 5;
    t.nStopPollEndedWaitMs = 2000;
    t.nStopWaitMs = 50;
    t.nSnapshotTries = 3;
    t.nSnapshotTimeoutSec = 5;
    t.nSnapshotRetrySleepSec = 0;
    t.nSwitchRequestTimeoutMs = 5000;
    t.nSwitchStartedTreeTimeoutSec = 5;
    // One polling cycle at start, then a wait that outlasts the test; the polling tests set
    // a short cycle themselves.
    t.nPollIntervalMs = 60000;
    return t;
}

// The same with one polling cycle at start and none for an hour after: for a module that
// answers requests on a tree nobody changes.
inline RaidTimings OneCycleTimings() {
    RaidTimings t = FastTimings();
    t.nPollIntervalMs = 3600 * 1000;
    return t;
}
