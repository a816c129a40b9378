// The module's answers to the switch: each request's object code selects a row, and the
// row answers from the client's snapshot of the storage tree.
#include <cstdlib>

#include "raid/EM_TLRAID.h"
#include "raid/ObjectCodes.h"
#include "raid/StorageRequest.h"
#include "runtime/DebugClient.h"

namespace {

constexpr uint32_t kTraceLevel = 2;
constexpr char kVersionVariable[] = "TL_RAID_VERSION";

void AnswerVersion(CommandRecord& record) {
    const char* version = getenv(kVersionVariable);
    bool known = version && *version;
    TLR_TRACE(3, "\nCOsInfo             :    GetTessalineRaidVersion: %s\n",
              known ? version : "N/A");
    if (known)
        record.SetDataString(version, status::kOk);
}

}  // namespace

uint32_t EM_TLRAID::ModuleRequest(CommandRecord* record) {
    TraceRequest(*record, kTraceLevel);
    uint32_t result = 1;
    if (!record->IsForThisCabinet()) {
        // Requests for an enclosure's cabinet are answered from the enclosure map, which
        // holds no cabinet yet.
        result = 0;
        record->SetStatus(status::kCabinetUnknown);
        TLR_TRACE(4, "\nEM_TLRaid           : REQUEST for cabinet %d rejected",
                  static_cast<int>(record->GetField("CA", 0)));
    } else {
        record->SetStatus(status::kNotAvailable);
        Dispatch(*record, result);
    }
    TraceReturn(*record, kTraceLevel);
    return result;
}

void EM_TLRAID::Dispatch(CommandRecord& record, uint32_t& result) {
    uint32_t code = record.GetField("OC", 0);
    switch (code) {
        case oc::kVersionGroup:
            if (record.GetField("OE", 0) == oc::kVersionSelector) {
                AnswerVersion(record);
            } else {
                result = 0;
                record.SetStatus(status::kUnknownCode);
            }
            return;
        case oc::kReserved0C20:
        case oc::kReserved0C21:
            result = 0;
            return;
        case oc::kNoObject1041:
        case oc::kNoObject1042:
            record.SetStatus(status::kNoSuchObject);
            return;
        default:
            break;
    }
    CStorageRequest request(*this, record);
    if (!request.Answer(code)) {
        result = 0;
        record.SetStatus(status::kUnknownCode);
    }
}
