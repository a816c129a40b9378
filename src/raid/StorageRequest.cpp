#include "raid/StorageRequest.h"

#include <cstdlib>

#include "raid/EM_TLRAID.h"
#include "raid/ObjectCodes.h"
#include "raid/StatusMaps.h"
#include "runtime/DebugClient.h"
#include "storage/AdapterDeviceId.h"
#include "storage/TLRaidData.h"

CStorageRequest::CStorageRequest(EM_TLRAID& module, CommandRecord& record)
    : m_Module(module),
      m_Record(record),
      m_nClient(record.GetField("CI", 0)),
      m_nSelector(record.GetField("OE", 0)),
      m_nObject(record.GetField("OI", 0)) {}

bool CStorageRequest::Adapter(CTLRaidData& adapter, uint32_t index) {
    return m_Module.GetRaidAdapterData(adapter, m_nClient, index);
}

bool CStorageRequest::Snapshot(CTLRaidData& tree) {
    return m_Module.TLRaidDataGetSnapshot(tree, m_nClient);
}

bool CStorageRequest::Object(CTLRaidData& adapter, CTLRaidData& object, ObjectGetter get) {
    if (!Adapter(adapter, m_nSelector))
        return false;
    if (!(adapter.*get)(object, m_nObject)) {
        m_Record.SetStatus(status::kNoSuchObject);
        return false;
    }
    return true;
}

bool CStorageRequest::DataPresent() {
    if (m_Record.HasData())
        return true;
    m_Record.SetStatus(status::kDataMissing);
    return false;
}

bool CStorageRequest::TextGiven(std::string& text) {
    text.clear();
    m_Record.GetDataString(m_Record.m_nCurrentCommand, text, 0);
    if (!text.empty())
        return true;
    m_Record.SetStatus(status::kDataMissing);
    return false;
}

void CStorageRequest::AnswerChildText(CTLRaidData& doc, const char* root) {
    std::string text;
    doc.ResetPos();
    if (doc.FindElem(root) && doc.FindChildElem("Name"))
        text = doc.GetChildData();
    m_Record.SetDataString(text.c_str(), status::kOk);
}

void CStorageRequest::AnswerChildNumber(CTLRaidData& doc, const char* root, const char* child,
                                        bool wide) {
    doc.ResetPos();
    if (!doc.FindElem(root) || !doc.FindChildElem(child))
        return;
    unsigned long value = strtoul(doc.GetChildData().c_str(), nullptr, 10);
    if (wide) {
        m_Record.SetDataUInt64(value, status::kOk);
    } else {
        m_Record.SetDataUInt(static_cast<uint32_t>(value), status::kOk);
    }
}

void CStorageRequest::AnswerChildCount(const char* child, const char* container) {
    CTLRaidData adapter;
    if (!Adapter(adapter, m_nSelector))
        return;
    uint32_t count = 0;
    adapter.ResetPos();
    if (adapter.FindElem("Adapter")) {
        bool inside = true;
        if (container)
            inside = adapter.FindChildElem(container) && adapter.IntoElem();
        while (inside && adapter.FindChildElem(child))
            ++count;
    }
    m_Record.SetDataUInt(count, status::kOk);
}

void CStorageRequest::AnswerProperty(CTLRaidData& doc, PropertyGetter get) {
    std::string name;
    if (!TextGiven(name))
        return;
    std::string value;
    if ((doc.*get)(value, name.c_str()))
        m_Record.SetDataString(value.c_str(), status::kOk);
}

bool CStorageRequest::Answer(uint32_t oc) {
    switch (oc) {
        case oc::kAdapterCount: {
            CTLRaidData tree;
            if (Snapshot(tree))
                m_Record.SetDataUInt(tree.GetAdapterCount(), status::kOk);
            return true;
        }
        case oc::kAdapterName:
        case oc::kAdapterType:
        case oc::kAdapterStatus:
        case oc::kAdapterDeviceId:
        case oc::kAdapterProperty:
            AdapterRow(oc);
            return true;
        case oc::kOverallStatus:
        case oc::kAdaptersStatus:
        case oc::kLogicalDrivesStatus:
        case oc::kDisksStatus:
            OverallStatusRow(oc);
            return true;
        case oc::kSmartStatus:
            SmartStatusRow();
            return true;
        case oc::CM_RaidStatusCustomerReplaceable:
            CustomerReplaceableRow();
            return true;
        case oc::kRenewSnapshot:
            m_Record.SetStatus(m_Module.TLRaidDataUpdateSnapshot(m_nClient) ? status::kOk
                                                                            : status::kNoRaidData);
            return true;
        default:
            return DriveRow(oc) || LogicalDriveRow(oc) || BatteryRow(oc) || PortRow(oc) ||
                   EnclosureRow(oc);
    }
}

