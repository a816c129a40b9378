#include "runtime/Thread.h"

#include <sched.h>

#include <exception>

#include "runtime/DebugClient.h"

namespace {

unsigned Id(pthread_t thread) {
    return static_cast<unsigned>(thread);
}

// Owns an initialised attribute object.
class ThreadAttributes {
  public:
    int Init() {
        m_nInit = pthread_attr_init(&m_Attr);
        return m_nInit;
    }
    ~ThreadAttributes() {
        if (m_nInit == 0)
            pthread_attr_destroy(&m_Attr);
    }
    pthread_attr_t* Get() { return &m_Attr; }

  private:
    pthread_attr_t m_Attr;
    int m_nInit = -1;
};

}  // namespace

CThread::~CThread() {
    if (!m_bKillAliveThread)
        return;
    try {
        Kill();
    } catch (...) {
        std::terminate();
    }
}

bool CThread::Start(Routine routine, void* argument, const Options& options) {
    const int prio = options.nPriority;
    const bool waitable = options.bWaitable;
    const uint32_t stackSize = options.nStackSize;
    TLR_TRACE(5,
              "\nCThread::Start: Start a thread, Prio=%d, Suspend=%d, StackSize=0x%08x, "
              "Waitable=%d, KillAliveThread=%d",
              prio, options.bSuspend, stackSize, waitable, m_bKillAliveThread);
    if (m_bKillAliveThread) {
        Kill();
        m_bWaitable = waitable;
    }

    ThreadAttributes attributes;
    pthread_attr_t* attr = attributes.Get();
    int ret = attributes.Init();
    if (ret != 0) {
        TLR_TRACE(2, "\npthread_attr_init failed: %d", ret);
        return false;
    }
    TLR_TRACE(4, "\npthread_attr_init: %d", 0);
    if (!waitable) {
        ret = pthread_attr_setdetachstate(attr, PTHREAD_CREATE_DETACHED);
        if (ret != 0) {
            TLR_TRACE(2, "\npthread_attr_setdetachstate failed: %d", ret);
            return false;
        }
    }
    TLR_TRACE(2, "\nThreadPrio=%d", prio);
    if (prio != 0) {
        ret = pthread_attr_setschedpolicy(attr, SCHED_RR);
        if (ret != 0) {
            TLR_TRACE(2, "\npthread_attr_setschedpolicy failed: %d", ret);
            return false;
        }
        struct sched_param param;
        ret = pthread_attr_getschedparam(attr, &param);
        if (ret != 0) {
            TLR_TRACE(2, "\npthread_attr_getschedparam failed: %d", ret);
            return false;
        }
        param.sched_priority = prio;
        ret = pthread_attr_setschedparam(attr, &param);
        if (ret != 0) {
            TLR_TRACE(2, "\npthread_attr_setschedparam failed: error=%d priority=%d", ret, prio);
            return false;
        }
    }
    ret = pthread_create(&m_hThread, attr, routine, argument);
    if (ret != 0) {
        m_hThread = 0;
        TLR_TRACE(2, "\npthread_create failed: %d", ret);
        return false;
    }
    TLR_TRACE(2, "\nCThread::Start: thread=0x%08X created, Prio=%d, Waitable=%d, StackSize=0x%x",
              Id(m_hThread), prio, waitable, stackSize);
    sched_yield();
    return true;
}

bool CThread::Kill() {
    TLR_TRACE(1, "\nCThread::Kill: Try to kill the Thread = 0x%08X", Id(m_hThread));
    if (m_hThread == 0) {
        TLR_TRACE(1, "\nCThread::Kill: Thread = 0x0%08X doesn't exist !", Id(m_hThread));
        return false;
    }
    if (m_bWaitable) {
        TLR_TRACE(1, "\nCThread::Kill: Try to join a joinable Thread = 0x%08X", Id(m_hThread));
        void* status = nullptr;
        int ret = pthread_join(m_hThread, &status);
        if (ret != 0) {
            TLR_TRACE(1,
                      "\nCThread::Kill: ERROR ! ThreadJoin failed, Thread = 0x%08X, Err = 0x%08x",
                      Id(m_hThread), ret);
            return false;
        }
        TLR_TRACE(1, "\nCThread::Kill: a joinable Thread = 0x%08X has terminated, pstat=%p",
                  Id(m_hThread), status);
        m_hThread = 0;
        return true;
    }

    TLR_TRACE(1, "\nCThread::Kill: Try to kill a non-joinable Thread = 0x0%08X", Id(m_hThread));
    int policy = 0;
    struct sched_param param;
    if (pthread_getschedparam(m_hThread, &policy, &param) != 0) {
        m_hThread = 0;
        return true;
    }
    TLR_TRACE(2, "\nCThread::Kill: Killing a non-joinable thread 0x%08X", Id(m_hThread));
    pthread_t thread = m_hThread;
    m_hThread = 0;
    int ret = pthread_cancel(thread);
    if (ret == 0) {
        TLR_TRACE(2, "\nCThread::Kill: a non-joinable thread 0x%08X cancel invoked", Id(thread));
        return true;
    }
    TLR_TRACE(2, "\nCThread::Kill: unable to cancel a non-joinable thread 0x%08X (err = 0x%08x)",
              Id(thread), ret);
    return false;
}

void TraceThreadName(pthread_t handle, const char* moduleName, const char* qualifier) {
    TLR_TRACE(1, "CThread::SetThreadName: ThreadId = 0x%08X, DebugName = %s, Qualifier = (%s)\n",
              Id(handle), moduleName, qualifier);
}

void* TraceThreadReturn(void* value) {
    TLR_TRACE(1, "THREAD_RETURN: ## INFO: Thread = 0x%08X exited, Return = 0x%08x##\n",
              Id(pthread_self()), static_cast<unsigned>(reinterpret_cast<uintptr_t>(value)));
    return value;
}
