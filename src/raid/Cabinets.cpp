// The external enclosures as the server's cabinets: requests addressed to a cabinet, the
// list of the cabinets for the switch and for a client.
#include "enclosure/CabinetRequest.h"
#include "raid/EM_TLRAID.h"
#include "raid/RequestTable.h"

EnclosureMap& EM_TLRAID::EnclosureMapForRequests() {
    // Never written: it has no cabinet, so no request gets as far as changing a record.
    static EnclosureMap s_NoCabinets;
    return m_bEnclosureMapReady.load(std::memory_order_acquire) ? m_EnclosureMap : s_NoCabinets;
}

int EM_TLRAID::GetServerSeList(uint32_t** list, uint8_t* count) {
    return ::GetServerSeList(EnclosureMapForRequests(), list, count);
}

namespace rows {

void CabinetList(CRequest& r, const RequestRow&) {
    AnswerCabinetList(r.m_Module.EnclosureMapForRequests(), r.m_Record);
}

}  // namespace rows
