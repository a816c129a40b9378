#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include "rest/RaidDaemon.h"

// A RAID manager that lives in memory: it serves the trees it is given, fails as it is told,
// holds fetches back while the test wants a slow daemon, and counts what it was asked.
class FakeRaidDaemon : public CIRaidDaemon {
  public:
    // What one tree fetch gets. Every way the real daemon fails (no process, login refused,
    // time-out, a reply without "SDT") reaches the module as a failed fetch.
    struct Reply {
        bool bOk = false;
        std::string sXml;
    };
    static Reply Tree(const std::string& xml) { return {true, xml}; }

    // The manager installed, its service running and its REST daemon up, or none of these.
    void SetUp(bool up) { installed = running = restServerUp = up; }
    std::atomic<bool> installed{false};
    std::atomic<bool> running{false};
    std::atomic<bool> restServerUp{false};

    // Every fetch from now on gets this tree, or fails.
    void Serve(const std::string& xml) { ServeInTurn({Tree(xml)}); }
    void Fail() { ServeInTurn({Reply()}); }
    // The next fetches get these replies in turn; the last one stays.
    void ServeInTurn(std::vector<Reply> replies);
    // While held, fetches wait for Release: a daemon that is slow to answer.
    void Hold();
    void Release();
    void SetRedfishReply(const std::string& reply);

    std::atomic<size_t> probes{0};
    size_t Fetches();
    // Every call so far with its time-out, in order: "probe 10", "fetch 8", "redfish 0".
    std::vector<std::string> Calls();
    std::vector<std::string> RedfishBodies();
    // Waits until the daemon has had this many fetches or the cap is over; gives the count.
    size_t WaitForFetches(size_t count, int capMs = 60000);
    // Waits until a fetch is held back; false when none came within the cap.
    bool WaitForHeldFetch(int capMs = 60000);

    bool IsInstalled() override { return installed; }
    bool IsServiceRunning() override { return running; }
    bool ProbeRestServer(uint32_t timeoutSec) override;
    bool FetchTree(std::string& xml, uint32_t timeoutSec) override;
    bool PostRedfish(const std::string& body, std::string& reply, uint32_t timeoutSec) override;

  private:
    const Reply& Current() const { return m_Replies[std::min(m_nNext, m_Replies.size() - 1)]; }

    std::mutex m_Mutex;
    std::condition_variable m_Changed;
    bool m_bHeld = false;
    size_t m_nHeldWaiting = 0;
    std::vector<Reply> m_Replies{Reply()};
    size_t m_nNext = 0;
    size_t m_nFetches = 0;
    std::vector<std::string> m_Calls;
    std::string m_sRedfishReply;
    std::vector<std::string> m_RedfishBodies;
};
