#pragma once

#include <atomic>
#include <cstdint>

// The server's own cabinet number as the switch gave it, and whether it gave one.
extern std::atomic<uint32_t> g_nCabinetNumber;
extern std::atomic<bool> g_bCabinetNumberSet;
