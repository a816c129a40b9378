#include "storage/StatusTables.h"

#include <strings.h>

#include <cstring>

namespace {

// One row of the physical drive status table. Component values come from the index.
struct DriveStatusRow {
    const char* pszWord;
    int32_t nIndex;
    int32_t nCode;
};

constexpr DriveStatusRow kDriveStatusRows[] = {
    {"unconfigured", kPdAvailable, kPdAvailable},
    {"unconfigured failed", kPdUnconfiguredFailed, kPdUnconfiguredFailed},
    {"Available", kPdAvailable, kPdAvailable},
    {"Available SMART Error", kPdAvailableSmart, kPdAvailable | kSmartErrorBit},
    {"Copyback", kPdCopyback, kPdCopyback},
    {"Copyback / SMART Error", kPdCopybackSmart, kPdCopyback | kSmartErrorBit},
    {"Dedicated Hotspare", kPdDedicatedHotspare, kPdDedicatedHotspare},
    {"Dedicated Hotspare SMART Error", kPdDedicatedHotspareSmart,
     kPdDedicatedHotspare | kSmartErrorBit},
    {"Failed", kPdFailed, kPdFailed},
    {"Failed SMART Error", kPdFailedSmart, kPdFailed | kSmartErrorBit},
    {"Failed (Missing)", kPdFailedMissing, kPdFailedMissing},
    {"Global Hotspare", kPdGlobalHotspare, kPdGlobalHotspare},
    {"Global Hotspare SMART Error", kPdGlobalHotspareSmart, kPdGlobalHotspare | kSmartErrorBit},
    {"Auto replace hotspare", kPdAutoReplaceHotspare, kPdAutoReplaceHotspare},
    {"Auto replace hotspare smart", kPdAutoReplaceHotspareSmart,
     kPdAutoReplaceHotspare | kSmartErrorBit},
    {"Migrating", kPdMigrating, kPdMigrating},
    {"Migrating / SMART Error", kPdMigratingSmart, kPdMigrating | kSmartErrorBit},
    {"Offline", kPdOffline, kPdOffline},
    {"Offline - SMART Error", kPdOfflineSmart, kPdOffline | kSmartErrorBit},
    {"Operational", kPdOperational, kPdOperational},
    {"Operational SMART Error", kPdOperationalSmart, kPdOperational | kSmartErrorBit},
    {"Rebuilding", kPdRebuilding, kPdRebuilding},
    {"Rebuilding SMART Error", kPdRebuildingSmart, kPdRebuilding | kSmartErrorBit},
    {"Rebuild necessary", kPdRebuildNecessary, kPdRebuildNecessary},
    {"Rebuild necessary SMART Error", kPdRebuildNecessarySmart, kPdCodeRebuildNecessarySmart},
    {"JBOD", kPdJbod, kPdJbod},
    {"JBOD / SMART Error", kPdJbodSmart, kPdJbod | kSmartErrorBit},
    {"Shield", kPdShield, kPdShield},
    {"Shield smart", kPdShieldSmart, kPdShield | kSmartErrorBit},
    {"Unknown", kNotMapped, kNotMapped},
};

// The component value of each status index. The SMART variants of "Available", "Failed" and
// "Offline" say nothing (0): a failed drive with a SMART error doesn't count in the total.
constexpr int32_t kComponentValues[kPdIndexCount] = {
    kComponentGood,    kComponentGood,    kComponentGood,    kComponentFailed,  kComponentGood,
    kComponentGood,    kComponentWarning, kComponentWarning, kComponentFailed,  kComponentGood,
    kComponentGood,    kComponentFailed,  kComponentFailed,  kComponentFailed,  kComponentFailed,
    kComponentGood,    kComponentWarning, kComponentWarning, kComponentWarning, kComponentNone,
    kComponentWarning, kComponentWarning, kComponentWarning, kComponentWarning, kComponentWarning,
    kComponentWarning, kComponentNone,    kComponentNone,    kComponentWarning, kComponentWarning,
};

constexpr StatusWord kLogicalDriveWords[] = {
    {"Operational", kLdOperational},
    {"Degraded", kLdDegraded},
    {"Partially degraded", kLdPartiallyDegraded},
    {"Failed", kLdFailed},
    {"Impacted", kLdImpacted},
};

constexpr StatusWord kBatteryWords[] = {
    {"Normal", kBatNormal},
    {"Temperature Problem", kBatTemperatureProblem},
    {"Voltage Problem", kBatVoltageProblem},
    {"Charging", kBatCharging},
    {"Discharging", kBatDischarging},
    {"Warning", kBatWarning},
    {"Failed", kBatFailed},
};

constexpr StatusWord kThreeWayWords[] = {
    {"OK", kStatusOk}, {"Warning", kStatusWarning}, {"Failed", kStatusFailed}};

constexpr StatusWord kAdapterTypeWords[] = {
    {"SCSI", kAdpScsi}, {"ATAPI", kAdpAtapi}, {"ATA", kAdpAta}, {"1394", kAdp1394},
    {"SSA", kAdpSsa},   {"FIBRE", kAdpFibre}, {"USB", kAdpUsb}, {"SATA", kAdpSata},
    {"SAS", kAdpSas},   {"PCIe", kAdpPcie},
};

// SMART in capitals marks a SMART state; the lower-case spellings don't count here.
constexpr const char* kSmartMark = "SMART";

const char* Text(const char* pszWord) {
    return pszWord ? pszWord : "";
}

template <size_t N>
int32_t Lookup(const StatusWord (&rows)[N], const char* pszWord, int32_t nOtherwise) {
    for (const StatusWord& row : rows) {
        if (strcasecmp(Text(pszWord), row.pszWord) == 0) {
            return row.nValue;
        }
    }
    return nOtherwise;
}

const DriveStatusRow* FindDriveStatusRow(const char* pszWord) {
    for (const DriveStatusRow& row : kDriveStatusRows) {
        if (strcasecmp(Text(pszWord), row.pszWord) == 0) {
            return &row;
        }
    }
    return nullptr;
}

}  // namespace

