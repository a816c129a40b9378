#include "frame/CommandRecord.h"

namespace {

// Sets a member in place, or appends it. The name is a constant of the program.
void SetMember(rapidjson::Value& object, const char* name, rapidjson::Value&& value,
               rapidjson::Document::AllocatorType& allocator) {
    rapidjson::Value* existing =
        const_cast<rapidjson::Value*>(CommandRecord::FindMember(object, name));
    if (existing) {
        *existing = std::move(value);
    } else {
        object.AddMember(rapidjson::StringRef(name), value, allocator);
    }
}

}  // namespace

rapidjson::Value* CommandRecord::EnsureCommand() {
    if (!m_Document.IsObject())
        return nullptr;
    auto* sip = const_cast<rapidjson::Value*>(FindMember(m_Document, "SIP"));
    if (!sip || !sip->IsObject())
        return nullptr;
    auto* cmd = const_cast<rapidjson::Value*>(FindMember(*sip, "CMD"));
    if (!cmd || !cmd->IsArray())
        return nullptr;
    while (cmd->Size() <= m_nCurrentCommand) {
        cmd->PushBack(rapidjson::Value(rapidjson::kObjectType), m_Document.GetAllocator());
    }
    rapidjson::Value& entry = (*cmd)[m_nCurrentCommand];
    return entry.IsObject() ? &entry : nullptr;
}

void CommandRecord::SetField(const char* name, rapidjson::Value&& value) {
    if (rapidjson::Value* entry = EnsureCommand()) {
        SetMember(*entry, name, std::move(value), m_Document.GetAllocator());
    }
}

void CommandRecord::CopyField(const char* name, const rapidjson::Value& value) {
    SetField(name, rapidjson::Value(value, m_Document.GetAllocator()));
}

void CommandRecord::RemoveField(const char* name) {
    if (auto* entry = const_cast<rapidjson::Value*>(Command(m_nCurrentCommand))) {
        entry->RemoveMember(name);
    }
}

void CommandRecord::SetStatus(uint32_t status) {
    SetField("ST", rapidjson::Value(status));
}

void CommandRecord::SetDataByte(int value, uint32_t status) {
    SetField("DA", rapidjson::Value(static_cast<unsigned>(value & kLowByteMask)));
    SetStatus(status);
}

void CommandRecord::SetDataUInt(uint32_t value, uint32_t status) {
    SetField("DA", rapidjson::Value(value));
    SetStatus(status);
}

void CommandRecord::SetDataUInt64(uint64_t value, uint32_t status) {
    // The value's constructor picks the narrowest number form that holds it.
    SetField("DA", rapidjson::Value(value));
    SetStatus(status);
}

void CommandRecord::SetDataString(const char* text, uint32_t status) {
    SetField("DA", rapidjson::Value(text ? text : "", m_Document.GetAllocator()));
    SetStatus(status);
}

void CommandRecord::SetDataRaw(const std::vector<uint8_t>& bytes, uint32_t status) {
    rapidjson::Value* entry = EnsureCommand();
    if (!entry)
        return;
    auto& allocator = m_Document.GetAllocator();
    if (bytes.empty()) {
        // RemoveMember moves the last member into the freed place.
        if (entry->HasMember("DA"))
            entry->RemoveMember("DA");
        SetStatus(status);
        return;
    }
    rapidjson::Value raw(rapidjson::kArrayType);
    raw.Reserve(static_cast<rapidjson::SizeType>(bytes.size()), allocator);
    for (uint8_t b : bytes)
        raw.PushBack(static_cast<unsigned>(b), allocator);

    auto* data = const_cast<rapidjson::Value*>(FindMember(*entry, "DA"));
    if (data && data->IsObject()) {
        if (data->HasMember("RAW"))
            data->RemoveMember("RAW");
        data->AddMember("RAW", raw, allocator);
    } else {
        rapidjson::Value object(rapidjson::kObjectType);
        object.AddMember("RAW", raw, allocator);
        SetMember(*entry, "DA", std::move(object), allocator);
    }
    SetStatus(status);
}
