#include "support/FakeRaidDaemon.h"

#include <chrono>

void FakeRaidDaemon::Serve(const std::string& xml) {
    std::lock_guard<std::mutex> lock(m_Mutex);
    m_bServing = true;
    m_sTree = xml;
}

void FakeRaidDaemon::Fail() {
    std::lock_guard<std::mutex> lock(m_Mutex);
    m_bServing = false;
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

void FakeRaidDaemon::ForgetCalls() {
    std::lock_guard<std::mutex> lock(m_Mutex);
    m_Calls.clear();
    m_RedfishBodies.clear();
}

size_t FakeRaidDaemon::WaitForFetches(size_t count, int capMs) {
    std::unique_lock<std::mutex> lock(m_Mutex);
    m_Fetched.wait_for(lock, std::chrono::milliseconds(capMs), [&] { return m_nFetches >= count; });
    return m_nFetches;
}

bool FakeRaidDaemon::ProbeRestServer(uint32_t timeoutSec) {
    ++probes;
    std::lock_guard<std::mutex> lock(m_Mutex);
    m_Calls.push_back("probe " + std::to_string(timeoutSec));
    return restServerUp && m_bServing;
}

bool FakeRaidDaemon::FetchTree(std::string& xml, uint32_t timeoutSec) {
    std::lock_guard<std::mutex> lock(m_Mutex);
    ++m_nFetches;
    m_Calls.push_back("fetch " + std::to_string(timeoutSec));
    m_Fetched.notify_all();
    if (!restServerUp || !m_bServing)
        return false;
    xml = m_sTree;
    return true;
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
