#pragma once

#include <pthread.h>

#include <atomic>
#include <cstdint>
#include <cstdlib>

// The shared part of an event, reached by all handles of one named event.
struct CEventState {
    pthread_cond_t cond;
    pthread_mutex_t mutex;
    uint32_t refCount = 1;
    // Read without the mutex by SetAttributes, which runs while nobody waits.
    std::atomic<bool> IsManual{false};
    std::atomic<bool> IsSignaled{false};
    char* name = nullptr;  // strdup'ed; null for an anonymous event
    std::atomic<uint32_t> waiters{0};
    pthread_condattr_t condAttr;

    ~CEventState() { free(name); }
    const char* DisplayName() const { return name ? name : "anon"; }
};
