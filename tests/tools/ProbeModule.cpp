// A module for testing the host simulator: it sends what a record asks it to send.
//   OC 1: a request to the switch with object code OE (timeout OI); DA gets the ST answered
//         and DA2 the answer's DA.
//   OC 2: OI events with object code OE.
//   OC 3: DA = the switch type.
//   OC 4: sends OI events from a thread of its own, after the call has returned.
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>

#include "frame/ExtensionModule.h"
#include "frame/ModuleExports.h"

#define EM_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

class ProbeModule : public CExtensionModule {
  public:
    // Senders run detached, so that a host that ends with one running sees no unjoined
    // thread; the module waits for them before it goes.
    ~ProbeModule() override {
        std::unique_lock<std::mutex> lock(m_Mutex);
        m_SendersDone.wait(lock, [this] { return m_nSenders == 0; });
    }
    const char* GetModuleName() override { return "EM_PROBE"; }
    int GetServerSeList(uint32_t** list, uint8_t* count) override {
        static uint32_t cabinets[] = {800, 801, 1000};
        *list = cabinets;
        *count = 3;
        return 1;
    }

    uint32_t ModuleRequest(CommandRecord* record) override {
        uint32_t oc = record->GetField("OC", 0);
        uint32_t oe = record->GetField("OE", 0);
        uint32_t oi = record->GetField("OI", 0);
        switch (oc) {
            case 1: {
                CommandRecord request(oe, 0, 0, 0, status::kNone);
                request.RemoveField("CA");
                SendSwitchRequest(request, oi);
                record->SetField("DA2", rapidjson::Value(request.GetField("DA", 0)));
                record->SetDataUInt(request.GetField("ST", 99), 0);
                return 1;
            }
            case 2:
                SendEvents(oe, oi);
                record->SetStatus(0);
                return 1;
            case 3:
                record->SetDataUInt(m_pSwitch ? m_pSwitch->GetSwitchType() : 0, 0);
                return 1;
            case 4: {
                std::lock_guard<std::mutex> lock(m_Mutex);
                ++m_nSenders;
            }
                std::thread([this, oe, oi] {
                    SendEvents(oe, oi);
                    std::lock_guard<std::mutex> lock(m_Mutex);
                    --m_nSenders;
                    m_SendersDone.notify_all();
                }).detach();
                record->SetStatus(0);
                return 1;
            default:
                return CExtensionModule::ModuleRequest(record);
        }
    }

  private:
    void SendEvents(uint32_t oc, uint32_t count) {
        for (uint32_t i = 0; i < count; ++i) {
            CommandRecord event(oc, 0, i, 0, 0);
            SendSwitchEvent(event);
        }
    }

    std::mutex m_Mutex;
    std::condition_variable m_SendersDone;
    int m_nSenders = 0;
};

CIExtensionModule* Make() {
    return new ProbeModule();
}

}  // namespace

EM_EXPORT bool EM_Create(CIExtensionModule** module, uint64_t) {
    return module_exports::Create(module, Make, "EM_PROBE");
}
EM_EXPORT int EM_Delete() {
    return module_exports::Delete("EM_PROBE");
}
EM_EXPORT const char* EM_GetModuleName() {
    return "EM_PROBE";
}
EM_EXPORT int EM_SetupAction(uint32_t action) {
    return module_exports::SetupAction(action, "EM_PROBE");
}
