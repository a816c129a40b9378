#pragma once

#include <cstdint>

// The maps from the storage tree's words to the numbers that the module hands on. Each map
// has its own space of numbers; they are not aligned with one another on purpose. Words are
// compared without regard to case, top to bottom; "contains" tests respect case. The names
// carry prefixes of their own (kPd, kLd, kBat, kLc, kAdp), apart from the numbers that
// clients receive, which the module maps these to and which differ in places.

// A word that no row takes, and a getter's missing element.
constexpr int32_t kNotMapped = -1;

// Physical drive status index: selects the component value and is what
// PhysicalDriveStatusToIndex gives. 7 belongs to no word.
enum PhysicalDriveStatusIndex : int32_t {
    kPdOperational = 0,
    kPdCopyback = 1,
    kPdAvailable = 2,  // also "unconfigured"
    kPdUnconfiguredFailed = 3,
    kPdDedicatedHotspare = 4,
    kPdGlobalHotspare = 5,
    kPdRebuilding = 6,
    kPdUnassigned7 = 7,
    kPdRebuildNecessary = 8,
    kPdMigrating = 9,
    kPdJbod = 10,
    kPdFailed = 11,
    kPdFailedMissing = 12,
    kPdOffline = 13,
    kPdShield = 14,
    kPdAutoReplaceHotspare = 15,
    kPdOtherSmart = 16,
    kPdOperationalSmart = 17,
    kPdCopybackSmart = 18,
    kPdAvailableSmart = 19,
    kPdDedicatedHotspareSmart = 20,
    kPdGlobalHotspareSmart = 21,
    kPdRebuildingSmart = 22,
    kPdRebuildNecessarySmart = 23,
    kPdMigratingSmart = 24,
    kPdJbodSmart = 25,
    kPdFailedSmart = 26,
    kPdOfflineSmart = 27,
    kPdShieldSmart = 28,
    kPdAutoReplaceHotspareSmart = 29,
    kPdIndexCount = 30,
};

// The status code of a drive with a SMART error: the plain status's code with this bit.
constexpr int32_t kSmartErrorBit = 0x1000;
// The one exception: "Rebuild necessary SMART Error" has 7 with the bit, not 8 with it.
constexpr int32_t kPdCodeRebuildNecessarySmart = kPdUnassigned7 | kSmartErrorBit;

// What a drive's state says about all drives together.
enum ComponentValue : int32_t {
    kComponentNone = 0,
    kComponentGood = 1,
    kComponentWarning = 2,
    kComponentFailed = 3,
};

enum SmartFlag : int32_t { kSmartNotApplicable = -1, kSmartNo = 0, kSmartYes = 1 };

enum PhysicalDriveType : int32_t {
    kDriveScsi = 0,
    kDriveSata = 1,
    kDriveSas = 2,
    kDriveNvme = 3,
    kDrivePciExpress = 4,
};

enum LogicalDriveStatus : int32_t {
    kLdOperational = 0,
    kLdDegraded = 1,
    kLdPartiallyDegraded = 2,
    kLdFailed = 3,
    kLdImpacted = 4,
};

// Battery states; 1 is not given out, and a word outside the table reads as normal.
enum BatteryStatus : int32_t {
    kBatNormal = 0,
    kBatVoltageProblem = 2,
    kBatCharging = 3,
    kBatDischarging = 4,
    kBatWarning = 5,
    kBatFailed = 6,
    kBatTemperatureProblem = 7,
};

// Learn cycle words; kLcNoWord when no AdditionalStatus (or no Battery) is there.
enum LearnCycleStatus : int32_t {
    kLcNoWord = 0,
    kLcRequested = 1,
    kLcActive = 2,
    kLcTimeout = 3,
    kLcFailed = 4,
};

// Adapter types, numbered in the order of the tree's words.
enum AdapterTypeWord : int32_t {
    kAdpScsi = 0,
    kAdpAtapi = 1,
    kAdpAta = 2,
    kAdp1394 = 3,
    kAdpSsa = 4,
    kAdpFibre = 5,
    kAdpUsb = 6,
    kAdpSata = 7,
    kAdpSas = 8,
    kAdpPcie = 9,
};

// Enclosures, adapters and the multiplexer's totals.
enum ThreeWayStatus : int32_t { kStatusOk = 0, kStatusWarning = 1, kStatusFailed = 2 };

// A word and its number.
struct StatusWord {
    const char* pszWord;
    int32_t nValue;
};

// The learn cycle words, one per pass, in the order of their priority.
constexpr int kLearnCyclePasses = 4;
extern const StatusWord kLearnCycleWords[kLearnCyclePasses];

// Physical drive status: the index and the code of a word. A null word reads as empty.
int32_t PhysicalDriveStatusIndexFromText(const char* pszWord);
int32_t PhysicalDriveStatusCodeFromText(const char* pszWord);
// The component value of a status index; kComponentNone outside 0 to 29.
int32_t PhysicalDriveComponentValue(uint32_t nIndex);
int32_t PhysicalDriveSmartFlagFromText(const char* pszWord);
int32_t PhysicalDriveTypeFromText(const char* pszWord);
int32_t LogicalDriveStatusFromText(const char* pszWord);
int32_t BatteryStatusFromText(const char* pszWord);
int32_t ThreeWayStatusFromText(const char* pszWord);
int32_t AdapterTypeFromText(const char* pszWord);
