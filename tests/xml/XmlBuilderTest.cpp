#include <gtest/gtest.h>

#include <string>

#include "xml/XmlDoc.h"
#include "xml/XmlIndexCheck.h"

namespace {

// Record of the n-th element in document order (1 = the first).
const ElemPos& Elem(const CXmlDoc& doc, uint32_t n) {
    return doc.GetRecord(n);
}

TEST(XmlBuilder, SelfEndedElementIsOneRecord) {
    CXmlDoc doc;
    EXPECT_TRUE(doc.SetDoc(std::string("<a/>")));
    EXPECT_EQ(doc.GetRecordCount(), 2u);
    EXPECT_EQ(Elem(doc, 1).nLength, 4u);
    EXPECT_EQ(Elem(doc, 1).StartTagLen(), 4u);
    EXPECT_EQ(Elem(doc, 1).EndTagLen(), 0u);
    EXPECT_EQ(Elem(doc, 0).iElemChild, 1u);
    EXPECT_EQ(Elem(doc, 0).nLength, 4u);
    EXPECT_EQ(doc.GetResult(), "");
}

TEST(XmlBuilder, RecordsHoldOffsetsLinksAndLevels) {
    CXmlDoc doc;
    const std::string s = "<r x='1'>\n <a>t</a>\n <b/>\n</r>";
    ASSERT_TRUE(doc.SetDoc(s));
    EXPECT_EQ(CheckIndex(doc), 3u);
    const ElemPos& r = Elem(doc, 1);
    const ElemPos& a = Elem(doc, 2);
    const ElemPos& b = Elem(doc, 3);
    EXPECT_EQ(r.nLength, s.size());
    EXPECT_EQ(r.StartTagLen(), 9u);
    EXPECT_EQ(r.EndTagLen(), 4u);
    EXPECT_EQ(r.Level(), 0u);
    EXPECT_EQ(a.nStart, 11u);
    EXPECT_EQ(a.nLength, 8u);
    EXPECT_EQ(a.Level(), 1u);
    EXPECT_EQ(b.Level(), 1u);
    EXPECT_EQ(r.iElemChild, 2u);
    EXPECT_EQ(a.iElemNext, 3u);
    EXPECT_EQ(a.iElemPrev, 3u);  // the first child's prev is the last child
    EXPECT_EQ(b.iElemPrev, 2u);
    EXPECT_TRUE(a.Has(kElemFirst));
    EXPECT_FALSE(b.Has(kElemFirst));
}

TEST(XmlBuilder, UnendedChildOfClosedParent) {
    CXmlDoc doc;
    EXPECT_FALSE(doc.SetDoc(std::string("<a><b></a>")));
    const ElemPos& a = Elem(doc, 1);
    const ElemPos& b = Elem(doc, 2);
    EXPECT_EQ(b.nLength, 3u);
    EXPECT_TRUE(b.Has(kElemUnended));
    EXPECT_EQ(b.EndTagLen(), 0u);
    EXPECT_EQ(a.nLength, 10u);
    EXPECT_EQ(a.EndTagLen(), 4u);
    EXPECT_FALSE(a.Has(kElemUnended));
    EXPECT_TRUE(Elem(doc, 0).Has(kDocIllFormed));
    EXPECT_EQ(doc.GetResult(), "<unended_start_tag tagname=\"b\" offset=\"3\" offset2=\"7\"/>");
}

TEST(XmlBuilder, LoneEndTagThenUnendedAtEndOfText) {
    CXmlDoc doc;
    EXPECT_FALSE(doc.SetDoc(std::string("<a></b>")));
    EXPECT_EQ(doc.GetResult(),
              "<lone_end_tag tagname=\"b\" offset=\"3\"/>"
              "<unended_start_tag tagname=\"a\" offset=\"0\" offset2=\"7\"/>");
    EXPECT_TRUE(Elem(doc, 1).Has(kElemUnended));
}

TEST(XmlBuilder, LoneEndTagMarksTheCurrentElement) {
    CXmlDoc doc;
    EXPECT_FALSE(doc.SetDoc(std::string("<r><a></x></a></r>")));
    EXPECT_TRUE(Elem(doc, 2).Has(kElemIllFormed));
    EXPECT_FALSE(Elem(doc, 1).Has(kElemIllFormed));
    EXPECT_FALSE(Elem(doc, 2).Has(kElemUnended));
    EXPECT_EQ(Elem(doc, 1).nLength, 18u);
}

TEST(XmlBuilder, RootSiblingsStayReachable) {
    CXmlDoc doc;
    EXPECT_FALSE(doc.SetDoc(std::string("<a/><b/>")));
    EXPECT_EQ(doc.GetResult(), "<root_has_sibling/>");
    EXPECT_FALSE(Elem(doc, 0).Has(kDocIllFormed));
    EXPECT_TRUE(doc.FindElem("a"));
    EXPECT_TRUE(doc.FindElem("b"));
}

TEST(XmlBuilder, WellFormedness) {
    const struct {
        const char* pszDoc;
        bool bWellFormed;
        const char* pszResult;
    } aCases[] = {
        {"hello<a/>", true, ""},
        {"<?xml version=\"1.0\"?>\n<!-- c --><!DOCTYPE a><a/>\n<!-- end -->", true, ""},
        {"<a><![CDATA[<b>]]></a>", true, ""},
        {"just text", false, "<no_root_element/>"},
        {"", false, ""},
        {"<r><1a></r>", false, "<first_tag_syntax offset=\"3\"/>"},
        {"<a", false,
         "<unterminated_tag_syntax type=\"start_tag\" offset=\"0\"/><no_root_element/>"},
        {"<a=b></a>", true, ""},  // an end tag name closes a name that goes on with '='
        {"<a></a >", true, ""},
        {"<a></A>", false,
         "<lone_end_tag tagname=\"A\" offset=\"3\"/>"
         "<unended_start_tag tagname=\"a\" offset=\"0\" offset2=\"7\"/>"},
    };
    for (const auto& c : aCases) {
        CXmlDoc doc;
        EXPECT_EQ(doc.SetDoc(std::string(c.pszDoc)), c.bWellFormed) << c.pszDoc;
        EXPECT_EQ(doc.IsWellFormed(), c.bWellFormed) << c.pszDoc;
        EXPECT_EQ(doc.GetResult(), c.pszResult) << c.pszDoc;
        CheckIndex(doc);
    }
}

TEST(XmlBuilder, OverlappingTagsHoistAndLeaveALoneEndTag) {
    CXmlDoc doc;
    EXPECT_FALSE(doc.SetDoc(std::string("<a><b></a></b>")));
    EXPECT_EQ(doc.GetResult(),
              "<unended_start_tag tagname=\"b\" offset=\"3\" offset2=\"7\"/>"
              "<lone_end_tag tagname=\"b\" offset=\"10\"/>");
    EXPECT_TRUE(Elem(doc, 2).Has(kElemUnended));
    EXPECT_EQ(CheckIndex(doc), 2u);
}

TEST(XmlBuilder, ChildrenOfUnendedElementsBecomeFollowingSiblings) {
    CXmlDoc doc;
    EXPECT_FALSE(doc.SetDoc(std::string("<r><a><b><c/><d/></r>")));
    EXPECT_EQ(CheckIndex(doc), 5u);
    // r holds a, b, c, d in document order; the unended ones keep only their start tags.
    uint32_t i = Elem(doc, 1).iElemChild;
    for (const char* psz : {"a", "b", "c", "d"}) {
        ASSERT_NE(i, 0u);
        EXPECT_EQ(doc.GetElemTagName(i), psz);
        EXPECT_EQ(Elem(doc, i).iElemParent, 1u);
        i = Elem(doc, i).iElemNext;
    }
    EXPECT_EQ(i, 0u);
    EXPECT_EQ(Elem(doc, 2).nLength, 3u);
    EXPECT_EQ(Elem(doc, 3).nLength, 3u);
    // Deepest first.
    EXPECT_EQ(doc.GetResult(),
              "<unended_start_tag tagname=\"b\" offset=\"6\" offset2=\"18\"/>"
              "<unended_start_tag tagname=\"a\" offset=\"3\" offset2=\"18\"/>");
}

TEST(XmlBuilder, IllFormedMarkMovesUpFromUnendedElements) {
    CXmlDoc doc;
    EXPECT_FALSE(doc.SetDoc(std::string("<r><a><b><1x></r>")));
    EXPECT_TRUE(Elem(doc, 1).Has(kElemIllFormed));
    EXPECT_FALSE(Elem(doc, 2).Has(kElemIllFormed));
    EXPECT_FALSE(Elem(doc, 3).Has(kElemIllFormed));
}

TEST(XmlBuilder, SecondBadTokenRepeatsTheFirstReport) {
    CXmlDoc doc;
    doc.SetDoc(std::string("<1><2>"));
    const std::string r1 = "<first_tag_syntax offset=\"0\"/>";
    const std::string r2 = "<first_tag_syntax offset=\"3\"/>";
    EXPECT_EQ(doc.GetResult(), r1 + r1 + r2 + "<no_root_element/>");
}

TEST(XmlBuilder, ReportsStopGrowingPastTheLimit) {
    std::string s = "<r>";
    for (int i = 0; i < 500; ++i) {
        s += "</x><1>";
    }
    s += "</r>";
    CXmlDoc doc;
    doc.SetDoc(s);
    EXPECT_GT(doc.GetResult().size(), 999u);
    EXPECT_LT(doc.GetResult().size(), 3000u);
}

TEST(XmlBuilder, EndTagLengthWrapsAtTenBits) {
    std::string sName(1021, 'n');
    CXmlDoc doc;
    EXPECT_TRUE(doc.SetDoc("<" + sName + "></" + sName + ">"));
    EXPECT_EQ(Elem(doc, 1).EndTagLen(), 0u);  // 1024 in 10 bits
    EXPECT_EQ(Elem(doc, 1).StartTagLen(), 1023u);
    EXPECT_EQ(doc.GetData(1), "");
}

TEST(XmlBuilder, EmptyAndNullDocuments) {
    CXmlDoc doc;
    EXPECT_FALSE(doc.IsWellFormed());
    EXPECT_FALSE(doc.FindElem());
    EXPECT_FALSE(doc.SetDoc(std::string()));
    EXPECT_EQ(doc.GetRecordCount(), 1u);
    EXPECT_EQ(doc.GetResult(), "");
    doc.SetDoc("<a/>");
    EXPECT_TRUE(doc.IsWellFormed());
    doc.SetDoc(nullptr);
    EXPECT_FALSE(doc.IsWellFormed());
    EXPECT_EQ(doc.GetRecordCount(), 0u);
    EXPECT_EQ(doc.GetDoc(), "");
}

TEST(XmlBuilder, SetDocResetsPositionsAndSavedNames) {
    CXmlDoc doc;
    doc.SetDoc("<a><b/></a>");
    ASSERT_TRUE(doc.FindElem("a"));
    ASSERT_TRUE(doc.SavePos("x"));
    doc.SetDoc("<a><b/></a>");
    EXPECT_EQ(doc.GetMainPos(), 0u);
    EXPECT_FALSE(doc.RestorePos("x"));
}

TEST(XmlBuilder, ManyElementsSpanSegments) {
    // More than one segment of 65,536 records, each element 32 bytes in the index.
    const int nElems = 200000;
    std::string s = "<r>";
    for (int i = 0; i < nElems; ++i) {
        s += "<e n=\"" + std::to_string(i) + "\"/>";
    }
    s += "</r>";
    CXmlDoc doc;
    ASSERT_TRUE(doc.SetDoc(s));
    EXPECT_EQ(CheckIndex(doc), uint32_t(nElems + 1));
    EXPECT_GE(doc.GetIndexBytes(), size_t(nElems + 2) * 32);
    EXPECT_LE(doc.GetIndexBytes(), size_t(nElems + 2) * 32 * 3 / 2 + 32 * 65536);
    ASSERT_TRUE(doc.FindChildElem("e[150000]"));
    EXPECT_EQ(doc.GetAttrib(doc.GetChildPos(), "n"), "149999");
}

TEST(XmlBuilder, DeepNestingStaysLinear) {
    // Unended elements a million deep, and lone end tags under them: no step may cost a walk
    // of the whole stack each time, nor recurse.
    const int nDepth = 1000000;
    std::string s;
    s.reserve(size_t(nDepth) * 8);
    for (int i = 0; i < nDepth; ++i) {
        s += "<a>";
    }
    for (int i = 0; i < 100000; ++i) {
        s += "</b>";
    }
    CXmlDoc doc;
    EXPECT_FALSE(doc.SetDoc(s));
    EXPECT_EQ(CheckIndex(doc), uint32_t(nDepth));
    // All of them end up as siblings at the top.
    EXPECT_EQ(doc.GetRecord(1).iElemNext, 2u);
    EXPECT_EQ(doc.GetRecord(nDepth).iElemParent, 0u);
}

TEST(XmlBuilder, DeepWellFormedNesting) {
    const int nDepth = 300000;
    std::string s;
    for (int i = 0; i < nDepth; ++i) {
        s += "<a>";
    }
    for (int i = 0; i < nDepth; ++i) {
        s += "</a>";
    }
    CXmlDoc doc;
    EXPECT_TRUE(doc.SetDoc(s));
    EXPECT_EQ(doc.GetRecord(nDepth).Level(), uint32_t(nDepth - 1) & 0xFFFF);
    EXPECT_TRUE(doc.FindElem("//a"));
}

}  // namespace
