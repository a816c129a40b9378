#include "frame/CabinetNumber.h"

std::atomic<uint32_t> g_nCabinetNumber{0};
std::atomic<bool> g_bCabinetNumberSet{false};
