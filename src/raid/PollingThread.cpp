// The polling thread: fetches the storage tree every cycle, passes on the enclosure events,
// drops the client snapshots when a logical drive's MDC progress moves, and keeps the clock
// of the SMART report.
#include <vector>

#include "enclosure/EnclosureStates.h"
#include "frame/CommandRecord.h"
#include "raid/EM_TLRAID.h"
#include "runtime/DebugClient.h"
#include "storage/TLRaidData.h"

void* EM_TLRAID::StorageDeviceTreePollingThread(void* argument) {
    if (!argument)
        return TraceThreadReturn(nullptr);
    auto* module = static_cast<EM_TLRAID*>(argument);
    // Taken once: the map's shape is fixed when the thread begins.
    const bool bCabinetsEmpty = module->m_EnclosureMap.m_Cabinets.empty();
    module->StorageDeviceTreePolling(bCabinetsEmpty);
    return TraceThreadReturn(reinterpret_cast<void*>(1));
}

void EM_TLRAID::StorageDeviceTreePolling(bool bCabinetsEmpty) {
    TLR_TRACE(2, "\nEM_TLRAID::StorageDeviceTreePolling - Thread started.");
    time_t tLastSmartCheck = m_Clock.Now();
    TLR_TRACE(2, "\nEM_TLRAID::StorageDeviceTreePolling - [SMART Logs] Init time '%s'",
              AscTime(m_Clock.LocalTimeOf(tLastSmartCheck)).c_str());
    MdcProgressMap mdcPrevious;
    for (;;) {
        try {
            PollOnce(bCabinetsEmpty, mdcPrevious, tLastSmartCheck);
        } catch (...) {
            TLR_TRACE(1,
                      "\nEM_TLRAID::StorageDeviceTreePolling - ERROR # Exception in pool loop! "
                      "***");
            // The next good cycle starts without a comparison.
            mdcPrevious.clear();
        }
        // The wait begins after the work: a cycle lasts the wait plus the work.
        TLR_TRACE(5, "\nEM_TLRAID::StorageDeviceTreePolling - Thread wait....");
        if (m_evPollWake.Wait(m_Timings.nPollIntervalMs, true) != CEvent::kWaitTimeout)
            break;
        TLR_TRACE(5, "\nEM_TLRAID::StorageDeviceTreePolling - Thread continue....");
    }
    TLR_TRACE(2, "\nEM_TLRAID::StorageDeviceTreePolling - Thread TERMINATED ***");
    m_evPollEnded.Set();
    TraceThreadReturn(nullptr);
}

void EM_TLRAID::PollOnce(bool bCabinetsEmpty, MdcProgressMap& mdcPrevious,
                         time_t& tLastSmartCheck) {
    std::string xml;
    // A failed fetch costs the cycle and nothing else: the last MDC map stays.
    if (!m_pDaemon->FetchTree(xml, m_Timings.nPollTimeoutSec))
        return;
    CTLRaidData doc;
    doc.SetDoc(xml);

    // The states are read only for a module that found no cabinet at start.
    if (bCabinetsEmpty) {
        std::vector<CommandRecord> events;
        ReadEnclosureStates(m_EnclosureMap, events, doc);
        for (const CommandRecord& event : events) {
            CommandRecord copy(event);
            SendSwitchEvent(copy);
        }
    }

    MdcProgressMap current = doc.GetMDCProgressMap();
    CompareMdcProgress(mdcPrevious, current,
                       [this](const std::string&, int16_t, int16_t) { ClearAllSnapshots(); });
    mdcPrevious = current;

    LookAtSmartClock(m_Clock.Now(), tLastSmartCheck, m_Clock.LocalTimeOf);
}
