#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "xml/XmlDoc.h"
#include "xml/XmlIndexCheck.h"

// Random bytes and random markup must never take a read or write out of the text or the index
// (the address sanitizer build watches that), must leave a sound index, and must never hang.
namespace {

class Fuzzer {
  public:
    explicit Fuzzer(uint32_t nSeed) : m_rng(nSeed) {}

    size_t Pick(size_t n) { return std::uniform_int_distribution<size_t>(0, n - 1)(m_rng); }
    bool OneIn(size_t n) { return Pick(n) == 0; }

    std::string RandomBytes() {
        std::string s(Pick(120), '\0');
        for (char& c : s) {
            c = char(Pick(256));
        }
        return s;
    }

    std::string RandomMarkup() {
        static const char* const aPieces[] = {"<",         ">",         "</",
                                              "/>",        "<!--",      "-->",
                                              "<![CDATA[", "]]>",       "<?",
                                              "?>",        "<!DOCTYPE", "<!ELEMENT",
                                              "<!X",       "[",         "]",
                                              "'",         "\"",        "=",
                                              "==",        " ",         "\n",
                                              "\t",        "a",         "b",
                                              "ab",        "&amp;",     "&#",
                                              "&#x",       ";",         "&",
                                              "65",        "é",         "" /* a NUL byte */,
                                              "<a>",       "</a>",      "<b x='1'>",
                                              "</b>",      "<c/>",      "<a b=c/>",
                                              "<1>",       "/",         "?",
                                              "!",         "-"};
        std::string s;
        for (size_t n = Pick(40); n > 0; --n) {
            const char* p = aPieces[Pick(std::size(aPieces))];
            s += *p ? std::string(p) : std::string(1, '\0');
        }
        return s;
    }

    std::string Mutate(std::string s) {
        for (size_t n = 1 + Pick(4); n > 0 && !s.empty(); --n) {
            size_t i = Pick(s.size());
            switch (Pick(3)) {
                case 0:
                    s.erase(i, 1 + Pick(3));
                    break;
                case 1:
                    s.insert(i, 1, "<>/=\"'&;! ?[]-"[Pick(14)]);
                    break;
                default:
                    s[i] = char(Pick(256));
                    break;
            }
        }
        return s;
    }

    std::string RandomPath() {
        static const char* const aLeads[] = {"", "", "", "/", "//"};
        static const char* const aNames[] = {"a", "b", "c", "*", "x", "a b", ""};
        static const char* const aPreds[] = {
            "",       "",    "",  "[1]", "[2]", "[3]", "[@x]", "[@x='1']", "[@x=\"1\"]",
            "[@x=1]", "[b]", "[", "]",   "[@",  "[0]", "=",    "/@x"};
        if (OneIn(8)) {
            return std::string();
        }
        std::string s = aLeads[Pick(std::size(aLeads))];
        for (size_t n = 1 + Pick(3); n > 0; --n) {
            s += aNames[Pick(std::size(aNames))];
            s += aPreds[Pick(std::size(aPreds))];
            if (n > 1) {
                s += '/';
            }
        }
        return s;
    }

    uint32_t RandomPos(const CXmlDoc& doc) {
        switch (Pick(4)) {
            case 0:
                return 0;
            case 1:
                return uint32_t(Pick(size_t(doc.GetRecordCount()) + 3));
            case 2:
                return 0xFFFFFFFF - uint32_t(Pick(3));
            default:
                return doc.GetMainPos();
        }
    }

