#pragma once

#include <cstdint>

class CIExtensionModule;

// The export layer's side of the four entry points: it owns the one module object of the
// process. The shared object's exports call these with the module's own maker.
namespace module_exports {

using Maker = CIExtensionModule* (*)();

// The actions that EM_SetupAction is asked for; any other number is no action.
enum SetupActionCode : uint32_t {
    kSetupBackup = 1,
    kSetupRestore = 2,
    kSetupConvert = 3,
    kSetupCleanup = 4,
};

bool Create(CIExtensionModule** out, Maker make, const char* moduleName);
int Delete(const char* moduleName);
int SetupAction(uint32_t action, const char* moduleName);
// The object made by Create, or null.
CIExtensionModule* Current();

}  // namespace module_exports
