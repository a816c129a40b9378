// What the module asks of the REST daemon outside the snapshots: the raw tree for a client,
// and the Redfish requests it passes through; and the test attribute that clients set.
#include "raid/EM_TLRAID.h"
#include "runtime/DebugClient.h"

namespace {

// The pass-through waits for the RAID manager as long as it takes.
constexpr uint32_t kRedfishTimeoutSec = 0;

}  // namespace

bool EM_TLRAID::FetchRawTree(std::string& xml) {
    return m_pDaemon->FetchTree(xml, m_Timings.nRequestTreeTimeoutSec);
}

int EM_TLRAID::RaidRedfishRequest(const std::string& body, std::string& reply) {
    TLR_TRACE(3, "\nTLRAIDRestClient    : RaidRedfishRequest [%s]", body.c_str());
    // The daemon's reply is all the client gets; whether the POST went out isn't told.
    m_pDaemon->PostRedfish(body, reply, kRedfishTimeoutSec);
    return 1;
}

void EM_TLRAID::SetTestAttribute(const std::string& name, uint32_t value) {
    std::lock_guard<std::mutex> lock(m_TestAttributeLock);
    m_sTestAttribute = name;
    m_nTestAttributeValue = value;
}

std::string EM_TLRAID::GetTestAttribute(uint32_t& value) {
    std::lock_guard<std::mutex> lock(m_TestAttributeLock);
    value = m_nTestAttributeValue;
    return m_sTestAttribute;
}
