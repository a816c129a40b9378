#pragma once

#include <cstdint>

// The switch protocol as this module speaks it: the notification codes, the object codes it
// answers, sends or receives, the statuses, and the values a client receives where they are
// codes. This is the one home of these numbers: the module, the tools and the tests read
// them from here. A new code goes into the section of its family, under the CM_ or SCN_ name
// the system gives it, or else a name that says what the code asks for.

// ---- Notification codes that the switch hands to OnNotify ----------------------------------
enum : uint32_t {
    SCN_SWITCH_SHUTDOWN = 0x20000,
    SCN_SWITCH_REQUEST_ENABLED = 0x20001,
    SCN_SYSTEM_SHUTDOWN = 0x30000,
    SCN_POWERSTATE_SUSPEND = 0x40000,
    SCN_POWERSTATE_STANDBY = 0x40001,
    SCN_POWERSTATE_RESUME = 0x40002,
    SCN_POWERSTATE_AC_OFFLINE = 0x40003,
    SCN_POWERSTATE_AC_ONLINE = 0x40004,
};

namespace oc {

// ---- Identity texts and codes outside the storage range ------------------------------------
// One code for several texts; OE selects the text.
constexpr uint32_t kIdentityText = 0x0C00;
constexpr uint32_t kSelectRaidVersion = 0xAA03;
constexpr uint32_t kSelectChassisModel = 264;
constexpr uint32_t kSelectSerialNumber = 1536;
constexpr uint32_t kSelectCabinetModel = 1544;
constexpr uint32_t kSelectVendor = 1546;
// Identity codes this module declines, so that another module may answer them.
constexpr uint32_t kDeclinedIdentityFirst = 0x0C20;
constexpr uint32_t kDeclinedIdentitySecond = 0x0C21;
// Objects this server never has: they answer "no such object".
constexpr uint32_t kAbsentObjectFirst = 0x1041;
constexpr uint32_t kAbsentObjectSecond = 0x1042;
// The list of cabinet numbers of the external enclosures.
constexpr uint32_t kCabinetNumbers = 0x0220;

// ---- Adapters ------------------------------------------------------------------------------
constexpr uint32_t kAdapterCount = 0x2110;
constexpr uint32_t kAdapterName = 0x2111;
constexpr uint32_t kAdapterType = 0x2112;
// Asked of the switch at its start: are disks, are batteries customer replaceable?
constexpr uint32_t kDisksCustomerReplaceable = 0x2113;
constexpr uint32_t kBatteriesCustomerReplaceable = 0x2114;
constexpr uint32_t kAdapterStatus = 0x2116;
constexpr uint32_t kAdapterDeviceId = 0x2117;
constexpr uint32_t kAdapterPciIdentity = 0x2118;  // OE selects the id
constexpr uint32_t kSelectPciDeviceId = 0;
constexpr uint32_t kSelectPciVendorId = 1;
constexpr uint32_t kSelectPciSubsystemId = 2;
constexpr uint32_t kSelectPciSubsystemVendorId = 3;
constexpr uint32_t kAdapterProperty = 0x211D;

// ---- Overall status ------------------------------------------------------------------------
constexpr uint32_t kOverallStatus = 0x2120;
constexpr uint32_t kAdaptersStatus = 0x2121;
constexpr uint32_t kLogicalDrivesStatus = 0x2122;
constexpr uint32_t kDisksStatus = 0x2123;
constexpr uint32_t kSmartStatus = 0x2125;
constexpr uint32_t CM_RaidStatusCustomerReplaceable = 0x212A;

// ---- Physical drives -----------------------------------------------------------------------
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

// ---- Logical drives ------------------------------------------------------------------------
constexpr uint32_t kLogicalDriveCount = 0x2150;
constexpr uint32_t kLogicalDriveStatus = 0x2151;
constexpr uint32_t kLogicalDriveName = 0x2152;
constexpr uint32_t kLogicalDriveSize = 0x2153;
constexpr uint32_t kLogicalDrivePhysicalSize = 0x2154;
constexpr uint32_t kLogicalDriveRaidLevel = 0x2155;
constexpr uint32_t kLogicalDriveProperty = 0x215D;

// ---- Batteries -----------------------------------------------------------------------------
constexpr uint32_t kBatteryCount = 0x2160;
constexpr uint32_t kBatteryName = 0x2161;
constexpr uint32_t kBatteryStatus = 0x2162;
constexpr uint32_t kBatteryLearnCycle = 0x2163;
constexpr uint32_t kBatteryProperty = 0x216D;

// ---- Ports ---------------------------------------------------------------------------------
constexpr uint32_t kPortCount = 0x2180;
constexpr uint32_t kPortName = 0x2181;
constexpr uint32_t kPortNoAnswer = 0x2182;  // known, and never answered
constexpr uint32_t kPortProperty = 0x218D;

// ---- Enclosures of an adapter --------------------------------------------------------------
constexpr uint32_t kEnclosureCount = 0x2190;
constexpr uint32_t kEnclosureName = 0x2191;
constexpr uint32_t kEnclosureStatus = 0x2192;
constexpr uint32_t kEnclosureIndex = 0x219C;
constexpr uint32_t kEnclosureProperty = 0x219D;

// ---- The tree as a whole, pass-through and test codes --------------------------------------
constexpr uint32_t kStorageTreeExport = 0x21D0;  // OE selects the format
constexpr uint32_t kSelectTreeXml = 0;
constexpr uint32_t kSelectTreeJson = 1;
constexpr uint32_t kRestPassThrough = 0x21D1;
constexpr uint32_t kTreeValueByPath = 0x21DD;  // OE 0 is its only selector
constexpr uint32_t kSelectPathInRawTree = 0;
constexpr uint32_t kRenewSnapshot = 0x21DF;
constexpr uint32_t kAdapterIndexByDeviceId = 0x21F0;
constexpr uint32_t kBatteryAdapterIndexByDeviceId = 0x21F1;
constexpr uint32_t kTestRawTree = 0xF020;
constexpr uint32_t kTestAttribute = 0xF021;  // OE selects the attribute
constexpr uint32_t kSelectTestDiskAttribute = 38;
constexpr uint32_t kSelectTestBatteryAttribute = 39;

// ---- Cabinets: external enclosures addressed by their cabinet number -----------------------
constexpr uint32_t CM_PowerOnStatus = 257;
constexpr uint32_t kFanCount = 768;
constexpr uint32_t CM_FanStatus = 769;
constexpr uint32_t kFanWithoutData = 770;
constexpr uint32_t kFanLocation = 771;
constexpr uint32_t kFanName = 772;
constexpr uint32_t kFanDesignation = 773;
constexpr uint32_t kTempSensorCount = 1024;
constexpr uint32_t CM_TempSensorStatus = 1025;
constexpr uint32_t kTempSensorTemperature = 1026;
constexpr uint32_t kTempSensorLocation = 1027;
constexpr uint32_t kTempSensorName = 1028;
constexpr uint32_t kPowerSupplyCount = 1280;
constexpr uint32_t CM_PowerSupplyStatus = 1281;
constexpr uint32_t kPowerSupplyName = 1284;
constexpr uint32_t CM_PowerSupplyRedundancy = 1296;
// Reads and writes of a cabinet object's settings; OE selects the setting.
constexpr uint32_t kCabinetSettingRead = 57345;
constexpr uint32_t kCabinetSettingWrite = 57346;
constexpr uint32_t kSelectFanSetting = 113;
constexpr uint32_t kSelectSensorSetting = 115;
constexpr uint32_t kSelectSensorSettingSecond = 124;
constexpr uint32_t kSelectWarningTemperature = 144;
constexpr uint32_t kSelectCriticalTemperature = 145;
constexpr uint32_t kCabinetPresent = 57866;  // is the cabinet CA one of this server's?

// ---- Events the module sends -----------------------------------------------------------
// A status event goes out under the object code of the state that changed (CM_FanStatus,
// CM_TempSensorStatus, CM_PowerSupplyStatus, CM_PowerSupplyRedundancy above), with the new
// state in ST. Codes of events of their own go here.

}  // namespace oc

