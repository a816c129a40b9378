// The scanner on its own, for what the parser tests don't reach: token ends that quotes, bare
// values and nested markup decide, bad and unterminated tokens, and the end of the given length.
#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "xml/XmlScanner.h"

namespace {

// The first token of a text.
XmlToken FirstToken(const std::string& sText) {
    XmlScanner scanner;
    scanner.pText = sText.data();
    scanner.nTextLength = uint32_t(sText.size());
    XmlToken token;
    ScanToken(scanner, token);
    EXPECT_EQ(scanner.nOffset, token.nOffset + token.nLength) << sText;
    return token;
}

TEST(XmlScanner, FirstTokenTypeAndLength) {
    const std::tuple<const char*, int, size_t> aCases[] = {
        {"<a b=c>d", kTokStartTag, 7},
        {"<a \"x>y\">", kTokStartTag, 6},  // quotes count only behind '='
        {"<a b==\"x>\">", kTokStartTag, 11},
        {"<a b= =\"x>\">", kTokStartTag, 10},  // second '=' apart starts a bare value
        {"</a b=\">\">", kTokEndTag, 8},
        {"  x <a>", kTokText, 4},
        {"<![CDATA[]]]]>", kTokCData, 14},
        {"<![Cx]]>", kTokCData, 8},  // the rest of the word isn't looked at
        {"<?\?>", kTokPI, 4},
        {"<!---->", kTokComment, 7},
        {"<!-- a -- b -->x", kTokComment, 15},
        {"<!DOCTYPE a [<!ENTITY e \"]>\">]>", kTokDocType, 31},
        {"<!DOCTYPE a [<!-- > -->]>", kTokDocType, 25},
        {"<!DOCTYPE a SYSTEM 'x>y'>", kTokDocType, 25},
        {"<<a>", kTokBad, 1},
        {"< a>", kTokBad, 4},
        {"<é>", kTokBad, 4},  // bytes from 128 up start no name
        {"<:a>", kTokStartTag, 4},
        {"<1a <b>", kTokBad, 4},  // a bad token ends before the next tag
        // The ends of "<!--" and "<?" may not reuse their opening bytes.
        {"<!-->", kTokBad, 5},
        {"<!--->", kTokBad, 6},
        {"<?>", kTokBad, 3},
        {"<!x>", kTokBad, 4},
        {"<!-x>", kTokBad, 5},
        {"<![x>", kTokBad, 5},
        {"<!DOCTYPE a [<!X>]>", kTokBad, 17},
        // An unterminated token runs to the end of the text.
        {"<a b=\"x>", kTokBad, 8},
        {"<![CDATA[x]]", kTokBad, 12},
        {"<!-- x --", kTokBad, 9},
        {"<!DOCTYPE a [", kTokBad, 13},
        {"</a", kTokBad, 3},
        {"<?pi", kTokBad, 4},
        {"<!", kTokBad, 2},
    };
    for (const auto& [pszText, nType, nLength] : aCases) {
        XmlToken token = FirstToken(pszText);
        EXPECT_EQ(token.nType, nType) << pszText;
        EXPECT_EQ(token.nLength, nLength) << pszText;
    }
}

TEST(XmlScanner, SelfEndedTags) {
    const std::tuple<const char*, bool> aCases[] = {
        {"<a b=c/>", false},  {"<a b=c />", true},  {"<a b=/>", false},     {"<a b= />", true},
        {"<a b=c\"/>", true}, {"<a b='c'/>", true}, {"<a b=\"/\">", false},
    };
    for (const auto& [pszText, bSelfEnded] : aCases) {
        XmlToken token = FirstToken(pszText);
        ASSERT_EQ(token.nType, kTokStartTag) << pszText;
        EXPECT_EQ((token.nFlags & kTokSelfEnded) != 0, bSelfEnded) << pszText;
        EXPECT_EQ(token.nLength, strlen(pszText)) << pszText;
    }
}

TEST(XmlScanner, StopsAtTheGivenLength) {
    // The text goes on past the length; the scan must not see it.
    std::string s = "<a b=\"x\">";
    XmlScanner scanner;
    scanner.pText = s.data();
    scanner.nTextLength = 7;
    XmlToken token;
    EXPECT_EQ(ScanToken(scanner, token), kTokBad);
    EXPECT_EQ(token.nLength, 7u);
}

}  // namespace
