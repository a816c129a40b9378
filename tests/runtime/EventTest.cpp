// Events: automatic and manual reset, timed waits on the monotonic clock, named sharing and
// destruction while a thread waits.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#include "runtime/Event.h"
#include "runtime/RecursiveLock.h"
#include "support/CaptureTraceServer.h"

namespace {

using Clock = std::chrono::steady_clock;

int64_t MsSince(Clock::time_point start) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
}

TEST(EventTest, AutomaticResetLetsOneWaitThrough) {
    CEvent event(false, false);
    EXPECT_TRUE(event.Set());
    EXPECT_EQ(event.Wait(0, true), CEvent::kWaitSignaled);
    EXPECT_EQ(event.Wait(50, true), CEvent::kWaitTimeout);
}

TEST(EventTest, InitiallySignalledEventMakesTheFirstWaitFree) {
    CEvent event(true, false);
    auto start = Clock::now();
    EXPECT_EQ(event.Wait(10000, true), CEvent::kWaitSignaled);
    EXPECT_LT(MsSince(start), 1000);
    EXPECT_EQ(event.Wait(30, true), CEvent::kWaitTimeout);
}

TEST(EventTest, ManualEventWakesAllWaitersAndStaysUp) {
    CEvent event(false, true);
    std::atomic<int> woken{0};
    std::vector<std::thread> waiters;
    for (int i = 0; i < 3; ++i) {
        waiters.emplace_back([&] {
            if (event.Wait(CEvent::kWaitForever, true) == CEvent::kWaitSignaled)
                ++woken;
        });
    }
    while (event.Waiters() < 3)
        std::this_thread::yield();
    EXPECT_TRUE(event.Set());
    for (auto& t : waiters)
        t.join();
    EXPECT_EQ(woken, 3);
    EXPECT_EQ(event.Wait(0, true), CEvent::kWaitSignaled);
}

TEST(EventTest, SetWakesATimedWaitEarly) {
    CEvent event(false, false);
    auto start = Clock::now();
    std::thread setter([&] {
        while (event.Waiters() == 0)
            std::this_thread::yield();
        event.Set();
    });
    EXPECT_EQ(event.Wait(20000, true), CEvent::kWaitSignaled);
    setter.join();
    EXPECT_LT(MsSince(start), 5000);
}

TEST(EventTest, DeadlineCarriesNanosecondsIntoSeconds) {
    struct Row {
        time_t sec;
        long nsec;
        uint32_t timeout;
        time_t wantSec;
        long wantNsec;
    } rows[] = {
        {100, 600000000, 1500, 102, 100000000},
        {100, 0, 0, 100, 0},
        {100, 999999999, 1, 101, 999999},
        {5, 400000000, 0xFFFFFFFE, 5 + 4294967, 400000000 + 294000000},
    };
    for (const Row& r : rows) {
        struct timespec now = {r.sec, r.nsec};
        struct timespec deadline = EventDeadline(now, r.timeout);
        EXPECT_EQ(deadline.tv_sec, r.wantSec) << r.timeout;
        EXPECT_EQ(deadline.tv_nsec, r.wantNsec) << r.timeout;
    }
}

TEST(EventTest, SetAttributesIsRefusedWhileSomebodyWaits) {
    CEvent event(false, true);
    EXPECT_TRUE(event.SetAttributes(true, false));
    EXPECT_EQ(event.Wait(0, true), CEvent::kWaitSignaled);
    EXPECT_EQ(event.Wait(0, true), CEvent::kWaitTimeout);  // automatic now

    std::thread waiter([&] { event.Wait(CEvent::kWaitForever, true); });
    while (event.Waiters() == 0)
        std::this_thread::yield();
    EXPECT_FALSE(event.SetAttributes(true, true));
    event.Set();
    waiter.join();
    EXPECT_EQ(event.Wait(0, true), CEvent::kWaitTimeout);  // still automatic, flag taken
}

TEST(EventTest, NamedEventsShareOneState) {
    ScopedTraceLevel level(3);
    {
        CEvent first(false, true, "shared-event");
        {
            CEvent second(true, false, "shared-event");
            EXPECT_EQ(first.RefCount(), 2u);
            EXPECT_NE(Debug.Take().find("WARNING: manual setting mismatch for event"),
                      std::string::npos);
            // The second construction's signalled state is ignored.
            EXPECT_EQ(second.Wait(0, false), CEvent::kWaitTimeout);
            second.Set();
            EXPECT_EQ(first.Wait(0, false), CEvent::kWaitSignaled);
        }
        EXPECT_EQ(first.RefCount(), 1u);
        CEvent other(false, false, "other-event");
        EXPECT_EQ(other.RefCount(), 1u);
    }
    // The name went with the last handle: a new event of that name is a new state.
    CEvent fresh(false, false, "shared-event");
    EXPECT_EQ(fresh.RefCount(), 1u);
    EXPECT_EQ(fresh.Wait(0, false), CEvent::kWaitTimeout);
}

TEST(EventTest, DestructionWaitsForAWaiterToLeave) {
    auto event = std::make_unique<CEvent>(false, true);
    CEvent* raw = event.get();
    const auto waiting = Clock::now();
    std::thread waiter([&] { raw->Wait(1000, false); });
    while (raw->Waiters() == 0)
        std::this_thread::yield();
    // Nothing sets the event: the destruction ends when the waiter's time is up.
    event.reset();
    EXPECT_GE(MsSince(waiting), 1000);
    waiter.join();
}

TEST(EventTest, WaitTracesAtLevelFive) {
    ScopedTraceLevel level(5);
    CEvent event(false, false);
    event.Wait(0, true);
    std::string trace = Debug.Take();
    EXPECT_NE(trace.find("\nwaiting 0ms on event "), std::string::npos);
    EXPECT_NE(trace.find("TIMEOUT(0,110) on event "), std::string::npos);
    event.Set();
    Debug.Take();
    event.Wait(CEvent::kWaitForever, true);
    trace = Debug.Take();
    EXPECT_NE(trace.find("\nwaiting forever on event "), std::string::npos);
    EXPECT_NE(
        trace.find("<anon> (IsManual=0) has been already signaled --> New state: IsSignaled=0"),
        std::string::npos);
}

TEST(RecursiveLockTest, OwnerMayLockAgainAndOthersWait) {
    CRecursiveLock lock;
    lock.Lock();
    lock.Lock();
    EXPECT_EQ(lock.Depth(), 2u);
    std::atomic<bool> trying{false}, taken{false};
    std::thread other([&] {
        lock.Unlock();  // not the owner: changes nothing
        trying = true;
        CRecursiveLockGuard guard(lock);
        taken = true;
    });
    while (!trying)
        std::this_thread::yield();
    lock.Unlock();
    EXPECT_FALSE(taken);  // still held once
    lock.Unlock();
    other.join();
    EXPECT_TRUE(taken);
    EXPECT_EQ(lock.Depth(), 0u);
}

}  // namespace
