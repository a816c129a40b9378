// Events: automatic and manual reset, timed waits on the monotonic clock, named sharing and
// destruction while a thread waits.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <tuple>
#include <vector>

#include "runtime/Event.h"
#include "runtime/RecursiveLock.h"

namespace {

TEST(EventTest, AutomaticResetLetsOneWaitThrough) {
    CEvent event(false, false);
    EXPECT_TRUE(event.Set());
    EXPECT_EQ(event.Wait(0, true), CEvent::kWaitSignaled);
    EXPECT_EQ(event.Wait(50, true), CEvent::kWaitTimeout);
    CEvent initially(true, false);  // signalled from the start
    EXPECT_EQ(initially.Wait(CEvent::kWaitForever, true), CEvent::kWaitSignaled);
    EXPECT_EQ(initially.Wait(30, true), CEvent::kWaitTimeout);
}

TEST(EventTest, ManualEventWakesAllWaitersAndStaysUp) {
    CEvent event(false, true);
    std::atomic<int> woken{0};
    std::vector<std::thread> waiters;
    // Timed waits and waits without end alike.
    for (uint32_t timeout : {CEvent::kWaitForever, 60000u, CEvent::kWaitForever}) {
        waiters.emplace_back([&, timeout] {
            if (event.Wait(timeout, true) == CEvent::kWaitSignaled)
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

TEST(EventTest, DeadlineCarriesNanosecondsIntoSeconds) {
    // Now, time-out, deadline.
    const std::tuple<timespec, uint32_t, timespec> rows[] = {
        {{100, 600000000}, 1500, {102, 100000000}},
        {{100, 999999999}, 1, {101, 999999}},
        {{5, 400000000}, 0xFFFFFFFE, {5 + 4294967, 400000000 + 294000000}}};
    for (const auto& [now, timeout, want] : rows) {
        const timespec deadline = EventDeadline(now, timeout);
        EXPECT_EQ(deadline.tv_sec, want.tv_sec) << timeout;
        EXPECT_EQ(deadline.tv_nsec, want.tv_nsec) << timeout;
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
    {
        CEvent first(false, true, "shared-event");
        {
            CEvent second(true, false, "shared-event");
            EXPECT_EQ(first.RefCount(), 2u);
            // The second construction's signalled state is ignored.
            EXPECT_EQ(second.Wait(0, false), CEvent::kWaitTimeout);
            second.Set();
            EXPECT_EQ(first.Wait(0, false), CEvent::kWaitSignaled);
        }
        EXPECT_EQ(first.RefCount(), 1u);
    }
    // The name went with the last handle: a new event of that name is a new state.
    CEvent fresh(false, false, "shared-event");
    EXPECT_EQ(fresh.RefCount(), 1u);
    EXPECT_EQ(fresh.Wait(0, false), CEvent::kWaitTimeout);
}

TEST(EventTest, DestructionWaitsForAWaiterToLeave) {
    auto event = std::make_unique<CEvent>(false, true);
    CEvent* raw = event.get();
    const auto waiting = std::chrono::steady_clock::now();
    std::thread waiter([&] { raw->Wait(1000, false); });
    while (raw->Waiters() == 0)
        std::this_thread::yield();
    // Nothing sets the event: the destruction ends when the waiter's time is up.
    event.reset();
    EXPECT_GE(std::chrono::steady_clock::now() - waiting, std::chrono::milliseconds(1000));
    waiter.join();
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
