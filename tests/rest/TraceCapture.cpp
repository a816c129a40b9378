#include "TraceCapture.h"

#include <cstdio>
#include <cstdlib>
#include <string>

#include "runtime/DebugClient.h"

__attribute__((visibility("default"))) CCapturingTraceServer Debug;

void CCapturingTraceServer::Write(const char* format, va_list* args, const char*) {
    Add(format, args);
}

void CCapturingTraceServer::TraceMessage(const char* format, va_list* args, const char*) {
    Add(format, args);
}

void CCapturingTraceServer::Add(const char* format, va_list* args) {
    va_list copy;
    va_copy(copy, *args);
    const int length = vsnprintf(nullptr, 0, format, copy);
    va_end(copy);
    std::string text(length > 0 ? static_cast<size_t>(length) : 0, '\0');
    if (length > 0) {
        va_copy(copy, *args);
        vsnprintf(&text[0], text.size() + 1, format, copy);
        va_end(copy);
    }
    std::lock_guard<std::mutex> lock(m_Lock);
    m_Messages.push_back(std::move(text));
}

std::vector<std::string> CCapturingTraceServer::Take() {
    std::lock_guard<std::mutex> lock(m_Lock);
    std::vector<std::string> messages;
    messages.swap(m_Messages);
    return messages;
}

bool EnableTracing(int level) {
    setenv("TL_LOG_DEBUG_LEVEL", std::to_string(level).c_str(), 1);
    g_DebugClient.Initialize("EM_TLRAID");
    return g_DebugClient.IsEnabled();
}
