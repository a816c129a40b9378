#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// Flag bits of a saved position entry.
enum SavedPosFlag : uint32_t {
    kSavedMain = 1,   // a main position
    kSavedChild = 2,  // a child position; with neither bit a parent position
    kSavedUsed = 4,   // entry in use
    kSavedLast = 8,   // last slot of the bucket's array
};

// Named positions, in numbered maps of hashed buckets.
class SavedPosMaps {
  public:
    struct Entry {
        std::string sName;
        uint32_t iPos = 0;
        uint32_t nFlags = 0;
    };
    using Bucket = std::vector<Entry>;  // its size is the bucket's capacity
    struct Map {
        std::vector<std::unique_ptr<Bucket>> aBuckets;  // null until a name lands there
    };
    static constexpr uint32_t kBucketsPerMap = 7;

    // Stores a position under a name; nKind is kSavedMain, kSavedChild or 0. False for a negative
    // map number.
    bool Save(std::string_view sName, int nMap, uint32_t iPos, uint32_t nKind);
    // Finds a name; false when the map, the bucket or the name isn't there.
    bool Restore(std::string_view sName, int nMap, uint32_t& iPos, uint32_t& nKind) const;
    void Clear() { m_Maps.clear(); }
    // The bucket a name falls into, for tests of the layout; null when it has no array yet.
    const Bucket* FindBucket(std::string_view sName, int nMap) const;
    static uint32_t Hash(std::string_view sName, uint32_t nBuckets);

  private:
    // Maps by number. Numbers may be sparse: a map is made on first use.
    std::map<int, Map> m_Maps;
};
