#pragma once

#include <cstddef>
#include <cstdint>

// The named character references: 130 buckets, each a run of records of one digit for the name's
// length L, four digits for the code point and the L letters of the name in lower case. A name's
// bucket is the sum of its lower-case bytes modulo 130.
constexpr uint32_t kEntityBuckets = 130;
extern const char* const kEntityTable[kEntityBuckets];

// Code point of a lower-case reference name, or 0 when the table doesn't hold it.
int32_t LookupEntity(const char* pszName, size_t nLength);
