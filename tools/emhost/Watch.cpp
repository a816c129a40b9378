#include "Watch.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <string>

#include "ExitStatus.h"
#include "HostSwitch.h"
#include "HostTraceServer.h"
#include "Interrupt.h"
#include "ModuleStart.h"
#include "StorageState.h"
#include "WatchReport.h"
#include "WatchView.h"
#include "frame/CommandRecord.h"
#include "frame/ExtensionModule.h"

namespace {

using SteadyClock = std::chrono::steady_clock;

// The client that renews its snapshot at every look, as a client does that wants to see the
// present, and one that never renews: its view moves only when the module drops the
// snapshots.
constexpr uint32_t kWatchingClient = 1;
constexpr uint32_t kStillClient = 2;
// What the polling thread traces when it drops the snapshots, and when a cycle failed.
constexpr char kMdcChanged[] = "[MDC] Status changed! ";
constexpr char kCycleFault[] = "Exception in pool loop!";
// The second look comes this much later than a cycle after the first: the polling thread's
// cycle, which began with the module, has then run, and its drops show in the same look.
constexpr auto kLookLag = std::chrono::seconds(3);

// What the looks saw so far, and what they tell.
class Looks {
  public:
    Looks(WatchReport& report, CIExtensionModule& module)
        : m_Report(report), m_Watching(module, kWatchingClient), m_Still(module, kStillClient) {}

    // One look of both clients; gives the number of lines it printed and sets the health.
    int Take();
    int Health() const { return m_nHealth; }
    bool Taken() const { return !m_bFirst; }

  private:
    int FirstLook(const StorageState& seen, const View& view);
    int LaterLook(const StorageState& seen, const View& view, const StorageState& still,
                  const View& stillView);

    WatchReport& m_Report;
    ModuleClient m_Watching, m_Still;
    View m_LastWatching, m_LastStill;
    bool m_bFirst = true;
    bool m_bLastRenewed = true;
    bool m_bStillHadTree = false;
    int m_nHealth = 0;
};

int Looks::Take() {
    const StorageState still = ReadStorage(m_Still, Renewal::kNever, Detail::kWatched);
    const StorageState seen = ReadStorage(m_Watching, Renewal::kFirst, Detail::kWatched);
    const View view = ViewOf(seen), stillView = ViewOf(still);
    const int lines = m_bFirst ? FirstLook(seen, view) : LaterLook(seen, view, still, stillView);
    m_bFirst = false;
    m_bLastRenewed = seen.renewal->Ok();
    m_nHealth = exit_status::OfStorage(seen);
    // A look without a tree keeps the last view, so that the next tree is told against it.
    if (seen.adapterCount.Ok())
        m_LastWatching = view;
    if (still.adapterCount.Ok())
        m_LastStill = stillView;
    m_bStillHadTree = still.adapterCount.Ok();
    return lines;
}

int Looks::FirstLook(const StorageState& seen, const View& view) {
    if (!seen.adapterCount.Ok()) {
        m_Report.Note("first look: no storage tree, the module answers " +
                      ModuleClient::NoAnswer(seen.adapterCount.status));
        return 0;
    }
    m_Report.Plain("first look:");
    for (const auto& [key, entry] : view)
        m_Report.Initial(kWatchingClient, entry, "  ");
    return 0;
}

int Looks::LaterLook(const StorageState& seen, const View& view, const StorageState& still,
                     const View& stillView) {
    int lines = 0;
    const bool renewed = seen.renewal->Ok();
    if (renewed != m_bLastRenewed) {
        m_Report.Note(renewed ? "the renewal works again"
                              : "the renewal fails, the module answers " +
                                    ModuleClient::NoAnswer(seen.renewal->status) +
                                    ": the client keeps the tree it had");
        ++lines;
    }
    if (seen.adapterCount.Ok()) {
        for (const ViewChange& change : Changes(m_LastWatching, view)) {
            m_Report.Change(kWatchingClient, change, "");
            ++lines;
        }
    }
    const bool stillHasTree = still.adapterCount.Ok();
    const std::string stillClient =
        "client " + std::to_string(kStillClient) + ", which never renews, ";
    if (!stillHasTree && m_bStillHadTree) {
        m_Report.Note(stillClient +
                      "has no tree now: the module dropped the snapshots and could not fetch "
                      "a new one");
        ++lines;
    } else if (stillHasTree) {
        const std::vector<ViewChange> changes = Changes(m_LastStill, stillView);
        if (!m_bStillHadTree || !changes.empty()) {
            m_Report.Note(stillClient +
                          "sees a new tree: the module dropped the snapshots. It sees:");
            for (const ViewChange& change : changes)
                m_Report.Change(kStillClient, change, "  ");
            ++lines;
        }
    }
    if (lines == 0)
        m_Report.Plain(stillHasTree || seen.adapterCount.Ok() ? "no change"
                                                              : "no change, no storage tree");
    return lines;
}

}  // namespace

