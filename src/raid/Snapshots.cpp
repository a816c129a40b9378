// Client snapshots: each client reads its own copy of the tree's text, fetched on its
// first request and kept until it is renewed, the client goes, or all are dropped.
#include <unistd.h>

#include "raid/EM_TLRAID.h"
#include "runtime/DebugClient.h"
#include "storage/TLRaidData.h"

bool EM_TLRAID::TLRaidDataGetSnapshot(CTLRaidData& doc, uint32_t clientId) {
    TLR_TRACE(5, "\nEM_TLRAID (GetSnap) : -> TLRaidDataGetSnapshot (CTLRaidData)");
    bool result = false;
    const auto traceException = [clientId] {
        TLR_TRACE(1, "\nEM_TLRAID (GetSnap) : CID 0x%08X: ERROR! Exception in GetRaidDataSnapshot",
                  clientId);
    };
    // A snapshot found is parsed outside the lock, so that clients read theirs side by side.
    SnapshotText found;
    {
        CRecursiveLockGuard guard(m_TLRaidSnapshotLock);
        try {
            TLR_TRACE(4,
                      "\nEM_TLRAID (GetSnap) :   snapshot lock granted, return snapshot data of "
                      "client 0x%08X (%d snapshots in list)...",
                      clientId, static_cast<int>(m_Snapshots.size()));
            auto entry = m_Snapshots.find(clientId);
            if (entry != m_Snapshots.end()) {
                // An entry once made is not fetched again here, even when its text is no tree.
                TLR_TRACE(4,
                          "\nEM_TLRAID (GetSnap) :   snapshot found, return RAID data from "
                          "snapshot");
                found = entry->second;
            } else {
                TLR_TRACE(4, "\nEM_TLRAID (GetSnap) :   new TLRAID snapshot created");
                SnapshotText& text = m_Snapshots[clientId];
                text = std::make_shared<const std::string>();
                result = FetchFirstSnapshot(doc, clientId, text);
                TLR_TRACE(3,
                          "\nEM_TLRAID (GetSnap) : CID 0x%08X: Added TLRAID snapshot (%u "
                          "snapshots in list)",
                          clientId, static_cast<unsigned>(m_Snapshots.size()));
            }
        } catch (...) {
            traceException();
            result = false;
        }
    }
    if (found) {
        try {
            doc.SetDoc(*found);
            result = doc.IsValid();
        } catch (...) {
            traceException();
            result = false;
        }
    }
    TLR_TRACE(4, "\nEM_TLRAID (GetSnap) :   released snapshot lock");
    TLR_TRACE(5, "\nEM_TLRAID (GetSnap) : <- TLRaidDataGetSnapshot (CTLRaidData)");
    return result;
}

// The tries of a client's first fetch, under the snapshot lock. The text of the last try
// stays in the entry, valid or not.
bool EM_TLRAID::FetchFirstSnapshot(CTLRaidData& doc, uint32_t clientId, SnapshotText& text) {
    if (m_bSwitchShutdown)
        return false;
    for (uint32_t attempt = 1; attempt <= m_Timings.nSnapshotTries; ++attempt) {
        TLR_TRACE(4, "\nEM_TLRAID (GetSnap) : CID 0x%08X: Check TLRAID XML snpashot (Retry: %d)",
                  clientId, static_cast<int>(attempt));
        std::string xml;
        if (!m_pDaemon->FetchTree(xml, m_Timings.nSnapshotTimeoutSec))
            return false;
        text = std::make_shared<const std::string>(std::move(xml));
        doc.SetDoc(*text);
        TLR_TRACE(6, "\nEM_TLRAID (GetSnap) : CID 0x%08X: TLRAID XML snapshot data: \n%s", clientId,
                  text->c_str());
        if (doc.IsValid()) {
            TLR_TRACE(2, "\nEM_TLRAID (GetSnap) : CID 0x%08X: Got valid TLRAID XML snpashot",
                      clientId);
            return true;
        }
        TLR_TRACE(2, "\nEM_TLRAID (GetSnap) : CID 0x%08X: Got invalid TLRAID XML snapshot",
                  clientId);
        TLR_TRACE(3, "\nEM_TLRAID (GetSnap) : CID 0x%08X: Wait one second before next try ...",
                  clientId);
        // A plain sleep under the lock: Stop doesn't shorten it.
        sleep(m_Timings.nSnapshotRetrySleepSec);
        TLR_TRACE(3, "\nEM_TLRAID (GetSnap) : CID 0x%08X: ... woke up from wait", clientId);
        if (m_bSwitchShutdown)
            return false;
    }
    return false;
}

