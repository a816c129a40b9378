#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/tree.h>

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

struct XmlDocFree {
    void operator()(xmlDoc* p) const { xmlFreeDoc(p); }
};
using XmlDocPtr = std::unique_ptr<xmlDoc, XmlDocFree>;

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
    XmlDocPtr pDoc(xmlReadMemory(s.data(), int(s.size()), "generated.xml", nullptr,
                                 XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING));
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

class Generator {
  public:
    explicit Generator(uint32_t nSeed) : m_rng(nSeed) {}

    size_t Pick(size_t n) { return std::uniform_int_distribution<size_t>(0, n - 1)(m_rng); }
    bool OneIn(size_t n) { return Pick(n) == 0; }
    template <size_t N>
    const char* Any(const char* const (&a)[N]) {
        return a[Pick(N)];
    }

    std::string Name() {
        static const char* const aNames[] = {"a",  "b",  "Adapter",   "PhysicalDrive", "x.y", "x-y",
                                             "_z", "n1", "a\xC3\xA9", "Status",        "A"};
        return Any(aNames);
    }

    // Text as it stands in an attribute value quoted by q.
    std::string AttribValue(char q) {
        static const char* const aPieces[] = {
            "v",     "1",    " ",        "x y",    ">",     "/",        "&amp;",
            "&lt;",  "&gt;", "&quot;",   "&apos;", "&#65;", "&#x20AC;", "&#128512;",
            "&#10;", "&#9;", "\xC3\xA9", "=",      "]]>",   "?"};
        std::string s;
        for (size_t n = Pick(5); n > 0; --n) {
            s += Any(aPieces);
        }
        s += q == '"' ? (OneIn(3) ? "'" : "") : (OneIn(3) ? "\"" : "");
        return s;
    }

    // Text of a leaf: no ']' so that no "]]>" forms, never white space alone.
    std::string Text() {
        static const char* const aPieces[] = {
            "t",    "text", " ",      "\n",    "\t",     ">",       "&amp;",
            "&lt;", "&gt;", "&quot;", "&#65;", "&#x41;", "&#8364;", "\xE2\x82\xAC",
            "'",    "\"",   "/",      "=",     "?",      "!",       "-"};
        std::string s;
        for (size_t n = Pick(6); n > 0; --n) {
            s += Any(aPieces);
        }
        return s + "t";
    }

    std::string Misc() {
        switch (Pick(3)) {
            case 0:
                return "<!-- c" + std::string(OneIn(2) ? " <x> & " : "") + " -->";
            case 1:
                return "<?pi data" + std::string(OneIn(2) ? " <&> " : "") + "?>";
            default:
                return OneIn(2) ? "\n" : "  ";
        }
    }

    std::string Element(int nDepth) {
        std::string sName = Name();
        std::string s = "<" + sName;
        static const char* const aAttribs[] = {"id",  "Nr", "Type",          "x",
                                               "y.z", "_w", "NrOfProperties"};
        size_t nFirst = Pick(std::size(aAttribs));
        for (size_t i = 0, n = Pick(4); i < n; ++i) {
            char q = OneIn(2) ? '"' : '\'';
            s += OneIn(4) ? "\n  " : " ";
            s += aAttribs[(nFirst + i) % std::size(aAttribs)];
            s += OneIn(5) ? " = " : "=";
            s += q + AttribValue(q) + q;
        }
        if (OneIn(5)) {
            s += OneIn(2) ? " " : "\n";
        }
        if (nDepth > 0 && OneIn(5)) {
            return s + "/>";
        }
        s += ">";
        if (nDepth >= 6 || (nDepth > 0 && OneIn(3))) {
            // A leaf: text, CDATA, comments and processing instructions.
            for (size_t n = Pick(4); n > 0; --n) {
                switch (Pick(4)) {
                    case 0:
                        s += "<![CDATA[" + std::string(Any({"", "x", "<a>&amp;", " ] ]] ", "\n"})) +
                             "]]>";
                        break;
                    case 1:
                        s += Misc();
                        if (s.back() != '>') {
                            s += "t";  // no white space alone
                        }
                        break;
                    default:
                        s += Text();
                        break;
                }
            }
        } else {
            std::string sSame = Name();
            for (size_t n = Pick(6); n > 0; --n) {
                if (OneIn(3)) {
                    s += Misc();
                }
                std::string sChild = Element(nDepth + 1);
                if (OneIn(2)) {
                    // Same-named siblings.
                    sChild = "<" + sSame + sChild.substr(sChild.find_first_of(" />", 1));
                    size_t nEnd = sChild.rfind("</");
                    if (sChild.back() == '>' && sChild[sChild.size() - 2] != '/' &&
                        nEnd != std::string::npos) {
                        sChild = sChild.substr(0, nEnd) + "</" + sSame + ">";
                    }
                }
                s += sChild;
            }
            if (OneIn(3)) {
                s += "\n";
            }
        }
        return s + "</" + sName + (OneIn(6) ? " >" : ">");
    }

