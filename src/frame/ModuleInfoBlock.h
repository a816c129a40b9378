#pragma once

#include <cstddef>
#include <cstdint>

// The block that the host allocates and a module fills with its class, kind, name and
// description. Its first four bytes hold the block's size.
struct ModuleInfoBlock {
    static constexpr uint32_t kMinSize = 246;
    static constexpr size_t kClassFlags1 = 8;
    static constexpr size_t kClassFlags2 = 21;
    static constexpr size_t kKind = 42;
    static constexpr size_t kName = 46;
    static constexpr size_t kDescription = 146;
    static constexpr size_t kTextWidth = 96;

    uint8_t bytes[kMinSize];
};

// Fills the block as a module of kind 3 with a name and a description. False, and the
// block untouched, when its size is below kMinSize.
bool FillModuleInfo(ModuleInfoBlock* block, const char* name, const char* description);