const StatusWord kLearnCycleWords[kLearnCyclePasses] = {
    {"Learn Cycle Failed", kLcFailed},
    {"Learn Cycle Timeout", kLcTimeout},
    {"Learn Cycle Active", kLcActive},
    {"Learn Cycle Requested", kLcRequested},
};

int32_t PhysicalDriveStatusIndexFromText(const char* pszWord) {
    if (const DriveStatusRow* pRow = FindDriveStatusRow(pszWord)) {
        return pRow->nIndex;
    }
    return strstr(Text(pszWord), kSmartMark) ? kPdOtherSmart : kNotMapped;
}

int32_t PhysicalDriveStatusCodeFromText(const char* pszWord) {
    const DriveStatusRow* pRow = FindDriveStatusRow(pszWord);
    return pRow ? pRow->nCode : kNotMapped;
}

int32_t PhysicalDriveComponentValue(uint32_t nIndex) {
    return nIndex < kPdIndexCount ? kComponentValues[nIndex] : kComponentNone;
}

int32_t PhysicalDriveSmartFlagFromText(const char* pszWord) {
    const char* pszText = Text(pszWord);
    if (strcasecmp(pszText, "Failed") == 0 || strcasecmp(pszText, "Failed (Missing)") == 0 ||
        strcasecmp(pszText, "Unknown") == 0) {
        return kSmartNotApplicable;
    }
    return strstr(pszText, kSmartMark) ? kSmartYes : kSmartNo;
}

int32_t PhysicalDriveTypeFromText(const char* pszWord) {
    const char* pszText = Text(pszWord);
    if (strcasecmp(pszText, "SCSI") == 0) {
        return kDriveScsi;
    }
    if (strcasecmp(pszText, "SATA") == 0) {
        return kDriveSata;
    }
    if (strstr(pszText, "SAS")) {
        return kDriveSas;
    }
    if (strstr(pszText, "NVMe")) {
        return kDriveNvme;
    }
    if (strstr(pszText, "PCI Express")) {
        return kDrivePciExpress;
    }
    return kNotMapped;
}

int32_t LogicalDriveStatusFromText(const char* pszWord) {
    return Lookup(kLogicalDriveWords, pszWord, kNotMapped);
}

int32_t BatteryStatusFromText(const char* pszWord) {
    return Lookup(kBatteryWords, pszWord, kBatNormal);
}

int32_t ThreeWayStatusFromText(const char* pszWord) {
    return Lookup(kThreeWayWords, pszWord, kNotMapped);
}

int32_t AdapterTypeFromText(const char* pszWord) {
    return Lookup(kAdapterTypeWords, pszWord, kNotMapped);
}
