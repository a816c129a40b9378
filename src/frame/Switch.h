#pragma once

#include <cstdint>

class CIExtensionModule;
class CommandRecord;

// The host's switch, as a module sees it. Modules call SendRequest, SendEvent and
// GetSwitchType; the other slots are the host's own business.
class ISwitch {
  public:
    static constexpr uint32_t kTypeAgentless = 5;
    static constexpr uint32_t kTypeAgentlessAlt = 10;

    virtual ~ISwitch() = default;
    virtual void HostReserved1() {}
    virtual void HostReserved2() {}
    // Blocks until the switch has answered: ST and DA then stand in the record.
    virtual int SendRequest(CIExtensionModule* module, CommandRecord* record,
                            uint32_t timeoutMs) = 0;
    virtual int SendEvent(CIExtensionModule* module, CommandRecord* record) = 0;
    virtual void HostReserved3() {}
    virtual uint32_t GetSwitchType() = 0;
};
