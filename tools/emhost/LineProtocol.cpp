#include "LineProtocol.h"

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <chrono>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <thread>
#include <vector>

#include "JsonDepth.h"
#include "JsonLine.h"
#include "frame/CommandRecord.h"
#include "frame/ExtensionModule.h"

namespace {

constexpr uint32_t kDefaultInfoSize = 246;
constexpr uint32_t kMinInfoBlock = 256;
constexpr int64_t kMaxInfoSize = 1 << 20;
constexpr int64_t kMaxBurstThreads = 256;
constexpr int64_t kMaxBurstCalls = 10000000;
constexpr int64_t kU32Max = 0xFFFFFFFFLL;
// A record's commands are numbered up to here; a higher index is refused, never padded to.
constexpr int64_t kMaxCommandIndex = 65535;
constexpr size_t kMaxNesting = 512;

// A line that can't be carried out; its text becomes the error line.
struct ActionError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

int64_t IntMember(const rapidjson::Value& line, const char* name, std::optional<int64_t> fallback,
                  int64_t min, int64_t max) {
    const rapidjson::Value* v = CommandRecord::FindMember(line, name);
    if (!v) {
        if (!fallback)
            throw ActionError(std::string("member \"") + name + "\" is missing");
        return *fallback;
    }
    if (!v->IsInt64() && !v->IsUint64()) {
        throw ActionError(std::string("member \"") + name + "\" must be an integer");
    }
    int64_t n = v->IsInt64() ? v->GetInt64() : 0;
    if (!v->IsInt64() || n < min || n > max) {
        throw ActionError(std::string("member \"") + name + "\" is out of range (" +
                          std::to_string(min) + " to " + std::to_string(max) + ")");
    }
    return n;
}

const rapidjson::Value& ObjectMember(const rapidjson::Value& line, const char* name) {
    const rapidjson::Value* v = CommandRecord::FindMember(line, name);
    if (!v || !v->IsObject()) {
        throw ActionError(std::string("member \"") + name + "\" must be a JSON object");
    }
    return *v;
}

std::string ToJson(const rapidjson::Value& value) {
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    value.Accept(writer);
    return std::string(buffer.GetString(), buffer.GetSize());
}

class Stopwatch {
  public:
    int64_t Ms() const {
        return std::chrono::duration_cast<std::chrono::milliseconds>(
                   std::chrono::steady_clock::now() - m_Start)
            .count();
    }

  private:
    std::chrono::steady_clock::time_point m_Start = std::chrono::steady_clock::now();
};

std::string HexBytes(const uint8_t* bytes, size_t n) {
    static const char kDigits[] = "0123456789abcdef";
    std::string hex;
    hex.reserve(2 * n);
    for (size_t i = 0; i < n; ++i) {
        hex.push_back(kDigits[bytes[i] >> 4]);
        hex.push_back(kDigits[bytes[i] & 0xF]);
    }
    return hex;
}

}  // namespace

LineProtocol::LineProtocol(HostOutput& output, HostSwitch& hostSwitch, ModuleLibrary& library,
                           int64_t maxWaitMs)
    : m_Output(output), m_Switch(hostSwitch), m_Library(library), m_nMaxWaitMs(maxWaitMs) {
    auto plain = [](std::string (LineProtocol::*f)()) {
        return [f](LineProtocol* p, const rapidjson::Value&) { return (p->*f)(); };
    };
    auto withLine = [](std::string (LineProtocol::*f)(const rapidjson::Value&)) {
        return [f](LineProtocol* p, const rapidjson::Value& line) { return (p->*f)(line); };
    };
    struct Row {
        const char* name;
        std::function<std::string(LineProtocol*, const rapidjson::Value&)> run;
        bool needsModule;
    };
    const Row rows[] = {
        {"create", plain(&LineProtocol::Create), false},
        {"delete", plain(&LineProtocol::Delete), false},
        {"name", plain(&LineProtocol::Name), false},
        {"setup", withLine(&LineProtocol::Setup), false},
        {"info", withLine(&LineProtocol::Info), true},
        {"detected", plain(&LineProtocol::Detected), true},
        {"cabinet", withLine(&LineProtocol::Cabinet), true},
        {"start", withLine(&LineProtocol::Start), true},
        {"switch-started", plain(&LineProtocol::SwitchStarted), true},
        {"notify", withLine(&LineProtocol::Notify), true},
        {"detach", withLine(&LineProtocol::Detach), true},
        {"selist", plain(&LineProtocol::SeList), true},
        {"stop", plain(&LineProtocol::Stop), true},
        {"answer", withLine(&LineProtocol::Answer), false},
        {"request", withLine(&LineProtocol::Request), true},
        {"burst", withLine(&LineProtocol::Burst), true},
        {"wait-events", withLine(&LineProtocol::WaitEvents), false},
        {"sleep", withLine(&LineProtocol::Sleep), false},
    };
    for (const Row& row : rows) {
        auto run = row.run;
        m_Actions[row.name] = [this, run](const rapidjson::Value& line) { return run(this, line); };
        m_NeedsModule[row.name] = row.needsModule;
    }
}

