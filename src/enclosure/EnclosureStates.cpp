#include "enclosure/EnclosureStates.h"

#include "runtime/DebugClient.h"

namespace {

constexpr uint8_t kSupplyHealthy = 1;  // also what "Non Critical" reads as for a supply
constexpr uint8_t kMinRedundantSupplies = 2;

const char* TrueFalse(bool b) {
    return b ? "true" : "false";
}

void TraceResult(uint32_t nCabinet, bool bRedundant, bool bChanged) {
    TLR_TRACE(3, "\nEM_TLRAID           : EnclosurePSRedundancy, CabinetNr = %d, redundancy = %s",
              static_cast<int>(nCabinet), TrueFalse(bRedundant));
    TLR_TRACE(3, "\nEM_TLRAID           :                        bChanged = %s",
              TrueFalse(bChanged));
}

}  // namespace

int EnclosurePSRedundancy(EnclosureMap& map, uint32_t nCabinet, bool& bRedundant, bool& bChanged) {
    TLR_TRACE(3, "\nEM_TLRAID           : EnclosurePSRedundancy, CabinetNr = %d",
              static_cast<int>(nCabinet));
    bRedundant = false;
    bChanged = false;
    if (map.m_Cabinets.empty()) {
        TraceResult(nCabinet, bRedundant, bChanged);
        return 0;
    }
    CabinetRecord* cabinet = FindRecord(map.m_Cabinets, MakeCabinetKey(nCabinet));
    if (!cabinet) {
        TraceResult(nCabinet, bRedundant, bChanged);
        return 1;
    }
    TLR_TRACE(4, "\nEM_TLRaid           : cabinet %d found", static_cast<int>(nCabinet));
    uint8_t nSupplies = cabinet->PowerSupplyCount;
    bRedundant = nSupplies >= kMinRedundantSupplies;
    for (uint32_t i = 0; i < nSupplies; ++i) {
        const PowerSupplyRecord* supply =
            FindRecord(map.m_PowerSupplies, MakeObjectKey(nCabinet, i));
        if (supply && supply->Status != kSupplyHealthy) {
            bRedundant = false;
            break;
        }
    }
    if (bRedundant != cabinet->PSRedundancy) {
        bChanged = true;
        cabinet->PSRedundancy = bRedundant;
    }
    TraceResult(nCabinet, bRedundant, bChanged);
    return 1;
}
