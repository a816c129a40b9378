#include "MetricsCommand.h"

#include <algorithm>
#include <chrono>
#include <cstdio>

#include "ExitStatus.h"
#include "Interrupt.h"
#include "Metrics.h"
#include "MetricsFile.h"
#include "ModuleStart.h"
#include "StorageState.h"
#include "frame/ExtensionModule.h"

namespace {

using SteadyClock = std::chrono::steady_clock;

constexpr uint32_t kClientId = 1;

}  // namespace

int RunMetrics(CIExtensionModule& module, ISwitch& hostSwitch, const MetricsOptions& options) {
    // Standard output carries the metrics alone.
    CatchInterrupts();
    const StartResult start = StartModule(module, hostSwitch, stderr);
    MonitorHealth monitor;
    monitor.bStarted = start.nReturned != 0;
    ModuleClient client(module, kClientId, std::nullopt, &monitor.requests);
    // The values of the last read that had a tree stand until a read has one again; the age
    // of the tree says how old they are.
    StorageState shown;
    SteadyClock::time_point treeTime;
    bool everRead = false, writeFailed = false;
    const auto interval = std::chrono::seconds(options.nIntervalSec);
    for (auto next = SteadyClock::now(); WaitUntil(next, SteadyClock::time_point::max());) {
        StorageState state = ReadStorage(client, Renewal::kFirst);
        monitor.bLastFetchOk = state.renewal->Ok() && state.adapterCount.Ok();
        monitor.nFetchErrors += monitor.bLastFetchOk ? 0 : 1;
        monitor.nHealthBits = exit_status::OfStorage(state);
        if (state.adapterCount.Ok() || !everRead) {
            shown = std::move(state);
            treeTime = SteadyClock::now();
            everRead = shown.adapterCount.Ok();
        }
        if (everRead)
            monitor.treeAgeSec =
                std::chrono::duration<double>(SteadyClock::now() - treeTime).count();
        const std::string text = MetricsText(shown, monitor);
        std::string error;
        if (options.output.empty()) {
            fwrite(text.data(), 1, text.size(), stdout);
            fflush(stdout);
        } else if (!WriteFileWhole(options.output, text, error)) {
            fprintf(stderr, "emhost metrics: %s\n", error.c_str());
            writeFailed = true;
        }
        if (!options.nIntervalSec || writeFailed)
            break;
        // Every interval from the start; a read that took longer delays the next one only.
        next = std::max(next + interval, SteadyClock::now());
    }
    fprintf(stderr, "\nStopping the module (a stop takes 10 s by design)...\n");
    module.Stop();
    // A file that can't be written is bad input, as an --output that can't be: 2 alone.
    if (writeFailed)
        return exit_status::kUsage;
    return monitor.nHealthBits | (monitor.bStarted ? 0 : exit_status::kModule);
}
