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
    WalkDrivesOfAllAdapters([&](uint32_t iDrive) {
        bTaken = true;
        std::string sWord;
        uint32_t nIndex = static_cast<uint32_t>(kNotMapped);
        if (ReadDriveStatus(iDrive, sWord)) {
            PhysicalDriveStatusToIndex(sWord.c_str(), nIndex);
        }
        int32_t nValue = PhysicalDriveComponentValue(nIndex);
        if (nValue > nStatus) {
            nStatus = nValue;
            TLR_TRACE(3,
                      "\nCTLRaidData         : GetPhysicalDiskOverallComponentStatus - new "
                      "disk overall component status = %d",
                      nStatus);
        }
        return false;
    });
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
    CKeepPos keep(*this);
    WalkDrivesOfAllAdapters([&](uint32_t iDrive) {
        std::string sWord;
        int32_t nDriveFlag = ReadDriveStatus(iDrive, sWord)
                                 ? PhysicalDriveSmartFlagFromText(sWord.c_str())
                                 : kNotMapped;
        if (nDriveFlag == kSmartNo) {
            nFlag = kSmartNo;
        }
        if (nDriveFlag == kSmartYes) {
            nFlag = kSmartYes;
            return true;
        }
        return false;
    });
    return nFlag;
}

void CTLRaidData::WalkDrivesOfAllAdapters(const Visitor& visit) {
    if (!FindElem(kStorageTreeRoot) || !IntoElem() || !FindElem("System")) {
        return;
    }
    const uint32_t iSystem = GetMainPos();
    bool bEnded = false;
    const Visitor visitUntilEnded = [&](uint32_t iDrive) { return bEnded = visit(iDrive); };
    // WalkDrives takes the next Adapter behind the main position, as in the adapter's own
    // document it takes the root.
    for (uint32_t iPrevious = 0; !bEnded;) {
        SetPos(iSystem, iPrevious, 0);
        if (!FindElem("Adapter")) {
            return;
        }
        const uint32_t iAdapter = GetMainPos();
        SetPos(iSystem, iPrevious, 0);
        WalkDrives(visitUntilEnded, false);
        iPrevious = iAdapter;
    }
}

bool CTLRaidData::ReadDriveStatus(uint32_t iDrive, std::string& sWord) {
    const uint32_t iParent = GetParentPos(), iMain = GetMainPos(), iChild = GetChildPos();
    SetPos(GetRecord(iDrive).iElemParent, iDrive, 0);
    const bool bFound = FindChildElem("Status");
    if (bFound) {
        sWord = GetChildData();
    }
    SetPos(iParent, iMain, iChild);
    return bFound;
}
