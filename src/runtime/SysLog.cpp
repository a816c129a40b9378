#include "runtime/SysLog.h"

#include <syslog.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <mutex>

namespace {

constexpr size_t kSysLogBuffer = 1024;
constexpr int kSysLogOptions = LOG_PID | LOG_CONS | LOG_NDELAY;

std::atomic<bool> g_bSysLogOpen{false};
std::mutex g_SysLogMutex;

void OpenSysLogOnce() {
    if (g_bSysLogOpen.load(std::memory_order_acquire))
        return;
    std::lock_guard<std::mutex> lock(g_SysLogMutex);
    if (g_bSysLogOpen.load(std::memory_order_relaxed))
        return;
    openlog(program_invocation_short_name, kSysLogOptions, LOG_LOCAL1);
    g_bSysLogOpen.store(true, std::memory_order_release);
}

}  // namespace

void WriteSysLog(const char* format, va_list args) {
    OpenSysLogOnce();
    const char* text = format;
    while (*text == '\n')
        ++text;
    if (!*text)
        text = format;
    char buffer[kSysLogBuffer];
    if (vsnprintf(buffer, sizeof(buffer), text, args) < 0) {
        syslog(LOG_INFO, "ERROR: cann't format message");
        return;
    }
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-security"
    // The finished text is syslog's format, as it stands: a "%" in it is read once more.
    syslog(LOG_INFO, buffer);
#pragma GCC diagnostic pop
}