void CStorageRequest::AdapterRow(uint32_t oc) {
    std::string wanted;
    if (oc == oc::kAdapterProperty && !DataPresent())
        return;
    CTLRaidData adapter;
    if (!Adapter(adapter, m_nObject))
        return;
    switch (oc) {
        case oc::kAdapterName:
            AnswerChildText(adapter, "Adapter");
            break;
        case oc::kAdapterType:
            m_Record.SetDataByte(adapter.GetAdapterType(), status::kOk);
            break;
        case oc::kAdapterStatus: {
            int32_t s = adapter.GetAdapterStatus();
            m_Record.SetDataByte(s >= 0 && s <= 2 ? s : 255, status::kOk);
            break;
        }
        case oc::kAdapterDeviceId: {
            std::string id;
            if (GetAdapterDeviceId(adapter, id))
                m_Record.SetDataString(id.c_str(), status::kOk);
            break;
        }
        case oc::kAdapterProperty: {
            if (!TextGiven(wanted))
                return;
            adapter.ResetPos();
            if (adapter.FindElem("Adapter") && adapter.FindChildElem(wanted.c_str())) {
                m_Record.SetDataString(adapter.GetChildData().c_str(), status::kOk);
            }
            break;
        }
    }
}

void CStorageRequest::OverallStatusRow(uint32_t oc) {
    CTLRaidData tree;
    CTLRaidData multiplexer;
    if (!Snapshot(tree) || !tree.GetMultiplexerData(multiplexer))
        return;
    int32_t value = oc == oc::kOverallStatus         ? multiplexer.GetOverallStatus()
                    : oc == oc::kAdaptersStatus      ? multiplexer.GetAdaptersStatus()
                    : oc == oc::kLogicalDrivesStatus ? multiplexer.GetLogicalDrivesStatus()
                                                     : multiplexer.GetDisksStatus();
    m_Record.SetDataByte(status_map::ThreeWay(value), status::kOk);
}

void CStorageRequest::SmartStatusRow() {
    CTLRaidData tree;
    if (!Snapshot(tree))
        return;
    int value = 255;
    CTLRaidData adapter;
    for (uint32_t a = 0; value != 1 && tree.GetAdapterData(adapter, a); ++a) {
        CTLRaidData drive;
        for (uint32_t d = 0; adapter.GetPhysicalDriveData(drive, d); ++d) {
            int32_t flag = drive.GetPhysicalDriveSmartFlag();
            if (flag == 0)
                value = 0;
            if (flag == 1) {
                value = 1;
                break;
            }
        }
    }
    m_Record.SetDataByte(value, status::kOk);
}

void CStorageRequest::CustomerReplaceableRow() {
    CTLRaidData tree;
    if (!Snapshot(tree)) {
        m_Record.SetStatus(status::kNoRaidData);
        return;
    }
    uint32_t bbu = 0;
    int32_t disks = 0;
    tree.GetBbuOverallComponentStatus(bbu);
    tree.GetPhysicalDiskOverallComponentStatus(disks);
    bool cssHdd = m_Module.IsCssHdd();
    bool cssBbu = m_Module.IsCssBbu();
    TLR_TRACE(3,
              "\nEM_TLRAID  TaskEx   : CM_RaidStatusCustomerReplaceable, m_bCSS_HDD = %d, Physical "
              "driver overal status = %d",
              cssHdd, disks);
    TLR_TRACE(3,
              "\nEM_TLRAID  TaskEx   : CM_RaidStatusCustomerReplaceable, m_bCSS_BBU = %d, Battery "
              "Backup Unit overall status = %d",
              cssBbu, static_cast<int>(bbu));
    // A failed part that the customer can't replace answers 0, whatever the other says.
    bool answer = cssHdd;
    if ((!cssHdd && disks > 1) || (!cssBbu && static_cast<int32_t>(bbu) > 1))
        answer = false;
    m_Record.SetDataByte(answer ? 1 : 0, status::kOk);
}

