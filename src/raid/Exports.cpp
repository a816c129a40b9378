// The four entry points of the shared object, the only symbols it exports.
#include <cstdint>

#include "frame/ModuleExports.h"
#include "raid/EM_TLRAID.h"

#define EM_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

CIExtensionModule* MakeModule() {
    return new EM_TLRAID();
}

}  // namespace

EM_EXPORT bool EM_Create(CIExtensionModule** module, uint64_t /*reserved*/) {
    return module_exports::Create(module, MakeModule, EM_TLRAID::kModuleName);
}

EM_EXPORT int EM_Delete() {
    return module_exports::Delete(EM_TLRAID::kModuleName);
}

EM_EXPORT const char* EM_GetModuleName() {
    return EM_TLRAID::kModuleName;
}

EM_EXPORT int EM_SetupAction(uint32_t action) {
    return module_exports::SetupAction(action, EM_TLRAID::kModuleName);
}
