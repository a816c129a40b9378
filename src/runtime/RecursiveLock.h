#pragma once

#include <pthread.h>

#include <atomic>
#include <cstdint>

// A mutex that its owner may take again; each lock needs its unlock.
class CRecursiveLock {
  public:
    CRecursiveLock();
    ~CRecursiveLock();
    CRecursiveLock(const CRecursiveLock&) = delete;
    CRecursiveLock& operator=(const CRecursiveLock&) = delete;

    void Lock();
    // Does nothing for a caller that is not the owner.
    void Unlock();

    uint32_t Depth() const { return m_nDepth; }

  private:
    pthread_mutex_t m_Mutex;
    std::atomic<pthread_t> m_Owner{0};
    uint32_t m_nDepth = 0;
    bool m_bValid = false;
};

// Holds a CRecursiveLock for the life of a scope.
class CRecursiveLockGuard {
  public:
    explicit CRecursiveLockGuard(CRecursiveLock& lock) : m_Lock(lock) { m_Lock.Lock(); }
    ~CRecursiveLockGuard() { m_Lock.Unlock(); }
    CRecursiveLockGuard(const CRecursiveLockGuard&) = delete;
    CRecursiveLockGuard& operator=(const CRecursiveLockGuard&) = delete;

  private:
    CRecursiveLock& m_Lock;
};
