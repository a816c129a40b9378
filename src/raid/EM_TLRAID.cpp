#include "raid/EM_TLRAID.h"

#include "runtime/DebugClient.h"

namespace {

constexpr char kDashes[] =
    "\n------------------------------------------------------------------------------------------"
    "\n";

}  // namespace

EM_TLRAID::EM_TLRAID() {
    TLR_TRACE(5, "\nEM_TLRAID           : -> Constructor...");
    TLR_TRACE(5, "\nEM_TLRAID           : <- Constructor");
}

EM_TLRAID::~EM_TLRAID() {
    TLR_TRACE(5, "\nEM_TLRAID           : -> Destructor...");
    TLR_TRACE(5, "\nEM_TLRAID           : <- Destructor");
}

int EM_TLRAID::GetModuleInfo(ModuleInfoBlock* block) {
    return FillModuleInfo(block, kModuleName, kDescription) ? 1 : 0;
}

int EM_TLRAID::IsDetected() {
    TLR_TRACE(1, "\nEM_TLRAID           : TL RAID always \"detected\"!");
    return 1;
}

int EM_TLRAID::Start(ISwitch* pSwitch, uint32_t param) {
    CExtensionModule::Start(pSwitch, param);
    TLR_TRACE(1, "%s", kDashes);
    TLR_TRACE(1, "\n### Starting module %s ###\n", kModuleName);
    TLR_TRACE(1, "\n\n### Start of module %s completed %s ###", kModuleName, "successfully");
    TLR_TRACE(1, "%s", kDashes);
    return 1;
}

int EM_TLRAID::Stop() {
    TLR_TRACE(1, "%s", kDashes);
    TLR_TRACE(1, "\n### Stopping module %s ###\n", kModuleName);
    CExtensionModule::Stop();
    TLR_TRACE(1, "\n\n### Stop of module %s completed %s ###", kModuleName, "successfully");
    TLR_TRACE(1, "%s", kDashes);
    return 1;
}