// ---- Statuses in ST --------------------------------------------------------------------------
namespace status {

constexpr uint32_t kOk = 0;
constexpr uint32_t kUnknownCode = 1;  // also a selector the code doesn't know
constexpr uint32_t kNoSuchObject = 2;
constexpr uint32_t kValueRefused = 4;
constexpr uint32_t kNoRaidData = 6;  // also: no switch
// Statuses of the switch's answers that count as answered, besides kOk.
constexpr uint32_t kAnsweredFirstAlt = 12;
constexpr uint32_t kAnsweredSecondAlt = 21;
constexpr uint32_t kDataMissing = 18;
constexpr uint32_t kNotAvailable = 19;  // preset before each request is answered
constexpr uint32_t kCabinetUnknown = 20;
constexpr uint32_t kMissing = 22;       // what a missing ST reads as
constexpr uint32_t kEvent = 255;        // marks a record as an event while the switch has it
constexpr uint32_t kNone = 0xFFFFFFFF;  // a request to the switch has no ST yet

// Every status the module answers a client's request with.
constexpr uint32_t kModuleAnswers[] = {kOk,         kUnknownCode, kNoSuchObject, kValueRefused,
                                       kNoRaidData, kDataMissing, kNotAvailable, kCabinetUnknown};

}  // namespace status

