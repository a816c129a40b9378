#include "raid/EM_TLRAID.h"

#include <utility>

#include "runtime/DebugClient.h"

namespace {
constexpr uint32_t kReservedValue = 600000;
}

EM_TLRAID::EM_TLRAID() : EM_TLRAID(RaidTimings(), std::make_shared<CRaidDaemon>()) {}

EM_TLRAID::EM_TLRAID(const RaidTimings& timings, std::shared_ptr<CIRaidDaemon> daemon,
                     const PollingClock& clock)
    : m_pDaemon(std::move(daemon)),
      m_evRetryWait(false, true),
      m_evSwitchStarted(false, true),
      m_evStopWait(false, true),
      m_evStopRequest(false, true),
      m_evPollWake(false, true),
      m_evPollEnded(false, true),
      m_Timings(timings),
      m_Clock(clock) {
    TLR_TRACE(5, "\nEM_TLRAID           : -> Constructor...");
    m_bTestRequestsEnabled = false;
    m_bCSS_HDD = false;
    m_bCSS_BBU = false;
    m_nTestAttributeValue = 0;
    // The first wait on the retry event is free: it starts signalled, and resets itself.
    m_evRetryWait.SetAttributes(true, false);
    m_nReserved = kReservedValue;
    m_isTerminating = false;
    m_bAdaptersPresent = false;
    m_bRestServerSeen = false;
    m_bAgentlessSwitch = false;
    TLR_TRACE(5, "\nEM_TLRAID           : <- Constructor");
}

EM_TLRAID::~EM_TLRAID() {
    TLR_TRACE(5, "\nEM_TLRAID           : -> Destructor...");
    TLR_TRACE(5, "\nEM_TLRAID           : <- Destructor");
}

int EM_TLRAID::GetModuleInfo(ModuleInfoBlock* block) {
    return FillModuleInfo(block, kModuleName, kDescription) ? 1 : 0;
}

int EM_TLRAID::IsDetected() {
    TLR_TRACE(1, "\nEM_TLRAID           : TL RAID always \"detected\"!");
    return 1;
}
