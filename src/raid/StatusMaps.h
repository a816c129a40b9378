#pragma once

#include <cstdint>

// The numbers that clients get for the values the storage tree reader gives.
namespace status_map {

// A drive's status index as a client's drive status: SMART variants read as their state,
// 9 and 10 swap; 255 for anything that has no answer.
uint8_t DriveStatus(int32_t index);
// A drive's status code as a client's extended status; 255 for codes without one.
uint32_t DriveExtendedStatus(int32_t code);
// The component value (1 good, 2 warning, 3 failed) of a drive status index; 0 for any
// other value and for indexes outside 0 to 29.
uint8_t ComponentValue(int32_t index);
// 0, 1, 2 (OK, warning, failed) as 1, 2, 3; anything else 0.
uint8_t ThreeWay(int32_t value);
// The drive types 0 to 4 as the client's type numbers; 255 for others.
uint8_t DriveType(int32_t type);
// 0 to 6 as they are, 7 as 8; 255 for others.
uint8_t BatteryStatus(int32_t value);
// 1 to 4 as 1, 2, 4, 3; 255 for others. (0 has no answer at all.)
uint8_t LearnCycle(int32_t value);

}  // namespace status_map