bool LineProtocol::HandleLine(const std::string& line) {
    if (line.empty() || line[0] == '#')
        return true;
    std::string result;
    try {
        if (JsonNestingDepth(line) > kMaxNesting) {
            throw ActionError("the line nests deeper than " + std::to_string(kMaxNesting) +
                              " levels");
        }
        rapidjson::Document doc;
        doc.Parse<rapidjson::kParseIterativeFlag>(line.c_str(), line.size());
        if (doc.HasParseError() || !doc.IsObject())
            throw ActionError("the line is no JSON object");
        if (CommandRecord::FindMember(doc, "SIP")) {
            if (!m_pModule)
                throw ActionError("no module object: send {\"host\":\"create\"} first");
            result = Record(line, 0);
        } else if (const rapidjson::Value* host = CommandRecord::FindMember(doc, "host")) {
            if (!host->IsString())
                throw ActionError("member \"host\" must be a text");
            std::string action = host->GetString();
            if (action == "exit")
                return false;
            auto it = m_Actions.find(action);
            if (it == m_Actions.end())
                throw ActionError("unknown action \"" + action + "\"");
            if (m_NeedsModule[action] && !m_pModule) {
                throw ActionError("no module object for \"" + action +
                                  "\": send {\"host\":\"create\"} first");
            }
            result = it->second(doc);
        } else {
            throw ActionError("the line has neither \"SIP\" nor \"host\"");
        }
    } catch (const ActionError& e) {
        result = ErrorLine(e.what());
    }
    m_Output.WriteLine(result);
    return true;
}

std::string LineProtocol::Record(const std::string& json, uint32_t index) {
    CommandRecord record;
    if (!record.SetJson(json))
        throw ActionError("the record is no JSON");
    record.SelectCommand(index);
    uint32_t ret = m_pModule->ModuleRequest(&record);
    return JsonLine().UInt("ret", ret).Raw("record", record.ToJson()).Done();
}

std::string LineProtocol::Create() {
    CIExtensionModule* module = nullptr;
    bool ok = m_Library.Create(&module, 0);
    if (ok && module)
        m_pModule = module;
    return JsonLine().Str("host", "create").Int("ret", ok ? 1 : 0).Done();
}

std::string LineProtocol::Delete() {
    int ret = m_Library.Delete();
    if (ret)
        m_pModule = nullptr;
    return JsonLine().Str("host", "delete").Int("ret", ret).Done();
}

std::string LineProtocol::Name() {
    const char* name = m_Library.GetModuleName();
    JsonLine out;
    out.Str("host", "name").Int("ret", 1).Str("name", name ? name : "");
    const char* moduleName = m_pModule ? m_pModule->GetModuleName() : nullptr;
    if (moduleName) {
        out.Str("module_name", moduleName);
    } else {
        out.Null("module_name");
    }
    return out.Done();
}

std::string LineProtocol::Setup(const rapidjson::Value& line) {
    auto action = static_cast<uint32_t>(IntMember(line, "action", std::nullopt, 0, kU32Max));
    return JsonLine().Str("host", "setup").Int("ret", m_Library.SetupAction(action)).Done();
}

std::string LineProtocol::Info(const rapidjson::Value& line) {
    auto size = static_cast<uint32_t>(IntMember(line, "size", kDefaultInfoSize, 0, kMaxInfoSize));
    std::vector<uint8_t> block(std::max(size, kMinInfoBlock), 0xA5);
    for (int i = 0; i < 4; ++i)
        block[i] = static_cast<uint8_t>(size >> (8 * i));
    int ret = m_pModule->GetModuleInfo(reinterpret_cast<ModuleInfoBlock*>(block.data()));
    size_t shown = std::max(size, kDefaultInfoSize);
    return JsonLine()
        .Str("host", "info")
        .Int("ret", ret)
        .Str("block", HexBytes(block.data(), shown))
        .Done();
}

std::string LineProtocol::Detected() {
    return JsonLine().Str("host", "detected").Int("ret", m_pModule->IsDetected()).Done();
}

std::string LineProtocol::Cabinet(const rapidjson::Value& line) {
    auto nr = static_cast<uint32_t>(IntMember(line, "nr", std::nullopt, INT32_MIN, kU32Max));
    return JsonLine().Str("host", "cabinet").Int("ret", m_pModule->SetCabinetNumber(nr)).Done();
}

std::string LineProtocol::Start(const rapidjson::Value& line) {
    auto param = static_cast<uint32_t>(IntMember(line, "param", 0, 0, kU32Max));
    Stopwatch watch;
    int ret = m_pModule->Start(&m_Switch, param);
    return JsonLine().Str("host", "start").Int("ret", ret).Int("ms", watch.Ms()).Done();
}

