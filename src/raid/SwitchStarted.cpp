// When the switch is up: ask it whether disks and batteries are customer replaceable.
#include "frame/CabinetNumber.h"
#include "raid/EM_TLRAID.h"
#include "runtime/DebugClient.h"
#include "storage/TLRaidData.h"

namespace {

constexpr uint32_t kOcCssHdd = 0x2113;
constexpr uint32_t kOcCssBbu = 0x2114;
// Statuses under 22 that count as an answer: 0, 12 and 21; and the event mark 255.
constexpr uint32_t kAcceptedStatusMask = 0x201001;
constexpr uint32_t kStatusEvent = 255;

bool StatusAccepted(const CommandRecord& record) {
    uint32_t st = record.GetField("ST", CommandRecord::kDefaultStatus);
    return st == kStatusEvent || (st < 22 && ((kAcceptedStatusMask >> st) & 1));
}

// The low 8 bits of the answer's data, 0 where there is none.
bool FlagOf(const CommandRecord& record) {
    uint32_t value = 0;
    record.GetDataUInt(record.m_nCurrentCommand, value);
    return (value & 0xFF) != 0;
}

}  // namespace

void EM_TLRAID::OnSwitchStarted() {
    TLR_TRACE(2, "\nEM_TLRAID           : Enter OnSwitchStarted");
    if (m_bAgentlessSwitch) {
        m_bTestRequestsEnabled = true;
    } else {
        CommandRecord answer(kOcCssHdd, 0, 0, g_nCabinetNumber, CommandRecord::kNoStatus);
        SendSwitchRequest(answer, m_Timings.nSwitchRequestTimeoutMs);
        if (StatusAccepted(answer) && answer.HasData()) {
            // The test gate follows the disk answer on an ordinary host.
            m_bCSS_HDD = FlagOf(answer);
            m_bTestRequestsEnabled = FlagOf(answer);
        }
    }
    TLR_TRACE(2, "\nEM_TLRAID           : HDD %sCSS component", m_bCSS_HDD ? "" : "NOT ");
    CommandRecord answer(kOcCssBbu, 0, 0, g_nCabinetNumber, CommandRecord::kNoStatus);
    SendSwitchRequest(answer, m_Timings.nSwitchRequestTimeoutMs);
    // An accepted status without data reads as "not replaceable".
    if (StatusAccepted(answer))
        m_bCSS_BBU = FlagOf(answer);
    TLR_TRACE(2, "\nEM_TLRAID           : BBU %sCSS component", m_bCSS_BBU ? "" : "NOT ");

    std::string xml;
    if (m_RestClient.GetXmlSdt(xml, m_Timings.nSwitchStartedTreeTimeoutSec)) {
        CTLRaidData tree;
        tree.SetDoc(xml);
        // The value serves the getter's trace lines only.
        uint32_t status = 0;
        tree.GetBbuOverallComponentStatus(status);
    }
    m_evSwitchStarted.Set();
    TLR_TRACE(2, "\nEM_TLRAID           : Leave OnSwitchStarted");
}
