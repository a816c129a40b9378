#pragma once

#include <cstdint>

class CommandRecord;

// Traces the current command of a record in one line: codes, ids, status and data.
// The tag is the module name with " (REQ)" or " (RET)".
void TraceRecord(uint32_t level, const char* tag, const CommandRecord& record);
