// Requests addressed to a cabinet: one row per object code (and selector), its bound for OI
// and its answer.
#include "enclosure/CabinetRequest.h"

#include <algorithm>
#include <string>
#include <vector>

#include "enclosure/EnclosureStates.h"
#include "frame/CabinetNumber.h"
#include "frame/CommandRecord.h"
#include "frame/SwitchProtocol.h"
#include "runtime/DebugClient.h"

namespace {

using Bound = CabinetBound;

struct Request {
    EnclosureMap& map;
    CommandRecord& record;
    const CabinetRecord& cabinet;
    uint32_t nCa;
    std::string sKey;  // the object key of CA and OI
};

// Answers a request whose OI is within its bound; gives the result of the request.
using Answer = uint32_t (*)(Request& r);

// One object code (and selector) and its answer: a row is built by a maker below that sets
// the members it needs by name; the others keep their defaults.
struct Row : CabinetRowAddress {
    Answer answer = nullptr;
};

// A row for any OE, whose OI is held against bound.
constexpr Row AnyOe(uint32_t nOc, Bound bound, Answer answer) {
    Row row;
    row.nOc = nOc;
    row.bound = bound;
    row.answer = answer;
    return row;
}
// A row for one OE only.
constexpr Row OneOe(uint32_t nOc, uint32_t nOe, Bound bound, Answer answer) {
    Row row = AnyOe(nOc, bound, answer);
    row.bBySelector = true;
    row.nOe = nOe;
    return row;
}

constexpr uint32_t kDealtWith = 1;
constexpr uint32_t kNotDealtWith = 0;
constexpr uint8_t kPoweredOn = 1;
constexpr uint32_t kCabinetThere = 1;

void Put(Request& r, uint32_t nValue) {
    r.record.SetDataUInt(nValue, status::kOk);
}

void Put(Request& r, const std::string& sText) {
    r.record.SetDataString(sText.c_str(), status::kOk);
}

// A field of the cabinet itself.
template <auto pField>
uint32_t CabinetField(Request& r) {
    Put(r, r.cabinet.*pField);
    return kDealtWith;
}

// A field of the request's object in one of the object maps; a missing record leaves the
// default status.
template <auto pMap, auto pField>
uint32_t ObjectField(Request& r) {
    if (const auto* object = FindRecord(r.map.*pMap, r.sKey))
        Put(r, object->*pField);
    return kDealtWith;
}

uint32_t PowerOnStatus(Request& r) {
    // An enclosure that answers through the adapter is powered on.
    r.record.SetDataRaw({kPoweredOn, kPoweredOn}, status::kOk);
    TLR_TRACE(4, "\nEM_TLRAID (Request)   : CM_PowerOnStatus[CID:%d] = {0x%02X,0x%02X}",
              static_cast<int>(r.nCa), kPoweredOn, kPoweredOn);
    return kDealtWith;
}

uint32_t NoAnswer(Request&) {
    return kDealtWith;
}

// The present state; a change is stored, and told to nobody: the polling thread then finds
// no change and fires no event for it.
uint32_t PowerSupplyRedundancy(Request& r) {
    bool bRedundant = false;
    bool bChanged = false;
    if (EnclosurePSRedundancy(r.map, r.nCa, bRedundant, bChanged))
        Put(r, bRedundant ? 1u : 0u);
    return kDealtWith;
}

// Values the cabinet keeps none of: always 0.
uint32_t ZeroValue(Request& r) {
    Put(r, 0u);
    return kDealtWith;
}

// A sensor without a warning threshold has no thresholds at all.
uint32_t Threshold(Request& r, uint8_t TempSensorRecord::*pField) {
    const TempSensorRecord* sensor = FindRecord(r.map.m_TempSensors, r.sKey);
    if (sensor && sensor->WarningTemperature != 0)
        Put(r, sensor->*pField);
    return kDealtWith;
}

uint32_t WarningThreshold(Request& r) {
    return Threshold(r, &TempSensorRecord::WarningTemperature);
}

uint32_t CriticalThreshold(Request& r) {
    return Threshold(r, &TempSensorRecord::CriticalTemperature);
}

// Nothing is stored: 0 is taken, anything else refused. Only the low byte counts.
uint32_t SetValue(Request& r) {
    uint32_t nValue = 0;
    r.record.GetDataUInt(nValue);
    r.record.SetStatus((nValue & CommandRecord::kLowByteMask) == 0 ? status::kOk
                                                                   : status::kValueRefused);
    return kDealtWith;
}

uint32_t CabinetPresent(Request& r) {
    if (r.nCa == g_nCabinetNumber) {
        return kNotDealtWith;
    }
    if (r.map.m_Cabinets.empty()) {
        return kDealtWith;
    }
    r.record.SetStatus(status::kCabinetUnknown);
    for (const auto& entry : r.map.m_Cabinets) {
        if (entry.second.CabinetNr == r.nCa) {
            Put(r, kCabinetThere);
            break;
        }
    }
    return kDealtWith;
}

constexpr Row kRows[] = {
    AnyOe(oc::CM_PowerOnStatus, Bound::kNone, PowerOnStatus),
    AnyOe(oc::kFanCount, Bound::kNone, CabinetField<&CabinetRecord::FanCount>),
    AnyOe(oc::CM_FanStatus, Bound::kFans, ObjectField<&EnclosureMap::m_Fans, &FanRecord::Status>),
    AnyOe(oc::kFanWithoutData, Bound::kNone, NoAnswer),
    AnyOe(oc::kFanLocation, Bound::kFans, ObjectField<&EnclosureMap::m_Fans, &FanRecord::Location>),
    AnyOe(oc::kFanName, Bound::kFans, ObjectField<&EnclosureMap::m_Fans, &FanRecord::Name>),
    AnyOe(oc::kFanDesignation, Bound::kFans,
          ObjectField<&EnclosureMap::m_Fans, &FanRecord::Designation>),
    AnyOe(oc::kTempSensorCount, Bound::kNone, CabinetField<&CabinetRecord::TempSensorCount>),
    AnyOe(oc::CM_TempSensorStatus, Bound::kTempSensors,
          ObjectField<&EnclosureMap::m_TempSensors, &TempSensorRecord::Status>),
    AnyOe(oc::kTempSensorTemperature, Bound::kTempSensors,
          ObjectField<&EnclosureMap::m_TempSensors, &TempSensorRecord::Temperature>),
    AnyOe(oc::kTempSensorLocation, Bound::kTempSensors,
          ObjectField<&EnclosureMap::m_TempSensors, &TempSensorRecord::Location>),
    AnyOe(oc::kTempSensorName, Bound::kTempSensorsAbove,
          ObjectField<&EnclosureMap::m_TempSensors, &TempSensorRecord::Name>),
    AnyOe(oc::kPowerSupplyCount, Bound::kNone, CabinetField<&CabinetRecord::PowerSupplyCount>),
    AnyOe(oc::CM_PowerSupplyStatus, Bound::kPowerSupplies,
          ObjectField<&EnclosureMap::m_PowerSupplies, &PowerSupplyRecord::Status>),
    AnyOe(oc::kPowerSupplyName, Bound::kPowerSupplies,
          ObjectField<&EnclosureMap::m_PowerSupplies, &PowerSupplyRecord::Name>),
    AnyOe(oc::CM_PowerSupplyRedundancy, Bound::kNone, PowerSupplyRedundancy),
    OneOe(oc::kIdentityText, oc::kSelectChassisModel, Bound::kNone,
          CabinetField<&CabinetRecord::ChassisModel>),
    OneOe(oc::kIdentityText, oc::kSelectSerialNumber, Bound::kNone,
          CabinetField<&CabinetRecord::SerialNumber>),
    OneOe(oc::kIdentityText, oc::kSelectCabinetModel, Bound::kNone,
          CabinetField<&CabinetRecord::CabinetModel>),
    OneOe(oc::kIdentityText, oc::kSelectVendor, Bound::kNone, CabinetField<&CabinetRecord::Vendor>),
    OneOe(oc::kCabinetSettingRead, oc::kSelectFanSetting, Bound::kFans, ZeroValue),
    OneOe(oc::kCabinetSettingRead, oc::kSelectSensorSetting, Bound::kTempSensors, ZeroValue),
    OneOe(oc::kCabinetSettingRead, oc::kSelectSensorSettingSecond, Bound::kTempSensors, ZeroValue),
    OneOe(oc::kCabinetSettingRead, oc::kSelectWarningTemperature, Bound::kTempSensors,
          WarningThreshold),
    OneOe(oc::kCabinetSettingRead, oc::kSelectCriticalTemperature, Bound::kTempSensors,
          CriticalThreshold),
    OneOe(oc::kCabinetSettingWrite, oc::kSelectFanSetting, Bound::kFans, SetValue),
    OneOe(oc::kCabinetSettingWrite, oc::kSelectSensorSetting, Bound::kTempSensors, SetValue),
    AnyOe(oc::kCabinetPresent, Bound::kNone, CabinetPresent),
};

const Row* FindRow(uint32_t nOc, uint32_t nOe) {
    for (const Row& row : kRows) {
        if (row.nOc == nOc && (!row.bBySelector || row.nOe == nOe)) {
            return &row;
        }
    }
    return nullptr;
}

bool OutOfBound(Bound bound, const CabinetRecord& cabinet, uint32_t nOi) {
    switch (bound) {
        case Bound::kNone:
            return false;
        case Bound::kFans:
            return nOi >= cabinet.FanCount;
        case Bound::kTempSensors:
            return nOi >= cabinet.TempSensorCount;
        case Bound::kTempSensorsAbove:
            return nOi > cabinet.TempSensorCount;
        case Bound::kPowerSupplies:
            return nOi >= cabinet.PowerSupplyCount;
    }
    return false;
}

}  // namespace

