#pragma once

#include <cstdio>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include "runtime/Pipe.h"
#include "runtime/TraceServer.h"

// The host's trace server: writes every message exactly as formatted, with no time stamp,
// prefix or added newline, to a file or to standard error.
class HostTraceServer : public CITraceServer {
  public:
    HostTraceServer() = default;
    // Appends to this file, made private to its owner (mode 0600), from now on; false if it
    // can't be opened.
    bool OpenFile(const std::string& path);
    void Flush();
    // Also hands every message, formatted, to this function; it must not trace.
    using Listener = std::function<void(const std::string&)>;
    void SetListener(Listener listener);
    // Drops the messages instead of writing them, until a file is opened.
    void Discard();

    bool IsTraceServer() override { return true; }
    int Initialize(const char*) override { return 1; }
    void Trace(uint32_t level, const char* format, ...) override
        __attribute__((format(printf, 3, 4)));
    void Print(const char* format, ...) override __attribute__((format(printf, 2, 3)));
    void PrintLevel(uint32_t level, const char* format, ...) override
        __attribute__((format(printf, 3, 4)));
    void Write(const char* format, va_list* args, const char* moduleName) override;
    void TraceMessage(const char* format, va_list* args, const char* moduleName) override;

  private:
    void Append(const char* format, va_list args);

    std::mutex m_Mutex;
    FilePtr m_pFile;
    Listener m_Listener;
    bool m_bDiscard = false;
};

// The object that modules find under the name "Debug".
extern HostTraceServer Debug;
