// Any output of the host's commands and files: the PCI record parser on its lines, and, as
// the first byte chooses, one reader of a command's output (the command prints the rest).
#include <vector>

#include "FuzzKit.h"
#include "inventory/EsxiNetworkSnapshot.h"
#include "inventory/NetworkContainer.h"
#include "inventory/PciConfigList.h"
#include "inventory/PciParser.h"
#include "inventory/SystemAdapter.h"
#include "rest/RaidDaemon.h"
#include "rest/TestRestClient.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    DropTrace();
    if (size == 0)
        return 0;
    const std::string_view output = AsText(data + 1, size - 1);
    std::vector<std::string> lines(1);
    for (char c : output) {
        if (c == '\n')
            lines.emplace_back();
        else
            lines.back() += c;
    }
    PciParser parser;
    parser.Parse(lines);

    const std::string& path = WriteInputFile(output);
    const std::string cat = "cat " + path;
    switch (data[0] % 6) {
        case 0: {
            CPciConfigList list(cat, path);  // the output is Adapter.ini too
            list.ScanPciSlots(0);
            PciSlotInfo info;
            for (size_t i = 0; list.GetEntry(i, info); ++i) {
            }
            break;
        }
        case 1:
            NetworkContainer::Read(cat.c_str());
            break;
        case 2: {
            CEsxiNetworkSnapshot nics(cat);
            nics.Populate();
            CEsxiNicSnapshot nic;
            nics.FindByPciDevice("0000:03:00.0", nic);
            break;
        }
        case 3: {
            TLRAIDRestClientSettings settings;
            settings.sLsofCommand = cat;
            std::string host;
            CTestRestClient(settings).GetMainServerIpAddress(host);
            break;
        }
        case 4: {
            // The probe's line check; the daemon's own lsof names no host, so nothing is sent.
            RaidDaemonSettings settings;
            settings.sProbeCommand = cat;
            settings.rest.sLsofCommand = "true";
            CRaidDaemon(settings).ProbeRestServer(1);
            break;
        }
        default: {
            char name[32];
            GetAdapterDriverName(0, 3, 0, 0, name, sizeof(name), path.c_str());
        }
    }
    return 0;
}
