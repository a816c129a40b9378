#pragma once

#include <pthread.h>

#include <cstdint>

// One POSIX thread owned by an object. For a joinable thread, Kill waits for its end: the
// owner makes the routine return first (stop flag, events).
class CThread {
  public:
    using Routine = void* (*)(void*);

    CThread() = default;
    // Kills the thread when KillAliveThread is set; a failure there ends the process.
    ~CThread();
    CThread(const CThread&) = delete;
    CThread& operator=(const CThread&) = delete;

    bool Start(Routine routine, void* argument, int prio, bool suspend, uint32_t stackSize,
               uint32_t reserved, bool waitable);
    bool Kill();

    pthread_t Handle() const { return m_hThread; }

    bool m_bKillAliveThread = true;
    bool m_bWaitable = false;

  private:
    pthread_t m_hThread = 0;
};

// The conventions around a module thread: its name line before Start, its return line at
// the end of the routine, which then returns the value.
void TraceThreadName(pthread_t handle, const char* moduleName, const char* qualifier);
void* TraceThreadReturn(void* value);
