#include "runtime/ProfileFile.h"

#include <cctype>
#include <cstdio>
#include <cstring>
#include <memory>

#include "runtime/DebugClient.h"
#include "runtime/Pipe.h"

namespace {

// fgets reads this much at most: a longer line arrives in pieces, each read as a line.
constexpr size_t kLineBytes = 1024;

char* SkipSpace(char* text) {
    while (*text && isspace(static_cast<unsigned char>(*text)))
        ++text;
    return text;
}

void CutTrailingSpace(char* text) {
    size_t length = strlen(text);
    while (length > 0 && isspace(static_cast<unsigned char>(text[length - 1])))
        text[--length] = '\0';
}

uint32_t CopyDefault(const char* defaultValue, char* buffer, uint32_t size) {
    strncpy(buffer, defaultValue, size);
    buffer[size - 1] = '\0';
    return static_cast<uint32_t>(strlen(buffer));
}

// Appends a name and its NUL behind what the buffer holds; the buffer's last byte stays
// NUL, so a name that doesn't fit is cut and the count passes the size.
void AppendName(const char* name, char* buffer, uint32_t size, uint32_t& count) {
    strncpy(buffer + count, name, size - 1 - count);
    buffer[size - 1] = '\0';
    count += static_cast<uint32_t>(strlen(buffer + count)) + 1;
}

}  // namespace

uint32_t GetPrivateProfileString(const char* section, const char* key, const char* defaultValue,
                                 char* buffer, uint32_t size, const char* path) {
    if (!buffer || !path || size == 0)
        return 0;
    buffer[0] = '\0';
    const bool wantValue = section && key;
    FilePtr file(fopen(path, "r"));
    if (!file) {
        TLR_TRACE(4, "GetPrivateProfileString: Cannot open %s\n", path);
        return wantValue && defaultValue ? CopyDefault(defaultValue, buffer, size) : 0;
    }

    const size_t sectionLength = section ? strlen(section) : 0;
    // Signed, so that a buffer of one or two bytes takes nothing from the file.
    const long long limit = static_cast<long long>(size) - 2;
    uint32_t count = 0;
    bool inSection = false;
    char line[kLineBytes];
    while (static_cast<long long>(count) < limit && fgets(line, sizeof(line), file.get())) {
        char* text = SkipSpace(line);
        if (*text == '\0' || *text == ';')
            continue;
        if (char* comment = strchr(text, ';'))
            *comment = '\0';
        CutTrailingSpace(text);

        if (*text == '[') {
            if (inSection)
                break;
            if (!section) {
                char* close = strchr(text, ']');
                if (!close)
                    continue;
                *close = '\0';
                AppendName(text + 1, buffer, size, count);
                continue;
            }
            inSection =
                strncmp(text + 1, section, sectionLength) == 0 && text[1 + sectionLength] == ']';
            continue;
        }
        if (!inSection)
            continue;
        char* equals = strchr(text, '=');
        if (!equals)
            continue;
        *equals = '\0';
        CutTrailingSpace(text);
        if (!key) {
            AppendName(text, buffer, size, count);
            continue;
        }
        if (strcmp(text, key) != 0)
            continue;
        strncpy(buffer + count, SkipSpace(equals + 1), size - count);
        buffer[size - 1] = '\0';
        count += static_cast<uint32_t>(strlen(buffer + count));
        break;
    }
    file.reset();

    if (count == 0) {
        buffer[0] = '\0';
        return wantValue && defaultValue ? CopyDefault(defaultValue, buffer, size) : 0;
    }
    if (count >= size) {
        if (wantValue) {
            count = size - 1;
            buffer[count] = '\0';
        } else {
            buffer[size - 1] = '\0';
            buffer[size - 2] = '\0';
            count = size - 2;
        }
    } else {
        buffer[count] = '\0';
    }
    return count;
}
