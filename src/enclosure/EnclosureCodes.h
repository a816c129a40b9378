#pragma once

#include <cstdint>

// The words of the storage tree as the codes that a cabinet's objects carry. The three kinds
// of object have code sets of their own; the codes go out unchanged in answers and events.
// Texts are compared without regard to case; a null text counts as empty.
uint8_t FanStatusFromText(const char* pszText);
uint8_t TempSensorStatusFromText(const char* pszText);
uint8_t PowerSupplyStatusFromText(const char* pszText);
uint8_t FanLocationFromText(const char* pszText);
uint8_t TempSensorLocationFromText(const char* pszText);

// A temperature text as a number, the base taken from its start: "0x1F" is 31, "012" is 10.
long ParseNumberText(const char* pszText);

// Chassis models of the supported enclosures.
namespace chassis {

// ChassisID values that get kModelSuffix appended.
constexpr const char* kSuffixedIds[] = {"VK12", "VK12T21", "VK12T22", "VK16", "VK16T2"};
constexpr const char* kModelSuffix = "R";
// Words in an enclosure's name that make it supported, in the order they are tried.
constexpr const char* kSupportedNames[] = {"VK16", "VK16 T2", "VK12", "VK12 T2"};
// An outside maker's enclosure, sold as the VK16.
constexpr const char* kOutsideMakerName = "JABIL";
// The model where the tree gives no ChassisID: the first row whose word is in the name. The
// order makes a "VK16 T2" a VK16, and an outside maker's "VK12" a VK16 too.
struct ModelByName {
    const char* pszWord;
    const char* pszModel;
};
constexpr ModelByName kModelsByName[] = {
    {"VK16", "VK16R"}, {kOutsideMakerName, "VK16R"}, {"VK12 T2", "VK12T2R"},
    {"VK12", "VK12R"}, {"VK16 T2", "VK16T2R"},
};
constexpr const char* kOutsideMakerCabinetModel = "Orlane VK16";
constexpr const char* kUnknownChassis = "Unknown Chassis";

}  // namespace chassis

// Fixed names of the fans of two power supplies and of the usual sensors. Kept with the
// subsystem for clients of the names; the cabinet answers themselves come from the tree.
extern const char* const kPowerSupplyFanNames[4];       // "FAN1 PSU1", counted from 1
extern const char* const kPowerSupplyFanNamesFrom0[4];  // "FAN0 PSU0", counted from 0
extern const char* const kTempSensorNames[6];           // "Ambient 1" ...
