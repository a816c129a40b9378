#pragma once

#include <atomic>
#include <cstdint>

#include "frame/CommandRecord.h"
#include "frame/ModuleInfoBlock.h"
#include "frame/Switch.h"
#include "frame/SwitchProtocol.h"

// The interface by which the host's switch drives an extension module. The order of the
// operations is the order of the slots that the host calls.
class CIExtensionModule {
  public:
    virtual ~CIExtensionModule() = default;
    virtual int GetModuleInfo(ModuleInfoBlock* block) = 0;
    virtual int IsDetected() = 0;
    virtual int Start(ISwitch* pSwitch, uint32_t param) = 0;
    virtual int Stop() = 0;
    virtual void OnSwitchStarted() = 0;
    virtual void Reserved1() = 0;
    virtual uint32_t ModuleRequest(CommandRecord* record) = 0;
    virtual int Reserved2() = 0;
    virtual int SetCabinetNumber(uint32_t number) = 0;
    virtual int GetServerSeList(uint32_t** list, uint8_t* count) = 0;
    virtual int Reserved3() = 0;
    virtual int OnNotify(uint32_t code, uint64_t param, void* context) = 0;
    virtual const char* GetModuleName() = 0;
    virtual void Reserved4() = 0;
    virtual void Reserved5() = 0;
    virtual void Reserved6() = 0;
    virtual void ClientDetached(uint32_t clientId) = 0;
    virtual int Reserved7() = 0;
    virtual int Reserved8() = 0;
    virtual int Reserved9() = 0;
    virtual int Reserved10() = 0;
    virtual int OnModuleNotification(uint32_t code, uint64_t param, void* context) = 0;
};

// What every module has: the switch, the shutdown flag, the defaults of every operation,
// and the routines that send records to the switch and trace them.
class CExtensionModule : public CIExtensionModule {
  public:
    CExtensionModule() = default;
    ~CExtensionModule() override = default;

    int GetModuleInfo(ModuleInfoBlock*) override { return 0; }
    int IsDetected() override { return 1; }
    int Start(ISwitch* pSwitch, uint32_t param) override;
    int Stop() override { return 1; }
    void OnSwitchStarted() override {}
    void Reserved1() override {}
    // Answers every request with status 1: unknown object code.
    uint32_t ModuleRequest(CommandRecord* record) override;
    int Reserved2() override { return 0; }
    int SetCabinetNumber(uint32_t number) override;
    int GetServerSeList(uint32_t**, uint8_t*) override { return 0; }
    int Reserved3() override { return 0; }
    int OnNotify(uint32_t code, uint64_t param, void* context) override;
    const char* GetModuleName() override { return "EM_XXX"; }
    void Reserved4() override {}
    void Reserved5() override {}
    void Reserved6() override {}
    void ClientDetached(uint32_t) override {}
    int Reserved7() override { return 0; }
    int Reserved8() override { return 0; }
    int Reserved9() override { return 0; }
    int Reserved10() override { return 0; }
    int OnModuleNotification(uint32_t, uint64_t, void*) override { return 0; }

    // True for the agentless service: switch types 5 and 10.
    bool IsAgentlessSwitch();
    // Sends a record to the switch and waits for its answer in ST and DA; ST 6 without a switch.
    void SendSwitchRequest(CommandRecord& record, uint32_t timeoutMs);
    // Hands an event to the switch with ST 255 during the call, the record's own ST after it.
    void SendSwitchEvent(CommandRecord& record);
    void TraceRequest(const CommandRecord& record, uint32_t level);
    void TraceReturn(const CommandRecord& record, uint32_t level);

  protected:
    ISwitch* m_pSwitch = nullptr;
    uint32_t m_nSwitchParam = 0;
    // Set by one switch thread, read by others and by the module's threads.
    std::atomic<bool> m_bSwitchShutdown{false};
};
