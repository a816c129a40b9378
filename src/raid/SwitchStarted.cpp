// When the switch is up: ask it whether disks and batteries are customer replaceable.
#include "frame/CabinetNumber.h"
#include "raid/EM_TLRAID.h"
#include "runtime/DebugClient.h"
#include "storage/TLRaidData.h"

namespace {

// The statuses of an answer that count: done, the two other answered ones, and the event mark.
bool StatusAccepted(const CommandRecord& record) {
    uint32_t st = record.GetField("ST", status::kMissing);
    return st == status::kOk || st == status::kAnsweredFirstAlt ||
           st == status::kAnsweredSecondAlt || st == status::kEvent;
}

// The low 8 bits of the answer's data, 0 where there is none.
bool FlagOf(const CommandRecord& record) {
    uint32_t value = 0;
    record.GetDataUInt(value);
    return (value & CommandRecord::kLowByteMask) != 0;
}

}  // namespace

void EM_TLRAID::OnSwitchStarted() {
    TLR_TRACE(2, "\nEM_TLRAID           : Enter OnSwitchStarted");
    if (m_bAgentlessSwitch) {
        m_bTestRequestsEnabled = true;
    } else {
        CommandRecord answer(oc::kDisksCustomerReplaceable, 0, 0, g_nCabinetNumber, status::kNone);
        SendSwitchRequest(answer, m_Timings.nSwitchRequestTimeoutMs);
        if (StatusAccepted(answer) && answer.HasData()) {
            // The test gate follows the disk answer on an ordinary host.
            m_bCSS_HDD = FlagOf(answer);
            m_bTestRequestsEnabled = FlagOf(answer);
        }
    }
    TLR_TRACE(2, "\nEM_TLRAID           : HDD %sCSS component", m_bCSS_HDD ? "" : "NOT ");
    CommandRecord answer(oc::kBatteriesCustomerReplaceable, 0, 0, g_nCabinetNumber, status::kNone);
    SendSwitchRequest(answer, m_Timings.nSwitchRequestTimeoutMs);
    // An accepted status without data reads as "not replaceable".
    if (StatusAccepted(answer))
        m_bCSS_BBU = FlagOf(answer);
    TLR_TRACE(2, "\nEM_TLRAID           : BBU %sCSS component", m_bCSS_BBU ? "" : "NOT ");

    std::string xml;
    if (m_pDaemon->FetchTree(xml, m_Timings.nSwitchStartedTreeTimeoutSec)) {
        CTLRaidData tree;
        tree.SetDoc(xml);
        // The value serves the getter's trace lines only.
        uint32_t status = 0;
        tree.GetBbuOverallComponentStatus(status);
    }
    m_evSwitchStarted.Set();
    TLR_TRACE(2, "\nEM_TLRAID           : Leave OnSwitchStarted");
}
