// The cabinets part of "emhost inventory": the server's list of cabinets, then each cabinet
// as a client sees it through requests addressed to its number.
#include <cstdio>
#include <string>

#include "Inventory.h"
#include "StorageState.h"
#include "TextTable.h"

namespace {

void PrintSection(const char* title, const TextTable& table, const Palette& palette) {
    if (table.Empty()) {
        printf("  %s: none\n", title);
    } else {
        printf("  %s:\n", title);
        table.Print(stdout, "    ", palette);
    }
}

void PrintCabinet(const CabinetState& s, const Palette& palette) {
    printf("\nCabinet %u: %s\n", s.nNumber, Shown(s.model).c_str());
    printf("  chassis model %s, vendor %s, serial number %s\n", Shown(s.chassisModel).c_str(),
           Shown(s.vendor).c_str(), Shown(s.serialNumber).c_str());

    TextTable fans({"#", "name", "designation", "status", "location"});
    for (size_t f = 0; f < s.fans.size(); ++f) {
        const FanState& fan = s.fans[f];
        fans.Add({std::to_string(f), Shown(fan.name), Shown(fan.designation),
                  StatusCell(fan.status), fan.location.Shown()});
    }
    TextTable sensors({"#", "name", "status", "location", "temperature", "warning", "critical"});
    for (size_t i = 0; i < s.sensors.size(); ++i) {
        const SensorState& sensor = s.sensors[i];
        sensors.Add({std::to_string(i), Shown(sensor.name), StatusCell(sensor.status),
                     sensor.location.Shown(), Shown(sensor.temperature, " C"),
                     Shown(sensor.warning, " C"), Shown(sensor.critical, " C")});
    }
    TextTable supplies({"#", "name", "status"});
    for (size_t p = 0; p < s.supplies.size(); ++p) {
        supplies.Add(
            {std::to_string(p), Shown(s.supplies[p].name), StatusCell(s.supplies[p].status)});
    }
    PrintSection("Fans", fans, palette);
    PrintSection("Temperature sensors", sensors, palette);
    PrintSection("Power supplies", supplies, palette);
    printf("  Power supply redundancy: %s\n",
           palette.Paint(s.redundancy.Shown(), s.redundancy.SeverityOf()).c_str());
}

}  // namespace

void PrintCabinets(const StorageState& state, const Palette& palette) {
    if (!state.cabinetList.Ok()) {
        printf("\nCabinets: the module answers %s.\n",
               ModuleClient::NoAnswer(state.cabinetList.status).c_str());
        return;
    }
    if (state.cabinets.empty()) {
        printf("\nCabinets: none\n");
        return;
    }
    std::string shown;
    for (const CabinetState& c : state.cabinets)
        shown += (shown.empty() ? "" : ", ") + std::to_string(c.nNumber);
    printf("\nCabinets: %s\n", shown.c_str());
    for (const CabinetState& c : state.cabinets)
        PrintCabinet(c, palette);
}
