#include "support/CaptureTraceServer.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "raid/EM_TLRAID.h"
#include "runtime/DebugClient.h"
#include "runtime/InitOrder.h"

__attribute__((visibility("default"))) CaptureTraceServer Debug;

namespace {

// Test programs name the module to the trace client at load, as the module does.
struct CTraceNameAtLoad {
    CTraceNameAtLoad() { g_DebugClient.Initialize(EM_TLRAID::kModuleName); }
};
__attribute__((init_priority(kInitAfterTraceClient))) CTraceNameAtLoad g_TraceNameAtLoad;

}  // namespace

void CaptureTraceServer::Append(const char* format, va_list* args, const char* moduleName) {
    if (!format)
        return;
    va_list copy;
    va_copy(copy, *args);
    int n = vsnprintf(nullptr, 0, format, copy);
    va_end(copy);
    std::vector<char> text(static_cast<size_t>(n > 0 ? n : 0) + 1);
    vsnprintf(text.data(), text.size(), format, *args);
    std::lock_guard<std::mutex> lock(m_Mutex);
    m_Messages.emplace_back(text.data(), static_cast<size_t>(n > 0 ? n : 0));
    m_sModuleName = moduleName ? moduleName : "(null)";
}

void CaptureTraceServer::Write(const char* format, va_list* args, const char* moduleName) {
    Append(format, args, moduleName);
}

void CaptureTraceServer::TraceMessage(const char* format, va_list* args, const char* moduleName) {
    Append(format, args, moduleName);
}

std::string CaptureTraceServer::Take() {
    std::string text;
    for (const std::string& message : TakeMessages())
        text += message;
    return text;
}

std::vector<std::string> CaptureTraceServer::TakeMessages() {
    std::lock_guard<std::mutex> lock(m_Mutex);
    std::vector<std::string> messages;
    messages.swap(m_Messages);
    return messages;
}

bool EnableTracing(int level) {
    setenv("TL_LOG_DEBUG_LEVEL", std::to_string(level).c_str(), 1);
    g_DebugClient.Initialize(EM_TLRAID::kModuleName);
    return g_DebugClient.IsEnabled();
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