bool CStorageRequest::DriveRow(uint32_t oc) {
    switch (oc) {
        case oc::kDriveCount: {
            CTLRaidData adapter;
            if (Adapter(adapter, m_nSelector)) {
                m_Record.SetDataUInt(adapter.GetPhysicalDriveCount(), status::kOk);
            }
            return true;
        }
        case oc::kDriveStatus:
        case oc::kDriveSmartFlag:
        case oc::kDriveName:
        case oc::kDriveType:
        case oc::kDriveSize:
        case oc::kDriveComponentStatus:
        case oc::kDriveExtendedStatus:
        case oc::kDriveEnclosureIndex:
        case oc::kDriveIndex:
        case oc::kDriveProperty:
            break;
        default:
            return false;
    }
    if (oc == oc::kDriveProperty && !DataPresent())
        return true;
    CTLRaidData adapter;
    CTLRaidData drive;
    if (!Object(adapter, drive, &CTLRaidData::GetPhysicalDriveData))
        return true;
    uint32_t index = 0;
    switch (oc) {
        case oc::kDriveStatus:
            m_Record.SetDataByte(status_map::DriveStatus(drive.GetPhysicalDriveStatusIndex()),
                                 status::kOk);
            break;
        case oc::kDriveSmartFlag: {
            int32_t flag = drive.GetPhysicalDriveSmartFlag();
            m_Record.SetDataByte(flag == 0 || flag == 1 ? flag : 255, status::kOk);
            break;
        }
        case oc::kDriveName:
            AnswerChildText(drive, "PhysicalDrive");
            break;
        case oc::kDriveType:
            m_Record.SetDataByte(status_map::DriveType(drive.GetPhysicalDriveType()), status::kOk);
            break;
        case oc::kDriveSize:
            AnswerChildNumber(drive, "PhysicalDrive", "PhysicalSize", false);
            break;
        case oc::kDriveComponentStatus:
            m_Record.SetDataByte(status_map::ComponentValue(drive.GetPhysicalDriveStatusIndex()),
                                 status::kOk);
            break;
        case oc::kDriveExtendedStatus:
            m_Record.SetDataUInt(status_map::DriveExtendedStatus(drive.GetPhysicalDriveStatus()),
                                 status::kOk);
            break;
        case oc::kDriveEnclosureIndex:
            if (adapter.GetEnclosureIndexOfDrive(index, drive)) {
                m_Record.SetDataUInt(index, status::kOk);
            }
            break;
        case oc::kDriveIndex:
            if (adapter.GetPhysicalDriveIndex(index, drive))
                m_Record.SetDataUInt(index, status::kOk);
            break;
        case oc::kDriveProperty:
            AnswerProperty(drive, &CTLRaidData::GetPhysicalDriveProperty);
            break;
    }
    return true;
}

bool CStorageRequest::LogicalDriveRow(uint32_t oc) {
    switch (oc) {
        case oc::kLogicalDriveCount:
            AnswerChildCount("LogicalDrive", nullptr);
            return true;
        case oc::kLogicalDriveStatus:
        case oc::kLogicalDriveName:
        case oc::kLogicalDriveSize:
        case oc::kLogicalDrivePhysicalSize:
        case oc::kLogicalDriveRaidLevel:
        case oc::kLogicalDriveProperty:
            break;
        default:
            return false;
    }
    if (oc == oc::kLogicalDriveProperty && !DataPresent())
        return true;
    CTLRaidData adapter;
    CTLRaidData drive;
    if (!Object(adapter, drive, &CTLRaidData::GetRaidLogicalDriveData))
        return true;
    switch (oc) {
        case oc::kLogicalDriveStatus: {
            int32_t value = drive.GetLogicalDriveStatus();
            m_Record.SetDataByte(value >= 0 && value <= 4 ? value : 255, status::kOk);
            break;
        }
        case oc::kLogicalDriveName:
            AnswerChildText(drive, "LogicalDrive");
            break;
        case oc::kLogicalDriveSize:
            AnswerChildNumber(drive, "LogicalDrive", "LogicalSize", true);
            break;
        case oc::kLogicalDrivePhysicalSize:
            AnswerChildNumber(drive, "LogicalDrive", "PhysicalSize", true);
            break;
        case oc::kLogicalDriveRaidLevel:
            drive.ResetPos();
            if (drive.FindElem("LogicalDrive") && drive.FindChildElem("RAIDLevel")) {
                m_Record.SetDataString(drive.GetChildData().c_str(), status::kOk);
            }
            break;
        case oc::kLogicalDriveProperty:
            AnswerProperty(drive, &CTLRaidData::GetLogicalDriveProperty);
            break;
    }
    return true;
}

