#pragma once

#include <cstdint>
#include <string>

class CIExtensionModule;

// A module's shared object, loaded as the agent daemon loads it, and its four entry points.
class ModuleLibrary {
  public:
    ModuleLibrary() = default;
    ~ModuleLibrary();
    ModuleLibrary(const ModuleLibrary&) = delete;
    ModuleLibrary& operator=(const ModuleLibrary&) = delete;

    // dlopen and dlsym; on failure the text says why.
    bool Load(const std::string& path, std::string& error);

    bool (*Create)(CIExtensionModule** module, uint64_t reserved) = nullptr;
    int (*Delete)() = nullptr;
    const char* (*GetModuleName)() = nullptr;
    int (*SetupAction)(uint32_t action) = nullptr;

  private:
    void* m_pHandle = nullptr;
};
