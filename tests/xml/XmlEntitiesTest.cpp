#include <gtest/gtest.h>

#include <map>
#include <string>
#include <tuple>

#include "xml/EntityTable.h"
#include "xml/XmlDoc.h"

namespace {

std::string Unescape(const std::string& s) {
    return CXmlDoc::UnescapeText(s.data(), int(s.size()), 0);
}

TEST(XmlEntities, Unescape) {
    const std::tuple<const char*, const char*> aCases[] = {
        {"a&b", "a&b"},
        {"&#x41;", "A"},
        {"&#X41;", "A"},
        {"&nosuch;", "&nosuch;"},
        {"&verylongname;", "&verylongname;"},
        {"&#0;", "&#0;"},
        {"&AMP;", "&"},
        {"&euro;", "\xE2\x82\xAC"},
        {"&Oslash;&oslash;", "\xC3\x98\xC3\x98"},  // both spellings find 216
        {"&yuml;&Yuml;", "\xC3\xBF\xC3\xBF"},      // the lower code point is listed first
        {"&thetasym;", "\xCF\x91"},
        {"&#x80;&#x7FF;", "\xC2\x80\xDF\xBF"},  // the bounds of each UTF-8 length
        {"&#x800;&#xFFFF;", "\xE0\xA0\x80\xEF\xBF\xBF"},
        {"&#x10000;", "\xF0\x90\x80\x80"},
        {"&#x10FFFF;", "\xF4\x8F\xBF\xBF"},
        {"&#x110000;", "&#x110000;"},
        {"&#-5;", "&#-5;"},
        {"&#;", "&#;"},
        {"&;", "&;"},
        {"&#65", "&#65"},
        {"&&amp;", "&&"},
        {"&#00000065;", "A"},              // nine bytes behind '&' and the ';' as the tenth
        {"&#000000065;", "&#000000065;"},  // the ';' is the eleventh
        {"&\xC3\xA9;", "&\xC3\xA9;"},
        {"x&amp", "x&amp"},
        {"&#x41x;", "A"},  // the number is read as far as it goes
    };
    for (const auto& [pszIn, pszOut] : aCases) {
        EXPECT_EQ(Unescape(pszIn), pszOut) << pszIn;
    }
    EXPECT_EQ(CXmlDoc::UnescapeText("&lt;x", -1, 0), "<x");
    EXPECT_EQ(CXmlDoc::UnescapeText("&lt;x", 3, 0), "&lt");
    EXPECT_EQ(CXmlDoc::UnescapeText(nullptr, -1, 0), "");
}

TEST(XmlEntities, Escape) {
    const std::tuple<const char*, uint32_t, const char*> aCases[] = {
        {"a<b>&c", 0, "a&lt;b&gt;&amp;c"},
        {"\"q'", 0, "\"q'"},
        {"\"q'", XmlAttribText, "&quot;q&apos;"},
        {"&amp;", 0, "&amp;amp;"},
        {"", 0, ""},
    };
    for (const auto& [pszIn, nFlags, pszOut] : aCases) {
        EXPECT_EQ(CXmlDoc::EscapeText(pszIn, nFlags), pszOut) << pszIn;
    }
}

// The table: buckets of records "L dddd name" by the byte sum of the name, each name found
// by the lookup at the lowest of its code points.
TEST(EntityTable, EveryRecordInItsBucketAndFound) {
    size_t nRecords = 0;
    std::map<std::string, int> firstCode;
    for (uint32_t b = 0; b < kEntityBuckets; ++b) {
        for (const char* p = kEntityTable[b]; *p;) {
            ASSERT_TRUE(p[0] >= '1' && p[0] <= '8') << "bucket " << b;
            size_t nLen = size_t(p[0] - '0');
            std::string sName(p + 5, nLen);
            int nCode = std::stoi(std::string(p + 1, 4));
            uint32_t nSum = 0;
            for (char c : sName) {
                EXPECT_TRUE(c == char(std::tolower(c))) << sName;
                nSum += uint8_t(c);
            }
            EXPECT_EQ(nSum % kEntityBuckets, b) << sName;
            auto [it, bNew] = firstCode.emplace(sName, nCode);
            if (!bNew) {
                EXPECT_LT(it->second, nCode) << sName;  // the lower code point first
            }
            EXPECT_EQ(LookupEntity(sName.c_str(), nLen), it->second) << sName;
            ++nRecords;
            p += 5 + nLen;
        }
    }
    EXPECT_EQ(nRecords, 253u);
    EXPECT_EQ(firstCode.size(), 189u);
    EXPECT_EQ(LookupEntity("xyz", 3), 0);
    EXPECT_EQ(LookupEntity("", 0), 0);
}

}  // namespace
