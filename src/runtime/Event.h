#pragma once

#include <pthread.h>

#include <atomic>
#include <cstdint>

struct CEventState;

// A waitable flag with manual or automatic reset. Timed waits run on the monotonic clock.
// Handles made with the same name share one state.
class CEvent {
  public:
    static constexpr uint32_t kWaitForever = 0xFFFFFFFF;
    static constexpr int kWaitSignaled = 0;
    static constexpr int kWaitTimeout = 102;
    static constexpr int kWaitFailed = -1;

    CEvent(bool signaled, bool manual, const char* name = nullptr);
    // Drops one reference; the last one waits until no thread is inside Wait.
    ~CEvent();
    CEvent(const CEvent&) = delete;
    CEvent& operator=(const CEvent&) = delete;

    // Changes both attributes while nobody waits; false if somebody does.
    bool SetAttributes(bool signaled, bool manual);
    // Raises the flag and wakes one waiter (automatic) or all (manual).
    bool Set();
    // 0 when signalled, 102 on time-out, -1 on failure; kWaitForever waits for ever.
    int Wait(uint32_t timeoutMs, bool trace);

    bool IsValid() const { return m_pState != nullptr; }
    // The number of handles sharing this event's state, for tests.
    uint32_t RefCount() const;
    // The number of threads inside Wait, for tests.
    uint32_t Waiters() const;

  private:
    // Read by every thread that uses the event, cleared by the destructor: a thread may still
    // be on its way out of Set when the owner, having seen it end, destroys the handle.
    std::atomic<CEventState*> m_pState{nullptr};
    bool m_bClosed = false;
};

// Deadline of a timed wait: timeoutMs after now, both on the same clock.
struct timespec EventDeadline(const struct timespec& now, uint32_t timeoutMs);
