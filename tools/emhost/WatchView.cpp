#include "WatchView.h"

#include <cstdio>

namespace {

std::string Key(const char* group, size_t a, const char* kind = "", size_t n = 0,
                const char* what = "") {
    char key[64];
    snprintf(key, sizeof(key), "%s%04zu%s%06zu%s", group, a, kind, n, what);
    return key;
}

std::string Quoted(const std::string& name) {
    return " '" + name + "'";
}

}  // namespace

std::string Watched::Shown() const {
    if (!bProgress)
        return value.Shown();
    return value.Ok() ? value.reply.text + " %" : "none";
}

View ViewOf(const StorageState& state) {
    View view;
    if (!state.adapterCount.Ok())
        return view;
    auto add = [&view](const std::string& key, Watched watched) { view[key] = std::move(watched); };
    for (size_t a = 0; a < state.adapters.size(); ++a) {
        const AdapterState& s = state.adapters[a];
        const long na = static_cast<long>(a);
        const std::string adapter = "adapter " + std::to_string(a);
        add(Key("a", a), {"adapter", na, -1, ::Shown(s.name), "status",
                          adapter + Quoted(::Shown(s.name)) + ": status", s.status});
        for (size_t d = 0; d < s.drives.size(); ++d) {
            const DriveState& drive = s.drives[d];
            add(Key("a", a, "1d", d),
                {"drive", na, static_cast<long>(d), ::Shown(drive.name), "status",
                 adapter + ", drive " + std::to_string(d) + Quoted(::Shown(drive.name)) +
                     ": status",
                 drive.status});
        }
        for (size_t l = 0; l < s.logicalDrives.size(); ++l) {
            const LogicalDriveState& drive = s.logicalDrives[l];
            const std::string label = "logical drive " + std::to_string(l) +
                                      Quoted(::Shown(drive.name)) + " of " + adapter;
            const long nl = static_cast<long>(l);
            add(Key("a", a, "2l", l, "1s"), {"logical drive", na, nl, ::Shown(drive.name), "state",
                                             label + ": state", drive.status});
            add(Key("a", a, "2l", l, "2p"), {"logical drive",
                                             na,
                                             nl,
                                             ::Shown(drive.name),
                                             "progress",
                                             label + ": rebuild or check progress",
                                             {drive.progress, nullptr},
                                             true});
        }
        for (size_t b = 0; b < s.batteries.size(); ++b) {
            const BatteryState& battery = s.batteries[b];
            add(Key("a", a, "3b", b),
                {"battery", na, static_cast<long>(b), ::Shown(battery.name), "status",
                 adapter + ", battery " + std::to_string(b) + Quoted(::Shown(battery.name)) +
                     ": status",
                 battery.status});
        }
    }
    for (size_t i = 0; i < std::size(kOverallKinds); ++i) {
        const std::string what = kOverallKinds[i].name;
        add(Key("z", i),
            {"overall", -1, -1, what, "status",
             i == 0 ? "overall status" : "overall status of the " + what, state.overall[i]});
    }
    return view;
}

std::vector<ViewChange> Changes(const View& before, const View& now) {
    std::vector<ViewChange> changes;
    for (const auto& [key, entry] : now) {
        auto old = before.find(key);
        if (old == before.end())
            changes.push_back({nullptr, &entry});
        else if (old->second.Shown() != entry.Shown())
            changes.push_back({&old->second, &entry});
    }
    for (const auto& [key, entry] : before) {
        if (!now.count(key))
            changes.push_back({&entry, nullptr});
    }
    return changes;
}
