#include "frame/ExtensionModule.h"

#include "frame/CabinetNumber.h"
#include "frame/RecordTrace.h"
#include "runtime/DebugClient.h"

namespace {

const char* NotificationName(uint32_t code) {
    switch (code) {
        case SCN_SWITCH_SHUTDOWN:
            return "SCN_SWITCH_SHUTDOWN";
        case SCN_SWITCH_REQUEST_ENABLED:
            return "SCN_SWITCH_REQUEST_ENABLED";
        case SCN_SYSTEM_SHUTDOWN:
            return "SCN_SYSTEM_SHUTDOWN";
        case SCN_POWERSTATE_SUSPEND:
            return "SCN_POWERSTATE_SUSPEND";
        case SCN_POWERSTATE_STANDBY:
            return "SCN_POWERSTATE_STANDBY";
        case SCN_POWERSTATE_RESUME:
            return "SCN_POWERSTATE_RESUME";
        case SCN_POWERSTATE_AC_OFFLINE:
            return "SCN_POWERSTATE_AC_OFFLINE";
        case SCN_POWERSTATE_AC_ONLINE:
            return "SCN_POWERSTATE_AC_ONLINE";
        default:
            return nullptr;
    }
}

}  // namespace

int CExtensionModule::Start(ISwitch* pSwitch, uint32_t param) {
    m_pSwitch = pSwitch;
    m_nSwitchParam = param;
    const char* source = (m_pSwitch && m_pSwitch->GetSwitchType() == ISwitch::kTypeAgentless)
                             ? "Tessaline Agentless Service"
                             : "Tessaline Host Warden";
    // Nothing is registered anywhere: the two lines are the whole step.
    TLR_TRACE(4, "\n%-20s: Register event log source \"%s\" ...", GetModuleName(), source);
    TLR_TRACE(4, "\n%-20s: ... event log source \"%s\" registered", GetModuleName(), source);
    return 1;
}

uint32_t CExtensionModule::ModuleRequest(CommandRecord* record) {
    record->EnsureCommand();
    record->SetStatus(status::kUnknownCode);
    return 0;
}

int CExtensionModule::SetCabinetNumber(uint32_t number) {
    g_nCabinetNumber = number;
    g_bCabinetNumberSet = true;
    TLR_TRACE(2, "\n\n%-20s: ## Server cabinet number = %d ##\n", GetModuleName(),
              static_cast<int>(number));
    return 1;
}

int CExtensionModule::OnNotify(uint32_t code, uint64_t param, void* context) {
    TLR_TRACE(2, "\n\n%-20s: ## NOTIFY: Code = 0Xx%02X, param = 0x%08X", GetModuleName(), code,
              static_cast<unsigned>(param));
    if (const char* name = NotificationName(code)) {
        TLR_TRACE(1, "\n%-20s: *** %s *** \n", GetModuleName(), name);
    }
    switch (code) {
        case SCN_SWITCH_SHUTDOWN:
            TLR_TRACE(3, "\n%-20s: -> SWITCH shutdown notification, set SwitchShutdown flag",
                      GetModuleName());
            m_bSwitchShutdown = true;
            break;
        case SCN_SWITCH_REQUEST_ENABLED:
            TLR_TRACE(3,
                      "\n%-20s: -> SWITCH start completed (all layers started) - requests enabled",
                      GetModuleName());
            break;
        case SCN_SYSTEM_SHUTDOWN:
            TLR_TRACE(2, "\n%-20s: -> System shutdown", GetModuleName());
            break;
        default:
            break;
    }
    TLR_TRACE(4, "\n%-20s:   call OnModuleNotification()...", GetModuleName());
    int result = OnModuleNotification(code, param, context);
    TLR_TRACE(4, "\n%-20s:   ... OnModuleNotification() completed", GetModuleName());
    return result;
}

bool CExtensionModule::IsAgentlessSwitch() {
    if (!m_pSwitch)
        return false;
    uint32_t type = m_pSwitch->GetSwitchType();
    return type == ISwitch::kTypeAgentless || type == ISwitch::kTypeAgentlessAlt;
}

void CExtensionModule::SendSwitchRequest(CommandRecord& record, uint32_t timeoutMs) {
    if (!m_pSwitch) {
        record.SetStatus(status::kNoRaidData);
        return;
    }
    if (!record.HasField("CA")) {
        record.SetField("CA", rapidjson::Value(g_nCabinetNumber.load()));
    }
    m_pSwitch->SendRequest(this, &record, timeoutMs);
}

void CExtensionModule::SendSwitchEvent(CommandRecord& record) {
    uint32_t ownStatus = record.GetField("ST", status::kMissing);
    record.SetStatus(status::kEvent);
    if (m_pSwitch)
        m_pSwitch->SendEvent(this, &record);
    record.SetStatus(ownStatus);
}

void CExtensionModule::TraceRequest(const CommandRecord& record, uint32_t level) {
    if (!g_DebugClient.IsEnabled())
        return;
    std::string tag = std::string(GetModuleName()) + " (REQ)";
    TraceRecord(level, tag.c_str(), record);
}

void CExtensionModule::TraceReturn(const CommandRecord& record, uint32_t level) {
    if (!g_DebugClient.IsEnabled())
        return;
    std::string tag = std::string(GetModuleName()) + " (RET)";
    TraceRecord(level, tag.c_str(), record);
}
