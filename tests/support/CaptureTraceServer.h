#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "runtime/TraceServer.h"

// A trace server for tests: test binaries export it as "Debug", and it keeps every message.
class CaptureTraceServer : public CITraceServer {
  public:
    bool IsTraceServer() override { return true; }
    int Initialize(const char*) override { return 1; }
    void Trace(uint32_t, const char*, ...) override {}
    void Print(const char*, ...) override {}
    void PrintLevel(uint32_t, const char*, ...) override {}
    void Write(const char* format, va_list* args, const char* moduleName) override;
    void TraceMessage(const char* format, va_list* args, const char* moduleName) override;

    // Everything traced since the last Take, and forgets it.
    std::string Take();
    // The same, one message at a time, oldest first.
    std::vector<std::string> TakeMessages();
    std::string LastModuleName();

  private:
    void Append(const char* format, va_list* args, const char* moduleName);

    std::mutex m_Mutex;
    std::vector<std::string> m_Messages;
    std::string m_sModuleName;
};

extern CaptureTraceServer Debug;

// Turns tracing on at a level for the process-wide client, as TL_LOG_DEBUG_LEVEL does at
// load. False if the host's trace configuration keeps it off.
bool EnableTracing(int level);

// Sets the process-wide client's level for a test and restores it afterwards.
class ScopedTraceLevel {
  public:
    explicit ScopedTraceLevel(uint32_t level);
    ~ScopedTraceLevel();

  private:
    uint32_t m_nOldLevel;
    bool m_bOldEnabled;
};
