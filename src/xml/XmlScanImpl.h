#pragma once

// The scanner's inner workings, in a header so that the tree builder's loop can take them in
// line; ScanToken is the one entry point for everything else.
#include <cstring>

#include "xml/XmlChars.h"
#include "xml/XmlDoc.h"
#include "xml/XmlScanner.h"

// One call of ScanToken: the cursor, the token and the text.
class TokenScan {
  public:
    TokenScan(XmlScanner& scanner, XmlToken& token)
        : m_s(scanner), m_t(token), m_p(scanner.pText), m_n(scanner.nTextLength) {}

    int Scan();
    // The same for a cursor known to stand on '<' and a name's first byte: a start tag.
    int ScanStartTagHere() {
        m_t.nOffset = m_s.nOffset;
        m_t.nFlags = 0;
        return ScanStartTag();
    }

  private:
    int Finish(int nType, uint32_t nEnd) {
        m_t.nType = nType;
        m_t.nLength = nEnd - m_t.nOffset;
        m_s.nOffset = nEnd;
        return nType;
    }
    void Report(const char* pszName, const char* pszType = nullptr) {
        if (!m_s.bQuiet) {
            CXmlDoc::Report(m_t.sReport, pszName, nullptr, int(m_t.nOffset), -1, pszType);
        }
    }
    int Unterminated(const char* pszType) {
        Report("unterminated_tag_syntax", pszType);
        return Finish(kTokBad, m_n);
    }
    uint32_t ScanName(uint32_t p) {
        m_s.nNameStart = p;
        p = XmlFindNameEnd(m_p, p, m_n);
        m_s.nNameEnd = p - 1;
        return p;
    }
    // Offset of the '>' that completes the two-byte end e1 e2 '>' at or behind p, where e1 may
    // not stand before nMin; m_n if there is none.
    uint32_t FindEnd(uint32_t p, char e1, char e2, uint32_t nMin) const;
    uint32_t FindPIEnd(uint32_t p, uint32_t nMin) const;

    int ScanText(uint32_t p);
    int ScanStartTag();
    int ScanDocType();
    int ScanBad(uint32_t p);

    XmlScanner& m_s;
    XmlToken& m_t;
    const char* m_p;
    uint32_t m_n;
};

inline uint32_t TokenScan::FindEnd(uint32_t p, char e1, char e2, uint32_t nMin) const {
    while (p < m_n) {
        const void* pGt = std::memchr(m_p + p, '>', m_n - p);
        if (!pGt) {
            return m_n;
        }
        uint32_t q = uint32_t(static_cast<const char*>(pGt) - m_p);
        // The end may not overlap the bytes that opened the token.
        if (q >= nMin + 2 && m_p[q - 1] == e2 && m_p[q - 2] == e1) {
            return q;
        }
        p = q + 1;
    }
    return m_n;
}

inline uint32_t TokenScan::FindPIEnd(uint32_t p, uint32_t nMin) const {
    while (p < m_n) {
        const void* pGt = std::memchr(m_p + p, '>', m_n - p);
        if (!pGt) {
            return m_n;
        }
        uint32_t q = uint32_t(static_cast<const char*>(pGt) - m_p);
        if (q >= nMin + 1 && m_p[q - 1] == '?') {
            return q;
        }
        p = q + 1;
    }
    return m_n;
}

inline int TokenScan::ScanText(uint32_t p) {
    uint32_t nStart = p;
    while (p < m_n && XmlIs(m_p[p], kChWs)) {
        ++p;
    }
    if (p > nStart && (p == m_n || m_p[p] == '<')) {
        return Finish(kTokWhitespace, p);
    }
    // Text runs to the next '<', or through the next '>'.
    while (p < m_n) {
        char c = m_p[p];
        if (XmlIs(c, kChTextEnd)) {
            return Finish(kTokText, c == '<' ? p : p + 1);
        }
        ++p;
    }
    return Finish(kTokText, m_n);
}

inline int TokenScan::ScanStartTag() {
    enum { kOut, kWait, kBare } nState = kOut;
    uint32_t p = ScanName(m_t.nOffset + 1);
    while (p < m_n && m_p[p] != '>') {
        if (nState == kOut) {
            p = XmlFind2(m_p, p, m_n, '=', '>');
            if (p == m_n) {
                break;
            }
            if (m_p[p] == '>') {
                break;
            }
            nState = kWait;  // '='
            ++p;
        } else if (nState == kWait) {
            char c = m_p[p];
            if (c == '"' || c == '\'') {
                p = XmlFind(m_p, p + 1, m_n, c);
                if (p == m_n) {
                    break;
                }
                ++p;
                nState = kOut;
            } else if (c == '>') {
                break;
            } else if (XmlIs(c, kChWs) || (c == '=' && m_p[p - 1] == '=')) {
                ++p;
            } else {
                nState = kBare;
                ++p;
            }
        } else {
            p = XmlFindWsOr(m_p, p, m_n, '>');
            if (p == m_n || m_p[p] == '>') {
                break;
            }
            nState = kOut;
            ++p;
        }
    }
    if (p >= m_n) {
        return Unterminated("start_tag");
    }
    // At the '>'. In a bare value a '/' in front of it belongs to the value unless white space
    // or a quote stands before the '/'.
    bool bSelfEnded = m_p[p - 1] == '/';
    if (bSelfEnded && nState == kBare) {
        char c = m_p[p - 2];
        bSelfEnded = XmlIs(c, kChWs) || c == '"' || c == '\'';
    }
    if (bSelfEnded) {
        m_t.nFlags |= kTokSelfEnded;
    }
    return Finish(kTokStartTag, p + 1);
}

