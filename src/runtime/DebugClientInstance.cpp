#include "runtime/DebugClient.h"
#include "runtime/InitOrder.h"

// The process-wide client, built before any other object, so that every constructor may
// trace. It reads nothing until the module hands it the module's name (Initialize).
__attribute__((init_priority(kInitTraceClient))) CDebugClient g_LoadedDebugClient;
CDebugClient& g_DebugClient = g_LoadedDebugClient;