    std::string Document() {
        std::string s;
        if (OneIn(2)) {
            s += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
        }
        if (OneIn(3)) {
            s += Misc();
        }
        std::string sRoot = Element(0);
        if (OneIn(4)) {
            std::string sName = sRoot.substr(1, sRoot.find_first_of(" \n/>", 1) - 1);
            s += OneIn(2)
                     ? "<!DOCTYPE " + sName + ">\n"
                     : "<!DOCTYPE " + sName + " [\n<!-- d -->\n<!ELEMENT " + sName + " ANY>\n]>\n";
        }
        s += sRoot;
        if (OneIn(3)) {
            s += Misc();
        }
        return s;
    }

  private:
    const char* Any(std::initializer_list<const char*> a) { return a.begin()[Pick(a.size())]; }

    std::mt19937 m_rng;
};

TEST(XmlDifferential, GeneratedDocumentsReadAsLibxml2ReadsThem) {
    Generator gen(2024);
    int nCompared = 0;
    for (int i = 0; i < 5000 && !HasFailure(); ++i) {
        std::string s = gen.Document();
        XmlTreeNode lib;
        ASSERT_TRUE(LibRead(s, lib)) << "generator made XML that libxml2 refuses:\n" << s;
        bool bWellFormed = false;
        XmlTreeNode ours = OurTree(s, bWellFormed);
        EXPECT_TRUE(bWellFormed) << s;
        EXPECT_EQ(ours, lib) << s;
        ++nCompared;
    }
    EXPECT_EQ(nCompared, 5000);
}

// Random values put in with AddElem, SetAttrib and SetData read back as they went in, through
// CXmlDoc and through libxml2.
class TreeBuilder {
  public:
    explicit TreeBuilder(uint32_t nSeed) : m_rng(nSeed) {}

    size_t Pick(size_t n) { return std::uniform_int_distribution<size_t>(0, n - 1)(m_rng); }

    std::string Value(bool bAttrib) {
        static const char* const aPieces[] = {"a", "Z",   "0",    " ",  "<",     ">",     "&", "\"",
                                              "'", "]]>", "]]",   "]",  "&amp;", "&#65;", "é", "€",
                                              "😀", "/>",  "<!--", "?>", "\n",    "\t"};
        std::string s;
        for (size_t n = Pick(6); n > 0; --n) {
            std::string sPiece = aPieces[Pick(std::size(aPieces))];
            if (bAttrib && (sPiece == "\n" || sPiece == "\t")) {
                continue;
            }
            s += sPiece;
        }
        return s;
    }

    XmlTreeNode Tree(int nDepth) {
        static const char* const aNames[] = {"Adapter", "Port", "PhysicalDrive", "Status", "e"};
        static const char* const aAttribs[] = {"Nr", "Type", "Name", "k"};
        XmlTreeNode n;
        n.sName = aNames[Pick(std::size(aNames))];
        size_t nFirst = Pick(std::size(aAttribs));
        for (size_t i = 0, c = Pick(4); i < c; ++i) {
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

TEST(XmlRoundTrip, BuiltDocumentsReadBackAndAreWellFormedForLibxml2) {
    TreeBuilder builder(7);
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
