#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

// What the fuzz targets share.

// The input as text.
inline std::string_view AsText(const uint8_t* data, size_t size) {
    return std::string_view(reinterpret_cast<const char*>(data), size);
}

// Turns the trace on at its most detailed level the first time, so that every message is
// formatted, and drops what has been traced so far.
void DropTrace();

// Writes the bytes to this process's private temporary file and gives its path. The file is
// made once (under $TMPDIR or /tmp) and removed when the process exits.
const std::string& WriteInputFile(std::string_view bytes);

// The text before and after the first line that is exactly "----"; without such a line,
// the whole text and nothing.
std::pair<std::string_view, std::string_view> SplitAtSeparator(std::string_view text);
