#include "runtime/Event.h"

#include <cxxabi.h>
#include <sched.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <memory>

#include "runtime/DebugClient.h"
#include "runtime/EventNames.h"

namespace {

constexpr long kNanosPerSecond = 1000000000L;
constexpr long kNanosPerMilli = 1000000L;

// Builds a state's condition variable on the monotonic clock and its mutex; on failure
// undoes what was made and says which step failed.
bool InitState(CEventState& s) {
    int ret = pthread_condattr_init(&s.condAttr);
    if (ret == 0) {
        ret = pthread_condattr_setclock(&s.condAttr, CLOCK_MONOTONIC);
        if (ret != 0) {
            TLR_TRACE(3,
                      "pthread_condattr_setclock(): ## ERROR ##: Set CLOCK_MONOTONIC failed "
                      "(ret=%d) for event %p <%s> (IsSignaled=%d)\n",
                      ret, static_cast<void*>(&s), s.DisplayName(), s.IsSignaled.load());
            pthread_condattr_destroy(&s.condAttr);
            return false;
        }
    }
    ret = pthread_cond_init(&s.cond, &s.condAttr);
    if (ret != 0) {
        TLR_TRACE(3,
                  "pthread_cond_init(), CLOCK_MONOTONIC: ## ERROR ##: failed (ret=%d) on event %p "
                  "<%s> (IsSignaled=%d)\n",
                  ret, static_cast<void*>(&s), s.DisplayName(), s.IsSignaled.load());
        pthread_condattr_destroy(&s.condAttr);
        return false;
    }
    ret = pthread_mutex_init(&s.mutex, nullptr);
    if (ret != 0) {
        TLR_TRACE(3,
                  "pthread_mutex_init(), CLOCK_MONOTONIC: ## ERROR ##: failed (ret=%d) on event "
                  "%p <%s> (IsSignaled=%d)\n",
                  ret, static_cast<void*>(&s), s.DisplayName(), s.IsSignaled.load());
        pthread_cond_destroy(&s.cond);
        pthread_condattr_destroy(&s.condAttr);
        return false;
    }
    return true;
}

// Keeps the waiter count and the mutex right when a wait is left by unwinding.
class WaiterScope {
  public:
    WaiterScope(CEventState& s, bool locked) : m_State(s), m_bLocked(locked) { ++m_State.waiters; }
    ~WaiterScope() {
        --m_State.waiters;
        if (m_bLocked)
            pthread_mutex_unlock(&m_State.mutex);
    }
    WaiterScope(const WaiterScope&) = delete;
    WaiterScope& operator=(const WaiterScope&) = delete;

  private:
    CEventState& m_State;
    bool m_bLocked;
};

int WaitOnCondition(CEventState& s, uint32_t timeoutMs, bool trace) {
    int ret = 0;
    if (timeoutMs != CEvent::kWaitForever) {
        struct timespec now;
        clock_gettime(CLOCK_MONOTONIC, &now);
        struct timespec deadline = EventDeadline(now, timeoutMs);
        if (trace) {
            TLR_TRACE(5,
                      "prepare time for waiting on event %p <%s> (ts_beg:sec=%ld,ts_beg:nsec=%ld) "
                      "-> (ts:sec=%ld,ts:nsec=%ld)\n",
                      static_cast<void*>(&s), s.DisplayName(), static_cast<long>(now.tv_sec),
                      now.tv_nsec, static_cast<long>(deadline.tv_sec), deadline.tv_nsec);
        }
        do {
            ret = pthread_cond_timedwait(&s.cond, &s.mutex, &deadline);
        } while (ret == EINTR);
    } else {
        do {
            ret = pthread_cond_wait(&s.cond, &s.mutex);
        } while (ret == EINTR);
    }
    return ret;
}

}  // namespace

struct timespec EventDeadline(const struct timespec& now, uint32_t timeoutMs) {
    struct timespec deadline;
    long nanos = static_cast<long>(timeoutMs % 1000) * kNanosPerMilli + now.tv_nsec;
    deadline.tv_sec = static_cast<time_t>(timeoutMs / 1000) + now.tv_sec + nanos / kNanosPerSecond;
    deadline.tv_nsec = nanos % kNanosPerSecond;
    return deadline;
}

CEvent::CEvent(bool signaled, bool manual, const char* name) {
    if (name) {
        EventListLock().Lock();
        EventNameTableLock().Lock();
        CEventState* existing = FindNamedEvent(name);
        EventNameTableLock().Unlock();
        if (existing) {
            ++existing->refCount;
            m_pState = existing;
            EventListLock().Unlock();
            TLR_TRACE(3, "refCount for event %p <%s> incremented (IsSignaled=%d)\n",
                      static_cast<void*>(existing), existing->DisplayName(),
                      existing->IsSignaled.load());
            if (existing->IsManual != manual) {
                TLR_TRACE(1, "WARNING: manual setting mismatch for event %p <%s>\n",
                          static_cast<void*>(existing), existing->DisplayName());
            }
            return;
        }
    }

    auto state = std::make_unique<CEventState>();
    state->IsManual = manual;
    state->IsSignaled = signaled;
    if (!InitState(*state)) {
        if (name)
            EventListLock().Unlock();
        return;
    }
    if (name) {
        state->name = strdup(name);
        EventNameTableLock().Lock();
        AddNamedEvent(name, state.get());
        EventNameTableLock().Unlock();
        EventListLock().Unlock();
    }
    m_pState = state.release();
    CEventState* created = m_pState;
    TLR_TRACE(5, "creating event %p <%s> (IsSignaled=%d)\n", static_cast<void*>(created),
              created->DisplayName(), created->IsSignaled.load());
}