inline int TokenScan::ScanDocType() {
    uint32_t p = m_t.nOffset + 3;
    bool bDecl = false;  // inside a declaration opened by '<'
    char cQuote = 0;
    while (p < m_n) {
        char c = m_p[p];
        if (cQuote) {
            if (c == cQuote) {
                cQuote = 0;
            }
            ++p;
            continue;
        }
        if (c == '"' || c == '\'') {
            cQuote = c;
            ++p;
        } else if (c == '>') {
            if (!bDecl) {
                return Finish(kTokDocType, p + 1);
            }
            bDecl = false;
            ++p;
        } else if (c != '<') {
            ++p;
        } else if (p + 1 >= m_n) {
            break;
        } else if (m_p[p + 1] == '?') {
            p = FindPIEnd(p + 2, p + 2) + 1;
        } else if (m_p[p + 1] != '!') {
            Report("doctype_tag_syntax");
            return ScanBad(p + 1);
        } else if (p + 2 >= m_n) {
            break;
        } else {
            char c2 = m_p[p + 2];
            if (c2 == 'A' || c2 == 'E' || c2 == 'N') {
                bDecl = true;
                p += 3;
            } else if (c2 != '-' && c2 != '[') {
                Report("doctype_tag_syntax");
                return ScanBad(p + 2);
            } else if (p + 3 >= m_n) {
                break;
            } else if (c2 == '-' && m_p[p + 3] != '-') {
                Report("comment_tag_syntax");
                return ScanBad(p + 3);
            } else if (c2 == '[' && m_p[p + 3] != 'C') {
                Report("cdata_section_syntax");
                return ScanBad(p + 3);
            } else {
                p = FindEnd(p + 4, c2 == '-' ? '-' : ']', c2 == '-' ? '-' : ']', p + 4) + 1;
            }
        }
    }
    return Unterminated("document_type");
}

inline int TokenScan::ScanBad(uint32_t p) {
    enum { kOut, kWait, kQuoted, kBare } nState = kOut;
    char cQuote = 0;
    for (; p < m_n; ++p) {
        char c = m_p[p];
        if (c == '<') {
            return Finish(kTokBad, p);
        }
        switch (nState) {
            case kQuoted:
                if (c == cQuote) {
                    nState = kOut;
                }
                break;
            case kOut:
                if (c == '>') {
                    return Finish(kTokBad, p + 1);
                }
                if (c == '=') {
                    nState = kWait;
                }
                break;
            case kWait:
                if (c == '"' || c == '\'') {
                    cQuote = c;
                    nState = kQuoted;
                } else if (c == '>') {
                    return Finish(kTokBad, p + 1);
                } else if (!XmlIs(c, kChWs) && !(c == '=' && m_p[p - 1] == '=')) {
                    nState = kBare;
                }
                break;
            case kBare:
                if (c == '>') {
                    return Finish(kTokBad, p + 1);
                }
                if (XmlIs(c, kChWs)) {
                    nState = kOut;
                }
                break;
        }
    }
    return Unterminated("tag");
}

inline int TokenScan::Scan() {
    uint32_t p = m_s.nOffset;
    m_t.nOffset = p;
    m_t.nFlags = 0;
    if (p >= m_n) {
        m_t.nType = kTokEndOfText;
        m_t.nLength = 0;
        return kTokEndOfText;
    }
    if (m_p[p] != '<') {
        return ScanText(p);
    }
    // A token cut off before its kind shows counts as a bad one.
    if (p + 1 >= m_n) {
        return Unterminated("tag");
    }
    char c1 = m_p[p + 1];
    if (c1 == '/') {
        uint32_t q = ScanName(p + 2);
        q = q < m_n && m_p[q] == '>' ? q : XmlFind(m_p, q, m_n, '>');
        return q < m_n ? Finish(kTokEndTag, q + 1) : Unterminated("end_tag");
    }
    if (XmlIs(c1, kChNameStart)) {
        return ScanStartTag();
    }
    if (c1 == '?') {
        uint32_t q = FindPIEnd(ScanName(p + 2), p + 2);
        return q < m_n ? Finish(kTokPI, q + 1) : Unterminated("processing_instruction");
    }
    if (c1 != '!') {
        Report("first_tag_syntax");
        return ScanBad(p + 1);
    }
    if (p + 2 >= m_n) {
        return Unterminated("tag");
    }
    char c2 = m_p[p + 2];
    if (c2 == 'D') {
        return ScanDocType();
    }
    if (c2 != '-' && c2 != '[') {
        Report("exclamation_tag_syntax");
        return ScanBad(p + 2);
    }
    if (p + 3 >= m_n) {
        return Unterminated("tag");
    }
    if (c2 == '-') {
        if (m_p[p + 3] != '-') {
            Report("comment_tag_syntax");
            return ScanBad(p + 3);
        }
        uint32_t q = FindEnd(p + 4, '-', '-', p + 4);
        return q < m_n ? Finish(kTokComment, q + 1) : Unterminated("comment");
    }
    if (m_p[p + 3] != 'C') {
        Report("cdata_section_syntax");
        return ScanBad(p + 3);
    }
    uint32_t q = FindEnd(p + 4, ']', ']', p + 4);
    return q < m_n ? Finish(kTokCData, q + 1) : Unterminated("cdata_section");
}
