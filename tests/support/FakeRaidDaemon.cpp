#include "support/FakeRaidDaemon.h"

#include <algorithm>
#include <chrono>

void FakeRaidDaemon::SetUp(bool up) {
    SetInstalled(up);
    SetRunning(up);
    SetRestServerUp(up);
}

void FakeRaidDaemon::SetInstalled(bool installed) {
    std::lock_guard<std::mutex> lock(m_Mutex);
    m_bInstalled = installed;
}

void FakeRaidDaemon::SetRunning(bool running) {
    std::lock_guard<std::mutex> lock(m_Mutex);
    m_bRunning = running;
}

void FakeRaidDaemon::SetRestServerUp(bool up) {
    std::lock_guard<std::mutex> lock(m_Mutex);
    m_bRestServerUp = up;
}

void FakeRaidDaemon::ServeInTurn(std::vector<Reply> replies) {
    std::lock_guard<std::mutex> lock(m_Mutex);
    m_Replies = replies.empty() ? std::vector<Reply>{Failure()} : std::move(replies);
    m_nNext = 0;
}

void FakeRaidDaemon::Hold() {
    std::lock_guard<std::mutex> lock(m_Mutex);
    m_bHeld = true;
}

void FakeRaidDaemon::Release() {
    std::lock_guard<std::mutex> lock(m_Mutex);
    m_bHeld = false;
    m_Changed.notify_all();
}

void FakeRaidDaemon::SetRedfishReply(const std::string& reply) {
    std::lock_guard<std::mutex> lock(m_Mutex);
    m_sRedfishReply = reply;
}

size_t FakeRaidDaemon::Fetches() {
    std::lock_guard<std::mutex> lock(m_Mutex);
    return m_nFetches;
}

size_t FakeRaidDaemon::Probes() {
    std::lock_guard<std::mutex> lock(m_Mutex);
    return m_nProbes;
}

uint32_t FakeRaidDaemon::LastFetchTimeout() {
    std::lock_guard<std::mutex> lock(m_Mutex);
    return m_nLastTimeout;
}

std::vector<std::string> FakeRaidDaemon::RedfishBodies() {
    std::lock_guard<std::mutex> lock(m_Mutex);
    return m_RedfishBodies;
}

size_t FakeRaidDaemon::WaitForFetches(size_t count, int capMs) {
    std::unique_lock<std::mutex> lock(m_Mutex);
    m_Changed.wait_for(lock, std::chrono::milliseconds(capMs), [&] { return m_nFetches >= count; });
    return m_nFetches;
}

bool FakeRaidDaemon::WaitForHeldFetch(int capMs) {
    std::unique_lock<std::mutex> lock(m_Mutex);
    return m_Changed.wait_for(lock, std::chrono::milliseconds(capMs),
                              [&] { return m_nHeldWaiting > 0; });
}

bool FakeRaidDaemon::IsInstalled() {
    std::lock_guard<std::mutex> lock(m_Mutex);
    return m_bInstalled;
}

bool FakeRaidDaemon::IsServiceRunning() {
    std::lock_guard<std::mutex> lock(m_Mutex);
    return m_bRunning;
}

bool FakeRaidDaemon::ProbeRestServer(uint32_t) {
    std::lock_guard<std::mutex> lock(m_Mutex);
    ++m_nProbes;
    return m_bRestServerUp && m_Replies[std::min(m_nNext, m_Replies.size() - 1)].bOk;
}

bool FakeRaidDaemon::FetchTree(std::string& xml, uint32_t timeoutSec) {
    std::unique_lock<std::mutex> lock(m_Mutex);
    if (m_bHeld) {
        ++m_nHeldWaiting;
        m_Changed.notify_all();
        m_Changed.wait(lock, [&] { return !m_bHeld; });
        --m_nHeldWaiting;
    }
    ++m_nFetches;
    m_nLastTimeout = timeoutSec;
    m_Changed.notify_all();
    if (!m_bRestServerUp)
        return false;
    const Reply& reply = m_Replies[std::min(m_nNext, m_Replies.size() - 1)];
    if (m_nNext < m_Replies.size())
        ++m_nNext;
    if (reply.bOk)
        xml = reply.sXml;
    return reply.bOk;
}

bool FakeRaidDaemon::PostRedfish(const std::string& body, std::string& reply, uint32_t) {
    std::lock_guard<std::mutex> lock(m_Mutex);
    m_RedfishBodies.push_back(body);
    if (!m_bRestServerUp)
        return false;
    reply = m_sRedfishReply;
    return true;
}
