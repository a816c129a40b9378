#include "TreeWriter.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <vector>

#include "SplitMix.h"

namespace {

// Severity of a state, as the multiplexer totals it.
enum Severity : int { kSevOk = 0, kSevWarning = 1, kSevFailed = 2 };

const char* const kSeverityWords[] = {"OK", "Warning", "Failed"};

struct DriveModel {
    const char* pszVendor;
    const char* pszProduct;
    const char* pszType;
    const char* pszSerialPrefix;
    uint64_t nSizeMB;
};

constexpr DriveModel kDriveModels[] = {
    {"HALDEN", "HS1200", "SAS", "HD", 1144641},   {"MIRAVEX", "MX4000N", "SAS", "MV", 3814697},
    {"MIRAVEX", "MX8000N", "SAS", "MV", 7630885}, {"KORVAL", "KE1600", "SAS SSD", "KE", 1526185},
    {"KORVAL", "KS960", "SATA", "KV", 915715},
};

struct EnclosureModel {
    const char* pszProduct;
    const char* pszChassis;
};

constexpr EnclosureModel kEnclosureModels[] = {
    {"VK16", "VK16"}, {"VK12 T2", "VK12T22"}, {"VK12", "VK12"}};

// A drive state that is not healthy: its word, what the multiplexer makes of it, and
// whether the drive is lost to its logical drive.
struct DriveFault {
    const char* pszStatus;
    Severity severity;
    bool bLost;
};

constexpr DriveFault kDriveFaults[] = {
    {"Failed", kSevFailed, true},
    {"Offline", kSevFailed, true},
    {"Failed (Missing)", kSevFailed, true},
    {"Rebuild necessary", kSevFailed, true},
    {"Rebuilding", kSevWarning, true},
    {"Operational SMART Error", kSevWarning, false},
    {"Global Hotspare SMART Error", kSevWarning, false},
};

const char* const kFanLocations[] = {"FEM (0)", "FEM (1)", "Power (0)", "Power (1)"};
const char* const kSensorLocations[] = {"SBB Canister (0)", "SBB Canister (1)", "Midplane left",
                                        "PSU (0) inlet"};
constexpr uint32_t kPowerSupplies = 2;

// Each kind of serial number counts on its own; a salt per kind keeps them from looking alike.
constexpr uint32_t kSaltAdapter = 0x3C000000;
constexpr uint32_t kSaltEnclosure = 0x5A000000;
constexpr uint32_t kSaltDrive = 0;

// A bijection on 32 bits: distinct counters give distinct serial numbers.
uint32_t Mix32(uint32_t x) {
    x ^= x >> 16;
    x *= 0x7FEB352Du;
    x ^= x >> 15;
    x *= 0x846CA68Bu;
    x ^= x >> 16;
    return x;
}

class TreeWriter {
  public:
    explicit TreeWriter(const GenTreeOptions& options)
        : m_Options(options),
          m_Rng(options.nSeed),
          m_nSerialKey(static_cast<uint32_t>(SplitMix(~options.nSeed).Next())) {}

    std::string Write();

  private:
    // Markup helpers; m_nDepth gives the indentation.
    void Open(const char* pszTag, const std::string& sAttribs);
    void Close(const char* pszTag);
    void Leaf(const char* pszTag, const std::string& sText);
    void Indent();

    void WriteAdapter(uint32_t nAdapter);
    void WriteEnclosure(const EnclosureModel& model, uint32_t nNumber);
    void WriteDrive(uint32_t nDevice, uint32_t nSlot, uint32_t nEnclosure);
    void WriteLogicalDrives(uint32_t nDrives);
    void WriteBattery();
    std::string Serial(const char* pszPrefix, uint32_t nSalt, uint32_t nCounter) const;
    Severity Worse(Severity a, Severity b) { return std::max(a, b); }

    const GenTreeOptions& m_Options;
    SplitMix m_Rng;
    uint32_t m_nSerialKey;
    std::string m_sOut;
    int m_nDepth = 0;

