#include "raid/StatusMaps.h"

#include "storage/StatusTables.h"

namespace status_map {

namespace {
constexpr uint8_t kNoAnswer = 255;
// The SMART variants, indexes 16 to 29, as the plain states they read like.
constexpr int32_t kSmartVariantState[] = {-1, 0, 1, 2, 4, 5, 6, 7, 9, 10, 11, 13, 14, 15};
constexpr int32_t kFirstSmartVariant = 16;
constexpr int32_t kLastIndex = 29;
constexpr int32_t kLastPlainState = 15;
}  // namespace

uint8_t DriveStatus(int32_t index) {
    if (index > kLastIndex)
        return kNoAnswer;
    if (index >= kFirstSmartVariant)
        index = kSmartVariantState[index - kFirstSmartVariant];
    if (index < 0 || index > kLastPlainState)
        return kNoAnswer;
    if (index == 9)
        return 10;
    if (index == 10)
        return 9;
    return static_cast<uint8_t>(index);
}

uint32_t DriveExtendedStatus(int32_t code) {
    switch (code) {
        case 9:
            return 10;
        case 10:
            return 9;
        case 4096:
            return 0x80;
        case 4097:
            return 0x81;
        case 4098:
            return 0x82;
        case 4100:
            return 0x84;
        case 4101:
            return 0x85;
        case 4102:
            return 0x86;
        case 4103:
            return 0x87;
        case 4105:
            return 0x8A;
        case 4106:
            return 0x89;
        case 4109:
            return 0x8D;
        case 4110:
            return 0x8E;
        case 4111:
            return 0x8F;
        default:
            break;
    }
    return (code >= 0 && code <= 15) ? static_cast<uint32_t>(code) : kNoAnswer;
}

uint8_t ComponentValue(int32_t index) {
    int32_t value = PhysicalDriveComponentValue(static_cast<uint32_t>(index));
    return (value >= kComponentGood && value <= kComponentFailed) ? static_cast<uint8_t>(value) : 0;
}

uint8_t ThreeWay(int32_t value) {
    return (value >= 0 && value <= 2) ? static_cast<uint8_t>(value + 1) : 0;
}

uint8_t DriveType(int32_t type) {
    static constexpr uint8_t kTypes[] = {0, 7, 8, 15, 13};
    return (type >= 0 && type <= 4) ? kTypes[type] : kNoAnswer;
}

uint8_t BatteryStatus(int32_t value) {
    if (value >= 0 && value <= 6)
        return static_cast<uint8_t>(value);
    return value == 7 ? 8 : kNoAnswer;
}

uint8_t LearnCycle(int32_t value) {
    static constexpr uint8_t kCycles[] = {0, 1, 2, 4, 3};
    return (value >= 1 && value <= 4) ? kCycles[value] : kNoAnswer;
}

}  // namespace status_map