    // One random operation of any kind on the document.
    void Operate(CXmlDoc& doc) {
        static const char* const aValues[] = {"", "v", "<&>\"'", "]]>", "&amp;", "a\nb", "é"};
        const char* pszValue = aValues[Pick(std::size(aValues))];
        std::string sPath = RandomPath();
        const char* pszPath = OneIn(10) ? nullptr : sPath.c_str();
        switch (Pick(22)) {
            case 0:
                doc.FindElem(pszPath);
                break;
            case 1:
                doc.FindChildElem(pszPath);
                break;
            case 2:
                doc.FindPrevElem(OneIn(2) ? nullptr : "a");
                break;
            case 3:
                doc.IntoElem();
                break;
            case 4:
                doc.OutOfElem();
                break;
            case 5:
                doc.ResetPos();
                break;
            case 6:
                doc.SetPos(RandomPos(doc), RandomPos(doc), RandomPos(doc));
                break;
            case 7:
                doc.GetData(RandomPos(doc));
                doc.GetChildData();
                break;
            case 8:
                doc.GetAttrib(RandomPos(doc), "x");
                doc.GetAttribName(int(Pick(4)) - 1);
                break;
            case 9:
                doc.GetSubDoc(RandomPos(doc));
                doc.GetElemPath();
                doc.GetTagName();
                break;
            case 10:
                doc.SavePos(OneIn(2) ? "" : "s", int(Pick(3)));
                break;
            case 11:
                doc.RestorePos(OneIn(2) ? "" : "s", int(Pick(3)));
                break;
            case 12:
            case 13:
                doc.AddElem(OneIn(5) ? "" : "n", OneIn(2) ? nullptr : pszValue,
                            uint32_t(Pick(0x8000)) & 0x701F);
                break;
            case 14:
            case 15:
                doc.AddChildElem("k", OneIn(2) ? nullptr : pszValue,
                                 uint32_t(Pick(0x8000)) & 0x301F);
                break;
            case 16:
            case 17:
                doc.SetAttrib(RandomPos(doc), OneIn(2) ? "x" : "y", pszValue,
                              uint32_t(Pick(16)) & 0x8);
                break;
            case 18:
            case 19:
                doc.SetData(RandomPos(doc), pszValue, uint32_t(Pick(16)) & 0x9);
                break;
            default:
                doc.GetDoc();
                doc.IsWellFormed();
                break;
        }
    }

  private:
    std::mt19937 m_rng;
};

void Exercise(Fuzzer& fuzz, const std::string& sDoc) {
    CXmlDoc doc;
    doc.SetDoc(sDoc);
    CheckIndex(doc);
    for (int i = 0; i < 40; ++i) {
        fuzz.Operate(doc);
    }
    CheckIndex(doc);
}

TEST(XmlFuzz, RandomBytes) {
    Fuzzer fuzz(1);
    for (int i = 0; i < 8000 && !HasFailure(); ++i) {
        Exercise(fuzz, fuzz.RandomBytes());
    }
}

TEST(XmlFuzz, RandomMarkup) {
    Fuzzer fuzz(2);
    for (int i = 0; i < 15000 && !HasFailure(); ++i) {
        Exercise(fuzz, fuzz.RandomMarkup());
    }
}

TEST(XmlFuzz, MutatedDocuments) {
    const std::string sBase =
        "<?xml version=\"1.0\"?>\n<!DOCTYPE r [<!ELEMENT r ANY>]>\n"
        "<r x='1'>\n<a x=\"2\" y=z>t&amp;u</a>\n<b><![CDATA[<c>]]><!-- d --><?p q?></b>\n"
        "<a/><c><d x='1'>e</d></c>\n</r>\n";
    Fuzzer fuzz(3);
    for (int i = 0; i < 15000 && !HasFailure(); ++i) {
        Exercise(fuzz, fuzz.Mutate(sBase));
    }
}

TEST(XmlFuzz, EditsOfWellFormedDocumentsMatchTheirParse) {
    // On well-formed text with plain names, every edit leaves the index that parsing gives.
    Fuzzer fuzz(4);
    for (int i = 0; i < 1000 && !HasFailure(); ++i) {
        CXmlDoc doc;
        ASSERT_TRUE(doc.SetDoc(std::string("<r>\n<a x='1'>t</a>\n<b/>\n<c><d/>x</c>\n</r>")));
        for (int j = 0; j < 30; ++j) {
            switch (fuzz.Pick(7)) {
                case 0:
                    doc.FindElem(fuzz.OneIn(2) ? nullptr : "//*");
                    break;
                case 1:
                    doc.FindChildElem();
                    break;
                case 2:
                    doc.IntoElem();
                    break;
                case 3:
                    doc.OutOfElem();
                    break;
                case 4:
                    doc.AddElem("n", fuzz.OneIn(2) ? nullptr : "v<",
                                uint32_t(fuzz.Pick(0x8000)) & 0x2007);
                    break;
                case 5:
                    doc.SetAttrib(doc.GetMainPos(), fuzz.OneIn(2) ? "x" : "z", "q'\"");
                    break;
                default:
                    doc.SetData(doc.GetMainPos(), "d&", uint32_t(fuzz.Pick(2)));
                    break;
            }
            CheckSameAsParsed(doc);
        }
    }
}

}  // namespace
