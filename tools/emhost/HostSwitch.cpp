#include "HostSwitch.h"

#include <rapidjson/document.h>

#include <chrono>

#include "JsonDepth.h"
#include "frame/CommandRecord.h"

bool HostSwitch::SetAnswer(uint32_t oc, const std::string& replyJson, std::string& error) {
    constexpr size_t kMaxAnswerNesting = 512;
    if (JsonNestingDepth(replyJson) > kMaxAnswerNesting) {
        error = "the answer for object code " + std::to_string(oc) + " nests too deeply";
        return false;
    }
    rapidjson::Document reply;
    reply.Parse<rapidjson::kParseIterativeFlag>(replyJson.c_str(), replyJson.size());
    if (reply.HasParseError() || !reply.IsObject()) {
        error = "the answer for object code " + std::to_string(oc) + " is no JSON object";
        return false;
    }
    std::lock_guard<std::mutex> lock(m_AnswerMutex);
    m_Answers[oc] = replyJson;
    return true;
}

int HostSwitch::SendRequest(CIExtensionModule*, CommandRecord* record, uint32_t timeoutMs) {
    if (!record)
        return 0;
    m_Output.WriteLine("{\"switch-request\":" + record->ToJson() +
                       ",\"timeout_ms\":" + std::to_string(timeoutMs) + "}");
    std::string replyJson;
    {
        std::lock_guard<std::mutex> lock(m_AnswerMutex);
        auto it = m_Answers.find(record->GetField("OC", 0));
        if (it == m_Answers.end())
            return 0;
        replyJson = it->second;
    }
    rapidjson::Document reply;
    reply.Parse(replyJson.c_str(), replyJson.size());
    for (const char* name : {"ST", "DA"}) {
        const rapidjson::Value* value = CommandRecord::FindMember(reply, name);
        if (value)
            record->CopyField(name, *value);
    }
    return 0;
}

int HostSwitch::SendEvent(CIExtensionModule*, CommandRecord* record) {
    if (!record)
        return 0;
    m_Output.WriteLine("{\"event\":" + record->ToJson() + "}");
    EventListener listener;
    {
        std::lock_guard<std::mutex> lock(m_EventMutex);
        ++m_nEvents;
        listener = m_EventListener;
    }
    if (listener)
        listener(*record);
    m_EventArrived.notify_all();
    return 0;
}

void HostSwitch::SetEventListener(EventListener listener) {
    std::lock_guard<std::mutex> lock(m_EventMutex);
    m_EventListener = std::move(listener);
}

uint64_t HostSwitch::WaitForEvents(uint64_t count, uint64_t timeoutMs) {
    std::unique_lock<std::mutex> lock(m_EventMutex);
    m_EventArrived.wait_for(lock, std::chrono::milliseconds(timeoutMs),
                            [&] { return m_nEvents >= count; });
    return m_nEvents;
}
