#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "enclosure/EnclosureMap.h"
#include "frame/ExtensionModule.h"
#include "inventory/PciConfigList.h"
#include "raid/PollingRules.h"
#include "raid/RaidSettings.h"
#include "rest/RaidDaemon.h"
#include "runtime/Event.h"
#include "runtime/RecursiveLock.h"
#include "runtime/Thread.h"

class CTLRaidData;

// The RAID extension module: makes the storage of the local RAID manager visible to the
// switch's clients. Each client reads from a snapshot of its own of the storage tree.
class EM_TLRAID : public CExtensionModule {
  public:
    static constexpr const char* kModuleName = "EM_TLRAID";
    static constexpr const char* kDescription = "TLRAID extension module";

    // The shipped module: the host's RAID manager and the fixed waits and tries.
    EM_TLRAID();
    // A module with other waits, another daemon and another clock, for tests.
    EM_TLRAID(const RaidTimings& timings, std::shared_ptr<CIRaidDaemon> daemon,
              const PollingClock& clock = PollingClock());
    ~EM_TLRAID() override;

    int GetModuleInfo(ModuleInfoBlock* block) override;
    int IsDetected() override;
    int Start(ISwitch* pSwitch, uint32_t param) override;
    int Stop() override;
    void OnSwitchStarted() override;
    uint32_t ModuleRequest(CommandRecord* record) override;
    int GetServerSeList(uint32_t** list, uint8_t* count) override;
    const char* GetModuleName() override { return kModuleName; }
    void ClientDetached(uint32_t clientId) override;

    // Start-up: is the RAID manager there, is its service running, the first valid tree.
    bool IsTLRaidInstalled();
    bool DetectTLRaid(uint32_t waitMs, uint32_t tries);
    bool DetectRestServer();
    bool InitializeAfterTLRaidStart();
    static void* WaitForTLRaidStart_Thread(void* module);
    static void* StorageDeviceTreePollingThread(void* module);

    // Client snapshots: one tree text per client id.
    bool TLRaidDataGetSnapshot(CTLRaidData& doc, uint32_t clientId);
    bool TLRaidDataUpdateSnapshot(uint32_t clientId);
    bool GetRaidAdapterData(CTLRaidData& doc, uint32_t clientId, uint32_t adapterIndex);
    bool ClearAllSnapshots();
    size_t SnapshotCount();

    // Requests that go to the REST daemon themselves, past the snapshots.
    // The raw tree as the daemon sends it now; false, xml untouched, without one.
    bool FetchRawTree(std::string& xml);
    // Passes a Redfish request through to the RAID manager; always 1, whatever came back.
    int RaidRedfishRequest(const std::string& body, std::string& reply);

    // The test attribute that a client sets: stored, and read by nothing but the tests.
    void SetTestAttribute(const std::string& name, uint32_t value);
    std::string GetTestAttribute(uint32_t& value);

    // Flags for tests and the host's view.
    bool IsTerminating() const { return m_isTerminating; }
    bool IsCssHdd() const { return m_bCSS_HDD; }
    bool IsCssBbu() const { return m_bCSS_BBU; }
    bool AreTestRequestsEnabled() const { return m_bTestRequestsEnabled; }

    // The enclosure map once it is set up; before that an empty map that nothing writes, so
    // that requests find no cabinet while set-up still fills the real one.
    EnclosureMap& EnclosureMapForRequests();

  private:
    void StartPollingThread();
    using SnapshotText = std::shared_ptr<const std::string>;
    bool FetchFirstSnapshot(CTLRaidData& doc, uint32_t clientId, SnapshotText& text);
    void StorageDeviceTreePolling(bool bCabinetsEmpty);
    void PollOnce(bool bCabinetsEmpty, MdcProgressMap& mdcPrevious, time_t& tLastSmartCheck);

    // A snapshot's text is never changed in place, only replaced: a request parses the text
    // it took under the lock after letting go of the lock.
    std::map<uint32_t, SnapshotText> m_Snapshots;
    CRecursiveLock m_TLRaidSnapshotLock;
    std::shared_ptr<CIRaidDaemon> m_pDaemon;
    CEvent m_evRetryWait;
    CPciConfigList m_PciConfigList;
    CEvent m_evSwitchStarted;
    CEvent m_evStopWait;
    CEvent m_evStopRequest;
    CThread m_WaitThread;
    CThread m_SpareThread;
    EnclosureMap m_EnclosureMap;
    CThread m_PollingThread;
    CEvent m_evPollWake;
    CEvent m_evPollEnded;
    std::string m_sTestAttribute;
    uint32_t m_nTestAttributeValue = 0;
    // Two clients may set the attribute at once; nothing else waits on this.
    std::mutex m_TestAttributeLock;
    uint32_t m_nReserved = 0;
    // Flags read by other threads without a lock.
    std::atomic<bool> m_bTestRequestsEnabled{false};
    std::atomic<bool> m_bCSS_HDD{false};
    std::atomic<bool> m_bCSS_BBU{false};
    std::atomic<bool> m_isTerminating{false};
    std::atomic<bool> m_bAdaptersPresent{false};
    std::atomic<bool> m_bRestServerSeen{false};
    std::atomic<bool> m_bAgentlessSwitch{false};

    // Set once the enclosure map is set up; from then on its shape stays as it is.
    std::atomic<bool> m_bEnclosureMapReady{false};

    RaidTimings m_Timings;
    PollingClock m_Clock;
    // Orders Stop against a wait thread that starts the polling thread at the same moment.
    std::mutex m_PollingStartLock;
};
