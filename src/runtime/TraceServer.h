#pragma once

#include <cstdarg>
#include <cstdint>

// The host's trace server, exported by the host process under the name "Debug".
// Its table starts like CDebugClient's, so that a client can ask any object found under
// that name whether it is a server; a server adds two operations behind PrintLevel.
class CITraceServer {
  public:
    virtual ~CITraceServer() = default;
    virtual bool IsTraceServer() = 0;
    virtual int Initialize(const char* moduleName) = 0;
    virtual void Trace(uint32_t level, const char* format, ...) = 0;
    virtual void Print(const char* format, ...) = 0;
    virtual void PrintLevel(uint32_t level, const char* format, ...) = 0;
    // Formats and writes a message; used by Print and PrintLevel.
    virtual void Write(const char* format, va_list* args, const char* moduleName) = 0;
    // Formats and writes a message that passed the client's level test.
    virtual void TraceMessage(const char* format, va_list* args, const char* moduleName) = 0;
};
