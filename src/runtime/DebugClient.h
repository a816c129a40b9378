#pragma once

#include <atomic>
#include <cstdarg>
#include <cstdint>
#include <ctime>
#include <string>

#include "runtime/TraceConfig.h"

class CITraceServer;

// The process-wide trace client. It reads the trace configuration, tests each message's
// level and hands what passes to the host's trace server "Debug".
class CDebugClient : public CDebugTraceConfig {
  public:
    using Clock = time_t (*)();

    static constexpr const char* kConfigDir =
        "/opt/TessalineHost/vital/etc/TessalineSuite/TraceConfig";

    // A client that has read nothing yet: level 0, tracing off.
    CDebugClient();
    // A client that reads its configuration from another directory, on another clock.
    CDebugClient(const char* configDir, Clock clock);
    virtual ~CDebugClient();

    CDebugClient(const CDebugClient&) = delete;
    CDebugClient& operator=(const CDebugClient&) = delete;

    // False: a client is never the server.
    virtual bool IsTraceServer();
    // Reads the configuration for a module; 0 for a null or empty name, else 1.
    virtual int Initialize(const char* moduleName);
    virtual void Trace(uint32_t level, const char* format, ...)
        __attribute__((format(printf, 3, 4)));
    // Hands a message to the server without level test or configuration check.
    virtual void Print(const char* format, ...) __attribute__((format(printf, 2, 3)));
    virtual void PrintLevel(uint32_t level, const char* format, ...)
        __attribute__((format(printf, 3, 4)));

    bool IsEnabled() const { return m_bEnabled.load(std::memory_order_relaxed); }

  private:
    void CheckConfigFiles();
    void CheckGlobalFile();
    void CheckModuleFile();
    // Locates the section again in a followed file whose modification time grew.
    bool Reload(ConfigSectionReader& reader, const char* section);
    void ReadModuleKeys();
    CITraceServer* ResolveServer();
    // Hands a message to the server's write operation, when there is a server.
    void WriteToServer(const char* format, va_list* args);
    const char* ModuleNameForServer() const;

    std::atomic<uint32_t> m_nMemoryTracesFlag{0};
    std::atomic<CITraceServer*> m_pServer{nullptr};
    std::atomic_flag m_bUpdating = ATOMIC_FLAG_INIT;
    std::string m_sConfigDir;
    Clock m_Clock;
};

// The one instance of the process, built at load; the module names itself by Initialize.
extern CDebugClient& g_DebugClient;

// A trace call site: one flag test when tracing is off.
#define TLR_TRACE(level, ...)                          \
    do {                                               \
        if (g_DebugClient.IsEnabled()) {               \
            g_DebugClient.Trace((level), __VA_ARGS__); \
        }                                              \
    } while (0)
