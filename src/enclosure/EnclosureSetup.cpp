// Set-up of the enclosure map: what the shared walk meets becomes cabinets with their fans,
// sensors and supplies.
#include "enclosure/EnclosureSetup.h"

#include <cstdlib>
#include <cstring>
#include <string>

#include "enclosure/EnclosureCodes.h"
#include "enclosure/EnclosureWalk.h"
#include "runtime/DebugClient.h"
#include "storage/KeepPos.h"
#include "storage/TLRaidData.h"

namespace {

constexpr uint32_t kFirstCabinetNumber = 800;
constexpr size_t kMinAdapterNameLength = 6;

class EnclosureSetup : public EnclosureWalk {
  public:
    EnclosureSetup(EnclosureMap& map, CXmlDoc& doc)
        : EnclosureWalk(doc, "SetupEnclosureMap     "), m_Map(map) {}

    // The number of cabinets added.
    int Count() const { return m_nCount; }

  private:
    bool Adapter() override;
    void Enclosure(const std::string& sName) override;
    // Indexes are kept in eight bits, as the cabinet counts them.
    void Fan(uint32_t nIndex) override { ReadFan(static_cast<uint8_t>(nIndex)); }
    void TempSensor(uint32_t nIndex) override { ReadTempSensor(static_cast<uint8_t>(nIndex)); }
    void PowerSupply(uint32_t nIndex) override { ReadPowerSupply(static_cast<uint8_t>(nIndex)); }
    void ReadFan(uint8_t nIndex);
    void ReadTempSensor(uint8_t nIndex);
    void ReadPowerSupply(uint8_t nIndex);
    void ReadIdentity();
    bool IsDuplicate() const;
    static bool IsSupported(const std::string& sName);
    void AddCabinet(const std::string& sName, CabinetRecord& cabinet);

