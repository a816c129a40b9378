// Handlers of single rows for adapters and the objects below them: what isn't a plain
// mapped number, a name, a count or a property.
#include "raid/PciIdentityRequest.h"
#include "raid/RequestTable.h"
#include "storage/AdapterDeviceId.h"
#include "storage/StatusTables.h"

namespace rows {

void AdapterCount(CRequest& r, const RequestRow&) {
    r.AnswerUInt(r.m_Tree.GetAdapterCount());
}

void AdapterDeviceId(CRequest& r, const RequestRow&) {
    std::string id;
    if (GetAdapterDeviceId(r.m_Adapter, id))
        r.AnswerText(id);
}

// Ids of the host's PCI device at the adapter's address; an OE it doesn't know still
// leaves the result at 1.
void AdapterPciIdentity(CRequest& r, const RequestRow&) {
    AnswerPciIdentity(r.m_Record, r.m_Adapter);
}

// The drive's size by its low 32 bits.
void DriveSize(CRequest& r, const RequestRow&) {
    uint64_t size = 0;
    if (r.m_Object.GetPhysicalDriveSize(size))
        r.AnswerUInt(static_cast<uint32_t>(size));
}

void DriveEnclosureIndex(CRequest& r, const RequestRow&) {
    uint32_t index = 0;
    if (r.m_Adapter.GetEnclosureIndexOfDrive(index, r.m_Object))
        r.AnswerUInt(index);
}

void DriveIndex(CRequest& r, const RequestRow&) {
    uint32_t index = 0;
    if (r.m_Adapter.GetPhysicalDriveIndex(index, r.m_Object))
        r.AnswerUInt(index);
}

void EnclosureIndex(CRequest& r, const RequestRow&) {
    uint32_t index = 0;
    if (r.m_Adapter.GetEnclosureIndex(index, r.m_Object))
        r.AnswerUInt(index);
}

void LogicalDriveSize(CRequest& r, const RequestRow&) {
    uint64_t size = 0;
    if (r.m_Object.GetLogicalDriveSize(size))
        r.AnswerUInt64(size);
}

void LogicalDrivePhysicalSize(CRequest& r, const RequestRow&) {
    uint64_t size = 0;
    if (r.m_Object.GetLogicalDrivePhysicalSize(size))
        r.AnswerUInt64(size);
}

void LogicalDriveRaidLevel(CRequest& r, const RequestRow&) {
    std::string level;
    if (r.m_Object.GetLogicalDriveRaidLevel(level))
        r.AnswerText(level);
}

// A battery without any learn cycle word has no answer at all.
void BatteryLearnCycle(CRequest& r, const RequestRow& row) {
    int32_t cycle = r.m_Object.GetBatteryLearnCycleStatus();
    if (cycle != kLcNoWord)
        r.AnswerByte(row.map(cycle));
}

}  // namespace rows
