#include "InventoryWords.h"

#include <map>

#include "frame/SwitchProtocol.h"

namespace inventory_words {

namespace {

using namespace answer;

std::string Lookup(const std::map<uint32_t, const char*>& words, uint32_t value) {
    auto it = words.find(value);
    std::string word = it != words.end() ? it->second : "unknown";
    return std::to_string(value) + " " + word;
}

}  // namespace

std::string AdapterType(uint32_t v) {
    static const std::map<uint32_t, const char*> words = {
        {kAdapterScsi, "SCSI"}, {kAdapterAtapi, "ATAPI"}, {kAdapterAta, "ATA"},
        {kAdapter1394, "1394"}, {kAdapterSsa, "SSA"},     {kAdapterFibre, "Fibre"},
        {kAdapterUsb, "USB"},   {kAdapterSata, "SATA"},   {kAdapterSas, "SAS"},
        {kAdapterPcie, "PCIe"}};
    return Lookup(words, v);
}

std::string AdapterStatus(uint32_t v) {
    static const std::map<uint32_t, const char*> words = {
        {kAdapterOk, "OK"}, {kAdapterWarning, "warning"}, {kAdapterFailed, "failed"}};
    return Lookup(words, v);
}

std::string DriveStatus(uint32_t v) {
    static const std::map<uint32_t, const char*> words = {
        {kDriveOperational, "operational"},
        {kDriveCopyback, "copyback"},
        {kDriveAvailable, "available"},
        {kDriveUnconfiguredFailed, "unconfigured failed"},
        {kDriveDedicatedHotspare, "dedicated hotspare"},
        {kDriveGlobalHotspare, "global hotspare"},
        {kDriveRebuilding, "rebuilding"},
        {kDriveRebuildNecessarySmart, "rebuild necessary (SMART)"},
        {kDriveRebuildNecessary, "rebuild necessary"},
        {kDriveJbod, "JBOD"},
        {kDriveMigrating, "migrating"},
        {kDriveFailed, "failed"},
        {kDriveFailedMissing, "failed (missing)"},
        {kDriveOffline, "offline"},
        {kDriveShield, "shield"},
        {kDriveAutoReplaceHotspare, "auto replace hotspare"}};
    return Lookup(words, v);
}

std::string DriveType(uint32_t v) {
    static const std::map<uint32_t, const char*> words = {{kDriveTypeScsi, "SCSI"},
                                                          {kDriveTypeSata, "SATA"},
                                                          {kDriveTypeSas, "SAS"},
                                                          {kDriveTypeNvme, "NVMe"},
                                                          {kDriveTypePciExpress, "PCI Express"}};
    return Lookup(words, v);
}

std::string SmartFlag(uint32_t v) {
    static const std::map<uint32_t, const char*> words = {
        {kSmartNoError, "no error"}, {kSmartError, "SMART error"}, {kNoAnswer, "no statement"}};
    return Lookup(words, v);
}

std::string LogicalDriveStatus(uint32_t v) {
    static const std::map<uint32_t, const char*> words = {
        {kLogicalOperational, "operational"},
        {kLogicalDegraded, "degraded"},
        {kLogicalPartiallyDegraded, "partially degraded"},
        {kLogicalFailed, "failed"},
        {kLogicalImpacted, "impacted"}};
    return Lookup(words, v);
}

std::string BatteryStatus(uint32_t v) {
    static const std::map<uint32_t, const char*> words = {
        {kBatteryNormal, "normal"},
        {kBatteryVoltageProblem, "voltage problem"},
        {kBatteryCharging, "charging"},
        {kBatteryDischarging, "discharging"},
        {kBatteryWarning, "warning"},
        {kBatteryFailed, "failed"},
        {kBatteryTemperatureProblem, "temperature problem"}};
    return Lookup(words, v);
}

std::string LearnCycle(uint32_t v) {
    static const std::map<uint32_t, const char*> words = {{kLearnCycleRequested, "requested"},
                                                          {kLearnCycleActive, "active"},
                                                          {kLearnCycleTimedOut, "timed out"},
                                                          {kLearnCycleFailed, "failed"},
                                                          {kNoAnswer, "none of these"}};
    return Lookup(words, v);
}

std::string ComponentStatus(uint32_t v) {
    static const std::map<uint32_t, const char*> words = {{kOverallUnknown, "unknown"},
                                                          {kOverallOk, "OK"},
                                                          {kOverallWarning, "warning"},
                                                          {kOverallFailed, "failed"}};
    return Lookup(words, v);
}

std::string FanStatus(uint32_t v) {
    static const std::map<uint32_t, const char*> words = {{kFanOk, "OK"},
                                                          {kFanCritical, "critical"},
                                                          {kFanNonCritical, "non critical"},
                                                          {kFanUnknown, "unknown"},
                                                          {kFanNotInstalled, "not installed"}};
    return Lookup(words, v);
}

std::string FanLocation(uint32_t v) {
    static const std::map<uint32_t, const char*> words = {{kFanLocationUndefined, "undefined"},
                                                          {kFanInPowerSupply, "power supply"},
                                                          {kFanInFanModule, "fan module"}};
    return Lookup(words, v);
}

std::string TempSensorStatus(uint32_t v) {
    static const std::map<uint32_t, const char*> words = {{kSensorUnknown, "unknown"},
                                                          {kSensorUnrecoverable, "unrecoverable"},
                                                          {kSensorNonCritical, "non critical"},
                                                          {kSensorCritical, "critical"},
                                                          {kSensorOk, "OK"}};
    return Lookup(words, v);
}

std::string TempSensorLocation(uint32_t v) {
    static const std::map<uint32_t, const char*> words = {{kSensorLocationOther, "other"},
                                                          {kSensorAtLedPanel, "LED panel"},
                                                          {kSensorInCanister, "canister"},
                                                          {kSensorOnBoard, "board"},
                                                          {kSensorInPowerSupply, "power supply"}};
    return Lookup(words, v);
}

std::string PowerSupplyStatus(uint32_t v) {
    static const std::map<uint32_t, const char*> words = {{kSupplyNotInstalled, "not installed"},
                                                          {kSupplyOk, "OK"},
                                                          {kSupplyCritical, "critical"},
                                                          {kSupplyUnknown, "unknown"}};
    return Lookup(words, v);
}

std::string Redundancy(uint32_t v) {
    static const std::map<uint32_t, const char*> words = {{kSuppliesNotRedundant, "not redundant"},
                                                          {kSuppliesRedundant, "redundant"}};
    return Lookup(words, v);
}

}  // namespace inventory_words
