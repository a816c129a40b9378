#include <gtest/gtest.h>

#include <string>

#include "xml/XmlDoc.h"

namespace {

// Parses a document that the test means to be well formed.
void Load(CXmlDoc& doc, const std::string& s) {
    ASSERT_TRUE(doc.SetDoc(s)) << s;
}

std::string MainAttrib(const CXmlDoc& doc, const char* pszName) {
    return doc.GetAttrib(doc.GetMainPos(), pszName);
}

TEST(XmlNavigate, UsualWalkOverTheStorageTree) {
    CXmlDoc doc;
    Load(doc,
         "<amEMTL Version=\"2\">\n<System>\n"
         "<Adapter Nr=\"0\"><Status>OK</Status></Adapter>\n"
         "<Adapter Nr=\"1\"><Status>Failed</Status></Adapter>\n"
         "</System>\n</amEMTL>\n");
    doc.ResetPos();
    ASSERT_TRUE(doc.FindElem("amEMTL"));
    EXPECT_EQ(MainAttrib(doc, "Version"), "2");
    ASSERT_TRUE(doc.IntoElem());
    ASSERT_TRUE(doc.FindElem("System"));
    std::string sSeen;
    while (doc.FindChildElem("Adapter")) {
        sSeen += doc.GetAttrib(doc.GetChildPos(), "Nr");
        ASSERT_TRUE(doc.IntoElem());
        ASSERT_TRUE(doc.FindChildElem("Status"));
        sSeen += doc.GetChildData();
        ASSERT_TRUE(doc.OutOfElem());
    }
    EXPECT_EQ(sSeen, "0OK1Failed");
    EXPECT_EQ(doc.GetTagName(), "System");
}

TEST(XmlNavigate, FindOnEmptyDocumentFails) {
    CXmlDoc doc;
    EXPECT_FALSE(doc.FindElem());
    EXPECT_FALSE(doc.FindChildElem());
    EXPECT_FALSE(doc.FindPrevElem());
    doc.SetDoc("");
    EXPECT_FALSE(doc.FindElem("a"));
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
    EXPECT_FALSE(doc.FindChildElem("Z"));
    EXPECT_EQ(doc.GetMainPos(), iMain);
    doc.ResetPos();
    ASSERT_TRUE(doc.FindChildElem("X"));  // finds r first, then its first X
    EXPECT_EQ(doc.GetAttrib(doc.GetChildPos(), "i"), "1");
}

TEST(XmlNavigate, IndexPredicateCountsSameNamedSiblings) {
    CXmlDoc doc;
    Load(doc, "<r><A i='1'/><B/><A i='2'/></r>");
    ASSERT_TRUE(doc.FindElem("r"));
    ASSERT_TRUE(doc.IntoElem());
    EXPECT_FALSE(doc.FindElem("A[3]"));
    EXPECT_EQ(doc.GetMainPos(), 0u);
    ASSERT_TRUE(doc.FindElem("A[2]"));
    EXPECT_EQ(MainAttrib(doc, "i"), "2");
    doc.ResetPos();
    ASSERT_TRUE(doc.FindElem("/r/*[2]"));
    EXPECT_EQ(doc.GetTagName(), "B");
}

TEST(XmlNavigate, AnywherePathLooksInsideMainFirst) {
    CXmlDoc doc;
    Load(doc, "<r><A><x><B i='in'/></x></A><B i='behind'/></r>");
    ASSERT_TRUE(doc.FindElem("r"));
    ASSERT_TRUE(doc.IntoElem());
    ASSERT_TRUE(doc.FindElem("A"));
    ASSERT_TRUE(doc.FindElem("//B"));
    EXPECT_EQ(MainAttrib(doc, "i"), "in");
    EXPECT_EQ(doc.GetElemPath(), "/r/A/x/B");
    // The search stays below the parent, which is now x.
    EXPECT_FALSE(doc.FindElem("//B"));
    ASSERT_TRUE(doc.OutOfElem());
    ASSERT_TRUE(doc.OutOfElem());
    EXPECT_EQ(doc.GetTagName(), "A");
    ASSERT_TRUE(doc.FindElem("//B"));
    EXPECT_EQ(MainAttrib(doc, "i"), "in");
    doc.ResetPos();
    ASSERT_TRUE(doc.FindElem("r"));
    ASSERT_TRUE(doc.IntoElem());
    ASSERT_TRUE(doc.FindElem("//B[@i='behind']"));
    EXPECT_EQ(doc.GetElemPath(), "/r/B");
}

TEST(XmlNavigate, PathForms) {
    const std::string s =
        "<r>"
        "<a n='1' k=\"v\"/>"
        "<a n='2' k='x&amp;y'><c/></a>"
        "<b n=3 k=plain><d>t</d></b>"
        "</r>";
    const struct {
        const char* pszPath;
        const char* pszFoundN;  // n of the element found, "" for none
    } aCases[] = {
        {"a", "1"},
        {"/r/a", "1"},
        {"/r/a[2]", "2"},
        {"/r/*[3]", "3"},
        {"a[@k]", "1"},
        {"a[@k='x&amp;y']", "2"},
        {"a[@k=\"x&#38;y\"]", "2"},  // both sides compare unescaped
        {"a[@k=v]", "1"},
        {"*[@k=plain]", "3"},
        {"a[@k='nothing']", ""},
        {"*[c]", "2"},
        {"*[d]", "3"},
        {"a/@n", "1"},
        {"//d", ""},  // an element found has no n
        {"A", ""},    // names are case-sensitive
        {"a b", ""},
        {"a[", ""},
        {"a]", ""},
        {"a=", ""},
        {"a[0]", ""},
        {"a[1]x", ""},
        {"a[@]", ""},
        {"//r/a", ""},  // one segment only behind "//"
        {"a//c", ""},
        {"/", ""},
        {"a/", ""},
        {"a/@", ""},
    };
    for (const auto& c : aCases) {
        CXmlDoc doc;
        Load(doc, s);
        ASSERT_TRUE(doc.FindElem("r"));
        ASSERT_TRUE(doc.IntoElem());
        bool bFound = doc.FindElem(c.pszPath);
        if (*c.pszFoundN) {
            EXPECT_TRUE(bFound) << c.pszPath;
            EXPECT_EQ(MainAttrib(doc, "n"), c.pszFoundN) << c.pszPath;
        } else if (std::string(c.pszPath) == "//d") {
            EXPECT_TRUE(bFound);
            EXPECT_EQ(doc.GetTagName(), "d");
        } else {
            EXPECT_FALSE(bFound) << c.pszPath;
            EXPECT_EQ(doc.GetMainPos(), 0u) << c.pszPath;
        }
    }
}

TEST(XmlNavigate, DescendingDoesNotBacktrack) {
    CXmlDoc doc;
    Load(doc, "<r><a/><a><b/></a></r>");
    ASSERT_TRUE(doc.FindElem("r"));
    ASSERT_TRUE(doc.IntoElem());
    EXPECT_FALSE(doc.FindElem("a/b"));
    ASSERT_TRUE(doc.FindElem("a[2]/b"));
    EXPECT_EQ(doc.GetElemPath(), "/r/a[2]/b");
}

TEST(XmlNavigate, ChildFindWithPathMovesMainToTheFoundParent) {
    CXmlDoc doc;
    Load(doc, "<r><a><b/></a></r>");
    ASSERT_TRUE(doc.FindElem("r"));
    ASSERT_TRUE(doc.FindChildElem("a/b"));
    EXPECT_EQ(doc.GetElemTagName(doc.GetChildPos()), "b");
    EXPECT_EQ(doc.GetTagName(), "a");
    EXPECT_EQ(doc.GetElemTagName(doc.GetParentPos()), "r");
}

TEST(XmlNavigate, FindPrevElemWalksBackToTheFirstSibling) {
    CXmlDoc doc;
    Load(doc, "<r><a i='1'/><b/><a i='2'/><c/></r>");
    ASSERT_TRUE(doc.FindElem("r"));
    ASSERT_TRUE(doc.IntoElem());
    ASSERT_TRUE(doc.FindPrevElem());  // no main: the last child
    EXPECT_EQ(doc.GetTagName(), "c");
    ASSERT_TRUE(doc.FindPrevElem("a"));
    EXPECT_EQ(MainAttrib(doc, "i"), "2");
    ASSERT_TRUE(doc.FindPrevElem("a"));
    EXPECT_EQ(MainAttrib(doc, "i"), "1");
    EXPECT_FALSE(doc.FindPrevElem());
    EXPECT_EQ(MainAttrib(doc, "i"), "1");
    ASSERT_TRUE(doc.FindElem("c"));
    EXPECT_FALSE(doc.FindPrevElem("x"));
    EXPECT_EQ(doc.GetTagName(), "c");
}

TEST(XmlNavigate, IntoAndOutOf) {
    CXmlDoc doc;
    Load(doc, "<r><a><b/></a></r>");
    EXPECT_FALSE(doc.IntoElem());
    EXPECT_FALSE(doc.OutOfElem());
    ASSERT_TRUE(doc.FindElem());
    ASSERT_TRUE(doc.IntoElem());  // nothing at child: main becomes 0
    EXPECT_EQ(doc.GetMainPos(), 0u);
    EXPECT_FALSE(doc.IntoElem());
    ASSERT_TRUE(doc.FindElem());
    ASSERT_TRUE(doc.FindChildElem());
    ASSERT_TRUE(doc.IntoElem());
    EXPECT_EQ(doc.GetTagName(), "b");
    ASSERT_TRUE(doc.OutOfElem());
    EXPECT_EQ(doc.GetTagName(), "a");
    EXPECT_EQ(doc.GetElemTagName(doc.GetChildPos()), "b");
    ASSERT_TRUE(doc.OutOfElem());
    EXPECT_EQ(doc.GetTagName(), "r");
    EXPECT_FALSE(doc.OutOfElem());
}

TEST(XmlNavigate, TagNames) {
    CXmlDoc doc;
    Load(doc, "<r><a=b/><c\tx='1'/><d?/></r>");
    ASSERT_TRUE(doc.FindElem("r"));
    ASSERT_TRUE(doc.IntoElem());
    const char* aNames[] = {"a", "c", "d"};
    for (const char* psz : aNames) {
        ASSERT_TRUE(doc.FindElem());
        EXPECT_EQ(doc.GetTagName(), psz);
    }
    EXPECT_EQ(doc.GetElemTagName(0), "");
    EXPECT_EQ(doc.GetElemTagName(999), "");
}

TEST(XmlNavigate, GetDataOfLeaves) {
    const struct {
        const char* pszDoc;
        const char* pszData;
    } aCases[] = {
        {"<a><b/></a>", ""},
        {"<a>x<!--c-->y</a>", "xy"},
        {"<a>plain</a>", "plain"},
        {"<a>a&amp;b &lt;&#65;&gt;</a>", "a&b <A>"},
        {"<a><![CDATA[<x>&amp;]]></a>", "<x>&amp;"},
        {"<a>1<![CDATA[2]]>3</a>", "123"},
        {"<a> <!--c--> y </a>", " y "},  // white space alone between markup is passed over
        {"<a>x<?p?></a>", "x"},
        {"<a/>", ""},
        {"<a></a>", ""},
        {"<a>  </a>", "  "},
        {"<a>x</y>z</a>", "xz"},
        {"<a><![CDATA[]]></a>", ""},
    };
    for (const auto& c : aCases) {
        CXmlDoc doc;
        doc.SetDoc(std::string(c.pszDoc));
        ASSERT_TRUE(doc.FindElem("a")) << c.pszDoc;
        EXPECT_EQ(doc.GetData(doc.GetMainPos()), c.pszData) << c.pszDoc;
    }
}

TEST(XmlNavigate, GetDataOfNothing) {
    CXmlDoc doc;
    Load(doc, "<a>x</a>");
    EXPECT_EQ(doc.GetData(0), "");
    EXPECT_EQ(doc.GetData(2), "");
    EXPECT_EQ(doc.GetData(0xFFFFFFFF), "");
    EXPECT_EQ(doc.GetChildData(), "");
}

TEST(XmlNavigate, Attributes) {
    CXmlDoc doc;
    Load(doc,
         "<a d=\"1\" s='2' b=x/y e=\"\" amp='&amp;' checked q = \"sp\" ref=\"&lt;&#x41;\"></a>");
    ASSERT_TRUE(doc.FindElem());
    const struct {
        const char* pszName;
        const char* pszValue;
    } aCases[] = {
        {"d", "1"},  {"s", "2"},    {"b", "x/y"},
        {"e", ""},   {"amp", "&"},  {"checked", "checked"},
        {"q", "sp"}, {"ref", "<A"}, {"missing", ""},
        {"D", ""},
    };
    for (const auto& c : aCases) {
        EXPECT_EQ(MainAttrib(doc, c.pszName), c.pszValue) << c.pszName;
    }
    const char* aNames[] = {"d", "s", "b", "e", "amp", "checked", "q", "ref"};
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(doc.GetAttribName(i), aNames[i]);
    }
    EXPECT_EQ(doc.GetAttribName(8), "");
    EXPECT_EQ(doc.GetAttribName(-1), "");
    EXPECT_EQ(doc.GetAttrib(doc.GetMainPos(), nullptr), "");
}