bool CStorageRequest::BatteryRow(uint32_t oc) {
    switch (oc) {
        case oc::kBatteryCount:
            AnswerChildCount("Battery", nullptr);
            return true;
        case oc::kBatteryName:
        case oc::kBatteryStatus:
        case oc::kBatteryLearnCycle:
        case oc::kBatteryProperty:
            break;
        default:
            return false;
    }
    if (oc == oc::kBatteryProperty && !DataPresent())
        return true;
    CTLRaidData adapter;
    CTLRaidData battery;
    if (!Object(adapter, battery, &CTLRaidData::GetBatteryData))
        return true;
    switch (oc) {
        case oc::kBatteryName:
            AnswerChildText(battery, "Battery");
            break;
        case oc::kBatteryStatus:
            m_Record.SetDataByte(status_map::BatteryStatus(battery.GetBatteryStatus()),
                                 status::kOk);
            break;
        case oc::kBatteryLearnCycle: {
            int32_t cycle = battery.GetBatteryLearnCycleStatus();
            if (cycle != 0)
                m_Record.SetDataByte(status_map::LearnCycle(cycle), status::kOk);
            break;
        }
        case oc::kBatteryProperty:
            AnswerProperty(battery, &CTLRaidData::GetBatteryProperty);
            break;
    }
    return true;
}

bool CStorageRequest::PortRow(uint32_t oc) {
    switch (oc) {
        case oc::kPortCount:
            AnswerChildCount("Port", "Ports");
            return true;
        case oc::kPortNoAnswer:
            // Known, and without an answer.
            m_Record.SetStatus(status::kUnknownCode);
            return true;
        case oc::kPortName:
        case oc::kPortProperty:
            break;
        default:
            return false;
    }
    if (oc == oc::kPortProperty && !DataPresent())
        return true;
    CTLRaidData adapter;
    CTLRaidData port;
    if (!Object(adapter, port, &CTLRaidData::GetPortData))
        return true;
    if (oc == oc::kPortName) {
        AnswerChildText(port, nullptr);
    } else {
        AnswerProperty(port, &CTLRaidData::GetPortProperty);
    }
    return true;
}

bool CStorageRequest::EnclosureRow(uint32_t oc) {
    switch (oc) {
        case oc::kEnclosureCount: {
            CTLRaidData adapter;
            if (Adapter(adapter, m_nSelector)) {
                m_Record.SetDataUInt(adapter.GetEnclosureCount(), status::kOk);
            }
            return true;
        }
        case oc::kEnclosureName:
        case oc::kEnclosureStatus:
        case oc::kEnclosureIndex:
        case oc::kEnclosureProperty:
            break;
        default:
            return false;
    }
    if (oc == oc::kEnclosureProperty && !DataPresent())
        return true;
    CTLRaidData adapter;
    CTLRaidData enclosure;
    if (!Object(adapter, enclosure, &CTLRaidData::GetEnclosureData))
        return true;
    uint32_t index = 0;
    switch (oc) {
        case oc::kEnclosureName:
            AnswerChildText(enclosure, "Enclosure");
            break;
        case oc::kEnclosureStatus:
            m_Record.SetDataByte(status_map::ThreeWay(enclosure.GetEnclosureStatus()), status::kOk);
            break;
        case oc::kEnclosureIndex:
            if (adapter.GetEnclosureIndex(index, enclosure))
                m_Record.SetDataUInt(index, status::kOk);
            break;
        case oc::kEnclosureProperty:
            AnswerProperty(enclosure, &CTLRaidData::GetEnclosureProperty);
            break;
    }
    return true;
}
