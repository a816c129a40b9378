// The property reads: any named child of a sub-document's root, as text (the list of names
// is open: clients name what they want); and the fixed texts, numbers and counts of objects.
#include <cstdlib>

#include "storage/KeepPos.h"
#include "storage/TLRaidData.h"

namespace {

bool ReadProperty(CTLRaidData& doc, const char* pszRoot, std::string& sValue, const char* pszName) {
    if (!pszName || !*pszName) {
        return false;
    }
    CKeepPos keep(doc);
    if (!doc.FindElem(pszRoot) || !doc.FindChildElem(pszName)) {
        return false;
    }
    sValue = doc.GetChildData();
    return true;
}

// A child's text read as a base 10 number.
bool ReadNumber(CTLRaidData& doc, const char* pszRoot, const char* pszChild, uint64_t& nValue) {
    std::string sText;
    if (!ReadProperty(doc, pszRoot, sText, pszChild)) {
        return false;
    }
    nValue = strtoul(sText.c_str(), nullptr, 10);
    return true;
}

// The children of that name of the Adapter, or of its container child when one is named.
uint32_t CountAdapterChildren(CTLRaidData& doc, const char* pszContainer, const char* pszChild) {
    CKeepPos keep(doc);
    if (!doc.FindElem("Adapter")) {
        return 0;
    }
    if (pszContainer && !(doc.FindChildElem(pszContainer) && doc.IntoElem())) {
        return 0;
    }
    uint32_t nCount = 0;
    while (doc.FindChildElem(pszChild)) {
        ++nCount;
    }
    return nCount;
}

}  // namespace

bool CTLRaidData::GetPhysicalDriveProperty(std::string& sValue, const char* pszName) {
    return ReadProperty(*this, "PhysicalDrive", sValue, pszName);
}

bool CTLRaidData::GetPortProperty(std::string& sValue, const char* pszName) {
    return ReadProperty(*this, "Port", sValue, pszName);
}

bool CTLRaidData::GetLogicalDriveProperty(std::string& sValue, const char* pszName) {
    return ReadProperty(*this, "LogicalDrive", sValue, pszName);
}

bool CTLRaidData::GetBatteryProperty(std::string& sValue, const char* pszName) {
    return ReadProperty(*this, "Battery", sValue, pszName);
}

bool CTLRaidData::GetEnclosureProperty(std::string& sValue, const char* pszName) {
    return ReadProperty(*this, "Enclosure", sValue, pszName);
}

bool CTLRaidData::GetAdapterProperty(std::string& sValue, const char* pszName) {
    return ReadProperty(*this, "Adapter", sValue, pszName);
}

bool CTLRaidData::GetName(std::string& sName) {
    return ReadProperty(*this, nullptr, sName, "Name");
}

bool CTLRaidData::GetPhysicalDriveSize(uint64_t& nSize) {
    return ReadNumber(*this, "PhysicalDrive", "PhysicalSize", nSize);
}

bool CTLRaidData::GetLogicalDriveSize(uint64_t& nSize) {
    return ReadNumber(*this, "LogicalDrive", "LogicalSize", nSize);
}

bool CTLRaidData::GetLogicalDrivePhysicalSize(uint64_t& nSize) {
    return ReadNumber(*this, "LogicalDrive", "PhysicalSize", nSize);
}

bool CTLRaidData::GetLogicalDriveRaidLevel(std::string& sLevel) {
    return ReadProperty(*this, "LogicalDrive", sLevel, "RAIDLevel");
}

uint32_t CTLRaidData::GetLogicalDriveCount() {
    return CountAdapterChildren(*this, nullptr, "LogicalDrive");
}

uint32_t CTLRaidData::GetBatteryCount() {
    return CountAdapterChildren(*this, nullptr, "Battery");
}

uint32_t CTLRaidData::GetPortCount() {
    return CountAdapterChildren(*this, "Ports", "Port");
}