TEST(XmlNavigate, AttributesStayInsideTheStartTag) {
    CXmlDoc doc;
    Load(doc, "<r><a x='1'/><b y='2'>z='3'</b></r>");
    ASSERT_TRUE(doc.FindElem("r"));
    ASSERT_TRUE(doc.FindChildElem("b"));
    EXPECT_EQ(doc.GetAttrib(doc.GetChildPos(), "z"), "");
    EXPECT_EQ(doc.GetAttrib(doc.GetChildPos(), "y"), "2");
}

TEST(XmlNavigate, SubDocTakesTrailingWhiteSpaceUpToTheNextTag) {
    CXmlDoc doc;
    Load(doc, "<r>\n<a>1</a>  \n<b/> t<c/>\n</r>\n");
    ASSERT_TRUE(doc.FindElem("r"));
    ASSERT_TRUE(doc.FindChildElem("a"));
    EXPECT_EQ(doc.GetSubDoc(doc.GetChildPos()), "<a>1</a>  \n");
    ASSERT_TRUE(doc.FindChildElem("b"));
    EXPECT_EQ(doc.GetSubDoc(doc.GetChildPos()), "<b/>");
    EXPECT_EQ(doc.GetSubDoc(doc.GetMainPos()), "<r>\n<a>1</a>  \n<b/> t<c/>\n</r>\n");
    EXPECT_EQ(doc.GetSubDoc(0), "");
}

