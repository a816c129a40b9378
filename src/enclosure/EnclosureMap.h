#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

// A field that one thread writes while request threads read it, without a lock. Each access
// is a relaxed atomic one: a reader needs the old value or the new one, nothing more. A copy
// copies the value, so records stay plain values.
template <typename T>
class RelaxedAtomic {
  public:
    RelaxedAtomic(T value = T()) : m_Value(value) {}
    RelaxedAtomic(const RelaxedAtomic& other) : m_Value(other.Load()) {}
    RelaxedAtomic& operator=(const RelaxedAtomic& other) {
        Store(other.Load());
        return *this;
    }
    RelaxedAtomic& operator=(T value) {
        Store(value);
        return *this;
    }
    operator T() const { return Load(); }
    T Load() const { return m_Value.load(std::memory_order_relaxed); }
    void Store(T value) { m_Value.store(value, std::memory_order_relaxed); }

  private:
    std::atomic<T> m_Value;
};

// An external enclosure, shown as a cabinet of its own.
struct CabinetRecord {
    uint32_t CabinetNr = 0;    // 800 and up
    uint32_t CtrNr = 0;        // Nr of the adapter
    uint32_t EnclosureNr = 0;  // EnclosureNumber, 0 where there is none
    uint8_t FanCount = 0;
    uint8_t TempSensorCount = 0;
    uint8_t PowerSupplyCount = 0;
    RelaxedAtomic<bool> PSRedundancy;  // last known redundancy of the supplies
    std::string CabinetModel;
    std::string ChassisModel;
    std::string Vendor;
    std::string SerialNumber;
};

struct FanRecord {
    uint32_t Index = 0;  // 0-based in the cabinet
    RelaxedAtomic<uint8_t> Status;
    uint8_t Location = 0;
    std::string Name;
    std::string Designation;  // counted from 1: "Fan_1" for index 0
};

struct TempSensorRecord {
    uint32_t Index = 0;
    RelaxedAtomic<uint8_t> Status;
    uint8_t Location = 0;
    RelaxedAtomic<uint8_t> Temperature;
    uint8_t WarningTemperature = 0;
    uint8_t CriticalTemperature = 0;
    std::string Name;
};

struct PowerSupplyRecord {
    uint32_t Index = 0;
    RelaxedAtomic<uint8_t> Status;
    std::string Name;
};

// Cabinets and their fans, sensors and supplies, each map ordered by its text key. The shape
// is fixed once set-up is done: afterwards lookups only find, they never add.
struct EnclosureMap {
    std::map<std::string, CabinetRecord> m_Cabinets;           // by MakeCabinetKey
    std::map<std::string, FanRecord> m_Fans;                   // by MakeObjectKey
    std::map<std::string, TempSensorRecord> m_TempSensors;     // by MakeObjectKey
    std::map<std::string, PowerSupplyRecord> m_PowerSupplies;  // by MakeObjectKey
};

// The record under a key, or null.
template <typename Map>
typename Map::mapped_type* FindRecord(Map& map, const std::string& key) {
    auto it = map.find(key);
    return it == map.end() ? nullptr : &it->second;
}
template <typename Map>
const typename Map::mapped_type* FindRecord(const Map& map, const std::string& key) {
    auto it = map.find(key);
    return it == map.end() ? nullptr : &it->second;
}

std::string MakeCabinetKey(uint32_t nCabinet);                  // "SAS-ENCL CAB-NR=800"
std::string MakeObjectKey(uint32_t nCabinet, uint32_t nIndex);  // "800-0"
std::string MakeFanDesignation(uint32_t nNumber);               // "Fan_1"

// Appends the number of every cabinet in key order; true when the vector is not empty then.
bool GetCabinetNumbers(const EnclosureMap& map, std::vector<uint32_t>& numbers);