bool EM_TLRAID::TLRaidDataUpdateSnapshot(uint32_t clientId) {
    TLR_TRACE(5, "\nEM_TLRAID (UpdSnap) : -> TLRaidDataUpdateSnapshot");
    bool result = false;
    {
        CRecursiveLockGuard guard(m_TLRaidSnapshotLock);
        try {
            TLR_TRACE(
                4,
                "\nEM_TLRAID (UpdSnap) :   snapshot lock granted, updating snapshot of client "
                "0x%08X (%d snapshots in list)...",
                clientId, static_cast<int>(m_Snapshots.size()));
            auto read = [&](SnapshotText& text) {
                std::string xml;
                if (m_pDaemon->FetchTree(xml, m_Timings.nSnapshotTimeoutSec)) {
                    TLR_TRACE(4,
                              "\nEM_TLRAID (UpdSnap) :   RAID data successfully read, update "
                              "snapshot");
                    text = std::make_shared<const std::string>(std::move(xml));
                    return true;
                }
                TLR_TRACE(1, "\nEM_TLRAID (UpdSnap) : ## ERROR! Failed to read TLRAID data");
                return false;
            };
            auto found = m_Snapshots.find(clientId);
            if (found != m_Snapshots.end()) {
                TLR_TRACE(4,
                          "\nEM_TLRAID (UpdSnap) :   snapshot found, read RAID data update "
                          "snapshot");
                result = read(found->second);
                TLR_TRACE(4, "\nEM_TLRAID (UpdSnap) : Existing TLRaid Snapshot updated");
            } else {
                TLR_TRACE(4,
                          "\nEM_TLRAID (UpdSnap) :   snapshot not yet available, read RAID data "
                          "and create new snapshot");
                SnapshotText& text = m_Snapshots[clientId];
                text = std::make_shared<const std::string>();
                TLR_TRACE(4, "\nEM_TLRAID (UpdSnap) :   new TLRAID snapshot created");
                result = read(text);
                TLR_TRACE(3,
                          "\nEM_TLRAID (UpdSnap) : CID 0x%08X: Added TLRAID snapshot (%u "
                          "snapshots in list)",
                          clientId, static_cast<unsigned>(m_Snapshots.size()));
            }
        } catch (...) {
            TLR_TRACE(1,
                      "\nEM_TLRAID (UpdSnap) : CID 0x%08X: ERROR! Exception in GetRaidDataSnapshot",
                      clientId);
            result = false;
        }
        TLR_TRACE(4, "\nEM_TLRAID (UpdSnap) :   release snapshot lock");
    }
    TLR_TRACE(5, "\nEM_TLRAID (UpdSnap) : <- TLRaidDataUpdateSnapshot");
    return result;
}

bool EM_TLRAID::GetRaidAdapterData(CTLRaidData& doc, uint32_t clientId, uint32_t adapterIndex) {
    TLR_TRACE(3, "\nEM_TLRAID           : GetRaidAdapterData");
    CTLRaidData tree;
    if (!TLRaidDataGetSnapshot(tree, clientId))
        return false;
    return tree.GetAdapterData(doc, adapterIndex);
}

bool EM_TLRAID::ClearAllSnapshots() {
    TLR_TRACE(5, "\nEM_TLRAID::ClearAllSnapshots() - Start.");
    try {
        {
            CRecursiveLockGuard guard(m_TLRaidSnapshotLock);
            TLR_TRACE(4, "\nEM_TLRAID::ClearAllSnapshots() - m_TLRaidSnapshotLock locked.");
            m_Snapshots.clear();
        }
        TLR_TRACE(4, "\nEM_TLRAID::ClearAllSnapshots() - m_TLRaidSnapshotLock released.");
    } catch (...) {
        TLR_TRACE(1,
                  "\nEM_TLRAID::ClearAllSnapshots() - ERROR # Exception in ClearAllSnapshots()!");
        return false;
    }
    TLR_TRACE(5, "\nEM_TLRAID::ClearAllSnapshots() - End.");
    return true;
}

void EM_TLRAID::ClientDetached(uint32_t clientId) {
    TLR_TRACE(5, "\nEM_TLRAID (Detached): -> ClientDetached");
    {
        CRecursiveLockGuard guard(m_TLRaidSnapshotLock);
        try {
            TLR_TRACE(
                4,
                "\nEM_TLRAID (Detached):   snapshot lock granted, removing snapshot of client "
                "0x%08X (%d snapshots in list)...",
                clientId, static_cast<int>(m_Snapshots.size()));
            auto found = m_Snapshots.find(clientId);
            if (found != m_Snapshots.end()) {
                TLR_TRACE(4, "\nEM_TLRAID (Detached):   snapshots found, remove it");
                m_Snapshots.erase(found);
                TLR_TRACE(3,
                          "\nEM_TLRAID (Detached): Removed TLRAID snapshot for CID 0x%08X (%d "
                          "snapshots in list)",
                          clientId, static_cast<int>(m_Snapshots.size()));
            }
            TLR_TRACE(4, "\nEM_TLRAID (Detached):   release snapshot lock");
        } catch (...) {
            TLR_TRACE(1,
                      "\nEM_TLRAID (Detached): ## ERROR! EXCEPTION during TLRAID snapshot cleanup");
        }
    }
    TLR_TRACE(5, "\nEM_TLRAID (Detached): <- ClientDetached");
}

size_t EM_TLRAID::SnapshotCount() {
    CRecursiveLockGuard guard(m_TLRaidSnapshotLock);
    return m_Snapshots.size();
}
