// The MDC progress of every logical drive of the tree, for the polling thread's comparison.
#include <cstdio>
#include <cstdlib>

#include "runtime/DebugClient.h"
#include "storage/KeepPos.h"
#include "storage/TLRaidData.h"

namespace {

constexpr int16_t kNoMdc = -1;

// LogicalDrive children of the first Adapter in the document.
uint32_t CountLogicalDrives(CXmlDoc& adapter) {
    adapter.ResetPos();
    uint32_t nCount = 0;
    if (adapter.FindElem("Adapter")) {
        while (adapter.FindChildElem("LogicalDrive")) {
            ++nCount;
        }
    }
    return nCount;
}

std::string DriveKey(const std::string& sAdapterName, uint32_t nAdapter, uint32_t nDrive) {
    char szIndexes[32];
    snprintf(szIndexes, sizeof szIndexes, " A%uL%u", nAdapter, nDrive);
    return sAdapterName + szIndexes;
}

}  // namespace

std::map<std::string, int16_t> CTLRaidData::GetMDCProgressMap() {
    TLR_TRACE(5, "\nCTLRaidData::GetMDCProgressMap - Start.");
    std::map<std::string, int16_t> progress;
    // The adapters and their drives are each gone through once, in order, and cut out as the
    // cutting of one by its index would cut it.
    const uint32_t nAdapters = GetAdapterCount();
    CKeepPos keep(*this);
    if (nAdapters && FindElem(kStorageTreeRoot) && IntoElem()) {
        FindElem("System");
    }
    for (uint32_t nAdapter = 0; nAdapter < nAdapters; ++nAdapter) {
        CTLRaidData adapter;
        if (!FindChildElem("Adapter")) {
            TLR_TRACE(4, "\nCTLRaidData::GetMDCProgressMap - WARN # GetRaidAdapterData failed!");
            continue;
        }
        adapter.SetDoc(GetSubDoc(GetChildPos()));
        // The child element Name, not the attribute of that name.
        std::string sName;
        if (adapter.FindElem("Adapter") && adapter.FindChildElem("Name")) {
            sName = adapter.GetChildData();
        }
        TLR_TRACE(5, "\nCTLRaidData::GetMDCProgressMap - Check adapter '%s'", sName.c_str());
        const uint32_t nDrives = CountLogicalDrives(adapter);
        adapter.ResetPos();
        adapter.FindElem("Adapter");
        for (uint32_t nDrive = 0; nDrive < nDrives; ++nDrive) {
            CTLRaidData drive;
            if (!adapter.FindChildElem("LogicalDrive")) {
                TLR_TRACE(4,
                          "\nCTLRaidData::GetMDCProgressMap - WARN # GetRaidLogicalDriveData "
                          "failed!");
                continue;
            }
            drive.SetDoc(adapter.GetSubDoc(adapter.GetChildPos()));
            const std::string sKey = DriveKey(sName, nAdapter, nDrive);
            if (drive.FindElem("LogicalDrive") && drive.FindChildElem("MDCProgress")) {
                // Cut to 16 bits: 65535 reads as -1, the same as no MDC at all.
                const int16_t nValue = static_cast<int16_t>(
                    static_cast<uint16_t>(strtoul(drive.GetChildData().c_str(), nullptr, 10)));
                progress[sKey] = nValue;
                TLR_TRACE(3,
                          "\nCTLRaidData::GetMDCProgressMap - MDC detected on adapter %s (MDC %d)",
                          sKey.c_str(), nValue);
            } else {
                progress[sKey] = kNoMdc;
                TLR_TRACE(5, "\nCTLRaidData::GetMDCProgressMap - No MDC on %s", sKey.c_str());
            }
        }
    }
    TLR_TRACE(5, "\nCTLRaidData::GetMDCProgressMap - Exit.");
    return progress;
}
