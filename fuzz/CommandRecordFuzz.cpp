// Any JSON text as a command record: every reader and the record trace at a few command
// indexes, then writes to a copy, whose JSON must parse again.
#include <cstdlib>
#include <string>
#include <vector>

#include "FuzzKit.h"
#include "frame/CommandRecord.h"
#include "frame/RecordTrace.h"

namespace {

const char* const kFields[] = {"OC", "OE", "OI", "CI", "CA", "MI", "ST", "DA", ""};

void ReadAll(const CommandRecord& record, uint32_t index) {
    record.Command(index);
    for (const char* name : kFields) {
        record.GetField(index, name, 7);
        record.HasField(index, name);
    }
    record.GetDataLength(index);
    uint32_t value = 0;
    record.GetDataUInt(index, value);
    std::string text;
    for (uint32_t start : {0u, 1u, 4u, 0xFFFFFFFFu})
        record.GetDataString(index, text, start);
    std::vector<uint8_t> bytes;
    record.GetDataBytes(index, bytes);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    DropTrace();
    CommandRecord record;
    if (!record.SetJson(AsText(data, size)))
        return 0;
    for (uint32_t index : {0u, 1u, 3u, 0xFFFFFFFFu}) {
        ReadAll(record, index);
        record.SelectCommand(index);
        record.HasData();
        record.IsForThisCabinet();
        TraceRecord(5, "EM_TLRAID (REQ)", record);
    }
    // Writers on a copy, at a command index that the last byte chooses.
    CommandRecord copy(record);
    copy.SelectCommand(size ? data[size - 1] % 4 : 0);
    copy.SetDataString("text", 1);
    copy.RemoveField("MI");
    copy.SetDataRaw(std::vector<uint8_t>(data, data + (size < 8 ? size : 8)), 2);
    ReadAll(copy, copy.CurrentIndex());
    TraceRecord(5, "EM_TLRAID (RET)", copy);
    CommandRecord again;
    if (!again.SetJson(copy.ToJson()))
        abort();
    return 0;
}
