// The module's answers to the switch: each request's object code selects a row of the
// request table, and the row answers from the client's snapshot of the storage tree.
#include "enclosure/CabinetRequest.h"
#include "raid/EM_TLRAID.h"
#include "raid/RequestTable.h"

namespace {

constexpr uint32_t kTraceLevel = 2;

}  // namespace

uint32_t EM_TLRAID::ModuleRequest(CommandRecord* record) {
    TraceRequest(*record, kTraceLevel);
    uint32_t result = 0;
    if (!record->IsForThisCabinet()) {
        // Another cabinet: an enclosure's, answered from the enclosure map alone.
        result = HandleCabinetRequest(EnclosureMapForRequests(), *record);
    } else {
        record->SetStatus(status::kNotAvailable);
        result = AnswerRequest(*this, *record);
    }
    TraceReturn(*record, kTraceLevel);
    return result;
}
