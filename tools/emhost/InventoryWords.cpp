#include "InventoryWords.h"

#include "frame/SwitchProtocol.h"

const Vocabulary::Word* Vocabulary::Find(uint32_t value) const {
    for (const Word& word : m_Words) {
        if (word.value == value)
            return &word;
    }
    return nullptr;
}

const char* Vocabulary::Name(uint32_t value) const {
    const Word* word = Find(value);
    return word ? word->name : "unknown";
}

Severity Vocabulary::SeverityOf(uint32_t value) const {
    const Word* word = Find(value);
    return word ? word->severity : Severity::kNone;
}

std::string Vocabulary::Show(uint32_t value) const {
    return std::to_string(value) + " " + Name(value);
}

std::string Vocabulary::Legend() const {
    std::string legend;
    for (const Word& word : m_Words)
        legend += (legend.empty() ? "" : ", ") + Show(word.value);
    return legend;
}

namespace inventory_words {

namespace {

using namespace answer;
constexpr Severity kNone = Severity::kNone;
constexpr Severity kOk = Severity::kOk;
constexpr Severity kWarning = Severity::kWarning;
constexpr Severity kFailed = Severity::kFailed;

}  // namespace

const Vocabulary& AdapterType() {
    static const Vocabulary words = {{kAdapterScsi, "SCSI", kNone}, {kAdapterAtapi, "ATAPI", kNone},
                                     {kAdapterAta, "ATA", kNone},   {kAdapter1394, "1394", kNone},
                                     {kAdapterSsa, "SSA", kNone},   {kAdapterFibre, "Fibre", kNone},
                                     {kAdapterUsb, "USB", kNone},   {kAdapterSata, "SATA", kNone},
                                     {kAdapterSas, "SAS", kNone},   {kAdapterPcie, "PCIe", kNone}};
    return words;
}

const Vocabulary& AdapterStatus() {
    static const Vocabulary words = {{kAdapterOk, "OK", kOk},
                                     {kAdapterWarning, "warning", kWarning},
                                     {kAdapterFailed, "failed", kFailed}};
    return words;
}

// A drive that is out of its array has failed; one whose data is moving, or that waits for
// a rebuild, leaves its array degraded meanwhile.
const Vocabulary& DriveStatus() {
    static const Vocabulary words = {
        {kDriveOperational, "operational", kOk},
        {kDriveCopyback, "copyback", kWarning},
        {kDriveAvailable, "available", kOk},
        {kDriveUnconfiguredFailed, "unconfigured failed", kFailed},
        {kDriveDedicatedHotspare, "dedicated hotspare", kOk},
        {kDriveGlobalHotspare, "global hotspare", kOk},
        {kDriveRebuilding, "rebuilding", kWarning},
        {kDriveRebuildNecessarySmart, "rebuild necessary (SMART)", kWarning},
        {kDriveRebuildNecessary, "rebuild necessary", kWarning},
        {kDriveJbod, "JBOD", kOk},
        {kDriveMigrating, "migrating", kWarning},
        {kDriveFailed, "failed", kFailed},
        {kDriveFailedMissing, "failed (missing)", kFailed},
        {kDriveOffline, "offline", kFailed},
        {kDriveShield, "shield", kWarning},
        {kDriveAutoReplaceHotspare, "auto replace hotspare", kOk}};
    return words;
}

const Vocabulary& DriveType() {
    static const Vocabulary words = {{kDriveTypeScsi, "SCSI", kNone},
                                     {kDriveTypeSata, "SATA", kNone},
                                     {kDriveTypeSas, "SAS", kNone},
                                     {kDriveTypeNvme, "NVMe", kNone},
                                     {kDriveTypePciExpress, "PCI Express", kNone}};
    return words;
}

const Vocabulary& SmartFlag() {
    static const Vocabulary words = {{kSmartNoError, "no error", kOk},
                                     {kSmartError, "SMART error", kWarning},
                                     {kNoAnswer, "no statement", kNone}};
    return words;
}

const Vocabulary& LogicalDriveStatus() {
    static const Vocabulary words = {{kLogicalOperational, "operational", kOk},
                                     {kLogicalDegraded, "degraded", kWarning},
                                     {kLogicalPartiallyDegraded, "partially degraded", kWarning},
                                     {kLogicalFailed, "failed", kFailed},
                                     {kLogicalImpacted, "impacted", kWarning}};
    return words;
}

const Vocabulary& BatteryStatus() {
    static const Vocabulary words = {{kBatteryNormal, "normal", kOk},
                                     {kBatteryVoltageProblem, "voltage problem", kWarning},
                                     {kBatteryCharging, "charging", kOk},
                                     {kBatteryDischarging, "discharging", kWarning},
                                     {kBatteryWarning, "warning", kWarning},
                                     {kBatteryFailed, "failed", kFailed},
                                     {kBatteryTemperatureProblem, "temperature problem", kWarning}};
    return words;
}

const Vocabulary& LearnCycle() {
    static const Vocabulary words = {{kLearnCycleRequested, "requested", kOk},
                                     {kLearnCycleActive, "active", kOk},
                                     {kLearnCycleTimedOut, "timed out", kWarning},
                                     {kLearnCycleFailed, "failed", kWarning},
                                     {kNoAnswer, "none of these", kNone}};
    return words;
}

const Vocabulary& ComponentStatus() {
    static const Vocabulary words = {{kOverallUnknown, "unknown", kNone},
                                     {kOverallOk, "OK", kOk},
                                     {kOverallWarning, "warning", kWarning},
                                     {kOverallFailed, "failed", kFailed}};
    return words;
}

const Vocabulary& FanStatus() {
    static const Vocabulary words = {{kFanOk, "OK", kOk},
                                     {kFanCritical, "critical", kFailed},
                                     {kFanNonCritical, "non critical", kWarning},
                                     {kFanUnknown, "unknown", kNone},
                                     {kFanNotInstalled, "not installed", kNone}};
    return words;
}

const Vocabulary& FanLocation() {
    static const Vocabulary words = {{kFanLocationUndefined, "undefined", kNone},
                                     {kFanInPowerSupply, "power supply", kNone},
                                     {kFanInFanModule, "fan module", kNone}};
    return words;
}

const Vocabulary& TempSensorStatus() {
    static const Vocabulary words = {{kSensorUnknown, "unknown", kNone},
                                     {kSensorUnrecoverable, "unrecoverable", kFailed},
                                     {kSensorNonCritical, "non critical", kWarning},
                                     {kSensorCritical, "critical", kFailed},
                                     {kSensorOk, "OK", kOk}};
    return words;
}

const Vocabulary& TempSensorLocation() {
    static const Vocabulary words = {{kSensorLocationOther, "other", kNone},
                                     {kSensorAtLedPanel, "LED panel", kNone},
                                     {kSensorInCanister, "canister", kNone},
                                     {kSensorOnBoard, "board", kNone},
                                     {kSensorInPowerSupply, "power supply", kNone}};
    return words;
}

const Vocabulary& PowerSupplyStatus() {
    static const Vocabulary words = {{kSupplyNotInstalled, "not installed", kNone},
                                     {kSupplyOk, "OK", kOk},
                                     {kSupplyCritical, "critical", kFailed},
                                     {kSupplyUnknown, "unknown", kNone}};
    return words;
}

const Vocabulary& Redundancy() {
    static const Vocabulary words = {{kSuppliesNotRedundant, "not redundant", kWarning},
                                     {kSuppliesRedundant, "redundant", kOk}};
    return words;
}

}  // namespace inventory_words
