// The polling thread against a tree that changes under it: MDC progress that drops the
// client snapshots, a daemon that goes and comes back, the SMART clock, a cycle that fails,
// and a stop during the wait. Cycles are short here; the shipped cycle is 15 s.
#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <stdexcept>
#include <vector>

#include "RaidTestKit.h"
#include "support/CaptureTraceServer.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr uint32_t kShortCycleMs = 40;
constexpr char kWait[] = "\nEM_TLRAID::StorageDeviceTreePolling - Thread wait....";
constexpr char kChanged[] = "\nEM_TLRAID::StorageDeviceTreePolling - [MDC] Status changed! ";
constexpr char kFault[] =
    "\nEM_TLRAID::StorageDeviceTreePolling - ERROR # Exception in pool loop! ***";

// One adapter's logical drives by their MDC progress, -1 for a drive without one.
struct AdapterMdc {
    std::string sName;
    std::vector<int> drives;
};

std::string TreeOf(const std::vector<AdapterMdc>& adapters) {
    std::string xml =
        "<amEMTL Version=\"2\"><System><Multiplexer><Status>Operational</Status></Multiplexer>";
    for (const AdapterMdc& adapter : adapters) {
        xml += "<Adapter><Name>" + adapter.sName + "</Name><Status>OK</Status>";
        for (size_t l = 0; l < adapter.drives.size(); ++l) {
            xml += "<LogicalDrive LogDriveNumber=\"" + std::to_string(l) + "\"><Name>LD" +
                   std::to_string(l) + "</Name><Status>Operational</Status>";
            if (adapter.drives[l] >= 0)
                xml += "<MDCProgress>" + std::to_string(adapter.drives[l]) + "</MDCProgress>";
            xml += "</LogicalDrive>";
        }
        xml += "</Adapter>";
    }
    return xml + "</System></amEMTL>";
}

std::string OneDrive(int mdc) {
    return TreeOf({{"Ctrl", {mdc}}});
}

// A clock that the test moves; its local time has the hour the test sets, and can be made
// to throw.
// Before a failing call it runs beforeFault, on the polling thread.
struct TestClock {
    std::atomic<time_t> now{1000000};
    std::atomic<int> hour{10};
    std::atomic<int> faults{0};
    std::function<void()> beforeFault;
};

PollingClock ClockOf(const std::shared_ptr<TestClock>& c) {
    PollingClock clock;
    clock.Now = [c] { return c->now.load(); };
    clock.LocalTimeOf = [c](time_t) {
        if (c->faults > 0) {
            c->beforeFault();
            --c->faults;
            throw std::runtime_error("no local time");
        }
        std::tm local{};
        local.tm_year = 126;
        local.tm_mday = 1;
        local.tm_hour = c->hour;
        return local;
    };
    return clock;
}

class PollingTest : public RaidModuleTest {
  protected:
    void SetUp() override { Daemon().SetUp(true); }

    // Serves the tree and starts a module with a short cycle.
    void StartPolling(const std::string& xml, const PollingClock& clock = PollingClock()) {
        ServeTree(xml);
        RaidTimings timings = FastTimings();
        timings.nPollIntervalMs = kShortCycleMs;
        MakeModule(timings, clock, true);
        Cycles(1);
    }

    // Waits until the polling thread has begun n waits from now on, so that a tree served
    // before the call has been read in full by the last of these cycles. Gives what was
    // traced meanwhile, and keeps it in m_sTrace.
    std::string Cycles(size_t n) {
        std::string seen = TraceUntil(kWait, n);
        EXPECT_GE(Count(seen, kWait), n) << "the polling thread did not cycle";
        m_sTrace += seen;
        return seen;
    }

    // Serves a new tree and waits until a cycle has read it.
    std::string Serve(const std::string& xml) {
        ServeTree(xml);
        return Cycles(2);
    }

    ScopedTraceLevel m_Level{5};
    std::string m_sTrace;
};

