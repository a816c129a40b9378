#pragma once

#include <cstdint>
#include <string>

// Token types that ScanToken returns.
enum XmlTokenType : int {
    kTokEndTag = 0,
    kTokStartTag = 1,
    kTokText = 2,
    kTokWhitespace = 4,
    kTokCData = 8,
    kTokPI = 16,
    kTokComment = 32,
    kTokDocType = 64,
    kTokBad = -1,
    kTokEndOfText = -2,
};

// XmlToken::nFlags: a start tag that ended with "/>".
constexpr uint32_t kTokSelfEnded = 0x10000;

struct XmlToken {
    int nType = kTokEndOfText;
    uint32_t nOffset = 0;  // where the token starts in the text
    uint32_t nLength = 0;
    uint32_t nFlags = 0;
    std::string sReport;  // reports made while scanning; not emptied between tokens
};

// The scanner's cursor over a text.
struct XmlScanner {
    uint32_t nNameStart = 0;  // last name seen, first byte
    uint32_t nNameEnd = 0;    // last name seen, last byte (nNameStart - 1 for an empty name)
    uint32_t nOffset = 0;     // current offset
    const char* pText = nullptr;
    uint32_t nDocFlags = 0;
    uint32_t nTextLength = 0;  // the scan never looks at or past this offset
    bool bQuiet = false;       // make no reports

    uint32_t NameLength() const { return nNameEnd + 1 - nNameStart; }
};

// Scans the token at the cursor, moves the cursor behind it and returns its type.
int ScanToken(XmlScanner& scanner, XmlToken& token);
