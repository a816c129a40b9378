#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/tree.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <random>
#include <string>

#include "xml/XmlDoc.h"
#include "xml/XmlTree.h"

// CXmlDoc against an independent parser: generated well-formed documents must read the same
// through CXmlDoc navigation as through libxml2. The generator keeps to XML that both read alike:
// no literal tab, CR or LF in attribute values (the other parser normalises them), no CR at all,
// no white space alone between markup in a leaf (CXmlDoc's GetData passes it over).
namespace {

std::string XmlString(xmlChar* p) {
    std::string s = p ? reinterpret_cast<const char*>(p) : "";
    xmlFree(p);
    return s;
}

XmlTreeNode LibTree(xmlNode* pElem) {
    XmlTreeNode n;
    n.sName = reinterpret_cast<const char*>(pElem->name);
    for (xmlAttr* pAttr = pElem->properties; pAttr; pAttr = pAttr->next) {
        n.aAttribs.emplace_back(reinterpret_cast<const char*>(pAttr->name),
                                XmlString(xmlNodeGetContent(reinterpret_cast<xmlNode*>(pAttr))));
    }
    for (xmlNode* p = pElem->children; p; p = p->next) {
        if (p->type == XML_ELEMENT_NODE) {
            n.aChildren.push_back(LibTree(p));
        }
    }
    if (n.aChildren.empty()) {
        n.sText = XmlString(xmlNodeGetContent(pElem));
    }
    return n;
}

bool LibRead(const std::string& s, XmlTreeNode& tree) {
    const int nOptions = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING;
    std::unique_ptr<xmlDoc, void (*)(xmlDoc*)> pDoc(
        xmlReadMemory(s.data(), int(s.size()), "generated.xml", nullptr, nOptions), xmlFreeDoc);
    if (!pDoc) {
        return false;
    }
    tree = LibTree(xmlDocGetRootElement(pDoc.get()));
    return true;
}

XmlTreeNode OurTree(const std::string& s, bool& bWellFormed) {
    CXmlDoc doc;
    bWellFormed = doc.SetDoc(s);
    doc.FindElem();
    return ReadTree(doc);
}

// Random documents and trees; the same generator for both tests.
class Generator {
  public:
    explicit Generator(uint32_t nSeed) : m_rng(nSeed) {}

    size_t Pick(size_t n) { return std::uniform_int_distribution<size_t>(0, n - 1)(m_rng); }
    bool OneIn(size_t n) { return Pick(n) == 0; }
    template <class List>
    std::string Any(const List& a) {
        return std::data(a)[Pick(std::size(a))];
    }
    // Up to n - 1 pieces of the list.
    template <class List>
    std::string Some(const List& a, size_t n) {
        std::string s;
        for (size_t i = Pick(n); i > 0; --i) {
            s += Any(a);
        }
        return s;
    }

    // Text as it stands in an attribute value quoted by q.
    std::string AttribValue(char q) {
        static const char* const aPieces[] = {
            "v",     "1",    " ",        "x y",    ">",     "/",        "&amp;",
            "&lt;",  "&gt;", "&quot;",   "&apos;", "&#65;", "&#x20AC;", "&#128512;",
            "&#10;", "&#9;", "\xC3\xA9", "=",      "]]>",   "?"};
        return Some(aPieces, 5) + (!OneIn(3) ? "" : q == '"' ? "'" : "\"");
    }

    // Text of a leaf: no ']' so that no "]]>" forms, never white space alone.
    std::string Text() {
        static const char* const aPieces[] = {
            "t",    "text", " ",      "\n",    "\t",     ">",       "&amp;",
            "&lt;", "&gt;", "&quot;", "&#65;", "&#x41;", "&#8364;", "\xE2\x82\xAC",
            "'",    "\"",   "/",      "=",     "?",      "!",       "-"};
        return Some(aPieces, 6) + "t";
    }

    std::string Misc() {
        const std::string aMisc[] = {"<!-- c" + std::string(OneIn(2) ? " <x> & " : "") + " -->",
                                     "<?pi data" + std::string(OneIn(2) ? " <&> " : "") + "?>",
                                     OneIn(2) ? "\n" : "  "};
        return Any(aMisc);
    }

    // An element of the given name, or of a random one.
    std::string Element(int nDepth, std::string sName = "") {
        static const char* const aNames[] = {"a",  "b",  "Adapter",   "PhysicalDrive", "x.y", "x-y",
                                             "_z", "n1", "a\xC3\xA9", "Status",        "A"};
        static const char* const aAttribs[] = {"id",  "Nr", "Type",          "x",
                                               "y.z", "_w", "NrOfProperties"};
        sName = sName.empty() ? Any(aNames) : sName;
        std::string s = "<" + sName;
        for (size_t i = 0, n = Pick(4), nFirst = Pick(std::size(aAttribs)); i < n; ++i) {
            char q = OneIn(2) ? '"' : '\'';
            s +=
                std::string(OneIn(4) ? "\n  " : " ") + aAttribs[(nFirst + i) % std::size(aAttribs)];
            s += (OneIn(5) ? " = " : "=") + std::string(1, q) + AttribValue(q) + q;
        }
        s += OneIn(5) ? (OneIn(2) ? " " : "\n") : "";
        if (nDepth > 0 && OneIn(5)) {
            return s + "/>";
        }
        s += ">";
        if (nDepth >= 6 || (nDepth > 0 && OneIn(3))) {
            // A leaf: text, CDATA, comments and processing instructions.
            static const char* const aCData[] = {"", "x", "<a>&amp;", " ] ]] ", "\n"};
            for (size_t n = Pick(4); n > 0; --n) {
                const size_t nKind = Pick(4);
                s += nKind == 0 ? "<![CDATA[" + Any(aCData) + "]]>" : nKind == 1 ? Misc() : Text();
                s += s.back() == '>' ? "" : "t";  // no white space alone
            }
        } else {
            // Children, half of them of one name.
            const std::string sSame = Any(aNames);
            for (size_t n = Pick(6); n > 0; --n) {
                s += OneIn(3) ? Misc() : "";
                s += Element(nDepth + 1, OneIn(2) ? sSame : "");
            }
            s += OneIn(3) ? "\n" : "";
        }
        return s + "</" + sName + (OneIn(6) ? " >" : ">");
    }

