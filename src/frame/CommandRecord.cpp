#include "frame/CommandRecord.h"

#include <rapidjson/error/en.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cmath>
#include <cstdlib>
#include <cstring>

#include "frame/CabinetNumber.h"

namespace {

// True when a number anywhere in the value is beyond the range of a double: the parser lets
// some of them through as infinite, and no JSON text can be written for them.
bool HoldsInfiniteNumber(const rapidjson::Value& root) {
    std::vector<const rapidjson::Value*> pending{&root};
    while (!pending.empty()) {
        const rapidjson::Value* v = pending.back();
        pending.pop_back();
        if (v->IsDouble() && !std::isfinite(v->GetDouble()))
            return true;
        if (v->IsArray()) {
            for (const rapidjson::Value& element : v->GetArray())
                pending.push_back(&element);
        } else if (v->IsObject()) {
            for (const auto& member : v->GetObject())
                pending.push_back(&member.value);
        }
    }
    return false;
}

// The low 32 bits of any JSON number.
uint32_t Low32(const rapidjson::Value& v) {
    if (v.IsUint64())
        return static_cast<uint32_t>(v.GetUint64());
    if (v.IsInt64())
        return static_cast<uint32_t>(v.GetInt64());
    double d = v.GetDouble();
    if (!std::isfinite(d) || d >= 9.2e18 || d <= -9.2e18)
        return 0;
    return static_cast<uint32_t>(static_cast<int64_t>(d));
}

// A number written as text: "0x.." is hex, a leading "0" octal, anything else decimal.
uint32_t NumberFromText(const char* s, size_t len) {
    if (len <= 1 || s[0] != '0')
        return static_cast<uint32_t>(strtoul(s, nullptr, 10));
    if (len >= 3 && (s[1] == 'x' || s[1] == 'X')) {
        return static_cast<uint32_t>(strtoul(s + 2, nullptr, 16));
    }
    return static_cast<uint32_t>(strtoul(s + 1, nullptr, 8));
}

uint8_t LowByte(const rapidjson::Value& v) {
    return v.IsNumber() ? Low32(v) & CommandRecord::kLowByteMask : 0;
}

// Bytes needed for a number: 1, 2, 4 or 8, the fewest that hold it.
size_t NumberWidth(const rapidjson::Value& v) {
    if (v.IsUint64()) {
        uint64_t u = v.GetUint64();
        return u <= UINT8_MAX ? 1 : u <= UINT16_MAX ? 2 : u <= UINT32_MAX ? 4 : 8;
    }
    if (v.IsInt64()) {
        int64_t i = v.GetInt64();
        return i >= INT8_MIN ? 1 : i >= INT16_MIN ? 2 : i >= INT32_MIN ? 4 : 8;
    }
    return 8;
}

const rapidjson::Value* RawArray(const rapidjson::Value& data) {
    const rapidjson::Value* raw = CommandRecord::FindMember(data, "RAW");
    return raw && raw->IsArray() ? raw : nullptr;
}

}  // namespace

CommandRecord::CommandRecord() = default;

CommandRecord::CommandRecord(uint32_t oc, uint32_t oe, uint32_t oi, uint32_t ca, uint32_t st) {
    auto& a = m_Document.GetAllocator();
    rapidjson::Value cmd(rapidjson::kArrayType);
    cmd.PushBack(rapidjson::Value(rapidjson::kObjectType), a);
    rapidjson::Value sip(rapidjson::kObjectType);
    sip.AddMember("V", 1, a);
    sip.AddMember("CMD", cmd, a);
    m_Document.SetObject();
    m_Document.AddMember("SIP", sip, a);

    rapidjson::Value& entry = m_Document["SIP"]["CMD"][0];
    entry.AddMember("OC", oc, a);
    if (oe != 0)
        entry.AddMember("OE", oe, a);
    if (oi != 0)
        entry.AddMember("OI", oi, a);
    entry.AddMember("CA", ca, a);
    if (st != status::kNone)
        entry.AddMember("ST", st, a);
}