TEST(XmlNavigate, ElemPathCountsSameNamedSiblings) {
    CXmlDoc doc;
    Load(doc, "<r><a/><b/><a><x/><x><y/></x></a></r>");
    EXPECT_EQ(doc.GetElemPath(), "");
    ASSERT_TRUE(doc.FindElem("/r/a[2]/x[2]/y"));
    EXPECT_EQ(doc.GetElemPath(), "/r/a[2]/x[2]/y");
    ASSERT_TRUE(doc.FindElem("/r/b"));
    EXPECT_EQ(doc.GetElemPath(), "/r/b");
}

TEST(XmlNavigate, SavedPositionsKeepTheirKind) {
    CXmlDoc doc;
    Load(doc, "<r><a><b/></a><c/></r>");
    ASSERT_TRUE(doc.FindElem("r"));
    ASSERT_TRUE(doc.FindChildElem("a"));
    ASSERT_TRUE(doc.SavePos("child"));
    ASSERT_TRUE(doc.IntoElem());
    ASSERT_TRUE(doc.IntoElem());
    ASSERT_TRUE(doc.SavePos("parent"));  // main 0, child 0: the parent is kept
    ASSERT_TRUE(doc.FindElem("b"));
    ASSERT_TRUE(doc.SavePos("main", 3));
    doc.ResetPos();

    ASSERT_TRUE(doc.RestorePos("child"));
    EXPECT_EQ(doc.GetTagName(), "r");
    EXPECT_EQ(doc.GetElemTagName(doc.GetChildPos()), "a");
    ASSERT_TRUE(doc.RestorePos("parent"));
    EXPECT_EQ(doc.GetElemTagName(doc.GetParentPos()), "a");
    EXPECT_EQ(doc.GetMainPos(), 0u);
    EXPECT_FALSE(doc.IntoElem());          // node type follows main
    EXPECT_FALSE(doc.RestorePos("main"));  // other map
    ASSERT_TRUE(doc.RestorePos("main", 3));
    EXPECT_EQ(doc.GetTagName(), "b");
    EXPECT_EQ(doc.GetChildPos(), 0u);
    EXPECT_EQ(doc.GetElemTagName(doc.GetParentPos()), "a");

    EXPECT_FALSE(doc.SavePos(nullptr));
    EXPECT_FALSE(doc.RestorePos(nullptr));
    EXPECT_FALSE(doc.RestorePos("nothing"));
    EXPECT_FALSE(doc.SavePos("x", -1));
    ASSERT_TRUE(doc.SavePos("far", 1000000));
    EXPECT_TRUE(doc.RestorePos("far", 1000000));
}

