#include "ModuleStart.h"

#include <chrono>

#include "frame/ExtensionModule.h"

StartResult StartModule(CIExtensionModule& module, ISwitch& hostSwitch, FILE* chatter) {
    fprintf(chatter,
            "Starting the module (it looks for the RAID service and waits for a valid tree)...\n");
    fflush(chatter);
    const auto started = std::chrono::steady_clock::now();
    StartResult result;
    result.nReturned = module.Start(&hostSwitch, 0);
    result.nMs = std::chrono::duration_cast<std::chrono::milliseconds>(
                     std::chrono::steady_clock::now() - started)
                     .count();
    fprintf(chatter, "Start returned %d after %lld ms.\n", result.nReturned, result.nMs);
    return result;
}