    std::string Document() {
        std::string s = OneIn(2) ? "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" : "";
        s += OneIn(3) ? Misc() : "";
        std::string sRoot = Element(0);
        if (OneIn(4)) {
            std::string sName = sRoot.substr(1, sRoot.find_first_of(" \n/>", 1) - 1);
            s += OneIn(2)
                     ? "<!DOCTYPE " + sName + ">\n"
                     : "<!DOCTYPE " + sName + " [\n<!-- d -->\n<!ELEMENT " + sName + " ANY>\n]>\n";
        }
        return s + sRoot + (OneIn(3) ? Misc() : "");
    }

    // A value as AddElem, SetAttrib or SetData take it; no tab or line feed in attributes.
    std::string Value(bool bAttrib) {
        static const char* const aPieces[] = {"a", "Z",   "0",    " ",  "<",     ">",     "&", "\"",
                                              "'", "]]>", "]]",   "]",  "&amp;", "&#65;", "é", "€",
                                              "😀", "/>",  "<!--", "?>", "\n",    "\t"};
        std::string s = Some(aPieces, 6);
        s.erase(std::remove_if(s.begin(), s.end(),
                               [bAttrib](char c) { return bAttrib && (c == '\n' || c == '\t'); }),
                s.end());
        return s;
    }

    XmlTreeNode Tree(int nDepth) {
        static const char* const aNames[] = {"Adapter", "Port", "PhysicalDrive", "Status", "e"};
        static const char* const aAttribs[] = {"Nr", "Type", "Name", "k"};
        XmlTreeNode n;
        n.sName = Any(aNames);
        for (size_t i = 0, c = Pick(4), nFirst = Pick(std::size(aAttribs)); i < c; ++i) {
            n.aAttribs.emplace_back(aAttribs[(nFirst + i) % std::size(aAttribs)], Value(true));
        }
        if (nDepth < 4 && Pick(3)) {
            for (size_t c = 1 + Pick(4); c > 0; --c) {
                n.aChildren.push_back(Tree(nDepth + 1));
            }
        } else {
            n.sText = Value(false);
        }
        return n;
    }

    // Adds n behind the main position, the way an export builds its tree.
    void Build(CXmlDoc& doc, const XmlTreeNode& n) {
        bool bLeaf = n.aChildren.empty();
        uint32_t nCData = Pick(3) == 0 ? uint32_t(XmlCData) : 0u;
        bool bValueNow = bLeaf && Pick(2);
        ASSERT_TRUE(doc.AddElem(n.sName.c_str(), bValueNow ? n.sText.c_str() : nullptr, nCData));
        for (const auto& a : n.aAttribs) {
            ASSERT_TRUE(doc.SetAttrib(doc.GetMainPos(), a.first.c_str(), a.second.c_str()));
        }
        if (bLeaf && !bValueNow) {
            ASSERT_TRUE(doc.SetData(doc.GetMainPos(), n.sText.c_str(), nCData));
        }
        if (!bLeaf) {
            ASSERT_TRUE(doc.IntoElem());
            for (const auto& c : n.aChildren) {
                Build(doc, c);
            }
            ASSERT_TRUE(doc.OutOfElem());
        }
    }

  private:
    std::mt19937 m_rng;
};

TEST(XmlDifferential, GeneratedDocumentsReadAsLibxml2ReadsThem) {
    Generator gen(2024);
    for (int i = 0; i < 5000 && !HasFailure(); ++i) {
        std::string s = gen.Document();
        XmlTreeNode lib;
        ASSERT_TRUE(LibRead(s, lib)) << "generator made XML that libxml2 refuses:\n" << s;
        bool bWellFormed = false;
        XmlTreeNode ours = OurTree(s, bWellFormed);
        EXPECT_TRUE(bWellFormed) << s;
        EXPECT_EQ(ours, lib) << s;
    }
}

// Random values put in with AddElem, SetAttrib and SetData read back as they went in, through
// CXmlDoc and through libxml2.
TEST(XmlRoundTrip, BuiltDocumentsReadBackAndAreWellFormedForLibxml2) {
    Generator builder(7);
    for (int i = 0; i < 1500 && !HasFailure(); ++i) {
        XmlTreeNode want = builder.Tree(0);
        CXmlDoc doc;
        if (i % 2) {
            doc.SetDoc("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
        }
        builder.Build(doc, want);
        ASSERT_TRUE(doc.IsWellFormed()) << doc.GetDoc();
        doc.ResetPos();
        ASSERT_TRUE(doc.FindElem());
        EXPECT_EQ(ReadTree(doc), want) << doc.GetDoc();
        bool bWellFormed = false;
        EXPECT_EQ(OurTree(doc.GetDoc(), bWellFormed), want) << doc.GetDoc();
        EXPECT_TRUE(bWellFormed);
        XmlTreeNode lib;
        ASSERT_TRUE(LibRead(doc.GetDoc(), lib)) << "libxml2 refuses:\n" << doc.GetDoc();
        EXPECT_EQ(lib, want) << doc.GetDoc();
    }
}

}  // namespace
