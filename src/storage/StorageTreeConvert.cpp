#include "storage/StorageTreeConvert.h"

#include <climits>
#include <cstdlib>
#include <utility>
#include <vector>

#include "storage/StorageExport.h"
#include "storage/TLRaidData.h"

namespace {

// Clients expect exactly these entries, "Enlosure" included: the tree's Enclosure elements
// don't match the three entries that name it, and are arrays only where several stand
// together. An entry matches only where every level of the path is the first of its name.
const ArrayList kArrayList = {
    "/TLRaidStorageDeviceTree/System/Adapter",
    "/TLRaidStorageDeviceTree/System/Adapter/LogicalDrive",
    "/TLRaidStorageDeviceTree/System/Adapter/LogicalDrive/Layout/Container",
    "/TLRaidStorageDeviceTree/System/Adapter/LogicalDrive/Layout/Container/PhysicalDrive",
    "/TLRaidStorageDeviceTree/System/Adapter/Port",
    "/TLRaidStorageDeviceTree/System/Adapter/Port/Enlosure",
    "/TLRaidStorageDeviceTree/System/Adapter/Port/Enlosure/PhysicalDrive",
    "/TLRaidStorageDeviceTree/System/Adapter/Port/Enlosure/PhysicalDrive/Layout/LogicalDrive",
};

// An index by its prefix: "0x" hexadecimal, a leading "0" octal, otherwise decimal.
long long ReadIndex(const std::string& sIndex) {
    int nBase = 10;
    if (sIndex.size() >= 3 && sIndex[0] == '0' && (sIndex[1] == 'x' || sIndex[1] == 'X')) {
        nBase = 16;
    } else if (sIndex.size() >= 2 && sIndex[0] == '0') {
        nBase = 8;
    }
    return strtoll(sIndex.c_str(), nullptr, nBase);
}

std::vector<std::string> SplitPath(const std::string& sPath) {
    std::vector<std::string> aPieces;
    size_t nStart = 0;
    while (nStart <= sPath.size()) {
        size_t nEnd = sPath.find('/', nStart);
        if (nEnd == std::string::npos) {
            nEnd = sPath.size();
        }
        if (nEnd > nStart) {
            aPieces.push_back(sPath.substr(nStart, nEnd - nStart));
        }
        nStart = nEnd + 1;
    }
    return aPieces;
}

}  // namespace

const ArrayList& StorageTreeArrayList() {
    return kArrayList;
}

bool ConvertStorageTree(CXmlDoc& doc, std::string& sOut, int nFormat) {
    if (!doc.IsWellFormed()) {
        return true;
    }
    if (nFormat == kStorageTreeXml) {
        sOut = doc.GetDoc();
        return !sOut.empty();
    }
    if (nFormat == kStorageTreeJson) {
        return XmlToJSON(sOut, doc, kArrayList, true, true, false);
    }
    return true;
}

bool ExportStorageTree(CXmlDoc& tree, int nFormat, std::string& sOut) {
    std::string sText;
    if (!WriteStorageDeviceTree(tree, sText)) {
        return true;
    }
    if (nFormat == kStorageTreeXml) {
        // The exported tree has one root and is always well formed: its text is the answer.
        sOut = std::move(sText);
        return true;
    }
    CTLRaidData exported;
    exported.SetDoc(sText);
    return ConvertStorageTree(exported, sOut, nFormat);
}

bool GetValueByPath(CXmlDoc& tree, std::string& sValue, const char* pszPath, int nMode) {
    if (!pszPath || !*pszPath || nMode != kPathMustExist) {
        return false;
    }
    const std::vector<std::string> aPieces = SplitPath(pszPath);
    if (aPieces.empty()) {
        return false;
    }
    tree.SavePos("");
    tree.ResetPos();
    if (!tree.FindElem(kStorageTreeRoot)) {
        tree.RestorePos("");
        return false;
    }
    bool bFound = false;
    for (const std::string& sPiece : aPieces) {
        std::string sName = sPiece;
        long long nCount = 1;
        const size_t nOpen = sPiece.find('[');
        const size_t nClose = sPiece.rfind(']');
        if (nOpen != std::string::npos && nClose != std::string::npos && nClose > nOpen) {
            sName = sPiece.substr(0, nOpen);
            const long long nIndex = ReadIndex(sPiece.substr(nOpen + 1, nClose - nOpen - 1));
            nCount = nIndex < LLONG_MAX ? nIndex + 1 : nIndex;
        }
        // "[n]" is the n+1-th search for the name. A search that fails leaves the positions
        // as they are, so every further one would fail the same way.
        for (long long n = 0; n < nCount; ++n) {
            bFound = tree.FindChildElem(sName.c_str());
            if (!bFound) {
                break;
            }
        }
        if (!bFound) {
            tree.RestorePos("");
            return false;
        }
        tree.IntoElem();
    }
    // The child position is empty after IntoElem: the walk tells that the path exists.
    sValue = tree.GetChildData();
    return true;
}
