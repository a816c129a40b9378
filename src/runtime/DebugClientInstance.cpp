#include "runtime/DebugClient.h"

namespace {

constexpr char kModuleName[] = "EM_TLRAID";

// The process-wide client, configured as soon as it is built.
class CLoadedDebugClient : public CDebugClient {
  public:
    CLoadedDebugClient() { Initialize(kModuleName); }
};

}  // namespace

// Built before any other object of the module, so that every constructor may trace.
__attribute__((init_priority(101))) CLoadedDebugClient g_LoadedDebugClient;
CDebugClient& g_DebugClient = g_LoadedDebugClient;
