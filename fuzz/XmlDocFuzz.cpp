// Any text as an XML document: parsed, walked and edited as the bytes of its first line say,
// written back and parsed again. The index must be sound after each step, and on a document
// that parsed well formed, the edited index must be the one that parsing its text gives.
#include <cstdlib>
#include <cstring>

#include "FuzzKit.h"
#include "xml/XmlDoc.h"
#include "xml/XmlIndexCheck.h"

namespace {

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

// Whether every element's name, as navigation and edits read it, is the whole name that the
// parser matches end tags against. A name with a quote or '=' in it is read shorter, so an
// end tag that an edit writes from it closes nothing when the text is parsed again.
bool NamesReadAlike(const CXmlDoc& doc) {
    const std::string& text = doc.GetDoc();
    for (uint32_t i = 1; i < doc.GetRecordCount(); ++i) {
        const size_t end = doc.GetRecord(i).nStart + 1 + doc.GetElemTagName(i).size();
        if (end < text.size() && !memchr(" \t\r\n/>", text[end], 6))
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
    bool bAsParsed = bWellFormed && NamesReadAlike(doc);
    for (char op : steps) {
        bAsParsed = Step(doc, static_cast<uint8_t>(op)) && bAsParsed;
        Check(doc, bAsParsed && (op & 15) >= 10 && (op & 15) <= 14);
    }
    CXmlDoc again;
    again.SetDoc(doc.GetDoc());
    Check(again, false);
    return 0;
}
