#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "xml/XmlDoc.h"

// Navigation that the differential test does not reach: names that read as paths (a tag name
// or a piece of a value path may hold brackets, '@', '*' and '='; never '/'), failed finds, saved
// positions, sub-documents, and values that only a lenient reader takes.
namespace {

// Parses a document that the test means to be well formed.
void Load(CXmlDoc& doc, const std::string& s) {
    ASSERT_TRUE(doc.SetDoc(s)) << s;
}

// Parses a document and goes into its root r.
::testing::AssertionResult Enter(CXmlDoc& doc, const std::string& s) {
    if (!doc.SetDoc(s) || !doc.FindElem("r") || !doc.IntoElem()) {
        return ::testing::AssertionFailure() << s;
    }
    return ::testing::AssertionSuccess();
}

std::string MainAttrib(const CXmlDoc& doc, const char* pszName) {
    return doc.GetAttrib(doc.GetMainPos(), pszName);
}

TEST(XmlNavigate, PathForms) {
    const std::string s =
        "<r><a n='1' k=\"v\"/><a n='2' k='x&amp;y'><c/></a><b n=3 k=plain><d>t</d></b>"
        "<a><x/><x><y/></x></a></r>";
    const std::tuple<const char*, const char*> aCases[] = {
        {"a", "/r/a"},
        {"a[2]", "/r/a[2]"},
        {"*[3]", "/r/b"},
        {"a[4]", ""},
        {"a[@k]", "/r/a"},
        {"a[@k='x&amp;y']", "/r/a[2]"},
        {"a[@k=\"x&#38;y\"]", "/r/a[2]"},  // both sides compare unescaped
        {"a[@k=v]", "/r/a"},
        {"*[@k=plain]", "/r/b"},
        {"a[@k='nothing']", ""},
        {"*[c]", "/r/a[2]"},
        {"A", ""},  // names are case-sensitive
        {"a[", ""},
        {"a[0]", ""},
        {"a[@]", ""},
    };
    for (const auto& [pszPath, pszFound] : aCases) {
        CXmlDoc doc;
        ASSERT_TRUE(Enter(doc, s));
        EXPECT_EQ(doc.FindElem(pszPath), *pszFound != 0) << pszPath;
        EXPECT_EQ(doc.GetElemPath(), pszFound) << pszPath;
        if (!*pszFound) {
            EXPECT_EQ(doc.GetMainPos(), 0u) << pszPath;
        }
    }
}

TEST(XmlNavigate, FailedChildFindKeepsPositionsAndRepeatedFindGoesOn) {
    CXmlDoc doc;
    Load(doc, "<r><X i='1'/><Y/><X i='2'/></r>");
    ASSERT_TRUE(doc.FindElem("r"));
    uint32_t iMain = doc.GetMainPos();
    ASSERT_TRUE(doc.FindChildElem("X"));
    EXPECT_EQ(doc.GetAttrib(doc.GetChildPos(), "i"), "1");
    ASSERT_TRUE(doc.FindChildElem("X"));
    EXPECT_EQ(doc.GetAttrib(doc.GetChildPos(), "i"), "2");
    uint32_t iChild = doc.GetChildPos();
    EXPECT_FALSE(doc.FindChildElem("X"));
    EXPECT_EQ(doc.GetMainPos(), iMain);
    EXPECT_EQ(doc.GetChildPos(), iChild);
    doc.ResetPos();
    ASSERT_TRUE(doc.FindChildElem("X"));  // finds r first, then its first X
}

TEST(XmlNavigate, IntoAndOutOf) {
    CXmlDoc doc;
    EXPECT_FALSE(doc.FindElem() || doc.FindChildElem() || doc.FindPrevElem());
    Load(doc, "<r><a><b/></a></r>");
    EXPECT_FALSE(doc.IntoElem());
    EXPECT_FALSE(doc.OutOfElem());
    ASSERT_TRUE(doc.FindElem());
    ASSERT_TRUE(doc.IntoElem());  // nothing at child: main becomes 0
    EXPECT_EQ(doc.GetMainPos(), 0u);
    EXPECT_FALSE(doc.IntoElem());
    // Out of b: main a, child b; out of a: main r; no further.
    ASSERT_TRUE(doc.FindElem() && doc.FindChildElem() && doc.IntoElem() && doc.OutOfElem());
    EXPECT_EQ(doc.GetElemTagName(doc.GetChildPos()), "b");
    ASSERT_TRUE(doc.OutOfElem());
    EXPECT_EQ(doc.GetTagName(), "r");
    EXPECT_FALSE(doc.OutOfElem());
}

TEST(XmlNavigate, TagNames) {
    CXmlDoc doc;
    ASSERT_TRUE(Enter(doc, "<r><a=b/><c\tx='1'/><d?/></r>"));
    for (const char* psz : {"a", "c", "d"}) {
        ASSERT_TRUE(doc.FindElem());
        EXPECT_EQ(doc.GetTagName(), psz);
    }
    EXPECT_EQ(doc.GetElemTagName(0), "");
    EXPECT_EQ(doc.GetElemTagName(999), "");
}

TEST(XmlNavigate, GetDataOfLeaves) {
    const std::tuple<const char*, const char*> aCases[] = {
        {"<a><b/></a>", ""},
        {"<a> <!--c--> y </a>", " y "},  // white space alone between markup is
                                         // passed over
        {"<a>  </a>", "  "},
        {"<a>x</y>z</a>", "xz"},
        {"<a><![CDATA[]]></a>", ""},
    };
    for (const auto& [pszDoc, pszData] : aCases) {
        CXmlDoc doc;
        doc.SetDoc(std::string(pszDoc));
        ASSERT_TRUE(doc.FindElem("a")) << pszDoc;
        EXPECT_EQ(doc.GetData(doc.GetMainPos()), pszData) << pszDoc;
        for (uint32_t iNone : {0u, 3u, 0xFFFFFFFFu}) {
            EXPECT_EQ(doc.GetData(iNone), "");
        }
    }
}

TEST(XmlNavigate, LenientAttributes) {
    CXmlDoc doc;
    Load(doc, "<r><a b=x/y checked d='1'>z='3'</a></r>");
    ASSERT_TRUE(doc.FindElem("/r/a"));
    const char* aCases[][2] = {{"b", "x/y"}, {"checked", "checked"}, {"d", "1"}, {"z", ""},
                               {"D", ""},    {"missing", ""}};
    for (const auto& c : aCases) {
        EXPECT_EQ(MainAttrib(doc, c[0]), c[1]) << c[0];
    }
    const char* aNames[] = {"b", "checked", "d", "", ""};
    for (int i = -1; i < 4; ++i) {
        EXPECT_EQ(doc.GetAttribName(i), aNames[(i + 5) % 5]) << i;
    }
    EXPECT_EQ(doc.GetAttrib(doc.GetMainPos(), nullptr), "");
}

TEST(XmlNavigate, SubDocTakesTrailingWhiteSpaceUpToTheNextTag) {
    CXmlDoc doc;
    Load(doc, "<r>\n<a>1</a>  \n<b/> t<c/>\n</r>\n");
    ASSERT_TRUE(doc.FindElem("r") && doc.FindChildElem("a"));
    EXPECT_EQ(doc.GetSubDoc(doc.GetChildPos()), "<a>1</a>  \n");
    ASSERT_TRUE(doc.FindChildElem("b"));
    EXPECT_EQ(doc.GetSubDoc(doc.GetChildPos()), "<b/>");
    EXPECT_EQ(doc.GetSubDoc(doc.GetMainPos()), "<r>\n<a>1</a>  \n<b/> t<c/>\n</r>\n");
    EXPECT_EQ(doc.GetSubDoc(0), "");
}

TEST(XmlNavigate, SavedPositionsKeepTheirKindInTheirMap) {
    CXmlDoc doc;
    Load(doc, "<r><a><b/></a><c/></r>");
    ASSERT_TRUE(doc.FindElem("r") && doc.FindChildElem("a") && doc.SavePos("child"));
    ASSERT_TRUE(doc.IntoElem() && doc.IntoElem());
    ASSERT_TRUE(doc.SavePos("parent", 3));  // main 0, child 0: the parent is kept
    doc.ResetPos();
    ASSERT_TRUE(doc.RestorePos("child"));
    EXPECT_EQ(doc.GetTagName(), "r");
    EXPECT_EQ(doc.GetElemTagName(doc.GetChildPos()), "a");
    EXPECT_FALSE(doc.RestorePos("parent"));  // other map
    ASSERT_TRUE(doc.RestorePos("parent", 3));
    EXPECT_EQ(doc.GetElemTagName(doc.GetParentPos()), "a");
    EXPECT_EQ(doc.GetMainPos(), 0u);
    EXPECT_FALSE(doc.IntoElem());  // node type follows main
    EXPECT_FALSE(doc.SavePos(nullptr) || doc.RestorePos(nullptr) || doc.RestorePos("nothing"));
    EXPECT_FALSE(doc.SavePos("x", -1));
    ASSERT_TRUE(doc.SavePos("far", 1000000));
    EXPECT_TRUE(doc.RestorePos("far", 1000000));
}

}  // namespace
