// Cleaning a raw tree: the byte rules, which attributes and texts are looked at, the traces,
// and the answer for texts that are or aren't well formed.
#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "storage/XmlValidator.h"
#include "support/CaptureTraceServer.h"

namespace {

TEST(XmlValidator, ByteRules) {
    const std::tuple<std::string, std::string> rows[] = {
        {"plain text ~!", "plain text ~!"},
        {"a\tb\nc\rd\x01-\x7F-\x1F", "a?b?c?d?-?-?"},
        {"M\xC3\xBCller", "M\xC3\xBCller"},  // UTF-8 stays
        {"M\xFCller", "M?ller"},             // the same in Latin-1 doesn't
        {"\xF0\x9F\x98\x80!", "\xF0\x9F\x98\x80!"},
        // A lead byte cut short: one '?' for it, the rest judged by themselves.
        {"ab\xC3", "ab?"},
        {"\xE2\x82z", "??z"},
        {"\xF0\x9F\x98", "???"},
        {"\xC3\x41", "?A"},
        // Forms that are no UTF-8 pass if they are followed properly.
        {"\xC0\x80", "\xC0\x80"},
        {"\xF7\xBF\xBF\xBF", "\xF7\xBF\xBF\xBF"},
        {"\xF8\x88\x80\x80\x80", "?????"},
        // The text ends at its first NUL.
        {std::string("ab\0cd", 5), "ab"},
    };
    for (const auto& [in, out] : rows) {
        EXPECT_EQ(CXmlValidator::CleanText(in), out) << in;
    }
}

TEST(XmlValidator, AttributesOfParentsAndTextsOfLeaves) {
    ScopedTraceLevel level(1);
    Debug.Take();
    // The tab in the attribute of an element with children goes, the same attribute on a
    // leaf stays; text beside children stays, the text of a leaf is cleaned.
    const std::string in =
        "<?xml version=\"1.0\"?>\n<r a=\"x&#9;y\" b=\"\" c=\"ok\">lead\x01<p a=\"x&#9;y\">"
        "M\xFCller</p><q><s>Gr\xC3\xBC\xC3\x9F"
        "e</s><t>a\x02<![CDATA[b]]></t></q></r>\n";
    const std::string out = CleanStorageTreeText(in);
    EXPECT_EQ(out,
              "<?xml version=\"1.0\"?>\n<r a=\"x?y\" b=\"\" c=\"ok\">lead\x01<p a=\"x&#9;y\">"
              "M?ller</p><q><s>Gr\xC3\xBC\xC3\x9F"
              "e</s><t>a?b</t></q></r>\n");
    EXPECT_EQ(Debug.TakeMessages(),
              (std::vector<std::string>{
                  "\nCXmlValidator       : Warning! Attribute string with non printable "
                  "character detected! \"x?y\"",
                  "\nCXmlValidator       :  Warning! Element data string with non printable "
                  "character detected! \"M?ller\"",
                  "\nCXmlValidator       :  Warning! Element data string with non printable "
                  "character detected! \"a?b\""}));
}

TEST(XmlValidator, CleanTextsAndIllFormedTextsStayAsTheyAre) {
    const std::string clean =
        "<?xml version=\"1.0\"?>\n<!-- c -->\n<r  a='1'>\n  <p>&amp;&#65;</p>\n</r>\n";
    EXPECT_EQ(CleanStorageTreeText(clean), clean);
    const std::string broken = "<r><p>a\x01</r>";
    EXPECT_EQ(CleanStorageTreeText(broken), broken);
    EXPECT_EQ(CleanStorageTreeText(""), "");
}

TEST(XmlValidator, SiblingsAtTheTopAndDeepNesting) {
    // The walk starts at the given element and goes on through its siblings.
    CXmlDoc doc;
    doc.SetDoc("<a>\x01</a><b>\x02</b>");
    doc.ResetPos();
    ASSERT_TRUE(doc.FindElem());
    CXmlValidator validator(doc);
    EXPECT_EQ(doc.GetDoc(), "<a>?</a><b>?</b>");

    std::string deep;
    const int kDepth = 100000;
    for (int i = 0; i < kDepth; ++i) {
        deep += "<e>";
    }
    deep += "\x03";
    for (int i = 0; i < kDepth; ++i) {
        deep += "</e>";
    }
    std::string out = CleanStorageTreeText(deep);
    EXPECT_EQ(out.size(), deep.size());
    EXPECT_EQ(out[size_t(3 * kDepth)], '?');
}

}  // namespace
