// The getters that read one word of a sub-document and turn it into a number.
#include <strings.h>

#include "storage/KeepPos.h"
#include "storage/StatusTables.h"
#include "storage/TLRaidData.h"

bool CTLRaidData::ReadChildText(const char* pszRoot, const char* pszChild, std::string& sText) {
    if (!FindElem(pszRoot) || !FindChildElem(pszChild)) {
        return false;
    }
    sText = GetChildData();
    return true;
}

int32_t CTLRaidData::ReadThreeWay(const char* pszRoot, const char* pszChild) {
    CKeepPos keep(*this);
    std::string sWord;
    return ReadChildText(pszRoot, pszChild, sWord) ? ThreeWayStatusFromText(sWord.c_str())
                                                   : kNotMapped;
}

void CTLRaidData::PhysicalDriveStatusToIndex(const char* pszStatus, uint32_t& nIndex) {
    nIndex = static_cast<uint32_t>(PhysicalDriveStatusIndexFromText(pszStatus));
}

int32_t CTLRaidData::GetPhysicalDriveStatusIndex() {
    CKeepPos keep(*this);
    std::string sWord;
    if (!ReadChildText("PhysicalDrive", "Status", sWord)) {
        return kNotMapped;
    }
    uint32_t nIndex = 0;
    PhysicalDriveStatusToIndex(sWord.c_str(), nIndex);
    return static_cast<int32_t>(nIndex);
}

int32_t CTLRaidData::GetPhysicalDriveStatus() {
    CKeepPos keep(*this);
    std::string sWord;
    return ReadChildText("PhysicalDrive", "Status", sWord)
               ? PhysicalDriveStatusCodeFromText(sWord.c_str())
               : kNotMapped;
}

int32_t CTLRaidData::GetPhysicalDriveSmartFlag() {
    CKeepPos keep(*this);
    std::string sWord;
    return ReadChildText("PhysicalDrive", "Status", sWord)
               ? PhysicalDriveSmartFlagFromText(sWord.c_str())
               : kNotMapped;
}

int32_t CTLRaidData::GetPhysicalDriveType() {
    CKeepPos keep(*this);
    std::string sWord;
    return ReadChildText("PhysicalDrive", "Type", sWord) ? PhysicalDriveTypeFromText(sWord.c_str())
                                                         : kNotMapped;
}

int32_t CTLRaidData::GetLogicalDriveStatus() {
    CKeepPos keep(*this);
    std::string sWord;
    return ReadChildText("LogicalDrive", "Status", sWord)
               ? LogicalDriveStatusFromText(sWord.c_str())
               : kNotMapped;
}

int32_t CTLRaidData::GetBatteryStatus() {
    CKeepPos keep(*this);
    std::string sWord;
    // Only a missing element gives -1: an unknown word reads as normal.
    return ReadChildText("Battery", "Status", sWord) ? BatteryStatusFromText(sWord.c_str())
                                                     : kNotMapped;
}

int32_t CTLRaidData::GetBatteryLearnCycleStatus() {
    CKeepPos keep(*this);
    if (!FindElem("Battery")) {
        return kLcNoWord;
    }
    // By priority, not by position: one pass over all AdditionalStatus children per word.
    bool bAnyWord = false;
    for (const StatusWord& pass : kLearnCycleWords) {
        SetPos(GetParentPos(), GetMainPos(), 0);
        while (FindChildElem("AdditionalStatus")) {
            bAnyWord = true;
            if (strcasecmp(GetChildData().c_str(), pass.pszWord) == 0) {
                return pass.nValue;
            }
        }
    }
    return bAnyWord ? kNotMapped : kLcNoWord;
}

int32_t CTLRaidData::GetEnclosureStatus() {
    return ReadThreeWay("Enclosure", "Status");
}

int32_t CTLRaidData::GetAdapterStatus() {
    return ReadThreeWay("Adapter", "Status");
}

int32_t CTLRaidData::GetAdapterType() {
    CKeepPos keep(*this);
    if (!FindElem("Adapter")) {
        return kNotMapped;
    }
    // An absent attribute reads as the empty text, which no row takes.
    return AdapterTypeFromText(GetAttrib(GetMainPos(), "Type").c_str());
}

int32_t CTLRaidData::GetOverallStatus() {
    return ReadThreeWay("Multiplexer", "StatusOverall");
}

int32_t CTLRaidData::GetAdaptersStatus() {
    return ReadThreeWay("Multiplexer", "StatusAdapters");
}

int32_t CTLRaidData::GetDisksStatus() {
    return ReadThreeWay("Multiplexer", "StatusDisks");
}

int32_t CTLRaidData::GetLogicalDrivesStatus() {
    return ReadThreeWay("Multiplexer", "StatusLogicalDrives");
}