// ---- Values a client receives where they are codes ----------------------------------------
namespace answer {

// Any byte answer that has no value of its own.
constexpr uint8_t kNoAnswer = 255;

// Adapter types, 0x2112.
enum AdapterType : int32_t {
    kAdapterScsi = 0,
    kAdapterAtapi = 1,
    kAdapterAta = 2,
    kAdapter1394 = 3,
    kAdapterSsa = 4,
    kAdapterFibre = 5,
    kAdapterUsb = 6,
    kAdapterSata = 7,
    kAdapterSas = 8,
    kAdapterPcie = 9,
};

// Adapter status, 0x2116.
enum AdapterStatus : uint8_t { kAdapterOk = 0, kAdapterWarning = 1, kAdapterFailed = 2 };

// Overall, component and enclosure status: 0x2120 to 0x2123, 0x2136, 0x2192.
enum OverallStatus : uint8_t {
    kOverallUnknown = 0,
    kOverallOk = 1,
    kOverallWarning = 2,
    kOverallFailed = 3,
};

// SMART states, 0x2125 and 0x2132; kNoAnswer when no drive says anything.
enum SmartState : uint8_t { kSmartNoError = 0, kSmartError = 1 };

// Physical drive states, 0x2131.
enum DriveState : uint8_t {
    kDriveOperational = 0,
    kDriveCopyback = 1,
    kDriveAvailable = 2,
    kDriveUnconfiguredFailed = 3,
    kDriveDedicatedHotspare = 4,
    kDriveGlobalHotspare = 5,
    kDriveRebuilding = 6,
    kDriveRebuildNecessarySmart = 7,  // only a SMART error reads so
    kDriveRebuildNecessary = 8,
    kDriveJbod = 9,
    kDriveMigrating = 10,
    kDriveFailed = 11,
    kDriveFailedMissing = 12,
    kDriveOffline = 13,
    kDriveShield = 14,
    kDriveAutoReplaceHotspare = 15,
};
// Extended drive status, 0x2137: a drive state, or with this bit a state with a SMART error.
constexpr uint32_t kExtendedSmartBit = 0x80;

// Physical drive types, 0x2134.
enum DriveType : uint8_t {
    kDriveTypeScsi = 0,
    kDriveTypeSata = 7,
    kDriveTypeSas = 8,
    kDriveTypePciExpress = 13,
    kDriveTypeNvme = 15,
};

// Logical drive states, 0x2151.
enum LogicalDriveState : uint8_t {
    kLogicalOperational = 0,
    kLogicalDegraded = 1,
    kLogicalPartiallyDegraded = 2,
    kLogicalFailed = 3,
    kLogicalImpacted = 4,
};

// Battery states, 0x2162; 1 and 7 are never given.
enum BatteryState : uint8_t {
    kBatteryNormal = 0,
    kBatteryVoltageProblem = 2,
    kBatteryCharging = 3,
    kBatteryDischarging = 4,
    kBatteryWarning = 5,
    kBatteryFailed = 6,
    kBatteryTemperatureProblem = 8,
};

// Learn cycle states, 0x2163.
enum LearnCycle : uint8_t {
    kLearnCycleRequested = 1,
    kLearnCycleActive = 2,
    kLearnCycleFailed = 3,
    kLearnCycleTimedOut = 4,
};

// Cabinet fan states, CM_FanStatus.
enum FanState : uint8_t {
    kFanOk = 1,
    kFanCritical = 2,
    kFanNonCritical = 3,
    kFanUnknown = 5,
    kFanNotInstalled = 6,
};

// Cabinet temperature sensor states, CM_TempSensorStatus.
enum TempSensorState : uint8_t {
    kSensorUnknown = 0,
    kSensorUnrecoverable = 3,
    kSensorNonCritical = 4,
    kSensorCritical = 5,
    kSensorOk = 6,
};

// Cabinet power supply states, CM_PowerSupplyStatus.
enum PowerSupplyState : uint8_t {
    kSupplyNotInstalled = 0,
    kSupplyOk = 1,
    kSupplyCritical = 2,
    kSupplyUnknown = 6,
};

// Where a cabinet's fan sits, 771.
enum FanLocationCode : uint8_t {
    kFanLocationUndefined = 0,
    kFanInPowerSupply = 4,
    kFanInFanModule = 5,
};

// Where a cabinet's temperature sensor sits, 1027.
enum TempSensorLocationCode : uint8_t {
    kSensorLocationOther = 0,
    kSensorAtLedPanel = 2,
    kSensorInCanister = 3,
    kSensorOnBoard = 4,  // midplane, baseboard or fan module
    kSensorInPowerSupply = 5,
};

// Redundancy of a cabinet's power supplies, CM_PowerSupplyRedundancy.
enum SupplyRedundancy : uint8_t { kSuppliesNotRedundant = 0, kSuppliesRedundant = 1 };

}  // namespace answer
