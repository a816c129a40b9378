// Cutting sub-documents out of the tree or out of an adapter, and the adapter's PCI address.
#include <cstdlib>

#include "storage/KeepPos.h"
#include "storage/TLRaidData.h"

namespace {

// The layouts that name one port element of their own, in the order they are tested.
constexpr const char* kSinglePortLayouts[] = {"SASPort", "SATAPort", "SCSIChannel"};

// Moves the child position to the nIndex-th child of that name under main.
bool FindNthChild(CXmlDoc& doc, const char* pszName, uint32_t nIndex) {
    for (uint32_t n = 0; n <= nIndex; ++n) {
        if (!doc.FindChildElem(pszName)) {
            return false;
        }
    }
    return true;
}

// Reads a child's text as a base 10 number; false when there is no such child.
bool ReadChildNumber(CXmlDoc& doc, const char* pszName, long& nValue) {
    if (!doc.FindChildElem(pszName)) {
        return false;
    }
    nValue = strtol(doc.GetChildData().c_str(), nullptr, 10);
    return true;
}

}  // namespace

bool CTLRaidData::CutMultiplexer(CXmlDoc& out) {
    if (!FindElem(kStorageTreeRoot) || !IntoElem() || !FindElem("System") ||
        !FindChildElem("Multiplexer")) {
        return false;
    }
    out.SetDoc(GetSubDoc(GetChildPos()));
    return true;
}

uint32_t CTLRaidData::CountAdapters() {
    if (!FindElem(kStorageTreeRoot) || !IntoElem() || !FindElem("System")) {
        return 0;
    }
    uint32_t nCount = 0;
    while (FindChildElem("Adapter")) {
        ++nCount;
    }
    return nCount;
}

bool CTLRaidData::CutAdapter(CXmlDoc& out, uint32_t nIndex) {
    if (!FindElem(kStorageTreeRoot) || !IntoElem() || !FindElem("System") ||
        !FindNthChild(*this, "Adapter", nIndex)) {
        return false;
    }
    out.SetDoc(GetSubDoc(GetChildPos()));
    return true;
}

bool CTLRaidData::GetMultiplexerData(CXmlDoc& out) {
    CKeepPos keep(*this);
    return CutMultiplexer(out);
}

uint32_t CTLRaidData::GetAdapterCount() {
    CKeepPos keep(*this);
    return CountAdapters();
}

bool CTLRaidData::GetAdapterData(CXmlDoc& out, uint32_t nIndex) {
    CKeepPos keep(*this);
    return CutAdapter(out, nIndex);
}

bool CTLRaidData::GetAdapterPciAddress(AdapterPciAddress& address) {
    CKeepPos keep(*this);
    if (!FindElem("Adapter")) {
        return false;
    }
    // The children are searched forward only, in this order.
    long nBus = 0, nDevice = 0, nFunction = 0, nSegment = 0;
    if (!ReadChildNumber(*this, "PCIBus", nBus) || !ReadChildNumber(*this, "PCIDevice", nDevice)) {
        return false;
    }
    ReadChildNumber(*this, "PCIFunction", nFunction);
    ReadChildNumber(*this, "PCISegment", nSegment);
    address.nBus = static_cast<uint8_t>(nBus);
    address.nDevice = static_cast<uint8_t>(nDevice);
    address.nFunction = static_cast<uint8_t>(nFunction);
    address.nSegment = static_cast<uint16_t>(nSegment);
    return true;
}

bool CTLRaidData::GetPortData(CXmlDoc& out, uint32_t nIndex) {
    CKeepPos keep(*this);
    if (!FindElem("Adapter")) {
        return false;
    }
    IntoElem();
    if (FindElem("Ports")) {
        if (!FindNthChild(*this, "Port", nIndex)) {
            return false;
        }
        out.SetDoc(GetSubDoc(GetChildPos()));
        return true;
    }
    if (FindElem("Channels")) {
        if (!FindNthChild(*this, "Channel", nIndex)) {
            return false;
        }
        out.SetDoc(GetSubDoc(GetChildPos()));
        return true;
    }
    // A single port element is handed out, but answers "no port": callers that test the
    // result treat these layouts as having no ports.
    for (const char* pszLayout : kSinglePortLayouts) {
        if (FindElem(pszLayout)) {
            out.SetDoc(GetSubDoc(GetMainPos()));
            return false;
        }
    }
    return false;
}

bool CTLRaidData::GetRaidLogicalDriveData(CXmlDoc& out, uint32_t nIndex) {
    CKeepPos keep(*this);
    if (!FindElem("Adapter") || !FindNthChild(*this, "LogicalDrive", nIndex)) {
        return false;
    }
    out.SetDoc(GetSubDoc(GetChildPos()));
    return true;
}

bool CTLRaidData::GetBatteryData(CXmlDoc& out, uint32_t nIndex) {
    CKeepPos keep(*this);
    // Only the first battery of an adapter is reachable.
    if (nIndex != 0 || !FindElem("Adapter") || !FindChildElem("Battery")) {
        return false;
    }
    out.SetDoc(GetSubDoc(GetChildPos()));
    return true;
}