CommandRecord::CommandRecord(const CommandRecord& other)
    : m_nCurrentCommand(other.m_nCurrentCommand) {
    m_Document.CopyFrom(other.m_Document, m_Document.GetAllocator());
}

CommandRecord& CommandRecord::operator=(const CommandRecord& other) {
    if (this != &other) {
        // A fresh document, so that the old one's allocations go with it.
        rapidjson::Document copy;
        copy.CopyFrom(other.m_Document, copy.GetAllocator());
        m_Document.Swap(copy);
        m_nCurrentCommand = other.m_nCurrentCommand;
    }
    return *this;
}

bool CommandRecord::SetJson(std::string_view text) {
    rapidjson::Document parsed;
    parsed.Parse<rapidjson::kParseIterativeFlag>(text.data(), text.size());
    if (parsed.HasParseError() || HoldsInfiniteNumber(parsed))
        return false;
    m_Document.Swap(parsed);
    return true;
}

std::string CommandRecord::ToJson() const {
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    m_Document.Accept(writer);
    return std::string(buffer.GetString(), buffer.GetSize());
}

const rapidjson::Value* CommandRecord::FindMember(const rapidjson::Value& object,
                                                  const char* name) {
    if (!object.IsObject())
        return nullptr;
    size_t len = strlen(name);
    for (auto it = object.MemberBegin(); it != object.MemberEnd(); ++it) {
        if (it->name.IsString() && it->name.GetStringLength() == len &&
            memcmp(it->name.GetString(), name, len) == 0) {
            return &it->value;
        }
    }
    return nullptr;
}

const rapidjson::Value* CommandRecord::Command(uint32_t index) const {
    const rapidjson::Value* sip = FindMember(m_Document, "SIP");
    if (!sip || !sip->IsObject())
        return nullptr;
    const rapidjson::Value* cmd = FindMember(*sip, "CMD");
    if (!cmd || !cmd->IsArray() || index >= cmd->Size())
        return nullptr;
    const rapidjson::Value& entry = (*cmd)[index];
    return entry.IsObject() ? &entry : nullptr;
}

uint32_t CommandRecord::GetField(uint32_t index, const char* name, uint32_t defaultValue) const {
    const rapidjson::Value* entry = Command(index);
    const rapidjson::Value* v = entry ? FindMember(*entry, name) : nullptr;
    if (!v)
        return defaultValue;
    if (v->IsNumber())
        return Low32(*v);
    if (v->IsString())
        return NumberFromText(v->GetString(), v->GetStringLength());
    return defaultValue;
}

bool CommandRecord::HasField(uint32_t index, const char* name) const {
    const rapidjson::Value* entry = Command(index);
    return entry && FindMember(*entry, name);
}

const rapidjson::Value* CommandRecord::Data(uint32_t index) const {
    const rapidjson::Value* entry = Command(index);
    return entry ? FindMember(*entry, "DA") : nullptr;
}

bool CommandRecord::HasData() const {
    const rapidjson::Value* data = Data(m_nCurrentCommand);
    if (!data || data->IsNull())
        return false;
    if (data->IsString())
        return GetDataLength(m_nCurrentCommand) != 0;
    return true;
}

size_t CommandRecord::GetDataLength(uint32_t index) const {
    const rapidjson::Value* data = Data(index);
    if (!data)
        return 0;
    if (data->IsNumber())
        return data->IsDouble() ? 0 : 8;
    if (data->IsString())
        return data->GetStringLength() + 1;
    if (data->IsBool())
        return 1;
    if (data->IsObject()) {
        const rapidjson::Value* raw = RawArray(*data);
        return raw ? raw->Size() : 0;
    }
    if (!data->IsArray() || data->Empty())
        return 0;
    size_t length = 0;
    if ((*data)[0].IsString()) {
        for (const auto& e : data->GetArray()) {
            if (e.IsString())
                length += e.GetStringLength() + 1;
        }
        return length + 1;
    }
    for (const auto& e : data->GetArray()) {
        if (e.IsNumber())
            length += NumberWidth(e);
    }
    return length;
}

