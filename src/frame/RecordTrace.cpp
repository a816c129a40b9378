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
    uint32_t index = record.CurrentIndex();
    unsigned mi = record.GetField(index, "MI", 0);

    // The line: codes and ids, the cabinet where the record names one, then the data.
    char head[160];
    int n = snprintf(head, sizeof(head), "\n%-20s: OC 0x%04X-0x%04X OID 0x%04X", tag,
                     record.GetField(index, "OC", 0), record.GetField(index, "OE", 0),
                     record.GetField(index, "OI", 0));
    if (n > 0 && record.HasField(index, "CA") && static_cast<size_t>(n) < sizeof(head)) {
        n += snprintf(head + n, sizeof(head) - n, " CABID %04d",
                      static_cast<int>(record.GetField(index, "CA", 0)));
    }
    if (n > 0 && static_cast<size_t>(n) < sizeof(head)) {
        snprintf(head + n, sizeof(head) - n, " MID 0x%04X%04X Stat 0x%02X", mi >> 16, mi & 0xFFFF,
                 record.GetField(index, "ST", status::kMissing));
    }

    const rapidjson::Value* entry = record.Command(index);
    const rapidjson::Value* data = entry ? CommandRecord::FindMember(*entry, "DA") : nullptr;
    std::string tail;
    if (!record.HasData()) {
        // codes and status only
    } else if (data->IsNumber()) {
        tail = " Data " + std::to_string(static_cast<int>(record.GetField(index, "DA", 0)));
    } else if (IsStruct(*data)) {
        tail = " Data (JSON struct):\n" + CompactJson(*data);
    } else {
        std::vector<uint8_t> bytes;
        record.GetDataBytes(index, bytes);
        tail = " Len " + std::to_string(static_cast<int>(bytes.size()));
    }
    g_DebugClient.Trace(level, "%s%s", head, tail.c_str());
}