CEvent::~CEvent() {
    CEventState* s = m_pState.exchange(nullptr);
    if (!s)
        return;
    EventListLock().Lock();
    if (s->refCount != 1) {
        --s->refCount;
        EventListLock().Unlock();
        TLR_TRACE(5, "decr refcount on event %p <%s> (IsSignaled=%d)\n", static_cast<void*>(s),
                  s->DisplayName(), s->IsSignaled.load());
        return;
    }
    s->refCount = 0;
    if (s->name) {
        EventNameTableLock().Lock();
        RemoveNamedEvent(s->name);
        EventNameTableLock().Unlock();
    }
    EventListLock().Unlock();

    // Waiters are not woken: destruction waits until they have left by themselves.
    for (;;) {
        pthread_mutex_lock(&s->mutex);
        if (s->waiters == 0)
            break;
        pthread_mutex_unlock(&s->mutex);
        sleep(1);
    }
    pthread_mutex_unlock(&s->mutex);
    pthread_cond_destroy(&s->cond);
    pthread_condattr_destroy(&s->condAttr);
    pthread_mutex_destroy(&s->mutex);
    TLR_TRACE(5, "deleting event %p <%s> (IsSignaled=%d)\n", static_cast<void*>(s),
              s->DisplayName(), s->IsSignaled.load());
    std::unique_ptr<CEventState> owned(s);
}

bool CEvent::SetAttributes(bool signaled, bool manual) {
    CEventState* state = m_pState;
    if (m_bClosed || !state)
        return false;
    CEventState& s = *state;
    if (s.waiters != 0)
        return false;
    if (s.IsSignaled == signaled && s.IsManual == manual)
        return true;
    TLR_TRACE(5,
              "Create event %p <%s>, changing attributes (IsSignaled=%d,IsManual=%d) --> "
              "(IsSignaled=%d,IsManual=%d)\n",
              static_cast<void*>(&s), s.DisplayName(), s.IsSignaled.load(), s.IsManual.load(),
              signaled, manual);
    s.IsSignaled = signaled;
    s.IsManual = manual;
    return true;
}

bool CEvent::Set() {
    CEventState* state = m_pState;
    if (m_bClosed || !state)
        return false;
    CEventState& s = *state;
    bool locked = pthread_mutex_lock(&s.mutex) == 0;
    TLR_TRACE(5, "Set event %p <%s> IsSignaled=%d --> IsSignaled=1\n", static_cast<void*>(&s),
              s.DisplayName(), s.IsSignaled.load());
    s.IsSignaled = true;
    int ret = s.IsManual ? pthread_cond_broadcast(&s.cond) : pthread_cond_signal(&s.cond);
    if (locked)
        pthread_mutex_unlock(&s.mutex);
    sched_yield();
    return ret == 0;
}

int CEvent::Wait(uint32_t timeoutMs, bool trace) {
    CEventState* state = m_pState;
    if (m_bClosed || !state)
        return kWaitFailed;
    CEventState& s = *state;
    if (trace) {
        if (timeoutMs != kWaitForever) {
            TLR_TRACE(5, "\nwaiting %dms on event %p", static_cast<int>(timeoutMs),
                      static_cast<void*>(&s));
        } else {
            TLR_TRACE(5, "\nwaiting forever on event %p", static_cast<void*>(&s));
        }
    }
    int lockResult = pthread_mutex_lock(&s.mutex);
    bool locked = lockResult == 0;
    if (s.IsSignaled) {
        if (!s.IsManual)
            s.IsSignaled = false;
        bool manual = s.IsManual;
        bool signaled = s.IsSignaled;
        if (locked)
            pthread_mutex_unlock(&s.mutex);
        if (trace) {
            TLR_TRACE(5,
                      "event %p <%s> (IsManual=%d) has been already signaled --> New state: "
                      "IsSignaled=%d\n",
                      static_cast<void*>(&s), s.DisplayName(), manual, signaled);
        }
        return kWaitSignaled;
    }

    int result = kWaitFailed;
    int waitResult = 0;
    bool signaled = false;
    try {
        WaiterScope scope(s, locked);
        if (locked) {
            waitResult = WaitOnCondition(s, timeoutMs, trace);
            if (waitResult == 0 || s.IsSignaled) {
                if (!s.IsManual)
                    s.IsSignaled = false;
                result = kWaitSignaled;
            } else {
                result = waitResult == ETIMEDOUT ? kWaitTimeout : kWaitFailed;
            }
        }
        signaled = s.IsSignaled;
    } catch (abi::__forced_unwind&) {
        // Thread cancellation must unwind to its end; the scope above has cleaned up.
        throw;
    } catch (...) {
        lockResult = waitResult = -1;
        result = kWaitFailed;
    }
    if (trace) {
        const char* what = result == kWaitSignaled  ? "SIGNAL"
                           : result == kWaitTimeout ? "TIMEOUT"
                                                    : "FAILURE";
        TLR_TRACE(5, "%s(%d,%d) on event %p <%s> (IsSignaled=%d)\n", what, lockResult, waitResult,
                  static_cast<void*>(&s), s.DisplayName(), signaled);
    }
    return result;
}

uint32_t CEvent::RefCount() const {
    CEventState* state = m_pState;
    return state ? state->refCount : 0;
}

uint32_t CEvent::Waiters() const {
    CEventState* state = m_pState;
    if (!state)
        return 0;
    pthread_mutex_lock(&state->mutex);
    uint32_t n = state->waiters;
    pthread_mutex_unlock(&state->mutex);
    return n;
}
