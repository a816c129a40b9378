#include "raid/StatusMaps.h"

#include <iterator>

#include "frame/SwitchProtocol.h"
#include "storage/StatusTables.h"

namespace status_map {

namespace {

namespace a = answer;

// A tree's number and the client's number for it.
struct Pair {
    int32_t nFrom;
    uint32_t nTo;
};

template <size_t N>
uint32_t Lookup(const Pair (&pairs)[N], int32_t value) {
    for (const Pair& p : pairs) {
        if (p.nFrom == value)
            return p.nTo;
    }
    return a::kNoAnswer;
}

// The plain drive states; the SMART variants map through kSmartVariantState first.
constexpr Pair kDriveStates[] = {
    {kPdOperational, a::kDriveOperational},
    {kPdCopyback, a::kDriveCopyback},
    {kPdAvailable, a::kDriveAvailable},
    {kPdUnconfiguredFailed, a::kDriveUnconfiguredFailed},
    {kPdDedicatedHotspare, a::kDriveDedicatedHotspare},
    {kPdGlobalHotspare, a::kDriveGlobalHotspare},
    {kPdRebuilding, a::kDriveRebuilding},
    {kPdUnassigned7, a::kDriveRebuildNecessarySmart},
    {kPdRebuildNecessary, a::kDriveRebuildNecessary},
    {kPdMigrating, a::kDriveMigrating},
    {kPdJbod, a::kDriveJbod},
    {kPdFailed, a::kDriveFailed},
    {kPdFailedMissing, a::kDriveFailedMissing},
    {kPdOffline, a::kDriveOffline},
    {kPdShield, a::kDriveShield},
    {kPdAutoReplaceHotspare, a::kDriveAutoReplaceHotspare},
};

// The SMART variants, in index order from kPdOtherSmart, as the plain states they read like.
constexpr int32_t kSmartVariantState[] = {
    kNotMapped,        kPdOperational, kPdCopyback,    kPdAvailable,          kPdDedicatedHotspare,
    kPdGlobalHotspare, kPdRebuilding,  kPdUnassigned7, kPdMigrating,          kPdJbod,
    kPdFailed,         kPdOffline,     kPdShield,      kPdAutoReplaceHotspare};
static_assert(std::size(kSmartVariantState) == kPdIndexCount - kPdOtherSmart);

// Drive codes with a SMART error that have an extended status of their own.
constexpr int32_t kSmart = kSmartErrorBit;
constexpr uint32_t kExt = a::kExtendedSmartBit;
constexpr Pair kSmartCodes[] = {
    {kSmart | kPdOperational, kExt | a::kDriveOperational},
    {kSmart | kPdCopyback, kExt | a::kDriveCopyback},
    {kSmart | kPdAvailable, kExt | a::kDriveAvailable},
    {kSmart | kPdDedicatedHotspare, kExt | a::kDriveDedicatedHotspare},
    {kSmart | kPdGlobalHotspare, kExt | a::kDriveGlobalHotspare},
    {kSmart | kPdRebuilding, kExt | a::kDriveRebuilding},
    {kPdCodeRebuildNecessarySmart, kExt | a::kDriveRebuildNecessarySmart},
    {kSmart | kPdMigrating, kExt | a::kDriveMigrating},
    {kSmart | kPdJbod, kExt | a::kDriveJbod},
    {kSmart | kPdOffline, kExt | a::kDriveOffline},
    {kSmart | kPdShield, kExt | a::kDriveShield},
    {kSmart | kPdAutoReplaceHotspare, kExt | a::kDriveAutoReplaceHotspare},
};

constexpr Pair kAdapterStatuses[] = {{kStatusOk, a::kAdapterOk},
                                     {kStatusWarning, a::kAdapterWarning},
                                     {kStatusFailed, a::kAdapterFailed}};
constexpr Pair kAdapterTypes[] = {{kAdpScsi, a::kAdapterScsi}, {kAdpAtapi, a::kAdapterAtapi},
                                  {kAdpAta, a::kAdapterAta},   {kAdp1394, a::kAdapter1394},
                                  {kAdpSsa, a::kAdapterSsa},   {kAdpFibre, a::kAdapterFibre},
                                  {kAdpUsb, a::kAdapterUsb},   {kAdpSata, a::kAdapterSata},
                                  {kAdpSas, a::kAdapterSas},   {kAdpPcie, a::kAdapterPcie}};
constexpr Pair kThreeWay[] = {{kStatusOk, a::kOverallOk},
                              {kStatusWarning, a::kOverallWarning},
                              {kStatusFailed, a::kOverallFailed}};
constexpr Pair kComponentValues[] = {{kComponentGood, a::kOverallOk},
                                     {kComponentWarning, a::kOverallWarning},
                                     {kComponentFailed, a::kOverallFailed}};
constexpr Pair kSmartFlags[] = {{kSmartNo, a::kSmartNoError}, {kSmartYes, a::kSmartError}};
constexpr Pair kDriveTypes[] = {{kDriveScsi, a::kDriveTypeScsi},
                                {kDriveSata, a::kDriveTypeSata},
                                {kDriveSas, a::kDriveTypeSas},
                                {kDriveNvme, a::kDriveTypeNvme},
                                {kDrivePciExpress, a::kDriveTypePciExpress}};
constexpr Pair kLogicalDriveStates[] = {{kLdOperational, a::kLogicalOperational},
                                        {kLdDegraded, a::kLogicalDegraded},
                                        {kLdPartiallyDegraded, a::kLogicalPartiallyDegraded},
                                        {kLdFailed, a::kLogicalFailed},
                                        {kLdImpacted, a::kLogicalImpacted}};
constexpr Pair kBatteryStates[] = {{kBatNormal, answer::kBatteryNormal},
                                   {kBatVoltageProblem, answer::kBatteryVoltageProblem},
                                   {kBatCharging, answer::kBatteryCharging},
                                   {kBatDischarging, answer::kBatteryDischarging},
                                   {kBatWarning, answer::kBatteryWarning},
                                   {kBatFailed, answer::kBatteryFailed},
                                   {kBatTemperatureProblem, answer::kBatteryTemperatureProblem}};
constexpr Pair kLearnCycles[] = {{kLcRequested, answer::kLearnCycleRequested},
                                 {kLcActive, answer::kLearnCycleActive},
                                 {kLcTimeout, answer::kLearnCycleTimedOut},
                                 {kLcFailed, answer::kLearnCycleFailed}};

}  // namespace

uint32_t AdapterStatus(int32_t value) {
    return Lookup(kAdapterStatuses, value);
}

uint32_t AdapterType(int32_t value) {
    return Lookup(kAdapterTypes, value);
}

uint32_t DriveStatus(int32_t index) {
    if (index >= kPdIndexCount)
        return a::kNoAnswer;
    if (index >= kPdOtherSmart)
        index = kSmartVariantState[index - kPdOtherSmart];
    return Lookup(kDriveStates, index);
}

uint32_t DriveExtendedStatus(int32_t code) {
    return (code & kSmartErrorBit) ? Lookup(kSmartCodes, code) : Lookup(kDriveStates, code);
}

uint32_t ComponentValue(int32_t index) {
    uint32_t mapped =
        Lookup(kComponentValues, PhysicalDriveComponentValue(static_cast<uint32_t>(index)));
    return mapped == a::kNoAnswer ? uint32_t{a::kOverallUnknown} : mapped;
}

uint32_t SmartFlag(int32_t flag) {
    return Lookup(kSmartFlags, flag);
}

uint32_t ThreeWay(int32_t value) {
    uint32_t mapped = Lookup(kThreeWay, value);
    return mapped == a::kNoAnswer ? uint32_t{a::kOverallUnknown} : mapped;
}

uint32_t DriveType(int32_t type) {
    return Lookup(kDriveTypes, type);
}

uint32_t LogicalDriveStatus(int32_t value) {
    return Lookup(kLogicalDriveStates, value);
}

uint32_t BatteryStatus(int32_t value) {
    // The client's numbers are the tree's, but for the temperature problem; 1 is never read
    // from a tree and passes as it is.
    if (value > kBatNormal && value < kBatVoltageProblem)
        return static_cast<uint32_t>(value);
    return Lookup(kBatteryStates, value);
}

uint32_t LearnCycle(int32_t value) {
    return Lookup(kLearnCycles, value);
}

}  // namespace status_map
