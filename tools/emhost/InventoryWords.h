#pragma once

#include <cstdint>
#include <string>

// What the numbers of the module's answers mean, in words.
namespace inventory_words {

std::string AdapterType(uint32_t value);
std::string AdapterStatus(uint32_t value);
std::string DriveStatus(uint32_t value);
std::string DriveType(uint32_t value);
std::string SmartFlag(uint32_t value);
std::string LogicalDriveStatus(uint32_t value);
std::string BatteryStatus(uint32_t value);
std::string LearnCycle(uint32_t value);
// 1, 2, 3 as OK, warning, failed; 0 as unknown.
std::string ComponentStatus(uint32_t value);

// A cabinet's objects: each kind has a code set of its own.
std::string FanStatus(uint32_t value);
std::string FanLocation(uint32_t value);
std::string TempSensorStatus(uint32_t value);
std::string TempSensorLocation(uint32_t value);
std::string PowerSupplyStatus(uint32_t value);
std::string Redundancy(uint32_t value);

}  // namespace inventory_words
