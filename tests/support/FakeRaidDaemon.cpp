#include "support/FakeRaidDaemon.h"

#include <algorithm>
#include <chrono>

void FakeRaidDaemon::ServeInTurn(std::vector<Reply> replies) {
    std::lock_guard<std::mutex> lock(m_Mutex);
    m_Replies = replies.empty() ? std::vector<Reply>{Reply()} : std::move(replies);
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

std::vector<std::string> FakeRaidDaemon::Calls() {
    std::lock_guard<std::mutex> lock(m_Mutex);
    return m_Calls;
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

bool FakeRaidDaemon::ProbeRestServer(uint32_t timeoutSec) {
    ++probes;
    std::lock_guard<std::mutex> lock(m_Mutex);
    m_Calls.push_back("probe " + std::to_string(timeoutSec));
    return restServerUp && Current().bOk;
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
    m_Calls.push_back("fetch " + std::to_string(timeoutSec));
    m_Changed.notify_all();
    if (!restServerUp)
        return false;
    const Reply reply = Current();
    m_nNext = std::min(m_nNext + 1, m_Replies.size());
    if (reply.bOk)
        xml = reply.sXml;
    return reply.bOk;
}

bool FakeRaidDaemon::PostRedfish(const std::string& body, std::string& reply, uint32_t timeoutSec) {
    std::lock_guard<std::mutex> lock(m_Mutex);
    m_Calls.push_back("redfish " + std::to_string(timeoutSec));
    m_RedfishBodies.push_back(body);
    if (!restServerUp)
        return false;
    reply = m_sRedfishReply;
    return true;
}
