#include "RaidTestKit.h"

#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <chrono>
#include <sstream>
#include <thread>

#include "support/CaptureTraceServer.h"
#include "support/Process.h"
#include "support/SandboxHost.h"

void FakeSwitch::Answer(uint32_t oc, const std::string& replyJson) {
    std::lock_guard<std::mutex> lock(m_Mutex);
    m_Answers[oc] = replyJson;
}

int FakeSwitch::SendRequest(CIExtensionModule*, CommandRecord* record, uint32_t) {
    std::lock_guard<std::mutex> lock(m_Mutex);
    m_Requests.push_back(record->ToJson());
    auto it = m_Answers.find(record->GetField("OC", 0));
    if (it == m_Answers.end())
        return 0;
    rapidjson::Document reply;
    reply.Parse(it->second.c_str());
    for (const char* name : {"ST", "DA"}) {
        if (const rapidjson::Value* v = CommandRecord::FindMember(reply, name))
            record->CopyField(name, *v);
    }
    return 0;
}

std::vector<std::string> FakeSwitch::Requests() {
    std::lock_guard<std::mutex> lock(m_Mutex);
    return m_Requests;
}

bool WaitUntil(const std::function<bool()>& condition, int capMs) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(capMs);
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

bool Has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

size_t Count(const std::string& text, const std::string& part) {
    size_t n = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++n;
    return n;
}

std::string TraceUntil(const std::string& part, size_t times, int capMs) {
    std::string seen;
    WaitUntil(
        [&] {
            seen += Debug.Take();
            return Count(seen, part) >= times;
        },
        capMs);
    return seen;
}

std::string SampleTree(const std::string& name) {
    return ReadWholeFile(SourcePath("samples/trees/" + name));
}

void RaidModuleTest::TearDown() {
    if (m_pModule && m_bStarted)
        m_pModule->Stop();
    m_pModule.reset();
}

void RaidModuleTest::ServeSample(const std::string& sampleName) {
    ServeTree(SampleTree(sampleName));
    m_pDaemon->SetUp(true);
}

EM_TLRAID& RaidModuleTest::MakeModule(bool start) {
    return MakeModule(FastTimings(), PollingClock(), start);
}

EM_TLRAID& RaidModuleTest::MakeModule(const RaidTimings& timings, const PollingClock& clock,
                                      bool start) {
    m_pModule = std::make_unique<EM_TLRAID>(timings, m_pDaemon, clock);
    if (start) {
        m_pModule->Start(&m_Switch, 0);
        m_bStarted = true;
    }
    return *m_pModule;
}

int RaidModuleTest::StartModule(const RaidTimings& timings) {
    MakeModule(timings, PollingClock(), false);
    m_bStarted = true;
    return m_pModule->Start(&m_Switch, 0);
}

int RaidModuleTest::StopModule() {
    m_bStarted = false;
    return m_pModule->Stop();
}

std::unique_ptr<CommandRecord> RaidModuleTest::Ask(uint32_t oc, uint32_t oe, uint32_t oi,
                                                   uint32_t ci, const std::string& daJson) {
    auto record = std::make_unique<CommandRecord>();
    std::string command = "{\"OC\":" + std::to_string(oc) + ",\"OE\":" + std::to_string(oe) +
                          ",\"OI\":" + std::to_string(oi) + ",\"CI\":" + std::to_string(ci);
    if (!daJson.empty())
        command += ",\"DA\":" + daJson;
    record->SetJson("{\"SIP\":{\"V\":1,\"CMD\":[" + command + "}]}}");
    m_pModule->ModuleRequest(record.get());
    return record;
}

std::string RaidModuleTest::Answer(uint32_t oc, uint32_t oe, uint32_t oi, uint32_t ci,
                                   const std::string& daJson) {
    auto record = Ask(oc, oe, oi, ci, daJson);
    const rapidjson::Value* cmd = record->Command(0);
    rapidjson::Document out(rapidjson::kObjectType);
    for (const char* name : {"ST", "DA"}) {
        if (const rapidjson::Value* v = cmd ? CommandRecord::FindMember(*cmd, name) : nullptr)
            out.AddMember(rapidjson::StringRef(name), rapidjson::Value(*v, out.GetAllocator()),
                          out.GetAllocator());
    }
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    out.Accept(writer);
    return buffer.GetString();
}

void RaidModuleTest::CheckRows(const std::string& file, const std::string& section,
                               uint32_t client) {
    std::istringstream rows(ReadWholeFile(SourcePath("tests/raid/testdata/" + file)));
    bool inSection = false;
    size_t asked = 0;
    for (std::string line; std::getline(rows, line);) {
        if (!line.empty() && line[0] == '[')
            inSection = line == "[" + section + "]";
        if (!inSection || line.empty() || line[0] == '#' || line[0] == '[')
            continue;
        std::istringstream row(line);
        std::string oc, da, want;
        uint32_t oe = 0, oi = 0;
        row >> oc >> oe >> oi >> da >> std::ws;
        std::getline(row, want);
        EXPECT_EQ(Answer(std::stoul(oc, nullptr, 16), oe, oi, client, da == "-" ? "" : da), want)
            << line;
        ++asked;
    }
    EXPECT_GT(asked, 0u) << section;
}
