// The walk from the storage tree's root to the enclosures behind the adapters' SAS ports.
#include "enclosure/EnclosureWalk.h"

#include <cstdlib>

#include "runtime/DebugClient.h"
#include "storage/TLRaidData.h"
#include "xml/XmlDoc.h"

namespace {

constexpr char kPortsVersion1[] = "1";  // this version has SASPort elements under Adapter
constexpr char kSasPortType[] = "SAS";
constexpr char kReadyStatus[] = "Operational";

}  // namespace

EnclosureWalk::Result EnclosureWalk::Run() {
    if (!m_Doc.FindElem(kStorageTreeRoot)) {
        return Result::NoTree;
    }
    m_sVersion = m_Doc.GetAttrib(m_Doc.GetMainPos(), "Version");
    m_Doc.IntoElem();
    std::string sStatus;
    // The positions are restored by the caller, so a missing element just ends the walk.
    if (!m_Doc.FindElem("System") || !m_Doc.FindChildElem("Multiplexer") || !m_Doc.IntoElem() ||
        !ChildText("Status", sStatus)) {
        return Result::NoTree;
    }
    TLR_TRACE(4, "\nEM_TLRAID           : %s- Multiplexer status %s", m_pszName, sStatus.c_str());
    if (sStatus != kReadyStatus) {
        TLR_TRACE(2, "\nEM_TLRAID           : %s- stopped, because TLRaid is not ready", m_pszName);
        return Result::NotReady;
    }
    m_Doc.OutOfElem();
    ResetChild();
    while (m_Doc.FindChildElem("Adapter")) {
        if (!Adapter()) {
            TLR_TRACE(1, "\nEM_TLRAID           : %s- ERROR: broken data returned from TLRaid",
                      m_pszName);
            return Result::Broken;
        }
        m_Doc.IntoElem();
        ResetChild();
        Ports();
        m_Doc.OutOfElem();
    }
    return Result::Done;
}

void EnclosureWalk::Ports() {
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
            TLR_TRACE(4, "\nEM_TLRAID           : %s- SAS port %d (Encl)", m_pszName,
                      static_cast<int>(strtol(ChildAttrib("Nr").c_str(), nullptr, 10)));
        }
        m_Doc.IntoElem();
        BeginPort();
        while (m_Doc.FindChildElem("Enclosure")) {
            const std::string sName = ChildAttrib("Name");
            m_Doc.IntoElem();
            Enclosure(sName);
            m_Doc.OutOfElem();
        }
        m_Doc.OutOfElem();
    }
    if (bInPorts) {
        m_Doc.OutOfElem();
    }
}

bool EnclosureWalk::WalkProcessor(ProcessorCounts& counts) {
    if (!m_Doc.FindChildElem("Processor")) {
        return false;
    }
    counts.sName = ChildAttrib("Name");
    m_Doc.IntoElem();
    while (m_Doc.FindChildElem("Fan")) {
        Fan(static_cast<uint32_t>(counts.nFans++));
    }
    ResetChild();
    while (m_Doc.FindChildElem("TemperatureSensor")) {
        TempSensor(static_cast<uint32_t>(counts.nSensors++));
    }
    ResetChild();
    while (m_Doc.FindChildElem("PowerSupply")) {
        PowerSupply(static_cast<uint32_t>(counts.nSupplies++));
    }
    m_Doc.OutOfElem();
    return true;
}

bool EnclosureWalk::ChildText(const char* pszName, std::string& sText) {
    if (!m_Doc.FindChildElem(pszName)) {
        return false;
    }
    sText = m_Doc.GetChildData();
    return true;
}

void EnclosureWalk::ResetChild() {
    m_Doc.SetPos(m_Doc.GetParentPos(), m_Doc.GetMainPos(), 0);
}

std::string EnclosureWalk::ChildAttrib(const char* pszName) const {
    return m_Doc.GetAttrib(m_Doc.GetChildPos(), pszName);
}