TEST(XmlNavigate, SavedNameIsOverwritten) {
    CXmlDoc doc;
    Load(doc, "<r><a/><b/></r>");
    ASSERT_TRUE(doc.FindElem("/r/a"));
    ASSERT_TRUE(doc.SavePos());
    ASSERT_TRUE(doc.FindElem("b"));
    ASSERT_TRUE(doc.SavePos());
    doc.ResetPos();
    ASSERT_TRUE(doc.RestorePos());
    EXPECT_EQ(doc.GetTagName(), "b");
}

}  // namespace

// The layout of the buckets of saved names.
TEST(SavedPosMaps, BucketsGrowByTheirRule) {
    SavedPosMaps maps;
    // Names of the same byte sum share a bucket.
    const char* aNames[] = {"ab", "ba", "aab", "\x01`b", "`\x01b"};
    for (uint32_t i = 0; i < 2; ++i) {
        ASSERT_TRUE(maps.Save(aNames[i], 0, i, kSavedMain));
    }
    const SavedPosMaps::Bucket* pBucket = maps.FindBucket("ab", 0);
    ASSERT_NE(pBucket, nullptr);
    ASSERT_EQ(pBucket->size(), 2u);
    EXPECT_EQ((*pBucket)[1].nFlags, uint32_t(kSavedMain | kSavedUsed | kSavedLast));
    ASSERT_TRUE(maps.Save("\x01`b", 0, 7, kSavedChild));  // same sum as "ab": 195
    pBucket = maps.FindBucket("ab", 0);
    ASSERT_EQ(pBucket->size(), 2u * (2 - 1) + 12);
    EXPECT_EQ((*pBucket)[1].nFlags, uint32_t(kSavedMain | kSavedUsed));
    EXPECT_EQ((*pBucket)[2].nFlags, uint32_t(kSavedChild | kSavedUsed));
    EXPECT_EQ(pBucket->back().nFlags, uint32_t(kSavedLast));
    uint32_t iPos = 0, nKind = 0;
    ASSERT_TRUE(maps.Restore("ba", 0, iPos, nKind));
    EXPECT_EQ(iPos, 1u);
    EXPECT_EQ(nKind, uint32_t(kSavedMain));
}

TEST(SavedPosMaps, HashSumsSignedBytes) {
    EXPECT_EQ(SavedPosMaps::Hash("", 7), 0u);
    EXPECT_EQ(SavedPosMaps::Hash("a", 7), 97u % 7);
    // 0xFF reads as -1: the sum is -1 as u32.
    EXPECT_EQ(SavedPosMaps::Hash("\xFF", 7), 0xFFFFFFFFu % 7);
}
