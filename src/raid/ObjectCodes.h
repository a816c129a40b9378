#pragma once

#include <cstdint>

// Object codes of requests for this server, and the statuses of their answers.
namespace oc {

constexpr uint32_t kVersionGroup = 0x0C00;  // with OE kVersionSelector: TL_RAID_VERSION
constexpr uint32_t kVersionSelector = 0xAA03;
constexpr uint32_t kReserved0C20 = 0x0C20;
constexpr uint32_t kReserved0C21 = 0x0C21;
constexpr uint32_t kNoObject1041 = 0x1041;
constexpr uint32_t kNoObject1042 = 0x1042;

constexpr uint32_t kAdapterCount = 0x2110;
constexpr uint32_t kAdapterName = 0x2111;
constexpr uint32_t kAdapterType = 0x2112;
constexpr uint32_t kAdapterStatus = 0x2116;
constexpr uint32_t kAdapterDeviceId = 0x2117;
constexpr uint32_t kAdapterPciIdentity = 0x2118;
constexpr uint32_t kAdapterProperty = 0x211D;

constexpr uint32_t kOverallStatus = 0x2120;
constexpr uint32_t kAdaptersStatus = 0x2121;
constexpr uint32_t kLogicalDrivesStatus = 0x2122;
constexpr uint32_t kDisksStatus = 0x2123;
constexpr uint32_t kSmartStatus = 0x2125;
constexpr uint32_t CM_RaidStatusCustomerReplaceable = 0x212A;

constexpr uint32_t kDriveCount = 0x2130;
constexpr uint32_t kDriveStatus = 0x2131;
constexpr uint32_t kDriveSmartFlag = 0x2132;
constexpr uint32_t kDriveName = 0x2133;
constexpr uint32_t kDriveType = 0x2134;
constexpr uint32_t kDriveSize = 0x2135;
constexpr uint32_t kDriveComponentStatus = 0x2136;
constexpr uint32_t kDriveExtendedStatus = 0x2137;
constexpr uint32_t kDriveEnclosureIndex = 0x213B;
constexpr uint32_t kDriveIndex = 0x213C;
constexpr uint32_t kDriveProperty = 0x213D;

constexpr uint32_t kLogicalDriveCount = 0x2150;
constexpr uint32_t kLogicalDriveStatus = 0x2151;
constexpr uint32_t kLogicalDriveName = 0x2152;
constexpr uint32_t kLogicalDriveSize = 0x2153;
constexpr uint32_t kLogicalDrivePhysicalSize = 0x2154;
constexpr uint32_t kLogicalDriveRaidLevel = 0x2155;
constexpr uint32_t kLogicalDriveProperty = 0x215D;

constexpr uint32_t kBatteryCount = 0x2160;
constexpr uint32_t kBatteryName = 0x2161;
constexpr uint32_t kBatteryStatus = 0x2162;
constexpr uint32_t kBatteryLearnCycle = 0x2163;
constexpr uint32_t kBatteryProperty = 0x216D;

constexpr uint32_t kPortCount = 0x2180;
constexpr uint32_t kPortName = 0x2181;
constexpr uint32_t kPortNoAnswer = 0x2182;
constexpr uint32_t kPortProperty = 0x218D;

constexpr uint32_t kEnclosureCount = 0x2190;
constexpr uint32_t kEnclosureName = 0x2191;
constexpr uint32_t kEnclosureStatus = 0x2192;
constexpr uint32_t kEnclosureIndex = 0x219C;
constexpr uint32_t kEnclosureProperty = 0x219D;

constexpr uint32_t kRenewSnapshot = 0x21DF;

}  // namespace oc

namespace status {

constexpr uint32_t kOk = 0;
constexpr uint32_t kUnknownCode = 1;
constexpr uint32_t kNoSuchObject = 2;
constexpr uint32_t kNoRaidData = 6;
constexpr uint32_t kDataMissing = 18;
constexpr uint32_t kNotAvailable = 19;
constexpr uint32_t kCabinetUnknown = 20;

}  // namespace status
