#include "frame/RecordTrace.h"

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cstdio>
#include <string>
#include <vector>

#include "frame/CommandRecord.h"
#include "runtime/DebugClient.h"

namespace {

// Compact JSON whose doubles print as "%g".
class TraceJsonWriter : public rapidjson::Writer<rapidjson::StringBuffer> {
  public:
    using rapidjson::Writer<rapidjson::StringBuffer>::Writer;
    bool Double(double d) {
        char text[64];
        int n = snprintf(text, sizeof(text), "%g", d);
        return RawValue(text, static_cast<size_t>(n), rapidjson::kNumberType);
    }
};

std::string CompactJson(const rapidjson::Value& value) {
    rapidjson::StringBuffer buffer;
    TraceJsonWriter writer(buffer);
    value.Accept(writer);
    return std::string(buffer.GetString(), buffer.GetSize());
}

bool IsStruct(const rapidjson::Value& data) {
    if (data.IsObject())
        return !CommandRecord::FindMember(data, "RAW");
    return data.IsArray() && !data.Empty() && data[0].IsObject();
}

}  // namespace

void TraceRecord(uint32_t level, const char* tag, const CommandRecord& record) {
    if (!g_DebugClient.IsEnabled())
        return;
    uint32_t index = record.m_nCurrentCommand;
    unsigned oc = record.GetField(index, "OC", 0);
    unsigned oe = record.GetField(index, "OE", 0);
    unsigned oi = record.GetField(index, "OI", 0);
    unsigned mi = record.GetField(index, "MI", 0);
    unsigned st = record.GetField(index, "ST", CommandRecord::kDefaultStatus);
    unsigned mid_hi = mi >> 16, mid_lo = mi & 0xFFFF;
    bool withCa = record.HasField(index, "CA");
    int ca = static_cast<int>(record.GetField(index, "CA", 0));

    const rapidjson::Value* entry = record.Command(index);
    const rapidjson::Value* data = entry ? CommandRecord::FindMember(*entry, "DA") : nullptr;

    if (!record.HasData()) {
        if (withCa) {
            g_DebugClient.Trace(level,
                                "\n%-20s: OC 0x%04X-0x%04X OID 0x%04X CABID %04d MID 0x%04X%04X "
                                "Stat 0x%02X",
                                tag, oc, oe, oi, ca, mid_hi, mid_lo, st);
        } else {
            g_DebugClient.Trace(level,
                                "\n%-20s: OC 0x%04X-0x%04X OID 0x%04X MID 0x%04X%04X Stat 0x%02X",
                                tag, oc, oe, oi, mid_hi, mid_lo, st);
        }
    } else if (data->IsNumber()) {
        int value = static_cast<int>(record.GetField(index, "DA", 0));
        if (withCa) {
            g_DebugClient.Trace(level,
                                "\n%-20s: OC 0x%04X-0x%04X OID 0x%04X CABID %04d MID 0x%04X%04X "
                                "Stat 0x%02X Data %d",
                                tag, oc, oe, oi, ca, mid_hi, mid_lo, st, value);
        } else {
            g_DebugClient.Trace(level,
                                "\n%-20s: OC 0x%04X-0x%04X OID 0x%04X MID 0x%04X%04X Stat 0x%02X "
                                "Data %d",
                                tag, oc, oe, oi, mid_hi, mid_lo, st, value);
        }
    } else if (IsStruct(*data)) {
        std::string json = CompactJson(*data);
        if (withCa) {
            g_DebugClient.Trace(level,
                                "\n%-20s: OC 0x%04X-0x%04X OID 0x%04X CABID %04d MID 0x%04X%04X "
                                "Stat 0x%02X Data (JSON struct):\n%s",
                                tag, oc, oe, oi, ca, mid_hi, mid_lo, st, json.c_str());
        } else {
            g_DebugClient.Trace(level,
                                "\n%-20s: OC 0x%04X-0x%04X OID 0x%04X MID 0x%04X%04X Stat 0x%02X "
                                "Data (JSON struct):\n%s",
                                tag, oc, oe, oi, mid_hi, mid_lo, st, json.c_str());
        }
    } else {
        std::vector<uint8_t> bytes;
        record.GetDataBytes(index, bytes);
        int length = static_cast<int>(bytes.size());
        if (withCa) {
            g_DebugClient.Trace(level,
                                "\n%-20s: OC 0x%04X-0x%04X OID 0x%04X CABID %04d MID 0x%04X%04X "
                                "Stat 0x%02X Len %d",
                                tag, oc, oe, oi, ca, mid_hi, mid_lo, st, length);
        } else {
            g_DebugClient.Trace(level,
                                "\n%-20s: OC 0x%04X-0x%04X OID 0x%04X MID 0x%04X%04X Stat 0x%02X "
                                "Len %d",
                                tag, oc, oe, oi, mid_hi, mid_lo, st, length);
        }
    }
}
