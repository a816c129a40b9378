#include "ModuleClient.h"

#include "frame/CommandRecord.h"
#include "frame/ExtensionModule.h"

Reply ModuleClient::Ask(uint32_t oc, uint32_t oe, uint32_t oi, const std::string& daJson) {
    CommandRecord record;
    std::string json = "{\"SIP\":{\"V\":1,\"CMD\":[{\"OC\":" + std::to_string(oc) +
                       ",\"OE\":" + std::to_string(oe) + ",\"OI\":" + std::to_string(oi) +
                       ",\"CI\":" + std::to_string(m_nClientId);
    if (m_Cabinet)
        json += ",\"CA\":" + std::to_string(*m_Cabinet);
    if (!daJson.empty())
        json += ",\"DA\":" + daJson;
    record.SetJson(json + "}]}}");
    m_Module.ModuleRequest(&record);
    Reply reply;
    reply.status = record.GetField("ST", status::kMissing);
    if (m_pTally) {
        ++m_pTally->nSent;
        m_pTally->nAnswered += reply.Ok() ? 1 : 0;
    }
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

uint32_t ModuleClient::Count(uint32_t oc, uint32_t oe) {
    Reply r = Ask(oc, oe);
    return r.Ok() ? static_cast<uint32_t>(r.number) : 0;
}

std::string ModuleClient::NoAnswerReason(uint32_t status) {
    switch (status) {
        case status::kNoSuchObject:
            return "no such object";
        case status::kNoRaidData:
            return "no RAID data";
        case status::kNotAvailable:
            return "not available";
        case status::kCabinetUnknown:
            return "no such cabinet";
        default:
            return "status " + std::to_string(status);
    }
}
