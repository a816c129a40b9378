#pragma once

#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif
#include <cstring>

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

// Searches for markup bytes: 16 at a time while the text has 16 more, then one by one. Each
// returns the offset of the first byte in p[i, n) that it looks for, or n.
#if defined(__SSE2__)
inline __m128i XmlEq(__m128i x, char c) {
    return _mm_cmpeq_epi8(x, _mm_set1_epi8(c));
}
inline __m128i XmlWs(__m128i x) {
    return _mm_or_si128(_mm_or_si128(XmlEq(x, ' '), XmlEq(x, '\t')),
                        _mm_or_si128(XmlEq(x, '\n'), XmlEq(x, '\r')));
}

// Moves i to the first byte that matches; false when none did while 16 bytes were left.
template <class Match>
inline bool XmlSearch16(const char* p, uint32_t& i, uint32_t n, Match match) {
    for (; i + 16 <= n; i += 16) {
        __m128i x = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i));
        int nMask = _mm_movemask_epi8(match(x));
        if (nMask) {
            i += uint32_t(__builtin_ctz(unsigned(nMask)));
            return true;
        }
    }
    return false;
}
#endif

// The first c.
inline uint32_t XmlFind(const char* p, uint32_t i, uint32_t n, char c) {
#if defined(__SSE2__)
    if (XmlSearch16(p, i, n, [c](__m128i x) { return XmlEq(x, c); })) {
        return i;
    }
#endif
    while (i < n && p[i] != c) {
        ++i;
    }
    return i;
}

// The first c1 or c2.
inline uint32_t XmlFind2(const char* p, uint32_t i, uint32_t n, char c1, char c2) {
#if defined(__SSE2__)
    if (XmlSearch16(p, i, n,
                    [c1, c2](__m128i x) { return _mm_or_si128(XmlEq(x, c1), XmlEq(x, c2)); })) {
        return i;
    }
#endif
    while (i < n && p[i] != c1 && p[i] != c2) {
        ++i;
    }
    return i;
}

// The first white space or c.
inline uint32_t XmlFindWsOr(const char* p, uint32_t i, uint32_t n, char c) {
#if defined(__SSE2__)
    if (XmlSearch16(p, i, n, [c](__m128i x) { return _mm_or_si128(XmlWs(x), XmlEq(x, c)); })) {
        return i;
    }
#endif
    while (i < n && p[i] != c && !XmlIs(p[i], kChWs)) {
        ++i;
    }
    return i;
}

// The end of a tag name: white space, '/' or '>'.
inline uint32_t XmlFindNameEnd(const char* p, uint32_t i, uint32_t n) {
#if defined(__SSE2__)
    if (XmlSearch16(p, i, n, [](__m128i x) {
            return _mm_or_si128(XmlWs(x), _mm_or_si128(XmlEq(x, '/'), XmlEq(x, '>')));
        })) {
        return i;
    }
#endif
    while (i < n && !XmlIs(p[i], kChNameEnd)) {
        ++i;
    }
    return i;
}
