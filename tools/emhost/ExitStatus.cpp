#include "ExitStatus.h"

#include "StorageState.h"

namespace exit_status {

std::vector<const char*> Names(int status) {
    std::vector<const char*> names;
    for (const Bit& bit : kBits) {
        if (status & bit.value)
            names.push_back(bit.name);
    }
    return names;
}

std::string Describe(int status) {
    std::string text = "Exit status " + std::to_string(status) + ": ";
    if (status == 0)
        return text + "all is well.";
    std::string meanings;
    for (const Bit& bit : kBits) {
        if (status & bit.value)
            meanings += (meanings.empty() ? "" : "; ") + std::string(bit.meaning);
    }
    return text + meanings + ".";
}

namespace {

// Every status of the look that has words, each with its severity.
template <class Visit>
void ForEachStatus(const StorageState& s, Visit visit) {
    for (const AdapterState& a : s.adapters) {
        visit(a.status);
        for (const DriveState& d : a.drives) {
            visit(d.status);
            visit(d.smart);
        }
        for (const LogicalDriveState& l : a.logicalDrives)
            visit(l.status);
        for (const BatteryState& b : a.batteries) {
            visit(b.status);
            visit(b.learnCycle);
        }
        for (const EnclosureState& e : a.enclosures)
            visit(e.status);
    }
    for (const Coded& overall : s.overall)
        visit(overall);
    for (const CabinetState& c : s.cabinets) {
        for (const FanState& f : c.fans)
            visit(f.status);
        for (const SensorState& t : c.sensors)
            visit(t.status);
        for (const SupplyState& p : c.supplies)
            visit(p.status);
        visit(c.redundancy);
    }
}

}  // namespace

int OfStorage(const StorageState& state) {
    int bits = 0;
    if (state.renewal && !state.renewal->Ok())
        bits |= kDaemon;
    else if (state.renewal && !state.adapterCount.Ok())
        bits |= kTree;
    ForEachStatus(state, [&bits](const Coded& status) {
        switch (status.SeverityOf()) {
            case Severity::kWarning:
                bits |= kDegraded;
                break;
            case Severity::kFailed:
                bits |= kFailed;
                break;
            default:
                break;
        }
    });
    return bits;
}

}  // namespace exit_status
