#pragma once

#include <cstdint>

// Object codes of requests addressed to an enclosure's cabinet, and the code by which a
// client asks the server for its cabinets. The same numbers go out in the events of a cabinet.
namespace oc {

constexpr uint32_t kCabinetList = 0x0220;  // the server's answer: the numbers of its cabinets

constexpr uint32_t CM_PowerOnStatus = 0x0101;

constexpr uint32_t kFanCount = 0x0300;
constexpr uint32_t CM_FanStatus = 0x0301;
constexpr uint32_t kFanNoAnswer = 0x0302;
constexpr uint32_t kFanLocation = 0x0303;
constexpr uint32_t kFanName = 0x0304;
constexpr uint32_t kFanDesignation = 0x0305;

constexpr uint32_t kTempSensorCount = 0x0400;
constexpr uint32_t CM_TempSensorStatus = 0x0401;
constexpr uint32_t kTempSensorTemperature = 0x0402;
constexpr uint32_t kTempSensorLocation = 0x0403;
constexpr uint32_t kTempSensorName = 0x0404;

constexpr uint32_t kPowerSupplyCount = 0x0500;
constexpr uint32_t CM_PowerSupplyStatus = 0x0501;
constexpr uint32_t kPowerSupplyName = 0x0504;
constexpr uint32_t CM_PowerSupplyRedundancy = 0x0510;

// Selectors (OE) of kVersionGroup for a cabinet: its identity texts.
constexpr uint32_t kIdentityChassisModel = 0x0108;
constexpr uint32_t kIdentitySerialNumber = 0x0600;
constexpr uint32_t kIdentityCabinetModel = 0x0608;
constexpr uint32_t kIdentityVendor = 0x060A;

// Values of a fan or sensor by selector (OE), and the request to set one of them.
constexpr uint32_t kSensorValue = 0xE001;
constexpr uint32_t kSensorValueSet = 0xE002;
constexpr uint32_t kSensorValueFan = 0x71;
constexpr uint32_t kSensorValueTemp = 0x73;
constexpr uint32_t kSensorValueTempOther = 0x7C;
constexpr uint32_t kSensorValueWarning = 0x90;
constexpr uint32_t kSensorValueCritical = 0x91;

constexpr uint32_t kCabinetPresent = 0xE20A;  // 1 when the cabinet is there

}  // namespace oc

namespace status {

constexpr uint32_t kInvalidValue = 4;  // a value the object does not take

}  // namespace status

// moves to the switch protocol header
// Until then the same names and values as the server's own codes and statuses; a file that
// includes both sets waits for that move.
namespace oc {

// Texts by OE: the server's version, a cabinet's identity.
constexpr uint32_t kVersionGroup = 0x0C00;

}  // namespace oc

namespace status {

constexpr uint32_t kOk = 0;
constexpr uint32_t kUnknownCode = 1;
constexpr uint32_t kNoSuchObject = 2;
constexpr uint32_t kNotAvailable = 19;
constexpr uint32_t kCabinetUnknown = 20;

}  // namespace status
