// Start and stop of the module: installation, service, first
// valid tree, the wait thread and the polling thread.
#include <algorithm>
#include <chrono>

#include "RaidTestKit.h"
#include "frame/ExtensionModule.h"
#include "support/CaptureTraceServer.h"

namespace {

using Clock = std::chrono::steady_clock;

using StartupTest = RaidModuleTest;

TEST_F(StartupTest, ServiceUpGivesTheFirstTreeAndStartsPolling) {
    ScopedTraceLevel trace(5);
    ServeSample("demo.xml");
    EXPECT_EQ(StartModule(), 1);
    std::string t = Debug.Take();
    EXPECT_TRUE(Has(t, "\nEM_TLRAID           : DetectTLRaid, TL RAID service is  started!"));
    EXPECT_TRUE(Has(t, "Qualifier = (_StorageDeviceTreePollingThread)"));
    EXPECT_TRUE(Has(t, "\n\n### Start of module EM_TLRAID completed successfully ###"));
    // The probe, then a tree for the first valid response and one for the polling thread's
    // first cycle, which comes at once.
    EXPECT_EQ(Daemon().probes, 1u);
    EXPECT_EQ(Daemon().WaitForFetches(2), 2u);

    EXPECT_EQ(StopModule(), 1);
    t = Debug.Take();
    EXPECT_TRUE(Has(t, "\nEM_TLRAID::StorageDeviceTreePolling - Thread TERMINATED ***"));
    EXPECT_TRUE(Has(t, "\n\n### Stop of module EM_TLRAID completed successfully ###"));
}

TEST_F(StartupTest, NotInstalledStaysIdle) {
    ScopedTraceLevel trace(2);
    EXPECT_EQ(StartModule(), 0);
    std::string t = Debug.Take();
    EXPECT_TRUE(Has(t, "\nEM_TLRAID           : Tessaline RAID not installed!"));
    EXPECT_TRUE(Has(t, "completed with ERRORS! ###"));
    EXPECT_FALSE(Has(t, "CThread::Start"));
    EXPECT_EQ(Answer(0x2110), "{\"ST\":19}");
}

TEST_F(StartupTest, WaitThreadFindsTheServiceWhenItComes) {
    ScopedTraceLevel trace(3);
    ServeTree(SampleTree("demo.xml"));
    Daemon().installed = true;
    EXPECT_EQ(StartModule(), 1);
    std::string t = Debug.Take();
    EXPECT_TRUE(Has(t, "DetectTLRaid, TL RAID service is NOT started!"));
    EXPECT_TRUE(Has(t, "Qualifier = (_WaitForTLRaidStartThread)"));
    // The first wait is free, nine more of 40 ms follow; then the wait thread goes on alone.
    std::string beforeThread = t.substr(0, t.find("_WaitForTLRaidStartThread"));
    EXPECT_EQ(Count(beforeThread, "TL RAID service NOT running"), 10u);

    Daemon().running = true;
    Daemon().restServerUp = true;
    t = TraceUntil("StorageDeviceTreePolling - Thread started.");
    EXPECT_TRUE(Has(t, "WaitForTLRaidStart_Thread TLRAID service running"));
    EXPECT_TRUE(Has(t, "Got valid TLRAID response"));
    EXPECT_EQ(Answer(0x2110), "{\"ST\":0,\"DA\":2}");
}

TEST_F(StartupTest, ServiceWithoutItsRestServerCountsATry) {
    ScopedTraceLevel trace(2);
    ServeSample("demo.xml");
    Daemon().restServerUp = false;
    EM_TLRAID& module = MakeModule(false);
    EXPECT_FALSE(module.DetectTLRaid(10, 3));
    EXPECT_EQ(Count(Debug.Take(), "TL RAID service running"), 3u);
    EXPECT_EQ(Daemon().probes, 3u);
    EXPECT_EQ(Daemon().Fetches(), 0u);
}

TEST_F(StartupTest, TreeThatStaysInvalidIsAskedForEveryTry) {
    ScopedTraceLevel trace(2);
    ServeSample("mux-not-operational.xml");
    EXPECT_EQ(StartModule(), 0);
    std::string t = Debug.Take();
    EXPECT_EQ(Count(t, "Got invalid TLRAID response"), 5u);
    // The five tries, and the polling thread's first cycle.
    EXPECT_EQ(Daemon().WaitForFetches(5u + 1u), 5u + 1u);
    // The polling thread runs all the same.
    const char kPolling[] = "StorageDeviceTreePolling - Thread started.";
    EXPECT_TRUE(Has(t, kPolling) || Has(TraceUntil(kPolling), kPolling));
}

TEST_F(StartupTest, FailedRequestEndsTheFirstWaitAtOnce) {
    ServeSample("mux-not-operational.xml");
    Daemon().Fail();
    EM_TLRAID& module = MakeModule(false);
    EXPECT_FALSE(module.InitializeAfterTLRaidStart());
    m_bStarted = true;  // the polling thread was started, and asks at once as well
    EXPECT_EQ(Daemon().WaitForFetches(2), 2u);
}

TEST_F(StartupTest, ShutdownBeforeStartMakesDetectionGiveUp) {
    ScopedTraceLevel trace(2);
    ServeSample("demo.xml");
    EM_TLRAID& module = MakeModule(false);
    module.OnNotify(SCN_SWITCH_SHUTDOWN, 0, nullptr);
    EXPECT_EQ(module.Start(&m_Switch, 0), 1);
    m_bStarted = true;
    std::string t = Debug.Take();
    EXPECT_TRUE(Has(t, "DetectTLRaid exiting bSuccess false"));
    EXPECT_TRUE(Has(t, "Qualifier = (_WaitForTLRaidStartThread)"));
    EXPECT_EQ(Daemon().probes + Daemon().Fetches(), 0u);
}

TEST_F(StartupTest, EveryRoadToTheDaemonHasItsOwnTimeOut) {
    // The shipped waits and tries.
    const RaidTimings s;
    EXPECT_EQ(
        (std::vector<uint32_t>{
            s.nStartDetectWaitMs, s.nStartDetectTries, s.nThreadDetectWaitMs, s.nThreadDetectTries,
            s.nProbeTimeoutSec, s.nInitTries, s.nInitWaitMs, s.nInitTimeoutSec,
            s.nStopPollEndedWaitMs, s.nStopWaitMs, s.nSnapshotTries, s.nSnapshotTimeoutSec,
            s.nSnapshotRetrySleepSec, s.nSwitchRequestTimeoutMs, s.nSwitchStartedTreeTimeoutSec,
            s.nPollIntervalMs, s.nPollTimeoutSec, s.nRequestTreeTimeoutSec}),
        (std::vector<uint32_t>{15000, 10, 10000, 10, 10, 180, 1000, 30, 10000, 10000, 10, 8, 1,
                               5000, 30, 15000, 5, 5}));

    // Each road with a time-out of its own, to tell them apart.
    RaidTimings timings = FastTimings();
    timings.nProbeTimeoutSec = 41;
    timings.nInitTimeoutSec = 42;
    timings.nPollTimeoutSec = 43;
    timings.nSnapshotTimeoutSec = 44;
    timings.nSwitchStartedTreeTimeoutSec = 45;
    timings.nRequestTreeTimeoutSec = 46;
    ServeSample("demo.xml");
    EM_TLRAID& module = MakeModule(timings, PollingClock(), true);
    Daemon().WaitForFetches(2);
    Answer(0x2110);
    module.OnSwitchStarted();
    Answer(0xF020);
    Answer(0x21D1, 0, 0, 1, R"("{}")");
    const std::vector<std::string> calls = Daemon().Calls();
    for (const char* call :
         {"probe 41", "fetch 42", "fetch 43", "fetch 44", "fetch 45", "fetch 46", "redfish 0"})
        EXPECT_EQ(std::count(calls.begin(), calls.end(), call), 1) << call;
}

TEST_F(StartupTest, StopWaitsItsFullTimeEvenWithoutAService) {
    StartModule();
    auto begin = Clock::now();
    EXPECT_EQ(StopModule(), 1);
    EXPECT_GE(Clock::now() - begin, std::chrono::milliseconds(50));
    EXPECT_TRUE(m_pModule->IsTerminating());
}

}  // namespace
