// The two overall component statuses: all physical drives, and all batteries.
#include <cstdlib>

#include "runtime/DebugClient.h"
#include "storage/KeepPos.h"
#include "storage/StatusTables.h"
#include "storage/TLRaidData.h"

namespace {

// The multiplexer's word for the disks, as a component value.
constexpr int32_t kComponentOfThreeWay[] = {kComponentGood, kComponentWarning, kComponentFailed};

}  // namespace

bool CTLRaidData::GetPhysicalDiskOverallComponentStatus(int32_t& nStatus) {
    nStatus = kComponentNone;
    CKeepPos keep(*this);
    CTLRaidData multiplexer;
    if (!CutMultiplexer(multiplexer)) {
        return false;
    }
    // The multiplexer's own total goes first; the drives are asked only without it.
    int32_t nDisks = multiplexer.GetDisksStatus();
    if (nDisks >= kStatusOk && nDisks <= kStatusFailed) {
        nStatus = kComponentOfThreeWay[nDisks];
        return true;
    }

    bool bTaken = false;
    ResetPos();
    uint32_t nAdapters = CountAdapters();
    for (uint32_t nAdapter = 0; nAdapter < nAdapters; ++nAdapter) {
        ResetPos();
        CTLRaidData adapter;
        if (!CutAdapter(adapter, nAdapter)) {
            continue;
        }
        uint32_t nDrives = adapter.GetPhysicalDriveCount();
        for (uint32_t nDrive = 0; nDrive < nDrives; ++nDrive) {
            CTLRaidData drive;
            if (!adapter.GetPhysicalDriveData(drive, nDrive)) {
                continue;
            }
            bTaken = true;
            int32_t nValue = PhysicalDriveComponentValue(
                static_cast<uint32_t>(drive.GetPhysicalDriveStatusIndex()));
            if (nValue > nStatus) {
                nStatus = nValue;
                TLR_TRACE(3,
                          "\nCTLRaidData         : GetPhysicalDiskOverallComponentStatus - new "
                          "disk overall component status = %d",
                          nStatus);
            }
        }
    }
    return bTaken;
}

bool CTLRaidData::GetBbuOverallComponentStatus(uint32_t& nStatus) {
    nStatus = 0;
    TLR_TRACE(2, "\nCTLRaidData         : GetBbuOverallComponentStatus");
    CKeepPos keep(*this);
    if (!FindElem(kStorageTreeRoot) || !IntoElem() || !FindElem("System")) {
        return false;
    }
    bool bSeen = false;
    while (FindChildElem("Adapter")) {
        IntoElem();
        // Only the first battery of an adapter counts.
        if (FindChildElem("Battery")) {
            bSeen = true;
            int32_t nValue = static_cast<int32_t>(
                strtol(GetAttrib(GetChildPos(), "ComponentStatus").c_str(), nullptr, 10));
            if (nValue > static_cast<int32_t>(nStatus)) {
                nStatus = static_cast<uint32_t>(nValue);
                TLR_TRACE(3,
                          "\nCTLRaidData         : GetBbuOverallComponentStatus - new BBU overall "
                          "component status = %d",
                          nValue);
            }
        }
        OutOfElem();
    }
    return bSeen;
}

int32_t CTLRaidData::GetSmartFlagOfAllDrives() {
    int32_t nFlag = kNotMapped;
    CTLRaidData adapter;
    for (uint32_t a = 0; nFlag != kSmartYes && GetAdapterData(adapter, a); ++a) {
        CTLRaidData drive;
        for (uint32_t d = 0; adapter.GetPhysicalDriveData(drive, d); ++d) {
            int32_t nDriveFlag = drive.GetPhysicalDriveSmartFlag();
            if (nDriveFlag == kSmartNo) {
                nFlag = kSmartNo;
            }
            if (nDriveFlag == kSmartYes) {
                nFlag = kSmartYes;
                break;
            }
        }
    }
    return nFlag;
}
