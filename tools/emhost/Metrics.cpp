#include "Metrics.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <utility>
#include <vector>

#include "ExitStatus.h"
#include "HostOutput.h"
#include "StorageState.h"

namespace {

namespace words = inventory_words;

constexpr char kPrefix[] = "em_tlraid_";

using Labels = std::vector<std::pair<const char*, std::string>>;

// Families, each with its help and type, then its samples.
class Exposition {
  public:
    void Family(const char* name, const char* type, const std::string& help) {
        m_sName = kPrefix + std::string(name);
        m_sText += "# HELP " + m_sName + " " + help + "\n# TYPE " + m_sName + " " + type + "\n";
    }
    // A gauge of statuses: its help names every code.
    void StatusFamily(const char* name, const char* what, const Vocabulary& words) {
        Family(name, "gauge", std::string(what) + ": " + words.Legend() + ".");
    }
    void Sample(const Labels& labels, const std::string& value) {
        m_sText += m_sName;
        for (size_t i = 0; i < labels.size(); ++i) {
            m_sText += (i ? "," : "{") + std::string(labels[i].first) + "=\"" +
                       Escaped(labels[i].second) + "\"";
        }
        m_sText += (labels.empty() ? " " : "} ") + value + "\n";
    }
    void Sample(const Labels& labels, uint64_t value) { Sample(labels, std::to_string(value)); }
    // A status's code, with its name as the label "status"; none when it did not come.
    void Status(Labels labels, const Coded& status, const char* label = "status") {
        if (!status.Ok())
            return;
        const uint32_t code = static_cast<uint32_t>(status.reply.number);
        labels.emplace_back(label, status.pWords ? status.pWords->Name(code) : "unknown");
        Sample(labels, code);
    }
    const std::string& Text() const { return m_sText; }

  private:
    // A label value with its backslashes, quotes and line ends escaped; a byte that is no
    // valid UTF-8 as the line protocol writes it, with its backslash escaped in turn.
    static std::string Escaped(const std::string& value) {
        std::string out;
        for (char c : EscapeInvalidUtf8(value)) {
            if (c == '\\' || c == '"')
                out += '\\';
            out += c == '\n' ? std::string("\\n") : std::string(1, c);
        }
        return out;
    }

