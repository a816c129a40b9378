#include "InventoryCabinets.h"

#include <cstdio>
#include <string>
#include <vector>

#include "InventoryWords.h"
#include "ModuleClient.h"
#include "TextTable.h"

namespace {

namespace words = inventory_words;

constexpr uint32_t kClientId = 1;

// The list of cabinets: two bytes per number, low byte first.
std::vector<uint32_t> CabinetNumbers(const Reply& list) {
    std::vector<uint32_t> numbers;
    for (size_t i = 0; i + 1 < list.raw.size(); i += 2)
        numbers.push_back(list.raw[i] | list.raw[i + 1] << 8);
    return numbers;
}

void PrintSection(const char* title, const TextTable& table) {
    if (table.Empty()) {
        printf("  %s: none\n", title);
    } else {
        printf("  %s:\n", title);
        table.Print(stdout, "    ");
    }
}

void PrintCabinet(CIExtensionModule& module, uint32_t ca) {
    ModuleClient c(module, kClientId, ca);
    printf("\nCabinet %u: %s\n", ca, c.Text(oc::kIdentityText, oc::kSelectCabinetModel, 0).c_str());
    printf("  chassis model %s, vendor %s, serial number %s\n",
           c.Text(oc::kIdentityText, oc::kSelectChassisModel, 0).c_str(),
           c.Text(oc::kIdentityText, oc::kSelectVendor, 0).c_str(),
           c.Text(oc::kIdentityText, oc::kSelectSerialNumber, 0).c_str());

    TextTable fans({"#", "name", "designation", "status", "location"});
    for (uint32_t f = 0, n = c.Count(oc::kFanCount); f < n; ++f) {
        fans.Add({std::to_string(f), c.Text(oc::kFanName, 0, f), c.Text(oc::kFanDesignation, 0, f),
                  c.Show(oc::CM_FanStatus, 0, f, words::FanStatus),
                  c.Show(oc::kFanLocation, 0, f, words::FanLocation)});
    }
    TextTable sensors({"#", "name", "status", "location", "temperature", "warning", "critical"});
    for (uint32_t s = 0, n = c.Count(oc::kTempSensorCount); s < n; ++s) {
        sensors.Add(
            {std::to_string(s), c.Text(oc::kTempSensorName, 0, s),
             c.Show(oc::CM_TempSensorStatus, 0, s, words::TempSensorStatus),
             c.Show(oc::kTempSensorLocation, 0, s, words::TempSensorLocation),
             c.Show(oc::kTempSensorTemperature, 0, s, nullptr, " C"),
             c.Show(oc::kCabinetSettingRead, oc::kSelectWarningTemperature, s, nullptr, " C"),
             c.Show(oc::kCabinetSettingRead, oc::kSelectCriticalTemperature, s, nullptr, " C")});
    }
    TextTable supplies({"#", "name", "status"});
    for (uint32_t p = 0, n = c.Count(oc::kPowerSupplyCount); p < n; ++p) {
        supplies.Add({std::to_string(p), c.Text(oc::kPowerSupplyName, 0, p),
                      c.Show(oc::CM_PowerSupplyStatus, 0, p, words::PowerSupplyStatus)});
    }
    PrintSection("Fans", fans);
    PrintSection("Temperature sensors", sensors);
    PrintSection("Power supplies", supplies);
    printf("  Power supply redundancy: %s\n",
           c.Show(oc::CM_PowerSupplyRedundancy, 0, 0, words::Redundancy).c_str());
}

}  // namespace

void PrintCabinets(CIExtensionModule& module) {
    ModuleClient server(module, kClientId);
    Reply list = server.Ask(oc::kCabinetNumbers);
    if (!list.Ok()) {
        printf("\nCabinets: the module answers %s.\n", ModuleClient::NoAnswer(list.status).c_str());
        return;
    }
    std::vector<uint32_t> numbers = CabinetNumbers(list);
    if (numbers.empty()) {
        printf("\nCabinets: none\n");
        return;
    }
    std::string shown;
    for (uint32_t n : numbers)
        shown += (shown.empty() ? "" : ", ") + std::to_string(n);
    printf("\nCabinets: %s\n", shown.c_str());
    for (uint32_t n : numbers)
        PrintCabinet(module, n);
}
