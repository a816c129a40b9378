#include "runtime/TraceConfig.h"

#include <sys/stat.h>

#include <strings.h>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "runtime/Pipe.h"

namespace {

constexpr size_t kSlack = 16;
constexpr size_t kMaxValueChars = 64;
constexpr char kEndOfFile[] = "EndOfFile";

}  // namespace

void ConfigSectionReader::Clear() {
    m_Buffer = std::vector<char>();
    m_pSectionStart = nullptr;
    m_pSectionEnd = nullptr;
    m_sPath.clear();
    m_nSize = 0;
    m_tModified = 0;
}

bool ConfigSectionReader::Load() {
    m_Buffer.assign(static_cast<size_t>(m_nSize) + kSlack, '\0');
    m_pSectionStart = m_pSectionEnd = nullptr;
    FilePtr file(fopen(m_sPath.c_str(), "r"));
    if (!file)
        return false;
    size_t size = static_cast<size_t>(m_nSize);
    return fread(m_Buffer.data(), 1, size, file.get()) == size;
}

bool ConfigSectionReader::LocateSection(const char* section, const char* fileName,
                                        const std::string& dir) {
    if (m_sPath.empty()) {
        m_sPath = dir + "/" + fileName;
        struct stat st;
        if (stat(m_sPath.c_str(), &st) != 0) {
            Clear();
            return false;
        }
        m_nSize = st.st_size;
        m_tModified = st.st_mtime;
    }
    if (m_nSize < 0 || !Load()) {
        Clear();
        return false;
    }
    char* text = m_Buffer.data();
    size_t size = static_cast<size_t>(m_nSize);

    // A file is complete only when its last section is [EndOfFile]; that bracket ends the text.
    char* close = nullptr;
    for (size_t i = size; i-- > 0;) {
        if (text[i] == ']') {
            close = text + i;
            break;
        }
    }
    char* open = nullptr;
    if (close) {
        for (char* p = close; p-- > text;) {
            if (*p == '[') {
                open = p;
                break;
            }
        }
    }
    size_t endLen = sizeof(kEndOfFile) - 1;
    if (!open || static_cast<size_t>(close - open - 1) != endLen ||
        strncasecmp(open + 1, kEndOfFile, endLen) != 0) {
        Clear();
        return false;
    }
    *open = '\0';

    size_t wantedLen = strlen(section);
    for (char* p = strchr(text, '['); p; p = strchr(p, '[')) {
        char* end = strchr(p + 1, ']');
        if (!end)
            break;
        if (static_cast<size_t>(end - p - 1) == wantedLen &&
            strncasecmp(p + 1, section, wantedLen) == 0) {
            m_pSectionStart = end + 1;
            char* stop = m_pSectionStart;
            while (*stop && *stop != '[')
                ++stop;
            *stop = '\0';
            m_pSectionEnd = stop;
            return true;
        }
        p = end + 1;
    }
    Clear();
    return false;
}

bool ConfigSectionReader::ReadKey(const char* key, uint32_t& value) const {
    if (!key || !*key || !m_pSectionStart)
        return false;
    const char* found = strstr(m_pSectionStart, key);
    if (!found)
        return false;
    const char* eq = strchr(found, '=');
    if (!eq)
        return false;
    const char* p = eq + 1;
    while (*p && isspace(static_cast<unsigned char>(*p)))
        ++p;
    char digits[kMaxValueChars + 1] = {};
    size_t n = 0;
    while (n < kMaxValueChars && p[n] && p[n] != '\n') {
        digits[n] = p[n];
        ++n;
    }
    value = static_cast<uint32_t>(strtoul(digits, nullptr, 0));
    return true;
}
