// The five property reads: any named child of a sub-document's root, as text. The list of
// names is open: clients name what they want.
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
