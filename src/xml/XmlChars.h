#pragma once

#include <cstdint>

// Character classes of the scanner, the attribute scan, the tag name reader and the entity code,
// one lookup per byte.
enum XmlCharClass : uint16_t {
    kChWs = 0x001,           // blank, tab, CR, LF
    kChNameEnd = 0x002,      // scanner: end of a tag name
    kChNameStart = 0x004,    // scanner: first byte of a start tag's name
    kChTagNameEnd = 0x008,   // navigation: end of a tag name
    kChAttrNameEnd = 0x010,  // attribute scan: end of a name token
    kChRefFirst = 0x020,     // first byte of a reference name
    kChRefChar = 0x040,      // further bytes of a reference name
    kChTextEnd = 0x080,      // '<' and '>'
    kChTagOut = 0x100,       // start tag outside a value: '=' and '>'
    kChBareEnd = 0x200,      // end of a bare value: white space and '>'
};

struct XmlCharTable {
    uint16_t a[256];

    static constexpr bool In(int c, const char* psz) {
        for (; *psz; ++psz) {
            if (c == *psz)
                return true;
        }
        return false;
    }

    constexpr XmlCharTable() : a() {
        for (int c = 0; c < 256; ++c) {
            uint16_t n = 0;
            bool bWs = c == ' ' || c == '\t' || c == '\r' || c == '\n';
            bool bLetter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
            bool bHigh = c >= 128;
            if (bWs)
                n |= kChWs | kChNameEnd | kChTagNameEnd | kChAttrNameEnd | kChBareEnd;
            if (c == '/' || c == '>')
                n |= kChNameEnd;
            // Bytes from 128 up read as negative and so are no start of a name.
            if (c == ':' || c == '_' || (c >= 'A' && c <= 'Z') || (c > '`' && c < 128))
                n |= kChNameStart;
            if (In(c, "!\"'/;<=>?\\"))
                n |= kChTagNameEnd;
            if (In(c, "/=>?"))
                n |= kChAttrNameEnd;
            if (c == '#' || c == ':' || c == '_' || bLetter || bHigh)
                n |= kChRefFirst;
            if (c == '-' || c == '.' || (c >= '0' && c <= '9') || c == ':' || c == '_' || bLetter ||
                bHigh)
                n |= kChRefChar;
            if (c == '<' || c == '>')
                n |= kChTextEnd;
            if (c == '=' || c == '>')
                n |= kChTagOut;
            if (c == '>')
                n |= kChBareEnd;
            a[c] = n;
        }
    }
};

inline constexpr XmlCharTable kXmlChars{};

inline bool XmlIs(char c, uint16_t nClass) {
    return (kXmlChars.a[uint8_t(c)] & nClass) != 0;
}
