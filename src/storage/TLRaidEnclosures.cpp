// Enclosures of an adapter's port list, numbered by the first appearance of their number.
#include <cstdlib>
#include <set>

#include "storage/KeepPos.h"
#include "storage/TLRaidData.h"

namespace {

// The EnclosureNumber child of a drive or enclosure document; its positions stay as they are.
bool ReadEnclosureNumber(CXmlDoc& doc, const char* pszRoot, unsigned long& nNumber) {
    CKeepPos keep(doc);
    if (!doc.FindElem(pszRoot) || !doc.FindChildElem("EnclosureNumber")) {
        return false;
    }
    nNumber = strtoul(doc.GetChildData().c_str(), nullptr, 10);
    return true;
}

}  // namespace

uint32_t CTLRaidData::WalkEnclosures(
    const std::function<bool(uint32_t nIndex, long nNumber)>& visit) {
    if (!FindElem("Adapter") || !IntoElem() || !FindElem("Ports") || !IntoElem()) {
        return 0;
    }
    // The same enclosure can be reached through several ports: its number tells.
    std::set<long> seen;
    while (FindElem("Port")) {
        while (FindChildElem("Enclosure")) {
            IntoElem();
            if (FindChildElem("EnclosureNumber")) {
                long nNumber = strtol(GetChildData().c_str(), nullptr, 10);
                if (seen.insert(nNumber).second &&
                    visit(static_cast<uint32_t>(seen.size() - 1), nNumber)) {
                    return static_cast<uint32_t>(seen.size());
                }
            }
            OutOfElem();
        }
    }
    return static_cast<uint32_t>(seen.size());
}

uint32_t CTLRaidData::GetEnclosureCount() {
    CKeepPos keep(*this);
    return WalkEnclosures([](uint32_t, long) { return false; });
}

bool CTLRaidData::GetEnclosureData(CXmlDoc& out, uint32_t nIndex) {
    CKeepPos keep(*this);
    uint32_t iFound = 0;
    WalkEnclosures([&](uint32_t nAt, long) {
        if (nAt == nIndex) {
            iFound = GetMainPos();
            return true;
        }
        return false;
    });
    if (!iFound) {
        return false;
    }
    out.SetDoc(GetSubDoc(iFound));
    return true;
}

bool CTLRaidData::IndexOfEnclosureNumber(uint32_t& nIndex, unsigned long nWanted) {
    CKeepPos keep(*this);
    bool bFound = false;
    WalkEnclosures([&](uint32_t nAt, long nNumber) {
        if (static_cast<unsigned long>(nNumber) == nWanted) {
            nIndex = nAt;
            bFound = true;
        }
        return bFound;
    });
    return bFound;
}

bool CTLRaidData::GetEnclosureIndexOfDrive(uint32_t& nIndex, CXmlDoc& drive) {
    unsigned long nWanted = 0;
    return ReadEnclosureNumber(drive, "PhysicalDrive", nWanted) &&
           IndexOfEnclosureNumber(nIndex, nWanted);
}

bool CTLRaidData::GetEnclosureIndex(uint32_t& nIndex, CXmlDoc& enclosure) {
    unsigned long nWanted = 0;
    return ReadEnclosureNumber(enclosure, "Enclosure", nWanted) &&
           IndexOfEnclosureNumber(nIndex, nWanted);
}
