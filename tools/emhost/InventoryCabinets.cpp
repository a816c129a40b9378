#include "InventoryCabinets.h"

#include <cstdio>
#include <string>
#include <vector>

#include "InventoryWords.h"
#include "TextTable.h"
#include "frame/CommandRecord.h"
#include "frame/ExtensionModule.h"

namespace {

namespace words = inventory_words;

constexpr uint32_t kClientId = 1;

// One answer: its status and its data as a number, a text or raw bytes.
struct Reply {
    uint32_t status = status::kMissing;
    uint64_t number = 0;
    std::string text;
    std::vector<uint32_t> raw;
    bool Ok() const { return status == status::kOk; }
};

// A client that asks the server itself, or one of its cabinets by number.
class CabinetClient {
  public:
    explicit CabinetClient(CIExtensionModule& module) : m_Module(module) {}

    Reply AskServer(uint32_t oc) { return Send("{\"OC\":" + std::to_string(oc)); }

    Reply Ask(uint32_t cabinet, uint32_t oc, uint32_t oe = 0, uint32_t oi = 0) {
        return Send("{\"OC\":" + std::to_string(oc) + ",\"OE\":" + std::to_string(oe) +
                    ",\"OI\":" + std::to_string(oi) + ",\"CA\":" + std::to_string(cabinet));
    }

    // The answer in words, or what the status says when there is none.
    std::string Show(uint32_t cabinet, uint32_t oc, uint32_t oe, uint32_t oi,
                     std::string (*meaning)(uint32_t), const char* unit = nullptr) {
        Reply r = Ask(cabinet, oc, oe, oi);
        if (!r.Ok())
            return NoAnswer(r.status);
        if (meaning)
            return meaning(static_cast<uint32_t>(r.number));
        return std::to_string(r.number) + (unit ? unit : "");
    }
    std::string Text(uint32_t cabinet, uint32_t oc, uint32_t oe = 0, uint32_t oi = 0) {
        Reply r = Ask(cabinet, oc, oe, oi);
        return r.Ok() ? r.text : NoAnswer(r.status);
    }
    uint32_t Count(uint32_t cabinet, uint32_t oc) {
        Reply r = Ask(cabinet, oc);
        return r.Ok() ? static_cast<uint32_t>(r.number) : 0;
    }

    static std::string NoAnswer(uint32_t st) {
        switch (st) {
            case status::kNoSuchObject:
                return "(no such object)";
            case status::kNotAvailable:
                return "(not available)";
            case status::kCabinetUnknown:
                return "(no such cabinet)";
            default:
                return "(status " + std::to_string(st) + ")";
        }
    }

  private:
    Reply Send(const std::string& command) {
        CommandRecord record;
        record.SetJson("{\"SIP\":{\"V\":1,\"CMD\":[" + command +
                       ",\"CI\":" + std::to_string(kClientId) + "}]}}");
        m_Module.ModuleRequest(&record);
        Reply reply;
        reply.status = record.GetField("ST", status::kMissing);
        const rapidjson::Value* cmd = record.Command(0);
        const rapidjson::Value* da = cmd ? CommandRecord::FindMember(*cmd, "DA") : nullptr;
        if (da && da->IsUint64())
            reply.number = da->GetUint64();
        if (da && da->IsString())
            reply.text = da->GetString();
        const rapidjson::Value* raw =
            da && da->IsObject() ? CommandRecord::FindMember(*da, "RAW") : nullptr;
        if (raw && raw->IsArray()) {
            for (const auto& byte : raw->GetArray()) {
                if (byte.IsUint())
                    reply.raw.push_back(byte.GetUint());
            }
        }
        return reply;
    }

    CIExtensionModule& m_Module;
};

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

void PrintCabinet(CabinetClient& c, uint32_t ca) {
    printf("\nCabinet %u: %s\n", ca,
           c.Text(ca, oc::kIdentityText, oc::kSelectCabinetModel).c_str());
    printf("  chassis model %s, vendor %s, serial number %s\n",
           c.Text(ca, oc::kIdentityText, oc::kSelectChassisModel).c_str(),
           c.Text(ca, oc::kIdentityText, oc::kSelectVendor).c_str(),
           c.Text(ca, oc::kIdentityText, oc::kSelectSerialNumber).c_str());

    TextTable fans({"#", "name", "designation", "status", "location"});
    for (uint32_t f = 0, n = c.Count(ca, oc::kFanCount); f < n; ++f) {
        fans.Add({std::to_string(f), c.Text(ca, oc::kFanName, 0, f),
                  c.Text(ca, oc::kFanDesignation, 0, f),
                  c.Show(ca, oc::CM_FanStatus, 0, f, words::FanStatus),
                  c.Show(ca, oc::kFanLocation, 0, f, words::FanLocation)});
    }
    TextTable sensors({"#", "name", "status", "location", "temperature", "warning", "critical"});
    for (uint32_t s = 0, n = c.Count(ca, oc::kTempSensorCount); s < n; ++s) {
        sensors.Add(
            {std::to_string(s), c.Text(ca, oc::kTempSensorName, 0, s),
             c.Show(ca, oc::CM_TempSensorStatus, 0, s, words::TempSensorStatus),
             c.Show(ca, oc::kTempSensorLocation, 0, s, words::TempSensorLocation),
             c.Show(ca, oc::kTempSensorTemperature, 0, s, nullptr, " C"),
             c.Show(ca, oc::kCabinetSettingRead, oc::kSelectWarningTemperature, s, nullptr, " C"),
             c.Show(ca, oc::kCabinetSettingRead, oc::kSelectCriticalTemperature, s, nullptr,
                    " C")});
    }
    TextTable supplies({"#", "name", "status"});
    for (uint32_t p = 0, n = c.Count(ca, oc::kPowerSupplyCount); p < n; ++p) {
        supplies.Add({std::to_string(p), c.Text(ca, oc::kPowerSupplyName, 0, p),
                      c.Show(ca, oc::CM_PowerSupplyStatus, 0, p, words::PowerSupplyStatus)});
    }
    PrintSection("Fans", fans);
    PrintSection("Temperature sensors", sensors);
    PrintSection("Power supplies", supplies);
    printf("  Power supply redundancy: %s\n",
           c.Show(ca, oc::CM_PowerSupplyRedundancy, 0, 0, words::Redundancy).c_str());
}

}  // namespace

void PrintCabinets(CIExtensionModule& module) {
    CabinetClient client(module);
    Reply list = client.AskServer(oc::kCabinetNumbers);
    if (!list.Ok()) {
        printf("\nCabinets: the module answers %s.\n",
               CabinetClient::NoAnswer(list.status).c_str());
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
        PrintCabinet(client, n);
}
