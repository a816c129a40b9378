#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "ModuleClient.h"

struct StorageState;

// The monitor's own health, as "emhost metrics" keeps it across its reads.
struct MonitorHealth {
    bool bStarted = false;             // Start returned 1
    std::optional<double> treeAgeSec;  // since the last read that had a tree
    bool bLastFetchOk = false;         // the last read had a tree, fetched anew
    uint64_t nFetchErrors = 0;         // reads without a tree fetched anew
    RequestTally requests;             // of every read
    int nHealthBits = 0;               // the exit-status bits of the last read
};

// The storage in the Prometheus text exposition format: a gauge per adapter, drive, logical
// drive, battery, enclosure and cabinet component with its status code and its names as
// labels; the progress of rebuilds and checks; the overall statuses; the monitor's health.
// An object whose status did not come has no sample.
std::string MetricsText(const StorageState& state, const MonitorHealth& monitor);