std::string LineProtocol::SwitchStarted() {
    Stopwatch watch;
    m_pModule->OnSwitchStarted();
    return JsonLine().Str("host", "switch-started").Int("ret", 0).Int("ms", watch.Ms()).Done();
}

std::string LineProtocol::Notify(const rapidjson::Value& line) {
    auto code = static_cast<uint32_t>(IntMember(line, "code", std::nullopt, 0, kU32Max));
    auto param = static_cast<uint64_t>(IntMember(line, "param", 0, INT64_MIN, INT64_MAX));
    int ret = m_pModule->OnNotify(code, param, nullptr);
    return JsonLine().Str("host", "notify").Int("ret", ret).Done();
}

std::string LineProtocol::Detach(const rapidjson::Value& line) {
    auto ci = static_cast<uint32_t>(IntMember(line, "ci", std::nullopt, 0, kU32Max));
    m_pModule->ClientDetached(ci);
    return JsonLine().Str("host", "detach").Int("ret", 0).Done();
}

std::string LineProtocol::SeList() {
    uint32_t* list = nullptr;
    uint8_t count = 0;
    int ret = m_pModule->GetServerSeList(&list, &count);
    std::string numbers = "[";
    for (uint8_t i = 0; list && i < count; ++i) {
        if (i)
            numbers += ",";
        numbers += std::to_string(list[i]);
    }
    numbers += "]";
    return JsonLine().Str("host", "selist").Int("ret", ret).Raw("list", numbers).Done();
}

std::string LineProtocol::Stop() {
    Stopwatch watch;
    int ret = m_pModule->Stop();
    return JsonLine().Str("host", "stop").Int("ret", ret).Int("ms", watch.Ms()).Done();
}

std::string LineProtocol::Answer(const rapidjson::Value& line) {
    auto oc = static_cast<uint32_t>(IntMember(line, "oc", std::nullopt, 0, kU32Max));
    std::string error;
    if (!m_Switch.SetAnswer(oc, ToJson(ObjectMember(line, "reply")), error)) {
        throw ActionError(error);
    }
    return JsonLine().Str("host", "answer").Int("ret", 1).Done();
}

std::string LineProtocol::Request(const rapidjson::Value& line) {
    std::string record = ToJson(ObjectMember(line, "record"));
    auto index = static_cast<uint32_t>(IntMember(line, "index", 0, 0, kMaxCommandIndex));
    return Record(record, index);
}

std::string LineProtocol::Burst(const rapidjson::Value& line) {
    std::string json = ToJson(ObjectMember(line, "record"));
    int64_t threads = IntMember(line, "threads", std::nullopt, 1, kMaxBurstThreads);
    int64_t repeat = IntMember(line, "repeat", std::nullopt, 1, kMaxBurstCalls);
    if (threads * repeat > kMaxBurstCalls) {
        throw ActionError("threads * repeat is above " + std::to_string(kMaxBurstCalls));
    }
    std::mutex countMutex;
    std::map<uint32_t, uint64_t> statuses;
    Stopwatch watch;
    std::vector<std::thread> workers;
    for (int64_t t = 0; t < threads; ++t) {
        workers.emplace_back([&] {
            std::map<uint32_t, uint64_t> mine;
            for (int64_t i = 0; i < repeat; ++i) {
                CommandRecord record;
                record.SetJson(json);
                m_pModule->ModuleRequest(&record);
                ++mine[record.GetField("ST", status::kMissing)];
            }
            std::lock_guard<std::mutex> lock(countMutex);
            for (const auto& [st, n] : mine)
                statuses[st] += n;
        });
    }
    for (auto& w : workers)
        w.join();
    int64_t ms = watch.Ms();
    JsonLine counts;
    for (const auto& [st, n] : statuses)
        counts.UInt(std::to_string(st).c_str(), n);
    return JsonLine()
        .Str("host", "burst")
        .Int("ret", 1)
        .Int("count", threads * repeat)
        .Raw("statuses", counts.Done())
        .Int("ms", ms)
        .Done();
}

std::string LineProtocol::WaitEvents(const rapidjson::Value& line) {
    int64_t count = IntMember(line, "count", std::nullopt, 0, INT64_MAX);
    int64_t timeout = IntMember(line, "timeout_ms", std::nullopt, 0, m_nMaxWaitMs);
    uint64_t total =
        m_Switch.WaitForEvents(static_cast<uint64_t>(count), static_cast<uint64_t>(timeout));
    return JsonLine().Str("host", "wait-events").UInt("ret", total).Done();
}

std::string LineProtocol::Sleep(const rapidjson::Value& line) {
    int64_t ms = IntMember(line, "ms", std::nullopt, 0, m_nMaxWaitMs);
    std::this_thread::sleep_for(std::chrono::milliseconds(ms));
    return JsonLine().Str("host", "sleep").Int("ret", 0).Done();
}
