// The table of requests: one row per object code, grouped by family.
//
// To add a code: name it in frame/SwitchProtocol.h, in the section of its family, and add
// one row here. A row names
//   - its steps, run before the handler; each ends the request with its own status when it
//     fails: the client's snapshot (Steps::kSnapshot), the adapter OI (kAdapterOi), the
//     adapter OE (kAdapterOe), or the object OI of the adapter OE by the row's getter
//     (kObject); with bNamedByText also the request's data before them and its text after;
//   - its handler. Where it answers a getter's number through a status map (StatusMaps.h),
//     the row names getter and map and a shared handler (rows::MappedByte, rows::MappedUInt)
//     answers; names, counts and properties have shared handlers too.
// A code that needs none of the usual steps (a tree of its own, no snapshot, another status
// for a missing tree) has Steps::kNone, and its handler takes what it needs from the
// CRequest. One-off handlers live by family: OverallRows.cpp for the server as a whole and
// the codes outside the storage range, ObjectRows.cpp for adapters and their objects,
// Cabinets.cpp for the cabinets. A family whose rows all do their own work may keep rows and
// handlers in a file of its own (TreeRows.cpp), named in kFamilies below.
#include "raid/RequestTable.h"

#include "raid/StatusMaps.h"

namespace {

using T = CTLRaidData;

// A row on an object of an adapter (OE, OI), or on the adapter OI when the getter is null.
constexpr RequestRow On(uint32_t code, CRequest::ObjectGetter get, RowHandler handler) {
    RequestRow row = Plain(code, get ? Steps::kObject : Steps::kAdapterOi, handler);
    row.object = get;
    return row;
}
constexpr RequestRow Mapped(uint32_t code, CRequest::ObjectGetter get, RowHandler handler,
                            ValueGetter value, StatusMap map) {
    RequestRow row = On(code, get, handler);
    row.value = value;
    row.map = map;
    return row;
}
constexpr RequestRow CountOf(uint32_t code, CountGetter count) {
    RequestRow row = Plain(code, Steps::kAdapterOe, rows::Count);
    row.count = count;
    return row;
}
constexpr RequestRow PropertyOf(uint32_t code, CRequest::ObjectGetter get, PropertyGetter p) {
    RequestRow row = On(code, get, rows::Property);
    row.bNamedByText = true;
    row.property = p;
    return row;
}
// A row on the client's snapshot as a whole.
constexpr RequestRow OfTree(uint32_t code, RowHandler handler, ValueGetter value, StatusMap map) {
    RequestRow row = Plain(code, Steps::kSnapshot, handler);
    row.value = value;
    row.map = map;
    return row;
}
constexpr RequestRow Overall(uint32_t code, ValueGetter value) {
    return OfTree(code, rows::MultiplexerStatus, value, status_map::ThreeWay);
}

constexpr CRequest::ObjectGetter kOfAdapter = nullptr;
constexpr CRequest::ObjectGetter kDrive = &T::GetPhysicalDriveData;
constexpr CRequest::ObjectGetter kLogicalDrive = &T::GetRaidLogicalDriveData;
constexpr CRequest::ObjectGetter kBattery = &T::GetBatteryData;
constexpr CRequest::ObjectGetter kPort = &T::GetPortData;
constexpr CRequest::ObjectGetter kEnclosure = &T::GetEnclosureData;

using namespace status_map;

const RequestRow kRows[] = {
    // Identity texts and codes outside the storage range.
    Plain(oc::kIdentityText, Steps::kNone, rows::IdentityText),
    Plain(oc::kDeclinedIdentityFirst, Steps::kNone, rows::Declined),
    Plain(oc::kDeclinedIdentitySecond, Steps::kNone, rows::Declined),
    Plain(oc::kAbsentObjectFirst, Steps::kNone, rows::NoSuchObject),
    Plain(oc::kAbsentObjectSecond, Steps::kNone, rows::NoSuchObject),

    // The server's cabinets: the external enclosures, from the enclosure map.
    Plain(oc::kCabinetNumbers, Steps::kNone, rows::CabinetList),

    // Adapters.
    Plain(oc::kAdapterCount, Steps::kSnapshot, rows::AdapterCount),
    On(oc::kAdapterName, kOfAdapter, rows::Name),
    Mapped(oc::kAdapterType, kOfAdapter, rows::MappedByte, &T::GetAdapterType,
           status_map::AdapterType),
    Mapped(oc::kAdapterStatus, kOfAdapter, rows::MappedByte, &T::GetAdapterStatus, AdapterStatus),
    On(oc::kAdapterDeviceId, kOfAdapter, rows::AdapterDeviceId),
    On(oc::kAdapterPciIdentity, kOfAdapter, rows::AdapterPciIdentity),
    PropertyOf(oc::kAdapterProperty, kOfAdapter, &T::GetAdapterProperty),

    // Overall status.
    Overall(oc::kOverallStatus, &T::GetOverallStatus),
    Overall(oc::kAdaptersStatus, &T::GetAdaptersStatus),
    Overall(oc::kLogicalDrivesStatus, &T::GetLogicalDrivesStatus),
    Overall(oc::kDisksStatus, &T::GetDisksStatus),
    OfTree(oc::kSmartStatus, rows::SmartOfAllDrives, nullptr, status_map::SmartFlag),
    Plain(oc::CM_RaidStatusCustomerReplaceable, Steps::kNone, rows::CustomerReplaceable),

    // Physical drives.
    CountOf(oc::kDriveCount, &T::GetPhysicalDriveCount),
    Mapped(oc::kDriveStatus, kDrive, rows::MappedByte, &T::GetPhysicalDriveStatusIndex,
           DriveStatus),
    Mapped(oc::kDriveSmartFlag, kDrive, rows::MappedByte, &T::GetPhysicalDriveSmartFlag, SmartFlag),
    On(oc::kDriveName, kDrive, rows::Name),
    Mapped(oc::kDriveType, kDrive, rows::MappedByte, &T::GetPhysicalDriveType, DriveType),
    On(oc::kDriveSize, kDrive, rows::DriveSize),
    Mapped(oc::kDriveComponentStatus, kDrive, rows::MappedByte, &T::GetPhysicalDriveStatusIndex,
           ComponentValue),
    Mapped(oc::kDriveExtendedStatus, kDrive, rows::MappedUInt, &T::GetPhysicalDriveStatus,
           DriveExtendedStatus),
    On(oc::kDriveEnclosureIndex, kDrive, rows::DriveEnclosureIndex),
    On(oc::kDriveIndex, kDrive, rows::DriveIndex),
    PropertyOf(oc::kDriveProperty, kDrive, &T::GetPhysicalDriveProperty),

    // Logical drives.
    CountOf(oc::kLogicalDriveCount, &T::GetLogicalDriveCount),
    Mapped(oc::kLogicalDriveStatus, kLogicalDrive, rows::MappedByte, &T::GetLogicalDriveStatus,
           LogicalDriveStatus),
    On(oc::kLogicalDriveName, kLogicalDrive, rows::Name),
    On(oc::kLogicalDriveSize, kLogicalDrive, rows::LogicalDriveSize),
    On(oc::kLogicalDrivePhysicalSize, kLogicalDrive, rows::LogicalDrivePhysicalSize),
    On(oc::kLogicalDriveRaidLevel, kLogicalDrive, rows::LogicalDriveRaidLevel),
    PropertyOf(oc::kLogicalDriveProperty, kLogicalDrive, &T::GetLogicalDriveProperty),

    // Batteries.
    CountOf(oc::kBatteryCount, &T::GetBatteryCount),
    On(oc::kBatteryName, kBattery, rows::Name),
    Mapped(oc::kBatteryStatus, kBattery, rows::MappedByte, &T::GetBatteryStatus, BatteryStatus),
    Mapped(oc::kBatteryLearnCycle, kBattery, rows::BatteryLearnCycle,
           &T::GetBatteryLearnCycleStatus, LearnCycle),
    PropertyOf(oc::kBatteryProperty, kBattery, &T::GetBatteryProperty),

    // Ports.
    CountOf(oc::kPortCount, &T::GetPortCount),
    On(oc::kPortName, kPort, rows::Name),
    Plain(oc::kPortNoAnswer, Steps::kNone, rows::KnownUnanswered),
    PropertyOf(oc::kPortProperty, kPort, &T::GetPortProperty),

    // Enclosures of an adapter.
    CountOf(oc::kEnclosureCount, &T::GetEnclosureCount),
    On(oc::kEnclosureName, kEnclosure, rows::Name),
    Mapped(oc::kEnclosureStatus, kEnclosure, rows::MappedByte, &T::GetEnclosureStatus, ThreeWay),
    On(oc::kEnclosureIndex, kEnclosure, rows::EnclosureIndex),
    PropertyOf(oc::kEnclosureProperty, kEnclosure, &T::GetEnclosureProperty),

    // The tree as a whole.
    Plain(oc::kRenewSnapshot, Steps::kNone, rows::RenewSnapshot),
};

// The families with files of their own.
using FamilyRows = RequestRows (*)();
const FamilyRows kFamilies[] = {TreeRequestRows};

// The steps of a row; false when one of them failed and set its status.
bool RunSteps(CRequest& request, const RequestRow& row) {
    if (row.bNamedByText && !request.DataPresent())
        return false;
    bool done = true;
    switch (row.steps) {
        case Steps::kNone:
            break;
        case Steps::kSnapshot:
            done = request.Snapshot();
            break;
        case Steps::kAdapterOi:
            done = request.Adapter(request.m_nIndex);
            break;
        case Steps::kAdapterOe:
            done = request.Adapter(request.m_nSelector);
            break;
        case Steps::kObject:
            done = request.Object(row.object);
            request.m_pSubject = &request.m_Object;
            break;
    }
    return done && (!row.bNamedByText || request.TextGiven());
}

}  // namespace

namespace {

// Calls visit with every row in the order of FindRequestRow's search, until it gives true.
template <typename Visit>
const RequestRow* VisitRows(Visit visit) {
    for (const RequestRow& row : kRows) {
        if (visit(row))
            return &row;
    }
    for (FamilyRows family : kFamilies) {
        RequestRows rows = family();
        for (const RequestRow* row = rows.pFirst; row != rows.pEnd; ++row) {
            if (visit(*row))
                return row;
        }
    }
    return nullptr;
}

}  // namespace

const RequestRow* FindRequestRow(uint32_t code) {
    return VisitRows([code](const RequestRow& row) { return row.nCode == code; });
}

std::vector<const RequestRow*> AllRequestRows() {
    std::vector<const RequestRow*> all;
    VisitRows([&all](const RequestRow& row) {
        all.push_back(&row);
        return false;
    });
    return all;
}

uint32_t AnswerRequest(EM_TLRAID& module, CommandRecord& record) {
    CRequest request(module, record);
    const RequestRow* row = FindRequestRow(record.GetField("OC", 0));
    if (!row) {
        record.SetStatus(status::kUnknownCode);
        return 0;
    }
    if (RunSteps(request, *row))
        row->handler(request, *row);
    return request.m_nResult;
}
