#include "Inventory.h"

#include <chrono>
#include <cstdio>
#include <string>

#include "InventoryCabinets.h"
#include "InventoryWords.h"
#include "ModuleClient.h"
#include "TextTable.h"
#include "frame/CommandRecord.h"
#include "frame/ExtensionModule.h"

namespace {

namespace words = inventory_words;

constexpr uint32_t kClientId = 1;
using Client = ModuleClient;

std::string Size(Client& c, uint32_t oc, uint32_t oe, uint32_t oi, const char* unit) {
    Reply r = c.Ask(oc, oe, oi);
    return r.Ok() ? std::to_string(r.number) + " " + unit : Client::NoAnswer(r.status);
}

// The ids of the host's PCI device at the adapter's address, each in hex or the status
// that came instead.
std::string PciIds(Client& c, uint32_t a) {
    const std::pair<const char*, uint32_t> ids[] = {
        {"device", oc::kSelectPciDeviceId},
        {"vendor", oc::kSelectPciVendorId},
        {"subsystem", oc::kSelectPciSubsystemId},
        {"subsystem vendor", oc::kSelectPciSubsystemVendorId}};
    std::string line;
    for (const auto& [name, selector] : ids) {
        Reply r = c.Ask(oc::kAdapterPciIdentity, selector, a);
        char hex[24];
        snprintf(hex, sizeof hex, "0x%04llX", static_cast<unsigned long long>(r.number));
        line += std::string(line.empty() ? "" : ", ") + name + " " +
                (r.Ok() ? hex : Client::NoAnswer(r.status));
    }
    return line;
}

void PrintAdapter(Client& c, uint32_t a) {
    printf("\nAdapter %u: %s\n", a, c.Text(oc::kAdapterName, 0, a).c_str());
    printf("  type %s, status %s, PCI device id %s\n",
           c.Show(oc::kAdapterType, 0, a, words::AdapterType).c_str(),
           c.Show(oc::kAdapterStatus, 0, a, words::AdapterStatus).c_str(),
           c.Text(oc::kAdapterDeviceId, 0, a).c_str());
    printf("  PCI ids: %s\n", PciIds(c, a).c_str());

    TextTable drives({"#", "name", "type", "status", "SMART", "size"});
    for (uint32_t d = 0, n = c.Count(oc::kDriveCount, a); d < n; ++d) {
        drives.Add({std::to_string(d), c.Text(oc::kDriveName, a, d),
                    c.Show(oc::kDriveType, a, d, words::DriveType),
                    c.Show(oc::kDriveStatus, a, d, words::DriveStatus),
                    c.Show(oc::kDriveSmartFlag, a, d, words::SmartFlag),
                    Size(c, oc::kDriveSize, a, d, "MB")});
    }
    TextTable logical({"#", "name", "status", "RAID level", "size", "physical size"});
    for (uint32_t l = 0, n = c.Count(oc::kLogicalDriveCount, a); l < n; ++l) {
        logical.Add({std::to_string(l), c.Text(oc::kLogicalDriveName, a, l),
                     c.Show(oc::kLogicalDriveStatus, a, l, words::LogicalDriveStatus),
                     c.Text(oc::kLogicalDriveRaidLevel, a, l),
                     Size(c, oc::kLogicalDriveSize, a, l, "MB"),
                     Size(c, oc::kLogicalDrivePhysicalSize, a, l, "MB")});
    }
    TextTable batteries({"#", "name", "status", "learn cycle"});
    for (uint32_t b = 0, n = c.Count(oc::kBatteryCount, a); b < n; ++b) {
        batteries.Add({std::to_string(b), c.Text(oc::kBatteryName, a, b),
                       c.Show(oc::kBatteryStatus, a, b, words::BatteryStatus),
                       c.Show(oc::kBatteryLearnCycle, a, b, words::LearnCycle)});
    }
    TextTable ports({"#", "name"});
    for (uint32_t p = 0, n = c.Count(oc::kPortCount, a); p < n; ++p) {
        ports.Add({std::to_string(p), c.Text(oc::kPortName, a, p)});
    }
    TextTable enclosures({"#", "name", "status"});
    for (uint32_t e = 0, n = c.Count(oc::kEnclosureCount, a); e < n; ++e) {
        enclosures.Add({std::to_string(e), c.Text(oc::kEnclosureName, a, e),
                        c.Show(oc::kEnclosureStatus, a, e, words::ComponentStatus)});
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
            table->Print(stdout, "    ");
        }
    }
}

}  // namespace

int PrintInventory(CIExtensionModule& module, ISwitch& hostSwitch) {
    printf("Starting the module (it looks for the RAID service and waits for a valid tree)...\n");
    fflush(stdout);
    auto started = std::chrono::steady_clock::now();
    int ret = module.Start(&hostSwitch, 0);
    auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(
                  std::chrono::steady_clock::now() - started)
                  .count();
    printf("Start returned %d after %lld ms.\n", ret, static_cast<long long>(ms));

    Client client(module, kClientId);
    Reply count = client.Ask(oc::kAdapterCount);
    if (!count.Ok()) {
        printf("\nNo storage tree: the module answers %s.\n",
               Client::NoAnswer(count.status).c_str());
    } else {
        printf("\n%llu adapter(s)\n", static_cast<unsigned long long>(count.number));
        for (uint32_t a = 0; a < count.number; ++a)
            PrintAdapter(client, a);
        printf("\nOverall status:\n");
        TextTable overall({"what", "status"});
        overall.Add({"all", client.Show(oc::kOverallStatus, 0, 0, words::ComponentStatus)});
        overall.Add({"adapters", client.Show(oc::kAdaptersStatus, 0, 0, words::ComponentStatus)});
        overall.Add({"logical drives",
                     client.Show(oc::kLogicalDrivesStatus, 0, 0, words::ComponentStatus)});
        overall.Add({"disks", client.Show(oc::kDisksStatus, 0, 0, words::ComponentStatus)});
        overall.Print(stdout, "  ");
    }
    PrintCabinets(module);
    printf("\nStopping the module (a stop takes 10 s by design)...\n");
    fflush(stdout);
    module.Stop();
    return count.Ok() ? 0 : 1;
}
