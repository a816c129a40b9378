// Handlers of the rows about the server as a whole: overall statuses, SMART, the customer
// replaceable parts, the snapshot's renewal and the identity texts.
#include <cstdlib>

#include "raid/EM_TLRAID.h"
#include "raid/RequestTable.h"
#include "runtime/DebugClient.h"
#include "storage/StatusTables.h"

namespace rows {

namespace {

constexpr char kVersionVariable[] = "TL_RAID_VERSION";

}  // namespace

void MultiplexerStatus(CRequest& r, const RequestRow& row) {
    if (r.m_Tree.GetMultiplexerData(r.m_Object))
        r.AnswerByte(row.map((r.m_Object.*row.value)()));
}

void SmartOfAllDrives(CRequest& r, const RequestRow& row) {
    r.AnswerByte(row.map(r.m_Tree.GetSmartFlagOfAllDrives()));
}

void CustomerReplaceable(CRequest& r, const RequestRow&) {
    if (!r.Snapshot(status::kNoRaidData))
        return;
    uint32_t bbu = 0;
    int32_t disks = 0;
    r.m_Tree.GetBbuOverallComponentStatus(bbu);
    r.m_Tree.GetPhysicalDiskOverallComponentStatus(disks);
    bool cssHdd = r.m_Module.IsCssHdd();
    bool cssBbu = r.m_Module.IsCssBbu();
    TLR_TRACE(3,
              "\nEM_TLRAID  TaskEx   : CM_RaidStatusCustomerReplaceable, m_bCSS_HDD = %d, Physical "
              "driver overal status = %d",
              cssHdd, disks);
    TLR_TRACE(3,
              "\nEM_TLRAID  TaskEx   : CM_RaidStatusCustomerReplaceable, m_bCSS_BBU = %d, Battery "
              "Backup Unit overall status = %d",
              cssBbu, static_cast<int>(bbu));
    // A part in warning or failed that the customer can't replace answers 0, whatever the
    // other says.
    bool answer = cssHdd;
    if ((!cssHdd && disks >= kComponentWarning) ||
        (!cssBbu && static_cast<int32_t>(bbu) >= kComponentWarning)) {
        answer = false;
    }
    r.AnswerByte(answer ? 1 : 0);
}

void RenewSnapshot(CRequest& r, const RequestRow&) {
    r.AnswerStatus(r.m_Module.TLRaidDataUpdateSnapshot(r.m_nClient) ? status::kOk
                                                                    : status::kNoRaidData);
}

// Of the identity texts this server has only the RAID manager's version; the other
// selectors are unknown here.
void IdentityText(CRequest& r, const RequestRow&) {
    if (r.m_nSelector != oc::kSelectRaidVersion) {
        r.Decline();
        r.AnswerStatus(status::kUnknownCode);
        return;
    }
    const char* version = getenv(kVersionVariable);
    bool known = version && *version;
    TLR_TRACE(3, "\nCOsInfo             :    GetTessalineRaidVersion: %s\n",
              known ? version : "N/A");
    if (known)
        r.AnswerText(version);
}

}  // namespace rows
