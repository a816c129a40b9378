// Physical drives of an adapter across the six layouts: counting, cutting, indexing.
#include "storage/KeepPos.h"
#include "storage/TLRaidData.h"

namespace {

// Layouts with a single element holding the drives, after the port and channel lists.
constexpr const char* kSinglePortLayouts[] = {"SASPort", "SATAPort", "SCSIChannel"};

// Visits the PhysicalDrive children of main; true when the visitor ended the walk.
template <class Visit>
bool VisitDriveChildren(CXmlDoc& doc, const Visit& visit) {
    while (doc.FindChildElem("PhysicalDrive")) {
        if (visit(doc.GetChildPos())) {
            return true;
        }
    }
    return false;
}

}  // namespace

void CTLRaidData::WalkDrives(const Visitor& visit, bool bPortListOnly) {
    if (!FindElem("Adapter")) {
        return;
    }
    IntoElem();
    if (FindElem("Ports")) {
        IntoElem();
        // Port by port: the port's own drives first, then those of its enclosures.
        while (FindElem("Port")) {
            if (VisitDriveChildren(*this, visit)) {
                return;
            }
            SetPos(GetParentPos(), GetMainPos(), 0);
            while (FindChildElem("Enclosure")) {
                IntoElem();
                if (VisitDriveChildren(*this, visit)) {
                    return;
                }
                OutOfElem();
            }
        }
        return;
    }
    if (bPortListOnly) {
        return;
    }
    if (FindElem("Channels")) {
        IntoElem();
        while (FindElem("Channel")) {
            if (VisitDriveChildren(*this, visit)) {
                return;
            }
        }
        return;
    }
    for (const char* pszLayout : kSinglePortLayouts) {
        if (FindElem(pszLayout)) {
            VisitDriveChildren(*this, visit);
            return;
        }
    }
    // Flat: the drives stand among the adapter's own children.
    while (FindElem("PhysicalDrive")) {
        if (visit(GetMainPos())) {
            return;
        }
    }
}

uint32_t CTLRaidData::GetPhysicalDriveCount() {
    CKeepPos keep(*this);
    uint32_t nCount = 0;
    WalkDrives(
        [&nCount](uint32_t) {
            ++nCount;
            return false;
        },
        false);
    return nCount;
}

bool CTLRaidData::GetPhysicalDriveData(CXmlDoc& out, uint32_t nIndex) {
    CKeepPos keep(*this);
    uint32_t nCount = 0;
    uint32_t iFound = 0;
    WalkDrives(
        [&](uint32_t iPos) {
            if (nCount++ == nIndex) {
                iFound = iPos;
                return true;
            }
            return false;
        },
        false);
    if (!iFound) {
        return false;
    }
    out.SetDoc(GetSubDoc(iFound));
    return true;
}

bool CTLRaidData::GetPhysicalDriveIndex(uint32_t& nIndex, CXmlDoc& drive) {
    std::string sWanted;
    {
        CKeepPos keepDrive(drive);
        if (!drive.FindElem("PhysicalDrive") || !drive.FindChildElem("SerialNumber")) {
            return false;
        }
        sWanted = drive.GetChildData();
    }
    CKeepPos keep(*this);
    // Only drives with a serial number take a number here.
    uint32_t nCount = 0;
    bool bFound = false;
    WalkDrives(
        [&](uint32_t) {
            IntoElem();
            bool bHasSerial = FindChildElem("SerialNumber");
            std::string sSerial = bHasSerial ? GetChildData() : std::string();
            OutOfElem();
            if (!bHasSerial) {
                return false;
            }
            if (sSerial == sWanted) {
                bFound = true;
                return true;
            }
            ++nCount;
            return false;
        },
        true);
    if (bFound) {
        nIndex = nCount;
    }
    return bFound;
}