    // Per adapter: the drive model, and for each drive its logical drive's loss count.
    const DriveModel* m_pModel = nullptr;
    uint32_t m_nDrivesPerLogical = 0;
    std::vector<uint32_t> m_aLost;  // lost members per logical drive
    uint32_t m_nDriveOfAdapter = 0;

    // Counters across the tree, for serial numbers.
    uint32_t m_nDriveSerials = 0;
    uint32_t m_nEnclosureSerials = 0;

    // Totals for the multiplexer.
    Severity m_DisksState = kSevOk;
    Severity m_LogicalState = kSevOk;
    Severity m_AdaptersState = kSevOk;
};

void TreeWriter::Indent() {
    m_sOut.append(static_cast<size_t>(m_nDepth) * 2, ' ');
}

void TreeWriter::Open(const char* pszTag, const std::string& sAttribs) {
    Indent();
    m_sOut += '<';
    m_sOut += pszTag;
    m_sOut += sAttribs;
    m_sOut += ">\n";
    ++m_nDepth;
}

void TreeWriter::Close(const char* pszTag) {
    --m_nDepth;
    Indent();
    m_sOut += "</";
    m_sOut += pszTag;
    m_sOut += ">\n";
}

void TreeWriter::Leaf(const char* pszTag, const std::string& sText) {
    Indent();
    m_sOut += '<';
    m_sOut += pszTag;
    m_sOut += '>';
    m_sOut += sText;
    m_sOut += "</";
    m_sOut += pszTag;
    m_sOut += ">\n";
}

std::string TreeWriter::Serial(const char* pszPrefix, uint32_t nSalt, uint32_t nCounter) const {
    char sz[32];
    snprintf(sz, sizeof sz, "%s%08" PRIX32, pszPrefix, Mix32(nCounter ^ m_nSerialKey ^ nSalt));
    return sz;
}

std::string TreeWriter::Write() {
    // The adapters go first into the text; the multiplexer, which totals them, is put in
    // front of them at the end.
    m_nDepth = 2;
    for (uint32_t n = 0; n < m_Options.nAdapters; ++n) {
        WriteAdapter(n);
    }
    std::string sAdapters;
    sAdapters.swap(m_sOut);

    char szHead[512];
    // The options go into a comment in words: a comment may not hold two hyphens in a row.
    snprintf(szHead, sizeof szHead,
             "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
             "<!-- Generated by gen-tree: adapters %u, ports %u, enclosures %u, drives %u, "
             "port drives %u, logical drives %u, batteries %u, faults %u%%, seed %" PRIu64 " -->\n",
             m_Options.nAdapters, m_Options.nPorts, m_Options.nEnclosures, m_Options.nDrives,
             m_Options.nPortDrives, m_Options.nLogicalDrives, m_Options.nBatteries,
             m_Options.nFaultPercent, m_Options.nSeed);
    m_sOut.reserve(sAdapters.size() + 1024);
    m_sOut = szHead;
    m_nDepth = 0;
    Open("amEMTL", " Version=\"2\"");
    Open("System", "");
    Open("Multiplexer", " NrOfProperties=\"5\"");
    Severity overall = Worse(Worse(m_DisksState, m_LogicalState), m_AdaptersState);
    Leaf("Status", "Operational");
    Leaf("StatusOverall", kSeverityWords[overall]);
    Leaf("StatusAdapters", kSeverityWords[m_AdaptersState]);
    Leaf("StatusDisks", kSeverityWords[m_DisksState]);
    Leaf("StatusLogicalDrives", kSeverityWords[m_LogicalState]);
    Close("Multiplexer");
    m_sOut += sAdapters;
    Close("System");
    Close("amEMTL");
    return std::move(m_sOut);
}

void TreeWriter::WriteAdapter(uint32_t nAdapter) {
    const GenTreeOptions& o = m_Options;
    m_pModel = &kDriveModels[m_Rng.Below(std::size(kDriveModels))];
    uint32_t nDrives = o.nPorts * (o.nPortDrives + o.nEnclosures * o.nDrives);
    m_nDrivesPerLogical = o.nLogicalDrives ? nDrives / o.nLogicalDrives : 0;
    m_aLost.assign(o.nLogicalDrives, 0);
    m_nDriveOfAdapter = 0;

    uint32_t nBus = 24 + nAdapter * 8;
    std::string sName = "TL RAID EP580e (" + std::to_string(nAdapter) + ")";
    Open("Adapter", " Type=\"SAS\" Nr=\"" + std::to_string(nAdapter) + "\" Name=\"" + sName +
                        "\" NrOfProperties=\"8\"");
    Leaf("Status", "OK");
    Leaf("Name", "TL RAID EP580e");
    Leaf("FirmwareVersion", "5.140.00-3319");
    Leaf("SerialNumber", Serial("SKB", kSaltAdapter, nAdapter));
    Leaf("PCIBus", std::to_string(nBus % 256));
    Leaf("PCIDevice", "0");
    Leaf("PCIFunction", "0");
    Leaf("PCISegment", std::to_string(nBus / 256));
    if (o.nPorts) {
        Open("Ports", "");
        uint32_t nDevice = 0;
        for (uint32_t nPort = 0; nPort < o.nPorts; ++nPort) {
            std::string sNr = std::to_string(nPort);
            Open("Port", " Type=\"SAS\" Nr=\"" + sNr + "\" DeviceNumber=\"" + sNr +
                             "\" NrOfProperties=\"2\"");
            Leaf("Name", "Port " + sNr);
            Leaf("LinkSpeed", "12 Gb/s");
            for (uint32_t n = 0; n < o.nPortDrives; ++n) {
                WriteDrive(nDevice++, n, 0);
            }
            for (uint32_t nEnc = 0; nEnc < o.nEnclosures; ++nEnc) {
                uint32_t nNumber = nPort * o.nEnclosures + nEnc + 1;
                const EnclosureModel& model =
                    kEnclosureModels[nNumber % std::size(kEnclosureModels)];
                Open("Enclosure", std::string(" Name=\"Orlane ") + model.pszProduct +
                                      " JBOD\" NrOfProperties=\"7\"");
                WriteEnclosure(model, nNumber);
                for (uint32_t n = 0; n < o.nDrives; ++n) {
                    WriteDrive(nDevice++, n, nNumber);
                }
                Close("Enclosure");
            }
            Close("Port");
        }
        Close("Ports");
    }
    WriteLogicalDrives(nDrives);
    for (uint32_t n = 0; n < o.nBatteries; ++n) {
        WriteBattery();
    }
    Close("Adapter");
}

void TreeWriter::WriteEnclosure(const EnclosureModel& model, uint32_t nNumber) {
    uint32_t nFaults = m_Options.nFaultPercent;
    Severity state = kSevOk;

    // The parts are written first into a string of their own: the enclosure's Status, which
    // totals them, stands in front of them.
    std::string sHead;
    sHead.swap(m_sOut);
    ++m_nDepth;
    for (uint32_t n = 0; n < std::size(kFanLocations); ++n) {
        const char* pszStatus = "OK";
        if (m_Rng.Chance(nFaults)) {
            pszStatus = m_Rng.Below(2) ? "Critical" : "Non Critical";
            state = Worse(state, *pszStatus == 'C' ? kSevFailed : kSevWarning);
        }
        Open("Fan", " Name=\"Fan " + std::to_string(n + 1) + "\" NrOfProperties=\"3\"");
        Leaf("Status", pszStatus);
        Leaf("Location", kFanLocations[n]);
        Leaf("Speed", std::to_string(5000 + m_Rng.Below(3000)));
        Close("Fan");
    }
    for (uint32_t n = 0; n < std::size(kSensorLocations); ++n) {
        uint32_t nTemp = 22 + m_Rng.Below(16);
        const char* pszStatus = "OK";
        if (m_Rng.Chance(nFaults)) {
            nTemp += 25;
            pszStatus = "Non Critical";
            state = Worse(state, kSevWarning);
        }
        Open("TemperatureSensor",
             " Name=\"Sensor " + std::to_string(n + 1) + "\" NrOfProperties=\"5\"");
        Leaf("Temperature", std::to_string(nTemp));
        Leaf("WarningTemperatureH", "45");
        Leaf("CriticalTemperatureH", "60");
        Leaf("Location", kSensorLocations[n]);
        Leaf("Status", pszStatus);
        Close("TemperatureSensor");
    }
    for (uint32_t n = 0; n < kPowerSupplies; ++n) {
        const char* pszStatus = "OK";
        if (m_Rng.Chance(nFaults)) {
            pszStatus = "Critical";
            state = Worse(state, kSevWarning);
        }
        Open("PowerSupply",
             " Name=\"Power Supply " + std::to_string(n) + "\" NrOfProperties=\"1\"");
        Leaf("Status", pszStatus);
        Close("PowerSupply");
    }
    --m_nDepth;
    std::string sParts;
    sParts.swap(m_sOut);
    m_sOut.swap(sHead);

    Leaf("EnclosureNumber", std::to_string(nNumber));
    Leaf("Status", kSeverityWords[state]);
    Leaf("Vendor", "ORLANE");
    Leaf("Product", model.pszProduct);
    Leaf("ChassisID", model.pszChassis);
    Leaf("SerialNumber", Serial("VKA", kSaltEnclosure, m_nEnclosureSerials++));
    Leaf("FirmwareVersion", "0207");
    Open("Processor", " Name=\"SES Processor\" NrOfProperties=\"1\"");
    Leaf("Status", "OK");
    m_sOut += sParts;
    Close("Processor");
}

void TreeWriter::WriteDrive(uint32_t nDevice, uint32_t nSlot, uint32_t nEnclosure) {
    const DriveModel& model = *m_pModel;
    uint32_t nIndex = m_nDriveOfAdapter++;
    uint32_t nLogical = m_nDrivesPerLogical ? nIndex / m_nDrivesPerLogical : UINT32_MAX;
    bool bMember = nLogical < m_Options.nLogicalDrives;

    const char* pszStatus =
        bMember ? "Operational" : (m_Rng.Below(2) ? "Global Hotspare" : "Available");
    if (m_Rng.Chance(m_Options.nFaultPercent)) {
        const DriveFault& fault = kDriveFaults[m_Rng.Below(std::size(kDriveFaults))];
        pszStatus = fault.pszStatus;
        m_DisksState = Worse(m_DisksState, fault.severity);
        if (bMember && fault.bLost) {
            ++m_aLost[nLogical];
        }
    }
    std::string sDevice = std::to_string(nDevice);
    Open("PhysicalDrive",
         " DeviceNumber=\"" + sDevice + "\" NrOfProperties=\"" + (nEnclosure ? "10" : "9") + "\"");
    Leaf("Name", std::string(model.pszVendor) + " " + model.pszProduct + " (" + sDevice + ")");
    Leaf("Status", pszStatus);
    Leaf("Type", model.pszType);
    Leaf("Vendor", model.pszVendor);
    Leaf("Product", model.pszProduct);
    Leaf("SerialNumber", Serial(model.pszSerialPrefix, kSaltDrive, m_nDriveSerials++));
    Leaf("FirmwareVersion", "N004");
    if (nEnclosure) {
        Leaf("EnclosureNumber", std::to_string(nEnclosure));
    }
    Leaf("Slot", std::to_string(nSlot));
    Leaf("PhysicalSize", std::to_string(model.nSizeMB));
    if (bMember) {
        Open("Layout", "");
        Indent();
        m_sOut += "<LogicalDrive LogDriveNumber=\"" + std::to_string(nLogical) +
                  "\" NrOfProperties=\"0\"/>\n";
        Close("Layout");
    }
    Close("PhysicalDrive");
}

void TreeWriter::WriteLogicalDrives(uint32_t nDrives) {
    uint32_t nMembers = m_nDrivesPerLogical;
    for (uint32_t nLogical = 0; nLogical < m_Options.nLogicalDrives; ++nLogical) {
        // The RAID level follows from the number of members; the state from those lost.
        const char* pszLevel = "RAID-0";
        uint64_t nData = nMembers;
        uint32_t nRedundancy = 0;
        if (nMembers == 2) {
            pszLevel = "RAID-1";
            nData = 1;
            nRedundancy = 1;
        } else if (nMembers >= 4 && m_Rng.Below(2)) {
            pszLevel = "RAID-6";
            nData = nMembers - 2;
            nRedundancy = 2;
        } else if (nMembers >= 3) {
            pszLevel = "RAID-5";
            nData = nMembers - 1;
            nRedundancy = 1;
        }
        uint32_t nLost = m_aLost.empty() ? 0 : m_aLost[nLogical];
        const char* pszStatus = "Operational";
        if (nMembers == 0) {
            pszStatus = "Failed";  // no drive left for it
        } else if (nLost > nRedundancy) {
            pszStatus = "Failed";
        } else if (nLost > 0) {
            pszStatus = (nRedundancy == 2 && nLost == 1) ? "Partially degraded" : "Degraded";
        }
        Severity state = *pszStatus == 'F' ? kSevFailed : *pszStatus == 'O' ? kSevOk : kSevWarning;
        m_LogicalState = Worse(m_LogicalState, state);

        bool bCheck = state == kSevOk && m_Rng.Below(4) == 0;
        std::string sNr = std::to_string(nLogical);
        Open("LogicalDrive",
             " LogDriveNumber=\"" + sNr + "\" NrOfProperties=\"" + (bCheck ? "6" : "5") + "\"");
        Leaf("Name", "Volume " + sNr);
        Leaf("Status", pszStatus);
        Leaf("RAIDLevel", pszLevel);
        Leaf("LogicalSize", std::to_string(nData * m_pModel->nSizeMB));
        Leaf("StripeSize", "256");
        if (bCheck) {
            Leaf("MDCProgress", std::to_string(m_Rng.Below(100)));
        }
        if (nMembers) {
            Open("Layout", "");
            Open("Container", " Nr=\"0\" Name=\"Span 0\" NrOfProperties=\"0\"");
            uint32_t nFirst = nLogical * nMembers;
            for (uint32_t n = nFirst; n < nFirst + nMembers && n < nDrives; ++n) {
                Indent();
                m_sOut += "<PhysicalDrive DeviceNumber=\"" + std::to_string(n) +
                          "\" NrOfProperties=\"0\"/>\n";
            }
            Close("Container");
            Close("Layout");
        }
        Close("LogicalDrive");
    }
}

void TreeWriter::WriteBattery() {
    const char* pszStatus = "Normal";
    const char* pszComponent = "1";
    const char* pszAdditional = m_Rng.Below(10) ? "Fully charged" : "Learn Cycle Requested";
    if (m_Rng.Chance(m_Options.nFaultPercent)) {
        static const char* const kStates[] = {"Charging", "Temperature Problem", "Failed",
                                              "Warning"};
        pszStatus = kStates[m_Rng.Below(std::size(kStates))];
        pszComponent = *pszStatus == 'C' ? "2" : "3";
        pszAdditional = m_Rng.Below(2) ? "Learn Cycle Failed" : "Learn Cycle Timeout";
        m_AdaptersState = Worse(m_AdaptersState, kSevWarning);
    }
    Open("Battery", std::string(" ComponentStatus=\"") + pszComponent + "\" NrOfProperties=\"4\"");
    Leaf("Name", "Cache Backup Unit CBU-4");
    Leaf("Status", pszStatus);
    Leaf("AdditionalStatus", pszAdditional);
    Leaf("Temperature", std::to_string(24 + m_Rng.Below(14)));
    Close("Battery");
}

}  // namespace

std::string WriteTree(const GenTreeOptions& options) {
    return TreeWriter(options).Write();
}
