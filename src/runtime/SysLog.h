#pragma once

#include <cstdarg>

// Writes a level-0 trace message to the system log, opening the log on first use.
void WriteSysLog(const char* format, va_list args);
