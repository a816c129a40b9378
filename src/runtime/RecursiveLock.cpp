#include "runtime/RecursiveLock.h"

CRecursiveLock::CRecursiveLock() {
    m_bValid = pthread_mutex_init(&m_Mutex, nullptr) == 0;
}

CRecursiveLock::~CRecursiveLock() {
    if (!m_bValid)
        return;
    if (m_nDepth >= 1 && pthread_equal(m_Owner.load(), pthread_self())) {
        m_nDepth = 0;
        m_Owner = 0;
        pthread_mutex_unlock(&m_Mutex);
    }
    pthread_mutex_destroy(&m_Mutex);
}

void CRecursiveLock::Lock() {
    if (!m_bValid)
        return;
    pthread_t self = pthread_self();
    if (!pthread_equal(m_Owner.load(), self)) {
        pthread_mutex_lock(&m_Mutex);
        m_Owner = self;
    }
    ++m_nDepth;
}

void CRecursiveLock::Unlock() {
    if (!m_bValid || !pthread_equal(m_Owner.load(), pthread_self()))
        return;
    if (--m_nDepth == 0) {
        m_Owner = 0;
        pthread_mutex_unlock(&m_Mutex);
    }
}
