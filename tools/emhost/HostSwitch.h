#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>

#include "HostOutput.h"
#include "frame/Switch.h"

// The switch as the module sees it: requests and events become asynchronous output lines,
// and a request is answered with the ST and DA configured for its object code.
class HostSwitch : public ISwitch {
  public:
    HostSwitch(HostOutput& output, uint32_t switchType) : m_Output(output), m_nType(switchType) {}

    // Sets the reply to requests of an object code: a JSON object with ST and DA.
    bool SetAnswer(uint32_t oc, const std::string& replyJson, std::string& error);

    int SendRequest(CIExtensionModule* module, CommandRecord* record, uint32_t timeoutMs) override;
    int SendEvent(CIExtensionModule* module, CommandRecord* record) override;
    uint32_t GetSwitchType() override { return m_nType; }

    // Called with every event record while the switch has it, on the module's thread.
    using EventListener = std::function<void(const CommandRecord&)>;
    void SetEventListener(EventListener listener);

    // Waits until count events have come in all, or timeoutMs have passed; the total so far.
    uint64_t WaitForEvents(uint64_t count, uint64_t timeoutMs);

  private:
    HostOutput& m_Output;
    uint32_t m_nType;
    std::mutex m_AnswerMutex;
    std::map<uint32_t, std::string> m_Answers;  // object code -> reply JSON
    std::mutex m_EventMutex;
    std::condition_variable m_EventArrived;
    uint64_t m_nEvents = 0;
    EventListener m_EventListener;
};
