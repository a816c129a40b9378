#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "xml/XmlDoc.h"
#include "xml/XmlIndexCheck.h"

namespace {

// The index below record i in document order: each element as name@start+length, with
// !u when it has no end tag and !x when something ill-formed stands directly under it; the
// whole index begins with !x when the document is marked ill-formed.
std::string Outline(const CXmlDoc& doc, uint32_t i = 0) {
    std::string s = i == 0 && doc.GetRecord(0).Has(kDocIllFormed) ? "!x" : "";
    for (uint32_t c = doc.GetRecord(i).iElemChild; c; c = doc.GetRecord(c).iElemNext) {
        const ElemPos& e = doc.GetRecord(c);
        s += (s.empty() ? "" : " ") + doc.GetElemTagName(c) + "@" + std::to_string(e.nStart) + "+" +
             std::to_string(e.nLength) + (e.Has(kElemUnended) ? "!u" : "") +
             (e.Has(kElemIllFormed) ? "!x" : "");
        if (e.iElemChild) {
            s += "(" + Outline(doc, c) + ")";
        }
    }
    return s;
}

std::string Repeat(const std::string& s, int n) {
    std::string out;
    while (n-- > 0) {
        out += s;
    }
    return out;
}

// The index the parser builds, and whether the text is well formed (its reports are the
// library's own: the module never reads them).
TEST(XmlBuilder, Index) {
    const std::tuple<const char*, bool, const char*> aCases[] = {
        {"<a/>", true, "a@0+4"},
        {"<r x='1'>\n <a>t</a>\n <b/>\n</r>", true, "r@0+30(a@11+8 b@21+4)"},
        {"hello<a/>", true, "a@5+4"},
        {"<a=b></a>", true, "a@0+9"},  // an end tag name closes a name that goes on with '='
        {"just text", false, ""},
        {"", false, ""},
        {"<r><1a></r>", false, "!x r@0+11!x"},
        {"<a", false, "!x"},
        {"<a></A>", false, "!x a@0+3!u"},
        {"<a><b></a>", false, "!x a@0+10(b@3+3!u)"},
        {"<r><a></x></a></r>", false, "!x r@0+18(a@3+11!x)"},
        // Siblings of the root stay reachable, but do not mark the document ill-formed.
        {"<a/><b/>", false, "a@0+4 b@4+4"},
        {"<a><b></a></b>", false, "!x a@0+10(b@3+3!u)"},
        // Children of unended elements become their following siblings.
        {"<r><a><b><c/><d/></r>", false, "!x r@0+21(a@3+3!u b@6+3!u c@9+4 d@13+4)"},
        // The ill-formed mark moves up from unended elements.
        {"<r><a><b><1x></r>", false, "!x r@0+17!x(a@3+3!u b@6+3!u)"},
    };
    for (const auto& [pszDoc, bWellFormed, pszOutline] : aCases) {
        CXmlDoc doc;
        EXPECT_EQ(doc.SetDoc(std::string(pszDoc)), bWellFormed) << pszDoc;
        EXPECT_EQ(doc.IsWellFormed(), bWellFormed) << pszDoc;
        EXPECT_EQ(Outline(doc), pszOutline) << pszDoc;
        CheckIndex(doc);
    }
}

TEST(XmlBuilder, ReportsStopGrowingPastTheLimit) {
    CXmlDoc doc;
    doc.SetDoc("<r>" + Repeat("</x><1>", 500) + "</r>");
    EXPECT_LT(doc.GetResult().size(), 3000u);
}

// The end tag's length wraps at 10 bits; a start tag too long for its 22 bits makes no
// element, and neither does an edit.
TEST(XmlBuilder, TagLengthsAtTheirLimits) {
    std::string sName(1021, 'n');
    CXmlDoc doc;
    EXPECT_TRUE(doc.SetDoc("<" + sName + "></" + sName + ">"));
    EXPECT_EQ(doc.GetRecord(1).EndTagLen(), 0u);  // 1024 in 10 bits
    EXPECT_EQ(doc.GetRecord(1).StartTagLen(), 1023u);
    EXPECT_EQ(doc.GetData(1), "");

    const uint32_t nMax = ElemPos::kStartTagMask;
    const std::string sFits = "<r a=\"" + std::string(nMax - 8, 'v') + "\">";
    ASSERT_TRUE(doc.SetDoc("<t>" + sFits + "x</r></t>"));
    EXPECT_EQ(doc.GetRecord(2).StartTagLen(), nMax);
    EXPECT_EQ(doc.GetAttrib(2, "b"), "");
    EXPECT_FALSE(doc.SetAttrib(2, "b", "1"));
    EXPECT_EQ(doc.GetData(2), "x");
    CheckIndex(doc);

    EXPECT_FALSE(doc.SetDoc("<t><r b=\"1\"" + sFits.substr(2) + "x</r></t>"));
    EXPECT_EQ(Outline(doc), "!x t@0+" + std::to_string(nMax + 18) + "!x");
    EXPECT_EQ(doc.GetResult(),
              "<start_tag_too_long tagname=\"r\" offset=\"3\"/>"
              "<lone_end_tag tagname=\"r\" offset=\"" +
                  std::to_string(nMax + 10) + "\"/>");
    CheckIndex(doc);
}

TEST(XmlBuilder, EmptyAndNullDocumentsAndResetPositions) {
    CXmlDoc doc;
    EXPECT_FALSE(doc.IsWellFormed());
    EXPECT_FALSE(doc.SetDoc(std::string()));
    EXPECT_EQ(doc.GetRecordCount(), 1u);
    doc.SetDoc("<a><b/></a>");
    ASSERT_TRUE(doc.FindElem("a"));
    ASSERT_TRUE(doc.SavePos("x"));
    doc.SetDoc("<a><b/></a>");
    EXPECT_EQ(doc.GetMainPos(), 0u);
    EXPECT_FALSE(doc.RestorePos("x"));
    doc.SetDoc(nullptr);
    EXPECT_FALSE(doc.IsWellFormed());
    EXPECT_EQ(doc.GetRecordCount(), 0u);
    EXPECT_EQ(doc.GetDoc(), "");
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
    // The room left over after the parse is given back, and grows again for an edit.
    EXPECT_EQ(doc.GetIndexBytes(), size_t(doc.GetRecordCount()) * 32);
    ASSERT_TRUE(doc.FindChildElem("e[150000]"));
    EXPECT_EQ(doc.GetAttrib(doc.GetChildPos(), "n"), "149999");
    ASSERT_TRUE(doc.AddChildElem("added"));
    EXPECT_EQ(CheckIndex(doc), uint32_t(nElems + 2));
}

TEST(XmlBuilder, DeepNestingStaysLinear) {
    // Unended elements a million deep, and lone end tags under them: no step may cost a walk
    // of the whole stack each time, nor recurse.
    const int nDepth = 1000000;
    CXmlDoc doc;
    EXPECT_FALSE(doc.SetDoc(Repeat("<a>", nDepth) + Repeat("</b>", 100000)));
    EXPECT_EQ(CheckIndex(doc), uint32_t(nDepth));
    // All of them end up as siblings at the top.
    EXPECT_EQ(doc.GetRecord(1).iElemNext, 2u);
    EXPECT_EQ(doc.GetRecord(nDepth).iElemParent, 0u);

    // Well-formed nesting keeps its levels, in 16 bits.
    const int nWellFormed = 300000;
    EXPECT_TRUE(doc.SetDoc(Repeat("<a>", nWellFormed) + Repeat("</a>", nWellFormed)));
    EXPECT_EQ(doc.GetRecord(nWellFormed).Level(), uint32_t(nWellFormed - 1) & 0xFFFF);
    EXPECT_TRUE(doc.FindElem("//a"));
}

}  // namespace
