#include "runtime/DebugClient.h"

// The process-wide client, built before any other object, so that every constructor may
// trace. It reads nothing until the module hands it the module's name (Initialize).
__attribute__((init_priority(101))) CDebugClient g_LoadedDebugClient;
CDebugClient& g_DebugClient = g_LoadedDebugClient;
