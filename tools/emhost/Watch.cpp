#include "Watch.h"

#include <signal.h>

#include <chrono>
#include <cstdio>
#include <ctime>
#include <map>
#include <mutex>
#include <string>
#include <thread>

#include "HostSwitch.h"
#include "HostTraceServer.h"
#include "InventoryWords.h"
#include "ModuleClient.h"
#include "frame/CommandRecord.h"
#include "frame/ExtensionModule.h"

namespace {

namespace words = inventory_words;
using SteadyClock = std::chrono::steady_clock;

// The client that renews its snapshot at every look, as a client does that wants to see the
// present, and one that never renews: its view moves only when the module drops the
// snapshots.
constexpr uint32_t kWatchingClient = 1;
constexpr uint32_t kStillClient = 2;
// What the polling thread traces when it drops the snapshots, and when a cycle failed.
constexpr char kMdcChanged[] = "[MDC] Status changed! ";
constexpr char kCycleFault[] = "Exception in pool loop!";
constexpr auto kTick = std::chrono::milliseconds(100);
// The second look comes this much later than a cycle after the first: the polling thread's
// cycle, which began with the module, has then run, and its drops show in the same look.
constexpr auto kLookLag = std::chrono::seconds(3);

volatile sig_atomic_t g_bInterrupted = 0;

void OnInterrupt(int) {
    g_bInterrupted = 1;
}

// Lines with the local time in front, whole, from any thread.
class Printer {
  public:
    void Line(const std::string& text) {
        char stamp[16] = "";
        const time_t now = time(nullptr);
        std::tm local{};
        localtime_r(&now, &local);
        strftime(stamp, sizeof(stamp), "%H:%M:%S", &local);
        std::lock_guard<std::mutex> lock(m_Mutex);
        printf("%s %s\n", stamp, text.c_str());
        fflush(stdout);
    }