std::vector<CabinetRowAddress> CabinetRowAddresses() {
    std::vector<CabinetRowAddress> addresses;
    for (const Row& row : kRows)
        addresses.push_back(row);
    return addresses;
}

uint32_t HandleCabinetRequest(EnclosureMap& map, CommandRecord& record) {
    uint32_t nOc = record.GetField("OC", 0);
    uint32_t nCa = record.GetField("CA", 0);
    uint32_t nOi = record.GetField("OI", 0);
    uint32_t nOe = record.GetField("OE", 0);
    CabinetRecord* cabinet = FindRecord(map.m_Cabinets, MakeCabinetKey(nCa));
    if (!cabinet) {
        record.SetStatus(status::kCabinetUnknown);
        TLR_TRACE(4, "\nEM_TLRaid           : REQUEST for cabinet %d rejected",
                  static_cast<int>(nCa));
        return kNotDealtWith;
    }
    TLR_TRACE(4, "\nEM_TLRaid           : REQUEST for cabinet %d accepted", static_cast<int>(nCa));
    Request request{map, record, *cabinet, nCa, MakeObjectKey(nCa, nOi)};
    record.SetStatus(status::kNotAvailable);
    const Row* row = FindRow(nOc, nOe);
    if (!row) {
        record.SetStatus(status::kUnknownCode);
        return kNotDealtWith;
    }
    if (OutOfBound(row->bound, *cabinet, nOi)) {
        record.SetStatus(status::kNoSuchObject);
        return kDealtWith;
    }
    return row->answer(request);
}

