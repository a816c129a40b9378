#include "inventory/EsxiNetworkSnapshot.h"

#include <strings.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

#include "inventory/InventoryHost.h"
#include "runtime/DebugClient.h"
#include "runtime/Pipe.h"

namespace {

constexpr size_t kLineBytes = 1024;
constexpr size_t kColumns = 10;

// The comma-separated fields of a line; empty fields vanish, and the last keeps its newline.
std::vector<std::string> Fields(const std::string& line) {
    std::vector<std::string> fields;
    size_t start = line.find_first_not_of(',');
    while (start != std::string::npos) {
        size_t end = line.find_first_of(',', start);
        fields.push_back(line.substr(start, end == std::string::npos ? end : end - start));
        start = end == std::string::npos ? end : line.find_first_not_of(',', end);
    }
    return fields;
}

long Number(const std::string& text) {
    return strtol(text.c_str(), nullptr, 10);
}

}  // namespace

CEsxiNetworkSnapshot::CEsxiNetworkSnapshot()
    : CEsxiNetworkSnapshot(inventory_host::kNicSnapshotCommand) {}

CEsxiNetworkSnapshot::CEsxiNetworkSnapshot(std::string command) : m_sCommand(std::move(command)) {}

void CEsxiNetworkSnapshot::Populate() {
    TLR_TRACE(2, "\nCEsxiNicSnapshot::Populate started!");
    PipePtr pipe(popen(m_sCommand.c_str(), "r"));
    if (!pipe) {
        TLR_TRACE(2, "\nCEsxiNetworkSnapshot::Populate Failed to open command!");
        m_tLastPopulate = time(nullptr);
        return;
    }
    char line[kLineBytes];
    while (fgets(line, sizeof(line), pipe.get())) {
        std::vector<std::string> f = Fields(line);
        if (f.size() != kColumns) {
            // A description that holds a comma makes more fields: that NIC is lost.
            TLR_TRACE(2, "\nCEsxiNetworkSnapshot::Populate Failed to parse line!");
            continue;
        }
        CEsxiNicSnapshot nic;
        nic.sName = f[0];
        nic.sPciDevice = f[1];
        nic.sColumn3 = f[2];
        nic.sColumn4 = f[3];
        nic.sColumn5 = f[4];
        nic.nColumn6 = Number(f[5]);
        nic.sColumn7 = f[6];
        nic.sMacAddress = f[7];
        nic.nColumn9 = Number(f[8]);
        nic.sDescription = f[9];
        m_Records.push_back(std::move(nic));
    }
    pipe.reset();
    m_tLastPopulate = time(nullptr);
}

bool CEsxiNetworkSnapshot::FindByPciDevice(const char* pciDevice, CEsxiNicSnapshot& out) const {
    bool found = false;
    for (const CEsxiNicSnapshot& nic : m_Records) {
        if (strcasecmp(nic.sPciDevice.c_str(), pciDevice) == 0) {
            out = nic;
            found = true;
        }
    }
    return found;
}
