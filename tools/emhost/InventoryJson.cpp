#include "InventoryJson.h"

#include "ExitStatus.h"
#include "JsonAnswers.h"

namespace {

// A name of the views as a JSON key: "logical drives" as "logical_drives".
std::string KeyOf(const char* name) {
    std::string key = name;
    for (char& c : key) {
        if (c == ' ')
            c = '_';
    }
    return key;
}

// Writes an array of objects, one per element, each with its index first.
template <class Items, class Members>
void WriteArray(JsonWriter& out, const char* key, const Items& items, Members members) {
    out.Key(key);
    out.StartArray();
    for (size_t i = 0; i < items.size(); ++i) {
        out.StartObject();
        out.Key("index");
        out.Uint64(i);
        members(items[i]);
        out.EndObject();
    }
    out.EndArray();
}

void WriteAdapter(JsonWriter& out, const AdapterState& s) {
    auto text = [&](const char* key, const Reply& r) { out.Key(key), WriteText(out, r); };
    auto number = [&](const char* key, const Reply& r) { out.Key(key), WriteNumber(out, r); };
    auto coded = [&](const char* key, const Coded& c) { out.Key(key), WriteCoded(out, c); };
    text("name", s.name);
    coded("type", s.type);
    coded("status", s.status);
    text("pci_device_id", s.deviceId);
    out.Key("pci_ids");
    out.StartObject();
    for (size_t i = 0; i < std::size(kPciIdKinds); ++i)
        number(KeyOf(kPciIdKinds[i].name).c_str(), s.pciIds[i]);
    out.EndObject();
    WriteArray(out, "drives", s.drives, [&](const DriveState& d) {
        text("name", d.name);
        coded("type", d.type);
        coded("status", d.status);
        coded("smart", d.smart);
        number("size_mb", d.size);
    });
    WriteArray(out, "logical_drives", s.logicalDrives, [&](const LogicalDriveState& l) {
        text("name", l.name);
        coded("status", l.status);
        text("raid_level", l.raidLevel);
        number("size_mb", l.size);
        number("physical_size_mb", l.physicalSize);
        out.Key("progress_percent");
        WriteProgress(out, l.progress);
    });
    WriteArray(out, "batteries", s.batteries, [&](const BatteryState& b) {
        text("name", b.name);
        coded("status", b.status);
        coded("learn_cycle", b.learnCycle);
    });
    WriteArray(out, "ports", s.ports, [&](const Reply& name) { text("name", name); });
    WriteArray(out, "enclosures", s.enclosures, [&](const EnclosureState& e) {
        text("name", e.name);
        coded("status", e.status);
    });
}

void WriteCabinet(JsonWriter& out, const CabinetState& s) {
    auto text = [&](const char* key, const Reply& r) { out.Key(key), WriteText(out, r); };
    auto number = [&](const char* key, const Reply& r) { out.Key(key), WriteNumber(out, r); };
    auto coded = [&](const char* key, const Coded& c) { out.Key(key), WriteCoded(out, c); };
    out.StartObject();
    out.Key("number");
    out.Uint(s.nNumber);
    text("model", s.model);
    text("chassis_model", s.chassisModel);
    text("vendor", s.vendor);
    text("serial_number", s.serialNumber);
    WriteArray(out, "fans", s.fans, [&](const FanState& f) {
        text("name", f.name);
        text("designation", f.designation);
        coded("status", f.status);
        coded("location", f.location);
    });
    WriteArray(out, "temperature_sensors", s.sensors, [&](const SensorState& t) {
        text("name", t.name);
        coded("status", t.status);
        coded("location", t.location);
        number("temperature_c", t.temperature);
        number("warning_c", t.warning);
        number("critical_c", t.critical);
    });
    WriteArray(out, "power_supplies", s.supplies, [&](const SupplyState& p) {
        text("name", p.name);
        coded("status", p.status);
    });
    coded("power_supply_redundancy", s.redundancy);
    out.EndObject();
}

}  // namespace

std::string InventoryJson(const StorageState& state, const char* moduleName,
                          const StartResult& start, int exitStatus) {
    rapidjson::StringBuffer buffer;
    JsonWriter out(buffer);
    out.StartObject();
    WriteFormatVersion(out);
    out.Key("module");
    out.String(moduleName ? moduleName : "");
    out.Key("start");
    out.StartObject();
    out.Key("returned");
    out.Int(start.nReturned);
    out.Key("ms");
    out.Int64(start.nMs);
    out.EndObject();

    out.Key("adapter_count");
    WriteNumber(out, state.adapterCount);
    out.Key("adapters");
    out.StartArray();
    for (size_t a = 0; a < state.adapters.size(); ++a) {
        out.StartObject();
        out.Key("index");
        out.Uint64(a);
        WriteAdapter(out, state.adapters[a]);
        out.EndObject();
    }
    out.EndArray();
    // Asked only when there is a tree.
    out.Key("overall");
    if (state.adapterCount.Ok()) {
        out.StartObject();
        for (size_t i = 0; i < std::size(kOverallKinds); ++i) {
            out.Key(KeyOf(kOverallKinds[i].name).c_str());
            WriteCoded(out, state.overall[i]);
        }
        out.EndObject();
    } else {
        out.Null();
    }
    out.Key("cabinets");
    if (state.cabinetList.Ok()) {
        out.StartArray();
        for (const CabinetState& cabinet : state.cabinets)
            WriteCabinet(out, cabinet);
        out.EndArray();
    } else {
        WriteNotAnswered(out, state.cabinetList);
    }

    out.Key("exit_status");
    out.StartObject();
    out.Key("code");
    out.Int(exitStatus);
    out.Key("bits");
    out.StartArray();
    for (const char* name : exit_status::Names(exitStatus))
        out.String(name);
    out.EndArray();
    out.EndObject();
    out.EndObject();
    return JsonText(buffer);
}