void AnswerCabinetList(const EnclosureMap& map, CommandRecord& record) {
    std::vector<uint32_t> numbers;
    GetCabinetNumbers(map, numbers);
    std::vector<uint8_t> bytes;
    for (uint32_t n : numbers) {
        // Two bytes a number, the low one first.
        bytes.push_back(static_cast<uint8_t>(n));
        bytes.push_back(static_cast<uint8_t>(n >> 8));
    }
    // No cabinets is an answer too: no data, and status 0.
    record.SetDataRaw(bytes, status::kOk);
}

int GetServerSeList(const EnclosureMap& map, uint32_t** ppList, uint8_t* pCount) {
    static constexpr size_t kMaxCabinets = 128;
    static uint32_t s_aCabinets[kMaxCabinets];
    *pCount = 0;
    std::vector<uint32_t> numbers;
    if (GetCabinetNumbers(map, numbers)) {
        size_t n = std::min(numbers.size(), kMaxCabinets);
        std::copy_n(numbers.begin(), n, s_aCabinets);
        *pCount = static_cast<uint8_t>(n);
        *ppList = s_aCabinets;
    }
    TLR_TRACE(3, "\nEM_TLRAID           : GetServerSeList, NumberOfSeCabinets = %d", *pCount);
    return 1;
}
