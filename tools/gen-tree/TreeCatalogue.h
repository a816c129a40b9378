#pragma once

#include <cstdint>

// What gen-tree builds its trees from: drive and enclosure models, the states it may give a
// drive that is not healthy, and the places of an enclosure's fans and sensors. The words are
// those the module reads.

// Severity of a state, as the multiplexer totals it.
enum Severity : int { kSevOk = 0, kSevWarning = 1, kSevFailed = 2 };

inline const char* const kSeverityWords[] = {"OK", "Warning", "Failed"};

struct DriveModel {
    const char* pszVendor;
    const char* pszProduct;
    const char* pszType;
    const char* pszSerialPrefix;
    uint64_t nSizeMB;
};

inline constexpr DriveModel kDriveModels[] = {
    {"HALDEN", "HS1200", "SAS", "HD", 1144641},   {"MIRAVEX", "MX4000N", "SAS", "MV", 3814697},
    {"MIRAVEX", "MX8000N", "SAS", "MV", 7630885}, {"KORVAL", "KE1600", "SAS SSD", "KE", 1526185},
    {"KORVAL", "KS960", "SATA", "KV", 915715},
};

struct EnclosureModel {
    const char* pszProduct;
    const char* pszChassis;
};

inline constexpr EnclosureModel kEnclosureModels[] = {
    {"VK16", "VK16"}, {"VK12 T2", "VK12T22"}, {"VK12", "VK12"}};

// A drive state that is not healthy: its word, what the multiplexer makes of it, and
// whether the drive is lost to its logical drive.
struct DriveFault {
    const char* pszStatus;
    Severity severity;
    bool bLost;
};

inline constexpr DriveFault kDriveFaults[] = {
    {"Failed", kSevFailed, true},
    {"Offline", kSevFailed, true},
    {"Failed (Missing)", kSevFailed, true},
    {"Rebuild necessary", kSevFailed, true},
    {"Rebuilding", kSevWarning, true},
    {"Operational SMART Error", kSevWarning, false},
    {"Global Hotspare SMART Error", kSevWarning, false},
};

inline const char* const kFanLocations[] = {"FEM (0)", "FEM (1)", "Power (0)", "Power (1)"};
inline const char* const kSensorLocations[] = {"SBB Canister (0)", "SBB Canister (1)",
                                               "Midplane left", "PSU (0) inlet"};
inline constexpr uint32_t kPowerSupplies = 2;
