#pragma once

#include <cstdint>

// The numbers that clients get (answer:: in frame/SwitchProtocol.h) for the values the storage
// tree reader gives. Anything without an answer of its own gives answer::kNoAnswer, unless
// said otherwise.
namespace status_map {

// OK, warning, failed as they are.
uint32_t AdapterStatus(int32_t value);
uint32_t AdapterType(int32_t value);
// A drive's status index as a client's drive state: SMART variants read as their state,
// migrating and JBOD swap their numbers.
uint32_t DriveStatus(int32_t index);
// A drive's status code as a client's extended status.
uint32_t DriveExtendedStatus(int32_t code);
// The component value (good, warning, failed) of a drive status index; 0 for any other
// value and for indexes outside the table.
uint32_t ComponentValue(int32_t index);
// No SMART error or a SMART error.
uint32_t SmartFlag(int32_t flag);
// OK, warning, failed as overall statuses; anything else unknown (0).
uint32_t ThreeWay(int32_t value);
uint32_t DriveType(int32_t type);
uint32_t LogicalDriveStatus(int32_t value);
uint32_t BatteryStatus(int32_t value);
// The learn cycle words by their client numbers. (No word at all has no answer.)
uint32_t LearnCycle(int32_t value);

}  // namespace status_map