  private:
    std::mutex m_Mutex;
};

// What a client sees at one look: a label and a value in words for each watched thing,
// keyed so that the keys sort as the inventory does.
struct Entry {
    std::string label;
    std::string value;
    bool operator==(const Entry& other) const {
        return label == other.label && value == other.value;
    }
};
using View = std::map<std::string, Entry>;

std::string Key(const char* group, uint32_t a, const char* kind = "", uint32_t n = 0,
                const char* what = "") {
    char key[64];
    snprintf(key, sizeof(key), "%s%04u%s%06u%s", group, a, kind, n, what);
    return key;
}

std::string Quoted(const std::string& name) {
    return " '" + name + "'";
}

// Gives false when the module has no tree for this client.
bool Look(ModuleClient& c, View& view) {
    view.clear();
    const Reply count = c.Ask(oc::kAdapterCount);
    if (!count.Ok())
        return false;
    for (uint32_t a = 0; a < count.number; ++a) {
        const std::string adapter =
            "adapter " + std::to_string(a) + Quoted(c.Text(oc::kAdapterName, 0, a));
        view[Key("a", a)] = {adapter + ": status",
                             c.Show(oc::kAdapterStatus, 0, a, words::AdapterStatus)};
        for (uint32_t d = 0, n = c.Count(oc::kDriveCount, a); d < n; ++d) {
            view[Key("a", a, "1d", d)] = {"adapter " + std::to_string(a) + ", drive " +
                                              std::to_string(d) +
                                              Quoted(c.Text(oc::kDriveName, a, d)) + ": status",
                                          c.Show(oc::kDriveStatus, a, d, words::DriveStatus)};
        }
        for (uint32_t l = 0, n = c.Count(oc::kLogicalDriveCount, a); l < n; ++l) {
            const std::string drive = "logical drive " + std::to_string(l) +
                                      Quoted(c.Text(oc::kLogicalDriveName, a, l)) + " of adapter " +
                                      std::to_string(a);
            view[Key("a", a, "2l", l, "1s")] = {
                drive + ": state",
                c.Show(oc::kLogicalDriveStatus, a, l, words::LogicalDriveStatus)};
            const Reply mdc = c.Ask(oc::kLogicalDriveProperty, a, l, "\"MDCProgress\"");
            view[Key("a", a, "2l", l, "2p")] = {drive + ": rebuild or check progress",
                                                mdc.Ok() ? mdc.text + " %" : "none"};
        }
        for (uint32_t b = 0, n = c.Count(oc::kBatteryCount, a); b < n; ++b) {
            view[Key("a", a, "3b", b)] = {"adapter " + std::to_string(a) + ", battery " +
                                              std::to_string(b) +
                                              Quoted(c.Text(oc::kBatteryName, a, b)) + ": status",
                                          c.Show(oc::kBatteryStatus, a, b, words::BatteryStatus)};
        }
    }
    const std::pair<uint32_t, const char*> overall[] = {
        {oc::kOverallStatus, "overall status"},
        {oc::kAdaptersStatus, "overall status of the adapters"},
        {oc::kLogicalDrivesStatus, "overall status of the logical drives"},
        {oc::kDisksStatus, "overall status of the disks"}};
    for (uint32_t i = 0; i < std::size(overall); ++i) {
        view[Key("z", i)] = {overall[i].second,
                             c.Show(overall[i].first, 0, 0, words::ComponentStatus)};
    }
    return true;
}

// Prints what differs between two views; gives the number of lines.
int PrintChanges(Printer& out, const View& before, const View& now, const std::string& indent) {
    int lines = 0;
    for (const auto& [key, entry] : now) {
        auto old = before.find(key);
        if (old == before.end()) {
            out.Line(indent + entry.label + ": " + entry.value + " (new)");
            ++lines;
        } else if (old->second.value != entry.value) {
            out.Line(indent + entry.label + ": " + old->second.value + " -> " + entry.value);
            ++lines;
        }
    }
    for (const auto& [key, entry] : before) {
        if (!now.count(key)) {
            out.Line(indent + entry.label + ": gone");
            ++lines;
        }
    }
    return lines;
}

std::string EventWords(const CommandRecord& record) {
    static const std::map<uint32_t, const char*> kinds = {
        {oc::CM_FanStatus, "fan status"},
        {oc::CM_TempSensorStatus, "temperature sensor status"},
        {oc::CM_PowerSupplyStatus, "power supply status"},
        {oc::CM_PowerSupplyRedundancy, "power supply redundancy"}};
    const uint32_t code = record.GetField("OC", 0);
    auto kind = kinds.find(code);
    return std::string(kind != kinds.end() ? kind->second : "object code") + " (OC " +
           std::to_string(code) + ") of cabinet " +
           std::to_string(static_cast<int32_t>(record.GetField("CA", 0))) + ", object " +
           std::to_string(record.GetField("OI", 0)) + ": " + record.ToJson();
}

// Waits until the time comes, SIGINT arrives or the deadline passes; false for the last two.
bool WaitUntil(SteadyClock::time_point when, SteadyClock::time_point deadline) {
    while (!g_bInterrupted && SteadyClock::now() < deadline) {
        if (SteadyClock::now() >= when)
            return true;
        std::this_thread::sleep_for(kTick);
    }
    return false;
}

}  // namespace

