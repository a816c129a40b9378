// The polling thread: wakes every cycle and ends when Stop sets its event.
#include "raid/EM_TLRAID.h"
#include "runtime/DebugClient.h"

void* EM_TLRAID::StorageDeviceTreePollingThread(void* argument) {
    if (!argument)
        return TraceThreadReturn(nullptr);
    static_cast<EM_TLRAID*>(argument)->StorageDeviceTreePolling();
    return TraceThreadReturn(reinterpret_cast<void*>(1));
}

void EM_TLRAID::StorageDeviceTreePolling() {
    TLR_TRACE(2, "\nEM_TLRAID::StorageDeviceTreePolling - Thread started.");
    for (;;) {
        // The cycle's work on the tree comes here.
        TLR_TRACE(5, "\nEM_TLRAID::StorageDeviceTreePolling - Thread wait....");
        if (m_evPollWake.Wait(m_Timings.nPollIntervalMs, true) != CEvent::kWaitTimeout)
            break;
        TLR_TRACE(5, "\nEM_TLRAID::StorageDeviceTreePolling - Thread continue....");
    }
    TLR_TRACE(2, "\nEM_TLRAID::StorageDeviceTreePolling - Thread TERMINATED ***");
    m_evPollEnded.Set();
    TraceThreadReturn(nullptr);
}
