#include "xml/SavedPosMaps.h"

uint32_t SavedPosMaps::Hash(std::string_view sName, uint32_t nBuckets) {
    // The sum of the bytes taken as signed chars.
    int32_t nSum = 0;
    for (char c : sName) {
        nSum += static_cast<signed char>(c);
    }
    return uint32_t(nSum) % nBuckets;
}

bool SavedPosMaps::Save(std::string_view sName, int nMap, uint32_t iPos, uint32_t nKind) {
    if (nMap < 0) {
        return false;
    }
    Map& map = m_Maps[nMap];
    if (map.aBuckets.empty()) {
        map.aBuckets.resize(kBucketsPerMap);
    }
    std::unique_ptr<Bucket>& pBucket = map.aBuckets[Hash(sName, uint32_t(map.aBuckets.size()))];
    if (!pBucket) {
        pBucket = std::make_unique<Bucket>(2);
        (*pBucket)[1].nFlags = kSavedLast;
    }
    Bucket& bucket = *pBucket;
    uint32_t nFlags = nKind | kSavedUsed;
    size_t i = 0;
    for (; i < bucket.size() && (bucket[i].nFlags & kSavedUsed); ++i) {
        if (bucket[i].sName == sName) {
            bucket[i].iPos = iPos;
            bucket[i].nFlags = nFlags | (bucket[i].nFlags & kSavedLast);
            return true;
        }
    }
    if (i == bucket.size()) {
        // Full: a larger array, with the last-slot mark moved to its new end.
        Bucket grown(2 * (bucket.size() - 1) + 12);
        for (size_t j = 0; j < bucket.size(); ++j) {
            grown[j] = std::move(bucket[j]);
            grown[j].nFlags &= ~kSavedLast;
        }
        grown.back().nFlags = kSavedLast;
        bucket.swap(grown);
    }
    bucket[i].sName.assign(sName.data(), sName.size());
    bucket[i].iPos = iPos;
    bucket[i].nFlags = nFlags | (bucket[i].nFlags & kSavedLast);
    return true;
}

bool SavedPosMaps::Restore(std::string_view sName, int nMap, uint32_t& iPos,
                           uint32_t& nKind) const {
    const Bucket* pBucket = FindBucket(sName, nMap);
    if (!pBucket) {
        return false;
    }
    for (const Entry& entry : *pBucket) {
        if (!(entry.nFlags & kSavedUsed)) {
            break;
        }
        if (entry.sName == sName) {
            iPos = entry.iPos;
            nKind = entry.nFlags & (kSavedMain | kSavedChild);
            return true;
        }
    }
    return false;
}

const SavedPosMaps::Bucket* SavedPosMaps::FindBucket(std::string_view sName, int nMap) const {
    auto it = m_Maps.find(nMap);
    if (it == m_Maps.end() || it->second.aBuckets.empty()) {
        return nullptr;
    }
    const Map& map = it->second;
    return map.aBuckets[Hash(sName, uint32_t(map.aBuckets.size()))].get();
}