int RunWatch(CIExtensionModule& module, HostSwitch& hostSwitch, HostTraceServer& trace,
             const WatchOptions& options) {
    Printer out;
    hostSwitch.SetEventListener(
        [&out](const CommandRecord& record) { out.Line("event: " + EventWords(record)); });
    trace.SetListener([&out](const std::string& message) {
        const size_t at = message.find(kMdcChanged);
        if (at != std::string::npos) {
            out.Line("the polling thread dropped the snapshots: MDC progress " +
                     message.substr(at + sizeof(kMdcChanged) - 1));
        } else if (message.find(kCycleFault) != std::string::npos) {
            out.Line("a polling cycle failed; the thread goes on");
        }
    });
    struct sigaction action {};
    action.sa_handler = OnInterrupt;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);

    printf("Starting the module (it looks for the RAID service and waits for a valid tree)...\n");
    fflush(stdout);
    const auto started = SteadyClock::now();
    const int ret = module.Start(&hostSwitch, 0);
    printf("Start returned %d after %lld ms.\n", ret,
           static_cast<long long>(
               std::chrono::duration_cast<std::chrono::milliseconds>(SteadyClock::now() - started)
                   .count()));
    const std::string ending =
        options.durationSec
            ? "Ends after " + std::to_string(options.durationSec) + " s or on Ctrl-C."
            : "Ctrl-C ends.";
    printf("A look every %u s, as client %u after a renewal; client %u never renews. %s\n",
           options.lookIntervalMs / 1000, kWatchingClient, kStillClient, ending.c_str());
    fflush(stdout);

    const auto deadline = options.durationSec
                              ? SteadyClock::now() + std::chrono::seconds(options.durationSec)
                              : SteadyClock::time_point::max();
    ModuleClient watching(module, kWatchingClient);
    ModuleClient still(module, kStillClient);
    View lastWatching, lastStill;
    bool first = true;
    bool lastRenewed = true;
    bool stillHadTree = false;
    for (auto next = SteadyClock::now(); WaitUntil(next, deadline);) {
        View seenStill, seen;
        const bool stillHasTree = Look(still, seenStill);
        const Reply renewal = watching.Ask(oc::kRenewSnapshot);
        const bool hasTree = Look(watching, seen);
        if (first) {
            if (!hasTree) {
                out.Line("first look: no storage tree, the module answers " +
                         ModuleClient::NoAnswer(watching.Ask(oc::kAdapterCount).status));
            } else {
                out.Line("first look:");
                for (const auto& [key, entry] : seen)
                    out.Line("  " + entry.label + ": " + entry.value);
            }
        } else {
            int lines = 0;
            if (renewal.Ok() != lastRenewed) {
                out.Line(renewal.Ok() ? "the renewal works again"
                                      : "the renewal fails, the module answers " +
                                            ModuleClient::NoAnswer(renewal.status) +
                                            ": the client keeps the tree it had");
                ++lines;
            }
            if (hasTree)
                lines += PrintChanges(out, lastWatching, seen, "");
            if (!stillHasTree && stillHadTree) {
                out.Line("client " + std::to_string(kStillClient) +
                         ", which never renews, has no tree now: the module dropped the "
                         "snapshots and could not fetch a new one");
                ++lines;
            } else if (stillHasTree && (!stillHadTree || seenStill != lastStill)) {
                out.Line("client " + std::to_string(kStillClient) +
                         ", which never renews, sees a new tree: the module dropped the "
                         "snapshots. It sees:");
                PrintChanges(out, lastStill, seenStill, "  ");
                ++lines;
            }
            if (lines == 0)
                out.Line(stillHasTree || hasTree ? "no change" : "no change, no storage tree");
        }
        // As the polling thread does, the next look comes a cycle after this one's work.
        next = SteadyClock::now() + std::chrono::milliseconds(options.lookIntervalMs);
        if (first)
            next += kLookLag;
        first = false;
        lastRenewed = renewal.Ok();
        // A look without a tree keeps the last view, so that the next tree is told against it.
        if (hasTree)
            lastWatching = seen;
        if (stillHasTree)
            lastStill = seenStill;
        stillHadTree = stillHasTree;
    }

    printf("\n%s. Stopping the module (a stop takes 10 s by design)...\n",
           g_bInterrupted ? "Interrupted" : "Time is up");
    fflush(stdout);
    module.Stop();
    hostSwitch.SetEventListener(nullptr);
    trace.SetListener(nullptr);
    return ret ? 0 : 1;
}
