#include "storage/StorageExport.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "storage/TLRaidData.h"
#include "xml/XmlAttribScan.h"

namespace {

constexpr const char* kDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
constexpr const char* kExportRoot = "TLRaidStorageDeviceTree";
constexpr int kExportVersion = 2;
constexpr std::string_view kObjectMark = "NrOfProperties";
// A list of ports under an object is no property: its ports belong to the object itself.
constexpr std::string_view kPortList = "Ports";

// What becomes of a source attribute in the exported element.
enum class AttribAction { kNumber, kKeepName, kTypeElement };

struct AttribRule {
    std::string_view sTag;
    std::string_view sAttrib;
    AttribAction nAction;
};

// Every object's identity ends up in Nr; attributes not named here are dropped. The rules of
// one tag stand together.
constexpr AttribRule kAttribRules[] = {
    {"Adapter", "Nr", AttribAction::kNumber},
    {"Adapter", "Type", AttribAction::kTypeElement},
    {"Port", "Nr", AttribAction::kNumber},
    {"Port", "DeviceNumber", AttribAction::kNumber},
    {"Port", "Type", AttribAction::kTypeElement},
    {"Array", "Nr", AttribAction::kNumber},
    {"PhysicalDrive", "DeviceNumber", AttribAction::kNumber},
    {"LogicalDrive", "LogDriveNumber", AttribAction::kNumber},
    {"Container", "Nr", AttribAction::kNumber},
    {"Container", "Name", AttribAction::kKeepName},
};

constexpr std::string_view kNumberAttrib = "Nr";

// The rules of a tag: a run of the table, or none.
struct TagRules {
    const AttribRule* pBegin = nullptr;
    const AttribRule* pEnd = nullptr;
    bool Empty() const { return pBegin == pEnd; }
};

// The first bytes of the tags with rules: most elements are passed over on their first byte.
constexpr auto kRuleTagStarts = [] {
    std::array<bool, 256> a{};
    for (const AttribRule& rule : kAttribRules) {
        a[static_cast<unsigned char>(rule.sTag[0])] = true;
    }
    return a;
}();

TagRules FindTagRules(std::string_view sTag) {
    TagRules rules;
    if (sTag.empty() || !kRuleTagStarts[static_cast<unsigned char>(sTag[0])]) {
        return rules;
    }
    for (const AttribRule& rule : kAttribRules) {
        if (sTag == rule.sTag) {
            if (rules.Empty()) {
                rules.pBegin = &rule;
            }
            rules.pEnd = &rule + 1;
        } else if (!rules.Empty()) {
            break;
        }
    }
    return rules;
}

const AttribRule* FindRule(const TagRules& rules, std::string_view sAttrib) {
    for (const AttribRule* pRule = rules.pBegin; pRule != rules.pEnd; ++pRule) {
        if (sAttrib == pRule->sAttrib) {
            return pRule;
        }
    }
    return nullptr;
}

// An element is an object when its first NrOfProperties is not empty. Unescaping never
// empties a value, and a name without a value reads as the name itself. A start tag without
// the name anywhere in it is passed over without a scan.
bool IsObject(const CXmlDoc& doc, uint32_t iPos) {
    const ElemPos& elem = doc.GetRecord(iPos);
    const std::string& sText = doc.GetDocText();
    const size_t nStart = std::min<size_t>(elem.nStart, sText.size());
    const size_t nLength = std::min<size_t>(elem.StartTagLen(), sText.size() - nStart);
    if (std::string_view(sText.data() + nStart, nLength).find(kObjectMark) ==
        std::string_view::npos) {
        return false;
    }
    XmlAttribScan scan(doc, iPos);
    XmlAttribScan::Item item;
    return scan.Find(kObjectMark, item) && (!item.bValue || !scan.RawValue(item).empty());
}

// A value as a C string reads it: up to its first NUL.
std::string_view AsCString(std::string_view s) {
    return s.substr(0, s.find('\0'));
}

// The bytes that a text's unescaping or escaping changes, or that end it as a C string.
constexpr auto kNotPlain = [] {
    std::array<bool, 256> a{};
    a['&'] = a['<'] = a['>'] = a[0] = true;
    return a;
}();

// Writes the exported tree's text in one pass, in the form that adding each element behind
// the last one, then its attributes and its text, gives: an element with children opens with
// a line break, each child ends with one, and the text of a leaf sits between its tags.
// Names are read in place from the source, which outlives the writer.
class ExportWriter {
  public:
    // The root is written with its attributes; it stays open until Close.
    ExportWriter(std::string& sOut, std::string_view sRoot, std::string_view sAttribs)
        : m_sOut(sOut) {
        m_sOut += '<';
        m_sOut += sRoot;
        m_sOut += sAttribs;
        m_aOpen.push_back({sRoot, false, true});
    }

