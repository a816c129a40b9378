#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "xml/XmlScanner.h"

namespace {

struct Scanned {
    int nType;
    std::string sText;
};

std::vector<Scanned> ScanAll(const std::string& sText, std::string* pReport = nullptr) {
    XmlScanner scanner;
    scanner.pText = sText.data();
    scanner.nTextLength = uint32_t(sText.size());
    XmlToken token;
    std::vector<Scanned> aTokens;
    while (ScanToken(scanner, token) != kTokEndOfText) {
        aTokens.push_back({token.nType, sText.substr(token.nOffset, token.nLength)});
        EXPECT_EQ(scanner.nOffset, token.nOffset + token.nLength);
        if (aTokens.size() > sText.size()) {
            ADD_FAILURE() << "scanner does not advance";
            break;
        }
    }
    if (pReport) {
        *pReport = token.sReport;
    }
    return aTokens;
}

struct TokenCase {
    const char* pszText;
    int nType;
    size_t nLength;  // of the first token
};

TEST(XmlScanner, FirstTokenTypeAndLength) {
    const TokenCase aCases[] = {
        {"<a b=\"x>y\">z", kTokStartTag, 11},  // '>' inside quotes ends nothing
        {"<a b=c>d", kTokStartTag, 7},
        {"<a \"x>y\">", kTokStartTag, 6},  // quotes count only behind '='
        {"<a b==\"x>\">", kTokStartTag, 11},
        {"<a b= =\"x>\">", kTokStartTag, 10},  // second '=' apart starts a bare value
        {"</a b=\">\">", kTokEndTag, 8},
        {"te>xt<a>", kTokText, 3},
        {" \t\r\n<a>", kTokWhitespace, 4},
        {"  x <a>", kTokText, 4},
        {"<![CDATA[]]]]>", kTokCData, 14},
        {"<![Cx]]>", kTokCData, 8},  // the rest of the word isn't looked at
        {"<?\?>", kTokPI, 4},
        {"<!---->", kTokComment, 7},
        {"<!-- a -- b -->x", kTokComment, 15},
        {"<!DOCTYPE a [<!ENTITY e \"]>\">]>", kTokDocType, 31},
        {"<!DOCTYPE a [<!-- > -->]>", kTokDocType, 25},
        {"<!DOCTYPE a SYSTEM 'x>y'>", kTokDocType, 25},
        {"<1a>b", kTokBad, 4},
        {"<<a>", kTokBad, 1},
        {"< a>", kTokBad, 4},
        {"<!x>", kTokBad, 4},
        {"<!-x>", kTokBad, 5},
        {"<![x>", kTokBad, 5},
        {"<!DOCTYPE a [<!X>]>", kTokBad, 17},
        {"<é>", kTokBad, 4},  // bytes from 128 up start no name
        {"<:a>", kTokStartTag, 4},
        {"<{a>", kTokStartTag, 4},
        {"<1a <b>", kTokBad, 4},  // a bad token ends before the next tag
        // The ends of "<!--" and "<?" may not reuse their opening bytes.
        {"<!-->", kTokBad, 5},
        {"<!--->", kTokBad, 6},
        {"<?>", kTokBad, 3},
        {"<![C]]>", kTokCData, 7},
    };
    for (const TokenCase& c : aCases) {
        std::vector<Scanned> aTokens = ScanAll(c.pszText);
        ASSERT_FALSE(aTokens.empty()) << c.pszText;
        EXPECT_EQ(aTokens[0].nType, c.nType) << c.pszText;
        EXPECT_EQ(aTokens[0].sText.size(), c.nLength) << c.pszText;
    }
}

TEST(XmlScanner, SelfEndedTags) {
    const std::tuple<const char*, bool> aCases[] = {
        {"<a/>", true},       {"<a />", true},     {"<a b=\"c\"/>", true}, {"<a b='c'/>", true},
        {"<a b=c/>", false},  {"<a b=c />", true}, {"<a b=/>", false},     {"<a b= />", true},
        {"<a b=c\"/>", true}, {"<a>", false},      {"<a b=\"/\">", false},
    };
    for (const auto& [pszText, bSelfEnded] : aCases) {
        std::string s = pszText;
        XmlScanner scanner;
        scanner.pText = s.data();
        scanner.nTextLength = uint32_t(s.size());
        XmlToken token;
        ASSERT_EQ(ScanToken(scanner, token), kTokStartTag) << s;
        EXPECT_EQ((token.nFlags & kTokSelfEnded) != 0, bSelfEnded) << s;
        EXPECT_EQ(token.nLength, s.size()) << s;
    }
}

TEST(XmlScanner, Reports) {
    const std::tuple<const char*, const char*> aCases[] = {
        {"x<1a>", "<first_tag_syntax offset=\"1\"/>"},
        {"<!x>", "<exclamation_tag_syntax offset=\"0\"/>"},
        {"<!-x>", "<comment_tag_syntax offset=\"0\"/>"},
        {"<![x>", "<cdata_section_syntax offset=\"0\"/>"},
        {"<!DOCTYPE a [<!X>]>", "<doctype_tag_syntax offset=\"0\"/>"},
        {"<1><2>", "<first_tag_syntax offset=\"0\"/><first_tag_syntax offset=\"3\"/>"},
        // An unterminated token runs to the end of the text and tells its type.
        {"<a", "start_tag"},
        {"<a b=\"x>", "start_tag"},
        {"</a", "end_tag"},
        {"<![CDATA[x]]", "cdata_section"},
        {"<?pi", "processing_instruction"},
        {"<!-- x --", "comment"},
        {"<!DOCTYPE a [", "document_type"},
        {"<", "tag"},
        {"<!", "tag"},
    };
    for (const auto& [pszText, pszReport] : aCases) {
        std::string sReport;
        std::vector<Scanned> aTokens = ScanAll(pszText, &sReport);
        if (pszReport[0] == '<') {
            EXPECT_EQ(sReport, pszReport) << pszText;
            continue;
        }
        ASSERT_EQ(aTokens.size(), 1u) << pszText;
        EXPECT_EQ(aTokens[0].nType, kTokBad) << pszText;
        EXPECT_EQ(aTokens[0].sText, pszText);
        EXPECT_EQ(sReport,
                  std::string("<unterminated_tag_syntax type=\"") + pszReport + "\" offset=\"0\"/>")
            << pszText;
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