TEST_F(PollingTest, EveryMdcChangeDropsTheSnapshots) {
    struct Case {
        const char* what;
        std::vector<std::string> trees;
        std::vector<std::string> lines;  // one for each change
    };
    const Case cases[] = {
        {"an MDC from start to end, step by step",
         {OneDrive(-1), OneDrive(10), OneDrive(11), OneDrive(-1)},
         {"[-1 -> 10] 'Ctrl A0L0'", "[10 -> 11] 'Ctrl A0L0'", "[11 -> -1] 'Ctrl A0L0'"}},
        {"two drives in one cycle",
         {TreeOf({{"Ctrl", {5, -1, 7}}}), TreeOf({{"Ctrl", {6, -1, 8}}})},
         {"[5 -> 6] 'Ctrl A0L0'", "[7 -> 8] 'Ctrl A0L2'"}},
        {"a value cut to 16 bits",
         {OneDrive(65535), OneDrive(-1), OneDrive(65536)},
         {"[-1 -> 0] 'Ctrl A0L0'"}},
        {"an adapter whose index moves",
         {TreeOf({{"Gone", {-1}}, {"Ctrl", {10}}}), TreeOf({{"Ctrl", {20}}})},
         {}},
        {"a text without the root element in between",
         {OneDrive(10), "<Other/>", OneDrive(20)},
         {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        m_sTrace.clear();
        StartPolling(c.trees[0]);
        for (size_t i = 1; i < c.trees.size(); ++i)
            Serve(c.trees[i]);
        EXPECT_EQ(Count(m_sTrace, kChanged), c.lines.size());
        EXPECT_EQ(Count(m_sTrace, "\nEM_TLRAID::ClearAllSnapshots() - Start."), c.lines.size());
        for (const std::string& line : c.lines)
            EXPECT_TRUE(Has(m_sTrace, kChanged + line)) << line;
        StopModule();
        Debug.Take();
    }
}

TEST_F(PollingTest, DaemonAwayAndBackKeepsTheLastProgress) {
    StartPolling(OneDrive(10));
    Cycles(1);
    Daemon().restServerUp = false;
    ServeTree(OneDrive(20));
    std::string away = Cycles(3);
    // After the first wait every fetch failed: no comparison, no SMART clock.
    away = away.substr(away.find(kWait) + 1);
    EXPECT_FALSE(Has(away, kChanged));
    EXPECT_FALSE(Has(away, "\nEM_TLRAID::StorageDeviceTreePolling - [SMART Logs]"));
    Daemon().restServerUp = true;
    Cycles(2);
    EXPECT_EQ(Count(m_sTrace, kChanged), 1u);
    EXPECT_TRUE(Has(m_sTrace, std::string(kChanged) + "[10 -> 20] 'Ctrl A0L0'"));
}

TEST_F(PollingTest, SmartClockRunsOnTheModulesClock) {
    auto clock = std::make_shared<TestClock>();
    StartPolling(OneDrive(-1), ClockOf(clock));
    EXPECT_TRUE(Has(m_sTrace,
                    "\nEM_TLRAID::StorageDeviceTreePolling - [SMART Logs] Init time 'Sun Jan  1 "
                    "10:00:00 2026\n'"));
    EXPECT_TRUE(Has(Cycles(1), "[SMART Logs] Errors reported recently, ignore..."));

    // More than an hour later, but not a listed hour: looked at every cycle, no trigger.
    clock->now += 3601;
    std::string t = Cycles(2);
    EXPECT_GE(Count(t, "[SMART Logs] Check current time 'Sun Jan  1 10:00:00 2026\n'"), 1u);
    EXPECT_FALSE(Has(t, "Trigger"));

    clock->hour = 11;
    t = Cycles(2);
    EXPECT_EQ(Count(t,
                    "\nEM_TLRAID::StorageDeviceTreePolling - [SMART Logs] Trigger SMART error "
                    "report at hour 11"),
              1u);
    EXPECT_TRUE(Has(t.substr(t.find("Trigger")), "Errors reported recently, ignore..."));
}

TEST_F(PollingTest, FaultInACycleIsCaughtAndForgetsTheLastProgress) {
    auto clock = std::make_shared<TestClock>();
    StartPolling(OneDrive(10), ClockOf(clock));
    // The SMART check's local time fails once, after the cycle kept its MDC map; the tree
    // moves on right then, so that the next cycle would see the change if the map were kept.
    clock->beforeFault = [this] { ServeTree(OneDrive(20)); };
    clock->now += 7200;
    clock->faults = 1;
    std::string t = Cycles(3);
    EXPECT_EQ(Count(t, kFault), 1u);
    t += Serve(OneDrive(30));
    EXPECT_FALSE(Has(t, "[10 -> 20]"));
    EXPECT_EQ(Count(m_sTrace, kChanged), 1u);
    EXPECT_TRUE(Has(m_sTrace, "[20 -> 30] 'Ctrl A0L0'"));
}

TEST_F(PollingTest, StopDuringTheWaitEndsTheThreadAtOnce) {
    ServeTree(OneDrive(-1));
    RaidTimings timings = FastTimings();
    timings.nPollIntervalMs = 60000;
    timings.nStopPollEndedWaitMs = 30000;
    MakeModule(timings, PollingClock(), true);
    Cycles(1);
    const auto begin = Clock::now();
    EXPECT_EQ(StopModule(), 1);
    // Neither the cycle's wait nor the wait for the thread's end was used up.
    EXPECT_LT(Clock::now() - begin, std::chrono::milliseconds(timings.nStopPollEndedWaitMs));
    std::string t = Debug.Take();
    EXPECT_TRUE(Has(t, "\nEM_TLRAID::StorageDeviceTreePolling - Thread TERMINATED ***"));
    EXPECT_FALSE(Has(t, "Thread continue...."));
    EXPECT_TRUE(Has(t, "exited, Return = 0x00000001##\n"));
}

}  // namespace
