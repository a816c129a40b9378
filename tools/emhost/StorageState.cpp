#include "StorageState.h"

const PciIdKind kPciIdKinds[4] = {{oc::kSelectPciDeviceId, "device"},
                                  {oc::kSelectPciVendorId, "vendor"},
                                  {oc::kSelectPciSubsystemId, "subsystem"},
                                  {oc::kSelectPciSubsystemVendorId, "subsystem vendor"}};

const OverallKind kOverallKinds[4] = {{oc::kOverallStatus, "all"},
                                      {oc::kAdaptersStatus, "adapters"},
                                      {oc::kLogicalDrivesStatus, "logical drives"},
                                      {oc::kDisksStatus, "disks"}};

Severity Coded::SeverityOf() const {
    return Ok() && pWords ? pWords->SeverityOf(static_cast<uint32_t>(reply.number))
                          : Severity::kNone;
}

std::string Coded::Shown() const {
    if (!Ok())
        return ModuleClient::NoAnswer(reply.status);
    const uint32_t value = static_cast<uint32_t>(reply.number);
    return pWords ? pWords->Show(value) : std::to_string(value);
}

std::string Shown(const Reply& reply) {
    return reply.Ok() ? reply.text : ModuleClient::NoAnswer(reply.status);
}

std::string Shown(const Reply& reply, const char* unit) {
    return reply.Ok() ? std::to_string(reply.number) + unit : ModuleClient::NoAnswer(reply.status);
}

namespace {

namespace words = inventory_words;

Coded Ask(ModuleClient& c, uint32_t oc, uint32_t oe, uint32_t oi, const Vocabulary& meaning) {
    return {c.Ask(oc, oe, oi), &meaning};
}

AdapterState ReadAdapter(ModuleClient& c, uint32_t a, Detail detail) {
    const bool all = detail == Detail::kAll;
    AdapterState s;
    s.name = c.Ask(oc::kAdapterName, 0, a);
    if (all)
        s.type = Ask(c, oc::kAdapterType, 0, a, words::AdapterType());
    s.status = Ask(c, oc::kAdapterStatus, 0, a, words::AdapterStatus());
    if (all) {
        s.deviceId = c.Ask(oc::kAdapterDeviceId, 0, a);
        for (size_t i = 0; i < std::size(kPciIdKinds); ++i)
            s.pciIds[i] = c.Ask(oc::kAdapterPciIdentity, kPciIdKinds[i].nSelector, a);
    }
    for (uint32_t d = 0, n = c.Count(oc::kDriveCount, a); d < n; ++d) {
        DriveState& drive = s.drives.emplace_back();
        drive.name = c.Ask(oc::kDriveName, a, d);
        if (all)
            drive.type = Ask(c, oc::kDriveType, a, d, words::DriveType());
        drive.status = Ask(c, oc::kDriveStatus, a, d, words::DriveStatus());
        if (all) {
            drive.smart = Ask(c, oc::kDriveSmartFlag, a, d, words::SmartFlag());
            drive.size = c.Ask(oc::kDriveSize, a, d);
        }
    }
    for (uint32_t l = 0, n = c.Count(oc::kLogicalDriveCount, a); l < n; ++l) {
        LogicalDriveState& drive = s.logicalDrives.emplace_back();
        drive.name = c.Ask(oc::kLogicalDriveName, a, l);
        drive.status = Ask(c, oc::kLogicalDriveStatus, a, l, words::LogicalDriveStatus());
        if (all) {
            drive.raidLevel = c.Ask(oc::kLogicalDriveRaidLevel, a, l);
            drive.size = c.Ask(oc::kLogicalDriveSize, a, l);
            drive.physicalSize = c.Ask(oc::kLogicalDrivePhysicalSize, a, l);
        }
        drive.progress = c.Ask(oc::kLogicalDriveProperty, a, l, "\"MDCProgress\"");
    }
    for (uint32_t b = 0, n = c.Count(oc::kBatteryCount, a); b < n; ++b) {
        BatteryState& battery = s.batteries.emplace_back();
        battery.name = c.Ask(oc::kBatteryName, a, b);
        battery.status = Ask(c, oc::kBatteryStatus, a, b, words::BatteryStatus());
        if (all)
            battery.learnCycle = Ask(c, oc::kBatteryLearnCycle, a, b, words::LearnCycle());
    }
    if (!all)
        return s;
    for (uint32_t p = 0, n = c.Count(oc::kPortCount, a); p < n; ++p)
        s.ports.push_back(c.Ask(oc::kPortName, a, p));
    for (uint32_t e = 0, n = c.Count(oc::kEnclosureCount, a); e < n; ++e) {
        s.enclosures.push_back({c.Ask(oc::kEnclosureName, a, e),
                                Ask(c, oc::kEnclosureStatus, a, e, words::ComponentStatus())});
    }
    return s;
}

}  // namespace

