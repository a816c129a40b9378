#include "Inventory.h"

#include <cstdio>
#include <string>

#include "ExitStatus.h"
#include "InventoryJson.h"
#include "ModuleStart.h"
#include "StorageState.h"
#include "TextTable.h"
#include "frame/ExtensionModule.h"

namespace {

constexpr uint32_t kClientId = 1;

// The ids of the host's PCI device at the adapter's address, each in hex or the status
// that came instead.
std::string PciIds(const AdapterState& adapter) {
    std::string line;
    for (size_t i = 0; i < std::size(kPciIdKinds); ++i) {
        const Reply& r = adapter.pciIds[i];
        char hex[24];
        snprintf(hex, sizeof hex, "0x%04llX", static_cast<unsigned long long>(r.number));
        line += std::string(line.empty() ? "" : ", ") + kPciIdKinds[i].name + " " +
                (r.Ok() ? hex : ModuleClient::NoAnswer(r.status));
    }
    return line;
}

void PrintAdapter(const AdapterState& s, uint32_t a, const Palette& palette) {
    printf("\nAdapter %u: %s\n", a, Shown(s.name).c_str());
    printf("  type %s, status %s, PCI device id %s\n", s.type.Shown().c_str(),
           palette.Paint(s.status.Shown(), s.status.SeverityOf()).c_str(),
           Shown(s.deviceId).c_str());
    printf("  PCI ids: %s\n", PciIds(s).c_str());

    TextTable drives({"#", "name", "type", "status", "SMART", "size"});
    for (size_t d = 0; d < s.drives.size(); ++d) {
        const DriveState& drive = s.drives[d];
        drives.Add({std::to_string(d), Shown(drive.name), drive.type.Shown(),
                    StatusCell(drive.status), StatusCell(drive.smart), Shown(drive.size, " MB")});
    }
    TextTable logical({"#", "name", "status", "RAID level", "size", "physical size"});
    for (size_t l = 0; l < s.logicalDrives.size(); ++l) {
        const LogicalDriveState& drive = s.logicalDrives[l];
        logical.Add({std::to_string(l), Shown(drive.name), StatusCell(drive.status),
                     Shown(drive.raidLevel), Shown(drive.size, " MB"),
                     Shown(drive.physicalSize, " MB")});
    }
    TextTable batteries({"#", "name", "status", "learn cycle"});
    for (size_t b = 0; b < s.batteries.size(); ++b) {
        const BatteryState& battery = s.batteries[b];
        batteries.Add({std::to_string(b), Shown(battery.name), StatusCell(battery.status),
                       StatusCell(battery.learnCycle)});
    }
    TextTable ports({"#", "name"});
    for (size_t p = 0; p < s.ports.size(); ++p)
        ports.Add({std::to_string(p), Shown(s.ports[p])});
    TextTable enclosures({"#", "name", "status"});
    for (size_t e = 0; e < s.enclosures.size(); ++e) {
        enclosures.Add(
            {std::to_string(e), Shown(s.enclosures[e].name), StatusCell(s.enclosures[e].status)});
    }
    const std::pair<const char*, const TextTable*> sections[] = {{"Physical drives", &drives},
                                                                 {"Logical drives", &logical},
                                                                 {"Batteries", &batteries},
                                                                 {"Ports", &ports},
                                                                 {"Enclosures", &enclosures}};
    for (const auto& [title, table] : sections) {
        if (table->Empty()) {
            printf("  %s: none\n", title);
        } else {
            printf("  %s:\n", title);
            table->Print(stdout, "    ", palette);
        }
    }
}

}  // namespace

TextTable::Cell StatusCell(const Coded& status) {
    return TextTable::Cell(status.Shown(), status.SeverityOf());
}

void PrintStorage(const StorageState& state, const Palette& palette) {
    if (!state.adapterCount.Ok()) {
        printf("\nNo storage tree: the module answers %s.\n",
               ModuleClient::NoAnswer(state.adapterCount.status).c_str());
        return;
    }
    printf("\n%llu adapter(s)\n", static_cast<unsigned long long>(state.adapterCount.number));
    for (size_t a = 0; a < state.adapters.size(); ++a)
        PrintAdapter(state.adapters[a], static_cast<uint32_t>(a), palette);
    printf("\nOverall status:\n");
    TextTable overall({"what", "status"});
    for (size_t i = 0; i < std::size(kOverallKinds); ++i)
        overall.Add({kOverallKinds[i].name, StatusCell(state.overall[i])});
    overall.Print(stdout, "  ", palette);
}

int RunInventory(CIExtensionModule& module, ISwitch& hostSwitch, const InventoryOptions& options) {
    // With JSON, standard output carries the document alone.
    FILE* chatter = options.bJson ? stderr : stdout;
    const StartResult start = StartModule(module, hostSwitch, chatter);
    ModuleClient client(module, kClientId);
    const StorageState state = ReadStorage(client, Renewal::kToTellWhy);
    int status = exit_status::OfStorage(state);
    if (!start.nReturned)
        status |= exit_status::kModule;
    if (options.bJson) {
        const std::string json = InventoryJson(state, module.GetModuleName(), start, status);
        fwrite(json.data(), 1, json.size(), stdout);
        fputc('\n', stdout);
    } else {
        PrintStorage(state, options.palette);
        PrintCabinets(state, options.palette);
    }
    fprintf(chatter, "\nStopping the module (a stop takes 10 s by design)...\n");
    fflush(chatter);
    fflush(stdout);
    module.Stop();
    return status;
}
