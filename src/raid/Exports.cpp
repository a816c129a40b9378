// The four entry points of the shared object, the only symbols it exports.
#include <cstdint>

#include "frame/ModuleExports.h"
#include "raid/EM_TLRAID.h"
#include "runtime/DebugClient.h"
#include "runtime/InitOrder.h"

#define EM_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

// Hands the trace client this module's name as soon as the object is loaded, right after
// the client itself is built and before any object of the module is.
struct CTraceNameAtLoad {
    CTraceNameAtLoad() { g_DebugClient.Initialize(EM_TLRAID::kModuleName); }
};
__attribute__((init_priority(kInitAfterTraceClient))) CTraceNameAtLoad g_TraceNameAtLoad;

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
