#include "HostTraceServer.h"

#include <cstdarg>
#include <vector>

#include "runtime/Pipe.h"
#include "runtime/PrivateFile.h"

__attribute__((visibility("default"))) HostTraceServer Debug;

bool HostTraceServer::OpenFile(const std::string& path) {
    // From trace level 3 on the trace holds tokens and whole requests: for the owner only.
    FilePtr file = OpenPrivateFile(path);
    if (!file)
        return false;
    std::lock_guard<std::mutex> lock(m_Mutex);
    m_pFile = std::move(file);
    m_bDiscard = false;
    return true;
}

void HostTraceServer::SetListener(Listener listener) {
    std::lock_guard<std::mutex> lock(m_Mutex);
    m_Listener = std::move(listener);
}

void HostTraceServer::Discard() {
    std::lock_guard<std::mutex> lock(m_Mutex);
    m_bDiscard = !m_pFile;
}

void HostTraceServer::Flush() {
    std::lock_guard<std::mutex> lock(m_Mutex);
    fflush(m_pFile ? m_pFile.get() : stderr);
}

void HostTraceServer::Append(const char* format, va_list args) {
    if (!format)
        return;
    char small[4096];
    va_list copy;
    va_copy(copy, args);
    int n = vsnprintf(small, sizeof(small), format, copy);
    va_end(copy);
    if (n < 0)
        return;
    std::vector<char> large;
    const char* text = small;
    if (static_cast<size_t>(n) >= sizeof(small)) {
        large.resize(static_cast<size_t>(n) + 1);
        vsnprintf(large.data(), large.size(), format, args);
        text = large.data();
    }
    Listener listener;
    {
        std::lock_guard<std::mutex> lock(m_Mutex);
        if (!m_bDiscard) {
            FILE* out = m_pFile ? m_pFile.get() : stderr;
            fwrite(text, 1, static_cast<size_t>(n), out);
            fflush(out);
        }
        listener = m_Listener;
    }
    if (listener)
        listener(std::string(text, static_cast<size_t>(n)));
}

void HostTraceServer::Trace(uint32_t, const char* format, ...) {
    va_list args;
    va_start(args, format);
    Append(format, args);
    va_end(args);
}

void HostTraceServer::Print(const char* format, ...) {
    va_list args;
    va_start(args, format);
    Append(format, args);
    va_end(args);
}

void HostTraceServer::PrintLevel(uint32_t, const char* format, ...) {
    va_list args;
    va_start(args, format);
    Append(format, args);
    va_end(args);
}

void HostTraceServer::Write(const char* format, va_list* args, const char*) {
    Append(format, *args);
}

void HostTraceServer::TraceMessage(const char* format, va_list* args, const char*) {
    Append(format, *args);
}
