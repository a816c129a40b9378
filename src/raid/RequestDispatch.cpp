// The module's answers to the switch: each request's object code selects a row of the
// request table, and the row answers from the client's snapshot of the storage tree.
#include "raid/EM_TLRAID.h"
#include "raid/RequestTable.h"
#include "runtime/DebugClient.h"

namespace {

constexpr uint32_t kTraceLevel = 2;

}  // namespace

uint32_t EM_TLRAID::ModuleRequest(CommandRecord* record) {
    TraceRequest(*record, kTraceLevel);
    uint32_t result = 0;
    if (!record->IsForThisCabinet()) {
        // Requests for an enclosure's cabinet are answered from the enclosure map, which
        // holds no cabinet yet.
        record->SetStatus(status::kCabinetUnknown);
        TLR_TRACE(4, "\nEM_TLRaid           : REQUEST for cabinet %d rejected",
                  static_cast<int>(record->GetField("CA", 0)));
    } else {
        record->SetStatus(status::kNotAvailable);
        result = AnswerRequest(*this, *record);
    }
    TraceReturn(*record, kTraceLevel);
    return result;
}
