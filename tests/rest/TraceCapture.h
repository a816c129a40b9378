#pragma once

#include <cstdarg>
#include <mutex>
#include <string>
#include <vector>

#include "runtime/TraceServer.h"

// A trace server for test programs: keeps every message that reaches it, formatted.
// The program exports one instance under the name "Debug", where the trace client looks.
class CCapturingTraceServer : public CITraceServer {
  public:
    bool IsTraceServer() override { return true; }
    int Initialize(const char*) override { return 1; }
    void Trace(uint32_t, const char*, ...) override {}
    void Print(const char*, ...) override {}
    void PrintLevel(uint32_t, const char*, ...) override {}
    void Write(const char* format, va_list* args, const char* moduleName) override;
    void TraceMessage(const char* format, va_list* args, const char* moduleName) override;

    // The messages since the last call, oldest first.
    std::vector<std::string> Take();

  private:
    void Add(const char* format, va_list* args);

    std::mutex m_Lock;
    std::vector<std::string> m_Messages;
};

extern CCapturingTraceServer Debug;

// Turns tracing on at level for the process-wide client, as TL_LOG_DEBUG_LEVEL does at load.
// False if the host's trace configuration keeps it off.
bool EnableTracing(int level);
