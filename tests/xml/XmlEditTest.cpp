#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "xml/XmlDoc.h"
#include "xml/XmlIndexCheck.h"

namespace {

TEST(XmlEdit, WhereNewElementsGo) {
    // The document, the child to add behind (null: none), and the text after adding N to P.
    const std::tuple<const char*, const char*, const char*> aCases[] = {
        {"<P></P>", nullptr, "<P>\n<N/>\n</P>"},
        {"<P>text</P>", nullptr, "<P>text<N/>\n</P>"},
        {"<P>\n<C/>\n</P>", nullptr, "<P>\n<C/>\n<N/>\n</P>"},
        {"<P>\n<C/>\n<D/>\n</P>", "C", "<P>\n<C/>\n<N/>\n<D/>\n</P>"},
        {"<P><C/> x <D/></P>", "C", "<P><C/><N/>\n x <D/></P>"},
        {"<P/>", nullptr, "<P>\n<N/>\n</P>"},
        {"<P />", nullptr, "<P >\n<N/>\n</P>"},
    };
    for (const auto& [pszDoc, pszChild, pszAfter] : aCases) {
        CXmlDoc doc;
        doc.SetDoc(std::string(pszDoc));
        ASSERT_TRUE(doc.FindElem("P") && (!pszChild || doc.FindChildElem(pszChild))) << pszDoc;
        ASSERT_TRUE(doc.AddChildElem("N")) << pszDoc;
        EXPECT_EQ(doc.GetDoc(), pszAfter) << pszDoc;
        EXPECT_EQ(doc.GetElemTagName(doc.GetChildPos()), "N");
        CheckSameAsParsed(doc);
    }
}

TEST(XmlEdit, SiblingsAtDocumentLevel) {
    CXmlDoc doc;
    doc.SetDoc("<a/>\n<!-- end -->");
    ASSERT_TRUE(doc.FindElem("a"));
    ASSERT_TRUE(doc.AddElem("b", "v"));
    EXPECT_EQ(doc.GetDoc(), "<a/>\n<b>v</b>\n<!-- end -->");
    EXPECT_FALSE(doc.IsWellFormed());  // a root with a sibling
    EXPECT_EQ(doc.GetTagName(), "b");
    doc.ResetPos();
    ASSERT_TRUE(doc.AddElem("c"));  // no main: behind the last one
    EXPECT_EQ(doc.GetDoc(), "<a/>\n<b>v</b>\n<!-- end --><c/>\n");
    CheckSameAsParsed(doc);
}

TEST(XmlEdit, AddElemRefusals) {
    CXmlDoc doc;
    EXPECT_FALSE(doc.AddChildElem("x"));  // no main
    EXPECT_FALSE(doc.AddElem(nullptr) || doc.AddElem(""));
    EXPECT_EQ(doc.GetDoc(), "");
}

TEST(XmlEdit, RefusedEditsLeaveTheText) {
    CXmlDoc doc;
    doc.SetDoc("<r><a/><b><c/></b></r>");
    EXPECT_FALSE(doc.SetAttrib(0, "x", "1"));
    doc.SetPos(2, 4, 0);  // main c is no child of a
    EXPECT_FALSE(doc.AddElem("x"));
    EXPECT_FALSE(doc.SetAttrib(doc.GetMainPos(), nullptr, "1"));
    EXPECT_FALSE(doc.SetAttrib(77, "x", "1"));
    doc.SetPos(0, 9, 0);
    EXPECT_FALSE(doc.AddElem("x"));
    doc.ResetPos();
    ASSERT_TRUE(doc.FindElem());
    ASSERT_TRUE(doc.IntoElem());  // main 0: node type 0
    EXPECT_FALSE(doc.SetAttrib(1, "x", "1"));
    EXPECT_EQ(doc.GetDoc(), "<r><a/><b><c/></b></r>");
}

TEST(XmlEdit, SetAttribWritesDoubleQuotes) {
    const std::tuple<const char*, const char*, const char*, const char*> aCases[] = {
        {"<a b=c/>", "b", "v", "<a b=\"v\">"},  // the bare value was "c/"
        {"<a b='c'/>", "b", "v", "<a b=\"v\"/>"},
        {"<a/>", "n", "1", "<a n=\"1\"/>"},
        {"<a />", "n", "1", "<a n=\"1\" />"},
        {"<a  x='1'  >t</a>", "n", "<&>", "<a  x='1' n=\"&lt;&amp;&gt;\"  >t</a>"},
        {"<a checked>t</a>", "checked", "yes", "<a checked=\"yes\">t</a>"},
        {"<a b=>t</a>", "b", "v", "<a b=\"v\">t</a>"},
        {"<a b = 'c'/>", "b", "", "<a b = \"\"/>"},
    };
    for (const auto& [pszDoc, pszName, pszValue, pszAfter] : aCases) {
        CXmlDoc doc;
        doc.SetDoc(std::string(pszDoc));
        ASSERT_TRUE(doc.FindElem()) << pszDoc;
        ASSERT_TRUE(doc.SetAttrib(doc.GetMainPos(), pszName, pszValue)) << pszDoc;
        EXPECT_EQ(doc.GetDoc(), pszAfter) << pszDoc;
        EXPECT_EQ(doc.GetAttrib(doc.GetMainPos(), pszName), pszValue) << pszDoc;
        CheckSameAsParsed(doc);
    }
    // A quote outside a value runs to the tag's end in the attribute scan; a new attribute
    // still goes in front of "/>".
    CXmlDoc doc;
    doc.SetDoc("<a 'd/>");
    ASSERT_TRUE(doc.FindElem() && doc.SetAttrib(doc.GetMainPos(), "y", "1"));
    EXPECT_EQ(doc.GetDoc(), "<a 'd y=\"1\"/>");
    CheckSameAsParsed(doc);
}

TEST(XmlEdit, SetData) {
    const std::tuple<const char*, const char*, uint32_t, const char*> aCases[] = {
        {"<r><a>x</a></r>", "", 0, "<r><a></a></r>"},
        {"<r><a>x</y>z</a></r>", "ok", 0, "<r><a>ok</a></r>"},  // clears the ill-formed mark
        {"<r><a></r>", "t", 0, "<r><a>t</r>"},
    };
    for (const auto& [pszDoc, pszValue, nFlags, pszAfter] : aCases) {
        CXmlDoc doc;
        doc.SetDoc(std::string(pszDoc));
        ASSERT_TRUE(doc.FindElem("r") && doc.FindChildElem("a"));
        uint32_t iA = doc.GetChildPos();
        ASSERT_TRUE(doc.SetData(iA, pszValue, nFlags)) << pszDoc;
        EXPECT_EQ(doc.GetDoc(), pszAfter) << pszDoc;
        EXPECT_EQ(doc.GetChildPos(), iA);
        EXPECT_EQ(doc.GetData(iA), pszValue) << pszDoc;
        EXPECT_FALSE(doc.GetRecord(iA).Has(kElemIllFormed)) << pszDoc;
        if (!doc.GetRecord(iA).Has(kElemUnended)) {
            CheckSameAsParsed(doc);
        }
        EXPECT_FALSE(doc.SetData(doc.GetMainPos(), "x"));  // r has children
        EXPECT_FALSE(doc.SetData(0, "x"));
        EXPECT_EQ(doc.GetDoc(), pszAfter) << pszDoc;
    }
}

}  // namespace
