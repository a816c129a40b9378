#include "support/CaptureTraceServer.h"

#include <cstdarg>
#include <cstdio>
#include <vector>

#include "runtime/DebugClient.h"

__attribute__((visibility("default"))) CaptureTraceServer Debug;

void CaptureTraceServer::Append(const char* format, va_list* args, const char* moduleName) {
    va_list copy;
    va_copy(copy, *args);
    int n = vsnprintf(nullptr, 0, format, copy);
    va_end(copy);
    std::vector<char> text(static_cast<size_t>(n > 0 ? n : 0) + 1);
    vsnprintf(text.data(), text.size(), format, *args);
    std::lock_guard<std::mutex> lock(m_Mutex);
    m_sText.append(text.data(), static_cast<size_t>(n > 0 ? n : 0));
    m_sModuleName = moduleName ? moduleName : "(null)";
}

void CaptureTraceServer::Write(const char* format, va_list* args, const char* moduleName) {
    Append(format, args, moduleName);
}

void CaptureTraceServer::TraceMessage(const char* format, va_list* args, const char* moduleName) {
    Append(format, args, moduleName);
}

std::string CaptureTraceServer::Take() {
    std::lock_guard<std::mutex> lock(m_Mutex);
    std::string text;
    text.swap(m_sText);
    return text;
}

std::string CaptureTraceServer::LastModuleName() {
    std::lock_guard<std::mutex> lock(m_Mutex);
    return m_sModuleName;
}

ScopedTraceLevel::ScopedTraceLevel(uint32_t level)
    : m_nOldLevel(g_DebugClient.m_nLevel), m_bOldEnabled(g_DebugClient.m_bEnabled) {
    g_DebugClient.m_nLevel = level;
    g_DebugClient.m_bEnabled = level != 0;
    Debug.Take();
}

ScopedTraceLevel::~ScopedTraceLevel() {
    g_DebugClient.m_nLevel = m_nOldLevel;
    g_DebugClient.m_bEnabled = m_bOldEnabled;
}
