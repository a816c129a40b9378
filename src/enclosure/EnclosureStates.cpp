// Enclosure states against the map: the reading of a fresh tree, the events of its changes,
// and the redundancy of a cabinet's supplies.
#include "enclosure/EnclosureStates.h"

#include <cstdlib>
#include <string>

#include "enclosure/EnclosureCodes.h"
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
constexpr char kPortsVersion1[] = "1";  // this version has SASPort elements under Adapter
constexpr char kSasPortType[] = "SAS";
constexpr char kReadyStatus[] = "Operational";

// One reading of the tree against the map. The walk is that of set-up, but it reads nothing
// but names and states, and numbers the cabinets by their place under their port.
class EnclosureStatesWalk {
  public:
    EnclosureStatesWalk(EnclosureMap& map, std::vector<CommandRecord>& events, CXmlDoc& doc)
        : m_Map(map), m_Events(events), m_Doc(doc) {}

    // 1, or 0 for broken data.
    int Run();

  private:
    // False on broken data.
    bool Adapter();
    void Enclosure();
    void Fan(uint32_t nIndex);
    void TempSensor(uint32_t nIndex);
    void PowerSupply(uint32_t nIndex);
    // Appends an event record; an index of 0 leaves OI out.
    void Fire(uint32_t nCode, uint32_t nIndex, uint32_t nStatus) {
        m_Events.push_back(CommandRecord(nCode, 0, nIndex, m_nCabinet, nStatus));
    }

    bool ChildText(const char* pszName, std::string& sText) {
        if (!m_Doc.FindChildElem(pszName)) {
            return false;
        }
        sText = m_Doc.GetChildData();
        return true;
    }
    void ResetChild() { m_Doc.SetPos(m_Doc.GetParentPos(), m_Doc.GetMainPos(), 0); }
    std::string ChildAttrib(const char* pszName) const {
        return m_Doc.GetAttrib(m_Doc.GetChildPos(), pszName);
    }

    EnclosureMap& m_Map;
    std::vector<CommandRecord>& m_Events;
    CXmlDoc& m_Doc;
    std::string m_sVersion;
    uint32_t m_nCabinet = kFirstCabinetNumber;
};

int EnclosureStatesWalk::Run() {
    if (!m_Doc.FindElem("amEMTL")) {
        return 1;
    }
    m_sVersion = m_Doc.GetAttrib(m_Doc.GetMainPos(), "Version");
    m_Doc.IntoElem();
    std::string sStatus;
    // The positions are restored by the caller, so a missing element just ends the walk.
    if (!m_Doc.FindElem("System") || !m_Doc.FindChildElem("Multiplexer") || !m_Doc.IntoElem() ||
        !ChildText("Status", sStatus)) {
        return 1;
    }
    TLR_TRACE(4, "\nEM_TLRAID           : ReadEnclosureStates   - Multiplexer status %s",
              sStatus.c_str());
    if (sStatus != kReadyStatus) {
        TLR_TRACE(2,
                  "\nEM_TLRAID           : ReadEnclosureStates   - stopped, because TLRaid is "
                  "not ready");
        return 1;
    }
    m_Doc.OutOfElem();
    ResetChild();
    while (m_Doc.FindChildElem("Adapter")) {
        if (!Adapter()) {
            return 0;
        }
    }
    return 1;
}

bool EnclosureStatesWalk::Adapter() {
    // Only an empty name is broken here; set-up is stricter.
    if (ChildAttrib("Name").empty()) {
        TLR_TRACE(1,
                  "\nEM_TLRAID           : ReadEnclosureStates   - ERROR: broken data returned "
                  "from TLRaid");
        return false;
    }
    m_Doc.IntoElem();
    ResetChild();
    const bool bVersion1 = m_sVersion == kPortsVersion1;
    bool bInPorts = false;
    if (!bVersion1 && m_Doc.FindChildElem("Ports")) {
        m_Doc.IntoElem();
        bInPorts = true;
    }
    while (m_Doc.FindChildElem(bVersion1 ? "SASPort" : "Port")) {
        if (!bVersion1) {
            // The first port of another type ends this adapter's ports, SAS ports behind it too.
            if (ChildAttrib("Type") != kSasPortType) {
                break;
            }
            TLR_TRACE(4, "\nEM_TLRAID           : ReadEnclosureStates   - SAS port %d (Encl)",
                      static_cast<int>(strtol(ChildAttrib("Nr").c_str(), nullptr, 10)));
        }
        m_Doc.IntoElem();
        m_nCabinet = kFirstCabinetNumber;
        while (m_Doc.FindChildElem("Enclosure")) {
            Enclosure();
            ++m_nCabinet;  // every enclosure counts, accepted at set-up or not
        }
        m_Doc.OutOfElem();
    }
    if (bInPorts) {
        m_Doc.OutOfElem();
    }
    ResetChild();
    m_Doc.OutOfElem();
    return true;
}

void EnclosureStatesWalk::Enclosure() {
    const std::string sName = ChildAttrib("Name");
    m_Doc.IntoElem();
    if (m_Doc.FindChildElem("Processor")) {
        const std::string sProcessor = ChildAttrib("Name");
        m_Doc.IntoElem();
        // Counts of the elements met, found in the map or not.
        int nFans = 0, nSensors = 0, nSupplies = 0;
        while (m_Doc.FindChildElem("Fan")) {
            Fan(nFans++);
        }
        ResetChild();
        while (m_Doc.FindChildElem("TemperatureSensor")) {
            TempSensor(nSensors++);
        }
        ResetChild();
        while (m_Doc.FindChildElem("PowerSupply")) {
            PowerSupply(nSupplies++);
        }
        m_Doc.OutOfElem();
        TLR_TRACE(3,
                  "\nEM_TLRAID           : ReadEnclosureStates - Enclosure = '%s', Processor "
                  "'%s': %d Fans, %d Temp Sensors, %d Power Supplies",
                  sName.c_str(), sProcessor.c_str(), nFans, nSensors, nSupplies);
    }
    m_Doc.OutOfElem();
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
        nResult = EnclosureStatesWalk(map, events, doc).Run();
    }
    if (nResult) {
        TLR_TRACE(3, "\nEM_TLRAID           : ReadEnclosureStates   - exit");
    }
    return nResult;
}
