#pragma once

#include <cstdint>
#include <string>

// The trace level that a module of this name starts with: what its trace client reads at
// load from the trace configuration and the environment.
uint32_t ConfiguredTraceLevel(const char* moduleName);

// The note for standard error when a trace at this level holds secrets, else empty. The
// trace goes to traceFile, or to standard error when that is empty.
std::string SecretsNote(uint32_t level, const std::string& traceFile);