    EnclosureMap& m_Map;
    // Made once for the whole walk and only ever overwritten: an enclosure without one of
    // these elements shows the text of the enclosure before it.
    std::string m_sVendor;
    std::string m_sProduct;
    std::string m_sChassis;
    std::string m_sSerial;
    uint32_t m_nNextCabinet = kFirstCabinetNumber;
    uint32_t m_nCtrNr = 0;
    int m_nCount = 0;
};

bool Contains(const std::string& sText, const char* pszWord) {
    return sText.find(pszWord) != std::string::npos;
}

bool EnclosureSetup::Adapter() {
    std::string sName = ChildAttrib("Name");
    if (sName.size() < kMinAdapterNameLength) {
        return false;
    }
    TLR_TRACE(4, "\nEM_TLRAID           : SetupEnclosureMap     - controller %s", sName.c_str());
    m_nCtrNr = static_cast<uint32_t>(strtol(ChildAttrib("Nr").c_str(), nullptr, 10));
    return true;
}

void EnclosureSetup::Enclosure(const std::string& sName) {
    CabinetRecord cabinet;
    std::string sNumber;
    if (ChildText("EnclosureNumber", sNumber)) {
        cabinet.EnclosureNr = static_cast<uint32_t>(strtol(sNumber.c_str(), nullptr, 10));
    }
    ResetChild();
    ReadIdentity();
    if (ChildText("SerialNumber", m_sSerial)) {
        TLR_TRACE(4, "\nEM_TLRAID           : XMLSerialNumber %s found", m_sSerial.c_str());
        if (IsDuplicate()) {
            TLR_TRACE(2,
                      "\nEM_TLRAID           : SetupEnclosureMap     - duplicate enclosure %s "
                      "found",
                      sName.c_str());
            TLR_TRACE(3,
                      "\nEM_TLRAID           : SetupEnclosureMap - Enclosure = '%s' is "
                      "duplicate, ignored!",
                      sName.c_str());
            return;
        }
    } else {
        // Without a serial number of its own there is nothing to hold against the others.
        TLR_TRACE(2, "\nEM_TLRAID           : XMLSerialNumber not found");
    }
    if (!IsSupported(sName)) {
        TLR_TRACE(3,
                  "\nEM_TLRAID           : SetupEnclosureMap - Enclosure = '%s' found, currently "
                  "not supported!",
                  sName.c_str());
        return;
    }
    TLR_TRACE(4, "\nEM_TLRAID           : SetupEnclosureMap     - supported enclosure %s found",
              sName.c_str());
    // The child position stays behind SerialNumber: a Processor ahead of it is not found.
    ProcessorCounts counts;
    if (WalkProcessor(counts)) {
        cabinet.FanCount = static_cast<uint8_t>(counts.nFans);
        cabinet.TempSensorCount = static_cast<uint8_t>(counts.nSensors);
        cabinet.PowerSupplyCount = static_cast<uint8_t>(counts.nSupplies);
        TLR_TRACE(3,
                  "\nEM_TLRAID           : SetupEnclosureMap - Enclosure = '%s', Processor '%s': "
                  "%d Fans, %d Temp Sensors, %d Power Supplies",
                  sName.c_str(), counts.sName.c_str(), cabinet.FanCount, cabinet.TempSensorCount,
                  cabinet.PowerSupplyCount);
    }
    AddCabinet(sName, cabinet);
}

void EnclosureSetup::ReadIdentity() {
    if (ChildText("Vendor", m_sVendor)) {
        TLR_TRACE(4, "\nEM_TLRAID           : XMLVendor %s found", m_sVendor.c_str());
    }
    ResetChild();
    if (ChildText("Product", m_sProduct)) {
        TLR_TRACE(4, "\nEM_TLRAID           : XMLProduct %s found", m_sProduct.c_str());
    }
    ResetChild();
    if (ChildText("ChassisID", m_sChassis)) {
        // The line shows the product text, and comes before the suffix.
        TLR_TRACE(4, "\nEM_TLRAID           : XMLChassisID %s found", m_sProduct.c_str());
        for (const char* pszId : chassis::kSuffixedIds) {
            if (m_sChassis == pszId) {
                m_sChassis += chassis::kModelSuffix;
                break;
            }
        }
    }
    ResetChild();
}

// Two enclosures with one serial number are one enclosure seen twice; two empty ones match.
bool EnclosureSetup::IsDuplicate() const {
    for (const auto& entry : m_Map.m_Cabinets) {
        if (entry.second.SerialNumber == m_sSerial) {
            return true;
        }
    }
    return false;
}

bool EnclosureSetup::IsSupported(const std::string& sName) {
    for (const char* pszModel : chassis::kSupportedNames) {
        if (Contains(sName, pszModel)) {
            return true;
        }
    }
    return false;
}

void EnclosureSetup::ReadFan(uint8_t nIndex) {
    FanRecord fan;
    fan.Index = nIndex;
    fan.Name = ChildAttrib("Name");
    m_Doc.IntoElem();
    std::string sText;
    if (ChildText("Status", sText)) {
        fan.Status = FanStatusFromText(sText.c_str());
        ResetChild();
    }
    if (ChildText("Location", sText)) {
        fan.Location = FanLocationFromText(sText.c_str());
        ResetChild();
    }
    fan.Designation = MakeFanDesignation(nIndex + 1u);
    m_Map.m_Fans[MakeObjectKey(m_nNextCabinet, nIndex)] = fan;
    m_Doc.OutOfElem();
}

void EnclosureSetup::ReadTempSensor(uint8_t nIndex) {
    TempSensorRecord sensor;
    sensor.Index = nIndex;
    sensor.Name = ChildAttrib("Name");
    m_Doc.IntoElem();
    std::string sText;
    // Temperatures keep their low eight bits: 300 degrees read as 44.
    if (ChildText("Temperature", sText)) {
        sensor.Temperature = static_cast<uint8_t>(ParseNumberText(sText.c_str()));
        ResetChild();
    }
    if (ChildText("WarningTemperatureH", sText)) {
        sensor.WarningTemperature = static_cast<uint8_t>(ParseNumberText(sText.c_str()));
        ResetChild();
    }
    if (ChildText("CriticalTemperatureH", sText)) {
        sensor.CriticalTemperature = static_cast<uint8_t>(ParseNumberText(sText.c_str()));
        ResetChild();
    }
    if (ChildText("Location", sText)) {
        sensor.Location = TempSensorLocationFromText(sText.c_str());
        ResetChild();
    }
    if (ChildText("Status", sText)) {
        sensor.Status = TempSensorStatusFromText(sText.c_str());
        ResetChild();
    }
    m_Map.m_TempSensors[MakeObjectKey(m_nNextCabinet, nIndex)] = sensor;
    m_Doc.OutOfElem();
}

void EnclosureSetup::ReadPowerSupply(uint8_t nIndex) {
    PowerSupplyRecord supply;
    supply.Index = nIndex;
    supply.Name = ChildAttrib("Name");
    m_Doc.IntoElem();
    std::string sText;
    if (ChildText("Status", sText)) {
        supply.Status = PowerSupplyStatusFromText(sText.c_str());
        ResetChild();
    }
    m_Map.m_PowerSupplies[MakeObjectKey(m_nNextCabinet, nIndex)] = supply;
    m_Doc.OutOfElem();
}

void DeriveChassisModel(const std::string& sName, CabinetRecord& cabinet) {
    for (const chassis::ModelByName& row : chassis::kModelsByName) {
        if (Contains(sName, row.pszWord)) {
            cabinet.ChassisModel = row.pszModel;
            if (strcmp(row.pszWord, chassis::kOutsideMakerName) == 0) {
                cabinet.CabinetModel = chassis::kOutsideMakerCabinetModel;
            }
            return;
        }
    }
    cabinet.ChassisModel = chassis::kUnknownChassis;
}

void EnclosureSetup::AddCabinet(const std::string& sName, CabinetRecord& cabinet) {
    cabinet.CabinetNr = m_nNextCabinet;
    cabinet.CtrNr = m_nCtrNr;
    cabinet.PSRedundancy = false;
    cabinet.CabinetModel = m_sProduct;
    cabinet.Vendor = m_sVendor;
    cabinet.SerialNumber = m_sSerial;
    if (!m_sChassis.empty()) {
        TLR_TRACE(5, "\nEM_TLRAID           : ChassisID from TLRAID = %s", m_sChassis.c_str());
        cabinet.ChassisModel = m_sChassis;
    } else {
        DeriveChassisModel(sName, cabinet);
    }
    TLR_TRACE(3,
              "\nEM_TLRAID           : SetupEnclosureMap - SAS Enclosure 's':'%s' added to "
              "EnclosureMap",
              sName.c_str());
    TLR_TRACE(4, "\n                    :                       - CabinetModel = %s",
              cabinet.CabinetModel.c_str());
    TLR_TRACE(4, "\n                    :                       - ChassisModel = %s",
              cabinet.ChassisModel.c_str());
    TLR_TRACE(4,
              "\n                    :                       - CtrNr = %d, Enclosure = %d, "
              "SerialNumber = %s",
              static_cast<int>(cabinet.CtrNr), static_cast<int>(cabinet.EnclosureNr),
              cabinet.SerialNumber.c_str());
    TLR_TRACE(4,
              "\n                    :                       - %d Fans, %d Temp Sensors, %d Power "
              "Supplies",
              cabinet.FanCount, cabinet.TempSensorCount, cabinet.PowerSupplyCount);
    m_Map.m_Cabinets[MakeCabinetKey(m_nNextCabinet)] = cabinet;
    ++m_nNextCabinet;
    ++m_nCount;
}

}  // namespace

int SetupEnclosureMap(EnclosureMap& map, CTLRaidData& doc) {
    TLR_TRACE(5, "\nEM_TLRAID           : -> SetupEnclosureMap");
    map.m_Cabinets.clear();
    int nCount = 0;
    {
        CKeepPos keep(doc);
        EnclosureSetup setup(map, doc);
        setup.Run();
        nCount = setup.Count();
    }
    TLR_TRACE(3, "\nEM_TLRAID           : SetupEnclosureMap     - %d enclosure(s) found", nCount);
    TLR_TRACE(5, "\nEM_TLRAID           : <- SetupEnclosureMap");
    return nCount;
}