int RunWatch(CIExtensionModule& module, HostSwitch& hostSwitch, HostTraceServer& trace,
             const WatchOptions& options) {
    // With JSON, standard output carries the JSON lines alone.
    FILE* chatter = options.bJson ? stderr : stdout;
    WatchReport report(options.bJson, options.palette);
    std::atomic<bool> evented{false};
    hostSwitch.SetEventListener([&report, &evented](const CommandRecord& record) {
        report.Event(record);
        evented = true;
    });
    trace.SetListener([&report](const std::string& message) {
        const size_t at = message.find(kMdcChanged);
        if (at != std::string::npos) {
            report.Note("the polling thread dropped the snapshots: MDC progress " +
                        message.substr(at + sizeof(kMdcChanged) - 1));
        } else if (message.find(kCycleFault) != std::string::npos) {
            report.Note("a polling cycle failed; the thread goes on");
        }
    });
    CatchInterrupts();

    const StartResult start = StartModule(module, hostSwitch, chatter);
    const std::string ending =
        options.durationSec
            ? "Ends after " + std::to_string(options.durationSec) + " s or on Ctrl-C."
            : "Ctrl-C ends.";
    fprintf(chatter,
            "A look every %u s, as client %u after a renewal; client %u never renews. %s\n",
            options.lookIntervalMs / 1000, kWatchingClient, kStillClient, ending.c_str());
    fflush(chatter);

    const auto deadline = options.durationSec
                              ? SteadyClock::now() + std::chrono::seconds(options.durationSec)
                              : SteadyClock::time_point::max();
    Looks looks(report, module);
    bool changed = false, failed = false;
    auto stop = [&] {
        changed = changed || (options.bExitOnChange && evented);
        return changed || failed;
    };
    for (auto next = SteadyClock::now(); WaitUntil(next, deadline, stop);) {
        const bool first = !looks.Taken();
        const int lines = looks.Take();
        changed = options.bExitOnChange && lines > 0;
        failed = options.bExitOnFailure && (looks.Health() & exit_status::kFailed);
        // As the polling thread does, the next look comes a cycle after this one's work.
        next = SteadyClock::now() + std::chrono::milliseconds(options.lookIntervalMs);
        if (first)
            next += kLookLag;
    }

    const char* why = changed         ? "A change came"
                      : failed        ? "Something has failed"
                      : Interrupted() ? "Interrupted"
                                      : "Time is up";
    fprintf(chatter, "\n%s. Stopping the module (a stop takes 10 s by design)...\n", why);
    fflush(chatter);
    module.Stop();
    hostSwitch.SetEventListener(nullptr);
    trace.SetListener(nullptr);
    int status = looks.Health() | (start.nReturned ? 0 : exit_status::kModule);
    return status | (changed ? exit_status::kChanged : 0);
}