    std::string m_sName;
    std::string m_sText;
};

std::string Name(const Reply& reply) {
    return reply.Ok() ? reply.text : "";
}

std::string Index(size_t i) {
    return std::to_string(i);
}

void WriteAdapters(Exposition& e, const StorageState& state) {
    e.StatusFamily("adapter_status", "Status of the adapter", words::AdapterStatus());
    for (size_t a = 0; a < state.adapters.size(); ++a)
        e.Status({{"adapter", Index(a)}, {"name", Name(state.adapters[a].name)}},
                 state.adapters[a].status);
    e.StatusFamily("drive_status", "Status of the physical drive", words::DriveStatus());
    for (size_t a = 0; a < state.adapters.size(); ++a) {
        const auto& drives = state.adapters[a].drives;
        for (size_t d = 0; d < drives.size(); ++d)
            e.Status({{"adapter", Index(a)}, {"drive", Index(d)}, {"name", Name(drives[d].name)}},
                     drives[d].status);
    }
    e.StatusFamily("logical_drive_status", "State of the logical drive",
                   words::LogicalDriveStatus());
    for (size_t a = 0; a < state.adapters.size(); ++a) {
        const auto& drives = state.adapters[a].logicalDrives;
        for (size_t l = 0; l < drives.size(); ++l)
            e.Status({{"adapter", Index(a)},
                      {"logical_drive", Index(l)},
                      {"name", Name(drives[l].name)}},
                     drives[l].status);
    }
    e.Family("logical_drive_progress_percent", "gauge",
             "Progress of the logical drive's rebuild or consistency check (MDC), in percent.");
    for (size_t a = 0; a < state.adapters.size(); ++a) {
        const auto& drives = state.adapters[a].logicalDrives;
        for (size_t l = 0; l < drives.size(); ++l) {
            const std::string& text = drives[l].progress.text;
            char* end = nullptr;
            errno = 0;
            const long long percent = strtoll(text.c_str(), &end, 10);
            if (drives[l].progress.Ok() && !text.empty() && !*end && !errno && percent >= 0)
                e.Sample({{"adapter", Index(a)},
                          {"logical_drive", Index(l)},
                          {"name", Name(drives[l].name)}},
                         std::to_string(percent));
        }
    }
    e.StatusFamily("battery_status", "Status of the battery", words::BatteryStatus());
    for (size_t a = 0; a < state.adapters.size(); ++a) {
        const auto& batteries = state.adapters[a].batteries;
        for (size_t b = 0; b < batteries.size(); ++b)
            e.Status(
                {{"adapter", Index(a)}, {"battery", Index(b)}, {"name", Name(batteries[b].name)}},
                batteries[b].status);
    }
    e.StatusFamily("enclosure_status", "Status of the enclosure", words::ComponentStatus());
    for (size_t a = 0; a < state.adapters.size(); ++a) {
        const auto& enclosures = state.adapters[a].enclosures;
        for (size_t n = 0; n < enclosures.size(); ++n)
            e.Status({{"adapter", Index(a)},
                      {"enclosure", Index(n)},
                      {"name", Name(enclosures[n].name)}},
                     enclosures[n].status);
    }
}

void WriteCabinets(Exposition& e, const StorageState& state) {
    e.StatusFamily("fan_status", "Status of the cabinet's fan", words::FanStatus());
    for (const CabinetState& c : state.cabinets) {
        for (size_t f = 0; f < c.fans.size(); ++f)
            e.Status({{"cabinet", Index(c.nNumber)},
                      {"fan", Index(f)},
                      {"name", Name(c.fans[f].name)},
                      {"designation", Name(c.fans[f].designation)}},
                     c.fans[f].status);
    }
    e.StatusFamily("temperature_sensor_status", "Status of the cabinet's temperature sensor",
                   words::TempSensorStatus());
    for (const CabinetState& c : state.cabinets) {
        for (size_t s = 0; s < c.sensors.size(); ++s)
            e.Status({{"cabinet", Index(c.nNumber)},
                      {"sensor", Index(s)},
                      {"name", Name(c.sensors[s].name)}},
                     c.sensors[s].status);
    }
    e.Family("temperature_celsius", "gauge", "Temperature that the cabinet's sensor reads.");
    for (const CabinetState& c : state.cabinets) {
        for (size_t s = 0; s < c.sensors.size(); ++s) {
            if (c.sensors[s].temperature.Ok())
                e.Sample({{"cabinet", Index(c.nNumber)},
                          {"sensor", Index(s)},
                          {"name", Name(c.sensors[s].name)}},
                         c.sensors[s].temperature.number);
        }
    }
    e.StatusFamily("power_supply_status", "Status of the cabinet's power supply",
                   words::PowerSupplyStatus());
    for (const CabinetState& c : state.cabinets) {
        for (size_t p = 0; p < c.supplies.size(); ++p)
            e.Status({{"cabinet", Index(c.nNumber)},
                      {"supply", Index(p)},
                      {"name", Name(c.supplies[p].name)}},
                     c.supplies[p].status);
    }
    e.StatusFamily("power_supply_redundancy", "Redundancy of the cabinet's power supplies",
                   words::Redundancy());
    for (const CabinetState& c : state.cabinets)
        e.Status({{"cabinet", Index(c.nNumber)}}, c.redundancy, "redundancy");
}

void WriteMonitor(Exposition& e, const MonitorHealth& m) {
    std::string bits;
    for (const exit_status::Bit& bit : exit_status::kBits) {
        if (bit.value != exit_status::kUsage && bit.value != exit_status::kChanged)
            bits +=
                std::string(bits.empty() ? "" : ", ") + std::to_string(bit.value) + " " + bit.name;
    }
    e.Family("health", "gauge",
             "The exit-status bits that the last read tells, as emhost inventory gives them, 0 "
             "when all is well: " +
                 bits + ".");
    e.Sample({}, static_cast<uint64_t>(m.nHealthBits));
    e.Family("module_started", "gauge", "1 when the module's Start succeeded.");
    e.Sample({}, m.bStarted ? 1 : 0);
    e.Family("tree_age_seconds", "gauge",
             "Seconds since the storage tree of these values was read.");
    if (m.treeAgeSec) {
        char age[32];
        snprintf(age, sizeof(age), "%.3f", *m.treeAgeSec);
        e.Sample({}, age);
    }
    e.Family("last_fetch_success", "gauge",
             "1 when the last read fetched a valid tree anew, 0 when it kept the one before.");
    e.Sample({}, m.bLastFetchOk ? 1 : 0);
    e.Family("fetch_errors_total", "counter", "Reads that got no valid tree anew.");
    e.Sample({}, m.nFetchErrors);
    e.Family("requests_total", "counter", "Requests that the monitor made of the module.");
    e.Sample({}, m.requests.nSent);
    e.Family("requests_answered_total", "counter",
             "Requests that the module answered with a value (status 0).");
    e.Sample({}, m.requests.nAnswered);
}

}  // namespace

std::string MetricsText(const StorageState& state, const MonitorHealth& monitor) {
    Exposition e;
    WriteAdapters(e, state);
    e.StatusFamily("overall_status", "Overall status of the server's storage",
                   words::ComponentStatus());
    for (size_t i = 0; i < std::size(kOverallKinds); ++i)
        e.Status({{"what", kOverallKinds[i].name}}, state.overall[i]);
    WriteCabinets(e, state);
    WriteMonitor(e, monitor);
    return e.Text();
}
