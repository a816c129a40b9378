#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include "rest/RaidDaemon.h"

// A RAID manager that lives in memory: it serves the tree it is given or fails as it is told,
// and counts what it was asked. Every way the real daemon fails (no process, login refused,
// time-out, a reply without "SDT") reaches the module as a failed fetch.
class FakeRaidDaemon : public CIRaidDaemon {
  public:
    // The manager installed, its service running and its REST daemon up, or none of these.
    void SetUp(bool up) { installed = running = restServerUp = up; }
    std::atomic<bool> installed{false};
    std::atomic<bool> running{false};
    std::atomic<bool> restServerUp{false};

    // Every fetch from now on gets this tree, or fails.
    void Serve(const std::string& xml);
    void Fail();
    void SetRedfishReply(const std::string& reply);

    std::atomic<size_t> probes{0};
    size_t Fetches();
    // Every call so far with its time-out, in order: "probe 10", "fetch 8", "redfish 0".
    std::vector<std::string> Calls();
    std::vector<std::string> RedfishBodies();
    // Forgets the calls and bodies so far, so that a long run's record stays small.
    void ForgetCalls();
    // Waits until the daemon has had this many fetches or the cap is over; gives the count.
    size_t WaitForFetches(size_t count, int capMs = 60000);

    bool IsInstalled() override { return installed; }
    bool IsServiceRunning() override { return running; }
    bool ProbeRestServer(uint32_t timeoutSec) override;
    bool FetchTree(std::string& xml, uint32_t timeoutSec) override;
    bool PostRedfish(const std::string& body, std::string& reply, uint32_t timeoutSec) override;

  private:
    std::mutex m_Mutex;
    std::condition_variable m_Fetched;
    bool m_bServing = false;
    std::string m_sTree;
    size_t m_nFetches = 0;
    std::vector<std::string> m_Calls;
    std::string m_sRedfishReply;
    std::vector<std::string> m_RedfishBodies;
};
