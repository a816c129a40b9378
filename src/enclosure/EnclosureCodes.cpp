#include "enclosure/EnclosureCodes.h"

#include <strings.h>

#include <cstdlib>
#include <cstring>

namespace {

struct CodeWord {
    const char* pszWord;
    uint8_t nFan;
    uint8_t nTempSensor;
    uint8_t nPowerSupply;
};

// One row per word, the code of each kind side by side: "Non Critical" is fine for a supply
// but a warning for a fan and a sensor.
constexpr CodeWord kStatusWords[] = {
    {"OK", 1, 6, 1},
    {"Critical", 2, 5, 2},
    {"Non Critical", 3, 4, 1},
    {"Unrecoverable", 2, 3, 2},
    {"Not Installed", 6, 0, 0},
    {"Unknown", 5, 0, 6},
    {"Not Available", 5, 0, 2},
};
constexpr CodeWord kOtherStatus = {"", 5, 0, 0};

struct LocationWord {
    const char* pszWord;
    uint8_t nCode;
};

constexpr LocationWord kFanLocations[] = {
    {"undefined", 0}, {"Power (0)", 4}, {"Power (1)", 4}, {"Power (2)", 4},
    {"Power (3)", 4}, {"FEM (0)", 5},   {"FEM (1)", 5},
};

constexpr LocationWord kTempSensorLocations[] = {
    {"SBB Canister (0)", 3},
    {"SBB Canister (1)", 3},
    {"LEDPanel", 2},
    {"Midplane left", 4},
    {"Baseboard left front", 4},
    {"Baseboard right front", 4},
    {"Baseboard left rear", 4},
    {"Baseboard right rear", 4},
    {"FEM (0)", 4},
    {"FEM (1)", 4},
    {"PSU (0) hotspot", 5},
    {"PSU (0) inlet", 5},
    {"PSU (1) hotspot", 5},
    {"PSU (1) inlet", 5},
    {"PSU (2) hotspot", 5},
    {"PSU (2) inlet", 5},
    {"PSU (3) hotspot", 5},
    {"PSU (3) inlet", 5},
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
uint8_t Location(const LocationWord (&rows)[N], const char* pszText) {
    for (const LocationWord& row : rows) {
        if (strcasecmp(Text(pszText), row.pszWord) == 0) {
            return row.nCode;
        }
    }
    return 0;
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
    return Location(kFanLocations, pszText);
}

uint8_t TempSensorLocationFromText(const char* pszText) {
    return Location(kTempSensorLocations, pszText);
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
