#pragma once

#include <cstddef>
#include <string_view>

// How deeply arrays and objects nest in a JSON text (strings are skipped). Lines nested
// deeper than the host accepts are refused before they are parsed: reading and writing a
// document recurse once per level.
inline size_t JsonNestingDepth(std::string_view text) {
    size_t depth = 0;
    size_t deepest = 0;
    bool inString = false;
    for (size_t i = 0; i < text.size(); ++i) {
        char c = text[i];
        if (inString) {
            if (c == '\\') {
                ++i;
            } else if (c == '"') {
                inString = false;
            }
        } else if (c == '"') {
            inString = true;
        } else if (c == '[' || c == '{') {
            if (++depth > deepest)
                deepest = depth;
        } else if ((c == ']' || c == '}') && depth > 0) {
            --depth;
        }
    }
    return deepest;
}
