// Enclosure states against the map: the reading of a fresh tree, the events of its changes,
// and the redundancy of a cabinet's supplies.
#include "enclosure/EnclosureStates.h"

#include <cstdlib>
#include <string>

#include "enclosure/EnclosureCodes.h"
#include "enclosure/EnclosureWalk.h"
#include "frame/CommandRecord.h"
#include "frame/SwitchProtocol.h"
#include "runtime/DebugClient.h"
#include "storage/KeepPos.h"
#include "storage/TLRaidData.h"

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

namespace {

constexpr uint32_t kFirstCabinetNumber = 800;

// One reading of the tree against the map. It reads nothing but names and states, and
// numbers the cabinets by their place under their port.
class EnclosureStatesWalk : public EnclosureWalk {
  public:
    EnclosureStatesWalk(EnclosureMap& map, std::vector<CommandRecord>& events, CXmlDoc& doc)
        : EnclosureWalk(doc, "ReadEnclosureStates   "), m_Map(map), m_Events(events) {}

  private:
    // Only an empty name is broken here; set-up is stricter.
    bool Adapter() override { return !ChildAttrib("Name").empty(); }
    void BeginPort() override { m_nCabinet = kFirstCabinetNumber; }
    void Enclosure(const std::string& sName) override;
    void Fan(uint32_t nIndex) override;
    void TempSensor(uint32_t nIndex) override;
    void PowerSupply(uint32_t nIndex) override;
    // Appends an event record; an index of 0 leaves OI out.
    void Fire(uint32_t nCode, uint32_t nIndex, uint32_t nStatus) {
        m_Events.push_back(CommandRecord(nCode, 0, nIndex, m_nCabinet, nStatus));
    }

    EnclosureMap& m_Map;
    std::vector<CommandRecord>& m_Events;
    uint32_t m_nCabinet = kFirstCabinetNumber;
};

void EnclosureStatesWalk::Enclosure(const std::string& sName) {
    // Counts of the elements met, found in the map or not.
    ProcessorCounts counts;
    if (WalkProcessor(counts)) {
        TLR_TRACE(3,
                  "\nEM_TLRAID           : ReadEnclosureStates - Enclosure = '%s', Processor "
                  "'%s': %d Fans, %d Temp Sensors, %d Power Supplies",
                  sName.c_str(), counts.sName.c_str(), counts.nFans, counts.nSensors,
                  counts.nSupplies);
    }
    ++m_nCabinet;  // every enclosure counts, accepted at set-up or not
}

void EnclosureStatesWalk::Fan(uint32_t nIndex) {
    m_Doc.IntoElem();
    const std::string sKey = MakeObjectKey(m_nCabinet, nIndex);
    FanRecord* fan = FindRecord(m_Map.m_Fans, sKey);
    std::string sText;
    if (fan && ChildText("Status", sText)) {
        const uint8_t nCode = FanStatusFromText(sText.c_str());
        ResetChild();
        if (nCode != fan->Status) {
            Fire(oc::CM_FanStatus, nIndex, nCode);
            TLR_TRACE(3,
                      "\nEM_TLRAID           : fire CM_FanStatus event, ObjectID = %d, Cabinet "
                      "= %d, Status = %d",
                      static_cast<int>(nIndex), static_cast<int>(m_nCabinet), nCode);
        }
        fan->Status = nCode;
        TLR_TRACE(4, "\nEM_TLRAID           : ReadEnclosureStates   - Fan %s (%s), status = %d",
                  sKey.c_str(), fan->Name.c_str(), nCode);
    }
    m_Doc.OutOfElem();
}

void EnclosureStatesWalk::TempSensor(uint32_t nIndex) {
    m_Doc.IntoElem();
    const std::string sKey = MakeObjectKey(m_nCabinet, nIndex);
    TempSensorRecord* sensor = FindRecord(m_Map.m_TempSensors, sKey);
    std::string sText;
    if (sensor) {
        // A temperature is stored, never compared.
        if (ChildText("Temperature", sText)) {
            sensor->Temperature = static_cast<uint8_t>(ParseNumberText(sText.c_str()));
            ResetChild();
            TLR_TRACE(4,
                      "\nEM_TLRAID           : ReadEnclosureStates   - TempSensor%s (%s), "
                      "temperature = %d",
                      sKey.c_str(), sensor->Name.c_str(), sensor->Temperature.Load());
        }
        if (ChildText("Status", sText)) {
            const uint8_t nCode = TempSensorStatusFromText(sText.c_str());
            ResetChild();
            if (nCode != sensor->Status) {
                Fire(oc::CM_TempSensorStatus, nIndex, nCode);
                TLR_TRACE(3,
                          "\nEM_TLRAID           : fire CM_TempSensorStatus event, ObjectID = "
                          "%d, Cabinet = %d, Status = %d",
                          static_cast<int>(nIndex), static_cast<int>(m_nCabinet), nCode);
            }
            sensor->Status = nCode;
            TLR_TRACE(4,
                      "\nEM_TLRAID           : ReadEnclosureStates   - TempSensor%s (%s), status "
                      "= %d",
                      sKey.c_str(), sensor->Name.c_str(), nCode);
        }
    }
    m_Doc.OutOfElem();
}

void EnclosureStatesWalk::PowerSupply(uint32_t nIndex) {
    m_Doc.IntoElem();
    const std::string sKey = MakeObjectKey(m_nCabinet, nIndex);
    PowerSupplyRecord* supply = FindRecord(m_Map.m_PowerSupplies, sKey);
    std::string sText;
    if (supply && ChildText("Status", sText)) {
        const uint8_t nCode = PowerSupplyStatusFromText(sText.c_str());
        ResetChild();
        if (nCode != supply->Status) {
            Fire(oc::CM_PowerSupplyStatus, nIndex, nCode);
            TLR_TRACE(3,
                      "\nEM_TLRAID           : fire CM_PowerSupplyStatus event, ObjectID = %d, "
                      "Cabinet = %d, Status = %d",
                      static_cast<int>(nIndex), static_cast<int>(m_nCabinet), nCode);
        }
        supply->Status = nCode;
        TLR_TRACE(4,
                  "\nEM_TLRAID           : ReadEnclosureStates   - PowerSupply %s (%s), status = "
                  "%d",
                  sKey.c_str(), supply->Name.c_str(), nCode);
    }
    // Behind every supply, known or not: so a failed supply's own event comes first.
    bool bRedundant = false, bChanged = false;
    EnclosurePSRedundancy(m_Map, m_nCabinet, bRedundant, bChanged);
    if (bChanged) {
        Fire(oc::CM_PowerSupplyRedundancy, 0, bRedundant ? 1 : 0);
        TLR_TRACE(3,
                  "\nEM_TLRAID           : fire CM_PowerSupplyRedundancy event, Cabinet = %d, "
                  "Redundancy = %d",
                  static_cast<int>(m_nCabinet), bRedundant ? 1 : 0);
    }
    m_Doc.OutOfElem();
}

}  // namespace

int ReadEnclosureStates(EnclosureMap& map, std::vector<CommandRecord>& events, CTLRaidData& doc) {
    TLR_TRACE(2, "\nEM_TLRAID           : ReadEnclosureStates");
    int nResult = 0;
    {
        CKeepPos keep(doc);
        nResult =
            EnclosureStatesWalk(map, events, doc).Run() == EnclosureWalk::Result::Broken ? 0 : 1;
    }
    if (nResult) {
        TLR_TRACE(3, "\nEM_TLRAID           : ReadEnclosureStates   - exit");
    }
    return nResult;
}
