#include "ModuleLibrary.h"

#include <dlfcn.h>

namespace {

template <typename F>
bool Bind(void* handle, const char* name, F& function, std::string& error) {
    void* symbol = dlsym(handle, name);
    if (!symbol) {
        error = std::string("the module has no entry point ") + name;
        return false;
    }
    function = reinterpret_cast<F>(symbol);
    return true;
}

}  // namespace

ModuleLibrary::~ModuleLibrary() {
    // The module may still run threads of its own when the host goes: it is never unloaded
    // under them. The process's end takes it down.
}

bool ModuleLibrary::Load(const std::string& path, std::string& error) {
    m_pHandle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!m_pHandle) {
        const char* why = dlerror();
        error = std::string("cannot load module ") + path + ": " + (why ? why : "unknown error");
        return false;
    }
    return Bind(m_pHandle, "EM_Create", Create, error) &&
           Bind(m_pHandle, "EM_Delete", Delete, error) &&
           Bind(m_pHandle, "EM_GetModuleName", GetModuleName, error) &&
           Bind(m_pHandle, "EM_SetupAction", SetupAction, error);
}
