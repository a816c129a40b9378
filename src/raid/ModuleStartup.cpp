// Start and stop of the module: the RAID manager's installation, its service, the first
// valid storage tree, and the threads that wait for the service and poll the tree.
#include "enclosure/EnclosureSetup.h"
#include "raid/EM_TLRAID.h"
#include "runtime/DebugClient.h"
#include "storage/TLRaidData.h"

namespace {

constexpr char kDashes[] =
    "\n------------------------------------------------------------------------------------------"
    "\n";

const char* YesNo(bool b) {
    return b ? "true" : "false";
}

}  // namespace

int EM_TLRAID::Start(ISwitch* pSwitch, uint32_t param) {
    CExtensionModule::Start(pSwitch, param);
    TLR_TRACE(1, "%s", kDashes);
    TLR_TRACE(1, "\n### Starting module %s ###\n", kModuleName);
    m_bAgentlessSwitch = IsAgentlessSwitch();

    bool started = true;
    if (!IsTLRaidInstalled()) {
        TLR_TRACE(1, "\nEM_TLRAID           : Tessaline RAID not installed!");
        started = false;
    } else {
        TLR_TRACE(2, "\nEM_TLRAID           : DetectTLRaid, TL RAID service is installed!");
        bool detected = DetectTLRaid(m_Timings.nStartDetectWaitMs, m_Timings.nStartDetectTries);
        TLR_TRACE(2, "\nEM_TLRAID           : DetectTLRaid, TL RAID service is %s started!",
                  detected ? "" : "NOT");
        if (detected) {
            TLR_TRACE(2, "\nEM_TLRAID           : INFO - %sRunningOnServerStart", "NOT ");
            m_PciConfigList.ScanPciSlots(0);
            TLR_TRACE(3, "\nEM_TLRAID           : Wait for first valid TLRAID responses");
            started = InitializeAfterTLRaidStart();
        } else {
            TraceThreadName(m_WaitThread.Handle(), kModuleName, "_WaitForTLRaidStartThread");
            m_WaitThread.Start(WaitForTLRaidStart_Thread, this,
                               CThread::Options::Waitable(raid_host::kThreadPriority));
        }
    }
    TLR_TRACE(1, "\n\n### Start of module %s completed %s ###", kModuleName,
              started ? "successfully" : "with ERRORS!");
    TLR_TRACE(1, "%s", kDashes);
    return started ? 1 : 0;
}

int EM_TLRAID::Stop() {
    TLR_TRACE(1, "%s", kDashes);
    TLR_TRACE(1, "\n### Stopping module %s ###\n", kModuleName);
    {
        // The wait thread may be starting the polling thread right now: either the thread
        // is there before the wake-up below, or it is not started at all.
        std::lock_guard<std::mutex> guard(m_PollingStartLock);
        m_isTerminating = true;
        m_evRetryWait.Set();
        m_evSwitchStarted.Set();
        m_evStopRequest.Set();
        m_evPollWake.Set();
    }
    pthread_t polling = m_PollingThread.Handle();
    int policy = 0;
    struct sched_param param;
    if (polling != 0 && pthread_getschedparam(polling, &policy, &param) == 0) {
        m_evPollEnded.Wait(m_Timings.nStopPollEndedWaitMs, true);
    }
    // Nothing sets this event: a stop always takes this long.
    m_evStopWait.Wait(m_Timings.nStopWaitMs, true);
    CExtensionModule::Stop();
    TLR_TRACE(1, "\n\n### Stop of module %s completed %s ###", kModuleName, "successfully");
    TLR_TRACE(1, "%s", kDashes);
    return 1;
}

bool EM_TLRAID::IsTLRaidInstalled() {
    const bool installed = m_pDaemon->IsInstalled();
    TLR_TRACE(2, "\nCOsInfo             : TessalineRaid is %sinstalled", installed ? "" : "NOT ");
    return installed;
}