bool CommandRecord::GetDataUInt(uint32_t index, uint32_t& value) const {
    const rapidjson::Value* data = Data(index);
    if (!data)
        return false;
    if (data->IsObject()) {
        const rapidjson::Value* raw = RawArray(*data);
        if (!raw || raw->Empty())
            return false;
        const rapidjson::Value& r = *raw;
        size_t n = r.Size();
        if (n == 1) {
            value = r[0].IsNumber() ? Low32(r[0]) : 0;
        } else if (n == 2) {
            value = (LowByte(r[0]) + (static_cast<uint32_t>(LowByte(r[1])) << 8)) & 0xFFFF;
        } else {
            // A fourth byte that the array doesn't have reads as 0.
            uint32_t b3 = n > 3 ? LowByte(r[3]) : 0;
            value = LowByte(r[0]) | static_cast<uint32_t>(LowByte(r[1])) << 8 |
                    static_cast<uint32_t>(LowByte(r[2])) << 16 | b3 << 24;
        }
        return true;
    }
    if (data->IsInt() || data->IsUint()) {
        value = Low32(*data);
        return true;
    }
    if (data->IsBool()) {
        value = data->GetBool() ? 1 : 0;
        return true;
    }
    return false;
}

bool CommandRecord::GetDataString(uint32_t index, std::string& text, uint32_t start) const {
    const rapidjson::Value* data = Data(index);
    if (!data)
        return false;
    if (data->IsObject()) {
        const rapidjson::Value* raw = RawArray(*data);
        if (!raw || start >= raw->Size() || !(*raw)[0].IsUint64())
            return false;
        std::string out;
        for (rapidjson::SizeType i = start; i < raw->Size(); ++i) {
            uint8_t byte = LowByte((*raw)[i]);
            if (byte == 0)
                break;
            out.push_back(static_cast<char>(byte));
        }
        text = std::move(out);
        return true;
    }
    if (data->IsString()) {
        if (start != 0)
            return false;
        text = data->GetString();
        return true;
    }
    if (data->IsNull()) {
        text.clear();
        return true;
    }
    return false;
}

bool CommandRecord::GetDataBytes(uint32_t index, std::vector<uint8_t>& bytes) const {
    bytes.clear();
    const rapidjson::Value* data = Data(index);
    if (!data)
        return false;
    if (data->IsObject()) {
        const rapidjson::Value* raw = RawArray(*data);
        if (raw && !raw->Empty() && (*raw)[0].IsUint64()) {
            for (const auto& e : raw->GetArray())
                bytes.push_back(LowByte(e));
        }
        return true;
    }
    if (data->IsArray()) {
        if (data->Empty() || !(*data)[0].IsString())
            return false;
        for (const auto& e : data->GetArray()) {
            if (!e.IsString())
                continue;
            bytes.insert(bytes.end(), e.GetString(), e.GetString() + e.GetStringLength());
            bytes.push_back(0);
        }
        bytes.push_back(0);
        return true;
    }
    if (data->IsString()) {
        bytes.assign(data->GetString(), data->GetString() + data->GetStringLength());
        bytes.push_back(0);
        return true;
    }
    if (data->IsUint64()) {
        uint64_t v = data->GetUint64();
        size_t width = NumberWidth(*data);
        for (size_t i = 0; i < width; ++i)
            bytes.push_back(static_cast<uint8_t>(v >> (8 * i)));
        return true;
    }
    return false;
}

bool CommandRecord::IsForThisCabinet() const {
    if (!HasField("CA"))
        return true;
    int32_t ca = static_cast<int32_t>(GetField("CA", 0));
    return ca == -1 || static_cast<uint32_t>(ca) == g_nCabinetNumber.load();
}
