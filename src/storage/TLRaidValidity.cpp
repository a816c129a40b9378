// IsValid: whether a storage tree is usable at all.
#include <cstring>

#include "runtime/DebugClient.h"
#include "storage/KeepPos.h"
#include "storage/TLRaidData.h"

namespace {

// The multiplexer status of a tree that the RAID manager has finished building.
constexpr const char* kMultiplexerReady = "Operational";
// An adapter that is still starting up makes the whole tree unusable.
constexpr const char* kAdapterStarting = "Initializing";
// The version of the first tree format, which is refused.
constexpr const char* kRefusedVersion = "1";

}  // namespace

bool CTLRaidData::IsValid(CXmlDoc& doc) {
    CKeepPos keep(doc);
    bool bWellFormed = doc.IsWellFormed();
    TLR_TRACE(5, "\nCTLRaidData         : IsValid(), %s",
              bWellFormed ? "well formed" : "not well formed");
    if (!bWellFormed && doc.GetResult().find(CXmlDoc::kStartTagTooLong) != std::string::npos) {
        TLR_TRACE(1, "\nCTLRaidData         : Warning! A start tag of 4 MiB or more, tree refused");
    }
    if (!bWellFormed || !doc.FindElem(kStorageTreeRoot)) {
        return false;
    }

    std::string sVersion = doc.GetAttrib(doc.GetMainPos(), "Version");
    TLR_TRACE(5, "\nCTLRaidData         : amEMTLVersion, %s", sVersion.c_str());
    if (sVersion.empty() || sVersion == kRefusedVersion) {
        return false;
    }
    TLR_TRACE(5, "\nCTLRaidData         : amEMTLVersion != 1");

    if (!doc.IntoElem() || !doc.FindElem("System") || !doc.FindChildElem("Multiplexer") ||
        !doc.IntoElem() || !doc.FindChildElem("Status")) {
        return false;
    }
    std::string sStatus = doc.GetChildData();
    TLR_TRACE(5, "\nCTLRaidData         : Multiplexer status: \"%s\"", sStatus.c_str());
    if (sStatus != kMultiplexerReady) {
        return false;
    }
    doc.OutOfElem();

    // Back to the first child of System: the adapters follow in any order with the
    // multiplexer.
    doc.SetPos(doc.GetParentPos(), doc.GetMainPos(), 0);
    while (doc.FindChildElem("Adapter")) {
        doc.IntoElem();
        if (doc.FindChildElem("Status")) {
            std::string sAdapter = doc.GetChildData();
            TLR_TRACE(5, "\nCTLRaidData         : Adapter status: \"%s\"", sAdapter.c_str());
            if (sAdapter == kAdapterStarting) {
                return false;
            }
        }
        doc.OutOfElem();
    }
    return true;
}
