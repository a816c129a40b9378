#include "enclosure/EnclosureCodes.h"

#include <strings.h>

#include <cstdlib>
#include <cstring>

#include "frame/SwitchProtocol.h"

namespace {

using namespace answer;

struct CodeWord {
    const char* pszWord;
    uint8_t nFan;
    uint8_t nTempSensor;
    uint8_t nPowerSupply;
};

// One row per word, the code of each kind side by side: "Non Critical" is fine for a supply
// but a warning for a fan and a sensor.
constexpr CodeWord kStatusWords[] = {
    {"OK", kFanOk, kSensorOk, kSupplyOk},
    {"Critical", kFanCritical, kSensorCritical, kSupplyCritical},
    {"Non Critical", kFanNonCritical, kSensorNonCritical, kSupplyOk},
    {"Unrecoverable", kFanCritical, kSensorUnrecoverable, kSupplyCritical},
    {"Not Installed", kFanNotInstalled, kSensorUnknown, kSupplyNotInstalled},
    {"Unknown", kFanUnknown, kSensorUnknown, kSupplyUnknown},
    {"Not Available", kFanUnknown, kSensorUnknown, kSupplyCritical},
};
constexpr CodeWord kOtherStatus = {"", kFanUnknown, kSensorUnknown, kSupplyNotInstalled};

struct LocationWord {
    const char* pszWord;
    uint8_t nCode;
};

constexpr LocationWord kFanLocations[] = {
    {"undefined", kFanLocationUndefined}, {"Power (0)", kFanInPowerSupply},
    {"Power (1)", kFanInPowerSupply},     {"Power (2)", kFanInPowerSupply},
    {"Power (3)", kFanInPowerSupply},     {"FEM (0)", kFanInFanModule},
    {"FEM (1)", kFanInFanModule},
};

constexpr LocationWord kTempSensorLocations[] = {
    {"SBB Canister (0)", kSensorInCanister},
    {"SBB Canister (1)", kSensorInCanister},
    {"LEDPanel", kSensorAtLedPanel},
    {"Midplane left", kSensorOnBoard},
    {"Baseboard left front", kSensorOnBoard},
    {"Baseboard right front", kSensorOnBoard},
    {"Baseboard left rear", kSensorOnBoard},
    {"Baseboard right rear", kSensorOnBoard},
    {"FEM (0)", kSensorOnBoard},
    {"FEM (1)", kSensorOnBoard},
    {"PSU (0) hotspot", kSensorInPowerSupply},
    {"PSU (0) inlet", kSensorInPowerSupply},
    {"PSU (1) hotspot", kSensorInPowerSupply},
    {"PSU (1) inlet", kSensorInPowerSupply},
    {"PSU (2) hotspot", kSensorInPowerSupply},
    {"PSU (2) inlet", kSensorInPowerSupply},
    {"PSU (3) hotspot", kSensorInPowerSupply},
    {"PSU (3) inlet", kSensorInPowerSupply},
};

const char* Text(const char* pszText) {
    return pszText ? pszText : "";
}

const CodeWord& StatusRow(const char* pszText) {
    for (const CodeWord& row : kStatusWords) {
        if (strcasecmp(Text(pszText), row.pszWord) == 0) {
            return row;
        }
    }
    return kOtherStatus;
}

template <size_t N>
uint8_t Location(const LocationWord (&rows)[N], const char* pszText, uint8_t nOther) {
    for (const LocationWord& row : rows) {
        if (strcasecmp(Text(pszText), row.pszWord) == 0) {
            return row.nCode;
        }
    }
    return nOther;
}

}  // namespace

uint8_t FanStatusFromText(const char* pszText) {
    return StatusRow(pszText).nFan;
}

uint8_t TempSensorStatusFromText(const char* pszText) {
    return StatusRow(pszText).nTempSensor;
}

uint8_t PowerSupplyStatusFromText(const char* pszText) {
    return StatusRow(pszText).nPowerSupply;
}

uint8_t FanLocationFromText(const char* pszText) {
    return Location(kFanLocations, pszText, kFanLocationUndefined);
}

uint8_t TempSensorLocationFromText(const char* pszText) {
    return Location(kTempSensorLocations, pszText, kSensorLocationOther);
}

long ParseNumberText(const char* pszText) {
    const char* p = Text(pszText);
    size_t nLength = strlen(p);
    if (nLength < 3) {
        if (nLength == 2 && p[0] == '0') {
            return strtol(p + 1, nullptr, 8);
        }
        return strtol(p, nullptr, 10);
    }
    if (p[0] == '0') {
        if (p[1] == 'x' || p[1] == 'X') {
            return strtol(p + 2, nullptr, 16);
        }
        return strtol(p + 1, nullptr, 8);
    }
    return strtol(p, nullptr, 10);
}

const char* const kPowerSupplyFanNames[4] = {"FAN1 PSU1", "FAN2 PSU1", "FAN1 PSU2", "FAN2 PSU2"};
const char* const kPowerSupplyFanNamesFrom0[4] = {"FAN0 PSU0", "FAN1 PSU0", "FAN0 PSU1",
                                                  "FAN1 PSU1"};
const char* const kTempSensorNames[6] = {"Ambient 1",   "Backplane 1", "Backplane 2",
                                         "Backplane 3", "I/O 1",       "I/O 2"};