    // The source's element at iPos, with its attributes by the table and its
    // text; it stays open for its children until Close.
    void Open(const CXmlDoc& source, uint32_t iPos, std::string_view sTag) {
        BeforeChild();
        // The rules see the whole name; the element is named as a C string reads it.
        const std::string_view sName = AsCString(sTag);
        m_aOpen.push_back({sName, false, false});
        m_aAttribs.clear();
        m_nTypes = 0;
        const TagRules rules = FindTagRules(sTag);
        if (!rules.Empty()) {
            ReadAttribs(source, iPos, rules, sName.size() + 3);
        }
        m_sOut += '<';
        m_sOut += sName;
        for (const Attrib& attrib : m_aAttribs) {
            m_sOut += ' ';
            m_sOut += attrib.sName;
            m_sOut += "=\"";
            m_sOut += attrib.sValue;
            m_sOut += '"';
        }
        m_sOut += '>';
        for (size_t i = 0; i < m_nTypes; ++i) {
            BeforeChild();
            const std::string& sType = m_aTypes[i];
            if (sType.empty()) {
                m_sOut += "<Type/>";
            } else {
                m_sOut += "<Type>";
                m_sOut += sType;
                m_sOut += "</Type>";
            }
            m_sOut += '\n';
        }
        // An element that took a Type child takes no text, as its source had children anyway.
        if (m_nTypes == 0) {
            AppendText(source, iPos);
        }
    }

    // A leaf without rules whose markup is written as it stands: "<name>", text that the
    // escaping leaves alone, "</name>". It is copied whole; false for any other element.
    bool CopyPlainLeaf(const CXmlDoc& source, uint32_t iPos, std::string_view sTag) {
        const ElemPos& elem = source.GetRecord(iPos);
        const std::string& sText = source.GetDocText();
        const size_t nName = sTag.size();
        if (elem.iElemChild || elem.StartTagLen() != nName + 2 || elem.EndTagLen() != nName + 3 ||
            uint64_t(elem.nStart) + elem.nLength > sText.size() || !FindTagRules(sTag).Empty()) {
            return false;
        }
        const char* p = sText.data() + elem.nStart;
        const char* pEnd = p + elem.nLength - (nName + 3);
        if (p[nName + 1] != '>' || std::memcmp(p + 1, sTag.data(), nName) != 0 || pEnd[0] != '<' ||
            pEnd[1] != '/' || std::memcmp(pEnd + 2, sTag.data(), nName) != 0 ||
            pEnd[nName + 2] != '>' || std::memchr(sTag.data(), '\0', nName)) {
            return false;
        }
        for (const char* pText = p + nName + 2; pText < pEnd; ++pText) {
            if (kNotPlain[static_cast<unsigned char>(*pText)]) {
                return false;
            }
        }
        BeforeChild();
        m_sOut.append(p, elem.nLength);
        m_sOut += '\n';
        return true;
    }

    // An element without children keeps the short form of its start tag.
    void Close() {
        const OpenElement& open = m_aOpen.back();
        if (open.bShortTag && !open.bChildren) {
            m_sOut += "/>\n";
        } else {
            m_sOut += "</";
            m_sOut += open.sTag;
            m_sOut += ">\n";
        }
        m_aOpen.pop_back();
    }

  private:
    struct OpenElement {
        std::string_view sTag;
        bool bChildren;
        bool bShortTag;  // the start tag is not closed yet: "/>" without children
    };
    struct Attrib {
        std::string_view sName;
        std::string sValue;  // escaped
    };

    // The first child of an open element starts on a line of its own.
    void BeforeChild() {
        if (!m_aOpen.empty() && !m_aOpen.back().bChildren) {
            m_aOpen.back().bChildren = true;
            m_sOut += m_aOpen.back().bShortTag ? ">\n" : "\n";
        }
    }

    // The attributes the rules keep, and the Type children; a start tag stays within what
    // its record can hold, so a longer attribute is dropped.
    void ReadAttribs(const CXmlDoc& source, uint32_t iPos, const TagRules& rules,
                     size_t nTagLength) {
        m_aFirst.clear();
        XmlAttribScan scan(source, iPos);
        XmlAttribScan::Item item;
        while (scan.Next(item)) {
            const std::string_view sAttribName = scan.Name(item);
            const AttribRule* pRule = FindRule(rules, sAttribName);
            if (!pRule) {
                continue;
            }
            const std::string_view sValue = AsCString(FirstValue(scan, item));
            if (pRule->nAction == AttribAction::kTypeElement) {
                if (m_nTypes == 0) {
                    --nTagLength;  // "/>" becomes ">"
                }
                if (m_aTypes.size() == m_nTypes) {
                    m_aTypes.emplace_back();
                }
                m_aTypes[m_nTypes].clear();
                CXmlDoc::AppendEscaped(m_aTypes[m_nTypes++], sValue, 0);
                continue;
            }
            const std::string_view sAttrib =
                pRule->nAction == AttribAction::kNumber ? kNumberAttrib : sAttribName;
            std::string sEscaped;
            CXmlDoc::AppendEscaped(sEscaped, sValue, XmlAttribText);
            auto it = m_aAttribs.begin();
            while (it != m_aAttribs.end() && it->sName != sAttrib) {
                ++it;
            }
            size_t nOld = it == m_aAttribs.end() ? 0 : it->sValue.size() + 2;
            size_t nNew = sEscaped.size() + 2 + (nOld ? 0 : sAttrib.size() + 2);
            if (nTagLength - nOld + nNew > ElemPos::kStartTagMask) {
                continue;
            }
            nTagLength = nTagLength - nOld + nNew;
            if (it == m_aAttribs.end()) {
                m_aAttribs.push_back({sAttrib, std::move(sEscaped)});
            } else {
                it->sValue = std::move(sEscaped);
            }
        }
    }

