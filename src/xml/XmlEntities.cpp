#include <cstdlib>
#include <cstring>

#include "xml/EntityTable.h"
#include "xml/XmlChars.h"
#include "xml/XmlDoc.h"

namespace {

// Length of the reference at p[0] == '&' when it has the form of one, else 0.
size_t RefLength(std::string_view s, size_t p) {
    size_t q = p + 1;
    if (q >= s.size() || !XmlIs(s[q], kChRefFirst)) {
        return 0;
    }
    for (++q; q < s.size() && XmlIs(s[q], kChRefChar); ++q) {
    }
    return q < s.size() && s[q] == ';' ? q + 1 - p : 0;
}

// Code point of the reference behind the '&' at p[0], 0 when there is none; nRefLen gets the
// length through the ';'. The name must end within 10 bytes behind the '&'.
long ReadRef(const char* p, size_t nAvail, size_t& nRefLen) {
    char szName[11];
    size_t n = 0;
    for (size_t j = 1;; ++j) {
        if (j > 10 || j >= nAvail) {
            return 0;
        }
        char c = p[j];
        if (c == ';') {
            break;
        }
        if (uint8_t(c) >= 128) {
            return 0;
        }
        szName[n++] = (c >= 'A' && c <= 'Z') ? char(c + ('a' - 'A')) : c;
    }
    szName[n] = 0;
    nRefLen = n + 2;
    if (n && szName[0] == '#') {
        bool bHex = n > 1 && szName[1] == 'x';
        return std::strtol(szName + (bHex ? 2 : 1), nullptr, bHex ? 16 : 10);
    }
    return LookupEntity(szName, n);
}

}  // namespace

std::string CXmlDoc::EscapeText(std::string_view sText, uint32_t nFlags) {
    std::string sOut;
    sOut.reserve(sText.size() + sText.size() / 10 + 7);
    AppendEscaped(sOut, sText, nFlags);
    return sOut;
}

void CXmlDoc::AppendEscaped(std::string& sOut, std::string_view sText, uint32_t nFlags) {
    bool bAttrib = (nFlags & XmlAttribText) != 0;
    size_t nRun = 0;  // start of the bytes not yet copied
    for (size_t i = 0; i < sText.size(); ++i) {
        const char* pszRef = nullptr;
        switch (sText[i]) {
            case '<':
                pszRef = "&lt;";
                break;
            case '>':
                pszRef = "&gt;";
                break;
            case '&':
                if (!(nFlags & XmlKeepRefs) || !RefLength(sText, i)) {
                    pszRef = "&amp;";
                }
                break;
            case '"':
                pszRef = bAttrib ? "&quot;" : nullptr;
                break;
            case '\'':
                pszRef = bAttrib ? "&apos;" : nullptr;
                break;
            default:
                break;
        }
        if (pszRef) {
            sOut.append(sText.data() + nRun, i - nRun);
            sOut.append(pszRef);
            nRun = i + 1;
        }
    }
    sOut.append(sText.data() + nRun, sText.size() - nRun);
}

std::string CXmlDoc::UnescapeText(const char* pText, int nLength, uint32_t /*nFlags*/) {
    // Bits 0x300 of the flags would trim or collapse white space; no document here sets them.
    if (!pText) {
        return std::string();
    }
    return UnescapeText(
        std::string_view(pText, nLength < 0 ? std::strlen(pText) : size_t(nLength)));
}

std::string CXmlDoc::UnescapeText(std::string_view sText) {
    const char* pText = sText.data();
    size_t nLen = sText.size();
    std::string sOut;
    sOut.reserve(nLen);
    size_t i = 0;
    while (i < nLen) {
        const void* pAmp = std::memchr(pText + i, '&', nLen - i);
        size_t nAmp = pAmp ? size_t(static_cast<const char*>(pAmp) - pText) : nLen;
        sOut.append(pText + i, nAmp - i);
        if (nAmp == nLen) {
            break;
        }
        size_t nRefLen = 0;
        long nCode = ReadRef(pText + nAmp, nLen - nAmp, nRefLen);
        // Only code points that UTF-8 can carry replace the reference.
        if (nCode <= 0 || nCode > 0x10FFFF) {
            sOut += '&';
            i = nAmp + 1;
            continue;
        }
        if (nCode < 128) {
            sOut += char(nCode);
        } else {
            char aBuf[4];
            int nOut = 0;
            EncodeUtf8(int32_t(nCode), aBuf, nOut);
            sOut.append(aBuf, size_t(nOut));
        }
        i = nAmp + nRefLen;
    }
    return sOut;
}

void CXmlDoc::EncodeUtf8(int32_t nCode, char* pOut, int& nLength) {
    if (nCode < 0) {
        return;
    }
    uint32_t c = uint32_t(nCode);
    int n = c < 0x80 ? 1 : c < 0x800 ? 2 : c < 0x10000 ? 3 : 4;
    if (pOut) {
        unsigned char* p = reinterpret_cast<unsigned char*>(pOut + nLength);
        switch (n) {
            case 1:
                p[0] = uint8_t(c);
                break;
            case 2:
                p[0] = uint8_t(0xC0 | (c >> 6));
                p[1] = uint8_t(0x80 | (c & 0x3F));
                break;
            case 3:
                p[0] = uint8_t(0xE0 | (c >> 12));
                p[1] = uint8_t(0x80 | ((c >> 6) & 0x3F));
                p[2] = uint8_t(0x80 | (c & 0x3F));
                break;
            default:
                p[0] = uint8_t(0xF0 | ((c >> 18) & 0x07));
                p[1] = uint8_t(0x80 | ((c >> 12) & 0x3F));
                p[2] = uint8_t(0x80 | ((c >> 6) & 0x3F));
                p[3] = uint8_t(0x80 | (c & 0x3F));
                break;
        }
    }
    nLength += n;
}

std::string CXmlDoc::WrapCData(std::string_view sText) {
    static constexpr std::string_view kEnd = "]]>";
    std::string sOut = "<![CDATA[";
    size_t i = 0;
    for (size_t q; (q = sText.find(kEnd, i)) != std::string_view::npos; i = q + kEnd.size()) {
        sOut.append(sText.data() + i, q - i);
        sOut += "]]]]><![CDATA[>";
    }
    sOut.append(sText.data() + i, sText.size() - i);
    sOut += "]]>";
    return sOut;
}