bool EM_TLRAID::DetectTLRaid(uint32_t waitMs, uint32_t tries) {
    int retry = static_cast<int>(tries);
    bool success = false;
    auto giveUp = [&] {
        TLR_TRACE(2, "\nEM_TLRAID           : DetectTLRaid exiting bSuccess %s ", "false");
        return false;
    };
    TLR_TRACE(2,
              "\nEM_TLRAID           : DetectTLRaid entered m_bSwitchShutdown %s bSuccess %s "
              "retryCount %d m_isTerminating %s",
              YesNo(m_bSwitchShutdown), YesNo(success), retry, YesNo(m_isTerminating));
    if (m_bSwitchShutdown)
        return giveUp();
    for (;;) {
        if (retry == 0)
            return giveUp();
        --retry;
        bool running = false;
        for (;;) {
            m_evRetryWait.Wait(waitMs, true);
            if (!m_isTerminating) {
                running = m_pDaemon->IsServiceRunning();
                TLR_TRACE(3, "\nCOsInfo             :Tessaline RAID %srunning",
                          running ? "" : "NOT ");
                if (running) {
                    TLR_TRACE(2,
                              "\nEM_TLRAID           : DetectTLRaid (retry = %d), TL RAID service "
                              "running",
                              retry);
                    break;
                }
                TLR_TRACE(2,
                          "\nEM_TLRAID           : DetectTLRaid (retry = %d), TL RAID service NOT "
                          "running",
                          retry);
            }
            if (m_bSwitchShutdown)
                return giveUp();
            if (--retry < 0)
                return giveUp();
        }
        success = DetectRestServer();
        m_bRestServerSeen = success;
        TLR_TRACE(2, "\nEM_TLRAID           : DetectTLRaid (retry = %d), %s", retry,
                  success ? "success" : "no success");
        if (m_bSwitchShutdown && !success)
            return giveUp();
        if (success) {
            TLR_TRACE(2, "\nEM_TLRAID           : DetectTLRaid exiting bSuccess %s ", "true");
            return true;
        }
    }
}

bool EM_TLRAID::DetectRestServer() {
    return m_pDaemon->ProbeRestServer(m_Timings.nProbeTimeoutSec);
}

void* EM_TLRAID::WaitForTLRaidStart_Thread(void* argument) {
    auto* module = static_cast<EM_TLRAID*>(argument);
    TLR_TRACE(2, "\nEM_TLRAID           : StartWaitForTLRaidStart_Thread");
    while (!module->m_isTerminating) {
        if (module->DetectTLRaid(module->m_Timings.nThreadDetectWaitMs,
                                 module->m_Timings.nThreadDetectTries)) {
            TLR_TRACE(2,
                      "\nEM_TLRAID           : WaitForTLRaidStart_Thread TLRAID service running");
            module->InitializeAfterTLRaidStart();
            break;
        }
    }
    return TraceThreadReturn(nullptr);
}

bool EM_TLRAID::InitializeAfterTLRaidStart() {
    TLR_TRACE(5, "\nEM_TLRAID           : -> InitializeAfterTLRaidStart()");
    CTLRaidData doc;
    bool valid = false;
    if (!m_bSwitchShutdown) {
        for (uint32_t attempt = 1; attempt <= m_Timings.nInitTries; ++attempt) {
            TLR_TRACE(3,
                      "\nEM_TLRAID           : Check TLRAID for valid TLRAID response (Retry: %d)",
                      static_cast<int>(attempt));
            std::string xml;
            // Only an invalid tree is asked for again; a failed request ends the wait.
            if (!m_pDaemon->FetchTree(xml, m_Timings.nInitTimeoutSec))
                break;
            TLR_TRACE(6, "\nEM_TLRAID           : TLRAID response data: \n%s", xml.c_str());
            doc.SetDoc(xml);
            if (doc.IsValid()) {
                TLR_TRACE(2, "\nEM_TLRAID           : Got valid TLRAID response");
                valid = true;
                break;
            }
            TLR_TRACE(2, "\nEM_TLRAID           : Got invalid TLRAID response");
            TLR_TRACE(3, "\nEM_TLRAID           : Wait one second before next try ...");
            m_evRetryWait.Wait(m_Timings.nInitWaitMs, true);
            TLR_TRACE(3, "\nEM_TLRAID           : ... woke up from wait");
            if (m_bSwitchShutdown)
                break;
        }
    }

    m_bAdaptersPresent = doc.GetAdapterCount() != 0;
    if (m_bAdaptersPresent) {
        bool found = SetupEnclosureMap(m_EnclosureMap, doc) != 0;
        // Requests see the map from now on; it is set up once in the module's life.
        m_bEnclosureMapReady.store(true, std::memory_order_release);
        if (found)
            TLR_TRACE(2, "\nEM_TLRAID           : Init, SetupEnclosure OK");
        else
            TLR_TRACE(2, "\nEM_TLRAID           : Init, SetupEnclosure FAILED");
    }

    {
        std::lock_guard<std::mutex> guard(m_PollingStartLock);
        if (!m_isTerminating) {
            m_evPollWake.SetAttributes(false, false);
            StartPollingThread();
        }
    }
    TLR_TRACE(5, "\nEM_TLRAID           : <- InitializeAfterTLRaidStart()");
    return valid;
}

void EM_TLRAID::StartPollingThread() {
    TraceThreadName(m_PollingThread.Handle(), kModuleName, "_StorageDeviceTreePollingThread");
    m_PollingThread.Start(StorageDeviceTreePollingThread, this,
                          CThread::Options::Waitable(raid_host::kThreadPriority));
}