StorageState ReadStorage(ModuleClient& client, Renewal renewal, Detail detail) {
    StorageState state;
    if (renewal == Renewal::kFirst)
        state.renewal = client.Ask(oc::kRenewSnapshot);
    state.adapterCount = client.Ask(oc::kAdapterCount);
    if (state.adapterCount.Ok()) {
        for (uint32_t a = 0; a < state.adapterCount.number; ++a)
            state.adapters.push_back(ReadAdapter(client, a, detail));
        for (size_t i = 0; i < std::size(kOverallKinds); ++i)
            state.overall[i] = Ask(client, kOverallKinds[i].nCode, 0, 0, words::ComponentStatus());
    } else if (renewal == Renewal::kToTellWhy) {
        state.renewal = client.Ask(oc::kRenewSnapshot);
    }
    ReadCabinets(client, state);
    return state;
}

namespace {

// The list of cabinets: two bytes per number, low byte first.
std::vector<uint32_t> CabinetNumbers(const Reply& list) {
    std::vector<uint32_t> numbers;
    for (size_t i = 0; i + 1 < list.raw.size(); i += 2)
        numbers.push_back(list.raw[i] | list.raw[i + 1] << 8);
    return numbers;
}

CabinetState ReadCabinet(ModuleClient& c, uint32_t number) {
    CabinetState s;
    s.nNumber = number;
    s.model = c.Ask(oc::kIdentityText, oc::kSelectCabinetModel, 0);
    s.chassisModel = c.Ask(oc::kIdentityText, oc::kSelectChassisModel, 0);
    s.vendor = c.Ask(oc::kIdentityText, oc::kSelectVendor, 0);
    s.serialNumber = c.Ask(oc::kIdentityText, oc::kSelectSerialNumber, 0);
    for (uint32_t f = 0, n = c.Count(oc::kFanCount); f < n; ++f) {
        s.fans.push_back({c.Ask(oc::kFanName, 0, f), c.Ask(oc::kFanDesignation, 0, f),
                          Ask(c, oc::CM_FanStatus, 0, f, words::FanStatus()),
                          Ask(c, oc::kFanLocation, 0, f, words::FanLocation())});
    }
    for (uint32_t i = 0, n = c.Count(oc::kTempSensorCount); i < n; ++i) {
        s.sensors.push_back({c.Ask(oc::kTempSensorName, 0, i),
                             Ask(c, oc::CM_TempSensorStatus, 0, i, words::TempSensorStatus()),
                             Ask(c, oc::kTempSensorLocation, 0, i, words::TempSensorLocation()),
                             c.Ask(oc::kTempSensorTemperature, 0, i),
                             c.Ask(oc::kCabinetSettingRead, oc::kSelectWarningTemperature, i),
                             c.Ask(oc::kCabinetSettingRead, oc::kSelectCriticalTemperature, i)});
    }
    for (uint32_t p = 0, n = c.Count(oc::kPowerSupplyCount); p < n; ++p) {
        s.supplies.push_back({c.Ask(oc::kPowerSupplyName, 0, p),
                              Ask(c, oc::CM_PowerSupplyStatus, 0, p, words::PowerSupplyStatus())});
    }
    s.redundancy = Ask(c, oc::CM_PowerSupplyRedundancy, 0, 0, words::Redundancy());
    return s;
}

}  // namespace

void ReadCabinets(ModuleClient& client, StorageState& state) {
    state.cabinetList = client.Ask(oc::kCabinetNumbers);
    if (!state.cabinetList.Ok())
        return;
    for (uint32_t number : CabinetNumbers(state.cabinetList)) {
        ModuleClient cabinet = client.AtCabinet(number);
        state.cabinets.push_back(ReadCabinet(cabinet, number));
    }
}
