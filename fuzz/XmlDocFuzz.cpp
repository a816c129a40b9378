// Any text as an XML document: parsed, walked and edited as the bytes of its first line say,
// written back and parsed again. The index must be sound after each step, and on a document
// that parsed well formed with plain tags, the edited index must be the one that parsing its
// text gives.
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "FuzzKit.h"
#include "xml/XmlDoc.h"
#include "xml/XmlIndexCheck.h"

namespace {

constexpr size_t kMaxSteps = 64;

const char* const kPaths[] = {nullptr, "a",   "*",         "//*",       "/r/a", "a[2]",
                              "a[@x]", "b/c", "a[@x='1']", "//a[@x=1]", "[",    "a/@x",
                              "",      "a b", "/",         "a[0]"};
const char* const kValues[] = {"", "v", "<&>\"'", "]]>", "&amp;", "a\nb", "\xC3\xA9", "&#x41;"};

uint32_t If(bool bOn, uint32_t nFlag) {
    return bOn ? nFlag : 0;
}

void Check(const CXmlDoc& doc, bool bAsParsed) {
    if (bAsParsed)
        CheckSameAsParsed(doc);
    else
        CheckIndex(doc);
    if (::testing::Test::HasFailure())
        abort();
}

// One step: the low four bits choose what, the high four bits with what. False after an edit
// that may leave markup which parses otherwise: an element without end tag or name.
bool Step(CXmlDoc& doc, uint8_t op) {
    const unsigned arg = op >> 4;
    const char* value = kValues[arg & 7];
    const char* data = arg & 8 ? nullptr : value;
    const uint32_t pos = arg < 12 ? doc.GetMainPos() : arg == 12 ? 0 : doc.GetRecordCount() + arg;
    // Values are kept as they stand only where they are references.
    const uint32_t refs = If((arg & 8) && ((arg & 7) == 4 || (arg & 7) == 7), XmlKeepRefs);
    const uint32_t flags =
        If(arg & 1, XmlCData) | If(arg & 2, XmlNoLines) | If(arg & 4, XmlInsertBefore) | refs;
    // clang-format off
    switch (op & 15) {
        case 0: doc.FindElem(kPaths[arg]); break;
        case 1: doc.FindChildElem(kPaths[arg]); break;
        case 2: doc.IntoElem(); break;
        case 3: doc.OutOfElem(); break;
        case 4: doc.FindPrevElem(arg & 1 ? "a" : nullptr) || doc.GetTagName().empty(); break;
        case 5: doc.SetPos(arg & 1 ? pos : doc.GetParentPos(), pos, arg & 2 ? pos : 0); break;
        case 6: doc.GetData(pos) + doc.GetChildData() + doc.GetSubDoc(pos); break;
        case 7: doc.GetAttrib(pos, "x") + doc.GetAttribName(int(arg) - 1); break;
        case 8: doc.GetElemPath(); doc.SavePos(arg & 1 ? "s" : "", int(arg >> 2)); break;
        case 9: doc.RestorePos(arg & 1 ? "s" : "", int(arg >> 2)); break;
        case 10:
            doc.AddElem(arg == 15 ? "" : "n", data, flags | If(arg == 13, XmlNoEndTag));
            return arg != 13 && arg != 15;
        case 11: doc.AddChildElem("k", data, flags | If(arg & 8, XmlSpaceBeforeEnd)); break;
        case 12: doc.AddElem("m", data, flags | XmlChild | If(arg & 8, XmlReplace)); break;
        case 13: doc.SetAttrib(pos, arg & 1 ? "x" : "y", value, refs); break;
        case 14: doc.SetData(pos, value, flags & (XmlCData | XmlKeepRefs)); break;
        default: doc.ResetPos(); break;
    }
    // clang-format on
    return true;
}

// Whether a start tag is plain markup: a name, then attributes as name="value" or
// name='value', then ">" or "/>". Only then does the text of an edit read back as the index
// says: edits keep odd tags odd (a quote in a name makes it read shorter, "//>"
// stays self-ended when "<P/>" opens), and parsing them again gives another index.
bool PlainTag(std::string_view t) {
    size_t i = 1;
    auto skip = [&](auto is) {
        const size_t from = i;
        while (i < t.size() && is(static_cast<unsigned char>(t[i])))
            ++i;
        return i > from;
    };
    auto nameChar = [](unsigned char c) { return isalnum(c) || strchr("_-.:", c); };
    auto blank = [](unsigned char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
    if (!skip(nameChar))
        return false;
    while (true) {
        const bool bGap = skip(blank);
        if (i < t.size() && (t[i] == '/' || t[i] == '>'))
            break;
        if (!bGap || !skip(nameChar))
            return false;
        skip(blank);
        if (i >= t.size() || t[i++] != '=')
            return false;
        skip(blank);
        if (i >= t.size() || (t[i] != '"' && t[i] != '\''))
            return false;
        const size_t close = t.find(t[i], i + 1);
        if (close == std::string_view::npos || t.substr(i, close - i).find('<') != t.npos)
            return false;
        i = close + 1;
    }
    return t.substr(i) == "/>" || t.substr(i) == ">";
}

bool PlainTags(const CXmlDoc& doc) {
    const std::string text = doc.GetDoc();
    for (uint32_t i = 1; i < doc.GetRecordCount(); ++i) {
        const ElemPos& e = doc.GetRecord(i);
        if (!PlainTag(std::string_view(text).substr(e.nStart, e.StartTagLen())))
            return false;
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view input = AsText(data, size);
    const size_t lineEnd = input.find('\n');
    const std::string_view steps =
        lineEnd == std::string_view::npos ? std::string_view() : input.substr(0, lineEnd);
    CXmlDoc doc;
    const bool bWellFormed = doc.SetDoc(std::string(input.substr(steps.size())));
    Check(doc, false);
    bool bAsParsed = bWellFormed && PlainTags(doc);
    // Each step checks the whole index: a bound on the steps keeps an input's time linear.
    for (char op : steps.substr(0, kMaxSteps)) {
        bAsParsed = Step(doc, static_cast<uint8_t>(op)) && bAsParsed;
        Check(doc, bAsParsed && (op & 15) >= 10 && (op & 15) <= 14);
    }
    CXmlDoc again;
    again.SetDoc(doc.GetDoc());
    Check(again, false);
    return 0;
}
