#include "frame/ModuleExports.h"

#include "frame/ExtensionModule.h"
#include "runtime/DebugClient.h"

namespace module_exports {

namespace {

CIExtensionModule* g_pModule = nullptr;

const char* SetupActionName(uint32_t action) {
    switch (action) {
        case kSetupBackup:
            return "BACKUP";
        case kSetupRestore:
            return "RESTORE";
        case kSetupConvert:
            return "CONVERT";
        case kSetupCleanup:
            return "CLEANUP";
        default:
            return nullptr;
    }
}

}  // namespace

CIExtensionModule* Current() {
    return g_pModule;
}

bool Create(CIExtensionModule** out, Maker make, const char* moduleName) {
    if (g_pModule) {
        g_DebugClient.Trace(1, "\nEM DLL (%-10s) : ## ERROR: Module already existing!\n",
                            moduleName);
        *out = g_pModule;
        return true;
    }
    g_DebugClient.Trace(2, "\nEM DLL (%-10s) : Create module", moduleName);
    g_pModule = make();
    if (!g_pModule) {
        g_DebugClient.Trace(1, "\nEM DLL (%-10s) : ## ERROR: Module could not be created!\n",
                            moduleName);
        *out = nullptr;
        return false;
    }
    *out = g_pModule;
    return true;
}

int Delete(const char* moduleName) {
    if (!g_pModule) {
        g_DebugClient.Trace(1, "\nEM DLL (%-10s) : Module already destroyed!", moduleName);
        return 0;
    }
    try {
        g_DebugClient.Trace(1, "\nEM DLL (%-10s) : Destroy module...", moduleName);
        // The export layer owns the object: it was made by the module's maker with new.
        delete g_pModule;
        g_pModule = nullptr;
        g_DebugClient.Trace(1, "\nEM DLL (%-10s) : .. Module destroyed successfully!", moduleName);
        return 1;
    } catch (...) {
        g_DebugClient.Trace(1, "\nEM DLL (%-10s) : ## ERROR! Exception while destroying module!",
                            moduleName);
        return 0;
    }
}

int SetupAction(uint32_t action, const char* moduleName) {
    if (const char* name = SetupActionName(action)) {
        g_DebugClient.Trace(1,
                            "\n\n%-20s: ## Setup action \"%s\" call - no action function defined\n",
                            moduleName, name);
    } else {
        g_DebugClient.Trace(1,
                            "\n\n%-20s: ## ERROR! Setup action call with unknown action type "
                            "(%d) - no action defined!\n",
                            moduleName, static_cast<int>(action));
    }
    return 1;
}

}  // namespace module_exports
