#pragma once

#include <pthread.h>

#include <cstdint>

// One POSIX thread owned by an object. For a joinable thread, Kill waits for its end: the
// owner makes the routine return first (stop flag, events).
class CThread {
  public:
    using Routine = void* (*)(void*);

    // How a thread is started; a field left alone keeps its default.
    struct Options {
        int nPriority = 0;        // 0: the default policy; else round robin at this priority
        bool bSuspend = false;    // traced only: a thread always runs at once
        uint32_t nStackSize = 0;  // traced only: the system's stack size is used
        bool bWaitable = false;   // joinable, so that Kill waits for its end

        // A joinable thread at a priority: the usual module thread.
        static Options Waitable(int priority) {
            Options options;
            options.nPriority = priority;
            options.bWaitable = true;
            return options;
        }
    };

    CThread() = default;
    // Kills the thread when KillAliveThread is set; a failure there ends the process.
    ~CThread();
    CThread(const CThread&) = delete;
    CThread& operator=(const CThread&) = delete;

    bool Start(Routine routine, void* argument, const Options& options);
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