    // The value of the first attribute of the item's name, as a search by name finds it.
    const std::string& FirstValue(const XmlAttribScan& scan, const XmlAttribScan::Item& item) {
        for (const auto& [sName, sValue] : m_aFirst) {
            if (sName == scan.Name(item)) {
                return sValue;
            }
        }
        m_aFirst.emplace_back(scan.Name(item), scan.Value(item));
        return m_aFirst.back().second;
    }

    // The text of a leaf, unescaped and escaped again; text without references or markup
    // reads as it stands.
    void AppendText(const CXmlDoc& source, uint32_t iPos) {
        const ElemPos& elem = source.GetRecord(iPos);
        uint32_t nStart, nEnd;
        if (elem.iElemChild || elem.nLength == elem.StartTagLen() ||
            !source.ContentRange(iPos, nStart, nEnd) || nStart == nEnd) {
            return;
        }
        const std::string_view sRaw(source.GetDocText().data() + nStart, nEnd - nStart);
        if (!std::memchr(sRaw.data(), '&', sRaw.size()) &&
            !std::memchr(sRaw.data(), '<', sRaw.size())) {
            CXmlDoc::AppendEscaped(m_sOut, AsCString(sRaw), 0);
            return;
        }
        const std::string sData = source.GetData(iPos);
        CXmlDoc::AppendEscaped(m_sOut, AsCString(sData), 0);
    }

    std::string& m_sOut;
    std::vector<OpenElement> m_aOpen;
    // Scratch space of Open, kept from element to element.
    std::vector<Attrib> m_aAttribs;
    std::vector<std::string> m_aTypes;
    size_t m_nTypes = 0;
    std::vector<std::pair<std::string_view, std::string>> m_aFirst;  // first value of a name
};

// The copied elements below the source's main element, in document order. The walk follows
// the index's links with a stack of the levels entered, so no depth of nesting uses up the
// call stack, and leaves the source's positions alone.
void WriteStorageElements(ExportWriter& writer, const CXmlDoc& source) {
    struct Level {
        uint32_t iPos;
        bool bCopied;
        bool bObject;
    };
    std::vector<Level> aLevels;
    const bool bRootObject = IsObject(source, source.GetMainPos());
    bool bMainObject = bRootObject;
    uint32_t iPos = source.GetRecord(source.GetMainPos()).iElemChild;
    for (;;) {
        if (!iPos) {
            if (aLevels.empty()) {
                return;
            }
            const Level level = aLevels.back();
            aLevels.pop_back();
            if (level.bCopied) {
                writer.Close();
            }
            iPos = source.GetRecord(level.iPos).iElemNext;
            bMainObject = aLevels.empty() ? bRootObject : aLevels.back().bObject;
            continue;
        }
        // Objects (with NrOfProperties) and their properties are copied; a list of ports
        // is no property, its ports belong to the object itself.
        const bool bObject = IsObject(source, iPos);
        const std::string_view sTag =
            bObject || bMainObject ? source.TagNameView(iPos) : std::string_view();
        const bool bCopied = bObject || (bMainObject && sTag != kPortList);
        if (bCopied && !bObject && writer.CopyPlainLeaf(source, iPos, sTag)) {
            iPos = source.GetRecord(iPos).iElemNext;
            continue;
        }
        if (bCopied) {
            writer.Open(source, iPos, sTag);
        }
        aLevels.push_back({iPos, bCopied, bObject});
        bMainObject = bObject;
        iPos = source.GetRecord(iPos).iElemChild;
    }
}

}  // namespace

bool WriteStorageDeviceTree(CXmlDoc& source, std::string& sOut) {
    source.SavePos("");
    source.ResetPos();
    if (!source.FindElem(kStorageTreeRoot)) {
        source.RestorePos("");
        return false;
    }
    // The exported tree is somewhat smaller than its source: one allocation holds it.
    sOut.clear();
    sOut.reserve(source.GetDocText().size() + 256);
    sOut = kDeclaration;
    ExportWriter writer(sOut, kExportRoot, " Version=\"" + std::to_string(kExportVersion) + '"');
    WriteStorageElements(writer, source);
    writer.Close();
    source.RestorePos("");
    return true;
}

void BuildStorageDeviceTree(CXmlDoc& target, CXmlDoc& source) {
    std::string sText;
    if (!WriteStorageDeviceTree(source, sText)) {
        return;
    }
    target.SetDoc(sText);
    // The positions that adding the elements one by one leaves: the root at main, its last
    // child at the child position.
    const uint32_t iRoot = target.GetRecord(0).iElemChild;
    const uint32_t iFirst = target.GetRecord(iRoot).iElemChild;
    target.SetPos(0, iRoot, iFirst ? target.GetRecord(iFirst).iElemPrev : 0);
}
