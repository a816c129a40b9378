#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <string>
#include <vector>

#include "xml/XmlDoc.h"
#include "xml/XmlIndexCheck.h"

// Random markup and mutated documents must never take a read or write out of the text or the
// index (the address sanitizer build watches that), must leave a sound index, and never hang.
namespace {

// The pieces of a text separated by '|'.
std::vector<std::string> Split(const std::string& s) {
    std::vector<std::string> pieces(1);
    for (char c : s) {
        if (c == '|') {
            pieces.emplace_back();
        } else {
            pieces.back() += c;
        }
    }
    return pieces;
}

class Fuzzer {
  public:
    explicit Fuzzer(uint32_t nSeed) : m_rng(nSeed) {}

    size_t Pick(size_t n) { return std::uniform_int_distribution<size_t>(0, n - 1)(m_rng); }
    bool OneIn(size_t n) { return Pick(n) == 0; }

    // Pieces of markup and text; the empty piece stands for a NUL byte.
    std::string RandomMarkup() {
        static const std::vector<std::string> aPieces = Split(
            "<|>|</|/>|<!--|-->|<![CDATA[|]]>|<?|?>|<!DOCTYPE|<!ELEMENT|<!X|[|]|'|\"|=|==| |\n|\t|"
            "a|b|ab|&amp;|&#|&#x|;|&|65|é||<a>|</a>|<b x='1'>|</b>|<c/>|<a b=c/>|<1>|/|?|!|-");
        std::string s;
        for (size_t n = Pick(40); n > 0; --n) {
            const std::string& piece = aPieces[Pick(aPieces.size())];
            s += piece.empty() ? std::string(1, '\0') : piece;
        }
        return s;
    }

    std::string Mutate(std::string s) {
        for (size_t n = 1 + Pick(4); n > 0 && !s.empty(); --n) {
            const size_t i = Pick(s.size()), nKind = Pick(3);
            if (nKind == 0) {
                s.erase(i, 1 + Pick(3));
            } else if (nKind == 1) {
                s.insert(i, 1, "<>/=\"'&;! ?[]-"[Pick(14)]);
            } else {
                s[i] = char(Pick(256));  // any byte
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

    // None, any record or a few past the end, the largest numbers, or main.
    uint32_t RandomPos(const CXmlDoc& doc) {
        const uint32_t aPos[] = {0, uint32_t(Pick(size_t(doc.GetRecordCount()) + 3)),
                                 0xFFFFFFFF - uint32_t(Pick(3)), doc.GetMainPos()};
        return aPos[Pick(4)];
    }

    // One random operation of any kind on the document; edits twice as often as the others.
    void Operate(CXmlDoc& doc) {
        static const char* const aValues[] = {"", "v", "<&>\"'", "]]>", "&amp;", "a\nb", "é"};
        const char* pszValue = aValues[Pick(std::size(aValues))];
        const char* pszData = OneIn(2) ? nullptr : pszValue;
        const std::string sPath = RandomPath();
        const char* pszPath = OneIn(10) ? nullptr : sPath.c_str();
        const std::function<void()> aOps[] = {
            [&] { doc.FindElem(pszPath); },
            [&] { doc.FindChildElem(pszPath); },
            [&] { doc.FindPrevElem(OneIn(2) ? nullptr : "a"); },
            [&] { doc.IntoElem(); },
            [&] { doc.OutOfElem(); },
            [&] { doc.ResetPos(); },
            [&] { doc.SetPos(RandomPos(doc), RandomPos(doc), RandomPos(doc)); },
            [&] {
                doc.GetData(RandomPos(doc)) + doc.GetChildData() + doc.GetSubDoc(RandomPos(doc));
            },
            [&] { doc.GetAttrib(RandomPos(doc), "x") + doc.GetAttribName(int(Pick(4)) - 1); },
            [&] { doc.GetElemPath() + doc.GetTagName() + doc.GetDoc(); },
            [&] { doc.SavePos(OneIn(2) ? "" : "s", int(Pick(3))) || doc.IsWellFormed(); },
            [&] { doc.RestorePos(OneIn(2) ? "" : "s", int(Pick(3))); },
            [&] { doc.AddElem(OneIn(5) ? "" : "n", pszData, uint32_t(Pick(0x8000)) & 0x701F); },
            [&] { doc.AddChildElem("k", pszData, uint32_t(Pick(0x8000)) & 0x301F); },
            [&] {
                doc.SetAttrib(RandomPos(doc), OneIn(2) ? "x" : "y", pszValue,
                              uint32_t(Pick(2) * 8));
            },
            [&] { doc.SetData(RandomPos(doc), pszValue, uint32_t(Pick(16)) & 0x9); },
        };
        const size_t i = Pick(std::size(aOps) + 4);
        aOps[i < std::size(aOps) ? i : i - 4]();
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
        const std::function<void()> aSteps[] = {
            [&] { doc.FindElem(fuzz.OneIn(2) ? nullptr : "//*"); },
            [&] { doc.FindChildElem(); },
            [&] { doc.IntoElem(); },
            [&] { doc.OutOfElem(); },
            [&] {
                doc.AddElem("n", fuzz.OneIn(2) ? nullptr : "v<",
                            uint32_t(fuzz.Pick(0x8000)) & 0x2007);
            },
            [&] { doc.SetAttrib(doc.GetMainPos(), fuzz.OneIn(2) ? "x" : "z", "q'\""); },
            [&] { doc.SetData(doc.GetMainPos(), "d&", uint32_t(fuzz.Pick(2))); },
        };
        for (int j = 0; j < 30; ++j) {
            aSteps[fuzz.Pick(std::size(aSteps))]();
            CheckSameAsParsed(doc);
        }
    }
}

}  // namespace
