#include "frame/ModuleInfoBlock.h"

#include <cstring>

namespace {

constexpr uint32_t kModuleKind = 3;
constexpr uint8_t kClassBits = 0x02;  // low two bits: binary 10

constexpr size_t kTextTail = 4;  // zero bytes behind each text field

// A zero-filled text field and the zero bytes that follow it.
void PutText(uint8_t* at, const char* text) {
    memset(at, 0, ModuleInfoBlock::kTextWidth + kTextTail);
    strncpy(reinterpret_cast<char*>(at), text, ModuleInfoBlock::kTextWidth - 1);
}

void PutU32(uint8_t* at, uint32_t v) {
    for (int i = 0; i < 4; ++i)
        at[i] = static_cast<uint8_t>(v >> (8 * i));
}

}  // namespace

bool FillModuleInfo(ModuleInfoBlock* block, const char* name, const char* description) {
    uint8_t* b = block->bytes;
    uint32_t size = b[0] | b[1] << 8 | b[2] << 16 | static_cast<uint32_t>(b[3]) << 24;
    if (size < ModuleInfoBlock::kMinSize)
        return false;
    b[ModuleInfoBlock::kClassFlags1] = (b[ModuleInfoBlock::kClassFlags1] & ~0x03) | kClassBits;
    b[ModuleInfoBlock::kClassFlags2] = (b[ModuleInfoBlock::kClassFlags2] & ~0x03) | kClassBits;
    PutU32(b + ModuleInfoBlock::kKind, kModuleKind);
    PutText(b + ModuleInfoBlock::kName, name);
    PutText(b + ModuleInfoBlock::kDescription, description);
    return true;
}
