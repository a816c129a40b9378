#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "frame/CommandRecord.h"
#include "frame/Switch.h"
#include "raid/EM_TLRAID.h"
#include "rest/RestConstants.h"
#include "storage/TLRaidData.h"
#include "support/FakeRaidDaemon.h"
#include "support/FastTimings.h"

// A switch that keeps the requests it gets, answers them by object code and drops events.
class FakeSwitch : public ISwitch {
  public:
    explicit FakeSwitch(uint32_t type = 1) : m_nType(type) {}
    // The answer's members ST and DA, as JSON text of an object.
    void Answer(uint32_t oc, const std::string& replyJson);

    int SendRequest(CIExtensionModule*, CommandRecord* record, uint32_t timeoutMs) override;
    int SendEvent(CIExtensionModule*, CommandRecord*) override { return 0; }
    uint32_t GetSwitchType() override { return m_nType; }

    std::vector<std::string> Requests();

  private:
    uint32_t m_nType;
    std::mutex m_Mutex;
    std::map<uint32_t, std::string> m_Answers;
    std::vector<std::string> m_Requests;
};

// Asks the condition again and again until it holds or the cap is over; gives its last answer.
bool WaitUntil(const std::function<bool()>& condition, int capMs = 20000);

bool Has(const std::string& text, const std::string& part);
size_t Count(const std::string& text, const std::string& part);
// Takes the trace until the part has shown up this often or the cap is over; gives all taken.
std::string TraceUntil(const std::string& part, size_t times = 1, int capMs = 60000);

// A module against a RAID manager in memory, which serves a tree that the test may replace.
class RaidModuleTest : public ::testing::Test {
  protected:
    void TearDown() override;

    // The RAID manager installed, running and up, serving this sample tree.
    void ServeSample(const std::string& sampleName);
    void ServeTree(const std::string& xml) { m_pDaemon->Serve(xml); }
    FakeRaidDaemon& Daemon() { return *m_pDaemon; }

    // A new module with the test timings, started on the fake switch unless told otherwise.
    EM_TLRAID& MakeModule(bool start = true);
    EM_TLRAID& MakeModule(const RaidTimings& timings, const PollingClock& clock, bool start);
    // A new module started on the fake switch; gives what Start returned.
    int StartModule(const RaidTimings& timings = FastTimings());
    // Stops the module; gives what Stop returned.
    int StopModule();
    // Sends one request and gives back the answered record.
    std::unique_ptr<CommandRecord> Ask(uint32_t oc, uint32_t oe = 0, uint32_t oi = 0,
                                       uint32_t ci = 1, const std::string& daJson = "");
    // The answer as compact JSON of the command's ST and DA: {"ST":0,"DA":...}.
    std::string Answer(uint32_t oc, uint32_t oe = 0, uint32_t oi = 0, uint32_t ci = 1,
                       const std::string& daJson = "");
    // Asks every row of a section of tests/raid/testdata/<file> as this client and compares
    // the answers. A row: OC OE OI DA answer, DA "-" for none.
    void CheckRows(const std::string& file, const std::string& section, uint32_t client = 1);

    std::shared_ptr<FakeRaidDaemon> m_pDaemon = std::make_shared<FakeRaidDaemon>();
    FakeSwitch m_Switch;
    std::unique_ptr<EM_TLRAID> m_pModule;
    bool m_bStarted = false;
};

std::string SampleTree(const std::string& name);
