#pragma once

#include <cstdint>

#include "frame/ExtensionModule.h"

// The RAID extension module: makes the storage of the local RAID manager visible to the
// switch's clients.
class EM_TLRAID : public CExtensionModule {
  public:
    static constexpr const char* kModuleName = "EM_TLRAID";
    static constexpr const char* kDescription = "TLRAID extension module";

    EM_TLRAID();
    ~EM_TLRAID() override;

    int GetModuleInfo(ModuleInfoBlock* block) override;
    int IsDetected() override;
    int Start(ISwitch* pSwitch, uint32_t param) override;
    int Stop() override;
    const char* GetModuleName() override { return kModuleName; }
};
