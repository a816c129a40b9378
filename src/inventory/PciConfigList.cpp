#include "inventory/PciConfigList.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

#include "inventory/InventoryHost.h"
#include "inventory/PciParser.h"
#include "runtime/DebugClient.h"
#include "runtime/Pipe.h"
#include "runtime/ProfileFile.h"

namespace {

constexpr size_t kLineBytes = 200;  // a longer line of the list arrives as two
constexpr size_t kNameBytes = 260;
constexpr uint32_t kInterruptNone = 255;

std::string Hex4(uint32_t value) {
    char text[16];
    snprintf(text, sizeof(text), "%04X", value);
    return text;
}

// Cut at the first ';', then leading and trailing whitespace.
std::string Cleaned(const char* answer) {
    std::string text(answer);
    text.erase(std::min(text.find(';'), text.size()));
    const char* blanks = " \t\r\n\v\f";
    size_t first = text.find_first_not_of(blanks);
    if (first == std::string::npos)
        return std::string();
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

bool CanOpen(const std::string& path) {
    FilePtr file(fopen(path.c_str(), "r"));
    return file != nullptr;
}

}  // namespace

CPciConfigList::CPciConfigList()
    : CPciConfigList(inventory_host::kPciListCommand, inventory_host::kAdapterIni) {}

CPciConfigList::CPciConfigList(std::string command, std::string adapterIni)
    : m_sCommand(std::move(command)), m_sAdapterIni(std::move(adapterIni)) {}

bool CPciConfigList::ScanPciSlots(int /*unused*/) {
    PipePtr pipe(popen(m_sCommand.c_str(), "re"));
    if (!pipe)
        return false;
    std::vector<std::string> lines;
    char line[kLineBytes];
    while (fgets(line, sizeof(line), pipe.get())) {
        if (strcmp(line, "\n") != 0) {
            lines.emplace_back(line);
            continue;
        }
        // A blank line ends a record; one without a blank line behind it is never parsed.
        PciParser parser;
        if (parser.Parse(lines))
            AddRecord(parser);
        else
            TLR_TRACE(1, "\n CPciConfigList::ScanPciSlots: Configuration not readed properly.");
        lines.clear();
    }
    return true;
}

void CPciConfigList::AddRecord(const PciParser& parser) {
    const PciParser::Record& r = parser.Get();
    PciSlotInfo info;
    info.address.nDomain = static_cast<uint16_t>(r.nDomain);
    info.address.nBus = static_cast<uint8_t>(r.nBus);
    info.address.nSlot = static_cast<uint8_t>(r.nSlot);
    info.address.nFunction = static_cast<uint8_t>(r.nFunction);
    info.nVendorId = static_cast<uint16_t>(r.nVendorId);
    info.nDeviceId = static_cast<uint16_t>(r.nDeviceId);
    info.nRevision = static_cast<uint8_t>(r.nRevision);
    info.nProgInterface = static_cast<uint8_t>(r.nProgInterface);
    info.nSubClass = r.SubClass();
    info.nBaseClass = r.BaseClass();
    info.nSubVendorId = static_cast<uint16_t>(r.nSubVendorId);
    info.nSubDeviceId = static_cast<uint16_t>(r.nSubDeviceId);
    info.nExtra1 = static_cast<uint8_t>(r.nNumbers[0]);
    info.nExtra2 = static_cast<uint8_t>(r.nNumbers[3]);
    info.nInterrupt = r.nInterrupt == kInterruptNone ? PciSlotInfo::kNoInterrupt : r.nInterrupt;
    info.sText1 = r.sLine25;
    info.sText3 = r.sLine29;
    const PciAddress& a = info.address;

    TLR_TRACE(5, "\nBASECLASSX(%u): %04x:%02x:%02x.%x", info.nBaseClass, a.nDomain, a.nBus, a.nSlot,
              a.nFunction);
    TLR_TRACE(5, "\nPCI PARSER pci.getVendorId() = %d", info.nVendorId);
    TLR_TRACE(5, "\nPCI PARSER pci.getSubVendorId() = %d", info.nSubVendorId);
    TLR_TRACE(5, "\nPCI PARSER pci.getDeviceId() = %d", info.nDeviceId);
    TLR_TRACE(5, "\nPCI PARSER pci.getSubDeviceId() = %d", info.nSubDeviceId);
    std::string name =
        IniDeviceName(info.nVendorId, info.nSubVendorId, info.nDeviceId, info.nSubDeviceId);
    info.sDeviceName = name.empty() ? r.sDeviceName : name;
    TLR_TRACE(5, "\nPCI PARSER original device_name = %s", r.sDeviceName.c_str());
    TLR_TRACE(5, "\nPCI PARSER device_name = %s", info.sDeviceName.c_str());
    TLR_TRACE(5,
              "\nPCI PARSER: %04x:%02x:%02x.%x\t0x%04x\t0x%04x\t0x%02x\t0x%02x\t0x%04x\t0x%04x\t"
              "0x%02x\t0x%02x\t%u\t%s\t%s\t%s",
              a.nDomain, a.nBus, a.nSlot, a.nFunction, info.nVendorId, info.nDeviceId,
              info.nBaseClass, info.nSubClass, info.nSubVendorId, info.nSubDeviceId, info.nRevision,
              info.nProgInterface, info.nInterrupt, info.sText1.c_str(), info.sDeviceName.c_str(),
              info.sText3.c_str());

    CRecursiveLockGuard guard(m_Lock);
    m_Map[info.address] = info;
}

std::string CPciConfigList::IniDeviceName(uint16_t vendorId, uint16_t subVendorId,
                                          uint16_t deviceId, uint16_t subDeviceId) const {
    if (!CanOpen(m_sAdapterIni))
        return std::string();
    const char* path = m_sAdapterIni.c_str();
    const std::string vendor = Hex4(vendorId);
    const std::string subVendor = subVendorId != 0 ? Hex4(subVendorId) : std::string();
    char answer[kNameBytes];
    // Asks the vendor's section for a device key; the vendor's own name is looked up too,
    // though nothing uses it.
    auto lookup = [&](const std::string& key) {
        if (!GetPrivateProfileString(subVendor.c_str(), "Vendor", "", answer, sizeof(answer),
                                     path)) {
            GetPrivateProfileString(vendor.c_str(), "Vendor", "", answer, sizeof(answer), path);
        }
        GetPrivateProfileString(vendor.c_str(), key.c_str(), "", answer, sizeof(answer), path);
        return Cleaned(answer);
    };
    std::string name;
    if (subDeviceId != 0)
        name = lookup(Hex4(deviceId) + Hex4(subDeviceId));
    if (name.empty())
        name = lookup(Hex4(deviceId));
    return name;
}

size_t CPciConfigList::GetCount() {
    CRecursiveLockGuard guard(m_Lock);
    return m_Map.size();
}

bool CPciConfigList::GetEntry(size_t index, PciSlotInfo& out) {
    CRecursiveLockGuard guard(m_Lock);
    auto it = m_Map.begin();
    for (size_t i = 0; i < index && it != m_Map.end(); ++i)
        ++it;
    if (it == m_Map.end())
        return false;
    out = it->second;
    return true;
}

bool CPciConfigList::Find(const PciAddress& address, PciSlotInfo& out) {
    CRecursiveLockGuard guard(m_Lock);
    auto it = m_Map.find(address);
    if (it == m_Map.end())
        return false;
    out = it->second;
    return true;
}
