#pragma once

#include <cstdint>

// Reads a profile file of [Section] lines and Key=Value lines, where ';' starts a comment.
// With section and key: the key's value, or the default when there is none. With a section
// and a null key: the names of the section's keys. With a null section: the names of all
// sections. Names come each with its NUL and the list ends with one more NUL. The result
// is the number of bytes stored, the final NUL not counted; a null buffer or path gives 0.
uint32_t GetPrivateProfileString(const char* section, const char* key, const char* defaultValue,
                                 char* buffer, uint32_t size, const char* path);
